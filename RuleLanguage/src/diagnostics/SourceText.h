#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::rules {

/// A position in a text. Line and column count from 1; the column counts characters.
struct Place {
  std::size_t line = 1;
  std::size_t column = 1;
};

/// The characters from `begin` up to, but not including, `end`. Empty when the two are equal.
struct SourceRange {
  Place begin;
  Place end;
};

/// `length` characters from `begin`, all in its line.
[[nodiscard]] constexpr SourceRange rangeFrom(Place begin, std::size_t length) noexcept {
  return {begin, {begin.line, begin.column + length}};
}

/// The text of one rule file, divided into lines. All positions in a file are computed here.
class SourceText {
 public:
  SourceText(std::string name, std::string text);

  [[nodiscard]] std::string const& name() const noexcept { return *name_; }
  /// The same, for whoever keeps it longer than the text.
  [[nodiscard]] std::shared_ptr<std::string const> const& sharedName() const noexcept { return name_; }
  /// The whole text, without a byte order mark.
  [[nodiscard]] std::string const& text() const noexcept { return text_; }
  [[nodiscard]] std::size_t lineCount() const noexcept { return lineStarts_.size(); }

  /// A line without its end; empty after the last line.
  [[nodiscard]] std::string_view line(std::size_t number) const noexcept;
  /// The position of a byte, and the byte at a position. Both take logarithmic time, also in a line of megabytes.
  [[nodiscard]] Place placeOf(std::size_t offset) const noexcept;
  [[nodiscard]] std::size_t offsetOf(Place place) const noexcept;

 private:
  [[nodiscard]] std::size_t charactersBefore(std::size_t offset) const noexcept;

  std::shared_ptr<std::string const> name_;
  std::string text_;
  std::vector<std::size_t> lineStarts_;
  std::vector<std::size_t> counted_;  // the characters before each block of bytes
};

/// The number of characters in `text`.
[[nodiscard]] std::size_t characterCount(std::string_view text) noexcept;
/// The byte at which character `count` begins, counted from 0; the size of `text` when it has no more characters.
[[nodiscard]] std::size_t characterOffset(std::string_view text, std::size_t count) noexcept;

}  // namespace tarn::rules
