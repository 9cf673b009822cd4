// The records of single items. Each reads the state, and evaluates the rules of its item.
#include <algorithm>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>

#include "review/BoundsCheck.h"
#include "session/SessionImpl.h"

namespace tarn::session {

namespace {

std::optional<std::string> unlessEmpty(std::string text) {
  return text.empty() ? std::nullopt : std::optional(std::move(text));
}

/// The texts that user interfaces show instead of the name, and where.
template <class Entry, class Record>
void describeForPeople(Entry const& entry, Record& record) {
  record.group = entry.group;
  record.label = entry.label;
  record.advanced = entry.advanced;
}

/// The value of a parameter in a state, or null.
std::string const* valueIn(ModelState const& model, std::string const& path, std::string const& name) {
  auto const object = model.find(path);
  if (object == model.end()) return nullptr;
  auto const param = object->second.find(name);
  return param == object->second.end() ? nullptr : &param->second;
}

/// Whether the state has the object, possibly only because a deeper path implies it.
bool holdsObject(ModelState const& model, std::string const& path) {
  if (model.contains(path)) return true;
  std::string const prefix = path + '/';
  auto const below = model.lower_bound(prefix);
  return below != model.end() && below->first.starts_with(prefix);
}

/// How the value, or the first item of a list that is wrong, is outside of its bounds. "" if all are inside.
std::string outOfBounds(std::string const& value, TDFParam::Type type, Bounds const& bounds,
                        QuantityType const* quantityType) {
  std::vector<std::string> const items =
      TDFParam::isListType(type) ? StringUtilities::stringToVector(value, ',') : std::vector<std::string>{value};
  for (std::string const& item : items) {
    auto const quantity = TDFParam::asQuantity(StringUtilities::trimmed(item));
    if (!quantity) continue;
    if (auto fault = faultOfBounds(*quantity, bounds, quantityType)) return std::move(fault->sentence);
  }
  return {};
}

}  // namespace

Origin SessionImpl::originOf(std::string const& path, std::string const& name, std::size_t& step) const {
  step = 0;
  RuledState const& state = work_->ruled;
  std::string const* const value = state.value(path, name);
  if (value == nullptr) return Origin::None;
  ParamRules const rules = state.rulesOfParam(path, name);
  if (!rules || state.isInMirroredBranch(path)) return Origin::Model;
  TDFParam::Type const type = rules.value->type;
  ParamAllowedValues const& allowed = provisional().getAllowedValueData(path, name);
  if (rules.value->hasValueOverride()) {
    auto const [isInForce, text] = state.override(rules, path, allowed);
    if (isInForce && RuledState::isInForce(type, StringUtilities::removeWhitespace(text), *value))
      return Origin::Override;
  }
  bool const isCompleted = rules.value->completeListRequired && TDFParam::isListType(type);
  std::string const* const asked = state.askedValue(path, name);
  bool const isAsked = asked != nullptr && provisional().getParamDecision(path, name).value_or(true);
  if (!isAsked || !RuledState::isInForce(type, *asked, *value)) {
    bool const isDefault = !isCompleted || *value == state.defaultValue(rules, path, allowed);
    return isDefault ? Origin::Default : Origin::CompletedList;
  }
  if (isCompleted && *asked != *value) return Origin::CompletedList;
  if (Requests::Given const* const given = requests_.lastValue({path, name})) {
    if (StringUtilities::removeWhitespace(given->value) == *asked) {
      step = given->step;
      return Origin::User;
    }
  }
  std::string const* const inModel = valueIn(model_, path, name);
  if (inModel != nullptr && *inModel == *asked) return Origin::Model;
  step = requests_.lastCopy(path);
  return step != 0 ? Origin::User : Origin::FormerOverride;
}

std::optional<ParamRecord> SessionImpl::lookParam(std::string const& path, std::string const& name) const {
  RuledState const& state = work_->ruled;
  ParamRules const rules = state.rulesOfParam(path, name);
  std::string const* const value = state.value(path, name);
  bool const isInside = StringUtilities::isPathRootedAt(root_, path);
  if (!isInside || (!rules && value == nullptr)) return std::nullopt;
  if (value == nullptr && !state.hasObject(path) && !lookObject(path)) return std::nullopt;

  ParamRecord record;
  record.path = path;
  record.name = name;
  record.present = value != nullptr;
  record.offered = work_->offers.has({path, name});
  record.decision = provisional().getParamDecision(path, name);
  record.origin = originOf(path, name, record.step);
  if (value != nullptr) record.value = *value;
  record.waiting = state.waitingParam(path, name, record.offered);
  if (std::string const* const inModel = valueIn(model_, path, name)) record.valueInModel = *inModel;
  record.allowed = provisional().getAllowedValueData(path, name);
  if (!rules) return record;

  record.description = rules.entry->description;
  describeForPeople(*rules.entry, record);
  record.type = rules.value->type;
  record.required = rules.entry->required;
  if (!record.available()) record.reason = rules.entry->reason;
  record.completeListRequired = rules.value->completeListRequired;
  record.rule = rules.entry->rulePlace;
  if (!record.available()) record.allowed = state.allowedValues(rules, path);
  if (rules.value->hasDefault() || record.allowed.hasAllowedValues) {
    record.defaultValue = unlessEmpty(state.defaultValue(rules, path, record.allowed));
  }
  if (TDFParam::isNumericType(record.type)) {
    auto [lower, upper] = state.bounds(rules, path);
    record.lowerBoundExcluded = !lower.empty() && rules.value->lowerBoundExcluded;
    record.upperBoundExcluded = !upper.empty() && rules.value->upperBoundExcluded;
    record.quantityType = state.quantityType(rules, path);
    QuantityType const* const quantityType = rules_.findQuantityType(record.quantityType);
    if (quantityType != nullptr) {
      for (QuantityUnit const& unit : quantityType->units()) record.units.push_back(unit.text);
    }
    if (value != nullptr && !(lower.empty() && upper.empty())) {
      Bounds const bounds = {lower, upper, rules.value->lowerBoundExcluded, rules.value->upperBoundExcluded};
      record.outOfBounds = outOfBounds(*value, record.type, bounds, quantityType);
    }
    record.lowerBound = unlessEmpty(std::move(lower));
    record.upperBound = unlessEmpty(std::move(upper));
  }
  return record;
}

std::optional<ObjectRecord> SessionImpl::lookObject(std::string const& path) const {
  RuledState const& state = work_->ruled;
  if (!StringUtilities::isPathRootedAt(root_, path)) return std::nullopt;
  ObjectRecord record;
  record.path = path;
  record.type = PathUtils::lastType(path);
  record.name = PathUtils::lastName(path);
  record.present = state.hasObject(path);
  record.offered = work_->offers.has({path, std::nullopt});
  record.waiting = state.waitingObject(path, record.offered);

  ObjDependDef const* const content = state.rulesOfObject(path);
  bool const isRoot = path == root_;
  ChildRules const rules = isRoot ? ChildRules() : state.rulesOfChild(path);
  if (!isRoot && !record.present) {
    // Only an object without a name of the user's choice is known by the rules alone.
    bool const isNamed = path.find(':', path.rfind('/') + 1) != std::string::npos;
    bool const isKnown = rules && rules.entry->singleton && !isNamed;
    if (!isKnown && !record.offered && !record.waiting) return std::nullopt;
    std::string const parent(PathUtils::parentOf(path));
    if (!state.hasObject(parent) && (parent.size() < root_.size() || !lookObject(parent))) return std::nullopt;
  }
  if (content != nullptr) {
    record.description = content->description;
    record.content = content->rulePlace;
  }
  if (rules) {
    if (record.description.empty()) record.description = rules.entry->description;
    describeForPeople(*rules.entry, record);
    record.required = rules.entry->required;
    record.singleton = rules.entry->singleton;
    record.editable = !state.isInMirroredBranch(path);
    record.rule = rules.entry->rulePlace;
    ObjDependency::AllowedNameData names;
    std::string const parent(PathUtils::parentOf(path));
    record.available =
        record.present || record.offered || (state.hasObject(parent) && state.isChildAvailable(rules, parent, names));
    if (!record.available) record.reason = rules.entry->reason;
  } else {
    record.available = record.present;
    record.required = isRoot;
    record.singleton = record.name == record.type;
  }
  record.decision = provisional().getObjectDecision(path);
  record.inModel = path.empty() || holdsObject(model_, path);
  std::vector<std::string> listed;
  if (provisional().getActiveTree().getParameterNames(path, listed)) record.params = listed.size();
  listed.clear();
  provisional().getActiveTree().getChildObjectPaths(path, listed);
  record.children = listed.size();
  return record;
}

std::vector<std::string> SessionImpl::params(std::string const& path) const {
  std::vector<std::string> names;
  ObjDependDef const* const rules = work_->ruled.rulesOfObject(path);
  if (rules == nullptr || !StringUtilities::isPathRootedAt(root_, path)) return names;
  names.reserve(rules->params().size());
  for (auto const& entry : rules->params()) names.push_back(entry->name);
  return names;
}

std::vector<ChildTypeRecord> SessionImpl::childTypes(std::string const& path) const {
  std::vector<ChildTypeRecord> records;
  RuledState const& state = work_->ruled;
  ObjDependDef const* const rules = state.rulesOfObject(path);
  if (rules == nullptr || !StringUtilities::isPathRootedAt(root_, path)) return records;
  bool const isPresent = state.hasObject(path);
  bool const isMirrored = state.isInMirroredBranch(path);
  // The order of the state's list is that of the rules.
  std::vector<std::string> offered;
  for (std::string const& object : provisional().getAvailPotObjects()) {
    if (PathUtils::parentOf(object) == path) offered.push_back(object);
  }
  records.reserve(rules->children().size());
  for (std::size_t place = 0; place < rules->children().size(); ++place) {
    ChildAvail const& entry = *rules->children()[place];
    ChildRules const child = {rules, &entry, place};
    ChildTypeRecord record;
    record.type = entry.type;
    record.description = entry.description;
    describeForPeople(entry, record);
    record.required = entry.required;
    record.singleton = entry.singleton;
    record.editable = !isMirrored && !RuledState::isMirrored(entry);
    record.rule = entry.rulePlace;
    ObjDependency::AllowedNameData names;
    record.available = isPresent && state.isChildAvailable(child, path, names);
    if (!record.available) record.reason = entry.reason;
    if (names.hasAllowedNames && !entry.singleton) record.allowedNames = SharedStrings(names.allowedNames);
    record.canAdd = record.available && record.editable && !entry.singleton && !record.allowedNames;
    provisional().getActiveTree().getChildObjectPathsByType(path, entry.type, record.present);
    for (std::string& object : offered) {
      if (PathUtils::lastType(object) == entry.type) record.offered.push_back(object);
    }
    records.push_back(std::move(record));
  }
  return records;
}

}  // namespace tarn::session
