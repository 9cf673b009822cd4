#pragma once

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/Refusal.h>

#include "support/EditResult.h"
#include "support/MapModel.h"
#include "support/RuleSheet.h"

namespace tarn::test {

/// A second reading of what editing one object under rules means, slow and plain, for comparison with `ProvisionalTDF`.
/// It reads rule sheets and not a rule database, keeps its trees in the plain test model, recurses, and makes keys as
/// texts; nothing of it comes from the library. It works the state out and does not say what changed.
///
/// The modifier is taken to make every real "Inflow" a quantity in kg/s.
class PlainProvisional {
 public:
  using Strings = std::vector<std::string>;
  using Pairs = std::vector<std::pair<std::string, std::string>>;

  PlainProvisional(RuleSheet const& rules, std::string root) : rules_(rules), root_(std::move(root)) {}

  void initialise(ModelState const& base, ModelState const& guide) {
    copyBranch(MapModel(base), root_, guide_);
    for (auto const& [path, params] : guide) {
      guide_.add(path);
      for (auto const& [name, value] : params) guide_.set(path, name, trimmed(value));
    }
    active_.add(root_);
    baseUpdate(base);
  }
  void baseUpdate(ModelState const& base) {
    base_ = MapModel(base);
    update(true);
  }

  /// A path that cannot be read ends the edit before anything has changed.
  EditResult apply(Edit const& edit) {
    EditResult result{false, Refusal::OutsideActiveRoot};
    if (isUnderRoot(edit.path)) result = changeIntent(edit);
    if (!result.isUnreadable) update(!result.refusal);
    return result;
  }

  // Results of the last update.

  ModelState activeState() const {
    ModelState state;
    collect(root_, state);
    return state;
  }
  bool hasObject(std::string const& path) const { return active_.hasObject(path); }
  Strings potentialObjects;
  Pairs potentialParams;  // in the order of the walk
  Strings emptyParams;
  Strings emptyTypedParams;
  std::set<std::pair<std::string, std::string>> userNamedTypes;
  /// By parameter path, of present parameters: all allowed values, and the subset on offer.
  std::map<std::string, Strings> allowedValues;
  std::map<std::string, Strings> subsetValues;

 private:
  struct Allowed {
    bool exists = false;
    bool any = false;
    Strings values;
    std::optional<Strings> subset;

    bool allows(std::string const& value) const { return any || contains(values, value); }
  };

  static bool contains(Strings const& list, std::string const& item) {
    return std::find(list.begin(), list.end(), item) != list.end();
  }
  static std::string trimmed(std::string const& text) {
    auto const first = text.find_first_not_of(" \t");
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
  }
  static Strings split(std::string const& text, bool trim) {
    Strings items;
    if (text.empty()) return items;
    std::string item;
    for (char const c : text + ',') {
      if (c == ',') {
        items.push_back(trim ? trimmed(item) : item);
        item.clear();
      } else {
        item += c;
      }
    }
    return items;
  }
  static std::string joined(Strings const& items) {
    std::string text;
    for (std::string const& item : items) text += (&item == &items.front() ? "" : ",") + item;
    return text;
  }
  static std::string typePathOf(std::string const& path) {
    std::string types;
    bool inName = false;
    for (char const c : path) {
      inName = c == ':' || (inName && c != '/');
      if (!inName) types += c;
    }
    return types;
  }
  static bool isPath(std::string const& path) {
    if (path.empty() || path == "/") return true;
    if (path.front() != '/') return false;
    for (std::string const& component : components(path)) {
      auto const colon = component.find(':');
      if (component.empty() || colon == 0 || colon + 1 == component.size()) return false;
      if (colon != std::string::npos && component.find(':', colon + 1) != std::string::npos) return false;
    }
    return true;
  }
  static Strings components(std::string const& path) {
    Strings all;
    for (char const c : path) {
      if (c == '/') {
        all.emplace_back();
      } else {
        all.back() += c;
      }
    }
    return all;
  }
  static bool isAtOrBelow(std::string const& top, std::string const& path) {
    return path == top || path.starts_with(top + '/');
  }
  bool isUnderRoot(std::string const& path) const { return isAtOrBelow(root_, path); }

  // The update.

  void update(bool walks) {
    potentialObjects.clear();
    potentialParams.clear();
    emptyParams.clear();
    emptyTypedParams.clear();
    if (!walks) return;
    userNamedTypes.clear();
    allowedValues.clear();
    subsetValues.clear();
    walk(root_, true, false);
    // Objects and their allowed values may have gone after they were walked.
    std::erase_if(allowedValues, [this](auto const& entry) { return !active_.hasParameter(entry.first); });
    std::erase_if(subsetValues, [this](auto const& entry) { return !active_.hasParameter(entry.first); });
  }

  void walk(std::string const& path, bool required, bool coupled) {
    ObjectSheet const* const object = rules_.find(typePathOf(path));
    if (object == nullptr) {
      active_.remove(path);
    } else if (required || coupled || path == root_) {
      std::string context;
      for (ParamSheet const& param : object->params) {
        checkParam(path, param, context);
        if (param.contextRule && wasAvailable_ && active_.hasParameter(path, param.name)) {
          context = active_.getParameterValue(path, param.name);
        }
      }
      for (ChildSheet const& child : object->children) checkChild(path, child, context);
    }
    leave(path, required);
  }

  void leave(std::string const& path, bool required) {
    bool const barren = isBare(path) && !hasPotential(path);
    if (path == probe_) {
      if (!barren) userNamedTypes.insert({path.substr(0, path.rfind('/')), lastType(path)});
      active_.remove(path);
      guide_.remove(path);
      std::erase_if(potentialObjects, [&](auto const& object) { return isAtOrBelow(path, object); });
      std::erase_if(potentialParams, [&](auto const& param) { return isAtOrBelow(path, param.first); });
      probe_.clear();
    } else if (required && barren) {
      active_.remove(path);
    }
  }
  bool isBare(std::string const& path) const {
    Strings names;
    active_.getParameterNames(path, names);
    if (!names.empty()) return false;
    Strings children;
    active_.getChildObjectPaths(path, children);
    return std::all_of(children.begin(), children.end(), [this](auto const& child) { return isBare(child); });
  }
  bool hasPotential(std::string const& path) const {
    return std::any_of(potentialObjects.begin(), potentialObjects.end(),
                       [&](auto const& object) { return object != path && isAtOrBelow(path, object); }) ||
           std::any_of(potentialParams.begin(), potentialParams.end(),
                       [&](auto const& param) { return isAtOrBelow(path, param.first); });
  }
  static std::string lastOf(std::string const& path) { return path.substr(path.rfind('/') + 1); }
  static std::string lastType(std::string const& path) {
    std::string const last = lastOf(path);
    return last.substr(0, last.find(':'));
  }

  EditResult changeIntent(Edit const& edit) {
    std::string const param = edit.path + '/' + edit.name;
    switch (edit.kind) {
      case Edit::Kind::SetParam:
        if (!isPath(edit.path)) return {true, {}};
        guide_.set(edit.path, edit.name, trimmed(edit.value));
        return {};
      case Edit::Kind::ActivateParam:
        paramDecisions_[param] = true;
        return {};
      case Edit::Kind::DeactivateParam:
        paramDecisions_[param] = false;
        if (guide_.hasParameter(edit.path, edit.name) && guide_.getParameterValue(edit.path, edit.name).empty()) {
          guide_.removeParameter(edit.path, edit.name);
        }
        return {};
      case Edit::Kind::ActivateObject:
        objectDecisions_[edit.path] = true;
        return {};
      case Edit::Kind::DeactivateObject:
        objectDecisions_[edit.path] = false;
        return {};
      case Edit::Kind::AddObject:
        return addToGuide(edit.path);
      case Edit::Kind::RemoveObject:
        return {false, removeFromGuide(edit.path)};
      case Edit::Kind::DuplicateObject:
        return {false, copyInGuide(edit.path, edit.name)};
      case Edit::Kind::RenameObject:
        if (auto const refusal = copyInGuide(edit.path, edit.name)) return {false, refusal};
        return {false, removeFromGuide(edit.path)};
    }
    return {};
  }

  // Reading rules.

  std::string read(LookSheet const& look, std::string const& own) const {
    std::string const path = look.objPath(own);
    return (isUnderRoot(path) ? active_ : base_).getParameterValue(path, look.name);
  }
  bool holds(ConditionSheet const& condition, std::string const& own) const {
    return (read(condition.look, own) == condition.value) != condition.negated;
  }
  Strings evaluated(ListSheet const& list, std::string const& own) const {
    return holds(list.when, own) ? list.then : list.otherwise;
  }
  std::string evaluated(TextSheet const& text, std::string const& own) const {
    return text.copyOf ? read(*text.copyOf, own) : text.fixed;
  }
  template <typename Entry>
  bool isLive(Entry const& entry, std::string const& context, std::string const& own) const {
    if (!entry.contexts.empty() && !contains(entry.contexts, context)) return false;
    return !entry.available || holds(*entry.available, own);
  }
  Allowed allowedOf(ParamSheet const& param, std::string const& own) const {
    Allowed allowed;
    if (!param.allowed) return allowed;
    allowed.exists = true;
    allowed.any = param.anyValueAllowed;
    allowed.values = evaluated(*param.allowed, own);
    if (param.subset) {
      allowed.subset = evaluated(*param.subset, own);
      std::erase_if(*allowed.subset, [&](auto const& value) { return !contains(allowed.values, value); });
    }
    return allowed;
  }
  std::string defaultOf(ParamSheet const& param, Allowed const& allowed, std::string const& own) const {
    std::string const given = param.byDefault ? evaluated(*param.byDefault, own) : "";
    if (!allowed.exists) return given;
    if (param.byDefault) {
      if (!TDFParam::isListType(param.type)) {
        if (allowed.allows(given)) return given;
      } else {
        Strings items = split(given, true);
        bool const none = items.empty();
        std::erase_if(items, [&](auto const& item) { return !allowed.allows(item); });
        if (none || !items.empty()) return joined(items);
      }
    }
    Strings const& onOffer = allowed.subset ? *allowed.subset : allowed.values;
    return param.fallbackToBlankDefault || onOffer.empty() ? "" : onOffer.front();
  }
  std::optional<std::string> overrideOf(ParamSheet const& param, std::string const& own) const {
    for (auto const& [condition, value] : param.overrides) {
      if (holds(condition, own)) return evaluated(value, own);
    }
    return std::nullopt;
  }

  // Parameters, row by row.

  void checkParam(std::string const& path, ParamSheet const& param, std::string const& context) {
    Allowed allowed;
    wasAvailable_ = isLive(param, context, path);
    if (wasAvailable_) allowed = allowedOf(param, path);
    if (allowed.exists && allowed.values.empty() && !param.availableWithNoAllowedValues) wasAvailable_ = false;
    if (!wasAvailable_) {
      active_.removeParameter(path, param.name);
      return;
    }

    auto const decision = paramDecisions_.find(path + '/' + param.name);
    bool const switchedOn = decision != paramDecisions_.end() && decision->second;
    bool const switchedOff = decision != paramDecisions_.end() && !decision->second;
    bool const wanted = switchedOn || (!switchedOff && guide_.hasParameter(path, param.name));
    std::optional<std::string> const override = overrideOf(param, path);

    // The outcome: a value, or nothing for a potential parameter; and what the guide takes over.
    std::optional<std::string> value;
    std::optional<std::string> toGuide;
    if (wanted && allowed.exists) {
      std::string const accepted = acceptedValue(path, param, override, allowed);
      if (!accepted.empty()) {
        value = accepted;
        toGuide = override;
      } else if (param.required || switchedOn) {
        value = defaultOf(param, allowed, path);
        toGuide = override;
      }
    } else if (wanted) {
      if (override) {
        value = toGuide = inItsUnits(param, *override);
      } else if (guide_.hasParameter(path, param.name)) {
        value = inItsUnits(param, guide_.getParameterValue(path, param.name));
      } else {
        value = inItsUnits(param, defaultOf(param, allowed, path));
      }
    } else if (param.required && allowed.exists) {
      value = override ? *override : defaultOf(param, allowed, path);
      toGuide = override;
      if (param.completeListRequired) value = joined(allowed.values);
    } else if (param.required) {
      value = inItsUnits(param, override ? *override : defaultOf(param, allowed, path));
      if (override) toGuide = value;
    }

    if (toGuide) guide_.set(path, param.name, trimmed(*toGuide));
    if (!value) {
      active_.removeParameter(path, param.name);
      potentialParams.emplace_back(path, param.name);
      return;
    }
    active_.set(path, param.name, trimmed(*value));
    if (allowed.exists) {
      allowedValues[path + '/' + param.name] = allowed.values;
      if (allowed.subset) subsetValues[path + '/' + param.name] = *allowed.subset;
    }
    if (trimmed(*value).empty() && probe_.empty() && !param.relaxed) {
      emptyParams.push_back(path + '/' + param.name);
      bool const typed =
          param.type != TDFParam::Logical && param.type != TDFParam::LogicalList && param.type != TDFParam::StringList;
      if (typed) emptyTypedParams.push_back(path + '/' + param.name);
    }
  }

  /// The allowed part of the override or the guide's value. Widens the subset by all values that were ever selected.
  std::string acceptedValue(std::string const& path, ParamSheet const& param,
                            std::optional<std::string> const& override, Allowed& allowed) {
    std::string accepted;
    Strings& selected = selections_[path + '/' + param.name];
    if (!TDFParam::isListType(param.type)) {
      std::string const candidate = override ? *override : guide_.getParameterValue(path, param.name);
      if (allowed.allows(candidate)) {
        accepted = candidate;
        if (allowed.subset) selected.push_back(candidate);
      }
    } else {
      Strings items = override ? split(*override, true) : split(guide_.getParameterValue(path, param.name), false);
      std::erase_if(items, [&](auto const& item) { return !allowed.allows(item); });
      if (allowed.subset) selected.insert(selected.end(), items.begin(), items.end());
      if (param.completeListRequired && !allowed.any && items.size() != allowed.values.size()) {
        Strings const given = items;
        for (std::string const& value : std::set<std::string>(allowed.values.begin(), allowed.values.end())) {
          if (!contains(given, value)) items.push_back(value);
        }
      }
      accepted = joined(items);
    }
    if (allowed.subset && !allowed.any) {
      Strings const own = *allowed.subset;
      for (std::string const& value : std::set<std::string>(selected.begin(), selected.end())) {
        if (!contains(own, value) && contains(allowed.values, value)) allowed.subset->push_back(value);
      }
    }
    return accepted;
  }

  std::string inItsUnits(ParamSheet const& param, std::string const& value) const {
    if (param.type != TDFParam::Real || param.name != "Inflow" || !probe_.empty()) return value;
    std::string const text = trimmed(value);
    std::string const number = text.substr(0, text.find_first_not_of("0123456789."));
    std::string const rest = text.substr(number.size());
    if (!text.empty() && (number.empty() || !(rest.empty() || rest == " [m^3/s]" || rest == " [kg/s]"))) return value;
    return text.empty() ? "" : number + " [kg/s]";
  }

  // Children, row by row.

  void checkChild(std::string const& path, ChildSheet const& child, std::string const& context) {
    std::string const ofType = path + '/' + child.type;
    Strings allowedNames;
    bool available = isLive(child, context, path);
    if (available && child.allowedNames) {
      allowedNames = evaluated(*child.allowedNames, path);
      available = !allowedNames.empty();
    }
    bool const coupled = child.coupled || child.allowedNames;
    if (!available) {
      removeOthers(path, child.type, {});
      return;
    }

    Strings guideNames;
    guide_.getChildObjectNamesByType(path, child.type, guideNames);
    if (child.required && child.singleton) {
      active_.add(ofType);
    } else if (child.required && child.allowedNames) {
      keepExactly(path, child.type, allowedNames);
    } else if (child.required) {
      if (!child.defaultNames.empty() && defaultsDone_.insert(ofType).second && guideNames.empty()) {
        guideNames = child.defaultNames;
        for (std::string const& name : guideNames) guide_.add(ofType + ':' + name);
      }
      keepExactly(path, child.type, guideNames);
      if (guideNames.empty() && probe_.empty()) {
        probe_ = ofType + ":__%%dummy%%__";
        active_.add(probe_);
      }
    } else if (!coupled) {
      removeOthers(path, child.type, childrenOf(base_, path, child.type));
      for (std::string const& object : childrenOf(base_, path, child.type)) mirror(object);
      for (std::string const& object : childrenOf(guide_, path, child.type)) guide_.remove(object);
    } else if (child.singleton) {
      createOrOffer(ofType);
    } else {
      Strings const names = child.allowedNames ? allowedNames : guideNames;
      Strings paths;
      for (std::string const& name : names) {
        paths.push_back(ofType + ':' + name);
        createOrOffer(paths.back());
      }
      removeOthers(path, child.type, paths);
    }

    if (child.singleton) {
      if (active_.hasObject(ofType)) walk(ofType, child.required, coupled);
    } else {
      for (std::string const& object : childrenOf(active_, path, child.type)) walk(object, child.required, coupled);
    }
  }

  static Strings childrenOf(MapModel const& model, std::string const& path, std::string const& type) {
    Strings paths;
    model.getChildObjectPathsByType(path, type, paths);
    return paths;
  }
  void removeOthers(std::string const& path, std::string const& type, Strings const& keep) {
    for (std::string const& object : childrenOf(active_, path, type)) {
      if (!contains(keep, object)) active_.remove(object);
    }
  }
  void keepExactly(std::string const& path, std::string const& type, Strings const& names) {
    Strings paths;
    for (std::string const& name : names) {
      paths.push_back(path + '/' + type + ':' + name);
      active_.add(paths.back());
    }
    removeOthers(path, type, paths);
  }
  void createOrOffer(std::string const& path) {
    auto const decision = objectDecisions_.find(path);
    if (decision != objectDecisions_.end() ? decision->second : guide_.hasObject(path)) {
      active_.add(path);
    } else {
      active_.remove(path);
      potentialObjects.push_back(path);
    }
  }
  void mirror(std::string const& path) {
    removeWhatTheBaseLacks(path);
    copyBranch(base_, path, active_);
  }
  void removeWhatTheBaseLacks(std::string const& path) {
    if (!base_.hasObject(path)) {
      active_.remove(path);
      return;
    }
    Strings names;
    active_.getParameterNames(path, names);
    for (std::string const& name : names) {
      if (trimmed(base_.getParameterValue(path, name)).empty()) active_.removeParameter(path, name);
    }
    Strings below;
    active_.getChildObjectPaths(path, below);
    for (std::string const& object : below) removeWhatTheBaseLacks(object);
  }
  /// Copies objects and all values that are not blank.
  static void copyBranch(MapModel const& from, std::string const& path, MapModel& to) {
    to.add(path);
    Strings names;
    from.getParameterNames(path, names);
    for (std::string const& name : names) {
      std::string const value = trimmed(from.getParameterValue(path, name));
      if (!value.empty()) to.set(path, name, value);
    }
    Strings below;
    from.getChildObjectPaths(path, below);
    for (std::string const& object : below) copyBranch(from, object, to);
  }

  // The guide's named objects.

  EditResult addToGuide(std::string const& path) {
    std::string const last = lastOf(path);
    auto const colon = last.rfind(':');
    if (colon == std::string::npos || colon + 1 == last.size()) return {false, Refusal::NotNamed};
    if (last.substr(0, colon) == last.substr(colon + 1)) return {false, Refusal::NameEqualsType};
    if (!isPath(path)) return {true, {}};
    if (guide_.hasObject(path)) return {false, Refusal::AlreadyAskedFor};
    guide_.add(path);
    return {};
  }
  std::optional<Refusal> removeFromGuide(std::string const& path) {
    if (!guide_.hasObject(path) && !active_.hasObject(path)) return Refusal::NoSuchObject;
    if (lastOf(path).find(':') == std::string::npos) return Refusal::NotNamed;
    if (!guide_.hasObject(path)) return Refusal::StandsByTheRules;
    guide_.remove(path);
    std::erase_if(paramDecisions_, [&](auto const& decision) { return decision.first.starts_with(path); });
    std::erase_if(objectDecisions_, [&](auto const& decision) { return decision.first.starts_with(path); });
    return {};
  }
  std::optional<Refusal> copyInGuide(std::string const& path, std::string const& name) {
    if (path == root_) return Refusal::IsActiveRoot;
    if (!active_.hasObject(path)) return Refusal::NoSuchObject;
    std::string const last = lastOf(path);
    auto const colon = last.find(':');
    if (colon == std::string::npos) return Refusal::NotNamed;
    if (name.empty() || name.find_first_of("/:") != std::string::npos) return Refusal::NameUnreadable;
    if (name == last.substr(0, colon)) return Refusal::NameEqualsType;
    std::string const copy = path.substr(0, path.rfind(':') + 1) + name;
    if (active_.hasObject(copy)) return Refusal::NameTaken;
    // By way of a state, so the copies are in the byte order of their paths.
    ModelState state;
    collect(path, state, true);
    for (auto const& [object, params] : state) {
      std::string const target = copy + object.substr(path.size());
      guide_.add(target);
      for (auto const& [param, value] : params) guide_.set(target, param, value);
    }
    return {};
  }

  void collect(std::string const& path, ModelState& state, bool withEmptyObjects = false) const {
    Strings names;
    active_.getParameterNames(path, names);
    if (withEmptyObjects) state[path];
    for (std::string const& name : names) state[path][name] = active_.getParameterValue(path, name);
    Strings below;
    active_.getChildObjectPaths(path, below);
    for (std::string const& object : below) collect(object, state, withEmptyObjects);
  }

  RuleSheet const& rules_;
  std::string root_;
  MapModel base_;
  MapModel guide_;
  MapModel active_;
  std::map<std::string, bool> paramDecisions_;
  std::map<std::string, bool> objectDecisions_;
  std::map<std::string, Strings> selections_;
  std::set<std::string> defaultsDone_;
  std::string probe_;
  bool wasAvailable_ = false;  // of the parameter that was checked last
};

}  // namespace tarn::test
