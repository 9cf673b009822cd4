#include "provisional/Listings.h"

#include <algorithm>
#include <iterator>

#include "journal/JournaledWrites.h"
#include "provisional/ParamKey.h"

namespace tarn {

namespace {

void addOffers(WalkObject& object, std::size_t before, std::size_t after) noexcept {
  auto const change = static_cast<std::uint32_t>(after - before);  // wraps around, as the sum does
  for (WalkObject* at = &object; at != nullptr; at = at->parent) at->offers += change;
}

std::vector<std::string> textsIf(bool isListed, WalkObject const& object, WalkObject::Entry entry) {
  if (!isListed) return {};
  return {ParamKey{object.path, object.rules->params()[entry]->name}.text()};
}

}  // namespace

void Listings::beginAll() noexcept {
  clear();
  offers_.beginAll();
}

void Listings::beginChanges() {
  isChanging_ = true;
  if (isHidden_) showOrHide();
  offers_.beginChanges();
  beforeWalk_ = journal_.mark();
}

void Listings::abandon(WalkObject* root, VisitRef broken) noexcept {
  if (isChanging_ && root != nullptr) {
    try {
      collectNamedTypes(*root, broken);
    } catch (...) {
      outcome_.userNamedTypes.clear();
    }
  }
  if (beforeWalk_) journal_.rollback(*beforeWalk_);
  beforeWalk_.reset();
  offers_.abandonChanges();
}

void Listings::hide() {
  offers_.hide();
  if (!isHidden_) showOrHide();
}

void Listings::showOrHide() {
  auto const exchange = [this]() noexcept {
    hiddenParams_.swap(outcome_.emptyParams);
    hiddenTypedParams_.swap(outcome_.emptyTypedParams);
    isHidden_ = !isHidden_;
  };
  if (recording() != nullptr) journal_.add(exchange);
  exchange();
}

void Listings::countOffers(WalkObject& object, std::size_t before, std::size_t after) {
  if (before == after) return;
  if (recording() != nullptr) {
    journal_.add([&object, before, after]() noexcept { addOffers(object, after, before); });
  }
  addOffers(object, before, after);
}

Journal::Mark Listings::mark() {
  Journal::Mark const made = journal_.mark();
  ++openMarks_;
  return made;
}

void Listings::rollback(Journal::Mark mark, std::size_t stillOpen) noexcept {
  journal_.rollback(mark);
  openMarks_ = stillOpen;
}

void Listings::release(Journal::Mark mark, std::size_t stillOpen) noexcept {
  journal_.release(mark);
  openMarks_ = stillOpen;
}

void Listings::set(WalkObject& object, WalkObject::Entry entry, VisitResult const& result) {
  if (entry < object.numParams()) {
    setParam(object, entry, result);
  } else {
    setChildren(object, entry, result);
  }
}

void Listings::removeAll(WalkObject& top) {
  forEachObject(top, [this](WalkObject& object) {
    for (WalkObject::Entry entry = 0; entry < object.numEntries(); ++entry) {
      if (object.entries[entry].outputs != 0) set(object, entry, {});
    }
  });
}

void Listings::setParam(WalkObject& object, WalkObject::Entry entry, VisitResult const& result) {
  unsigned const before = object.entries[entry].outputs;
  unsigned const now = (result.offersParam ? WalkObject::Offered : 0U) | (result.isEmpty ? WalkObject::Empty : 0U) |
                       (result.isEmptyTyped ? WalkObject::EmptyTyped : 0U);
  if (((before | now) & WalkObject::Offered) != 0) setOffer(object, entry, result);
  if (((before ^ now) & WalkObject::Empty) != 0) {
    list(emptyParams_, outcome_.emptyParams, {&object, entry}, textsIf(result.isEmpty, object, entry));
  }
  if (((before ^ now) & WalkObject::EmptyTyped) != 0) {
    list(emptyTypedParams_, outcome_.emptyTypedParams, {&object, entry}, textsIf(result.isEmptyTyped, object, entry));
  }
  journaled::assign(recording(), object.entries[entry].outputs, static_cast<std::uint8_t>(now));
}

void Listings::setOffer(WalkObject& object, WalkObject::Entry entry, VisitResult const& result) {
  std::string const& name = object.rules->params()[entry]->name;
  bool const wasOffered = (object.entries[entry].outputs & WalkObject::Offered) != 0;
  ParamAllowedValues const* const allowed = result.allowed ? &*result.allowed : nullptr;
  if (wasOffered && result.offersParam) {
    offers_.changeParam(object.path, entry, name, allowed);
    return;
  }
  countOffers(object, wasOffered ? 1 : 0, result.offersParam ? 1 : 0);
  if (wasOffered) {
    offers_.removeParam(object.extras().offerAt[entry], entry);
    return;
  }
  WalkObject::Extras& extras = object.extras();
  if (extras.offerAt.empty()) extras.offerAt.resize(object.numParams());
  WalkObject::Entry next = entry + 1;
  while (next < extras.endOfOffers && (object.entries[next].outputs & WalkObject::Offered) == 0) ++next;
  FollowedOffers::Place const* const place = next < extras.endOfOffers ? &extras.offerAt[next] : nullptr;
  extras.endOfOffers = std::max(extras.endOfOffers, entry + 1);
  offers_.addParam(place, object.path, entry, name, allowed, extras.offerAt[entry]);
}

void Listings::setChildren(WalkObject& object, WalkObject::Entry entry, VisitResult const& result) {
  bool const offeredName = (object.entries[entry].outputs & WalkObject::OffersName) != 0;
  if (offeredName != result.offersName) {
    std::string const& type = object.rules->children()[entry - object.numParams()]->type;
    auto& types = !isChanging_ ? outcome_.userNamedTypes : result.offersName ? addedTypes_ : removedTypes_;
    types.emplace_back(object.path, type);
  }
  std::vector<std::string> before;
  if ((object.entries[entry].outputs & WalkObject::OffersObjects) != 0) before = object.extras().offeredObjects[entry];
  if (before != result.offeredObjects) {
    offers_.changeObjects(before, result.offeredObjects);
    countOffers(object, before.size(), result.offeredObjects.size());
    list(offeredObjects_, offers_.objects(), {&object, entry}, result.offeredObjects);
    auto& offered = object.extras().offeredObjects;
    auto const known = journaled::emplace(recording(), offered, entry, std::vector<std::string>()).first;
    journaled::assign(recording(), known->second, result.offeredObjects);
    if (result.offeredObjects.empty()) journaled::Erasing(recording(), offered).erase(known);
  }
  unsigned const now = (result.offersName ? WalkObject::OffersName : 0U) |
                       (result.offeredObjects.empty() ? 0U : WalkObject::OffersObjects);
  journaled::assign(recording(), object.entries[entry].outputs, static_cast<std::uint8_t>(now));
}

void Listings::list(WalkOrder& order, std::vector<std::string>& texts, VisitRef visit, std::vector<std::string> now) {
  if (isChanging_) {
    order.replace(visit, std::move(now));
    return;
  }
  for (std::string& text : now) {
    texts.push_back(std::move(text));
    order.append(visit);
  }
}

void Listings::complete() {
  offeredObjects_.apply(offers_.objects(), recording());
  emptyParams_.apply(outcome_.emptyParams, recording());
  emptyTypedParams_.apply(outcome_.emptyTypedParams, recording());
  offers_.complete(outcome_.active);
  changeNamedTypes();
  if (beforeWalk_) journal_.release(*beforeWalk_);
  beforeWalk_.reset();
}

/// One pass over the types, however many change.
void Listings::changeNamedTypes() {
  if (!isChanging_) std::sort(outcome_.userNamedTypes.begin(), outcome_.userNamedTypes.end());
  if (addedTypes_.empty() && removedTypes_.empty()) return;
  std::sort(addedTypes_.begin(), addedTypes_.end());
  std::sort(removedTypes_.begin(), removedTypes_.end());
  std::vector<NamedType>& types = outcome_.userNamedTypes;
  if (recording() != nullptr) journaled::assign(recording(), types, std::vector<NamedType>(types));
  std::vector<NamedType> kept;
  std::set_difference(std::make_move_iterator(types.begin()), std::make_move_iterator(types.end()),
                      removedTypes_.begin(), removedTypes_.end(), std::back_inserter(kept));
  types.clear();
  std::merge(std::make_move_iterator(kept.begin()), std::make_move_iterator(kept.end()),
             std::make_move_iterator(addedTypes_.begin()), std::make_move_iterator(addedTypes_.end()),
             std::back_inserter(types));
  addedTypes_.clear();
  removedTypes_.clear();
}

void Listings::collectNamedTypes(WalkObject& root, VisitRef end) {
  std::vector<NamedType> types;
  forEachObject(root, [&](WalkObject& object) {
    for (WalkObject::Entry entry = object.numParams(); entry < object.numEntries(); ++entry) {
      bool const isFound = (object.entries[entry].outputs & WalkObject::OffersName) != 0 &&
                           (end.object == nullptr || comesBefore({&object, entry}, end));
      if (isFound) types.emplace_back(object.path, object.rules->children()[entry - object.numParams()]->type);
    }
  });
  std::sort(types.begin(), types.end());
  journaled::assign(recording(), outcome_.userNamedTypes, std::move(types));
}

void Listings::clear() noexcept {
  if (beforeWalk_) journal_.release(*beforeWalk_);
  beforeWalk_.reset();
  isChanging_ = false;
  isHidden_ = false;
  hiddenParams_.clear();
  hiddenTypedParams_.clear();
  offers_.beginAll();
  offeredObjects_.clear();
  emptyParams_.clear();
  emptyTypedParams_.clear();
  addedTypes_.clear();
  removedTypes_.clear();
}

}  // namespace tarn
