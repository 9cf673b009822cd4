#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>

#include <tarn/workbench/RuleCoverage.h>

namespace CLI {
class App;
}

namespace tarn::tool {

/// The options about coverage that several subcommands have.
struct CoverageOptions {
  /// "text", "json" or "lcov"; empty: coverage is not asked for.
  std::string format;
  /// The file to write; empty: the standard output.
  std::string file;
  std::optional<std::size_t> failUnder;

  [[nodiscard]] bool isOn() const noexcept { return !format.empty(); }
  /// Whether coverage in a form for programs takes the standard output, so that nothing else may be written to it.
  [[nodiscard]] bool takesOutput() const noexcept { return isOn() && file.empty() && format != "text"; }
};

/// Adds `--coverage`, `--coverage-out` and `--fail-under` to a command. `options` must outlive it.
void addCoverageOptions(CLI::App& command, CoverageOptions& options);

/// Throws a `CLI::ValidationError` when the options do not fit together. `formatIsText`: the results of the command are
/// for people.
void requireSound(CoverageOptions const& options, bool formatIsText);

/// Writes the coverage to the file, or to `out`. Returns false if it is under `failUnder`, and says so on `err`. Throws
/// a `Failure` when the file cannot be written.
[[nodiscard]] bool reportCoverage(CoverageOptions const& options, workbench::RuleCoverage const& coverage,
                                  std::ostream& out, std::ostream& err);

}  // namespace tarn::tool
