#pragma once

#include "lint/LintContext.h"

namespace tarn::rules {

/// Warns of the parts of an expression that compare a parameter, a name, a type or an item of a list with a value that
/// it can never have, or in a form in which equal values differ; of a division by zero; and of a global check that
/// asks for its owner.
void checkComparisons(LintContext& context, ExpressionUse const& use);

}  // namespace tarn::rules
