// The public way in: files to text, text to YAML, YAML to a rule database, and what to do with the faults.

#include <tarn/rules/RuleLoader.h>

#include <deque>

#include "diagnostics/DiagnosticList.h"
#include "lint/Lint.h"
#include "loading/RuleBuilder.h"
#include "loading/RuleFileSet.h"
#include "yaml/YamlDocument.h"

namespace tarn::rules {

namespace {

/// Parses all files and hands them to `builder`; the documents must outlive it.
void addAll(RuleFileSet const& files, LoadLimits const& limits, DiagnosticList& diagnostics,
            std::deque<YamlDocument>& documents, RuleBuilder& builder) {
  for (auto const& source : files.sources) {
    std::size_t const errorsBefore = diagnostics.errorCount();
    auto const& document =
        documents.emplace_back(source, YamlDocument::Limits{limits.yamlDepth, limits.yamlNodes}, diagnostics);
    if (document.root() != nullptr) {
      builder.addFile(source, *document.root());
    } else if (diagnostics.errorCount() == errorsBefore) {
      diagnostics.add(Code::EmptyFile, source, {}, "the file holds no rules; it must begin with 'Rule Database: 1'");
    }
  }
}

std::unique_ptr<PhysicsData> load(RuleFileSet const& files, LoadLimits const& limits, DiagnosticList& diagnostics) {
  std::deque<YamlDocument> documents;
  RuleBuilder builder(diagnostics, limits);
  addAll(files, limits, diagnostics, documents, builder);
  builder.build();
  if (diagnostics.hasErrors()) throw RuleError(diagnostics.take(files.names, false));
  return builder.takeData();
}

LintResult lint(RuleFileSet const& files, LoadLimits const& limits, DiagnosticList& diagnostics) {
  std::deque<YamlDocument> documents;
  RuleBuilder builder(diagnostics, limits);
  builder.keepPlaces();
  addAll(files, limits, diagnostics, documents, builder);
  builder.build();
  // What rules mean to each other can only be judged when all of them could be read.
  if (!diagnostics.hasErrors()) addWarnings(builder, diagnostics);
  return {diagnostics.take(files.names, true), files.unreadable};
}

RuleFileSet fileOf(std::string const& text, std::string const& sourceName, LoadLimits const& limits,
                   DiagnosticList& diagnostics) {
  RuleFileSet files;
  files.names.push_back(sourceName);
  if (text.size() > limits.fileSize) {
    diagnostics.addAboutFile(Code::UnreadableFile, sourceName,
                             "the text is larger than " + std::to_string(limits.fileSize) + " bytes");
  } else {
    files.sources.emplace_back(sourceName, text);
  }
  return files;
}

}  // namespace

std::unique_ptr<PhysicsData> loadRules(std::vector<std::filesystem::path> const& filesOrFolders,
                                       LoadLimits const& limits) {
  DiagnosticList diagnostics(limits.errors);
  RuleFileSet files;
  files.read(filesOrFolders, limits.fileSize, diagnostics);
  return load(files, limits, diagnostics);
}

std::unique_ptr<PhysicsData> parseRules(std::string const& text, std::string const& sourceName,
                                        LoadLimits const& limits) {
  DiagnosticList diagnostics(limits.errors);
  return load(fileOf(text, sourceName, limits, diagnostics), limits, diagnostics);
}

LintResult lintRules(std::vector<std::filesystem::path> const& filesOrFolders, LoadLimits const& limits) {
  DiagnosticList diagnostics(limits.errors);
  RuleFileSet files;
  files.read(filesOrFolders, limits.fileSize, diagnostics);
  return lint(files, limits, diagnostics);
}

LintResult lintText(std::string const& text, std::string const& sourceName, LoadLimits const& limits) {
  DiagnosticList diagnostics(limits.errors);
  return lint(fileOf(text, sourceName, limits, diagnostics), limits, diagnostics);
}

}  // namespace tarn::rules
