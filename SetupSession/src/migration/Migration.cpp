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
#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFParam.h>

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
      renamedObjects_.emplace(name.substr(1), path);
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
          entry.newName = object->second;
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
  std::map<std::string, std::string> renamedObjects_;  // former name, and the path of an object that had it
  ModelTextNames names_;
};

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
  result.text = renameInModelText(text, Migrating(rules, model, result).run());
  locate(model, result.entries);
  return result;
}

}  // namespace tarn::session
