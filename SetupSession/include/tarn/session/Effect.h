#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ParamAllowedValues.h>
#include <tarn/session/Item.h>
#include <tarn/session/Waiting.h>

namespace tarn::session {

/// A parameter that came, went or has another value. `before` is empty when it came, `after` when it went.
struct TARN_EXPORT ValueChange {
  std::string path;
  std::string name;
  std::optional<std::string> before;
  std::optional<std::string> after;
  friend bool operator==(ValueChange const&, ValueChange const&) = default;
};

/// A parameter whose allowed values, or whose subset of them, changed.
struct TARN_EXPORT ChoicesChange {
  std::string path;
  std::string name;
  ParamAllowedValues before;
  ParamAllowedValues after;
  friend bool operator==(ChoicesChange const& a, ChoicesChange const& b) {
    return a.path == b.path && a.name == b.name && a.before.isEqualTo(b.before) && a.after.isEqualTo(b.after);
  }
};

/// A parameter whose bounds changed. A bound that does not exist is "".
struct TARN_EXPORT BoundsChange {
  using Bounds = std::pair<std::string, std::string>;
  std::string path;
  std::string name;
  Bounds before;
  Bounds after;
  friend bool operator==(BoundsChange const&, BoundsChange const&) = default;
};

/// A parameter whose default or quantity type changed. "" means that there is none.
struct TARN_EXPORT TextChange {
  std::string path;
  std::string name;
  std::string before;
  std::string after;
  friend bool operator==(TextChange const&, TextChange const&) = default;
};

/// A change of what waits. `before` is empty when the item did not wait, `after` when it does not wait any more: it is
/// in force then, or nobody asks for it.
struct TARN_EXPORT WaitingChange {
  Item item;
  std::optional<Waiting> before;
  std::optional<Waiting> after;
  friend bool operator==(WaitingChange const&, WaitingChange const&) = default;
};

/// The net effect of one or several edits: how the state after them differs from the state before. An item that came
/// and went in between is not listed, and neither is what changed and changed back.
///
/// Each list is sorted by path and name, and names an item once.
///
/// `choices`, `bounds`, `defaults` and `quantities` are about parameters that are present or on offer both before and
/// after. Those of a parameter that came can be read from `Session::lookParam`.
struct TARN_EXPORT Effect {
  /// Parameters that came, went, or have another value.
  std::vector<ValueChange> values;
  std::vector<ChoicesChange> choices;
  /// Changes of present numeric parameters.
  std::vector<BoundsChange> bounds;
  std::vector<TextChange> defaults;
  /// The quantity types of present numeric parameters.
  std::vector<TextChange> quantities;
  /// Items that the user can switch on now and could not before. An item that was switched off is one of them.
  std::vector<Item> offersGained;
  /// Items that the user could switch on before and cannot now. An item that was switched on is one of them.
  std::vector<Item> offersLost;
  /// All objects that came, also those inside other new objects.
  std::vector<std::string> objectsCreated;
  /// All objects that went, also those inside other deleted objects.
  std::vector<std::string> objectsDeleted;
  /// Requests that began to wait, wait no longer, or wait with another value or for another reason.
  std::vector<WaitingChange> waiting;

  [[nodiscard]] bool empty() const noexcept { return size() == 0; }
  /// The number of all entries.
  [[nodiscard]] std::size_t size() const noexcept;
  /// The effect of taking the edits back: before and after are exchanged.
  [[nodiscard]] Effect reversed() const;
  friend bool operator==(Effect const&, Effect const&) = default;
};

}  // namespace tarn::session
