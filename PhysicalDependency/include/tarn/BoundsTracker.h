#pragma once

#include <map>
#include <string>
#include <utility>

#include <tarn/Export.h>

namespace tarn {

class ParamAvailInfo;

/// Watches the bounds that the rules compute from the model, and tells which of them moved in a batch of edits.
///
///     tracker.reset();                                    // a batch begins
///     tracker.updateBounds(objPath, name, info);          // for each numeric parameter that a walk comes to
///     for (auto const& [param, bounds] : tracker.getUpdatedBounds()) refreshLimits(param, bounds);
///
/// What was seen last is remembered for the life of the tracker, also of parameters that have since vanished: one that
/// comes back with its old bounds is no update. The first sighting of a parameter is one. Bounds are texts here and are
/// compared as such, so "1" and "1.0" differ.
class TARN_EXPORT BoundsTracker {
 public:
  /// Lower and upper bound as value texts; "" where there is none.
  using Bounds = std::pair<std::string, std::string>;

  /// While it is off, what is told is passed over, and what was seen last grows stale.
  void enable(bool on) noexcept { enabled_ = on; }

  /// Begins a batch: forgets the updates, but not what was seen last.
  void reset() noexcept { updatedBounds_.clear(); }

  /// Forgets also what was seen last, so that the next sighting of each parameter is one as if it were the first. For a
  /// batch that broke off, whose updates nobody has read.
  void forget() noexcept {
    updatedBounds_.clear();
    knownBounds_.clear();
  }

  /// The parameters, by their paths, whose bounds differed from what was seen before them in this batch, with the
  /// bounds that they were first seen to have changed to. If bounds move twice in one batch, the first move stands
  /// here, though the second is what the next batch is compared with: a reader who wants the present bounds asks the
  /// rules. Valid as long as the tracker; changes with every update and reset.
  [[nodiscard]] std::map<std::string, Bounds> const& getUpdatedBounds() const noexcept { return updatedBounds_; }

  /// Takes in the bounds of a parameter. Only numeric parameters whose bounds depend on the model are tracked; of any
  /// other nothing is evaluated or kept. Passes on what the rules throw.
  void updateBounds(std::string const& objPath, std::string const& name, ParamAvailInfo const* info);

 private:
  void storeUpdatedBounds(std::string const& objPath, std::string const& name, Bounds const& bounds);

  bool enabled_ = true;
  // Of the batch.
  std::map<std::string, Bounds> updatedBounds_;
  // Only grows, but for `forget`.
  std::map<std::string, Bounds> knownBounds_;
};

}  // namespace tarn
