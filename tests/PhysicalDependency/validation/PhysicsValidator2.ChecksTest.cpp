// The verdicts on the parameters and children of objects that are there, and the beta messages that go with them. Every
// text is compared whole.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "PhysicalDependency/validation/ValidationFixture.h"

namespace tarn {
namespace {

using namespace validation_test;
using testing::ElementsAre;
using testing::IsEmpty;

// --- Parameters ------------------------------------------------------------------------------------------------------

std::string const noRegime =
    "/Case | The parameter \"Regime\" should exist in the object \"/Case\" but is not present.";
std::string const strayRegime =
    "/Case | The parameter \"Regime\" is present in the object \"/Case\" but it is not physically valid.";

ModelState const withRegime = {{"/Case", {{"Regime", "Laminar"}}}};
ModelState const withoutRegime = {{"/Case", {{"Title", "Pump"}}}};

class PhysicsValidator2OnParameters : public ValidationTest {};

TEST_F(PhysicsValidator2OnParameters, AvailablePresentIsInOrder) {
  rule("/Case", Param("Regime"));
  EXPECT_THAT(faults(withRegime), IsEmpty());
}

TEST_F(PhysicsValidator2OnParameters, AvailablePresentRequiredIsInOrder) {
  rule("/Case", Param("Regime").required());
  EXPECT_THAT(faults(withRegime), IsEmpty());
}

TEST_F(PhysicsValidator2OnParameters, AvailableAbsentRequiredIsMissing) {
  rule("/Case", Param("Regime").required());
  EXPECT_THAT(faults(withoutRegime), ElementsAre(noRegime));
}

TEST_F(PhysicsValidator2OnParameters, AvailableAbsentOptionalIsInOrder) {
  rule("/Case", Param("Regime"));
  EXPECT_THAT(faults(withoutRegime), IsEmpty());
}

TEST_F(PhysicsValidator2OnParameters, UnavailablePresentIsInvalid) {
  rule("/Case", Param("Regime").unavailable());
  EXPECT_THAT(faults(withRegime), ElementsAre(strayRegime));
}

TEST_F(PhysicsValidator2OnParameters, UnavailablePresentIsInvalidAlsoWhenRequired) {
  rule("/Case", Param("Regime").unavailable().required());
  EXPECT_THAT(faults(withRegime), ElementsAre(strayRegime));
}

TEST_F(PhysicsValidator2OnParameters, UnavailableAbsentIsInOrderAlsoWhenRequired) {
  rule("/Case", Param("Regime").unavailable().required());
  EXPECT_THAT(faults(withoutRegime), IsEmpty());
}

TEST_F(PhysicsValidator2OnParameters, RelaxedIsNotJudged) {
  BetaLoggingController beta;
  validator().setBetaLoggingController(&beta);
  rule("/Case", Param("Required").relaxed().required(), Param("Stray").relaxed().unavailable(),
       Param("Wrong").relaxed().allowed({"a"}).beta("not released"),
       Param("Right").relaxed().allowed({"a"}).betaValue("a", "not released"));
  EXPECT_THAT(faults({{"/Case", {{"Stray", "1"}, {"Wrong", "b"}, {"Right", "a"}}}}), IsEmpty());
}

TEST_F(PhysicsValidator2OnParameters, AParameterWithoutARuleIsNotJudged) {
  rule("/Case", Param("Regime"));
  EXPECT_THAT(faults({{"/Case", {{"Unknown", "1"}}}}), IsEmpty());
}

TEST_F(PhysicsValidator2OnParameters, AnEntryThatItsContextRuleSwitchesOffIsUnavailable) {
  ObjDependDef& object = rules_.addObject("/Case");
  Param("Kind").contextRule().addTo(object);
  ParamAvail speed;
  speed.name = "Speed";
  speed.contexts = {"Rotating"};
  object.addParam(std::move(speed), ParamValueDef());
  EXPECT_THAT(faults({{"/Case", {{"Kind", "Rotating"}, {"Speed", "120"}}}}), IsEmpty());
  EXPECT_THAT(faults({{"/Case", {{"Kind", "Stationary"}, {"Speed", "120"}}}}),
              ElementsAre("/Case | The parameter \"Speed\" is present in the object \"/Case\" but it is not physically "
                          "valid."));
}

// --- Allowed values --------------------------------------------------------------------------------------------------

class PhysicsValidator2OnValues : public ValidationTest {
 protected:
  Strings faultsOf(std::string const& value) { return faults({{"/Case", {{"Regime", value}}}}); }
};

TEST_F(PhysicsValidator2OnValues, OneOfTheAllowedValuesIsInOrder) {
  rule("/Case", Param("Regime").allowed({"Laminar", "Turbulent"}));
  EXPECT_THAT(faultsOf("Turbulent"), IsEmpty());
}

TEST_F(PhysicsValidator2OnValues, AnyOtherIsReportedWithTheAllowedOnes) {
  rule("/Case", Param("Regime").allowed({"Laminar", "Turbulent"}));
  EXPECT_THAT(faultsOf("Fast"),
              ElementsAre("/Case | The parameter \"Regime\" in \"/Case\" has the value \"Fast\". This "
                          "does not match any of the allowed values: \"Laminar, Turbulent\"."));
}

TEST_F(PhysicsValidator2OnValues, TheCaseOfLettersAndInnerBlanksCount) {
  rule("/Case", Param("Regime").allowed({"Very Laminar"}));
  EXPECT_THAT(faultsOf("very laminar"),
              ElementsAre("/Case | The parameter \"Regime\" in \"/Case\" has the value \"very laminar\". This does not "
                          "match any of the allowed values: \"Very Laminar\"."));
  EXPECT_THAT(
      faultsOf("Very  Laminar"),
      ElementsAre("/Case | The parameter \"Regime\" in \"/Case\" has the value \"Very  Laminar\". This does not "
                  "match any of the allowed values: \"Very Laminar\"."));
}

TEST_F(PhysicsValidator2OnValues, AnAllowedValueIsNotTrimmed) {
  rule("/Case", Param("Regime").allowed({" Laminar"}));
  EXPECT_THAT(faultsOf("Laminar"), ElementsAre("/Case | The parameter \"Regime\" in \"/Case\" has the value "
                                               "\"Laminar\". This does not match any of the allowed values: \" "
                                               "Laminar\"."));
}

TEST_F(PhysicsValidator2OnValues, WithAnEmptyListEveryValueFails) {
  rule("/Case", Param("Regime").allowed({}));
  EXPECT_THAT(faultsOf("Laminar"), ElementsAre("/Case | The parameter \"Regime\" in \"/Case\" has the value "
                                               "\"Laminar\". This does not match any of the allowed values: \"\"."));
}

TEST_F(PhysicsValidator2OnValues, ASubsetDoesNotNarrowWhatIsAllowed) {
  rule("/Case", Param("Regime").allowed({"Laminar", "Turbulent"}).subset({"Laminar"}));
  EXPECT_THAT(faultsOf("Turbulent"), IsEmpty());
}

TEST_F(PhysicsValidator2OnValues, AListThatIsAdviceIsNotConsulted) {
  BetaLoggingController beta;
  validator().setBetaLoggingController(&beta);
  rule("/Case", Param("Regime").allowed({"Laminar"}).anyValue().betaValue("Laminar", "not released"));
  EXPECT_THAT(faultsOf("Fast"), IsEmpty());
  EXPECT_THAT(faultsOf("Laminar"), IsEmpty());
}

TEST_F(PhysicsValidator2OnValues, AnAbsentParameterHasNoValueToCheck) {
  rule("/Case", Param("Regime").allowed({"Laminar"}));
  EXPECT_THAT(faults(withoutRegime), IsEmpty());
}

TEST_F(PhysicsValidator2OnValues, AnUnavailableParameterIsNotCheckedForItsValue) {
  rule("/Case", Param("Regime").allowed({"Laminar"}).unavailable());
  EXPECT_THAT(faultsOf("Fast"), ElementsAre(strayRegime));
}

TEST_F(PhysicsValidator2OnValues, AListOfAllowedItemsIsInOrder) {
  rule("/Case", Param("Regime").list().allowed({"a", "b", "c"}));
  EXPECT_THAT(faultsOf("c,a,c"), IsEmpty());
}

TEST_F(PhysicsValidator2OnValues, DisallowedItemsAreReportedOnceAndSorted) {
  rule("/Case", Param("Regime").list().allowed({"ok"}));
  EXPECT_THAT(faultsOf("b,ok,a,b"), ElementsAre("/Case | The parameter \"Regime\" in \"/Case\" holds the following "
                                                "disallowed values: \"a,b\". (Allowed values are: \"ok\".)"));
}

TEST_F(PhysicsValidator2OnValues, OneDisallowedItemIsOneValueHoweverOftenItStandsThere) {
  rule("/Case", Param("Regime").list().allowed({"v", "w", "x", "y", "z"}));
  EXPECT_THAT(faultsOf("b,b,v,b"),
              ElementsAre("/Case | The parameter \"Regime\" in \"/Case\" holds the following disallowed value: \"b\". "
                          "(Allowed values are: \"v, w, x, y, ...\".)"));
}

TEST_F(PhysicsValidator2OnValues, ItemsAreNotTrimmed) {
  rule("/Case", Param("Regime").list().allowed({"a", "b"}));
  EXPECT_THAT(faultsOf("a, b"),
              ElementsAre("/Case | The parameter \"Regime\" in \"/Case\" holds the following disallowed "
                          "value: \" b\". (Allowed values are: \"a, b\".)"));
}

TEST_F(PhysicsValidator2OnValues, ALongAllowedListIsHeldAgainstEveryObject) {
  Strings groups;
  for (int i = 0; i < 500; ++i) groups.push_back("Group " + std::to_string(i));
  rule("/Case", Child("Boundary"));
  rule("/Case/Boundary", Param("Location").allowed(SharedStrings(groups)));
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
  rule("/Case", Child("Solver").singleton().required());
  rule("/Case/Solver", Param("Scheme"));
  EXPECT_THAT(faults(caseWith({"Solver"})), IsEmpty());
}

TEST_F(PhysicsValidator2OnChildren, AnAvailableSingletonThatIsAbsentAndOptionalIsInOrder) {
  rule("/Case", Child("Solver").singleton());
  rule("/Case/Solver", Param("Scheme").required());
  EXPECT_THAT(faults(caseWith({})), IsEmpty());
}

TEST_F(PhysicsValidator2OnChildren, AnAvailableSingletonThatIsAbsentAndRequiredIsMissingWhenItHasSomethingToSet) {
  rule("/Case", Child("Solver").singleton().required());
  rule("/Case/Solver", Param("Scheme"));
  EXPECT_THAT(faults(caseWith({})), ElementsAre("/Case | There must be an object of type \"Solver\" in the object "
                                                "\"/Case\" but it does not exist."));
}

TEST_F(PhysicsValidator2OnChildren, AnUnavailableSingletonThatIsPresentIsInvalidAndNotEntered) {
  rule("/Case", Child("Solver").singleton().unavailable().required());
  rule("/Case/Solver", Param("Scheme").required());
  EXPECT_THAT(faults(caseWith({"Solver"})),
              ElementsAre("/Case | The object \"Solver\" is present in the object \"/Case\" but it is not physically "
                          "valid."));
}

TEST_F(PhysicsValidator2OnChildren, AnUnavailableSingletonThatIsAbsentIsInOrderAlsoWhenRequired) {
  rule("/Case", Child("Solver").singleton().unavailable().required());
  rule("/Case/Solver", Param("Scheme").required());
  EXPECT_THAT(faults(caseWith({})), IsEmpty());
}

TEST_F(PhysicsValidator2OnChildren, NamedObjectsWithoutAllowedNamesMayHaveAnyName) {
  rule("/Case", Child("Domain"));
  EXPECT_THAT(faults(caseWith({"Domain:rotor", "Domain:stator"})), IsEmpty());
}

TEST_F(PhysicsValidator2OnChildren, RequiredNamedObjectsWithoutAllowedNamesAreNeverReported) {
  rule("/Case", Child("Domain").required());
  rule("/Case/Domain", Param("Motion").required());
  EXPECT_THAT(faults(caseWith({})), IsEmpty());
}

TEST_F(PhysicsValidator2OnChildren, OneObjectOfAnUnavailableTypeIsNamed) {
  rule("/Case", Child("Domain").unavailable());
  EXPECT_THAT(faults(caseWith({"Domain:rotor"})),
              ElementsAre("/Case | The object \"Domain: rotor\" is present in the object \"/Case\" but it is not "
                          "physically valid."));
}

TEST_F(PhysicsValidator2OnChildren, SeveralObjectsOfAnUnavailableTypeAreListedInOneMessage) {
  rule("/Case", Child("Domain").unavailable());
  EXPECT_THAT(faults(caseWith({"Domain:stator", "Domain:rotor", "Domain:casing"})),
              ElementsAre("/Case | Objects of type \"Domain\" (names: casing,rotor,stator) are present in the object "
                          "\"/Case\" but the existence of this type is not physically valid."));
}

TEST_F(PhysicsValidator2OnChildren, NoObjectOfAnUnavailableTypeIsInOrder) {
  rule("/Case", Child("Domain").unavailable().required().names({"rotor"}));
  EXPECT_THAT(faults(caseWith({"Solver"})), IsEmpty());
}

TEST_F(PhysicsValidator2OnChildren, ANameThatIsNotAllowedIsReported) {
  rule("/Case", Child("Domain").names({"rotor", "stator"}));
  EXPECT_THAT(faults(caseWith({"Domain:rotor", "Domain:casing"})),
              ElementsAre("/Case | The object \"/Case\" contains the following object: \"casing\" whose name is not in "
                          "the set of those allowed: \"rotor, stator\"."));
}

TEST_F(PhysicsValidator2OnChildren, NamesThatAreNotAllowedAreListedInFullAndTheAllowedOnesShort) {
  rule("/Case", Child("Domain").names({"z", "y", "x", "w", "v"}));
  EXPECT_THAT(faults(caseWith({"Domain:e", "Domain:d", "Domain:c", "Domain:b", "Domain:a", "Domain:z"})),
              ElementsAre("/Case | The object \"/Case\" contains the following objects: \"a,b,c,d,e\" whose names are "
                          "not in the set of those allowed: \"z, y, x, w, ...\"."));
}

TEST_F(PhysicsValidator2OnChildren, OptionalNamesNeedNotBeThere) {
  rule("/Case", Child("Domain").names({"rotor", "stator"}));
  rule("/Case/Domain", Param("Motion").required());
  EXPECT_THAT(faults(caseWith({})), IsEmpty());
}

TEST_F(PhysicsValidator2OnChildren, AllNamesOfARequiredTypeMustBeThere) {
  rule("/Case", Child("Domain").names({"stator", "rotor", "casing"}).required());
  rule("/Case/Domain", Param("Motion"));
  EXPECT_THAT(faults(caseWith({"Domain:casing"})),
              ElementsAre("/Case | The object \"/Case\" does not contain the Domain objects: \"rotor,stator\", which "
                          "must be present."));
}

TEST_F(PhysicsValidator2OnChildren, NamesTooManyAreReportedBeforeThoseThatAreMissing) {
  rule("/Case", Child("Domain").names({"a", "b"}).required());
  rule("/Case/Domain", Param("Motion"));
  EXPECT_THAT(
      faults(caseWith({"Domain:c"})),
      ElementsAre("/Case | The object \"/Case\" contains the following object: \"c\" whose name is not in the set "
                  "of those allowed: \"a, b\".",
                  "/Case | The object \"/Case\" does not contain the Domain objects: \"a,b\", which must be "
                  "present."));
}

TEST_F(PhysicsValidator2OnChildren, ARelaxedTypeIsNotJudgedButItsObjectsAre) {
  rule("/Case", Child("Solver").singleton().required().relaxed(), Child("Output").singleton().unavailable().relaxed(),
       Child("Domain").names({"stator"}).required().relaxed(), Child("Boundary").unavailable().relaxed());
  rule("/Case/Solver", Param("Scheme"));
  rule("/Case/Domain", Param("Motion").required());
  EXPECT_THAT(
      faults(caseWith({"Output", "Domain:rotor", "Boundary:inlet"})),
      ElementsAre("/Case/Domain:rotor | The parameter \"Motion\" should exist in the object \"/Case/Domain:rotor\" "
                  "but is not present."));
}

TEST_F(PhysicsValidator2OnChildren, ObjectsWithoutAnEntryInTheirParentAreNotVisited) {
  rule("/Case", Child("Solver").singleton());
  rule("/Case/Domain", Param("Motion").required());
  EXPECT_THAT(faults(caseWith({"Domain:rotor"})), IsEmpty());
}

// --- Beta messages ---------------------------------------------------------------------------------------------------

class PhysicsValidator2OnBetaMessages : public ValidationTest {
 protected:
  /// What the walk of `model` logs, with the levels.
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
  rule("/Case", Param("Regime").allowed({"Laminar"}).beta("Regimes are new."));
  EXPECT_THAT(logged({{"/Case", {{"Regime", "Fast"}}}}),
              ElementsAre("beta /Case/Regime | Regimes are new.",
                          "fault /Case | The parameter \"Regime\" in \"/Case\" has the value \"Fast\". This does not "
                          "match any of the allowed values: \"Laminar\"."));
}

TEST_F(PhysicsValidator2OnBetaMessages, AnAbsentParameterHasNone) {
  rule("/Case", Param("Regime").beta("Regimes are new."));
  EXPECT_THAT(logged(withoutRegime), IsEmpty());
}

TEST_F(PhysicsValidator2OnBetaMessages, AnUnavailableParameterHasNone) {
  rule("/Case", Param("Regime").beta("Regimes are new.").when([](std::string const&, EvalContext& evalContext) {
    evalContext.getBetaLoggingController()->gatherParamMessage("Regime", "Regimes are new.");
    return false;
  }));
  EXPECT_THAT(logged(withRegime),
              ElementsAre("fault /Case | The parameter \"Regime\" is present in the object \"/Case\" but it is not "
                          "physically valid."));
}

TEST_F(PhysicsValidator2OnBetaMessages, SeveralMessagesForOneItemStandOnALineEach) {
  rule("/Case", Param("Regime").beta("Regimes are new.").when([](std::string const&, EvalContext& evalContext) {
    evalContext.getBetaLoggingController()->gatherParamMessage("Regime", "Ask support.");
    return true;
  }));
  EXPECT_THAT(logged(withRegime), ElementsAre("beta /Case/Regime | Ask support.\nRegimes are new."));
}

TEST_F(PhysicsValidator2OnBetaMessages, OfAValueTheMessageComesWhenItIsAllowedAndSet) {
  rule("/Case", Param("Regime").allowed({"Laminar", "Turbulent"}).betaValue("Laminar", "Laminar flow is new."),
       Param("Second").allowed({"Laminar", "Turbulent"}).betaValue("Laminar", "Laminar flow is new."),
       Param("Third").allowed({"Turbulent"}).betaValue("Laminar", "Laminar flow is new."));
  EXPECT_THAT(logged({{"/Case", {{"Regime", "Laminar"}, {"Second", "Turbulent"}, {"Third", "Laminar"}}}}),
              ElementsAre("beta /Case/Regime | Laminar flow is new.",
                          "fault /Case | The parameter \"Third\" in \"/Case\" has the value \"Laminar\". This does not "
                          "match any of the allowed values: \"Turbulent\"."));
}

TEST_F(PhysicsValidator2OnBetaMessages, OfAListTheMessagesOfItsAllowedItemsComeSortedBehindTheVerdict) {
  rule("/Case", Param("Models")
                    .list()
                    .allowed({"Heat", "Mass", "Ions"})
                    .betaValue("Mass", "Mass is new.")
                    .betaValue("Heat", "Heat is new."));
  EXPECT_THAT(logged({{"/Case", {{"Models", "Mass,Ions,Wear,Heat,Mass"}}}}),
              ElementsAre("fault /Case | The parameter \"Models\" in \"/Case\" holds the following disallowed value: "
                          "\"Wear\". (Allowed values are: \"Heat, Mass, Ions\".)",
                          "beta /Case/Models | Heat is new.", "beta /Case/Models | Mass is new."));
}

TEST_F(PhysicsValidator2OnBetaMessages, OfAPresentSingletonTheMessageComesUnderItsPath) {
  rule("/Case", Child("Solver").singleton().beta("Solvers are new."),
       Child("Output").singleton().beta("Outputs are new."));
  EXPECT_THAT(logged({{"/Case/Solver", {{"Scheme", "Upwind"}}}}), ElementsAre("beta /Case/Solver | Solvers are new."));
}

TEST_F(PhysicsValidator2OnBetaMessages, OfNamedObjectsEachHasTheMessagesOfItsTypeBeforeTheNamesAreJudged) {
  rule(
      "/Case",
      Child("Domain").names({"a", "b"}).beta("Domains are new.").when([](std::string const&, EvalContext& evalContext) {
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
  rule("/Case", Child("Domain").beta("Domains are new."), Child("Boundary").relaxed().beta("Boundaries are new."));
  EXPECT_THAT(logged({{"/Case/Boundary:inlet", {{"Kind", "Inlet"}}}}), IsEmpty());
}

TEST_F(PhysicsValidator2OnBetaMessages, APlaceholderOfAnAbsentObjectHasNone) {
  rule("/Case", Child("Solver").singleton().required().beta("Solvers are new."));
  rule("/Case/Solver", Param("Scheme").beta("Schemes are new."));
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
  rule("/Case", Param("Regime").when(gatherForAll), Param("Relaxed").relaxed().when(gatherForAll), Param("Time"),
       Child("Solver").when(gatherForAll), Child("Domain"));
  EXPECT_THAT(logged({{"/Case", {{"Time", "1"}}}, {"/Case/Domain:rotor", {}}}), IsEmpty());
  EXPECT_FALSE(beta_.anyLoggedMessages());
}

TEST_F(PhysicsValidator2OnBetaMessages, WhatARuleGatheredInAPlaceholderDoesNotReachTheNext) {
  rule("/Case", Child("Solver").singleton().required(), Child("Domain"));
  rule("/Case/Solver", Param("Scheme").when([](std::string const&, EvalContext& evalContext) {
    evalContext.getBetaLoggingController()->gatherObjMessage("Domain", "leaked");
    return false;
  }));
  EXPECT_THAT(logged({{"/Case/Domain:rotor", {{"Motion", "on"}}}}), IsEmpty());
}

TEST_F(PhysicsValidator2OnBetaMessages, WithoutAControllerNoneAreLogged) {
  rule("/Case", Param("Regime").allowed({"Laminar"}).beta("Regimes are new.").betaValue("Laminar", "Laminar is new."),
       Child("Solver").singleton().beta("Solvers are new."), Child("Domain").beta("Domains are new."));
  rules_.attach(&beta_);
  EXPECT_THAT(faults({{"/Case", {{"Regime", "Laminar"}}}, {"/Case/Solver", {}}, {"/Case/Domain:rotor", {}}}),
              IsEmpty());
}

TEST_F(PhysicsValidator2OnBetaMessages, MessagesReachTheValidatorsControllerWhateverIsAttachedToTheDatabase) {
  BetaLoggingController attached;
  rules_.attach(&attached);
  rule("/Case", Param("Regime").beta("Regimes are new."));
  EXPECT_THAT(logged(withRegime), ElementsAre("beta /Case/Regime | Regimes are new."));
  EXPECT_FALSE(attached.anyLoggedMessages());
}

TEST_F(PhysicsValidator2OnBetaMessages, ForTheBasicLoggerABetaMessageIsAnError) {
  rule("/Case", Param("Regime").beta("Regimes are new."));
  validator().setBetaLoggingController(&beta_);
  EXPECT_EQ(validate(withRegime), tarn::PhysicsValidator2::ValDependencyErrors);
  EXPECT_THAT(loggedFaults(), ElementsAre("/Case/Regime | Regimes are new."));
}

}  // namespace
}  // namespace tarn
