#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <tarn/Export.h>

/// White space is what `isspace` says in the "C" locale.
namespace tarn::StringUtilities {

/// True when `path` equals `root` or lies below it. The test is on whole components: `/A:x` does not root `/A:xy`.
/// The root of the tree, "" or "/", roots every path.
[[nodiscard]] TARN_EXPORT bool isPathRootedAt(std::string const& root, std::string const& path) noexcept;

/// Whether the first `n` bytes of the two texts agree. A text that is shorter than `n` counts as a whole.
[[nodiscard]] TARN_EXPORT bool leadingSubstrEqual(std::string const& a, std::string const& b,
                                                  unsigned long long n) noexcept;

/// Divides a parameter path at its last "/". A text without one is a name at the root. Either result may be null.
TARN_EXPORT void splitPathName(std::string const& paramPath, std::string* objPath, std::string* name);

/// The text without white space at its ends.
[[nodiscard]] TARN_EXPORT std::string removeWhitespace(std::string const& text);
[[nodiscard]] TARN_EXPORT std::string_view trimmed(std::string_view text) noexcept;

/// Divides `value` at every `delimiter`, keeping empty items and trimming nothing. An empty text has no items.
[[nodiscard]] TARN_EXPORT std::vector<std::string> splitValue(std::string const& value, char delimiter);

/// As `splitValue`, with white space removed from the ends of each item.
[[nodiscard]] TARN_EXPORT std::vector<std::string> stringToVector(std::string const& text, char delimiter);

/// The items, joined by `delimiter`.
[[nodiscard]] TARN_EXPORT std::string vectorToString(std::vector<std::string> const& items, char delimiter);

/// The candidate that `text` is most likely a slip of: the same but for the case of letters, or few edits away. Empty
/// when none is near. Linear in the number of candidates.
[[nodiscard]] TARN_EXPORT std::string nearMatch(std::string_view text, std::vector<std::string> const& candidates);

[[nodiscard]] constexpr bool isSpace(char c) noexcept {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

/// The letter in lower or upper case. Only the letters of ASCII change: the other bytes of a UTF-8 text must stay as
/// they are.
[[nodiscard]] constexpr char toLower(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
[[nodiscard]] constexpr char toUpper(char c) noexcept {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// The text with each letter in lower or upper case.
[[nodiscard]] TARN_EXPORT std::string toLower(std::string text);
[[nodiscard]] TARN_EXPORT std::string toUpper(std::string text);

/// True when the texts are equal but for the case of letters.
[[nodiscard]] TARN_EXPORT bool equalIgnoringCase(std::string_view a, std::string_view b) noexcept;

}  // namespace tarn::StringUtilities
