#pragma once

#include <compare>
#include <optional>
#include <string>

#include <tarn/Export.h>

namespace tarn::session {

/// Names an object, or one of its parameters.
struct TARN_EXPORT Item {
  /// The path of the object; "" is the root of the model.
  std::string path;
  /// The parameter. Empty when the item is the object itself.
  std::optional<std::string> name;

  [[nodiscard]] bool isParam() const noexcept { return name.has_value(); }
  /// The path of the item: for a parameter the path of its object, "/" and its name.
  [[nodiscard]] std::string text() const;

  /// By path; an object comes before its parameters.
  // NOLINTNEXTLINE(modernize-use-nullptr): a comparison with 0 that the compiler writes
  friend auto operator<=>(Item const&, Item const&) = default;
};

}  // namespace tarn::session
