#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/Export.h>
#include <tarn/session/EditResult.h>
#include <tarn/session/Item.h>

namespace tarn::session {

/// One step of the history: the edits that were made as one.
struct TARN_EXPORT Step {
  /// From 1.
  std::size_t number = 0;
  /// The edits as they were given.
  std::vector<Edit> edits;
  /// The edits as they were made, see `EditResult::made`.
  std::vector<Edit> made;
  std::vector<Conversion> conversions;
  std::vector<FollowedReference> followed;
  friend bool operator==(Step const&, Step const&) = default;
};

/// A value that the user has set in this session and that no later edit has replaced.
struct TARN_EXPORT OwnValue {
  Item item;
  std::string value;
  /// The step that set it last.
  std::size_t step = 0;
  /// The value is in force. Otherwise it waits, or the rules have replaced it.
  bool inForce = false;
  friend bool operator==(OwnValue const&, OwnValue const&) = default;
};

/// How one item of the result differs from the model that was opened.
struct TARN_EXPORT Difference {
  Item item;
  /// For parameters. Empty when the model, or the result, does not have the parameter, and for objects.
  std::optional<std::string> inModel;
  std::optional<std::string> now;
  /// For objects: the result has it, and the model does not. Otherwise the other way round.
  bool isNewObject = false;
  friend bool operator==(Difference const&, Difference const&) = default;
};

}  // namespace tarn::session
