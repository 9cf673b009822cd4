// The read view of a validation. Each operation picks the model that answers. The listings of the object that lacks
// children merge the two models.
//
// The text of a path alone decides which model it belongs to; for named placeholders a later name in it decides too.
// Verdicts about absent objects depend on exactly these tests, so do not refine them.

#include "validation/PVModelTDF.h"

#include <iterator>
#include <utility>

namespace tarn {
namespace {

/// Splits a parameter path into object path and name. A text without "/" is both.
std::pair<std::string, std::string> splitAtLastSlash(std::string const& paramPath) {
  std::size_t const slash = paramPath.rfind('/');
  if (slash == std::string::npos) return {paramPath, paramPath};
  return {paramPath.substr(0, slash), paramPath.substr(slash + 1)};
}

}  // namespace

PVModelTDF::PVModelTDF(ModelTDF const* baseModel) noexcept
    : baseModel_(baseModel), baseReader_(baseModel->objectReader()) {}

PVModelTDF::~PVModelTDF() = default;

void PVModelTDF::setMissing(std::string const& objPath, std::string const& type, ModelTDF const* missingModel) {
  missingModel_ = missingModel;
  missingPrefix_ = objPath + "/" + type;
  missingObjPath_ = objPath;
  missingType_ = type;
}

void PVModelTDF::addMissingName(std::string const& name) {
  missingNames_.insert(name);
}

void PVModelTDF::clearMissing() noexcept {
  missingPrefix_.clear();
  missingObjPath_.clear();
  missingType_.clear();
  missingNames_.clear();
  missingModel_ = nullptr;
}

bool PVModelTDF::isInMissingSubtree(std::string_view path) const {
  if (!path.starts_with(missingPrefix_)) return false;
  if (missingNames_.empty()) return true;

  // The search skips the ":" directly after the prefix, which the path of every named placeholder has.
  std::size_t const colon = path.find(':', missingPrefix_.size() + 1);
  if (colon == std::string_view::npos) return false;
  std::string_view const behind = path.substr(colon + 1);
  return missingNames_.contains(behind.substr(0, behind.find('/')));
}

ModelTDF const& PVModelTDF::sourceOf(std::string_view path) const {
  return missingModel_ != nullptr && isInMissingSubtree(path) ? *missingModel_ : *baseModel_;
}

ObjectReader const* PVModelTDF::objectReader() const noexcept {
  return missingModel_ == nullptr ? baseReader_ : nullptr;
}

bool PVModelTDF::hasObject(std::string const& path) const {
  return baseModel_->hasObject(path) || (missingModel_ != nullptr && missingModel_->hasObject(path));
}

// The forms that take a parameter path choose the model by the whole path, not by the object path alone.

bool PVModelTDF::hasParameter(std::string const& paramPath) const {
  auto const [objPath, name] = splitAtLastSlash(paramPath);
  return sourceOf(paramPath).hasParameter(objPath, name);
}

bool PVModelTDF::hasParameter(std::string const& objPath, std::string const& name) const {
  return sourceOf(objPath).hasParameter(objPath, name);
}

std::string const& PVModelTDF::getObjectName(std::string const& path) const {
  return sourceOf(path).getObjectName(path);
}

std::string const& PVModelTDF::getObjectType(std::string const& path) const {
  return sourceOf(path).getObjectType(path);
}

std::string const& PVModelTDF::getParameterValue(std::string const& paramPath) const {
  auto const [objPath, name] = splitAtLastSlash(paramPath);
  return sourceOf(paramPath).getParameterValue(objPath, name);
}

std::string const& PVModelTDF::getParameterValue(std::string const& objPath, std::string const& name) const {
  return sourceOf(objPath).getParameterValue(objPath, name);
}

bool PVModelTDF::getParamValueAsList(std::string const& paramPath, std::vector<std::string>& out) const {
  auto const [objPath, name] = splitAtLastSlash(paramPath);
  return sourceOf(paramPath).getParamValueAsList(objPath, name, out);
}

bool PVModelTDF::getParamValueAsList(std::string const& objPath, std::string const& name,
                                     std::vector<std::string>& out) const {
  return sourceOf(objPath).getParamValueAsList(objPath, name, out);
}

bool PVModelTDF::getParameterNames(std::string const& path, std::vector<std::string>& out) const {
  return baseModel_->getParameterNames(path, out);  // a placeholder has no parameters
}

bool PVModelTDF::getChildObjectPaths(std::string const& path, std::vector<std::string>& out) const {
  baseModel_->getChildObjectPaths(path, out);
  if (missingModel_ != nullptr) {
    if (path == missingObjPath_) {
      mergeMissingChildPaths(out);
    } else if (isInMissingSubtree(path)) {
      out.clear();
      missingModel_->getChildObjectPaths(path, out);
    }
  }
  return !out.empty();
}

bool PVModelTDF::getChildObjectNamesByType(std::string const& path, std::string const& type,
                                           std::vector<std::string>& out) const {
  return mergeByType(&ModelTDF::getChildObjectNamesByType, path, type, out);
}

bool PVModelTDF::getChildObjectPathsByType(std::string const& path, std::string const& type,
                                           std::vector<std::string>& out) const {
  return mergeByType(&ModelTDF::getChildObjectPathsByType, path, type, out);
}

bool PVModelTDF::anyChildOfType(std::string const& path, std::string const& type,
                                std::function<bool(std::string const& child)> const& visit) const {
  return missingModel_ == nullptr ? baseModel_->anyChildOfType(path, type, visit)
                                  : ModelTDF::anyChildOfType(path, type, visit);
}

/// Placeholders come first, because the walk must finish all of them before it meets a real object of their type.
bool PVModelTDF::mergeByType(ListingByType listing, std::string const& path, std::string const& type,
                             std::vector<std::string>& out) const {
  if (missingModel_ != nullptr && path == missingObjPath_ && type == missingType_) {
    (missingModel_->*listing)(path, type, out);
    std::vector<std::string> real;
    if ((baseModel_->*listing)(path, type, real)) {
      out.insert(out.end(), std::make_move_iterator(real.begin()), std::make_move_iterator(real.end()));
    }
  } else {
    (sourceOf(path).*listing)(path, type, out);
  }
  return !out.empty();
}

/// Inserts the placeholders before the first path that has their type in its last component. Only the first occurrence
/// of the type's text in a path counts.
void PVModelTDF::mergeMissingChildPaths(std::vector<std::string>& out) const {
  std::vector<std::string> placeholders;
  missingModel_->getChildObjectPathsByType(missingObjPath_, missingType_, placeholders);

  for (auto path = out.begin(); path != out.end(); ++path) {
    std::size_t const start = path->find(missingType_);
    if (start == std::string::npos) continue;
    std::size_t const end = start + missingType_.size();
    if (end == path->size() || ((*path)[end] == ':' && path->find('/', start) == std::string::npos)) {
      out.insert(path, std::make_move_iterator(placeholders.begin()), std::make_move_iterator(placeholders.end()));
      return;
    }
  }
}

}  // namespace tarn
