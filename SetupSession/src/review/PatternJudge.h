#pragma once

#include "review/ReviewJudge.h"

namespace tarn::session {

/// Finds texts that do not match the pattern of their parameter. The value of a String, or each item of a String List,
/// must match as a whole. A text that is now among the allowed values of the parameter is right as it is. At most one
/// fault is reported per parameter, the first.
class PatternJudge final : public ReviewJudge {
 public:
  void judgeParam(JudgedParam const& param, ReviewContext& context) override;
};

}  // namespace tarn::session
