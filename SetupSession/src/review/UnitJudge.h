#pragma once

#include "review/ReviewJudge.h"

namespace tarn::session {

/// Finds numbers whose units do not fit their parameter. Units that are wrong would otherwise change nothing but the
/// meaning of the number.
///
/// A number of a quantity type may have the units that the type lists. Without units it counts in the first one, and a
/// warning says so. A number without a quantity type must not have units, except those that a bound or the default of
/// its parameter has. A text that is now among the allowed values of the parameter is right as it is.
///
/// At most one fault is reported per parameter, the first.
class UnitJudge final : public ReviewJudge {
 public:
  void judgeParam(JudgedParam const& param, ReviewContext& context) override;
};

}  // namespace tarn::session
