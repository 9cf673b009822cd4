#pragma once

#include <map>
#include <string>

#include <tarn/Export.h>

namespace tarn {

class ModelTDF;
class ParamAvailInfo;
class QuantityModifier;

/// Stands in the way of values that are about to be written, gives those of real parameters the units of the quantity
/// that the host's `QuantityModifier` names, and tells which parameters got another quantity type in a batch of edits.
///
///     ModifiedQuantityTracker tracker(&modifier);         // which makes the inflow a mass flow, in kg/s
///     tracker.reset();                                    // a batch begins
///     tracker.modifyQuantity(&model, "/Case/Boundary:inlet", "Inflow", "1.50 [m^3/s]", info);   // "1.50 [kg/s]"
///     tracker.getModifiedParams();                        // {"/Case/Boundary:inlet/Inflow", "Mass Flow"}
///
/// The number itself is never converted: its text is kept as it is, and only what stands in the brackets changes.
class TARN_EXPORT ModifiedQuantityTracker {
 public:
  /// The modifier is not owned and must outlive the tracker. With null every value passes unchanged.
  explicit ModifiedQuantityTracker(QuantityModifier const* modifier) noexcept : modifier_(modifier) {}

  /// While it is off, every value passes unchanged.
  void enable(bool on) noexcept { enabled_ = on; }

  /// Begins a batch: forgets which parameters were adjusted, but not the quantity types that they had.
  void reset() noexcept { modifiedParams_.clear(); }

  /// Forgets also the quantity types that parameters had, so that the next one of each is new. For a batch that broke
  /// off, whose changes nobody has read.
  void forget() noexcept {
    modifiedParams_.clear();
    knownQuantities_.clear();
  }

  /// The parameters, by their paths, whose quantity type was new or another one in this batch, with the first such
  /// type; a second change in the same batch does not show, though the next batch is compared with it. One that keeps
  /// its type is not here, although its value is rewritten each time. Valid as long as the tracker; changes with every
  /// value and reset.
  [[nodiscard]] std::map<std::string, std::string> const& getModifiedParams() const noexcept { return modifiedParams_; }

  /// The value to write instead of `value`: the text of its number, a blank, and the units of the quantity in brackets,
  /// which are there also if `value` had none. A blank value becomes "".
  ///
  /// `value` comes back as it is for every type but Real, for a text that is no quantity (the modifier is not asked
  /// then), and when the modifier leaves the parameter alone.
  [[nodiscard]] std::string modifyQuantity(ModelTDF const* model, std::string const& objPath, std::string const& name,
                                           std::string const& value, ParamAvailInfo const* info);

 private:
  void storeModifiedQuantity(std::string const& objPath, std::string const& name, std::string const& quantityType);

  QuantityModifier const* modifier_;
  bool enabled_ = true;
  // Only grows, but for `forget`.
  std::map<std::string, std::string> knownQuantities_;
  // Of the batch.
  std::map<std::string, std::string> modifiedParams_;
};

}  // namespace tarn
