#pragma once

#include "cli/Command.h"

namespace CLI {
class App;
}

namespace tarn::tool {

/// Adds `zev schema`, which prints the JSON Schema of a kind of files.
void addSchemaCommand(CLI::App& app, Command& chosen);

}  // namespace tarn::tool
