// `zev lint`. What is to be told, and in which words, is the business of the rule language; here it is shown and
// counted.
#include "lint/LintCommand.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <tarn/rules/RuleLoader.h>

#include "cli/Counted.h"
#include "cli/ExitStatus.h"

namespace tarn::tool {

namespace {

struct LintOptions {
  std::vector<std::string> rules;
};

int lint(LintOptions const& options, std::ostream& out, std::ostream& err) {
  rules::LintResult const result =
      rules::lintRules(std::vector<std::filesystem::path>(options.rules.begin(), options.rules.end()));
  for (rules::Diagnostic const& diagnostic : result.diagnostics) out << rules::format(diagnostic);

  std::size_t const errors = static_cast<std::size_t>(
      std::count_if(result.diagnostics.begin(), result.diagnostics.end(),
                    [](rules::Diagnostic const& one) { return one.severity == rules::Severity::Error; }));
  std::size_t const warnings = result.diagnostics.size() - errors;
  if (result.diagnostics.empty()) {
    err << "zev: nothing found in the rules.\n";
  } else {
    err << "zev: " << counted(errors, "error") << " and " << counted(warnings, "warning") << " in the rules.\n";
  }
  if (result.unreadable) {
    err << "zev: not all rule files could be read; see the errors above.\n";
    return Failed;
  }
  return result.diagnostics.empty() ? NothingFound : FindingsMade;
}

}  // namespace

void addLintCommand(CLI::App& app, Command& chosen) {
  auto options = std::make_shared<LintOptions>();
  CLI::App* command = app.add_subcommand("lint", "Tell all that is wrong or doubtful in rule files");
  command->add_option("--rules", options->rules, "Rule files, and folders of *.rules.yaml")
      ->type_name("PATH")
      ->required();
  command->footer(
      "All files together make one rule database; of a folder all *.rules.yaml are taken, in order of their names.\n"
      "Each error and warning is told with its file, line and column, and with what to write instead. Errors keep\n"
      "the rules from being loaded; warnings are passed over by all other commands.\n"
      "Examples: zev lint --rules flow.rules.yaml\n"
      "          zev lint --rules rules/\n"
      "Exit status: 0 nothing found, 1 errors or warnings, 2 a file could not be read.");
  command->callback([options, &chosen] {
    chosen = [options](std::ostream& out, std::ostream& err) { return lint(*options, out, err); };
  });
}

}  // namespace tarn::tool
