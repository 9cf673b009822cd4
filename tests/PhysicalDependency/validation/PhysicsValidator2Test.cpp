// The run: which parts of a model count, what is remembered from call to call, the two phases, their order, and the
// state after an exception. The verdicts have tests of their own.

#include <tarn/PhysicsValidator2.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <tarn/Error.h>
#include <tarn/MeasurementSink.h>

#include "PhysicalDependency/validation/ValidationFixture.h"
#include "support/RandomState.h"

namespace tarn {
namespace {

using namespace test;
using namespace validation_test;
using testing::ElementsAre;
using testing::IsEmpty;
using Validator = PhysicsValidator2;

std::string const strayMotion =
    "/Case | The parameter \"Motion\" is present in the object \"/Case\" but it is not physically valid.";

class PhysicsValidator2 : public ValidationTest {
 protected:
  /// A case with one required parameter, one that is never available, and a check that always fails; all are counted.
  void countedRules() {
    rule("/Case").param("Regime").required().availableWhen(decided(counting(regimeAsked_)));
    rule("/Case").param("Motion").availableWhen(never());
    globalCheck("inlet", [this](EvalContext&) {
      ++checkAsked_;
      return DecidedGlobalCheck::Result(false, PhysicsErrorMsg("There must be an inlet."));
    });
  }

  int regimeAsked_ = 0;
  int checkAsked_ = 0;
};

// --- Without a logger, and the results -------------------------------------------------------------------------------

TEST_F(PhysicsValidator2, WithoutALoggerNothingIsDoneNorRemembered) {
  countedRules();
  validator().setLogger(nullptr);
  EXPECT_EQ(validate({{"/Case", {{"Motion", "on"}}}}), Validator::ValStatusClean);
  EXPECT_EQ(regimeAsked_, 0);
  EXPECT_EQ(checkAsked_, 0);

  validator().setLogger(&logger_);
  EXPECT_EQ(validate({{"/Case", {{"Motion", "on"}}}}), Validator::ValAllErrors);
  EXPECT_THAT(loggedFaults(), ElementsAre(noRegime, strayMotion));
}

TEST_F(PhysicsValidator2, WithoutALoggerWhatWasFoundBeforeStays) {
  countedRules();
  ModelState const model = {{"/Case", {{"Motion", "on"}}}};
  validate(model);
  validator().setLogger(nullptr);
  EXPECT_EQ(validate({{"/Case", {{"Regime", "Laminar"}}}}), Validator::ValStatusClean);
  validator().setLogger(&logger_);
  EXPECT_EQ(validate(model), Validator::ValAllErrors);
  EXPECT_EQ(regimeAsked_, 1);
}

TEST_F(PhysicsValidator2, AModelInOrderIsClean) {
  rule("/Case").param("Regime").required();
  EXPECT_EQ(validate({{"/Case", {{"Regime", "Laminar"}}}}), Validator::ValStatusClean);
  EXPECT_THAT(loggedFaults(), IsEmpty());
}

TEST_F(PhysicsValidator2, TheNumbersOfPhasesAndResultsAreFixed) {
  EXPECT_EQ(static_cast<int>(Validator::ValDependency), 1);
  EXPECT_EQ(static_cast<int>(Validator::ValGlobal), 2);
  EXPECT_EQ(static_cast<int>(Validator::ValAll), 3);
  EXPECT_EQ(static_cast<int>(Validator::ValStatusClean), 0);
  EXPECT_EQ(static_cast<int>(Validator::ValDependencyErrors), 1);
  EXPECT_EQ(static_cast<int>(Validator::ValGlobalErrors), 2);
  EXPECT_EQ(static_cast<int>(Validator::ValAllErrors), 3);
}

TEST_F(PhysicsValidator2, PhasesAndResultsAreCombinedWithoutACast) {
  Validator::ValType const phases = Validator::ValDependency | Validator::ValGlobal;
  Validator::ValStatus const status = Validator::ValDependencyErrors | Validator::ValGlobalErrors;
  EXPECT_EQ(phases, Validator::ValAll);
  EXPECT_EQ(status, Validator::ValAllErrors);
}

// --- What is remembered ----------------------------------------------------------------------------------------------

TEST_F(PhysicsValidator2, TheSameModelIsJudgedOnce) {
  countedRules();
  ModelState const model = {{"/Case", {{"Motion", "on"}}}};
  EXPECT_EQ(validate(model), Validator::ValAllErrors);
  EXPECT_EQ(validate(ModelState(model)), Validator::ValAllErrors);
  EXPECT_EQ(regimeAsked_, 1);
  EXPECT_EQ(checkAsked_, 1);
  EXPECT_THAT(loggedFaults(), ElementsAre(noRegime, strayMotion));
  EXPECT_THAT(logger_.getGlobalErrors(), ElementsAre("There must be an inlet."));
}

TEST_F(PhysicsValidator2, AModelOfWhichJustAsManyBytesAreLeftAsAPathHasIsKnownAgain) {
  countedRules();
  ModelState const model = {{"/Case/Domain", {{"A", "1"}}}, {"/Case/Z", {{"B", "1"}}}};
  ASSERT_EQ(std::string("/Case/Domain").size(), std::string("/Case/Z/B=1\n").size());
  validate(model);
  validate(model);
  EXPECT_EQ(regimeAsked_, 1);
}

TEST_F(PhysicsValidator2, AModelThatLostItsEndIsKnownAgain) {
  countedRules();
  ModelState const whole = {{"/Case", {{"Motion", "on"}}}, {"/Case/Domain:rotor", {{"Title", "Impeller"}}}};
  ModelState const shorter = {{"/Case", {{"Motion", "on"}}}};
  validate(whole);
  validate(shorter);
  EXPECT_EQ(regimeAsked_, 2);
  validate(shorter);
  EXPECT_EQ(regimeAsked_, 2);
}

TEST_F(PhysicsValidator2, AValidatorThatHasSeenOtherModelsReadsTheNextOneAsAFreshOneDoes) {
  rule("/Case").param("Motion");
  auto const read = [this](Validator& validator, ModelState const& model) {
    validator.setLogger(&logger_);
    validator.validate(Validator::ValAll, model, {"/Case"});
    testing::internal::CaptureStdout();
    validator.dumpDB();
    return testing::internal::GetCapturedStdout();
  };
  Strings const values = {"1", "2", " ", "10\n/Case/Motion=1"};
  for (unsigned seed = 1; seed <= 30; ++seed) {
    std::mt19937 random(seed);
    Validator often(&rules_);
    ModelState model = randomState(random, values);
    for (int call = 0; call < 60; ++call) {
      // Other models, and those that differ in one parameter.
      if (random() % 4 == 0) model = randomState(random, values);
      ObjectState& object = std::next(model.begin(), static_cast<std::ptrdiff_t>(random() % model.size()))->second;
      if (!object.empty() && random() % 2 == 0) {
        object.erase(std::next(object.begin(), static_cast<std::ptrdiff_t>(random() % object.size())));
      } else {
        object["Title"] = std::to_string(random() % 200);
      }
      Validator fresh(&rules_);
      ASSERT_EQ(read(often, model), read(fresh, model)) << "seed " << seed << ", call " << call;
    }
  }
}

TEST_F(PhysicsValidator2, OfAChangedModelAParameterWithASlashInItsNameIsNotTakenForTheObjectBelowThatWasThere) {
  rule("/Case").child("Housing").singleton();
  rule("/Case").child("Pump").singleton();
  rule("/Case/Pump").child("Rotor").singleton().required();
  rule("/Case/Pump/Rotor").param("Speed");
  EXPECT_EQ(validate({{"/Case/Housing", {{"Wall", "thin"}}}, {"/Case/Pump/Rotor", {{"Speed", "50"}}}}),
            Validator::ValStatusClean);
  // In the text by which models are compared both are "/Case/Pump/Rotor/Speed=50".
  EXPECT_EQ(validate({{"/Case/Housing", {{"Wall", "thick"}}}, {"/Case/Pump", {{"Rotor/Speed", "50"}}}}),
            Validator::ValDependencyErrors);
  EXPECT_THAT(loggedFaults(),
              ElementsAre("/Case/Pump | There must be an object of type \"Rotor\" in the object \"/Case/Pump\" but it "
                          "does not exist."));
}

TEST_F(PhysicsValidator2, AParameterWithASlashInItsNameThatIsLostIsSeenAlthoughItsLineLooksLikeThatOfAnObjectBelow) {
  rule("/Case").param("Motion").required();
  rule("/Case").param("Rotor/Speed").availableWhen(never());
  EXPECT_EQ(validate({{"/Case", {{"Motion", "on"}, {"Rotor/Speed", "50"}}}}), Validator::ValDependencyErrors);
  EXPECT_EQ(validate({{"/Case", {{"Motion", "on"}}}}), Validator::ValStatusClean);
}

TEST_F(PhysicsValidator2, AFurtherPhaseOfTheSameModelRunsAlone) {
  countedRules();
  ModelState const model = {{"/Case", {{"Motion", "on"}}}};
  EXPECT_EQ(validate(model, Validator::ValDependency), Validator::ValDependencyErrors);
  EXPECT_EQ(checkAsked_, 0);
  EXPECT_EQ(validate(model, Validator::ValGlobal), Validator::ValAllErrors);
  EXPECT_EQ(validate(model, Validator::ValAll), Validator::ValAllErrors);
  EXPECT_EQ(regimeAsked_, 1);
  EXPECT_EQ(checkAsked_, 1);
  EXPECT_THAT(loggedFaults(), ElementsAre(noRegime, strayMotion));
}

TEST_F(PhysicsValidator2, TheGlobalPhaseMayComeFirst) {
  countedRules();
  ModelState const model = {{"/Case", {{"Motion", "on"}}}};
  EXPECT_EQ(validate(model, Validator::ValGlobal), Validator::ValGlobalErrors);
  EXPECT_EQ(regimeAsked_, 0);
  EXPECT_EQ(validate(model, Validator::ValDependency), Validator::ValAllErrors);
  EXPECT_EQ(checkAsked_, 1);
}

TEST_F(PhysicsValidator2, AStatusThatIsRememberedHoldsWhatAPhaseThatWasNotAskedForFound) {
  countedRules();
  ModelState const model = {{"/Case", {{"Motion", "on"}}}};
  validate(model, Validator::ValDependency);
  EXPECT_EQ(validate(model, Validator::ValType(0)), Validator::ValDependencyErrors);
}

TEST_F(PhysicsValidator2, AChangedModelIsJudgedAnew) {
  countedRules();
  validate({{"/Case", {{"Motion", "on"}}}});
  EXPECT_EQ(validate({{"/Case", {{"Regime", "Laminar"}}}}), Validator::ValGlobalErrors);
  EXPECT_EQ(regimeAsked_, 2);
  EXPECT_EQ(checkAsked_, 2);
  EXPECT_THAT(loggedFaults(), IsEmpty());
  EXPECT_THAT(logger_.getGlobalErrors(), ElementsAre("There must be an inlet."));
}

TEST_F(PhysicsValidator2, AChangedModelDropsThePhasesOfTheFormerOne) {
  countedRules();
  validate({{"/Case", {{"Motion", "on"}}}}, Validator::ValAll);
  EXPECT_EQ(validate({{"/Case", {{"Motion", "off"}}}}, Validator::ValGlobal), Validator::ValGlobalErrors);
  EXPECT_THAT(loggedFaults(), IsEmpty());
  EXPECT_EQ(validate({{"/Case", {{"Motion", "off"}}}}, Validator::ValDependency), Validator::ValAllErrors);
  EXPECT_EQ(regimeAsked_, 2);
}

TEST_F(PhysicsValidator2, OnlyTheModelBeforeIsRemembered) {
  countedRules();
  ModelState const on = {{"/Case", {{"Motion", "on"}}}};
  ModelState const off = {{"/Case", {{"Motion", "off"}}}};
  validate(on);
  validate(off);
  validate(on);
  EXPECT_EQ(regimeAsked_, 3);
}

TEST_F(PhysicsValidator2, TheLoggerIsResetForEachNewModelOnly) {
  countedRules();
  RecordingLogger logger;
  validator().setLogger(&logger);
  ModelState const model = {{"/Case", {{"Motion", "on"}}}};
  validate(model);
  validate(model);
  EXPECT_EQ(logger.resets(), 1);
  validate({{"/Case", {{"Motion", "off"}}}});
  EXPECT_EQ(logger.resets(), 2);
}

TEST_F(PhysicsValidator2, AChangeInAnObjectThatDoesNotCountIsNoChange) {
  countedRules();
  validate({{"/Case", {{"Motion", "on"}}}, {"/Library/Material:Water", {{"Density", "1000"}}}});
  validate({{"/Case", {{"Motion", "on"}}}, {"/Library/Material:Water", {{"Density", "998"}}}, {"/View", {{"x", "1"}}}});
  validate({{"/Case", {{"Motion", "on"}}}});
  EXPECT_EQ(regimeAsked_, 1);
  EXPECT_EQ(checkAsked_, 1);
}

TEST_F(PhysicsValidator2, AnObjectWithoutParametersIsNoChange) {
  countedRules();
  validate({{"/Case", {{"Motion", "on"}}}});
  validate({{"/Case", {{"Motion", "on"}}}, {"/Case/Domain:rotor", {}}});
  EXPECT_EQ(regimeAsked_, 1);
}

TEST_F(PhysicsValidator2, ValuesAreComparedAsTheyAreGiven) {
  countedRules();
  validate({{"/Case", {{"Motion", "on"}}}});
  validate({{"/Case", {{"Motion", "on "}}}});
  EXPECT_EQ(regimeAsked_, 2);
  validate({{"/Case", {{"Motion", "on "}, {"Regime", ""}}}});
  EXPECT_EQ(regimeAsked_, 3);
}

TEST_F(PhysicsValidator2, AModelThatGrewOrShrankAtItsEndIsAnotherOne) {
  countedRules();
  ModelState const model = {{"/Case", {{"Motion", "on"}}}};
  validate(model);
  validate({{"/Case", {{"Motion", "on"}, {"Regime", "Laminar"}}}});
  EXPECT_EQ(regimeAsked_, 2);
  EXPECT_EQ(validate(model), Validator::ValAllErrors);
  EXPECT_EQ(regimeAsked_, 3);
  EXPECT_EQ(validate({}), Validator::ValAllErrors);
  EXPECT_THAT(loggedFaults(), ElementsAre(noRegime));
  EXPECT_EQ(regimeAsked_, 4);
}

TEST_F(PhysicsValidator2, WhatALoggerThrowsReachesTheCallerAndTheModelIsJudgedAnew) {
  class BrokenLogger final : public BasicPhysicsErrorLogger {
   public:
    void reset() override {
      if (broken) throw std::runtime_error("disk full");
      BasicPhysicsErrorLogger::reset();
    }
    bool broken = false;
  };
  countedRules();
  BrokenLogger logger;
  validator().setLogger(&logger);
  ModelState const model = {{"/Case", {{"Motion", "on"}}}};
  validate(model);
  logger.broken = true;
  EXPECT_THROW(validate({{"/Case", {{"Regime", "Laminar"}}}}), std::runtime_error);
  logger.broken = false;
  EXPECT_EQ(validate(model), Validator::ValAllErrors);
  EXPECT_EQ(regimeAsked_, 2);
  EXPECT_EQ(logger.getDependencyErrors().size(), 2U);
}

TEST_F(PhysicsValidator2, AFirstModelInWhichNothingCountsIsTakenForAKnownOne) {
  countedRules();
  logger_.logGlobalError(PhysicsErrorMsg("of somebody else"));
  EXPECT_EQ(validate({{"/Library", {{"Motion", "on"}}}}, Validator::ValDependency), Validator::ValDependencyErrors);
  EXPECT_THAT(loggedFaults(), ElementsAre(noRegime));
  EXPECT_THAT(logger_.getGlobalErrors(), ElementsAre("of somebody else"));
}

TEST_F(PhysicsValidator2, RootsTakeNoPartInTheComparison) {
  countedRules();
  ModelState const model = {{"/Case", {{"Motion", "on"}}}};
  EXPECT_EQ(validator().validate(Validator::ValDependency, model, {}), Validator::ValStatusClean);
  EXPECT_EQ(validator().validate(Validator::ValDependency, model, {"/Case"}), Validator::ValStatusClean);
  EXPECT_EQ(regimeAsked_, 0);
  EXPECT_THAT(loggedFaults(), IsEmpty());
}

// --- What of the model counts ----------------------------------------------------------------------------------------

TEST_F(PhysicsValidator2, PertinentRootTypesAreSortedAndHeldOnce) {
  for (std::string const type : {"Library", "Analysis", "Library", "Case"}) rules_.addPertinentRoot(type);
  EXPECT_THAT(validator().getPertinentRootLevelTypes(), ElementsAre("Analysis", "Case", "Library"));
}

TEST_F(PhysicsValidator2, RulesSeeTheObjectsOfPertinentRootTypesOnly) {
  Strings seen;
  rules_.addPertinentRoot("Library");
  rule("/Case").param("Regime").availableWhen(decided([&seen](std::string const&, EvalContext& evalContext) {
    for (std::string const path :
         {"", "/Case", "/Case/Domain:rotor", "/Case:other", "/Case:other/Domain:rotor", "/Library/Material:Water",
          "/Casein", "/View", "/View/Case", "/View:main/Deep/Case"}) {
      if (evalContext.getDB()->hasObject(path)) seen.push_back(path);
    }
    return true;
  }));
  ObjectState const any = {{"Regime", "Laminar"}};
  validate({{"/", any},
            {"/Case", any},
            {"/Case/Domain:rotor", any},
            {"/Case:other/Domain:rotor", any},
            {"/Casein", any},
            {"/Library/Material:Water", any},
            {"/View", any},
            {"/View/Case", any},
            {"/View:main/Deep/Case", any}});
  EXPECT_THAT(seen, ElementsAre("", "/Case", "/Case/Domain:rotor", "/Case:other", "/Case:other/Domain:rotor",
                                "/Library/Material:Water"));
}

TEST_F(PhysicsValidator2, AnObjectWithoutParametersIsThereForTheRules) {
  rule("/Case").child("Output").singleton().availableWhen(never());
  EXPECT_THAT(faults({{"/Case", {{"Regime", "Laminar"}}}, {"/Case/Output", {}}}),
              ElementsAre("/Case | The object \"Output\" is present in the object \"/Case\" but it is not physically "
                          "valid."));
}

TEST_F(PhysicsValidator2, AParameterWithAnEmptyValueIsNotPresent) {
  rule("/Case").param("Regime").required().param("Motion").availableWhen(never());
  EXPECT_THAT(faults({{"/Case", {{"Regime", ""}, {"Motion", " \t "}}}}), ElementsAre(noRegime));
}

TEST_F(PhysicsValidator2, TheEmptyPathInAModelIsRefusedWithNothingChanged) {
  countedRules();
  ModelState const model = {{"/Case", {{"Motion", "on"}}}};
  validate(model);
  EXPECT_THROW(validate({{"", {{"Title", "Pump"}}}, {"/Case", {}}}), std::out_of_range);
  EXPECT_THAT(loggedFaults(), ElementsAre(noRegime, strayMotion));
  EXPECT_EQ(validate(model), Validator::ValAllErrors);
  EXPECT_EQ(regimeAsked_, 1);
}

TEST_F(PhysicsValidator2, AModelThatCannotBeReadIsNotTakenForAKnownOne) {
  countedRules();
  ModelState const broken = {{"/Case", {{"Motion", "on"}}}, {"/Case//Domain", {{"Motion", "on"}}}};
  EXPECT_THROW(validate(broken), Error);
  EXPECT_THROW(validate(broken), Error);
  EXPECT_EQ(regimeAsked_, 0);
  EXPECT_EQ(validate({{"/Case", {{"Motion", "on"}}}}), Validator::ValAllErrors);
  EXPECT_THAT(loggedFaults(), ElementsAre(noRegime, strayMotion));
}

TEST_F(PhysicsValidator2, OfAModelThatCannotBeReadNothingIsLeft) {
  countedRules();
  EXPECT_THROW(validate({{"/Case", {{"Motion", "on"}}}, {"/Case//Domain", {}}}), Error);
  EXPECT_THAT(faults({}), ElementsAre(noRegime));
}

TEST_F(PhysicsValidator2, TheDumpShowsTheModelAsTheRulesSeeIt) {
  countedRules();
  validate({{"/Case", {{"Motion", "on"}, {"Regime", ""}}},
            {"/Case/Domain:rotor", {{"Speed", " 120 [rad/s] "}}},
            {"/View", {{"Zoom", "2"}}}});
  testing::internal::CaptureStdout();
  validator().dumpDB();
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "\nCase: \n  Motion = on\n  Domain: rotor\n    Speed = 120 [rad/s]\n  END # Domain:rotor\nEND # Case:\n");
}

// --- The phases ------------------------------------------------------------------------------------------------------

TEST_F(PhysicsValidator2, TheWalkStartsAtEachRootInTurn) {
  rule("/Case").param("Regime").required();
  rule("/Case/Domain").param("Motion").required();
  ModelState const model = {{"/Case", {{"Title", "Pump"}}}, {"/Case/Domain:rotor", {}}};
  validator().validate(Validator::ValAll, model, {"/Case/Domain:rotor", "/Case", "/Case/Domain:rotor"});
  std::string const noMotion =
      "/Case/Domain:rotor | The parameter \"Motion\" should exist in the object \"/Case/Domain:rotor\" but is not "
      "present.";
  EXPECT_THAT(loggedFaults(), ElementsAre(noMotion, noRegime, noMotion));
}

TEST_F(PhysicsValidator2, ErrorsComeInTheOrderOfTheWalk) {
  rule("/Case").param("Z Time").required();
  rule("/Case").param("A Regime").required();
  rule("/Case").child("Solver").singleton();
  rule("/Case").child("Domain").allowedNames({"rotor", "stator"});
  rule("/Case").child("Output").singleton().availableWhen(never());
  rule("/Case/Solver").param("Scheme").required();
  rule("/Case/Domain").child("Boundary").availableWhen(never()).param("Motion").required();
  validate({{"/Case/Output", {{"Interval", "1"}}},
            {"/Case/Domain:rotor", {}},
            {"/Case/Domain:casing/Boundary:inlet", {}},
            {"/Case/Solver", {}}});
  EXPECT_THAT(
      loggedFaults(),
      ElementsAre(
          "/Case | The parameter \"Z Time\" should exist in the object \"/Case\" but is not present.",
          "/Case | The parameter \"A Regime\" should exist in the object \"/Case\" but is not present.",
          "/Case/Solver | The parameter \"Scheme\" should exist in the object \"/Case/Solver\" but is not present.",
          "/Case | The object \"/Case\" contains the following object: \"casing\" whose name is not in the set of "
          "those "
          "allowed: \"rotor, stator\".",
          "/Case/Domain:casing | The parameter \"Motion\" should exist in the object \"/Case/Domain:casing\" but is "
          "not "
          "present.",
          "/Case/Domain:casing | The object \"Boundary: inlet\" is present in the object \"/Case/Domain:casing\" but "
          "it "
          "is not physically valid.",
          "/Case/Domain:rotor | The parameter \"Motion\" should exist in the object \"/Case/Domain:rotor\" but is not "
          "present.",
          "/Case | The object \"Output\" is present in the object \"/Case\" but it is not physically valid."));
}

TEST_F(PhysicsValidator2, GlobalChecksAreEvaluatedOnceEachInTheirOrderAndFailingOnesLogged) {
  Strings asked;
  for (std::string const name : {"outlet", "inlet", "leak"}) {
    globalCheck(name, [&asked, name](EvalContext&) {
      asked.push_back(name);
      return DecidedGlobalCheck::Result(name == "inlet", PhysicsErrorMsg("check " + name));
    });
  }
  EXPECT_EQ(validate({{"/Case", {{"Regime", "Laminar"}}}}), Validator::ValGlobalErrors);
  EXPECT_THAT(asked, ElementsAre("outlet", "inlet", "leak"));
  EXPECT_THAT(logger_.getGlobalErrors(), ElementsAre("check outlet", "check leak"));
}

TEST_F(PhysicsValidator2, GlobalChecksReadTheFilteredModel) {
  Strings seen;
  globalCheck("objects", [&seen](EvalContext& evalContext) {
    evalContext.getDB()->getChildObjectPaths("", seen);
    return DecidedGlobalCheck::Result(true, PhysicsErrorMsg("passed"));
  });
  EXPECT_EQ(validate({{"/Case", {{"Regime", "Laminar"}}}, {"/View", {}}}), Validator::ValStatusClean);
  EXPECT_THAT(seen, ElementsAre("/Case"));
}

TEST_F(PhysicsValidator2, TheCacheServesTheDependencyChecksOnly) {
  std::vector<bool> enabled;
  rule("/Case").param("Regime").availableWhen(decided([&enabled](std::string const&, EvalContext& evalContext) {
    enabled.push_back(evalContext.getCache()->isEnabled());
    return true;
  }));
  globalCheck("inlet", [&enabled](EvalContext& evalContext) {
    enabled.push_back(evalContext.getCache()->isEnabled());
    return DecidedGlobalCheck::Result(true, PhysicsErrorMsg(""));
  });
  validate({{"/Case", {{"Regime", "Laminar"}}}});
  EXPECT_THAT(enabled, ElementsAre(true, false));
  enabled.clear();
  validate({{"/Case", {{"Regime", "Turbulent"}}}}, Validator::ValGlobal);
  EXPECT_THAT(enabled, ElementsAre(false));
}

TEST_F(PhysicsValidator2, NoResultIsCachedFromOneRunToTheNext) {
  std::vector<bool> found;
  rule("/Case").param("Regime").availableWhen(decided([this, &found](std::string const&, EvalContext& evalContext) {
    found.push_back(evalContext.getCache()->find(this) != nullptr);
    evalContext.getCache()->store(this, true);
    found.push_back(evalContext.getCache()->find(this) != nullptr);
    return true;
  }));
  validate({{"/Case", {{"Regime", "Laminar"}}}});
  validate({{"/Case", {{"Regime", "Turbulent"}}}});
  EXPECT_THAT(found, ElementsAre(false, true, false, true));
}

/// Records all measurements, without the durations.
class NotedMeasurements final : public MeasurementSink {
 public:
  NotedMeasurements() { set(this); }
  ~NotedMeasurements() override { set(nullptr); }
  void operationEnded(std::string const& name, std::chrono::nanoseconds,
                      std::vector<Section> const& sections) override {
    notes.push_back(name + ", " + std::to_string(sections.size()) + " sections");
  }
  void cacheReported(std::size_t, std::size_t, std::size_t) override { notes.push_back("cache"); }
  Strings notes;
};

TEST_F(PhysicsValidator2, EachPhaseIsMeasuredWhenItRuns) {
  countedRules();
  NotedMeasurements measurements;
  ModelState const model = {{"/Case", {{"Motion", "on"}}}};
  validate(model);
  EXPECT_THAT(measurements.notes,
              ElementsAre("cache", "Physics dependency checks, 0 sections", "Physics global checks, 0 sections"));
  measurements.notes.clear();
  validate(model);
  EXPECT_THAT(measurements.notes, IsEmpty());
}

/// Sets the variable that switches the cache off, for as long as it lives.
class DontUseCache {
 public:
  explicit DontUseCache(char const* value) { setenv("TARN_PHYSVAL_DONTUSECACHE", value, 1); }
  ~DontUseCache() { unsetenv("TARN_PHYSVAL_DONTUSECACHE"); }
};

TEST_F(PhysicsValidator2, TheEnvironmentSwitchesTheCacheOffRunByRun) {
  std::vector<bool> enabled;
  auto const look = [&enabled](std::string const&, EvalContext& evalContext) {
    enabled.push_back(evalContext.getCache()->isEnabled());
    return true;
  };
  rule("/Case").child("Solver").singleton().required();
  rule("/Case").param("Regime").availableWhen(decided(look));
  rule("/Case").child("Output").availableWhen(decided(look));
  rule("/Case/Solver").param("Scheme").availableWhen(decided(look));
  {
    DontUseCache const off("1");
    validate({{"/Case", {{"Regime", "Laminar"}}}});
    EXPECT_THAT(enabled, ElementsAre(false, false, false));
    EXPECT_THAT(loggedFaults(),
                ElementsAre("/Case | There must be an object of type \"Solver\" in the object \"/Case\" "
                            "but it does not exist."));
  }
  enabled.clear();
  validate({{"/Case", {{"Regime", "Turbulent"}}}});
  EXPECT_THAT(enabled, ElementsAre(true, false, true));
  enabled.clear();
  DontUseCache const on("0");
  validate({{"/Case", {{"Regime", "Laminar"}}}});
  EXPECT_THAT(enabled, ElementsAre(true, false, true));
}

// --- Exceptions ------------------------------------------------------------------------------------------------------

TEST_F(PhysicsValidator2, WhatARuleThrowsReachesTheCallerAndThePhaseIsRepeated) {
  bool broken = true;
  rule("/Case").param("Regime").required();
  rule("/Case").param("Time").availableWhen(decided([&broken](std::string const&, EvalContext&) {
    if (broken) throw std::runtime_error("no such function");
    return true;
  }));
  globalCheck("inlet", [this](EvalContext&) {
    ++checkAsked_;
    return DecidedGlobalCheck::Result(true, PhysicsErrorMsg(""));
  });
  ModelState const model = {{"/Case", {{"Title", "Pump"}}}};
  EXPECT_THROW(validate(model), std::runtime_error);
  EXPECT_EQ(checkAsked_, 0);
  broken = false;
  EXPECT_EQ(validate(model), Validator::ValDependencyErrors);
  EXPECT_EQ(checkAsked_, 1);
  // The model is the same, so the logger still has the first report of the broken run.
  EXPECT_THAT(loggedFaults(), ElementsAre(noRegime, noRegime));
}

TEST_F(PhysicsValidator2, WhatAGlobalCheckThrowsReachesTheCallerAndTheDependencyPhaseStands) {
  bool broken = true;
  rule("/Case").param("Regime").required().availableWhen(decided(counting(regimeAsked_)));
  globalCheck("inlet", [&broken](EvalContext&) {
    if (broken) throw std::runtime_error("no such function");
    return DecidedGlobalCheck::Result(false, PhysicsErrorMsg("There must be an inlet."));
  });
  ModelState const model = {{"/Case", {{"Title", "Pump"}}}};
  EXPECT_THROW(validate(model), std::runtime_error);
  broken = false;
  EXPECT_EQ(validate(model), Validator::ValAllErrors);
  EXPECT_EQ(regimeAsked_, 1);
  EXPECT_THAT(loggedFaults(), ElementsAre(noRegime));
}

TEST_F(PhysicsValidator2, ARunThatBrokeWithinAPlaceholderIsMendedByTheNext) {
  bool broken = true;
  rule("/Case").param("Motion").availableWhen(never());
  rule("/Case").child("Solver").singleton().required();
  rule("/Case").child("Domain").allowedNames({"rotor"}).required();
  rule("/Case/Solver").param("Scheme").required().availableWhen(decided([&broken](std::string const&, EvalContext&) {
    if (broken) throw std::runtime_error("no such function");
    return true;
  }));
  rule("/Case/Domain").param("Motion");
  EXPECT_THROW(validate({{"/Case", {{"Motion", "on"}}}}), std::runtime_error);
  broken = false;
  // Had the placeholder been left open, nothing would be said about the parameter, nor about the solver that is there.
  EXPECT_THAT(faults({{"/Case", {{"Motion", "off"}}}, {"/Case/Solver", {}}}),
              ElementsAre(strayMotion,
                          "/Case/Solver | The parameter \"Scheme\" should exist in the object \"/Case/Solver\" but is "
                          "not present.",
                          "/Case | The object \"/Case\" does not contain the Domain object: \"rotor\", which must be "
                          "present."));
}

TEST_F(PhysicsValidator2, ABrokenRunOfTheSameModelIsRepeatedFromThePlaceholderOn) {
  bool broken = true;
  rule("/Case").child("Solver").singleton().required();
  rule("/Case/Solver").param("Scheme");
  rule("/Case/Solver").param("Order").availableWhen(decided([&broken](std::string const&, EvalContext&) {
    if (broken) throw std::runtime_error("no such function");
    return false;
  }));
  ModelState const model = {{"/Case", {{"Title", "Pump"}}}};
  EXPECT_THROW(validate(model), std::runtime_error);
  broken = false;
  EXPECT_EQ(validate(model), Validator::ValDependencyErrors);
  EXPECT_THAT(loggedFaults(), ElementsAre("/Case | There must be an object of type \"Solver\" in the object \"/Case\" "
                                          "but it does not exist."));
}

}  // namespace
}  // namespace tarn
