// Records of a session as JSON. Each record is written in one place, so it has one form everywhere.
#include <tarn/service/SessionJson.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include <tarn/service/FindingJson.h>
#include <tarn/service/JsonText.h>
#include <tarn/service/LookJson.h>
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

Json pathAsJson(std::string const& path) {
  return path;
}

/// The entries of a list from `offset` on.
template <typename List, typename AsJson>
Json part(List const& all, AsJson const& asJson, std::size_t offset, std::size_t most) {
  Json list = Json::array();
  std::size_t const begin = std::min(offset, all.size());
  std::size_t const end = begin + std::min(most, all.size() - begin);
  for (std::size_t i = begin; i < end; ++i) list.push_back(asJson(all[i]));
  return list;
}

/// Calls `use` with the key, the entries and the form of each list of an effect, in the order of its members.
template <typename Use>
void forEffectLists(session::Effect const& effect, Use const& use) {
  use("values", effect.values, valueChangeAsJson);
  use("choices", effect.choices, choicesChangeAsJson);
  use("bounds", effect.bounds, boundsChangeAsJson);
  use("defaults", effect.defaults, textChangeAsJson);
  use("quantities", effect.quantities, textChangeAsJson);
  use("offersGained", effect.offersGained, itemAsJson);
  use("offersLost", effect.offersLost, itemAsJson);
  use("objectsCreated", effect.objectsCreated, pathAsJson);
  use("objectsDeleted", effect.objectsDeleted, pathAsJson);
  use("waiting", effect.waiting, waitingChangeAsJson);
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

std::string_view openFaultName(session::OpenFault fault) noexcept {
  using session::OpenFault;
  switch (fault) {
    case OpenFault::ModelUnreadable:
      return "model-unreadable";
    case OpenFault::RootUnreadable:
      return "root-unreadable";
    case OpenFault::RootUnknown:
      return "root-unknown";
    case OpenFault::NoRoot:
      return "no-root";
    case OpenFault::SeveralRoots:
      return "several-roots";
    case OpenFault::RuleFailed:
      break;
  }
  return "rule-failed";
}

std::string_view saveFaultName(session::SaveFault fault) noexcept {
  using session::SaveFault;
  switch (fault) {
    case SaveFault::FileChanged:
      return "file-changed";
    case SaveFault::NotWritable:
      return "not-writable";
    case SaveFault::WriteFailed:
      return "write-failed";
    case SaveFault::NoFile:
      break;
  }
  return "no-file";
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

Json effectListAsJson(session::Effect const& effect, std::string_view key, std::size_t offset, std::size_t most) {
  Json list;
  forEffectLists(effect, [&](std::string_view name, auto const& all, auto const& asJson) {
    if (name == key) list = part(all, asJson, offset, most);
  });
  return list;
}

std::size_t effectListSize(session::Effect const& effect, std::string_view key) {
  std::size_t size = 0;
  forEffectLists(effect, [&](std::string_view name, auto const& all, auto const&) {
    if (name == key) size = all.size();
  });
  return size;
}

Json effectAsJson(session::Effect const& effect, std::size_t most) {
  Json json;
  Json cut;
  forEffectLists(effect, [&](std::string_view name, auto const& all, auto const& asJson) {
    json[std::string(name)] = part(all, asJson, 0, most);
    if (all.size() > most) cut[std::string(name)] = all.size();
  });
  if (!cut.is_null()) json["cut"] = cut;
  return json;
}

Json refusedAsJson(session::Refused const& refused) {
  Json json;
  json["code"] = refusalName(refused.code);
  json["index"] = refused.index;
  json["edit"] = editAsJson(refused.edit);
  json["sentence"] = refused.sentence;
  if (refused.nearest) json["nearest"] = editAsJson(*refused.nearest);
  if (refused.possible.empty()) return json;
  Json const listed = part(refused.possible.vector(), std::identity(), 0, mostAllowedInRecord);
  std::size_t const count = std::max(refused.possible.size(), refused.possibleCount);
  json["possible"] = listed;
  if (listed.size() < count) json["possibleCount"] = count;
  return json;
}

Json editResultAsJson(session::EditResult const& result, std::size_t most) {
  Json json;
  json["applied"] = result.applied();
  if (result.refused) {
    json["refused"] = refusedAsJson(*result.refused);
  } else {
    if (result.step != 0) json["step"] = result.step;
    json["made"] = jsonList(result.made, editAsJson);
    if (!result.conversions.empty()) json["conversions"] = jsonList(result.conversions, conversionAsJson);
    if (!result.followed.empty()) json["followed"] = jsonList(result.followed, followedAsJson);
    json["effect"] = effectAsJson(result.effect, most);
  }
  json["message"] = sentenceOf(result);
  return json;
}

Json tryResultAsJson(session::TryResult const& result, std::size_t most) {
  Json json = editResultAsJson(result.result, most);
  if (!result.result.applied()) return json;
  json.erase("message");  // it says that the edits were made
  json["findingsGained"] = part(result.findingsGained, findingAsJson, 0, most);
  json["findingsLost"] = part(result.findingsLost, findingAsJson, 0, most);
  return json;
}

Json stepAsJson(session::Step const& step) {
  Json json = {{"number", step.number}};
  json["edits"] = jsonList(step.edits, editAsJson);
  json["made"] = jsonList(step.made, editAsJson);
  if (!step.conversions.empty()) json["conversions"] = jsonList(step.conversions, conversionAsJson);
  if (!step.followed.empty()) json["followed"] = jsonList(step.followed, followedAsJson);
  return json;
}

Json openErrorAsJson(session::OpenError const& error) {
  Json json = {{"fault", openFaultName(error.fault)}, {"sentence", error.sentence}};
  if (!error.candidates.empty()) json["candidates"] = error.candidates;
  return json;
}

Json saveErrorAsJson(session::SaveError const& error) {
  return {{"fault", saveFaultName(error.fault)}, {"sentence", error.sentence}};
}

Json foundAsJson(session::Found const& found) {
  Json json = itemAsJson(found.item);
  json["match"] = matchKindName(found.match);
  json["present"] = found.present;
  return json;
}

}  // namespace tarn::service
