#include "review/FindingsLogger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tarn/BetaLoggingController.h>
#include <tarn/PhysicsValidator2.h>

#include "support/Rules.h"

namespace tarn::session {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class FindingsLoggerTest : public testing::Test {
 protected:
  FindingsLoggerTest() {
    test::Rules rules(rules_);
    rules.pertinentRoot("Case").object("/Case");
    rules.param("Flow Regime").required().allowed({"Laminar", "Turbulent"});
    rules.param("Times").type(TDFParam::StringList).allowed({"start", "end"});
    rules.param("Speed").availableWhen(test::when("Motion", "Rotating"));
    rules.param("Combustion").beta("Combustion is not released.");
    rules.child("Domain").allowedNames({"rotor", "stator"});
    rules.child("Solver").singleton().availableWhen(test::when("Motion", "Rotating"));
  }

  Findings validate(ModelState const& model) {
    Findings findings;
    FindingsLogger logger(rules_, findings);
    BetaLoggingController beta;
    PhysicsValidator2 validator(&rules_);
    validator.setLogger(&logger);
    validator.setFaultObserver(&logger);
    validator.setBetaLoggingController(&beta);
    findings.status = validator.validate(PhysicsValidator2::ValAll, model, {"/Case"});
    return findings;
  }

  /// The only finding of a case with these parameters.
  Finding findingOf(ObjectState const& parameters, ModelState others = {}) {
    others.emplace("/Case", parameters);
    Findings findings = validate(others);
    EXPECT_THAT(findings.list, SizeIs(1));
    return findings.list.empty() ? Finding() : findings.list.front();
  }

  PhysicsData rules_;
};

TEST_F(FindingsLoggerTest, AMissingParameterIsNamed) {
  Finding const finding = findingOf({{"Motion", "Fixed"}});
  EXPECT_EQ(finding.code, FindingCode::MissingParameter);
  EXPECT_EQ(finding.path, "/Case");
  EXPECT_EQ(finding.name, "Flow Regime");
  EXPECT_EQ(finding.message, "The parameter \"Flow Regime\" should exist in the object \"/Case\" but is not present.");
}

TEST_F(FindingsLoggerTest, AValueThatIsNotAllowedComesWithThoseThatAre) {
  Finding const finding = findingOf({{"Flow Regime", "Plug"}});
  EXPECT_EQ(finding.code, FindingCode::ValueNotAllowed);
  EXPECT_EQ(finding.name, "Flow Regime");
  EXPECT_EQ(finding.value, "Plug");
  EXPECT_THAT(finding.wrong, IsEmpty());
  EXPECT_THAT(finding.expected.allowed, ElementsAre("Laminar", "Turbulent"));
}

TEST_F(FindingsLoggerTest, AMistypedValueComesWithTheOneThatWasProbablyMeant) {
  EXPECT_EQ(findingOf({{"Flow Regime", "Turbulant"}}).expected.nearMatch, "Turbulent");
  EXPECT_EQ(findingOf({{"Flow Regime", "Laminar"}, {"Times", "strat,end"}}).expected.nearMatch, "start");
  EXPECT_EQ(findingOf({{"Flow Regime", "Plug"}}).expected.nearMatch, std::nullopt);
}

TEST_F(FindingsLoggerTest, OfAListTheWrongItemsAreNamed) {
  Finding const finding = findingOf({{"Flow Regime", "Laminar"}, {"Times", "start,soon,late"}});
  EXPECT_EQ(finding.code, FindingCode::ValueNotAllowed);
  EXPECT_EQ(finding.value, "start,soon,late");
  EXPECT_THAT(finding.wrong, ElementsAre("late", "soon"));
  EXPECT_THAT(finding.expected.allowed, ElementsAre("start", "end"));
}

TEST_F(FindingsLoggerTest, AParameterThatIsNotAvailableHasItsValue) {
  Finding const finding = findingOf({{"Flow Regime", "Laminar"}, {"Speed", "3"}});
  EXPECT_EQ(finding.code, FindingCode::ParameterNotAvailable);
  EXPECT_EQ(finding.name, "Speed");
  EXPECT_EQ(finding.value, "3");
}

TEST_F(FindingsLoggerTest, ANameThatIsNotAllowedComesWithThoseThatAre) {
  Finding const finding = findingOf({{"Flow Regime", "Laminar"}}, {{"/Case/Domain:shaft", {}}});
  EXPECT_EQ(finding.code, FindingCode::ObjectNameNotAllowed);
  EXPECT_EQ(finding.path, "/Case");
  EXPECT_EQ(finding.type, "Domain");
  EXPECT_THAT(finding.wrong, ElementsAre("shaft"));
  EXPECT_THAT(finding.expected.allowed, ElementsAre("rotor", "stator"));
}

TEST_F(FindingsLoggerTest, AnObjectThatIsNotAvailableIsNamedByItsType) {
  Finding const finding = findingOf({{"Flow Regime", "Laminar"}}, {{"/Case/Solver", {}}});
  EXPECT_EQ(finding.code, FindingCode::ObjectNotAvailable);
  EXPECT_EQ(finding.type, "Solver");
  EXPECT_THAT(finding.wrong, IsEmpty());
}

TEST_F(FindingsLoggerTest, MissingObjectsAreNamed) {
  test::Rules(rules_, "/Case").child("Boundary").required().allowedNames({"inlet", "outlet"});
  test::Rules(rules_, "/Case/Boundary").param("Kind");
  Finding const finding = findingOf({{"Flow Regime", "Laminar"}});
  EXPECT_EQ(finding.code, FindingCode::MissingObject);
  EXPECT_EQ(finding.path, "/Case");
  EXPECT_EQ(finding.type, "Boundary");
  EXPECT_THAT(finding.wrong, ElementsAre("inlet", "outlet"));
}

TEST_F(FindingsLoggerTest, AGlobalCheckIsNamed) {
  test::Rules(rules_).globalCheck(
      "well posed", [](ModelTDF const&) { return false; }, PhysicsErrorMsg("The case is not well posed."));
  Finding const finding = findingOf({{"Flow Regime", "Laminar"}});
  EXPECT_EQ(finding.code, FindingCode::GlobalCheckFailed);
  EXPECT_EQ(finding.path, "");
  EXPECT_EQ(finding.check, "well posed");
  EXPECT_EQ(finding.message, "The case is not well posed.");
}

TEST_F(FindingsLoggerTest, ABetaMessageIsNoError) {
  Findings const findings = validate({{"/Case", {{"Combustion", "yes"}, {"Flow Regime", "Laminar"}}}});
  EXPECT_THAT(findings.list, IsEmpty());
  ASSERT_THAT(findings.beta, SizeIs(1));
  EXPECT_EQ(findings.beta[0].path, "/Case/Combustion");
  EXPECT_EQ(findings.beta[0].message, "Combustion is not released.");
  EXPECT_EQ(findings.status, 0);
}

TEST_F(FindingsLoggerTest, ResettingLeavesWhatOthersFound) {
  Findings findings = validate({{"/Case", {{"Combustion", "yes"}}}});
  Finding unknown;
  unknown.code = FindingCode::UnknownParameter;
  findings.list.push_back(unknown);
  FindingsLogger(rules_, findings).reset();

  EXPECT_THAT(findings.beta, IsEmpty());
  ASSERT_THAT(findings.list, SizeIs(1));
  EXPECT_EQ(findings.list[0].code, FindingCode::UnknownParameter);
}

}  // namespace
}  // namespace tarn::session
