#pragma once

#include "lint/LintContext.h"

namespace tarn::rules {

/// Checks what the rules say about renamed and deprecated items, and finds rules that still read deprecated ones.
void checkHistory(LintContext& context);

}  // namespace tarn::rules
