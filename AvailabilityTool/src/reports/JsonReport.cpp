// The format for programs: one line per model, so that a program can read the output of a long run as a stream.
#include "reports/JsonReport.h"

#include <ostream>

#include <nlohmann/json.hpp>

namespace tarn::tool {

namespace {

using Json = nlohmann::ordered_json;

Json pathMessages(std::vector<session::PathMessage> const& list) {
  Json json = Json::array();
  for (auto const& [path, message] : list) json.push_back({{"path", path}, {"message", message}});
  return json;
}

}  // namespace

void writeJsonReport(std::ostream& out, std::string const& modelName, session::Findings const& findings) {
  Json unknown = Json::array();
  for (session::UnknownName const& entry : findings.unknown) {
    Json one = {{"path", entry.path}};
    if (entry.name) one["name"] = *entry.name;
    one["message"] = entry.message;
    unknown.push_back(std::move(one));
  }
  Json values = Json::array();
  for (session::ValueFault const& fault : findings.values) {
    values.push_back({{"path", fault.path}, {"name", fault.name}, {"value", fault.value}, {"message", fault.message}});
  }
  Json report;
  report["model"] = modelName;
  report["status"] = findings.status;
  report["dependency"] = pathMessages(findings.dependency);
  report["global"] = findings.global;
  report["unknown"] = std::move(unknown);
  report["values"] = std::move(values);
  report["beta"] = pathMessages(findings.beta);
  out << report.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace tarn::tool
