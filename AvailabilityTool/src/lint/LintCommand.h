#pragma once

#include <CLI/App.hpp>

#include "cli/Command.h"

namespace tarn::tool {

/// Adds `zev lint` to the program, which finds what is wrong or doubtful in rule files. If the command line asks for
/// it, parsing sets `chosen`. `app` must still exist then.
void addLintCommand(CLI::App& app, Command& chosen);

}  // namespace tarn::tool
