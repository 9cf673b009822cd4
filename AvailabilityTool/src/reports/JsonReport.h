#pragma once

#include <iosfwd>
#include <string>

#include <tarn/session/Findings.h>

namespace tarn::tool {

/// Writes what was found in a model as one JSON object on one line, for programs. All keys are always there, in this
/// order: model, status, dependency, global, unknown, values, beta. Of an entry of `unknown`, `name` is left out when
/// the object itself is unknown. What is not UTF-8 in a text becomes U+FFFD.
void writeJsonReport(std::ostream& out, std::string const& modelName, session::Findings const& findings);

}  // namespace tarn::tool
