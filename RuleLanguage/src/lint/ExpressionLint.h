#pragma once

#include "lint/LintContext.h"

namespace tarn::rules {

/// Warns of an expression that reads what the rules do not define, and of one that gives names which no object can
/// have.
void checkExpression(LintContext& context, ExpressionUse const& use);

}  // namespace tarn::rules
