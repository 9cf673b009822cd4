// The public operations: from files to a rule database or an error, and to the findings of lint.

#include <tarn/rules/RuleLoader.h>

#include <tarn/Error.h>
#include <tarn/rules/RuleTexts.h>

#include "diagnostics/DiagnosticList.h"
#include "lint/Acceptances.h"
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

LintResult lint(RuleIndex& index, LintOptions const& options, DiagnosticList& diagnostics,
                LintExtent extent = LintExtent::All) {
  RuleBuilder builder(index, true, diagnostics, options.limits);
  builder.build();
  LintResult result;
  // Warnings compare rules with each other, so they need all rules.
  if (!diagnostics.hasErrors()) {
    addWarnings(index, builder.data(), diagnostics, extent);
    result.accepted = applyAcceptances(index, diagnostics);
    diagnostics.setSeverities(options.severities);
  }
  result.diagnostics = diagnostics.take(index.names(), true);
  result.unreadable = index.hasUnreadable();
  return result;
}

void checkCodes(LintOptions const& options, char const* operation) {
  for (auto const& [name, severity] : options.severities) {
    auto const* code = findCode(name);
    if (code != nullptr && code->isOfLint) continue;
    throw ParseError("RuleLoader", operation,
                     code == nullptr
                         ? "there is no code '" + name + "'"
                         : "the severity of '" + name + "' cannot be changed: it keeps rules from being loaded");
  }
}

LintOptions optionsWith(LoadLimits const& limits) {
  LintOptions options;
  options.limits = limits;
  return options;
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
  return parseRules(std::vector<RuleText>{{sourceName, text}}, limits);
}

std::vector<RuleText> readRules(std::vector<std::filesystem::path> const& filesOrFolders, LoadLimits const& limits) {
  DiagnosticList diagnostics(limits.errors);
  SourceFileSet set;
  set.read(filesOrFolders, ruleFiles, limits.fileSize, diagnostics);
  if (diagnostics.hasErrors()) throw RuleError(diagnostics.take(set.names, false));
  std::vector<RuleText> texts;
  texts.reserve(set.sources.size());
  for (SourceText const& source : set.sources) texts.push_back({source.name(), source.text()});
  return texts;
}

std::unique_ptr<PhysicsData> parseRules(std::vector<RuleText> const& texts, LoadLimits const& limits) {
  DiagnosticList diagnostics(limits.errors);
  RuleIndex index;
  index.readTexts(texts, limits, diagnostics);
  return load(index, limits, diagnostics);
}

LintResult lintRules(std::vector<std::filesystem::path> const& filesOrFolders, LintOptions const& options) {
  checkCodes(options, "lintRules");
  DiagnosticList diagnostics(options.limits.errors);
  RuleIndex index;
  index.read(filesOrFolders, options.limits, diagnostics);
  return lint(index, options, diagnostics);
}

LintResult lintTexts(std::vector<RuleText> const& texts, LintOptions const& options) {
  checkCodes(options, "lintTexts");
  DiagnosticList diagnostics(options.limits.errors);
  RuleIndex index;
  index.readTexts(texts, options.limits, diagnostics);
  return lint(index, options, diagnostics);
}

LintResult lintPart(std::vector<RuleText> const& texts, LintExtent extent) {
  LintOptions const options;
  DiagnosticList diagnostics(options.limits.errors);
  RuleIndex index;
  index.readTexts(texts, options.limits, diagnostics);
  return lint(index, options, diagnostics, extent);
}

LintResult lintText(std::string const& text, std::string const& sourceName, LintOptions const& options) {
  checkCodes(options, "lintText");
  return lintTexts({{sourceName, text}}, options);
}

LintResult lintRules(std::vector<std::filesystem::path> const& filesOrFolders, LoadLimits const& limits) {
  return lintRules(filesOrFolders, optionsWith(limits));
}

LintResult lintText(std::string const& text, std::string const& sourceName, LoadLimits const& limits) {
  return lintText(text, sourceName, optionsWith(limits));
}

}  // namespace tarn::rules
