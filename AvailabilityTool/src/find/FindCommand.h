#pragma once

#include "cli/Command.h"

namespace CLI {
class App;
}

namespace tarn::tool {

/// Adds `zev find` to the program.
void addFindCommand(CLI::App& app, Command& chosen);

}  // namespace tarn::tool
