#pragma once

#include "diagnostics/DiagnosticList.h"
#include "loading/RuleBuilder.h"

namespace tarn::rules {

/// Adds warnings about rules that can be loaded but are doubtful. The builder has read them without errors and has kept
/// their places.
void addWarnings(RuleBuilder const& rules, DiagnosticList& diagnostics);

}  // namespace tarn::rules
