#include <tarn/RuleReads.h>

#include <gtest/gtest.h>

namespace tarn {
namespace {

TEST(RuleReads, ReadingNothingIsContextFree) {
  RuleReads const reads;

  EXPECT_FALSE(reads.readsModel());
  EXPECT_TRUE(reads.isContextFree());
}

TEST(RuleReads, AParameterOrASetOfObjectsReadsTheModel) {
  RuleReads parameter;
  parameter.parameters.push_back({PathPattern("/Case"), "Flow Regime"});
  EXPECT_TRUE(parameter.readsModel());

  RuleReads objects;
  objects.objectSets.emplace_back("/Case/Domain:*");
  EXPECT_TRUE(objects.readsModel());
}

TEST(RuleReads, TheIdentityOfTheContextIsNotTheModel) {
  RuleReads reads;
  reads.contextIdentity = true;

  EXPECT_FALSE(reads.readsModel());
  EXPECT_FALSE(reads.isContextFree());
}

TEST(RuleReads, OnlyPathsFromTheRootAreContextFree) {
  for (char const* const relative : {"Boundary:*", "..", "^Domain", "@/Turbulence"}) {
    RuleReads parameter;
    parameter.parameters.push_back({PathPattern("/Case"), "Flow Regime"});
    EXPECT_TRUE(parameter.isContextFree());
    parameter.parameters.push_back({PathPattern(relative), "Flow Regime"});
    EXPECT_FALSE(parameter.isContextFree()) << relative;

    RuleReads objects;
    objects.objectSets.emplace_back("/Case/Domain:*");
    EXPECT_TRUE(objects.isContextFree());
    objects.objectSets.emplace_back(relative);
    EXPECT_FALSE(objects.isContextFree()) << relative;
  }
}

}  // namespace
}  // namespace tarn
