// `zev lint`. The rule language finds the diagnostics and words them. They are printed and counted here.
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
  CLI::App* command = app.add_subcommand("lint", "Find what is wrong or doubtful in rule files");
  command->add_option("--rules", options->rules, "Rule files, and folders with *.rules.yaml")
      ->type_name("PATH")
      ->required();
  command->footer(
      "All files together are one rule database. From a folder all *.rules.yaml are taken, in the order of their\n"
      "names. Each error and warning is printed with its file, line and column, and with what to write instead.\n"
      "Rules with errors cannot be loaded. All other commands ignore warnings.\n"
      "Examples: zev lint --rules flow.rules.yaml\n"
      "          zev lint --rules rules/\n"
      "Exit status: 0 nothing found, 1 errors or warnings, 2 a file could not be read.");
  command->callback([options, &chosen] {
    chosen = [options](std::ostream& out, std::ostream& err) { return lint(*options, out, err); };
  });
}

}  // namespace tarn::tool
