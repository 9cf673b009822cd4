#pragma once

#include <iosfwd>
#include <vector>

#include <tarn/workbench/RuleCoverage.h>

// How much of the rules some models have shown, in the forms that `--coverage` writes.

namespace tarn::tool {

/// Writes the percentages of each kind, and then everything that was not covered, a line each.
void writeCoverageAsText(std::ostream& out, std::vector<workbench::CoverageItem> const& items);

/// Writes all items and the percentages as one JSON object on one line.
void writeCoverageAsJson(std::ostream& out, std::vector<workbench::CoverageItem> const& items);

/// Writes a trace file of lcov, which viewers of coverage read: the lines of the rule files that have rules, and their
/// outcomes as branches. Items without a place are left out.
void writeCoverageAsLcov(std::ostream& out, std::vector<workbench::CoverageItem> const& items);

}  // namespace tarn::tool
