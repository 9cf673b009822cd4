#pragma once

#include <string>

#include <tarn/Export.h>

namespace tarn {

class ModelTDF;

/// Decides which quantity a real parameter measures when that depends on the model, and in which units its values are
/// written then: the inflow of a boundary may be a mass flow or a volume flow.
///
/// Implemented by the host, which owns it and keeps it alive as long as the trackers that were given it. Called during
/// a walk, so it must not change the model.
class TARN_EXPORT QuantityModifier {
 public:
  virtual ~QuantityModifier();

  /// Whether the quantity type of this parameter is to be adjusted. If so, fills `quantityType` and returns 1; any
  /// other result leaves the parameter alone. `model` is what the rules read, with the edits under way in it.
  [[nodiscard]] virtual int getQuantityType(ModelTDF const* model, std::string const& objPath, std::string const& name,
                                            std::string& quantityType) const = 0;

  /// The units to write for a value of that quantity type that came with `units`, which are "" for a plain number.
  [[nodiscard]] virtual std::string getQuantityUnits(std::string const& quantityType,
                                                     std::string const& units) const = 0;

 protected:
  QuantityModifier() = default;
  QuantityModifier(QuantityModifier const&) = default;
  QuantityModifier& operator=(QuantityModifier const&) = default;
};

}  // namespace tarn
