// The format for people. The two kinds of the validator have the format in which the console prints them.
#include "reports/TextReport.h"

#include <cstddef>
#include <ostream>
#include <string_view>

namespace tarn::tool {

namespace {

std::string_view headingOf(session::Finding const& finding) {
  if (finding.severity == session::Severity::Warning) return "Warning";
  switch (finding.kind()) {
    case session::FindingKind::Model:
      return "Model error";
    case session::FindingKind::Dependency:
      return "Dependency error";
    case session::FindingKind::Global:
      return "General physics errors detected ";
    case session::FindingKind::UnknownName:
      return "Unknown name";
    case session::FindingKind::Value:
      return "Value fault";
    case session::FindingKind::Count:
      return "Count fault";
    case session::FindingKind::ObjectCheck:
      return "Failed check";
    case session::FindingKind::History:
      return "Renamed or deprecated item";
    case session::FindingKind::Beta:
      return "Beta message";
  }
  return {};
}

// Findings about the whole model have no path.
bool isAboutAnObject(session::Finding const& finding) {
  return finding.code != session::FindingCode::NothingToReview && finding.kind() != session::FindingKind::Global;
}

void writeBlock(std::ostream& out, session::Finding const& finding, Places places) {
  bool const withPlaces = places == Places::Shown;
  if (withPlaces) {
    // The model has no place for what is wrong with it as a whole. Then the rule says where to look.
    TextPlace const& first = finding.places.empty() ? finding.rule : finding.places.front();
    if (first.isKnown()) out << first.text() << ": ";
  }
  out << "**" << headingOf(finding);
  if (isAboutAnObject(finding)) out << " on path \"" << finding.path << '"';
  out << '\n';
  if (withPlaces) {
    for (std::size_t i = 1; i < finding.places.size(); ++i) out << finding.places[i].text() << ": and here\n";
  }
  out << "---\n" << finding.message << "\n===\n";
}

}  // namespace

void writeTextReport(std::ostream& out, std::string const& modelName, session::Findings const& findings,
                     Places places) {
  if (!findings.any() && findings.beta.empty()) return;
  out << modelName << ":\n";
  for (session::Finding const& finding : findings.list) writeBlock(out, finding, places);
  for (session::Finding const& remark : findings.beta) writeBlock(out, remark, places);
}

}  // namespace tarn::tool
