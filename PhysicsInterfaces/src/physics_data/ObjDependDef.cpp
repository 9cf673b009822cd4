#include <tarn/ObjDependDef.h>

#include <algorithm>

namespace tarn {

namespace {

bool isLive(std::vector<std::string> const& contexts, std::string const& contextRuleValue) {
  return contexts.empty() || std::find(contexts.begin(), contexts.end(), contextRuleValue) != contexts.end();
}

}  // namespace

ObjDependDef::ObjDependDef(PhysicsData const* data, std::string typePath)
    : data_(data), typePath_(std::move(typePath)) {}

ObjDependDef::~ObjDependDef() = default;

bool ObjDependDef::addParam(ParamAvail entry, ParamValueDef valueDef) {
  if (!addParam(std::move(entry))) return false;
  auto& added = *params_.back();
  auto& values = byName_.find(added.name)->second;
  values.def = std::make_unique<ParamValueDef>(std::move(valueDef));
  values.def->paramName_ = added.name;
  added.valueDef_ = values.def.get();
  return true;
}

bool ObjDependDef::addParam(ParamAvail entry) {
  if (byName_.contains(entry.name)) return false;
  auto owned = std::make_unique<ParamAvail>(std::move(entry));
  owned->data_ = data_;
  owned->valueDef_ = nullptr;
  byName_.emplace(owned->name, Values{owned.get(), nullptr});
  params_.push_back(std::move(owned));
  return true;
}

bool ObjDependDef::addChild(ChildAvail entry) {
  if (byType_.contains(entry.type)) return false;
  auto owned = std::make_unique<ChildAvail>(std::move(entry));
  owned->data_ = data_;
  byType_.emplace(owned->type, owned.get());
  children_.push_back(std::move(owned));
  return true;
}

std::pair<ParamAvail const*, bool> ObjDependDef::firstParamAvail(PACursor& cursor) const {
  cursor.next_ = 0;
  return nextParamAvail(cursor, {});
}

std::pair<ParamAvail const*, bool> ObjDependDef::nextParamAvail(PACursor& cursor,
                                                                std::string const& contextRuleValue) const {
  if (cursor.next_ >= params_.size()) return {nullptr, false};
  auto const& entry = *params_[cursor.next_++];
  return {&entry, isLive(entry.contexts, contextRuleValue)};
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

ParamAvail const* ObjDependDef::findParam(std::string const& name) const {
  auto const found = byName_.find(name);
  return found == byName_.end() ? nullptr : found->second.entry;
}

ChildAvail const* ObjDependDef::findChild(std::string const& type) const {
  auto const found = byType_.find(type);
  return found == byType_.end() ? nullptr : found->second;
}

ParamValueDef const* ObjDependDef::findValueDef(std::string const& name) const {
  auto const found = byName_.find(name);
  return found == byName_.end() ? nullptr : found->second.def.get();
}

}  // namespace tarn
