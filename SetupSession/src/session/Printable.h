#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn::session {

/// The text with control characters and marks of writing direction escaped.
[[nodiscard]] std::string escaped(std::string_view text);
/// The text as sentences show it: escaped, and cut off after `longest` bytes.
[[nodiscard]] std::string printable(std::string_view text, std::size_t longest = 100);

}  // namespace tarn::session
