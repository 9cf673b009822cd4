#pragma once

#include "diagnostics/DiagnosticList.h"
#include "loading/RuleIndex.h"

namespace tarn::rules {

/// Warns of texts in computed `Allowed Names` and `Default Names` that no object can have as its name. Evaluation drops
/// them, so their author waits for an object that never comes.
void warnOfComputedNames(RuleIndex const& rules, DiagnosticList& diagnostics);

}  // namespace tarn::rules
