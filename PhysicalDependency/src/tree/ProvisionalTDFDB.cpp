// A read view of two models. Each question goes to one of them by its path; only where the parent of the active root is
// asked for its children are both asked and their answers put together. Nothing is kept from one question to the next.

#include <tarn/ProvisionalTDFDB.h>

#include <algorithm>
#include <utility>

#include <tarn/StringUtilities.h>
#include <tarn/TDFPath.h>

namespace tarn {

ProvisionalTDFDB::ProvisionalTDFDB(std::string activeRoot, ModelTDF const* activeModel, ModelTDF const* baseModel)
    : activeRoot_(std::move(activeRoot)),
      activeRootLength_(activeRoot_.size()),
      activeModel_(activeModel),
      baseModel_(baseModel) {
  TDFPath const root(activeRoot_);
  parentPath_ = root.getParentPath();
  // The root of the tree has no last component, and no parent that could list it.
  if (root.numComponent() == 0) return;
  lastType_ = root.getLastType();
  lastName_ = root.getLastName();
}

ProvisionalTDFDB::~ProvisionalTDFDB() = default;

bool ProvisionalTDFDB::hasObject(std::string const& path) const {
  return switchDB(path)->hasObject(path);
}

bool ProvisionalTDFDB::hasParameter(std::string const& paramPath) const {
  return switchDB(paramPath)->hasParameter(paramPath);
}

bool ProvisionalTDFDB::hasParameter(std::string const& objPath, std::string const& name) const {
  return switchDB(objPath)->hasParameter(objPath, name);
}

std::string const& ProvisionalTDFDB::getObjectName(std::string const& path) const {
  return switchDB(path)->getObjectName(path);
}

std::string const& ProvisionalTDFDB::getObjectType(std::string const& path) const {
  return switchDB(path)->getObjectType(path);
}

std::string const& ProvisionalTDFDB::getParameterValue(std::string const& paramPath) const {
  return switchDB(paramPath)->getParameterValue(paramPath);
}

std::string const& ProvisionalTDFDB::getParameterValue(std::string const& objPath, std::string const& name) const {
  return switchDB(objPath)->getParameterValue(objPath, name);
}

bool ProvisionalTDFDB::getParamValueAsList(std::string const& paramPath, std::vector<std::string>& out) const {
  return switchDB(paramPath)->getParamValueAsList(paramPath, out);
}

bool ProvisionalTDFDB::getParamValueAsList(std::string const& objPath, std::string const& name,
                                           std::vector<std::string>& out) const {
  return switchDB(objPath)->getParamValueAsList(objPath, name, out);
}

bool ProvisionalTDFDB::getParameterNames(std::string const& path, std::vector<std::string>& out) const {
  return switchDB(path)->getParameterNames(path, out);
}

bool ProvisionalTDFDB::getChildObjectPaths(std::string const& path, std::vector<std::string>& out) const {
  if (path != parentPath_) return switchDB(path)->getChildObjectPaths(path, out);
  baseModel_->getChildObjectPaths(path, out);
  return getActiveParentChildItems(activeRoot_, out);
}

bool ProvisionalTDFDB::getChildObjectNamesByType(std::string const& path, std::string const& type,
                                                 std::vector<std::string>& out) const {
  if (type != lastType_ || path != parentPath_) return switchDB(path)->getChildObjectNamesByType(path, type, out);
  baseModel_->getChildObjectNamesByType(path, type, out);
  return getActiveParentChildItems(lastName_, out);
}

bool ProvisionalTDFDB::getChildObjectPathsByType(std::string const& path, std::string const& type,
                                                 std::vector<std::string>& out) const {
  if (type != lastType_ || path != parentPath_) return switchDB(path)->getChildObjectPathsByType(path, type, out);
  baseModel_->getChildObjectPathsByType(path, type, out);
  return getActiveParentChildItems(activeRoot_, out);
}

bool ProvisionalTDFDB::anyChildOfType(std::string const& path, std::string const& type,
                                      std::function<bool(std::string const& child)> const& visit) const {
  if (type == lastType_ && path == parentPath_) return ModelTDF::anyChildOfType(path, type, visit);
  return switchDB(path)->anyChildOfType(path, type, visit);
}

/// The byte after the root is checked, so that a sibling whose name begins with the root's name stays with the base
/// model.
bool ProvisionalTDFDB::isActivePath(std::string const& path) const noexcept {
  if (path.size() < activeRootLength_) return false;
  if (!StringUtilities::leadingSubstrEqual(activeRoot_, path, activeRootLength_)) return false;
  return path.size() == activeRootLength_ || path[activeRootLength_] == '/';
}

bool ProvisionalTDFDB::listsBaseChildren(std::string const& path) const noexcept {
  return path == parentPath_ || !isActivePath(path);
}

/// The model that answers for `path`, the path of an object or a parameter.
ModelTDF const* ProvisionalTDFDB::switchDB(std::string const& path) const noexcept {
  return isActivePath(path) ? activeModel_ : baseModel_;
}

/// Corrects the list of the parent's children from the base model: `item`, the path or name of the active root, must be
/// in it exactly if the active model has the active root.
bool ProvisionalTDFDB::getActiveParentChildItems(std::string const& item, std::vector<std::string>& out) const {
  bool const inBase = baseModel_->hasObject(activeRoot_);
  bool const inActive = activeModel_->hasObject(activeRoot_);
  if (!inBase && inActive) out.push_back(item);
  if (inBase && !inActive) {
    auto const place = std::find(out.begin(), out.end(), item);
    if (place != out.end()) out.erase(place);
  }
  return !out.empty();
}

}  // namespace tarn
