#include <tarn/session/ValueFaults.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include <tarn/DynamicTDF.h>
#include <tarn/EvalCache.h>
#include <tarn/EvalContext.h>

#include "SetupSession/FlowRules.h"

namespace tarn::session {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

// The rest of the sentence behind 'which ', for one parameter "P" in /Case with the given rule and value; "" when there
// is no fault.
std::string faultOf(ParamValueDef def, std::string const& value) {
  PhysicsData rules;
  EXPECT_TRUE(rules.addObject("/Case").addParam(parameter("P"), std::move(def)));
  DynamicTDF model(false);
  model.setParameter("/Case", "P", value);
  EvalContext context(&model);
  std::vector<ValueFault> const faults = ValueFaults(rules).find({"/Case"}, context);
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

class ValueFaultsOfTypes : public testing::TestWithParam<Row> {};

TEST_P(ValueFaultsOfTypes, AreTold) {
  EXPECT_EQ(faultOf(valueOfType(GetParam().type), GetParam().value), GetParam().fault) << GetParam().value;
}

INSTANTIATE_TEST_SUITE_P(
    Table, ValueFaultsOfTypes,
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

class ValueFaultsOfBounds : public testing::TestWithParam<Row> {};

TEST_P(ValueFaultsOfBounds, AreTold) {
  EXPECT_EQ(faultOf(between(GetParam().type, "0 [m]", "10 [m]"), GetParam().value), GetParam().fault)
      << GetParam().value;
}

INSTANTIATE_TEST_SUITE_P(Table, ValueFaultsOfBounds,
                         testing::Values(Row{TDFParam::Real, "5 [m]", ""}, Row{TDFParam::Real, "0 [m]", ""},
                                         Row{TDFParam::Real, "10 [m]", ""},
                                         Row{TDFParam::Real, "-1 [m]", "is below its lower bound 0 [m]."},
                                         Row{TDFParam::Real, "10.5 [m]", "is above its upper bound 10 [m]."},
                                         Row{TDFParam::Integer, "11 [m]", "is above its upper bound 10 [m]."},
                                         Row{TDFParam::RealList, "1 [m], 11 [m]", "is above its upper bound 10 [m]."},
                                         Row{TDFParam::Real, "-1", ""},       // other units: not comparable
                                         Row{TDFParam::Real, "-1 [mm]", ""},  //
                                         Row{TDFParam::String, "-1 [m]", ""}));

TEST(ValueFaults, TellPathNameValueAndASentence) {
  PhysicsData rules;
  EXPECT_TRUE(rules.addObject("/Case").addChild(child("Domain", false)));
  EXPECT_TRUE(rules.addObject("/Case/Domain").addParam(parameter("Angular Velocity"), valueOfType(TDFParam::Real)));
  DynamicTDF model(false);
  model.setParameter("/Case/Domain:rotor", "Angular Velocity", "fast");
  EvalContext context(&model);

  std::vector<ValueFault> const faults = ValueFaults(rules).find({"/Case"}, context);

  ASSERT_THAT(faults, SizeIs(1));
  EXPECT_EQ(faults[0].path, "/Case/Domain:rotor");
  EXPECT_EQ(faults[0].name, "Angular Velocity");
  EXPECT_EQ(faults[0].value, "fast");
  EXPECT_EQ(
      faults[0].message,
      "The parameter \"Angular Velocity\" in the object \"/Case/Domain:rotor\" has the value \"fast\", which is not "
      "a number.");
}

TEST(ValueFaults, OfAListTellTheFirstItemAtFaultAndTheWholeValue) {
  PhysicsData rules;
  EXPECT_TRUE(rules.addObject("/Case").addParam(parameter("Times"), valueOfType(TDFParam::RealList)));
  DynamicTDF model(false);
  model.setParameter("/Case", "Times", "0, soon, later");
  EvalContext context(&model);

  std::vector<ValueFault> const faults = ValueFaults(rules).find({"/Case"}, context);

  ASSERT_THAT(faults, SizeIs(1));
  EXPECT_EQ(faults[0].value, "0, soon, later");
  EXPECT_EQ(faults[0].message,
            "The list parameter \"Times\" in the object \"/Case\" has as item 2 the value \"soon\", which is not a "
            "number.");
}

TEST(ValueFaults, ShowOfALongValueTheBeginning) {
  std::string const value(99, 'x');
  PhysicsData rules;
  EXPECT_TRUE(rules.addObject("/Case").addParam(parameter("P"), valueOfType(TDFParam::Real)));
  DynamicTDF model(false);
  model.setParameter("/Case", "P", value + "\u00e9" + value);
  EvalContext context(&model);

  std::vector<ValueFault> const faults = ValueFaults(rules).find({"/Case"}, context);

  ASSERT_THAT(faults, SizeIs(1));
  EXPECT_EQ(faults[0].value, value + "\u00e9" + value);
  EXPECT_EQ(faults[0].message,
            "The parameter \"P\" in the object \"/Case\" has the value \"" + value + "...\", which is not a number.");
}

TEST(ValueFaults, ATextAmongTheAllowedValuesIsOfTheRightType) {
  EXPECT_EQ(faultOf(oneOf(TDFParam::Real, {"automatic", "1", "2"}), "automatic"), "");
  EXPECT_EQ(faultOf(oneOf(TDFParam::Real, {"automatic", "1", "2"}), "manual"), "is not a number.");
  EXPECT_EQ(faultOf(oneOf(TDFParam::Integer, {"1.5"}), "1.5"), "");
  EXPECT_EQ(faultOf(oneOf(TDFParam::Logical, {"ask"}), "ask"), "");
  EXPECT_EQ(faultOf(oneOf(TDFParam::RealList, {"start", "end"}), "start, 2, end"), "");
}

TEST(ValueFaults, ANumberAmongTheAllowedValuesKeepsItsBounds) {
  ParamValueDef def = oneOf(TDFParam::Real, {"20"});
  def.upperBound = std::make_unique<FixedText>("10");
  EXPECT_EQ(faultOf(std::move(def), "20"), "is above its upper bound 10.");
}

TEST(ValueFaults, AreToldOfParametersThatAreNotAvailableOrRelaxed) {
  PhysicsData rules;
  ObjDependDef& flowCase = rules.addObject("/Case");
  ParamAvail unavailable = parameter("Speed");
  unavailable.available = lambda::when("Motion", "Rotating");
  EXPECT_TRUE(flowCase.addParam(std::move(unavailable), oneOf(TDFParam::Real, {"automatic"})));
  ParamAvail relaxed = parameter("Width");
  relaxed.validationRelaxed = true;
  EXPECT_TRUE(flowCase.addParam(std::move(relaxed), valueOfType(TDFParam::Real)));
  DynamicTDF model(false);
  model.setParameter("/Case", "Speed", "fast");
  model.setParameter("/Case", "Width", "wide");
  EvalContext context(&model);

  EXPECT_THAT(ValueFaults(rules).find({"/Case"}, context), SizeIs(2));

  // The search evaluates the allowed values, although the walk has not done so.
  model.setParameter("/Case", "Speed", "automatic");
  EXPECT_THAT(ValueFaults(rules).find({"/Case"}, context), SizeIs(1));
}

TEST(ValueFaults, AreNotSoughtInObjectsThatAreNotAvailable) {
  PhysicsData rules;
  ChildAvail rotation = child("Rotation", true);
  rotation.available = lambda::when("Motion", "Rotating");
  EXPECT_TRUE(rules.addObject("/Case").addChild(std::move(rotation)));
  EXPECT_TRUE(rules.addObject("/Case/Rotation").addParam(parameter("Speed"), valueOfType(TDFParam::Real)));
  DynamicTDF model(false);
  model.setParameter("/Case/Rotation", "Speed", "fast");
  EvalContext context(&model);

  EXPECT_THAT(ValueFaults(rules).find({"/Case"}, context), IsEmpty());
  model.setParameter("/Case", "Motion", "Rotating");
  EXPECT_THAT(ValueFaults(rules).find({"/Case"}, context), SizeIs(1));
}

TEST(ValueFaults, BoundsThatReadTheModelAreThoseOfNow) {
  PhysicsData rules;
  ParamValueDef def = valueOfType(TDFParam::Real);
  def.upperBound = valueOf("/Case", "Maximum Speed");
  EXPECT_TRUE(rules.addObject("/Case").addParam(parameter("Speed"), std::move(def)));
  DynamicTDF model(false);
  model.setParameter("/Case", "Speed", "7");
  EvalContext context(&model);

  EXPECT_THAT(ValueFaults(rules).find({"/Case"}, context), IsEmpty()) << "a bound that is not a number is ignored";
  model.setParameter("/Case", "Maximum Speed", "5");
  EXPECT_THAT(ValueFaults(rules).find({"/Case"}, context), SizeIs(1));
}

TEST(ValueFaults, EachRootIsWalked) {
  PhysicsData rules;
  EXPECT_TRUE(rules.addObject("/Case").addParam(parameter("Speed"), valueOfType(TDFParam::Real)));
  DynamicTDF model(false);
  model.setParameter("/Case:a", "Speed", "fast");
  model.setParameter("/Case:b", "Speed", "slow");
  EvalContext context(&model);
  ValueFaults analysis(rules);

  EXPECT_THAT(analysis.find({"/Case:a", "/Case:b"}, context), SizeIs(2));
  EXPECT_THAT(analysis.find({"/Case:b"}, context), SizeIs(1));
  EXPECT_THAT(analysis.find({}, context), IsEmpty());
}

TEST(ValueFaults, TheRulesOfTheEmptyTypePathAreThoseOfTheRootOfTheModel) {
  PhysicsData rules;
  EXPECT_TRUE(rules.addObject("").addParam(parameter("Version"), valueOfType(TDFParam::Integer)));
  EXPECT_TRUE(rules.addObject("Case").addParam(parameter("Speed"), valueOfType(TDFParam::Real)));
  DynamicTDF model(false);
  model.setParameter("", "Version", "first");
  model.setParameter("/Case", "Speed", "fast");
  EvalContext context(&model);

  std::vector<ValueFault> const faults = ValueFaults(rules).find({"", "/Case"}, context);
  ASSERT_THAT(faults, SizeIs(1)) << "rules under \"Case\", without a \"/\", are never applied";
  EXPECT_EQ(faults[0].path, "");
  EXPECT_EQ(faults[0].name, "Version");
}

}  // namespace
}  // namespace tarn::session
