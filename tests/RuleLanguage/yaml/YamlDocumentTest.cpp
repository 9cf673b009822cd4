// Where faults are said to stand, however YAML writes the text that holds them, and what is said of what is no YAML.

#include <gmock/gmock.h>

#include "RuleLanguage/ExpressionTable.h"

namespace tarn::rules {
namespace {

using test::errorsOf;
using testing::HasSubstr;

TEST(PlaceInScalar, InAPlainScalar) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Checks:
  rotating: ${Motion} == exist(${A})
)yaml"),
            R"text(flow.rules.yaml:3:26: error: unknown function 'exist'; did you mean 'exists'?
    3 |   rotating: ${Motion} == exist(${A})
      |                          ^~~~~
)text");
}

TEST(PlaceInScalar, InSingleQuotesWhereAQuoteIsDoubled) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Checks:
  rotating: '${Motion} == ''x'' or exist(${A})'
)yaml"),
            R"text(flow.rules.yaml:3:36: error: unknown function 'exist'; did you mean 'exists'?
    3 |   rotating: '${Motion} == ''x'' or exist(${A})'
      |                                    ^~~~~
)text");
}

TEST(PlaceInScalar, InDoubleQuotesWithEscapes) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Checks:
  rotating: "${Motion} == \"x\" or \x41 or exist(${A})"
)yaml"),
            R"text(flow.rules.yaml:3:36: error: unknown name 'A'; a text stands in quotes, 'A', and a parameter in ${A}
    3 |   rotating: "${Motion} == \"x\" or \x41 or exist(${A})"
      |                                    ^~~~
)text");
}

TEST(PlaceInScalar, BehindEscapesOfSeveralBytes) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Checks:
  rotating: "'\u00e9\_\N\U0001F600' == 'é' or exist(${A})"
)yaml"),
            R"text(flow.rules.yaml:3:47: error: unknown function 'exist'; did you mean 'exists'?
    3 |   rotating: "'\u00e9\_\N\U0001F600' == 'é' or exist(${A})"
      |                                               ^~~~~
)text");
}

TEST(PlaceInScalar, InDoubleQuotesThatGoOnInTheNextLine) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Checks:
  rotating: "true and
    true or \
    exist(${A})"
)yaml"),
            R"text(flow.rules.yaml:5:5: error: unknown function 'exist'; did you mean 'exists'?
    5 |     exist(${A})"
      |     ^~~~~
)text");
}

TEST(PlaceInScalar, InSingleQuotesThatGoOnInTheNextLine) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Checks:
  rotating: 'true
    and ''a'' ==
    exist(1)'
)yaml"),
            R"text(flow.rules.yaml:5:5: error: unknown function 'exist'; did you mean 'exists'?
    5 |     exist(1)'
      |     ^~~~~
)text");
}

TEST(PlaceInScalar, InAPlainScalarOfSeveralLines) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Checks:
  rotating: ${Motion} == 'x'
    or ${Motion} == 'y'

    or exist(${A})
    and 5
)yaml"),
            R"text(flow.rules.yaml:6:8: error: unknown function 'exist'; did you mean 'exists'?
    6 |     or exist(${A})
      |        ^~~~~
flow.rules.yaml:7:9: error: a condition is needed here, not a number; compare it with something
    7 |     and 5
      |         ^
)text");
}

TEST(PlaceInScalar, InALiteralBlock) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Checks:
  rotating: |
    ${Motion} == 'x'
      or exist(${A})
)yaml"),
            R"text(flow.rules.yaml:5:10: error: unknown function 'exist'; did you mean 'exists'?
    5 |       or exist(${A})
      |          ^~~~~
)text");
}

TEST(PlaceInScalar, InALiteralBlockWithIndentationGiven) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Checks:
  rotating: |2-  # why

        true or
    exist(${A})
)yaml"),
            R"text(flow.rules.yaml:6:5: error: unknown function 'exist'; did you mean 'exists'?
    6 |     exist(${A})
      |     ^~~~~
)text");
}

TEST(PlaceInScalar, InAFoldedBlock) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Checks:
  rotating: >-
    ${Motion} == 'x'
    or exist(${A})

    or coun({B}) > 5
)yaml"),
            R"text(flow.rules.yaml:5:8: error: unknown function 'exist'; did you mean 'exists'?
    5 |     or exist(${A})
      |        ^~~~~
flow.rules.yaml:7:8: error: unknown function 'coun'; did you mean 'count'?
    7 |     or coun({B}) > 5
      |        ^~~~
)text");
}

TEST(PlaceInScalar, AtTheEndOfAPlainScalar) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Checks:
  rotating: true and
)yaml"),
            R"text(flow.rules.yaml:3:21: error: the expression ends where a value is missing
    3 |   rotating: true and
      |                     ^
)text");
}

TEST(PlaceInScalar, AtTheEndOfALiteralBlock) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Checks:
  rotating: |
    true and
  next: true
)yaml"),
            R"text(flow.rules.yaml:4:13: error: the expression ends where a value is missing
    4 |     true and
      |             ^
)text");
}

TEST(PlaceInScalar, InAFlowMap) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Objects: {/Case: {Parameters: {A: {Parameter Type: Real, Default Value Check List: [{When: "${A} = 5", Value: '= exist(1)'}]}}}}
)yaml"),
            R"text(flow.rules.yaml:2:98: error: '=' compares nothing; write '=='
    2 | ...rameter Type: Real, Default Value Check List: [{When: "${A} = 5", Value: '= exist(1)'}]}}}}
      |                                                                ^
flow.rules.yaml:2:114: error: unknown function 'exist'; did you mean 'exists'?
    2 | ...al, Default Value Check List: [{When: "${A} = 5", Value: '= exist(1)'}]}}}}
      |                                                                ^~~~~
)text");
}

TEST(PlaceInScalar, BehindCharactersOfSeveralBytes) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Checks:
  größe: ${Öl} == 'Größe' or exist(${A})
)yaml"),
            R"text(flow.rules.yaml:3:30: error: unknown function 'exist'; did you mean 'exists'?
    3 |   größe: ${Öl} == 'Größe' or exist(${A})
      |                              ^~~~~
)text");
}

TEST(PlaceInScalar, BehindAByteOrderMark) {
  EXPECT_EQ(errorsOf("\xEF\xBB\xBFRule Database: 1\nChecks:\n  a: exist(${A})\n"),
            R"text(flow.rules.yaml:3:6: error: unknown function 'exist'; did you mean 'exists'?
    3 |   a: exist(${A})
      |      ^~~~~
)text");
}

TEST(PlaceInScalar, WithCarriageReturnAndLineFeed) {
  EXPECT_EQ(errorsOf("Rule Database: 1\r\nChecks:\r\n  a: exist(${A})\r\n  b: true\r\n    or exist(${A})\r\n  c: |\r\n "
                     "   true\r\n    or exist(${A})\r\n\n"),
            R"text(flow.rules.yaml:3:6: error: unknown function 'exist'; did you mean 'exists'?
    3 |   a: exist(${A})
      |      ^~~~~
flow.rules.yaml:5:8: error: unknown function 'exist'; did you mean 'exists'?
    5 |     or exist(${A})
      |        ^~~~~
flow.rules.yaml:8:8: error: unknown function 'exist'; did you mean 'exists'?
    8 |     or exist(${A})
      |        ^~~~~
)text");
}

TEST(PlaceInScalar, WithCarriageReturnsAlone) {
  EXPECT_EQ(errorsOf("Rule Database: 1\rChecks:\r  a: exist(${A})\r  b: |\r    true\r    or exist(${A})\r\n"),
            R"text(flow.rules.yaml:3:6: error: unknown function 'exist'; did you mean 'exists'?
    3 |   a: exist(${A})
      |      ^~~~~
flow.rules.yaml:6:8: error: unknown function 'exist'; did you mean 'exists'?
    6 |     or exist(${A})
      |        ^~~~~
)text");
}

TEST(PlaceInScalar, BehindATabThatIsShownAsABlank) {
  EXPECT_EQ(errorsOf("Rule Database: 1\nChecks:\n  a:\texist(${A})\t# tab\n"),
            R"text(flow.rules.yaml:3:6: error: unknown function 'exist'; did you mean 'exists'?
    3 |   a: exist(${A}) # tab
      |      ^~~~~
)text");
}

TEST(PlaceInScalar, BehindAnAnchorAndATag) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Checks:
  a: &bad !expression exist(${A})
  b: &worse
    exist(${A})
  c: &block |
    exist(${A})
  d: *bad
)yaml"),
            R"text(flow.rules.yaml:3:23: error: unknown function 'exist'; did you mean 'exists'?
    3 |   a: &bad !expression exist(${A})
      |                       ^~~~~
flow.rules.yaml:5:5: error: unknown function 'exist'; did you mean 'exists'?
    5 |     exist(${A})
      |     ^~~~~
flow.rules.yaml:7:5: error: unknown function 'exist'; did you mean 'exists'?
    7 |     exist(${A})
      |     ^~~~~
)text");
}

TEST(PlaceInScalar, BehindTheSignOfAnExpression) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Lists:
  a: =  exist(1)
  b: '= ''x'' + exist(1)'
)yaml"),
            R"text(flow.rules.yaml:3:9: error: unknown function 'exist'; did you mean 'exists'?
    3 |   a: =  exist(1)
      |         ^~~~~
flow.rules.yaml:4:9: error: a list is needed here, not a text
    4 |   b: '= ''x'' + exist(1)'
      |         ^~~~~~~~~~~~~~~~
flow.rules.yaml:4:17: error: unknown function 'exist'; did you mean 'exists'?
    4 |   b: '= ''x'' + exist(1)'
      |                 ^~~~~
)text");
}

TEST(PlaceInScalar, InALongLineOfWhichAPartIsShown) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Checks:
  a: true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and exist(1) and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true
)yaml"),
            R"text(flow.rules.yaml:3:285: error: unknown function 'exist'; did you mean 'exists'?
    3 | ...e and true and true and true and true and true and true and exist(1) and true and true and true and true and true and tr...
      |                                                                ^~~~~
)text");
}

TEST(PlaceInScalar, InAVeryLongLine) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Checks:
  a: true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and exist(1) and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true
)yaml"),
            R"text(flow.rules.yaml:3:27015: error: unknown function 'exist'; did you mean 'exists'?
    3 | ...e and true and true and true and true and true and true and exist(1) and true and true and true and true and true and tr...
      |                                                                ^~~~~
)text");
}

TEST(PlaceInScalar, AtTheEndOfAVeryLongLine) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Checks:
  a: true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and true and exist(1)
)yaml"),
            R"text(flow.rules.yaml:3:27015: error: unknown function 'exist'; did you mean 'exists'?
    3 | ...e and true and true and true and true and true and true and exist(1)
      |                                                                ^~~~~
)text");
}

TEST(YamlDocument, ATabThatIndents) {
  EXPECT_EQ(
      errorsOf("Rule Database: 1\nChecks:\n\ta: true\n"),
      R"text(flow.rules.yaml:3:1: error: this is not YAML: found character that cannot start any token; tabs do not indent, and a value that begins with '@', '`' or '%' must be quoted
    3 |  a: true
      | ^
)text");
}

TEST(YamlDocument, AColonInAPlainScalar) {
  EXPECT_EQ(
      errorsOf(R"yaml(Rule Database: 1
Checks:
  a: ${A} == 'x: y'
)yaml"),
      R"text(flow.rules.yaml:3:16: error: this is not YAML: mapping values are not allowed in this context; check the indentation, and quote as a whole a value that begins with a quote, '{', '[' or '*', or that holds ': ' or ' #'
    3 |   a: ${A} == 'x: y'
      |                ^
)text");
}

TEST(YamlDocument, AnExpressionThatBeginsWithABrace) {
  EXPECT_EQ(
      errorsOf(R"yaml(Rule Database: 1
Checks:
  a: {A:*} == x
)yaml"),
      R"text(flow.rules.yaml:3:12: error: this is not YAML: did not find expected key; check the indentation, and quote as a whole a value that begins with a quote, '{', '[' or '*', or that holds ': ' or ' #'
    3 |   a: {A:*} == x
      |            ^
)text");
}

TEST(YamlDocument, AnExpressionThatBeginsWithAQuote) {
  EXPECT_EQ(
      errorsOf(R"yaml(Rule Database: 1
Checks:
  a: 'x' == ${A}
)yaml"),
      R"text(flow.rules.yaml:3:10: error: this is not YAML: did not find expected key; check the indentation, and quote as a whole a value that begins with a quote, '{', '[' or '*', or that holds ': ' or ' #'
    3 |   a: 'x' == ${A}
      |          ^
)text");
}

TEST(YamlDocument, AnExpressionThatBeginsWithAnAtSign) {
  EXPECT_EQ(
      errorsOf(R"yaml(Rule Database: 1
Checks:
  a: @x
)yaml"),
      R"text(flow.rules.yaml:3:6: error: this is not YAML: found character that cannot start any token; tabs do not indent, and a value that begins with '@', '`' or '%' must be quoted
    3 |   a: @x
      |      ^
)text");
}

TEST(YamlDocument, AnExpressionThatBeginsWithAPercentSign) {
  EXPECT_EQ(
      errorsOf(R"yaml(Rule Database: 1
Checks:
  a: %x
)yaml"),
      R"text(flow.rules.yaml:3:6: error: this is not YAML: found character that cannot start any token; tabs do not indent, and a value that begins with '@', '`' or '%' must be quoted
    3 |   a: %x
      |      ^
)text");
}

TEST(YamlDocument, AnExpressionThatBeginsWithAStar) {
  EXPECT_EQ(
      errorsOf(R"yaml(Rule Database: 1
Checks:
  a: *x
)yaml"),
      R"text(flow.rules.yaml:3:6: error: there is no anchor '&x' before this; a value that begins with '*' must be quoted
    3 |   a: *x
      |      ^~
)text");
}

TEST(YamlDocument, ACommaInAnExpressionInAFlowMap) {
  EXPECT_EQ(
      errorsOf(R"yaml(Rule Database: 1
Objects: {/Case: {Parameters: {A: {Available: count({B:*}, true) > 0}}}}
)yaml"),
      R"text(flow.rules.yaml:2:53: error: this is not YAML: did not find expected ',' or '}'; check the indentation, and quote as a whole a value that begins with a quote, '{', '[' or '*', or that holds ': ' or ' #'
    2 | Objects: {/Case: {Parameters: {A: {Available: count({B:*}, true) > 0}}}}
      |                                                     ^
)text");
}

TEST(YamlDocument, AListThatIsNotClosed) {
  EXPECT_EQ(
      errorsOf(R"yaml(Rule Database: 1
Lists:
  a: [x, y
Checks: {}
)yaml"),
      R"text(flow.rules.yaml:4:7: error: this is not YAML: did not find expected ',' or ']'; check the indentation, and quote as a whole a value that begins with a quote, '{', '[' or '*', or that holds ': ' or ' #'
    4 | Checks: {}
      |       ^
flow.rules.yaml:3:6: note: while parsing a flow sequence that begins here
    3 |   a: [x, y
      |      ^
)text");
}

TEST(YamlDocument, AQuoteThatIsNotClosed) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Lists:
  a: 'x
)yaml"),
            R"text(flow.rules.yaml:4:1: error: this is not YAML: found unexpected end of stream
    4 | 
      | ^
flow.rules.yaml:3:6: note: while scanning a quoted scalar that begins here
    3 |   a: 'x
      |      ^
)text");
}

TEST(YamlDocument, AnEscapeThatIsNone) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Lists:
  a: ["\q"]
)yaml"),
            R"text(flow.rules.yaml:3:8: error: this is not YAML: found unknown escape character
    3 |   a: ["\q"]
      |        ^
)text");
}

TEST(YamlDocument, AKeyThatIsIndentedWrongly) {
  EXPECT_EQ(
      errorsOf(R"yaml(Rule Database: 1
Checks:
  a: true
 b: true
)yaml"),
      R"text(flow.rules.yaml:4:2: error: this is not YAML: did not find expected key; check the indentation, and quote as a whole a value that begins with a quote, '{', '[' or '*', or that holds ': ' or ' #'
    4 |  b: true
      |  ^
flow.rules.yaml:1:1: note: while parsing a block mapping that begins here
    1 | Rule Database: 1
      | ^
)text");
}

TEST(YamlDocument, AnUnknownDirective) {
  EXPECT_EQ(errorsOf(R"yaml(%FOO
Rule Database: 1
)yaml"),
            R"text(flow.rules.yaml:1:5: error: this is not YAML: found unknown directive name
    1 | %FOO
      |     ^
)text");
}

TEST(YamlDocument, ASecondDocument) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
---
Rule Database: 1
)yaml"),
            R"text(flow.rules.yaml:2:1: error: a rule file is one document; remove what follows '---'
    2 | ---
      | ^~~
)text");
}

TEST(YamlDocument, AnAliasWithinWhatItStandsFor) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Lists: &all
  a: *all
)yaml"),
            R"text(flow.rules.yaml:3:6: error: the alias lies within what it stands for
    3 |   a: *all
      |      ^~~~
)text");
}

TEST(YamlDocument, AnAliasInTheListThatItStandsFor) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Lists:
  a: &list [*list]
)yaml"),
            R"text(flow.rules.yaml:3:13: error: the alias lies within what it stands for
    3 |   a: &list [*list]
      |             ^~~~~
)text");
}

TEST(YamlDocument, AnAliasBeforeItsAnchor) {
  EXPECT_EQ(
      errorsOf(R"yaml(Rule Database: 1
Lists:
  a: *fluids
  b: &fluids [x]
)yaml"),
      R"text(flow.rules.yaml:3:6: error: there is no anchor '&fluids' before this; a value that begins with '*' must be quoted
    3 |   a: *fluids
      |      ^~~~~~~
)text");
}

TEST(YamlDocument, ADocumentMarkDirectiveAndTagsAreNoFault) {
  EXPECT_EQ(errorsOf(R"yaml(%YAML 1.2
---
Rule Database: !!int 1
Lists: {a: !mine [x]}
...
)yaml"),
            "");
}

TEST(YamlDocument, AFaultInAPartThatAliasesRepeatIsToldOnce) {
  EXPECT_EQ(
      errorsOf(R"yaml(Rule Database: 1
Objects:
  /A: {Parameters: &p {X: {Parameter Type: String, Default Value Check List: [{}]}}}
  /B: {Parameters: *p}
)yaml"),
      R"text(flow.rules.yaml:3:79: error: the item has no 'When'; the value without a condition is the default value
    3 |   /A: {Parameters: &p {X: {Parameter Type: String, Default Value Check List: [{}]}}}
      |                                                                               ^~
flow.rules.yaml:3:79: error: the item has no 'Value'
    3 |   /A: {Parameters: &p {X: {Parameter Type: String, Default Value Check List: [{}]}}}
      |                                                                               ^~
)text");
}

std::string repeated(std::string const& text, int count) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

TEST(YamlDocument, ACharacterThatUnicodeEndsALineWithEndsOneHereAsInTheYamlLibrary) {
  EXPECT_EQ(errorsOf("Rule Database: 1 # a\xE2\x80\xA8# b\xC2\x85# c\xE2\x80\xA9"
                     "Checks:\n  a: exist(1)\n"),
            "flow.rules.yaml:5:6: error: unknown function 'exist'; did you mean 'exists'?\n"
            "    5 |   a: exist(1)\n"
            "      |      ^~~~~\n");
}

TEST(YamlDocument, ANulByteIsNoText) {
  EXPECT_EQ(
      errorsOf(std::string("Rule Database: 1\nChe\0cks: {}\n", 29)),
      "flow.rules.yaml:2:4: error: control characters are not allowed; a rule file is plain text in UTF-8 without "
      "control characters\n"
      "    2 | Che cks: {}\n"
      "      |    ^\n");
}

TEST(YamlDocument, WhatIsNoUtf8IsRefusedAtItsPlace) {
  EXPECT_EQ(
      errorsOf("Rule Database: 1\nLists: {a: [b\xFF]}\n"),
      "flow.rules.yaml:2:14: error: invalid leading UTF-8 octet; a rule file is plain text in UTF-8 without control "
      "characters\n"
      "    2 | Lists: {a: [b\xFF]}\n"
      "      |              ^\n");
  EXPECT_THAT(errorsOf("Rule Database: 1\nLists: {a: [b\xC3]}\n"),
              HasSubstr("2:15: error: invalid trailing UTF-8 octet"));
  EXPECT_THAT(errorsOf("Rule Database: 1\nLists: {a: [b\xED\xA0\x80]}\n"), HasSubstr("2:14: error: "));
}

TEST(YamlDocument, NestingIsLimitedInFlowAndInBlockForm) {
  std::string const message = "this is nested deeper than 64 levels, which no rule file needs";
  EXPECT_THAT(errorsOf("Rule Database: 1\nLists: " + repeated("[", 100'000)), HasSubstr(":2:71: error: " + message));
  EXPECT_THAT(errorsOf("Rule Database: 1\nLists: " + repeated("{a: ", 100'000)), HasSubstr(message));
  EXPECT_THAT(errorsOf("Rule Database: 1\nLists:\n  " + repeated("- ", 100'000) + "a\n"), HasSubstr(message));
  EXPECT_THAT(errorsOf("Rule Database: 1\nLists:\n  " + repeated("? ", 100'000) + "a\n"), HasSubstr(message));
  EXPECT_EQ(errorsOf("Rule Database: 1\nLists: {a: [[" + repeated("[", 60) + repeated("]", 60) + "]]}\n"),
            "flow.rules.yaml:2:13: error: an item of this list is a single text, not a list\n"
            "    2 | Lists: {a: [[" +
                repeated("[", 60) + repeated("]", 47) +
                "...\n"
                "      |             ^" +
                repeated("~", 107) + "\n");
}

TEST(YamlDocument, AliasesThatMultiplyAreRefusedInShortTime) {
  std::string file = "Rule Database: 1\nx0: &x0 [a, a, a, a, a, a, a, a, a, a]\n";
  for (int i = 1; i < 60; ++i) {
    std::string const below = "*x" + std::to_string(i - 1);
    file += "x" + std::to_string(i) + ": &x" + std::to_string(i) + " [" + below + repeated(", " + below, 9) + "]\n";
  }
  EXPECT_EQ(errorsOf(file),
            "flow.rules.yaml:9:15: error: with its aliases written out the file has more than 20000000 YAML nodes\n"
            "    9 | x7: &x7 [*x6, *x6, *x6, *x6, *x6, *x6, *x6, *x6, *x6, *x6]\n"
            "      |               ^\n");
}

TEST(YamlDocument, TheNumberOfNodesIsLimited) {
  LoadLimits limits;
  limits.yamlNodes = 10;
  EXPECT_EQ(errorsOf("Rule Database: 1\nLists: {a: [b, c, d]}\n", limits), "");
  EXPECT_THAT(errorsOf("Rule Database: 1\nLists: {a: [b, c, d, e, f]}\n", limits),
              HasSubstr("error: the file has more than 10 YAML nodes; divide it"));
}

}  // namespace
}  // namespace tarn::rules
