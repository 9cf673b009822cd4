#include <tarn/ObjDependDef.h>

#include <algorithm>

namespace tarn {

namespace {

inline bool isLive(std::vector<std::string> const& contexts, std::string const& contextRuleValue) {
  return contexts.empty() || std::find(contexts.begin(), contexts.end(), contextRuleValue) != contexts.end();
}

}  // namespace

ObjDependDef::ObjDependDef(PhysicsData const* data, std::string typePath)
    : data_(data), typePath_(std::move(typePath)) {}

ObjDependDef::~ObjDependDef() = default;

bool ObjDependDef::addParam(ParamAvail entry, ParamValueDef valueDef) {
  if (!addParam(std::move(entry))) return false;
  ParamAvail& added = *params_.back();
  valueDefs_.push_back(std::make_unique<ParamValueDef>(std::move(valueDef)));
  valueDefs_.back()->paramName_ = added.name;
  added.valueDef_ = valueDefs_.back().get();
  return true;
}

bool ObjDependDef::addParam(ParamAvail entry) {
  if (byName_.contains(entry.name)) return false;
  auto owned = std::make_unique<ParamAvail>(std::move(entry));
  owned->data_ = data_;
  owned->valueDef_ = nullptr;
  params_.push_back(std::move(owned));
  ParamAvail const& added = *params_.back();
  byName_.emplace(added.name, params_.size() - 1);
  if (added.required) requiredParams_.push_back(params_.size() - 1);
  return true;
}

bool ObjDependDef::addChild(ChildAvail entry) {
  if (byType_.contains(entry.type)) return false;
  auto owned = std::make_unique<ChildAvail>(std::move(entry));
  owned->data_ = data_;
  children_.push_back(std::move(owned));
  byType_.emplace(children_.back()->type, children_.size() - 1);
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
  auto const& entry = *children_[cursor.next_++];
  return {&entry, isLive(entry.contexts, cursor.context_)};
}

std::pair<ParamAvail const*, bool> ObjDependDef::paramAvailAt(std::size_t place,
                                                              std::string const& contextRuleValue) const {
  ParamAvail const& entry = *params_[place];
  return {&entry, isLive(entry.contexts, contextRuleValue)};
}

std::size_t ObjDependDef::placeOfParam(std::string_view name) const {
  auto const found = byName_.find(name);
  return found == byName_.end() ? noPlace : found->second;
}

ParamAvail const* ObjDependDef::findParam(std::string_view name) const {
  auto const found = byName_.find(name);
  return found == byName_.end() ? nullptr : params_[found->second].get();
}

ChildAvail const* ObjDependDef::findChild(std::string_view type) const {
  auto const found = byType_.find(type);
  return found == byType_.end() ? nullptr : children_[found->second].get();
}

ParamValueDef const* ObjDependDef::findValueDef(std::string_view name) const {
  ParamAvail const* const entry = findParam(name);
  return entry == nullptr ? nullptr : entry->valueDef();
}

}  // namespace tarn
