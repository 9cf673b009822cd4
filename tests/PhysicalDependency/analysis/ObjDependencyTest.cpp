// The rule cursor: both walks, its answers on an entry and without one, and the time of each evaluation.

#include <tarn/ObjDependency.h>

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <tarn/Error.h>
#include <tarn/EvalContext.h>
#include <tarn/PhysicsData.h>

#include "support/AllowedValues.h"
#include "support/MapModel.h"
#include "support/Rules.h"

namespace tarn {
namespace {

using test::allowing;
using test::countingText;
using test::list;
using test::listOf;
using test::MapModel;
using test::never;
using test::Rules;
using test::text;
using test::when;
using Strings = std::vector<std::string>;
using Bounds = std::pair<std::string, std::string>;
using Override = std::pair<bool, std::string>;

/// A cursor on one object of a model that can be changed, under rules that a test fills in.
class ObjDependencyTest : public testing::Test {
 protected:
  ObjDependency rulesOf(std::string const& objPath) { return {objPath, &context_, &data_}; }
  ObjDependency rotor() { return rulesOf("/Case/Domain:rotor"); }

  ObjDependency rotorOnFirstParam() {
    ObjDependency rules = rotor();
    rules.firstParam();
    return rules;
  }
  ObjDependency rotorOnFirstChild() {
    ObjDependency rules = rotor();
    rules.firstChild();
    return rules;
  }

  /// The parameter entries in order. Available entries have a "+" after the name.
  static Strings walkParams(ObjDependency& rules) {
    Strings seen;
    for (rules.firstParam(); !rules.isDoneParam(); rules.nextParam()) {
      ParamAllowedValues allowed;
      seen.push_back(rules.getParamName() + (rules.isParamAvailable(allowed) ? "+" : ""));
    }
    return seen;
  }
  static Strings walkChildren(ObjDependency& rules) {
    Strings seen;
    for (rules.firstChild(); !rules.isDoneChild(); rules.nextChild()) {
      ObjDependency::AllowedNameData names;
      seen.push_back(rules.getChildType() + (rules.isChildAvailable(names) ? "+" : ""));
    }
    return seen;
  }

  PhysicsData data_;
  MapModel model_{{"/Case/Domain:rotor", {{"Motion", "Rotating"}}}};
  EvalContext context_{&model_};
};

std::string textOfFailure(std::function<void()> const& question) {
  try {
    question();
  } catch (std::runtime_error const& error) {
    return error.what();
  }
  return "no failure";
}

// Finding the rules.

TEST_F(ObjDependencyTest, RulesAreFoundByThePathOfTypesWithoutNames) {
  data_.addObject("/Case/Domain/Boundary");
  EXPECT_TRUE(rulesOf("/Case/Domain:rotor/Boundary:inlet").isValid());
  EXPECT_TRUE(rulesOf("/Case:pump/Domain/Boundary").isValid());
  EXPECT_FALSE(rulesOf("/Case/Domain:rotor").isValid());
  EXPECT_FALSE(rulesOf("/Domain/Boundary").isValid());
}

TEST_F(ObjDependencyTest, TheRootHasTheEmptyTypePath) {
  Rules(data_, "").param("Title");
  EXPECT_TRUE(rulesOf("").isValid());
  ObjDependency rules = rulesOf("");
  EXPECT_EQ(walkParams(rules), Strings{"Title+"});
}

TEST_F(ObjDependencyTest, AnObjectThatTheModelLacksHasRulesAllTheSame) {
  data_.addObject("/Case/Domain");
  EXPECT_TRUE(rulesOf("/Case/Domain:no such").isValid());
}

TEST_F(ObjDependencyTest, ATextThatIsNoPathIsRefused) {
  EXPECT_THROW(rulesOf("Case"), Error);
  EXPECT_THROW(rulesOf("/Case//Domain"), Error);
}

TEST_F(ObjDependencyTest, OfAnObjectWithoutRulesBothWalksAreDoneAtOnce) {
  ObjDependency rules = rotor();
  EXPECT_EQ(walkParams(rules), Strings{});
  EXPECT_EQ(walkChildren(rules), Strings{});
  rules.nextParam();
  rules.nextChild();
  EXPECT_TRUE(rules.isDoneParam());
  EXPECT_TRUE(rules.isDoneChild());
}

// The example of the header: what is available in the object, as the analyser finds it.
Strings availableIn(std::string const& objPath, ModelTDF const& model, EvalContext& context, PhysicsData const& data) {
  Strings available;
  ObjDependency rules(objPath, &context, &data);
  for (rules.firstParam(); !rules.isDoneParam(); rules.nextParam()) {
    std::string const& name = rules.getParamName();
    ParamAllowedValues allowed;
    bool const isAvailable = rules.isParamAvailable(allowed);
    if (isAvailable) available.push_back(name);
    if (isAvailable && rules.isParamContextRule() && model.hasParameter(objPath, name)) {
      rules.setContextRuleValue(model.getParameterValue(objPath, name));
    }
  }
  for (rules.firstChild(); !rules.isDoneChild(); rules.nextChild()) {
    ObjDependency::AllowedNameData names;
    if (rules.isChildAvailable(names)) available.push_back(rules.getChildType());
  }
  return available;
}

TEST_F(ObjDependencyTest, AContextRuleParameterThatTheModelLacksLeavesTheValueBeforeItInForce) {
  Rules(data_, "/Case/Domain")
      .param("Motion")
      .contextRule()
      .param("Frame")
      .contextRule()
      .param("Speed")
      .inContexts({"Rotating"})
      .child("Bearing")
      .inContexts({"Rotating"});
  EXPECT_EQ(availableIn("/Case/Domain:rotor", model_, context_, data_),
            (Strings{"Motion", "Frame", "Speed", "Bearing"}));
}

// The walks.

TEST_F(ObjDependencyTest, BothWalksReadAsDoneBeforeTheyBegin) {
  Rules(data_, "/Case/Domain").param("Motion").child("Boundary");
  EXPECT_TRUE(rotor().isDoneParam());
  EXPECT_TRUE(rotor().isDoneChild());
}

TEST_F(ObjDependencyTest, AnObjectWithoutEntriesIsDoneAtTheFirst) {
  data_.addObject("/Case/Domain");
  EXPECT_TRUE(rotorOnFirstParam().isDoneParam());
  EXPECT_TRUE(rotorOnFirstChild().isDoneChild());
}

TEST_F(ObjDependencyTest, EntriesComeInTheOrderOfTheRules) {
  Rules(data_, "/Case/Domain").param("Motion").param("Axis").param("Buoyancy").child("Wall").child("Boundary");
  ObjDependency rules = rotor();
  EXPECT_EQ(walkParams(rules), (Strings{"Motion+", "Axis+", "Buoyancy+"}));
  EXPECT_EQ(walkChildren(rules), (Strings{"Wall+", "Boundary+"}));
}

TEST_F(ObjDependencyTest, AWalkCanBeStartedAgainFromItsMiddle) {
  Rules(data_, "/Case/Domain").param("Motion").param("Axis").child("Wall").child("Boundary");
  ObjDependency rules = rotorOnFirstParam();
  rules.nextParam();
  rules.firstChild();
  rules.nextChild();
  EXPECT_EQ(walkParams(rules), (Strings{"Motion+", "Axis+"}));
  EXPECT_EQ(walkChildren(rules), (Strings{"Wall+", "Boundary+"}));
}

TEST_F(ObjDependencyTest, TheWalksDoNotMoveEachOther) {
  Rules(data_, "/Case/Domain").param("Motion").param("Axis").child("Wall").child("Boundary");
  ObjDependency rules = rotorOnFirstParam();
  rules.firstChild();
  rules.nextChild();
  EXPECT_EQ(rules.getParamName(), "Motion");
  rules.nextParam();
  EXPECT_EQ(rules.getChildType(), "Boundary");
}

TEST_F(ObjDependencyTest, ALimitedWalkStopsAtTheNamedEntriesOnceEachInTheOrderOfTheRules) {
  Rules(data_, "/Case/Domain").param("Motion").param("Axis").required().param("Buoyancy").param("Speed");
  ObjDependency rules = rotor();
  rules.limitParams({"Speed", "Colour", "Motion", "Speed"}, false);
  EXPECT_EQ(walkParams(rules), (Strings{"Motion+", "Speed+"}));
  EXPECT_EQ(rules.numParams(), 4U);
}

TEST_F(ObjDependencyTest, ALimitedWalkStopsAtRequiredEntriesIfSoWanted) {
  Rules(data_, "/Case/Domain").param("Motion").required().param("Axis").param("Buoyancy").required().param("Speed");
  ObjDependency rules = rotor();
  rules.limitParams({"Speed", "Motion"}, true);
  EXPECT_EQ(walkParams(rules), (Strings{"Motion+", "Buoyancy+", "Speed+"}));
  rules.limitParams({}, false);
  EXPECT_EQ(walkParams(rules), Strings());
}

TEST_F(ObjDependencyTest, InALimitedWalkTheContextRuleSelectsAsEver) {
  Rules(data_, "/Case/Domain")
      .param("Motion")
      .contextRule()
      .param("Axis")
      .param("Speed")
      .inContexts({"Rotating"})
      .param("Depth")
      .inContexts({"Stationary"});
  ObjDependency cursor = rotor();
  cursor.limitParams({"Depth", "Speed", "Motion"}, false);
  cursor.firstParam();
  cursor.setContextRuleValue("Rotating");
  Strings seen;
  for (cursor.nextParam(); !cursor.isDoneParam(); cursor.nextParam()) {
    ParamAllowedValues allowed;
    seen.push_back(cursor.getParamName() + (cursor.isParamAvailable(allowed) ? "+" : ""));
  }
  EXPECT_EQ(seen, (Strings{"Speed+", "Depth"}));
}

TEST_F(ObjDependencyTest, ALimitOnAnObjectWithoutRulesChangesNothing) {
  ObjDependency rules = rotor();
  rules.limitParams({"Motion"}, true);
  EXPECT_EQ(walkParams(rules), Strings());
  EXPECT_EQ(rules.numParams(), 0U);
}

TEST_F(ObjDependencyTest, GoingOnBehindTheEndStaysThere) {
  Rules(data_, "/Case/Domain").param("Motion").child("Wall");
  ObjDependency rules = rotorOnFirstParam();
  rules.firstChild();
  for (int i = 0; i < 3; ++i) {
    rules.nextParam();
    rules.nextChild();
    EXPECT_TRUE(rules.isDoneParam());
    EXPECT_TRUE(rules.isDoneChild());
  }
}

// The context rule value.

class ObjDependencyContextTest : public ObjDependencyTest {
 protected:
  ObjDependencyContextTest() {
    Rules rules(data_);
    rules.object("/Case/Domain");
    rules.param("Motion").contextRule();
    rules.param("Speed").inContexts({"Rotating"});
    rules.param("Frame").inContexts({"", "Stationary"});
    rules.param("Kind");
    rules.child("Axis").inContexts({"Rotating"});
    rules.child("Anchor").inContexts({"", "Stationary"});
  }
};

TEST_F(ObjDependencyContextTest, WithoutAValueTheEntriesOfTheEmptyContextAreLive) {
  ObjDependency rules = rotor();
  EXPECT_EQ(walkParams(rules), (Strings{"Motion+", "Speed", "Frame+", "Kind+"}));
  EXPECT_EQ(walkChildren(rules), (Strings{"Axis", "Anchor+"}));
}

TEST_F(ObjDependencyContextTest, TheValueSelectsTheParametersBehindItAndTheChildren) {
  ObjDependency rules = rotorOnFirstParam();
  rules.setContextRuleValue("Rotating");
  ParamAllowedValues allowed;
  rules.nextParam();
  EXPECT_TRUE(rules.isParamAvailable(allowed));
  rules.nextParam();
  EXPECT_FALSE(rules.isParamAvailable(allowed));
  EXPECT_EQ(walkChildren(rules), (Strings{"Axis+", "Anchor"}));
}

TEST_F(ObjDependencyContextTest, TheValueDoesNotReachTheEntryThatTheCursorStandsOn) {
  ObjDependency rules = rotorOnFirstParam();
  rules.nextParam();
  rules.setContextRuleValue("Rotating");
  ParamAllowedValues allowed;
  EXPECT_EQ(rules.getParamName(), "Speed");
  EXPECT_FALSE(rules.isParamAvailable(allowed));
}

TEST_F(ObjDependencyContextTest, AValueGivenBehindTheEndIsIgnored) {
  ObjDependency rules = rotor();
  walkParams(rules);
  rules.setContextRuleValue("Rotating");
  EXPECT_EQ(walkChildren(rules), (Strings{"Axis", "Anchor+"}));
}

TEST_F(ObjDependencyContextTest, AValueGivenBeforeTheWalkIsIgnored) {
  ObjDependency rules = rotor();
  rules.setContextRuleValue("Rotating");
  EXPECT_EQ(walkChildren(rules), (Strings{"Axis", "Anchor+"}));
}

TEST_F(ObjDependencyContextTest, StartingTheParametersAgainForgetsTheValue) {
  ObjDependency rules = rotorOnFirstParam();
  rules.setContextRuleValue("Rotating");
  EXPECT_EQ(walkParams(rules), (Strings{"Motion+", "Speed", "Frame+", "Kind+"}));
  EXPECT_EQ(walkChildren(rules), (Strings{"Axis", "Anchor+"}));
}

TEST_F(ObjDependencyContextTest, StartingTheChildrenAgainKeepsTheValue) {
  ObjDependency rules = rotorOnFirstParam();
  rules.setContextRuleValue("Rotating");
  EXPECT_EQ(walkChildren(rules), (Strings{"Axis+", "Anchor"}));
  EXPECT_EQ(walkChildren(rules), (Strings{"Axis+", "Anchor"}));
}

TEST_F(ObjDependencyContextTest, AChildWalkThatHasBegunKeepsTheValueItBeganWith) {
  ObjDependency rules = rotorOnFirstParam();
  rules.firstChild();
  rules.setContextRuleValue("Rotating");
  rules.nextChild();
  ObjDependency::AllowedNameData names;
  EXPECT_EQ(rules.getChildType(), "Anchor");
  EXPECT_TRUE(rules.isChildAvailable(names));
}

TEST_F(ObjDependencyContextTest, AnEntryThatIsNotLiveAnswersEverythingButIsUnavailable) {
  PhysicsData data;
  bool asked = false;
  Rules(data, "/Case/Domain")
      .param("Speed")
      .required()
      .relaxed()
      .type(TDFParam::Real)
      .byDefault("100")
      .inContexts({"Rotating"})
      .availableWhen(when([&](TDFContext const&, ModelTDF const&) { return asked = true; }));
  Rules(data, "/Case/Domain").child("Axis").required().inContexts({"Rotating"});
  ObjDependency dep("/Case/Domain:rotor", &context_, &data);
  dep.firstParam();
  dep.firstChild();

  ParamAllowedValues allowed;
  EXPECT_FALSE(dep.isParamAvailable(allowed));
  EXPECT_FALSE(asked);
  EXPECT_EQ(dep.getParamType(), TDFParam::Real);
  EXPECT_TRUE(dep.isParamRequired());
  EXPECT_TRUE(dep.hasParamValidationRelaxed());
  EXPECT_EQ(dep.getParamDefault(), "100");
  ObjDependency::AllowedNameData names;
  EXPECT_FALSE(dep.isChildAvailable(names));
  EXPECT_TRUE(dep.isChildRequired());
}

// Marks.

TEST_F(ObjDependencyTest, AParameterWithoutMarksHasNone) {
  Rules(data_, "/Case/Domain").param("Motion");
  ObjDependency const rules = rotorOnFirstParam();
  EXPECT_EQ(rules.getParamType(), TDFParam::String);
  EXPECT_FALSE(rules.isParamRequired());
  EXPECT_FALSE(rules.hasParamValidationRelaxed());
  EXPECT_FALSE(rules.isParamContextRule());
  EXPECT_FALSE(rules.isCompleteListRequired());
  EXPECT_FALSE(rules.hasParamDynamicBounds());
  EXPECT_FALSE(rules.hasParamDefault());
  EXPECT_FALSE(rules.hasParamValueOverride());
}

TEST_F(ObjDependencyTest, EachMarkOfAParameterIsToldByItsOwnQuestion) {
  Rules(data_, "/Case/Domain").param("Required").required();
  Rules(data_, "/Case/Domain").param("Relaxed").relaxed();
  Rules(data_, "/Case/Domain").param("Context").contextRule();
  Rules(data_, "/Case/Domain").param("Complete").completeListRequired();
  Rules(data_, "/Case/Domain")
      .param("Bounded")
      .type(TDFParam::Real)
      .bounds(text("0"), text([](auto const&, auto const&) { return "1"; }));
  Rules(data_, "/Case/Domain").param("Fixed").type(TDFParam::Real).bounds("0", "1");
  Rules(data_, "/Case/Domain").param("Default").byDefault("Water");
  Rules(data_, "/Case/Domain").param("Override").overriddenWhen(never(), "Water");
  Rules(data_, "/Case/Domain").param("Last");
  ObjDependency dep = rotor();
  Strings seen;
  for (dep.firstParam(); !dep.isDoneParam(); dep.nextParam()) {
    seen.push_back(dep.getParamName() + ':' + (dep.isParamRequired() ? " required" : "") +
                   (dep.hasParamValidationRelaxed() ? " relaxed" : "") + (dep.isParamContextRule() ? " context" : "") +
                   (dep.isCompleteListRequired() ? " complete" : "") + (dep.hasParamDynamicBounds() ? " dynamic" : "") +
                   (dep.hasParamDefault() ? " default" : "") + (dep.hasParamValueOverride() ? " override" : ""));
  }
  EXPECT_EQ(seen, (Strings{"Required: required", "Relaxed: relaxed", "Context: context", "Complete: complete",
                           "Bounded: dynamic", "Fixed:", "Default: default", "Override: override", "Last:"}));
}

TEST_F(ObjDependencyTest, EachMarkOfAChildIsToldByItsOwnQuestion) {
  Rules(data_, "/Case/Domain").child("Required").required();
  Rules(data_, "/Case/Domain").child("Singleton").singleton();
  Rules(data_, "/Case/Domain").child("Coupled").coupled();
  Rules(data_, "/Case/Domain").child("Relaxed").relaxed();
  Rules(data_, "/Case/Domain").child("Named").allowedNames({"inlet"});
  Rules(data_, "/Case/Domain").child("Default Names").defaultNames({"inlet"});
  ObjDependency dep = rotor();
  Strings seen;
  for (dep.firstChild(); !dep.isDoneChild(); dep.nextChild()) {
    seen.push_back(dep.getChildType() + ':' + (dep.isChildRequired() ? " required" : "") +
                   (dep.isChildSingleton() ? " singleton" : "") + (dep.isChildCoupled() ? " coupled" : "") +
                   (dep.hasChildValidationRelaxed() ? " relaxed" : ""));
  }
  EXPECT_EQ(seen, (Strings{"Required: required", "Singleton: singleton", "Coupled: coupled", "Relaxed: relaxed",
                           "Named: coupled", "Default Names:"}));
}

// Availability of parameters.

TEST_F(ObjDependencyTest, AConditionIsEvaluatedAtTheObjectInTheModelAsItStands) {
  Rules(data_, "/Case/Domain").param("Speed").availableWhen(when("Motion", "Rotating"));
  ObjDependency const rules = rotorOnFirstParam();
  ParamAllowedValues allowed;
  EXPECT_TRUE(rules.isParamAvailable(allowed));
  model_.set("/Case/Domain:rotor", "Motion", "Stationary");
  EXPECT_FALSE(rules.isParamAvailable(allowed));
}

TEST_F(ObjDependencyTest, AParameterWithoutAllowedValueRuleLeavesTheRecordAsItIs) {
  Rules(data_, "/Case/Domain").param("Motion");
  ObjDependency const rules = rotorOnFirstParam();
  ParamAllowedValues fresh;
  EXPECT_TRUE(rules.isParamAvailable(fresh));
  EXPECT_FALSE(fresh.hasAllowedValues);
  ParamAllowedValues used = allowing({"Water"});
  EXPECT_TRUE(rules.isParamAvailable(used));
  EXPECT_EQ(used.allowedValues, Strings{"Water"});
}

TEST_F(ObjDependencyTest, AnUnavailableParameterLeavesTheRecordAsItIsAndItsListUnevaluated) {
  bool evaluated = false;
  Rules(data_, "/Case/Domain").param("Material").availableWhen(never()).allowed(list([&](auto&, auto&) {
    evaluated = true;
    return Strings{"Water"};
  }));
  ParamAllowedValues allowed;
  EXPECT_FALSE(rotorOnFirstParam().isParamAvailable(allowed));
  EXPECT_FALSE(allowed.hasAllowedValues);
  EXPECT_FALSE(evaluated);
}

TEST_F(ObjDependencyTest, TheEvaluatedAllowedValuesReplaceTheRecord) {
  Rules(data_, "/Case/Domain").param("Material").allowed({"Water", "Air"}).subset({"Air"});
  ParamAllowedValues allowed = allowing({"Oil"});
  EXPECT_TRUE(rotorOnFirstParam().isParamAvailable(allowed));
  EXPECT_TRUE(allowed.hasAllowedValues);
  EXPECT_TRUE(allowed.hasSubset);
  EXPECT_EQ(allowed.allowedValues, (Strings{"Water", "Air"}));
  EXPECT_EQ(allowed.subsetValues, Strings{"Air"});
}

TEST_F(ObjDependencyTest, AnAllowedListThatComesOutEmptyMakesTheParameterUnavailable) {
  Rules(data_, "/Case/Domain").param("Material").allowed(listOf("Materials"));
  ParamAllowedValues allowed;
  EXPECT_FALSE(rotorOnFirstParam().isParamAvailable(allowed));
  EXPECT_TRUE(allowed.hasAllowedValues);
  EXPECT_TRUE(allowed.isEmpty());
}

TEST_F(ObjDependencyTest, AnAllowedListThatMayComeOutEmptyLeavesTheParameterAvailable) {
  Rules(data_, "/Case/Domain").param("Material").allowed(listOf("Materials")).availableWithNoAllowedValues();
  ParamAllowedValues allowed;
  EXPECT_TRUE(rotorOnFirstParam().isParamAvailable(allowed));
  EXPECT_TRUE(allowed.hasAllowedValues);
  EXPECT_TRUE(allowed.isEmpty());
}

TEST_F(ObjDependencyTest, AnEmptySubsetDoesNotMakeTheParameterUnavailable) {
  Rules(data_, "/Case/Domain").param("Material").allowed({"Water"}).subset(listOf("Materials"));
  ParamAllowedValues allowed;
  EXPECT_TRUE(rotorOnFirstParam().isParamAvailable(allowed));
  EXPECT_TRUE(allowed.hasSubset);
  EXPECT_TRUE(allowed.subsetValues.empty());
}

// Availability of children.

TEST_F(ObjDependencyTest, AChildWithAllowedNamesHasThoseAndNoDefaultNames) {
  Rules(data_, "/Case/Domain").child("Boundary").allowedNames({"inlet", "outlet"}).defaultNames({"wall"});
  ObjDependency::AllowedNameData names;
  EXPECT_TRUE(rotorOnFirstChild().isChildAvailable(names));
  EXPECT_TRUE(names.hasAllowedNames);
  EXPECT_EQ(names.allowedNames, (Strings{"inlet", "outlet"}));
  EXPECT_EQ(names.defaultNames, Strings{});
}

TEST_F(ObjDependencyTest, AChildWithAllowedNamesThatComeOutEmptyIsUnavailable) {
  Rules(data_, "/Case/Domain").child("Boundary").allowedNames(listOf("Openings"));
  ObjDependency::AllowedNameData names;
  EXPECT_FALSE(rotorOnFirstChild().isChildAvailable(names));
  EXPECT_TRUE(names.hasAllowedNames);
  EXPECT_EQ(names.allowedNames, Strings{});
}

TEST_F(ObjDependencyTest, AChildWithDefaultNamesHasThoseAndNoAllowedNames) {
  Rules(data_, "/Case/Domain").child("Boundary").defaultNames({"wall"});
  ObjDependency::AllowedNameData names;
  EXPECT_TRUE(rotorOnFirstChild().isChildAvailable(names));
  EXPECT_FALSE(names.hasAllowedNames);
  EXPECT_EQ(names.allowedNames, Strings{});
  EXPECT_EQ(names.defaultNames, Strings{"wall"});
}

TEST_F(ObjDependencyTest, AChildWithoutAnyNamesIsAvailable) {
  Rules(data_, "/Case/Domain").child("Boundary");
  ObjDependency::AllowedNameData names;
  EXPECT_TRUE(rotorOnFirstChild().isChildAvailable(names));
  EXPECT_FALSE(names.hasAllowedNames);
  EXPECT_EQ(names.defaultNames, Strings{});
}

TEST_F(ObjDependencyTest, OfAChildWhoseConditionDoesNotHoldNoNamesAreEvaluated) {
  bool evaluated = false;
  auto const noting = [&](TDFContext const&, ModelTDF const&) {
    evaluated = true;
    return SharedStrings{"inlet"};
  };
  Rules(data_, "/Case/Domain").child("Boundary").availableWhen(never()).allowedNames(list(noting));
  Rules(data_, "/Case/Domain").child("Wall").availableWhen(never()).defaultNames(list(noting));
  ObjDependency dep = rotorOnFirstChild();
  ObjDependency::AllowedNameData names;
  EXPECT_FALSE(dep.isChildAvailable(names));
  EXPECT_FALSE(names.hasAllowedNames);
  dep.nextChild();
  EXPECT_FALSE(dep.isChildAvailable(names));
  EXPECT_FALSE(evaluated);
}

TEST_F(ObjDependencyTest, ARecordUsedForASecondChildKeepsTheDefaultNamesOfTheFirst) {
  Rules(data_, "/Case/Domain").child("Wall").defaultNames({"wall"}).child("Boundary").allowedNames({"inlet"});
  ObjDependency rules = rotorOnFirstChild();
  ObjDependency::AllowedNameData names;
  EXPECT_TRUE(rules.isChildAvailable(names));
  rules.nextChild();
  EXPECT_TRUE(rules.isChildAvailable(names));
  EXPECT_EQ(names.allowedNames, Strings{"inlet"});
  EXPECT_EQ(names.defaultNames, Strings{"wall"});
}

TEST_F(ObjDependencyTest, ARecordUsedForASecondChildLosesTheAllowedNamesOfTheFirst) {
  Rules(data_, "/Case/Domain").child("Boundary").allowedNames({"inlet"}).child("Wall").availableWhen(never());
  ObjDependency rules = rotorOnFirstChild();
  ObjDependency::AllowedNameData names;
  EXPECT_TRUE(rules.isChildAvailable(names));
  rules.nextChild();
  EXPECT_FALSE(rules.isChildAvailable(names));
  EXPECT_FALSE(names.hasAllowedNames);
  EXPECT_EQ(names.allowedNames, Strings{});
}

TEST_F(ObjDependencyTest, OffAnEntryNothingIsAvailableAndOnlyTheNamesThatAreAlwaysSetAreSet) {
  Rules(data_, "/Case/Domain").param("Motion").child("Boundary");
  ObjDependency const rules = rotor();
  ParamAllowedValues allowed = allowing({"Water"});
  EXPECT_FALSE(rules.isParamAvailable(allowed));
  EXPECT_EQ(allowed.allowedValues, Strings{"Water"});
  ObjDependency::AllowedNameData names{true, {"inlet"}, {"wall"}};
  EXPECT_FALSE(rules.isChildAvailable(names));
  EXPECT_FALSE(names.hasAllowedNames);
  EXPECT_EQ(names.allowedNames, Strings{});
  EXPECT_EQ(names.defaultNames, Strings{"wall"});
}

// Evaluation once or every time.

TEST_F(ObjDependencyTest, BoundsAreEvaluatedOnceForEachStandOnAParameter) {
  int count = 0;
  Rules(data_, "/Case/Domain").param("Speed").type(TDFParam::Real).bounds(countingText(count), text("9"));
  ObjDependency rules = rotorOnFirstParam();
  EXPECT_EQ(rules.getParamBounds(), Bounds("1", "9"));
  EXPECT_EQ(rules.getParamBounds(), Bounds("1", "9"));
  rules.firstParam();
  EXPECT_EQ(rules.getParamBounds(), Bounds("2", "9"));
}

TEST_F(ObjDependencyTest, TheDefaultIsEvaluatedOnceForEachStandOnAParameter) {
  int count = 0;
  Rules(data_, "/Case/Domain").param("Speed").byDefault(countingText(count)).param("Axis").byDefault("Z");
  ObjDependency rules = rotorOnFirstParam();
  EXPECT_EQ(rules.getParamDefault(), "1");
  EXPECT_EQ(rules.getParamDefault(), "1");
  rules.nextParam();
  EXPECT_EQ(rules.getParamDefault(), "Z");
  rules.firstParam();
  EXPECT_EQ(rules.getParamDefault(), "2");
}

TEST_F(ObjDependencyTest, ADefaultAskedByItselfFirstIsKeptWhateverIsAllowedLater) {
  Rules(data_, "/Case/Domain").param("Material").byDefault("Water");
  ObjDependency const rules = rotorOnFirstParam();
  EXPECT_EQ(rules.getParamDefault(), "Water");
  EXPECT_EQ(rules.getParamDefault(allowing({"Air"})), "Water");
}

TEST_F(ObjDependencyTest, ADefaultAskedInTheLightOfAllowedValuesFirstIsKeptForBothForms) {
  Rules(data_, "/Case/Domain").param("Material").byDefault("Water");
  ObjDependency const rules = rotorOnFirstParam();
  EXPECT_EQ(rules.getParamDefault(allowing({"Air"})), "Air");
  EXPECT_EQ(rules.getParamDefault(allowing({"Oil"})), "Air");
  EXPECT_EQ(rules.getParamDefault(), "Air");
}

TEST_F(ObjDependencyTest, AnOverrideIsEvaluatedAtEveryQuestion) {
  int count = 0;
  Rules(data_, "/Case/Domain").param("Speed").overriddenWhen(when("Motion", "Rotating"), countingText(count));
  ObjDependency const rules = rotorOnFirstParam();
  EXPECT_EQ(rules.getParamValueOverride(), Override(true, "1"));
  EXPECT_EQ(rules.getParamValueOverride(allowing({"5"})), Override(true, "2"));
  model_.set("/Case/Domain:rotor", "Motion", "Stationary");
  EXPECT_EQ(rules.getParamValueOverride(), Override(false, ""));
}

TEST_F(ObjDependencyTest, AnEvaluationThatThrowsLeavesTheCursorAsItWas) {
  bool broken = true;
  auto const value = [&](TDFContext const&, ModelTDF const&) -> std::string {
    if (broken) throw std::domain_error("broken");
    return "1";
  };
  Rules(data_, "/Case/Domain").param("Speed").byDefault(text(value)).bounds(text(value), text(value));
  ObjDependency const rules = rotorOnFirstParam();
  EXPECT_THROW((void)rules.getParamDefault(), std::domain_error);
  EXPECT_THROW((void)rules.getParamDefault(allowing({"1"})), std::domain_error);
  EXPECT_THROW((void)rules.getParamBounds(), std::domain_error);
  broken = false;
  EXPECT_EQ(rules.getParamName(), "Speed");
  EXPECT_EQ(rules.getParamDefault(), "1");
  EXPECT_EQ(rules.getParamBounds(), Bounds("1", "1"));
}

// Copies.

TEST_F(ObjDependencyTest, ACopyStandsWhereTheOriginalStandsAndGoesItsOwnWay) {
  Rules(data_, "/Case/Domain").param("Motion").param("Axis").child("Wall").child("Boundary");
  ObjDependency original = rotorOnFirstParam();
  original.firstChild();
  ObjDependency copy(original);
  copy.nextParam();
  copy.nextChild();
  EXPECT_EQ(original.getParamName(), "Motion");
  EXPECT_EQ(original.getChildType(), "Wall");
  EXPECT_EQ(copy.getParamName(), "Axis");
  EXPECT_EQ(copy.getChildType(), "Boundary");
}

TEST_F(ObjDependencyTest, ACopyKeepsWhatTheOriginalHasEvaluated) {
  int count = 0;
  Rules(data_, "/Case/Domain").param("Speed").byDefault(countingText(count));
  ObjDependency const original = rotorOnFirstParam();
  EXPECT_EQ(original.getParamDefault(), "1");
  ObjDependency copy(original);
  EXPECT_EQ(copy.getParamDefault(), "1");
  copy.firstParam();
  EXPECT_EQ(copy.getParamDefault(), "2");
  EXPECT_EQ(original.getParamDefault(), "1");
}

TEST_F(ObjDependencyContextTest, AnAssignedCursorTakesOverObjectPlaceAndContextRuleValue) {
  ObjDependency original = rotorOnFirstParam();
  original.setContextRuleValue("Rotating");
  ObjDependency assigned = rulesOf("/Case/Material:oil");
  assigned = original;
  assigned.nextParam();
  ParamAllowedValues allowed;
  EXPECT_EQ(assigned.getParamName(), "Speed");
  EXPECT_TRUE(assigned.isParamAvailable(allowed));
}

// Failures.

struct Misuse {
  std::function<void(ObjDependency const&)> question;
  std::string text;
};

std::vector<Misuse> const questionsAboutTheEntry{
    {[](auto& dep) { (void)dep.getParamName(); }, "ObjDependency::getParamName - internal error"},
    {[](auto& dep) { (void)dep.isParamRequired(); }, "ObjDependency::isParamRequired - internal error"},
    {[](auto& dep) { (void)dep.hasParamValidationRelaxed(); },
     "ObjDependency::hasParamValidationRelaxed - internal error"},
    {[](auto& dep) { (void)dep.isParamContextRule(); }, "ObjDependency::isParamContextRule - internal error"},
};

std::vector<Misuse> const questionsAboutTheValue{
    {[](auto& dep) { (void)dep.getParamType(); }, "ObjDependency::getParamType - internal error"},
    {[](auto& dep) { (void)dep.hasParamDynamicBounds(); }, "ObjDependency::hasParamDynamicBounds - internal error"},
    {[](auto& dep) { (void)dep.getParamBounds(); }, "ObjDependency::getParamBounds - internal error"},
    {[](auto& dep) { (void)dep.hasParamDefault(); }, "ObjDependency::hasParamDefault - internal error"},
    {[](auto& dep) { (void)dep.getParamDefault(); }, "ObjDependency::getParamDefault - internal error"},
    {[](auto& dep) { (void)dep.getParamDefault(ParamAllowedValues()); },
     "ObjDependency::getParamDefault - internal error"},
    {[](auto& dep) { (void)dep.hasParamValueOverride(); }, "ObjDependency::hasParamOverride - internal error"},
    {[](auto& dep) { (void)dep.getParamValueOverride(); }, "ObjDependency::getParamValueOverride - internal error"},
    {[](auto& dep) { (void)dep.getParamValueOverride(ParamAllowedValues()); },
     "ObjDependency::getParamOverride - internal error"},
    {[](auto& dep) { (void)dep.isCompleteListRequired(); }, "ObjDependency::isCompleteListRequired - internal error"},
};

std::vector<Misuse> const questionsAboutTheChild{
    {[](auto& dep) { (void)dep.getChildType(); }, "ObjDependency::getChildType - internal error"},
    {[](auto& dep) { (void)dep.isChildRequired(); }, "ObjDependency::isChildRequired - internal error"},
    {[](auto& dep) { (void)dep.isChildSingleton(); }, "ObjDependency::isChildRequired - internal error"},
    {[](auto& dep) { (void)dep.isChildCoupled(); }, "ObjDependency::isChildCoupled - internal error"},
    {[](auto& dep) { (void)dep.hasChildValidationRelaxed(); },
     "ObjDependency::hasParamValidationRelaxed - internal error"},
};

void expectFailures(std::vector<Misuse> const& misuses, ObjDependency const& rules) {
  for (Misuse const& misuse : misuses) EXPECT_EQ(textOfFailure([&] { misuse.question(rules); }), misuse.text);
}

TEST_F(ObjDependencyTest, BeforeTheWalksEveryQuestionFailsWithItsFixedText) {
  Rules(data_, "/Case/Domain").param("Motion").child("Boundary");
  ObjDependency const rules = rotor();
  expectFailures(questionsAboutTheEntry, rules);
  expectFailures(questionsAboutTheValue, rules);
  expectFailures(questionsAboutTheChild, rules);
}

TEST_F(ObjDependencyTest, BehindTheWalksEveryQuestionFailsWithItsFixedText) {
  Rules(data_, "/Case/Domain").param("Motion").child("Boundary");
  ObjDependency rules = rotor();
  walkParams(rules);
  walkChildren(rules);
  expectFailures(questionsAboutTheEntry, rules);
  expectFailures(questionsAboutTheValue, rules);
  expectFailures(questionsAboutTheChild, rules);
}

TEST_F(ObjDependencyTest, AParameterWithoutValueRuleAnswersWhatTheEntrySaysAndFailsOnTheRest) {
  Rules(data_, "/Case/Domain").paramWithoutValueRule("Motion").required();
  ObjDependency const rules = rotorOnFirstParam();
  ParamAllowedValues allowed;
  EXPECT_EQ(rules.getParamName(), "Motion");
  EXPECT_TRUE(rules.isParamRequired());
  EXPECT_TRUE(rules.isParamAvailable(allowed));
  expectFailures(questionsAboutTheValue, rules);
}

TEST_F(ObjDependencyTest, TheValueRuleOfAnEntryIsTheOneThatTheDatabaseGivesForItsName) {
  Rules(data_, "/Case/Domain").param("Motion").param("Speed").type(TDFParam::Real);
  ObjDependency rules = rotor();
  for (rules.firstParam(); !rules.isDoneParam(); rules.nextParam()) {
    EXPECT_EQ(rules.getParamType(), data_.getParamValueDef("/Case/Domain", rules.getParamName(), true)->type);
  }
}

}  // namespace
}  // namespace tarn
