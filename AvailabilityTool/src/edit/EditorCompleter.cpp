#include "edit/EditorCompleter.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>

#include "console/Candidates.h"
#include "console/PathCompletion.h"
#include "edit/ShownText.h"

namespace tarn::tool {

namespace {

using session::ChildTypeRecord;
using session::ParamRecord;
using session::Session;

/// A longer value is not put into the line: nobody edits it there.
constexpr std::size_t longestValue = 1000;

std::string_view withoutLeadingBlanks(std::string_view text) {
  auto const* const begin = std::find_if_not(text.begin(), text.end(), StringUtilities::isSpace);
  return text.substr(static_cast<std::size_t>(begin - text.begin()));
}

bool isNamed(std::string_view component) {
  return component.find(':') != std::string_view::npos;
}

/// The content of an object, as far as a command can be about it.
class Level {
 public:
  Level(Session const& session, Word word, std::string path, std::string const& start)
      : session_(session), word_(word), path_(std::move(path)), start_(start) {}

  Candidates candidates() {
    std::string const& root = session_.root();
    if (path_.size() < root.size()) {
      // Above the root only the way to it is offered.
      if (StringUtilities::isPathRootedAt(path_, root)) {
        std::string const rest = root.substr(path_.size() + 1);
        bool const isRoot = rest.find('/') == std::string::npos;
        add(rest.substr(0, rest.find('/')), {isRoot && takesRoot(), true});
      }
      return std::move(found_);
    }
    addChildren();
    addParams();
    return std::move(found_);
  }

 private:
  [[nodiscard]] bool takesRoot() const { return word_ == Word::Show || word_ == Word::List || word_ == Word::Go; }

  void add(std::string const& component, Candidate candidate) {
    if (!component.starts_with(start_)) return;
    Candidate& known = found_[component];
    known.whole = known.whole || candidate.whole;
    known.deeper = known.deeper || candidate.deeper;
  }

  void addChildren() {
    std::vector<std::string> children;
    (void)session_.provisional().getActiveTree().getChildObjectPaths(path_, children);
    for (std::string const& child : children) {
      std::string const component = child.substr(path_.size() + 1);
      if (component.starts_with(start_)) add(component, {takesPresent(child, component), true});
    }
    if (word_ != Word::On && word_ != Word::Add && word_ != Word::Show) return;
    for (ChildTypeRecord const& type : session_.childTypes(path_)) {
      if (word_ == Word::Add) {
        if (type.canAdd) add(type.type + ':', {true, false});
        continue;
      }
      for (std::string const& offered : type.offered) add(offered.substr(path_.size() + 1), {true, false});
      if (word_ == Word::Show && type.singleton) add(type.type, {true, false});
    }
  }

  [[nodiscard]] bool takesPresent(std::string const& path, std::string const& component) const {
    switch (word_) {
      case Word::Show:
      case Word::List:
      case Word::Go:
        return true;
      case Word::Remove:
      case Word::Copy:
      case Word::Rename:
        return isNamed(component);
      case Word::Off: {
        auto const object = session_.lookObject(path);
        return object && !object->required && object->editable;
      }
      default:
        return false;
    }
  }

  void addParams() {
    if (word_ != Word::Set && word_ != Word::On && word_ != Word::Off && word_ != Word::Show) return;
    for (std::string const& name : session_.params(path_)) {
      if (!name.starts_with(start_)) continue;
      if (word_ == Word::Show) {
        add(name, {true, false});
        continue;
      }
      auto const param = session_.lookParam(path_, name);
      if (!param) continue;
      bool const isTaken = word_ == Word::Set  ? param->available()
                           : word_ == Word::On ? param->offered
                                               : param->present && (!param->required || param->waiting);
      if (isTaken) add(name, {true, false});
    }
  }

  Session const& session_;
  Word const word_;
  std::string const path_;
  std::string const& start_;
  Candidates found_;
};

Completion completeNumber(ParamRecord const& param, std::string_view typed) {
  std::size_t const end = typed.find_first_not_of("0123456789+-.eE");
  if (end == 0 || end == std::string_view::npos) return {};
  // Between the number and the units there may be a blank and a bracket.
  std::string_view unit = withoutLeadingBlanks(typed.substr(end));
  bool const hasBracket = unit.starts_with('[');
  if (hasBracket) unit.remove_prefix(1);
  std::vector<std::string> units;
  units.reserve(param.units.size());
  for (std::string const& one : param.units) units.push_back(hasBracket ? one + ']' : '[' + one + ']');
  return completeWord(units, unit);
}

Completion completeValue(ParamRecord const& param, std::string_view typed) {
  std::vector<std::string> words =
      param.allowed.hasSubset ? param.allowed.subsetValues.vector() : param.allowed.allowedValues.vector();
  bool const isLogical = TDFParam::elementType(param.type) == TDFParam::Logical;
  if (words.empty() && isLogical) words = {"yes", "no"};
  if (words.empty()) {
    if (Completion units = completeNumber(param, typed); units.total > 0) return units;
    std::string const& value = param.value ? *param.value : param.defaultValue.value_or("");
    return value.empty() || value.size() > longestValue ? Completion() : completeWord({value}, typed);
  }
  Completion completion = completeWord(words, typed);
  // An allowed value can contain a comma. So the text is a list only if it is not the beginning of a value.
  auto const comma = typed.rfind(',');
  if (completion.total > 0 || comma == std::string_view::npos) return completion;
  return completeWord(words, withoutLeadingBlanks(typed.substr(comma + 1)));
}

}  // namespace

Completion EditorCompleter::complete(std::string_view line, std::size_t cursor) const {
  std::string_view const text = withoutLeadingBlanks(line.substr(0, cursor));
  auto const* const blank = std::find_if(text.begin(), text.end(), StringUtilities::isSpace);
  if (blank != text.end()) {
    auto const length = static_cast<std::size_t>(blank - text.begin());
    auto const found = findCommand(text.substr(0, length), true);
    auto const* const word = std::get_if<Word>(&found);
    return word == nullptr ? Completion() : completeArgument(*word, withoutLeadingBlanks(text.substr(length)));
  }
  std::vector<std::string> names;
  for (CommandInfo const& info : allCommands()) names.emplace_back(info.name);
  Completion completion = completeWord(names, text);
  if (completion.total == 1) {
    auto const found = findCommand(completion.choices.front(), false);
    if (!infoOf(std::get<Word>(found)).arguments.empty()) completion.insert += ' ';
  }
  return completion;
}

Completion EditorCompleter::completeArgument(Word word, std::string_view text) const {
  switch (word) {
    case Word::Set:
      return completeSetting(text);
    case Word::On:
    case Word::Off:
    case Word::Add:
    case Word::Remove:
    case Word::Copy:
    case Word::Rename:
    case Word::Show:
    case Word::List:
    case Word::Go:
      return completeItem(word, std::string(text));
    case Word::Why:
    case Word::How:
      return text.find('=') != std::string_view::npos ? completeSetting(text)
                                                      : completeItem(Word::Show, std::string(text));
    case Word::Try: {
      auto const* const blank = std::find_if(text.begin(), text.end(), StringUtilities::isSpace);
      auto const length = static_cast<std::size_t>(blank - text.begin());
      if (blank != text.end()) {
        auto const found = findCommand(text.substr(0, length), true);
        auto const* const edit = std::get_if<Word>(&found);
        bool const isKnown = edit != nullptr && isEdit(*edit);
        return isKnown ? completeArgument(*edit, withoutLeadingBlanks(text.substr(length))) : Completion();
      }
      std::vector<std::string> names;
      for (CommandInfo const& info : allCommands()) {
        if (isEdit(info.word)) names.emplace_back(info.name);
      }
      Completion completion = completeWord(names, text);
      if (completion.total == 1) completion.insert += ' ';
      return completion;
    }
    case Word::Effects: {
      std::vector<std::string> words = {"all"};
      for (Section const section : allSections) words.emplace_back(sectionWord(section));
      return completeWord(words, text);
    }
    case Word::Help: {
      std::vector<std::string> names;
      for (CommandInfo const& info : allCommands()) names.emplace_back(info.name);
      return completeWord(names, text);
    }
    case Word::Save:
      return completePath(
          std::string(text.starts_with("over ") ? withoutLeadingBlanks(text.substr(5)) : text), files,
          [](std::string const& name) { return harmless(name) == name; }, "");
    case Word::Quit:
      return completeWord({"unsaved"}, text);
    default:
      return {};
  }
}

Completion EditorCompleter::completeItem(Word word, std::string const& typed) const {
  bool const isDivided = word == Word::Copy || word == Word::Rename || word == Word::Set;
  if (isDivided && typed.find('=') != std::string::npos) return {};
  auto const level = [&](std::string const& folder, std::string const& start) {
    std::string path =
        folder.empty() ? editor_.here() : editor_.absolute(std::string_view(folder).substr(0, folder.size() - 1));
    if (folder == "/" || path == "/") path.clear();
    return Level(session_, word, std::move(path), start).candidates();
  };
  auto const arrives = [&](std::string const& path) {
    return harmless(path) == path && (!isDivided || path.find('=') == std::string::npos);
  };
  return completePath(typed, level, arrives, isDivided ? " = " : "");
}

Completion EditorCompleter::completeSetting(std::string_view text) const {
  std::size_t const equals = text.find('=');
  if (equals == std::string_view::npos) return completeItem(Word::Set, std::string(text));
  std::string const path = editor_.absolute(text.substr(0, equals));
  std::size_t const slash = path.rfind('/');
  auto const param = session_.lookParam(path.substr(0, slash), path.substr(slash + 1));
  return param ? completeValue(*param, withoutLeadingBlanks(text.substr(equals + 1))) : Completion();
}

}  // namespace tarn::tool
