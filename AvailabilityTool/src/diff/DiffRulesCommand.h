#pragma once

#include "cli/Command.h"

namespace CLI {
class App;
}

namespace tarn::tool {

/// Adds `zev diff-rules`, which compares two rule databases, also by what they do with models.
void addDiffRulesCommand(CLI::App& app, Command& chosen);

}  // namespace tarn::tool
