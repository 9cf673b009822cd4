#pragma once

#include <iosfwd>
#include <string>

#include <tarn/session/Findings.h>

namespace tarn::tool {

/// Writes the findings of a model for people: the line "NAME:", then four lines for each finding:
///
///     **Dependency error on path "/Case"
///     ---
///     The parameter "Flow Regime" should exist in the object "/Case" but is not present.
///     ===
///
/// The validator's findings come first, in its order, then unknown names, values, and beta messages. Writes nothing if
/// there are none of these.
void writeTextReport(std::ostream& out, std::string const& modelName, session::Findings const& findings);

}  // namespace tarn::tool
