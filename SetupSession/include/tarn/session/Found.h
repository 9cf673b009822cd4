#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <tarn/Export.h>
#include <tarn/session/Item.h>

namespace tarn::session {

/// How a name matches the text that was searched for, the best match first. Case does not matter.
enum class MatchKind : int {
  /// The whole name.
  Exact = 0,
  /// The beginning of the name.
  Prefix = 1,
  /// The beginning of a word of the name.
  Word = 2,
  /// Any part of the name.
  Substring = 3
};

/// How `name` matches `text`; nothing when it does not contain it. An empty text matches nothing. Upper and lower case
/// are the same, and white space at the ends of `text` is ignored. Linear in the length of both.
[[nodiscard]] TARN_EXPORT std::optional<MatchKind> matchOf(std::string_view name, std::string_view text);

/// An item that a search has found.
struct TARN_EXPORT Found {
  Item item;
  MatchKind match = MatchKind::Exact;
  /// The item is in the result. Otherwise it is a parameter that its present object could have.
  bool present = false;
  friend bool operator==(Found const&, Found const&) = default;
};

}  // namespace tarn::session
