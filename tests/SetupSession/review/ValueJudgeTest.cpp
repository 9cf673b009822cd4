#include "review/ValueJudge.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include <tarn/EvalContext.h>

#include "review/ReviewWalk.h"
#include "support/MapModel.h"
#include "support/Rules.h"

namespace tarn::session {
namespace {

using test::MapModel;
using test::Rules;
using test::text;
using test::valueOf;
using test::when;
using testing::IsEmpty;
using testing::SizeIs;

/// The faults of all values in and below `roots`.
std::vector<Finding> faultsOf(PhysicsData const& rules, ModelTDF const& model,
                              std::vector<std::string> const& roots = {"/Case"}) {
  EvalContext evaluation(&model);
  std::vector<Finding> findings;
  ReviewContext context = {rules, model, evaluation, findings};
  std::vector<std::unique_ptr<ReviewJudge>> judges;
  judges.push_back(std::make_unique<ValueJudge>());
  ReviewWalk walk(context, std::move(judges));
  for (std::string const& root : roots) walk.from(root);
  return findings;
}

/// The rest of the sentence after "which ", for one parameter in /Case with this value. Empty when there is no fault.
/// `rule` marks the parameter with its value rule.
std::string faultOf(std::function<void(Rules&)> const& rule, std::string const& value) {
  PhysicsData data;
  rule(Rules(data, "/Case").param("P"));
  std::vector<Finding> const faults = faultsOf(data, MapModel{{"/Case", {{"P", value}}}});
  if (faults.empty()) return {};
  EXPECT_THAT(faults, SizeIs(1));
  std::string const& message = faults.front().message;
  return message.substr(message.find(", which ") + 8);
}

struct Row {
  TDFParam::Type type;
  char const* value;
  char const* fault;
};

class ValueJudgeOfTypes : public testing::TestWithParam<Row> {};

TEST_P(ValueJudgeOfTypes, AreTold) {
  Row const& row = GetParam();
  EXPECT_EQ(faultOf([&row](Rules& rule) { rule.type(row.type); }, row.value), row.fault) << row.value;
}

INSTANTIATE_TEST_SUITE_P(
    Table, ValueJudgeOfTypes,
    testing::Values(
        Row{TDFParam::String, "12 m", ""}, Row{TDFParam::StringList, "a, ,b", ""}, Row{TDFParam::Integer, "12", ""},
        Row{TDFParam::Integer, "-3 [K]", ""}, Row{TDFParam::Integer, "1.5e3", ""}, Row{TDFParam::Integer, "2.0", ""},
        Row{TDFParam::Integer, "1.5", "is not a whole number."}, Row{TDFParam::Integer, "many", "is not a number."},
        Row{TDFParam::Real, "1.5", ""}, Row{TDFParam::Real, "120 [rad s^-1]", ""},
        Row{TDFParam::Real, "1,5", "is not a number."}, Row{TDFParam::Real, "0x1F", "is not a number."},
        Row{TDFParam::Real, "e5", "is not a number."}, Row{TDFParam::Real, "inf", "is not a number."},
        Row{TDFParam::Real, "12 m", "is not a number; units are written in brackets: \"12 [m]\"."},
        Row{TDFParam::Logical, "Yes", ""}, Row{TDFParam::Logical, "0", ""},
        Row{TDFParam::Logical, "2", "is not a logical value such as true or false."},
        Row{TDFParam::IntegerList, "1, 2 ,3", ""}, Row{TDFParam::IntegerList, "1,2.5,3", "is not a whole number."},
        Row{TDFParam::RealList, "1,,3", "is not a number."},
        Row{TDFParam::LogicalList, "true, maybe", "is not a logical value such as true or false."}));

class ValueJudgeOfBounds : public testing::TestWithParam<Row> {};

TEST_P(ValueJudgeOfBounds, AreTold) {
  Row const& row = GetParam();
  EXPECT_EQ(faultOf([&row](Rules& rule) { rule.type(row.type).bounds("0 [m]", "10 [m]"); }, row.value), row.fault)
      << row.value;
}

INSTANTIATE_TEST_SUITE_P(Table, ValueJudgeOfBounds,
                         testing::Values(Row{TDFParam::Real, "5 [m]", ""}, Row{TDFParam::Real, "0 [m]", ""},
                                         Row{TDFParam::Real, "10 [m]", ""},
                                         Row{TDFParam::Real, "-1 [m]", "is below its lower bound 0 [m]."},
                                         Row{TDFParam::Real, "10.5 [m]", "is above its upper bound 10 [m]."},
                                         Row{TDFParam::Integer, "11 [m]", "is above its upper bound 10 [m]."},
                                         Row{TDFParam::RealList, "1 [m], 11 [m]", "is above its upper bound 10 [m]."},
                                         Row{TDFParam::Real, "-1", ""},       // other units: not comparable
                                         Row{TDFParam::Real, "-1 [mm]", ""},  //
                                         Row{TDFParam::String, "-1 [m]", ""}));

TEST(ValueJudge, TellPathNameValueAndASentence) {
  PhysicsData rules;
  Rules(rules, "/Case").child("Domain").object("/Case/Domain").param("Angular Velocity").type(TDFParam::Real);

  auto const faults = faultsOf(rules, MapModel{{"/Case/Domain:rotor", {{"Angular Velocity", "fast"}}}});

  ASSERT_THAT(faults, SizeIs(1));
  EXPECT_EQ(faults[0].path, "/Case/Domain:rotor");
  EXPECT_EQ(faults[0].name, "Angular Velocity");
  EXPECT_EQ(faults[0].value, "fast");
  EXPECT_EQ(
      faults[0].message,
      "The parameter \"Angular Velocity\" in the object \"/Case/Domain:rotor\" has the value \"fast\", which is not "
      "a number.");
}

TEST(ValueJudge, OfAListTellTheFirstItemAtFaultAndTheWholeValue) {
  PhysicsData rules;
  Rules(rules, "/Case").param("Times").type(TDFParam::RealList);

  auto const faults = faultsOf(rules, MapModel{{"/Case", {{"Times", "0, soon, later"}}}});

  ASSERT_THAT(faults, SizeIs(1));
  EXPECT_EQ(faults[0].value, "0, soon, later");
  EXPECT_EQ(faults[0].message,
            "The list parameter \"Times\" in the object \"/Case\" has as item 2 the value \"soon\", which is not a "
            "number.");
}

TEST(ValueJudge, ShowOfALongValueTheBeginning) {
  std::string const value(99, 'x');
  PhysicsData rules;
  Rules(rules, "/Case").param("P").type(TDFParam::Real);

  auto const faults = faultsOf(rules, MapModel{{"/Case", {{"P", value + "\u00e9" + value}}}});

  ASSERT_THAT(faults, SizeIs(1));
  EXPECT_EQ(faults[0].value, value + "\u00e9" + value);
  EXPECT_EQ(faults[0].message,
            "The parameter \"P\" in the object \"/Case\" has the value \"" + value + "...\", which is not a number.");
}

TEST(ValueJudge, ATextAmongTheAllowedValuesIsOfTheRightType) {
  auto const automaticOrNumber = [](Rules& rule) { rule.type(TDFParam::Real).allowed({"automatic", "1", "2"}); };
  EXPECT_EQ(faultOf(automaticOrNumber, "automatic"), "");
  EXPECT_EQ(faultOf(automaticOrNumber, "manual"), "is not a number.");
  EXPECT_EQ(faultOf([](Rules& rule) { rule.type(TDFParam::Integer).allowed({"1.5"}); }, "1.5"), "");
  EXPECT_EQ(faultOf([](Rules& rule) { rule.type(TDFParam::Logical).allowed({"ask"}); }, "ask"), "");
  auto const startToEnd = [](Rules& rule) { rule.type(TDFParam::RealList).allowed({"start", "end"}); };
  EXPECT_EQ(faultOf(startToEnd, "start, 2, end"), "");
}

TEST(ValueJudge, ANumberAmongTheAllowedValuesKeepsItsBounds) {
  auto const twentyUpToTen = [](Rules& rule) { rule.type(TDFParam::Real).allowed({"20"}).bounds(nullptr, text("10")); };
  EXPECT_EQ(faultOf(twentyUpToTen, "20"), "is above its upper bound 10.");
}

TEST(ValueJudge, AreToldOfParametersThatAreNotAvailableOrRelaxed) {
  PhysicsData rules;
  Rules(rules, "/Case")
      .param("Speed")
      .type(TDFParam::Real)
      .allowed({"automatic"})
      .availableWhen(when("Motion", "Rotating"))
      .param("Width")
      .type(TDFParam::Real)
      .relaxed();
  MapModel model{{"/Case", {{"Speed", "fast"}, {"Width", "wide"}}}};
  EXPECT_THAT(faultsOf(rules, model), SizeIs(2));

  // The search evaluates the allowed values, although the walk has not done so.
  model.set("/Case", "Speed", "automatic");
  EXPECT_THAT(faultsOf(rules, model), SizeIs(1));
}

TEST(ValueJudge, AreNotSoughtInObjectsThatAreNotAvailable) {
  PhysicsData rules;
  Rules(rules, "/Case").child("Rotation").singleton().availableWhen(when("Motion", "Rotating"));
  Rules(rules, "/Case/Rotation").param("Speed").type(TDFParam::Real);
  MapModel model{{"/Case/Rotation", {{"Speed", "fast"}}}};

  EXPECT_THAT(faultsOf(rules, model), IsEmpty());
  model.set("/Case", "Motion", "Rotating");
  EXPECT_THAT(faultsOf(rules, model), SizeIs(1));
}

TEST(ValueJudge, BoundsThatReadTheModelAreThoseOfNow) {
  PhysicsData rules;
  Rules(rules, "/Case").param("Speed").type(TDFParam::Real).bounds(nullptr, valueOf("Maximum Speed"));
  MapModel model{{"/Case", {{"Speed", "7"}}}};

  EXPECT_THAT(faultsOf(rules, model), IsEmpty()) << "a bound that is not a number is ignored";
  model.set("/Case", "Maximum Speed", "5");
  EXPECT_THAT(faultsOf(rules, model), SizeIs(1));
}

TEST(ValueJudge, AQuantityIsComparedWithItsBoundsInTheFirstUnit) {
  auto const length = [](Rules& rule) {
    rule.quantity("Length", QuantityType({{"m", true, 1, 0}, {"mm", true, 0.001, 0}, {"in", true, 0.0254, 0}}));
    rule.type(TDFParam::Real).quantityType("Length").bounds("25.4 [mm]", "1 [m]");
  };
  EXPECT_EQ(faultOf(length, "1 [mm]"), "is below its lower bound 25.4 [mm].");
  EXPECT_EQ(faultOf(length, "1 [in]"), "") << "equal up to the rounding of the conversion";
  EXPECT_EQ(faultOf(length, "1001 [mm]"), "is above its upper bound 1 [m].");
  EXPECT_EQ(faultOf(length, "2"), "is above its upper bound 1 [m].") << "without units in the first one";
}

TEST(ValueJudge, ABoundWithoutUnitsCountsInTheFirstUnit) {
  auto const length = [](Rules& rule) {
    rule.quantity("Length", QuantityType({{"m", true, 1, 0}, {"mm", true, 0.001, 0}}));
    rule.type(TDFParam::Real).quantityType("Length").bounds(nullptr, text("1"));
  };
  EXPECT_EQ(faultOf(length, "500 [mm]"), "");
  EXPECT_EQ(faultOf(length, "1500 [mm]"), "is above its upper bound 1.");
}

TEST(ValueJudge, UnitsWithoutAConversionAreComparedOnlyWithThemselves) {
  auto const level = [](Rules& rule) {
    rule.quantity("Level", std::vector<std::string>{"bar", "jar"});
    rule.type(TDFParam::Real).quantityType("Level").bounds(nullptr, text("2 [jar]"));
  };
  EXPECT_EQ(faultOf(level, "3 [jar]"), "is above its upper bound 2 [jar].");
  EXPECT_EQ(faultOf(level, "3 [bar]"), "");
}

TEST(ValueJudge, AnExcludedBoundIsOutside) {
  auto const open = [](Rules& rule) { rule.type(TDFParam::Real).bounds("0", "1").boundsExcluded(); };
  EXPECT_EQ(faultOf(open, "0"), "is equal to its lower bound 0, but must be above it.");
  EXPECT_EQ(faultOf(open, "0.5"), "");
  EXPECT_EQ(faultOf(open, "1.0"), "is equal to its upper bound 1, but must be below it.");
}

TEST(ValueJudge, EachRootIsWalked) {
  PhysicsData rules;
  Rules(rules, "/Case").param("Speed").type(TDFParam::Real);
  MapModel const model{{"/Case:a", {{"Speed", "fast"}}}, {"/Case:b", {{"Speed", "slow"}}}};

  EXPECT_THAT(faultsOf(rules, model, {"/Case:a", "/Case:b"}), SizeIs(2));
  EXPECT_THAT(faultsOf(rules, model, {"/Case:b"}), SizeIs(1));
  EXPECT_THAT(faultsOf(rules, model, {}), IsEmpty());
}

TEST(ValueJudge, TheRulesOfTheEmptyTypePathAreThoseOfTheRootOfTheModel) {
  PhysicsData rules;
  Rules(rules, "").param("Version").type(TDFParam::Integer);
  Rules(rules, "Case").param("Speed").type(TDFParam::Real);
  MapModel const model{{"", {{"Version", "first"}}}, {"/Case", {{"Speed", "fast"}}}};

  std::vector<Finding> const faults = faultsOf(rules, model, {"", "/Case"});
  ASSERT_THAT(faults, SizeIs(1)) << "rules under \"Case\", without a \"/\", are never applied";
  EXPECT_EQ(faults[0].path, "");
  EXPECT_EQ(faults[0].name, "Version");
}

}  // namespace
}  // namespace tarn::session
