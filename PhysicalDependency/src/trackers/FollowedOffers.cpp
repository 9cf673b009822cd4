// The potential items of walks that visit only what changes. What an item was before is noted when it first changes in
// a walk. In the walk that starts to follow, the tracker collects and compares as always, and nothing is noted.

#include "trackers/FollowedOffers.h"

#include <set>

#include <tarn/DynamicTDF.h>

namespace tarn {

void FollowedOffers::beginChanges() {
  params_.clear();
  objects_.clear();
  tracker_.previous_.clear();
  tracker_.clear();
  tracker_.state_ = PotentialUpdateTracker::State::Collecting;
  isChanging_ = true;
}

FollowedOffers::Place FollowedOffers::addParam(Place const* next, std::string const& objPath, std::uint32_t entry,
                                               std::string const& name, ParamAllowedValues const* allowed) {
  noteParam(objPath, entry, name, false, true);
  auto& params = tracker_.current_.params_;
  Place const place = next != nullptr ? params.emplace_hint(*next, objPath, name) : params.emplace(objPath, name);
  setAllowed(objPath, name, allowed);
  return place;
}

void FollowedOffers::changeParam(std::string const& objPath, std::uint32_t entry, std::string const& name,
                                 ParamAllowedValues const* allowed) {
  noteParam(objPath, entry, name, true, true);
  setAllowed(objPath, name, allowed);
}

void FollowedOffers::removeParam(Place place, std::uint32_t entry) {
  noteParam(place->first, entry, place->second, true, false);
  setAllowed(place->first, place->second, nullptr);
  tracker_.current_.params_.erase(place);
}

void FollowedOffers::changeObjects(std::vector<std::string> const& before, std::vector<std::string> const& after) {
  if (!isChanging_) return;
  for (std::string const& path : before)
    objects_.try_emplace(path, ObjectChange{true, true}).first->second.isOffered = false;
  for (std::string const& path : after)
    objects_.try_emplace(path, ObjectChange{false, true}).first->second.isOffered = true;
}

void FollowedOffers::complete(DynamicTDF const& model) {
  if (!isChanging_) {
    tracker_.synchWithTDF(&model);
    return;
  }
  for (auto at = params_.begin(); at != params_.end();) {
    std::string const& objPath = at->first.first;
    // As in a comparison of all items: new and lost ones in the order of the rules, changed ones by name.
    std::set<std::string> changed;
    for (; at != params_.end() && at->first.first == objPath; ++at) {
      ParamChange const& param = at->second;
      if (param.isOffered && !param.wasOffered) {
        tracker_.addedParams_.emplace(objPath, param.name);
      } else if (param.wasOffered && !param.isOffered) {
        if (!model.hasParameter(objPath, param.name)) tracker_.deletedParams_.emplace(objPath, param.name);
      } else if (param.isOffered && !tracker_.current_.compareAllowedValues(objPath, param.name, param.allowedBefore)) {
        changed.insert(param.name);
      }
    }
    for (std::string const& name : changed) tracker_.changedParams_.emplace(objPath, name);
  }
  for (auto const& [path, object] : objects_) {
    if (object.isOffered && !object.wasOffered) tracker_.addedObjects_.push_back(path);
    if (object.wasOffered && !object.isOffered && !model.hasObject(path)) tracker_.deletedObjects_.push_back(path);
  }
  params_.clear();
  objects_.clear();
  tracker_.state_ = PotentialUpdateTracker::State::Synched;
}

void FollowedOffers::noteParam(std::string const& objPath, std::uint32_t entry, std::string const& name,
                               bool wasOffered, bool isOffered) {
  if (!isChanging_) return;
  auto const [place, isNew] = params_.try_emplace({objPath, entry});
  if (isNew) {
    place->second = {name, wasOffered, wasOffered, {}};
    if (wasOffered) place->second.allowedBefore = tracker_.current_.getAllowedValueData(objPath, name);
  }
  place->second.isOffered = isOffered;
}

void FollowedOffers::setAllowed(std::string const& objPath, std::string const& name,
                                ParamAllowedValues const* allowed) {
  auto& byObject = tracker_.current_.allowedValues_;
  if (allowed != nullptr) {
    byObject[objPath].insert_or_assign(name, *allowed);
  } else if (auto const object = byObject.find(objPath); object != byObject.end()) {
    object->second.erase(name);
    if (object->second.empty()) byObject.erase(object);
  }
}

}  // namespace tarn
