#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace tarn::tool {

/// Adds an option whose value is one of `choices`, such as `--format text|json`. The help lists them in their order.
/// `value` must outlive the command.
CLI::Option* addChoiceOption(CLI::App& command, std::string const& name, std::string& value,
                             std::vector<std::string> const& choices, std::string const& description);

}  // namespace tarn::tool
