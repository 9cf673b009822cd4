// The public operations: from files to a rule database or an error, and to the findings of lint.

#include <tarn/rules/RuleLoader.h>

#include "diagnostics/DiagnosticList.h"
#include "lint/Lint.h"
#include "loading/RuleBuilder.h"
#include "loading/RuleIndex.h"

namespace tarn::rules {

namespace {

std::unique_ptr<PhysicsData> load(RuleIndex& index, LoadLimits const& limits, DiagnosticList& diagnostics) {
  RuleBuilder builder(index, false, diagnostics, limits);
  builder.build();
  if (diagnostics.hasErrors()) throw RuleError(diagnostics.take(index.names(), false));
  return builder.takeData();
}

LintResult lint(RuleIndex& index, LoadLimits const& limits, DiagnosticList& diagnostics) {
  RuleBuilder builder(index, true, diagnostics, limits);
  builder.build();
  // Warnings compare rules with each other, so they need all rules.
  if (!diagnostics.hasErrors()) addWarnings(index, builder.data(), diagnostics);
  return {diagnostics.take(index.names(), true), index.hasUnreadable()};
}

}  // namespace

std::unique_ptr<PhysicsData> loadRules(std::vector<std::filesystem::path> const& filesOrFolders,
                                       LoadLimits const& limits) {
  DiagnosticList diagnostics(limits.errors);
  RuleIndex index;
  index.read(filesOrFolders, limits, diagnostics);
  return load(index, limits, diagnostics);
}

std::unique_ptr<PhysicsData> parseRules(std::string const& text, std::string const& sourceName,
                                        LoadLimits const& limits) {
  DiagnosticList diagnostics(limits.errors);
  RuleIndex index;
  index.readText(text, sourceName, limits, diagnostics);
  return load(index, limits, diagnostics);
}

LintResult lintRules(std::vector<std::filesystem::path> const& filesOrFolders, LoadLimits const& limits) {
  DiagnosticList diagnostics(limits.errors);
  RuleIndex index;
  index.read(filesOrFolders, limits, diagnostics);
  return lint(index, limits, diagnostics);
}

LintResult lintText(std::string const& text, std::string const& sourceName, LoadLimits const& limits) {
  DiagnosticList diagnostics(limits.errors);
  RuleIndex index;
  index.readText(text, sourceName, limits, diagnostics);
  return lint(index, limits, diagnostics);
}

}  // namespace tarn::rules
