#include <tarn/PhysicsData.h>

#include <algorithm>
#include <utility>

namespace tarn {

namespace {

template <typename Map, typename Name>
auto* findIn(Map const& map, Name const& name) {
  auto const found = map.find(name);
  return found == map.end() ? nullptr : found->second.get();
}

template <typename Map>
std::vector<std::string> namesOf(Map const& map) {
  std::vector<std::string> names;
  names.reserve(map.size());
  for (auto const& entry : map) names.push_back(entry.first);
  return names;
}

}  // namespace

PhysicsData::PhysicsData() : rules_(this) {}
PhysicsData::~PhysicsData() = default;

ObjDependDef const* PhysicsData::getObjDependDef(std::string const& objectTypePath, bool /*flag*/) const {
  return findIn(objects_, objectTypePath);
}

ParamValueDef const* PhysicsData::getParamValueDef(std::string const& objectTypePath, std::string const& paramName,
                                                   bool /*flag*/) const {
  auto const* object = findIn(objects_, objectTypePath);
  return object != nullptr ? object->findValueDef(paramName) : nullptr;
}

Check const* PhysicsData::getCheck(std::string const& name, bool /*flag*/) const {
  return findIn(checks_, name);
}
List const* PhysicsData::getList(std::string const& name, bool /*flag*/) const {
  return findIn(lists_, name);
}
GlobalCheck const* PhysicsData::getGlobalCheck(std::string const& name, bool /*flag*/) const {
  return findIn(globalChecks_, name);
}

std::vector<std::string> PhysicsData::getGlobalCheckNames() const {
  return globalCheckOrder_;
}
std::vector<std::string> PhysicsData::getCheckNames() const {
  return namesOf(checks_);
}
std::vector<std::string> PhysicsData::getListNames() const {
  return namesOf(lists_);
}

TextExpression const* PhysicsData::findValue(std::string_view name) const {
  return findIn(values_, name);
}
std::vector<std::string> PhysicsData::getValueNames() const {
  return namesOf(values_);
}

ObjDependDef& PhysicsData::addObject(std::string const& objectTypePath) {
  auto const found = objects_.find(objectTypePath);
  if (found != objects_.end()) return *found->second;
  auto made = std::make_unique<ObjDependDef>(this, objectTypePath);
  objectOrder_.push_back(made.get());
  try {
    return *objects_.emplace(objectTypePath, std::move(made)).first->second;
  } catch (...) {
    objectOrder_.pop_back();
    throw;
  }
}

bool PhysicsData::addCheck(std::string const& name, std::unique_ptr<Check> check) {
  return checks_.try_emplace(name, std::move(check)).second;
}

bool PhysicsData::addList(std::string const& name, std::unique_ptr<List> list) {
  return lists_.try_emplace(name, std::move(list)).second;
}

bool PhysicsData::addValue(std::string const& name, std::unique_ptr<TextExpression> value) {
  return values_.try_emplace(name, std::move(value)).second;
}

bool PhysicsData::addGlobalCheck(std::string const& name, std::unique_ptr<GlobalCheck> check) {
  if (globalChecks_.contains(name)) return false;
  globalCheckOrder_.push_back(name);
  try {
    globalChecks_.emplace(name, std::move(check));
  } catch (...) {
    globalCheckOrder_.pop_back();
    throw;
  }
  return true;
}

QuantityType const* PhysicsData::findQuantityType(std::string_view name) const {
  auto const found = quantityTypes_.find(name);
  return found == quantityTypes_.end() ? nullptr : &found->second;
}

bool PhysicsData::addQuantityType(std::string const& name, QuantityType type) {
  return quantityTypes_.emplace(name, std::move(type)).second;
}

bool PhysicsData::addQuantityType(std::string const& name, std::vector<std::string> const& units) {
  return addQuantityType(name, QuantityType(units));
}

void PhysicsData::addPertinentRoot(std::string const& type) {
  if (std::find(roots_.begin(), roots_.end(), type) == roots_.end()) roots_.push_back(type);
}

}  // namespace tarn
