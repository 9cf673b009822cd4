#pragma once

#include <tarn/BoundsTracker.h>
#include <tarn/ModifiedQuantityTracker.h>

namespace tarn {

/// Operations of trackers for the library's own sources only.
struct TrackerAccess {
  /// Empties the batch and also what the tracker remembers. The next bounds or quantity type of each parameter then
  /// count as its first. For a batch that failed, whose changes nobody has read.
  static void forget(BoundsTracker& tracker) noexcept { tracker.forget(); }
  static void forget(ModifiedQuantityTracker& tracker) noexcept { tracker.forget(); }
};

}  // namespace tarn
