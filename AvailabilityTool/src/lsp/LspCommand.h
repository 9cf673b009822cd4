#pragma once

#include "cli/Command.h"

namespace CLI {
class App;
}

namespace tarn::tool {

/// Adds `zev lsp`. When the command line names it, `chosen` becomes its work.
void addLspCommand(CLI::App& app, Command& chosen);

}  // namespace tarn::tool
