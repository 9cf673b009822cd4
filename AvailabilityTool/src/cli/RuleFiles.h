#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include <tarn/PhysicsData.h>

namespace CLI {
class App;
}

namespace tarn::tool {

/// Adds the option `--rules`, which a command needs. `paths` must outlive the command.
void addRulesOption(CLI::App& command, std::vector<std::string>& paths);

/// Loads the rules that `--rules` names. If they contain errors, writes all of them to `err` and throws a `Failure`.
[[nodiscard]] std::unique_ptr<PhysicsData> loadRuleFiles(std::vector<std::string> const& paths, std::ostream& err);

}  // namespace tarn::tool
