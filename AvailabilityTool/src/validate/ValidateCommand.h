#pragma once

#include <vector>

#include <CLI/App.hpp>

#include "cli/Command.h"
#include "cli/ListArguments.h"

namespace tarn::tool {

/// Adds `zev validate`: tells what is wrong in models. When the command line asks for it, `chosen` becomes what does
/// it; `app` must then still be there.
void addValidateCommand(CLI::App& app, Command& chosen);

/// The options of `validate` that take several values and may stand before a MODEL.
[[nodiscard]] std::vector<ListOption> validateListOptions();

}  // namespace tarn::tool
