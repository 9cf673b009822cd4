#pragma once

#include <concepts>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/PhysicsData.h>
#include <tarn/rules/Diagnostic.h>
#include <tarn/rules/RuleError.h>

namespace tarn::rules {

/// What a rule database may grow to. A file that goes beyond a limit is an error at the place where it does.
struct LoadLimits {
  /// Bytes of one file.
  std::size_t fileSize = std::size_t{256} << 20;
  /// Levels of nested YAML. The format itself needs nine.
  std::size_t yamlDepth = 64;
  /// YAML nodes of one file, with each alias counted as what it stands for.
  std::size_t yamlNodes = 20'000'000;
  /// Characters of one expression, and levels of nesting in it.
  std::size_t expressionLength = 100'000;
  std::size_t expressionDepth = 200;
  /// Named checks and lists that call each other in a chain.
  std::size_t callDepth = 100;
  /// Levels of nesting in a named check or list, those of what it calls added to its own: what an evaluation takes of
  /// the stack.
  std::size_t nestingDepth = 1000;
  /// Calls of named checks and lists that one evaluation can come to, the calls within what is called included.
  std::size_t callCount = 10'000;
  /// Errors that are kept. Where there are more, the last one says so.
  std::size_t errors = 1000;
};

/// Loads a rule database from files and folders, in the order given. Of a folder, its `*.rules.yaml` are taken in the
/// order of their names. An object may be continued in a later file, its entries appended.
///
/// Throws a `RuleError` that holds all errors of all files, a file that cannot be read being one of them; warnings are
/// passed over. Nothing is half loaded, and a want of memory is `std::bad_alloc` and no error of a file. Linear in the
/// size of the files.
[[nodiscard]] TARN_EXPORT std::unique_ptr<PhysicsData> loadRules(
    std::vector<std::filesystem::path> const& filesOrFolders, LoadLimits const& limits = {});

/// The same for one file or folder: `loadRules("flow.rules.yaml")`.
template <std::convertible_to<std::filesystem::path> Path>
[[nodiscard]] std::unique_ptr<PhysicsData> loadRules(Path const& fileOrFolder, LoadLimits const& limits = {}) {
  return loadRules(std::vector<std::filesystem::path>{fileOrFolder}, limits);
}

/// Loads a rule database from the text of one rule file. `sourceName` stands for the file in diagnostics.
[[nodiscard]] TARN_EXPORT std::unique_ptr<PhysicsData> parseRules(std::string const& text,
                                                                  std::string const& sourceName = "<rules>",
                                                                  LoadLimits const& limits = {});

/// What `lintRules` and `lintText` find.
struct LintResult {
  /// Errors and warnings, in the order of files and of places in them. With errors, only the warnings that can be told
  /// in spite of them.
  std::vector<Diagnostic> diagnostics;
  /// A file or folder could not be read.
  bool unreadable = false;
};

/// All that is wrong or doubtful in rule files; throws nothing for it. See the rule reference for the warnings.
[[nodiscard]] TARN_EXPORT LintResult lintRules(std::vector<std::filesystem::path> const& filesOrFolders,
                                               LoadLimits const& limits = {});
[[nodiscard]] TARN_EXPORT LintResult lintText(std::string const& text, std::string const& sourceName = "<rules>",
                                              LoadLimits const& limits = {});

}  // namespace tarn::rules
