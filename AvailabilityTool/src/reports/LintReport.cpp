// The diagnostics of rule files for programs.
#include "reports/LintReport.h"

#include <algorithm>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include <tarn/service/JsonText.h>

#include "reports/SarifLog.h"

namespace tarn::tool {

namespace {

using Json = nlohmann::ordered_json;
using rules::Diagnostic;
using rules::severityName;

// The keys of a place. Numbers that are 0, of a problem of the whole file, are left out.
template <typename Place>
Json placeOf(Place const& place) {
  Json json = {{"file", place.source}};
  if (place.line == 0) return json;
  json["line"] = place.line;
  json["column"] = place.column;
  json["endLine"] = place.endLine;
  json["endColumn"] = place.endColumn;
  return json;
}

Json jsonOf(Diagnostic const& diagnostic) {
  Json json = {{"code", diagnostic.code}, {"severity", severityName(diagnostic.severity)}};
  json.update(placeOf(diagnostic));
  json["message"] = diagnostic.message;
  if (diagnostic.affected > 1) json["affected"] = diagnostic.affected;
  Json notes = Json::array();
  for (Diagnostic::Note const& note : diagnostic.notes) {
    Json one = placeOf(note);
    one["message"] = note.message;
    notes.push_back(std::move(one));
  }
  if (!notes.empty()) json["notes"] = std::move(notes);
  if (diagnostic.fix) {
    Json fix = {{"title", diagnostic.fix->title}};
    fix.update(placeOf(*diagnostic.fix));
    fix["text"] = diagnostic.fix->text;
    json["fix"] = std::move(fix);
  }
  return json;
}

template <typename Place>
SarifLog::Place sarifPlaceOf(Place const& place, std::string message = {}) {
  return {place.source, place.line, place.column, place.endLine, place.endColumn, std::move(message)};
}

}  // namespace

void writeLintAsJson(std::ostream& out, rules::LintResult const& result) {
  auto const count = [&result](rules::Severity severity) {
    return std::count_if(result.diagnostics.begin(), result.diagnostics.end(),
                         [severity](Diagnostic const& one) { return one.severity == severity; });
  };
  Json json = {{"errors", count(rules::Severity::Error)},
               {"warnings", count(rules::Severity::Warning)},
               {"notes", count(rules::Severity::Note)},
               {"accepted", result.accepted},
               {"unreadable", result.unreadable}};
  Json& list = json["diagnostics"] = Json::array();
  for (Diagnostic const& diagnostic : result.diagnostics) list.push_back(jsonOf(diagnostic));
  out << service::jsonLine(json) << '\n';
}

void writeLintAsSarif(std::ostream& out, rules::LintResult const& result, int exitStatus) {
  std::vector<SarifLog::Rule> codes;
  for (rules::DiagnosticCode const& code : rules::diagnosticCodes()) {
    codes.push_back({code.name, code.meaning, severityName(code.severity)});
  }
  SarifLog log(out, codes);
  for (Diagnostic const& diagnostic : result.diagnostics) {
    SarifLog::Result one;
    one.ruleId = diagnostic.code;
    one.level = severityName(diagnostic.severity);
    one.message = diagnostic.message;
    one.places.push_back(sarifPlaceOf(diagnostic));
    for (Diagnostic::Note const& note : diagnostic.notes) one.related.push_back(sarifPlaceOf(note, note.message));
    log.add(one);
  }
  if (result.unreadable) log.addFailure("not all rule files could be read");
  log.finish(exitStatus);
}

}  // namespace tarn::tool
