// Finds a scalar's characters in the file by walking over both texts side by side. This sees through quotes, escapes,
// folded lines and indentation without knowing the folding rules of YAML: the two texts differ only in white space,
// quotes and escapes.

#include "yaml/ScalarText.h"

#include <algorithm>
#include <utility>

#include <tarn/StringUtilities.h>

namespace tarn::rules {

namespace {

using Style = YamlNode::Style;

/// The number of bytes that an escape of a double-quoted scalar takes in the file, and of what it produces in the text.
std::pair<std::size_t, std::size_t> escapeLengths(std::string_view raw, std::string_view value) {
  std::size_t length = 2;
  if (raw.size() > 1) {
    if (raw[1] == 'x') length = 4;
    if (raw[1] == 'u') length = 6;
    if (raw[1] == 'U') length = 10;
  }
  std::size_t produced = 1;
  while (produced < value.size() && (static_cast<unsigned char>(value[produced]) & 0xC0) == 0x80) ++produced;
  return {std::min(length, raw.size()), produced};
}

/// The byte at which a scalar itself begins: after the anchor and the tag, which belong to its node.
std::size_t afterProperties(std::string_view file, std::size_t at) {
  auto const skip = [&](bool blanks) {
    while (at < file.size() && StringUtilities::isSpace(file[at]) == blanks) ++at;
  };
  while (at < file.size() && (file[at] == '&' || file[at] == '!')) {
    skip(false);
    skip(true);
  }
  return at;
}

/// The byte of the file at which byte `offset` of the scalar's text is written.
std::size_t findInScalar(SourceText const& source, YamlNode const& scalar, std::size_t offset, ScalarWalk* walk) {
  std::string_view const value = scalar.value;
  std::string_view const file = source.text();
  std::size_t at = afterProperties(file, source.offsetOf(scalar.place()));
  if (scalar.style == Style::Plain && scalar.line == scalar.endLine) return at + offset;

  // Walks the file and the text side by side. White space may differ between the two, everything else is the same.
  if (scalar.style == Style::SingleQuoted || scalar.style == Style::DoubleQuoted) ++at;
  if (scalar.style == Style::Literal || scalar.style == Style::Folded) {
    at = source.offsetOf({source.placeOf(at).line + 1, 1});
  }
  std::size_t done = 0;
  if (walk != nullptr && walk->scalar == &scalar && walk->offset <= offset) {
    at = walk->at;
    done = walk->done;
  }
  while (at < file.size()) {
    char const raw = file[at];
    char const wanted = done < value.size() ? value[done] : '\0';
    if (scalar.style == Style::DoubleQuoted && raw == '\\') {
      if (at + 1 < file.size() && (file[at + 1] == '\n' || file[at + 1] == '\r')) {
        ++at;
        continue;
      }
      if (done >= offset) break;
      auto const [taken, produced] = escapeLengths(file.substr(at), value.substr(done));
      at += taken;
      done += produced;
    } else if (raw == wanted && done < value.size()) {
      if (done >= offset) break;
      at += scalar.style == Style::SingleQuoted && raw == '\'' ? 2 : 1;
      ++done;
    } else if (StringUtilities::isSpace(raw)) {
      if (done >= offset && offset == value.size()) break;
      ++at;
    } else if (StringUtilities::isSpace(wanted) && done < offset) {
      ++done;
    } else {
      break;
    }
  }
  if (walk != nullptr) *walk = {&scalar, offset, at, done};
  return at;
}

/// The number of bytes by which the file writes the character of the text at `value`.
std::size_t writtenLength(Style style, std::string_view file, std::string_view value) {
  if (style == Style::DoubleQuoted && file.starts_with('\\')) return escapeLengths(file, value).first;
  if (style == Style::SingleQuoted && file.starts_with("''")) return 2;
  return std::min(characterOffset(file.substr(0, 4), 1), file.size());
}

}  // namespace

SourceRange rangeInScalar(SourceText const& source, YamlNode const& scalar, std::size_t offset, std::size_t length,
                          ScalarWalk* walk) {
  std::string_view const value = scalar.value;
  offset = std::min(offset, value.size());
  std::size_t const begin = findInScalar(source, scalar, offset, walk);
  length = std::min(length, value.size() - offset);
  while (length > 0 && value[offset + length - 1] == '\n') --length;  // no mark in the next line
  if (length == 0) return {source.placeOf(begin), source.placeOf(begin)};

  // The end is the end of the last character, not the beginning of the next one: that may be lines below.
  std::size_t last = offset + length - 1;
  while (last > offset && (static_cast<unsigned char>(value[last]) & 0xC0) == 0x80) --last;
  std::size_t const at = last == offset ? begin : findInScalar(source, scalar, last, walk);
  std::string_view const file = source.text();
  std::size_t const written = writtenLength(scalar.style, file.substr(std::min(at, file.size())), value.substr(last));
  return {source.placeOf(begin), source.placeOf(at + written)};
}

std::optional<std::string> writtenInScalar(YamlNode const& scalar, std::size_t offset, std::size_t length,
                                           std::string_view text) {
  auto const isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
  if (std::any_of(text.begin(), text.end(), isControl)) return std::nullopt;
  auto const doubled = [&](std::string_view marked, char before) {
    std::string result;
    for (char const c : text) {
      if (marked.find(c) != std::string_view::npos) result += before == '\0' ? c : before;
      result += c;
    }
    return result;
  };
  switch (scalar.style) {
    case Style::SingleQuoted:
      return doubled("'", '\0');
    case Style::DoubleQuoted:
      return doubled("\"\\", '\\');
    case Style::Literal:
    case Style::Folded:
      return std::string(text);
    case Style::Plain:
      break;
  }
  // A plain scalar must stay plain and keep its beginning and its end. The characters that may end it depend on where
  // it is written. So such a character is accepted only when the replaced text has it too.
  std::string_view const value = scalar.value;
  std::string_view const former = value.substr(std::min(offset, value.size()), length);
  bool const atBegin = offset == 0;
  bool const atEnd = offset + length >= value.size();
  constexpr std::string_view indicators = "-?:,[]{}#&*!|>'\"%@` ";
  if (text.empty() && (atBegin || atEnd)) return std::nullopt;
  if (atBegin && indicators.find(text.front()) != std::string_view::npos) return std::nullopt;
  if (atEnd && (text.back() == ' ' || text.back() == ':')) return std::nullopt;
  for (std::string_view const ending : {": ", " #"}) {
    if (text.find(ending) != std::string_view::npos) return std::nullopt;
  }
  for (char const c : std::string_view(",[]{}#")) {
    if (text.find(c) != std::string_view::npos && former.find(c) == std::string_view::npos) return std::nullopt;
  }
  return std::string(text);
}

}  // namespace tarn::rules
