#pragma once

#include "cli/Command.h"

namespace CLI {
class App;
}

namespace tarn::tool {

/// Adds `zev edit` to the program.
void addEditCommand(CLI::App& app, Command& chosen);

}  // namespace tarn::tool
