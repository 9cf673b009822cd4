#pragma once

#include "cli/Command.h"

namespace CLI {
class App;
}

namespace tarn::tool {

/// Adds `zev graph`, which shows what entries of rules depend on.
void addGraphCommand(CLI::App& app, Command& chosen);

}  // namespace tarn::tool
