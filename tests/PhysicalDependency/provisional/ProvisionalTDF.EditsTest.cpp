// Each edit of a user: its effect when it applies, when it is refused, and its printed output.

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <tarn/Error.h>
#include <tarn/ProvTDFLogger.h>
#include <tarn/ProvTDFObserver.h>
#include <tarn/TDFPath.h>

#include "PhysicalDependency/provisional/ProvisionalFixture.h"
#include "support/EditResult.h"
#include "support/FileText.h"

namespace tarn {
namespace {

using test::Pairs;
using test::rotor;
using test::Rules;
using test::Strings;
using test::when;

std::string const stator = "/Case/Domain:stator";
std::string const inlet = rotor + "/Boundary:inlet";
std::string const outlet = rotor + "/Boundary:outlet";
std::string const wall = rotor + "/Boundary:wall";

/// The message of the `Error` that the action throws.
template <typename Action>
std::string messageOfError(Action const& action) {
  try {
    action();
  } catch (Error const& error) {
    return error.errorMessage();
  }
  return "no error";
}

/// A rotor with a Title, an optional Fluid and boundaries, each with a Kind, an optional Label and a singleton of
/// turbulence data.
class ProvisionalEditsTest : public test::ProvisionalTest {
 protected:
  ProvisionalEditsTest() {
    Rules rules(rules_, "/Case/Domain");
    rules.param("Title").required().byDefault("Untitled");
    rules.param("Fluid").allowed({"Water", "Air"}).byDefault("Air");
    rules.param("Note");
    rules.child("Boundary").required();
    rules.object("/Case/Domain/Boundary");
    rules.param("Kind").required().byDefault("Wall").param("Label");
    rules.child("Turbulence").singleton().coupled();
    rules.object("/Case/Domain/Boundary/Turbulence").param("Intensity").required().byDefault("0.05");
  }

  /// Whether the edit was refused: then no walk was made, and nothing potential is left.
  bool isRefused(std::function<void(ProvisionalTDF&)> const& edit) {
    ModelState const before = state().getActiveTDFState();
    walkAgain();
    EXPECT_FALSE(state().getAvailPotParams().empty());
    edit(state());
    bool const refused = state().getAvailPotParams().empty();
    if (refused) {
      EXPECT_EQ(state().getActiveTDFState(), before);
    }
    return refused;
  }

  bool isPresent(std::string const& path) { return state().getActiveTDFState().contains(path); }
};

// Parameters.

TEST_F(ProvisionalEditsTest, SettingAPotentialParameterMakesItPresent) {
  start();
  set("Note", "draft");
  EXPECT_EQ(value("Note"), "draft");
  EXPECT_FALSE(isPotential("Note"));
  EXPECT_EQ(state().getNewlyAvailParams(), (Pairs{{rotor, "Note"}}));
  EXPECT_EQ(goneParams(), Pairs());
}

TEST_F(ProvisionalEditsTest, SettingAPresentParameterModifiesIt) {
  start();
  set("Title", "Impeller");
  EXPECT_EQ(state().getModParams(), (Pairs{{rotor, "Title"}}));
  EXPECT_EQ(state().getParamValue(rotor, "Title"), "Impeller");
}

TEST_F(ProvisionalEditsTest, SettingAParameterToTheValueThatItHasChangesNothing) {
  start({{rotor, {{"Title", "Impeller"}}}});
  set("Title", "Impeller");
  expectNoChanges();
}

TEST_F(ProvisionalEditsTest, WhatIsSetOnAParameterThatIsSwitchedOffWaits) {
  start();
  deactivate("Note");
  set("Note", "draft");
  EXPECT_TRUE(isPotential("Note"));
  activate("Note");
  EXPECT_EQ(value("Note"), "draft");
}

TEST_F(ProvisionalEditsTest, SwitchingOnBringsTheGuidesValueBack) {
  start({{rotor, {{"Fluid", "Water"}}}});
  deactivate("Fluid");
  EXPECT_EQ(newlyPotentialParams(), (Pairs{{rotor, "Fluid"}}));
  activate("Fluid");
  EXPECT_EQ(value("Fluid"), "Water");
}

TEST_F(ProvisionalEditsTest, SwitchingOffDropsAnEmptyValueSoThatSwitchingOnGivesTheDefault) {
  Rules(rules_, "/Case/Domain").param("Pitch").byDefault("15");
  start({{rotor, {{"Pitch", ""}}}});
  EXPECT_EQ(value("Pitch"), "");
  deactivate("Pitch");
  activate("Pitch");
  EXPECT_EQ(value("Pitch"), "15");
}

TEST_F(ProvisionalEditsTest, SwitchingOffKeepsAValue) {
  Rules(rules_, "/Case/Domain").param("Pitch").byDefault("15");
  start({{rotor, {{"Pitch", "20"}}}});
  deactivate("Pitch");
  activate("Pitch");
  EXPECT_EQ(value("Pitch"), "20");
}

TEST_F(ProvisionalEditsTest, AParameterThatTheRulesDoNotKnowIsKeptAndDoesNotShow) {
  start();
  ModelState const before = state().getActiveTDFState();
  set("Colour", "red");
  state().activeSetParam(rotor + "/Sensor:a", "Position", "0");
  state().activeSetParam(rotor, "", "nameless");
  EXPECT_EQ(state().getActiveTDFState(), before);
}

TEST_F(ProvisionalEditsTest, ArgumentsMayBeTakenFromTheGetters) {
  start();
  state().activateOptParam(state().getAvailPotParams().begin()->first, state().getAvailPotParams().begin()->second);
  EXPECT_EQ(value("Fluid"), "Air");
  state().addNewNamedObject(inlet);
  std::string const& potential = state().getAvailPotObjects().front();
  state().activateOptObject(potential);
  EXPECT_EQ(value("Intensity", inlet + "/Turbulence"), "0.05");
}

// Decisions on objects.

TEST_F(ProvisionalEditsTest, ADecisionOnAnObjectThatTheRulesDoNotKnowIsKept) {
  start();
  state().deactivateOptObject(inlet + "/Turbulence");
  state().activeSetParam(inlet + "/Turbulence", "Intensity", "0.1");
  EXPECT_TRUE(isPresent(inlet));
  EXPECT_FALSE(isPresent(inlet + "/Turbulence"));
  EXPECT_EQ(state().getAvailPotObjects(), (Strings{inlet + "/Turbulence"}));
}

// Named objects: adding.

TEST_F(ProvisionalEditsTest, ANamedObjectIsPresentAfterTheSameWalk) {
  start();
  state().addNewNamedObject(inlet);
  EXPECT_EQ(value("Kind", inlet), "Wall");
  EXPECT_EQ(state().getNewlyAvailParams(), (Pairs{{inlet, "Kind"}}));
  EXPECT_TRUE(isPotential("Label", inlet));
}

TEST_F(ProvisionalEditsTest, AddingIsRefusedWhereThereIsNoNewNameToAdd) {
  start({{inlet, {}}});
  EXPECT_TRUE(isRefused([](auto& state) { state.addNewNamedObject(inlet); })) << "in the guide already";
  EXPECT_TRUE(isRefused([](auto& state) { state.addNewNamedObject(rotor + "/Boundary"); })) << "without a name";
  EXPECT_TRUE(isRefused([](auto& state) { state.addNewNamedObject(rotor + "/Boundary:"); })) << "with an empty name";
  EXPECT_TRUE(isRefused([](auto& state) { state.addNewNamedObject(rotor + "/Boundary:Boundary"); }))
      << "named as its type";
  EXPECT_TRUE(isRefused([](auto& state) { state.addNewNamedObject(rotor); })) << "the active root";
  EXPECT_TRUE(isRefused([](auto& state) { state.addNewNamedObject(rotor + "/"); }));
}

TEST_F(ProvisionalEditsTest, WithNoNameInThePathNothingIsAddedAndNothingRemoved) {
  Rules(rules_, "/Case").child("Solver").singleton().coupled();
  Rules(rules_, "/Case/Solver").param("Steps").required().byDefault("100").param("Order");
  startAt("/Case", {{"/Case/Solver", {}}});
  EXPECT_TRUE(isRefused([](auto& state) { state.addNewNamedObject("/Case/Output"); }));
  EXPECT_TRUE(isRefused([](auto& state) { state.removeNamedObject("/Case/Solver"); }));
  EXPECT_EQ(value("Steps", "/Case/Solver"), "100");
}

TEST_F(ProvisionalEditsTest, AnObjectOfARequiredTypeWithAClosedListOfNamesIsAcceptedWithoutEffect) {
  Rules(rules_, "/Case/Domain").child("Stage").required().allowedNames({"first"});
  Rules(rules_, "/Case/Domain/Stage").param("Blades").required();
  start();
  EXPECT_FALSE(isRefused([](auto& state) { state.addNewNamedObject(rotor + "/Stage:second"); }));
  EXPECT_TRUE(isPresent(rotor + "/Stage:first"));
  EXPECT_FALSE(isPresent(rotor + "/Stage:second"));
}

// Removing.

TEST_F(ProvisionalEditsTest, ARemovedObjectIsDeletedWithAllBelowIt) {
  start({{inlet, {}}, {inlet + "/Turbulence", {}}, {outlet, {}}});
  state().removeNamedObject(inlet);
  EXPECT_FALSE(isPresent(inlet));
  EXPECT_TRUE(isPresent(outlet));
  EXPECT_EQ(state().getDeletedObjects(), (Strings{inlet}));
  EXPECT_EQ(state().getNewlyUnavailParams(), (Pairs{{inlet + "/Turbulence", "Intensity"}, {inlet, "Kind"}}));
}

TEST_F(ProvisionalEditsTest, WithAnObjectTheDecisionsInsideItAreForgotten) {
  start({{inlet, {}}});
  state().activateOptParam(inlet, "Label");
  state().activateOptObject(inlet + "/Turbulence");
  state().removeNamedObject(inlet);
  state().addNewNamedObject(inlet);
  EXPECT_TRUE(isPotential("Label", inlet));
  EXPECT_FALSE(isPresent(inlet + "/Turbulence"));
}

TEST_F(ProvisionalEditsTest, WithAnObjectTheDecisionsOfASiblingWhoseNameBeginsTheSameAreForgottenToo) {
  start({{wall, {}}, {wall + "2", {}}, {rotor + "/Boundary:wal", {}}});
  state().activateOptParam(wall + "2", "Label");
  state().activateOptObject(wall + "2/Turbulence");
  state().activateOptParam(rotor + "/Boundary:wal", "Label");
  state().removeNamedObject(wall);
  EXPECT_TRUE(isPotential("Label", wall + "2"));
  EXPECT_FALSE(isPresent(wall + "2/Turbulence"));
  EXPECT_EQ(value("Label", rotor + "/Boundary:wal"), "");
}

TEST_F(ProvisionalEditsTest, RemovingIsRefusedWhereTheGuideHasNoSuchNamedObject) {
  Rules(rules_, "/Case/Domain").child("Stage").required().allowedNames({"first"});
  Rules(rules_, "/Case/Domain/Stage").param("Blades").required();
  start({{inlet, {}}, {inlet + "/Turbulence", {}}});
  EXPECT_TRUE(isRefused([](auto& state) { state.removeNamedObject(outlet); })) << "absent";
  EXPECT_TRUE(isRefused([](auto& state) { state.removeNamedObject(inlet + "/Turbulence"); })) << "without a name";
  EXPECT_TRUE(isRefused([](auto& state) { state.removeNamedObject(rotor + "/Stage:first"); })) << "by the rules only";
  EXPECT_TRUE(isRefused([](auto& state) { state.removeNamedObject(rotor + "//:"); }));
}

// Duplicating.

TEST_F(ProvisionalEditsTest, ADuplicateHasAllValuesInForceAndTheOriginalStays) {
  start({{inlet, {{"Label", "main"}}}, {inlet + "/Turbulence", {{"Intensity", "0.1"}}}});
  state().duplicateNamedObject(inlet, "second");
  std::string const second = rotor + "/Boundary:second";
  EXPECT_EQ(value("Kind", second), "Wall");
  EXPECT_EQ(value("Label", second), "main");
  EXPECT_EQ(value("Intensity", second + "/Turbulence"), "0.1");
  EXPECT_EQ(value("Label", inlet), "main");
  EXPECT_EQ(state().getNewlyAvailParams(),
            (Pairs{{second, "Kind"}, {second, "Label"}, {second + "/Turbulence", "Intensity"}}));
  EXPECT_EQ(state().getDeletedObjects(), Strings());
}

TEST_F(ProvisionalEditsTest, ADuplicateKeepsADefaultThatChangesLater) {
  Rules(rules_, "/Case/Domain/Boundary")
      .param("Roughness")
      .required()
      .byDefault(test::text([](TDFContext const&, ModelTDF const& model) {
        return std::string(model.getParameterValue(rotor, "Title"));
      }));
  start({{rotor, {{"Title", "1"}}}, {inlet, {}}});
  state().duplicateNamedObject(inlet, "second");
  set("Title", "2");
  EXPECT_EQ(value("Roughness", inlet), "2");
  EXPECT_EQ(value("Roughness", rotor + "/Boundary:second"), "1");
}

TEST_F(ProvisionalEditsTest, DecisionsAreNotDuplicated) {
  start({{inlet, {}}});
  state().deactivateOptObject(inlet + "/Turbulence");
  state().duplicateNamedObject(inlet, "second");
  state().activeSetParam(rotor + "/Boundary:second/Turbulence", "Intensity", "0.1");
  state().activeSetParam(inlet + "/Turbulence", "Intensity", "0.1");
  EXPECT_TRUE(isPresent(rotor + "/Boundary:second/Turbulence"));
  EXPECT_FALSE(isPresent(inlet + "/Turbulence"));
}

TEST_F(ProvisionalEditsTest, DuplicatingIsRefusedWhereTheCopyWouldHaveNoPlace) {
  start({{inlet, {}}, {inlet + "/Turbulence", {}}, {outlet, {}}});
  EXPECT_TRUE(isRefused([](auto& state) { state.duplicateNamedObject(rotor, "second"); })) << "the active root";
  EXPECT_TRUE(isRefused([](auto& state) { state.duplicateNamedObject(stator, "second"); })) << "outside";
  EXPECT_TRUE(isRefused([](auto& state) { state.duplicateNamedObject(wall, "second"); })) << "absent";
  EXPECT_TRUE(isRefused([](auto& state) { state.duplicateNamedObject(inlet + "/Turbulence", "second"); }))
      << "a singleton";
  EXPECT_TRUE(isRefused([](auto& state) { state.duplicateNamedObject(inlet, "outlet"); })) << "taken";
  EXPECT_TRUE(isRefused([](auto& state) { state.duplicateNamedObject(inlet, "inlet"); })) << "its own name";
  EXPECT_TRUE(isRefused([](auto& state) { state.duplicateNamedObject(inlet, ""); })) << "no name";
  EXPECT_TRUE(isRefused([](auto& state) { state.duplicateNamedObject(inlet, "Boundary"); })) << "the type";
  EXPECT_TRUE(isRefused([](auto& state) { state.duplicateNamedObject(inlet, "a/b"); }));
  EXPECT_TRUE(isRefused([](auto& state) { state.duplicateNamedObject(inlet, "a:b"); }));
}

// Renaming.

TEST_F(ProvisionalEditsTest, ARenamedObjectIsADeletedOneAndANewOne) {
  start({{inlet, {{"Label", "main"}}}});
  state().renameNamedObject(inlet, "suction");
  EXPECT_FALSE(isPresent(inlet));
  EXPECT_EQ(value("Label", rotor + "/Boundary:suction"), "main");
  EXPECT_EQ(state().getDeletedObjects(), (Strings{inlet}));
  EXPECT_EQ(state().getNewlyAvailParams(),
            (Pairs{{rotor + "/Boundary:suction", "Kind"}, {rotor + "/Boundary:suction", "Label"}}));
  EXPECT_EQ(state().getNewlyUnavailParams(), (Pairs{{inlet, "Kind"}, {inlet, "Label"}}));
}

TEST_F(ProvisionalEditsTest, ARenamedObjectLosesTheDecisionsOnItsOldName) {
  start({{inlet, {}}});
  state().deactivateOptObject(inlet + "/Turbulence");
  state().renameNamedObject(inlet, "suction");
  state().renameNamedObject(rotor + "/Boundary:suction", "inlet");
  state().activeSetParam(inlet + "/Turbulence", "Intensity", "0.1");
  EXPECT_TRUE(isPresent(inlet + "/Turbulence"));
}

TEST_F(ProvisionalEditsTest, RenamingIsRefusedWhereDuplicatingIs) {
  start({{inlet, {}}, {outlet, {}}});
  EXPECT_TRUE(isRefused([](auto& state) { state.renameNamedObject(rotor, "second"); })) << "the active root";
  EXPECT_TRUE(isRefused([](auto& state) { state.renameNamedObject(stator, "second"); })) << "outside";
  EXPECT_TRUE(isRefused([](auto& state) { state.renameNamedObject(wall, "second"); })) << "absent";
  EXPECT_TRUE(isRefused([](auto& state) { state.renameNamedObject(inlet, "outlet"); })) << "taken";
  EXPECT_TRUE(isRefused([](auto& state) { state.renameNamedObject(inlet, "inlet"); })) << "its own name";
  EXPECT_TRUE(isRefused([](auto& state) { state.renameNamedObject(inlet, "a:b"); }));
}

TEST_F(ProvisionalEditsTest, RenamingAnObjectThatStandsByTheRulesOnlyCountsAsRefusedAndTheCopyShowsWithTheNextWalk) {
  Rules(rules_, "/Case/Domain").child("Stage").allowedNames({"first", "second"});
  Rules(rules_, "/Case/Domain/Stage").param("Blades").required();
  start();
  state().activateOptObject(rotor + "/Stage:first");  // present by a decision, and not in the guide
  EXPECT_TRUE(isRefused([](auto& state) { state.renameNamedObject(rotor + "/Stage:first", "second"); }));
  walkAgain();
  EXPECT_TRUE(isPresent(rotor + "/Stage:first"));
  EXPECT_TRUE(isPresent(rotor + "/Stage:second"));
}

// Refused edits.

TEST_F(ProvisionalEditsTest, EveryEditOutsideTheActiveRootIsRefused) {
  start({{inlet, {}}});
  for (std::string const& path : {std::string(), std::string("/"), std::string("/Case"), stator, rotor + "2",
                                  std::string("no path"), std::string("/Case/Domain:rot")}) {
    SCOPED_TRACE(path);
    EXPECT_TRUE(isRefused([&](auto& state) { state.activeSetParam(path, "Title", "x"); }));
    EXPECT_TRUE(isRefused([&](auto& state) { state.activateOptParam(path, "Note"); }));
    EXPECT_TRUE(isRefused([&](auto& state) { state.deactivateOptParam(path, "Note"); }));
    EXPECT_TRUE(isRefused([&](auto& state) { state.activateOptObject(path); }));
    EXPECT_TRUE(isRefused([&](auto& state) { state.deactivateOptObject(path); }));
    EXPECT_TRUE(isRefused([&](auto& state) { state.addNewNamedObject(path); }));
    EXPECT_TRUE(isRefused([&](auto& state) { state.removeNamedObject(path); }));
    EXPECT_TRUE(isRefused([&](auto& state) { state.duplicateNamedObject(path, "x"); }));
    EXPECT_TRUE(isRefused([&](auto& state) { state.renameNamedObject(path, "x"); }));
  }
}

TEST_F(ProvisionalEditsTest, AValueForAPathThatCannotBeReadPassesOnTheErrorAndChangesNothing) {
  start();
  set("Title", "Impeller");
  for (char const* const tail : {"/", "//Boundary:a", "/Boundary:", "/:a", "/Boundary:a:b"}) {
    SCOPED_TRACE(tail);
    EXPECT_EQ(messageOfError([&] { state().activeSetParam(rotor + tail, "Kind", "x"); }),
              messageOfError([&] { TDFPath const path(rotor + tail); }));
  }
  EXPECT_EQ(state().getModParams(), (Pairs{{rotor, "Title"}})) << "the lists are still those of the last edit";
  EXPECT_TRUE(isPotential("Fluid"));
}

TEST_F(ProvisionalEditsTest, AddingAPathThatCannotBeReadPassesOnTheErrorAndChangesNothing) {
  start();
  set("Title", "Impeller");
  for (char const* const tail : {"//Boundary:a", "/:a", "/Boundary:a:b"}) {
    SCOPED_TRACE(tail);
    EXPECT_EQ(messageOfError([&] { state().addNewNamedObject(rotor + tail); }),
              messageOfError([&] { TDFPath const path(rotor + tail); }));
  }
  EXPECT_EQ(state().getModParams(), (Pairs{{rotor, "Title"}})) << "the lists are still those of the last edit";
  EXPECT_TRUE(isPotential("Fluid"));
}

TEST_F(ProvisionalEditsTest, AnEditOfAPathThatCannotBeReadIsNotPrinted) {
  start();
  std::ostringstream printed;
  ProvTDFLogger printer(&state(), printed);
  state().setLogger(&printer);
  std::string const header = printed.str();
  EXPECT_THROW(state().addNewNamedObject(rotor + "/Boundary:a:b"), Error);
  EXPECT_EQ(printed.str(), header);
  state().setLogger(nullptr);
}

TEST_F(ProvisionalEditsTest, ADecisionOnAPathThatCannotBeReadIsHarmless) {
  start();
  ModelState const before = state().getActiveTDFState();
  state().activateOptObject(rotor + "//:");
  state().deactivateOptObject(rotor + "/");
  state().activateOptParam(rotor + "/", "");
  state().deactivateOptParam(rotor + "//", "Kind");
  EXPECT_EQ(state().getActiveTDFState(), before);
}

TEST_F(ProvisionalEditsTest, ARefusedEditClearsTheListsAndTellsAllThatWasPotentialAsGone) {
  Rules(rules_, "/Case/Domain").param("Speed").required().child("Cavitation").singleton().coupled();
  start({{inlet, {}}});
  ModelState const before = state().getActiveTDFState();
  ASSERT_EQ(state().getEmptyParameters(false), (Strings{rotor + "/Speed"}));
  state().removeNamedObject(inlet);
  ASSERT_TRUE(state().isUserNamedTypeAvailable(rotor, "Boundary"));
  set("Title", "Impeller");
  Pairs const potential = potentialParams();

  state().addNewNamedObject(stator);
  EXPECT_EQ(state().getActiveTDFState(), (ModelState{{rotor, {{"Speed", ""}, {"Title", "Impeller"}}}}));
  EXPECT_EQ(state().getNewlyAvailParams(), Pairs());
  EXPECT_EQ(state().getModParams(), Pairs());
  EXPECT_EQ(state().getNewlyUnavailParams(), Pairs());
  EXPECT_EQ(state().getDeletedObjects(), Strings());
  EXPECT_EQ(state().getEmptyParameters(false), Strings());
  EXPECT_EQ(state().getEmptyParameters(true), Strings());
  EXPECT_EQ(state().getAvailPotObjects(), Strings());
  EXPECT_EQ(potentialParams(), Pairs());
  EXPECT_EQ(state().getNewlyAvailPotObjects(), Strings());
  EXPECT_EQ(newlyPotentialParams(), Pairs());
  EXPECT_EQ(state().getNewlyUnavailPotObjects(), (Strings{rotor + "/Cavitation"}));
  EXPECT_EQ(goneParams(), potential);
  EXPECT_TRUE(state().isUserNamedTypeAvailable(rotor, "Boundary"));

  walkAgain();
  EXPECT_EQ(newlyPotentialParams(), potential);
  EXPECT_EQ(state().getNewlyAvailPotObjects(), (Strings{rotor + "/Cavitation"}));
}

// Edits as values.

using test::resultOf;
using test::textOf;

TEST_F(ProvisionalEditsTest, AnAppliedEditGivesNoReason) {
  start({{inlet, {}}});
  for (Edit const& edit :
       {Edit::setParam(rotor, "Title", "Impeller"), Edit::activateParam(rotor, "Note"),
        Edit::deactivateParam(rotor, "Note"), Edit::activateObject(inlet + "/Turbulence"),
        Edit::deactivateObject(inlet + "/Turbulence"), Edit::addObject(outlet), Edit::duplicateObject(outlet, "second"),
        Edit::renameObject(outlet, "third"), Edit::removeObject(inlet)}) {
    EXPECT_EQ(resultOf(edit, state()), test::EditResult()) << textOf(edit);
  }
  EXPECT_EQ(state().getActiveTDFState(), (ModelState{{rotor, {{"Title", "Impeller"}}},
                                                     {rotor + "/Boundary:second", {{"Kind", "Wall"}}},
                                                     {rotor + "/Boundary:third", {{"Kind", "Wall"}}}}));
}

TEST_F(ProvisionalEditsTest, ARefusedEditGivesItsReason) {
  Rules(rules_, "/Case/Domain").child("Stage").required().allowedNames({"first"});
  Rules(rules_, "/Case/Domain/Stage").param("Blades").required().byDefault("12");
  start({{inlet, {}}});
  state().activateOptObject(inlet + "/Turbulence");
  struct {
    Edit edit;
    Refusal reason;
  } const cases[] = {
      {Edit::setParam(stator, "Title", "x"), Refusal::OutsideActiveRoot},
      {Edit::activateParam("/Case", "Note"), Refusal::OutsideActiveRoot},
      {Edit::deactivateParam(rotor + "2", "Note"), Refusal::OutsideActiveRoot},
      {Edit::activateObject(""), Refusal::OutsideActiveRoot},
      {Edit::deactivateObject("no path"), Refusal::OutsideActiveRoot},
      {Edit::addObject(stator), Refusal::OutsideActiveRoot},
      {Edit::removeObject(stator), Refusal::OutsideActiveRoot},
      {Edit::duplicateObject(stator, "x"), Refusal::OutsideActiveRoot},
      {Edit::renameObject(stator, "x"), Refusal::OutsideActiveRoot},

      {Edit::addObject(rotor + "/Boundary"), Refusal::NotNamed},
      {Edit::addObject(rotor + "/Boundary:"), Refusal::NotNamed},
      {Edit::addObject(rotor + "/Boundary:Boundary"), Refusal::NameEqualsType},
      {Edit::addObject(inlet), Refusal::AlreadyAskedFor},

      {Edit::removeObject(outlet), Refusal::NoSuchObject},
      {Edit::removeObject(inlet + "/Turbulence"), Refusal::NotNamed},
      {Edit::removeObject(rotor + "/Stage:first"), Refusal::StandsByTheRules},

      {Edit::duplicateObject(rotor, "x"), Refusal::IsActiveRoot},
      {Edit::duplicateObject(outlet, "x"), Refusal::NoSuchObject},
      {Edit::duplicateObject(inlet + "/Turbulence", "x"), Refusal::NotNamed},
      {Edit::duplicateObject(inlet, ""), Refusal::NameUnreadable},
      {Edit::duplicateObject(inlet, "a/b"), Refusal::NameUnreadable},
      {Edit::duplicateObject(inlet, "a:b"), Refusal::NameUnreadable},
      {Edit::duplicateObject(inlet, "Boundary"), Refusal::NameEqualsType},
      {Edit::duplicateObject(inlet, "inlet"), Refusal::NameTaken},
      {Edit::duplicateObject(inlet, "outlet"), Refusal::NameTaken},

      {Edit::renameObject(rotor, "x"), Refusal::IsActiveRoot},
      {Edit::renameObject(inlet, "outlet"), Refusal::NameTaken},
      {Edit::renameObject(rotor + "/Stage:first", "second"), Refusal::StandsByTheRules},
  };
  for (auto const& [edit, reason] : cases) {
    if (edit.name == "outlet") state().addNewNamedObject(outlet);
    EXPECT_EQ(resultOf(edit, state()).refusal, reason) << textOf(edit);
    walkAgain();
  }
}

TEST_F(ProvisionalEditsTest, BeforeTheStartEveryEditIsRefused) {
  ProvisionalTDF state(&rules_, rotor);
  EXPECT_EQ(state.apply(Edit::setParam(stator, "Title", "x")), Refusal::NotInitialised);
  EXPECT_EQ(state.apply(Edit::addObject(inlet)), Refusal::NotInitialised);
}

// Observers.

class Notes final : public ProvTDFObserver {
 public:
  void onInitialised(ModelTDF const& base) override { start = &base; }
  void onEdit(Edit const& edit, std::optional<Refusal> refusal) override { edits.emplace_back(edit, refusal); }

  ModelTDF const* start = nullptr;
  std::vector<std::pair<Edit, std::optional<Refusal>>> edits;
};

TEST_F(ProvisionalEditsTest, AnObserverIsCalledAfterTheStartAndAfterEveryEdit) {
  ProvisionalTDF state(&rules_, rotor);
  Notes notes;
  state.setObserver(&notes);
  state.activeSetParam(rotor, "Title", "too early");
  state.initialise(&base_, {});
  EXPECT_EQ(notes.start, &base_);
  state.activeSetParam(rotor, "Title", "Impeller");
  state.removeNamedObject(stator);
  EXPECT_THROW(state.addNewNamedObject(rotor + "/:a"), Error);
  state.setObserver(nullptr);
  state.activateOptParam(rotor, "Note");

  ASSERT_EQ(notes.edits.size(), 2U);
  EXPECT_TRUE(notes.edits[0].first == Edit::setParam(rotor, "Title", "Impeller"));
  EXPECT_EQ(notes.edits[0].second, std::nullopt);
  EXPECT_TRUE(notes.edits[1].first == Edit::removeObject(stator));
  EXPECT_EQ(notes.edits[1].second, Refusal::OutsideActiveRoot);
}

// Before the start.

TEST_F(ProvisionalEditsTest, BeforeTheStartGettersAreEmptyAndEditsDoNothing) {
  ProvisionalTDF state(&rules_, rotor);
  state.activeSetParam(rotor, "Title", "x");
  state.activateOptParam(rotor, "Note");
  state.deactivateOptParam(rotor, "Note");
  state.activateOptObject(inlet);
  state.deactivateOptObject(inlet);
  state.addNewNamedObject(inlet);
  state.removeNamedObject(inlet);
  state.duplicateNamedObject(inlet, "x");
  state.renameNamedObject(inlet, "x");
  state.baseUpdate(&base_);

  EXPECT_EQ(state.getActiveRoot(), rotor);
  EXPECT_EQ(state.getActiveTDFState(), ModelState());
  EXPECT_EQ(state.getParamValue(rotor, "Title"), "");
  EXPECT_EQ(state.getAllowedParamValues(rotor, "Fluid"), Strings());
  EXPECT_EQ(state.getSubsetAllowedParamValues(rotor, "Fluid"), Strings());
  EXPECT_EQ(state.getPathExpansion("/Case", rotor), Strings());
  EXPECT_EQ(state.getEmptyParameters(true), Strings());
  EXPECT_EQ(state.getEmptyParameters(false), Strings());
  EXPECT_FALSE(state.isUserNamedTypeAvailable(rotor, "Boundary"));
  EXPECT_TRUE(state.getModParams().empty());
  EXPECT_TRUE(state.getNewlyAvailParams().empty());
  EXPECT_TRUE(state.getNewlyUnavailParams().empty());
  EXPECT_TRUE(state.getDeletedObjects().empty());
  EXPECT_TRUE(state.getModBoundsParams().empty());
  EXPECT_TRUE(state.getModQuantParams().empty());
  EXPECT_TRUE(state.getAvailPotObjects().empty());
  EXPECT_TRUE(state.getAvailPotParams().empty());
  EXPECT_TRUE(state.getNewlyAvailPotObjects().empty());
  EXPECT_TRUE(state.getNewlyAvailPotParams().empty());
  EXPECT_TRUE(state.getNewlyUnavailPotObjects().empty());
  EXPECT_TRUE(state.getNewlyUnavailPotParams().empty());
  EXPECT_TRUE(state.getModPotParams().empty());

  state.initialise(&base_, {});
  EXPECT_EQ(state.getParamValue(rotor, "Title"), "Untitled");
}

// Printing.

class ProvisionalEditsPrintedTest : public ProvisionalEditsTest {
 protected:
  ProvisionalEditsPrintedTest() { std::remove(file_.c_str()); }
  ~ProvisionalEditsPrintedTest() override { std::remove(file_.c_str()); }

  /// Begins to print what the state does.
  void print() {
    printer_.emplace(&state(), file_);
    state().setLogger(&*printer_);
  }
  std::string printed() const { return test::fileText(file_); }
  /// The lines that say which command was given.
  Strings commands() const {
    Strings lines;
    std::ifstream file(file_);
    for (std::string line; std::getline(file, line);) {
      if (line.starts_with("COMMAND: ")) lines.push_back(line);
    }
    return lines;
  }

 private:
  std::string const file_ = testing::TempDir() + "ProvisionalEditsPrinted.log";
  std::optional<ProvTDFLogger> printer_;
};

TEST_F(ProvisionalEditsPrintedTest, EachEditPrintsItsCommandAlsoWhenItIsRefused) {
  start({{inlet, {}}});
  print();
  state().activeSetParam(rotor, "Title", "Impeller");
  state().activeSetParam(stator, "Title", "outside");
  state().activateOptParam(rotor, "Note");
  state().deactivateOptParam(rotor, "Note");
  state().activateOptObject(inlet + "/Turbulence");
  state().deactivateOptObject(inlet + "/Turbulence");
  state().addNewNamedObject(outlet);
  state().duplicateNamedObject(outlet, "second");
  state().renameNamedObject(outlet, "third");
  state().removeNamedObject(inlet);
  state().removeNamedObject(inlet);
  EXPECT_EQ(
      commands(),
      (Strings{"COMMAND: activeSetParam " + rotor + "/Title = Impeller",
               "COMMAND: activeSetParam " + stator + "/Title = outside", "COMMAND: activateOptParam " + rotor + "/Note",
               "COMMAND: deactivateOptParam " + rotor + "/Note", "COMMAND: activateOptObject " + inlet + "/Turbulence",
               "COMMAND: deactivateOptObject " + inlet + "/Turbulence", "COMMAND: addNewObject " + outlet,
               "COMMAND: duplicateNamedObject " + outlet + "->second",
               "COMMAND: renameNamedObject " + outlet + "->third", "COMMAND: removeObject " + inlet,
               "COMMAND: removeObject " + inlet}));
}

TEST_F(ProvisionalEditsPrintedTest, TheSummaryBehindACommandIsThatOfItsUpdate) {
  start();
  print();
  set("Title", "Impeller");
  std::string const text = printed();
  auto const command = text.find("COMMAND: activeSetParam");
  auto const modified =
      text.find("Modified Parameters in TDF\n--------------------------\n" + rotor + "/Title = Impeller\n");
  ASSERT_NE(command, std::string::npos);
  ASSERT_NE(modified, std::string::npos);
  EXPECT_LT(command, modified);
}

TEST_F(ProvisionalEditsPrintedTest, WithoutALoggerNothingIsPrintedAnyMore) {
  start();
  print();
  std::string const before = printed();
  state().setLogger(nullptr);
  set("Title", "Impeller");
  EXPECT_EQ(printed(), before);
}

TEST_F(ProvisionalEditsPrintedTest, ABaseUpdatePrintsNoCommand) {
  start();
  print();
  state().baseUpdate(&base_);
  EXPECT_EQ(commands(), Strings());
}

TEST_F(ProvisionalEditsPrintedTest, TheStartPrintsTheWholeBaseModelAndThenItsCommand) {
  base_.set("/Case", "Flow Regime", "Turbulent");
  base_.set(rotor, "Title", "Impeller");
  start();
  print();
  state().initialise(&base_, {});
  std::string const text = printed();
  std::string const expected =
      "\n\nBASE TDF BEGIN\n\n"
      "\n"
      "Case: \n"
      "  Flow Regime = Turbulent\n"
      "  Domain: rotor\n"
      "    Title = Impeller\n"
      "  END # Domain:rotor\n"
      "END # Case:\n"
      "\n\nBASE TDF END\n\n"
      "COMMAND: initialise <BASE TDF>\n"
      "\n>>>> == BEGIN UPDATE SUMMARY ==\n";
  EXPECT_NE(text.find(expected), std::string::npos) << text;
}

}  // namespace
}  // namespace tarn
