// The start from a base model and a guide state, the start as a copy, and the effect of a changed base model.

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include <tarn/Error.h>

#include "PhysicalDependency/provisional/ProvisionalFixture.h"

namespace tarn {
namespace {

using test::Pairs;
using test::rotor;
using test::Rules;
using test::Strings;
using test::text;
using test::when;

std::string const stator = "/Case/Domain:stator";

class ProvisionalInitialiseTest : public test::ProvisionalTest {
 protected:
  /// Every domain has the optional parameters Motion and Title and boundaries with a Kind.
  void domainRules() {
    Rules(rules_, "/Case/Domain").param("Motion").param("Title").child("Boundary").coupled();
    Rules(rules_, "/Case/Domain/Boundary").param("Kind");
  }
};

// The guide at the start.

TEST_F(ProvisionalInitialiseTest, TheBaseModelsBranchIsTheStart) {
  domainRules();
  base_.set(rotor, "Motion", "Rotating");
  base_.set(rotor + "/Boundary:inlet", "Kind", "Mass Flow");
  base_.set(stator, "Motion", "Stationary");
  start();
  ModelState const expected{{rotor, {{"Motion", "Rotating"}}}, {rotor + "/Boundary:inlet", {{"Kind", "Mass Flow"}}}};
  EXPECT_EQ(state().getActiveTDFState(), expected);
}

TEST_F(ProvisionalInitialiseTest, TheGuideStateOverlaysTheBaseModelParameterByParameter) {
  domainRules();
  base_.set(rotor, "Motion", "Rotating");
  base_.set(rotor, "Title", "Impeller");
  start({{rotor, {{"Motion", "Stationary"}}}, {rotor + "/Boundary:inlet", {{"Kind", "Opening"}}}});
  ModelState const expected{{rotor, {{"Motion", "Stationary"}, {"Title", "Impeller"}}},
                            {rotor + "/Boundary:inlet", {{"Kind", "Opening"}}}};
  EXPECT_EQ(state().getActiveTDFState(), expected);
}

TEST_F(ProvisionalInitialiseTest, EmptyValuesOfTheBaseModelAreNotTakenOver) {
  domainRules();
  base_.set(rotor, "Motion", "");
  base_.set(rotor, "Title", "  ");
  start();
  EXPECT_EQ(state().getActiveTDFState(), ModelState());
  EXPECT_TRUE(isPotential("Motion"));
}

TEST_F(ProvisionalInitialiseTest, EmptyValuesOfTheGuideStateAreTakenOver) {
  domainRules();
  start({{rotor, {{"Motion", ""}}}});
  EXPECT_EQ(value("Motion"), "");
  EXPECT_EQ(state().getEmptyParameters(false), (Strings{rotor + "/Motion"}));
}

TEST_F(ProvisionalInitialiseTest, AnEmptyGuideStateLeavesTheBaseModelsBranch) {
  domainRules();
  base_.set(rotor, "Motion", "Rotating");
  start({});
  EXPECT_EQ(value("Motion"), "Rotating");
}

TEST_F(ProvisionalInitialiseTest, WhatTheRulesRefuseInTheGuideStateWaits) {
  Rules(rules_, "/Case/Domain")
      .param("Motion")
      .allowed({"Rotating", "Stationary"})
      .param("Speed")
      .availableWhen(when("Motion", "Rotating"));
  start({{rotor, {{"Motion", "Flying"}, {"Speed", "5"}, {"Unknown", "1"}}},
         {rotor + "/Unknown:x", {{"P", "1"}}},
         {stator, {{"Motion", "Rotating"}}},
         {"/Elsewhere", {{"P", "1"}}}});
  EXPECT_EQ(state().getActiveTDFState(), ModelState());
  set("Motion", "Rotating");
  ModelState const expected{{rotor, {{"Motion", "Rotating"}, {"Speed", "5"}}}};
  EXPECT_EQ(state().getActiveTDFState(), expected);
}

TEST_F(ProvisionalInitialiseTest, ABaseModelWithoutTheObjectIsNoObstacle) {
  domainRules();
  base_.remove("/Case");
  start({{rotor, {{"Motion", "Rotating"}}}});
  EXPECT_EQ(value("Motion"), "Rotating");
  EXPECT_TRUE(isPotential("Title"));
}

TEST_F(ProvisionalInitialiseTest, AllThatTheFirstWalkFindsIsNew) {
  domainRules();
  base_.set(rotor, "Motion", "Rotating");
  start();
  EXPECT_EQ(state().getNewlyAvailParams(), (Pairs{{rotor, "Motion"}}));
  EXPECT_EQ(newlyPotentialParams(), (Pairs{{rotor, "Title"}}));
  EXPECT_EQ(state().getModParams(), Pairs());
  EXPECT_EQ(state().getNewlyUnavailParams(), Pairs());
  EXPECT_EQ(state().getDeletedObjects(), Strings());
}

TEST_F(ProvisionalInitialiseTest, TheBaseModelIsNotTouched) {
  domainRules();
  base_.set(rotor, "Motion", "Rotating");
  start();
  set("Motion", "Stationary");
  state().addNewNamedObject(rotor + "/Boundary:inlet");
  EXPECT_EQ(base_.getParameterValue(rotor, "Motion"), "Rotating");
  EXPECT_FALSE(base_.hasObject(rotor + "/Boundary:inlet"));
}

TEST_F(ProvisionalInitialiseTest, ASavedStateAsGuideGivesTheSameState) {
  domainRules();
  start();
  set("Motion", "Rotating");
  state().addNewNamedObject(rotor + "/Boundary:inlet");
  state().activeSetParam(rotor + "/Boundary:inlet", "Kind", "Opening");
  ModelState const saved = state().getActiveTDFState();
  start(saved);
  EXPECT_EQ(state().getActiveTDFState(), saved);
}

TEST_F(ProvisionalInitialiseTest, AnActiveRootMayBeASingleton) {
  Rules(rules_, "/Case/Solver").param("Steps").required().byDefault("100");
  startAt("/Case/Solver");
  EXPECT_EQ(value("Steps", "/Case/Solver"), "100");
}

TEST_F(ProvisionalInitialiseTest, AnActiveRootAtTheTopOfTheTreeIsThereForTheRulesOfTheFirstWalk) {
  auto const caseIsThere = [](TDFContext const& /*at*/, ModelTDF const& model) { return model.hasObject("/Case"); };
  Rules(rules_, "/Case").param("Title").required().byDefault("Pump").availableWhen(when(caseIsThere));
  startAt("/Case");
  EXPECT_EQ(value("Title", "/Case"), "Pump");
}

TEST_F(ProvisionalInitialiseTest, AnActiveRootThatTheRulesDoNotKnowIsDeletedAndTheStateStaysUsable) {
  start({{rotor, {{"Motion", "Rotating"}}}});
  EXPECT_EQ(state().getActiveTDFState(), ModelState());
  EXPECT_EQ(state().getDeletedObjects(), (Strings{rotor}));
  set("Motion", "Stationary");
  state().addNewNamedObject(rotor + "/Boundary:inlet");
  EXPECT_EQ(state().getActiveTDFState(), ModelState());
  EXPECT_EQ(state().getDeletedObjects(), Strings());
}

TEST_F(ProvisionalInitialiseTest, TheRootOfTheTreeMayBeTheActiveRoot) {
  domainRules();
  for (std::string const root : {"", "/"}) {
    startAt(root);
    EXPECT_EQ(state().getActiveRoot(), "");
    state().activeSetParam(rotor, "Motion", "Rotating");
    state().activeSetParam("", "Version", "1");
    EXPECT_EQ(state().getActiveTDFState(), ModelState());  // the root itself has no rules
  }
}

TEST_F(ProvisionalInitialiseTest, AnActiveRootThatIsNoPathIsRefusedAtTheStartAndEditsDoNothing) {
  domainRules();
  EXPECT_THROW(startAt("Case/Domain:rotor"), Error);
  set("Motion", "Rotating");
  state().baseUpdate(&base_);
  EXPECT_EQ(state().getActiveTDFState(), ModelState());
}

TEST_F(ProvisionalInitialiseTest, AGuideStateWithAPathThatIsNoneIsRefusedAndTheStartCanBeRepeated) {
  domainRules();
  EXPECT_THROW(start({{"Case//Domain", {}}}), Error);
  set("Motion", "Rotating");
  EXPECT_EQ(state().getActiveTDFState(), ModelState());
  state().initialise(&base_, {{rotor, {{"Motion", "Rotating"}}}});
  EXPECT_EQ(value("Motion"), "Rotating");
}

TEST_F(ProvisionalInitialiseTest, ASecondStartRebuildsTheGuideAndKeepsDecisions) {
  domainRules();
  start({{rotor, {{"Motion", "Rotating"}}}});
  activate("Title");
  state().initialise(&base_, {});
  EXPECT_EQ(value("Motion"), std::nullopt);
  EXPECT_EQ(value("Title"), "");
}

// The start as a copy.

class ProvisionalBasedOnTest : public ProvisionalInitialiseTest {
 protected:
  ProvisionalBasedOnTest() {
    domainRules();
    Rules(rules_, "/Case/Domain").child("Note");
    Rules(rules_, "/Case/Domain/Note").param("Text");
    base_.remove(rotor);
    base_.set(stator, "Motion", "Stationary");
    base_.set(stator + "/Boundary:inlet", "Kind", "Mass Flow");
  }
  void startBasedOn(std::string const& original, ModelState const& guide = {}, std::string const& root = rotor) {
    copy_ = std::make_unique<ProvisionalTDF>(&rules_, root);
    copy_->initialiseBasedOn(original, &base_, guide);
  }
  ModelState const& result() { return copy_->getActiveTDFState(); }
  /// Whether the state mirrors children of the base model, which one that started as a copy never does.
  bool mirrorsTheBaseModel() {
    base_.set(copy_->getActiveRoot() + "/Note:a", "Text", "x");
    copy_->baseUpdate(&base_);
    return result().contains(copy_->getActiveRoot() + "/Note:a");
  }

  std::unique_ptr<ProvisionalTDF> copy_;
};

TEST_F(ProvisionalBasedOnTest, ANewObjectHasTheValuesOfTheOriginal) {
  startBasedOn(stator);
  ModelState const expected{{rotor, {{"Motion", "Stationary"}}}, {rotor + "/Boundary:inlet", {{"Kind", "Mass Flow"}}}};
  EXPECT_EQ(result(), expected);
}

TEST_F(ProvisionalBasedOnTest, OfAnObjectThatTheOriginalHasTheGuideStateIsDroppedAsAWhole) {
  startBasedOn(stator, {{rotor, {{"Motion", "Rotating"}, {"Title", "Impeller"}}},
                        {rotor + "/Boundary:outlet", {{"Kind", "Opening"}}}});
  ModelState const expected{{rotor, {{"Motion", "Stationary"}}},
                            {rotor + "/Boundary:inlet", {{"Kind", "Mass Flow"}}},
                            {rotor + "/Boundary:outlet", {{"Kind", "Opening"}}}};
  EXPECT_EQ(result(), expected);
}

TEST_F(ProvisionalBasedOnTest, AnObjectOfTheOriginalWithoutParametersIsCopiedToo) {
  Rules(rules_, "/Case/Domain").child("Zone").coupled();
  Rules(rules_, "/Case/Domain/Zone").param("Volume").required();
  base_.add(stator + "/Zone:core");
  startBasedOn(stator);
  EXPECT_TRUE(result().contains(rotor + "/Zone:core"));
}

TEST_F(ProvisionalBasedOnTest, ANewObjectMirrorsNothingOfTheBaseModel) {
  startBasedOn(stator);
  EXPECT_FALSE(mirrorsTheBaseModel());
}

TEST_F(ProvisionalBasedOnTest, AnOriginalOfAnotherTypeIsAPlainStart) {
  base_.set("/Case/Region:stator", "Motion", "Stationary");
  startBasedOn("/Case/Region:stator", {{rotor, {{"Title", "Impeller"}}}});
  ModelState const expected{{rotor, {{"Title", "Impeller"}}}};
  EXPECT_EQ(result(), expected);
  EXPECT_TRUE(mirrorsTheBaseModel());
}

TEST_F(ProvisionalBasedOnTest, AnOriginalOfAnotherParentIsAPlainStart) {
  base_.set("/Study/Domain:stator", "Motion", "Stationary");
  startBasedOn("/Study/Domain:stator");
  EXPECT_EQ(result(), ModelState());
  EXPECT_TRUE(mirrorsTheBaseModel());
}

TEST_F(ProvisionalBasedOnTest, AnOriginalThatTheBaseModelLacksIsAPlainStart) {
  startBasedOn("/Case/Domain:casing");
  EXPECT_EQ(result(), ModelState());
  EXPECT_TRUE(mirrorsTheBaseModel());
}

TEST_F(ProvisionalBasedOnTest, AnObjectThatTheBaseModelHasIsAPlainStart) {
  base_.set(rotor, "Motion", "Rotating");
  startBasedOn(stator);
  ModelState const expected{{rotor, {{"Motion", "Rotating"}}}};
  EXPECT_EQ(result(), expected);
  EXPECT_TRUE(mirrorsTheBaseModel());
}

TEST_F(ProvisionalBasedOnTest, ASingletonIsAPlainStart) {
  Rules(rules_, "/Case/Solver").param("Steps").child("Note");
  Rules(rules_, "/Case/Solver/Note").param("Text");
  base_.set("/Case/Solver2", "Steps", "5");
  startBasedOn("/Case/Solver2", {{"/Case/Solver", {{"Steps", "7"}}}}, "/Case/Solver");
  ModelState const expected{{"/Case/Solver", {{"Steps", "7"}}}};
  EXPECT_EQ(result(), expected);
  EXPECT_TRUE(mirrorsTheBaseModel());
}

TEST_F(ProvisionalBasedOnTest, OneWithANameAndOneWithoutAreAPlainStartAlsoIfTheyAreOfOneType) {
  Rules(rules_, "/Case/Solver").param("Steps").child("Note");
  Rules(rules_, "/Case/Solver/Note").param("Text");
  for (auto const& [original, root] :
       Pairs{{"/Case/Solver:fine", "/Case/Solver"}, {"/Case/Solver", "/Case/Solver:fine"}}) {
    base_.set(original, "Steps", "5");
    startBasedOn(original, {}, root);
    EXPECT_EQ(result(), ModelState()) << root;
    EXPECT_TRUE(mirrorsTheBaseModel()) << root;
    base_.remove(original);
    base_.remove(root);
  }
}

// A changed base model.

TEST_F(ProvisionalInitialiseTest, ABaseUpdateLeavesTheGuideWithTheValuesOfTheStart) {
  domainRules();
  base_.set(rotor, "Motion", "Rotating");
  start();
  base_.set(rotor, "Motion", "Stationary");
  base_.set(rotor, "Title", "Impeller");
  state().baseUpdate(&base_);
  ModelState const expected{{rotor, {{"Motion", "Rotating"}}}};
  EXPECT_EQ(state().getActiveTDFState(), expected);
  expectNoChanges();
}

TEST_F(ProvisionalInitialiseTest, ABaseUpdateIsFollowedByTheRulesThatReadTheRestOfTheModel) {
  Rules(rules_, "/Case/Domain").param("Speed").required().byDefault(text([](TDFContext const&, ModelTDF const& model) {
    return std::string(model.getParameterValue("/Case", "Speed"));
  }));
  base_.set("/Case", "Speed", "1");
  start();
  test::MapModel const other{{"/Case", {{"Speed", "2"}}}};
  state().baseUpdate(&other);
  EXPECT_EQ(value("Speed"), "2");
  EXPECT_EQ(state().getModParams(), (Pairs{{rotor, "Speed"}}));
}

TEST_F(ProvisionalInitialiseTest, DecisionsHoldAcrossABaseUpdate) {
  domainRules();
  start({{rotor, {{"Motion", "Rotating"}}}});
  deactivate("Motion");
  state().baseUpdate(&base_);
  EXPECT_TRUE(isPotential("Motion"));
}

}  // namespace
}  // namespace tarn
