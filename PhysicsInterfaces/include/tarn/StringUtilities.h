#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Export.h>

/// Helpers for texts. None depends on the locale: white space is what `isspace` accepts in the "C" locale.
namespace tarn::StringUtilities {

/// Returns whether `path` is `root` or is below it. Whole components are compared: `/A:xy` is not below `/A:x`. Every
/// path is below the root of the tree, "" or "/".
[[nodiscard]] TARN_EXPORT bool isPathRootedAt(std::string const& root, std::string const& path) noexcept;

/// Returns whether the first `n` bytes of the two texts are equal. A shorter text is compared as a whole.
[[nodiscard]] TARN_EXPORT bool leadingSubstrEqual(std::string const& a, std::string const& b,
                                                  unsigned long long n) noexcept;

/// Splits a parameter path at its last "/". A text without "/" is a name at the root. Either result may be null.
TARN_EXPORT void splitPathName(std::string const& paramPath, std::string* objPath, std::string* name);

/// The text without white space at its ends.
[[nodiscard]] TARN_EXPORT std::string removeWhitespace(std::string const& text);
[[nodiscard]] TARN_EXPORT std::string_view trimmed(std::string_view text) noexcept;

/// Splits `value` at every `delimiter`. Keeps empty items and trims nothing. An empty text has no items.
[[nodiscard]] TARN_EXPORT std::vector<std::string> splitValue(std::string const& value, char delimiter);

/// As `splitValue`, but removes white space from the ends of each item.
[[nodiscard]] TARN_EXPORT std::vector<std::string> stringToVector(std::string const& text, char delimiter);

/// Joins the items, with `delimiter` between them.
[[nodiscard]] TARN_EXPORT std::string vectorToString(std::vector<std::string> const& items, char delimiter);

/// The candidate that was probably meant by the misspelt `text`: one that differs only in the case of letters, or in a
/// few characters. Empty if there is none. Linear in the number of candidates; see `NearMatches` for many texts.
[[nodiscard]] TARN_EXPORT std::string nearMatch(std::string_view text, std::vector<std::string> const& candidates);

/// Reads a yes/no word in any case: true for "yes", "true" and "on", false for "no", "false" and "off". Empty for any
/// other text, also for one with white space at its ends.
[[nodiscard]] TARN_EXPORT std::optional<bool> asYesNo(std::string_view word) noexcept;

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

/// True when the texts are equal or differ only in the case of letters.
[[nodiscard]] TARN_EXPORT bool equalIgnoringCase(std::string_view a, std::string_view b) noexcept;

}  // namespace tarn::StringUtilities
