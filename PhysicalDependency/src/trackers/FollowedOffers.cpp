// The potential items of walks that visit only what changes. The former state of an item is noted when it first changes
// in a walk. In the walk that starts to follow, the tracker collects and compares as always, and nothing is noted.

#include "trackers/FollowedOffers.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include <tarn/DynamicTDF.h>

#include "journal/JournaledWrites.h"

namespace tarn {

namespace {

/// Puts a removed parameter back before the one that came after it.
struct PutBack {
  void operator()() noexcept { place = params.insert(next, std::move(node)); }

  PotentialUpdateData::Params& params;
  FollowedOffers::Place& place;
  FollowedOffers::Place next;
  PotentialUpdateData::Params::node_type node;
};

}  // namespace

void FollowedOffers::beginAll() noexcept {
  isChanging_ = false;
  isHidden_ = false;
  isAllNew_ = false;
}

void FollowedOffers::beginChanges() {
  params_.clear();
  objects_.clear();
  clearChanges();
  journaled::assign(recording(), isAllNew_, isHidden_);
  if (isHidden_) {
    showOrHide();
  } else {
    tracker_.previous_.clear();
  }
  journaled::assign(recording(), tracker_.state_, PotentialUpdateTracker::State::Collecting);
  isChanging_ = true;
}

void FollowedOffers::hide() {
  clearChanges();
  if (isHidden_) return;
  tracker_.previous_.clear();
  showOrHide();
  journaled::assign(recording(), tracker_.state_, PotentialUpdateTracker::State::Collecting);
}

/// Exchanges the items with nothing. Positions in the list of parameters stay valid.
void FollowedOffers::showOrHide() {
  auto const exchange = [this]() noexcept {
    std::swap(tracker_.previous_, tracker_.current_);
    isHidden_ = !isHidden_;
  };
  if (journal_.isRecording()) journal_.add(exchange);
  exchange();
}

void FollowedOffers::abandonChanges() noexcept {
  if (!isChanging_) return;
  // Recorded, because the steps of earlier updates hold positions in these lists.
  Journal::CannotFail const scope(journal_);
  bool const wasHidden = isHidden_;
  if (!wasHidden) {
    auto const exchange = [this]() noexcept { std::swap(tracker_.previous_, tracker_.current_); };
    if (recording() != nullptr) journal_.add(exchange);
    exchange();
  }
  if (isAllNew_ || wasHidden) journaled::assign(recording(), tracker_.previous_, {});
  journaled::assign(recording(), tracker_.current_, {});
  params_.clear();
  objects_.clear();
  beginAll();
}

void FollowedOffers::clearChanges() {
  journaled::assign(recording(), tracker_.addedObjects_, {});
  journaled::assign(recording(), tracker_.deletedObjects_, {});
  journaled::assign(recording(), tracker_.addedParams_, {});
  journaled::assign(recording(), tracker_.changedParams_, {});
  journaled::assign(recording(), tracker_.deletedParams_, {});
}

void FollowedOffers::addParam(Place const* next, std::string const& objPath, std::uint32_t entry,
                              std::string const& name, ParamAllowedValues const* allowed, Place& place) {
  noteParam(objPath, entry, name, false, true);
  auto& params = tracker_.current_.params_;
  Journal::perform(
      recording(),
      [&] { place = next != nullptr ? params.emplace_hint(*next, objPath, name) : params.emplace(objPath, name); },
      [&params, &place]() noexcept { params.erase(place); });
  // Should the walk enter an object twice, the first values stay, as in the tracker.
  if (allowed != nullptr) journaled::emplace(recording(), allowedOf(objPath), name, *allowed);
}

void FollowedOffers::changeParam(std::string const& objPath, std::uint32_t entry, std::string const& name,
                                 ParamAllowedValues const* allowed) {
  noteParam(objPath, entry, name, true, true);
  if (allowed != nullptr) {
    setAllowed(objPath, name, *allowed);
  } else {
    eraseAllowed(objPath, name);
  }
}

void FollowedOffers::removeParam(Place& place, std::uint32_t entry) {
  noteParam(place->first, entry, place->second, true, false);
  eraseAllowed(place->first, place->second);
  auto& params = tracker_.current_.params_;
  Place const next = std::next(place);
  if (journal_.isRecording()) {
    journal_.add(PutBack{params, place, next, {}}).node = params.extract(place);
  } else {
    params.erase(place);
  }
}

void FollowedOffers::changeObjects(std::vector<std::string> const& before, std::vector<std::string> const& after) {
  if (!isChanging_ || isAllNew_) return;
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
  if (isAllNew_) {
    tracker_.addedParams_ = tracker_.current_.params_;
    tracker_.addedObjects_ = tracker_.current_.objects_;
    std::sort(tracker_.addedObjects_.begin(), tracker_.addedObjects_.end());
    auto const end = std::unique(tracker_.addedObjects_.begin(), tracker_.addedObjects_.end());
    tracker_.addedObjects_.erase(end, tracker_.addedObjects_.end());
    journaled::assign(recording(), isAllNew_, false);
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
  isChanging_ = false;
}

void FollowedOffers::noteParam(std::string const& objPath, std::uint32_t entry, std::string const& name,
                               bool wasOffered, bool isOffered) {
  if (!isChanging_ || isAllNew_) return;
  auto const [place, isNew] = params_.try_emplace({objPath, entry});
  if (isNew) {
    place->second = {name, wasOffered, wasOffered, {}};
    if (wasOffered) place->second.allowedBefore = tracker_.current_.getAllowedValueData(objPath, name);
  }
  place->second.isOffered = isOffered;
}

FollowedOffers::AllowedByName& FollowedOffers::allowedOf(std::string const& objPath) {
  return journaled::emplace(recording(), tracker_.current_.allowedValues_, objPath, AllowedByName()).first->second;
}

void FollowedOffers::setAllowed(std::string const& objPath, std::string const& name,
                                ParamAllowedValues const& allowed) {
  auto const [entry, isNew] = journaled::emplace(recording(), allowedOf(objPath), name, allowed);
  if (!isNew) journaled::assign(recording(), entry->second, ParamAllowedValues(allowed));
}

void FollowedOffers::eraseAllowed(std::string const& objPath, std::string const& name) {
  auto& byObject = tracker_.current_.allowedValues_;
  auto const object = byObject.find(objPath);
  if (object == byObject.end()) return;
  if (auto const entry = object->second.find(name); entry != object->second.end()) {
    journaled::Erasing(recording(), object->second).erase(entry);
  }
  if (object->second.empty()) journaled::Erasing(recording(), byObject).erase(object);
}

}  // namespace tarn
