#include "review/UnknownNames.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Rules.h"

namespace tarn::session {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The names that the findings concern: "path" for an object, "path|name" for a parameter.
std::vector<std::string> placesOf(UnknownNames::Result const& result) {
  std::vector<std::string> places;
  for (Finding const& one : result.names) places.push_back(one.path + (one.name ? '|' + *one.name : ""));
  return places;
}

std::string messageOf(UnknownNames::Result const& result) {
  return result.names.size() == 1 ? result.names.front().message : "not one finding";
}

class UnknownNamesTest : public testing::Test {
 protected:
  UnknownNamesTest() {
    test::Rules rules(rules_);
    rules.pertinentRoot("Case").object("/Case");
    rules.param("Flow Regime");
    rules.child("Domain");
    rules.child("Solver Control").singleton();
    rules.child("Rotation").singleton().availableWhen(test::when("Flow Regime", "Rotating"));
    rules.object("/Case/Domain");
    rules.param("Material");
    rules.param("Angular Velocity").type(TDFParam::Real).availableWhen(test::when("Motion", "Rotating"));
    rules.param("Motion");
    rules.child("Boundary");
    rules.object("/Case/Domain/Boundary").param("Kind");
    rules.object("/Case/Rotation").param("Axis");
  }

  UnknownNames::Result find(ModelState const& model, std::vector<std::string> const& roots = {}) {
    return UnknownNames(rules_).find(model, roots);
  }

  PhysicsData rules_;
};

TEST_F(UnknownNamesTest, AModelOfKnownNamesGivesNothing) {
  UnknownNames::Result const result = find({{"/Case", {{"Flow Regime", "Laminar"}}},
                                            {"/Case/Domain:rotor", {{"Material", "Water"}}},
                                            {"/Case/Domain:rotor/Boundary:inlet", {{"Kind", "Inlet"}}}});
  EXPECT_THAT(result.names, IsEmpty());
  EXPECT_EQ(result.objectsPassedOver, 0u);
}

TEST_F(UnknownNamesTest, AnEmptyModelGivesNothing) {
  EXPECT_THAT(find({}).names, IsEmpty());
}

TEST_F(UnknownNamesTest, AMistypedParameterIsToldWithTheNameThatWasMeant) {
  UnknownNames::Result const result = find({{"/Case/Domain:rotor", {{"Motoin", "Rotating"}}}});
  EXPECT_THAT(placesOf(result), ElementsAre("/Case/Domain:rotor|Motoin"));
  EXPECT_EQ(messageOf(result),
            "The rules know no parameter \"Motoin\" in the object \"/Case/Domain:rotor\"; did you mean \"Motion\"?");
}

TEST_F(UnknownNamesTest, AParameterLikeNoOtherIsToldWithoutASuggestion) {
  EXPECT_EQ(messageOf(find({{"/Case", {{"Colour", "red"}}}})),
            "The rules know no parameter \"Colour\" in the object \"/Case\".");
}

TEST_F(UnknownNamesTest, OfVeryManyUnknownNamesTheLastAreToldWithoutASuggestion) {
  PhysicsData rules;
  ObjectState misspelt;
  for (int i = 10'000; i < 11'000; ++i) {
    test::Rules(rules, "/Case").pertinentRoot("Case").param("Probe " + std::to_string(i));
    misspelt["Porbe " + std::to_string(i)] = "1";
  }
  std::vector<Finding> const names = UnknownNames(rules).find({{"/Case", misspelt}}, {}).names;
  ASSERT_EQ(names.size(), 1000u);
  EXPECT_EQ(names.front().message,
            "The rules know no parameter \"Porbe 10000\" in the object \"/Case\"; did you mean \"Probe 10000\"?");
  EXPECT_EQ(names.back().message, "The rules know no parameter \"Porbe 10999\" in the object \"/Case\".");
}

TEST_F(UnknownNamesTest, AnUnknownParameterWithoutAValueIsTold) {
  EXPECT_THAT(placesOf(find({{"/Case", {{"Colour", ""}}}})), ElementsAre("/Case|Colour"));
}

TEST_F(UnknownNamesTest, AParameterThatIsNotAvailableIsKnown) {
  EXPECT_THAT(find({{"/Case/Domain:duct", {{"Angular Velocity", "3"}, {"Motion", "Stationary"}}}}).names, IsEmpty());
}

TEST_F(UnknownNamesTest, UnknownNamesInAnObjectThatIsNotAvailableAreTold) {
  EXPECT_THAT(placesOf(find({{"/Case/Rotation", {{"Axle", "x"}}}})), ElementsAre("/Case/Rotation|Axle"));
}

TEST_F(UnknownNamesTest, AMistypedTypeIsToldOnceAtItsTop) {
  UnknownNames::Result const result = find({{"/Case/Domian:rotor", {{"Material", "Water"}}},
                                            {"/Case/Domian:rotor/Boundary:inlet", {{"Kindd", "Inlet"}}},
                                            {"/Case/Domian:rotor/Boundary:outlet", {{"Kind", "Outlet"}}}});
  EXPECT_THAT(placesOf(result), ElementsAre("/Case/Domian:rotor"));
  EXPECT_EQ(messageOf(result),
            "The rules know no object of the type \"Domian\" in the object \"/Case\"; did you mean \"Domain\"?");
}

TEST_F(UnknownNamesTest, AnObjectThatOnlyADeeperPathImpliesIsToldOnce) {
  EXPECT_THAT(placesOf(find({{"/Case/Mesh/Layer:1", {{"Height", "1"}}}, {"/Case/Mesh/Layer:2", {{"Height", "2"}}}})),
              ElementsAre("/Case/Mesh"));
}

TEST_F(UnknownNamesTest, AnUnknownObjectThatByteOrderTearsApartIsToldOnce) {
  // "/Case/Mesh 2" comes between "/Case/Mesh" and what is below it.
  EXPECT_THAT(placesOf(find({{"/Case/Mesh", {}}, {"/Case/Mesh 2", {}}, {"/Case/Mesh/Layer:1", {{"Height", "1"}}}})),
              ElementsAre("/Case/Mesh", "/Case/Mesh 2"));
}

TEST_F(UnknownNamesTest, EachOfTwoUnknownSiblingsIsTold) {
  EXPECT_THAT(placesOf(find({{"/Case/Domian:a", {}}, {"/Case/Domian:b", {}}})),
              ElementsAre("/Case/Domian:a", "/Case/Domian:b"));
}

TEST_F(UnknownNamesTest, ANamedObjectOfASingletonTypeIsUnknown) {
  UnknownNames::Result const result = find({{"/Case/Solver Control", {}}, {"/Case/Solver Control:second", {}}});
  EXPECT_THAT(placesOf(result), ElementsAre("/Case/Solver Control:second"));
  EXPECT_EQ(messageOf(result),
            "The rules know only one object of the type \"Solver Control\" in the object \"/Case\", without a name of "
            "its own.");
}

TEST_F(UnknownNamesTest, AnObjectWithoutANameOfANamedTypeIsUnknown) {
  UnknownNames::Result const result = find({{"/Case/Domain", {{"Material", "Water"}}}});
  EXPECT_THAT(placesOf(result), ElementsAre("/Case/Domain"));
  EXPECT_EQ(messageOf(result),
            "The rules know objects of the type \"Domain\" in the object \"/Case\" only with a name: \"Domain:NAME\".");
}

TEST_F(UnknownNamesTest, OfAnObjectWhoseTypeHasNoRulesTheContentIsTold) {
  EXPECT_THAT(
      placesOf(find({{"/Case/Solver Control", {{"Iterations", "10"}, {"Residual", "1e-4"}}},
                     {"/Case/Solver Control/Timestep", {{"Size", "1"}}}})),
      ElementsAre("/Case/Solver Control|Iterations", "/Case/Solver Control|Residual", "/Case/Solver Control/Timestep"));
}

TEST_F(UnknownNamesTest, ObjectsAtTheRootThatAreNotPertinentAreOnlyCounted) {
  UnknownNames::Result const result =
      find({{"/Case", {}}, {"/Window Layout", {{"Width", "80"}}}, {"/Window Layout/Pane:1", {}}, {"/Macro:a", {}}});
  EXPECT_THAT(result.names, IsEmpty());
  EXPECT_EQ(result.objectsPassedOver, 2u);
}

TEST_F(UnknownNamesTest, ATypeAtTheRootThatIsNearlyPertinentIsTold) {
  UnknownNames::Result const result = find({{"/Csae/Domain:rotor", {{"Material", "Water"}}}});
  EXPECT_THAT(placesOf(result), ElementsAre("/Csae"));
  EXPECT_EQ(messageOf(result),
            "The rules know no object of the type \"Csae\" at the root of the model; did you mean \"Case\"?");
  EXPECT_EQ(result.objectsPassedOver, 0u);
}

TEST_F(UnknownNamesTest, AParameterAtTheRootIsUnknown) {
  UnknownNames::Result const result = find({{"", {{"Flow Regime", "Laminar"}}}});
  EXPECT_THAT(placesOf(result), ElementsAre("|Flow Regime"));
  EXPECT_EQ(messageOf(result), "The rules know no parameter \"Flow Regime\" at the root of the model.");
}

TEST_F(UnknownNamesTest, WithRootsOnlyWhatStandsThereAndBelowIsLookedAt) {
  ModelState const model = {{"", {{"Stray", "1"}}},
                            {"/Case", {{"Colour", "red"}}},
                            {"/Case/Domain:a", {{"Colour", "red"}}},
                            {"/Case/Domain:ab", {{"Colour", "red"}}},
                            {"/Case/Domain:a/Boundary:in", {{"Colour", "red"}}},
                            {"/Macro", {}}};
  UnknownNames::Result const result = find(model, {"/Case/Domain:a"});
  EXPECT_THAT(placesOf(result), ElementsAre("/Case/Domain:a|Colour", "/Case/Domain:a/Boundary:in|Colour"));
  EXPECT_EQ(result.objectsPassedOver, 0u);
}

TEST_F(UnknownNamesTest, OneAnalysisServesManyModels) {
  UnknownNames analysis(rules_);
  ModelState const faulty = {{"/Case/Domian:a", {}}, {"/Macro", {}}};
  EXPECT_THAT(placesOf(analysis.find(faulty, {})), ElementsAre("/Case/Domian:a"));
  UnknownNames::Result const again = analysis.find(faulty, {});
  EXPECT_THAT(placesOf(again), ElementsAre("/Case/Domian:a"));
  EXPECT_EQ(again.objectsPassedOver, 1u);
  EXPECT_THAT(analysis.find({{"/Case", {}}}, {}).names, IsEmpty());
}

}  // namespace
}  // namespace tarn::session
