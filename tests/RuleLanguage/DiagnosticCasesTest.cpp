// Runs the rule files of `cases/`, and tests that wrong expectations are noticed.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tarn/rules/RuleLoader.h>

#include "Places.h"
#include "RuleLanguage/DiagnosticCases.h"
#include "support/FileText.h"

namespace tarn::rules::test {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> caseFiles() {
  std::vector<std::string> names;
  for (auto const& entry : fs::directory_iterator(fs::path(TARN_SOURCE_DIR) / "tests/RuleLanguage/cases")) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

bool isSet(char const* variable) {
  char const* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

/// The codes that need other options, limits or files than a case can give, each with what gives it.
LintResult lintFor(std::string const& code) {
  std::string const sound =
      "Rule Database: 1\nPertinent Roots: [Pump]\nObjects: {/Pump: {Parameters: {Speed: {Parameter Type: Real, "
      "Required: yes}}}}\n";
  LintOptions options;
  if (code == "analysis-given-up") {
    std::string condition = "name() == '0'";
    for (int i = 1; i <= 1000; ++i) condition += " or name() == '" + std::to_string(i) + "'";
    return lintText(sound + "Checks: {named: \"" + condition + "\"}\n");
  }
  if (code == "empty-file") return lintText("");
  if (code == "limit-exceeded") {
    options.limits.expressionLength = 3;
    return lintText(sound + "Checks: {one: \"true and true\"}\n", "pump.rules.yaml", options);
  }
  if (code == "no-rule-files") return lintRules(std::vector<fs::path>(), options);
  if (code == "unused-name") return lintText(sound + "Checks: {unused: name() == 'x'}\n");
  if (code == "required-without-value") {
    options.severities[code] = Severity::Note;
    return lintText(sound + "Checks: {unused: name() == 'x'}\n", "pump.rules.yaml", options);
  }
  if (code == "too-many-errors") {
    options.limits.errors = 1;
    return lintText("Slip: {}\nSlap: {}\n", "pump.rules.yaml", options);
  }
  if (code == "unreadable-file") {
    options.limits.fileSize = 3;
    return lintText(sound, "pump.rules.yaml", options);
  }
  if (code == "yaml-encoding") return lintText("Rule Database: \xFF\n");
  return {};
}

TEST(DiagnosticCases, EveryCodeHasOne) {
  std::set<std::string> given;
  for (auto const& name : caseFiles()) {
    auto const file = splitCases(tarn::test::fileText(fs::path(TARN_SOURCE_DIR) / "tests/RuleLanguage/cases" / name));
    for (auto const& one : file.cases) {
      for (auto const& diagnostic : lintText(one.text, "flow.rules.yaml").diagnostics) given.insert(diagnostic.code);
    }
  }
  for (auto const& code : diagnosticCodes()) {
    // It needs a computer without the definitions of units; the end-to-end test of lint takes them away.
    if (code.name == "no-unit-definitions" || given.contains(std::string(code.name))) continue;
    auto const result = lintFor(std::string(code.name)).diagnostics;
    EXPECT_TRUE(std::any_of(result.begin(), result.end(), [&](auto const& one) { return one.code == code.name; }))
        << "no case gives the code " << code.name;
  }
}

class RuleFileWithExpectations : public testing::TestWithParam<std::string> {};

TEST_P(RuleFileWithExpectations, GivesExactlyThese) {
  fs::path const path = fs::path(TARN_SOURCE_DIR) / "tests/RuleLanguage/cases" / GetParam();
  auto const cases = splitCases(tarn::test::fileText(path));
  ASSERT_FALSE(cases.cases.empty()) << path;

  if (isSet("TARN_UPDATE_CASES")) {
    ASSERT_FALSE(isSet("CI")) << "expectations are updated by people, who read them";
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << cases.heading;
    for (auto const& one : cases.cases) out << "#! case " << one.name << "\n" << withDiagnostics(one.text);
    ASSERT_TRUE(out.flush());
    return;
  }
  std::set<std::string> names;
  for (auto const& one : cases.cases) {
    auto const faults = faultsOf(one);
    EXPECT_EQ(faults, "") << path.string() << ":" << one.line << ": " << one.name;
    EXPECT_TRUE(names.insert(one.name).second) << "two cases are named " << one.name;
  }
}

std::string nameOf(testing::TestParamInfo<std::string> const& info) {
  std::string name = info.param.substr(0, info.param.find('.'));
  std::erase_if(name, [](char c) { return c == '-'; });
  return name;
}

INSTANTIATE_TEST_SUITE_P(Of, RuleFileWithExpectations, testing::ValuesIn(caseFiles()), nameOf);

// The judge of the cases can fail.

/// The faults of a rule file with one mistake and this expectation of it.
std::string faultsWith(std::string const& expectation) {
  auto const cases = splitCases("#! case one\nRule Database: 1\nObject: {}\n" + expectation + "Checks: {}\n");
  return faultsOf(cases.cases.at(0));
}

std::string const right =
    "#! error 1-6 unknown-key: unknown key 'Object' in a rule file; did you mean 'Objects'?\n"
    "#!   fix 1-6 Objects: Replace 'Object' by 'Objects'\n";

/// The faults when `part` of the right expectation is written as `other`.
std::string faultsWhen(std::string const& part, std::string const& other) {
  std::string text = right;
  text.replace(text.find(part), part.size(), other);
  return faultsWith(text);
}

TEST(DiagnosticCases, TheRightExpectationIsNoFault) {
  EXPECT_EQ(faultsWith(right), "");
}

TEST(DiagnosticCases, ADiagnosticThatIsNotExpectedIsAFault) {
  EXPECT_EQ(faultsWith(""),
            "at: Object: {}\n"
            "  unexpected: #! error 1-6 unknown-key: unknown key 'Object' in a rule file; did you mean 'Objects'?\n"
            "  unexpected: #!   fix 1-6 Objects: Replace 'Object' by 'Objects'\n");
}

TEST(DiagnosticCases, ADiagnosticThatDoesNotComeIsAFault) {
  EXPECT_EQ(faultsWith(right + "#! warning 1-6 doubtful: never written\n"),
            "at: Object: {}\n"
            "  missing:    #! warning 1-6 doubtful: never written\n");
}

TEST(DiagnosticCases, AnExpectationAtAnotherLineIsAFault) {
  auto const cases = splitCases("#! case one\nRule Database: 1\n" + right + "Object: {}\n");
  EXPECT_EQ(faultsOf(cases.cases.at(0)),
            "at: Rule Database: 1\n"
            "  missing:    #! error 1-6 unknown-key: unknown key 'Object' in a rule file; did you mean 'Objects'?\n"
            "  missing:    #!   fix 1-6 Objects: Replace 'Object' by 'Objects'\n"
            "at: Object: {}\n"
            "  unexpected: #! error 1-6 unknown-key: unknown key 'Object' in a rule file; did you mean 'Objects'?\n"
            "  unexpected: #!   fix 1-6 Objects: Replace 'Object' by 'Objects'\n");
}

TEST(DiagnosticCases, EachPartOfAnExpectationCounts) {
  for (auto const& [part, other] :
       std::vector<std::pair<std::string, std::string>>{{"error", "warning"},
                                                        {"error 1-6", "error 1-5"},
                                                        {"error 1-6", "error 2-6"},
                                                        {"unknown-key", "unknown-keys"},
                                                        {"in a rule file", "in a file"},
                                                        {"'Objects'?", "'Objects'"},
                                                        {"fix 1-6", "fix 1-7"},
                                                        {"fix 1-6 Objects", "fix 1-6 Object"},
                                                        {"Replace", "Change"}}) {
    EXPECT_NE(faultsWhen(part, other), "") << part << " -> " << other;
  }
}

TEST(DiagnosticCases, ExpectationsAreNoPartOfTheRules) {
  auto const cases = splitCases("#! case one\nChecks:\n  a: |\n    true and\n#! error 1 x: y\n    false\n");
  EXPECT_EQ(cases.cases.at(0).text, "Checks:\n  a: |\n    true and\n    false\n");
}

}  // namespace
}  // namespace tarn::rules::test
