// Names and values come from files and from users, and a terminal acts on some of their bytes. Nothing reaches it raw.
#include "edit/ShownText.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace tarn::tool {

namespace {

/// The character of UTF-8 at the start of a text. Its length is 0 if there is none.
struct Character {
  std::uint32_t code = 0;
  std::size_t length = 0;
};

Character firstOf(std::string_view text) noexcept {
  auto const byte = [&](std::size_t i) { return static_cast<std::uint32_t>(static_cast<unsigned char>(text[i])); };
  std::uint32_t const lead = byte(0);
  if (lead < 0x80) return {lead, 1};
  std::size_t const length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return {};
  std::uint32_t code = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80) return {};
    code = (code << 6U) | (byte(i) & 0x3FU);
  }
  constexpr std::array<std::uint32_t, 5> least = {0, 0, 0x80, 0x800, 0x10000};
  bool const isSurrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < least[length] || code > 0x10FFFF || isSurrogate) return {};
  return {code, length};
}

bool isHarmful(std::uint32_t code) noexcept {
  bool const isControl = code < 0x20 || (code >= 0x7F && code < 0xA0);
  bool const isLineEnd = code == 0x2028 || code == 0x2029;
  bool const isDirection = code == 0x061C || code == 0x200E || code == 0x200F || (code >= 0x202A && code <= 0x202E) ||
                           (code >= 0x2066 && code <= 0x2069);
  return isControl || isLineEnd || isDirection;
}

/// Calls `show(text)` with each character as it is shown, until it returns false.
template <typename Show>
void forEachShown(std::string_view text, Show const& show) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  while (!text.empty()) {
    Character const first = firstOf(text);
    std::size_t const length = first.length == 0 ? 1 : first.length;
    if (first.length != 0 && !isHarmful(first.code)) {
      if (!show(text.substr(0, length))) return;
    } else {
      for (std::size_t i = 0; i < length; ++i) {
        auto const byte = static_cast<unsigned char>(text[i]);
        std::array<char, 4> const escape = {'\\', 'x', digits[byte >> 4U], digits[byte & 0xFU]};
        if (!show(std::string_view(escape.data(), escape.size()))) return;
      }
    }
    text.remove_prefix(length);
  }
}

}  // namespace

std::string harmless(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  forEachShown(text, [&](std::string_view shown) {
    result += shown;
    return true;
  });
  return result;
}

std::string shortened(std::string_view text, std::size_t most) {
  if (most == 0) most = mostShown;
  constexpr std::string_view dots = "...";
  std::string result;
  std::size_t cut = 0;  // where the dots would go
  std::size_t count = 0;
  bool isCut = false;
  forEachShown(text, [&](std::string_view shown) {
    count += charactersOf(shown);
    if (count + dots.size() <= most) cut = result.size() + shown.size();
    isCut = count > most;
    if (!isCut) result += shown;
    return !isCut;
  });
  if (!isCut) return result;
  result.resize(cut);
  return result += dots;
}

std::size_t charactersOf(std::string_view text) noexcept {
  std::size_t count = 0;
  for (char const c : text) count += (static_cast<unsigned char>(c) & 0xC0U) != 0x80 ? 1 : 0;
  return count;
}

namespace {

constexpr char keptBlank = '\x1F';

/// The number of columns of a text that may have colours in it.
std::size_t columnsOf(std::string_view text) noexcept {
  std::size_t count = 0;
  while (!text.empty()) {
    if (text.front() == '\x1B') {
      std::size_t const end = text.find('m');
      text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
      continue;
    }
    count += charactersOf(text.substr(0, 1));
    text.remove_prefix(1);
  }
  return count;
}

/// Appends a line, divided.
void wrapLine(std::string& result, std::string_view line, std::size_t width) {
  std::size_t const margin = std::min(line.find_first_not_of(' '), line.size());
  constexpr std::size_t furtherIn = 4;
  constexpr std::size_t leastRoom = 20;
  std::size_t const indent = margin + furtherIn + leastRoom > width ? 0 : margin + furtherIn;
  std::size_t used = margin;
  result.append(margin, ' ');
  line.remove_prefix(margin);
  bool isFirst = true;  // of its row
  while (!line.empty()) {
    std::size_t const blanks = std::min(line.find_first_not_of(' '), line.size());
    std::size_t const end = std::min(line.find(' ', blanks), line.size());
    std::string_view const word = line.substr(blanks, end - blanks);
    std::size_t const columns = columnsOf(word);
    if (!isFirst && used + blanks + columns > width) {
      result += '\n';
      result.append(indent, ' ');
      used = indent;
    } else {
      result.append(blanks, ' ');
      used += blanks;
    }
    result += word;
    used += columns;
    isFirst = false;
    line.remove_prefix(end);
  }
}

}  // namespace

std::string unbroken(std::string text) {
  std::replace(text.begin(), text.end(), ' ', keptBlank);
  return text;
}

std::string wrapped(std::string_view text, std::size_t width) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    std::size_t const end = std::min(text.find('\n'), text.size());
    std::string_view const line = text.substr(0, end);
    if (width == 0 || columnsOf(line) <= width) {
      result += line;
    } else {
      wrapLine(result, line, width);
    }
    if (end < text.size()) result += '\n';
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  std::replace(result.begin(), result.end(), keptBlank, ' ');
  return result;
}

std::string padded(std::string text, std::size_t characters) {
  std::size_t const has = charactersOf(text);
  if (has < characters) text.append(characters - has, ' ');
  return text;
}

}  // namespace tarn::tool
