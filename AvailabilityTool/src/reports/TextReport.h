#pragma once

#include <iosfwd>
#include <string>

#include <tarn/session/Findings.h>

namespace tarn::tool {

/// Whether a report shows where findings are written.
enum class Places { Hidden, Shown };

/// Writes the findings of a model for people: the line "NAME:", then four lines for each finding:
///
///     **Dependency error on path "/Case"
///     ---
///     The parameter "Flow Regime" should exist in the object "/Case" but is not present.
///     ===
///
/// The findings come in the order of `Findings::list`, then the beta messages. Writes nothing if there are none of
/// these. With places, the first line of each finding begins with "FILE:LINE:COLUMN: ", and further places follow it,
/// one a line. A finding without a place in the model begins with the place of its rule.
void writeTextReport(std::ostream& out, std::string const& modelName, session::Findings const& findings,
                     Places places = Places::Hidden);

}  // namespace tarn::tool
