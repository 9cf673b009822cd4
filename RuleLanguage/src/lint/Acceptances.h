#pragma once

#include <cstddef>

#include "diagnostics/DiagnosticList.h"
#include "loading/RuleIndex.h"

namespace tarn::rules {

/// Removes the findings that the rule files accept with a reason, and returns their number. Reports acceptances of
/// codes that do not exist or cannot be accepted, and those that accept nothing.
///
/// An acceptance covers the findings whose position is in the entry that has it. An entry that is an alias is covered
/// where its anchor is written. A finding that several entries accept makes all of these acceptances needed.
std::size_t applyAcceptances(RuleIndex const& rules, DiagnosticList& diagnostics);

}  // namespace tarn::rules
