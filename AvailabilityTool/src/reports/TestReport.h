#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

#include <tarn/TextPlace.h>
#include <tarn/workbench/RuleTests.h>

// The outcome of tests of rules, in the forms that `zev test` writes.

namespace tarn::tool {

struct TestOutcome {
  std::string name;
  TextPlace place;
  workbench::TestResult result;
};

/// Writes what failed in a test: for each expectation what was expected, what is, and why. Nothing when it passed.
void writeTestAsText(std::ostream& out, TestOutcome const& outcome);

/// Writes all outcomes as one JSON object on one line.
void writeTestsAsJson(std::ostream& out, std::vector<TestOutcome> const& outcomes);

/// Writes all outcomes in the form of JUnit, which build servers read: a suite for each file.
void writeTestsAsJUnit(std::ostream& out, std::vector<TestOutcome> const& outcomes);

/// The number of tests that failed.
[[nodiscard]] std::size_t failedTests(std::vector<TestOutcome> const& outcomes) noexcept;

}  // namespace tarn::tool
