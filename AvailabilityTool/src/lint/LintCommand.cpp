// `zev lint`. The rule language finds the diagnostics and words them. They are printed and counted here.
#include "lint/LintCommand.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <tarn/StringUtilities.h>
#include <tarn/rules/RuleLoader.h>

#include "cli/ChoiceOption.h"
#include "cli/Counted.h"
#include "cli/ExitStatus.h"
#include "cli/Output.h"
#include "lint/RuleWatch.h"
#include "reports/LintReport.h"
#include "serve/TerminationSignals.h"

namespace tarn::tool {

namespace {

enum class Format { Text, Json, Sarif };

struct LintOptions {
  std::vector<std::string> rules;
  Format format = Format::Text;
  bool failOnWarning = true;
  bool watch = false;
  rules::LintOptions lint;
};

/// "never-holds=error" as an entry of the options. Returns what is wrong with it, or "".
std::string addSeverity(std::string const& text, rules::LintOptions& options) {
  auto const equals = text.find('=');
  if (equals == std::string::npos) return "write the severity after the code: never-holds=error";
  std::string const name = text.substr(0, equals);
  std::string const level = text.substr(equals + 1);
  auto const codes = rules::diagnosticCodes();
  auto const code = std::find_if(codes.begin(), codes.end(), [&](auto const& one) { return one.name == name; });
  if (code == codes.end()) {
    std::vector<std::string> names;
    for (auto const& one : codes) {
      if (one.isOfLint) names.emplace_back(one.name);
    }
    auto const near = StringUtilities::nearMatch(name, names);
    return "there is no code '" + name + "'" + (near.empty() ? std::string() : "; did you mean '" + near + "'?");
  }
  if (!code->isOfLint) return "'" + name + "' is always an error, because it keeps rules from being loaded";
  for (auto const severity : {rules::Severity::Error, rules::Severity::Warning, rules::Severity::Note}) {
    if (level != rules::severityName(severity)) continue;
    options.severities[name] = severity;
    return {};
  }
  if (level != "off") return "there is no severity '" + level + "'; write error, warning, note or off";
  options.severities[name] = std::nullopt;
  return {};
}

std::size_t countOf(rules::LintResult const& result, rules::Severity severity) {
  return static_cast<std::size_t>(
      std::count_if(result.diagnostics.begin(), result.diagnostics.end(),
                    [severity](rules::Diagnostic const& one) { return one.severity == severity; }));
}

std::string countsOf(rules::LintResult const& result) {
  std::string const errors = counted(countOf(result, rules::Severity::Error), "error");
  std::string const warnings = counted(countOf(result, rules::Severity::Warning), "warning");
  std::size_t const notes = countOf(result, rules::Severity::Note);
  if (notes == 0) return errors + " and " + warnings;
  return errors + ", " + warnings + " and " + counted(notes, "note");
}

int exitStatusOf(rules::LintResult const& result, bool failOnWarning) {
  if (result.unreadable) return Failed;
  bool const fails =
      countOf(result, rules::Severity::Error) > 0 || (failOnWarning && countOf(result, rules::Severity::Warning) > 0);
  return fails ? FindingsMade : NothingFound;
}

int lintOnce(LintOptions const& options, std::ostream& out, std::ostream& err) {
  rules::LintResult const result =
      rules::lintRules(std::vector<std::filesystem::path>(options.rules.begin(), options.rules.end()), options.lint);
  int const status = exitStatusOf(result, options.failOnWarning);
  switch (options.format) {
    case Format::Text:
      for (rules::Diagnostic const& diagnostic : result.diagnostics) out << rules::format(diagnostic);
      break;
    case Format::Json:
      writeLintAsJson(out, result);
      break;
    case Format::Sarif:
      writeLintAsSarif(out, result, status);
      break;
  }

  err << "zev: " << (result.diagnostics.empty() ? "nothing found" : countsOf(result)) << " in the rules";
  if (result.accepted > 0) err << "; " << counted(result.accepted, "finding") << " accepted";
  err << ".\n";
  if (result.unreadable) err << "zev: not all rule files could be read; see the errors above.\n";
  return status;
}

/// Lints again after each change, until a signal comes. Returns the status of the last report.
int lintAndWatch(LintOptions const& options, std::ostream& out, std::ostream& err) {
  constexpr int milliseconds = 100;
  TerminationSignals const signals;
  RuleWatch watch(options.rules);
  int status = lintOnce(options, out, err);
  for (;;) {
    err << "zev: watching the rules; end with Ctrl+C.\n";
    flushResults(out);
    err.flush();
    do {
      if (signals.wait(-1, milliseconds) == TerminationSignals::Event::Terminate) return status;
    } while (!watch.hasChanged());
    err << "zev: the rules have changed.\n";
    status = lintOnce(options, out, err);
  }
}

int lint(LintOptions const& options, std::ostream& out, std::ostream& err) {
  return options.watch ? lintAndWatch(options, out, err) : lintOnce(options, out, err);
}

}  // namespace

void addLintCommand(CLI::App& app, Command& chosen) {
  auto options = std::make_shared<LintOptions>();
  auto format = std::make_shared<std::string>("text");
  auto failOn = std::make_shared<std::string>("warning");
  auto severities = std::make_shared<std::vector<std::string>>();
  CLI::App* command = app.add_subcommand("lint", "Find what is wrong or doubtful in rule files");
  command->add_option("--rules", options->rules, "Rule files, and folders with *.rules.yaml")
      ->type_name("PATH")
      ->required();
  addChoiceOption(*command, "--format", *format, {"text", "json", "sarif"},
                  "text, for people, the default; json, one object; or sarif, a SARIF log");
  addChoiceOption(*command, "--fail-on", *failOn, {"error", "warning"},
                  "The findings for which the exit status is 1; default: also warnings");
  command
      ->add_option("--severity", *severities,
                   "Report findings of a code as error, warning or note, or not at all: off;\ncan be repeated")
      ->type_name("CODE=LEVEL")
      ->allow_extra_args(false);
  command->add_flag("--watch", options->watch, "Lint again whenever a rule file changes, comes or goes, until Ctrl+C");
  command->footer(
      "All files together are one rule database. From a folder all *.rules.yaml are taken, in the order of their\n"
      "names. Each error and warning is printed with its file, line and column, and with what to write instead.\n"
      "Rules with errors cannot be loaded. All other commands ignore warnings.\n"
      "The rule reference lists the codes. Errors that keep rules from being loaded are always errors.\n"
      "Examples: zev lint --rules flow.rules.yaml\n"
      "          zev lint --rules rules/ --severity never-holds=error --severity requires-nothing=off\n"
      "Exit status: 0 nothing found, 1 errors or warnings, with --fail-on error only errors, 2 a file could\n"
      "not be read.");
  command->callback([options, format, failOn, severities, &chosen] {
    for (auto const& text : *severities) {
      if (auto const wrong = addSeverity(text, options->lint); !wrong.empty()) {
        throw CLI::ValidationError("--severity", wrong);
      }
    }
    options->format = *format == "json" ? Format::Json : *format == "sarif" ? Format::Sarif : Format::Text;
    options->failOnWarning = *failOn == "warning";
    chosen = [options](std::ostream& out, std::ostream& err) { return lint(*options, out, err); };
  });
}

}  // namespace tarn::tool
