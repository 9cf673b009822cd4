#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/Export.h>
#include <tarn/session/Effect.h>
#include <tarn/session/Findings.h>
#include <tarn/session/Refused.h>

namespace tarn::session {

/// A number that was rewritten on entry: it was given in units that its quantity type does not list, or its units had
/// no brackets.
struct TARN_EXPORT Conversion {
  /// The index of the edit among the edits that were given.
  std::size_t index = 0;
  Item item;
  /// As it was given: "25 mm" or "25 [mm]".
  std::string from;
  /// As it was set: "0.025 [m]".
  std::string to;
  friend bool operator==(Conversion const&, Conversion const&) = default;
};

/// A value that followed the renaming of an object whose name it held.
struct TARN_EXPORT FollowedReference {
  Item item;
  std::string before;
  std::string after;
  friend bool operator==(FollowedReference const&, FollowedReference const&) = default;
};

/// The outcome of one or several edits. They are applied as one, or refused as one.
struct TARN_EXPORT EditResult {
  /// Why the edits were refused. Empty when they were applied.
  std::optional<Refused> refused;
  /// The number of the step in the history, from 1. 0 when the edits were refused or only tried.
  std::size_t step = 0;
  /// The edits as they were made: with converted values, and with those that a renaming caused. Empty when refused.
  std::vector<Edit> made;
  std::vector<Conversion> conversions;
  std::vector<FollowedReference> followed;
  /// Empty when the edits were refused.
  Effect effect;

  [[nodiscard]] bool applied() const noexcept { return !refused; }
  friend bool operator==(EditResult const&, EditResult const&) = default;
};

/// The outcome that edits would have: their result, and the findings that would come and go.
struct TARN_EXPORT TryResult {
  EditResult result;
  /// Findings that a review would have after the edits and has not now, and the other way round. Two findings are the
  /// same when their codes, their items and their sentences are. Empty when the edits would be refused.
  std::vector<Finding> findingsGained;
  std::vector<Finding> findingsLost;
};

}  // namespace tarn::session
