// The format for services that collect results of many tools. Only what the standard requires and what readers show is
// written.
#include "reports/SarifLog.h"

#include <array>
#include <ostream>

#include <tarn/service/JsonText.h>

#include "cli/ExitStatus.h"

namespace tarn::tool {

namespace {

using Json = SarifLog::Json;

bool isPlain(char c) noexcept {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         std::string_view("-._~/").find(c) != std::string_view::npos;
}

// The name of a file as a URI reference. All other characters are escaped, so it is always a valid one.
std::string uriOf(std::string const& file) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string uri = file.starts_with('/') ? "file://" : "";
  for (char const c : file) {
    if (isPlain(c)) {
      uri += c;
    } else {
      auto const byte = static_cast<unsigned char>(c);
      uri += {'%', digits[byte >> 4U], digits[byte & 0xFU]};
    }
  }
  return uri;
}

Json locationOf(SarifLog::Place const& place) {
  Json physical = {{"artifactLocation", {{"uri", uriOf(place.file)}}}};
  if (place.line > 0) {
    Json& region = physical["region"];
    region["startLine"] = place.line;
    if (place.column > 0) region["startColumn"] = place.column;
    if (place.endLine > 0) region["endLine"] = place.endLine;
    if (place.endColumn > 0) region["endColumn"] = place.endColumn;
  }
  Json location = {{"physicalLocation", std::move(physical)}};
  if (!place.message.empty()) location["message"] = {{"text", place.message}};
  return location;
}

Json locationsOf(std::vector<SarifLog::Place> const& places) {
  Json list = Json::array();
  for (SarifLog::Place const& place : places) list.push_back(locationOf(place));
  return list;
}

}  // namespace

SarifLog::SarifLog(std::ostream& out, std::vector<Rule> const& rules) : out_(out) {
  Json driver = {{"name", "zev"}, {"semanticVersion", TARN_VERSION}};
  Json& list = driver["rules"] = Json::array();
  for (Rule const& rule : rules) {
    list.push_back({{"id", rule.id},
                    {"shortDescription", {{"text", rule.meaning}}},
                    {"defaultConfiguration", {{"level", rule.level}}}});
  }
  Json const tool = {{"driver", std::move(driver)}};
  out_ << R"({"$schema":"https://json.schemastore.org/sarif-2.1.0.json","version":"2.1.0","runs":[{"tool":)"
       << service::jsonLine(tool) << R"(,"columnKind":"unicodeCodePoints","results":[)";
}

void SarifLog::add(Result const& result, Json const& properties) {
  Json json = {{"ruleId", result.ruleId}, {"level", result.level}, {"message", {{"text", result.message}}}};
  Json locations = locationsOf(result.places);
  if (!result.object.empty()) {
    if (locations.empty()) locations.push_back(Json::object());
    locations.front()["logicalLocations"] = {{{"fullyQualifiedName", result.object}, {"kind", "object"}}};
  }
  if (!locations.empty()) json["locations"] = std::move(locations);
  if (!result.related.empty()) json["relatedLocations"] = locationsOf(result.related);
  if (!properties.is_null()) json["properties"] = properties;
  out_ << (isFirst_ ? "\n" : ",\n") << service::jsonLine(json);
  isFirst_ = false;
}

void SarifLog::addFailure(std::string const& message, std::vector<Place> const& places) {
  Json failure = {{"level", "error"}, {"message", {{"text", message}}}};
  if (!places.empty()) failure["locations"] = locationsOf(places);
  failures_.push_back(std::move(failure));
}

void SarifLog::finish(int exitStatus) {
  Json invocation = {{"executionSuccessful", exitStatus != Failed}, {"exitCode", exitStatus}};
  if (!failures_.empty()) invocation["toolExecutionNotifications"] = std::move(failures_);
  out_ << (isFirst_ ? "]" : "\n]") << ",\"invocations\":[" << service::jsonLine(invocation) << "]}]}\n";
}

}  // namespace tarn::tool
