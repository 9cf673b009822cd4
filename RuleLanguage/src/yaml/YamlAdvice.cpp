// libyaml says what it expected next. An author needs to know what to change. This looks at the line of the problem for
// the mistakes that authors make, the most certain first, and falls back to what the message of libyaml alone suggests.

#include "yaml/YamlAdvice.h"

#include <algorithm>
#include <optional>

#include <tarn/StringUtilities.h>

namespace tarn::rules {

namespace {

constexpr std::size_t none = std::string_view::npos;
constexpr std::string_view notYaml = "this is not YAML: ";
constexpr std::string_view tagAdvice =
    "a value that begins with '!' is a tag for YAML; write 'not' for the operator, and put quotes around a text that "
    "begins with '!'";
constexpr std::string_view tabAdvice = "a line is indented with blanks, not with tabs";
/// Longer values are not repeated in a message.
constexpr std::size_t longestShown = 60;
constexpr std::string_view quoteIt =
    "; check the indentation, and put quotes around a value that begins with a quote, '{', '[' or '*', or that "
    "contains ': ' or ' #'";

/// A line of block style, divided. Offsets count bytes.
struct Line {
  std::string_view text;
  std::size_t indent = 0;
  std::size_t keyAt = 0;
  std::size_t valueAt = 0;  // of the value after the first key; the end of the line when there is none

  [[nodiscard]] std::string_view content() const { return StringUtilities::trimmed(text); }
  [[nodiscard]] std::string_view value() const { return StringUtilities::trimmed(text.substr(valueAt)); }
  [[nodiscard]] Place placeOf(std::size_t line, std::size_t offset) const {
    return {line, characterCount(text.substr(0, offset)) + 1};
  }
};

Line lineAt(SourceText const& source, std::size_t number) {
  Line line;
  line.text = source.line(number);
  line.indent = std::min(line.text.find_first_not_of(' '), line.text.size());
  line.keyAt = line.indent;
  while (line.text.substr(line.keyAt).starts_with("- ")) {
    line.keyAt = std::min(line.text.find_first_not_of(' ', line.keyAt + 1), line.text.size());
  }
  std::size_t from = line.keyAt;
  if (from < line.text.size() && (line.text[from] == '\'' || line.text[from] == '"')) {
    from = line.text.find(line.text[from], from + 1);
  }
  std::size_t const colon = from == none ? none : line.text.find(": ", from);
  // A key in quotes is followed by the colon at once. Without a key, all of an item is its value.
  line.valueAt =
      colon == none ? line.text.size() : std::min(line.text.find_first_not_of(' ', colon + 1), line.text.size());
  if (colon == none && line.keyAt > line.indent && !line.text.ends_with(':')) line.valueAt = line.keyAt;
  return line;
}

bool isQuote(char c) {
  return c == '\'' || c == '"';
}

std::string shown(std::string_view text) {
  auto const result = inYamlQuotes(text);
  return result.empty() ? result : ": " + result;
}

/// The offset of the '?' of a choice in the form of C. Nothing when the text has none.
std::optional<std::size_t> choiceIn(std::string_view text) {
  auto const mark = text.find(" ? ");
  if (mark == none || text.find(" : ", mark) == none) return std::nullopt;
  return mark + 1;
}

constexpr std::string_view choice = "'?' is not part of the language; a choice is written if(condition, a, b)";

class Adviser {
 public:
  Adviser(SourceText const& source, YamlProblem const& problem)
      : source_(source), problem_(problem), line_(lineAt(source, problem.at.line)) {
    offset_ = characterOffset(line_.text, problem.at.column - 1);
  }

  YamlAdvice advise() {
    if (isConflictMarker(line_.text)) return conflict(problem_.at.line);
    std::string_view const problem = problem_.problem;
    if (problem == "could not find expected ':'") return missingColon();
    if (problem == "mapping values are not allowed in this context") return secondColon();
    if (problem == "did not find expected key") return missingKey();
    if (problem.starts_with("did not find expected ','")) return inBrackets();
    if (problem == "did not find expected '-' indicator") return missingDash();
    if (problem == "found unexpected end of stream" && problem_.context == "while scanning a quoted scalar") {
      return {"the text in quotes that begins here has no end", problem_.contextAt, false};
    }
    if (problem == "found character that cannot start any token") return badBegin();
    if (problem == "did not find expected comment or line break") {
      return {std::string(problem) + "; put quotes around a value that begins with '|' or '>'", problem_.at};
    }
    if (line_.value().starts_with('!')) return tag(problem_.at.line);
    if (problem.starts_with("found a tab character")) return {std::string(tabAdvice), problem_.at, false};
    if (problem == "found unknown escape character") {
      return {
          "in double quotes '\\' begins an escape, and the rules of YAML have no such escape; write '\\\\', or use "
          "single quotes",
          problem_.at};
    }
    if (problem == "block sequence entries are not allowed in this context") {
      return {"the items of a list begin on a line of their own; in one line a list is written [a, b]", problem_.at};
    }
    if (problem == "did not find expected <document start>") return {std::string(problem).append(quoteIt), problem_.at};
    return {std::string(problem), problem_.at};
  }

 private:
  static YamlAdvice conflict(std::size_t line) {
    return {
        "this line is left from a merge; keep one of the two versions, and remove the lines that begin "
        "with '<<<<<<<', '=======' and '>>>>>>>'",
        {line, 1},
        false,
        line,
        true};
  }

  [[nodiscard]] YamlAdvice tag(std::size_t line) const {
    return {std::string(tagAdvice), line_.placeOf(line, line_.valueAt), false};
  }

  /// A line without a key, found at the end of the line below it.
  [[nodiscard]] YamlAdvice missingColon() const {
    std::size_t const number =
        problem_.context == "while scanning a simple key" ? problem_.contextAt.line : problem_.at.line;
    auto const line = lineAt(source_, number);
    if (isConflictMarker(line.text)) return conflict(number);
    YamlAdvice advice{"", line.placeOf(number, line.keyAt), false, number};
    auto const content = StringUtilities::trimmed(line.text.substr(line.keyAt));
    auto const colon = content.find(':');
    auto const equals = content.find('=');
    auto const keyAndValue = [&](std::size_t at) {
      std::string const key(StringUtilities::trimmed(content.substr(0, at)));
      std::string const value(StringUtilities::trimmed(content.substr(at + 1)));
      return key.size() + value.size() > longestShown ? "Key: value" : key + ": " + value;
    };
    if (content.starts_with("//") || content.starts_with("/*")) {
      advice.message = "a comment begins with '#'";
    } else if (content.starts_with('-') && content.size() > 1 && content[1] != '-') {
      advice.message = "a blank is missing after '-'";
    } else if (colon != none && colon + 1 < content.size() && colon > 0) {
      advice.message = "a blank is missing after ':'; write " + keyAndValue(colon);
    } else if (equals != none && equals > 0) {
      advice.message = "a key is followed by ':', not by '='; write " + keyAndValue(equals);
    } else {
      advice.message = "this line has no ':'; a key and its value are written as Key: value";
    }
    return advice;
  }

  /// A ':' after a value that is complete.
  [[nodiscard]] YamlAdvice secondColon() const {
    auto const value = line_.value();
    if (auto const mark = choiceIn(value)) {
      return {std::string(choice), line_.placeOf(problem_.at.line, line_.valueAt + *mark), false};
    }
    // A line that continues a value begins with no key.
    auto const before = line_.text.substr(line_.keyAt, std::max(offset_, line_.keyAt) - line_.keyAt);
    if (before.find_first_of("'\"${}=()") != none) {
      return {"a value that contains ': ' needs quotes around it" + (offset_ > line_.valueAt ? shown(value) : ""),
              problem_.at, false};
    }
    if (!value.empty() && offset_ > line_.valueAt) {
      return {"a value that contains ': ' needs quotes around it" + shown(value), problem_.at, false};
    }
    if (offset_ > line_.keyAt) {
      return {"this line is indented deeper than the line above it, which has a value already; check the indentation",
              line_.placeOf(problem_.at.line, line_.keyAt), false};
    }
    return {std::string(problem_.problem).append(quoteIt), problem_.at};
  }

  /// Something else in a map than its next key.
  [[nodiscard]] YamlAdvice missingKey() const {
    char const at = offset_ < line_.text.size() ? line_.text[offset_] : '\0';
    auto const content = line_.text.substr(line_.indent);
    if (content.size() > 1 && content[0] == '-' && std::string_view("{['\"$").find(content[1]) != none) {
      return {"a blank is missing after '-'", line_.placeOf(problem_.at.line, line_.indent), false};
    }
    if (offset_ == line_.indent) {
      if (line_.content() == "-" || line_.text.substr(offset_).starts_with("- ")) {
        return {"a '-' begins an item of a list, but the lines above it are the keys of a map; leave out the '-'",
                problem_.at};
      }
      return {"this line is not indented like the other lines of its map; check the indentation", problem_.at};
    }
    if (at == '}' || at == ']') {
      std::string const open(1, at == '}' ? '{' : '[');
      return {"there is no '" + open + "' for this '" + at + "'", problem_.at, false};
    }
    return valueGoesOn(line_.valueAt).value_or(YamlAdvice{std::string(problem_.problem).append(quoteIt), problem_.at});
  }

  /// A value from `begin` on, with more after its quotes or its brackets.
  [[nodiscard]] std::optional<YamlAdvice> valueGoesOn(std::size_t begin) const {
    if (begin >= offset_ || begin >= line_.text.size()) return std::nullopt;
    auto const value = StringUtilities::trimmed(line_.text.substr(begin));
    char const first = value.front();
    if (isQuote(first)) {
      bool const endsAlike = value.size() > 1 && value.back() == first;
      auto const inside = endsAlike ? value.substr(1, value.size() - 2) : value;
      // Quotes around the whole are there already when they are only meant to be.
      bool const isApostrophe = endsAlike && std::count(inside.begin(), inside.end(), first) % 2 == 1;
      return YamlAdvice{
          std::string("the text in quotes ends before this, but the value goes on; ") +
              (isApostrophe
                   ? "write a quote inside it twice, or put other quotes around the whole value" + shown(inside)
                   : "put other quotes around the whole value" + shown(value)),
          problem_.at, false};
    }
    // Anything else is the end of a text in quotes that began further up.
    if (first != '{' && first != '[') return std::nullopt;
    return YamlAdvice{std::string("a value that begins with '") + first + "' is a " + (first == '{' ? "map" : "list") +
                          " for YAML; put quotes around it" + shown(value),
                      line_.placeOf(problem_.at.line, begin), false};
  }

  /// Where the value begins that the problem is in, inside a flow map or list.
  [[nodiscard]] std::size_t valueInBrackets() const {
    auto const before = line_.text.substr(0, offset_);
    auto const last = before.find_last_of("{[,:");
    if (last == none) return line_.keyAt;
    return std::min(before.find_first_not_of(' ', last + 1), offset_);
  }

  /// The value from `begin` on, with what is in brackets in it.
  [[nodiscard]] std::string_view valueFrom(std::size_t begin) const {
    std::size_t depth = 0;
    std::size_t end = begin;
    for (; end < line_.text.size(); ++end) {
      char const c = line_.text[end];
      bool const closes = c == '}' || c == ']' || c == ')';
      if (depth == 0 && (closes || c == ',')) break;
      if (c == '{' || c == '[' || c == '(') ++depth;
      if (closes) --depth;
    }
    return line_.text.substr(begin, end - begin);
  }

  /// Something else in a flow map or list than ',' or its end.
  [[nodiscard]] YamlAdvice inBrackets() const {
    bool const isMap = problem_.problem.find('}') != none;
    char const at = offset_ < line_.text.size() ? line_.text[offset_] : '\0';
    std::string const inside = isMap ? "inside '{' and '}' " : "inside '[' and ']' ";
    std::size_t const begin = valueInBrackets();
    auto const value = valueFrom(begin);
    if (auto const mark = choiceIn(line_.text.substr(begin))) {
      return {std::string(choice), line_.placeOf(problem_.at.line, begin + *mark), false};
    }
    std::string const open = isMap ? "'{'" : "'['";
    bool const isBelow = problem_.contextAt.line < problem_.at.line;
    bool const isFirst = begin <= line_.keyAt || offset_ == line_.indent;
    if (isBelow && (isFirst || offset_ >= line_.text.size())) {
      return {"the " + open + " of line " + std::to_string(problem_.contextAt.line) +
                  " is not closed before this, or a ',' is missing",
              line_.placeOf(problem_.at.line, line_.keyAt)};
    }
    if ((at == '{' || at == '[') && begin < offset_) {
      return {inside + "a value with '" + at + "' needs quotes around it" + shown(value), problem_.at, false};
    }
    if (begin < offset_ && isQuote(line_.text[begin])) {
      return {"the text in quotes ends before this, but the value goes on; put other quotes around the whole value" +
                  shown(value),
              problem_.at, false};
    }
    if (at == ':' && line_.text.substr(begin, offset_ - begin).find(';') != none) {
      return {"the entries are divided by ',', not by ';'",
              line_.placeOf(problem_.at.line, line_.text.find(';', begin)), false};
    }
    if (at == ':') {
      return {"a ',' is missing before this key, or a value that contains ': ' needs quotes around it", problem_.at,
              false};
    }
    return {std::string(problem_.problem).append(quoteIt) + ", and here also around one with '[', '{' or ','",
            problem_.at};
  }

  /// A line between the items of a list. When only the first one has a '-', that is the mistake.
  [[nodiscard]] YamlAdvice missingDash() const {
    std::size_t items = 0;
    for (std::size_t number = problem_.contextAt.line; number < problem_.at.line; ++number) {
      auto const line = lineAt(source_, number);
      bool const isItem =
          line.indent + 1 == problem_.contextAt.column && line.text.substr(line.indent).starts_with('-');
      if (isItem) ++items;
    }
    if (items == 1) {
      return {"this '-' begins a list, but line " + std::to_string(problem_.at.line) +
                  " continues as a map; leave out the '-'",
              problem_.contextAt, false, problem_.contextAt.line};
    }
    return {
        "the lines above this are the items of a list, which begin with '-'; begin this line with '- ' too, or check "
        "its indentation",
        problem_.at};
  }

  [[nodiscard]] YamlAdvice badBegin() const {
    char const at = offset_ < line_.text.size() ? line_.text[offset_] : '\0';
    if (at == '\t') return {std::string(tabAdvice), problem_.at, false};
    return {
        std::string("a value cannot begin with '") + at + "'; put quotes around it" + shown(line_.text.substr(offset_)),
        problem_.at, false};
  }

  SourceText const& source_;
  YamlProblem const& problem_;
  Line line_;
  std::size_t offset_ = 0;  // of the problem in its line
};

}  // namespace

bool isConflictMarker(std::string_view line) {
  return line.starts_with("<<<<<<< ") || line.starts_with(">>>>>>> ") || line.starts_with("||||||| ") ||
         StringUtilities::trimmed(line) == "=======";
}

std::string adviceForTag() {
  return std::string(notYaml).append(tagAdvice);
}

std::string adviceForWord(std::string_view word, std::optional<std::string_view> const& text) {
  std::string message = "YAML takes '" + std::string(word) + (word.front() == '&' ? "' for an anchor" : "' for a tag");
  if (!text) return message + ", which has no meaning in a rule file; leave it out";
  return message + ", so it is not part of this text; put quotes around the whole text" +
         shown(std::string(word) + " " + std::string(*text));
}

std::string inYamlQuotes(std::string_view text) {
  text = StringUtilities::trimmed(text);
  if (text.size() > longestShown) return {};
  bool const isSimple = text.find_first_of("\"\\") == none;
  if (!isSimple && text.find('\'') != none) return {};
  std::string const quote = isSimple ? "\"" : "'";
  return quote + std::string(text) + quote;
}

YamlAdvice adviceFor(SourceText const& source, YamlProblem const& problem) {
  auto advice = Adviser(source, problem).advise();
  advice.message.insert(0, notYaml);
  return advice;
}

}  // namespace tarn::rules
