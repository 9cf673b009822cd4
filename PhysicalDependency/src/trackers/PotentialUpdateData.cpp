// The potential items of one walk. Every empty object of a walk asks whether something potential is below it, and every
// probe removes the items below its path. Neither may cost a pass over everything. So the paths that hold items are
// kept in path order, in which a subtree is one run of entries.

#include <tarn/PotentialUpdateData.h>

#include <algorithm>

#include "tree/SharedEmpty.h"

namespace tarn {

namespace {

std::string const& pathOf(std::string const& entry) {
  return entry;
}

template <typename Value>
std::string const& pathOf(std::pair<std::string const, Value> const& entry) {
  return entry.first;
}

/// Erases the entries at and below `path` from a container in path order, and returns whether there were any.
template <typename Container>
bool eraseSubtree(Container& container, std::string const& path) {
  auto const first = container.lower_bound(path);
  auto last = first;
  while (last != container.end() && PathUtils::isChildPath(path, pathOf(*last))) ++last;
  bool const any = first != last;
  container.erase(first, last);
  return any;
}

}  // namespace

void PotentialUpdateData::addObject(std::string const& path) {
  parents_.emplace(PathUtils::parentOf(path));
  objects_.push_back(path);
}

void PotentialUpdateData::addParam(std::string const& objPath, std::string const& name) {
  parents_.insert(objPath);
  params_.emplace(objPath, name);
}

void PotentialUpdateData::addParam(std::string const& objPath, std::string const& name,
                                   ParamAllowedValues const& allowedValues) {
  addParam(objPath, name);
  allowedValues_[objPath].try_emplace(name, allowedValues);
}

void PotentialUpdateData::clear() {
  objects_.clear();
  parents_.clear();
  params_.clear();
  allowedValues_.clear();
}

void PotentialUpdateData::clearObjectReferences(std::string const& path) {
  if (path.empty() || path == PathUtils::pathSeparator) return clear();
  if (parents_.empty()) return;  // then everything else is empty too

  // Every item at or below the path has its parent there too, except the object at the path itself.
  std::string const parent(PathUtils::parentOf(path));
  bool const below = eraseSubtree(parents_, path);
  if (!below && !parents_.contains(parent)) return;
  auto const removedObjects =
      std::erase_if(objects_, [&path](std::string const& object) { return PathUtils::isChildPath(path, object); });
  if (!below && removedObjects == 0) return;

  if (below) {
    // In byte order the path's own entries and those below it are two runs: "/A B" comes between "/A" and "/A/B".
    params_.erase(path);
    std::string prefix = path + '/';
    auto const first = params_.lower_bound(prefix);
    ++prefix.back();
    params_.erase(first, params_.lower_bound(prefix));
    eraseSubtree(allowedValues_, path);
  }
  resetParents(parent);
}

/// Corrects `parents_` after a removal: only entries to which an item refers remain. Two entries can have lost their
/// last item: the parent of the removed path, and the root. The root no longer counts as the object of a parameter once
/// something has been removed, so a potential parameter of the root is then found in the list of parameters only.
/// Callers see this in `hasObjPotentialChildren`.
void PotentialUpdateData::resetParents(std::string const& parentOfRemoved) {
  auto const isUsed = [this](std::string const& parent) {
    if (!parent.empty() && params_.contains(parent)) return true;
    return std::any_of(objects_.begin(), objects_.end(),
                       [&parent](std::string const& object) { return PathUtils::parentOf(object) == parent; });
  };
  for (std::string const& parent : {parentOfRemoved, std::string()}) {
    auto const place = parents_.find(parent);
    if (place != parents_.end() && !isUsed(parent)) parents_.erase(place);
  }
}

bool PotentialUpdateData::compareAllowedValues(std::string const& objPath, std::string const& name,
                                               ParamAllowedValues const& allowedValues) const {
  ParamAllowedValues const* const own = findAllowedValues(objPath, name);
  return own == nullptr ? allowedValues.isEmpty() : own->isEqualTo(allowedValues);
}

ParamAllowedValues const& PotentialUpdateData::getAllowedValueData(std::string const& objPath,
                                                                   std::string const& name) const {
  ParamAllowedValues const* const own = findAllowedValues(objPath, name);
  return own == nullptr ? sharedEmptyAllowedValues() : *own;
}

/// Returns null for a parameter that was added without allowed values, or not at all.
ParamAllowedValues const* PotentialUpdateData::findAllowedValues(std::string const& objPath,
                                                                 std::string const& name) const {
  auto const object = allowedValues_.find(objPath);
  if (object == allowedValues_.end()) return nullptr;
  auto const param = object->second.find(name);
  return param == object->second.end() ? nullptr : &param->second;
}

bool PotentialUpdateData::hasObjPotentialChildren(std::string const& path) const {
  auto const first = parents_.lower_bound(path);
  return first != parents_.end() && PathUtils::isChildPath(path, *first);
}

}  // namespace tarn
