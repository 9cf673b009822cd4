#include <tarn/service/ProofJson.h>

#include <string>

#include <tarn/service/ExplanationJson.h>
#include <tarn/service/FindingJson.h>
#include <tarn/service/JsonText.h>
#include <tarn/service/SessionJson.h>

namespace tarn::service {

namespace {

using Json = nlohmann::ordered_json;
using session::Fact;

Json readAsJson(session::ProofRead const& read) {
  Json json = modelReadAsJson(read.read);
  if (read.origin != session::Origin::None) json["origin"] = originName(read.origin);
  if (read.step != 0) json["step"] = read.step;
  if (read.place.isKnown()) json["place"] = placeAsJson(read.place);
  if (read.isOld) {
    json["isOld"] = true;
    if (read.valueNow) json["valueNow"] = *read.valueNow;
  }
  if (read.node) json["node"] = *read.node;
  return json;
}

Json ruleAsJson(session::ProofRule const& rule) {
  Json json = {{"attribute", rule.attribute}};
  if (!rule.text.empty()) json["text"] = rule.text;
  if (rule.place.isKnown()) json["place"] = placeAsJson(rule.place);
  json["explanation"] = explanationAsJson(rule.explanation);
  json["reads"] = jsonList(rule.reads, readAsJson);
  return json;
}

Json nodeAsJson(session::ProofNode const& node) {
  Json json = itemAsJson(node.item);
  json["fact"] = factName(node.fact);
  if (!node.value.empty()) json["value"] = node.value;
  if (node.step != 0) json["step"] = node.step;
  if (!node.contextParam.empty()) json["contextParam"] = node.contextParam;
  if (!node.needed.empty()) json["needed"] = node.needed;
  if (!node.reason.empty()) json["reason"] = node.reason;
  if (node.place.isKnown()) json["place"] = placeAsJson(node.place);
  if (!node.rules.empty()) {
    json["rules"] = jsonList(node.rules, ruleAsJson);
  }
  if (node.before) json["before"] = *node.before;
  if (node.after) json["after"] = *node.after;
  if (node.isOutdated) json["isOutdated"] = true;
  if (!node.children.empty()) json["children"] = node.children;
  return json;
}

Json wayAsJson(session::Way const& way) {
  Json json;
  json["edits"] = jsonList(way.edits, editAsJson);
  json["effect"] = effectAsJson(way.result.effect);
  json["lost"] = jsonList(way.lost, valueChangeAsJson);
  if (!way.findingsGained.empty()) json["findingsGained"] = jsonList(way.findingsGained, findingAsJson);
  if (way.atNextEdit) json["atNextEdit"] = true;
  return json;
}

}  // namespace

std::string_view questionName(session::Question question) noexcept {
  switch (question) {
    case session::Question::Presence:
      return "presence";
    case session::Question::Value:
      return "value";
    case session::Question::Allowed:
      return "allowed";
    case session::Question::LastEdit:
      break;
  }
  return "last-edit";
}

std::string_view answerName(session::HowAnswer answer) noexcept {
  switch (answer) {
    case session::HowAnswer::AlreadySo:
      return "already-so";
    case session::HowAnswer::Found:
      return "found";
    case session::HowAnswer::Impossible:
      return "impossible";
    case session::HowAnswer::NotFound:
      break;
  }
  return "not-found";
}

std::string_view factName(Fact fact) noexcept {
  switch (fact) {
    case Fact::OutsideRoot:
      return "outside-root";
    case Fact::UnknownToTheRules:
      return "unknown-to-the-rules";
    case Fact::ObjectAbsent:
      return "object-absent";
    case Fact::NotLive:
      return "not-live";
    case Fact::NotAvailable:
      return "not-available";
    case Fact::NoAllowedValue:
      return "no-allowed-value";
    case Fact::NameNotAllowed:
      return "name-not-allowed";
    case Fact::NotAskedFor:
      return "not-asked-for";
    case Fact::NotInModel:
      return "not-in-model";
    case Fact::NeverSwitchedOn:
      return "never-switched-on";
    case Fact::SwitchedOff:
      return "switched-off";
    case Fact::ValueRefused:
      return "value-refused";
    case Fact::IsRoot:
      return "is-root";
    case Fact::Required:
      return "required";
    case Fact::AskedFor:
      return "asked-for";
    case Fact::TakenFromModel:
      return "taken-from-model";
    case Fact::Override:
      return "override";
    case Fact::SetByUser:
      return "set-by-user";
    case Fact::GivenByModel:
      return "given-by-model";
    case Fact::FormerOverride:
      return "former-override";
    case Fact::CompletedList:
      return "completed-list";
    case Fact::ConditionalDefault:
      return "conditional-default";
    case Fact::Default:
      return "default";
    case Fact::FirstOnOffer:
      return "first-on-offer";
    case Fact::Blank:
      return "blank";
    case Fact::NotInList:
      return "not-in-list";
    case Fact::Unused:
      return "unused";
    case Fact::CheckFails:
      return "check-fails";
    case Fact::OutsideSubset:
      return "outside-subset";
    case Fact::ValueAllowed:
      return "value-allowed";
    case Fact::AnyValueAllowed:
      return "any-value-allowed";
    case Fact::NotChanged:
      return "not-changed";
    case Fact::EditedItself:
      return "edited-itself";
    case Fact::ChangedByRules:
      return "changed-by-rules";
  }
  return {};
}

Json proofAsJson(session::Proof const& proof) {
  Json json = {{"question", questionName(proof.question)}};
  if (proof.hidden != 0) json["hidden"] = proof.hidden;
  json["nodes"] = jsonList(proof.nodes, nodeAsJson);
  return json;
}

Json howAsJson(session::HowResult const& result) {
  Json json = {{"answer", answerName(result.answer)}};
  json["ways"] = jsonList(result.ways, wayAsJson);
  json["trials"] = result.trials;
  json["completedEdits"] = result.completedEdits;
  if (result.stoppedByTime) json["stoppedByTime"] = true;
  if (result.refused) json["refused"] = refusedAsJson(*result.refused);
  if (result.blocking) json["blocking"] = proofAsJson(*result.blocking);
  if (!result.freeParams.empty()) {
    json["freeParams"] = jsonList(result.freeParams, itemAsJson);
  }
  return json;
}

}  // namespace tarn::service
