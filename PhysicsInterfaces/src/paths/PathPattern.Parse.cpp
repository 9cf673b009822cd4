// Parsing: a text is divided into components, and each component becomes the start or a step of the pattern.

#include <tarn/PathPattern.h>

#include <algorithm>
#include <utility>

#include <tarn/Error.h>
#include <tarn/StringUtilities.h>

namespace tarn {

namespace {

using StringUtilities::isSpace;
using Kind = PathPattern::StepKind;

/// A type or name of a pattern: its text without escapes, and its position.
struct Word {
  std::string text;
  std::size_t offset = 0;
  std::size_t length = 0;
  bool escaped = false;  // at least one character was escaped, so it is not `*`, `..` or the like
  bool starred = false;  // it contains a "*" of the pattern language
  bool nearest = false;  // it begins with a "^" of the pattern language
};

class Parser {
 public:
  Parser(std::string_view text, PathPattern::Fault& fault) : text_(text), fault_(fault) {}

  struct Component {
    Word type;
    Word name;
    bool named = false;
  };

  /// Divides the text into components. `absolute` is set when the text begins with "/". Returns false when the text is
  /// not a pattern.
  bool components(std::vector<Component>& out, bool& absolute) {
    std::size_t begin = 0;
    std::size_t end = text_.size();
    while (begin < end && isSpace(text_[begin])) ++begin;
    while (end > begin && isSpace(text_[end - 1]) && !isEscaped(begin, end - 1)) --end;
    if (begin == end) return fail(0, text_.size(), "the path is empty");

    absolute = text_[begin] == '/';
    if (absolute) {
      ++begin;
      if (begin == end) return true;
    }
    for (;;) {
      std::size_t const componentEnd = findBare('/', begin, end);
      if (out.size() == PathPattern::maxSteps) {
        return fail(begin, componentEnd - begin, "the path has more than 1000 components");
      }
      out.emplace_back();
      if (!component(begin, componentEnd, out.back())) return false;
      if (componentEnd == end) return true;
      begin = componentEnd + 1;
    }
  }

  bool fail(std::size_t offset, std::size_t length, std::string message) {
    fault_ = {offset, std::max<std::size_t>(length, 1), std::move(message)};
    return false;
  }
  bool fail(Word const& word, std::string message) { return fail(word.offset, word.length, std::move(message)); }

 private:
  [[nodiscard]] bool isEscaped(std::size_t begin, std::size_t i) const {
    std::size_t backslashes = 0;
    while (i > begin && text_[i - 1] == '\\') --i, ++backslashes;
    return backslashes % 2 == 1;
  }

  [[nodiscard]] std::size_t findBare(char wanted, std::size_t begin, std::size_t end) const {
    for (std::size_t i = begin; i < end; ++i) {
      if (text_[i] == '\\') {
        ++i;
      } else if (text_[i] == wanted) {
        return i;
      }
    }
    return end;
  }

  bool component(std::size_t begin, std::size_t end, Component& out) {
    std::size_t const colon = findBare(':', begin, end);
    if (!word(begin, colon, out.type)) return false;
    if (out.type.length == 0) {
      return fail(begin, end - begin,
                  colon == end ? "a component of the path is empty" : "the type before ':' is empty");
    }
    if (colon == end) return true;
    out.named = true;
    if (std::size_t const second = findBare(':', colon + 1, end); second != end) {
      return fail(second, 1, "a component has a second ':'");
    }
    if (!word(colon + 1, end, out.name)) return false;
    if (out.name.length == 0) return fail(colon, 1, "the name after ':' is empty");
    return true;
  }

  bool word(std::size_t begin, std::size_t end, Word& out) {
    while (begin < end && isSpace(text_[begin])) ++begin;
    while (end > begin && isSpace(text_[end - 1]) && !isEscaped(begin, end - 1)) --end;
    out.offset = begin;
    out.length = end - begin;
    for (std::size_t i = begin; i < end; ++i) {
      char c = text_[i];
      if (c == '\\') {
        if (++i == end) return fail(i - 1, 1, "'\\' must be followed by a character");
        c = text_[i];
        out.escaped = true;
        if (c == '/' || c == ':') {
          return fail(i - 1, 2, std::string("a type or name cannot contain '") + c + "'");
        }
      } else if (c == '*') {
        out.starred = true;
      } else if (c == '^' && i == begin) {
        out.nearest = true;
      }
      out.text += c;
    }
    return true;
  }

  std::string_view text_;
  PathPattern::Fault& fault_;
};

bool isBare(Word const& word, std::string_view text) {
  return !word.escaped && word.text == text;
}

bool makeStep(Parser& parser, Parser::Component& component, PathPattern::Step& step) {
  auto& [type, name, named] = component;
  if (type.nearest || isBare(type, "@")) {
    return parser.fail(type, "'" + type.text.substr(0, 1) + "' is allowed only at the beginning of a path");
  }
  if (!named) {
    if (isBare(type, "..")) return step.kind = Kind::Parent, true;
    if (isBare(type, "*")) return step.kind = Kind::AnyChild, true;
    if (isBare(type, "**")) return step.kind = Kind::AnyDepth, true;
  }
  if (type.starred) {
    return parser.fail(type, "'*' can only replace a whole component or a whole name; write '\\*' for the character");
  }
  if (named && isBare(name, "*")) {
    step.kind = Kind::ChildrenOfType;
    step.type = std::move(type.text);
    return true;
  }
  if (named && name.starred) {
    return parser.fail(name, "'*' can only replace a whole name; write '\\*' for the character");
  }
  step.kind = Kind::Child;
  step.type = std::move(type.text);
  step.name = std::move(name.text);
  return true;
}

}  // namespace

PathPattern::PathPattern(std::string_view text) {
  Fault fault;
  auto parsed = parse(text, fault);
  if (!parsed) {
    throw ParseError("PathPattern", "PathPattern",
                     "\"" + std::string(text.substr(0, 200)) + "\" is not a path pattern: " + fault.message);
  }
  *this = std::move(*parsed);
}

std::optional<PathPattern> PathPattern::parse(std::string_view text, Fault& fault) {
  Parser parser(text, fault);
  std::vector<Parser::Component> components;
  bool absolute = false;
  if (!parser.components(components, absolute)) return std::nullopt;

  PathPattern pattern;
  std::size_t first = 0;
  if (absolute) {
    pattern.start_ = Start::Root;
  } else if (auto const& [type, name, named] = components.front(); isBare(type, "@") && !named) {
    pattern.start_ = Start::Owner;
    first = 1;
  } else if (type.nearest) {
    if (named) return parser.fail(name, "'^' takes a type only, without a name"), std::nullopt;
    if (type.text.size() == 1) return parser.fail(type, "'^' needs a type after it"), std::nullopt;
    if (type.starred) return parser.fail(type, "'^' needs the name of a type after it"), std::nullopt;
    pattern.start_ = Start::Nearest;
    pattern.startType_ = StringUtilities::trimmed(std::string_view(type.text).substr(1));
    first = 1;
  }
  pattern.steps_.resize(components.size() - first);
  for (std::size_t i = first; i < components.size(); ++i) {
    if (!makeStep(parser, components[i], pattern.steps_[i - first])) return std::nullopt;
  }
  pattern.classify();
  return pattern;
}

std::optional<PathPattern> PathPattern::parseParameter(std::string_view text, std::string& name, Fault& fault) {
  auto pattern = parse(text, fault);
  if (!pattern) return std::nullopt;
  bool const ends = !pattern->steps_.empty();
  if (!ends || pattern->steps_.back().kind != StepKind::Child || !pattern->steps_.back().name.empty()) {
    Parser parser(text, fault);
    std::vector<Parser::Component> components;
    bool absolute = false;
    parser.components(components, absolute);
    if (components.empty())
      return parser.fail(0, text.size(), "the path must end in the name of a parameter"), std::nullopt;
    auto const& last = components.back();
    if (last.named) {
      parser.fail(last.type.offset, last.name.offset + last.name.length - last.type.offset,
                  "the path must end in the name of a parameter, which cannot contain ':'");
    } else {
      parser.fail(last.type, "the path must end in the name of a parameter");
    }
    return std::nullopt;
  }
  name = std::move(pattern->steps_.back().type);
  pattern->steps_.pop_back();
  pattern->classify();
  return pattern;
}

}  // namespace tarn
