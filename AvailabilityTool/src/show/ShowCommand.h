#pragma once

#include "cli/Command.h"

namespace CLI {
class App;
}

namespace tarn::tool {

/// Adds `zev show` to the program.
void addShowCommand(CLI::App& app, Command& chosen);

}  // namespace tarn::tool
