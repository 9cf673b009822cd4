#pragma once

#include "lint/LintContext.h"

namespace tarn::rules {

/// Warns of an expression that reads what a walk decides only after the rule that reads it. Such a rule sees the state
/// from before an edit, so its result is one edit late.
void checkOrder(LintContext& context, ExpressionUse const& use);

}  // namespace tarn::rules
