#pragma once

#include <string>
#include <vector>

#include <tarn/session/Findings.h>

#include "cli/ModelFiles.h"
#include "reports/SarifLog.h"

namespace tarn::tool {

/// The codes of findings as the rules of a log.
[[nodiscard]] std::vector<SarifLog::Rule> sarifRules();

/// Adds the findings and the beta messages of a model.
void addToLog(SarifLog& log, std::string const& modelName, session::Findings const& findings);

/// Adds a model that could not be judged.
void addToLog(SarifLog& log, std::string const& modelName, ModelFailure const& failure);

}  // namespace tarn::tool
