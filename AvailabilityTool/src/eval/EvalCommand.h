#pragma once

#include "cli/Command.h"

namespace CLI {
class App;
}

namespace tarn::tool {

/// Adds `zev eval` to the program.
void addEvalCommand(CLI::App& app, Command& chosen);

}  // namespace tarn::tool
