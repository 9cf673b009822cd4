#include "editing/FileParts.h"

#include <algorithm>
#include <functional>
#include <unordered_map>
#include <utility>

#include <tarn/StringUtilities.h>

namespace tarn::workbench {

namespace {

/// Files and entries up to this size are not divided.
constexpr std::size_t smallSize = std::size_t{16} << 10;
/// Entries of one part, together.
constexpr std::size_t partSize = std::size_t{4} << 10;
/// An entry is the first of a part with this chance, 1 in so many, when the part before it is large enough.
constexpr std::size_t borderChance = 8;
/// A part is not made larger by another entry.
constexpr std::size_t mostPartSize = std::size_t{64} << 10;

struct Line {
  std::size_t begin = 0;
  std::size_t end = 0;  // without the line end
  std::size_t next = 0;
};

Line lineAt(std::string_view text, std::size_t begin, std::size_t end) {
  std::size_t const lineEnd = std::min(text.find('\n', begin), end);
  return {begin, lineEnd, std::min(lineEnd + 1, end)};
}

/// True for a line that says nothing about structure.
bool isEmptyLine(std::string_view line) {
  std::string_view const content = StringUtilities::trimmed(line);
  return content.empty() || content.front() == '#';
}

std::size_t indentOf(std::string_view line) {
  return std::min(line.find_first_not_of(' '), line.size());
}

/// Whether the rest of a line after a key is nothing but a comment.
bool isOnlyKey(std::string_view line, LineKey const& key) {
  std::string_view const rest = StringUtilities::trimmed(line.substr(key.valueBegin));
  return rest.empty() || rest.front() == '#';
}

/// An anchor is valid in the whole file, so its file must be read as a whole.
bool mayHaveAnchors(std::string_view text) {
  for (std::size_t at = text.find('&'); at != std::string_view::npos; at = text.find('&', at + 1)) {
    std::size_t before = at;
    while (before > 0 && text[before - 1] == ' ') --before;
    bool const isAfterIndicator =
        before == 0 || std::string_view("\n:-,[{").find(text[before - 1]) != std::string_view::npos;
    bool const isName = at + 1 < text.size() && !StringUtilities::isSpace(text[at + 1]) && text[at + 1] != '&';
    if (isAfterIndicator && isName) return true;
  }
  return false;
}

class Divider {
 public:
  explicit Divider(std::string_view text) : text_(text) {}

  std::vector<FilePart> divide() {
    if (text_.size() <= smallSize || isUnusual() || !divideMap({0, text_.size()}, FilePart{})) {
      return {FilePart{{0, text_.size()}, {}}};
    }
    return std::move(parts_);
  }

 private:
  [[nodiscard]] bool isUnusual() const {
    return text_.find('\t') != std::string_view::npos || text_.find('\r') != std::string_view::npos ||
           text_.starts_with("\xEF\xBB\xBF") || text_.starts_with("---") || text_.starts_with("%") ||
           text_.find("\n---") != std::string_view::npos || text_.find("\n...") != std::string_view::npos ||
           mayHaveAnchors(text_);
  }

  /// Whether the value of this key is divided further if it is large.
  [[nodiscard]] static bool canDivide(std::vector<std::string> const& context, std::string const& key) {
    switch (context.size()) {
      case 0:
        return key == "Objects" || key == "Templates";
      case 1:
        return true;
      case 2:
        return key == "Parameters" || key == "Children" || key == "Checks";
      default:
        return false;
    }
  }

  /// Divides the entries of a map in block style. False if it does not look like one.
  bool divideMap(Span span, FilePart const& around) {
    std::vector<std::string> const& context = around.context;
    struct Entry {
      Span span;
      LineKey key;
      bool isOnlyKey = false;
      Span first;  // its first line
    };
    std::vector<Entry> entries;
    std::size_t indent = std::string_view::npos;
    for (Line line = lineAt(text_, span.begin, span.end); line.begin < span.end;
         line = lineAt(text_, line.next, span.end)) {
      std::string_view const content = text_.substr(line.begin, line.end - line.begin);
      if (!isEmptyLine(content)) {
        std::size_t const own = indentOf(content);
        if (indent == std::string_view::npos) indent = own;
        if (own < indent) return false;
        if (own == indent) {
          Entry entry;
          if (!readLineKey(content, entry.key)) return false;
          entry.isOnlyKey = isOnlyKey(content, entry.key);
          entry.span.begin = line.begin;
          entry.first = {line.begin, line.next};
          if (!entries.empty()) entries.back().span.end = line.begin;
          entries.push_back(std::move(entry));
        }
      }
      if (line.next >= span.end) break;
    }
    if (entries.empty()) return false;
    entries.back().span.end = span.end;

    Span open{span.begin, span.begin};
    auto const close = [&] {
      if (open.size() > 0) parts_.push_back({open, context, around.headers});
    };
    for (Entry const& entry : entries) {
      bool const isLarge = entry.span.size() > smallSize && entry.isOnlyKey && canDivide(context, entry.key.key);
      std::string_view const firstLine = text_.substr(entry.first.begin, entry.first.size());
      bool const isBorder = std::hash<std::string_view>{}(firstLine) % borderChance == 0;
      if (open.size() > 0 &&
          (isLarge || (isBorder && open.size() > partSize) || open.size() + entry.span.size() > mostPartSize)) {
        open.end = entry.span.begin;
        close();
        open = {entry.span.begin, entry.span.begin};
      }
      if (isLarge) {
        std::size_t const partsBefore = parts_.size();
        open.end = entry.first.end;
        close();
        FilePart inner = around;
        inner.context.push_back(entry.key.key);
        inner.headers.push_back({entry.first, entry.key.indent});
        if (!divideMap({entry.first.end, entry.span.end}, inner)) {
          parts_.resize(partsBefore);
          open.end = entry.span.end;
          close();
        }
        open = {entry.span.end, entry.span.end};
      } else {
        open.end = entry.span.end;
      }
    }
    close();
    return true;
  }

  std::string_view text_;
  std::vector<FilePart> parts_;
};

std::uint64_t hashOf(std::string_view text, std::vector<std::string> const& context) {
  std::uint64_t hash = std::hash<std::string_view>{}(text);
  for (std::string const& key : context) {
    hash = hash * 0x9E3779B97F4A7C15ULL + std::hash<std::string>{}(key);
  }
  return hash;
}

}  // namespace

bool readLineKey(std::string_view line, LineKey& key) {
  std::size_t const indent = indentOf(line);
  key.indent = indent;
  if (indent == line.size()) return false;
  char const first = line[indent];
  if (first == '"' || first == '\'') {
    std::string text;
    std::size_t at = indent + 1;
    for (; at < line.size() && line[at] != first; ++at) {
      if (first == '"' && line[at] == '\\') return false;
      text += line[at];
    }
    std::size_t colon = at + 1;
    while (colon < line.size() && line[colon] == ' ') ++colon;
    if (at >= line.size() || colon >= line.size() || line[colon] != ':') return false;
    key.span = {indent + 1, at};
    key.key = std::move(text);
    key.valueBegin = colon + 1;
    return true;
  }
  if (std::string_view("{}[],#&*!|>%@`").find(first) != std::string_view::npos) return false;
  if (first == '-' && (indent + 1 == line.size() || line[indent + 1] == ' ')) return false;
  for (std::size_t at = indent; at < line.size(); ++at) {
    if (line[at] == '#' && at > indent && line[at - 1] == ' ') return false;
    if (line[at] != ':' || (at + 1 < line.size() && line[at + 1] != ' ')) continue;
    std::size_t end = at;
    while (end > indent && line[end - 1] == ' ') --end;
    if (end == indent) return false;
    key.span = {indent, end};
    key.key = line.substr(indent, end - indent);
    key.valueBegin = at + 1;
    return true;
  }
  return false;
}

std::vector<FilePart> divideRuleFile(std::string_view text) {
  return Divider(text).divide();
}

std::vector<ReadPart> readParts(std::string_view text, bool isTest, std::vector<ReadPart> const& former) {
  std::unordered_map<std::uint64_t, ReadPart const*> known;
  known.reserve(former.size());
  for (ReadPart const& part : former) known.emplace(part.hash, &part);
  std::vector<FilePart> parts = isTest ? std::vector<FilePart>{FilePart{{0, text.size()}, {}}} : divideRuleFile(text);
  std::vector<ReadPart> result;
  result.reserve(parts.size());
  for (FilePart& part : parts) {
    std::string_view const own = text.substr(part.span.begin, part.span.size());
    std::uint64_t const hash = hashOf(own, part.context);
    auto const found = known.find(hash);
    bool const isKnown = found != known.end() && found->second->part.span.size() == own.size() &&
                         found->second->part.context == part.context;
    if (isKnown) {
      result.push_back({std::move(part), hash, found->second->facts, found->second->coloured});
    } else {
      auto facts = std::make_shared<Facts const>(factsOf({own, part.context, isTest}));
      result.push_back({std::move(part), hash, std::move(facts)});
    }
  }
  return result;
}

}  // namespace tarn::workbench
