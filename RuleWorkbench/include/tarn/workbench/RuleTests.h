#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/PhysicsData.h>
#include <tarn/TextPlace.h>
#include <tarn/rules/Diagnostic.h>

namespace tarn::workbench {

class RuleCoverage;

/// Limits that keep hostile or broken files from exhausting memory, stack or time.
struct TestLimits {
  /// Bytes of one file of tests.
  std::size_t fileSize = std::size_t{64} << 20;
  /// Levels of nested YAML.
  std::size_t yamlDepth = 64;
  /// YAML nodes of one file. Each alias counts as a copy of its anchor.
  std::size_t yamlNodes = 2'000'000;
  /// Errors that are kept.
  std::size_t errors = 1000;
};

/// One expectation of a test that was not met.
struct TARN_EXPORT TestFailure {
  /// The place of the expectation in the file of tests.
  TextPlace place;
  /// The subject of the expectation: the path of an object or parameter, an expression, or an edit.
  std::string subject;
  /// The expected and the actual state. Each is on one line.
  std::string expected;
  std::string actual;
  /// Why it is so: the proof as text, of one or more lines without a line feed at the end. "" when there is none.
  std::string because;
  /// The rule that decided. Not known when there is none.
  TextPlace rule;
};

/// The outcome of one test.
struct TARN_EXPORT TestResult {
  /// In the order of the test. Empty when it passed.
  std::vector<TestFailure> failures;
  /// Number of expectations that were looked at. That the edits of a step are made, or refused, is one of them.
  std::size_t expectations = 0;
  /// How long it took, in seconds.
  double seconds = 0;

  [[nodiscard]] bool passed() const noexcept { return failures.empty(); }
};

/// Tests of rules, from files `*.rule-tests.yaml`. Each test opens a session with a model, makes edits, and compares
/// what became of the model with what is expected.
///
///     RuleTests const tests = RuleTests::read({"rules/tests"});
///     if (!tests.diagnostics().empty()) return complain(rules::format(tests.diagnostics()));
///     for (std::size_t i = 0; i < tests.size(); ++i) {
///       for (TestFailure const& failure : tests.run(i, *rules).failures) report(tests.name(i), failure);
///     }
///
/// `docs/rule-tests.md` describes the files.
class TARN_EXPORT RuleTests {
 public:
  /// Reads files and folders, in the order given. A folder means its files `*.rule-tests.yaml` in the order of their
  /// names; its subfolders are not read. Models that tests name as files are read too; their paths start at the folder
  /// of the file of tests. Throws nothing but `std::bad_alloc`. Linear in the size of the files.
  [[nodiscard]] static RuleTests read(std::vector<std::filesystem::path> const& filesOrFolders,
                                      TestLimits const& limits = {});
  /// Reads the text of one file. Diagnostics and places name it `sourceName`. Paths of models start at `folder`.
  [[nodiscard]] static RuleTests parse(std::string const& text, std::string const& sourceName = "<tests>",
                                       std::filesystem::path const& folder = {}, TestLimits const& limits = {});

  RuleTests(RuleTests&&) noexcept;
  RuleTests& operator=(RuleTests&&) noexcept;
  ~RuleTests();

  /// Everything that is wrong with the form of the files, in the order of files and positions. All are errors. Tests
  /// with errors are not among those that can be run.
  [[nodiscard]] std::vector<rules::Diagnostic> const& diagnostics() const noexcept;
  /// A file or folder could not be read.
  [[nodiscard]] bool hasUnreadable() const noexcept;

  /// The number of tests.
  [[nodiscard]] std::size_t size() const noexcept;
  /// The name of a test, and where it begins. Valid as long as this.
  [[nodiscard]] std::string const& name(std::size_t test) const;
  [[nodiscard]] TextPlace const& place(std::size_t test) const;

  /// Runs one test. Several threads may run tests of one object at once, with the same rules. A session that cannot be
  /// opened, a rule that throws and a path that the rules do not know are failures of the test. Throws nothing but
  /// `std::bad_alloc`. Costs the model, and what the edits and the questions of a `Session` cost; findings cost a walk
  /// of the whole model for each step that asks for them.
  ///
  /// With `coverage`, the model is added to it as it is opened and after each step. It must be about the same rules,
  /// and only one thread at a time may use it.
  [[nodiscard]] TestResult run(std::size_t test, PhysicsData const& rules, RuleCoverage* coverage = nullptr) const;

 private:
  struct Parts;
  explicit RuleTests(std::unique_ptr<Parts> parts) noexcept;
  std::unique_ptr<Parts> parts_;
};

}  // namespace tarn::workbench
