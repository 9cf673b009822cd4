// Findings of a review.
#include <string_view>

#include "Converter.h"
#include "RecordType.h"

namespace tarn::python {

namespace py = pybind11;

namespace {

std::string_view kindName(session::FindingKind kind) noexcept {
  using session::FindingKind;
  switch (kind) {
    case FindingKind::Model:
      return "model";
    case FindingKind::Dependency:
      return "dependency";
    case FindingKind::Global:
      return "global";
    case FindingKind::UnknownName:
      return "unknown-name";
    case FindingKind::Value:
      return "value";
    case FindingKind::Count:
      return "count";
    case FindingKind::ObjectCheck:
      return "object-check";
    case FindingKind::History:
      return "history";
    case FindingKind::Beta:
      break;
  }
  return "beta";
}

}  // namespace

py::object Converter::operator()(session::Expected const& expected) {
  static RecordType const type(
      "Expected", {"allowed", "lower_bound", "upper_bound", "lower_bound_excluded", "upper_bound_excluded", "units",
                   "minimum_count", "maximum_count", "pattern", "near_match", "value"});
  Converter& convert = *this;
  return type.make(convert(expected.allowed), convert(expected.lowerBound), convert(expected.upperBound),
                   convert(expected.lowerBoundExcluded), convert(expected.upperBoundExcluded), convert(expected.units),
                   convert(expected.minimumCount), convert(expected.maximumCount), convert(expected.pattern),
                   convert(expected.nearMatch), convert(expected.value));
}

py::object Converter::operator()(session::Finding const& finding) {
  static RecordType const type("Finding", {"code", "kind", "severity", "path", "name", "type", "check", "value",
                                           "wrong", "expected", "places", "rule", "message"});
  Converter& convert = *this;
  return type.make(convert(describe(finding.code).name), convert(kindName(finding.kind())),
                   convert(severityName(finding.severity)), convert(finding.path), convert(finding.name),
                   convert(finding.type), convert(finding.check), convert(finding.value), convert(finding.wrong),
                   convert(finding.expected), convert(finding.places), convert(finding.rule), convert(finding.message));
}

py::object Converter::operator()(session::Findings const& findings) {
  static RecordType const type("Findings", {"list", "beta", "status", "missing_roots", "objects_passed_over"});
  Converter& convert = *this;
  return type.make(convert(findings.list), convert(findings.beta), convert(findings.status),
                   convert(findings.missingRoots), convert(findings.objectsPassedOver));
}

}  // namespace tarn::python
