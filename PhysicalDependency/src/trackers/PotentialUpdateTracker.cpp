// How the potential items of one walk differ from those of the previous walk. The parameters of both are sorted by
// object path, so one pass over both compares them. Objects are compared as sorted sets. The callers decide what is
// potential.

#include <tarn/PotentialUpdateTracker.h>

#include <set>
#include <string_view>
#include <utility>

#include <tarn/DynamicTDF.h>

#include "tree/SharedEmpty.h"

namespace tarn {

namespace {

std::vector<std::string> const noObjects;
PotentialUpdateTracker::Params const noParams;

/// Appends the entry. The comparison goes in key order, so this is its position.
void append(PotentialUpdateTracker::Params& list, std::string const& objPath, std::string const& name) {
  list.emplace_hint(list.end(), objPath, name);
}

}  // namespace

void PotentialUpdateTracker::start() {
  if (state_ == State::Collecting) return;
  std::swap(previous_, current_);
  current_.clear();
  clear();
  state_ = State::Collecting;
}

void PotentialUpdateTracker::addObject(std::string const& path) {
  if (state_ == State::Collecting) current_.addObject(path);
}

void PotentialUpdateTracker::addParam(std::string const& objPath, std::string const& name) {
  if (state_ == State::Collecting) current_.addParam(objPath, name);
}

void PotentialUpdateTracker::addParam(std::string const& objPath, std::string const& name,
                                      ParamAllowedValues const& allowedValues) {
  if (state_ == State::Collecting) current_.addParam(objPath, name, allowedValues);
}

void PotentialUpdateTracker::clearObjectReferences(std::string const& path) {
  current_.clearObjectReferences(path);
}

void PotentialUpdateTracker::synchWithTDF(DynamicTDF const* model) {
  if (state_ != State::Collecting) return;
  clear();  // a comparison that threw may have left entries
  synchParams(*model);
  synchObjects(*model);
  state_ = State::Synched;
}

bool PotentialUpdateTracker::hasObjPotentialChildren(std::string const& path) const {
  return current_.hasObjPotentialChildren(path);
}

std::vector<std::string> const& PotentialUpdateTracker::getObjects() const noexcept {
  return current_.getObjects();
}

PotentialUpdateTracker::Params const& PotentialUpdateTracker::getParams() const noexcept {
  return current_.getParams();
}

std::vector<std::string> const& PotentialUpdateTracker::getAddedObjects() const noexcept {
  return state_ == State::Synched ? addedObjects_ : noObjects;
}

std::vector<std::string> const& PotentialUpdateTracker::getDeletedObjects() const noexcept {
  return state_ == State::Synched ? deletedObjects_ : noObjects;
}

PotentialUpdateTracker::Params const& PotentialUpdateTracker::getAddedParams() const noexcept {
  return state_ == State::Synched ? addedParams_ : noParams;
}

PotentialUpdateTracker::Params const& PotentialUpdateTracker::getChangedParams() const noexcept {
  return state_ == State::Synched ? changedParams_ : noParams;
}

PotentialUpdateTracker::Params const& PotentialUpdateTracker::getDeletedParams() const noexcept {
  return state_ == State::Synched ? deletedParams_ : noParams;
}

ParamAllowedValues const& PotentialUpdateTracker::getAllowedValueData(std::string const& objPath,
                                                                      std::string const& name) const {
  return state_ == State::Synched ? current_.getAllowedValueData(objPath, name) : sharedEmptyAllowedValues();
}

void PotentialUpdateTracker::synchParams(DynamicTDF const& model) {
  Params const& before = previous_.getParams();
  Params const& now = current_.getParams();
  auto p = before.begin();
  auto c = now.begin();
  while (p != before.end() || c != now.end()) {
    int const order = p == before.end() ? 1 : c == now.end() ? -1 : p->first.compare(c->first);
    if (order < 0) {
      if (!model.hasParameter(p->first, p->second)) append(deletedParams_, p->first, p->second);
      ++p;
    } else if (order > 0) {
      append(addedParams_, c->first, c->second);
      ++c;
    } else {
      std::string const& objPath = p->first;
      synchParamsOfObject(objPath, model);
      while (p != before.end() && p->first == objPath) ++p;
      while (c != now.end() && c->first == objPath) ++c;
    }
  }
}

/// Compares the parameters of an object that has potential ones in both walks.
void PotentialUpdateTracker::synchParamsOfObject(std::string const& objPath, DynamicTDF const& model) {
  auto const [beforeBegin, beforeEnd] = previous_.getParams().equal_range(objPath);
  auto const [nowBegin, nowEnd] = current_.getParams().equal_range(objPath);
  std::set<std::string_view> before;
  std::set<std::string_view> now;
  for (auto p = beforeBegin; p != beforeEnd; ++p) before.insert(p->second);
  for (auto c = nowBegin; c != nowEnd; ++c) now.insert(c->second);

  for (auto c = nowBegin; c != nowEnd; ++c) {
    if (!before.contains(c->second)) append(addedParams_, objPath, c->second);
  }
  for (auto p = beforeBegin; p != beforeEnd; ++p) {
    if (!now.contains(p->second) && !model.hasParameter(objPath, p->second)) append(deletedParams_, objPath, p->second);
  }
  for (std::string_view const common : before) {
    if (!now.contains(common)) continue;
    std::string const name(common);
    if (!current_.compareAllowedValues(objPath, name, previous_.getAllowedValueData(objPath, name))) {
      append(changedParams_, objPath, name);
    }
  }
}

void PotentialUpdateTracker::synchObjects(DynamicTDF const& model) {
  std::set<std::string_view> const before(previous_.getObjects().begin(), previous_.getObjects().end());
  std::set<std::string_view> const now(current_.getObjects().begin(), current_.getObjects().end());
  for (std::string_view const path : now) {
    if (!before.contains(path)) addedObjects_.emplace_back(path);
  }
  for (std::string_view const path : before) {
    if (now.contains(path)) continue;
    std::string object(path);
    if (!model.hasObject(object)) deletedObjects_.push_back(std::move(object));
  }
}

void PotentialUpdateTracker::clear() {
  addedObjects_.clear();
  deletedObjects_.clear();
  addedParams_.clear();
  changedParams_.clear();
  deletedParams_.clear();
}

}  // namespace tarn
