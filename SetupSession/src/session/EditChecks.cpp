// A slip is refused, a wish is kept. A fact that is certain before the edit is judged before it; what only the rules
// can answer is judged from the state after it, which is then taken back.
#include "session/EditChecks.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include <tarn/Error.h>
#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFChangeFile.h>
#include <tarn/TDFPath.h>
#include <tarn/session/Session.h>

#include "review/ReviewJudge.h"
#include "session/EnteredValue.h"

namespace tarn::session {

namespace {

using Kind = Edit::Kind;

Refused refused(RefusalCode code, Edit const& edit, std::string sentence, std::optional<Edit> nearest = std::nullopt,
                SharedStrings possible = {}) {
  Refused result;
  result.code = code;
  result.edit = edit;
  result.sentence = std::move(sentence);
  result.nearest = std::move(nearest);
  result.possible = std::move(possible);
  return result;
}

bool isOfParam(Kind kind) {
  return kind == Kind::SetParam || kind == Kind::ActivateParam || kind == Kind::DeactivateParam;
}

bool givesName(Kind kind) {
  return kind == Kind::DuplicateObject || kind == Kind::RenameObject;
}

/// Model text is made of lines, so nothing in it can hold a line end.
bool hasLineEnd(std::string_view text) {
  return text.find_first_of(std::string_view("\n\r\0", 3)) != std::string_view::npos;
}

/// The text with blanks instead of what ends a line.
std::string onOneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return hasLineEnd(std::string_view(&c, 1)); }, ' ');
  return StringUtilities::removeWhitespace(text);
}

bool bringsObject(Kind kind) {
  return kind == Kind::AddObject || kind == Kind::ActivateObject;
}

/// Why model text cannot hold an object of this name. "" if it can.
std::string faultOfName(std::string_view name) {
  if (StringUtilities::trimmed(name).empty()) return "A name is missing.";
  std::string const beginning = shown(std::string(name)) + " cannot be a name: ";
  if (StringUtilities::trimmed(name) != name) return beginning + "a name has no white space at its ends.";
  std::size_t const sign = name.find_first_of("/:=");
  if (sign == std::string_view::npos) return {};
  return beginning + "model text has no place for \"" + name[sign] + "\" in a name.";
}

/// The name with another character instead of those that it cannot hold.
std::string writableName(std::string_view name) {
  std::string writable(StringUtilities::trimmed(name));
  std::replace_if(
      writable.begin(), writable.end(), [](char c) { return c == '/' || c == ':' || c == '='; }, '-');
  return writable;
}

bool isNamed(std::string const& path) {
  std::size_t const colon = path.rfind(':');
  std::size_t const slash = path.rfind('/');
  return colon != std::string::npos && (slash == std::string::npos || colon > slash);
}

/// The path in the form that the model uses, or why it cannot be read.
std::string canonical(std::string const& path, std::string& fault) {
  try {
    TDFPath parsed(path);
    if (parsed.size() > TDFChangeFile::maxComponents) {
      fault = "The path has more components than a model can hold";
      return {};
    }
    for (unsigned long long i = 0; i < parsed.size(); ++i) {
      if (parsed.getName(i) == parsed.getType(i)) parsed.setName(i, {});
    }
    return parsed.getFullPath();
  } catch (Error const& error) {
    fault = error.getMessage();
    return {};
  }
}

Edit withPath(Edit edit, std::string path) {
  edit.path = std::move(path);
  return edit;
}

std::string quotedPath(std::string const& path) {
  return shown(path.empty() ? "/" : path);
}

}  // namespace

std::optional<Refused> EditChecks::before(Edit& edit) const {
  if (auto fault = checkPath(edit)) return fault;
  switch (edit.kind) {
    case Kind::SetParam:
      return checkValue(edit);
    case Kind::ActivateParam:
      return checkParam(edit);
    case Kind::DeactivateParam:
      return checkDeactivateParam(edit);
    case Kind::ActivateObject:
    case Kind::DeactivateObject:
      return checkSwitch(edit);
    case Kind::AddObject:
      return checkAdd(edit);
    case Kind::RemoveObject:
      return checkRemove(edit);
    case Kind::DuplicateObject:
    case Kind::RenameObject:
      return checkCopy(edit);
  }
  return refused(RefusalCode::Unreadable, edit, "There is no such kind of edit.");
}

EditChecks::Checked EditChecks::checkPath(Edit const& edit) const {
  if (edit.path.size() > Session::mostCharacters || edit.name.size() > Session::mostCharacters ||
      edit.value.size() > Session::mostCharacters) {
    return refused(RefusalCode::Unreadable, Edit{edit.kind, {}, {}, {}}, "The edit is too long.");
  }
  if (hasLineEnd(edit.path) || hasLineEnd(edit.name) || hasLineEnd(edit.value)) {
    Edit nearest = edit;
    for (std::string* text : {&nearest.path, &nearest.name, &nearest.value}) *text = onOneLine(*text);
    return refused(RefusalCode::Unreadable, edit, "Paths, names and values are a single line of text.",
                   std::move(nearest));
  }
  std::string fault;
  std::string path = canonical(edit.path, fault);
  if (!fault.empty()) {
    return refused(RefusalCode::Unreadable, edit, fault + '.');
  }
  if (path != edit.path) {
    bool const isNameOfType =
        edit.kind == Kind::AddObject && edit.path.ends_with(':' + std::string(PathUtils::lastType(path)));
    std::string sentence = isNameOfType ? "The name of an object cannot be its type."
                                        : shown(edit.path) + " is written " + quotedPath(path) + '.';
    return refused(RefusalCode::Unreadable, edit, std::move(sentence), withPath(edit, std::move(path)));
  }
  if (givesName(edit.kind)) {
    std::string const wrong = faultOfName(edit.name);
    if (!wrong.empty()) {
      Checked result = refused(RefusalCode::Unreadable, edit, wrong);
      Edit nearest = edit;
      nearest.name = writableName(edit.name);
      if (!nearest.name.empty()) result->nearest = std::move(nearest);
      return result;
    }
  }
  if (edit.kind == Kind::SetParam || edit.kind == Kind::ActivateParam) {
    bool const isComment = edit.name.starts_with('#');
    std::size_t const sign = edit.name.find_first_of(":=");
    if (isComment || sign != std::string::npos) {
      return refused(RefusalCode::Unreadable, edit,
                     "The parameter " + shown(edit.name) + " cannot be saved: model text has no place for \"" +
                         (isComment ? '#' : edit.name[sign]) + "\" in the name of a parameter.");
    }
  }
  if (bringsObject(edit.kind) && isNamed(edit.path)) {
    std::string const name(PathUtils::lastName(edit.path));
    std::string const wrong = faultOfName(name);
    if (!wrong.empty()) {
      std::string const stem = edit.path.substr(0, edit.path.size() - name.size());
      return refused(RefusalCode::Unreadable, edit, wrong, withPath(edit, stem + writableName(name)));
    }
  }
  std::string const root = state_.state().getActiveRoot();
  if (!StringUtilities::isPathRootedAt(root, edit.path)) {
    return refused(RefusalCode::OutsideRoot, edit,
                   quotedPath(edit.path) + " is outside of " + shown(root) + ", which is being edited.");
  }
  if (edit.path == root && !isOfParam(edit.kind)) {
    return refused(RefusalCode::IsRoot, edit,
                   quotedPath(root) + " is being edited, so it cannot be added, copied, renamed, removed or switched.");
  }
  return std::nullopt;
}

bool EditChecks::isAskedFor(std::string const& path) const {
  return state_.hasObject(path) || state_.state().getGuideTree().hasObject(path) || isOffered_({path, std::nullopt});
}

/// The objects that a misspelt child of `parent` could be.
std::vector<std::string> EditChecks::knownChildren(std::string const& parent) const {
  std::vector<std::string> known;
  state_.state().getActiveTree().getChildObjectPaths(parent, known);
  std::vector<std::string> asked;
  state_.state().getGuideTree().getChildObjectPaths(parent, asked);
  known.insert(known.end(), asked.begin(), asked.end());
  if (ObjDependDef const* const rules = state_.rulesOfObject(parent)) {
    for (auto const& entry : rules->children()) {
      if (entry->singleton) known.push_back(parent + '/' + entry->type);
    }
  }
  std::sort(known.begin(), known.end());
  known.erase(std::unique(known.begin(), known.end()), known.end());
  return known;
}

/// Finds the first component of `path` that is wrong, and proposes the edit with the nearest one.
EditChecks::Checked EditChecks::unknownObject(Edit const& edit, std::string const& path) const {
  std::string const parent(PathUtils::parentOf(path));
  ChildRules const rules = state_.rulesOfChild(path);
  std::string sentence;
  if (!rules) {
    sentence =
        "The rules know no object " + shown(std::string(PathUtils::lastType(path))) + " in " + quotedPath(parent) + '.';
  } else {
    sentence = "There is no object " + shown(path) + '.';
  }
  Checked result = refused(RefusalCode::UnknownObject, edit, std::move(sentence));

  std::vector<std::string> const known = knownChildren(parent);
  std::string near;
  if (!rules) {
    // The type is misspelt, the name may be right.
    std::vector<std::string> types;
    if (ObjDependDef const* const parentRules = state_.rulesOfObject(parent)) {
      for (auto const& entry : parentRules->children()) types.push_back(entry->type);
    }
    near = StringUtilities::nearMatch(PathUtils::lastType(path), types);
    if (!near.empty() && isNamed(path)) near += ':' + std::string(PathUtils::lastName(path));
    bool const isNew = edit.kind == Kind::AddObject && path == edit.path;
    if (!isNew && !std::binary_search(known.begin(), known.end(), parent + '/' + near)) near.clear();
  }
  // To propose the removal of another object would be dangerous.
  bool const takesAway = edit.kind == Kind::RemoveObject || edit.kind == Kind::DeactivateObject;
  if (near.empty() && edit.kind != Kind::AddObject && !(takesAway && path == edit.path && rules)) {
    // Where the type is right, only the name can be misspelt: a type that two objects share says nothing.
    std::string const component = path.substr(parent.size() + 1);
    std::string const same = rules && isNamed(path) ? component.substr(0, component.find(':') + 1) : std::string();
    std::vector<std::string> candidates;
    candidates.reserve(known.size());
    for (std::string const& child : known) {
      std::string_view const candidate = std::string_view(child).substr(parent.size() + 1);
      if (candidate.starts_with(same)) candidates.emplace_back(candidate.substr(same.size()));
    }
    near = StringUtilities::nearMatch(component.substr(same.size()), candidates);
    if (!near.empty()) near = same + near;
  }
  if (!near.empty()) result->nearest = withPath(edit, parent + '/' + near + edit.path.substr(path.size()));
  return result;
}

/// Judges the object at `path` and those above it: whether the rules know them, and whether those with a name of the
/// user's choice were ever asked for.
EditChecks::Checked EditChecks::checkObject(Edit const& edit, std::string const& path) const {
  std::string const root = state_.state().getActiveRoot();
  std::vector<std::string> chain;
  for (std::string at = path; at.size() > root.size(); at = PathUtils::parentOf(at)) chain.push_back(at);
  std::reverse(chain.begin(), chain.end());
  for (std::string const& at : chain) {
    ChildRules const rules = state_.rulesOfChild(at);
    if (!rules) return unknownObject(edit, at);
    if (RuledState::isMirrored(*rules.entry)) {
      return refused(RefusalCode::NotEditable, edit,
                     "Objects " + shown(rules.entry->type) + " in " + quotedPath(std::string(PathUtils::parentOf(at))) +
                         " are taken from the model as they are.");
    }
    if (rules.entry->singleton && isNamed(at)) {
      return refused(RefusalCode::NotNamed, edit, "Objects " + shown(rules.entry->type) + " have no name.",
                     withPath(edit, at.substr(0, at.rfind(':')) + edit.path.substr(at.size())));
    }
    if (!rules.entry->singleton && !isNamed(at)) {
      Checked result = refused(RefusalCode::NameMissing, edit, "Objects " + shown(rules.entry->type) + " need a name.");
      std::vector<std::string> same;
      state_.state().getActiveTree().getChildObjectPathsByType(std::string(PathUtils::parentOf(at)), rules.entry->type,
                                                               same);
      if (same.size() == 1) result->nearest = withPath(edit, same.front() + edit.path.substr(at.size()));
      return result;
    }
    if (!rules.entry->singleton && !isAskedFor(at)) return unknownObject(edit, at);
  }
  return std::nullopt;
}

EditChecks::Checked EditChecks::checkParam(Edit const& edit) const {
  if (auto fault = checkObject(edit, edit.path)) return fault;
  if (state_.rulesOfParam(edit.path, edit.name)) return std::nullopt;
  ObjDependDef const* const rules = state_.rulesOfObject(edit.path);
  Checked result = refused(RefusalCode::UnknownParameter, edit,
                           "The rules know no parameter " + shown(edit.name) + " in " + quotedPath(edit.path) + '.');
  if (rules == nullptr) return result;
  std::vector<std::string> names;
  names.reserve(rules->params().size());
  for (auto const& entry : rules->params()) names.push_back(entry->name);
  std::string near = StringUtilities::nearMatch(edit.name, names);
  if (!near.empty()) {
    result->nearest = edit;
    result->nearest->name = std::move(near);
  }
  return result;
}

EditChecks::Checked EditChecks::checkValue(Edit& edit) const {
  if (auto fault = checkParam(edit)) return fault;
  return readValue(edit, state_.value(edit.path, edit.name) != nullptr || isOffered_({edit.path, edit.name}));
}

EditChecks::Checked EditChecks::readValue(Edit& edit, bool isAvailable) const {
  EnteredValue entered =
      readEnteredValue(state_, state_.rulesOfParam(edit.path, edit.name), edit.path, edit.value, isAvailable);
  if (!entered.fault) {
    edit.value = std::move(entered.value);
    return std::nullopt;
  }
  Checked result = refused(*entered.fault, edit,
                           "The parameter " + shown(edit.name) + " in " + quotedPath(edit.path) +
                               " cannot have the value " + shown(edit.value) + ": " + entered.reason + '.',
                           std::nullopt, std::move(entered.possible));
  if (!entered.value.empty()) {
    result->nearest = edit;
    result->nearest->value = std::move(entered.value);
  }
  return result;
}

EditChecks::Checked EditChecks::checkDeactivateParam(Edit const& edit) const {
  if (auto fault = checkParam(edit)) return fault;
  bool const isRequired = state_.rulesOfParam(edit.path, edit.name).entry->required;
  bool const isPresent = state_.value(edit.path, edit.name) != nullptr;
  if (!isRequired || !isPresent || state_.askedValue(edit.path, edit.name) != nullptr) return std::nullopt;
  return refused(RefusalCode::StandsByTheRules, edit,
                 "The parameter " + shown(edit.name) + " in " + quotedPath(edit.path) +
                     " is required, so it cannot be switched off.");
}

EditChecks::Checked EditChecks::checkSwitch(Edit const& edit) const {
  if (auto fault = checkObject(edit, edit.path)) {
    // A name of a closed list need not have been asked for.
    ChildRules const rules = state_.rulesOfChild(edit.path);
    if (fault->code != RefusalCode::UnknownObject || !rules || !isNamed(edit.path)) return fault;
    std::string const parent(PathUtils::parentOf(edit.path));
    auto const names = state_.allowedNames(rules, parent);
    if (!names && !fault->nearest && edit.kind == Kind::ActivateObject) fault->nearest = Edit::addObject(edit.path);
    if (!names || (parent.size() > state_.state().getActiveRoot().size() && checkObject(edit, parent))) return fault;
    std::string const name(PathUtils::lastName(edit.path));
    if (std::find(names->begin(), names->end(), name) == names->end()) {
      return nameNotAllowed(edit, rules.entry->type, name, *names);
    }
  }
  ChildRules const rules = state_.rulesOfChild(edit.path);
  if (edit.kind == Kind::DeactivateObject && rules.entry->required) {
    // Objects that are added by name go as they came.
    std::optional<Edit> nearest;
    if (isNamed(edit.path) && state_.hasObject(edit.path)) nearest = Edit::removeObject(edit.path);
    return refused(RefusalCode::StandsByTheRules, edit,
                   "The object " + shown(edit.path) + " is required, so it cannot be switched off.",
                   std::move(nearest));
  }
  return std::nullopt;
}

EditChecks::Checked EditChecks::checkAdd(Edit const& edit) const {
  std::string const parent(PathUtils::parentOf(edit.path));
  ChildRules const rules = state_.rulesOfChild(edit.path);
  if (parent.size() >= state_.state().getActiveRoot().size() && !parent.empty()) {
    if (auto fault = checkObject(edit, parent)) return fault;
  }
  if (!rules) return unknownObject(edit, edit.path);
  if (RuledState::isMirrored(*rules.entry)) return checkObject(edit, edit.path);
  std::string const& type = rules.entry->type;
  if (rules.entry->singleton) {
    std::string singleton = parent + '/' + type;
    Checked result = refused(RefusalCode::NotNamed, edit, "Objects " + shown(type) + " have no name.");
    if (isOffered_({singleton, std::nullopt})) result->nearest = Edit::activateObject(std::move(singleton));
    return result;
  }
  if (!isNamed(edit.path)) {
    return refused(RefusalCode::NameMissing, edit, "Objects " + shown(type) + " need a name.",
                   Edit::addObject(freeName(edit.path + ":" + type + " 0")));
  }
  if (state_.hasObject(edit.path)) return nameTaken(edit, edit.path);
  if (auto const names = state_.allowedNames(rules, parent)) {
    std::string const name(PathUtils::lastName(edit.path));
    ObjDependency::AllowedNameData now;
    bool const isAllowed = std::find(names->begin(), names->end(), name) != names->end();
    if (!isAllowed && state_.isChildAvailable(rules, parent, now)) return nameNotAllowed(edit, type, name, *names);
    if (rules.entry->required) {
      return refused(RefusalCode::StandsByTheRules, edit, "The rules alone decide on objects " + shown(type) + '.');
    }
  }
  if (state_.state().getGuideTree().hasObject(edit.path)) return nameTaken(edit, edit.path);
  return std::nullopt;
}

EditChecks::Checked EditChecks::nameTaken(Edit const& edit, std::string const& path) const {
  std::string sentence = "The name " + shown(std::string(PathUtils::lastName(path))) + " is taken";
  std::optional<Edit> nearest;
  if (state_.hasObject(path)) {
    sentence += '.';
  } else {
    sentence += " by an object that waits.";
    if (!state_.state().getObjectDecision(path).value_or(true)) nearest = Edit::activateObject(path);
  }
  if (!nearest) {
    std::string const free = freeName(path);
    nearest = edit;
    if (givesName(edit.kind)) {
      nearest->name = PathUtils::lastName(free);
    } else {
      nearest->path = free;
    }
  }
  return refused(RefusalCode::NameTaken, edit, std::move(sentence), std::move(nearest));
}

EditChecks::Checked EditChecks::nameNotAllowed(Edit const& edit, std::string const& type, std::string const& name,
                                               std::vector<std::string> const& names) const {
  Checked result = refused(RefusalCode::NameNotAllowed, edit,
                           "Objects " + shown(type) + " cannot have the name " + shown(name) + '.', std::nullopt,
                           SharedStrings(names));
  std::string near = StringUtilities::nearMatch(name, names);
  if (near.empty()) return result;
  result->nearest = edit;
  if (givesName(edit.kind)) {
    result->nearest->name = std::move(near);
  } else {
    result->nearest->path = edit.path.substr(0, edit.path.size() - name.size()) + near;
  }
  return result;
}

/// The path with a number at its end that no object has.
std::string EditChecks::freeName(std::string const& path) const {
  std::string stem = path;
  std::size_t number = 2;
  std::size_t const digits = path.find_last_not_of("0123456789");
  if (digits != std::string::npos && digits + 1 < path.size() && path[digits] == ' ' && path.size() - digits < 10) {
    stem = path.substr(0, digits);
    number = std::stoul(path.substr(digits + 1)) + 1;
  }
  DynamicTDF const& guide = state_.state().getGuideTree();
  for (;; ++number) {
    std::string candidate = stem + ' ' + std::to_string(number);
    if (!state_.hasObject(candidate) && !guide.hasObject(candidate)) return candidate;
  }
}

EditChecks::Checked EditChecks::checkRemove(Edit const& edit) const {
  if (auto fault = checkObject(edit, edit.path)) return fault;
  if (isNamed(edit.path)) return std::nullopt;
  Checked result =
      refused(RefusalCode::NotNamed, edit, "The object " + shown(edit.path) + " has no name, so it cannot be removed.");
  if (!state_.rulesOfChild(edit.path).entry->required && state_.hasObject(edit.path)) {
    result->nearest = Edit::deactivateObject(edit.path);
  }
  return result;
}

EditChecks::Checked EditChecks::checkCopy(Edit const& edit) const {
  if (auto fault = checkObject(edit, edit.path)) return fault;
  if (!isNamed(edit.path)) {
    return refused(RefusalCode::NotNamed, edit, "The object " + shown(edit.path) + " has no name.");
  }
  if (!state_.hasObject(edit.path)) {
    return refused(RefusalCode::UnknownObject, edit, "The object " + shown(edit.path) + " is not present.");
  }
  std::string_view const type = PathUtils::lastType(edit.path);
  if (edit.name == type) {
    return refused(RefusalCode::NameNotAllowed, edit, "The name of an object cannot be its type.");
  }
  std::string const parent(PathUtils::parentOf(edit.path));
  std::string const copy = parent + '/' + std::string(type) + ':' + edit.name;
  if (state_.hasObject(copy) || state_.state().getGuideTree().hasObject(copy)) return nameTaken(edit, copy);
  ChildRules const rules = state_.rulesOfChild(edit.path);
  if (auto const names = state_.allowedNames(rules, parent)) {
    if (std::find(names->begin(), names->end(), edit.name) == names->end()) {
      return nameNotAllowed(edit, std::string(type), edit.name, *names);
    }
  }
  return std::nullopt;
}

std::optional<Refused> EditChecks::after(Edit const& edit, std::optional<Refusal> refusal) const {
  if (refusal == Refusal::StandsByTheRules) {
    Checked result = refused(RefusalCode::StandsByTheRules, edit,
                             "The object " + shown(edit.path) + " stands by the rules alone, so it cannot be removed.");
    bool const isOptional = !state_.rulesOfChild(edit.path).entry->required;
    if (isOptional && edit.kind == Kind::RemoveObject) result->nearest = Edit::deactivateObject(edit.path);
    return result;
  }
  if (refusal == Refusal::NameTaken || refusal == Refusal::AlreadyAskedFor) {
    return refused(RefusalCode::NameTaken, edit, "The name is taken.");
  }
  if (refusal == Refusal::NameEqualsType) {
    return refused(RefusalCode::NameNotAllowed, edit, "The name of an object cannot be its type.");
  }
  if (refusal) return refused(RefusalCode::UnknownObject, edit, "There is no object " + shown(edit.path) + '.');

  if (edit.kind == Kind::SetParam) {
    std::string const* const value = state_.value(edit.path, edit.name);
    std::string const* const asked = state_.askedValue(edit.path, edit.name);
    std::string const wanted = StringUtilities::removeWhitespace(edit.value);
    if (asked != nullptr && *asked == wanted) return std::nullopt;
    TDFParam::Type const type = state_.rulesOfParam(edit.path, edit.name).value->type;
    if (value != nullptr && RuledState::isInForce(type, wanted, *value)) return std::nullopt;
    if (value == nullptr || asked == nullptr) {
      return refused(RefusalCode::NotEditable, edit,
                     "The rules do not keep a value of " + shown(edit.name) + " in " + quotedPath(edit.path) + '.');
    }
    Checked result = refused(RefusalCode::FixedByTheRules, edit,
                             "The rules fix the parameter " + shown(edit.name) + " in " + quotedPath(edit.path) +
                                 " at the value " + shown(*value) + '.',
                             std::nullopt, SharedStrings{*value});
    return result;
  }
  if (edit.kind == Kind::RemoveObject && state_.hasObject(edit.path)) {
    return refused(RefusalCode::StandsByTheRules, edit,
                   "The object " + shown(edit.path) + " stands by the rules alone, so it cannot be removed.");
  }
  if (givesName(edit.kind)) {
    std::string const copy = edit.path.substr(0, edit.path.size() - PathUtils::lastName(edit.path).size()) + edit.name;
    if (!state_.hasObject(copy)) {
      return refused(RefusalCode::NameNotAllowed, edit,
                     "The rules do not let the object " + shown(copy) + " be present.");
    }
    if (edit.kind == Kind::RenameObject && state_.hasObject(edit.path)) {
      return refused(RefusalCode::StandsByTheRules, edit,
                     "The object " + shown(edit.path) + " stands by the rules alone, so it cannot be renamed.");
    }
  }
  return std::nullopt;
}

std::optional<Refused> EditChecks::resolve(std::string const& text, Item& item) const {
  std::string const root = state_.state().getActiveRoot();
  std::string path = StringUtilities::removeWhitespace(text);
  if (path.size() > Session::mostCharacters) {
    return refused(RefusalCode::Unreadable, Edit::activateObject({}), "The path is too long.");
  }
  if (path.empty() || path == ".") path = root;
  if (path == "/") {
    item = {std::string(), std::nullopt};
    return root.empty() ? std::nullopt : checkPath(Edit::activateObject({}));
  }
  if (!path.empty() && path.front() != '/') path = root + '/' + path;
  if (path.size() > 1 && path.back() == '/') path.pop_back();
  if (path.empty() || path == root) {
    item = {path, std::nullopt};
    return std::nullopt;
  }

  Edit const asObject = Edit::activateObject(path);
  Edit asParam = Edit::activateParam(std::string(PathUtils::parentOf(path)), path.substr(path.rfind('/') + 1));
  // The last component is the name of a parameter, unless an object of that path is known.
  bool const isParam = state_.rulesOfParam(asParam.path, asParam.name) || state_.value(asParam.path, asParam.name);
  if (isParam && !state_.hasObject(path)) {
    auto fault = checkPath(asParam);
    if (!fault) fault = checkObject(asParam, asParam.path);
    if (fault && fault->code == RefusalCode::NotEditable) fault.reset();
    if (!fault) item = {asParam.path, asParam.name};
    return fault;
  }
  Checked fault = checkPath(asObject);
  if (!fault) fault = checkObject(asObject, path);
  if (fault && (fault->code == RefusalCode::NotEditable || fault->code == RefusalCode::IsRoot)) fault.reset();
  if (!fault) {
    item = {path, std::nullopt};
    return std::nullopt;
  }
  // Nothing is known under this path. If the object above it is, the last component may be a misspelt parameter.
  bool const isLastWrong = fault->code == RefusalCode::UnknownObject && state_.hasObject(asParam.path);
  if (!isLastWrong || fault->nearest) return fault;
  Checked const ofParam = checkParam(asParam);
  return ofParam && ofParam->nearest ? ofParam : fault;
}

}  // namespace tarn::session
