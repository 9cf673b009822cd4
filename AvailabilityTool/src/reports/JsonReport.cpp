// The format for programs: one line per model, so that a program can read the output of a long run as a stream.
#include "reports/JsonReport.h"

#include <ostream>
#include <utility>

#include <nlohmann/json.hpp>

#include "reports/FindingJson.h"

namespace tarn::tool {

namespace {

using Json = nlohmann::ordered_json;

void writeLine(std::ostream& out, Json const& report) {
  out << report.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
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
    all.push_back(findingAsJson(finding));
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
  writeLine(out, report);
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
  writeLine(out, report);
}

}  // namespace tarn::tool
