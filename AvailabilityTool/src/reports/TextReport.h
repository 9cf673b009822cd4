#pragma once

#include <iosfwd>
#include <string>

#include <tarn/session/Findings.h>

namespace tarn::tool {

/// Writes what was found in a model for people to read: the line "NAME:", then four lines a finding:
///
///     **Dependency error on path "/Case"
///     ---
///     The parameter "Flow Regime" should exist in the object "/Case" but is not present.
///     ===
///
/// the validator's findings first, in its order, then unknown names, values, and beta messages. Writes nothing when
/// there is none of these.
void writeTextReport(std::ostream& out, std::string const& modelName, session::Findings const& findings);

}  // namespace tarn::tool
