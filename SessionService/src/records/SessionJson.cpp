// Records of a session as JSON. Each record is written in one place, so it has one form everywhere.
#include <tarn/service/SessionJson.h>

#include <optional>
#include <string>

#include <tarn/service/JsonText.h>
#include <tarn/session/Sentences.h>

namespace tarn::service {

namespace {

using Json = nlohmann::ordered_json;

void addOptional(Json& json, char const* key, std::optional<std::string> const& value) {
  if (value) json[key] = *value;
}

Json paramAsJson(std::string const& path, std::string const& name) {
  return {{"path", path}, {"name", name}};
}

// Values that are advice only, and a parameter without allowed values, take any value.
Json allowedAsJson(ParamAllowedValues const& allowed) {
  Json json = Json::object();
  if (allowed.hasAllowedValues) json["allowedValues"] = allowed.allowedValues.vector();
  if (allowed.hasSubset) json["subsetValues"] = allowed.subsetValues.vector();
  json["allowsAnyValue"] = allowed.allowsAnyValue || !allowed.hasAllowedValues;
  return json;
}

Json choicesChangeAsJson(session::ChoicesChange const& change) {
  Json json = paramAsJson(change.path, change.name);
  json["before"] = allowedAsJson(change.before);
  json["after"] = allowedAsJson(change.after);
  return json;
}

Json boundsAsJson(session::BoundsChange::Bounds const& bounds) {
  Json json = Json::object();
  if (!bounds.first.empty()) json["lowerBound"] = bounds.first;
  if (!bounds.second.empty()) json["upperBound"] = bounds.second;
  return json;
}

Json boundsChangeAsJson(session::BoundsChange const& change) {
  Json json = paramAsJson(change.path, change.name);
  json["before"] = boundsAsJson(change.before);
  json["after"] = boundsAsJson(change.after);
  return json;
}

Json textChangeAsJson(session::TextChange const& change) {
  Json json = paramAsJson(change.path, change.name);
  if (!change.before.empty()) json["before"] = change.before;
  if (!change.after.empty()) json["after"] = change.after;
  return json;
}

Json waitingChangeAsJson(session::WaitingChange const& change) {
  Json json = itemAsJson(change.item);
  if (change.before) json["before"] = waitingAsJson(*change.before);
  if (change.after) json["after"] = waitingAsJson(*change.after);
  return json;
}

Json conversionAsJson(session::Conversion const& conversion) {
  Json json = {{"index", conversion.index}};
  json.update(itemAsJson(conversion.item));
  json["from"] = conversion.from;
  json["to"] = conversion.to;
  return json;
}

Json followedAsJson(session::FollowedReference const& followed) {
  Json json = itemAsJson(followed.item);
  json["before"] = followed.before;
  json["after"] = followed.after;
  return json;
}

}  // namespace

Json valueChangeAsJson(session::ValueChange const& change) {
  Json json = paramAsJson(change.path, change.name);
  addOptional(json, "before", change.before);
  addOptional(json, "after", change.after);
  return json;
}

Json placeAsJson(TextPlace const& place) {
  return {{"file", place.source()}, {"line", place.line()}, {"column", place.column()}};
}

std::string_view editKindName(Edit::Kind kind) noexcept {
  switch (kind) {
    case Edit::Kind::SetParam:
      return "set-param";
    case Edit::Kind::ActivateParam:
      return "activate-param";
    case Edit::Kind::DeactivateParam:
      return "deactivate-param";
    case Edit::Kind::ActivateObject:
      return "activate-object";
    case Edit::Kind::DeactivateObject:
      return "deactivate-object";
    case Edit::Kind::AddObject:
      return "add-object";
    case Edit::Kind::RemoveObject:
      return "remove-object";
    case Edit::Kind::DuplicateObject:
      return "duplicate-object";
    case Edit::Kind::RenameObject:
      return "rename-object";
  }
  return {};
}

std::string_view waitingReasonName(session::WaitingReason reason) noexcept {
  using session::WaitingReason;
  switch (reason) {
    case WaitingReason::NotAvailable:
      return "not-available";
    case WaitingReason::ObjectNotPresent:
      return "object-not-present";
    case WaitingReason::SwitchedOff:
      return "switched-off";
    case WaitingReason::ValueNotAllowed:
      return "value-not-allowed";
    case WaitingReason::Overridden:
      return "overridden";
    case WaitingReason::NotInTheRules:
      return "not-in-the-rules";
  }
  return {};
}

std::string_view matchKindName(session::MatchKind kind) noexcept {
  switch (kind) {
    case session::MatchKind::Exact:
      return "exact";
    case session::MatchKind::Prefix:
      return "prefix";
    case session::MatchKind::Word:
      return "word";
    case session::MatchKind::Substring:
      break;
  }
  return "substring";
}

Json itemAsJson(session::Item const& item) {
  Json json = {{"path", item.path}};
  addOptional(json, "name", item.name);
  return json;
}

Json editAsJson(Edit const& edit) {
  Json json = {{"kind", editKindName(edit.kind)}, {"path", edit.path}};
  switch (edit.kind) {
    case Edit::Kind::SetParam:
      json["name"] = edit.name;
      json["value"] = edit.value;
      break;
    case Edit::Kind::ActivateParam:
    case Edit::Kind::DeactivateParam:
    case Edit::Kind::DuplicateObject:
    case Edit::Kind::RenameObject:
      json["name"] = edit.name;
      break;
    case Edit::Kind::ActivateObject:
    case Edit::Kind::DeactivateObject:
    case Edit::Kind::AddObject:
    case Edit::Kind::RemoveObject:
      break;
  }
  return json;
}

Json waitingAsJson(session::Waiting const& waiting) {
  Json json = itemAsJson(waiting.item);
  addOptional(json, "value", waiting.value);
  json["reason"] = waitingReasonName(waiting.reason);
  if (!waiting.ruleReason.empty()) json["ruleReason"] = waiting.ruleReason;
  if (!waiting.missingObject.empty()) json["missingObject"] = waiting.missingObject;
  return json;
}

Json effectAsJson(session::Effect const& effect) {
  Json json;
  json["values"] = jsonList(effect.values, valueChangeAsJson);
  json["choices"] = jsonList(effect.choices, choicesChangeAsJson);
  json["bounds"] = jsonList(effect.bounds, boundsChangeAsJson);
  json["defaults"] = jsonList(effect.defaults, textChangeAsJson);
  json["quantities"] = jsonList(effect.quantities, textChangeAsJson);
  json["offersGained"] = jsonList(effect.offersGained, itemAsJson);
  json["offersLost"] = jsonList(effect.offersLost, itemAsJson);
  json["objectsCreated"] = effect.objectsCreated;
  json["objectsDeleted"] = effect.objectsDeleted;
  json["waiting"] = jsonList(effect.waiting, waitingChangeAsJson);
  return json;
}

Json refusedAsJson(session::Refused const& refused) {
  Json json;
  json["code"] = refusalName(refused.code);
  json["index"] = refused.index;
  json["edit"] = editAsJson(refused.edit);
  json["sentence"] = refused.sentence;
  if (refused.nearest) json["nearest"] = editAsJson(*refused.nearest);
  if (!refused.possible.empty()) json["possible"] = refused.possible.vector();
  return json;
}

Json editResultAsJson(session::EditResult const& result) {
  Json json;
  json["applied"] = result.applied();
  if (result.refused) {
    json["refused"] = refusedAsJson(*result.refused);
  } else {
    if (result.step != 0) json["step"] = result.step;
    json["made"] = jsonList(result.made, editAsJson);
    if (!result.conversions.empty()) json["conversions"] = jsonList(result.conversions, conversionAsJson);
    if (!result.followed.empty()) json["followed"] = jsonList(result.followed, followedAsJson);
    json["effect"] = effectAsJson(result.effect);
  }
  json["message"] = sentenceOf(result);
  return json;
}

Json foundAsJson(session::Found const& found) {
  Json json = itemAsJson(found.item);
  json["match"] = matchKindName(found.match);
  json["present"] = found.present;
  return json;
}

}  // namespace tarn::service
