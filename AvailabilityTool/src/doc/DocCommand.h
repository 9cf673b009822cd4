#pragma once

#include "cli/Command.h"

namespace CLI {
class App;
}

namespace tarn::tool {

/// Adds `zev doc`, which writes a reference of rules for people.
void addDocCommand(CLI::App& app, Command& chosen);

}  // namespace tarn::tool
