#pragma once

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
  friend bool operator<(Item const& a, Item const& b) noexcept {
    return a.path != b.path ? a.path < b.path : a.name < b.name;
  }
  friend bool operator==(Item const&, Item const&) = default;
};

}  // namespace tarn::session
