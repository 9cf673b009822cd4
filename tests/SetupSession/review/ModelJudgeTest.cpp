#include <tarn/session/ModelJudge.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Rules.h"

namespace tarn::session {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class ModelJudgeTest : public testing::Test {
 protected:
  ModelJudgeTest() {
    test::Rules rules(rules_);
    rules.pertinentRoot("Case").object("/Case");
    rules.param("Flow Regime").required().allowed({"Laminar", "Turbulent"});
    rules.param("Speed").type(TDFParam::Real);
    rules.param("Combustion").type(TDFParam::Logical).beta("Combustion is not released.");
  }

  Findings judge(ModelState model, JudgeOptions options = {}) {
    return ModelJudge(rules_, std::move(options)).judge(std::move(model));
  }

  PhysicsData rules_;
  ModelState const sound_ = {{"/Case", {{"Flow Regime", "Laminar"}, {"Speed", "3 [m/s]"}}}};
  ModelState const faulty_ = {{"/Case", {{"Colour", "red"}, {"Flow Regime", "Plug"}, {"Speed", "fast"}}}};
};

TEST_F(ModelJudgeTest, ASoundModelGivesNothing) {
  Findings const findings = judge(sound_);
  EXPECT_EQ(findings.status, 0);
  EXPECT_FALSE(findings.any());
}

TEST_F(ModelJudgeTest, AnEmptyModelGivesNothing) {
  EXPECT_FALSE(judge({}).any());
}

TEST_F(ModelJudgeTest, EachKindOfFaultStandsInItsList) {
  Findings const findings = judge(faulty_);
  EXPECT_EQ(findings.status, 1);
  EXPECT_THAT(findings.dependency, SizeIs(1));
  EXPECT_THAT(findings.global, IsEmpty());
  EXPECT_THAT(findings.unknown, SizeIs(1));
  EXPECT_THAT(findings.values, SizeIs(1));
}

TEST_F(ModelJudgeTest, TheValidatorAloneLeavesOutTheOtherAnalyses) {
  JudgeOptions options;
  options.onlyValidator = true;
  Findings const findings = judge(faulty_, options);
  EXPECT_THAT(findings.dependency, SizeIs(1));
  EXPECT_THAT(findings.unknown, IsEmpty());
  EXPECT_THAT(findings.values, IsEmpty());
}

TEST_F(ModelJudgeTest, ThePhaseConcernsTheValidatorOnly) {
  test::Rules(rules_).globalCheck(
      "well posed", [](ModelTDF const&) { return false; }, PhysicsErrorMsg("The case is not well posed."));
  JudgeOptions options;
  options.phases = PhysicsValidator2::ValGlobal;
  Findings findings = judge(faulty_, options);
  EXPECT_EQ(findings.status, 2);
  EXPECT_THAT(findings.dependency, IsEmpty());
  EXPECT_THAT(findings.global, ElementsAre("The case is not well posed."));
  EXPECT_THAT(findings.unknown, SizeIs(1));

  options.phases = PhysicsValidator2::ValDependency;
  findings = judge(faulty_, options);
  EXPECT_EQ(findings.status, 1);
  EXPECT_THAT(findings.global, IsEmpty());
}

TEST_F(ModelJudgeTest, BetaMessagesCountNeitherForTheStatusNorAsFindings) {
  Findings const findings = judge({{"/Case", {{"Combustion", "yes"}, {"Flow Regime", "Laminar"}}}});
  ASSERT_THAT(findings.beta, SizeIs(1));
  EXPECT_EQ(findings.beta[0].path, "/Case/Combustion");
  EXPECT_EQ(findings.beta[0].message, "Combustion is not released.");
  EXPECT_EQ(findings.status, 0);
  EXPECT_FALSE(findings.any());
  EXPECT_EQ(rules_.attachedController(), nullptr);
}

TEST_F(ModelJudgeTest, EveryPertinentObjectAtTheRootIsWalked) {
  Findings const findings = judge({{"/Case:b", {}}, {"/Case:a", {}}, {"/Macro", {}}});
  ASSERT_THAT(findings.dependency, SizeIs(2));
  EXPECT_EQ(findings.dependency[0].path, "/Case:a");
  EXPECT_EQ(findings.dependency[1].path, "/Case:b");
  EXPECT_EQ(findings.objectsPassedOver, 1u);
}

TEST_F(ModelJudgeTest, WithRootsOnlyThoseAreWalked) {
  JudgeOptions options;
  options.roots = {"/Case:b"};
  Findings const findings = judge({{"/Case:a", {{"Speed", "fast"}}}, {"/Case:b", {{"Speed", "slow"}}}}, options);
  ASSERT_THAT(findings.dependency, SizeIs(1));
  EXPECT_EQ(findings.dependency[0].path, "/Case:b");
  ASSERT_THAT(findings.values, SizeIs(1));
  EXPECT_EQ(findings.values[0].path, "/Case:b");
}

TEST_F(ModelJudgeTest, ARootThatTheModelLacksIsNamedAndNothingIsJudged) {
  JudgeOptions options;
  options.roots = {"/Case", "/Case:c", "/Case:d"};
  Findings const findings = judge(faulty_, options);
  EXPECT_THAT(findings.missingRoots, ElementsAre("/Case:c", "/Case:d"));
  EXPECT_FALSE(findings.any());
}

TEST_F(ModelJudgeTest, ARootThatOnlyADeeperPathImpliesIsInTheModel) {
  JudgeOptions options;
  options.roots = {"/Case"};
  EXPECT_THAT(judge({{"/Case/Domain:rotor", {}}}, options).missingRoots, IsEmpty());
}

TEST_F(ModelJudgeTest, ParametersAtTheRootAreUnknownAndHurtNothing) {
  Findings const findings = judge({{"", {{"Stray", "1"}}}, {"/Case", {{"Flow Regime", "Laminar"}}}});
  EXPECT_THAT(findings.unknown, SizeIs(1));
  EXPECT_EQ(findings.status, 0);
}

TEST_F(ModelJudgeTest, AParameterWithoutAValueIsAbsentButItsNameIsJudged) {
  Findings const findings = judge({{"/Case", {{"Colour", ""}, {"Flow Regime", "Laminar"}, {"Speed", " "}}}});
  EXPECT_THAT(findings.unknown, SizeIs(1));
  EXPECT_THAT(findings.values, IsEmpty());
}

TEST_F(ModelJudgeTest, OneJudgeServesManyModels) {
  ModelJudge judge(rules_, {});
  EXPECT_TRUE(judge.judge(faulty_).any());
  EXPECT_FALSE(judge.judge(sound_).any());
  EXPECT_TRUE(judge.judge(faulty_).any());
}

}  // namespace
}  // namespace tarn::session
