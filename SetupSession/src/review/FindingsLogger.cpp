// The validator gives each finding twice: as data to the observer, then as a sentence to the logger. The data becomes
// the finding. The log operations only decide which status the validator returns; beta messages must not count there.
#include "review/FindingsLogger.h"

#include <array>
#include <utility>

#include <tarn/PathUtils.h>

#include "review/CheckJudge.h"
#include "review/ReviewJudge.h"

namespace tarn::session {

namespace {

constexpr std::array codeOfKind = {FindingCode::MissingParameter,   FindingCode::ParameterNotAvailable,
                                   FindingCode::ValueNotAllowed,    FindingCode::MissingObject,
                                   FindingCode::ObjectNotAvailable, FindingCode::ObjectNameNotAllowed,
                                   FindingCode::GlobalCheckFailed,  FindingCode::BetaMessage};
static_assert(codeOfKind.size() == PhysicsFault::BetaMessage + 1);

bool isOfValidator(Finding const& finding) noexcept {
  return finding.kind() == FindingKind::Dependency || finding.kind() == FindingKind::Global;
}

}  // namespace

void FindingsLogger::onFault(PhysicsFault const& fault) {
  Finding finding = makeFinding(codeOfKind[static_cast<std::size_t>(fault.kind)], std::string(fault.path),
                                std::string(fault.message));
  std::string const item(fault.item);
  switch (fault.kind) {
    case PhysicsFault::BetaMessage:
      finding.path += '/' + item;
      findings_.beta.push_back(std::move(finding));
      return;
    case PhysicsFault::GlobalCheckFailed:
      finding.check = item;
      if (GlobalCheck const* const check = rules_.getGlobalCheck(item, false)) {
        finding.rule = check->rulePlace();
        finding.severity = severityOf(check->level());
      }
      break;
    case PhysicsFault::MissingParameter:
    case PhysicsFault::ParameterNotAvailable:
    case PhysicsFault::ValueNotAllowed:
      finding.name = item;
      if (fault.kind != PhysicsFault::MissingParameter) finding.value = fault.value;
      finding.rule = placeOfParamRule(rules_, finding.path, item);
      break;
    case PhysicsFault::MissingObject:
    case PhysicsFault::ObjectNotAvailable:
    case PhysicsFault::ObjectNameNotAllowed:
      finding.type = item;
      finding.rule = placeOfChildRule(rules_, finding.path, item);
      break;
  }
  finding.wrong.assign(fault.wrong.begin(), fault.wrong.end());
  finding.expected.allowed = fault.allowed;
  if (fault.wrong.size() < 2) {
    std::string_view const wrong = fault.wrong.empty() ? fault.value : std::string_view(fault.wrong.front());
    std::string match = nearMatches_.find(wrong, fault.allowed.vector());
    if (!match.empty()) finding.expected.nearMatch = std::move(match);
  }
  findings_.list.push_back(std::move(finding));
}

void FindingsLogger::logDependencyError(std::string const& /*path*/, PhysicsErrorMsg const& message) {
  if (message.level != PhysicsErrorMsg::Beta) hasDependencyErrors_ = true;
}

void FindingsLogger::logGlobalError(PhysicsErrorMsg const& /*message*/) {
  hasGlobalErrors_ = true;
}

// No finding: the validator never calls it.
void FindingsLogger::logTermination(std::string const&) {}

void FindingsLogger::reset() {
  std::erase_if(findings_.list, isOfValidator);
  findings_.beta.clear();
  hasDependencyErrors_ = false;
  hasGlobalErrors_ = false;
}

}  // namespace tarn::session
