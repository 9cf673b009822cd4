#include <tarn/service/FindingJson.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <tarn/service/SessionJson.h>

namespace tarn::service {

namespace {

using Json = nlohmann::ordered_json;

void addExpected(Json& json, session::Expected const& expected) {
  auto const add = [&json](char const* key, auto const& value) {
    if (value) json[key] = *value;
  };
  if (!expected.allowed.empty()) {
    auto const& all = expected.allowed.vector();
    auto const end = all.begin() + static_cast<std::ptrdiff_t>(std::min(all.size(), mostAllowedInJson));
    json["allowed"] = std::vector<std::string>(all.begin(), end);
    if (end != all.end()) json["allowedCount"] = all.size();
  }
  add("lowerBound", expected.lowerBound);
  if (expected.lowerBoundExcluded) json["lowerBoundExcluded"] = true;
  add("upperBound", expected.upperBound);
  if (expected.upperBoundExcluded) json["upperBoundExcluded"] = true;
  if (!expected.units.empty()) json["units"] = expected.units;
  add("minimumCount", expected.minimumCount);
  add("maximumCount", expected.maximumCount);
  add("pattern", expected.pattern);
  add("nearMatch", expected.nearMatch);
  add("remedy", expected.value);
}

}  // namespace

Json findingAsJson(session::Finding const& finding) {
  Json json;
  json["code"] = describe(finding.code).name;
  json["severity"] = severityName(finding.severity);
  json["path"] = finding.path;
  if (finding.name) json["name"] = *finding.name;
  if (finding.type) json["type"] = *finding.type;
  if (finding.check) json["check"] = *finding.check;
  if (finding.value) json["value"] = *finding.value;
  if (!finding.wrong.empty()) json["wrong"] = finding.wrong;
  Json expected = Json::object();
  addExpected(expected, finding.expected);
  if (!expected.empty()) json["expected"] = std::move(expected);
  if (!finding.places.empty()) {
    Json& places = json["places"] = Json::array();
    for (TextPlace const& place : finding.places) places.push_back(placeAsJson(place));
  }
  if (finding.rule.isKnown()) json["rule"] = placeAsJson(finding.rule);
  json["message"] = finding.message;
  return json;
}

}  // namespace tarn::service
