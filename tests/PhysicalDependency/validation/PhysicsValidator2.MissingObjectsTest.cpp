// Required objects that are absent: when their absence is a fault, the messages and their order, and that nothing of
// the trial is left. Conditions that read the model from inside a placeholder show what the walk does there.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "PhysicalDependency/validation/ValidationFixture.h"

namespace tarn {
namespace {

using namespace test;
using namespace validation_test;
using testing::ElementsAre;
using testing::IsEmpty;

std::string const noSolver =
    "/Case | There must be an object of type \"Solver\" in the object \"/Case\" but it does not exist.";

std::string noDomain(std::string const& objects, std::string const& names) {
  return "/Case | The object \"/Case\" does not contain the Domain " + objects + ": \"" + names +
         "\", which must be present.";
}

/// Available in the object of that path only.
Decision onlyIn(std::string path) {
  return [path = std::move(path)](std::string const& objPath, EvalContext&) { return objPath == path; };
}

class PhysicsValidator2OnMissingObjects : public ValidationTest {
 protected:
  ModelState const pump_ = {{"/Case", {{"Title", "Pump"}}}};

  void requiredSolver() { rule("/Case").child("Solver").singleton().required(); }
  void requiredDomains(Strings const& names) { rule("/Case").child("Domain").required().allowedNames(list(names)); }

  /// Notes under `what` whether the cache is in use, and gives `result`.
  Decision notingCache(std::string what, bool result) {
    return [this, what = std::move(what), result](std::string const& objPath, EvalContext& evalContext) {
      cacheNotes_.push_back(what + " in " + objPath + (evalContext.getCache()->isEnabled() ? " on" : " off"));
      return result;
    };
  }
  Strings cacheNotes_;
};

// --- When the absence of a singleton is a fault ----------------------------------------------------------------------

TEST_F(PhysicsValidator2OnMissingObjects, AnAvailableParameterMakesTheObjectNeededAlsoWhenItIsOptional) {
  requiredSolver();
  rule("/Case/Solver").param("Scheme");
  EXPECT_THAT(faults(pump_), ElementsAre(noSolver));
}

TEST_F(PhysicsValidator2OnMissingObjects, OneOptionalParameterAmongAHundredMakesTheObjectNeeded) {
  requiredSolver();
  for (int i = 1; i < 100; ++i) rule("/Case/Solver").param("Scheme " + std::to_string(i)).availableWhen(never());
  rule("/Case/Solver").param("Order");
  EXPECT_THAT(faults(pump_), ElementsAre(noSolver));
}

TEST_F(PhysicsValidator2OnMissingObjects, WithoutAnAvailableParameterTheObjectIsNotNeeded) {
  requiredSolver();
  rule("/Case/Solver").param("Scheme").availableWhen(never()).required();
  EXPECT_THAT(faults(pump_), IsEmpty());
}

TEST_F(PhysicsValidator2OnMissingObjects, ARelaxedParameterDoesNotMakeTheObjectNeeded) {
  requiredSolver();
  rule("/Case/Solver").param("Scheme").relaxed().required().param("Order").availableWhen(never());
  EXPECT_THAT(faults(pump_), IsEmpty());
}

TEST_F(PhysicsValidator2OnMissingObjects, WithoutParametersOfItsOwnTheObjectIsNotNeeded) {
  requiredSolver();
  rule("/Case/Solver").child("Output").singleton();
  EXPECT_THAT(faults(pump_), IsEmpty());
}

TEST_F(PhysicsValidator2OnMissingObjects, ATypeThatTheRulesDoNotKnowIsNotNeeded) {
  requiredSolver();
  EXPECT_THAT(faults(pump_), IsEmpty());
  EXPECT_THAT(faults({{"/Case", {{"Title", "Fan"}}}}), IsEmpty());
}

TEST_F(PhysicsValidator2OnMissingObjects, ValuesAreNotAskedFor) {
  requiredSolver();
  rule("/Case/Solver").param("Scheme").required().allowed({"Upwind"}).param("Order").required();
  EXPECT_THAT(faults(pump_), ElementsAre(noSolver));
}

// --- Below the placeholder -------------------------------------------------------------------------------------------

TEST_F(PhysicsValidator2OnMissingObjects, ARequiredObjectBelowMakesTheOuterOneNeededAndIsNotReportedItself) {
  requiredSolver();
  rule("/Case/Solver").param("Scheme").availableWhen(never()).child("Time").singleton().required();
  rule("/Case/Solver/Time").param("Step").required();
  EXPECT_THAT(faults(pump_), ElementsAre(noSolver));
}

TEST_F(PhysicsValidator2OnMissingObjects, RequiredNamedObjectsBelowASingletonMakeItNeeded) {
  requiredSolver();
  rule("/Case/Solver").child("Level").required().allowedNames({"fine", "coarse"});
  rule("/Case/Solver/Level").param("Sweeps").availableWhen(decided(onlyIn("/Case/Solver/Level:coarse")));
  EXPECT_THAT(faults(pump_), ElementsAre(noSolver));
}

TEST_F(PhysicsValidator2OnMissingObjects, ARequiredObjectFarBelowMakesTheOuterOneNeeded) {
  requiredSolver();
  rule("/Case/Solver").child("Time").singleton().required();
  rule("/Case/Solver/Time").child("Adaption").singleton().required();
  rule("/Case/Solver/Time/Adaption").param("Target");
  EXPECT_THAT(faults(pump_), ElementsAre(noSolver));
}

TEST_F(PhysicsValidator2OnMissingObjects, AnOptionalObjectBelowDoesNotCount) {
  requiredSolver();
  rule("/Case/Solver").child("Time").singleton();
  rule("/Case/Solver/Time").param("Step").required();
  EXPECT_THAT(faults(pump_), IsEmpty());
}

TEST_F(PhysicsValidator2OnMissingObjects, AnUnavailableObjectBelowDoesNotCount) {
  requiredSolver();
  rule("/Case/Solver").child("Time").singleton().required().availableWhen(never());
  rule("/Case/Solver/Time").param("Step").required();
  EXPECT_THAT(faults(pump_), IsEmpty());
}

TEST_F(PhysicsValidator2OnMissingObjects, ARelaxedRequiredObjectBelowCounts) {
  requiredSolver();
  rule("/Case/Solver").child("Time").singleton().required().relaxed();
  rule("/Case/Solver/Time").param("Step");
  EXPECT_THAT(faults(pump_), ElementsAre(noSolver));
}

TEST_F(PhysicsValidator2OnMissingObjects, RequiredNamedObjectsBelowWithoutAllowedNamesDoNotCount) {
  requiredSolver();
  rule("/Case/Solver").child("Level").required();
  rule("/Case/Solver/Level").param("Sweeps").required();
  EXPECT_THAT(faults(pump_), IsEmpty());
}

TEST_F(PhysicsValidator2OnMissingObjects, OnceNeededNothingMoreIsPutIntoThePlaceholder) {
  int asked = 0;
  requiredSolver();
  rule("/Case/Solver").param("Scheme").child("Time").singleton().required();
  rule("/Case/Solver/Time").param("Step").availableWhen(decided(counting(asked)));
  EXPECT_THAT(faults(pump_), ElementsAre(noSolver));
  EXPECT_EQ(asked, 0);
}

TEST_F(PhysicsValidator2OnMissingObjects, BelowANamedPlaceholderASingletonCounts) {
  requiredDomains({"rotor"});
  rule("/Case/Domain").child("Motion").singleton().required();
  rule("/Case/Domain/Motion").param("Speed");
  EXPECT_THAT(faults(pump_), ElementsAre(noDomain("object", "rotor")));
}

TEST_F(PhysicsValidator2OnMissingObjects, BelowANamedPlaceholderNamedObjectsAreNotFound) {
  requiredDomains({"rotor"});
  rule("/Case/Domain").child("Boundary").required().allowedNames({"inlet"});
  rule("/Case/Domain/Boundary").param("Kind").required();
  EXPECT_THAT(faults(pump_), IsEmpty());
}

// --- Groups of named objects -----------------------------------------------------------------------------------------

TEST_F(PhysicsValidator2OnMissingObjects, NamedObjectsAreReportedTogether) {
  requiredDomains({"b", "a"});
  rule("/Case/Domain").param("Motion");
  EXPECT_THAT(faults(pump_), ElementsAre(noDomain("objects", "a,b")));
}

TEST_F(PhysicsValidator2OnMissingObjects, OnlyTheOnesThatAreNeededAreReported) {
  requiredDomains({"a", "b", "c"});
  rule("/Case/Domain").param("Motion").availableWhen(decided(onlyIn("/Case/Domain:b")));
  EXPECT_THAT(faults(pump_), ElementsAre(noDomain("object", "b")));
}

TEST_F(PhysicsValidator2OnMissingObjects, WithTheLastOneNotNeededTheOthersAreStillReported) {
  requiredDomains({"a", "b"});
  rule("/Case/Domain").param("Motion").availableWhen(decided(onlyIn("/Case/Domain:a")));
  EXPECT_THAT(faults(pump_), ElementsAre(noDomain("object", "a")));
}

TEST_F(PhysicsValidator2OnMissingObjects, WithNoneNeededNothingIsSaid) {
  requiredDomains({"a", "b"});
  rule("/Case/Domain").param("Motion").availableWhen(never());
  EXPECT_THAT(faults(pump_), IsEmpty());
}

TEST_F(PhysicsValidator2OnMissingObjects, NoneIsReportedInFullHoweverMany) {
  Strings names;
  std::string full;
  for (int i = 10; i < 40; ++i) {
    names.push_back("d" + std::to_string(i));
    full += (full.empty() ? "" : ",") + names.back();
  }
  requiredDomains(names);
  rule("/Case/Domain").param("Motion");
  EXPECT_THAT(faults(pump_), ElementsAre(noDomain("objects", full)));
}

TEST_F(PhysicsValidator2OnMissingObjects, RealObjectsOfTheTypeAreJudgedAfterTheMessageAboutTheAbsentOnes) {
  requiredDomains({"a", "b", "c"});
  rule("/Case/Domain").param("Motion").required().param("Speed").availableWhen(never());
  EXPECT_THAT(faults({{"/Case/Domain:a", {{"Speed", "1"}}}, {"/Case/Domain:c", {{"Motion", "on"}}}}),
              ElementsAre(noDomain("object", "b"),
                          "/Case/Domain:a | The parameter \"Motion\" should exist in the object \"/Case/Domain:a\" but "
                          "is not present.",
                          "/Case/Domain:a | The parameter \"Speed\" is present in the object \"/Case/Domain:a\" but it "
                          "is not physically valid."));
}

TEST_F(PhysicsValidator2OnMissingObjects, ANameThatEqualsTheTypeIsTriedOutAsWell) {
  requiredDomains({"Domain", "rotor"});
  rule("/Case/Domain").param("Motion");
  EXPECT_THAT(faults(pump_), ElementsAre(noDomain("objects", "Domain,rotor")));
}

// --- Several groups --------------------------------------------------------------------------------------------------

TEST_F(PhysicsValidator2OnMissingObjects, SeveralGroupsOfOneParentAreReportedInTheOrderOfTheRules) {
  rule("/Case").child("Solver").singleton().required();
  rule("/Case").child("Domain").required().allowedNames({"rotor"});
  rule("/Case").child("Output").singleton().required();
  rule("/Case/Solver").param("Scheme");
  rule("/Case/Domain").param("Motion");
  rule("/Case/Output").param("Interval");
  EXPECT_THAT(faults(pump_),
              ElementsAre(noSolver, noDomain("object", "rotor"),
                          "/Case | There must be an object of type \"Output\" in the object \"/Case\" but it does not "
                          "exist."));
}

TEST_F(PhysicsValidator2OnMissingObjects, EachParentHasItsOwnGroup) {
  rule("/Case").child("Domain");
  rule("/Case/Domain").child("Motion").singleton().required();
  rule("/Case/Domain/Motion").param("Speed").availableWhen(decided([](std::string const& objPath, EvalContext&) {
    return objPath != "/Case/Domain:stator/Motion";
  }));
  EXPECT_THAT(faults({{"/Case/Domain:casing", {{"a", "1"}}}, {"/Case/Domain:rotor", {}}, {"/Case/Domain:stator", {}}}),
              ElementsAre("/Case/Domain:casing | There must be an object of type \"Motion\" in the object "
                          "\"/Case/Domain:casing\" but it does not exist.",
                          "/Case/Domain:rotor | There must be an object of type \"Motion\" in the object "
                          "\"/Case/Domain:rotor\" but it does not exist."));
}

TEST_F(PhysicsValidator2OnMissingObjects, AGroupThatIsNotNeededDoesNotSilenceTheNext) {
  rule("/Case").child("Output").singleton().required();
  rule("/Case").child("Solver").singleton().required();
  rule("/Case").child("View").availableWhen(never());
  rule("/Case/Output").param("Interval").availableWhen(never());
  rule("/Case/Solver").param("Scheme");
  EXPECT_THAT(faults({{"/Case/View:main", {{"Zoom", "2"}}}}),
              ElementsAre(noSolver,
                          "/Case | The object \"View: main\" is present in the object \"/Case\" but it is not "
                          "physically valid."));
}

// --- The model that the rules see, and the state after a trial -------------------------------------------------------

TEST_F(PhysicsValidator2OnMissingObjects, RulesSeeThePlaceholderForAsLongAsItIsTriedOut) {
  Strings notes;
  auto const look = [&notes](std::string const& objPath, EvalContext& evalContext) {
    Strings names;
    evalContext.getDB()->getChildObjectNamesByType("/Case", "Domain", names);
    std::string note = objPath + (evalContext.getDB()->hasObject("/Case/Solver") ? " solver" : "");
    for (std::string const& name : names) note += " " + name;
    notes.push_back(note);
    return true;
  };
  rule("/Case").param("Regime").availableWhen(decided(look));
  rule("/Case").child("Solver").singleton().required();
  rule("/Case").child("Domain").required().allowedNames({"b", "a"});
  rule("/Case").child("Output").availableWhen(decided(look));
  rule("/Case/Solver").param("Scheme").availableWhen(decided(look));
  rule("/Case/Domain").param("Motion").availableWhen(decided(look));
  faults({{"/Case/Domain:a", {{"Motion", "on"}}}});
  EXPECT_THAT(notes,
              ElementsAre("/Case a", "/Case/Solver solver a", "/Case/Domain:b b a", "/Case/Domain:a a", "/Case a"));
}

TEST_F(PhysicsValidator2OnMissingObjects, RulesInAPlaceholderSeeWhatItWouldHaveToHold) {
  Strings seen;
  requiredSolver();
  rule("/Case/Solver").child("Time").singleton().required();
  rule("/Case/Solver").child("Level").required().allowedNames({"fine"});
  rule("/Case/Solver").child("Optional").singleton();
  rule("/Case/Solver").child("Unavailable").singleton().required().availableWhen(never());
  rule("/Case/Solver")
      .child("Last")
      .availableWhen(decided([&seen](std::string const& objPath, EvalContext& evalContext) {
        evalContext.getDB()->getChildObjectPaths(objPath, seen);
        return true;
      }));
  EXPECT_THAT(faults(pump_), IsEmpty());
  EXPECT_THAT(seen, ElementsAre("/Case/Solver/Time", "/Case/Solver/Level:fine"));
}

TEST_F(PhysicsValidator2OnMissingObjects, BehindAGroupRulesReadTheModelAloneAgain) {
  std::string scheme;
  std::string speed;
  rule("/Case").child("Solver").singleton().required();
  rule("/Case").child("Domain").required().allowedNames({"rotor"});
  rule("/Case").child("Output").availableWhen(decided([&](std::string const&, EvalContext& evalContext) {
    scheme = evalContext.getDB()->getParameterValue("/Case/Solver Control", "Scheme");
    speed = evalContext.getDB()->getParameterValue("/Case/Domain:stator/Motion:rotor", "Speed");
    return true;
  }));
  EXPECT_THAT(faults({{"/Case/Solver Control", {{"Scheme", "Upwind"}}},
                      {"/Case/Domain:stator/Motion:rotor", {{"Speed", "120"}}}}),
              ElementsAre("/Case | The object \"/Case\" contains the following object: \"stator\" whose name is not in "
                          "the set of those allowed: \"rotor\"."));
  EXPECT_EQ(scheme, "Upwind");
  EXPECT_EQ(speed, "120");
}

TEST_F(PhysicsValidator2OnMissingObjects, NamesOfOneGroupAreNothingToTheNext) {
  rule("/Case").child("Domain").required().allowedNames({"rotor"}).child("Solver").singleton().required();
  rule("/Case/Solver").child("Level").required().allowedNames({"fine"});
  rule("/Case/Solver/Level").param("Sweeps");
  EXPECT_THAT(faults(pump_), ElementsAre(noSolver));
}

TEST_F(PhysicsValidator2OnMissingObjects, TheValidatedModelIsLeftAsItWas) {
  requiredSolver();
  rule("/Case/Solver").child("Time").singleton().required();
  rule("/Case/Solver/Time").param("Step");
  Strings children{"before"};
  globalCheck("children", [&children](EvalContext& evalContext) {
    evalContext.getDB()->getChildObjectPaths("/Case", children);
    EXPECT_FALSE(evalContext.getDB()->hasObject("/Case/Solver"));
    EXPECT_FALSE(evalContext.getDB()->hasObject("/Case/Solver/Time"));
    return DecidedGlobalCheck::Result(true, PhysicsErrorMsg(""));
  });
  validate(pump_);
  EXPECT_THAT(children, IsEmpty());
  EXPECT_THAT(loggedFaults(), ElementsAre(noSolver));
}

TEST_F(PhysicsValidator2OnMissingObjects, AnObjectThatHasComeIsJudgedAsARealOne) {
  requiredSolver();
  rule("/Case/Solver").param("Scheme").required();
  EXPECT_THAT(faults(pump_), ElementsAre(noSolver));
  EXPECT_THAT(faults({{"/Case", {{"Title", "Pump"}}}, {"/Case/Solver", {{"Scheme", "Upwind"}}}}), IsEmpty());
  EXPECT_THAT(faults({{"/Case", {{"Title", "Fan"}}}, {"/Case/Solver", {}}}),
              ElementsAre("/Case/Solver | The parameter \"Scheme\" should exist in the object \"/Case/Solver\" but is "
                          "not present."));
}

// --- The cache -------------------------------------------------------------------------------------------------------

TEST_F(PhysicsValidator2OnMissingObjects, TheCacheIsOffInAPlaceholderAndBackOnBehindTheGroup) {
  rule("/Case").param("Regime").availableWhen(decided(notingCache("Regime", true)));
  rule("/Case").child("Solver").singleton().required().availableWhen(decided(notingCache("Solver", true)));
  rule("/Case").child("Output").availableWhen(decided(notingCache("Output", true)));
  rule("/Case/Solver").param("Scheme").availableWhen(decided(notingCache("Scheme", false)));
  rule("/Case/Solver").child("Time").singleton().required().availableWhen(decided(notingCache("Time", true)));
  rule("/Case/Solver/Time").param("Step").availableWhen(decided(notingCache("Step", false)));
  EXPECT_THAT(faults(pump_), IsEmpty());
  EXPECT_THAT(cacheNotes_,
              ElementsAre("Regime in /Case on", "Solver in /Case on", "Scheme in /Case/Solver off",
                          "Time in /Case/Solver off", "Step in /Case/Solver/Time off", "Output in /Case on"));
}

TEST_F(PhysicsValidator2OnMissingObjects, TheCacheIsOffForAllPlaceholdersOfAGroupAndOnForRealObjectsBehindThem) {
  requiredDomains({"a", "b", "c"});
  rule("/Case/Domain").param("Motion").availableWhen(decided(notingCache("Motion", true)));
  EXPECT_THAT(faults({{"/Case/Domain:b", {{"Motion", "on"}}}}), ElementsAre(noDomain("objects", "a,c")));
  EXPECT_THAT(cacheNotes_, ElementsAre("Motion in /Case/Domain:a off", "Motion in /Case/Domain:c off",
                                       "Motion in /Case/Domain:b on"));
}

}  // namespace
}  // namespace tarn
