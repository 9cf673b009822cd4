#include <tarn/RuleLambdas.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tarn/PhysicsData.h>

#include "support/MapModel.h"

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RuleLambdasTest : public testing::Test {
 protected:
  template <typename Rule>
  static RuleReads readsOf(Rule const& rule) {
    RuleReads reads;
    rule->collectReads(reads);
    return reads;
  }

  test::MapModel model_{{{"/Case/Domain:rotor", {{"Materials", "Water,Air"}, {"Motion", "Rotating"}}},
                         {"/Case/Domain:stator", {{"Motion", "Stationary"}}}}};
  EvalContext evaluation_{&model_};
  TDFContext const rotor_{"/Case/Domain:rotor"};
  TDFContext const stator_{"/Case/Domain:stator"};
};

TEST_F(RuleLambdasTest, AConditionReadsTheModelInItsContext) {
  auto const moves = lambda::when([](TDFContext const& at, ModelTDF const& model) {
    return model.getParameterValue(at.objPath(), "Motion") != "Stationary";
  });
  EXPECT_TRUE(moves->evaluate(rotor_, &evaluation_));
  EXPECT_FALSE(moves->evaluate(stator_, &evaluation_));
}

TEST_F(RuleLambdasTest, AConditionOnAParameterOfTheOwnerComparesItsText) {
  auto const rotates = lambda::when("Motion", "Rotating");
  EXPECT_TRUE(rotates->evaluate(rotor_, &evaluation_));
  EXPECT_FALSE(rotates->evaluate(stator_, &evaluation_));
  EXPECT_TRUE(lambda::when("Colour", "")->evaluate(rotor_, &evaluation_)) << "an absent parameter has the text \"\"";
}

TEST_F(RuleLambdasTest, TextsAndListsAreFixedOrComputed) {
  EXPECT_EQ(lambda::text("1 [m]")->evaluate(rotor_, &evaluation_), "1 [m]");
  auto const path = lambda::text([](TDFContext const& at, ModelTDF const&) { return at.objPath(); });
  EXPECT_EQ(path->evaluate(rotor_, &evaluation_), "/Case/Domain:rotor");

  EXPECT_THAT(lambda::list({"Water", "Air"})->evaluate(rotor_, &evaluation_), ElementsAre("Water", "Air"));
  EXPECT_THAT(lambda::listOf("Materials")->evaluate(rotor_, &evaluation_), ElementsAre("Water", "Air"));
  EXPECT_THAT(lambda::listOf("Materials")->evaluate(stator_, &evaluation_), IsEmpty());
}

TEST_F(RuleLambdasTest, NamedRulesAndGlobalChecksFillADatabase) {
  PhysicsData rules;
  ASSERT_TRUE(rules.addCheck("moves", lambda::check([](TDFContext const& at, ModelTDF const& model) {
                               return model.getParameterValue(at.objPath(), "Motion") == "Rotating";
                             })));
  ASSERT_TRUE(rules.addList("materials", lambda::namedList([](TDFContext const&, ModelTDF const&) {
                              return std::vector<std::string>{"Water"};
                            })));
  ASSERT_TRUE(rules.addGlobalCheck(
      "a domain", lambda::globalCheck([](ModelTDF const& model) { return model.hasObject("/Case/Domain:hub"); },
                                      PhysicsErrorMsg("The hub is missing."))));

  EXPECT_TRUE(rules.getCheck("moves", true)->evaluate(rotor_, &evaluation_));
  EXPECT_FALSE(rules.getCheck("moves", true)->evaluate(stator_, &evaluation_));
  EXPECT_THAT(rules.getList("materials", true)->evaluate(rotor_, &evaluation_), ElementsAre("Water"));
  auto const [holds, message] = rules.getGlobalCheck("a domain", true)->evaluate(&evaluation_);
  EXPECT_FALSE(holds);
  EXPECT_EQ(message.message, "The hub is missing.");
}

TEST_F(RuleLambdasTest, AFunctionWithoutAListOfItsReadsMayReadAnything) {
  EXPECT_TRUE(readsOf(lambda::when([](TDFContext const&, ModelTDF const&) { return true; })).unknown);
  EXPECT_TRUE(readsOf(lambda::text([](TDFContext const&, ModelTDF const&) { return std::string(); })).unknown);
  EXPECT_TRUE(readsOf(lambda::list([](TDFContext const&, ModelTDF const&) { return SharedStrings(); })).unknown);
  EXPECT_TRUE(readsOf(lambda::check([](TDFContext const&, ModelTDF const&) { return true; })).unknown);
  EXPECT_TRUE(readsOf(lambda::globalCheck([](ModelTDF const&) { return true; }, PhysicsErrorMsg(""))).unknown);
}

TEST_F(RuleLambdasTest, ALimitFromAFunctionIsAVariableBound) {
  ParamValueDef speed;
  speed.upperBound = lambda::text([](TDFContext const&, ModelTDF const&) { return std::string("120 [rad/s]"); });
  EXPECT_TRUE(speed.hasVariableBounds());
  speed.upperBound = lambda::text("120 [rad/s]");
  EXPECT_FALSE(speed.hasVariableBounds());
}

TEST_F(RuleLambdasTest, ReadsThatAProgramListsAreReported) {
  RuleReads domains;
  domains.objectSets.emplace_back("/Case/Domain:*");
  RuleReads const reads = readsOf(lambda::when(
      [](TDFContext const&, ModelTDF const& model) { return model.hasObject("/Case/Domain:rotor"); }, domains));
  EXPECT_FALSE(reads.unknown);
  ASSERT_EQ(reads.objectSets.size(), 1u);
  EXPECT_EQ(reads.objectSets[0].text(), "/Case/Domain:*");
}

TEST_F(RuleLambdasTest, WhatTakesNoFunctionReportsExactlyWhatItReads) {
  for (RuleReads const& reads : {readsOf(lambda::when("Motion", "Rotating")), readsOf(lambda::listOf("Motion"))}) {
    EXPECT_FALSE(reads.unknown);
    ASSERT_EQ(reads.parameters.size(), 1u);
    EXPECT_EQ(reads.parameters[0].name, "Motion");
  }
  EXPECT_FALSE(readsOf(lambda::always()).readsModel());
  EXPECT_FALSE(readsOf(lambda::never()).readsModel());
}

}  // namespace
}  // namespace tarn
