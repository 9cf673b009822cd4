#include <tarn/RuleReads.h>

#include <gtest/gtest.h>

#include <tarn/TDFContext.h>

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

TEST(RuleReads, UnknownReadsMayBeOfTheModelAndOfTheContext) {
  RuleReads reads;
  reads.unknown = true;

  EXPECT_TRUE(reads.readsModel());
  EXPECT_FALSE(reads.isContextFree());
}

TEST(RuleReads, AnOwnParameterIsReadInTheObjectThatOwnsTheRule) {
  RuleReads const reads = RuleReads::ofOwnParameter("Motion");

  ASSERT_EQ(reads.parameters.size(), 1u);
  EXPECT_EQ(reads.parameters[0].name, "Motion");
  std::string object;
  ASSERT_TRUE(reads.parameters[0].objects.resolve(TDFContext("/Case/Domain:rotor"), object));
  EXPECT_EQ(object, "/Case/Domain:rotor");
  EXPECT_FALSE(reads.isContextFree());
}

TEST(RuleReads, AddingUnitesAllKindsOfReads) {
  RuleReads others = RuleReads::ofOwnParameter("Motion");
  others.objectSets.emplace_back("/Case/Domain:*");
  others.contextIdentity = true;
  others.unknown = true;
  RuleReads reads = RuleReads::ofOwnParameter("Speed");
  reads.add(others);

  ASSERT_EQ(reads.parameters.size(), 2u);
  EXPECT_EQ(reads.parameters[0].name, "Speed");
  EXPECT_EQ(reads.parameters[1].name, "Motion");
  ASSERT_EQ(reads.objectSets.size(), 1u);
  EXPECT_EQ(reads.objectSets[0].text(), "/Case/Domain:*");
  EXPECT_TRUE(reads.contextIdentity);
  EXPECT_TRUE(reads.unknown);

  reads.add(RuleReads());
  EXPECT_TRUE(reads.contextIdentity);
  EXPECT_TRUE(reads.unknown);
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
