// YAML in block style is divided by indentation. This finds the lines of an entry without reading them as YAML.

#include "yaml/YamlRecovery.h"

#include <algorithm>

#include <tarn/StringUtilities.h>

#include "yaml/YamlAdvice.h"

namespace tarn::rules {

namespace {

/// A line without its indentation, its comment and the blanks at its end.
std::string_view contentOf(std::string_view line) {
  line = StringUtilities::trimmed(line);
  if (line.starts_with('#')) return {};
  return StringUtilities::trimmed(line.substr(0, line.find(" #")));
}

}  // namespace

std::size_t YamlFailure::first() const noexcept {
  std::size_t result = line;
  for (std::size_t const other : {openLine, quoteLine}) {
    if (other != 0) result = std::min(result, other);
  }
  return result;
}

bool YamlRecovery::isEmpty(std::size_t line) const {
  return leftOut_[line] || contentOf(source_.line(line)).empty();
}

std::size_t YamlRecovery::indentOf(std::size_t line) const {
  auto const text = source_.line(line);
  return std::min(text.find_first_not_of(' '), text.size());
}

bool YamlRecovery::isIndentedWithTab(std::size_t line) const {
  auto const text = source_.line(line);
  std::size_t const indent = indentOf(line);
  return indent < text.size() && text[indent] == '\t';
}

bool YamlRecovery::isLeftOut(std::size_t first, std::size_t end) const {
  for (std::size_t line = first; line < end; ++line) {
    if (!isEmpty(line)) return false;
  }
  return true;
}

std::size_t YamlRecovery::parentOf(std::size_t line) const {
  std::size_t const indent = indentOf(line);
  while (--line != noParent) {
    if (!isEmpty(line) && indentOf(line) < indent) return line;
  }
  return noParent;
}

std::size_t YamlRecovery::lastOf(std::size_t line) const {
  // The indentation of these lines says nothing about what belongs to them.
  if (isConflictMarker(source_.line(line))) {
    // The second of two versions goes as a whole: the first is read instead.
    bool const isMiddle = source_.line(line).starts_with("=======");
    while (isMiddle && line < source_.lineCount() && !source_.line(line).starts_with(">>>>>>> ")) ++line;
    return line;
  }
  if (isIndentedWithTab(line)) {
    while (line < source_.lineCount() && isIndentedWithTab(line + 1)) ++line;
    return line;
  }
  auto const content = contentOf(source_.line(line));
  // Nothing continues a closed bracket. Lines below it are only indented deeper when its own indentation is wrong.
  bool const isClosed = content.ends_with('}') || content.ends_with(']');
  if (isClosed && content.find_first_of("{[") < content.size()) return line;
  // Below a key without a value, the first line shows how deep its entries are.
  bool const isKey = content.ends_with(':') && !content.starts_with('-');
  std::size_t least = indentOf(line) + 1;
  std::size_t last = line;
  for (std::size_t next = line + 1; next <= source_.lineCount(); ++next) {
    if (isEmpty(next)) continue;
    if (indentOf(next) < least) break;
    if (isKey && last == line) least = indentOf(next);
    last = next;
  }
  return last;
}

YamlRecovery::Lines YamlRecovery::entryAt(std::size_t line) const {
  line = std::clamp<std::size_t>(line, 1, std::max<std::size_t>(source_.lineCount(), 1));
  while (line > 1 && isEmpty(line)) --line;
  Lines lines{line, lastOf(line)};
  for (std::size_t parent = parentOf(lines.first); parent != noParent; parent = parentOf(lines.first)) {
    auto const content = contentOf(source_.line(parent));
    bool const hasValue = !content.ends_with(':') && !content.starts_with("- ") && content != "-";
    std::size_t const end = lastOf(parent);
    bool hasMore = false;
    for (std::size_t i = parent + 1; i <= end && !hasMore; ++i) {
      hasMore = !isEmpty(i) && (i < lines.first || i > lines.last);
    }
    // A key without anything below it would have an empty value, which can be another mistake.
    if (!hasValue && hasMore) break;
    lines = {parent, std::max(end, lines.last)};
  }
  return lines;
}

std::vector<YamlRecovery::Lines> YamlRecovery::candidates(YamlFailure const& failure) const {
  std::vector<Lines> result;
  for (std::size_t const line : {failure.quoteLine, failure.openLine, failure.line}) {
    if (line != 0) result.push_back(entryAt(line));
  }
  for (std::size_t parent = parentOf(result.back().first); parent != noParent; parent = parentOf(parent)) {
    result.push_back(entryAt(parent));
  }
  return result;
}

std::string YamlRecovery::textWithout(Lines const& lines) const {
  std::string text = source_.text();
  for (std::size_t line = 1; line <= source_.lineCount(); ++line) {
    if (!leftOut_[line] && (line < lines.first || line > lines.last)) continue;
    std::size_t const begin = source_.offsetOf({line, 1});
    std::fill_n(text.begin() + static_cast<std::ptrdiff_t>(begin), source_.line(line).size(), ' ');
  }
  return text;
}

void YamlRecovery::leaveOut(Lines const& lines) {
  for (std::size_t parent = parentOf(lines.first); parent != noParent; parent = parentOf(parent)) above_.insert(parent);
  for (std::size_t line = lines.first; line <= lines.last; ++line) {
    leftOut_[line] = true;
    auto const text = source_.line(line);
    for (std::size_t at = text.find('&'); at != std::string_view::npos; at = text.find('&', at + 1)) {
      std::size_t const end = std::min(text.find_first_of(" \t,[]{}", at), text.size());
      anchors_.emplace(text.substr(at + 1, end - at - 1));
    }
  }
}

}  // namespace tarn::rules
