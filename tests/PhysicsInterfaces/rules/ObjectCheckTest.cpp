// Checks of objects: when they apply, and what they say.
#include <tarn/ObjectCheck.h>

#include <gtest/gtest.h>

#include <tarn/ObjDependDef.h>
#include <tarn/PhysicsData.h>
#include <tarn/RuleLambdas.h>

#include "support/MapModel.h"

namespace tarn {
namespace {

using test::MapModel;

/// A pin that carries a clock must be an output.
ObjectCheck clockPin() {
  ObjectCheck check;
  check.name = "a clock pin is an output";
  check.when = lambda::when("Function", "Clock");
  check.check = lambda::when("Direction", "Output");
  check.message = lambda::text("A pin that carries a clock must be an output.");
  return check;
}

bool passes(ObjectCheck const& check, ObjectState const& pin) {
  MapModel const model = {{"/Chip/Pin:A1", pin}};
  EvalContext evaluation(&model);
  return check.passes(TDFContext("/Chip/Pin:A1"), &evaluation);
}

TEST(ObjectCheck, FailsWhenItAppliesAndItsConditionDoesNotHold) {
  EXPECT_FALSE(passes(clockPin(), {{"Function", "Clock"}, {"Direction", "Input"}}));
  EXPECT_TRUE(passes(clockPin(), {{"Function", "Clock"}, {"Direction", "Output"}}));
}

TEST(ObjectCheck, PassesWhenItDoesNotApply) {
  EXPECT_TRUE(passes(clockPin(), {{"Function", "Data"}, {"Direction", "Input"}}));
}

TEST(ObjectCheck, WithoutConditionsItAlwaysAppliesAndPasses) {
  EXPECT_TRUE(passes(ObjectCheck(), {}));
}

TEST(ObjectCheck, GivesItsSentence) {
  MapModel const model;
  EvalContext evaluation(&model);
  TDFContext const pin("/Chip/Pin:A1");
  EXPECT_EQ(clockPin().evaluateMessage(pin, &evaluation), "A pin that carries a clock must be an output.");
  EXPECT_EQ(ObjectCheck().evaluateMessage(pin, &evaluation), "");
}

TEST(ObjDependDef, ChecksKeepTheirOrderAndHaveDifferentNames) {
  PhysicsData data;
  ObjDependDef& pin = data.addObject("/Chip/Pin");
  ObjectCheck second;
  second.name = "a free check";
  EXPECT_TRUE(pin.addCheck(clockPin()));
  EXPECT_TRUE(pin.addCheck(std::move(second)));
  EXPECT_FALSE(pin.addCheck(clockPin()));

  ASSERT_EQ(pin.checks().size(), 2U);
  EXPECT_EQ(pin.checks()[0]->name, "a clock pin is an output");
  EXPECT_EQ(pin.checks()[1]->name, "a free check");
}

}  // namespace
}  // namespace tarn
