// The getters of the provisional state between two updates, and the manual's worked example.

#include <tarn/ProvisionalTDF.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <type_traits>

#include <tarn/Error.h>

#include "PhysicalDependency/provisional/ProvisionalFixture.h"

namespace tarn {
namespace {

using test::Pairs;
using test::rotor;
using test::Rules;
using test::Strings;
using test::when;

using ProvisionalTDFTest = test::ProvisionalTest;

static_assert(!std::is_copy_constructible_v<ProvisionalTDF>);
static_assert(std::has_virtual_destructor_v<ProvisionalTDF>);

/// Whether a host can start a walk outside of an update.
template <typename State>
concept CanBeWalked = requires(State& state, EvalContext* context) {
  state.analyse("", context);
};
static_assert(!CanBeWalked<ProvisionalTDF>);

TEST_F(ProvisionalTDFTest, TheWorkedExampleOfTheManual) {
  Rules(rules_, "/Case/Domain")
      .param("Motion")
      .required()
      .allowed({"Stationary", "Rotating"})
      .byDefault("Stationary")
      .param("Angular Velocity")
      .type(TDFParam::Real)
      .required()
      .availableWhen(when("Motion", "Rotating"))
      .param("Title");
  ProvisionalTDF domain(&rules_, rotor);
  domain.initialise(&base_, {});
  EXPECT_EQ(domain.getNewlyAvailParams(), (Pairs{{rotor, "Motion"}}));
  EXPECT_EQ(listOf(domain.getAvailPotParams()), (Pairs{{rotor, "Title"}}));

  domain.activeSetParam(rotor, "Motion", "Rotating");
  EXPECT_EQ(domain.getModParams(), (Pairs{{rotor, "Motion"}}));
  EXPECT_EQ(domain.getNewlyAvailParams(), (Pairs{{rotor, "Angular Velocity"}}));
  EXPECT_EQ(domain.getEmptyParameters(false), (Strings{rotor + "/Angular Velocity"}));

  domain.activateOptParam(rotor, "Title");
  EXPECT_EQ(domain.getNewlyAvailParams(), (Pairs{{rotor, "Title"}}));
  EXPECT_EQ(listOf(domain.getAvailPotParams()), Pairs());

  domain.activeSetParam(rotor, "Motion", "Stationary");
  EXPECT_EQ(domain.getNewlyUnavailParams(), (Pairs{{rotor, "Angular Velocity"}}));
  ModelState const expected{{rotor, {{"Motion", "Stationary"}, {"Title", ""}}}};
  EXPECT_EQ(domain.getActiveTDFState(), expected);
}

TEST_F(ProvisionalTDFTest, TheActiveRootIsTheOneOfTheConstruction) {
  EXPECT_EQ(ProvisionalTDF(&rules_, rotor).getActiveRoot(), rotor);
  EXPECT_EQ(ProvisionalTDF(&rules_, nullptr, rotor).getActiveRoot(), rotor);
}

TEST_F(ProvisionalTDFTest, WithoutAModifierValuesKeepTheirUnits) {
  Rules(rules_, "/Case/Domain").param("Inflow").type(TDFParam::Real).required().byDefault("1 [m^3/s]");
  ProvisionalTDF state(&rules_, rotor);
  state.initialise(&base_, {});
  EXPECT_EQ(state.getParamValue(rotor, "Inflow"), "1 [m^3/s]");
  EXPECT_TRUE(state.getModQuantParams().empty());
}

TEST_F(ProvisionalTDFTest, TheValueOfAParameterThatIsNotThereIsEmpty) {
  Rules(rules_, "/Case/Domain").param("Title");
  start();
  EXPECT_EQ(state().getParamValue(rotor, "Title"), "");
  EXPECT_EQ(state().getParamValue("/Nowhere", "Title"), "");
}

TEST_F(ProvisionalTDFTest, AParameterIsThereWhenItIsPresentAndNotWhenItIsOnlyPotential) {
  Rules(rules_, "/Case/Domain").param("Fluid").required().param("Title");
  start();
  EXPECT_TRUE(state().hasParameter(rotor, "Fluid")) << "although it has no value";
  EXPECT_FALSE(state().hasParameter(rotor, "Title"));
  activate("Title");
  EXPECT_TRUE(state().hasParameter(rotor, "Title"));
  EXPECT_FALSE(state().hasParameter(rotor, "Unknown"));
  EXPECT_FALSE(state().hasParameter("/Nowhere", "Fluid"));
}

TEST_F(ProvisionalTDFTest, AnObjectIsThereWhenItIsPresentAtOrBelowTheActiveRoot) {
  Rules(rules_, "/Case/Domain").param("Fluid").required().child("Boundary").required();
  Rules(rules_, "/Case/Domain/Boundary").param("Kind").child("Turbulence").singleton().coupled();
  Rules(rules_, "/Case/Domain/Boundary/Turbulence").param("Intensity").required();
  base_.add("/Case/Domain:stator");
  ProvisionalTDF const notStarted(&rules_, rotor);
  EXPECT_FALSE(notStarted.hasObject(rotor));
  start({{rotor + "/Boundary:inlet", {}}});
  EXPECT_TRUE(state().hasObject(rotor));
  EXPECT_TRUE(state().hasObject(rotor + "/Boundary:inlet")) << "although it holds no parameter";
  EXPECT_FALSE(state().hasObject(rotor + "/Boundary:inlet/Turbulence")) << "as it is only potential";
  EXPECT_FALSE(state().hasObject("/Case")) << "above the active root";
  EXPECT_FALSE(state().hasObject("/Case/Domain:stator"));
}

TEST_F(ProvisionalTDFTest, AllowedValuesAreAnsweredForPresentAndPotentialParameters) {
  Rules(rules_, "/Case/Domain").param("Fluid").required().allowed({"Water", "Air"}).param("Coolant").allowed({"Oil"});
  Rules(rules_, "/Case/Domain").param("Title").required();
  start();
  EXPECT_EQ(state().getAllowedParamValues(rotor, "Fluid"), (Strings{"Water", "Air"}));
  EXPECT_EQ(state().getAllowedParamValues(rotor, "Coolant"), (Strings{"Oil"}));
  EXPECT_EQ(state().getAllowedParamValues(rotor, "Title"), Strings());
  EXPECT_EQ(state().getAllowedParamValues(rotor, "Unknown"), Strings());
}

TEST_F(ProvisionalTDFTest, TheSubsetIsAnsweredForPresentParametersOnly) {
  Rules(rules_, "/Case/Domain")
      .param("Fluid")
      .allowed({"Water", "Air"})
      .subset({"Air"})
      .param("Coolant")
      .allowed({"Oil"});
  start({{rotor, {{"Coolant", "Oil"}}}});
  EXPECT_EQ(state().getSubsetAllowedParamValues(rotor, "Fluid"), Strings());
  EXPECT_EQ(state().getSubsetAllowedParamValues(rotor, "Coolant"), Strings());
  activate("Fluid");
  EXPECT_EQ(state().getSubsetAllowedParamValues(rotor, "Fluid"), (Strings{"Air"}));
}

TEST_F(ProvisionalTDFTest, APathPatternIsExpandedInTheJointModel) {
  Rules(rules_, "/Case/Domain").child("Boundary").required();
  Rules(rules_, "/Case/Domain/Boundary").param("Kind").required();
  base_.add("/Case/Domain:stator");
  base_.add(rotor + "/Boundary:inlet");
  start();
  state().addNewNamedObject(rotor + "/Boundary:outlet");
  EXPECT_EQ(state().getPathExpansion("Boundary:*", rotor),
            (Strings{rotor + "/Boundary:inlet", rotor + "/Boundary:outlet"}));
  EXPECT_EQ(state().getPathExpansion("../Domain:*", rotor), (Strings{rotor, "/Case/Domain:stator"}));
  EXPECT_EQ(state().getPathExpansion("/Case/Domain:casing", rotor), Strings());
}

TEST_F(ProvisionalTDFTest, ATextThatIsNoPathPatternIsRefused) {
  start();
  EXPECT_THROW(static_cast<void>(state().getPathExpansion("Boundary//:", rotor)), Error);
}

TEST_F(ProvisionalTDFTest, RulesReadTheActiveStateBelowTheActiveRootAndTheBaseModelElsewhere) {
  auto const titles = [](TDFContext const&, ModelTDF const& model) {
    return model.getParameterValue(rotor, "Title") + " in " + model.getParameterValue("/Case", "Title");
  };
  Rules(rules_, "/Case/Domain")
      .param("Title")
      .required()
      .byDefault("Impeller")
      .param("Heading")
      .required()
      .byDefault(test::text(titles));
  base_.set("/Case", "Title", "Pump");
  start();
  EXPECT_EQ(value("Heading"), "Impeller in Pump");
}

TEST_F(ProvisionalTDFTest, APathThousandLevelsDeepIsEdited) {
  std::string path = rotor;
  std::string typePath = "/Case/Domain";
  for (int level = 0; level < 1000; ++level) {
    Rules(rules_, typePath).child("Part").coupled();
    path += "/Part:p";
    typePath += "/Part";
  }
  Rules(rules_, typePath).param("Mass").required();
  base_.set(path, "Mass", "1");
  start();
  EXPECT_EQ(value("Mass", path), "1");
  state().duplicateNamedObject(rotor + "/Part:p", "q");
  EXPECT_EQ(state().getActiveTDFState().size(), 2U);
}

}  // namespace
}  // namespace tarn
