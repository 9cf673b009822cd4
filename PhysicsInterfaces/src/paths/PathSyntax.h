#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn::path_syntax {

/// The fault of a text, and its position. There is no fault if `reason` is null.
struct Fault {
  char const* reason = nullptr;
  std::size_t offset = 0;  // in bytes from the start of the text

  explicit operator bool() const noexcept { return reason != nullptr; }
};

/// The first fault of a path that is not the root. So "" and "/" are faults here.
[[nodiscard]] Fault findFault(std::string_view path) noexcept;

/// `text` between double quotes for a message: cut in the middle when it is long, control characters shown as "?".
[[nodiscard]] std::string shown(std::string_view text);

}  // namespace tarn::path_syntax
