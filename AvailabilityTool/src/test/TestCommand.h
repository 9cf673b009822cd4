#pragma once

#include <string>

#include "cli/Command.h"

namespace CLI {
class App;
}

namespace tarn::tool {

/// Adds `zev test`, which runs tests of rules.
void addTestCommand(CLI::App& app, Command& chosen);

/// Whether an argument after `--rules` is a further value of it, and not a file or folder of tests.
[[nodiscard]] bool looksLikeRulesUnderTest(std::string const& argument);

}  // namespace tarn::tool
