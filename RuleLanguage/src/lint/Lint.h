#pragma once

#include <tarn/PhysicsData.h>
#include <tarn/rules/RuleTexts.h>

#include "diagnostics/DiagnosticList.h"
#include "loading/RuleIndex.h"

namespace tarn::rules {

/// Adds warnings about rules that can be loaded but are doubtful. `data` was built without errors from the files of
/// `rules`, which knows where everything is written. `extent` says how much of a rule base they are.
void addWarnings(RuleIndex const& rules, PhysicsData const& data, DiagnosticList& diagnostics, LintExtent extent);

}  // namespace tarn::rules
