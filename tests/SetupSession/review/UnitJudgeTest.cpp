// Units of values: those that the rules list, those that they do not, and none.
#include "review/UnitJudge.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tarn/session/Review.h>

#include "SetupSession/review/Judging.h"
#include "support/MapModel.h"
#include "support/Rules.h"

namespace tarn::session {
namespace {

using test::findingsOf;
using test::linesOf;
using testing::ElementsAre;
using testing::IsEmpty;

using tarn::test::MapModel;
using tarn::test::Rules;
using tarn::test::text;
using tarn::test::valueOf;

/// Knows kilovolts.
class Kilovolts final : public UnitConverter {
 public:
  [[nodiscard]] std::optional<double> convert(double number, std::string_view from,
                                              std::string_view to) const override {
    return from == "kV" && to == "V" ? std::optional(number * 1000) : std::nullopt;
  }
};

/// The rules of a chip: its voltage, its times, and numbers without units.
class UnitJudgeTest : public testing::Test {
 protected:
  UnitJudgeTest() {
    Rules rules(rules_);
    rules.quantity("Voltage", QuantityType({{"V", true, 1, 0}, {"mV", true, 0.001, 0}}));
    rules.quantity("Time", QuantityType({{"s", true, 1, 0}, {"ms", true, 0.001, 0}}));
    rules.pertinentRoot("Chip").object("/Chip");
    rules.param("Supply Voltage").type(TDFParam::Real).quantityType("Voltage").bounds("1.8 [V]", "3.6 [V]");
    rules.param("Rails").type(TDFParam::RealList).quantityType("Voltage");
    rules.param("Timeout").type(TDFParam::Real).quantityType("Time");
    rules.param("Window").type(TDFParam::Real).quantityType("Time").bounds(nullptr, valueOf("Timeout"));
    rules.param("Share").type(TDFParam::Real).bounds("0", "1");
    rules.param("Width").type(TDFParam::Real).byDefault("2 [mm]");
    rules.param("Odd").type(TDFParam::Real).quantityType("Charge");
    rules.param("Level").type(TDFParam::Real).quantityType("Voltage").allowed({"5 [bars]"}).anyValueAllowed();
    rules_.setUnitConverter(std::make_unique<Kilovolts>());
  }

  /// All findings of a review about one parameter of the chip.
  std::vector<std::string> reviewed(std::string const& name, std::string const& value) {
    return linesOf(Review(rules_).judge({{"/Chip", {{"Timeout", "500 [ms]"}, {name, value}}}}).list);
  }
  std::vector<Finding> judged(std::string const& name, std::string const& value) {
    return findingsOf<UnitJudge>(rules_, MapModel{{"/Chip", {{name, value}}}});
  }

  PhysicsData rules_;
};

TEST_F(UnitJudgeTest, UnitsThatTheTypeDoesNotListAreAnError) {
  EXPECT_THAT(reviewed("Supply Voltage", "100 [kg]"),
              ElementsAre("error units-not-listed: The parameter \"Supply Voltage\" in the object \"/Chip\" has the "
                          "value \"100 [kg]\", whose units are not among those of its quantity type: [V], [mV]."));
}

TEST_F(UnitJudgeTest, TheRemedyIsTheConvertedValueWhereThereIsOne) {
  auto const findings = judged("Supply Voltage", "0.0033 [kV]");
  EXPECT_THAT(linesOf(findings),
              ElementsAre("error units-not-listed: The parameter \"Supply Voltage\" in the object \"/Chip\" has the "
                          "value \"0.0033 [kV]\", whose units are not among those of its quantity type: [V], [mV]; "
                          "write 3.3 [V]."));
  EXPECT_EQ(findings[0].expected.value, "3.3 [V]");
  EXPECT_THAT(findings[0].expected.units, ElementsAre("V", "mV"));
}

TEST_F(UnitJudgeTest, ANumberOutsideItsBoundsIsFoundAcrossUnits) {
  EXPECT_THAT(reviewed("Supply Voltage", "1e3 [mV]"),
              ElementsAre("error below-lower-bound: The parameter \"Supply Voltage\" in the object \"/Chip\" has the "
                          "value \"1e3 [mV]\", which is below its lower bound 1.8 [V]."));
  EXPECT_THAT(reviewed("Supply Voltage", "3300 [mV]"), IsEmpty());
}

TEST_F(UnitJudgeTest, ANumberWithoutUnitsIsJudgedInTheFirstUnitAndGetsAWarning) {
  EXPECT_THAT(reviewed("Supply Voltage", "100"),
              ElementsAre("error above-upper-bound: The parameter \"Supply Voltage\" in the object \"/Chip\" has the "
                          "value \"100\", which is above its upper bound 3.6 [V].",
                          "warning units-assumed: The parameter \"Supply Voltage\" in the object \"/Chip\" has the "
                          "value \"100\" without units; it is taken as 100 [V]."));
  EXPECT_EQ(judged("Supply Voltage", "3")[0].expected.value, "3 [V]");
}

TEST_F(UnitJudgeTest, ABoundThatIsAParameterIsComparedAcrossUnits) {
  EXPECT_THAT(reviewed("Window", "2 [s]"),
              ElementsAre("error above-upper-bound: The parameter \"Window\" in the object \"/Chip\" has the value "
                          "\"2 [s]\", which is above its upper bound 500 [ms]."));
  EXPECT_THAT(reviewed("Window", "0.5 [s]"), IsEmpty());
}

TEST_F(UnitJudgeTest, UnitsOfANumberThatIsNotAQuantityAreAnError) {
  auto const findings = judged("Share", "5 [m]");
  EXPECT_THAT(linesOf(findings),
              ElementsAre("error units-not-expected: The parameter \"Share\" in the object \"/Chip\" "
                          "has the value \"5 [m]\", but no units are expected."));
  EXPECT_EQ(findings[0].expected.value, "5");
}

TEST_F(UnitJudgeTest, WithoutAQuantityTypeTheUnitsOfTheDefaultAreExpected) {
  EXPECT_THAT(judged("Width", "3 [mm]"), IsEmpty());
  EXPECT_THAT(linesOf(judged("Width", "3 [m]")),
              ElementsAre("error units-not-expected: The parameter \"Width\" in the object \"/Chip\" has the value "
                          "\"3 [m]\", but its bounds and its default are in [mm]."));
}

TEST_F(UnitJudgeTest, OfAListTheFirstItemAtFaultIsReported) {
  EXPECT_THAT(linesOf(judged("Rails", "3.3 [V], 1800 [mV], 5, 12 [A]")),
              ElementsAre("warning units-assumed: The list parameter \"Rails\" in the object \"/Chip\" has as item 3 "
                          "the value \"5\" without units; it is taken as 5 [V]."));
}

TEST_F(UnitJudgeTest, AnAllowedTextIsRightAsItIs) {
  EXPECT_THAT(judged("Level", "5 [bars]"), IsEmpty());
}

TEST_F(UnitJudgeTest, AQuantityTypeThatTheRulesLackSaysNothing) {
  EXPECT_THAT(judged("Odd", "5 [C]"), IsEmpty());
}

TEST_F(UnitJudgeTest, ATextThatIsNoNumberIsLeftToOthers) {
  EXPECT_THAT(judged("Supply Voltage", "high"), IsEmpty());
}

}  // namespace
}  // namespace tarn::session
