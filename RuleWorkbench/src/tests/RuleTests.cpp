// The public operations: from files to tests, and the run of one test.
#include <tarn/workbench/RuleTests.h>

#include <chrono>
#include <deque>
#include <utility>

#include "diagnostics/DiagnosticList.h"
#include "tests/TestPlan.h"
#include "tests/TestReader.h"
#include "tests/TestRun.h"
#include "yaml/SourceFileSet.h"
#include "yaml/YamlDocument.h"

namespace tarn::workbench {

struct RuleTests::Parts {
  std::vector<TestPlan> tests;
  std::vector<rules::Diagnostic> diagnostics;
  bool unreadable = false;
};

namespace {

constexpr rules::FileKind testFiles{".rule-tests.yaml", "file of rule tests", "files of rule tests"};

void readFile(rules::SourceText const& source, std::filesystem::path const& folder, TestLimits const& limits,
              rules::DiagnosticList& diagnostics, std::vector<TestPlan>& tests) {
  std::size_t const errorsBefore = diagnostics.errorCount();
  rules::YamlDocument const document(source, {limits.yamlDepth, limits.yamlNodes}, diagnostics);
  if (document.root() != nullptr) {
    TestReader(source, folder, document.isIncomplete(), diagnostics).read(*document.root(), tests);
  } else if (diagnostics.errorCount() == errorsBefore) {
    diagnostics.add(rules::Code::EmptyFile, source, {}, "the file contains no tests; begin it with 'Rule Tests: 1'");
  }
}

}  // namespace

RuleTests::RuleTests(std::unique_ptr<Parts> parts) noexcept : parts_(std::move(parts)) {}
RuleTests::RuleTests(RuleTests&&) noexcept = default;
RuleTests& RuleTests::operator=(RuleTests&&) noexcept = default;
RuleTests::~RuleTests() = default;

RuleTests RuleTests::read(std::vector<std::filesystem::path> const& filesOrFolders, TestLimits const& limits) {
  auto parts = std::make_unique<Parts>();
  rules::DiagnosticList diagnostics(limits.errors);
  rules::SourceFileSet files;
  files.read(filesOrFolders, testFiles, limits.fileSize, diagnostics);
  for (rules::SourceText const& source : files.sources) {
    readFile(source, std::filesystem::path(source.name()).parent_path(), limits, diagnostics, parts->tests);
  }
  parts->unreadable = files.unreadable;
  parts->diagnostics = diagnostics.take(files.names, false);
  return RuleTests(std::move(parts));
}

RuleTests RuleTests::parse(std::string const& text, std::string const& sourceName, std::filesystem::path const& folder,
                           TestLimits const& limits) {
  auto parts = std::make_unique<Parts>();
  rules::DiagnosticList diagnostics(limits.errors);
  if (text.size() > limits.fileSize) {
    diagnostics.addAboutFile(rules::Code::UnreadableFile, sourceName,
                             "the text is larger than " + std::to_string(limits.fileSize) + " bytes");
  } else {
    readFile(rules::SourceText(sourceName, text), folder, limits, diagnostics, parts->tests);
  }
  parts->diagnostics = diagnostics.take({sourceName}, false);
  return RuleTests(std::move(parts));
}

std::vector<rules::Diagnostic> const& RuleTests::diagnostics() const noexcept {
  return parts_->diagnostics;
}

bool RuleTests::hasUnreadable() const noexcept {
  return parts_->unreadable;
}

std::size_t RuleTests::size() const noexcept {
  return parts_->tests.size();
}

std::string const& RuleTests::name(std::size_t test) const {
  return parts_->tests.at(test).name;
}

TextPlace const& RuleTests::place(std::size_t test) const {
  return parts_->tests.at(test).place;
}

TestResult RuleTests::run(std::size_t test, PhysicsData const& rules, RuleCoverage* coverage) const {
  auto const begin = std::chrono::steady_clock::now();
  TestResult result = TestRun(parts_->tests.at(test), rules, coverage).result();
  result.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  return result;
}

}  // namespace tarn::workbench
