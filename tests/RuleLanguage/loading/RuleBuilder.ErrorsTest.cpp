// Everything that the loader can say of rules that are YAML but not well formed, word for word; the golden texts were
// read line by line when they were taken.

#include "RuleLanguage/ExpressionTable.h"

namespace tarn::rules {
namespace {

using test::errorsOf;

TEST(RuleBuilderErrors, AFileThatIsAList) {
  EXPECT_EQ(errorsOf(R"yaml(- a
- b
)yaml"),
            R"text(flow.rules.yaml:1:1: error: a rule file is a map that begins with 'Rule Database: 1', not a list
    1 | - a
      | ^
)text");
}

TEST(RuleBuilderErrors, AFileThatIsOneValue) {
  EXPECT_EQ(
      errorsOf(R"yaml(just text
)yaml"),
      R"text(flow.rules.yaml:1:1: error: a rule file is a map that begins with 'Rule Database: 1', not a single value
    1 | just text
      | ^~~~~~~~~
)text");
}

TEST(RuleBuilderErrors, AFileWithoutItsVersion) {
  EXPECT_EQ(errorsOf(R"yaml(Objects: {}
)yaml"),
            R"text(flow.rules.yaml:1:1: error: the file does not say 'Rule Database: 1'
    1 | Objects: {}
      | ^
)text");
}

TEST(RuleBuilderErrors, AVersionOfTheFuture) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 2
)yaml"),
            R"text(flow.rules.yaml:1:16: error: version '2' of the format is not known; this program reads 1
    1 | Rule Database: 2
      |                ^
)text");
}

TEST(RuleBuilderErrors, AVersionThatIsAList) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: [1]
)yaml"),
            R"text(flow.rules.yaml:1:16: error: the version is a single value, not a list
    1 | Rule Database: [1]
      |                ^~~
)text");
}

TEST(RuleBuilderErrors, KeysOfAFile) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Rule Database: 1
Object: {}
Checks: []
Lists: text
objects: {}
? [a, b]
: c
Global  Checks: {}
)yaml"),
            R"text(flow.rules.yaml:2:1: error: 'Rule Database' is given twice
    2 | Rule Database: 1
      | ^~~~~~~~~~~~~
flow.rules.yaml:1:1: note: it stands here already
    1 | Rule Database: 1
      | ^~~~~~~~~~~~~
flow.rules.yaml:3:1: error: unknown key 'Object' in a rule file; did you mean 'Objects'?
    3 | Object: {}
      | ^~~~~~
flow.rules.yaml:4:9: error: Checks is a map, not a list
    4 | Checks: []
      |         ^~
flow.rules.yaml:5:8: error: Lists is a map, not a single value
    5 | Lists: text
      |        ^~~~
flow.rules.yaml:6:1: error: unknown key 'objects' in a rule file; did you mean 'Objects'?
    6 | objects: {}
      | ^~~~~~~
flow.rules.yaml:7:3: error: a key is a single value, not a list
    7 | ? [a, b]
      |   ^~~~~~
flow.rules.yaml:9:1: error: unknown key 'Global  Checks' in a rule file; did you mean 'Global Checks'?
    9 | Global  Checks: {}
      | ^~~~~~~~~~~~~~
)text");
}

TEST(RuleBuilderErrors, RootsThatAreNoList) {
  EXPECT_EQ(
      errorsOf(R"yaml(Rule Database: 1
Pertinent Roots: Case
)yaml"),
      R"text(flow.rules.yaml:2:18: error: a list of texts is needed here, not a single value; a list of one is written [Case]
    2 | Pertinent Roots: Case
      |                  ^~~~
)text");
}

TEST(RuleBuilderErrors, ItemsOfTheRoots) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Pertinent Roots: [Case, [a], {b: c}, '', ' Case']
Quantity Types: [a]
)yaml"),
            R"text(flow.rules.yaml:2:25: error: an item of this list is a single text, not a list
    2 | Pertinent Roots: [Case, [a], {b: c}, '', ' Case']
      |                         ^~~
flow.rules.yaml:2:30: error: an item of this list is a single text, not a map
    2 | Pertinent Roots: [Case, [a], {b: c}, '', ' Case']
      |                              ^~~~~~
flow.rules.yaml:2:38: error: a root type cannot be empty
    2 | Pertinent Roots: [Case, [a], {b: c}, '', ' Case']
      |                                      ^~
flow.rules.yaml:2:42: error: a root type cannot begin or end with a blank
    2 | Pertinent Roots: [Case, [a], {b: c}, '', ' Case']
      |                                          ^~~~~~~
flow.rules.yaml:3:17: error: Quantity Types is a map, not a list
    3 | Quantity Types: [a]
      |                 ^~~
)text");
}

TEST(RuleBuilderErrors, QuantityTypes) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Pertinent Roots: = values(${A})
Quantity Types:
  Temperature: {Units: [K, degC]}
  Temperature: {Units: [K, degC]}
  Length: {Unit: [m]}
  Mass:
  Time: {Units: s}
  Angle: {Units: []}
  Speed: [m/s]
  '': {Units: [a]}
  ' Area': {Units: [a]}
)yaml"),
            R"text(flow.rules.yaml:2:18: error: a list of texts is needed here, not a single value
    2 | Pertinent Roots: = values(${A})
      |                  ^~~~~~~~~~~~~~
flow.rules.yaml:5:3: error: 'Temperature' is given twice
    5 |   Temperature: {Units: [K, degC]}
      |   ^~~~~~~~~~~
flow.rules.yaml:4:3: note: it stands here already
    4 |   Temperature: {Units: [K, degC]}
      |   ^~~~~~~~~~~
flow.rules.yaml:6:3: error: the quantity type has no 'Units'; write {Units: [...]}
    6 |   Length: {Unit: [m]}
      |   ^~~~~~
flow.rules.yaml:6:12: error: unknown key 'Unit' in a quantity type; did you mean 'Units'?
    6 |   Length: {Unit: [m]}
      |            ^~~~
flow.rules.yaml:7:3: error: the quantity type has no 'Units'; write {Units: [...]}
    7 |   Mass:
      |   ^~~~
flow.rules.yaml:8:17: error: a list of texts is needed here, not a single value; a list of one is written [s]
    8 |   Time: {Units: s}
      |                 ^
flow.rules.yaml:9:18: error: a quantity type needs at least one of its units
    9 |   Angle: {Units: []}
      |                  ^~
flow.rules.yaml:10:10: error: a quantity type is a map, not a list
   10 |   Speed: [m/s]
      |          ^~~~~
flow.rules.yaml:11:3: error: a quantity type cannot be empty
   11 |   '': {Units: [a]}
      |   ^~
flow.rules.yaml:12:3: error: a quantity type cannot begin or end with a blank
   12 |   ' Area': {Units: [a]}
      |   ^~~~~~~
)text");
}

TEST(RuleBuilderErrors, NamedChecksAndLists) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Checks:
  a: true
  a: false
  b: [true]
  c: {x: y}
  d: {A:*}
  '': true
  ' e': true
  f:
Lists:
  a: text
  b: = ('a',)
  b: [a]
  c: {a: b}
  d: [a, [b], {Value: c, When: "true"}]
  e: [a, [b]]
  f: [{When: "true"}, {Value: a, Valu: b}, {Value: [a]}, {Value: "= {A:*}"}, {Value: a, When: "5"}]
  g: = 'a'
  h:
)yaml"),
            R"text(flow.rules.yaml:4:3: error: 'a' is given twice
    4 |   a: false
      |   ^
flow.rules.yaml:3:3: note: it stands here already
    3 |   a: true
      |   ^
flow.rules.yaml:5:6: error: a check is a single value, not a list
    5 |   b: [true]
      |      ^~~~~~
flow.rules.yaml:6:6: error: a check is a single value, not a map; an expression that begins with '{' must be quoted as a whole
    6 |   c: {x: y}
      |      ^~~~~~
flow.rules.yaml:7:6: error: a check is a single value, not a map; an expression that begins with '{' must be quoted as a whole
    7 |   d: {A:*}
      |      ^~~~~
flow.rules.yaml:8:3: error: a name cannot be empty
    8 |   '': true
      |   ^~
flow.rules.yaml:9:3: error: a name cannot begin or end with a blank
    9 |   ' e': true
      |   ^~~~
flow.rules.yaml:10:5: error: an expression is missing
   10 |   f:
      |     ^
flow.rules.yaml:12:6: error: a list is written as [a, b, c], or computed by one expression behind '='
   12 |   a: text
      |      ^~~~
flow.rules.yaml:14:3: error: 'b' is given twice
   14 |   b: [a]
      |   ^
flow.rules.yaml:13:3: note: it stands here already
   13 |   b: = ('a',)
      |   ^
flow.rules.yaml:15:6: error: a list is written as [a, b, c], or computed by one expression behind '='
   15 |   c: {a: b}
      |      ^~~~~~
flow.rules.yaml:16:10: error: an item of this list is a single text, not a list
   16 |   d: [a, [b], {Value: c, When: "true"}]
      |          ^~~
flow.rules.yaml:17:10: error: an item of this list is a single text, not a list
   17 |   e: [a, [b]]
      |          ^~~
flow.rules.yaml:18:7: error: the item has no 'Value'
   18 |   f: [{When: "true"}, {Value: a, Valu: b}, {Value: [a]}, {Value: "= {A:*}"}, {Value: a, When: "5"}]
      |       ^~~~~~~~~~~~~~
flow.rules.yaml:18:34: error: unknown key 'Valu' in an item of a list; did you mean 'Value'?
   18 |   f: [{When: "true"}, {Value: a, Valu: b}, {Value: [a]}, {Value: "= {A:*}"}, {Value: a, When: "5"}]
      |                                  ^~~~
flow.rules.yaml:18:52: error: an item of a list is a single value, not a list
   18 |   f: [{When: "true"}, {Value: a, Valu: b}, {Value: [a]}, {Value: "= {A:*}"}, {Value: a, When: "5"}]
      |                                                    ^~~
flow.rules.yaml:18:69: error: a single value is needed here, not a set of objects; write ${...} for the value of a parameter
   18 |   f: [{When: "true"}, {Value: a, Valu: b}, {Value: [a]}, {Value: "= {A:*}"}, {Value: a, When: "5"}]
      |                                                                     ^~~~~
flow.rules.yaml:18:96: error: a condition is needed here, not a number; compare it with something
   18 |   f: [{When: "true"}, {Value: a, Valu: b}, {Value: [a]}, {Value: "= {A:*}"}, {Value: a, When: "5"}]
      |                                                                                                ^
flow.rules.yaml:19:8: error: a list is needed here, not a text; a list of one is written ('a',)
   19 |   g: = 'a'
      |        ^~~
flow.rules.yaml:20:5: error: a list is written as [a, b, c], or computed by one expression behind '='
   20 |   h:
      |     ^
)text");
}

TEST(RuleBuilderErrors, ObjectsThatAreNoMap) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Objects: [a]
)yaml"),
            R"text(flow.rules.yaml:2:10: error: Objects is a map, not a list
    2 | Objects: [a]
      |          ^~~
)text");
}

TEST(RuleBuilderErrors, ObjectTypePaths) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Objects:
  Case: {}
  /Case/: {}
  /: {}
  /Case/Domain:rotor: {}
  /Case / Domain: {}
  /Case: text
  /A: {Parameter: {}, Description: [a], Description: b}
  /B: {Parameters: [a], Children: text}
  /B: {}
)yaml"),
            R"text(flow.rules.yaml:3:3: error: an object type path begins with '/': /Case
    3 |   Case: {}
      |   ^~~~
flow.rules.yaml:4:3: error: a type in the path is empty
    4 |   /Case/: {}
      |   ^~~~~~
flow.rules.yaml:5:3: error: a type in the path is empty
    5 |   /: {}
      |   ^
flow.rules.yaml:6:3: error: an object type path holds types only, without names: remove the ':' and what follows it
    6 |   /Case/Domain:rotor: {}
      |   ^~~~~~~~~~~~~~~~~~
flow.rules.yaml:7:3: error: a type cannot begin or end with a blank
    7 |   /Case / Domain: {}
      |   ^~~~~~~~~~~~~~
flow.rules.yaml:8:10: error: an object is a map, not a single value
    8 |   /Case: text
      |          ^~~~
flow.rules.yaml:9:8: error: unknown key 'Parameter' in an object; did you mean 'Parameters'?
    9 |   /A: {Parameter: {}, Description: [a], Description: b}
      |        ^~~~~~~~~
flow.rules.yaml:9:36: error: Description is a single value, not a list
    9 |   /A: {Parameter: {}, Description: [a], Description: b}
      |                                    ^~~
flow.rules.yaml:9:41: error: 'Description' is given twice
    9 |   /A: {Parameter: {}, Description: [a], Description: b}
      |                                         ^~~~~~~~~~~
flow.rules.yaml:9:23: note: it stands here already
    9 |   /A: {Parameter: {}, Description: [a], Description: b}
      |                       ^~~~~~~~~~~
flow.rules.yaml:10:20: error: Parameters is a map, not a list
   10 |   /B: {Parameters: [a], Children: text}
      |                    ^~~
flow.rules.yaml:10:35: error: Children is a map, not a single value
   10 |   /B: {Parameters: [a], Children: text}
      |                                   ^~~~
flow.rules.yaml:11:3: error: '/B' is given twice
   11 |   /B: {}
      |   ^~
flow.rules.yaml:10:3: note: it stands here already
   10 |   /B: {Parameters: [a], Children: text}
      |   ^~
)text");
}

TEST(RuleBuilderErrors, TypesAndNamesOfParameters) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Objects:
  /Case:
    Parameters:
      A: text
      B: {}
      C: {Parameter Type: Reel}
      D: {Parameter Type: Quantity}
      E: {Parameter Type: [Real]}
      F: {Parameter Type: real list}
      'G/H': {Parameter Type: Real}
      'G:H': {Parameter Type: Real}
      '': {Parameter Type: Real}
      ' I': {Parameter Type: Real}
)yaml"),
            R"text(flow.rules.yaml:5:10: error: a parameter is a map, not a single value
    5 |       A: text
      |          ^~~~
flow.rules.yaml:6:7: error: the parameter has no 'Parameter Type'
    6 |       B: {}
      |       ^
flow.rules.yaml:7:27: error: unknown parameter type 'Reel'; did you mean 'Real'?
    7 |       C: {Parameter Type: Reel}
      |                           ^~~~
flow.rules.yaml:8:27: error: unknown parameter type 'Quantity'; the types are Integer, Logical, Real and String, each also with List behind it
    8 |       D: {Parameter Type: Quantity}
      |                           ^~~~~~~~
flow.rules.yaml:9:27: error: Parameter Type is a single value, not a list
    9 |       E: {Parameter Type: [Real]}
      |                           ^~~~~~
flow.rules.yaml:10:27: error: unknown parameter type 'real list'; did you mean 'Real List'?
   10 |       F: {Parameter Type: real list}
      |                           ^~~~~~~~~
flow.rules.yaml:11:7: error: the name of a parameter cannot hold '/' or ':'
   11 |       'G/H': {Parameter Type: Real}
      |       ^~~~~
flow.rules.yaml:12:7: error: the name of a parameter cannot hold '/' or ':'
   12 |       'G:H': {Parameter Type: Real}
      |       ^~~~~
flow.rules.yaml:13:7: error: the name of a parameter cannot be empty
   13 |       '': {Parameter Type: Real}
      |       ^~
flow.rules.yaml:14:7: error: the name of a parameter cannot begin or end with a blank
   14 |       ' I': {Parameter Type: Real}
      |       ^~~~
)text");
}

TEST(RuleBuilderErrors, AvailabilityOfAParameter) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Objects:
  /Case:
    Parameters:
      J: {Parameter Type: Real, Required: maybe, Context Rule: [yes], Validation Relaxed: {a: b}, Requird: yes}
      K: {Parameter Type: Real, Context: {a: b}, Description: [a], Reason: [a], Beta Message: [a]}
)yaml"),
            R"text(flow.rules.yaml:5:43: error: yes or no is needed here, not 'maybe'
    5 |       J: {Parameter Type: Real, Required: maybe, Context Rule: [yes], Validation Relaxed: {a: b}, Requird: yes}
      |                                           ^~~~~
flow.rules.yaml:5:64: error: yes or no is a single value, not a list
    5 |       J: {Parameter Type: Real, Required: maybe, Context Rule: [yes], Validation Relaxed: {a: b}, Requird: yes}
      |                                                                ^~~~~
flow.rules.yaml:5:91: error: yes or no is a single value, not a map; an expression that begins with '{' must be quoted as a whole
    5 |       J: {Parameter Type: Real, Required: maybe, Context Rule: [yes], Validation Relaxed: {a: b}, Requird: yes}
      |                                                                                           ^~~~~~
flow.rules.yaml:5:99: error: unknown key 'Requird' in a parameter; did you mean 'Required'?
    5 |       J: {Parameter Type: Real, Required: maybe, Context Rule: [yes], Validation Relaxed: {a: b}, Requird: yes}
      |                                                                                                   ^~~~~~~
flow.rules.yaml:6:42: error: a list of texts is needed here, not a map
    6 |       K: {Parameter Type: Real, Context: {a: b}, Description: [a], Reason: [a], Beta Message: [a]}
      |                                          ^~~~~~
flow.rules.yaml:6:63: error: Description is a single value, not a list
    6 |       K: {Parameter Type: Real, Context: {a: b}, Description: [a], Reason: [a], Beta Message: [a]}
      |                                                               ^~~
flow.rules.yaml:6:76: error: Reason is a single value, not a list
    6 |       K: {Parameter Type: Real, Context: {a: b}, Description: [a], Reason: [a], Beta Message: [a]}
      |                                                                            ^~~
flow.rules.yaml:6:95: error: Beta Message is a single value, not a list
    6 |       K: {Parameter Type: Real, Context: {a: b}, Description: [a], Reason: [a], Beta Message: [a]}
      |                                                                                               ^~~
)text");
}

TEST(RuleBuilderErrors, BetaValues) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Objects:
  /Case:
    Parameters:
      L: {Parameter Type: String, Beta Values: [a]}
      M: {Parameter Type: String, Beta Values: {a: [b], c: d, c: e}}
)yaml"),
            R"text(flow.rules.yaml:5:48: error: Beta Values is a map, not a list
    5 |       L: {Parameter Type: String, Beta Values: [a]}
      |                                                ^~~
flow.rules.yaml:6:52: error: a beta message is a single value, not a list
    6 |       M: {Parameter Type: String, Beta Values: {a: [b], c: d, c: e}}
      |                                                    ^~~
flow.rules.yaml:6:63: error: 'c' is given twice
    6 |       M: {Parameter Type: String, Beta Values: {a: [b], c: d, c: e}}
      |                                                               ^
flow.rules.yaml:6:57: note: it stands here already
    6 |       M: {Parameter Type: String, Beta Values: {a: [b], c: d, c: e}}
      |                                                         ^
)text");
}

TEST(RuleBuilderErrors, AllowedValuesAndSubsets) {
  EXPECT_EQ(
      errorsOf(R"yaml(Rule Database: 1
Objects:
  /Case:
    Parameters:
      N: {Parameter Type: String, Ordered Allowed String List: a}
      O: {Parameter Type: String, Ordered Allowed String List: "= names({A:*})"}
      P: {Parameter Type: String, Ordered Allowed String List: [a, {Value: b}]}
      Q: {Parameter Type: String, Value List Source: [a]}
      R: {Parameter Type: String, Ordered Allowed String List: [a], Value List Source: "('a',)"}
      S: {Parameter Type: String, Subset Allowed String List: "= ('a',)", Subset Value List Source: {a: b}}
      T: {Parameter Type: String, Ordered Allowed String List: [a], Allowed String List Checks: {a: "5", b: [c]}}
      U: {Parameter Type: String, Allowed String List Checks: [a], Unused Allowed String List: a}
)yaml"),
      R"text(flow.rules.yaml:5:64: error: a list of texts is needed here, not a single value; a list of one is written [a]
    5 |       N: {Parameter Type: String, Ordered Allowed String List: a}
      |                                                                ^
flow.rules.yaml:6:64: error: a list of texts is needed here, not a single value; a computed list stands in Value List Source, without the '='
    6 |       O: {Parameter Type: String, Ordered Allowed String List: "= names({A:*})"}
      |                                                                ^~~~~~~~~~~~~~~~
flow.rules.yaml:7:68: error: an item of this list is a single text, not a map
    7 |       P: {Parameter Type: String, Ordered Allowed String List: [a, {Value: b}]}
      |                                                                    ^~~~~~~~~~
flow.rules.yaml:8:54: error: an expression is a single value, not a list
    8 |       Q: {Parameter Type: String, Value List Source: [a]}
      |                                                      ^~~
flow.rules.yaml:9:88: error: the allowed values are given twice: keep the fixed list or the Value List Source
    9 |       R: {Parameter Type: String, Ordered Allowed String List: [a], Value List Source: "('a',)"}
      |                                                                                        ^~~~~~~~
flow.rules.yaml:9:64: note: it stands here already
    9 |       R: {Parameter Type: String, Ordered Allowed String List: [a], Value List Source: "('a',)"}
      |                                                                ^~~
flow.rules.yaml:10:63: error: a list of texts is needed here, not a single value; a computed subset stands in Subset Value List Source, without the '='
   10 |       S: {Parameter Type: String, Subset Allowed String List: "= ('a',)", Subset Value List Source: {a: b}}
      |                                                               ^~~~~~~~~~
flow.rules.yaml:10:101: error: an expression is a single value, not a map; an expression that begins with '{' must be quoted as a whole
   10 |       S: {Parameter Type: String, Subset Allowed String List: "= ('a',)", Subset Value List Source: {a: b}}
      |                                                                                                     ^~~~~~
flow.rules.yaml:10:101: error: the subset is given twice: keep the fixed one or the Subset Value List Source
   10 |       S: {Parameter Type: String, Subset Allowed String List: "= ('a',)", Subset Value List Source: {a: b}}
      |                                                                                                     ^~~~~~
flow.rules.yaml:10:63: note: it stands here already
   10 |       S: {Parameter Type: String, Subset Allowed String List: "= ('a',)", Subset Value List Source: {a: b}}
      |                                                               ^~~~~~~~~~
flow.rules.yaml:11:102: error: a condition is needed here, not a number; compare it with something
   11 |       T: {Parameter Type: String, Ordered Allowed String List: [a], Allowed String List Checks: {a: "5", b: [c]}}
      |                                                                                                      ^
flow.rules.yaml:11:109: error: an expression is a single value, not a list
   11 |       T: {Parameter Type: String, Ordered Allowed String List: [a], Allowed String List Checks: {a: "5", b: [c]}}
      |                                                                                                             ^~~
flow.rules.yaml:12:63: error: Allowed String List Checks is a map, not a list
   12 |       U: {Parameter Type: String, Allowed String List Checks: [a], Unused Allowed String List: a}
      |                                                               ^~~
flow.rules.yaml:12:96: error: a list of texts is needed here, not a single value; a list of one is written [a]
   12 |       U: {Parameter Type: String, Allowed String List Checks: [a], Unused Allowed String List: a}
      |                                                                                                ^
)text");
}

TEST(RuleBuilderErrors, ListsThatMustBeComplete) {
  EXPECT_EQ(
      errorsOf(R"yaml(Rule Database: 1
Objects:
  /Case:
    Parameters:
      V: {Parameter Type: String, Complete List Required: yes}
      W: {Parameter Type: Reel List, Complete List Required: yes}
)yaml"),
      R"text(flow.rules.yaml:5:59: error: Complete List Required is for list types, but the parameter is of type String
    5 |       V: {Parameter Type: String, Complete List Required: yes}
      |                                                           ^~~
flow.rules.yaml:6:27: error: unknown parameter type 'Reel List'; did you mean 'Real List'?
    6 |       W: {Parameter Type: Reel List, Complete List Required: yes}
      |                           ^~~~~~~~~
)text");
}

TEST(RuleBuilderErrors, DefaultsOverridesAndBounds) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Objects:
  /Case:
    Parameters:
      W: {Parameter Type: String, Default Value: [a], Lower Bound: {a: b}, Upper Bound: "= {A}"}
      X: {Parameter Type: String, Default Value Check List: a}
      Y: {Parameter Type: String, Default Value Check List: [a, {When: "true"}, {Value: a}, {}, {When: "5", Value: [a]}, [b]]}
      Z: {Parameter Type: String, Value Override Check List: {When: "true", Value: a}}
)yaml"),
            R"text(flow.rules.yaml:5:50: error: Default Value is a single value, not a list
    5 |       W: {Parameter Type: String, Default Value: [a], Lower Bound: {a: b}, Upper Bound: "= {A}"}
      |                                                  ^~~
flow.rules.yaml:5:68: error: Lower Bound is a single value, not a map; an expression that begins with '{' must be quoted as a whole
    5 |       W: {Parameter Type: String, Default Value: [a], Lower Bound: {a: b}, Upper Bound: "= {A}"}
      |                                                                    ^~~~~~
flow.rules.yaml:5:92: error: a single value is needed here, not a set of objects; write ${...} for the value of a parameter
    5 |       W: {Parameter Type: String, Default Value: [a], Lower Bound: {a: b}, Upper Bound: "= {A}"}
      |                                                                                            ^~~
flow.rules.yaml:6:61: error: Default Value Check List is a list of {When: condition, Value: value}, not a single value
    6 |       X: {Parameter Type: String, Default Value Check List: a}
      |                                                             ^
flow.rules.yaml:7:62: error: an item here is {When: condition, Value: value}, not a single value
    7 | ...     Y: {Parameter Type: String, Default Value Check List: [a, {When: "true"}, {Value: a}, {}, {When: "5", Value: [a]}, ...
      |                                                                ^
flow.rules.yaml:7:65: error: the item has no 'Value'
    7 | ...  Y: {Parameter Type: String, Default Value Check List: [a, {When: "true"}, {Value: a}, {}, {When: "5", Value: [a]}, [b]...
      |                                                                ^~~~~~~~~~~~~~
flow.rules.yaml:7:81: error: the item has no 'When'; the value without a condition is the default value
    7 | ...Type: String, Default Value Check List: [a, {When: "true"}, {Value: a}, {}, {When: "5", Value: [a]}, [b]]}
      |                                                                ^~~~~~~~~~
flow.rules.yaml:7:93: error: the item has no 'When'; the value without a condition is the default value
    7 | ..., Default Value Check List: [a, {When: "true"}, {Value: a}, {}, {When: "5", Value: [a]}, [b]]}
      |                                                                ^~
flow.rules.yaml:7:93: error: the item has no 'Value'
    7 | ..., Default Value Check List: [a, {When: "true"}, {Value: a}, {}, {When: "5", Value: [a]}, [b]]}
      |                                                                ^~
flow.rules.yaml:7:105: error: a condition is needed here, not a number; compare it with something
    7 | ...lue Check List: [a, {When: "true"}, {Value: a}, {}, {When: "5", Value: [a]}, [b]]}
      |                                                                ^
flow.rules.yaml:7:116: error: Default Value Check List is a single value, not a list
    7 | ...ist: [a, {When: "true"}, {Value: a}, {}, {When: "5", Value: [a]}, [b]]}
      |                                                                ^~~
flow.rules.yaml:7:122: error: an item here is {When: condition, Value: value}, not a list
    7 | ...a, {When: "true"}, {Value: a}, {}, {When: "5", Value: [a]}, [b]]}
      |                                                                ^~~
flow.rules.yaml:8:62: error: Value Override Check List is a list of {When: condition, Value: value}, not a map
    8 |       Z: {Parameter Type: String, Value Override Check List: {When: "true", Value: a}}
      |                                                              ^~~~~~~~~~~~~~~~~~~~~~~~
)text");
}

TEST(RuleBuilderErrors, AParameterGivenTwice) {
  EXPECT_EQ(
      errorsOf(R"yaml(Rule Database: 1
Objects:
  /Case:
    Parameters:
      Z: {Parameter Type: String, Value Override Check List: {When: "true", Value: a}}
      Z: {Parameter Type: String}
)yaml"),
      R"text(flow.rules.yaml:5:62: error: Value Override Check List is a list of {When: condition, Value: value}, not a map
    5 |       Z: {Parameter Type: String, Value Override Check List: {When: "true", Value: a}}
      |                                                              ^~~~~~~~~~~~~~~~~~~~~~~~
flow.rules.yaml:6:7: error: 'Z' is given twice
    6 |       Z: {Parameter Type: String}
      |       ^
flow.rules.yaml:5:7: note: it stands here already
    5 |       Z: {Parameter Type: String, Value Override Check List: {When: "true", Value: a}}
      |       ^
)text");
}

TEST(RuleBuilderErrors, Children) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Objects:
  /Case:
    Children:
      A: text
      'B/C': {}
      'B:C': {}
      '': {}
      ' D': {}
      E: {Singleton: maybe, Coupled: 1, Required: [a], Allowed Names: a, Default Names: "= 'a'", Contexts: a, Context Rule: yes}
      F: {Allowed Names: [{Value: a, When: "${A}"}, {Valeu: b}], Default Names: {a: b}}
      F: {}
)yaml"),
            R"text(flow.rules.yaml:5:10: error: a child is a map, not a single value
    5 |       A: text
      |          ^~~~
flow.rules.yaml:6:7: error: a child type cannot hold '/' or ':'; deeper objects have entries of their own under Objects
    6 |       'B/C': {}
      |       ^~~~~
flow.rules.yaml:7:7: error: a child type cannot hold '/' or ':'; deeper objects have entries of their own under Objects
    7 |       'B:C': {}
      |       ^~~~~
flow.rules.yaml:8:7: error: a child type cannot be empty
    8 |       '': {}
      |       ^~
flow.rules.yaml:9:7: error: a child type cannot begin or end with a blank
    9 |       ' D': {}
      |       ^~~~
flow.rules.yaml:10:22: error: yes or no is needed here, not 'maybe'
   10 |       E: {Singleton: maybe, Coupled: 1, Required: [a], Allowed Names: a, Default Names: "= 'a'", Contexts: a, Context Ru...
      |                      ^~~~~
flow.rules.yaml:10:38: error: yes or no is needed here, not '1'
   10 |       E: {Singleton: maybe, Coupled: 1, Required: [a], Allowed Names: a, Default Names: "= 'a'", Contexts: a, Context Ru...
      |                                      ^
flow.rules.yaml:10:51: error: yes or no is a single value, not a list
   10 |       E: {Singleton: maybe, Coupled: 1, Required: [a], Allowed Names: a, Default Names: "= 'a'", Contexts: a, Context Ru...
      |                                                   ^~~
flow.rules.yaml:10:71: error: a list of texts is needed here, not a single value; a list of one is written [a]
   10 | ...Singleton: maybe, Coupled: 1, Required: [a], Allowed Names: a, Default Names: "= 'a'", Contexts: a, Context Rule: yes}
      |                                                                ^
flow.rules.yaml:10:92: error: a list is needed here, not a text; a list of one is written ('a',)
   10 | ...pled: 1, Required: [a], Allowed Names: a, Default Names: "= 'a'", Contexts: a, Context Rule: yes}
      |                                                                ^~~
flow.rules.yaml:10:98: error: unknown key 'Contexts' in a child; did you mean 'Context'?
   10 | ...1, Required: [a], Allowed Names: a, Default Names: "= 'a'", Contexts: a, Context Rule: yes}
      |                                                                ^~~~~~~~
flow.rules.yaml:10:111: error: unknown key 'Context Rule' in a child
   10 | ...[a], Allowed Names: a, Default Names: "= 'a'", Contexts: a, Context Rule: yes}
      |                                                                ^~~~~~~~~~~~
flow.rules.yaml:11:53: error: the item has no 'Value'
   11 |       F: {Allowed Names: [{Value: a, When: "${A}"}, {Valeu: b}], Default Names: {a: b}}
      |                                                     ^~~~~~~~~~
flow.rules.yaml:11:54: error: unknown key 'Valeu' in an item of a list; did you mean 'Value'?
   11 |       F: {Allowed Names: [{Value: a, When: "${A}"}, {Valeu: b}], Default Names: {a: b}}
      |                                                      ^~~~~
flow.rules.yaml:11:81: error: a list of texts is needed here, not a map
   11 |       F: {Allowed Names: [{Value: a, When: "${A}"}, {Valeu: b}], Default Names: {a: b}}
      |                                                                                 ^~~~~~
flow.rules.yaml:12:7: error: 'F' is given twice
   12 |       F: {}
      |       ^
flow.rules.yaml:11:7: note: it stands here already
   11 |       F: {Allowed Names: [{Value: a, When: "${A}"}, {Valeu: b}], Default Names: {a: b}}
      |       ^
)text");
}

TEST(RuleBuilderErrors, GlobalChecks) {
  EXPECT_EQ(errorsOf(R"yaml(Rule Database: 1
Global Checks:
  a: text
  b: {}
  c: {Check: "true", Message: [a]}
  d: {Check: "5", Message: "= {A}"}
  e: {Check: [a], Message: a}
  e: {Check: "true", Message: a, Mesage: b}
  '': {Check: "true", Message: a}
)yaml"),
            R"text(flow.rules.yaml:3:6: error: a global check is a map, not a single value
    3 |   a: text
      |      ^~~~
flow.rules.yaml:4:3: error: the global check has no 'Check'
    4 |   b: {}
      |   ^
flow.rules.yaml:4:3: error: the global check has no 'Message'
    4 |   b: {}
      |   ^
flow.rules.yaml:5:31: error: Message is a single value, not a list
    5 |   c: {Check: "true", Message: [a]}
      |                               ^~~
flow.rules.yaml:6:15: error: a condition is needed here, not a number; compare it with something
    6 |   d: {Check: "5", Message: "= {A}"}
      |               ^
flow.rules.yaml:6:31: error: a single value is needed here, not a set of objects; write ${...} for the value of a parameter
    6 |   d: {Check: "5", Message: "= {A}"}
      |                               ^~~
flow.rules.yaml:7:14: error: an expression is a single value, not a list
    7 |   e: {Check: [a], Message: a}
      |              ^~~
flow.rules.yaml:8:3: error: 'e' is given twice
    8 |   e: {Check: "true", Message: a, Mesage: b}
      |   ^
flow.rules.yaml:7:3: note: it stands here already
    7 |   e: {Check: [a], Message: a}
      |   ^
flow.rules.yaml:9:3: error: a name cannot be empty
    9 |   '': {Check: "true", Message: a}
      |   ^~
)text");
}

}  // namespace
}  // namespace tarn::rules
