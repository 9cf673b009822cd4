// Where to look: every item that can differ between the two states must be among the touched ones, and one that does
// not differ does no harm. Values, allowed values, bounds, quantity types, offers and objects come from the lists of
// the state. Defaults come from what their rules read. Waiting requests depend on those and on the edit itself.
#include "session/EffectFinder.h"

#include <algorithm>

#include <tarn/DynamicTDF.h>
#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>

namespace tarn::session {

bool EffectFinder::isOffered(Item const& item) const {
  auto const changed = offersNow_.find(item);
  return changed != offersNow_.end() ? changed->second : offers_.has(item);
}

void EffectFinder::noteUpdate(Edit const& edit) {
  ProvisionalTDF const& state = state_.state();
  RuleReaders::Search search(readers_, state_);
  std::vector<RuleReaders::Reader> readers;
  bool isAnyChange = false;
  auto const changed = [&](ProvisionalTDF::ParamId const& param) {
    search.paramChanged(param.first, param.second, readers);
    isAnyChange = true;
  };

  // Wherever the choices may have changed, the default may have changed with them.
  for (auto const& param : state.getModParams()) {
    touch({param.first, param.second}).defaultValue = true;
    changed(param);
  }
  for (auto const& param : state.getNewlyAvailParams()) {
    Item item = {param.first, param.second};
    if (state.hasParameter(param.first, param.second)) offersNow_[item] = false;
    touch(std::move(item)).defaultValue = true;
    changed(param);
  }
  // Includes those that became potential.
  for (auto const& param : state.getActiveTree().getDeletedParameters()) {
    touch({param.first, param.second}).defaultValue = true;
    changed(param);
  }
  for (auto const& [path, name] : state.getOverriddenRequests()) touch({path, name});
  for (auto const& [path, name] : state.getModPotParams()) touch({path, name}).defaultValue = true;
  // Lost first: an item that is added and deleted is on offer.
  for (auto const& [path, name] : state.getNewlyUnavailPotParams()) {
    touch({path, name});
    offersNow_[{path, name}] = false;
  }
  for (auto const& [path, name] : state.getNewlyAvailPotParams()) {
    touch({path, name});
    offersNow_[{path, name}] = true;
  }
  for (std::string const& path : state.getNewlyUnavailPotObjects()) {
    touch({path, std::nullopt});
    offersNow_[{path, std::nullopt}] = false;
  }
  for (std::string const& path : state.getNewlyAvailPotObjects()) {
    touch({path, std::nullopt});
    offersNow_[{path, std::nullopt}] = true;
  }

  bool isAnyObject = false;
  for (std::string const& path : state.getCreatedObjects()) {
    touch({path, std::nullopt});
    if (state.hasObject(path)) offersNow_[{path, std::nullopt}] = false;
    branches_.push_back(path);
    // Only the top of a mirrored branch is listed.
    if (state_.isInMirroredBranch(path)) mirrored_.push_back(path);
    isAnyObject = true;
  }
  for (std::string const& path : state.getDeletedObjects()) {
    touch({path, std::nullopt});
    deleted_.push_back(path);
    branches_.push_back(path);
    isAnyObject = true;
  }
  if (isAnyObject) search.objectsChanged(readers);
  if (isAnyChange || isAnyObject) search.anythingChanged(readers);
  for (RuleReaders::Reader& reader : readers) {
    Touched& touched = touch(std::move(reader.item));
    if (reader.part == RuleReaders::Part::Default) touched.defaultValue = true;
    if (reader.part == RuleReaders::Part::Bounds) touched.bounds = true;
    if (reader.part == RuleReaders::Part::Quantity) touched.quantity = true;
  }

  // The request of the edit may wait without a trace in the lists.
  bool const isOfParam = edit.kind == Edit::Kind::SetParam || edit.kind == Edit::Kind::ActivateParam ||
                         edit.kind == Edit::Kind::DeactivateParam;
  if (isOfParam) touch({edit.path, edit.name});
  bool const isOfContent = edit.kind == Edit::Kind::AddObject || edit.kind == Edit::Kind::RemoveObject ||
                           edit.kind == Edit::Kind::RenameObject;
  if (isOfContent) branches_.push_back(edit.path);
  for (std::string at = edit.path; at.size() > state.getActiveRoot().size(); at = PathUtils::parentOf(at)) {
    touch({at, std::nullopt});
  }
  if (edit.kind == Edit::Kind::RenameObject || edit.kind == Edit::Kind::DuplicateObject) {
    std::string copy = edit.path.substr(0, edit.path.size() - PathUtils::lastName(edit.path).size()) + edit.name;
    touch({copy, std::nullopt});
    branches_.push_back(std::move(copy));
  }
}

/// Everything that is asked for at and below the object.
void EffectFinder::touchAskedBelow(std::string const& path) {
  DynamicTDF const& guide = state_.state().getGuideTree();
  if (!guide.hasObject(path)) return;
  std::vector<std::string> open = {path};
  std::vector<std::string> listed;
  while (!open.empty()) {
    std::string const at = std::move(open.back());
    open.pop_back();
    touch({at, std::nullopt});
    if (guide.getParameterNames(at, listed)) {
      for (std::string& name : listed) touch({at, std::move(name)});
    }
    if (guide.getChildObjectPaths(at, listed)) {
      for (std::string& child : listed) open.push_back(std::move(child));
    }
  }
}

void EffectFinder::touchObjectsBelow(std::string const& path) {
  DynamicTDF const& tree = state_.state().getActiveTree();
  if (!state_.hasObject(path)) return;
  std::vector<std::string> open = {path};
  std::vector<std::string> listed;
  while (!open.empty()) {
    std::string at = std::move(open.back());
    open.pop_back();
    if (tree.getChildObjectPaths(at, listed)) {
      for (std::string& child : listed) open.push_back(std::move(child));
    }
    touch({std::move(at), std::nullopt});
  }
}

void EffectFinder::lookAfter() {
  // The tops of the branches are enough.
  std::sort(branches_.begin(), branches_.end());
  branches_.erase(std::unique(branches_.begin(), branches_.end()), branches_.end());
  std::vector<std::string> tops;
  for (std::string const& path : branches_) {
    bool covered = false;
    for (std::string at = path; !covered && !at.empty();) {
      at = PathUtils::parentOf(at);
      covered = std::binary_search(branches_.begin(), branches_.end(), at);
    }
    if (!covered) tops.push_back(path);
  }
  branches_ = std::move(tops);
  for (std::string const& path : branches_) {
    touchAskedBelow(path);
    // Decisions are forgotten by the characters of the path, so those on longer names are touched too.
    for (auto item = requests_.decided().lower_bound(Item{path, std::nullopt});
         item != requests_.decided().end() && item->first.path.starts_with(path); ++item) {
      touch(item->first);
    }
  }
  for (std::string const& path : mirrored_) touchObjectsBelow(path);
  for (auto& [item, touched] : items_) touched.after = look(item, touched, isOffered(item));
}

void EffectFinder::lookBefore() {
  for (std::string const& path : deleted_) touchObjectsBelow(path);
  for (std::string const& path : branches_) touchAskedBelow(path);
  // An item that is touched only now is not present after the updates, and nobody asks for it there.
  for (auto& [item, touched] : items_) touched.before = look(item, touched, offers_.has(item));
}

EffectFinder::Facts EffectFinder::look(Item const& item, Touched const& touched, bool isOffered) const {
  Facts facts;
  facts.isOffered = isOffered;
  if (!item.isParam()) {
    facts.isPresent = state_.hasObject(item.path);
    facts.waiting = state_.waitingObject(item.path, isOffered);
    return facts;
  }
  std::string const& name = *item.name;
  if (std::string const* const value = state_.value(item.path, name)) {
    facts.isPresent = true;
    facts.value = *value;
  }
  facts.waiting = state_.waitingParam(item.path, name, isOffered);
  if (!facts.isPresent && !facts.isOffered) return facts;
  facts.allowed = state_.state().getAllowedValueData(item.path, name);
  bool const evaluates = touched.defaultValue || touched.bounds || touched.quantity;
  ParamRules const rules = evaluates ? state_.rulesOfParam(item.path, name) : ParamRules();
  if (!rules) return facts;
  if (touched.defaultValue) facts.defaultValue = state_.defaultValue(rules, item.path, facts.allowed);
  if (!facts.isPresent || !TDFParam::isNumericType(rules.value->type)) return facts;
  if (touched.bounds) facts.bounds = state_.bounds(rules, item.path);
  if (touched.quantity) facts.quantity = state_.quantityType(rules, item.path);
  return facts;
}

void EffectFinder::compareParam(Item const& item, Touched const& touched, Effect& effect) {
  Facts const& before = touched.before;
  Facts const& after = touched.after;
  std::string const& path = item.path;
  std::string const& name = *item.name;
  if (before.isPresent != after.isPresent || before.value != after.value) {
    ValueChange change = {path, name, std::nullopt, std::nullopt};
    if (before.isPresent) change.before = before.value;
    if (after.isPresent) change.after = after.value;
    effect.values.push_back(std::move(change));
  }
  bool const isComparable = (before.isPresent || before.isOffered) && (after.isPresent || after.isOffered);
  if (!isComparable) return;
  if (!before.allowed.isEqualTo(after.allowed)) {
    effect.choices.push_back({path, name, before.allowed, after.allowed});
  }
  if (before.bounds && after.bounds && *before.bounds != *after.bounds) {
    effect.bounds.push_back({path, name, *before.bounds, *after.bounds});
  }
  if (before.defaultValue && after.defaultValue && *before.defaultValue != *after.defaultValue) {
    effect.defaults.push_back({path, name, *before.defaultValue, *after.defaultValue});
  }
  if (before.quantity && after.quantity && *before.quantity != *after.quantity) {
    effect.quantities.push_back({path, name, *before.quantity, *after.quantity});
  }
}

Effect EffectFinder::effect() const {
  Effect effect;
  for (auto const& [item, touched] : items_) {
    Facts const& before = touched.before;
    Facts const& after = touched.after;
    if (item.isParam()) {
      compareParam(item, touched, effect);
    } else if (before.isPresent != after.isPresent) {
      (after.isPresent ? effect.objectsCreated : effect.objectsDeleted).push_back(item.path);
    }
    if (before.isOffered != after.isOffered) {
      (after.isOffered ? effect.offersGained : effect.offersLost).push_back(item);
    }
    if (before.waiting != after.waiting) effect.waiting.push_back({item, before.waiting, after.waiting});
  }
  return effect;
}

}  // namespace tarn::session
