#pragma once

#include "cli/Command.h"

namespace CLI {
class App;
}

namespace tarn::tool {

/// Adds `zev console` to the program.
void addConsoleCommand(CLI::App& app, Command& chosen);

}  // namespace tarn::tool
