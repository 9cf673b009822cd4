// The value of one parameter: each combination of guide, decision, allowed values, override and default, and what is
// remembered for later walks.
//
// The guide cannot be read, so the tests show its content by removing what hides it: the parameter Control, which comes
// first in the rules, switches overrides and allowed values.

#include <tarn/ProvisionalTDF.h>

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <string>

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
using Value = std::optional<std::string>;

class ProvisionalParametersTest : public test::ProvisionalTest {
 protected:
  /// Rules of the rotor that begin with Control, ready for the parameter that the test is about.
  Rules rotorRules() {
    Rules(rules_, "/Case/Domain").param("Control");
    return Rules(rules_, "/Case/Domain");
  }
  /// In force while Control says so.
  static std::unique_ptr<Condition> overriding() { return when("Control", "override"); }
  /// Water and Air, and Steam too while Control is "hot".
  static std::unique_ptr<ListExpression> fluids() {
    return list([](TDFContext const& at, ModelTDF const& model) {
      bool const hot = model.getParameterValue(at.objPath(), "Control") == "hot";
      return hot ? SharedStrings{"Water", "Air", "Steam"} : SharedStrings{"Water", "Air"};
    });
  }
};

// Wanted, with allowed values.

TEST_F(ProvisionalParametersTest, AnAllowedOverrideStandsInsteadOfTheGuidesValue) {
  rotorRules().param("Fluid").allowed({"Water", "Air"}).overriddenWhen(overriding(), "Air");
  start({{rotor, {{"Fluid", "Water"}, {"Control", "override"}}}});
  EXPECT_EQ(value("Fluid"), "Air");
}

TEST_F(ProvisionalParametersTest, AnAllowedOverrideIsTakenIntoTheGuide) {
  rotorRules().param("Fluid").allowed({"Water", "Air"}).overriddenWhen(overriding(), "Air");
  start({{rotor, {{"Fluid", "Water"}, {"Control", "override"}}}});
  set("Control", "");
  EXPECT_EQ(value("Fluid"), "Air");
}

TEST_F(ProvisionalParametersTest, OfARequiredParameterARefusedOverrideGivesTheDefault) {
  rotorRules().param("Fluid").required().allowed(fluids()).byDefault("Air").overriddenWhen(overriding(), "Steam");
  start({{rotor, {{"Fluid", "Water"}, {"Control", "override"}}}});
  EXPECT_EQ(value("Fluid"), "Air");
}

TEST_F(ProvisionalParametersTest, OfARequiredParameterARefusedOverrideIsTakenIntoTheGuide) {
  rotorRules().param("Fluid").required().allowed(fluids()).byDefault("Air").overriddenWhen(overriding(), "Steam");
  start({{rotor, {{"Fluid", "Water"}, {"Control", "override"}}}});
  set("Control", "hot");  // no override, and Steam is allowed
  EXPECT_EQ(value("Fluid"), "Steam");
}

TEST_F(ProvisionalParametersTest,
       OfAnOptionalParameterThatIsSwitchedOnARefusedOverrideGivesTheDefaultAndGoesToTheGuide) {
  rotorRules().param("Fluid").allowed(fluids()).byDefault("Air").overriddenWhen(overriding(), "Steam");
  start({{rotor, {{"Fluid", "Water"}}}});
  activate("Fluid");
  set("Control", "override");
  EXPECT_EQ(value("Fluid"), "Air");
  set("Control", "hot");
  EXPECT_EQ(value("Fluid"), "Steam");
}

TEST_F(ProvisionalParametersTest, OfAnUndecidedOptionalParameterARefusedOverrideMakesItPotentialWithItsAllowedValues) {
  rotorRules().param("Fluid").allowed(fluids()).byDefault("Air").overriddenWhen(overriding(), "Steam");
  start({{rotor, {{"Fluid", "Water"}, {"Control", "override"}}}});
  EXPECT_EQ(value("Fluid"), std::nullopt);
  EXPECT_TRUE(isPotential("Fluid"));
  EXPECT_EQ(state().getAllowedParamValues(rotor, "Fluid"), (Strings{"Water", "Air"}));
}

TEST_F(ProvisionalParametersTest, OfAnUndecidedOptionalParameterARefusedOverrideLeavesTheGuideAlone) {
  rotorRules().param("Fluid").allowed(fluids()).byDefault("Air").overriddenWhen(overriding(), "Steam");
  start({{rotor, {{"Fluid", "Water"}, {"Control", "override"}}}});
  set("Control", "hot");
  EXPECT_EQ(value("Fluid"), "Water");
}

TEST_F(ProvisionalParametersTest, AnAllowedValueOfTheGuideStands) {
  rotorRules().param("Fluid").allowed({"Water", "Air"}).byDefault("Air");
  start({{rotor, {{"Fluid", "Water"}}}});
  EXPECT_EQ(value("Fluid"), "Water");
}

TEST_F(ProvisionalParametersTest, AnAllowedValueOfTheGuideStandsForARequiredParameter) {
  rotorRules().param("Fluid").required().allowed({"Water", "Air"}).byDefault("Air");
  start({{rotor, {{"Fluid", "Water"}}}});
  EXPECT_EQ(value("Fluid"), "Water");
}

TEST_F(ProvisionalParametersTest, ARefusedValueOfARequiredParameterGivesTheDefaultUntilItIsAllowed) {
  rotorRules().param("Fluid").required().allowed(fluids()).byDefault("Air");
  start({{rotor, {{"Fluid", "Steam"}}}});
  EXPECT_EQ(value("Fluid"), "Air");
  set("Control", "hot");
  EXPECT_EQ(value("Fluid"), "Steam");
  EXPECT_EQ(state().getModParams(), (Pairs{{rotor, "Fluid"}}));
}

TEST_F(ProvisionalParametersTest, AnEmptyValueOfARequiredParameterGivesTheDefault) {
  rotorRules().param("Fluid").required().allowed(fluids()).byDefault("Air");
  start({{rotor, {{"Fluid", ""}}}});
  EXPECT_EQ(value("Fluid"), "Air");
}

TEST_F(ProvisionalParametersTest, ARefusedValueOfAParameterThatIsSwitchedOnGivesTheDefaultUntilItIsAllowed) {
  rotorRules().param("Fluid").allowed(fluids()).byDefault("Air");
  start({{rotor, {{"Fluid", "Steam"}}}});
  activate("Fluid");
  EXPECT_EQ(value("Fluid"), "Air");
  set("Control", "hot");
  EXPECT_EQ(value("Fluid"), "Steam");
}

TEST_F(ProvisionalParametersTest, ARefusedValueOfAnUndecidedParameterMakesItPotentialUntilItIsAllowed) {
  rotorRules().param("Fluid").allowed(fluids()).byDefault("Air");
  start({{rotor, {{"Fluid", "Steam"}}}});
  EXPECT_EQ(value("Fluid"), std::nullopt);
  EXPECT_TRUE(isPotential("Fluid"));
  EXPECT_EQ(state().getAllowedParamValues(rotor, "Fluid"), (Strings{"Water", "Air"}));
  set("Control", "hot");
  EXPECT_EQ(value("Fluid"), "Steam");
  EXPECT_FALSE(isPotential("Fluid"));
}

TEST_F(ProvisionalParametersTest, AParameterThatIsSwitchedOnWithoutAValueGetsTheDefault) {
  rotorRules().param("Fluid").allowed({"Water", "Air"}).byDefault("Air");
  start();
  activate("Fluid");
  EXPECT_EQ(value("Fluid"), "Air");
}

// Wanted, without allowed values.

TEST_F(ProvisionalParametersTest, OfAFreeParameterTheOverrideStandsAndIsTakenIntoTheGuideWithItsUnits) {
  rotorRules().param("Inflow").type(TDFParam::Real).overriddenWhen(overriding(), "2 [m^3/s]");
  start({{rotor, {{"Inflow", "1 [kg/s]"}, {"Control", "override"}}}});
  EXPECT_EQ(value("Inflow"), "2 [kg/s]");
  modifier_.type = "Volume Flow";
  set("Control", "");
  EXPECT_EQ(value("Inflow"), "2 [m^3/s]");  // of the guide, rewritten again
}

TEST_F(ProvisionalParametersTest, TheGuideTakesTheOverrideOfAFreeParameterOverAsItWasAdjusted) {
  rotorRules().param("Inflow").type(TDFParam::Real).overriddenWhen(overriding(), "2 [m^3/s]");
  start({{rotor, {{"Inflow", "1 [kg/s]"}, {"Control", "override"}}}});
  modifier_.adjusts = false;
  set("Control", "");
  EXPECT_EQ(value("Inflow"), "2 [kg/s]");
}

TEST_F(ProvisionalParametersTest, AFreeValueOfTheGuideStandsWithTheUnitsOfItsQuantity) {
  rotorRules().param("Inflow").type(TDFParam::Real).byDefault("7");
  start({{rotor, {{"Inflow", "1 [m^3/s]"}}}});
  EXPECT_EQ(value("Inflow"), "1 [kg/s]");
}

TEST_F(ProvisionalParametersTest, AFreeValueOfTheGuideStandsForARequiredParameterEvenIfItIsEmpty) {
  rotorRules().param("Title").required().byDefault("Pump");
  start({{rotor, {{"Title", ""}}}});
  EXPECT_EQ(value("Title"), "");
}

TEST_F(ProvisionalParametersTest, AFreeParameterThatIsSwitchedOnWithoutAValueGetsTheDefaultWithItsUnits) {
  rotorRules().param("Inflow").type(TDFParam::Real).byDefault("7 [m^3/s]");
  start();
  activate("Inflow");
  EXPECT_EQ(value("Inflow"), "7 [kg/s]");
}

TEST_F(ProvisionalParametersTest, AFreeParameterThatIsSwitchedOnWithoutValueAndDefaultIsEmptyAndListedAsSuch) {
  rotorRules().param("Title");
  start();
  activate("Title");
  EXPECT_EQ(value("Title"), "");
  EXPECT_EQ(state().getEmptyParameters(false), (Strings{rotor + "/Title"}));
}

// Not wanted, with allowed values.

TEST_F(ProvisionalParametersTest, ARequiredParameterHasTheOverrideWhichIsTakenIntoTheGuide) {
  rotorRules()
      .param("Fluid")
      .required()
      .allowed({"Water", "Air"})
      .byDefault("Water")
      .overriddenWhen(overriding(), "Air");
  start({{rotor, {{"Control", "override"}}}});
  EXPECT_EQ(value("Fluid"), "Air");
  set("Control", "");
  EXPECT_EQ(value("Fluid"), "Air");
}

TEST_F(ProvisionalParametersTest, ARequiredParameterThatNobodyAskedForHasEvenAnOverrideThatIsNotAllowed) {
  rotorRules()
      .param("Fluid")
      .required()
      .allowed({"Water", "Air"})
      .byDefault("Water")
      .overriddenWhen(overriding(), "Steam");
  start({{rotor, {{"Control", "override"}}}});
  EXPECT_EQ(value("Fluid"), "Steam");
}

TEST_F(ProvisionalParametersTest, ARequiredParameterHasItsDefaultAndTheGuideStaysWithoutIt) {
  rotorRules().param("Fluid").required().allowed(fluids()).byDefault(
      text([](TDFContext const& at, ModelTDF const& model) {
        return std::string(model.getParameterValue(at.objPath(), "Control") == "hot" ? "Steam" : "Water");
      }));
  start();
  EXPECT_EQ(value("Fluid"), "Water");
  set("Control", "hot");  // the new default takes over at once, since the old one was nobody's wish
  EXPECT_EQ(value("Fluid"), "Steam");
  EXPECT_EQ(state().getModParams(), (Pairs{{rotor, "Fluid"}}));
}

TEST_F(ProvisionalParametersTest, ANewDefaultDoesNotReachAParameterWithAValueOfItsOwn) {
  rotorRules().param("Fluid").required().allowed(fluids()).byDefault(
      text([](TDFContext const& at, ModelTDF const& model) {
        return std::string(model.getParameterValue(at.objPath(), "Control") == "hot" ? "Steam" : "Water");
      }));
  start();
  set("Fluid", "Air");
  set("Control", "hot");
  EXPECT_EQ(value("Fluid"), "Air");
}

TEST_F(ProvisionalParametersTest, ACompleteListOfARequiredParameterIsMadeOfAllAllowedValues) {
  rotorRules()
      .param("Fluids")
      .type(TDFParam::StringList)
      .required()
      .allowed({"Water", "Air"})
      .byDefault("Air")
      .completeListRequired();
  start();
  EXPECT_EQ(value("Fluids"), "Water,Air");
}

TEST_F(ProvisionalParametersTest, ACompleteListHidesTheOverrideThatTheGuideTakesOver) {
  rotorRules()
      .param("Fluids")
      .type(TDFParam::StringList)
      .required()
      .allowed({"Water", "Air"})
      .overriddenWhen(overriding(), "Air,Water")
      .completeListRequired();
  start({{rotor, {{"Control", "override"}}}});
  EXPECT_EQ(value("Fluids"), "Water,Air");
  walkAgain();  // now the guide has the override, and the parameter counts as wanted
  EXPECT_EQ(value("Fluids"), "Air,Water");
}

TEST_F(ProvisionalParametersTest, AnOptionalParameterWithAllowedValuesIsPotentialWithThem) {
  rotorRules().param("Fluid").allowed({"Water", "Air"}).byDefault("Air").overriddenWhen(test::always(), "Air");
  start();
  EXPECT_EQ(value("Fluid"), std::nullopt);
  EXPECT_TRUE(isPotential("Fluid"));
  EXPECT_EQ(state().getAllowedParamValues(rotor, "Fluid"), (Strings{"Water", "Air"}));
}

// Not wanted, without allowed values.

TEST_F(ProvisionalParametersTest, ARequiredFreeParameterHasTheOverrideAndTheGuideTakesItOverWithItsUnits) {
  rotorRules().param("Inflow").type(TDFParam::Real).required().byDefault("7").overriddenWhen(overriding(), "2");
  start({{rotor, {{"Control", "override"}}}});
  EXPECT_EQ(value("Inflow"), "2 [kg/s]");
  set("Control", "");
  EXPECT_EQ(value("Inflow"), "2 [kg/s]");
}

TEST_F(ProvisionalParametersTest, ARequiredFreeParameterHasItsDefaultWithItsUnits) {
  rotorRules().param("Inflow").type(TDFParam::Real).required().byDefault("7");
  start();
  EXPECT_EQ(value("Inflow"), "7 [kg/s]");
}

TEST_F(ProvisionalParametersTest, ARequiredFreeParameterWithoutDefaultIsEmpty) {
  rotorRules().param("Title").required();
  start();
  EXPECT_EQ(value("Title"), "");
}

TEST_F(ProvisionalParametersTest, AnOptionalFreeParameterIsPotential) {
  rotorRules().param("Title").byDefault("Pump").overriddenWhen(test::always(), "Fan");
  start();
  EXPECT_EQ(value("Title"), std::nullopt);
  EXPECT_TRUE(isPotential("Title"));
  EXPECT_EQ(state().getAllowedParamValues(rotor, "Title"), Strings());
}

// Decisions.

TEST_F(ProvisionalParametersTest, AnOptionalParameterThatIsSwitchedOffIsPotentialThoughTheGuideHoldsIt) {
  rotorRules().param("Title");
  start({{rotor, {{"Title", "Pump"}}}});
  deactivate("Title");
  EXPECT_EQ(value("Title"), std::nullopt);
  EXPECT_TRUE(isPotential("Title"));
}

TEST_F(ProvisionalParametersTest, ARequiredParameterThatIsSwitchedOffStandsWithItsDefault) {
  rotorRules().param("Fluid").required().allowed({"Water", "Air"}).byDefault("Air");
  start({{rotor, {{"Fluid", "Water"}}}});
  deactivate("Fluid");
  EXPECT_EQ(value("Fluid"), "Air");
  activate("Fluid");
  EXPECT_EQ(value("Fluid"), "Water");
}

TEST_F(ProvisionalParametersTest, ARequiredFreeParameterThatIsSwitchedOffStandsWithItsDefault) {
  rotorRules().param("Title").required().byDefault("Pump");
  start({{rotor, {{"Title", "Fan"}}}});
  deactivate("Title");
  EXPECT_EQ(value("Title"), "Pump");
}

TEST_F(ProvisionalParametersTest, ADecisionIsNoMoreThanThatOnAParameterThatIsRequired) {
  rotorRules().param("Title").required();
  start();
  deactivate("Title");
  EXPECT_EQ(value("Title"), "");
  EXPECT_FALSE(isPotential("Title"));
}

// Withdrawn.

TEST_F(ProvisionalParametersTest, AWithdrawnParameterIsGoneAndNotPotential) {
  rotorRules().param("Title").required().availableWhen(when("Control", "titled"));
  start({{rotor, {{"Control", "titled"}, {"Title", "Pump"}}}});
  set("Control", "");
  EXPECT_EQ(value("Title"), std::nullopt);
  EXPECT_FALSE(isPotential("Title"));
  EXPECT_EQ(state().getNewlyUnavailParams(), (Pairs{{rotor, "Title"}}));
}

TEST_F(ProvisionalParametersTest, AParameterComesBackWithItsValueAndItsDecision) {
  rotorRules().param("Title").availableWhen(when("Control", "titled"));
  start({{rotor, {{"Control", "titled"}, {"Title", "Pump"}}}});
  deactivate("Title");
  set("Control", "");
  set("Control", "titled");
  EXPECT_TRUE(isPotential("Title"));
  activate("Title");
  EXPECT_EQ(value("Title"), "Pump");
}

TEST_F(ProvisionalParametersTest, AParameterWhoseAllowedListComesOutEmptyIsWithdrawn) {
  rotorRules().param("Fluid").required().allowed(list([](TDFContext const& at, ModelTDF const& model) {
    return model.getParameterValue(at.objPath(), "Control") == "dry" ? SharedStrings() : SharedStrings{"Water"};
  }));
  start();
  EXPECT_EQ(value("Fluid"), "Water");
  set("Control", "dry");
  EXPECT_EQ(value("Fluid"), std::nullopt);
  EXPECT_FALSE(isPotential("Fluid"));
}

// Lists.

TEST_F(ProvisionalParametersTest, OfAListTheItemsThatAreNotAllowedAreLeftOutUntilTheyAre) {
  rotorRules().param("Fluids").type(TDFParam::StringList).allowed(fluids());
  start({{rotor, {{"Fluids", "Steam,Air,Steam,Water,Air"}}}});
  EXPECT_EQ(value("Fluids"), "Air,Water,Air");
  set("Control", "hot");
  EXPECT_EQ(value("Fluids"), "Steam,Air,Steam,Water,Air");
}

TEST_F(ProvisionalParametersTest, AnOptionalListThatLosesAllItsItemsIsPotential) {
  rotorRules().param("Fluids").type(TDFParam::StringList).allowed(fluids());
  start({{rotor, {{"Fluids", "Steam,Oil"}}}});
  EXPECT_EQ(value("Fluids"), std::nullopt);
  EXPECT_TRUE(isPotential("Fluids"));
}

TEST_F(ProvisionalParametersTest, ARequiredListThatLosesAllItsItemsHasItsDefault) {
  rotorRules().param("Fluids").type(TDFParam::StringList).required().allowed(fluids()).byDefault("Air");
  start({{rotor, {{"Fluids", "Steam,Oil"}}}});
  EXPECT_EQ(value("Fluids"), "Air");
}

TEST_F(ProvisionalParametersTest, AListOverrideIsTakenItemByItemWithoutWhiteSpace) {
  rotorRules()
      .param("Fluids")
      .type(TDFParam::StringList)
      .allowed({"Water", "Air"})
      .overriddenWhen(overriding(), "Air , Oil, Water");
  start({{rotor, {{"Fluids", "Water"}, {"Control", "override"}}}});
  EXPECT_EQ(value("Fluids"), "Air,Water");
}

TEST_F(ProvisionalParametersTest, AListThatMustBeCompleteKeepsTheUsersOrderAndGetsTheMissingValuesBehindInByteOrder) {
  rotorRules()
      .param("Order")
      .type(TDFParam::StringList)
      .allowed({"Wall", "Inlet", "Outlet", "Axis"})
      .completeListRequired();
  start({{rotor, {{"Order", "Outlet,Pump,Inlet"}}}});
  EXPECT_EQ(value("Order"), "Outlet,Inlet,Axis,Wall");
}

TEST_F(ProvisionalParametersTest, AListAsLongAsTheFullOneCountsAsCompleteEvenIfItNamesAValueTwice) {
  rotorRules().param("Order").type(TDFParam::StringList).allowed({"Inlet", "Outlet"}).completeListRequired();
  start({{rotor, {{"Order", "Inlet,Inlet"}}}});
  EXPECT_EQ(value("Order"), "Inlet,Inlet");
}

TEST_F(ProvisionalParametersTest, AListLongerThanTheFullOneIsCompletedToo) {
  rotorRules().param("Order").type(TDFParam::StringList).allowed({"Inlet", "Outlet"}).completeListRequired();
  start({{rotor, {{"Order", "Inlet,Inlet,Inlet"}}}});
  EXPECT_EQ(value("Order"), "Inlet,Inlet,Inlet,Outlet");
}

TEST_F(ProvisionalParametersTest, AnEmptyListOfAnOptionalParameterIsCompletedAndSoIsPresent) {
  rotorRules().param("Order").type(TDFParam::StringList).allowed({"Outlet", "Inlet"}).completeListRequired();
  start({{rotor, {{"Order", ""}}}});
  EXPECT_EQ(value("Order"), "Inlet,Outlet");
}

// Any value allowed.

TEST_F(ProvisionalParametersTest, WhereAnyValueIsAllowedTheGuidesValueStands) {
  rotorRules().param("Fluid").allowed({"Water", "Air"}).anyValueAllowed();
  start({{rotor, {{"Fluid", "Slurry"}}}});
  EXPECT_EQ(value("Fluid"), "Slurry");
}

TEST_F(ProvisionalParametersTest, WhereAnyValueIsAllowedAListIsNeitherFilteredNorCompleted) {
  rotorRules()
      .param("Fluids")
      .type(TDFParam::StringList)
      .allowed({"Water", "Air"})
      .anyValueAllowed()
      .completeListRequired();
  start({{rotor, {{"Fluids", "Slurry"}}}});
  EXPECT_EQ(value("Fluids"), "Slurry");
}

TEST_F(ProvisionalParametersTest, WhereAnyValueIsAllowedTheSubsetIsNotWidened) {
  rotorRules().param("Fluid").allowed({"Water", "Air"}).subset({"Water"}).anyValueAllowed();
  start();
  set("Fluid", "Air");
  EXPECT_EQ(state().getSubsetAllowedParamValues(rotor, "Fluid"), (Strings{"Water"}));
}

// The subset.

TEST_F(ProvisionalParametersTest, AValueOutsideTheSubsetIsAllowedAndStaysOnOffer) {
  rotorRules().param("Fluid").allowed({"Water", "Air", "Oil"}).subset({"Water"});
  start();
  set("Fluid", "Oil");
  EXPECT_EQ(value("Fluid"), "Oil");
  EXPECT_EQ(state().getSubsetAllowedParamValues(rotor, "Fluid"), (Strings{"Water", "Oil"}));
  set("Fluid", "Water");
  EXPECT_EQ(state().getSubsetAllowedParamValues(rotor, "Fluid"), (Strings{"Water", "Oil"}));
}

TEST_F(ProvisionalParametersTest, AllThatWasEverSelectedIsOnOfferInByteOrderBehindTheSubset) {
  rotorRules().param("Fluid").allowed({"Water", "Oil", "Air"}).subset({"Water"});
  start();
  set("Fluid", "Oil");
  set("Fluid", "Air");
  EXPECT_EQ(state().getSubsetAllowedParamValues(rotor, "Fluid"), (Strings{"Water", "Air", "Oil"}));
}

TEST_F(ProvisionalParametersTest, SelectionsOfAListAreRememberedItemByItem) {
  rotorRules().param("Fluids").type(TDFParam::StringList).allowed({"Water", "Oil", "Air"}).subset({"Water"});
  start();
  set("Fluids", "Oil,Slurry,Air");
  set("Fluids", "Water");
  EXPECT_EQ(state().getSubsetAllowedParamValues(rotor, "Fluids"), (Strings{"Water", "Air", "Oil"}));
}

TEST_F(ProvisionalParametersTest, ASelectionThatLeavesTheFullListIsNotOffered) {
  rotorRules().param("Fluid").allowed(fluids()).subset({"Water"});
  start({{rotor, {{"Control", "hot"}}}});
  set("Fluid", "Steam");
  EXPECT_EQ(state().getSubsetAllowedParamValues(rotor, "Fluid"), (Strings{"Water", "Steam"}));
  set("Fluid", "Air");
  set("Control", "");
  EXPECT_EQ(state().getSubsetAllowedParamValues(rotor, "Fluid"), (Strings{"Water", "Air"}));
  set("Control", "hot");
  EXPECT_EQ(state().getSubsetAllowedParamValues(rotor, "Fluid"), (Strings{"Water", "Air", "Steam"}));
}

TEST_F(ProvisionalParametersTest, ARefusedValueIsNotRememberedAsASelection) {
  rotorRules().param("Fluid").required().allowed(fluids()).subset({"Water"});
  start();
  set("Fluid", "Steam");
  set("Fluid", "Water");
  set("Control", "hot");
  EXPECT_EQ(state().getSubsetAllowedParamValues(rotor, "Fluid"), (Strings{"Water"}));
}

TEST_F(ProvisionalParametersTest, AParameterThatIsNotWantedIsOfferedOnlyTheRulesOwnSubset) {
  rotorRules().param("Fluid").required().allowed({"Water", "Air"}).subset({"Water"});
  start();
  set("Fluid", "Air");
  deactivate("Fluid");
  EXPECT_EQ(state().getSubsetAllowedParamValues(rotor, "Fluid"), (Strings{"Water"}));
  activate("Fluid");
  EXPECT_EQ(state().getSubsetAllowedParamValues(rotor, "Fluid"), (Strings{"Water", "Air"}));
}

TEST_F(ProvisionalParametersTest, AWidenedSubsetIsAModification) {
  rotorRules().param("Fluids").type(TDFParam::StringList).allowed({"Water", "Air"}).subset({"Water"});
  start({{rotor, {{"Fluids", "Water"}}}});
  set("Fluids", "Air");
  EXPECT_EQ(state().getModParams(), (Pairs{{rotor, "Fluids"}}));
}

TEST_F(ProvisionalParametersTest, SelectionsAreRememberedForEachParameterByItself) {
  rotorRules()
      .param("Fluid")
      .allowed({"Water", "Air"})
      .subset({"Water"})
      .param("Coolant")
      .allowed({"Water", "Air"})
      .subset({"Water"});
  start({{rotor, {{"Coolant", "Water"}}}});
  set("Fluid", "Air");
  EXPECT_EQ(state().getSubsetAllowedParamValues(rotor, "Coolant"), (Strings{"Water"}));
}

// Units and bounds.

TEST_F(ProvisionalParametersTest, AParameterWithAllowedValuesIsNotAdjustedAndItsBoundsAreNotTracked) {
  auto const computed = [] { return text([](TDFContext const&, ModelTDF const&) { return std::string("1"); }); };
  rotorRules()
      .param("Inflow")
      .type(TDFParam::Real)
      .required()
      .allowed({"1", "2"})
      .byDefault("1")
      .bounds(computed(), computed());
  start();
  EXPECT_EQ(value("Inflow"), "1");
  EXPECT_TRUE(state().getModQuantParams().empty());
  EXPECT_TRUE(state().getModBoundsParams().empty());
}

TEST_F(ProvisionalParametersTest, APotentialParameterIsNotAdjustedAndItsBoundsAreNotTracked) {
  auto const computed = [] { return text([](TDFContext const&, ModelTDF const&) { return std::string("1"); }); };
  rotorRules().param("Inflow").type(TDFParam::Real).bounds(computed(), computed());
  start();
  EXPECT_TRUE(state().getModQuantParams().empty());
  EXPECT_TRUE(state().getModBoundsParams().empty());
}

TEST_F(ProvisionalParametersTest, BoundsThatMoveWithTheModelAreTold) {
  auto const control = [] {
    return text([](TDFContext const& at, ModelTDF const& model) {
      return std::string(model.getParameterValue(at.objPath(), "Control"));
    });
  };
  rotorRules().param("Speed").type(TDFParam::Real).required().bounds(text("0"), control());
  start({{rotor, {{"Control", "100"}}}});
  std::map<std::string, std::pair<std::string, std::string>> expected{{rotor + "/Speed", {"0", "100"}}};
  EXPECT_EQ(state().getModBoundsParams(), expected);
  walkAgain();
  EXPECT_TRUE(state().getModBoundsParams().empty());
  set("Control", "200");
  expected = {{rotor + "/Speed", {"0", "200"}}};
  EXPECT_EQ(state().getModBoundsParams(), expected);
}

TEST_F(ProvisionalParametersTest, AQuantityTypeThatChangesIsTold) {
  rotorRules().param("Inflow").type(TDFParam::Real).required().byDefault("1");
  start();
  std::map<std::string, std::string> expected{{rotor + "/Inflow", "Mass Flow"}};
  EXPECT_EQ(state().getModQuantParams(), expected);
  walkAgain();
  EXPECT_TRUE(state().getModQuantParams().empty());
  modifier_.type = "Volume Flow";
  walkAgain();
  expected = {{rotor + "/Inflow", "Volume Flow"}};
  EXPECT_EQ(state().getModQuantParams(), expected);
  EXPECT_EQ(value("Inflow"), "1 [m^3/s]");
}

// Empty parameters.

TEST_F(ProvisionalParametersTest, OfTheEmptyParametersThoseOfTypedInputAreListedByThemselves) {
  Rules rules = rotorRules();
  for (TDFParam::Type const type :
       {TDFParam::StringList, TDFParam::String, TDFParam::RealList, TDFParam::Real, TDFParam::LogicalList,
        TDFParam::Logical, TDFParam::IntegerList, TDFParam::Integer}) {
    rules.param(std::string(TDFParam::typeName(type))).type(type).required();
  }
  rules.object("/Case/Other");
  start();
  EXPECT_EQ(state().getEmptyParameters(false),
            (Strings{rotor + "/String List", rotor + "/String", rotor + "/Real List", rotor + "/Real",
                     rotor + "/Logical List", rotor + "/Logical", rotor + "/Integer List", rotor + "/Integer"}));
  EXPECT_EQ(state().getEmptyParameters(true), (Strings{rotor + "/String", rotor + "/Real List", rotor + "/Real",
                                                       rotor + "/Integer List", rotor + "/Integer"}));
}

TEST_F(ProvisionalParametersTest, AnEmptyParameterOfWhichNoValueIsExpectedIsNotListed) {
  rotorRules().param("Title").required().relaxed();
  start();
  EXPECT_EQ(value("Title"), "");
  EXPECT_EQ(state().getEmptyParameters(false), Strings());
}

TEST_F(ProvisionalParametersTest, ABlankValueCountsAsEmpty) {
  rotorRules().param("Title");
  start();
  set("Title", "  ");
  EXPECT_EQ(value("Title"), "");
  EXPECT_EQ(state().getEmptyParameters(false), (Strings{rotor + "/Title"}));
}

TEST_F(ProvisionalParametersTest, AnEmptyParameterWithAllowedValuesIsListed) {
  rotorRules().param("Fluid").required().allowed({}).availableWithNoAllowedValues();
  start();
  EXPECT_EQ(value("Fluid"), "");
  EXPECT_EQ(state().getEmptyParameters(false), (Strings{rotor + "/Fluid"}));
}

TEST_F(ProvisionalParametersTest, PotentialAndFilledParametersAreNotListedAsEmpty) {
  rotorRules().param("Title").param("Fluid").required().byDefault("Water").param("Gone").required().availableWhen(
      test::never());
  start();
  EXPECT_EQ(state().getEmptyParameters(false), Strings());
}

TEST_F(ProvisionalParametersTest, EmptyParametersStandInTheOrderOfTheWalk) {
  rotorRules()
      .param("Z")
      .required()
      .param("A")
      .required()
      .child("Boundary")
      .required()
      .child("Initial")
      .required()
      .singleton();
  Rules(rules_, "/Case/Domain/Boundary").param("Kind").required();
  Rules(rules_, "/Case/Domain/Initial").param("Pressure").required();
  start({{rotor + "/Boundary:outlet", {}}, {rotor + "/Boundary:inlet", {}}});
  EXPECT_EQ(state().getEmptyParameters(false), (Strings{rotor + "/Z", rotor + "/A", rotor + "/Boundary:inlet/Kind",
                                                        rotor + "/Boundary:outlet/Kind", rotor + "/Initial/Pressure"}));
}

// Rules that read the state.

TEST_F(ProvisionalParametersTest, ARuleSeesTheNewValueOfAParameterAheadOfItAndTheOldOneOfAParameterBehindIt) {
  auto const copyOf = [](std::string const& name) {
    return text([name](TDFContext const& at, ModelTDF const& model) {
      return std::string(model.getParameterValue(at.objPath(), name));
    });
  };
  Rules(rules_, "/Case/Domain")
      .param("Before")
      .required()
      .byDefault(copyOf("Middle"))
      .param("Middle")
      .required()
      .byDefault("1")
      .param("Behind")
      .required()
      .byDefault(copyOf("Middle"));
  start();
  set("Middle", "2");
  EXPECT_EQ(value("Behind"), "2");
  EXPECT_EQ(value("Before"), "1");  // one walk an edit
  walkAgain();
  EXPECT_EQ(value("Before"), "2");
}

}  // namespace
}  // namespace tarn
