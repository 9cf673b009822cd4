#include "reports/SarifReport.h"

#include <utility>

#include <tarn/service/FindingJson.h>

namespace tarn::tool {

namespace {

SarifLog::Place placeOf(TextPlace const& place, std::string message = {}) {
  return {place.source(), place.line(), place.column(), 0, 0, std::move(message)};
}

SarifLog::Result resultOf(std::string const& modelName, session::Finding const& finding) {
  SarifLog::Result result;
  result.ruleId = describe(finding.code).name;
  result.level = severityName(finding.severity);
  result.message = finding.message;
  result.object = finding.path;
  for (TextPlace const& place : finding.places) result.places.push_back(placeOf(place));
  if (finding.places.empty()) result.places.push_back({modelName});
  if (finding.rule.isKnown()) result.related.push_back(placeOf(finding.rule, "the rule"));
  return result;
}

/// The data that the result itself does not hold.
SarifLog::Json propertiesOf(session::Finding const& finding) {
  SarifLog::Json properties = service::findingAsJson(finding);
  for (char const* key : {"code", "severity", "path", "places", "rule", "message"}) properties.erase(key);
  return properties.empty() ? SarifLog::Json(nullptr) : properties;
}

void addFinding(SarifLog& log, std::string const& modelName, session::Finding const& finding) {
  log.add(resultOf(modelName, finding), propertiesOf(finding));
}

}  // namespace

std::vector<SarifLog::Rule> sarifRules() {
  std::vector<SarifLog::Rule> rules;
  for (session::FindingCodeInfo const& code : session::findingCodes()) {
    rules.push_back({code.name, code.meaning, severityName(code.severity)});
  }
  return rules;
}

void addToLog(SarifLog& log, std::string const& modelName, session::Findings const& findings) {
  for (session::Finding const& finding : findings.list) addFinding(log, modelName, finding);
  for (session::Finding const& remark : findings.beta) addFinding(log, modelName, remark);
}

void addToLog(SarifLog& log, std::string const& modelName, ModelFailure const& failure) {
  if (failure.malformed().empty()) log.addFailure(failure.what(), {{modelName}});
  for (ModelText::Fault const& fault : failure.malformed()) {
    log.addFailure(fault.reason, {{failure.source(), fault.line, fault.column}});
  }
}

}  // namespace tarn::tool
