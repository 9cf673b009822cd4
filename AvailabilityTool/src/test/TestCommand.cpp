// `zev test`: runs tests of rules, on several threads, and prints those that failed.
#include "test/TestCommand.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include <tarn/StringUtilities.h>
#include <tarn/rules/Diagnostic.h>
#include <tarn/workbench/RuleCoverage.h>
#include <tarn/workbench/RuleTests.h>

#include "cli/ChoiceOption.h"
#include "cli/Counted.h"
#include "cli/ExitStatus.h"
#include "cli/Failure.h"
#include "cli/ListArguments.h"
#include "cli/OrderedResults.h"
#include "cli/Progress.h"
#include "cli/RuleFiles.h"
#include "coverage/CoverageOptions.h"
#include "reports/TestReport.h"

namespace tarn::tool {

namespace {

enum class Format { Text, Json, JUnit };

struct TestOptions {
  std::vector<std::string> rules;
  std::vector<std::string> tests;
  std::string filter;
  Format format = Format::Text;
  CoverageOptions coverage;
  std::size_t jobs = std::max(1U, std::thread::hardware_concurrency());
};

bool contains(std::string const& name, std::string const& part) {
  return StringUtilities::toLower(name).find(StringUtilities::toLower(part)) != std::string::npos;
}

std::vector<std::size_t> chosenTests(workbench::RuleTests const& tests, std::string const& filter) {
  std::vector<std::size_t> chosen;
  for (std::size_t i = 0; i < tests.size(); ++i) {
    if (contains(tests.name(i), filter)) chosen.push_back(i);
  }
  if (!chosen.empty()) return chosen;
  if (filter.empty()) throw Failure("the files contain no tests; write them under 'Tests'");
  throw Failure("--filter: no name of a test contains \"" + filter + '"');
}

/// The outcome of one test.
struct Run {
  workbench::TestResult result;
  std::optional<workbench::RuleCoverage> coverage;
};

int test(TestOptions const& options, std::ostream& out, std::ostream& err) {
  auto const rules = loadRuleFiles(options.rules, err);
  auto const tests = workbench::RuleTests::read({options.tests.begin(), options.tests.end()});
  // With a wrong file the verdict would be about a part of the tests only.
  if (!tests.diagnostics().empty()) {
    err << rules::format(tests.diagnostics());
    throw Failure("the tests cannot be run; see above");
  }
  std::vector<std::size_t> const chosen = chosenTests(tests, options.filter);
  OrderedResults<Run> results(chosen.size(), options.jobs, [&](std::size_t i) {
    Run run;
    if (options.coverage.isOn()) run.coverage.emplace(*rules);
    run.result = tests.run(chosen[i], *rules, run.coverage ? &*run.coverage : nullptr);
    return run;
  });
  workbench::RuleCoverage coverage(*rules);
  std::ostream& text = options.coverage.takesOutput() ? err : out;
  Progress progress(err, standardErrorIsTerminal(), chosen.size());
  std::vector<TestOutcome> outcomes;
  for (std::size_t const i : chosen) {
    progress.begin(tests.name(i));
    Run run = results.next();
    if (run.coverage) coverage.add(*run.coverage);
    outcomes.push_back({tests.name(i), tests.place(i), std::move(run.result)});
    if (options.format != Format::Text || outcomes.back().result.passed()) continue;
    progress.hide();
    writeTestAsText(text, outcomes.back());
  }
  progress.hide();
  std::size_t const failed = failedTests(outcomes);
  switch (options.format) {
    case Format::Text:
      out.flush();
      err << "zev: " << counted(outcomes.size(), "test") << " run, "
          << (failed == 0 ? "all passed" : std::to_string(failed) + " failed") << ".\n";
      break;
    case Format::Json:
      writeTestsAsJson(out, outcomes);
      break;
    case Format::JUnit:
      writeTestsAsJUnit(out, outcomes);
      break;
  }
  bool const isCovered = !options.coverage.isOn() || reportCoverage(options.coverage, coverage, out, err);
  return failed == 0 && isCovered ? NothingFound : FindingsMade;
}

}  // namespace

bool looksLikeRulesUnderTest(std::string const& argument) {
  return looksLikeRules(argument) && !argument.ends_with(".rule-tests.yaml");
}

void addTestCommand(CLI::App& app, Command& chosen) {
  auto options = std::make_shared<TestOptions>();
  auto format = std::make_shared<std::string>("text");
  CLI::App* command = app.add_subcommand("test", "Run tests of rules");
  addRulesOption(*command, options->rules);
  command->add_option("--filter", options->filter, "Run only tests whose names contain this text; case does not matter")
      ->type_name("TEXT");
  addChoiceOption(*command, "--format", *format, {"text", "json", "junit"},
                  "text, for people, the default; json, one object on a line; or junit, XML for\nbuild servers");
  command->add_option("-j,--jobs", options->jobs, "Run up to N tests at once; default: the number of processor cores")
      ->type_name("N")
      ->check(CLI::Range(std::size_t{1}, std::size_t{1000}).description(""));
  addCoverageOptions(*command, options->coverage);
  command->add_option("TESTS", options->tests, "Files of tests, and folders with *.rule-tests.yaml")
      ->type_name("")
      ->required();
  command->footer(
      "Each test opens a model, edits it, and compares what became of it with what is expected. When a test fails,\n"
      "each expectation that was not met is printed with its place, the actual state, and the rule that decided.\n"
      "Examples: zev test --rules rules/ tests/\n"
      "          zev test --rules rules/ --filter rotating tests/domain.rule-tests.yaml\n"
      "Exit status: 0 all tests passed, 1 a test failed, 2 wrong usage, or rules or tests that could not be read.");
  command->callback([options, format, &chosen] {
    options->format = *format == "json" ? Format::Json : *format == "junit" ? Format::JUnit : Format::Text;
    requireSound(options->coverage, options->format == Format::Text);
    chosen = [options](std::ostream& out, std::ostream& err) { return test(*options, out, err); };
  });
}

}  // namespace tarn::tool
