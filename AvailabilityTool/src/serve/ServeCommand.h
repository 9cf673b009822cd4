#pragma once

#include "cli/Command.h"

namespace CLI {
class App;
}

namespace tarn::tool {

/// Adds `zev serve` to the program.
void addServeCommand(CLI::App& app, Command& chosen);

}  // namespace tarn::tool
