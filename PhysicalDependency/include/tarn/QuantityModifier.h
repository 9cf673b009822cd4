#pragma once

#include <string>

#include <tarn/Export.h>

namespace tarn {

class ModelTDF;

/// Decides which quantity a real parameter measures when that depends on the model, and in which units its values are
/// written. For example, the inflow of a boundary may be a mass flow or a volume flow.
///
/// The host implements and owns it and keeps it alive as long as the trackers that use it. It is called during a walk,
/// so it must not change the model.
class TARN_EXPORT QuantityModifier {
 public:
  virtual ~QuantityModifier();

  /// Returns 1, and fills `quantityType`, when the quantity type of this parameter must be adjusted. With any other
  /// result the parameter is not adjusted. `model` is the model that the rules read, including the current edit.
  [[nodiscard]] virtual int getQuantityType(ModelTDF const* model, std::string const& objPath, std::string const& name,
                                            std::string& quantityType) const = 0;

  /// Returns the units to write for a value of that quantity type. `units` are those that the value had, "" for a plain
  /// number.
  [[nodiscard]] virtual std::string getQuantityUnits(std::string const& quantityType,
                                                     std::string const& units) const = 0;

  /// Whether the answers depend on nothing but the arguments and on what is read from `model`. Then the modifier is
  /// asked again only when something that it has read changes. With false, the default, it is asked in every update
  /// about every present real parameter without allowed values: always safe, and slower.
  [[nodiscard]] virtual bool readsOnlyModel() const noexcept { return false; }

 protected:
  QuantityModifier() = default;
  QuantityModifier(QuantityModifier const&) = default;
  QuantityModifier& operator=(QuantityModifier const&) = default;
};

}  // namespace tarn
