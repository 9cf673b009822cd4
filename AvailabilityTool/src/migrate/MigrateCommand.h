#pragma once

#include "cli/Command.h"

namespace CLI {
class App;
}

namespace tarn::tool {

/// Adds `zev migrate`.
void addMigrateCommand(CLI::App& app, Command& chosen);

}  // namespace tarn::tool
