#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::rules {

/// A place in a text: line and column from 1, the column in characters.
struct Place {
  std::size_t line = 1;
  std::size_t column = 1;
};

/// The text of one rule file, with its lines. All places in it are made here.
class SourceText {
 public:
  SourceText(std::string name, std::string text);

  [[nodiscard]] std::string const& name() const noexcept { return name_; }
  /// The whole text, without a byte order mark.
  [[nodiscard]] std::string const& text() const noexcept { return text_; }
  [[nodiscard]] std::size_t lineCount() const noexcept { return lineStarts_.size(); }

  /// A line without its end; empty beyond the last.
  [[nodiscard]] std::string_view line(std::size_t number) const noexcept;
  /// The place of a byte, and the byte of a place. Neither takes longer in a line of megabytes.
  [[nodiscard]] Place placeOf(std::size_t offset) const noexcept;
  [[nodiscard]] std::size_t offsetOf(Place place) const noexcept;

 private:
  [[nodiscard]] std::size_t charactersBefore(std::size_t offset) const noexcept;

  std::string name_;
  std::string text_;
  std::vector<std::size_t> lineStarts_;
  std::vector<std::size_t> counted_;  // the characters before each block of so many bytes
};

/// The number of characters in `text`, and the byte at which character `count` begins.
[[nodiscard]] std::size_t characterCount(std::string_view text) noexcept;
[[nodiscard]] std::size_t characterOffset(std::string_view text, std::size_t count) noexcept;

}  // namespace tarn::rules
