#pragma once

#include "review/ReviewJudge.h"

namespace tarn::session {

/// Finds types of children of which an object has too few or too many. Both counts are evaluated in the parent, where
/// the type is available. A count whose text is empty is no limit; one that is not a number is a fault of its own.
class CountJudge final : public ReviewJudge {
 public:
  void judgeChildren(JudgedChildren const& children, ReviewContext& context) override;
};

}  // namespace tarn::session
