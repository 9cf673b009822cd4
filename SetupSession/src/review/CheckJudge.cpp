#include "review/CheckJudge.h"

#include <utility>

namespace tarn::session {

void CheckJudge::judgeObject(JudgedObject const& object, ReviewContext& context) {
  if (object.rules.checks().empty()) return;
  TDFContext const at(object.path);
  for (auto const& check : object.rules.checks()) {
    if (check->passes(at, &context.evaluation)) continue;
    Finding finding =
        makeFinding(FindingCode::ObjectCheckFailed, object.path, check->evaluateMessage(at, &context.evaluation));
    finding.severity = severityOf(check->level);
    finding.check = check->name;
    finding.rule = check->rulePlace;
    context.findings.push_back(std::move(finding));
  }
}

Severity severityOf(CheckLevel level) noexcept {
  return level == CheckLevel::Warning ? Severity::Warning : Severity::Error;
}

}  // namespace tarn::session
