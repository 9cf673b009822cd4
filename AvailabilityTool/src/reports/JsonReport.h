#pragma once

#include <iosfwd>
#include <string>

#include <tarn/session/Findings.h>

namespace tarn::tool {

/// Writes the findings of a model as one JSON object on one line, for programs. All keys are always present, in this
/// order: model, status, dependency, global, unknown, values, beta. An entry of `unknown` has no `name` if the object
/// itself is unknown. Bytes that are not UTF-8 become U+FFFD.
void writeJsonReport(std::ostream& out, std::string const& modelName, session::Findings const& findings);

}  // namespace tarn::tool
