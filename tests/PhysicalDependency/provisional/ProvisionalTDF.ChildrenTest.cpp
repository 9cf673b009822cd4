// Which child objects there are: each kind of child entry, the default names, the mirrored children, the probe of a
// type that has no object yet, and the effect of edits of named objects.

#include <tarn/Error.h>
#include <tarn/ProvisionalTDF.h>

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "PhysicalDependency/provisional/ProvisionalFixture.h"

namespace tarn {
namespace {

using test::list;
using test::Pairs;
using test::rotor;
using test::Rules;
using test::Strings;
using test::text;
using test::when;

std::string const inlet = rotor + "/Boundary:inlet";
std::string const outlet = rotor + "/Boundary:outlet";
std::string const wall = rotor + "/Boundary:wall";

class ProvisionalChildrenTest : public test::ProvisionalTest {
 protected:
  /// Rules of the rotor that begin with Control, ready for the children that the test is about. Each boundary has a
  /// Kind and so shows in the active state.
  Rules rotorRules() {
    Rules(rules_, "/Case/Domain/Boundary").param("Kind").required().byDefault("Wall");
    Rules(rules_, "/Case/Domain").param("Control");
    return Rules(rules_, "/Case/Domain");
  }
  static std::unique_ptr<Condition> switchedOn() { return when("Control", "on"); }

  /// The objects below the rotor that hold parameters.
  Strings objects() {
    Strings paths;
    for (auto const& [path, params] : state().getActiveTDFState()) {
      if (path != rotor) paths.push_back(path);
    }
    return paths;
  }
  Strings const& potential() { return state().getAvailPotObjects(); }
};

// Withdrawn.

TEST_F(ProvisionalChildrenTest, AWithdrawnTypeLosesItsObjectsWhichAreNotPotential) {
  rotorRules().child("Boundary").required().allowedNames({"inlet", "outlet"}).availableWhen(switchedOn());
  start({{rotor, {{"Control", "on"}}}});
  EXPECT_EQ(objects(), (Strings{inlet, outlet}));
  set("Control", "off");
  EXPECT_EQ(objects(), Strings());
  EXPECT_EQ(potential(), Strings());
  EXPECT_EQ(state().getDeletedObjects(), (Strings{inlet, outlet}));
  EXPECT_EQ(state().getNewlyUnavailParams(), (Pairs{{inlet, "Kind"}, {outlet, "Kind"}}));
}

TEST_F(ProvisionalChildrenTest, AWithdrawnObjectComesBackWithWhatTheGuideHoldsOfIt) {
  rotorRules().child("Boundary").required().availableWhen(switchedOn());
  start({{rotor, {{"Control", "on"}}}, {inlet, {{"Kind", "Mass Flow"}}}});
  set("Control", "off");
  EXPECT_EQ(objects(), Strings());
  set("Control", "on");
  EXPECT_EQ(value("Kind", inlet), "Mass Flow");
}

// Required.

TEST_F(ProvisionalChildrenTest, ARequiredSingletonIsCreated) {
  rotorRules().child("Initial").required().singleton();
  Rules(rules_, "/Case/Domain/Initial").param("Pressure").required().byDefault("1 [bar]");
  start();
  EXPECT_EQ(value("Pressure", rotor + "/Initial"), "1 [bar]");
}

TEST_F(ProvisionalChildrenTest, OfARequiredTypeWithAllowedNamesThereAreExactlyThese) {
  rotorRules().child("Boundary").required().allowedNames({"outlet", "inlet"});
  start({{wall, {}}});
  EXPECT_EQ(objects(), (Strings{inlet, outlet}));
}

TEST_F(ProvisionalChildrenTest, AnAllowedNameIsCreatedBeforeTheOneThatIsNoLongerAllowedGoes) {
  rotorRules().child("Boundary").required().allowedNames(list([](TDFContext const& at, ModelTDF const& model) {
    bool const on = model.getParameterValue(at.objPath(), "Control") == "on";
    return on ? SharedStrings{"inlet", "outlet"} : SharedStrings{"inlet", "wall"};
  }));
  start();
  EXPECT_EQ(objects(), (Strings{inlet, wall}));
  set("Control", "on");
  EXPECT_EQ(objects(), (Strings{inlet, outlet}));
  EXPECT_EQ(state().getDeletedObjects(), (Strings{wall}));
  EXPECT_EQ(state().getNewlyAvailParams(), (Pairs{{rotor, "Control"}, {outlet, "Kind"}}));
}

TEST_F(ProvisionalChildrenTest, OfARequiredTypeWithOpenNamesThereAreThoseOfTheGuide) {
  rotorRules().child("Boundary").required();
  start({{outlet, {}}, {inlet, {{"Kind", "Mass Flow"}}}});
  EXPECT_EQ(objects(), (Strings{inlet, outlet}));
  EXPECT_EQ(value("Kind", inlet), "Mass Flow");
  EXPECT_EQ(value("Kind", outlet), "Wall");
}

TEST_F(ProvisionalChildrenTest, OfARequiredTypeWithOpenNamesTheBaseModelsAreTheStart) {
  rotorRules().child("Boundary").required();
  base_.set(inlet, "Kind", "Mass Flow");
  start();
  EXPECT_EQ(objects(), (Strings{inlet}));
}

// Default names.

TEST_F(ProvisionalChildrenTest, ARequiredTypeStartsWithItsDefaultNames) {
  rotorRules().child("Boundary").required().defaultNames({"outlet", "inlet"});
  start();
  EXPECT_EQ(objects(), (Strings{inlet, outlet}));
}

TEST_F(ProvisionalChildrenTest, DefaultObjectsAreInTheGuideAndCanBeRemoved) {
  rotorRules().child("Boundary").required().defaultNames({"inlet", "outlet"});
  start();
  state().removeNamedObject(inlet);
  EXPECT_EQ(objects(), (Strings{outlet}));
  EXPECT_EQ(state().getDeletedObjects(), (Strings{inlet}));
}

TEST_F(ProvisionalChildrenTest, DefaultObjectsThatWereAllRemovedDoNotComeBackAndTheTypeIsProbed) {
  rotorRules().child("Boundary").required().defaultNames({"inlet"});
  start();
  EXPECT_FALSE(state().isUserNamedTypeAvailable(rotor, "Boundary"));
  state().removeNamedObject(inlet);
  EXPECT_EQ(objects(), Strings());
  EXPECT_TRUE(state().isUserNamedTypeAvailable(rotor, "Boundary"));
  walkAgain();
  EXPECT_EQ(objects(), Strings());
}

TEST_F(ProvisionalChildrenTest, WhereThereIsAnObjectAtTheStartDefaultNamesAreNeverUsed) {
  rotorRules().child("Boundary").required().defaultNames({"inlet"});
  start({{wall, {}}});
  EXPECT_EQ(objects(), (Strings{wall}));
  state().removeNamedObject(wall);
  EXPECT_EQ(objects(), Strings());
  walkAgain();
  EXPECT_EQ(objects(), Strings());
}

TEST_F(ProvisionalChildrenTest, DefaultNamesAreUsedOnceForAParentEvenIfItIsRemovedAndAddedAgain) {
  rotorRules().child("Boundary").required();
  Rules(rules_, "/Case/Domain/Boundary").child("Patch").required().defaultNames({"all"});
  Rules(rules_, "/Case/Domain/Boundary/Patch").param("Area").required();
  start();
  state().addNewNamedObject(inlet);
  EXPECT_EQ(objects(), (Strings{inlet, inlet + "/Patch:all"}));
  state().removeNamedObject(inlet);
  state().addNewNamedObject(inlet);
  EXPECT_EQ(objects(), (Strings{inlet}));
}

TEST_F(ProvisionalChildrenTest, ADefaultNameThatNoObjectCanHaveEndsOneWalkAndNoMore) {
  rotorRules().child("Boundary").required().defaultNames({"inlet", "outlet: 2", "wall"});
  EXPECT_THROW(start(), Error);
  walkAgain();
  EXPECT_EQ(objects(), (Strings{inlet}));
}

TEST_F(ProvisionalChildrenTest, AnOptionalTypeGetsNoObjectsFromDefaultNames) {
  rotorRules().child("Boundary").coupled().defaultNames({"inlet"});
  start();
  EXPECT_EQ(objects(), Strings());
  EXPECT_EQ(potential(), Strings());
}

// Optional and not coupled.

TEST_F(ProvisionalChildrenTest, AnOptionalTypeThatIsNotCoupledIsMirroredFromTheBaseModelAndNotJudged) {
  rotorRules().child("Boundary");
  base_.set(inlet, "Kind", "Mass Flow");
  base_.set(inlet, "Unknown to the Rules", "1");
  base_.set(inlet + "/Patch:all", "Area", "2");
  start();
  ModelState const expected{{inlet, {{"Kind", "Mass Flow"}, {"Unknown to the Rules", "1"}}},
                            {inlet + "/Patch:all", {{"Area", "2"}}}};
  EXPECT_EQ(state().getActiveTDFState(), expected);
}

TEST_F(ProvisionalChildrenTest, MirroredChildrenFollowTheBaseModel) {
  rotorRules().child("Boundary");
  base_.set(inlet, "Kind", "Mass Flow");
  base_.set(outlet, "Kind", "Pressure");
  start();
  base_.remove(inlet);
  base_.set(outlet, "Kind", "Opening");
  base_.set(wall, "Kind", "Wall");
  state().baseUpdate(&base_);
  ModelState const expected{{outlet, {{"Kind", "Opening"}}}, {wall, {{"Kind", "Wall"}}}};
  EXPECT_EQ(state().getActiveTDFState(), expected);
  EXPECT_EQ(state().getDeletedObjects(), (Strings{inlet}));
  EXPECT_EQ(state().getNewlyUnavailParams(), (Pairs{{inlet, "Kind"}}));
  EXPECT_EQ(state().getModParams(), (Pairs{{outlet, "Kind"}}));
  EXPECT_EQ(state().getNewlyAvailParams(), (Pairs{{wall, "Kind"}}));
}

TEST_F(ProvisionalChildrenTest, BlankValuesOfTheBaseModelAreNotMirrored) {
  rotorRules().child("Boundary");
  base_.set(inlet, "Kind", "  ");
  base_.set(inlet, "Label", "main");
  start();
  ModelState const expected{{inlet, {{"Label", "main"}}}};
  EXPECT_EQ(state().getActiveTDFState(), expected);
}

TEST_F(ProvisionalChildrenTest, TheGuideHasNoSayOverMirroredChildren) {
  rotorRules().child("Boundary");
  base_.set(inlet, "Kind", "Mass Flow");
  start({{inlet, {{"Kind", "Pressure"}}}, {wall, {{"Kind", "Wall"}}}});
  state().addNewNamedObject(outlet);
  state().activateOptObject(outlet);
  state().activeSetParam(inlet, "Kind", "Opening");
  ModelState const expected{{inlet, {{"Kind", "Mass Flow"}}}};
  EXPECT_EQ(state().getActiveTDFState(), expected);
  EXPECT_EQ(potential(), Strings());
}

TEST_F(ProvisionalChildrenTest, WhatTheGuideHeldOfMirroredChildrenIsErased) {
  rotorRules().child("Boundary");
  start({{inlet, {{"Kind", "Pressure"}}}});
  // Were it in the guide still, this would be refused, and no walk made.
  set("Control", "1");
  state().addNewNamedObject(inlet);
  EXPECT_EQ(value("Control"), "1");
  EXPECT_EQ(state().getEmptyParameters(false), Strings());
  set("Control", "");
  EXPECT_EQ(state().getEmptyParameters(false), (Strings{rotor + "/Control"}));
  state().addNewNamedObject(inlet);
  EXPECT_EQ(state().getEmptyParameters(false), (Strings{rotor + "/Control"}));  // of a walk
}

TEST_F(ProvisionalChildrenTest, ANewObjectMirrorsNothing) {
  rotorRules().child("Boundary");
  base_.remove(rotor);
  base_.set("/Case/Domain:stator/Boundary:inlet", "Kind", "Mass Flow");
  ProvisionalTDF state(&rules_, rotor);
  state.initialiseBasedOn("/Case/Domain:stator", &base_, {});
  EXPECT_EQ(state.getActiveTDFState(), ModelState());
  base_.set(inlet, "Kind", "Mass Flow");
  state.baseUpdate(&base_);
  EXPECT_EQ(state.getActiveTDFState(), ModelState());
}

// Optional and coupled: a singleton.

class ProvisionalOptionalSingletonTest : public ProvisionalChildrenTest {
 protected:
  ProvisionalOptionalSingletonTest() {
    rotorRules().child("Turbulence").singleton().coupled();
    Rules(rules_, "/Case/Domain/Turbulence").param("Model").required().byDefault("SST");
  }
  std::string const turbulence_ = rotor + "/Turbulence";
};

TEST_F(ProvisionalOptionalSingletonTest, UndecidedAndNotInTheGuideItIsPotential) {
  start();
  EXPECT_EQ(objects(), Strings());
  EXPECT_EQ(potential(), (Strings{turbulence_}));
  EXPECT_EQ(state().getNewlyAvailPotObjects(), (Strings{turbulence_}));
}

TEST_F(ProvisionalOptionalSingletonTest, UndecidedAndInTheGuideItIsPresent) {
  start({{turbulence_, {{"Model", "k epsilon"}}}});
  EXPECT_EQ(value("Model", turbulence_), "k epsilon");
  EXPECT_EQ(potential(), Strings());
}

TEST_F(ProvisionalOptionalSingletonTest, SwitchedOnItIsPresent) {
  start();
  state().activateOptObject(turbulence_);
  EXPECT_EQ(value("Model", turbulence_), "SST");
  EXPECT_EQ(potential(), Strings());
  EXPECT_EQ(state().getNewlyUnavailPotObjects(), Strings());  // activated, not lost
}

TEST_F(ProvisionalOptionalSingletonTest, SwitchedOffItIsPotentialAndItsValuesComeBackWithIt) {
  start({{turbulence_, {{"Model", "k epsilon"}}}});
  state().deactivateOptObject(turbulence_);
  EXPECT_EQ(objects(), Strings());
  EXPECT_EQ(potential(), (Strings{turbulence_}));
  EXPECT_EQ(state().getDeletedObjects(), (Strings{turbulence_}));
  state().activateOptObject(turbulence_);
  EXPECT_EQ(value("Model", turbulence_), "k epsilon");
}

TEST_F(ProvisionalOptionalSingletonTest, AValueInsideMakesItWanted) {
  start();
  state().activeSetParam(turbulence_, "Model", "k omega");
  EXPECT_EQ(value("Model", turbulence_), "k omega");
}

TEST_F(ProvisionalOptionalSingletonTest, AValueInsideWaitsWhileItIsSwitchedOff) {
  start();
  state().deactivateOptObject(turbulence_);
  state().activeSetParam(turbulence_, "Model", "k omega");
  EXPECT_EQ(objects(), Strings());
  state().activateOptObject(turbulence_);
  EXPECT_EQ(value("Model", turbulence_), "k omega");
}

// Optional and coupled: allowed names.

class ProvisionalOptionalNamesTest : public ProvisionalChildrenTest {
 protected:
  ProvisionalOptionalNamesTest() {
    rotorRules().child("Boundary").allowedNames(list([](TDFContext const& at, ModelTDF const& model) {
      bool const on = model.getParameterValue(at.objPath(), "Control") == "on";
      return on ? SharedStrings{"wall"} : SharedStrings{"outlet", "inlet"};
    }));
  }
};

TEST_F(ProvisionalOptionalNamesTest, AllowedNamesThatNobodyWantsArePotentialInTheirOrder) {
  start();
  EXPECT_EQ(objects(), Strings());
  EXPECT_EQ(potential(), (Strings{outlet, inlet}));
}

TEST_F(ProvisionalOptionalNamesTest, AnAllowedNameInTheGuideIsPresent) {
  start({{inlet, {}}});
  EXPECT_EQ(objects(), (Strings{inlet}));
  EXPECT_EQ(potential(), (Strings{outlet}));
}

TEST_F(ProvisionalOptionalNamesTest, ANameThatIsNotAllowedHasNoEffect) {
  start({{wall, {}}});
  EXPECT_EQ(objects(), Strings());
  EXPECT_EQ(potential(), (Strings{outlet, inlet}));
  state().activateOptObject(wall);
  EXPECT_EQ(objects(), Strings());
}

TEST_F(ProvisionalOptionalNamesTest, AnAllowedNameCanBeAdded) {
  start();
  state().addNewNamedObject(inlet);
  EXPECT_EQ(objects(), (Strings{inlet}));
  EXPECT_EQ(potential(), (Strings{outlet}));
}

TEST_F(ProvisionalOptionalNamesTest, AnAllowedNameThatIsSwitchedOffIsDeletedAndPotential) {
  start({{inlet, {}}, {outlet, {}}});
  state().deactivateOptObject(inlet);
  EXPECT_EQ(objects(), (Strings{outlet}));
  EXPECT_EQ(potential(), (Strings{inlet}));
  EXPECT_EQ(state().getDeletedObjects(), (Strings{inlet}));
  EXPECT_EQ(state().getNewlyUnavailParams(), (Pairs{{inlet, "Kind"}}));
}

TEST_F(ProvisionalOptionalNamesTest, ANameThatIsNoLongerAllowedIsDeletedAndNotPotential) {
  start({{inlet, {}}, {outlet, {}}});
  set("Control", "on");
  EXPECT_EQ(objects(), Strings());
  EXPECT_EQ(potential(), (Strings{wall}));
  EXPECT_EQ(state().getDeletedObjects(), (Strings{inlet, outlet}));
}

TEST_F(ProvisionalChildrenTest, PotentialNamesCountWhereItIsSeenThatAnObjectIsNotAllowed) {
  rotorRules().child("Boundary").allowedNames(list([](TDFContext const& at, ModelTDF const& model) {
    bool const on = model.getParameterValue(at.objPath(), "Control") == "on";
    return on ? SharedStrings{"inlet", "outlet"} : SharedStrings{"inlet", "wall"};
  }));
  start({{inlet, {}}, {wall, {}}});
  set("Control", "on");  // two objects and two names, of which one is not there
  EXPECT_EQ(objects(), (Strings{inlet}));
  EXPECT_EQ(potential(), (Strings{outlet}));
}

TEST_F(ProvisionalOptionalNamesTest, APotentialNameThatIsNoLongerAllowedIsTold) {
  start();
  set("Control", "on");
  EXPECT_EQ(state().getNewlyUnavailPotObjects(), (Strings{inlet, outlet}));
  EXPECT_EQ(state().getNewlyAvailPotObjects(), (Strings{wall}));
}

// Optional and coupled: open names.

TEST_F(ProvisionalChildrenTest, OfAnOptionalTypeWithOpenNamesThereAreThoseOfTheGuideUnlessSwitchedOff) {
  rotorRules().child("Boundary").coupled();
  start({{inlet, {}}, {outlet, {}}});
  EXPECT_EQ(objects(), (Strings{inlet, outlet}));
  state().deactivateOptObject(outlet);
  EXPECT_EQ(objects(), (Strings{inlet}));
  EXPECT_EQ(potential(), (Strings{outlet}));
}

TEST_F(ProvisionalChildrenTest, AnOptionalTypeWithOpenNamesGetsWhatIsAddedAndLosesWhatIsRemoved) {
  rotorRules().child("Boundary").coupled();
  start({{inlet, {}}});
  state().addNewNamedObject(outlet);
  EXPECT_EQ(objects(), (Strings{inlet, outlet}));
  state().removeNamedObject(inlet);
  EXPECT_EQ(objects(), (Strings{outlet}));
  EXPECT_EQ(potential(), Strings());
}

TEST_F(ProvisionalChildrenTest, AnOptionalTypeWithoutObjectsIsNotProbed) {
  rotorRules().child("Boundary").coupled();
  start();
  EXPECT_FALSE(state().isUserNamedTypeAvailable(rotor, "Boundary"));
}

// Entering and leaving an object.

TEST_F(ProvisionalChildrenTest, AnObjectThatTheRulesDoNotKnowIsDeleted) {
  rotorRules().child("Sensor").required();
  start({{rotor + "/Sensor:a", {{"Position", "0"}}}});
  EXPECT_EQ(objects(), Strings());
  EXPECT_EQ(state().getDeletedObjects(), (Strings{rotor + "/Sensor:a"}));
}

TEST_F(ProvisionalChildrenTest, ARequiredObjectThatHoldsNothingGoesWithoutAWord) {
  rotorRules().child("Initial").required().singleton();
  Rules(rules_, "/Case/Domain/Initial").param("Pressure").required().availableWhen(test::never());
  start();
  EXPECT_EQ(state().getDeletedObjects(), Strings());
  EXPECT_EQ(state().getPathExpansion(rotor + "/Initial", rotor), Strings());
}

TEST_F(ProvisionalChildrenTest, ARequiredObjectThatHoldsOnlyPotentialItemsStays) {
  rotorRules().child("Initial").required().singleton();
  Rules(rules_, "/Case/Domain/Initial").param("Pressure");
  start();
  EXPECT_EQ(state().getPathExpansion(rotor + "/Initial", rotor), (Strings{rotor + "/Initial"}));
}

TEST_F(ProvisionalChildrenTest, ARequiredObjectWithAPotentialObjectInItStays) {
  rotorRules().child("Initial").required().singleton();
  Rules(rules_, "/Case/Domain/Initial").child("Field").singleton().coupled();
  Rules(rules_, "/Case/Domain/Initial/Field").param("File").required();
  start();
  EXPECT_EQ(state().getPathExpansion(rotor + "/Initial", rotor), (Strings{rotor + "/Initial"}));
}

TEST_F(ProvisionalChildrenTest, AnOptionalObjectThatHoldsNothingStays) {
  rotorRules().child("Initial").singleton().coupled();
  Rules(rules_, "/Case/Domain/Initial").param("Pressure").availableWhen(test::never());
  start();
  state().activateOptObject(rotor + "/Initial");
  EXPECT_EQ(state().getPathExpansion(rotor + "/Initial", rotor), (Strings{rotor + "/Initial"}));
}

TEST_F(ProvisionalChildrenTest, AnActiveRootWithNothingInItLeavesTheActiveTreeAndComesBackWithAParameter) {
  Rules(rules_, "/Case/Domain").param("Speed").required().availableWhen(when([](auto const&, ModelTDF const& model) {
    return model.getParameterValue("/Case", "Motion") == "Rotating";
  }));
  start();
  EXPECT_EQ(state().getPathExpansion(rotor, ""), Strings());
  EXPECT_EQ(state().getDeletedObjects(), Strings());
  base_.set("/Case", "Motion", "Rotating");
  state().baseUpdate(&base_);
  EXPECT_EQ(state().getPathExpansion(rotor, ""), (Strings{rotor}));
}

// The probe.

class ProvisionalProbeTest : public ProvisionalChildrenTest {
 protected:
  void boundaryRules(std::function<void(Rules&)> const& fill) {
    Rules(rules_, "/Case/Domain").param("Control").child("Boundary").required();
    Rules rules(rules_, "/Case/Domain/Boundary");
    fill(rules);
  }
  void expectNoTrace() {
    EXPECT_EQ(objects(), Strings());
    EXPECT_EQ(potential(), Strings());
    EXPECT_EQ(potentialParams(), (Pairs{{rotor, "Control"}}));
    EXPECT_EQ(state().getNewlyAvailParams(), Pairs());
    EXPECT_EQ(state().getNewlyUnavailParams(), Pairs());
    EXPECT_EQ(state().getModParams(), Pairs());
    EXPECT_EQ(state().getDeletedObjects(), Strings());
    EXPECT_EQ(state().getEmptyParameters(false), Strings());
    EXPECT_TRUE(state().getModQuantParams().empty());
    EXPECT_EQ(state().getPathExpansion(rotor + "/*", rotor), Strings());
  }
};

TEST_F(ProvisionalProbeTest, ATypeWhoseObjectsHoldParametersMayBeAddedAndTheProbeLeavesNoTrace) {
  boundaryRules([](Rules& rules) {
    rules.param("Kind").required().param("Inflow").type(TDFParam::Real).required().byDefault("1");
    rules.param("Fluid").required().allowed({"Water"}).overriddenWhen(test::always(), "Water");
  });
  start();
  EXPECT_TRUE(state().isUserNamedTypeAvailable(rotor, "Boundary"));
  expectNoTrace();
}

TEST_F(ProvisionalProbeTest, ATypeWhoseObjectsOnlyOfferParametersMayBeAddedAndTheProbeLeavesNoTrace) {
  boundaryRules([](Rules& rules) { rules.param("Kind").param("Fluid").allowed({"Water"}); });
  start();
  EXPECT_TRUE(state().isUserNamedTypeAvailable(rotor, "Boundary"));
  expectNoTrace();
}

TEST_F(ProvisionalProbeTest, ATypeWhoseObjectsOnlyOfferObjectsMayBeAddedAndTheProbeLeavesNoTrace) {
  boundaryRules([](Rules& rules) { rules.child("Patch").singleton().coupled(); });
  start();
  EXPECT_TRUE(state().isUserNamedTypeAvailable(rotor, "Boundary"));
  expectNoTrace();
}

TEST_F(ProvisionalProbeTest, ATypeWhoseObjectsHoldParametersFurtherDownMayBeAddedAndTheProbeLeavesNoTrace) {
  boundaryRules([](Rules& rules) {
    rules.child("Patch").required().singleton();
    rules.object("/Case/Domain/Boundary/Patch").param("Area").required();
  });
  start();
  EXPECT_TRUE(state().isUserNamedTypeAvailable(rotor, "Boundary"));
  expectNoTrace();
}

TEST_F(ProvisionalProbeTest, ATypeWhoseObjectsWouldHoldNothingMayNotBeAdded) {
  boundaryRules([](Rules& rules) { rules.param("Kind").required().availableWhen(test::never()); });
  start();
  EXPECT_FALSE(state().isUserNamedTypeAvailable(rotor, "Boundary"));
  expectNoTrace();
}

TEST_F(ProvisionalProbeTest, ATypeThatTheRulesDoNotKnowMayNotBeAdded) {
  Rules(rules_, "/Case/Domain").param("Control").child("Boundary").required();
  start();
  EXPECT_FALSE(state().isUserNamedTypeAvailable(rotor, "Boundary"));
  expectNoTrace();
}

TEST_F(ProvisionalProbeTest, InsideAProbeNoOtherOneIsStarted) {
  boundaryRules([](Rules& rules) {
    rules.child("Patch").required();
    rules.object("/Case/Domain/Boundary/Patch").param("Area").required();
  });
  start();
  EXPECT_FALSE(state().isUserNamedTypeAvailable(rotor, "Boundary"));
  expectNoTrace();
}

TEST_F(ProvisionalProbeTest, ATypeThatHasAnObjectIsNotProbed) {
  boundaryRules([](Rules& rules) { rules.param("Kind").required(); });
  start({{inlet, {}}});
  EXPECT_FALSE(state().isUserNamedTypeAvailable(rotor, "Boundary"));
}

TEST_F(ProvisionalProbeTest, DefaultObjectsInsideAProbeLeaveNoTraceInTheGuide) {
  boundaryRules([](Rules& rules) {
    rules.param("Kind").required().child("Patch").required().defaultNames({"all"});
    rules.object("/Case/Domain/Boundary/Patch").param("Area").required();
  });
  start();
  expectNoTrace();
  walkAgain();
  expectNoTrace();
}

TEST_F(ProvisionalProbeTest, TheBoundsOfAProbeAreToldAllTheSame) {
  auto const computed = [] { return text([](TDFContext const&, ModelTDF const&) { return std::string("1"); }); };
  boundaryRules(
      [&](Rules& rules) { rules.param("Speed").type(TDFParam::Real).required().bounds(computed(), computed()); });
  start();
  std::map<std::string, std::pair<std::string, std::string>> const expected{
      {rotor + "/Boundary:__%%dummy%%__/Speed", {"1", "1"}}};
  EXPECT_EQ(state().getModBoundsParams(), expected);
}

TEST_F(ProvisionalProbeTest, BehindAProbeTheWalkRecordsAndTracksAgain) {
  boundaryRules([](Rules& rules) { rules.param("Kind").required(); });
  Rules(rules_, "/Case/Domain").child("Port").required().singleton();
  Rules(rules_, "/Case/Domain/Port").param("Inflow").type(TDFParam::Real).required().byDefault("1");
  start();
  EXPECT_EQ(state().getNewlyAvailParams(), (Pairs{{rotor + "/Port", "Inflow"}}));
  std::map<std::string, std::string> const expected{{rotor + "/Port/Inflow", "Mass Flow"}};
  EXPECT_EQ(state().getModQuantParams(), expected);
}

TEST_F(ProvisionalProbeTest, TypesOfSeveralParentsThatHoldSomethingAreFound) {
  Rules(rules_, "/Case/Domain").child("Zone").required();
  Rules(rules_, "/Case/Domain/Zone").param("Title").required().child("Source").required().child("Point").required();
  Rules(rules_, "/Case/Domain/Zone/Source").param("Strength").required();
  Rules(rules_, "/Case/Domain/Zone/Point").param("X").required();
  start();
  state().addNewNamedObject(rotor + "/Zone:b");
  state().addNewNamedObject(rotor + "/Zone:a");
  for (std::string const& zone : {rotor + "/Zone:a", rotor + "/Zone:b"}) {
    EXPECT_TRUE(state().isUserNamedTypeAvailable(zone, "Source")) << zone;
    EXPECT_TRUE(state().isUserNamedTypeAvailable(zone, "Point")) << zone;
  }
  EXPECT_FALSE(state().isUserNamedTypeAvailable(rotor, "Zone"));
  EXPECT_FALSE(state().isUserNamedTypeAvailable(rotor, "Source"));
}

TEST_F(ProvisionalProbeTest, AProbeWhoseWalkThrowsLeavesAStateThatRecordsAndTracksAgain) {
  bool fails = true;
  boundaryRules([&](Rules& rules) {
    rules.param("Title").param("Kind").required().byDefault(text([&](TDFContext const&, ModelTDF const&) {
      if (fails) throw std::runtime_error("no value for the kind");
      return std::string("Wall");
    }));
  });
  Rules(rules_, "/Case/Domain").param("Inflow").type(TDFParam::Real).required().byDefault("1");
  EXPECT_THROW(start(), std::runtime_error);
  EXPECT_EQ(state().getActiveTDFState(), ModelState());
  EXPECT_EQ(potential(), Strings());
  EXPECT_EQ(potentialParams(), Pairs());
  fails = false;
  modifier_.type = "Volume Flow";
  set("Control", "on");
  EXPECT_EQ(state().getNewlyAvailParams(), (Pairs{{rotor, "Control"}}));
  std::map<std::string, std::string> const expected{{rotor + "/Inflow", "Volume Flow"}};
  EXPECT_EQ(state().getModQuantParams(), expected);
  EXPECT_TRUE(state().isUserNamedTypeAvailable(rotor, "Boundary"));
  EXPECT_EQ(objects(), Strings());
  EXPECT_EQ(potentialParams(), Pairs());
}

}  // namespace
}  // namespace tarn
