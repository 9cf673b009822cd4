#pragma once

#include <iosfwd>
#include <string>

#include <tarn/session/Findings.h>

#include "cli/ModelFiles.h"

namespace tarn::tool {

/// Writes the findings of a model as one JSON object on one line, for programs. All keys are always present, in this
/// order: model, status, dependency, global, unknown, values, beta, findings. The last has all errors and warnings with
/// everything that is known about them; the lists before it have errors only, each of one kind. An entry of `unknown`
/// has no `name` if the object itself is unknown. Bytes that are not UTF-8 become U+FFFD.
void writeJsonReport(std::ostream& out, std::string const& modelName, session::Findings const& findings);

/// Writes one line about a model that could not be judged: model, error, and the list of its malformed lines.
void writeJsonFailure(std::ostream& out, std::string const& modelName, ModelFailure const& failure);

}  // namespace tarn::tool
