// The severities that a program or a user gives to codes, and the acceptances in rule files.

#include <optional>
#include <string>

#include <gtest/gtest.h>

#include <tarn/Error.h>
#include <tarn/rules/RuleLoader.h>

namespace tarn::rules {
namespace {

std::string const doubtful = R"yaml(Rule Database: 1
Pertinent Roots: [Case]
Objects:
  /Case:
    Parameters:
      Title: {Parameter Type: String, Pattern: "[A-Z]*"}
    Children:
      Domain: {Required: yes}
  /Case/Domain: {}
)yaml";

/// Code and severity of each diagnostic.
std::string summary(LintResult const& result) {
  std::string text;
  for (auto const& one : result.diagnostics) text += one.code + " " + std::string(severityName(one.severity)) + "\n";
  return text;
}

std::string summaryWith(std::string const& code, std::optional<Severity> severity) {
  LintOptions options;
  options.severities[code] = severity;
  return summary(lintText(doubtful, "flow.rules.yaml", options));
}

TEST(LintOptions, WithoutSeveritiesEachCodeHasItsOwn) {
  EXPECT_EQ(summary(lintText(doubtful, "flow.rules.yaml", LintOptions())),
            "pattern-matches-empty-text note\nrequires-nothing warning\n");
}

TEST(LintOptions, ASeverityOfACodeReplacesItsOwn) {
  EXPECT_EQ(summaryWith("requires-nothing", Severity::Error),
            "pattern-matches-empty-text note\nrequires-nothing error\n");
  EXPECT_EQ(summaryWith("pattern-matches-empty-text", Severity::Warning),
            "pattern-matches-empty-text warning\nrequires-nothing warning\n");
}

TEST(LintOptions, ACodeThatIsOffIsNotReported) {
  EXPECT_EQ(summaryWith("requires-nothing", std::nullopt), "pattern-matches-empty-text note\n");
}

TEST(LintOptions, AWarningThatIsMadeAnErrorDoesNotPreventLoading) {
  LintOptions options;
  options.severities["requires-nothing"] = Severity::Error;
  for (auto const& one : lintText(doubtful, "flow.rules.yaml", options).diagnostics) {
    EXPECT_FALSE(preventsLoading(one)) << one.code;
  }
}

/// The message of the error for a severity of this code.
std::string refusal(std::string const& code) {
  try {
    (void)summaryWith(code, Severity::Note);
  } catch (ParseError const& error) {
    return error.getMessage();
  }
  return "accepted";
}

TEST(LintOptions, ACodeThatKeepsRulesFromBeingLoadedCannotBeChanged) {
  EXPECT_EQ(refusal("unknown-key"),
            "the severity of 'unknown-key' cannot be changed: it keeps rules from being loaded");
}

TEST(LintOptions, ACodeThatDoesNotExistIsRefused) {
  EXPECT_EQ(refusal("never-hold"), "there is no code 'never-hold'");
}

TEST(LintOptions, AnAcceptanceOfACodeThatIsOffIsStillNeeded) {
  LintOptions options;
  options.severities["requires-nothing"] = std::nullopt;
  std::string const accepting = doubtful + "Accepted: {requires-nothing: A new case is empty.}\n";
  EXPECT_EQ(summary(lintText(accepting, "flow.rules.yaml", options)), "pattern-matches-empty-text note\n");
}

TEST(LintOptions, FindingsThatAreAcceptedAreCounted) {
  EXPECT_EQ(lintText(doubtful).accepted, 0U);
  EXPECT_EQ(lintText(doubtful + "Accepted: {requires-nothing: A new case is empty.}\n").accepted, 1U);
}

TEST(LintOptions, RulesWithAcceptancesAreLoadedAsWithout) {
  EXPECT_NE(parseRules(doubtful + "Accepted: {never-hold: No such code.}\n")->getObjDependDef("/Case", true), nullptr);
}

}  // namespace
}  // namespace tarn::rules
