// The format for programs: one line per model, so that a program can read the output of a long run as a stream.
#include "reports/JsonReport.h"

#include <algorithm>
#include <ostream>
#include <vector>

#include <nlohmann/json.hpp>

namespace tarn::tool {

namespace {

using Json = nlohmann::ordered_json;

// Of more allowed values than these a finding gives only the number: thousands of findings may have the same long list.
constexpr std::size_t mostAllowed = 100;

Json placeOf(TextPlace const& place) {
  return {{"file", place.source()}, {"line", place.line()}, {"column", place.column()}};
}

void addExpected(Json& json, session::Expected const& expected) {
  auto const add = [&json](char const* key, auto const& value) {
    if (value) json[key] = *value;
  };
  if (!expected.allowed.empty()) {
    auto const& all = expected.allowed.vector();
    auto const end = all.begin() + static_cast<std::ptrdiff_t>(std::min(all.size(), mostAllowed));
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

Json wholeFinding(session::Finding const& finding) {
  Json json;
  json["code"] = describe(finding.code).name;
  json["severity"] = name(finding.severity);
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
    for (TextPlace const& place : finding.places) places.push_back(placeOf(place));
  }
  if (finding.rule.isKnown()) json["rule"] = placeOf(finding.rule);
  json["message"] = finding.message;
  return json;
}

}  // namespace

void writeJsonReport(std::ostream& out, std::string const& modelName, session::Findings const& findings) {
  Json dependency = Json::array();
  Json global = Json::array();
  Json unknown = Json::array();
  Json values = Json::array();
  Json beta = Json::array();
  Json all = Json::array();
  for (session::Finding const& finding : findings.list) {
    all.push_back(wholeFinding(finding));
    // The lists by kind have no severity, and their readers take all entries for errors.
    if (finding.severity != session::Severity::Error) continue;
    switch (finding.kind()) {
      case session::FindingKind::Dependency:
        dependency.push_back({{"path", finding.path}, {"message", finding.message}});
        break;
      case session::FindingKind::Global:
        global.push_back(finding.message);
        break;
      case session::FindingKind::UnknownName: {
        Json one = {{"path", finding.path}};
        if (finding.name) one["name"] = *finding.name;
        one["message"] = finding.message;
        unknown.push_back(std::move(one));
        break;
      }
      case session::FindingKind::Value:
        values.push_back({{"path", finding.path},
                          {"name", finding.name.value_or("")},
                          {"value", finding.value.value_or("")},
                          {"message", finding.message}});
        break;
      default:  // the kinds that only the list of all findings has
        break;
    }
  }
  for (session::Finding const& remark : findings.beta) {
    beta.push_back({{"path", remark.path}, {"message", remark.message}});
  }
  Json report;
  report["model"] = modelName;
  report["status"] = findings.status;
  report["dependency"] = std::move(dependency);
  report["global"] = std::move(global);
  report["unknown"] = std::move(unknown);
  report["values"] = std::move(values);
  report["beta"] = std::move(beta);
  report["findings"] = std::move(all);
  out << report.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace tarn::tool
