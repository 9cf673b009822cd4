#pragma once

#include "cli/Command.h"

namespace CLI {
class App;
}

namespace tarn::tool {

/// Adds `zev study`, which runs the studies of the Python package that belongs to this program.
void addStudyCommand(CLI::App& app, Command& chosen);

}  // namespace tarn::tool
