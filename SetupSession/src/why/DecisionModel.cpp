// A walk visits an object's parameters in the order of the rules, then its types of children, and inside each type the
// children in the order of the model. A rule reads the new values of what comes before it and the old values of itself
// and of what comes after it. So the values that it read are known without recording them.

#include "why/DecisionModel.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>

namespace tarn::session {

namespace {

std::string const nothing;
std::vector<std::string> const noPaths;

ValueChange const* changeOf(Effect const& effect, std::string const& path, std::string const& name) {
  auto const found = std::lower_bound(
      effect.values.begin(), effect.values.end(), std::tie(path, name),
      [](ValueChange const& change, auto const& key) { return std::tie(change.path, change.name) < key; });
  return found != effect.values.end() && found->path == path && found->name == name ? &*found : nullptr;
}

}  // namespace

// FormerState

FormerState::FormerState(RuledState const& state, Effect const* effect) : state_(state), effect_(effect) {}

bool FormerState::isChanged(std::string const& path, std::string const& name) const {
  if (effect_ != nullptr) return changeOf(*effect_, path, name) != nullptr;
  return state_.value(path, name) != nullptr;
}

std::string const* FormerState::value(std::string const& path, std::string const& name) const {
  if (effect_ == nullptr) return nullptr;
  auto const* change = changeOf(*effect_, path, name);
  if (change == nullptr) return state_.value(path, name);
  return change->before ? &*change->before : nullptr;
}

bool FormerState::isCreated(std::string const& path) const {
  if (effect_ == nullptr) return state_.hasObject(path);
  return std::binary_search(effect_->objectsCreated.begin(), effect_->objectsCreated.end(), path);
}

bool FormerState::hadObject(std::string const& path) const {
  if (effect_ == nullptr) return false;
  if (std::binary_search(effect_->objectsDeleted.begin(), effect_->objectsDeleted.end(), path)) return true;
  return state_.hasObject(path) && !isCreated(path);
}

std::vector<std::string> const& FormerState::deleted() const {
  return effect_ != nullptr ? effect_->objectsDeleted : noPaths;
}

// DecisionModel

DecisionModel::DecisionModel(FormerState const& former, Item const& item)
    : former_(former),
      model_(*former.state().state().getModelOfRules()),
      root_(former.state().state().getActiveRoot()),
      path_(item.isParam() ? item.path : std::string(PathUtils::parentOf(item.path))),
      name_(item.isParam() ? *item.name : std::string(PathUtils::lastType(item.path))),
      isChildType_(!item.isParam()) {}

bool DecisionModel::isInside(std::string const& path) const {
  return StringUtilities::isPathRootedAt(root_, path);
}

bool DecisionModel::isBefore(std::string const& path, std::string const& name, bool isChildType) const {
  auto const placeIn = [&](std::string const& object, std::string_view entry, bool isChild) {
    ObjDependDef const* rules = former_.state().rulesOfObject(object);
    if (rules == nullptr) return ObjDependDef::noPlace;
    return isChild ? rules->placeOfChild(entry) : rules->placeOfParam(entry);
  };
  if (!branch_.empty() && path.starts_with(branch_) &&
      (path.size() == branch_.size() || path[branch_.size()] == ':' || path[branch_.size()] == '/')) {
    return isBranchBefore_;
  }
  if (path == path_) {
    if (isChildType != isChildType_) return !isChildType;
    return placeIn(path, name, isChildType) < placeIn(path_, name_, isChildType_);
  }
  if (StringUtilities::isPathRootedAt(path, path_)) {
    // An object above: its parameters come first, and its types of children up to the one that leads here.
    if (!isChildType) return true;
    std::string at = path_;
    while (PathUtils::parentOf(at) != path) at = PathUtils::parentOf(at);
    return placeIn(path, name, true) <= placeIn(path, PathUtils::lastType(at), true);
  }
  if (StringUtilities::isPathRootedAt(path_, path)) {
    // An object below: after the parameters, and before the types of children that follow the one that leads there.
    if (!isChildType_) return false;
    std::string at = path;
    while (PathUtils::parentOf(at) != path_) at = PathUtils::parentOf(at);
    return placeIn(path_, PathUtils::lastType(at), true) < placeIn(path_, name_, true);
  }
  // Two branches: go up to the siblings that they belong to.
  std::string a = path;
  std::string b = path_;
  auto const depth = [](std::string const& text) { return std::count(text.begin(), text.end(), '/'); };
  while (depth(a) > depth(b)) a = PathUtils::parentOf(a);
  while (depth(b) > depth(a)) b = PathUtils::parentOf(b);
  while (PathUtils::parentOf(a) != PathUtils::parentOf(b)) {
    a = PathUtils::parentOf(a);
    b = PathUtils::parentOf(b);
  }
  std::string const parent(PathUtils::parentOf(a));
  std::string const typeOfA(PathUtils::lastType(a));
  std::string const typeOfB(PathUtils::lastType(b));
  if (typeOfA != typeOfB) {
    isBranchBefore_ = placeIn(parent, typeOfA, true) < placeIn(parent, typeOfB, true);
    branch_ = parent + '/' + typeOfA;
    return isBranchBefore_;
  }
  std::vector<std::string> siblings;
  model_.getChildObjectPathsByType(parent, typeOfA, siblings);
  return std::find(siblings.begin(), siblings.end(), a) < std::find(siblings.begin(), siblings.end(), b);
}

bool DecisionModel::isOld(std::string const& path, std::string const& name) const {
  return isInside(path) && former_.isChanged(path, name) && !isBefore(path, name, false);
}

bool DecisionModel::isOldObject(std::string const& path) const {
  if (path.size() <= root_.size() || !isInside(path)) return false;
  return former_.hadObject(path) != former_.state().hasObject(path) &&
         !isBefore(std::string(PathUtils::parentOf(path)), std::string(PathUtils::lastType(path)), true);
}

bool DecisionModel::hasObject(std::string const& path) const {
  return isOldObject(path) ? former_.hadObject(path) : model_.hasObject(path);
}

bool DecisionModel::hasParameter(std::string const& paramPath) const {
  std::string path;
  std::string name;
  StringUtilities::splitPathName(paramPath, &path, &name);
  return hasParameter(path, name);
}

bool DecisionModel::hasParameter(std::string const& objPath, std::string const& name) const {
  return isOld(objPath, name) ? former_.value(objPath, name) != nullptr : model_.hasParameter(objPath, name);
}

std::string const& DecisionModel::getObjectName(std::string const& path) const {
  return model_.getObjectName(path);
}

std::string const& DecisionModel::getObjectType(std::string const& path) const {
  return model_.getObjectType(path);
}

std::string const& DecisionModel::getParameterValue(std::string const& paramPath) const {
  std::string path;
  std::string name;
  StringUtilities::splitPathName(paramPath, &path, &name);
  return getParameterValue(path, name);
}

std::string const& DecisionModel::getParameterValue(std::string const& objPath, std::string const& name) const {
  if (!isOld(objPath, name)) return model_.getParameterValue(objPath, name);
  std::string const* const value = former_.value(objPath, name);
  return value != nullptr ? *value : nothing;
}

bool DecisionModel::getParamValueAsList(std::string const& paramPath, std::vector<std::string>& out) const {
  std::string path;
  std::string name;
  StringUtilities::splitPathName(paramPath, &path, &name);
  return getParamValueAsList(path, name, out);
}

bool DecisionModel::getParamValueAsList(std::string const& objPath, std::string const& name,
                                        std::vector<std::string>& out) const {
  if (!isOld(objPath, name)) return model_.getParamValueAsList(objPath, name, out);
  out = StringUtilities::splitValue(getParameterValue(objPath, name), ',');
  return !out.empty();
}

bool DecisionModel::getParameterNames(std::string const& path, std::vector<std::string>& out) const {
  return model_.getParameterNames(path, out);
}

bool DecisionModel::getChildObjectPaths(std::string const& path, std::vector<std::string>& out) const {
  model_.getChildObjectPaths(path, out);
  std::erase_if(out, [&](std::string const& child) { return isOldObject(child) && !former_.hadObject(child); });
  for (std::string const& gone : former_.deleted()) {
    if (PathUtils::parentOf(gone) == path && isOldObject(gone)) out.push_back(gone);
  }
  return !out.empty();
}

bool DecisionModel::getChildObjectNamesByType(std::string const& path, std::string const& type,
                                              std::vector<std::string>& out) const {
  getChildObjectPathsByType(path, type, out);
  for (std::string& child : out) child = std::string(PathUtils::lastName(child));
  return !out.empty();
}

bool DecisionModel::getChildObjectPathsByType(std::string const& path, std::string const& type,
                                              std::vector<std::string>& out) const {
  model_.getChildObjectPathsByType(path, type, out);
  if (!isInside(path) || isBefore(path, type, true)) return !out.empty();
  std::erase_if(out, [&](std::string const& child) { return !former_.hadObject(child); });
  for (std::string const& gone : former_.deleted()) {
    if (PathUtils::parentOf(gone) == path && PathUtils::lastType(gone) == type) out.push_back(gone);
  }
  return !out.empty();
}

bool DecisionModel::anyChildOfType(std::string const& path, std::string const& type,
                                   std::function<bool(std::string const& child)> const& visit) const {
  if (!isInside(path) || isBefore(path, type, true)) return model_.anyChildOfType(path, type, visit);
  return ModelTDF::anyChildOfType(path, type, visit);
}

}  // namespace tarn::session
