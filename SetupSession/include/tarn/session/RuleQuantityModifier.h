#pragma once

#include <string>

#include <tarn/Export.h>
#include <tarn/PhysicsData.h>
#include <tarn/QuantityModifier.h>

namespace tarn::session {

/// The quantity modifier that rule files describe: quantity types and units come from the rules alone. Hand it to a
/// `ProvisionalTDF` when the host has no modifier of its own.
class TARN_EXPORT RuleQuantityModifier final : public QuantityModifier {
 public:
  /// `rules` must outlive the modifier.
  explicit RuleQuantityModifier(PhysicsData const& rules) noexcept : rules_(&rules) {}

  /// Evaluates the `Quantity Type` of the parameter's rule in `model`. If the result is a key of the rules' `Quantity
  /// Types`, assigns it to `quantityType` and returns 1. Otherwise leaves `quantityType` as it is and returns 0; so it
  /// does for a parameter without a rule or without a quantity type. Throws what the rule throws.
  [[nodiscard]] int getQuantityType(ModelTDF const* model, std::string const& objPath, std::string const& name,
                                    std::string& quantityType) const override;

  /// Returns `units` if the quantity type lists them, otherwise the first units that it lists. Returns `units` when the
  /// type is not in the rules or lists none.
  [[nodiscard]] std::string getQuantityUnits(std::string const& quantityType, std::string const& units) const override;

  /// True: the rules do not change, and what they read outside of the model they say.
  [[nodiscard]] bool readsOnlyModel() const noexcept override { return true; }

 private:
  PhysicsData const* rules_;
};

}  // namespace tarn::session
