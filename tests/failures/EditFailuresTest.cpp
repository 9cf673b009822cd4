// Edits that fail in the middle, at every point. The edit either has been made or has not been made. The next update
// shows which, and gives the same result as without the failure. An edit is never made in part, and nothing that the
// user entered is lost. Making the edit again gives the same result as if it had not failed.

#include <tarn/ProvisionalTDF.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <tarn/ProvTDFLogger.h>

#include "failures/FailingStream.h"
#include "failures/Injection.h"
#include "failures/RotorCase.h"

namespace tarn::test {
namespace {

using Strings = std::vector<std::string>;
using ParamSet = std::set<std::pair<std::string, std::string>>;

/// The part of the state that a user interface shows.
struct Shown {
  ModelState active;
  ParamSet potentialParams;
  std::set<std::string> potentialObjects;
  Strings empty;
  Strings emptyTyped;
  std::vector<Strings> allowed;
  bool takesSources = false;
  Strings objects;

  explicit Shown(ProvisionalTDF const& state)
      : active(state.getActiveTDFState()),
        potentialParams(state.getAvailPotParams().begin(), state.getAvailPotParams().end()),
        potentialObjects(state.getAvailPotObjects().begin(), state.getAvailPotObjects().end()),
        empty(state.getEmptyParameters(false)),
        emptyTyped(state.getEmptyParameters(true)),
        takesSources(state.isUserNamedTypeAvailable(rotor, "Momentum Source")),
        objects(state.getPathExpansion(rotor + "/*", "")) {
    auto const look = [&](std::string const& path, std::string const& name) {
      allowed.push_back(state.getAllowedParamValues(path, name));
      allowed.push_back(state.getSubsetAllowedParamValues(path, name));
    };
    for (auto const& [path, params] : active) {
      for (auto const& param : params) look(path, param.first);
    }
    for (auto const& [path, name] : potentialParams) look(path, name);
    std::sort(objects.begin(), objects.end());
  }
  friend bool operator==(Shown const&, Shown const&) = default;
};

/// The changes that an edit reports.
struct Told {
  std::vector<ProvisionalTDF::ParamId> added, modified, lost;
  Strings deletedObjects, newPotentialObjects, gonePotentialObjects;
  ParamSet newPotential, gonePotential, changedPotential;
  std::map<std::string, std::pair<std::string, std::string>> bounds;
  std::map<std::string, std::string> quantities;

  explicit Told(ProvisionalTDF const& state)
      : added(state.getNewlyAvailParams()),
        modified(state.getModParams()),
        lost(state.getNewlyUnavailParams()),
        deletedObjects(state.getDeletedObjects()),
        newPotentialObjects(state.getNewlyAvailPotObjects()),
        gonePotentialObjects(state.getNewlyUnavailPotObjects()),
        newPotential(state.getNewlyAvailPotParams().begin(), state.getNewlyAvailPotParams().end()),
        gonePotential(state.getNewlyUnavailPotParams().begin(), state.getNewlyUnavailPotParams().end()),
        changedPotential(state.getModPotParams().begin(), state.getModPotParams().end()),
        bounds(state.getModBoundsParams()),
        quantities(state.getModQuantParams()) {}
  friend bool operator==(Told const&, Told const&) = default;
};

using Edit = std::function<void(ProvisionalTDF&)>;

struct NamedEdit {
  std::string name;
  Edit prepare;  // what the user has done before
  Edit edit;

  friend void PrintTo(NamedEdit const& edit, std::ostream* out) { *out << edit.name; }
};

class EditFailures : public testing::TestWithParam<NamedEdit> {
 protected:
  [[nodiscard]] std::unique_ptr<ProvisionalTDF> prepared() const {
    auto state = std::make_unique<ProvisionalTDF>(&rules_, &modifier_, rotor);
    if (GetParam().prepare) GetParam().prepare(*state);
    return state;
  }
  static void edit(ProvisionalTDF& state) { GetParam().edit(state); }
  /// Edits that the user goes on with.
  static void goOn(ProvisionalTDF& state) {
    state.activeSetParam(rotor, "Title of the Domain", "Impeller of the pump");
  }
  static void goOnMuch(ProvisionalTDF& state) {
    state.activeSetParam(rotor, "Largest Angular Velocity", "300 [rad/s]");
    state.activeSetParam(rotor, "Motion of the Domain", "Rotating about an Axis");
  }

  void theEditHasBeenMadeOrHasNot(FailingCall call);
  void theEditCanBeMadeAgain(FailingCall call);

  RotorRules rules_;
  RotorModifier modifier_;
};

void EditFailures::theEditHasBeenMadeOrHasNot(FailingCall call) {
  auto const unedited = prepared();
  goOn(*unedited);
  Shown const before(*unedited);
  auto const edited = prepared();
  edit(*edited);
  goOn(*edited);
  Shown const after(*edited);

  forEveryFailureOf(call, [&](Attempt& attempt) {
    auto const state = prepared();
    ModelState const former = state->getActiveTDFState();
    bool const failed = attempt([&] { edit(*state); });
    if (failed) {
      // Until the next update there is nothing to be seen that is not right.
      Shown const meanwhile(*state);
      EXPECT_TRUE(meanwhile.active.empty() || meanwhile.active == former);
    }
    goOn(*state);
    Shown const now(*state);
    EXPECT_TRUE(now == after || (failed && now == before)) << testing::PrintToString(now.active);
  });
}

void EditFailures::theEditCanBeMadeAgain(FailingCall call) {
  auto const undisturbed = prepared();
  edit(*undisturbed);
  ModelState const active = undisturbed->getActiveTDFState();
  goOnMuch(*undisturbed);
  Shown const later(*undisturbed);
  Told const told(*undisturbed);

  // The test above checks the state after each failure between these.
  forEveryFailureOf(call, {.alone = 2, .withAllBehind = 0}, [&](Attempt& attempt) {
    auto const state = prepared();
    // The second time it may be refused, as an object that is there already is.
    if (attempt([&] { edit(*state); })) edit(*state);
    EXPECT_EQ(state->getActiveTDFState(), active);
    goOnMuch(*state);
    EXPECT_TRUE(Shown(*state) == later) << testing::PrintToString(state->getActiveTDFState());
    EXPECT_TRUE(Told(*state) == told);
  });
}

TEST_P(EditFailures, WithoutMemoryAnEditHasBeenMadeOrHasNot) {
  theEditHasBeenMadeOrHasNot(FailingCall::Allocation);
}

TEST_P(EditFailures, WithoutMemoryAnEditCanBeMadeAgain) {
  theEditCanBeMadeAgain(FailingCall::Allocation);
}

TEST_P(EditFailures, WhenARuleTheModelOrTheModifierThrowsAnEditHasBeenMadeOrHasNot) {
  theEditHasBeenMadeOrHasNot(FailingCall::Hook);
}

TEST_P(EditFailures, WhenARuleTheModelOrTheModifierThrowsAnEditCanBeMadeAgain) {
  theEditCanBeMadeAgain(FailingCall::Hook);
}

RotorModel const& model() {
  static RotorModel const model;
  return model;
}

RotorModel const& changedModel() {
  static RotorModel const changed = [] {
    RotorModel other;
    other.set("/Case", "Flow Regime of the Case", "Laminar");
    other.set(rotor + "/Mesh of the Domain", "Element Size", "0.002 [metres]");
    other.set(rotor + "/Mesh of the Domain", "Growth of Elements", "1.2 from the wall");
    return other;
  }();
  return changed;
}

/// A model that has another domain, and none of this name.
RotorModel const& modelOfStator() {
  static RotorModel const stator = [] {
    RotorModel other;
    other.remove(rotor);
    other.set("/Case/Domain:stator of the pump", "Title of the Domain", "Stator of the pump");
    other.set("/Case/Domain:stator of the pump/Boundary:casing", "Kind", "Wall that turns");
    return other;
  }();
  return stator;
}

ModelState const& guide() {
  static ModelState const guide = {{rotor, {{"Fluid in the Domain", "Oil of the gear box"}}},
                                   {rotor + "/Subdomain:sponge of metal", {{"Porosity", "0.5 of it"}}}};
  return guide;
}

void start(ProvisionalTDF& state) {
  state.initialise(&model(), guide());
}

/// The boundaries of the model were there from the start; this user has taken them out, so that defaults come.
void startWithoutBoundaries(ProvisionalTDF& state) {
  state.initialise(&modelOfStator(), guide());
}

void startAndActivate(ProvisionalTDF& state) {
  start(state);
  state.activateOptParam(rotor, "Title of the Domain");
  state.activateOptObject(rotor + "/Monitor:pressure at the head");
}

INSTANTIATE_TEST_SUITE_P(
    OfAnEdit, EditFailures,
    testing::Values(
        NamedEdit{"Initialise", {}, start}, NamedEdit{"InitialiseWithDefaultNames", {}, startWithoutBoundaries},
        NamedEdit{"InitialiseAgain", startAndActivate, [](auto& state) { state.initialise(&changedModel(), {}); }},
        NamedEdit{
            "InitialiseBasedOn",
            {},
            [](auto& state) { state.initialiseBasedOn("/Case/Domain:stator of the pump", &modelOfStator(), guide()); }},
        NamedEdit{
            "InitialiseBasedOnWhenStarted", startAndActivate,
            [](auto& state) { state.initialiseBasedOn("/Case/Domain:stator of the pump", &modelOfStator(), guide()); }},
        NamedEdit{"BaseUpdate", start, [](auto& state) { state.baseUpdate(&changedModel()); }},
        NamedEdit{"SetParam", start,
                  [](auto& state) { state.activeSetParam(rotor, "Motion of the Domain", "Rotating about an Axis"); }},
        NamedEdit{
            "SetParamOfAnObjectThatIsNotThere", start,
            [](auto& state) { state.activeSetParam(rotor + "/Monitor:torque at the shaft", "Place", "1 [m], 0 [m]"); }},
        NamedEdit{"SetParamBelowObjectsThatAreNotThere", start,
                  [](auto& state) {
                    state.activeSetParam(rotor + "/Boundary:vent of the pump/Profile:of the velocity",
                                         "Points of the Profile", "0,1,2,3,4,5,6,7");
                  }},
        NamedEdit{"SetParamOutsideOfTheSubset", start,
                  [](auto& state) { state.activeSetParam(rotor, "Fluid in the Domain", "Air at 25 degrees C"); }},
        NamedEdit{"ActivateParam", start, [](auto& state) { state.activateOptParam(rotor, "Title of the Domain"); }},
        NamedEdit{"DeactivateParam", startAndActivate,
                  [](auto& state) { state.deactivateOptParam(rotor, "Title of the Domain"); }},
        NamedEdit{"ActivateObject", start,
                  [](auto& state) { state.activateOptObject(rotor + "/Monitor:torque at the shaft"); }},
        NamedEdit{"DeactivateObject", startAndActivate,
                  [](auto& state) { state.deactivateOptObject(rotor + "/Monitor:pressure at the head"); }},
        NamedEdit{"AddObject", start,
                  [](auto& state) { state.addNewNamedObject(rotor + "/Momentum Source:at the impeller"); }},
        NamedEdit{"RemoveObject", start,
                  [](auto& state) { state.removeNamedObject(rotor + "/Subdomain:sponge of metal"); }},
        NamedEdit{"DuplicateObject", start,
                  [](auto& state) {
                    state.duplicateNamedObject(rotor + "/Boundary:casing of the pump", "casing of the gear box");
                  }},
        NamedEdit{"RenameObject", start,
                  [](auto& state) {
                    state.renameNamedObject(rotor + "/Boundary:casing of the pump", "casing of the gear box");
                  }}),
    [](testing::TestParamInfo<NamedEdit> const& edit) { return edit.param.name; });

TEST(CopyFailures, AWaitingObjectTakesAllValuesOfTheCopyOrNone) {
  RotorRules const rules;
  std::string const sponge = rotor + "/Subdomain:sponge of metal";
  std::string const felt = rotor + "/Subdomain:felt of wool";
  using Values = std::pair<std::string, std::string>;
  Values const own{"0.9 of it, as it was measured", "9e-9 [m^2], as it was measured"};
  Values const copied{"0.5 of it", "1e-9 [m^2]"};
  std::set<Values> seen;
  forEveryFailureOf(FailingCall::Allocation, {.alone = 1, .withAllBehind = 0}, [&](Attempt& attempt) {
    ProvisionalTDF state(&rules, rotor);
    start(state);
    state.activeSetParam(felt, "Porosity", own.first);
    state.activeSetParam(felt, "Permeability", own.second);
    state.deactivateOptObject(felt);
    (void)attempt([&] { state.duplicateNamedObject(sponge, "felt of wool"); });
    state.activateOptObject(felt);
    Values const now{state.getParamValue(felt, "Porosity"), state.getParamValue(felt, "Permeability")};
    EXPECT_TRUE(now == own || now == copied) << now.first << " and " << now.second;
    seen.insert(now);
  });
  EXPECT_EQ(seen, (std::set<Values>{own, copied}));
}

// Behind a broken update.

class BrokenUpdate : public testing::Test {
 protected:
  BrokenUpdate() { start(state_); }

  template <class Operation>
  void breakAtFirst(Operation const& operation) {
    Attempt attempt(FailingCall::Hook, 0, false);
    EXPECT_TRUE(attempt(operation));
  }

  RotorRules rules_;
  RotorModifier modifier_;
  ProvisionalTDF state_{&rules_, &modifier_, rotor};
};

TEST_F(BrokenUpdate, ARefusedEditThatFailsLosesNothing) {
  ProvisionalTDF undisturbed(&rules_, &modifier_, rotor);
  start(undisturbed);
  undisturbed.activeSetParam(rotor, "Largest Angular Velocity", "300 [rad/s]");
  forEveryFailureOf(FailingCall::Allocation, [&](Attempt& attempt) {
    ProvisionalTDF state(&rules_, &modifier_, rotor);
    start(state);
    (void)attempt([&] { state.activeSetParam("/Case/Domain:stator", "Title of the Domain", "Stator of the pump"); });
    state.activeSetParam(rotor, "Largest Angular Velocity", "300 [rad/s]");
    EXPECT_TRUE(Shown(state) == Shown(undisturbed));
  });
}

TEST_F(BrokenUpdate, ARefusedEditCompletesTheUpdate) {
  ProvisionalTDF undisturbed(&rules_, &modifier_, rotor);
  start(undisturbed);
  undisturbed.activeSetParam(rotor, "Motion of the Domain", "Rotating about an Axis");
  undisturbed.removeNamedObject("/Case/Domain:stator");
  breakAtFirst([&] { state_.activeSetParam(rotor, "Motion of the Domain", "Rotating about an Axis"); });
  state_.removeNamedObject("/Case/Domain:stator");
  EXPECT_TRUE(Shown(state_) == Shown(undisturbed));
}

TEST_F(BrokenUpdate, TheNextOneTellsAllBoundsAndQuantityTypes) {
  state_.activeSetParam(rotor, "Motion of the Domain", "Rotating about an Axis");
  Attempt late(FailingCall::Hook, 12, true);
  ASSERT_TRUE(late([&] { state_.activeSetParam(rotor, "Largest Angular Velocity", "300 [rad/s]"); }));
  state_.activeSetParam(rotor, "Title of the Domain", "Impeller of the pump");
  std::map<std::string, std::pair<std::string, std::string>> const bounds = {
      {rotor + "/Angular Velocity of the Rotor", {"0 [rad/s]", "300 [rad/s]"}}};
  EXPECT_EQ(state_.getModBoundsParams(), bounds);
  std::map<std::string, std::string> const quantities = {
      {rotor + "/Inflow into the Domain", "Mass Flow Rate of a Fluid"}};
  EXPECT_EQ(state_.getModQuantParams(), quantities);
}

/// Else the copy would be one of what a broken walk has left, and with a new name the rest would be lost.
TEST_F(BrokenUpdate, AnObjectIsCopiedAsItIsOnceTheUpdateIsComplete) {
  ProvisionalTDF undisturbed(&rules_, &modifier_, rotor);
  std::string const casing = rotor + "/Boundary:casing of the pump";
  start(undisturbed);
  undisturbed.renameNamedObject(casing, "casing of the gear box");

  ProvisionalTDF state(&rules_, &modifier_, rotor);
  Attempt attempt(FailingCall::Hook, 30, false);
  ASSERT_TRUE(attempt([&] { start(state); }));
  state.renameNamedObject(casing, "casing of the gear box");
  EXPECT_TRUE(Shown(state) == Shown(undisturbed)) << testing::PrintToString(state.getActiveTDFState());
}

// Printing.

TEST(PrintingFailures, AnEditStandsAlthoughItsAccountCouldNotBePrinted) {
  RotorRules const rules;
  ProvisionalTDF undisturbed(&rules, rotor);
  start(undisturbed);
  undisturbed.activeSetParam(rotor, "Motion of the Domain", "Rotating about an Axis");
  Shown const edited(undisturbed);
  std::size_t failures = 0;
  forEveryFailureOf(FailingCall::Hook, [&](Attempt& attempt) {
    ProvisionalTDF state(&rules, rotor);
    start(state);
    FailingStream output;
    ProvTDFLogger logger(&state, output);
    state.setLogger(&logger);
    if (attempt([&] { state.activeSetParam(rotor, "Motion of the Domain", "Rotating about an Axis"); })) {
      if (state.getActiveTDFState().empty()) {
        state.setLogger(nullptr);
        state.baseUpdate(&model());  // it was a rule
      } else {
        ++failures;
      }
    }
    EXPECT_TRUE(Shown(state) == edited);
  });
  EXPECT_GT(failures, 50U);
}

TEST(PrintingFailures, APrinterGoesAlthoughItsLastLineCouldNotBePrinted) {
  RotorRules const rules;
  ProvisionalTDF state(&rules, rotor);
  forEveryFailureOf(FailingCall::Hook, [&](Attempt& attempt) {
    FailingStream output;
    auto logger = std::make_unique<ProvTDFLogger>(&state, output);
    EXPECT_FALSE(attempt([&] { logger.reset(); }));
  });
}

}  // namespace
}  // namespace tarn::test
