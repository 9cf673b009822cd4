// Warnings as people read them. Every kind of warning has a case in cases/lint.rules.yaml.

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "RuleLanguage/ExpressionTable.h"

namespace tarn::rules {
namespace {

/// The diagnostics of one file as people read them. The files are short, so most names in them have no use.
std::string linted(std::string const& text) {
  LintOptions options;
  options.severities["unused-name"] = std::nullopt;
  return format(lintText(text, "flow.rules.yaml", options).diagnostics);
}

TEST(Lint, RootsWithoutRules) {
  EXPECT_EQ(linted(R"yaml(Rule Database: 1
Pertinent Roots: [Case, Cas, Library]
Objects: {/Case: {}}
)yaml"),
            R"text(flow.rules.yaml:2:25: warning: there are no rules for the root type 'Cas'; did you mean 'Case'?
    2 | Pertinent Roots: [Case, Cas, Library]
      |                         ^~~
flow.rules.yaml:2:30: warning: there are no rules for the root type 'Library'
    2 | Pertinent Roots: [Case, Cas, Library]
      |                              ^~~~~~~
)text");
}

TEST(Lint, ConditionsThatCanNeverHold) {
  EXPECT_EQ(linted(R"yaml(Rule Database: 1
Checks:
  relative: ${Motin} == 'x'
  never: false
  impossible: ${Motion} == 'Rotating' and ${Motion} == 'Resting'
  none: ${Motion} in ()
  always: true
Objects:
  /Case:
    Parameters:
Pertinent Roots: [Case]
)yaml"),
            R"text(flow.rules.yaml:3:13: warning: the rules define no parameter 'Motin'
    3 |   relative: ${Motin} == 'x'
      |             ^~~~~~~~
flow.rules.yaml:4:10: warning: this condition can never hold; correct it, or remove what depends on it
    4 |   never: false
      |          ^~~~~
flow.rules.yaml:5:15: warning: the rules define no parameter 'Motion'
    5 |   impossible: ${Motion} == 'Rotating' and ${Motion} == 'Resting'
      |               ^~~~~~~~~
flow.rules.yaml:5:15: warning: this condition can never hold; correct it, or remove what depends on it
    5 |   impossible: ${Motion} == 'Rotating' and ${Motion} == 'Resting'
      |               ^~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~
flow.rules.yaml:5:43: warning: the rules define no parameter 'Motion'
    5 |   impossible: ${Motion} == 'Rotating' and ${Motion} == 'Resting'
      |                                           ^~~~~~~~~
flow.rules.yaml:6:9: warning: the rules define no parameter 'Motion'
    6 |   none: ${Motion} in ()
      |         ^~~~~~~~~
flow.rules.yaml:6:9: warning: this condition can never hold; correct it, or remove what depends on it
    6 |   none: ${Motion} in ()
      |         ^~~~~~~~~~~~~~~
)text");
}

TEST(Lint, ADefaultOutsideItsFixedAllowedValues) {
  EXPECT_EQ(
      linted(R"yaml(Rule Database: 1
Objects:
  /Case:
    Parameters:
      Regime: {Parameter Type: String, Ordered Allowed String List: [Laminar, Turbulent], Unused Allowed String List: [Chaotic], Default Value: Turbulant}
      Picks: {Parameter Type: String List, Ordered Allowed String List: [a, b], Default Value: "a, c"}
Pertinent Roots: [Case]
)yaml"),
      R"text(flow.rules.yaml:5:145: warning: the default 'Turbulant' is not among the allowed values; did you mean 'Turbulent'?
    5 | ...ent], Unused Allowed String List: [Chaotic], Default Value: Turbulant}
      |                                                                ^~~~~~~~~
flow.rules.yaml:6:96: warning: the default 'c' is not among the allowed values; allowed are a, b
    6 |       Picks: {Parameter Type: String List, Ordered Allowed String List: [a, b], Default Value: "a, c"}
      |                                                                                                ^~~~~~
)text");
}

/// The column, counted in characters, of each occurrence of `what` in the last line of a text.
std::vector<std::size_t> columnsOf(std::string const& text, std::string const& what) {
  std::vector<std::size_t> columns;
  std::size_t column = 1;
  for (std::size_t at = text.rfind('\n') + 1; at < text.size(); ++at) {
    if (text.compare(at, what.size(), what) == 0) columns.push_back(column);
    if ((static_cast<unsigned char>(text[at]) & 0xC0U) != 0x80) ++column;
  }
  return columns;
}

/// The reported columns. Checks that each is the column of `what` in the part of the line that is shown.
std::vector<std::size_t> toldColumns(std::string const& text, std::string const& what) {
  std::vector<std::size_t> columns;
  for (Diagnostic const& one : lintText(text, "flow.rules.yaml").diagnostics) {
    columns.push_back(one.column);
    auto const shown = columnsOf(one.sourceLine, what);
    EXPECT_NE(std::find(shown.begin(), shown.end(), one.column - one.sourceColumn + 1), shown.end()) << format(one);
  }
  return columns;
}

TEST(Lint, PlacesInALineOfThousandsOfCharactersAreToldRight) {
  std::string text =
      "Rule Database: 1\nPertinent Roots: [Case]\nObjects: {/Case: {Parameters: {Größe: {Parameter Type: Real}";
  for (int i = 1000; i < 1400; ++i) text += ", Größe " + std::to_string(i) + ": {Parameter Type: Real, Slip: '€'}";
  text += "}}}";
  auto const columns = columnsOf(text, "Slip");
  ASSERT_EQ(columns.size(), 400U);
  EXPECT_EQ(toldColumns(text, "Slip"), columns);
}

TEST(Lint, PlacesInALongQuotedExpressionAreToldRight) {
  std::string text =
      "Rule Database: 1\nPertinent Roots: [Case]\nObjects: {/Case: {Parameters: {P: {Parameter Type: Real, Available: "
      "\"true";
  for (int i = 1000; i < 1200; ++i) text += " and ${Größe " + std::to_string(i) + "} != '\\u20ac'";
  text += "\"}}}}";
  auto const columns = columnsOf(text, "${");
  ASSERT_EQ(columns.size(), 200U);
  EXPECT_EQ(toldColumns(text, "${"), columns);
}

TEST(Lint, ValuesThatAParameterCanNeverHave) {
  EXPECT_EQ(
      linted(R"yaml(Rule Database: 1
Pertinent Roots: [Case]
Objects:
  /Case:
    Parameters:
      Regime: {Parameter Type: String, Ordered Allowed String List: [Laminar, Turbulent], Unused Allowed String List: [Chaotic]}
      Count: {Parameter Type: Integer}
      Flag: {Parameter Type: Logical}
    Children:
      Domain: {Coupled: yes}
      Boundary: {Singleton: yes, Coupled: yes}
  /Case/Boundary: {Parameters: {Kind: {Parameter Type: String}}}
  /Case/Domain:
    Parameters:
      B: {Parameter Type: Real, Available: "${../Regime} == 'Turbulet'"}
      C: {Parameter Type: Real, Available: "${../Regime} == 'Chaotic'"}
      D: {Parameter Type: Real, Available: "${../Regime} in ('Laminar', 'laminar')"}
      E: {Parameter Type: Real, Available: "${../Count} == 'many'"}
      F: {Parameter Type: Real, Available: "${../Flag} == 'perhaps'"}
      N: {Parameter Type: Real, Available: "${../Regime} == 5"}
)yaml"),
      R"text(flow.rules.yaml:15:61: warning: the parameter 'Regime' can never be 'Turbulet': it is not among its allowed values; did you mean 'Turbulent'?
   15 |       B: {Parameter Type: Real, Available: "${../Regime} == 'Turbulet'"}
      |                                                             ^~~~~~~~~~
flow.rules.yaml:16:61: warning: the parameter 'Regime' can never be 'Chaotic': it is known but never allowed
   16 |       C: {Parameter Type: Real, Available: "${../Regime} == 'Chaotic'"}
      |                                                             ^~~~~~~~~
flow.rules.yaml:17:61: warning: the parameter 'Regime' can never be 'laminar': it is not among its allowed values; did you mean 'Laminar'?
   17 |       D: {Parameter Type: Real, Available: "${../Regime} in ('Laminar', 'laminar')"}
      |                                                             ^~~~~~~~~~~~~~~~~~~~~~
flow.rules.yaml:18:60: warning: the parameter 'Count' can never be 'many': it is not a number
   18 |       E: {Parameter Type: Real, Available: "${../Count} == 'many'"}
      |                                                            ^~~~~~
flow.rules.yaml:19:59: warning: the parameter 'Flag' can never be 'perhaps': it is not a logical value
   19 |       F: {Parameter Type: Real, Available: "${../Flag} == 'perhaps'"}
      |                                                           ^~~~~~~~~
flow.rules.yaml:20:61: warning: the parameter 'Regime' can never be '5': it is not among its allowed values; allowed are Laminar, Turbulent
   20 |       N: {Parameter Type: Real, Available: "${../Regime} == 5"}
      |                                                             ^
)text");
}

TEST(Lint, WithErrorsThereAreNoWarningsOfWhatRulesMeanToEachOther) {
  EXPECT_EQ(linted("Rule Database: 1\nPertinent Roots: [Case]\nChecks: {never: 'false', a: 'exist(1)'}\n"),
            "flow.rules.yaml:3:30: error: unknown function 'exist'; did you mean 'exists'?\n"
            "    3 | Checks: {never: 'false', a: 'exist(1)'}\n"
            "      |                              ^~~~~\n");
}

}  // namespace
}  // namespace tarn::rules
