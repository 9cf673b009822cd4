#pragma once

#include <map>
#include <string>
#include <utility>

#include <tarn/Export.h>

namespace tarn {

class Journal;
class ParamAvailInfo;

/// Watches the bounds that the rules compute from the model, and reports which of them changed in a batch of edits.
///
///     tracker.reset();                                    // a batch begins
///     tracker.updateBounds(objPath, name, info);          // for each numeric parameter that a walk meets
///     for (auto const& [param, bounds] : tracker.getUpdatedBounds()) refreshLimits(param, bounds);
///
/// The tracker remembers the last bounds of every parameter for its whole life, also of parameters that have vanished
/// since. So a parameter that comes back with its old bounds is no update, and the first bounds of a parameter are one.
/// Bounds are compared as strings, so "1" and "1.0" differ.
class TARN_EXPORT BoundsTracker {
 public:
  /// Lower and upper bound as value strings; "" for no bound.
  using Bounds = std::pair<std::string, std::string>;

  /// While it is off, `updateBounds` does nothing, and the remembered bounds become out of date.
  void enable(bool on) noexcept { enabled_ = on; }

  /// Begins a batch: empties the updates and keeps the remembered bounds.
  void reset() noexcept { updatedBounds_.clear(); }

  /// Returns the parameters, by their paths, whose bounds differed from the remembered ones in this batch, with the
  /// bounds to which they changed first. When bounds change twice in one batch, the first change is reported, but the
  /// second is remembered and compared with the next batch. To get the present bounds, ask the rules. Valid as long as
  /// the tracker; changes with every update and reset.
  [[nodiscard]] std::map<std::string, Bounds> const& getUpdatedBounds() const noexcept { return updatedBounds_; }

  /// Evaluates and compares the bounds of a parameter. Only numeric parameters whose bounds depend on the model are
  /// tracked. For all others nothing is evaluated or kept. Exceptions of the rules reach the caller.
  void updateBounds(std::string const& objPath, std::string const& name, ParamAvailInfo const* info);

 private:
  friend struct TrackerAccess;  // for the library's own sources
  void updateBounds(std::string const& objPath, std::string const& name, ParamAvailInfo const* info, Journal* journal);
  void storeUpdatedBounds(std::string const& objPath, std::string const& name, Bounds const& bounds, Journal* journal);

  bool enabled_ = true;
  // The current batch.
  std::map<std::string, Bounds> updatedBounds_;
  // Entries are removed only by `TrackerAccess::forget`.
  std::map<std::string, Bounds> knownBounds_;
};

}  // namespace tarn
