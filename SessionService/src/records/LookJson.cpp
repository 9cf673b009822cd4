#include <tarn/service/LookJson.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include <tarn/TDFParam.h>
#include <tarn/service/JsonText.h>
#include <tarn/service/SessionJson.h>

namespace tarn::service {

namespace {

using Json = nlohmann::ordered_json;

void addText(Json& json, char const* key, std::string const& text) {
  if (!text.empty()) json[key] = text;
}

void addOptional(Json& json, char const* key, std::optional<std::string> const& value) {
  if (value) json[key] = *value;
}

void addFlag(Json& json, char const* key, bool flag) {
  if (flag) json[key] = true;
}

void addPlace(Json& json, char const* key, RulePlace const& place) {
  if (place.isKnown()) json[key] = placeAsJson(place);
}

/// The first items of a list, and their number when some are left out.
void addList(Json& json, char const* key, char const* countKey, std::vector<std::string> const& all, std::size_t most) {
  auto const end = all.begin() + static_cast<std::ptrdiff_t>(std::min(all.size(), most));
  json[key] = std::vector<std::string>(all.begin(), end);
  if (end != all.end()) json[countKey] = all.size();
}

Json allowedOfRecord(ParamAllowedValues const& allowed) {
  Json json = Json::object();
  addList(json, "allowedValues", "allowedCount", allowed.allowedValues.vector(), mostAllowedInRecord);
  if (allowed.hasSubset) {
    addList(json, "subsetValues", "subsetCount", allowed.subsetValues.vector(), mostAllowedInRecord);
  }
  json["allowsAnyValue"] = allowed.allowsAnyValue;
  return json;
}

/// The members that parameters, objects and types of children have in common.
template <typename Record>
void addPresentation(Json& json, Record const& record) {
  addText(json, "description", record.description);
  addText(json, "group", record.group);
  addText(json, "label", record.label);
  addFlag(json, "advanced", record.advanced);
}

}  // namespace

Json paramRecordAsJson(session::ParamRecord const& param) {
  Json json = {{"path", param.path}, {"name", param.name}};
  addPresentation(json, param);
  json["type"] = TDFParam::typeName(param.type);
  json["required"] = param.required;
  json["present"] = param.present;
  json["offered"] = param.offered;
  json["available"] = param.available();
  addText(json, "reason", param.reason);
  if (param.decision) json["decision"] = *param.decision;
  addOptional(json, "value", param.value);
  json["origin"] = originName(param.origin);
  if (param.step != 0) json["step"] = param.step;
  if (param.waiting) json["waiting"] = waitingAsJson(*param.waiting);
  addOptional(json, "valueInModel", param.valueInModel);
  addOptional(json, "defaultValue", param.defaultValue);
  addOptional(json, "lowerBound", param.lowerBound);
  addFlag(json, "lowerBoundExcluded", param.lowerBoundExcluded);
  addOptional(json, "upperBound", param.upperBound);
  addFlag(json, "upperBoundExcluded", param.upperBoundExcluded);
  addText(json, "outOfBounds", param.outOfBounds);
  addText(json, "quantityType", param.quantityType);
  if (!param.units.empty()) json["units"] = param.units;
  if (param.allowed.hasAllowedValues) json["allowed"] = allowedOfRecord(param.allowed);
  addFlag(json, "completeListRequired", param.completeListRequired);
  addPlace(json, "rule", param.rule);
  return json;
}

Json objectRecordAsJson(session::ObjectRecord const& object) {
  Json json = {{"path", object.path}, {"type", object.type}, {"name", object.name}};
  addPresentation(json, object);
  json["required"] = object.required;
  json["singleton"] = object.singleton;
  json["editable"] = object.editable;
  json["present"] = object.present;
  json["offered"] = object.offered;
  json["available"] = object.available;
  addText(json, "reason", object.reason);
  if (object.decision) json["decision"] = *object.decision;
  if (object.waiting) json["waiting"] = waitingAsJson(*object.waiting);
  json["inModel"] = object.inModel;
  json["params"] = object.params;
  json["children"] = object.children;
  addPlace(json, "rule", object.rule);
  addPlace(json, "content", object.content);
  return json;
}

Json childTypeRecordAsJson(session::ChildTypeRecord const& type, std::size_t mostPaths) {
  Json json = {{"type", type.type}};
  addPresentation(json, type);
  json["required"] = type.required;
  json["singleton"] = type.singleton;
  json["editable"] = type.editable;
  json["available"] = type.available;
  addText(json, "reason", type.reason);
  json["canAdd"] = type.canAdd;
  if (type.allowedNames) {
    addList(json, "allowedNames", "allowedNamesCount", type.allowedNames->vector(), mostAllowedInRecord);
  }
  addList(json, "present", "presentCount", type.present, mostPaths);
  addList(json, "offered", "offeredCount", type.offered, mostPaths);
  addPlace(json, "rule", type.rule);
  return json;
}

Json ownValueAsJson(session::OwnValue const& value) {
  Json json = itemAsJson(value.item);
  json["value"] = value.value;
  json["step"] = value.step;
  json["inForce"] = value.inForce;
  return json;
}

Json differenceAsJson(session::Difference const& difference) {
  Json json = itemAsJson(difference.item);
  addOptional(json, "inModel", difference.inModel);
  addOptional(json, "now", difference.now);
  if (!difference.item.isParam()) json["isNewObject"] = difference.isNewObject;
  return json;
}

}  // namespace tarn::service
