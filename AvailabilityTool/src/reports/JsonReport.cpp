// The format for programs: one line per model, so that a program can read the output of a long run as a stream.
#include "reports/JsonReport.h"

#include <ostream>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include <tarn/service/FindingJson.h>
#include <tarn/service/JsonText.h>

namespace tarn::tool {

namespace {

using Json = nlohmann::ordered_json;
using session::Finding;
using session::FindingKind;

// Writes the list `key`, with an entry for each finding that `belongs` to it. Each entry is written at once, because a
// model can have many.
template <typename Belongs, typename Entry>
void writeList(std::ostream& out, char const* key, std::vector<Finding> const& findings, Belongs belongs, Entry entry) {
  out << ",\"" << key << "\":[";
  char const* separator = "";
  for (Finding const& finding : findings) {
    if (belongs(finding)) out << std::exchange(separator, ",") << service::jsonLine(entry(finding));
  }
  out << ']';
}

bool isAny(Finding const& /*finding*/) {
  return true;
}

// The lists by kind have no severity, and their readers take all entries for errors.
auto isErrorOf(FindingKind kind) {
  return [kind](Finding const& one) { return one.kind() == kind && one.severity == session::Severity::Error; };
}

Json pathAndMessage(Finding const& finding) {
  return {{"path", finding.path}, {"message", finding.message}};
}

Json unknownName(Finding const& finding) {
  Json json = {{"path", finding.path}};
  if (finding.name) json["name"] = *finding.name;
  json["message"] = finding.message;
  return json;
}

Json valueFault(Finding const& finding) {
  return {{"path", finding.path},
          {"name", finding.name.value_or("")},
          {"value", finding.value.value_or("")},
          {"message", finding.message}};
}

}  // namespace

void writeJsonReport(std::ostream& out, std::string const& modelName, session::Findings const& findings) {
  out << "{\"model\":" << service::jsonLine(modelName) << ",\"status\":" << findings.status;
  writeList(out, "dependency", findings.list, isErrorOf(FindingKind::Dependency), pathAndMessage);
  writeList(out, "global", findings.list, isErrorOf(FindingKind::Global),
            [](Finding const& one) { return Json(one.message); });
  writeList(out, "unknown", findings.list, isErrorOf(FindingKind::UnknownName), unknownName);
  writeList(out, "values", findings.list, isErrorOf(FindingKind::Value), valueFault);
  writeList(out, "beta", findings.beta, isAny, pathAndMessage);
  writeList(out, "findings", findings.list, isAny, service::findingAsJson);
  out << "}\n";
}

void writeJsonFailure(std::ostream& out, std::string const& modelName, ModelFailure const& failure) {
  Json malformed = Json::array();
  for (ModelText::Fault const& fault : failure.malformed()) {
    malformed.push_back({{"line", fault.line}, {"column", fault.column}, {"message", fault.reason}});
  }
  Json report;
  report["model"] = modelName;
  report["error"] = failure.malformed().empty() ? failure.what() : "the model has malformed lines";
  report["malformed"] = std::move(malformed);
  out << service::jsonLine(report) << '\n';
}

}  // namespace tarn::tool
