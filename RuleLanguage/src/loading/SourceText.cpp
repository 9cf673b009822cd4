#include "loading/SourceText.h"

#include <algorithm>

namespace tarn::rules {

namespace {

bool continuesCharacter(char c) noexcept {
  return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

}  // namespace

std::size_t characterCount(std::string_view text) noexcept {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return !continuesCharacter(c); }));
}

std::size_t characterOffset(std::string_view text, std::size_t count) noexcept {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (continuesCharacter(text[i])) continue;
    if (count == 0) return i;
    --count;
  }
  return text.size();
}

SourceText::SourceText(std::string name, std::string text) : name_(std::move(name)), text_(std::move(text)) {
  if (text_.starts_with("\xEF\xBB\xBF")) text_.erase(0, 3);
  lineStarts_.push_back(0);
  for (std::size_t i = 0; i < text_.size(); ++i) {
    if (text_[i] == '\n' || (text_[i] == '\r' && (i + 1 == text_.size() || text_[i + 1] != '\n'))) {
      lineStarts_.push_back(i + 1);
    }
  }
}

std::string_view SourceText::line(std::size_t number) const noexcept {
  if (number == 0 || number > lineStarts_.size()) return {};
  std::size_t const begin = lineStarts_[number - 1];
  std::size_t end = number < lineStarts_.size() ? lineStarts_[number] : text_.size();
  while (end > begin && (text_[end - 1] == '\n' || text_[end - 1] == '\r')) --end;
  return std::string_view(text_).substr(begin, end - begin);
}

Place SourceText::placeOf(std::size_t offset) const noexcept {
  offset = std::min(offset, text_.size());
  auto const next = std::upper_bound(lineStarts_.begin(), lineStarts_.end(), offset);
  auto const number = static_cast<std::size_t>(next - lineStarts_.begin());
  std::size_t const begin = lineStarts_[number - 1];
  return {number, characterCount(std::string_view(text_).substr(begin, offset - begin)) + 1};
}

std::size_t SourceText::offsetOf(Place place) const noexcept {
  if (place.line == 0) return 0;
  if (place.line > lineStarts_.size()) return text_.size();
  return lineStarts_[place.line - 1] + characterOffset(line(place.line), place.column - 1);
}

}  // namespace tarn::rules
