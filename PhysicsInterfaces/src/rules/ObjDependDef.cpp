#include <tarn/ObjDependDef.h>

#include <algorithm>

namespace tarn {

namespace {

bool isListed(std::vector<std::string> const& contexts, std::string const& contextRuleValue) {
  return std::find(contexts.begin(), contexts.end(), contextRuleValue) != contexts.end();
}

template <class Entry>
using ByFormerName = std::unordered_map<std::string_view, Entry const*>;

// The keys are the names in `entry`. When this throws, call `forget` before `entry` is destroyed.
template <class Entry>
void remember(Entry const& entry, ByFormerName<Entry>& map) {
  for (std::string const& name : entry.history.formerNames) map.try_emplace(name, &entry);
}

template <class Entry>
void forget(Entry const& entry, ByFormerName<Entry>& map) noexcept {
  for (std::string const& name : entry.history.formerNames) {
    auto const found = map.find(name);
    if (found != map.end() && found->second == &entry) map.erase(found);
  }
}

template <class Entry>
Entry const* findIn(ByFormerName<Entry> const& map, std::string_view name) {
  auto const found = map.find(name);
  return found == map.end() ? nullptr : found->second;
}

}  // namespace

ObjDependDef::ObjDependDef(PhysicsData const* data, std::string typePath)
    : data_(data), typePath_(std::move(typePath)) {}

ObjDependDef::~ObjDependDef() = default;

bool ObjDependDef::addParam(ParamAvail entry, ParamValueDef valueDef) {
  auto owned = std::make_unique<ParamValueDef>(std::move(valueDef));
  owned->paramName_ = entry.name;
  valueDefs_.push_back(std::move(owned));
  try {
    if (addParam(std::move(entry))) {
      params_.back()->valueDef_ = valueDefs_.back().get();
      return true;
    }
  } catch (...) {
    valueDefs_.pop_back();
    throw;
  }
  valueDefs_.pop_back();
  return false;
}

bool ObjDependDef::addParam(ParamAvail entry) {
  if (placeOfParam(entry.name) != noPlace) return false;
  auto owned = std::make_unique<ParamAvail>(std::move(entry));
  owned->data_ = data_;
  owned->valueDef_ = nullptr;
  // The steps that cannot be undone come last.
  std::size_t const place = params_.size();
  slotsOfParams_.reserve(place + 1, [this](std::size_t i) -> std::string_view { return params_[i]->name; });
  params_.push_back(std::move(owned));
  ParamAvail const& added = *params_.back();
  try {
    remember(added, renamedParams_);
    if (added.required) requiredParams_.push_back(place);
  } catch (...) {
    forget(added, renamedParams_);
    params_.pop_back();
    throw;
  }
  slotsOfParams_.add(added.name, place);
  return true;
}

bool ObjDependDef::addChild(ChildAvail entry) {
  if (byType_.contains(entry.type)) return false;
  auto owned = std::make_unique<ChildAvail>(std::move(entry));
  owned->data_ = data_;
  children_.push_back(std::move(owned));
  try {
    remember(*children_.back(), renamedChildren_);
    byType_.emplace(children_.back()->type, children_.size() - 1);
  } catch (...) {
    forget(*children_.back(), renamedChildren_);
    children_.pop_back();
    throw;
  }
  return true;
}

bool ObjDependDef::addCheck(ObjectCheck check) {
  if (checkNames_.contains(check.name)) return false;
  checks_.push_back(std::make_unique<ObjectCheck>(std::move(check)));
  try {
    checkNames_.insert(checks_.back()->name);
  } catch (...) {
    checks_.pop_back();
    throw;
  }
  return true;
}

std::pair<ParamAvail const*, bool> ObjDependDef::firstParamAvail(PACursor& cursor) const {
  cursor.next_ = 0;
  return nextParamAvail(cursor, {});
}

std::pair<ParamAvail const*, bool> ObjDependDef::nextParamAvail(PACursor& cursor,
                                                                std::string const& contextRuleValue) const {
  if (cursor.next_ >= params_.size()) return {nullptr, false};
  return paramAvailAt(cursor.next_++, contextRuleValue);
}

std::pair<ChildAvail const*, bool> ObjDependDef::firstChildAvail(CACursor& cursor,
                                                                 std::string const& contextRuleValue) const {
  cursor.next_ = 0;
  cursor.context_ = contextRuleValue;
  return nextChildAvail(cursor);
}

std::pair<ChildAvail const*, bool> ObjDependDef::nextChildAvail(CACursor& cursor) const {
  if (cursor.next_ >= children_.size()) return {nullptr, false};
  return childAvailAt(cursor.next_++, cursor.context_);
}

std::pair<ParamAvail const*, bool> ObjDependDef::paramAvailAt(std::size_t place,
                                                              std::string const& contextRuleValue) const {
  ParamAvail const& entry = *params_[place];
  return {&entry, entry.contexts.empty() || isListed(entry.contexts, contextRuleValue)};
}

std::pair<ChildAvail const*, bool> ObjDependDef::childAvailAt(std::size_t place,
                                                              std::string const& contextRuleValue) const {
  ChildAvail const& entry = *children_[place];
  return {&entry, entry.contexts.empty() || isListed(entry.contexts, contextRuleValue)};
}

std::size_t ObjDependDef::placeOfParam(std::string_view name) const {
  static_assert(noPlace == NameSlots::none);
  return slotsOfParams_.find(name, [this](std::size_t place) -> std::string_view { return params_[place]->name; });
}

std::size_t ObjDependDef::placeOfChild(std::string_view type) const {
  auto const found = byType_.find(type);
  return found == byType_.end() ? noPlace : found->second;
}

ParamAvail const* ObjDependDef::findParam(std::string_view name) const {
  std::size_t const place = placeOfParam(name);
  return place == noPlace ? nullptr : params_[place].get();
}

ChildAvail const* ObjDependDef::findChild(std::string_view type) const {
  auto const found = byType_.find(type);
  return found == byType_.end() ? nullptr : children_[found->second].get();
}

ParamAvail const* ObjDependDef::findRenamedParam(std::string_view formerName) const {
  return findIn(renamedParams_, formerName);
}

ChildAvail const* ObjDependDef::findRenamedChild(std::string_view formerType) const {
  return findIn(renamedChildren_, formerType);
}

ParamValueDef const* ObjDependDef::findValueDef(std::string_view name) const {
  ParamAvail const* const entry = findParam(name);
  return entry == nullptr ? nullptr : entry->valueDef();
}

}  // namespace tarn
