#include "coverage/CoverageOptions.h"

#include <cerrno>
#include <fstream>
#include <ostream>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/ChoiceOption.h"
#include "cli/Failure.h"
#include "cli/Output.h"
#include "reports/CoverageReport.h"

namespace tarn::tool {

namespace {

void write(CoverageOptions const& options, std::vector<workbench::CoverageItem> const& items, std::ostream& out) {
  if (options.format == "json") {
    writeCoverageAsJson(out, items);
  } else if (options.format == "lcov") {
    writeCoverageAsLcov(out, items);
  } else {
    writeCoverageAsText(out, items);
  }
}

}  // namespace

void addCoverageOptions(CLI::App& command, CoverageOptions& options) {
  addChoiceOption(command, "--coverage", options.format, {"text", "json", "lcov"},
                  "Also show how much of the rules was seen: text, for people; json, one object\non a line; or lcov, "
                  "for viewers of coverage");
  command.add_option("--coverage-out", options.file, "Write the coverage to this file; default: the standard output")
      ->type_name("FILE");
  command.add_option("--fail-under", options.failUnder, "End with exit status 1 if less than N percent is covered")
      ->type_name("N")
      ->check(CLI::Range(std::size_t{0}, std::size_t{100}).description(""));
}

void requireSound(CoverageOptions const& options, bool formatIsText) {
  if (!options.isOn()) {
    if (!options.file.empty()) throw CLI::ValidationError("--coverage-out", "give --coverage as well");
    if (options.failUnder) throw CLI::ValidationError("--fail-under", "give --coverage as well");
    return;
  }
  if (!formatIsText && options.file.empty()) {
    throw CLI::ValidationError("--coverage", "with this --format, name a file for the coverage with --coverage-out");
  }
}

bool reportCoverage(CoverageOptions const& options, workbench::RuleCoverage const& coverage, std::ostream& out,
                    std::ostream& err) {
  std::vector<workbench::CoverageItem> const items = coverage.items();
  if (options.file.empty()) {
    write(options, items, out);
    out.flush();
  } else {
    errno = 0;
    std::ofstream file(options.file, std::ios::binary | std::ios::trunc);
    write(options, items, file);
    file.flush();
    if (!file) throw Failure("cannot write the coverage to \"" + options.file + '"' + becauseOf(errno));
  }
  std::size_t const percent = countOf(items).percent();
  if (!options.failUnder || percent >= *options.failUnder) return true;
  err << "zev: " << percent << " % of the rules are covered; --fail-under asks for " << *options.failUnder << " %.\n";
  return false;
}

}  // namespace tarn::tool
