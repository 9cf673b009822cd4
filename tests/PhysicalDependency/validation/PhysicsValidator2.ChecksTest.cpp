// The verdicts on the parameters and children of present objects, and the beta messages that go with them. Every text
// is compared whole.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "PhysicalDependency/validation/ValidationFixture.h"

namespace tarn {
namespace {

using namespace test;
using namespace validation_test;
using testing::ElementsAre;
using testing::IsEmpty;

// --- Parameters ------------------------------------------------------------------------------------------------------

std::string const strayRegime =
    "/Case | The parameter \"Regime\" is present in the object \"/Case\" but it is not physically valid.";

ModelState const withRegime = {{"/Case", {{"Regime", "Laminar"}}}};
ModelState const withoutRegime = {{"/Case", {{"Title", "Pump"}}}};

class PhysicsValidator2OnParameters : public ValidationTest {};

TEST_F(PhysicsValidator2OnParameters, AvailablePresentIsInOrder) {
  rule("/Case").param("Regime");
  EXPECT_THAT(faults(withRegime), IsEmpty());
}

TEST_F(PhysicsValidator2OnParameters, AvailablePresentRequiredIsInOrder) {
  rule("/Case").param("Regime").required();
  EXPECT_THAT(faults(withRegime), IsEmpty());
}

TEST_F(PhysicsValidator2OnParameters, AvailableAbsentRequiredIsMissing) {
  rule("/Case").param("Regime").required();
  EXPECT_THAT(faults(withoutRegime), ElementsAre(noRegime));
}

TEST_F(PhysicsValidator2OnParameters, AvailableAbsentOptionalIsInOrder) {
  rule("/Case").param("Regime");
  EXPECT_THAT(faults(withoutRegime), IsEmpty());
}

TEST_F(PhysicsValidator2OnParameters, UnavailablePresentIsInvalid) {
  rule("/Case").param("Regime").availableWhen(never());
  EXPECT_THAT(faults(withRegime), ElementsAre(strayRegime));
}

TEST_F(PhysicsValidator2OnParameters, UnavailablePresentIsInvalidAlsoWhenRequired) {
  rule("/Case").param("Regime").availableWhen(never()).required();
  EXPECT_THAT(faults(withRegime), ElementsAre(strayRegime));
}

TEST_F(PhysicsValidator2OnParameters, UnavailableAbsentIsInOrderAlsoWhenRequired) {
  rule("/Case").param("Regime").availableWhen(never()).required();
  EXPECT_THAT(faults(withoutRegime), IsEmpty());
}

TEST_F(PhysicsValidator2OnParameters, RelaxedIsNotJudged) {
  BetaLoggingController beta;
  validator().setBetaLoggingController(&beta);
  rule("/Case").param("Required").relaxed().required();
  rule("/Case").param("Stray").relaxed().availableWhen(never());
  rule("/Case").param("Wrong").relaxed().allowed({"a"}).beta("not released");
  rule("/Case").param("Right").relaxed().allowed({"a"}).betaValue("a", "not released");
  EXPECT_THAT(faults({{"/Case", {{"Stray", "1"}, {"Wrong", "b"}, {"Right", "a"}}}}), IsEmpty());
}

TEST_F(PhysicsValidator2OnParameters, AParameterWithoutARuleIsNotJudged) {
  rule("/Case").param("Regime");
  EXPECT_THAT(faults({{"/Case", {{"Unknown", "1"}}}}), IsEmpty());
}

TEST_F(PhysicsValidator2OnParameters, AnEntryThatItsContextRuleSwitchesOffIsUnavailable) {
  rule("/Case").param("Kind").contextRule().param("Speed").inContexts({"Rotating"});
  EXPECT_THAT(faults({{"/Case", {{"Kind", "Rotating"}, {"Speed", "120"}}}}), IsEmpty());
  EXPECT_THAT(faults({{"/Case", {{"Kind", "Stationary"}, {"Speed", "120"}}}}),
              ElementsAre("/Case | The parameter \"Speed\" is present in the object \"/Case\" but it is not physically "
                          "valid."));
}

TEST_F(PhysicsValidator2OnParameters, OfManyEntriesOnlyThoseOfPresentAndRequiredParametersAreEvaluated) {
  int evaluated = 0;
  for (int i = 0; i < 31; ++i)
    rule("/Case").param("Optional " + std::to_string(i)).availableWhen(decided(counting(evaluated)));
  rule("/Case").param("Required").required().availableWhen(decided(counting(evaluated)));
  ModelState const model{{"/Case", {{"Optional 7", "1"}, {"Required", "1"}}}};
  EXPECT_THAT(faults(model), IsEmpty());
  EXPECT_EQ(evaluated, 32) << "32 entries are all walked";

  rule("/Case").param("One more").availableWhen(decided(counting(evaluated)));
  evaluated = 0;
  EXPECT_THAT(faults({{"/Case", {{"Optional 7", "2"}, {"Required", "1"}}}}), IsEmpty());
  EXPECT_EQ(evaluated, 2);
}

TEST_F(PhysicsValidator2OnParameters, BoundsAndDefaultsAreNotEvaluated) {
  auto const notReached = [] {
    return test::text([](TDFContext const&, ModelTDF const&) -> std::string { throw std::logic_error("not reached"); });
  };
  rule("/Case")
      .param("Speed")
      .type(TDFParam::Real)
      .required()
      .bounds(notReached(), notReached())
      .byDefault(notReached());
  rule("/Case").param("Pressure").type(TDFParam::Real).bounds("0", "1");
  EXPECT_THAT(faults({{"/Case", {{"Speed", "120"}, {"Pressure", "7"}}}}), IsEmpty());
}

// --- Allowed values --------------------------------------------------------------------------------------------------

class PhysicsValidator2OnValues : public ValidationTest {
 protected:
  Strings faultsOf(std::string const& value) { return faults({{"/Case", {{"Regime", value}}}}); }
};

TEST_F(PhysicsValidator2OnValues, OneOfTheAllowedValuesIsInOrder) {
  rule("/Case").param("Regime").allowed({"Laminar", "Turbulent"});
  EXPECT_THAT(faultsOf("Turbulent"), IsEmpty());
}

TEST_F(PhysicsValidator2OnValues, AnyOtherIsReportedWithTheAllowedOnes) {
  rule("/Case").param("Regime").allowed({"Laminar", "Turbulent"});
  EXPECT_THAT(faultsOf("Fast"),
              ElementsAre("/Case | The parameter \"Regime\" in \"/Case\" has the value \"Fast\". This "
                          "does not match any of the allowed values: \"Laminar, Turbulent\"."));
}

TEST_F(PhysicsValidator2OnValues, TheCaseOfLettersAndInnerBlanksCount) {
  rule("/Case").param("Regime").allowed({"Very Laminar"});
  EXPECT_THAT(faultsOf("very laminar"),
              ElementsAre("/Case | The parameter \"Regime\" in \"/Case\" has the value \"very laminar\". This does not "
                          "match any of the allowed values: \"Very Laminar\"."));
  EXPECT_THAT(
      faultsOf("Very  Laminar"),
      ElementsAre("/Case | The parameter \"Regime\" in \"/Case\" has the value \"Very  Laminar\". This does not "
                  "match any of the allowed values: \"Very Laminar\"."));
}

TEST_F(PhysicsValidator2OnValues, AnAllowedValueIsNotTrimmed) {
  rule("/Case").param("Regime").allowed({" Laminar"});
  EXPECT_THAT(faultsOf("Laminar"), ElementsAre("/Case | The parameter \"Regime\" in \"/Case\" has the value "
                                               "\"Laminar\". This does not match any of the allowed values: \" "
                                               "Laminar\"."));
}

TEST_F(PhysicsValidator2OnValues, WithAnEmptyListEveryValueFails) {
  rule("/Case").param("Regime").allowed(std::initializer_list<std::string>{}).availableWithNoAllowedValues();
  EXPECT_THAT(faultsOf("Laminar"), ElementsAre("/Case | The parameter \"Regime\" in \"/Case\" has the value "
                                               "\"Laminar\". This does not match any of the allowed values: \"\"."));
}

TEST_F(PhysicsValidator2OnValues, ASubsetDoesNotNarrowWhatIsAllowed) {
  rule("/Case").param("Regime").allowed({"Laminar", "Turbulent"}).subset({"Laminar"});
  EXPECT_THAT(faultsOf("Turbulent"), IsEmpty());
}

TEST_F(PhysicsValidator2OnValues, AListThatIsAdviceIsNotConsulted) {
  BetaLoggingController beta;
  validator().setBetaLoggingController(&beta);
  rule("/Case").param("Regime").allowed({"Laminar"}).anyValueAllowed().betaValue("Laminar", "not released");
  EXPECT_THAT(faultsOf("Fast"), IsEmpty());
  EXPECT_THAT(faultsOf("Laminar"), IsEmpty());
}

TEST_F(PhysicsValidator2OnValues, AnAbsentParameterHasNoValueToCheck) {
  rule("/Case").param("Regime").allowed({"Laminar"});
  EXPECT_THAT(faults(withoutRegime), IsEmpty());
}

TEST_F(PhysicsValidator2OnValues, AnUnavailableParameterIsNotCheckedForItsValue) {
  rule("/Case").param("Regime").allowed({"Laminar"}).availableWhen(never());
  EXPECT_THAT(faultsOf("Fast"), ElementsAre(strayRegime));
}

TEST_F(PhysicsValidator2OnValues, AListOfAllowedItemsIsInOrder) {
  rule("/Case").param("Regime").type(TDFParam::StringList).allowed({"a", "b", "c"});
  EXPECT_THAT(faultsOf("c,a,c"), IsEmpty());
}

TEST_F(PhysicsValidator2OnValues, DisallowedItemsAreReportedOnceAndSorted) {
  rule("/Case").param("Regime").type(TDFParam::StringList).allowed({"ok"});
  EXPECT_THAT(faultsOf("b,ok,a,b"), ElementsAre("/Case | The parameter \"Regime\" in \"/Case\" holds the following "
                                                "disallowed values: \"a,b\". (Allowed values are: \"ok\".)"));
}

TEST_F(PhysicsValidator2OnValues, OneDisallowedItemIsOneValueHoweverOftenItStandsThere) {
  rule("/Case").param("Regime").type(TDFParam::StringList).allowed({"v", "w", "x", "y", "z"});
  EXPECT_THAT(faultsOf("b,b,v,b"),
              ElementsAre("/Case | The parameter \"Regime\" in \"/Case\" holds the following disallowed value: \"b\". "
                          "(Allowed values are: \"v, w, x, y, ...\".)"));
}

TEST_F(PhysicsValidator2OnValues, ItemsAreNotTrimmed) {
  rule("/Case").param("Regime").type(TDFParam::StringList).allowed({"a", "b"});
  EXPECT_THAT(faultsOf("a, b"),
              ElementsAre("/Case | The parameter \"Regime\" in \"/Case\" holds the following disallowed "
                          "value: \" b\". (Allowed values are: \"a, b\".)"));
}

TEST_F(PhysicsValidator2OnValues, ALongAllowedListIsHeldAgainstEveryObject) {
  Strings groups;
  for (int i = 0; i < 500; ++i) groups.push_back("Group " + std::to_string(i));
  rule("/Case").child("Boundary");
  rule("/Case/Boundary").param("Location").allowed(list(groups));
  EXPECT_THAT(faults({{"/Case/Boundary:a", {{"Location", "Group 499"}}},
                      {"/Case/Boundary:b", {{"Location", "Group 500"}}},
                      {"/Case/Boundary:c", {{"Location", "Group 0"}}}}),
              ElementsAre("/Case/Boundary:b | The parameter \"Location\" in \"/Case/Boundary:b\" has the value \"Group "
                          "500\". This does not match any of the allowed values: \"Group 0, Group 1, Group 2, Group 3, "
                          "...\"."));
}

// --- Children --------------------------------------------------------------------------------------------------------

class PhysicsValidator2OnChildren : public ValidationTest {
 protected:
  /// A case that holds these objects, each without parameters.
  static ModelState caseWith(Strings const& components) {
    ModelState model = {{"/Case", {{"Title", "Pump"}}}};
    for (std::string const& component : components) model["/Case/" + component] = {};
    return model;
  }
};

TEST_F(PhysicsValidator2OnChildren, AnAvailableSingletonThatIsPresentIsInOrder) {
  rule("/Case").child("Solver").singleton().required();
  rule("/Case/Solver").param("Scheme");
  EXPECT_THAT(faults(caseWith({"Solver"})), IsEmpty());
}

TEST_F(PhysicsValidator2OnChildren, AnAvailableSingletonThatIsAbsentAndOptionalIsInOrder) {
  rule("/Case").child("Solver").singleton();
  rule("/Case/Solver").param("Scheme").required();
  EXPECT_THAT(faults(caseWith({})), IsEmpty());
}

TEST_F(PhysicsValidator2OnChildren, AnAvailableSingletonThatIsAbsentAndRequiredIsMissingWhenItHasSomethingToSet) {
  rule("/Case").child("Solver").singleton().required();
  rule("/Case/Solver").param("Scheme");
  EXPECT_THAT(faults(caseWith({})), ElementsAre("/Case | There must be an object of type \"Solver\" in the object "
                                                "\"/Case\" but it does not exist."));
}

TEST_F(PhysicsValidator2OnChildren, AnUnavailableSingletonThatIsPresentIsInvalidAndNotEntered) {
  rule("/Case").child("Solver").singleton().availableWhen(never()).required();
  rule("/Case/Solver").param("Scheme").required();
  EXPECT_THAT(faults(caseWith({"Solver"})),
              ElementsAre("/Case | The object \"Solver\" is present in the object \"/Case\" but it is not physically "
                          "valid."));
}

TEST_F(PhysicsValidator2OnChildren, AnUnavailableSingletonThatIsAbsentIsInOrderAlsoWhenRequired) {
  rule("/Case").child("Solver").singleton().availableWhen(never()).required();
  rule("/Case/Solver").param("Scheme").required();
  EXPECT_THAT(faults(caseWith({})), IsEmpty());
}

TEST_F(PhysicsValidator2OnChildren, NamedObjectsWithoutAllowedNamesMayHaveAnyName) {
  rule("/Case").child("Domain");
  EXPECT_THAT(faults(caseWith({"Domain:rotor", "Domain:stator"})), IsEmpty());
}

TEST_F(PhysicsValidator2OnChildren, RequiredNamedObjectsWithoutAllowedNamesAreNeverReported) {
  rule("/Case").child("Domain").required();
  rule("/Case/Domain").param("Motion").required();
  EXPECT_THAT(faults(caseWith({})), IsEmpty());
}

TEST_F(PhysicsValidator2OnChildren, OneObjectOfAnUnavailableTypeIsNamed) {
  rule("/Case").child("Domain").availableWhen(never());
  EXPECT_THAT(faults(caseWith({"Domain:rotor"})),
              ElementsAre("/Case | The object \"Domain: rotor\" is present in the object \"/Case\" but it is not "
                          "physically valid."));
}

TEST_F(PhysicsValidator2OnChildren, SeveralObjectsOfAnUnavailableTypeAreListedInOneMessage) {
  rule("/Case").child("Domain").availableWhen(never());
  EXPECT_THAT(faults(caseWith({"Domain:stator", "Domain:rotor", "Domain:casing"})),
              ElementsAre("/Case | Objects of type \"Domain\" (names: casing,rotor,stator) are present in the object "
                          "\"/Case\" but the existence of this type is not physically valid."));
}

TEST_F(PhysicsValidator2OnChildren, NoObjectOfAnUnavailableTypeIsInOrder) {
  rule("/Case").child("Domain").availableWhen(never()).required().allowedNames({"rotor"});
  EXPECT_THAT(faults(caseWith({"Solver"})), IsEmpty());
}

TEST_F(PhysicsValidator2OnChildren, ANameThatIsNotAllowedIsReported) {
  rule("/Case").child("Domain").allowedNames({"rotor", "stator"});
  EXPECT_THAT(faults(caseWith({"Domain:rotor", "Domain:casing"})),
              ElementsAre("/Case | The object \"/Case\" contains the following object: \"casing\" whose name is not in "
                          "the set of those allowed: \"rotor, stator\"."));
}

TEST_F(PhysicsValidator2OnChildren, NamesThatAreNotAllowedAreListedInFullAndTheAllowedOnesShort) {
  rule("/Case").child("Domain").allowedNames({"z", "y", "x", "w", "v"});
  EXPECT_THAT(faults(caseWith({"Domain:e", "Domain:d", "Domain:c", "Domain:b", "Domain:a", "Domain:z"})),
              ElementsAre("/Case | The object \"/Case\" contains the following objects: \"a,b,c,d,e\" whose names are "
                          "not in the set of those allowed: \"z, y, x, w, ...\"."));
}

TEST_F(PhysicsValidator2OnChildren, OptionalNamesNeedNotBeThere) {
  rule("/Case").child("Domain").allowedNames({"rotor", "stator"});
  rule("/Case/Domain").param("Motion").required();
  EXPECT_THAT(faults(caseWith({})), IsEmpty());
}

TEST_F(PhysicsValidator2OnChildren, AllNamesOfARequiredTypeMustBeThere) {
  rule("/Case").child("Domain").allowedNames({"stator", "rotor", "casing"}).required();
  rule("/Case/Domain").param("Motion");
  EXPECT_THAT(faults(caseWith({"Domain:casing"})),
              ElementsAre("/Case | The object \"/Case\" does not contain the Domain objects: \"rotor,stator\", which "
                          "must be present."));
}

TEST_F(PhysicsValidator2OnChildren, NamesTooManyAreReportedBeforeThoseThatAreMissing) {
  rule("/Case").child("Domain").allowedNames({"a", "b"}).required();
  rule("/Case/Domain").param("Motion");
  EXPECT_THAT(
      faults(caseWith({"Domain:c"})),
      ElementsAre("/Case | The object \"/Case\" contains the following object: \"c\" whose name is not in the set "
                  "of those allowed: \"a, b\".",
                  "/Case | The object \"/Case\" does not contain the Domain objects: \"a,b\", which must be "
                  "present."));
}

TEST_F(PhysicsValidator2OnChildren, ARelaxedTypeIsNotJudgedButItsObjectsAre) {
  rule("/Case").child("Solver").singleton().required().relaxed();
  rule("/Case").child("Output").singleton().availableWhen(never()).relaxed();
  rule("/Case").child("Domain").allowedNames({"stator"}).required().relaxed();
  rule("/Case").child("Boundary").availableWhen(never()).relaxed();
  rule("/Case/Solver").param("Scheme");
  rule("/Case/Domain").param("Motion").required();
  EXPECT_THAT(
      faults(caseWith({"Output", "Domain:rotor", "Boundary:inlet"})),
      ElementsAre("/Case/Domain:rotor | The parameter \"Motion\" should exist in the object \"/Case/Domain:rotor\" "
                  "but is not present."));
}

TEST_F(PhysicsValidator2OnChildren, ObjectsWithoutAnEntryInTheirParentAreNotVisited) {
  rule("/Case").child("Solver").singleton();
  rule("/Case/Domain").param("Motion").required();
  EXPECT_THAT(faults(caseWith({"Domain:rotor"})), IsEmpty());
}

// --- Beta messages ---------------------------------------------------------------------------------------------------

class PhysicsValidator2OnBetaMessages : public ValidationTest {
 protected:
  /// The log of the walk of `model`, with the levels.
  Strings logged(ModelState const& model) {
    validator().setBetaLoggingController(&beta_);
    validator().setLogger(&recorded_);
    validate(model, tarn::PhysicsValidator2::ValDependency);
    return recorded_.dependency();
  }

  BetaLoggingController beta_;
  RecordingLogger recorded_;
};

TEST_F(PhysicsValidator2OnBetaMessages, OfAPresentParameterTheMessageComesBeforeTheVerdictOnItsValue) {
  rule("/Case").param("Regime").allowed({"Laminar"}).beta("Regimes are new.");
  EXPECT_THAT(logged({{"/Case", {{"Regime", "Fast"}}}}),
              ElementsAre("beta /Case/Regime | Regimes are new.",
                          "fault /Case | The parameter \"Regime\" in \"/Case\" has the value \"Fast\". This does not "
                          "match any of the allowed values: \"Laminar\"."));
}

TEST_F(PhysicsValidator2OnBetaMessages, AnAbsentParameterHasNone) {
  rule("/Case").param("Regime").beta("Regimes are new.");
  EXPECT_THAT(logged(withoutRegime), IsEmpty());
}

TEST_F(PhysicsValidator2OnBetaMessages, AnUnavailableParameterHasNone) {
  rule("/Case")
      .param("Regime")
      .beta("Regimes are new.")
      .availableWhen(decided([](std::string const&, EvalContext& evalContext) {
        evalContext.getBetaLoggingController()->gatherParamMessage("Regime", "Regimes are new.");
        return false;
      }));
  EXPECT_THAT(logged(withRegime),
              ElementsAre("fault /Case | The parameter \"Regime\" is present in the object \"/Case\" but it is not "
                          "physically valid."));
}

TEST_F(PhysicsValidator2OnBetaMessages, SeveralMessagesForOneItemStandOnALineEach) {
  rule("/Case")
      .param("Regime")
      .beta("Regimes are new.")
      .availableWhen(decided([](std::string const&, EvalContext& evalContext) {
        evalContext.getBetaLoggingController()->gatherParamMessage("Regime", "Ask support.");
        return true;
      }));
  EXPECT_THAT(logged(withRegime), ElementsAre("beta /Case/Regime | Ask support.\nRegimes are new."));
}

TEST_F(PhysicsValidator2OnBetaMessages, OfAValueTheMessageComesWhenItIsAllowedAndSet) {
  rule("/Case").param("Regime").allowed({"Laminar", "Turbulent"}).betaValue("Laminar", "Laminar flow is new.");
  rule("/Case").param("Second").allowed({"Laminar", "Turbulent"}).betaValue("Laminar", "Laminar flow is new.");
  rule("/Case").param("Third").allowed({"Turbulent"}).betaValue("Laminar", "Laminar flow is new.");
  EXPECT_THAT(logged({{"/Case", {{"Regime", "Laminar"}, {"Second", "Turbulent"}, {"Third", "Laminar"}}}}),
              ElementsAre("beta /Case/Regime | Laminar flow is new.",
                          "fault /Case | The parameter \"Third\" in \"/Case\" has the value \"Laminar\". This does not "
                          "match any of the allowed values: \"Turbulent\"."));
}

TEST_F(PhysicsValidator2OnBetaMessages, OfAListTheMessagesOfItsAllowedItemsComeSortedBehindTheVerdict) {
  rule("/Case")
      .param("Models")
      .type(TDFParam::StringList)
      .allowed({"Heat", "Mass", "Ions"})
      .betaValue("Mass", "Mass is new.")
      .betaValue("Heat", "Heat is new.");
  EXPECT_THAT(logged({{"/Case", {{"Models", "Mass,Ions,Wear,Heat,Mass"}}}}),
              ElementsAre("fault /Case | The parameter \"Models\" in \"/Case\" holds the following disallowed value: "
                          "\"Wear\". (Allowed values are: \"Heat, Mass, Ions\".)",
                          "beta /Case/Models | Heat is new.", "beta /Case/Models | Mass is new."));
}

TEST_F(PhysicsValidator2OnBetaMessages, OfAPresentSingletonTheMessageComesUnderItsPath) {
  rule("/Case").child("Solver").singleton().beta("Solvers are new.");
  rule("/Case").child("Output").singleton().beta("Outputs are new.");
  EXPECT_THAT(logged({{"/Case/Solver", {{"Scheme", "Upwind"}}}}), ElementsAre("beta /Case/Solver | Solvers are new."));
}

TEST_F(PhysicsValidator2OnBetaMessages, OfNamedObjectsEachHasTheMessagesOfItsTypeBeforeTheNamesAreJudged) {
  rule("/Case")
      .child("Domain")
      .allowedNames({"a", "b"})
      .beta("Domains are new.")
      .availableWhen(decided([](std::string const&, EvalContext& evalContext) {
        evalContext.getBetaLoggingController()->gatherObjMessage("Domain", "Ask support.");
        return true;
      }));
  EXPECT_THAT(
      logged({{"/Case/Domain:a", {}}, {"/Case/Domain:b", {}}, {"/Case/Domain:c", {{"Motion", "on"}}}}),
      ElementsAre("beta /Case/Domain:a | Ask support.\nDomains are new.",
                  "beta /Case/Domain:b | Ask support.\nDomains are new.",
                  "beta /Case/Domain:c | Ask support.\nDomains are new.",
                  "fault /Case | The object \"/Case\" contains the following object: \"c\" whose name is not in "
                  "the set of those allowed: \"a, b\"."));
}

TEST_F(PhysicsValidator2OnBetaMessages, ATypeWithoutObjectsOrThatIsRelaxedHasNone) {
  rule("/Case").child("Domain").beta("Domains are new.").child("Boundary").relaxed().beta("Boundaries are new.");
  EXPECT_THAT(logged({{"/Case/Boundary:inlet", {{"Kind", "Inlet"}}}}), IsEmpty());
}

TEST_F(PhysicsValidator2OnBetaMessages, APlaceholderOfAnAbsentObjectHasNone) {
  rule("/Case").child("Solver").singleton().required().beta("Solvers are new.");
  rule("/Case/Solver").param("Scheme").beta("Schemes are new.");
  EXPECT_THAT(
      logged({{"/Case", {{"Title", "Pump"}}}}),
      ElementsAre("fault /Case | There must be an object of type \"Solver\" in the object \"/Case\" but it does "
                  "not exist."));
}

TEST_F(PhysicsValidator2OnBetaMessages, WhatOneRuleGatheredDoesNotReachTheNext) {
  auto const gatherForAll = [](std::string const&, EvalContext& evalContext) {
    evalContext.getBetaLoggingController()->gatherParamMessage("Time", "leaked");
    evalContext.getBetaLoggingController()->gatherObjMessage("Domain", "leaked");
    return true;
  };
  rule("/Case").param("Regime").availableWhen(decided(gatherForAll));
  rule("/Case").param("Relaxed").relaxed().availableWhen(decided(gatherForAll));
  rule("/Case").param("Time");
  rule("/Case").child("Solver").availableWhen(decided(gatherForAll));
  rule("/Case").child("Domain");
  EXPECT_THAT(logged({{"/Case", {{"Time", "1"}}}, {"/Case/Domain:rotor", {}}}), IsEmpty());
  EXPECT_FALSE(beta_.anyLoggedMessages());
}

TEST_F(PhysicsValidator2OnBetaMessages, WhatARuleGatheredInAPlaceholderDoesNotReachTheNext) {
  rule("/Case").child("Solver").singleton().required().child("Domain");
  rule("/Case/Solver").param("Scheme").availableWhen(decided([](std::string const&, EvalContext& evalContext) {
    evalContext.getBetaLoggingController()->gatherObjMessage("Domain", "leaked");
    return false;
  }));
  EXPECT_THAT(logged({{"/Case/Domain:rotor", {{"Motion", "on"}}}}), IsEmpty());
}

TEST_F(PhysicsValidator2OnBetaMessages, WithoutAControllerNoneAreLogged) {
  rule("/Case").param("Regime").allowed({"Laminar"}).beta("Regimes are new.").betaValue("Laminar", "Laminar is new.");
  rule("/Case").child("Solver").singleton().beta("Solvers are new.");
  rule("/Case").child("Domain").beta("Domains are new.");
  rules_.attach(&beta_);
  EXPECT_THAT(faults({{"/Case", {{"Regime", "Laminar"}}}, {"/Case/Solver", {}}, {"/Case/Domain:rotor", {}}}),
              IsEmpty());
}

TEST_F(PhysicsValidator2OnBetaMessages, MessagesReachTheValidatorsControllerWhateverIsAttachedToTheDatabase) {
  BetaLoggingController attached;
  rules_.attach(&attached);
  rule("/Case").param("Regime").beta("Regimes are new.");
  EXPECT_THAT(logged(withRegime), ElementsAre("beta /Case/Regime | Regimes are new."));
  EXPECT_FALSE(attached.anyLoggedMessages());
}

TEST_F(PhysicsValidator2OnBetaMessages, ForTheBasicLoggerABetaMessageIsAnError) {
  rule("/Case").param("Regime").beta("Regimes are new.");
  validator().setBetaLoggingController(&beta_);
  EXPECT_EQ(validate(withRegime), tarn::PhysicsValidator2::ValDependencyErrors);
  EXPECT_THAT(loggedFaults(), ElementsAre("/Case/Regime | Regimes are new."));
}

}  // namespace
}  // namespace tarn
