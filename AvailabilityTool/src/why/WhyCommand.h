#pragma once

#include "cli/Command.h"

namespace CLI {
class App;
}

namespace tarn::tool {

/// Adds `zev why` to the program.
void addWhyCommand(CLI::App& app, Command& chosen);
/// Adds `zev how` to the program.
void addHowCommand(CLI::App& app, Command& chosen);

}  // namespace tarn::tool
