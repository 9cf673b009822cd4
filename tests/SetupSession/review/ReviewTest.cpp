#include <tarn/session/Review.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Rules.h"

namespace tarn::session {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// The paths of the findings of a kind.
std::vector<std::string> pathsOf(Findings const& findings, FindingKind kind) {
  std::vector<std::string> paths;
  for (Finding const& one : findings.list) {
    if (one.kind() == kind) paths.push_back(one.path);
  }
  return paths;
}

class ReviewTest : public testing::Test {
 protected:
  ReviewTest() {
    test::Rules rules(rules_);
    rules.pertinentRoot("Case").object("/Case");
    rules.param("Flow Regime").required().allowed({"Laminar", "Turbulent"});
    rules.param("Speed").type(TDFParam::Real);
    rules.param("Combustion").type(TDFParam::Logical).beta("Combustion is not released.");
  }

  Findings judge(ModelState model, ReviewOptions options = {}) {
    return Review(rules_, std::move(options)).judge(model);
  }

  PhysicsData rules_;
  ModelState const sound_ = {{"/Case", {{"Flow Regime", "Laminar"}, {"Speed", "3"}}}};
  ModelState const faulty_ = {{"/Case", {{"Colour", "red"}, {"Flow Regime", "Plug"}, {"Speed", "fast"}}}};
};

TEST_F(ReviewTest, ASoundModelGivesNothing) {
  Findings const findings = judge(sound_);
  EXPECT_EQ(findings.status, 0);
  EXPECT_FALSE(findings.any());
}

/// The only finding, which must be an error. Without a code when there is not exactly one.
struct Only {
  std::string_view code;
  std::string message;
};
Only onlyErrorOf(Findings const& findings) {
  EXPECT_THAT(findings.list, SizeIs(1));
  if (findings.list.size() != 1) return {};
  EXPECT_EQ(findings.list[0].severity, Severity::Error);
  return {describe(findings.list[0].code).name, findings.list[0].message};
}

TEST_F(ReviewTest, OfAnEmptyModelThereIsNothingToReview) {
  auto const [code, message] = onlyErrorOf(judge({}));
  EXPECT_EQ(code, "nothing-to-review");
  EXPECT_EQ(message, "There is nothing to review: the model is empty.");
}

TEST_F(ReviewTest, OfAModelWithoutAnObjectThatTheRulesLookAtThereIsNothingToReview) {
  auto const [code, message] = onlyErrorOf(judge({{"/Macro", {{"Speed", "3"}}}}));
  EXPECT_EQ(code, "nothing-to-review");
  EXPECT_EQ(message, "There is nothing to review: the model has no object of a type that the rules look at.");
}

TEST_F(ReviewTest, UnderRulesThatLookAtNothingThereIsNothingToReview) {
  PhysicsData const rules;
  auto const [code, message] = onlyErrorOf(Review(rules).judge(sound_));
  EXPECT_EQ(code, "nothing-to-review");
  EXPECT_EQ(message, "There is nothing to review: the rules look at no object, because they have no Pertinent Roots.");
}

TEST_F(ReviewTest, EvenTheValidatorAloneSaysThatThereIsNothingToReview) {
  ReviewOptions options;
  options.onlyValidator = true;
  EXPECT_EQ(onlyErrorOf(judge({}, options)).code, "nothing-to-review");
}

TEST_F(ReviewTest, EachKindOfFaultStandsInItsList) {
  Findings const findings = judge(faulty_);
  EXPECT_EQ(findings.status, 1);
  EXPECT_THAT(pathsOf(findings, FindingKind::Dependency), SizeIs(1));
  EXPECT_THAT(pathsOf(findings, FindingKind::Global), IsEmpty());
  EXPECT_THAT(pathsOf(findings, FindingKind::UnknownName), SizeIs(1));
  EXPECT_THAT(pathsOf(findings, FindingKind::Value), SizeIs(1));
}

TEST_F(ReviewTest, TheValidatorAloneLeavesOutTheOtherAnalyses) {
  ReviewOptions options;
  options.onlyValidator = true;
  Findings const findings = judge(faulty_, options);
  EXPECT_THAT(pathsOf(findings, FindingKind::Dependency), SizeIs(1));
  EXPECT_THAT(pathsOf(findings, FindingKind::UnknownName), IsEmpty());
  EXPECT_THAT(pathsOf(findings, FindingKind::Value), IsEmpty());
}

TEST_F(ReviewTest, ThePhaseConcernsTheValidatorOnly) {
  test::Rules(rules_).globalCheck(
      "well posed", [](ModelTDF const&) { return false; }, PhysicsErrorMsg("The case is not well posed."));
  ReviewOptions options;
  options.phases = PhysicsValidator2::ValGlobal;
  Findings findings = judge(faulty_, options);
  EXPECT_EQ(findings.status, 2);
  EXPECT_THAT(pathsOf(findings, FindingKind::Dependency), IsEmpty());
  ASSERT_THAT(pathsOf(findings, FindingKind::Global), SizeIs(1));
  EXPECT_EQ(findings.list.front().message, "The case is not well posed.");
  EXPECT_EQ(findings.list.front().check, "well posed");
  EXPECT_THAT(pathsOf(findings, FindingKind::UnknownName), SizeIs(1));

  options.phases = PhysicsValidator2::ValDependency;
  findings = judge(faulty_, options);
  EXPECT_EQ(findings.status, 1);
  EXPECT_THAT(pathsOf(findings, FindingKind::Global), IsEmpty());
}

TEST_F(ReviewTest, BetaMessagesCountNeitherForTheStatusNorAsFindings) {
  Findings const findings = judge({{"/Case", {{"Combustion", "yes"}, {"Flow Regime", "Laminar"}}}});
  ASSERT_THAT(findings.beta, SizeIs(1));
  EXPECT_EQ(findings.beta[0].path, "/Case/Combustion");
  EXPECT_EQ(findings.beta[0].message, "Combustion is not released.");
  EXPECT_EQ(findings.status, 0);
  EXPECT_FALSE(findings.any());
  EXPECT_EQ(rules_.attachedController(), nullptr);
}

TEST_F(ReviewTest, EveryPertinentObjectAtTheRootIsWalked) {
  Findings const findings = judge({{"/Case:b", {}}, {"/Case:a", {}}, {"/Macro", {}}});
  EXPECT_THAT(pathsOf(findings, FindingKind::Dependency), ElementsAre("/Case:a", "/Case:b"));
  EXPECT_EQ(findings.objectsPassedOver, 1u);
}

TEST_F(ReviewTest, WithRootsOnlyThoseAreWalked) {
  ReviewOptions options;
  options.roots = {"/Case:b"};
  Findings const findings = judge({{"/Case:a", {{"Speed", "fast"}}}, {"/Case:b", {{"Speed", "slow"}}}}, options);
  EXPECT_THAT(pathsOf(findings, FindingKind::Dependency), ElementsAre("/Case:b"));
  EXPECT_THAT(pathsOf(findings, FindingKind::Value), ElementsAre("/Case:b"));
}

TEST_F(ReviewTest, ARootThatTheModelLacksIsNamedAndNothingIsJudged) {
  ReviewOptions options;
  options.roots = {"/Case", "/Case:c", "/Case:d"};
  Findings const findings = judge(faulty_, options);
  EXPECT_THAT(findings.missingRoots, ElementsAre("/Case:c", "/Case:d"));
  EXPECT_FALSE(findings.any());
}

TEST_F(ReviewTest, ARootThatOnlyADeeperPathImpliesIsInTheModel) {
  ReviewOptions options;
  options.roots = {"/Case"};
  EXPECT_THAT(judge({{"/Case/Domain:rotor", {}}}, options).missingRoots, IsEmpty());
}

TEST_F(ReviewTest, ParametersAtTheRootAreUnknownAndHurtNothing) {
  Findings const findings = judge({{"", {{"Stray", "1"}}}, {"/Case", {{"Flow Regime", "Laminar"}}}});
  EXPECT_THAT(pathsOf(findings, FindingKind::UnknownName), SizeIs(1));
  EXPECT_EQ(findings.status, 0);
}

TEST_F(ReviewTest, AParameterWithoutAValueIsAbsentButItsNameIsJudged) {
  Findings const findings = judge({{"/Case", {{"Colour", ""}, {"Flow Regime", "Laminar"}, {"Speed", " "}}}});
  EXPECT_THAT(pathsOf(findings, FindingKind::UnknownName), SizeIs(1));
  EXPECT_THAT(pathsOf(findings, FindingKind::Value), IsEmpty());
}

TEST_F(ReviewTest, OneReviewServesManyModels) {
  Review const review(rules_);
  EXPECT_TRUE(review.judge(faulty_).any());
  EXPECT_FALSE(review.judge(sound_).any());
  EXPECT_TRUE(review.judge(faulty_).any());
}

}  // namespace
}  // namespace tarn::session
