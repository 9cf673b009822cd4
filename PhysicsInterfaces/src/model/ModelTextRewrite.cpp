// First each line is judged: it stays, goes, or gets another value. Then what the state has and the text has not is
// written between the lines. Nothing else is touched, so the rest needs no care. At the end the result is read again,
// because only the reader knows for sure what a line says.
#include <tarn/ModelTextRewrite.h>

#include <algorithm>
#include <tuple>
#include <unordered_set>
#include <utility>
#include <vector>

#include <tarn/Error.h>
#include <tarn/ModelText.h>
#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>

#include "model/ModelTextOutline.h"
#include "paths/PathSyntax.h"

namespace tarn {

namespace {

using Outline = ModelTextOutline;
using Kind = ModelTextOutline::Kind;
constexpr std::size_t none = ModelTextOutline::none;

/// The wanted state, by canonical paths.
class Wanted {
 public:
  explicit Wanted(ModelState const& state) : state_(&state) {
    auto const isOther = [](auto const& entry) { return Outline::canonicalPath(entry.first) != entry.first; };
    if (std::none_of(state.begin(), state.end(), isOther)) return;
    for (auto const& [path, params] : state) {
      ObjectState& own = canonical_[Outline::canonicalPath(path)];
      own.insert(params.begin(), params.end());
    }
    state_ = &canonical_;
  }
  Wanted(Wanted const&) = delete;
  Wanted& operator=(Wanted const&) = delete;

  [[nodiscard]] ModelState const& state() const noexcept { return *state_; }

  [[nodiscard]] ObjectState const* find(std::string const& path) const {
    auto const found = state_->find(path);
    return found == state_->end() ? nullptr : &found->second;
  }
  /// The first entry below a path.
  [[nodiscard]] ModelState::const_iterator firstBelow(std::string const& path) const {
    return state_->lower_bound(path + '/');
  }
  [[nodiscard]] bool hasBelow(std::string const& path) const {
    auto const below = firstBelow(path);
    return below != state_->end() && isBelow(below->first, path);
  }
  [[nodiscard]] bool exists(std::string const& path) const {
    return path.empty() || state_->contains(path) || hasBelow(path);
  }
  [[nodiscard]] static bool isBelow(std::string_view path, std::string_view top) noexcept {
    return path.size() > top.size() && path.starts_with(top) && path[top.size()] == '/';
  }

 private:
  ModelState const* state_;
  ModelState canonical_;
};

std::string_view leadingBlanks(std::string_view text) {
  return text.substr(0, std::min(text.find_first_not_of(" \t\v\f\r"), text.size()));
}

std::string_view lineEndOf(std::string_view raw) {
  if (raw.ends_with("\r\n")) return raw.substr(raw.size() - 2);
  return raw.ends_with('\n') ? raw.substr(raw.size() - 1) : std::string_view();
}

/// The parts of the raw line of a parameter. Together they are the whole line.
struct ParamLine {
  std::string_view indent;
  /// The path as it is spelt, with its last slash. Empty if the path is not in the line.
  std::string_view path;
  std::string_view name;
  std::string_view beforeEquals;
  std::string_view afterEquals;
  std::string_view value;
  std::string_view rest;

  ParamLine(std::string_view raw, bool isPathInLine) {
    std::size_t const equals = raw.find('=');
    indent = leadingBlanks(raw);
    std::string_view left = raw.substr(indent.size(), equals - indent.size());
    std::string_view const written = StringUtilities::trimmed(left);
    beforeEquals = left.substr(written.size());
    std::size_t const slash = isPathInLine ? written.rfind('/') + 1 : 0;
    path = written.substr(0, slash);
    name = written.substr(slash);
    std::string_view const right = raw.substr(equals + 1);
    value = StringUtilities::trimmed(right);
    std::size_t const begin = value.empty() ? std::min(right.find_first_of("\r\n"), right.size())
                                            : static_cast<std::size_t>(value.data() - right.data());
    afterEquals = right.substr(0, begin);
    rest = right.substr(begin + value.size());
  }

  /// The blanks between "=" and a value. A line without a value may have none.
  [[nodiscard]] std::string_view beforeValue() const noexcept {
    if (!afterEquals.empty() || !value.empty()) return afterEquals;
    return beforeEquals.empty() ? "" : " ";
  }

  /// The same line with another name and value. Signs "=" that are aligned stay so if the name has room.
  [[nodiscard]] std::string with(std::string const& newName, std::string const& newValue) const {
    std::string line;
    line.append(indent).append(path).append(newName);
    std::size_t blanks = beforeEquals.size();
    if (blanks > 1) blanks = std::max(name.size() + blanks, newName.size() + 1) - newName.size();
    line.append(blanks, ' ').append("=");
    if (!newValue.empty()) line.append(beforeValue()).append(newValue);
    return line;
  }
};

/// Objects as nested blocks.
class BlockText {
 public:
  /// `skipped` bytes of each path are those of the object around all blocks.
  BlockText(std::string indent, std::string const& unit, std::string_view lineEnd, std::size_t skipped)
      : indent_(std::move(indent)), unit_(unit), lineEnd_(lineEnd), skipped_(skipped) {}

  void add(std::string const& path, ObjectState const& params) {
    std::string_view rest = std::string_view(path).substr(skipped_);
    std::size_t depth = 0;
    while (depth < open_.size() && (rest == open_[depth] || Wanted::isBelow(rest, open_[depth]))) {
      rest.remove_prefix(open_[depth].size());
      ++depth;
    }
    while (open_.size() > depth) close();
    while (!rest.empty()) {
      std::size_t const end = std::min(rest.find('/', 1), rest.size());
      open(rest.substr(0, end));
      rest.remove_prefix(end);
    }
    for (auto const& [name, value] : params) line(name + " = " + value);
  }

  std::string finished() {
    while (!open_.empty()) close();
    return std::move(text_);
  }

 private:
  void open(std::string_view component) {
    std::string_view const label = component.substr(1);
    std::size_t const colon = std::min(label.find(':'), label.size());
    std::string const name(label.substr(std::min(colon + 1, label.size())));
    line(std::string(label.substr(0, colon)) + ':' + (name.empty() ? "" : " " + name));
    open_.emplace_back(component);
    indent_ += unit_;
  }

  void close() {
    indent_.resize(indent_.size() - unit_.size());
    std::string const label = open_.back().substr(1);
    line("END # " + label + (label.find(':') == std::string::npos ? ":" : ""));
    open_.pop_back();
  }

  void line(std::string const& text) { text_.append(indent_).append(text).append(lineEnd_); }

  std::string indent_;
  std::string const& unit_;
  std::string_view lineEnd_;
  std::size_t skipped_;
  std::vector<std::string> open_;
  std::string text_;
};

class Rewriting {
 public:
  Rewriting(std::string_view text, ModelState const& state, ModelTextOrder const& order)
      : outline_(text), wanted_(state), order_(order), lines_(outline_.lines().size()), lineEnd_("\n") {
    for (Outline::Object const& object : outline_.objects()) isWanted_.push_back(wanted_.exists(object.path));
    if (!outline_.lines().empty()) {
      std::string_view const end = lineEndOf(outline_.lines().front().raw);
      if (!end.empty()) lineEnd_ = end;
    }
    findIndentation();
  }

  std::string run() {
    judgeLines();
    for (auto const& [path, params] : wanted_.state()) {
      std::size_t const object = outline_.find(path);
      if (object != none) {
        completeObject(object, params);
      } else {
        addTop(path);
      }
    }
    std::string text = joined();
    check(text);
    return text;
  }

 private:
  struct LineEdit {
    bool isDropped = false;
    bool isReplaced = false;
    /// The line, if it is replaced.
    std::string text;
    /// Whole lines that follow it.
    std::string after;
  };

  /// A parameter in the order in which lines are written.
  struct ParamPlace {
    std::size_t rank;
    std::string name;
    std::size_t line;

    friend bool operator<(ParamPlace const& a, ParamPlace const& b) {
      return std::tie(a.rank, a.name) < std::tie(b.rank, b.name);
    }
  };

  // The lines that stay.

  void judgeLines() {
    auto const& lines = outline_.lines();
    for (std::size_t i = 0; i < lines.size(); ++i) {
      Outline::Line const& line = lines[i];
      if (line.kind == Kind::EmptyObject) {
        lines_[i].isDropped = !isWanted_[line.object];
      } else if (line.kind == Kind::Parameter) {
        judgeParam(i);
      } else {
        lines_[i].isDropped = line.block != none && !isWanted_[outline_.blocks()[line.block].object];
      }
    }
  }

  void judgeParam(std::size_t i) {
    Outline::Line const& line = outline_.lines()[i];
    Outline::Object const& object = outline_.objects()[line.object];
    if (line.object != judged_) {
      judged_ = line.object;
      judgedParams_ = wanted_.find(object.path);
    }
    auto const value =
        judgedParams_ == nullptr ? ObjectState::const_iterator() : judgedParams_->find(std::string(line.name));
    if (judgedParams_ == nullptr || value == judgedParams_->end()) {
      lines_[i].isDropped = true;
    } else if (line.isFirst && line.value != value->second) {
      ParamLine const parts(line.raw, line.isPathInLine);
      std::string& text = lines_[i].text;
      text.assign(line.raw.data(), static_cast<std::size_t>(parts.afterEquals.data() - line.raw.data()));
      text.append(parts.beforeValue()).append(value->second).append(parts.rest);
      lines_[i].isReplaced = true;
    }
  }

  // New parameters of objects that the text mentions.

  void completeObject(std::size_t number, ObjectState const& params) {
    Outline::Object const& object = outline_.objects()[number];
    if (params.empty()) {
      bool const isSaid = number == 0 || object.hasOwnLine || !object.blocks.empty() || wanted_.hasBelow(object.path);
      if (!isSaid) insert(object.lastInLine, object.path + '/');
      return;
    }
    std::vector<ParamPlace> added;
    for (auto const& param : params) {
      if (!object.params.contains(param.first)) added.push_back({rankOf(object.path, param.first), param.first, none});
    }
    if (added.empty()) return;
    std::sort(added.begin(), added.end());
    std::vector<ParamPlace> known;
    for (auto const& [name, line] : object.params) {
      known.push_back({rankOf(object.path, std::string(name)), std::string(name), line});
    }
    std::sort(known.begin(), known.end());
    for (ParamPlace const& param : added) {
      std::string const& value = params.at(param.name);
      if (known.empty()) {
        addFirstParam(object, param.name, value);
        continue;
      }
      auto const next = std::upper_bound(known.begin(), known.end(), param);
      bool const isFirst = next == known.begin();
      std::size_t const beside = isFirst ? next->line : std::prev(next)->line;
      Outline::Line const& line = outline_.lines()[beside];
      insert(isFirst ? lineAbove(beside) : beside, ParamLine(line.raw, line.isPathInLine).with(param.name, value));
    }
  }

  /// The text has no line for a parameter of this object.
  void addFirstParam(Outline::Object const& object, std::string const& name, std::string const& value) {
    if (!object.blocks.empty()) {
      std::size_t const block = object.blocks.front();
      insert(outline_.blocks()[block].opening, indentIn(block) + name + " = " + value);
    } else {
      std::size_t const place = object.firstInLine == none ? none : lineAbove(object.firstInLine);
      insert(place, object.path + '/' + name + '=' + value);
    }
  }

  [[nodiscard]] std::size_t rankOf(std::string const& path, std::string const& name) const {
    return order_ ? order_(path, name) : 0;
  }

  // Objects that the text does not mention.

  /// Writes everything at and below the highest unknown object on the way to `path`, once.
  void addTop(std::string const& path) {
    std::string top = path;
    std::size_t parent = none;
    for (;;) {
      std::string above(PathUtils::parentOf(top));
      parent = outline_.find(above);
      if (parent != none) break;
      top = std::move(above);
    }
    if (!addedTops_.insert(top).second) return;
    Outline::Object const& object = outline_.objects()[parent];
    std::string_view const type = PathUtils::lastType(top);
    if (!object.blocks.empty()) {
      addBlock(object.blocks.back(), type, top);
    } else if (parent == 0 && (!outline_.blocks().empty() || object.lastInLine == none)) {
      addBlock(none, type, top);
    } else {
      addLines(object, type, top);
    }
  }

  void addBlock(std::size_t outer, std::string_view type, std::string const& top) {
    std::size_t place = none;
    auto const last = lastBlocks().find({outer, type});
    if (last != lastBlocks().end()) {
      place = outline_.blocks()[last->second].closing;
    } else if (outer == none) {
      place = outline_.lines().empty() ? none : outline_.lines().size() - 1;
    } else {
      place = outline_.blocks()[outer].closing - 1;
    }
    BlockText block(outer == none ? std::string() : indentIn(outer), unit_, lineEnd_, PathUtils::parentOf(top).size());
    forEachAt(top, [&](std::string const& path, ObjectState const& params) { block.add(path, params); });
    insertLines(place, block.finished());
  }

  void addLines(Outline::Object const& parent, std::string_view type, std::string const& top) {
    std::size_t place = parent.lastInLine;
    auto const last = lastLines().find({outline_.find(parent.path), type});
    if (last != lastLines().end()) place = last->second;
    std::string text;
    forEachAt(top, [&](std::string const& path, ObjectState const& params) {
      for (auto const& [name, value] : params)
        text.append(path).append("/").append(name).append("=").append(value).append(lineEnd_);
      if (params.empty() && !wanted_.hasBelow(path)) text.append(path).append("/").append(lineEnd_);
    });
    insertLines(place, text);
  }

  template <typename Each>
  void forEachAt(std::string const& top, Each const& each) const {
    if (ObjectState const* const params = wanted_.find(top)) each(top, *params);
    auto const& state = wanted_.state();
    for (auto i = wanted_.firstBelow(top); i != state.end() && Wanted::isBelow(i->first, top); ++i)
      each(i->first, i->second);
  }

  // Places.

  using PlaceOfType = std::map<std::pair<std::size_t, std::string_view>, std::size_t>;

  /// By the block around and the type: the last block that stays.
  PlaceOfType const& lastBlocks() {
    if (!hasLastBlocks_) {
      auto const& blocks = outline_.blocks();
      for (std::size_t i = 0; i < blocks.size(); ++i) {
        if (!isWanted_[blocks[i].object]) continue;
        lastBlocks_[{blocks[i].outer, PathUtils::lastType(outline_.objects()[blocks[i].object].path)}] = i;
      }
      hasLastBlocks_ = true;
    }
    return lastBlocks_;
  }

  /// By the parent and the type: the last line that has the path of such an object in it.
  PlaceOfType const& lastLines() {
    if (!hasLastLines_) {
      auto const& objects = outline_.objects();
      for (std::size_t i = 1; i < objects.size(); ++i) {
        if (objects[i].lastInLine == none) continue;
        std::size_t& last = lastLines_[{objects[i].parent, PathUtils::lastType(objects[i].path)}];
        last = std::max(last, objects[i].lastInLine);
      }
      hasLastLines_ = true;
    }
    return lastLines_;
  }

  /// The line after which something stands that comes before `line` and before the comments right above it.
  [[nodiscard]] std::size_t lineAbove(std::size_t line) const {
    auto const& lines = outline_.lines();
    auto const isComment = [&lines](std::size_t i) {
      return lines[i].kind == Kind::Other && StringUtilities::trimmed(lines[i].raw).starts_with('#');
    };
    while (line > 0 && isComment(line - 1)) --line;
    return line == 0 ? none : line - 1;
  }

  void findIndentation() {
    for (Outline::Block const& block : outline_.blocks()) {
      std::string_view const outer = leadingBlanks(outline_.lines()[block.opening].raw);
      if (block.opening + 1 >= block.closing) continue;
      std::string_view const inner = leadingBlanks(outline_.lines()[block.opening + 1].raw);
      if (!inner.starts_with(outer) || inner.size() == outer.size()) continue;
      unit_ = inner.substr(outer.size());
      return;
    }
  }

  [[nodiscard]] std::string indentIn(std::size_t block) const {
    return std::string(leadingBlanks(outline_.lines()[outline_.blocks()[block].opening].raw)) + unit_;
  }

  /// `none` for the begin of the text.
  void insert(std::size_t line, std::string const& text) { insertLines(line, text + std::string(lineEnd_)); }
  void insertLines(std::size_t line, std::string const& text) {
    (line == none ? atBegin_ : lines_[line].after) += text;
  }

  // The result.

  [[nodiscard]] std::string joined() const {
    std::string text(outline_.mark());
    text += atBegin_;
    for (std::size_t i = 0; i < lines_.size(); ++i) {
      LineEdit const& line = lines_[i];
      if (!line.isDropped) text += line.isReplaced ? std::string_view(line.text) : outline_.lines()[i].raw;
      if (line.after.empty()) continue;
      if (!text.empty() && text.size() > outline_.mark().size() && text.back() != '\n') text += lineEnd_;
      text += line.after;
    }
    return text;
  }

  void check(std::string const& text) const {
    ModelText const read("<model>", text);
    Wanted const got(read.state());
    if (read.faultCount() == 0 && differsNowhere(got.state())) return;
    for (auto const& [path, params] : wanted_.state()) {
      ObjectState const* const found = got.find(path);
      for (auto const& [name, value] : params) {
        auto const param = found == nullptr ? ObjectState::const_iterator() : found->find(name);
        if (found != nullptr && param != found->end() && param->second == value) continue;
        fail("the value " + path_syntax::shown(value) + " of the parameter " + path_syntax::shown(path + '/' + name));
      }
      if (!got.exists(path)) fail("the object " + path_syntax::shown(path));
    }
    fail("the state");
  }

  [[nodiscard]] bool differsNowhere(ModelState const& got) const {
    auto const skip = [](ModelState const& state, ModelState::const_iterator i) {
      while (i != state.end() && i->second.empty()) {
        auto const next = std::next(i);
        // Something below says the same.
        auto const below = state.lower_bound(i->first + '/');
        bool const isImplied = i->first.empty() || (below != state.end() && Wanted::isBelow(below->first, i->first));
        if (!isImplied) break;
        i = next;
      }
      return i;
    };
    ModelState const& wanted = wanted_.state();
    auto a = skip(wanted, wanted.begin());
    auto b = skip(got, got.begin());
    while (a != wanted.end() && b != got.end()) {
      if (*a != *b) return false;
      a = skip(wanted, std::next(a));
      b = skip(got, std::next(b));
    }
    return a == wanted.end() && b == got.end();
  }

  [[noreturn]] static void fail(std::string const& what) {
    throw ParseError("ModelTextRewrite", "rewriteModelText",
                     what +
                         " cannot be written as model text; a value cannot hold a line end or white space at its "
                         "ends, and a name cannot hold a sign of the text such as \"=\"");
  }

  Outline outline_;
  Wanted wanted_;
  ModelTextOrder const& order_;
  std::vector<bool> isWanted_;
  std::vector<LineEdit> lines_;
  std::string atBegin_;
  std::string lineEnd_;
  std::string unit_ = "  ";
  std::unordered_set<std::string> addedTops_;
  PlaceOfType lastBlocks_;
  PlaceOfType lastLines_;
  bool hasLastBlocks_ = false;
  bool hasLastLines_ = false;
  // The object whose parameters were judged last.
  std::size_t judged_ = none;
  ObjectState const* judgedParams_ = nullptr;
};

}  // namespace

std::string rewriteModelText(std::string_view text, ModelState const& state, ModelTextOrder const& order) {
  return Rewriting(text, state, order).run();
}

}  // namespace tarn
