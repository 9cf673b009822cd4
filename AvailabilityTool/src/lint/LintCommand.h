#pragma once

#include <CLI/App.hpp>

#include "cli/Command.h"

namespace tarn::tool {

/// Adds `zev lint`: tells all that is wrong or doubtful in rule files. When the command line asks for it, `chosen`
/// becomes what does it; `app` must then still be there.
void addLintCommand(CLI::App& app, Command& chosen);

}  // namespace tarn::tool
