// Checks of values that need options. All others are cases in `cases/`.

#include <optional>
#include <string>

#include <gtest/gtest.h>

#include <tarn/rules/RuleLoader.h>

namespace tarn::rules {
namespace {

std::string notesOn(std::string const& parameters, std::optional<Severity> severity) {
  LintOptions options;
  if (severity) options.severities["required-without-value"] = severity;
  std::string const rules =
      "Rule Database: 1\nPertinent Roots: [Tank]\nObjects:\n  /Tank:\n    Parameters:\n" + parameters;
  return format(lintText(rules, "tank.rules.yaml", options).diagnostics);
}

TEST(RequiredWithoutValue, IsReportedOnlyWhenItIsAskedFor) {
  std::string const title = "      Title: {Required: yes, Parameter Type: String}\n";
  EXPECT_EQ(notesOn(title, std::nullopt), "");
  EXPECT_EQ(
      notesOn(title, Severity::Note),
      R"text(tank.rules.yaml:6:25: note: this parameter is required, but begins without a value; add a Default Value, or leave it to the user
    6 |       Title: {Required: yes, Parameter Type: String}
      |                         ^~~
)text");
}

TEST(RequiredWithoutValue, IsNotReportedWhereAValueIsKnown) {
  EXPECT_EQ(notesOn("      Volume: {Required: yes, Parameter Type: Real, Default Value: 1}\n"
                    "      Kind: {Required: yes, Parameter Type: String, Ordered Allowed String List: [Open, Closed]}\n"
                    "      Sealed: {Required: yes, Parameter Type: Logical}\n"
                    "      Note: {Parameter Type: String}\n"
                    "      Level: {Required: yes, Parameter Type: Real, Value Override Check List: [{When: "
                    "\"${Sealed}\", Value: 5}]}\n",
                    Severity::Note),
            "");
}

}  // namespace
}  // namespace tarn::rules
