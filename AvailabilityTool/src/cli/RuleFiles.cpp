// The first step of all subcommands that need rules.
#include "cli/RuleFiles.h"

#include <filesystem>
#include <ostream>

#include <tarn/rules/RuleLoader.h>

#include "cli/Counted.h"
#include "cli/Failure.h"

namespace tarn::tool {

std::unique_ptr<PhysicsData> loadRuleFiles(std::vector<std::string> const& paths, std::ostream& err) {
  try {
    return rules::loadRules(std::vector<std::filesystem::path>(paths.begin(), paths.end()));
  } catch (rules::RuleError const& error) {
    err << rules::format(error.diagnostics());
    throw Failure("the rules were not loaded: " + counted(error.diagnostics().size(), "error") +
                  ", see above; correct the files and run again");
  }
}

}  // namespace tarn::tool
