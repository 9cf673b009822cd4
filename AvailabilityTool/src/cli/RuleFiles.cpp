// The option and the first step of all subcommands that need rules.
#include "cli/RuleFiles.h"

#include <filesystem>
#include <ostream>

#include <CLI/CLI.hpp>

#include <tarn/rules/RuleLoader.h>

#include "cli/Counted.h"
#include "cli/Failure.h"

namespace tarn::tool {

void addRulesOption(CLI::App& command, std::vector<std::string>& paths) {
  command
      .add_option("--rules", paths, "Rule files, and folders with *.rules.yaml; together they are one rule database")
      ->type_name("PATH")
      ->allow_extra_args(false)  // what comes next may be a model; `divideListArguments` finds further rules
      ->required();
}

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
