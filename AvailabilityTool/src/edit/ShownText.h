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

/// The text without line breaks in it: `wrapped` does not divide it, so that it can be copied as a whole. Its blanks
/// are replaced by a control character, which `wrapped` turns back.
[[nodiscard]] std::string unbroken(std::string text);

/// Lines for a terminal of that width: a line that is longer is divided between words, and what follows is indented. A
/// word that is longer than a line stays whole. Colours take no room. With a width of 0 nothing is divided.
[[nodiscard]] std::string wrapped(std::string_view text, std::size_t width);

/// The text with blanks at its end, so that it has at least `characters` characters.
[[nodiscard]] std::string padded(std::string text, std::size_t characters);

}  // namespace tarn::tool
