#include <tarn/BasicPhysicsErrorLogger.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> lines(BasicPhysicsErrorLogger const& logger) {
  std::vector<std::string> out;
  for (auto const& error : logger.getDependencyErrors()) out.push_back(error.path + " | " + error.message);
  return out;
}

TEST(BasicPhysicsErrorLogger, ANewLoggerHoldsNothing) {
  BasicPhysicsErrorLogger const logger;
  EXPECT_FALSE(logger.hasDependencyErrors());
  EXPECT_FALSE(logger.hasGlobalErrors());
  EXPECT_THAT(lines(logger), IsEmpty());
  EXPECT_THAT(logger.getGlobalErrors(), IsEmpty());
  EXPECT_EQ(logger.getTerminationMsg(), "");
}

TEST(BasicPhysicsErrorLogger, KeepsErrorsInOrderOfArrivalAndRepeatedOnesTwice) {
  BasicPhysicsErrorLogger logger;
  logger.logDependencyError("/Case/Solver", PhysicsErrorMsg("no time step"));
  logger.logDependencyError("/Case", PhysicsErrorMsg("no regime"));
  logger.logDependencyError("/Case/Solver", PhysicsErrorMsg("no time step"));
  logger.logGlobalError(PhysicsErrorMsg("no inlet"));
  logger.logGlobalError(PhysicsErrorMsg("leak"));
  logger.logGlobalError(PhysicsErrorMsg("leak"));
  EXPECT_THAT(lines(logger),
              ElementsAre("/Case/Solver | no time step", "/Case | no regime", "/Case/Solver | no time step"));
  EXPECT_THAT(logger.getGlobalErrors(), ElementsAre("no inlet", "leak", "leak"));
}

TEST(BasicPhysicsErrorLogger, DependencyErrorsAreNoGlobalErrors) {
  BasicPhysicsErrorLogger logger;
  for (int i = 0; i < 3; ++i) logger.logDependencyError("/Case", PhysicsErrorMsg("no regime"));
  EXPECT_TRUE(logger.hasDependencyErrors());
  EXPECT_FALSE(logger.hasGlobalErrors());
  EXPECT_THAT(logger.getGlobalErrors(), IsEmpty());
}

TEST(BasicPhysicsErrorLogger, GlobalErrorsAreNoDependencyErrors) {
  BasicPhysicsErrorLogger logger;
  logger.logGlobalError(PhysicsErrorMsg("leak"));
  EXPECT_TRUE(logger.hasGlobalErrors());
  EXPECT_FALSE(logger.hasDependencyErrors());
  EXPECT_THAT(lines(logger), IsEmpty());
}

TEST(BasicPhysicsErrorLogger, ABetaMessageCountsAsAnError) {
  BasicPhysicsErrorLogger logger;
  logger.logDependencyError("/Case/Regime", PhysicsErrorMsg("not released yet", PhysicsErrorMsg::Beta));
  EXPECT_TRUE(logger.hasDependencyErrors());
  EXPECT_THAT(lines(logger), ElementsAre("/Case/Regime | not released yet"));
}

TEST(BasicPhysicsErrorLogger, ResetEmptiesBothLists) {
  BasicPhysicsErrorLogger logger;
  logger.logDependencyError("/Case", PhysicsErrorMsg("no regime"));
  logger.logGlobalError(PhysicsErrorMsg("leak"));
  logger.logTermination("stopped");
  logger.reset();
  EXPECT_FALSE(logger.hasDependencyErrors());
  EXPECT_FALSE(logger.hasGlobalErrors());
  EXPECT_EQ(logger.getTerminationMsg(), "");
}

TEST(BasicPhysicsErrorLogger, TheTerminationTextIsNotKept) {
  BasicPhysicsErrorLogger logger;
  logger.logTermination("stopped");
  EXPECT_EQ(logger.getTerminationMsg(), "");
  EXPECT_FALSE(logger.hasDependencyErrors());
  EXPECT_FALSE(logger.hasGlobalErrors());
}

TEST(BasicPhysicsErrorLogger, ACopyIsIndependentOfItsOriginal) {
  BasicPhysicsErrorLogger original;
  original.logDependencyError("/Case", PhysicsErrorMsg("no regime"));
  BasicPhysicsErrorLogger copy(original);
  BasicPhysicsErrorLogger assigned;
  assigned = original;
  original.reset();
  copy.logGlobalError(PhysicsErrorMsg("leak"));
  EXPECT_FALSE(original.hasGlobalErrors());
  EXPECT_FALSE(assigned.hasGlobalErrors());
  EXPECT_THAT(lines(copy), ElementsAre("/Case | no regime"));
  EXPECT_THAT(lines(assigned), ElementsAre("/Case | no regime"));
}

TEST(BasicPhysicsErrorLogger, TheListsHandedOutAreCopies) {
  BasicPhysicsErrorLogger logger;
  logger.logGlobalError(PhysicsErrorMsg("leak"));
  std::vector<std::string> const before = logger.getGlobalErrors();
  logger.reset();
  EXPECT_THAT(before, ElementsAre("leak"));
}

}  // namespace
}  // namespace tarn
