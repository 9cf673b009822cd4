#pragma once

#include "lint/LintContext.h"

namespace tarn::rules {

/// Warns of quantity types whose units cannot be converted, once per type, and of fixed bounds, defaults and overrides
/// whose units do not fit the quantity type of their parameter.
void checkUnits(LintContext& context);

/// Warns of an expression that compares or adds quantities of different types, or whose result does not fit the
/// quantity type of the parameter whose bound, default or override it is.
void checkQuantities(LintContext& context, ExpressionUse const& use);

}  // namespace tarn::rules
