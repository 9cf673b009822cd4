// Finds out which items of a model the rules have renamed. The model is walked from the root down, because the rules of
// an object are known only under the new types of the objects above it. All children of an object are decided together:
// two of them may exchange their names, and none may take the name of another.
#include <tarn/session/Migration.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include <tarn/ModelTextRename.h>
#include <tarn/ModelTextRewrite.h>
#include <tarn/ParamValueDef.h>
#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFParam.h>
#include <tarn/session/Review.h>

#include "session/Printable.h"

namespace tarn::session {

namespace {

std::string quoted(std::string_view text) {
  return '"' + printable(text) + '"';
}

/// An object of the model and what becomes of it.
struct Child {
  std::string component;  // in the model
  std::string renamed;    // as it should be
  ChildAvail const* entry = nullptr;
  std::string message;
  TextPlace rule;
  MigrationFate fate = MigrationFate::Renamed;

  [[nodiscard]] bool isRenamed() const { return renamed != component; }
};

/// An object whose name has changed.
struct RenamedObject {
  std::string path;
  std::string newName;
  bool isOnly = true;  // no other object with the former name got another new one
};

/// By former name.
using RenamedObjects = std::map<std::string, RenamedObject>;

class Migrating {
 public:
  Migrating(PhysicsData const& rules, ModelText const& model, Migration& result)
      : rules_(rules), model_(model), result_(result) {
    for (auto const& [path, params] : model.state()) addObject(path);
    for (ObjDependDef const* object : rules.objects()) {
      if (object->typePath().rfind('/') != 0) continue;
      for (std::string const& name : object->history.formerNames) renamedRoots_.try_emplace(name, object);
    }
  }

  [[nodiscard]] RenamedObjects const& renamedObjects() const noexcept { return renamedObjects_; }

  [[nodiscard]] ModelTextNames run() {
    struct Open {
      std::string path;
      std::string typePath;  // under the rules
    };
    std::vector<Open> open = {{"", ""}};
    while (!open.empty()) {
      Open const object = std::move(open.back());
      open.pop_back();
      ObjDependDef const* const rules = rules_.getObjDependDef(object.typePath, true);
      if (rules != nullptr) renameParams(object.path, *rules);
      std::vector<Child> children = childrenOf(object.path, rules);
      decide(children);
      // The last one is opened first.
      for (auto child = children.rbegin(); child != children.rend(); ++child) {
        std::string path = object.path + '/' + child->component;
        if (child->isRenamed()) report(path, *child);
        bool const isNew = child->isRenamed() && child->fate == MigrationFate::Renamed;
        if (isNew) names_.objects.emplace(path, child->renamed);
        if (child->isRenamed() && !isNew && typeOf(child->renamed) != typeOf(child->component)) continue;
        open.push_back({std::move(path), object.typePath + '/' + std::string(typeOf(child->renamed))});
      }
    }
    std::sort(result_.entries.begin(), result_.entries.end(), [](MigrationEntry const& a, MigrationEntry const& b) {
      return std::tie(a.path, a.name) < std::tie(b.path, b.name);
    });
    findValues();
    return std::move(names_);
  }

 private:
  static std::string_view typeOf(std::string_view component) { return component.substr(0, component.find(':')); }

  void addObject(std::string_view path) {
    while (!path.empty()) {
      std::string const parent(PathUtils::parentOf(path));
      if (!children_[parent].insert(std::string(path.substr(parent.size() + 1))).second) return;
      path = path.substr(0, parent.size());
    }
  }

  std::vector<Child> childrenOf(std::string const& path, ObjDependDef const* rules) const {
    std::vector<Child> children;
    auto const found = children_.find(path);
    if (found == children_.end()) return children;
    for (std::string const& component : found->second) {
      Child& child = children.emplace_back();
      child.component = component;
      child.renamed = component;
      std::string const type(typeOf(component));
      if (path.empty()) {
        renameRoot(type, child);
      } else if (rules != nullptr) {
        renameChild(*rules, type, child);
      }
    }
    return children;
  }

  void renameRoot(std::string const& type, Child& child) const {
    if (rules_.getObjDependDef('/' + type, true) != nullptr) return;
    auto const found = renamedRoots_.find(type);
    if (found == renamedRoots_.end()) return;
    ObjDependDef const& object = *found->second;
    child.renamed = object.typePath().substr(1) + child.component.substr(type.size());
    child.message = object.history.renameMessage;
    child.rule = object.rulePlace;
  }

  static void renameChild(ObjDependDef const& rules, std::string const& type, Child& child) {
    ChildAvail const* entry = rules.findChild(type);
    if (entry == nullptr) entry = rules.findRenamedChild(type);
    if (entry == nullptr) return;
    child.entry = entry;
    child.message = entry->history.renameMessage;
    child.rule = entry->rulePlace;
    std::string name = child.component.substr(type.size());
    if (!name.empty()) {
      auto const renamed = entry->renamedNames.find(name.substr(1));
      if (renamed != entry->renamedNames.end()) name = ':' + renamed->second;
    }
    child.renamed = entry->type + name;
  }

  /// Children whose new names are taken keep their old ones. That may take the new name of another, so it is repeated.
  static void decide(std::vector<Child>& children) {
    for (Child& child : children) {
      std::string_view const type = typeOf(child.renamed);
      bool const hasName = child.renamed.size() > type.size();
      if (child.isRenamed() && hasName && child.renamed.substr(type.size() + 1) == type) {
        child.fate = MigrationFate::NameEqualsType;
      }
    }
    auto const present = [](Child const& child) -> std::string const& {
      return child.fate == MigrationFate::Renamed ? child.renamed : child.component;
    };
    for (bool isSettled = false; !isSettled;) {
      isSettled = true;
      std::map<std::string_view, std::size_t> count;
      for (Child const& child : children) ++count[present(child)];
      for (Child& child : children) {
        if (!child.isRenamed() || child.fate != MigrationFate::Renamed || count[child.renamed] == 1) continue;
        child.fate = MigrationFate::Taken;
        isSettled = false;
      }
    }
  }

  void report(std::string const& path, Child const& child) {
    MigrationEntry& entry = result_.entries.emplace_back();
    entry.fate = child.fate;
    entry.path = path;
    entry.newName = child.renamed;
    entry.message = child.message;
    entry.rule = child.rule;
    std::string_view const type = typeOf(child.component);
    std::string_view const newType = typeOf(child.renamed);
    std::string const name = child.component.substr(type.size());
    if (entry.fate == MigrationFate::Renamed && !name.empty() && child.renamed.substr(newType.size()) != name) {
      std::string const newName = child.renamed.substr(std::min(newType.size() + 1, child.renamed.size()));
      auto const [known, isNew] = renamedObjects_.try_emplace(name.substr(1), RenamedObject{path, newName});
      if (known->second.newName != newName) known->second.isOnly = false;
    }
  }

  void renameParams(std::string const& path, ObjDependDef const& rules) {
    auto const found = model_.state().find(path);
    if (found == model_.state().end()) return;
    ObjectState const& params = found->second;
    std::map<ParamAvail const*, std::vector<std::string>> former;  // the former names that the object has
    for (auto const& [name, value] : params) {
      if (rules.findParam(name) != nullptr) continue;
      if (ParamAvail const* const entry = rules.findRenamedParam(name)) former[entry].push_back(name);
    }
    for (auto const& [entry, names] : former) {
      auto const own = params.find(entry->name);
      std::string const& value = own != params.end() ? own->second : params.at(names.front());
      bool const isSame =
          std::all_of(names.begin(), names.end(), [&](std::string const& name) { return params.at(name) == value; });
      for (std::string const& name : names) {
        MigrationEntry& one = result_.entries.emplace_back();
        one.path = path;
        one.name = name;
        one.newName = entry->name;
        one.value = params.at(name);
        one.message = entry->history.renameMessage;
        one.rule = entry->rulePlace;
        bool const isFirst = own == params.end() && name == names.front();
        if (!isSame) {
          one.fate = MigrationFate::Taken;
          one.otherValue = own != params.end() ? own->second : params.at(name == names.front() ? names[1] : names[0]);
        } else if (isFirst) {
          names_.params[path][name] = entry->name;
        } else {
          one.fate = MigrationFate::Removed;
          names_.params[path][name] = std::nullopt;
        }
      }
    }
  }

  /// Texts that are the former name of an object that was renamed. The rules do not say what they mean.
  void findValues() {
    if (renamedObjects_.empty()) return;
    for (auto const& [path, params] : model_.state()) {
      for (auto const& [name, value] : params) {
        for (std::string const& item : StringUtilities::stringToVector(value, ',')) {
          auto const object = renamedObjects_.find(item);
          if (object == renamedObjects_.end()) continue;
          MigrationEntry& entry = result_.entries.emplace_back();
          entry.fate = MigrationFate::NamesRenamedObject;
          entry.path = path;
          entry.name = name;
          entry.value = value;
          entry.newName = object->second.path;
          break;
        }
      }
    }
  }

  PhysicsData const& rules_;
  ModelText const& model_;
  Migration& result_;
  std::map<std::string, std::set<std::string>> children_;  // by the path of their parent
  std::map<std::string, ObjDependDef const*, std::less<>> renamedRoots_;
  RenamedObjects renamedObjects_;
  ModelTextNames names_;
};

/// The path of an object under its new names.
std::string newPathOf(std::string const& path, ModelTextNames const& names) {
  std::string result;
  for (std::size_t begin = 0; begin < path.size();) {
    std::size_t const end = std::min(path.find('/', begin + 1), path.size());
    auto const renamed = names.objects.find(path.substr(0, end));
    result += renamed != names.objects.end() ? '/' + renamed->second : path.substr(begin, end - begin);
    begin = end;
  }
  return result;
}

/// The value with new names in place of former ones that are not allowed. Nothing if that is not certain for all of
/// them.
std::optional<std::string> renamedValue(std::string const& value, Finding const& finding,
                                        RenamedObjects const& renamed) {
  auto const has = [](auto const& list, std::string const& text) {
    return std::find(list.begin(), list.end(), text) != list.end();
  };
  auto const newItem = [&](std::string const& item) -> std::optional<std::string> {
    auto const object = renamed.find(item);
    if (object == renamed.end() || !object->second.isOnly) return std::nullopt;
    if (!has(finding.expected.allowed, object->second.newName)) return std::nullopt;
    return object->second.newName;
  };
  if (finding.wrong.empty()) return newItem(value);
  std::string result;
  for (std::size_t begin = 0; begin <= value.size();) {
    std::size_t const end = std::min(value.find(',', begin), value.size());
    std::string item = value.substr(begin, end - begin);  // with its blanks, as the validator compares it
    if (has(finding.wrong, item)) {
      auto now = newItem(item);
      if (!now) return std::nullopt;
      item = std::move(*now);
    }
    result += (begin > 0 ? "," : "") + item;
    begin = end + 1;
  }
  return result;
}

/// Changes values that certainly mean renamed objects. A review of the model under its new names decides.
void changeValues(PhysicsData const& rules, ModelText const& model, ModelTextNames const& names,
                  RenamedObjects const& renamed, Migration& result) {
  auto const isValue = [](MigrationEntry const& entry) { return entry.fate == MigrationFate::NamesRenamedObject; };
  if (std::none_of(result.entries.begin(), result.entries.end(), isValue)) return;
  ModelState state = ModelText("", result.text).state();
  Findings const findings = Review(rules).judge(state);
  std::map<std::pair<std::string, std::string>, Finding const*> notAllowed;
  for (Finding const& finding : findings.list) {
    if (finding.code != FindingCode::ValueNotAllowed || !finding.name) continue;
    notAllowed.emplace(std::pair(finding.path, *finding.name), &finding);
  }
  std::vector<ModelText::Item> items;
  for (MigrationEntry const& entry : result.entries) items.push_back({entry.path, entry.name});
  auto const places = model.locate(items);
  bool isChanged = false;
  for (std::size_t i = 0; i < result.entries.size(); ++i) {
    MigrationEntry& entry = result.entries[i];
    if (!isValue(entry) || places[i].size() != 1) continue;
    std::string const path = newPathOf(entry.path, names);
    std::string name = *entry.name;
    if (auto const object = names.params.find(entry.path); object != names.params.end()) {
      auto const param = object->second.find(name);
      if (param != object->second.end()) name = param->second.value_or(std::string());
    }
    auto const finding = notAllowed.find({path, name});
    ObjDependDef const* const object = rules.getObjDependDef(PathUtils::typePathOf(path), true);
    ParamValueDef const* const def = object != nullptr ? object->findValueDef(name) : nullptr;
    bool const isComputed = def != nullptr && def->allowedValueKind == ParamValueDef::ComputedAllowedValues;
    if (finding == notAllowed.end() || !isComputed) continue;
    auto value = renamedValue(entry.value, *finding->second, renamed);
    if (!value) continue;
    state[path][name] = *value;
    entry.fate = MigrationFate::ValueChanged;
    entry.newValue = std::move(*value);
    isChanged = true;
  }
  if (isChanged) result.text = rewriteModelText(result.text, state);
}

void locate(ModelText const& model, std::vector<MigrationEntry>& entries) {
  std::vector<ModelText::Item> items;
  items.reserve(entries.size());
  for (MigrationEntry const& entry : entries) items.push_back({entry.path, entry.name});
  auto const found = model.locate(items);
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (!found[i].empty()) entries[i].place = found[i].front().place;
  }
}

std::string subjectOf(MigrationEntry const& entry) {
  if (!entry.name) return "the object " + quoted(entry.path);
  return "the parameter " + quoted(*entry.name) + (entry.path.empty() ? " at the root" : " of " + quoted(entry.path));
}

}  // namespace

std::string_view migrationFateName(MigrationFate fate) noexcept {
  switch (fate) {
    case MigrationFate::Renamed:
      return "renamed";
    case MigrationFate::Removed:
      return "removed";
    case MigrationFate::Taken:
      return "taken";
    case MigrationFate::NameEqualsType:
      return "name-equals-type";
    case MigrationFate::NamesRenamedObject:
      return "names-renamed-object";
    case MigrationFate::ValueChanged:
      return "value-changed";
  }
  return {};
}

std::string sentenceOf(MigrationEntry const& entry) {
  std::string const subject = subjectOf(entry);
  std::string sentence;
  switch (entry.fate) {
    case MigrationFate::Renamed:
      sentence = "renamed " + subject + " to " + quoted(entry.newName);
      break;
    case MigrationFate::Removed:
      sentence = "removed " + subject + ", because " + quoted(entry.newName) + " has the same value";
      break;
    case MigrationFate::Taken:
      sentence = "did not rename " + subject + " to " + quoted(entry.newName);
      sentence += entry.name
                      ? ": it has the value " + quoted(entry.value) + ", and the other parameter for that name has " +
                            quoted(entry.otherValue) + "; delete one of the two"
                      : ": another object has or wants that name; give one of the two another name, or delete it";
      break;
    case MigrationFate::NameEqualsType:
      sentence = "did not rename " + subject + " to " + quoted(entry.newName) +
                 ": a name that equals the type counts as no name; give the object another name first";
      break;
    case MigrationFate::NamesRenamedObject:
      sentence = "did not change " + subject + ": its value " + quoted(entry.value) + " has the former name of " +
                 quoted(entry.newName) + "; change the value if it means that object";
      break;
    case MigrationFate::ValueChanged:
      sentence = "changed " + subject + " from " + quoted(entry.value) + " to " + quoted(entry.newValue) +
                 ": that is what " + quoted(entry.newName) + " is called now";
      break;
  }
  return entry.message.empty() ? sentence + '.' : sentence + ". " + printable(entry.message);
}

bool Migration::changesText() const noexcept {
  return std::any_of(entries.begin(), entries.end(), [](MigrationEntry const& entry) { return !entry.isOpen(); });
}

bool Migration::isOpen() const noexcept {
  return std::any_of(entries.begin(), entries.end(), [](MigrationEntry const& entry) { return entry.isOpen(); });
}

Migration migrate(PhysicsData const& rules, ModelText const& model, std::string_view text) {
  Migration result;
  Migrating migrating(rules, model, result);
  ModelTextNames const names = migrating.run();
  result.text = renameInModelText(text, names);
  changeValues(rules, model, names, migrating.renamedObjects(), result);
  locate(model, result.entries);
  return result;
}

}  // namespace tarn::session
