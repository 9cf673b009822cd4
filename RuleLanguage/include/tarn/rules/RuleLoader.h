#pragma once

#include <concepts>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/PhysicsData.h>
#include <tarn/rules/Diagnostic.h>
#include <tarn/rules/RuleError.h>

namespace tarn::rules {

/// Limits that keep hostile or broken files from exhausting memory, stack or time. Exceeding a limit is an error with
/// the code "limit-exceeded" or, for a whole file, "unreadable-file". The defaults are far above every real rule base.
struct LoadLimits {
  /// Bytes of one file.
  std::size_t fileSize = std::size_t{256} << 20;
  /// Levels of nested YAML. The format itself needs nine.
  std::size_t yamlDepth = 64;
  /// YAML nodes of one file. Each alias counts as a copy of its anchor.
  std::size_t yamlNodes = 20'000'000;
  /// Characters of one expression.
  std::size_t expressionLength = 100'000;
  /// Levels of nesting in one expression.
  std::size_t expressionDepth = 200;
  /// Length of a chain of named checks, lists and values that call each other.
  std::size_t callDepth = 100;
  /// Levels of nesting in a named check, list or value together with the ones it calls. This bounds the stack of an
  /// evaluation.
  std::size_t nestingDepth = 1000;
  /// Calls of named checks, lists and values that one evaluation can make, calls inside called rules included.
  std::size_t callCount = 10'000;
  /// Length of a chain of templates that use each other.
  std::size_t templateDepth = 20;
  /// YAML nodes of all templates that objects use, counted once for each use.
  std::size_t templateNodes = 20'000'000;
  /// Errors that are kept. If there are more, the last diagnostic, "too-many-errors", gives their number.
  std::size_t errors = 1000;
};

/// Loads a rule database from files and folders, in the order given. A folder means its files `*.rules.yaml` in the
/// order of their names; its subfolders are not read. A later file may continue an object of an earlier one: its
/// entries are appended.
///
/// Returns the complete database; it keeps no reference to the files. Throws a `RuleError` with all errors of all files
/// when there are any; a file that cannot be read is one of them. Then nothing is loaded. Warnings are not reported
/// here, see `lintRules`. Throws `std::bad_alloc` when memory runs out. Linear in the size of the files.
[[nodiscard]] TARN_EXPORT std::unique_ptr<PhysicsData> loadRules(
    std::vector<std::filesystem::path> const& filesOrFolders, LoadLimits const& limits = {});

/// The same for one file or folder: `loadRules("flow.rules.yaml")`.
template <std::convertible_to<std::filesystem::path> Path>
[[nodiscard]] std::unique_ptr<PhysicsData> loadRules(Path const& fileOrFolder, LoadLimits const& limits = {}) {
  return loadRules(std::vector<std::filesystem::path>{fileOrFolder}, limits);
}

/// Loads a rule database from the text of one rule file, as `loadRules` does. Diagnostics and places name the file
/// `sourceName`.
[[nodiscard]] TARN_EXPORT std::unique_ptr<PhysicsData> parseRules(std::string const& text,
                                                                  std::string const& sourceName = "<rules>",
                                                                  LoadLimits const& limits = {});

/// The text of one rule file.
struct RuleText {
  /// The name of the file in diagnostics and places.
  std::string source;
  std::string text;
};

/// Reads the files that `loadRules` would load, in its order, without looking into them. A program that must load the
/// same rules again, perhaps on another machine, keeps the texts. Throws a `RuleError` for files that cannot be read.
[[nodiscard]] TARN_EXPORT std::vector<RuleText> readRules(std::vector<std::filesystem::path> const& filesOrFolders,
                                                          LoadLimits const& limits = {});

/// Loads a rule database from the texts of several rule files, in the order given, as `loadRules` does.
[[nodiscard]] TARN_EXPORT std::unique_ptr<PhysicsData> parseRules(std::vector<RuleText> const& texts,
                                                                  LoadLimits const& limits = {});

/// The result of `lintRules` and `lintText`.
struct LintResult {
  /// Errors, warnings and notes, in the order of files and of positions in them. Warnings, notes and the errors that
  /// only lint finds compare rules with each other, so there are none as long as there are other errors. Empty when
  /// nothing was found.
  std::vector<Diagnostic> diagnostics;
  /// A file or folder could not be read.
  bool unreadable = false;
  /// The number of findings that the rule files accept with a reason. They are not among `diagnostics`.
  std::size_t accepted = 0;
};

/// The findings that lint reports, and how.
struct LintOptions {
  LoadLimits limits;
  /// The severity of findings by their code, where it is not that of `diagnosticCodes`. Without a severity, findings of
  /// that code are not reported. Only codes with `DiagnosticCode::isOfLint` can be changed.
  std::map<std::string, std::optional<Severity>, std::less<>> severities;
};

/// Finds everything that is wrong or doubtful in rule files. Errors are in the result; only `std::bad_alloc` is thrown.
/// The rule reference describes every error and warning.
[[nodiscard]] TARN_EXPORT LintResult lintRules(std::vector<std::filesystem::path> const& filesOrFolders,
                                               LoadLimits const& limits = {});
/// The same for the text of one rule file, named `sourceName` in the diagnostics.
[[nodiscard]] TARN_EXPORT LintResult lintText(std::string const& text, std::string const& sourceName = "<rules>",
                                              LoadLimits const& limits = {});

/// The same with options. These throw a `ParseError` when `options.severities` has a code that does not exist or that
/// cannot be changed.
[[nodiscard]] TARN_EXPORT LintResult lintRules(std::vector<std::filesystem::path> const& filesOrFolders,
                                               LintOptions const& options);
[[nodiscard]] TARN_EXPORT LintResult lintText(std::string const& text, std::string const& sourceName,
                                              LintOptions const& options);

}  // namespace tarn::rules
