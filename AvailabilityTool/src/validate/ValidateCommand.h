#pragma once

#include <vector>

#include <CLI/App.hpp>

#include "cli/Command.h"
#include "cli/ListArguments.h"

namespace tarn::tool {

/// Adds `zev validate`, which reports faults in models. When the command line asks for it, `chosen` becomes the
/// function that runs it. `app` must still exist then.
void addValidateCommand(CLI::App& app, Command& chosen);

/// The options of `validate` that take several values and may be given before a MODEL.
[[nodiscard]] std::vector<ListOption> validateListOptions();

}  // namespace tarn::tool
