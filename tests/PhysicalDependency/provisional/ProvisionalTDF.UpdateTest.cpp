// The lists that one update publishes, and the state that it leaves when its walk breaks off.

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <tarn/MeasurementSink.h>

#include "PhysicalDependency/provisional/ProvisionalFixture.h"

namespace tarn {
namespace {

using test::Pairs;
using test::rotor;
using test::Rules;
using test::Strings;
using test::text;
using test::when;

class ProvisionalUpdateTest : public test::ProvisionalTest {};

TEST_F(ProvisionalUpdateTest, AWalkOverASettledStateTellsNothingAndThePotentialItemsStay) {
  Rules(rules_, "/Case/Domain").param("Title").param("Fluid").allowed({"Water"}).param("Speed").required();
  Rules(rules_, "/Case/Domain").child("Turbulence").singleton().coupled().child("Boundary").required();
  Rules(rules_, "/Case/Domain/Turbulence").param("Model");
  Rules(rules_, "/Case/Domain/Boundary").param("Kind").required();
  start();
  Pairs const potential = potentialParams();
  ModelState const active = state().getActiveTDFState();
  walkAgain();
  expectNoChanges();
  EXPECT_EQ(potentialParams(), potential);
  EXPECT_EQ(state().getAvailPotObjects(), (Strings{rotor + "/Turbulence"}));
  EXPECT_EQ(state().getActiveTDFState(), active);
  EXPECT_EQ(state().getEmptyParameters(false), (Strings{rotor + "/Speed"}));
  EXPECT_TRUE(state().isUserNamedTypeAvailable(rotor, "Boundary"));
}

TEST_F(ProvisionalUpdateTest, AParameterThatBecomesPotentialIsNotLost) {
  Rules(rules_, "/Case/Domain").param("Title").param("Note");
  start({{rotor, {{"Title", "Impeller"}, {"Note", "draft"}}}});
  deactivate("Title");
  EXPECT_EQ(newlyPotentialParams(), (Pairs{{rotor, "Title"}}));
  EXPECT_EQ(state().getNewlyUnavailParams(), Pairs());
}

TEST_F(ProvisionalUpdateTest, SeveralParametersThatBecomePotentialAtOnceAreNotLostWhateverTheirOrderInTheRules) {
  auto const gases = [](TDFContext const& at, ModelTDF const& model) {
    return model.getParameterValue(at.objPath(), "Motion") == "Rotating" ? SharedStrings{"Steam"}
                                                                         : SharedStrings{"Air"};
  };
  Rules(rules_, "/Case/Domain").param("Motion").allowed({"Rotating", "Stationary"});
  for (std::string const name : {"Suction", "Leakage", "Delivery"}) {
    Rules(rules_, "/Case/Domain").param(name).allowed(test::list(gases));
  }
  start({{rotor, {{"Motion", "Rotating"}, {"Suction", "Steam"}, {"Leakage", "Steam"}, {"Delivery", "Steam"}}}});
  set("Motion", "Stationary");
  EXPECT_EQ(newlyPotentialParams(), (Pairs{{rotor, "Suction"}, {rotor, "Leakage"}, {rotor, "Delivery"}}));
  EXPECT_EQ(state().getNewlyUnavailParams(), Pairs());
}

TEST_F(ProvisionalUpdateTest, OnlyTheParametersThatAreNotOnOfferAreLost) {
  Rules(rules_, "/Case/Domain").param("Motion").allowed({"Rotating", "Stationary"});
  Rules(rules_, "/Case/Domain")
      .param("Speed")
      .availableWhen(when("Motion", "Rotating"))
      .param("Axis")
      .availableWhen(when("Motion", "Rotating"));
  Rules(rules_, "/Case/Domain").param("Fluid").allowed(test::list([](TDFContext const& at, ModelTDF const& model) {
    return model.getParameterValue(at.objPath(), "Motion") == "Rotating" ? SharedStrings{"Water"}
                                                                         : SharedStrings{"Air"};
  }));
  start({{rotor, {{"Motion", "Rotating"}, {"Speed", "1"}, {"Axis", "z"}, {"Fluid", "Water"}}}});
  set("Motion", "Stationary");
  EXPECT_EQ(state().getNewlyUnavailParams(), (Pairs{{rotor, "Speed"}, {rotor, "Axis"}}));
  EXPECT_EQ(newlyPotentialParams(), (Pairs{{rotor, "Fluid"}}));
}

TEST_F(ProvisionalUpdateTest, WhatComesAndGoesWithinOneUpdateStandsInBothLists) {
  // The type is mirrored from the base model, and then found to be unknown to the rules.
  Rules(rules_, "/Case/Domain").child("Sensor");
  base_.set(rotor + "/Sensor:a", "Position", "0");
  start();
  EXPECT_EQ(state().getNewlyAvailParams(), (Pairs{{rotor + "/Sensor:a", "Position"}}));
  EXPECT_EQ(state().getNewlyUnavailParams(), (Pairs{{rotor + "/Sensor:a", "Position"}}));
  EXPECT_EQ(state().getDeletedObjects(), (Strings{rotor + "/Sensor:a"}));
  EXPECT_EQ(state().getActiveTDFState(), ModelState());
}

TEST_F(ProvisionalUpdateTest, OtherAllowedValuesOfAPotentialParameterAreTold) {
  Rules(rules_, "/Case/Domain")
      .param("Motion")
      .param("Fluid")
      .allowed(test::list([](TDFContext const& at, ModelTDF const& model) {
        bool const rotating = model.getParameterValue(at.objPath(), "Motion") == "Rotating";
        return rotating ? SharedStrings{"Water", "Air"} : SharedStrings{"Water"};
      }));
  start();
  set("Motion", "Rotating");
  EXPECT_EQ(changedPotentialParams(), (Pairs{{rotor, "Fluid"}}));
  EXPECT_EQ(state().getAllowedParamValues(rotor, "Fluid"), (Strings{"Water", "Air"}));
}

TEST_F(ProvisionalUpdateTest, OtherAllowedValuesOfAPresentParameterAreAModification) {
  Rules(rules_, "/Case/Domain")
      .param("Motion")
      .param("Fluid")
      .required()
      .allowed(test::list([](TDFContext const& at, ModelTDF const& model) {
        bool const rotating = model.getParameterValue(at.objPath(), "Motion") == "Rotating";
        return rotating ? SharedStrings{"Water", "Air"} : SharedStrings{"Water"};
      }));
  start();
  set("Motion", "Rotating");
  EXPECT_EQ(value("Fluid"), "Water");
  EXPECT_EQ(state().getModParams(), (Pairs{{rotor, "Fluid"}}));
}

TEST_F(ProvisionalUpdateTest, AWithdrawnPotentialParameterIsTold) {
  Rules(rules_, "/Case/Domain").param("Motion").param("Speed").availableWhen(when("Motion", "Rotating"));
  start({{rotor, {{"Motion", "Rotating"}}}});
  ASSERT_TRUE(isPotential("Speed"));
  set("Motion", "Stationary");
  EXPECT_EQ(goneParams(), (Pairs{{rotor, "Speed"}}));
}

TEST_F(ProvisionalUpdateTest, WithAManyParametersEachIsToldOnce) {
  Rules rules(rules_, "/Case/Domain");
  for (int i = 0; i < 300; ++i)
    rules.param("P" + std::to_string(i)).availableWhen(when([](auto const&, auto const& model) {
      return !model.hasParameter("/Case", "Off");
    }));
  rules.object("/Case/Other");
  ObjectState values;
  for (int i = 0; i < 300; ++i) values["P" + std::to_string(i)] = "1";
  start({{rotor, values}});
  EXPECT_EQ(state().getNewlyAvailParams().size(), 300U);
  base_.set("/Case", "Off", "1");
  state().baseUpdate(&base_);
  EXPECT_EQ(state().getNewlyUnavailParams().size(), 300U);
  EXPECT_EQ(newlyPotentialParams(), Pairs());
}

// A walk that breaks off.

class ProvisionalBrokenWalkTest : public ProvisionalUpdateTest {
 protected:
  ProvisionalBrokenWalkTest() {
    Rules(rules_, "/Case/Domain").param("Title").param("Note").child("Boundary").required();
    Rules(rules_, "/Case/Domain").param("Speed").required().byDefault(text([this](TDFContext const&, ModelTDF const&) {
      if (fails_) throw std::runtime_error("no speed is known");
      return std::string("1");
    }));
    Rules(rules_, "/Case/Domain/Boundary").param("Kind");
  }

  bool fails_ = false;
};

TEST_F(ProvisionalBrokenWalkTest, WhatARuleThrowsPassesAndTheActiveStateReadsAsEmpty) {
  start();
  fails_ = true;
  EXPECT_THROW(set("Title", "Impeller"), std::runtime_error);
  EXPECT_EQ(state().getActiveTDFState(), ModelState());
  EXPECT_EQ(state().getEmptyParameters(false), Strings());
}

TEST_F(ProvisionalBrokenWalkTest, TheEditIsNotLostAndTheNextUpdateCompletesIt) {
  start();
  fails_ = true;
  EXPECT_THROW(set("Title", "Impeller"), std::runtime_error);
  fails_ = false;
  walkAgain();
  ModelState const expected{{rotor, {{"Speed", "1"}, {"Title", "Impeller"}}}};
  EXPECT_EQ(state().getActiveTDFState(), expected);
}

TEST_F(ProvisionalBrokenWalkTest, PotentialItemsAreComparedWithTheLastWholeWalkAndStandOnce) {
  start();
  fails_ = true;
  EXPECT_THROW(set("Title", "Impeller"), std::runtime_error);
  EXPECT_THROW(walkAgain(), std::runtime_error);
  fails_ = false;
  walkAgain();
  EXPECT_EQ(potentialParams(), (Pairs{{rotor, "Note"}}));
  EXPECT_EQ(newlyPotentialParams(), Pairs());
  EXPECT_EQ(goneParams(), Pairs());
}

TEST_F(ProvisionalBrokenWalkTest, ARefusedEditBehindABrokenWalkTellsTheState) {
  start();
  fails_ = true;
  EXPECT_THROW(set("Title", "Impeller"), std::runtime_error);
  state().removeNamedObject("/Case/Domain:stator");
  ModelState const expected{{rotor, {{"Speed", "1"}, {"Title", "Impeller"}}}};
  EXPECT_EQ(state().getActiveTDFState(), expected);
}

TEST_F(ProvisionalBrokenWalkTest, AStartThatBreaksOffCanBeCompletedByAnEdit) {
  fails_ = true;
  EXPECT_THROW(start(), std::runtime_error);
  fails_ = false;
  set("Title", "Impeller");
  ModelState const expected{{rotor, {{"Speed", "1"}, {"Title", "Impeller"}}}};
  EXPECT_EQ(state().getActiveTDFState(), expected);
}

TEST_F(ProvisionalBrokenWalkTest, ARuleEntryWithoutValuesBreaksTheWalkOff) {
  Rules(rules_, "/Case/Domain").paramWithoutValueRule("Broken");
  EXPECT_THROW(start(), std::runtime_error);
}

// Measurements.

class RecordingSink final : public MeasurementSink {
 public:
  RecordingSink() { set(this); }
  ~RecordingSink() override { set(nullptr); }
  void operationEnded(std::string const& name, std::chrono::nanoseconds /*duration*/,
                      std::vector<Section> const& sections) override {
    std::string line = name + ":";
    for (Section const& section : sections) line += " " + section.name + ",";
    lines.push_back(line);
  }
  void cacheReported(std::size_t /*hits*/, std::size_t /*misses*/, std::size_t /*entries*/) override {}

  Strings lines;
};

TEST_F(ProvisionalUpdateTest, EachUpdateIsMeasuredInItsSections) {
  RecordingSink sink;
  start();
  state().activeSetParam("/Case", "Title", "outside");
  EXPECT_EQ(sink.lines, (Strings{"ProvisionalTDF::updateActiveTDF: analyse, extract updates,",
                                 "ProvisionalTDF::updateActiveTDF: extract updates,"}));
}

}  // namespace
}  // namespace tarn
