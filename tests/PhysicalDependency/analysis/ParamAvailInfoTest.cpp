// The record of a parameter that onParamCheck gets, and the cost of its getters.

#include <tarn/ParamAvailInfo.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <tarn/EvalContext.h>
#include <tarn/PhysicsData.h>

#include "support/AllowedValues.h"
#include "support/ContinuingWalk.h"
#include "support/MapModel.h"
#include "support/Rules.h"

namespace tarn {
namespace {

using test::allowing;
using test::countingText;
using test::listOf;
using test::MapModel;
using test::never;
using test::Rules;
using test::text;
using test::when;
using Strings = std::vector<std::string>;
using Bounds = std::pair<std::string, std::string>;
using Override = std::pair<bool, std::string>;

/// Hands each parameter record of a walk to a function.
class ParamWalk final : public test::ContinuingWalk {
 public:
  using Look = std::function<void(ParamAvailInfo const&)>;
  ParamWalk(PhysicsData const* rules, Look look) : ContinuingWalk(rules), look_(std::move(look)) {}

 private:
  HandlerStatus onParamCheck(ParamAvailInfo const* info) override { return look_(*info), Continue; }

  Look look_;
};

class ParamAvailInfoTest : public testing::Test {
 protected:
  /// Walks the rotor and lets `look` see the record of each of its parameters.
  void each(ParamWalk::Look const& look) {
    bool seen = false;
    ParamWalk walk(&rules_, [&](ParamAvailInfo const& info) {
      seen = true;
      look(info);
    });
    EvalContext context(&model_);
    walk.analyse("/Case/Domain:rotor", &context);
    EXPECT_TRUE(seen);
  }

  Rules rotor() { return {rules_, "/Case/Domain"}; }

  PhysicsData rules_;
  MapModel model_{{"/Case/Domain:rotor", {{"Motion", "Rotating"}}}};
};

TEST_F(ParamAvailInfoTest, EachMarkIsToldByItsOwnQuestion) {
  rotor().param("Plain").type(TDFParam::Integer);
  rotor().param("Complete").type(TDFParam::StringList).completeListRequired();
  rotor().param("Required").required();
  rotor().param("Relaxed").relaxed();
  rotor().param("Gone").availableWhen(never());
  rotor().param("Bounded").type(TDFParam::Real).bounds(text("0"), text([](auto&, auto&) { return "1"; }));
  rotor().param("Default").byDefault("Water");
  rotor().param("Override").overriddenWhen(never(), "Water");
  Strings seen;
  each([&](ParamAvailInfo const& info) {
    seen.push_back(info.getObjPath() + '|' + info.getName() + ": " + std::to_string(info.getType()) +
                   (info.isListType() ? " list" : "") + (info.isCompleteListRequired() ? " complete" : "") +
                   (info.isAvailable() ? " available" : "") + (info.isRequired() ? " required" : "") +
                   (info.hasValidationRelaxed() ? " relaxed" : "") + (info.hasDynamicBounds() ? " dynamic" : "") +
                   (info.hasDefault() ? " default" : "") + (info.hasValueOverride() ? " override" : ""));
  });
  EXPECT_EQ(
      seen,
      (Strings{"/Case/Domain:rotor|Plain: 0 available", "/Case/Domain:rotor|Complete: 7 list complete available",
               "/Case/Domain:rotor|Required: 6 available required", "/Case/Domain:rotor|Relaxed: 6 available relaxed",
               "/Case/Domain:rotor|Gone: 6", "/Case/Domain:rotor|Bounded: 4 available dynamic",
               "/Case/Domain:rotor|Default: 6 available default",
               "/Case/Domain:rotor|Override: 6 available override"}));
}

TEST_F(ParamAvailInfoTest, AnUnavailableParameterTellsWhatItWouldGet) {
  rotor()
      .param("Speed")
      .type(TDFParam::Real)
      .availableWhen(never())
      .byDefault("100")
      .bounds("0", "500")
      .overriddenWhen(when("Motion", "Rotating"), "200");
  each([&](ParamAvailInfo const& info) {
    EXPECT_FALSE(info.isAvailable());
    EXPECT_EQ(info.getType(), TDFParam::Real);
    EXPECT_TRUE(info.hasDefault());
    EXPECT_EQ(info.getDefault(), "100");
    EXPECT_EQ(info.getBounds(), Bounds("0", "500"));
    EXPECT_EQ(info.getValueOverride(), Override(true, "200"));
  });
}

TEST_F(ParamAvailInfoTest, NothingIsEvaluatedThatIsNotAskedFor) {
  int count = 0;
  rotor()
      .param("Speed")
      .byDefault(countingText(count))
      .bounds(countingText(count), countingText(count))
      .overriddenWhen(when([&](auto&, auto&) { return ++count > 0; }), countingText(count));
  each([&](ParamAvailInfo const& info) {
    EXPECT_TRUE(info.isAvailable() && info.hasDefault() && info.hasValueOverride() && info.hasDynamicBounds());
  });
  EXPECT_EQ(count, 0);
}

TEST_F(ParamAvailInfoTest, BoundsAreEvaluatedOnce) {
  int count = 0;
  rotor().param("Speed").bounds(countingText(count), text("500"));
  each([&](ParamAvailInfo const& info) {
    EXPECT_EQ(info.getBounds(), Bounds("1", "500"));
    EXPECT_EQ(info.getBounds(), Bounds("1", "500"));
  });
}

TEST_F(ParamAvailInfoTest, TheFormOfTheDefaultThatIsAskedFirstDecides) {
  rotor().param("Material").byDefault("Water").param("Fluid").byDefault("Water");
  each([&](ParamAvailInfo const& info) {
    if (info.getName() == "Material") {
      EXPECT_EQ(info.getDefault(), "Water");
      EXPECT_EQ(info.getDefault(allowing({"Air"})), "Water");
    } else {
      EXPECT_EQ(info.getDefault(allowing({"Air"})), "Air");
      EXPECT_EQ(info.getDefault(), "Air");
    }
  });
}

TEST_F(ParamAvailInfoTest, AnOverrideIsEvaluatedAtEveryQuestion) {
  int count = 0;
  rotor().param("Speed").overriddenWhen(test::always(), countingText(count));
  each([&](ParamAvailInfo const& info) {
    EXPECT_EQ(info.getValueOverride(), Override(true, "1"));
    EXPECT_EQ(info.getValueOverride(allowing({"5"})), Override(true, "2"));
  });
}

TEST_F(ParamAvailInfoTest, WhatAHookChangesIsSeenByWhatItAsksThen) {
  rotor().param("Speed").availableWhen(when("Motion", "Rotating")).byDefault(text([](auto& at, auto& model) {
    return model.getParameterValue(at.objPath(), "Motion");
  }));
  each([&](ParamAvailInfo const& info) {
    model_.set("/Case/Domain:rotor", "Motion", "Stationary");
    EXPECT_TRUE(info.isAvailable());
    EXPECT_EQ(info.getDefault(), "Stationary");
  });
}

TEST_F(ParamAvailInfoTest, WithoutAnAllowedValueRuleThereAreNoAllowedValues) {
  rotor().param("Note");
  each([&](ParamAvailInfo const& info) {
    EXPECT_TRUE(info.isAvailable());
    EXPECT_FALSE(info.getAllowedValues().hasAllowedValues);
  });
}

TEST_F(ParamAvailInfoTest, OfAParameterWhoseConditionDoesNotHoldTheAllowedValuesAreNotEvaluated) {
  rotor().param("Material").availableWhen(never()).allowed({"Water"});
  each([&](ParamAvailInfo const& info) { EXPECT_FALSE(info.getAllowedValues().hasAllowedValues); });
}

TEST_F(ParamAvailInfoTest, AListThatComesOutEmptyIsToldAsTheEvaluatedRecord) {
  rotor().param("Material").allowed(listOf("Materials"));
  rotor().param("Fluid").allowed(listOf("Materials")).availableWithNoAllowedValues();
  Strings seen;
  each([&](ParamAvailInfo const& info) {
    seen.push_back(info.getName() + (info.isAvailable() ? " available" : "") +
                   (info.getAllowedValues().hasAllowedValues ? " evaluated" : "") +
                   (info.getAllowedValues().isEmpty() ? " empty" : ""));
  });
  EXPECT_EQ(seen, (Strings{"Material evaluated empty", "Fluid available evaluated empty"}));
}

TEST_F(ParamAvailInfoTest, OneParametersAllowedValuesDoNotShowInTheNext) {
  rotor().param("Material").allowed({"Water", "Air"}).param("Note");
  Strings seen;
  each([&](ParamAvailInfo const& info) {
    for (std::string const& value : info.getAllowedValues().allowedValues) seen.push_back(info.getName() + ' ' + value);
  });
  EXPECT_EQ(seen, (Strings{"Material Water", "Material Air"}));
}

}  // namespace
}  // namespace tarn
