// Path patterns: parsing, resolution to one path, expansion over a model.
//
// Expansion goes step by step over a list of candidates. A candidate that came out of a listing is known to exist; one
// that was only written down is asked for at the end, once. Candidates are made distinct wherever a step can bring the
// same object twice, so that `**/**` stays linear in the size of the model for each step.

#include <tarn/PathPattern.h>

#include <algorithm>
#include <unordered_set>
#include <utility>

#include <tarn/Error.h>
#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>

namespace tarn {

namespace {

using StringUtilities::isSpace;
using Kind = PathPattern::StepKind;

/// A type or name of a pattern: the text it stands for, and where it was written.
struct Word {
  std::string text;
  std::size_t offset = 0;
  std::size_t length = 0;
  bool escaped = false;  // some character of it was escaped, so it is no `*`, `..` or the like
  bool starred = false;  // it holds a "*" of the pattern language
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

  /// Divides the text into components. `absolute` tells of a "/" at the front. False when the text is no pattern.
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
      return fail(second, 1, "a component holds a second ':'");
    }
    if (!word(colon + 1, end, out.name)) return false;
    if (out.name.length == 0) return fail(colon, 1, "the name behind ':' is empty");
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
        if (++i == end) return fail(i - 1, 1, "'\\' must stand before a character");
        c = text_[i];
        out.escaped = true;
        if (c == '/' || c == ':') {
          return fail(i - 1, 2, std::string("no type or name of a model can hold '") + c + "'");
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
    return parser.fail(type, "'" + type.text.substr(0, 1) + "' may stand only at the beginning of a path");
  }
  if (!named) {
    if (isBare(type, "..")) return step.kind = Kind::Parent, true;
    if (isBare(type, "*")) return step.kind = Kind::AnyChild, true;
    if (isBare(type, "**")) return step.kind = Kind::AnyDepth, true;
  }
  if (type.starred) {
    return parser.fail(type, "'*' can stand for a whole component or a whole name only; write '\\*' for the character");
  }
  if (named && isBare(name, "*")) {
    step.kind = Kind::ChildrenOfType;
    step.type = std::move(type.text);
    return true;
  }
  if (named && name.starred) {
    return parser.fail(name, "'*' can stand for a whole name only; write '\\*' for the character");
  }
  step.kind = Kind::Child;
  step.type = std::move(type.text);
  step.name = std::move(name.text);
  return true;
}

void append(std::string& path, PathPattern::Step const& step) {
  path += '/';
  path += step.type;
  if (!step.name.empty()) {
    path += ':';
    path += step.name;
  }
}

bool toParent(std::string& path) {
  if (path.empty()) return false;
  path.resize(PathUtils::parentOf(path).size());
  return true;
}

void appendEscaped(std::string& out, std::string_view word) {
  bool const dots = word == "..";
  for (std::size_t i = 0; i < word.size(); ++i) {
    char const c = word[i];
    bool const end = i == 0 || i + 1 == word.size();
    if (c == '\\' || c == '*' || c == '}' || c == '{' || (i == 0 && (c == '^' || c == '@' || dots)) ||
        (end && isSpace(c))) {
      out += '\\';
    }
    out += c;
  }
}

struct Candidate {
  std::string path;
  bool known;  // the model listed it
};

bool lacksName(std::string const& path) noexcept {
  std::size_t const mark = path.find_last_of("/:");
  return mark == std::string::npos || path[mark] == '/';
}

void makeDistinct(std::vector<Candidate>& candidates) {
  std::unordered_set<std::string_view> seen;
  std::vector<Candidate> distinct;
  seen.reserve(candidates.size());
  distinct.reserve(candidates.size());  // the views into it must not move
  for (auto& candidate : candidates) {
    if (seen.contains(candidate.path)) continue;
    distinct.push_back(std::move(candidate));
    seen.insert(distinct.back().path);
  }
  candidates = std::move(distinct);
}

/// Replaces each candidate by itself and everything below it, depth first. What an earlier candidate brought is not
/// walked again: everything below it has been brought as well.
void descend(std::vector<Candidate>& candidates, ModelTDF const& model) {
  std::vector<Candidate> result;
  std::unordered_set<std::string> seen;
  std::vector<Candidate> open;
  std::vector<std::string> children;
  for (auto& start : candidates) {
    open.push_back(std::move(start));
    while (!open.empty()) {
      Candidate next = std::move(open.back());
      open.pop_back();
      if (!seen.insert(next.path).second) continue;
      model.getChildObjectPaths(next.path, children);
      for (auto child = children.rbegin(); child != children.rend(); ++child) open.push_back({std::move(*child), true});
      result.push_back(std::move(next));
    }
  }
  candidates = std::move(result);
}

}  // namespace

PathPattern::PathPattern(std::string_view text) {
  Fault fault;
  auto parsed = parse(text, fault);
  if (!parsed) {
    throw ParseError("PathPattern", "PathPattern",
                     "\"" + std::string(text.substr(0, 200)) + "\" is no path pattern: " + fault.message);
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
    if (type.text.size() == 1) return parser.fail(type, "'^' needs a type behind it"), std::nullopt;
    if (type.starred) return parser.fail(type, "'^' needs the name of a type behind it"), std::nullopt;
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
                  "the path must end in the name of a parameter, which holds no ':'");
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

void PathPattern::classify() noexcept {
  single_ = std::all_of(steps_.begin(), steps_.end(),
                        [](Step const& step) { return step.kind == StepKind::Child || step.kind == StepKind::Parent; });
}

namespace {

bool startPath(PathPattern const& pattern, TDFContext const& context, std::string& path) {
  switch (pattern.start()) {
    case PathPattern::Start::Root:
      path.clear();
      return true;
    case PathPattern::Start::Context:
      path = context.objPath();
      return true;
    case PathPattern::Start::Owner:
      path = context.ownerPath();
      return true;
    case PathPattern::Start::Nearest: {
      std::string_view nearest = context.objPath();
      while (!nearest.empty() && PathUtils::lastType(nearest) != pattern.startType()) {
        nearest = PathUtils::parentOf(nearest);
      }
      path = nearest;
      return !nearest.empty();
    }
  }
  return false;
}

}  // namespace

bool PathPattern::resolve(TDFContext const& context, std::string& path) const {
  if (!startPath(*this, context, path)) return false;
  for (auto const& step : steps_) {
    if (step.kind == StepKind::Child) {
      append(path, step);
    } else if (!toParent(path)) {
      return false;
    }
  }
  return true;
}

std::vector<std::string> PathPattern::expand(TDFContext const& context, ModelTDF const& model) const {
  std::vector<std::string> result;
  std::vector<Candidate> candidates(1);
  if (!startPath(*this, context, candidates[0].path)) return result;
  candidates[0].known = false;

  bool mayRepeat = false;
  std::vector<std::string> found;
  for (auto const& step : steps_) {
    switch (step.kind) {
      case StepKind::Child:
        for (auto& candidate : candidates) {
          append(candidate.path, step);
          candidate.known = false;
        }
        break;
      case StepKind::Parent:
        std::erase_if(candidates, [](Candidate& candidate) {
          candidate.known = false;
          return !toParent(candidate.path);
        });
        makeDistinct(candidates);
        break;
      case StepKind::ChildrenOfType:
      case StepKind::AnyChild: {
        std::vector<Candidate> next;
        for (auto const& candidate : candidates) {
          if (step.kind == StepKind::AnyChild) {
            model.getChildObjectPaths(candidate.path, found);
          } else {
            model.getChildObjectPathsByType(candidate.path, step.type, found);
          }
          // A model that holds an object in both forms, /Case/Dom and /Case/Dom:Dom, lists one path twice.
          mayRepeat = mayRepeat || std::count_if(found.begin(), found.end(), lacksName) > 1;
          for (auto& path : found) next.push_back({std::move(path), true});
        }
        candidates = std::move(next);
        break;
      }
      case StepKind::AnyDepth:
        descend(candidates, model);
        break;
    }
  }

  if (mayRepeat) makeDistinct(candidates);
  result.reserve(candidates.size());
  for (auto& candidate : candidates) {
    if (candidate.known || model.hasObject(candidate.path)) result.push_back(std::move(candidate.path));
  }
  return result;
}

bool PathPattern::findIf(TDFContext const& context, ModelTDF const& model,
                         std::function<bool(std::string const& path)> const& holds) const {
  auto const goesDown = [](Step const& step) {
    return step.kind == StepKind::Child || step.kind == StepKind::ChildrenOfType || step.kind == StepKind::AnyChild;
  };
  if (!std::all_of(steps_.begin(), steps_.end(), goesDown)) {
    auto const paths = expand(context, model);
    return std::any_of(paths.begin(), paths.end(), holds);
  }

  /// Objects that have taken the steps before `step`, the next one last.
  struct Level {
    std::size_t step;
    bool known;
    std::vector<std::string> paths;
  };
  std::vector<Level> levels(1, Level{0, false, std::vector<std::string>(1)});
  if (!startPath(*this, context, levels[0].paths[0])) return false;
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.paths.empty()) {
      levels.pop_back();
      continue;
    }
    std::string path = std::move(level.paths.back());
    level.paths.pop_back();
    std::size_t step = level.step;
    bool known = level.known;
    for (; step < steps_.size() && steps_[step].kind == StepKind::Child; ++step) {
      append(path, steps_[step]);
      known = false;
    }
    if (step == steps_.size()) {
      if ((known || model.hasObject(path)) && holds(path)) return true;
      continue;
    }
    std::vector<std::string> found;
    if (steps_[step].kind == StepKind::AnyChild) {
      model.getChildObjectPaths(path, found);
    } else {
      model.getChildObjectPathsByType(path, steps_[step].type, found);
    }
    std::reverse(found.begin(), found.end());
    levels.push_back({step + 1, true, std::move(found)});
  }
  return false;
}

PathPattern PathPattern::seenFrom(PathPattern const& base) const {
  if (start_ == Start::Root || start_ == Start::Owner) return *this;
  PathPattern result = base;
  if (start_ == Start::Nearest) {
    auto const isOfType = [&](Step const& step) {
      return (step.kind == StepKind::Child || step.kind == StepKind::ChildrenOfType) && step.type == startType_;
    };
    auto const isClear = [](Step const& step) {
      return step.kind == StepKind::Child || step.kind == StepKind::ChildrenOfType;
    };
    auto const nearest = std::find_if(result.steps_.rbegin(), result.steps_.rend(), isOfType);
    bool const clear = std::all_of(result.steps_.rbegin(), nearest, isClear);
    if (clear && nearest != result.steps_.rend()) {
      result.steps_.erase(nearest.base(), result.steps_.end());
    } else if (clear && result.start_ == Start::Context) {
      result = PathPattern();
      result.start_ = Start::Nearest;
      result.startType_ = startType_;
    } else {
      result = PathPattern();
      result.start_ = Start::Root;
      result.steps_ = {{StepKind::AnyDepth, {}, {}}, {StepKind::ChildrenOfType, startType_, {}}};
    }
  }
  result.steps_.insert(result.steps_.end(), steps_.begin(), steps_.end());
  result.classify();
  return result;
}

std::string PathPattern::text() const {
  std::string out;
  bool separate = false;
  switch (start_) {
    case Start::Root:
      out = "/";
      break;
    case Start::Owner:
      out = "@";
      separate = true;
      break;
    case Start::Nearest:
      out = "^";
      appendEscaped(out, startType_);
      separate = true;
      break;
    case Start::Context:
      break;
  }
  for (auto const& step : steps_) {
    if (separate) out += '/';
    separate = true;
    switch (step.kind) {
      case StepKind::Child:
      case StepKind::ChildrenOfType:
        appendEscaped(out, step.type);
        if (step.kind == StepKind::ChildrenOfType) {
          out += ":*";
        } else if (!step.name.empty()) {
          out += ':';
          appendEscaped(out, step.name);
        }
        break;
      case StepKind::AnyChild:
        out += '*';
        break;
      case StepKind::AnyDepth:
        out += "**";
        break;
      case StepKind::Parent:
        out += "..";
        break;
    }
  }
  return out;
}

}  // namespace tarn
