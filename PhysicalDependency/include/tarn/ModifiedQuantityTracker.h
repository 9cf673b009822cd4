#pragma once

#include <map>
#include <string>

#include <tarn/Export.h>

namespace tarn {

class Journal;
class ModelTDF;
class ParamAvailInfo;
class QuantityModifier;

/// Adjusts values before they are written: values of real parameters get the units of the quantity that the host's
/// `QuantityModifier` names. Reports which parameters got a new or another quantity type in a batch of edits.
///
///     ModifiedQuantityTracker tracker(&modifier);         // which makes the inflow a mass flow, in kg/s
///     tracker.reset();                                    // a batch begins
///     tracker.modifyQuantity(&model, "/Case/Boundary:inlet", "Inflow", "1.50 [m^3/s]", info);   // "1.50 [kg/s]"
///     tracker.getModifiedParams();                        // {"/Case/Boundary:inlet/Inflow", "Mass Flow"}
///
/// The number is never converted. Its characters are kept, and only the units in the brackets change.
class TARN_EXPORT ModifiedQuantityTracker {
 public:
  /// The modifier is not owned and must outlive the tracker. With null every value is returned unchanged.
  explicit ModifiedQuantityTracker(QuantityModifier const* modifier) noexcept : modifier_(modifier) {}

  /// While it is off, every value is returned unchanged.
  void enable(bool on) noexcept { enabled_ = on; }

  /// Begins a batch: empties the adjusted parameters and keeps the remembered quantity types.
  void reset() noexcept { modifiedParams_.clear(); }

  /// Returns the parameters, by their paths, whose quantity type was new or different in this batch, with the first
  /// such type. A second change in the same batch is not reported, but it is remembered and compared with the next
  /// batch. A parameter that keeps its type is not reported, although its value is rewritten each time. Valid as long
  /// as the tracker; changes with every value and reset.
  [[nodiscard]] std::map<std::string, std::string> const& getModifiedParams() const noexcept { return modifiedParams_; }

  /// Returns the value to write instead of `value`: the characters of its number, a blank, and the units of the
  /// quantity in brackets, also when `value` had no units.
  ///
  /// `value` is returned unchanged for every type except Real, for a string that is no quantity (the modifier is not
  /// asked then), and when the modifier does not adjust the parameter.
  ///
  /// A blank value is empty or white space only. The modifier is asked for it too. When the modifier adjusts the
  /// parameter, the result is "" without units, and the quantity type counts and is reported as for any other value.
  [[nodiscard]] std::string modifyQuantity(ModelTDF const* model, std::string const& objPath, std::string const& name,
                                           std::string const& value, ParamAvailInfo const* info);

 private:
  friend struct TrackerAccess;  // for the library's own sources
  [[nodiscard]] std::string modifyQuantity(ModelTDF const* model, std::string const& objPath, std::string const& name,
                                           std::string const& value, ParamAvailInfo const* info, Journal* journal);
  void storeModifiedQuantity(std::string const& objPath, std::string const& name, std::string const& quantityType,
                             Journal* journal);

  QuantityModifier const* modifier_;
  bool enabled_ = true;
  // Entries are removed only by `TrackerAccess::forget`.
  std::map<std::string, std::string> knownQuantities_;
  // The current batch.
  std::map<std::string, std::string> modifiedParams_;
};

}  // namespace tarn
