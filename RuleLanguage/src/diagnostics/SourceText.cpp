#include "diagnostics/SourceText.h"

#include <algorithm>

namespace tarn::rules {

namespace {

bool continuesCharacter(char c) noexcept {
  return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

/// The number of bytes of the line end at `at`; 0 where there is none. Besides carriage return and line feed the YAML
/// library ends lines at three characters of Unicode, and positions must agree with it.
std::size_t lineEndLength(std::string_view text, std::size_t at) noexcept {
  switch (text[at]) {
    case '\n':
      return 1;
    case '\r':
      return text.substr(at).starts_with("\r\n") ? 2 : 1;
    case '\xC2':
      return text.substr(at).starts_with("\xC2\x85") ? 2 : 0;
    case '\xE2':
      return text.substr(at).starts_with("\xE2\x80\xA8") || text.substr(at).starts_with("\xE2\x80\xA9") ? 3 : 0;
    default:
      return 0;
  }
}

constexpr std::size_t block = 1024;

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

SourceText::SourceText(std::string name, std::string text)
    : name_(std::make_shared<std::string const>(std::move(name))), text_(std::move(text)) {
  if (text_.starts_with("\xEF\xBB\xBF")) text_.erase(0, 3);
  lineStarts_.push_back(0);
  for (std::size_t i = 0; i < text_.size();) {
    std::size_t const length = lineEndLength(text_, i);
    i += std::max<std::size_t>(length, 1);
    if (length > 0) lineStarts_.push_back(i);
  }
  std::size_t count = 0;
  for (std::size_t i = 0; i <= text_.size(); i += block) {
    counted_.push_back(count);
    count += characterCount(std::string_view(text_).substr(i, block));
  }
}

std::size_t SourceText::charactersBefore(std::size_t offset) const noexcept {
  std::size_t const begin = offset - offset % block;
  return counted_[offset / block] + characterCount(std::string_view(text_).substr(begin, offset - begin));
}

std::string_view SourceText::line(std::size_t number) const noexcept {
  if (number == 0 || number > lineStarts_.size()) return {};
  std::size_t const begin = lineStarts_[number - 1];
  std::size_t const end = number < lineStarts_.size() ? lineStarts_[number] : text_.size();
  auto line = std::string_view(text_).substr(begin, end - begin);
  if (number == lineStarts_.size()) return line;
  // Every line but the last has a line end, which is not part of its text.
  for (std::size_t length = 1; length <= 3; ++length) {
    if (line.size() >= length && lineEndLength(line, line.size() - length) == length) {
      line.remove_suffix(length);
      if (length == 1 && line.ends_with('\r')) line.remove_suffix(1);
      break;
    }
  }
  return line;
}

Place SourceText::placeOf(std::size_t offset) const noexcept {
  offset = std::min(offset, text_.size());
  auto const next = std::upper_bound(lineStarts_.begin(), lineStarts_.end(), offset);
  auto const number = static_cast<std::size_t>(next - lineStarts_.begin());
  return {number, charactersBefore(offset) - charactersBefore(lineStarts_[number - 1]) + 1};
}

std::size_t SourceText::offsetOf(Place place) const noexcept {
  if (place.line == 0) return 0;
  if (place.line > lineStarts_.size()) return text_.size();
  std::size_t const lineBegin = lineStarts_[place.line - 1];
  std::size_t const wanted = charactersBefore(lineBegin) + place.column - 1;
  // Start at the last block with no more characters before it, or at the line when that begins later.
  auto const behind = std::upper_bound(counted_.begin(), counted_.end(), wanted);
  std::size_t const blockBegin = static_cast<std::size_t>(behind - counted_.begin() - 1) * block;
  std::size_t const from = std::max(lineBegin, blockBegin);
  std::size_t const lineEnd = lineBegin + line(place.line).size();
  if (from >= lineEnd) return lineEnd;
  return from + characterOffset(std::string_view(text_).substr(from, lineEnd - from), wanted - charactersBefore(from));
}

}  // namespace tarn::rules
