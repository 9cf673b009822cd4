#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn::tool {

/// The text for a terminal. Control characters, marks of writing direction and bytes that are not UTF-8 are replaced by
/// their bytes as "\x1B", because they could move the cursor or swap what is around them.
[[nodiscard]] std::string harmless(std::string_view text);

/// `harmless`, and shortened with "..." if it has more than `most` characters. 0 means `mostShown`.
[[nodiscard]] std::string shortened(std::string_view text, std::size_t most = 0);

/// A longer value is shortened wherever it is not the subject.
inline constexpr std::size_t mostShown = 200;

/// The number of characters of UTF-8 text.
[[nodiscard]] std::size_t charactersOf(std::string_view text) noexcept;

/// The text with blanks at its end, so that it has at least `characters` characters.
[[nodiscard]] std::string padded(std::string text, std::size_t characters);

}  // namespace tarn::tool
