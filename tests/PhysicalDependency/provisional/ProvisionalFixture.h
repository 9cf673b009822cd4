#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <tarn/PhysicsData.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/QuantityModifier.h>

#include "support/MapModel.h"
#include "support/Rules.h"

namespace tarn::test {

using Strings = std::vector<std::string>;
using Pairs = std::vector<std::pair<std::string, std::string>>;

inline std::string const rotor = "/Case/Domain:rotor";

/// Makes every real parameter of one name a mass flow, or another quantity.
class FlowModifier final : public QuantityModifier {
 public:
  int getQuantityType(ModelTDF const* /*model*/, std::string const& /*objPath*/, std::string const& name,
                      std::string& quantityType) const override {
    quantityType = type;
    return adjusts && name == "Inflow" ? 1 : 0;
  }
  std::string getQuantityUnits(std::string const& quantityType, std::string const& /*units*/) const override {
    return quantityType == "Mass Flow" ? "kg/s" : "m^3/s";
  }

  bool adjusts = true;
  std::string type = "Mass Flow";
};

/// The rotor of a case, edited under the rules that a test fills in first.
///
///     Rules(rules_, "/Case/Domain").param("Motion").required().byDefault("Rotating");
///     start();
///     set("Motion", "Stationary");
///     EXPECT_EQ(value("Motion"), "Stationary");
class ProvisionalTest : public testing::Test {
 protected:
  ProvisionalTest() { base_.add(rotor); }

  ProvisionalTDF& start(ModelState const& guide = {}) { return startAt(rotor, guide); }
  ProvisionalTDF& startAt(std::string const& root, ModelState const& guide = {}) {
    state_.emplace(&rules_, &modifier_, root);
    state_->initialise(&base_, guide);
    return *state_;
  }
  ProvisionalTDF& state() { return *state_; }

  void set(std::string const& name, std::string const& value) { state().activeSetParam(rotor, name, value); }
  void activate(std::string const& name) { state().activateOptParam(rotor, name); }
  void deactivate(std::string const& name) { state().deactivateOptParam(rotor, name); }
  /// An update whose walk finds nothing new: the rules do not know the parameter.
  void walkAgain() { set("Unknown to the Rules", "1"); }

  /// The value in the active state; nothing when it is not there.
  std::optional<std::string> value(std::string const& name, std::string const& objPath = rotor) {
    auto const object = state().getActiveTDFState().find(objPath);
    if (object == state().getActiveTDFState().end()) return std::nullopt;
    auto const param = object->second.find(name);
    return param != object->second.end() ? std::optional(param->second) : std::nullopt;
  }
  bool isPotential(std::string const& name, std::string const& objPath = rotor) {
    for (auto const& param : potentialParams()) {
      if (param.first == objPath && param.second == name) return true;
    }
    return false;
  }

  Pairs potentialParams() { return listOf(state().getAvailPotParams()); }
  Pairs newlyPotentialParams() { return listOf(state().getNewlyAvailPotParams()); }
  Pairs goneParams() { return listOf(state().getNewlyUnavailPotParams()); }
  Pairs changedPotentialParams() { return listOf(state().getModPotParams()); }
  static Pairs listOf(ProvisionalTDF::ParamsByObject const& params) { return {params.begin(), params.end()}; }

  void expectNoChanges() {
    EXPECT_EQ(state().getNewlyAvailParams(), Pairs());
    EXPECT_EQ(state().getModParams(), Pairs());
    EXPECT_EQ(state().getNewlyUnavailParams(), Pairs());
    EXPECT_EQ(state().getDeletedObjects(), Strings());
    EXPECT_TRUE(state().getModBoundsParams().empty());
    EXPECT_TRUE(state().getModQuantParams().empty());
    EXPECT_EQ(state().getNewlyAvailPotObjects(), Strings());
    EXPECT_EQ(newlyPotentialParams(), Pairs());
    EXPECT_EQ(state().getNewlyUnavailPotObjects(), Strings());
    EXPECT_EQ(goneParams(), Pairs());
    EXPECT_EQ(changedPotentialParams(), Pairs());
  }

  PhysicsData rules_;
  MapModel base_;
  FlowModifier modifier_;

 private:
  std::optional<ProvisionalTDF> state_;
};

}  // namespace tarn::test
