#pragma once

#include "review/ReviewJudge.h"

namespace tarn::session {

/// Evaluates the checks of an object, in the order of the rules, and reports those that fail at the level of the check.
class CheckJudge final : public ReviewJudge {
 public:
  void judgeObject(JudgedObject const& object, ReviewContext& context) override;
};

/// The severity of a finding about a check of that level.
[[nodiscard]] Severity severityOf(CheckLevel level) noexcept;

}  // namespace tarn::session
