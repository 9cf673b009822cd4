#pragma once

#include <string>

#include <tarn/PhysicsData.h>
#include <tarn/QuantityModifier.h>

namespace tarn::tool {

/// The quantity types that rule files describe: of a parameter its `Quantity Type`, where that is a key of
/// `Quantity Types`; of its units those that the type lists, else the first of them.
class RuleQuantityModifier final : public QuantityModifier {
 public:
  /// `rules` must outlive the modifier.
  explicit RuleQuantityModifier(PhysicsData const& rules) noexcept : rules_(rules) {}

  [[nodiscard]] int getQuantityType(ModelTDF const* model, std::string const& objPath, std::string const& name,
                                    std::string& quantityType) const override;
  [[nodiscard]] std::string getQuantityUnits(std::string const& quantityType, std::string const& units) const override;

 private:
  PhysicsData const& rules_;
};

}  // namespace tarn::tool
