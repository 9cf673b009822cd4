#include "editing/CursorContext.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include <tarn/StringUtilities.h>

#include "editing/FileKeys.h"

namespace tarn::workbench {

namespace {

/// So many lines are looked at above and below for the keys of the same map.
constexpr std::size_t mostSiblingLines = 2000;
/// A scalar or a map in flow style has at most so many lines before the cursor.
constexpr std::size_t mostScalarLines = 200;

/// The maps and items of lists that one line opens: `- When: x` opens an item and a key.
struct LineLevels {
  struct Level {
    std::size_t indent = 0;
    bool isItem = false;
    std::string key;
  };
  std::vector<Level> levels;
  std::size_t valueBegin = 0;  // where the value of the last level begins, with blanks
  [[nodiscard]] bool hasKey() const { return !levels.empty() && !levels.back().isItem; }
};

LineLevels levelsOf(std::string_view line) {
  LineLevels result;
  std::size_t at = std::min(line.find_first_not_of(' '), line.size());
  while (at < line.size() && line[at] == '-' && (at + 1 == line.size() || line[at + 1] == ' ')) {
    result.levels.push_back({at, true, {}});
    at = std::min(line.find_first_not_of(' ', at + 1), line.size());
  }
  result.valueBegin = at;
  std::string const rest = std::string(at, ' ') + std::string(line.substr(at));
  LineKey key;
  if (readLineKey(rest, key)) {
    result.levels.push_back({at, false, key.key});
    result.valueBegin = key.valueBegin;
  }
  return result;
}

bool isSilent(std::string_view line) {
  std::string_view const content = StringUtilities::trimmed(line);
  return content.empty() || content.front() == '#';
}

std::size_t indentOf(std::string_view line) {
  return std::min(line.find_first_not_of(' '), line.size());
}

/// The text of a scalar in double quotes, as far as names need it.
void addUnescaped(std::string& text, char c) {
  text += c == 'n' ? '\n' : c == 't' ? '\t' : c;
}

/// Reads a value from its beginning to the cursor.
class ValueReader {
 public:
  ValueReader(std::string_view text, CursorContext& context) : text_(text), context_(context) {}

  void read() {
    skipBlanks();
    if (at_ < text_.size() && (text_[at_] == '{' || text_[at_] == '[')) {
      context_.isFlow = true;
      flow();
    } else {
      scalar(false);
    }
  }

 private:
  struct Open {
    bool isMap = false;
    std::vector<std::string> keys;
    bool isAtValue = false;
    std::string key;
  };

  void skipBlanks() {
    while (at_ < text_.size() && StringUtilities::isSpace(text_[at_])) ++at_;
  }

  /// Reads a scalar into `before`. Returns true if it ends before the cursor.
  bool scalar(bool inFlow) {
    context_.before.clear();
    context_.quote = 0;
    if (at_ < text_.size() && (text_[at_] == '"' || text_[at_] == '\'')) return quoted(text_[at_]);
    for (; at_ < text_.size(); ++at_) {
      char const c = text_[at_];
      bool const isComment = c == '#' && at_ > 0 && StringUtilities::isSpace(text_[at_ - 1]);
      if (isComment) {
        std::size_t const end = text_.find('\n', at_);
        if (end == std::string_view::npos) context_.isComment = true;
        at_ = std::min(end, text_.size() - 1);
        continue;
      }
      if (inFlow && (c == ',' || c == '}' || c == ']')) return true;
      if (inFlow && c == ':' && (at_ + 1 == text_.size() || StringUtilities::isSpace(text_[at_ + 1]))) return true;
      add(c);
    }
    return false;
  }

  bool quoted(char quote) {
    context_.quote = quote;
    for (++at_; at_ < text_.size(); ++at_) {
      char const c = text_[at_];
      if (quote == '"' && c == '\\' && at_ + 1 < text_.size()) {
        addUnescaped(context_.before, text_[++at_]);
      } else if (c == quote && quote == '\'' && at_ + 1 < text_.size() && text_[at_ + 1] == quote) {
        context_.before += c;
        ++at_;
      } else if (c == quote) {
        ++at_;
        return true;
      } else {
        add(c);
      }
    }
    return false;
  }

  /// A line end and the blanks around it count as one blank.
  void add(char c) {
    if (c == '\n' || c == '\r') {
      while (context_.before.ends_with(' ')) context_.before.pop_back();
      context_.before += ' ';
    } else if (c != ' ' || text_.find_last_not_of(' ', at_) == std::string_view::npos || !isAfterLineEnd()) {
      context_.before += c;
    }
  }

  [[nodiscard]] bool isAfterLineEnd() const {
    std::size_t const before = text_.find_last_not_of(' ', at_);
    return before != std::string_view::npos && text_[before] == '\n';
  }

  void flow() {
    std::vector<Open> open;
    bool isDone = false;  // the value here is complete
    context_.before.clear();
    context_.quote = 0;
    while (at_ < text_.size()) {
      skipBlanks();
      if (at_ == text_.size()) {
        if (!isDone) context_.before.clear();
        break;
      }
      char const c = text_[at_];
      if (c == '{' || c == '[') {
        open.push_back({c == '{', {}, false, {}});
        isDone = false;
        context_.before.clear();
        ++at_;
      } else if (c == '}' || c == ']') {
        if (!open.empty()) open.pop_back();
        isDone = true;
        ++at_;
      } else if (c == ',') {
        if (!open.empty()) {
          open.back().isAtValue = false;
          open.back().key.clear();
        }
        isDone = false;
        context_.before.clear();
        ++at_;
      } else if (c == ':' && !open.empty() && open.back().isMap && !open.back().isAtValue) {
        open.back().key = context_.before;
        open.back().keys.push_back(context_.before);
        open.back().isAtValue = true;
        isDone = false;
        context_.before.clear();
        context_.quote = 0;
        ++at_;
      } else if (c == '#' && at_ > 0 && StringUtilities::isSpace(text_[at_ - 1])) {
        std::size_t const end = text_.find('\n', at_);
        context_.isComment = end == std::string_view::npos;
        at_ = std::min(end, text_.size());
      } else {
        std::size_t const from = at_;
        isDone = scalar(true);
        while (context_.quote == 0 && isDone && context_.before.ends_with(' ')) context_.before.pop_back();
        if (at_ == from) ++at_;  // a sign without meaning
      }
    }
    for (Open const& one : open) {
      if (one.isMap && one.isAtValue) context_.path.push_back(one.key);
      if (!one.isMap) context_.path.emplace_back(listItem);
    }
    if (!open.empty() && open.back().isMap && !open.back().isAtValue) {
      context_.isKey = true;
      context_.siblings = open.back().keys;
    }
  }

  std::string_view text_;
  CursorContext& context_;
  std::size_t at_ = 0;
};

class Finder {
 public:
  Finder(TextBuffer const& buffer, ReadPart const* part, std::size_t offset, bool isTest)
      : buffer_(buffer), offset_(offset), isTest_(isTest) {
    if (part != nullptr) {
      firstLine_ = buffer.positionOf(part->part.span.begin).line;
      part_ = &part->part;
    }
    EditorPosition const position = buffer.positionOf(offset);
    line_ = position.line;
    byte_ = position.byte;
    firstLine_ = std::min(firstLine_, line_);
  }

  CursorContext find() {
    std::string_view const line = buffer_.line(line_);
    std::string_view const before = line.substr(0, byte_);
    if (StringUtilities::trimmed(before).starts_with('#')) {
      context_.isComment = true;
      return std::move(context_);
    }
    LineLevels const own = levelsOf(before);
    auto const head = continuedLine(own);
    if (head) {
      value(*head, levelsOf(buffer_.line(*head)));
      return std::move(context_);
    }
    if (own.hasKey()) {
      value(line_, own);
      return std::move(context_);
    }
    key(own, before);
    return std::move(context_);
  }

 private:
  /// The line above whose value goes on in the line of the cursor.
  [[nodiscard]] std::optional<std::size_t> continuedLine(LineLevels const& own) const {
    std::string_view const line = buffer_.line(line_);
    std::size_t const indent = isSilent(line) ? byte_ : indentOf(line);
    std::size_t limit = indent;
    std::size_t lines = 0;
    for (std::size_t i = line_; i > firstLine_ && lines < mostScalarLines; ++lines) {
      std::string_view const above = buffer_.line(--i);
      if (isSilent(above) || indentOf(above) >= limit) continue;
      limit = indentOf(above);
      LineLevels const levels = levelsOf(above);
      if (!levels.hasKey() && (levels.levels.empty() || levels.valueBegin >= above.size())) {
        if (levels.levels.empty()) continue;  // a further line of a scalar or of a map in flow style
        return std::nullopt;
      }
      // In "- At: x" the key is indented more than the line.
      if (levels.hasKey() && levels.levels.back().indent >= indent) return std::nullopt;
      std::string_view const rest = StringUtilities::trimmed(above.substr(levels.valueBegin));
      if (rest.starts_with('|') || rest.starts_with('>')) return i;
      if (!rest.empty() && rest.front() != '#') return isOpen(i, levels) ? std::optional(i) : std::nullopt;
      if (!levels.hasKey() || own.hasKey() || !own.levels.empty()) return std::nullopt;
      // The value may begin below its key.
      std::vector<std::string> path = pathOf(i, levels);
      KeyForm const* const form = formOf(path);
      bool const isScalar = form != nullptr && form->keys.empty() && form->named == nullptr && form->items == nullptr;
      return isScalar ? std::optional(i) : std::nullopt;
    }
    return std::nullopt;
  }

  /// Whether the value that begins in line `head` goes on to the cursor.
  [[nodiscard]] bool isOpen(std::size_t head, LineLevels const& levels) const {
    std::string_view const rest = StringUtilities::trimmed(buffer_.line(head).substr(levels.valueBegin));
    char const first = rest.empty() ? ' ' : rest.front();
    std::size_t const begin = buffer_.lineStart(head) + levels.valueBegin;
    std::string_view const text = std::string_view(buffer_.text()).substr(begin, offset_ - begin);
    if (first == '"' || first == '\'') {
      std::size_t const quotes = static_cast<std::size_t>(std::count(text.begin(), text.end(), first));
      return quotes % 2 == 1;
    }
    if (first == '{' || first == '[') {
      auto const opened = std::count_if(text.begin(), text.end(), [](char c) { return c == '{' || c == '['; });
      auto const closed = std::count_if(text.begin(), text.end(), [](char c) { return c == '}' || c == ']'; });
      return opened > closed;
    }
    return true;
  }

  [[nodiscard]] KeyForm const* formOf(std::vector<std::string> const& path) const {
    return formAt(isTest_ ? FileKeys::ofTests().root() : FileKeys::ofRules().root(), path);
  }

  /// The keys above a line, and those of the line itself.
  [[nodiscard]] std::vector<std::string> pathOf(std::size_t line, LineLevels const& own) const {
    std::vector<std::string> path;
    std::size_t limit = std::string_view::npos;
    bool isItemOpen = false;  // the last level is an item, whose list may have the same indentation as its key
    auto const take = [&](LineLevels const& levels) {
      for (auto level = levels.levels.rbegin(); level != levels.levels.rend(); ++level) {
        bool const isAbove = limit == std::string_view::npos || level->indent < limit ||
                             (isItemOpen && !level->isItem && level->indent == limit);
        if (!isAbove) continue;
        path.push_back(level->isItem ? listItem : level->key);
        limit = level->indent;
        isItemOpen = level->isItem;
      }
    };
    take(own);
    if (own.levels.empty()) limit = indentOf(buffer_.line(line));
    for (std::size_t i = line; i > firstLine_ && limit > 0;) {
      std::string_view const above = buffer_.line(--i);
      if (isSilent(above) || indentOf(above) > limit || (indentOf(above) == limit && !isItemOpen)) continue;
      take(levelsOf(above));
    }
    addKeysAbovePart(limit, path);
    std::reverse(path.begin(), path.end());
    return path;
  }

  /// Adds the keys around the part of the file that are indented less than `limit`.
  void addKeysAbovePart(std::size_t limit, std::vector<std::string>& path) const {
    if (part_ == nullptr) return;
    for (std::size_t i = part_->context.size(); i-- > 0;) {
      if (part_->headers[i].indent < limit) path.push_back(part_->context[i]);
    }
  }

  /// The cursor is in a value that begins in line `head`.
  void value(std::size_t head, LineLevels const& levels) {
    context_.path = pathOf(head, levels);
    std::size_t begin = buffer_.lineStart(head) + levels.valueBegin;
    std::string_view text = std::string_view(buffer_.text()).substr(begin, offset_ - std::min(begin, offset_));
    std::string_view const rest = StringUtilities::trimmed(text.substr(0, text.find('\n')));
    if (rest.starts_with('|') || rest.starts_with('>')) {
      std::size_t const next = text.find('\n');
      text = next == std::string_view::npos ? std::string_view() : text.substr(next + 1);
      addBlock(text, rest.front() == '|' ? '\n' : ' ');
      return;
    }
    ValueReader(text, context_).read();
  }

  void addBlock(std::string_view text, char between) {
    for (std::size_t begin = 0; begin < text.size();) {
      std::size_t const end = std::min(text.find('\n', begin), text.size());
      std::string_view line = text.substr(begin, end - begin);
      line.remove_prefix(indentOf(line));
      context_.before += line;
      if (end < text.size()) context_.before += between;
      begin = end + 1;
    }
  }

  /// The cursor is at a key, or at an item of a list.
  void key(LineLevels const& own, std::string_view before) {
    std::size_t const indent = !own.levels.empty()             ? own.valueBegin
                               : isSilent(buffer_.line(line_)) ? byte_
                                                               : indentOf(before);
    std::size_t limit = own.levels.empty() ? indent : own.levels.front().indent;
    context_.path = pathAbove(own, limit);
    std::string_view content = before.substr(std::min(indent, before.size()));
    if (!own.levels.empty()) {
      KeyForm const* const form = formOf(context_.path);
      bool const isMap = form != nullptr && (!form->keys.empty() || form->named != nullptr);
      bool const isScalarToo = form == nullptr || form->scalar != KeyForm::Scalar::Text || form->keys.empty();
      if (!isMap || isScalarToo || content.starts_with('{') || content.starts_with('[') || content.starts_with('"') ||
          content.starts_with('\'')) {
        ValueReader(content, context_).read();
        return;
      }
    }
    context_.isKey = true;
    if (content.starts_with('"') || content.starts_with('\'')) {
      context_.quote = content.front();
      content.remove_prefix(1);
    }
    context_.before = content;
    LineKey written;
    std::string_view const line = buffer_.line(line_);
    std::string const padded =
        std::string(std::min(indent, line.size()), ' ') + std::string(line.substr(std::min(indent, line.size())));
    context_.hasColon = readLineKey(padded, written);
    addSiblings(indent);
  }

  [[nodiscard]] std::vector<std::string> pathAbove(LineLevels const& own, std::size_t indent) const {
    std::vector<std::string> path;
    for (auto level = own.levels.rbegin(); level != own.levels.rend(); ++level) path.emplace_back(listItem);
    std::size_t limit = indent;
    bool isItemOpen = !own.levels.empty();
    for (std::size_t i = line_; i > firstLine_ && (limit > 0 || isItemOpen);) {
      std::string_view const above = buffer_.line(--i);
      if (isSilent(above)) continue;
      LineLevels const levels = levelsOf(above);
      for (auto level = levels.levels.rbegin(); level != levels.levels.rend(); ++level) {
        bool const isAbove = level->indent < limit || (isItemOpen && !level->isItem && level->indent == limit);
        if (!isAbove) continue;
        path.push_back(level->isItem ? listItem : level->key);
        limit = level->indent;
        isItemOpen = level->isItem;
      }
    }
    addKeysAbovePart(limit, path);
    std::reverse(path.begin(), path.end());
    return path;
  }

  void addSiblings(std::size_t indent) {
    auto const look = [&](std::size_t line) {
      if (line == line_) return true;
      std::string_view const text = buffer_.line(line);
      if (isSilent(text)) return true;
      LineLevels const levels = levelsOf(text);
      if (levels.hasKey() && levels.levels.back().indent == indent) {
        context_.siblings.push_back(levels.levels.back().key);
        return levels.levels.size() == 1;  // an item of a list begins a map
      }
      return indentOf(text) >= indent;
    };
    for (std::size_t i = line_; i > firstLine_ && line_ - i < mostSiblingLines;) {
      if (!look(--i)) break;
    }
    for (std::size_t i = line_ + 1; i < buffer_.lineCount() && i - line_ < mostSiblingLines; ++i) {
      std::string_view const text = buffer_.line(i);
      bool const isItem = !isSilent(text) && !levelsOf(text).levels.empty() && levelsOf(text).levels.front().isItem;
      if (isItem && indentOf(text) < indent) break;
      if (!look(i)) break;
    }
  }

  TextBuffer const& buffer_;
  std::size_t offset_;
  bool isTest_;
  std::size_t firstLine_ = 0;
  FilePart const* part_ = nullptr;
  std::size_t line_ = 0;
  std::size_t byte_ = 0;
  CursorContext context_;
};

}  // namespace

std::string siblingText(TextBuffer const& buffer, std::size_t offset, std::string_view key) {
  EditorPosition const position = buffer.positionOf(offset);
  std::string_view const own = buffer.line(position.line);
  auto const withoutQuotes = [](std::string_view text) {
    text = StringUtilities::trimmed(text);
    bool const isQuoted =
        text.size() > 1 && (text.front() == '"' || text.front() == '\'') && text.back() == text.front();
    return std::string(isQuoted ? text.substr(1, text.size() - 2) : text);
  };
  std::size_t const brace = own.substr(0, position.byte).rfind('{');
  std::size_t const close = brace == std::string_view::npos ? brace : own.find('}', brace);
  if (brace != std::string_view::npos && (close >= position.byte || own.substr(0, brace).ends_with("$"))) {
    // A map in flow style.
    for (std::size_t at = own.find(key); at != std::string_view::npos; at = own.find(key, at + 1)) {
      std::size_t const colon = at + key.size();
      bool const isKey =
          at > 0 && std::string_view("{, ").find(own[at - 1]) != std::string_view::npos && own.substr(colon, 2) == ": ";
      if (isKey) return withoutQuotes(own.substr(colon + 2, own.find_first_of(",}", colon) - colon - 2));
    }
    if (!own.substr(0, brace).ends_with("$")) return {};
  }
  LineLevels const levels = levelsOf(own);
  if (!levels.hasKey()) return {};
  std::size_t const indent = levels.levels.back().indent;
  auto const look = [&](std::size_t line, std::string& found) {
    std::string_view const text = buffer.line(line);
    if (isSilent(text)) return true;
    LineLevels const other = levelsOf(text);
    bool const isSame = other.hasKey() && other.levels.back().indent == indent;
    if (isSame && other.levels.back().key == key) {
      found = withoutQuotes(text.substr(other.valueBegin));
      return false;
    }
    return isSame ? other.levels.size() == 1 : indentOf(text) > indent;
  };
  std::string found;
  bool const isFirst = levels.levels.size() > 1;  // an item of a list begins with this key
  for (std::size_t i = position.line; !isFirst && i > 0 && position.line - i < mostSiblingLines;) {
    if (!look(--i, found)) break;
  }
  if (!found.empty()) return found;
  for (std::size_t i = position.line + 1; i < buffer.lineCount() && i - position.line < mostSiblingLines; ++i) {
    LineLevels const other = levelsOf(buffer.line(i));
    if (!other.levels.empty() && other.levels.front().isItem) break;
    if (!look(i, found)) break;
  }
  return found;
}

CursorContext contextAt(TextBuffer const& buffer, ReadPart const* part, std::size_t offset, bool isTest) {
  return Finder(buffer, part, offset, isTest).find();
}

}  // namespace tarn::workbench
