// Every warning of the linter, word for word, and that sound rules give none; the golden texts were read line by line
// when they were taken.

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "RuleLanguage/ExpressionTable.h"

namespace tarn::rules {
namespace {

/// The diagnostics of one file as people read them.
std::string linted(std::string const& text) {
  return format(lintText(text, "flow.rules.yaml").diagnostics);
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
)yaml"),
            R"text(flow.rules.yaml:3:13: warning: no rule knows a parameter 'Motin'
    3 |   relative: ${Motin} == 'x'
      |             ^~~~~~~~
flow.rules.yaml:4:10: warning: this condition can never hold
    4 |   never: false
      |          ^~~~~
flow.rules.yaml:5:15: warning: no rule knows a parameter 'Motion'
    5 |   impossible: ${Motion} == 'Rotating' and ${Motion} == 'Resting'
      |               ^~~~~~~~~
flow.rules.yaml:5:15: warning: this condition can never hold
    5 |   impossible: ${Motion} == 'Rotating' and ${Motion} == 'Resting'
      |               ^~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~
flow.rules.yaml:5:43: warning: no rule knows a parameter 'Motion'
    5 |   impossible: ${Motion} == 'Rotating' and ${Motion} == 'Resting'
      |                                           ^~~~~~~~~
flow.rules.yaml:6:9: warning: no rule knows a parameter 'Motion'
    6 |   none: ${Motion} in ()
      |         ^~~~~~~~~
flow.rules.yaml:6:9: warning: this condition can never hold
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
)yaml"),
      R"text(flow.rules.yaml:5:145: warning: the default 'Turbulant' is not among the allowed values; did you mean 'Turbulent'?
    5 | ...ent], Unused Allowed String List: [Chaotic], Default Value: Turbulant}
      |                                                                ^~~~~~~~~
flow.rules.yaml:6:96: warning: the default 'c' is not among the allowed values
    6 |       Picks: {Parameter Type: String List, Ordered Allowed String List: [a, b], Default Value: "a, c"}
      |                                                                                                ^~~~~~
)text");
}

TEST(Lint, ADefaultThatIsNotOfItsType) {
  EXPECT_EQ(linted(R"yaml(Rule Database: 1
Objects:
  /Case:
    Parameters:
      Count: {Parameter Type: Integer, Default Value: 1.5}
      Flag: {Parameter Type: Logical, Default Value: perhaps}
      Flags: {Parameter Type: Logical List, Default Value: "yes, perhaps"}
)yaml"),
            R"text(flow.rules.yaml:5:55: warning: the default '1.5' is no whole number
    5 |       Count: {Parameter Type: Integer, Default Value: 1.5}
      |                                                       ^~~
flow.rules.yaml:6:54: warning: the default 'perhaps' is no logical value
    6 |       Flag: {Parameter Type: Logical, Default Value: perhaps}
      |                                                      ^~~~~~~
flow.rules.yaml:7:60: warning: the default 'perhaps' is no logical value
    7 |       Flags: {Parameter Type: Logical List, Default Value: "yes, perhaps"}
      |                                                            ^~~~~~~~~~~~~~
)text");
}

TEST(Lint, BoundsAndDefaultsBeyondThem) {
  EXPECT_EQ(linted(R"yaml(Rule Database: 1
Objects:
  /Case:
    Parameters:
      Size: {Parameter Type: Real, Lower Bound: "1 [m]", Upper Bound: "5 [m]", Default Value: "7 [m]"}
      Small: {Parameter Type: Real, Lower Bound: 1, Default Value: 0}
      Turned: {Parameter Type: Real, Lower Bound: 5, Upper Bound: 1}
      Odd: {Parameter Type: Real, Lower Bound: a, Default Value: b}
)yaml"),
            R"text(flow.rules.yaml:5:95: warning: the default '7 [m]' is above the upper bound 5 [m]
    5 |       Size: {Parameter Type: Real, Lower Bound: "1 [m]", Upper Bound: "5 [m]", Default Value: "7 [m]"}
      |                                                                                               ^~~~~~~
flow.rules.yaml:6:68: warning: the default '0' is below the lower bound 1
    6 |       Small: {Parameter Type: Real, Lower Bound: 1, Default Value: 0}
      |                                                                    ^
flow.rules.yaml:7:67: warning: the upper bound 1 is below the lower bound 5
    7 |       Turned: {Parameter Type: Real, Lower Bound: 5, Upper Bound: 1}
      |                                                                   ^
flow.rules.yaml:8:48: warning: 'a' is no number
    8 |       Odd: {Parameter Type: Real, Lower Bound: a, Default Value: b}
      |                                                ^
flow.rules.yaml:8:66: warning: the default 'b' is no number
    8 |       Odd: {Parameter Type: Real, Lower Bound: a, Default Value: b}
      |                                                                  ^
)text");
}

TEST(Lint, BoundsAndQuantityTypesWithoutEffect) {
  EXPECT_EQ(linted(R"yaml(Rule Database: 1
Quantity Types: {Speed: {Units: [m/s]}}
Objects:
  /Case:
    Parameters:
      Text: {Parameter Type: String, Lower Bound: 1, Upper Bound: "= 1", Quantity Type: Spead}
      Fast: {Parameter Type: Integer, Quantity Type: Speed}
)yaml"),
            R"text(flow.rules.yaml:6:51: warning: a bound has no effect on a parameter of type String
    6 |       Text: {Parameter Type: String, Lower Bound: 1, Upper Bound: "= 1", Quantity Type: Spead}
      |                                                   ^
flow.rules.yaml:6:67: warning: a bound has no effect on a parameter of type String
    6 |       Text: {Parameter Type: String, Lower Bound: 1, Upper Bound: "= 1", Quantity Type: Spead}
      |                                                                   ^~~~~
flow.rules.yaml:6:89: warning: there is no quantity type 'Spead' under Quantity Types; did you mean 'Speed'?
    6 |       Text: {Parameter Type: String, Lower Bound: 1, Upper Bound: "= 1", Quantity Type: Spead}
      |                                                                                         ^~~~~
flow.rules.yaml:6:89: warning: a quantity type has no effect on a parameter of type String
    6 |       Text: {Parameter Type: String, Lower Bound: 1, Upper Bound: "= 1", Quantity Type: Spead}
      |                                                                                         ^~~~~
flow.rules.yaml:7:54: warning: a quantity type has no effect on a parameter of type Integer
    7 |       Fast: {Parameter Type: Integer, Quantity Type: Speed}
      |                                                      ^~~~~
)text");
}

TEST(Lint, AttributesWithoutEffectWhereNoValuesAreAllowed) {
  EXPECT_EQ(linted(R"yaml(Rule Database: 1
Objects:
  /Case:
    Parameters:
      Free: {Parameter Type: String, Allows Any Value: yes, Available With No Allowed Values: yes, Fallback To Blank Default: yes, Unused Allowed String List: [a], Allowed String List Checks: {a: "true"}, Subset Allowed String List: [a], Beta Values: {a: b}}
      FreeList: {Parameter Type: String List, Complete List Required: yes, Subset Value List Source: "('a',)"}
)yaml"),
            R"text(flow.rules.yaml:5:56: warning: Allows Any Value has no effect without allowed values
    5 |       Free: {Parameter Type: String, Allows Any Value: yes, Available With No Allowed Values: yes, Fallback To Blank Def...
      |                                                        ^~~
flow.rules.yaml:5:95: warning: Available With No Allowed Values has no effect without allowed values
    5 | ...g, Allows Any Value: yes, Available With No Allowed Values: yes, Fallback To Blank Default: yes, Unused Allowed String L...
      |                                                                ^~~
flow.rules.yaml:5:127: warning: Fallback To Blank Default has no effect without allowed values
    5 | ...ble With No Allowed Values: yes, Fallback To Blank Default: yes, Unused Allowed String List: [a], Allowed String List Ch...
      |                                                                ^~~
flow.rules.yaml:5:160: warning: Unused Allowed String List has no effect without allowed values
    5 | ...Fallback To Blank Default: yes, Unused Allowed String List: [a], Allowed String List Checks: {a: "true"}, Subset Allowed...
      |                                                                ^~~
flow.rules.yaml:5:193: warning: Allowed String List Checks has no effect without allowed values
    5 | ...nused Allowed String List: [a], Allowed String List Checks: {a: "true"}, Subset Allowed String List: [a], Beta Values: {...
      |                                                                ^~~~~~~~~~~
flow.rules.yaml:5:234: warning: Subset Allowed String List has no effect without allowed values
    5 | ...tring List Checks: {a: "true"}, Subset Allowed String List: [a], Beta Values: {a: b}}
      |                                                                ^~~
flow.rules.yaml:5:252: warning: Beta Values has no effect without allowed values
    5 | ... {a: "true"}, Subset Allowed String List: [a], Beta Values: {a: b}}
      |                                                                ^~~~~~
flow.rules.yaml:6:71: warning: Complete List Required has no effect without allowed values
    6 |       FreeList: {Parameter Type: String List, Complete List Required: yes, Subset Value List Source: "('a',)"}
      |                                                                       ^~~
flow.rules.yaml:6:102: warning: Subset Value List Source has no effect without allowed values
    6 |       FreeList: {Parameter Type: String List, Complete List Required: yes, Subset Value List Source: "('a',)"}
      |                                                                                                      ^~~~~~~~
)text");
}

TEST(Lint, KeysThatAreNoAllowedValues) {
  EXPECT_EQ(linted(R"yaml(Rule Database: 1
Objects:
  /Case:
    Parameters:
      Checked: {Parameter Type: String, Ordered Allowed String List: [Water, Air], Allowed String List Checks: {Watr: "true"}, Beta Values: {Oil: new}}
)yaml"),
            R"text(flow.rules.yaml:5:113: warning: 'Watr' is not among the allowed values; did you mean 'Water'?
    5 | ...wed String List: [Water, Air], Allowed String List Checks: {Watr: "true"}, Beta Values: {Oil: new}}
      |                                                                ^~~~
flow.rules.yaml:5:142: warning: 'Oil' is not among the allowed values
    5 | ..., Allowed String List Checks: {Watr: "true"}, Beta Values: {Oil: new}}
      |                                                                ^~~
)text");
}

TEST(Lint, ContextsWithoutAContextRule) {
  EXPECT_EQ(linted(R"yaml(Rule Database: 1
Objects:
  /Case:
    Parameters:
      Branch: {Parameter Type: Real, Context: x}
    Children:
      Domain: {Context: x}
  /Case/Domain: {}
)yaml"),
            R"text(flow.rules.yaml:5:47: warning: no context rule stands before this parameter, so it is never live
    5 |       Branch: {Parameter Type: Real, Context: x}
      |                                               ^
flow.rules.yaml:7:25: warning: the object has no context rule, so this child is never live
    7 |       Domain: {Context: x}
      |                         ^
)text");
}

TEST(Lint, ContextsThatNoContextRuleCanHave) {
  EXPECT_EQ(linted(R"yaml(Rule Database: 1
Objects:
  /Case:
    Parameters:
      Motion: {Parameter Type: String, Context Rule: yes, Ordered Allowed String List: [Rotating, Resting]}
      Speed: {Parameter Type: Real, Context: [Rotating, Restin]}
      Axis: {Parameter Type: String, Context: ['']}
)yaml"),
            R"text(flow.rules.yaml:6:46: warning: no context rule can have the value 'Restin'; did you mean 'Resting'?
    6 |       Speed: {Parameter Type: Real, Context: [Rotating, Restin]}
      |                                              ^~~~~~~~~~~~~~~~~~
)text");
}

/// The column, counted in characters, of each place in the last line of a text where `what` stands.
std::vector<std::size_t> columnsOf(std::string const& text, std::string const& what) {
  std::vector<std::size_t> columns;
  std::size_t column = 1;
  for (std::size_t at = text.rfind('\n') + 1; at < text.size(); ++at) {
    if (text.compare(at, what.size(), what) == 0) columns.push_back(column);
    if ((static_cast<unsigned char>(text[at]) & 0xC0U) != 0x80) ++column;
  }
  return columns;
}

/// The columns that are told, each seen to be that of `what` in the part of the line that is shown.
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
  std::string text = "Rule Database: 1\nObjects: {/Case: {Parameters: {Größe: {Parameter Type: Real}";
  for (int i = 1000; i < 1400; ++i) text += ", Größe " + std::to_string(i) + ": {Parameter Type: Real, Slip: '€'}";
  text += "}}}";
  auto const columns = columnsOf(text, "Slip");
  ASSERT_EQ(columns.size(), 400U);
  EXPECT_EQ(toldColumns(text, "Slip"), columns);
}

TEST(Lint, PlacesInALongQuotedExpressionAreToldRight) {
  std::string text = "Rule Database: 1\nObjects: {/Case: {Parameters: {P: {Parameter Type: Real, Available: \"true";
  for (int i = 1000; i < 1200; ++i) text += " and ${Größe " + std::to_string(i) + "} != '\\u20ac'";
  text += "\"}}}}";
  auto const columns = columnsOf(text, "${");
  ASSERT_EQ(columns.size(), 200U);
  EXPECT_EQ(toldColumns(text, "${"), columns);
}

TEST(Lint, NamesThatNoObjectCanHaveOrKeep) {
  EXPECT_EQ(linted(R"yaml(Rule Database: 1
Objects:
  /Case:
    Parameters:
      Inlets: {Parameter Type: String List}
    Children:
      Inlet: {Required: yes, Allowed Names: [main, '', hot/cold, 'hot:1', Inlet]}
      Outlet: {Allowed Names: [{Value: hot/cold, When: "${Inlets} != ''"}, {Value: "= 'a' + '/b'"}, {Value: Outlet}]}
      Wall: {Required: yes, Default Names: [Wall, wall]}
      Fan: {Required: yes, Allowed Names: "= ${Inlets}"}
      Solver: {Required: yes, Singleton: yes}
  /Case/Inlet: {}
  /Case/Outlet: {}
  /Case/Wall: {}
  /Case/Fan: {}
  /Case/Solver: {}
)yaml"),
            R"text(flow.rules.yaml:7:52: warning: no object can have this name: the empty text is none
    7 |       Inlet: {Required: yes, Allowed Names: [main, '', hot/cold, 'hot:1', Inlet]}
      |                                                    ^~
flow.rules.yaml:7:56: warning: no object can have the name 'hot/cold': names hold neither '/' nor ':'
    7 |       Inlet: {Required: yes, Allowed Names: [main, '', hot/cold, 'hot:1', Inlet]}
      |                                                        ^~~~~~~~
flow.rules.yaml:7:66: warning: no object can have the name 'hot:1': names hold neither '/' nor ':'
    7 |       Inlet: {Required: yes, Allowed Names: [main, '', hot/cold, 'hot:1', Inlet]}
      |                                                                  ^~~~~~~
flow.rules.yaml:7:75: warning: an object of the type 'Inlet' with this name is printed, and read again, as one without a name
    7 |       Inlet: {Required: yes, Allowed Names: [main, '', hot/cold, 'hot:1', Inlet]}
      |                                                                           ^~~~~
flow.rules.yaml:8:40: warning: no object can have the name 'hot/cold': names hold neither '/' nor ':'
    8 |       Outlet: {Allowed Names: [{Value: hot/cold, When: "${Inlets} != ''"}, {Value: "= 'a' + '/b'"}, {Value: Outlet}]}
      |                                        ^~~~~~~~
flow.rules.yaml:8:109: warning: an object of the type 'Outlet' with this name is printed, and read again, as one without a name
    8 |       Outlet: {Allowed Names: [{Value: hot/cold, When: "${Inlets} != ''"}, {Value: "= 'a' + '/b'"}, {Value: Outlet}]}
      |                                                                                                             ^~~~~~
flow.rules.yaml:9:45: warning: an object of the type 'Wall' with this name is printed, and read again, as one without a name
    9 |       Wall: {Required: yes, Default Names: [Wall, wall]}
      |                                             ^~~~
)text");
}

TEST(Lint, ChildrenWithoutRulesAndNamesWithoutEffect) {
  EXPECT_EQ(
      linted(R"yaml(Rule Database: 1
Objects:
  /Case:
    Children:
      Boundary: {Singleton: yes, Allowed Names: [a], Default Names: [b]}
      Domain: {Default Names: [a]}
      Monitor: {Required: yes, Allowed Names: [a], Default Names: [b]}
  /Case/Domain: {}
  /Case/Monitor: {}
  /Case/Domian: {}
)yaml"),
      R"text(flow.rules.yaml:5:7: warning: there is no entry /Case/Boundary under Objects, so nothing in such a child is known
    5 |       Boundary: {Singleton: yes, Allowed Names: [a], Default Names: [b]}
      |       ^~~~~~~~
flow.rules.yaml:5:49: warning: Allowed Names gives names, but a singleton has none
    5 |       Boundary: {Singleton: yes, Allowed Names: [a], Default Names: [b]}
      |                                                 ^~~
flow.rules.yaml:5:69: warning: Default Names gives names, but a singleton has none
    5 |       Boundary: {Singleton: yes, Allowed Names: [a], Default Names: [b]}
      |                                                                     ^~~
flow.rules.yaml:6:31: warning: Default Names has no effect on a child that is not required
    6 |       Domain: {Default Names: [a]}
      |                               ^~~
flow.rules.yaml:7:67: warning: Default Names has no effect beside Allowed Names
    7 |       Monitor: {Required: yes, Allowed Names: [a], Default Names: [b]}
      |                                                                   ^~~
flow.rules.yaml:10:3: warning: no child rule leads to objects of this type, so nothing of this entry is ever looked at; did you mean 'Domain'?
   10 |   /Case/Domian: {}
      |   ^~~~~~~~~~~~
)text");
}

TEST(Lint, ParametersThatNoRuleKnows) {
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
      Domain: {}
      Boundary: {Singleton: yes}
  /Case/Boundary: {Parameters: {Kind: {Parameter Type: String}}}
  /Case/Domain:
    Parameters:
      A: {Parameter Type: Real, Available: "${Kund} == 'x'"}
      Kind: {Parameter Type: String}
      P: {Parameter Type: Real, Available: "${/Title} == 'x' or ${../Regme} == 'x'"}
)yaml"),
      R"text(flow.rules.yaml:15:45: warning: no rule knows a parameter 'Kund' of /Case/Domain; did you mean 'Kind'?
   15 |       A: {Parameter Type: Real, Available: "${Kund} == 'x'"}
      |                                             ^~~~~~~
flow.rules.yaml:17:45: warning: no rule knows a parameter 'Title'
   17 |       P: {Parameter Type: Real, Available: "${/Title} == 'x' or ${../Regme} == 'x'"}
      |                                             ^~~~~~~~~
flow.rules.yaml:17:65: warning: no rule knows a parameter 'Regme' of /Case; did you mean 'Regime'?
   17 |       P: {Parameter Type: Real, Available: "${/Title} == 'x' or ${../Regme} == 'x'"}
      |                                                                 ^~~~~~~~~~~
)text");
}

TEST(Lint, PathsThatNoRuleKnows) {
  EXPECT_EQ(linted(R"yaml(Rule Database: 1
Pertinent Roots: [Case]
Objects:
  /Case:
    Parameters:
      Regime: {Parameter Type: String, Ordered Allowed String List: [Laminar, Turbulent], Unused Allowed String List: [Chaotic]}
      Count: {Parameter Type: Integer}
      Flag: {Parameter Type: Logical}
    Children:
      Domain: {}
      Boundary: {Singleton: yes}
  /Case/Boundary: {Parameters: {Kind: {Parameter Type: String}}}
  /Case/Domain:
    Parameters:
      G: {Parameter Type: Real, Available: "exists({/Case/Domian:*})"}
      H: {Parameter Type: Real, Available: "exists({^Cse/Domain:*})"}
      M: {Parameter Type: Real, Available: "any({Wall:*}, ${Kind} == 'x')"}
)yaml"),
            R"text(flow.rules.yaml:15:52: warning: no rule knows an object at this path; did you mean 'Domain'?
   15 |       G: {Parameter Type: Real, Available: "exists({/Case/Domian:*})"}
      |                                                    ^~~~~~~~~~~~~~~~
flow.rules.yaml:16:52: warning: no rule knows an object at this path
   16 |       H: {Parameter Type: Real, Available: "exists({^Cse/Domain:*})"}
      |                                                    ^~~~~~~~~~~~~~~
flow.rules.yaml:17:49: warning: no rule knows an object at this path
   17 |       M: {Parameter Type: Real, Available: "any({Wall:*}, ${Kind} == 'x')"}
      |                                                 ^~~~~~~~
flow.rules.yaml:17:59: warning: no rule knows an object at this path
   17 |       M: {Parameter Type: Real, Available: "any({Wall:*}, ${Kind} == 'x')"}
      |                                                           ^~~~~~~
)text");
}

TEST(Lint, APathThroughAnyChildIsKnownWhenOneOfThemHasTheRest) {
  EXPECT_EQ(linted(R"yaml(Rule Database: 1
Pertinent Roots: [Case]
Objects:
  /Case:
    Parameters:
      Title: {Parameter Type: String, Available: "exists({*/Boundary:*})"}
      Notes: {Parameter Type: String, Available: "exists({*/Wall:*})"}
    Children:
      Domain: {}
      Solver: {Singleton: yes}
  /Case/Domain:
    Children: {Boundary: {}}
  /Case/Domain/Boundary: {}
  /Case/Solver: {}
)yaml"),
            R"text(flow.rules.yaml:7:58: warning: no rule knows an object at this path
    7 |       Notes: {Parameter Type: String, Available: "exists({*/Wall:*})"}
      |                                                          ^~~~~~~~~~
)text");
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
      Domain: {}
      Boundary: {Singleton: yes}
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
flow.rules.yaml:18:60: warning: the parameter 'Count' can never be 'many': it is no number
   18 |       E: {Parameter Type: Real, Available: "${../Count} == 'many'"}
      |                                                            ^~~~~~
flow.rules.yaml:19:59: warning: the parameter 'Flag' can never be 'perhaps': it is no logical value
   19 |       F: {Parameter Type: Real, Available: "${../Flag} == 'perhaps'"}
      |                                                           ^~~~~~~~~
flow.rules.yaml:20:61: warning: the parameter 'Regime' can never be '5': it is not among its allowed values
   20 |       N: {Parameter Type: Real, Available: "${../Regime} == 5"}
      |                                                             ^
)text");
}

TEST(Lint, WhatIsDecidedLaterInTheSameWalk) {
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
      Domain: {}
      Boundary: {Singleton: yes}
  /Case/Boundary: {Parameters: {Kind: {Parameter Type: String}}}
  /Case/Domain:
    Parameters:
      I: {Parameter Type: Real, Available: "${J} > 5"}
      J: {Parameter Type: Real, Available: "${J} > 5"}
      O: {Parameter Type: Real, Available: "exists({../Boundary})"}
)yaml"),
      R"text(flow.rules.yaml:15:45: warning: the value of 'J' is decided later in the same walk, so this reads what it was before the edit
   15 |       I: {Parameter Type: Real, Available: "${J} > 5"}
      |                                             ^~~~
flow.rules.yaml:16:45: warning: the availability of 'J' hangs on its own value
   16 |       J: {Parameter Type: Real, Available: "${J} > 5"}
      |                                             ^~~~
flow.rules.yaml:17:52: warning: the objects of type 'Boundary' are decided later in the same walk, so this sees what was there before the edit
   17 |       O: {Parameter Type: Real, Available: "exists({../Boundary})"}
      |                                                    ^~~~~~~~~~~~~
)text");
}

TEST(Lint, ContradictionsInACondition) {
  EXPECT_EQ(linted(R"yaml(Rule Database: 1
Pertinent Roots: [Case]
Objects:
  /Case:
    Parameters:
      Regime: {Parameter Type: String, Ordered Allowed String List: [Laminar, Turbulent], Unused Allowed String List: [Chaotic]}
      Count: {Parameter Type: Integer}
      Flag: {Parameter Type: Logical}
    Children:
      Domain: {}
      Boundary: {Singleton: yes}
  /Case/Boundary: {Parameters: {Kind: {Parameter Type: String}}}
  /Case/Domain:
    Parameters:
      A: {Parameter Type: String}
      K: {Parameter Type: Real, Available: "1 > 2"}
      L: {Parameter Type: Real, Available: "${A} == 'x' and ${A} == 'y'"}
)yaml"),
            R"text(flow.rules.yaml:16:45: warning: this condition can never hold
   16 |       K: {Parameter Type: Real, Available: "1 > 2"}
      |                                             ^~~~~
flow.rules.yaml:17:45: warning: this condition can never hold
   17 |       L: {Parameter Type: Real, Available: "${A} == 'x' and ${A} == 'y'"}
      |                                             ^~~~~~~~~~~~~~~~~~~~~~~~~~~
)text");
}

TEST(Lint, SoundRulesGiveNoWarning) {
  EXPECT_EQ(linted(R"yaml(Rule Database: 1
Pertinent Roots: [Case]
Quantity Types: {Speed: {Units: [m/s]}}
Checks:
  turns: ${Motion} == 'Rotating'
Objects:
  /Case:
    Parameters:
      Regime: {Parameter Type: String, Ordered Allowed String List: [Laminar, Turbulent], Default Value: Laminar}
      Speed: {Parameter Type: Real, Lower Bound: "0 [m/s]", Default Value: "3 [km/h]", Quantity Type: Speed}
      Any: {Parameter Type: String, Ordered Allowed String List: [a], Allows Any Value: yes, Default Value: b}
      Computed: {Parameter Type: String, Value List Source: "names({Domain:*})", Default Value: a}
      Blank: {Parameter Type: Real, Default Value: ""}
    Children:
      Domain: {Required: yes, Default Names: [Default]}
  /Case/Domain:
    Parameters:
      Motion: {Parameter Type: String, Ordered Allowed String List: [Rotating, Resting]}
      Axis: {Parameter Type: String, Available: "check('turns') and ${../Regime} != ''"}
      Free: {Parameter Type: String, Available: "${../Any} == 'zzz' or ${../Computed} == 'zzz'"}
      Early: {Parameter Type: String, Available: "count({/Case/Domain:*}, ${Motion} == 'Rotating') > 1"}
)yaml"),
            "");
}

TEST(Lint, WithErrorsThereAreNoWarningsOfWhatRulesMeanToEachOther) {
  EXPECT_EQ(linted("Rule Database: 1\nPertinent Roots: [Case]\nChecks: {never: 'false', a: 'exist(1)'}\n"),
            "flow.rules.yaml:3:30: error: unknown function 'exist'; did you mean 'exists'?\n"
            "    3 | Checks: {never: 'false', a: 'exist(1)'}\n"
            "      |                              ^~~~~\n");
}

}  // namespace
}  // namespace tarn::rules
