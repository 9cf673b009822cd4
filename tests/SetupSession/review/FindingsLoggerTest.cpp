#include "review/FindingsLogger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarn::session {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST(FindingsLogger, KeepsEachKindInItsListInOrder) {
  Findings findings;
  FindingsLogger logger(findings);
  logger.logDependencyError("/Case", PhysicsErrorMsg("first"));
  logger.logGlobalError(PhysicsErrorMsg("outlets but no inlet"));
  logger.logDependencyError("/Case", PhysicsErrorMsg("second"));

  ASSERT_THAT(findings.dependency, SizeIs(2));
  EXPECT_EQ(findings.dependency[0].path, "/Case");
  EXPECT_EQ(findings.dependency[0].message, "first");
  EXPECT_EQ(findings.dependency[1].message, "second");
  EXPECT_THAT(findings.global, ElementsAre("outlets but no inlet"));
  EXPECT_TRUE(logger.hasDependencyErrors());
  EXPECT_TRUE(logger.hasGlobalErrors());
  EXPECT_TRUE(findings.any());
}

TEST(FindingsLogger, ABetaMessageIsNoError) {
  Findings findings;
  FindingsLogger logger(findings);
  logger.logDependencyError("/Case/Combustion", PhysicsErrorMsg("not released", PhysicsErrorMsg::Beta));

  ASSERT_THAT(findings.beta, SizeIs(1));
  EXPECT_EQ(findings.beta[0].path, "/Case/Combustion");
  EXPECT_EQ(findings.beta[0].message, "not released");
  EXPECT_FALSE(logger.hasDependencyErrors());
  EXPECT_FALSE(findings.any());
}

TEST(FindingsLogger, ResettingLeavesWhatOthersFound) {
  Findings findings;
  findings.unknown.push_back({"/Case", "Colour", "unknown"});
  FindingsLogger logger(findings);
  logger.logDependencyError("/Case", PhysicsErrorMsg("error"));
  logger.logDependencyError("/Case", PhysicsErrorMsg("beta", PhysicsErrorMsg::Beta));
  logger.logGlobalError(PhysicsErrorMsg("global"));
  logger.reset();

  EXPECT_FALSE(logger.hasDependencyErrors());
  EXPECT_FALSE(logger.hasGlobalErrors());
  EXPECT_THAT(findings.beta, IsEmpty());
  EXPECT_THAT(findings.unknown, SizeIs(1));
}

}  // namespace
}  // namespace tarn::session
