// A review of a text gives the places of findings, and finds parameters that are given more than once.
#include <tarn/session/Review.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Rules.h"

namespace tarn::session {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class ReviewOfTextTest : public testing::Test {
 protected:
  ReviewOfTextTest() {
    test::Rules rules(rules_);
    rules.pertinentRoot("Case").object("/Case");
    rules.param("Flow Regime").required().allowed({"Laminar", "Turbulent"});
    rules.param("Speed").type(TDFParam::Real);
    rules.param("Combustion").beta("Combustion is not released.");
    rules.child("Domain").allowedNames({"rotor", "stator"});
    rules.child("Solver").singleton().availableWhen(test::when("Motion", "Rotating"));
    rules.object("/Case/Domain").param("Material").required();
  }

  Findings judge(std::string const& text, std::vector<std::string> roots = {}) {
    ReviewOptions options;
    options.roots = std::move(roots);
    return Review(rules_, options).judge(ModelText("pump.tdf", text));
  }

  /// The places of the only finding of a case with these lines, after a first line that is right.
  std::vector<std::string> placesOf(std::string const& lines) {
    Findings const findings = judge("/Case/Flow Regime=Laminar\n" + lines);
    EXPECT_THAT(findings.list, SizeIs(1)) << lines;
    std::vector<std::string> places;
    if (findings.list.size() != 1) return places;
    for (TextPlace const& place : findings.list[0].places) places.push_back(place.text());
    return places;
  }

  PhysicsData rules_;
};

TEST_F(ReviewOfTextTest, AParameterIsLocatedByItsName) {
  EXPECT_THAT(placesOf("/Case/Speed=fast\n"), ElementsAre("pump.tdf:2:7"));
  EXPECT_THAT(placesOf("/Case/Colour=red\n"), ElementsAre("pump.tdf:2:7"));
}

TEST_F(ReviewOfTextTest, AMissingParameterIsLocatedByItsObject) {
  EXPECT_THAT(placesOf("Case:\n  Domain: rotor\n  END # Domain:rotor\nEND # Case:\n"), ElementsAre("pump.tdf:3:3"));
}

TEST_F(ReviewOfTextTest, AnObjectThatTheRulesDoNotKnowIsLocated) {
  EXPECT_THAT(placesOf("/Case/Mesh:fine/Size=3\n"), ElementsAre("pump.tdf:2:7"));
}

TEST_F(ReviewOfTextTest, ObjectsWithNamesThatAreNotAllowedAreAllLocated) {
  EXPECT_THAT(placesOf("/Case/Domain:b/Material=Oil\n/Case/Domain:a/Material=Oil\n"),
              ElementsAre("pump.tdf:3:7", "pump.tdf:2:7"));
}

TEST_F(ReviewOfTextTest, AnObjectThatIsNotAvailableIsLocated) {
  rules_.addObject("/Case/Solver");
  EXPECT_THAT(placesOf("/Case/Solver/\n"), ElementsAre("pump.tdf:2:7"));
}

TEST_F(ReviewOfTextTest, ABetaMessageIsLocated) {
  Findings const findings = judge("/Case/Flow Regime=Laminar\n/Case/Combustion=yes\n");
  ASSERT_THAT(findings.beta, SizeIs(1));
  ASSERT_THAT(findings.beta[0].places, SizeIs(1));
  EXPECT_EQ(findings.beta[0].places[0].text(), "pump.tdf:2:7");
}

TEST_F(ReviewOfTextTest, AGlobalCheckHasNoPlace) {
  test::Rules(rules_).globalCheck(
      "well posed", [](ModelTDF const&) { return false; }, PhysicsErrorMsg("The case is not well posed."));
  EXPECT_THAT(placesOf(""), IsEmpty());
}

TEST_F(ReviewOfTextTest, AParameterWithDifferentValuesIsAnErrorWithAllItsLines) {
  Findings const findings = judge("/Case/Flow Regime=Laminar\n/Case/Speed=3\nCase:\n  Speed = 5\nEND # Case:\n");
  ASSERT_THAT(findings.list, SizeIs(1));
  Finding const& finding = findings.list[0];
  EXPECT_EQ(finding.code, FindingCode::ConflictingValues);
  EXPECT_EQ(finding.severity, Severity::Error);
  EXPECT_EQ(finding.path, "/Case");
  EXPECT_EQ(finding.name, "Speed");
  EXPECT_EQ(finding.value, "3");
  ASSERT_THAT(finding.places, SizeIs(2));
  EXPECT_EQ(finding.places[0].text(), "pump.tdf:2:7");
  EXPECT_EQ(finding.places[1].text(), "pump.tdf:4:3");
  EXPECT_EQ(finding.message,
            "The parameter \"Speed\" in the object \"/Case\" is given twice with different values: \"3\" in line 2 and "
            "\"5\" in line 4. The first value counts.");
}

TEST_F(ReviewOfTextTest, AParameterThatIsRepeatedWithItsValueIsAWarning) {
  Findings const findings = judge("/Case/Speed=3\n/Case/Flow Regime=Laminar\n/Case/Speed=3\n/Case/Speed=3\n");
  ASSERT_THAT(findings.list, SizeIs(1));
  EXPECT_EQ(findings.list[0].code, FindingCode::RepeatedParameter);
  EXPECT_EQ(findings.list[0].severity, Severity::Warning);
  EXPECT_EQ(findings.list[0].message,
            "The parameter \"Speed\" in the object \"/Case\" is given 3 times with the same value: in line 1, line 3 "
            "and line 4.");
}

TEST_F(ReviewOfTextTest, OfManyLinesTheSentenceHasTheFirst) {
  std::string text = "/Case/Flow Regime=Laminar\n";
  for (int i = 0; i < 5; ++i) text += "/Case/Speed=" + std::to_string(i) + '\n';
  Findings const findings = judge(text);
  ASSERT_THAT(findings.list, SizeIs(1));
  EXPECT_THAT(findings.list[0].places, SizeIs(5));
  EXPECT_EQ(findings.list[0].message,
            "The parameter \"Speed\" in the object \"/Case\" is given 5 times with different values: \"0\" in line 2, "
            "\"1\" in line 3, \"2\" in line 4, \"3\" in line 5 and others. The first value counts.");
}

TEST_F(ReviewOfTextTest, RepetitionsInObjectsThatTheRulesDoNotLookAtAreIgnored) {
  EXPECT_THAT(judge("/Case/Flow Regime=Laminar\n/Macro/x=1\n/Macro/x=2\n").list, IsEmpty());
}

TEST_F(ReviewOfTextTest, WithRootsOnlyRepetitionsBelowThemAreFound) {
  std::string const text =
      "/Case:a/Flow Regime=Laminar\n/Case:a/Speed=1\n/Case:a/Speed=2\n/Case:b/Flow Regime=Laminar\n";
  EXPECT_THAT(judge(text, {"/Case:b"}).list, IsEmpty());
  EXPECT_THAT(judge(text, {"/Case:a"}).list, SizeIs(1));
}

}  // namespace
}  // namespace tarn::session
