// The last line of a run. It says whether anything was found.
#include "reports/Summary.h"

#include <algorithm>
#include <utility>

#include "cli/Counted.h"
#include "cli/ExitStatus.h"

namespace tarn::tool {

namespace {

using session::FindingKind;

constexpr std::array<std::pair<FindingKind, char const*>, 8> names = {
    {{FindingKind::Model, "model error"},
     {FindingKind::Dependency, "dependency error"},
     {FindingKind::Global, "general physics error"},
     {FindingKind::UnknownName, "unknown name"},
     {FindingKind::Value, "value fault"},
     {FindingKind::Count, "count fault"},
     {FindingKind::ObjectCheck, "failed check"},
     {FindingKind::History, "renamed or deprecated item"}}};

}  // namespace

void Summary::add(session::Findings const& findings) noexcept {
  ++models_;
  if (findings.any()) ++withFindings_;
  for (session::Finding const& finding : findings.list) {
    if (finding.severity == session::Severity::Error) {
      ++errors_[static_cast<std::size_t>(finding.kind())];
    } else {
      ++warnings_;
    }
  }
  beta_ += findings.beta.size();
  passedOver_ += findings.objectsPassedOver;
}

int Summary::exitStatus(bool failOnWarning) const noexcept {
  if (failures_ > 0) return Failed;
  bool const fails = std::any_of(errors_.begin(), errors_.end(), [](std::size_t count) { return count > 0; }) ||
                     (failOnWarning && warnings_ > 0);
  return fails ? FindingsMade : NothingFound;
}

std::string Summary::text() const {
  std::string text = models_ == 0 ? "no model validated" : counted(models_, "model") + " validated";
  if (models_ == 0) {
    text += '.';
  } else if (withFindings_ == 0) {
    text += ", nothing found.";
  } else {
    text += ", " + std::to_string(withFindings_) + " with findings: ";
    bool first = true;
    auto const kind = [&](std::size_t count, char const* name) {
      if (count == 0) return;
      if (!first) text += ", ";
      text += counted(count, name);
      first = false;
    };
    for (auto const& [found, name] : names) kind(errors_[static_cast<std::size_t>(found)], name);
    kind(warnings_, "warning");
    text += '.';
  }
  if (beta_ > 0) text += ' ' + counted(beta_, "beta message") + '.';
  if (passedOver_ > 0) {
    text += ' ' + counted(passedOver_, "object") + " at the root " +
            (passedOver_ == 1 ? "is of a type" : "are of types") + " that the rules do not look at.";
  }
  if (failures_ > 0) text += ' ' + counted(failures_, "model") + " could not be validated, see above.";
  return text;
}

}  // namespace tarn::tool
