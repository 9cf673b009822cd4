#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/workbench/EditorAnswers.h>

namespace tarn::workbench {

/// Bytes of a text from `begin` up to, but not including, `end`.
struct Span {
  std::size_t begin = 0;
  std::size_t end = 0;

  [[nodiscard]] std::size_t size() const noexcept { return end - begin; }
  /// Whether a cursor at `offset` touches the span.
  [[nodiscard]] bool touches(std::size_t offset) const noexcept { return offset >= begin && offset <= end; }
};

/// The text of a file that is edited. Lines end as editors end them: at "\n", "\r\n" and "\r".
class TextBuffer {
 public:
  TextBuffer() : TextBuffer(std::string()) {}
  explicit TextBuffer(std::string text);

  [[nodiscard]] std::string const& text() const noexcept { return text_; }
  [[nodiscard]] std::size_t lineCount() const noexcept { return lineStarts_.size(); }
  /// A line without its end; empty after the last line.
  [[nodiscard]] std::string_view line(std::size_t number) const noexcept;
  [[nodiscard]] std::size_t lineStart(std::size_t number) const noexcept;

  [[nodiscard]] EditorPosition positionOf(std::size_t offset) const noexcept;
  [[nodiscard]] std::size_t offsetOf(EditorPosition position) const noexcept;
  [[nodiscard]] EditorRange rangeOf(Span span) const noexcept;

  /// Replaces bytes. Costs the text after them.
  void replace(Span span, std::string_view text);

 private:
  std::string text_;
  std::vector<std::size_t> lineStarts_;
};

}  // namespace tarn::workbench
