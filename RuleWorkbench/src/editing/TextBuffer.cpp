#include "editing/TextBuffer.h"

#include <algorithm>
#include <utility>

namespace tarn::workbench {

namespace {

/// Adds the beginnings of the lines that follow a line end in `text` from `begin` to `end`.
void addLineStarts(std::string_view text, std::size_t begin, std::size_t end, std::vector<std::size_t>& starts) {
  for (std::size_t at = text.find_first_of("\r\n", begin); at < end; at = text.find_first_of("\r\n", at)) {
    bool const isPair = text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n';
    at += isPair ? 2 : 1;
    starts.push_back(at);
  }
}

}  // namespace

TextBuffer::TextBuffer(std::string text) : text_(std::move(text)) {
  lineStarts_.push_back(0);
  addLineStarts(text_, 0, text_.size(), lineStarts_);
}

std::size_t TextBuffer::lineStart(std::size_t number) const noexcept {
  return number < lineStarts_.size() ? lineStarts_[number] : text_.size();
}

std::string_view TextBuffer::line(std::size_t number) const noexcept {
  if (number >= lineStarts_.size()) return {};
  std::size_t const begin = lineStarts_[number];
  std::string_view line = std::string_view(text_).substr(begin, lineStart(number + 1) - begin);
  while (line.ends_with('\n') || line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

EditorPosition TextBuffer::positionOf(std::size_t offset) const noexcept {
  offset = std::min(offset, text_.size());
  auto const next = std::upper_bound(lineStarts_.begin(), lineStarts_.end(), offset);
  auto const number = static_cast<std::size_t>(next - lineStarts_.begin()) - 1;
  return {number, std::min(offset - lineStarts_[number], line(number).size())};
}

std::size_t TextBuffer::offsetOf(EditorPosition position) const noexcept {
  if (position.line >= lineStarts_.size()) return text_.size();
  return lineStarts_[position.line] + std::min(position.byte, line(position.line).size());
}

EditorRange TextBuffer::rangeOf(Span span) const noexcept {
  return {positionOf(span.begin), positionOf(span.end)};
}

void TextBuffer::replace(Span span, std::string_view text) {
  span.begin = std::min(span.begin, text_.size());
  span.end = std::clamp(span.end, span.begin, text_.size());
  // A pair of "\r" and "\n" may come together or be divided at the ends, so the neighbours are looked at again.
  std::size_t const from = span.begin > 0 ? span.begin - 1 : 0;
  std::size_t const formerEnd = std::min(span.end + 1, text_.size());
  text_.replace(span.begin, span.size(), text);
  std::size_t const end = formerEnd - span.size() + text.size();

  auto const first = std::upper_bound(lineStarts_.begin(), lineStarts_.end(), from);
  auto const last = std::upper_bound(first, lineStarts_.end(), formerEnd);
  std::vector<std::size_t> starts;
  addLineStarts(text_, from, end, starts);
  // A pair at the very end begins the next line one byte later than the range says.
  std::size_t const behind = starts.empty() ? 0 : starts.back();
  auto const shift = text.size() - span.size();  // modulo the size of the type
  auto next = last;
  for (auto it = last; it != lineStarts_.end(); ++it) *it += shift;
  while (next != lineStarts_.end() && *next <= behind) ++next;
  auto const index = static_cast<std::size_t>(first - lineStarts_.begin());
  lineStarts_.erase(first, next);
  lineStarts_.insert(lineStarts_.begin() + static_cast<std::ptrdiff_t>(index), starts.begin(), starts.end());
}

}  // namespace tarn::workbench
