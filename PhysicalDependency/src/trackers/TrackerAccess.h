#pragma once

#include <string>

#include <tarn/BoundsTracker.h>
#include <tarn/ModifiedQuantityTracker.h>
#include <tarn/ParamAvailInfo.h>
#include <tarn/QuantityModifier.h>
#include <tarn/TDFParam.h>

#include "journal/JournaledWrites.h"

namespace tarn {

/// Operations of trackers for the library's own sources only. They record in `journal` what they change, unless it is
/// null.
struct TrackerAccess {
  static void updateBounds(BoundsTracker& tracker, std::string const& objPath, std::string const& name,
                           ParamAvailInfo const* info, Journal* journal) {
    tracker.updateBounds(objPath, name, info, journal);
  }
  [[nodiscard]] static std::string modifyQuantity(ModifiedQuantityTracker& tracker, ModelTDF const* model,
                                                  std::string const& objPath, std::string const& name,
                                                  std::string const& value, ParamAvailInfo const* info,
                                                  Journal* journal) {
    return tracker.modifyQuantity(model, objPath, name, value, info, journal);
  }

  /// Whether the tracker asks a modifier about the parameter that may answer differently although the model is the
  /// same.
  [[nodiscard]] static bool mayAnswerOtherwise(ModifiedQuantityTracker const& tracker, ParamAvailInfo const& info) {
    return tracker.enabled_ && tracker.modifier_ != nullptr && info.getType() == TDFParam::Real &&
           !tracker.modifier_->readsOnlyModel();
  }

  static void reset(BoundsTracker& tracker, Journal* journal) { clear(tracker.updatedBounds_, journal); }
  static void reset(ModifiedQuantityTracker& tracker, Journal* journal) { clear(tracker.modifiedParams_, journal); }

  /// Empties the batch and also what the tracker remembers. The next bounds or quantity type of each parameter then
  /// count as its first. For a batch that failed, whose changes nobody has read.
  static void forget(BoundsTracker& tracker, Journal* journal) {
    reset(tracker, journal);
    clear(tracker.knownBounds_, journal);
  }
  static void forget(ModifiedQuantityTracker& tracker, Journal* journal) {
    reset(tracker, journal);
    clear(tracker.knownQuantities_, journal);
  }

  /// Whether a tracker is enabled is not recorded when it changes but noted at each mark.
  template <class Tracker>
  static void noteAtMark(Tracker& tracker, Journal& journal) {
    journal.add([&tracker, was = tracker.enabled_]() noexcept { tracker.enabled_ = was; });
  }

 private:
  template <class Entries>
  static void clear(Entries& entries, Journal* journal) {
    if (!entries.empty()) journaled::assign(journal, entries, Entries());
  }
};

}  // namespace tarn
