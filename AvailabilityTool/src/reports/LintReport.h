#pragma once

#include <iosfwd>

#include <tarn/rules/RuleLoader.h>

namespace tarn::tool {

/// Writes what was found in rules as one JSON object on one line: errors, warnings, notes, unreadable, and the list of
/// diagnostics with everything that is known about each.
void writeLintAsJson(std::ostream& out, rules::LintResult const& result);

/// Writes the same as a log in the format SARIF 2.1.0.
void writeLintAsSarif(std::ostream& out, rules::LintResult const& result, int exitStatus);

}  // namespace tarn::tool
