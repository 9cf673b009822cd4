#pragma once

#include "lint/LintContext.h"

namespace tarn::rules {

/// Notes named checks, lists and quantity types that nothing in the rules uses. They are notes, because a program can
/// evaluate named checks and lists, and look up quantity types, by their names.
void checkUnused(LintContext& context);

}  // namespace tarn::rules
