// The messages of the parser for wrong expressions: a table of expression and fault, "column+length: message", where
// the column counts from 1 in the expression. The precedence of operators is tested with the results of expressions.

#include "RuleLanguage/ExpressionTable.h"

namespace tarn::rules {
namespace {

using Table = std::vector<std::pair<std::string, std::string>>;

void expectFaults(Table const& table, std::string const& sections = {}) {
  for (auto const& [expression, fault] : table) {
    EXPECT_EQ(test::conditionFault(expression, sections), fault) << expression;
  }
}

TEST(Parser, WhatTheLexerCannotRead) {
  expectFaults({
      {"true && false", "6+2: '&&' is not part of the language; write 'and'"},
      {"true || false", "6+2: '||' is not part of the language; write 'or'"},
      {"${A} =~ 'x'", "6+2: '=~' is not part of the language; see matches, contains, starts_with and ends_with"},
      {"${A} <> 'x'", "6+2: '<>' is not part of the language; write '!='"},
      {"${A} = 'x'", "6+1: '=' does not compare; write '=='"},
      {"!${A}", "1+1: '!' is not part of the language; write 'not'"},
      {"${A} > [m]", "8+1: units belong after a number that is written out: 12 [m/s]; a list is written ('a', 'b')"},
      {"${A} [m] > 5", "6+1: units belong after a number that is written out: 12 [m/s]; a list is written ('a', 'b')"},
      {"${A} > 5 [m", "10+2: the units that begin here have no closing ']'"},
      {"${A} > 5 [[m]]", "10+1: the units that begin here have no closing ']'"},
      {"$A == 'x'", "1+1: '$' must be followed by a path in braces: ${Name}"},
      {"A} == 'x'", "2+1: '}' has no '{' before it"},
      {"${A} == 'x", "9+2: the text that begins here has no closing '"},
      {"${A} == \"x'", "9+3: the text that begins here has no closing \""},
      {"${A == 'x'", "1+10: the path that begins here has no closing '}'"},
      {"{A == 'x'", "1+9: the path that begins here has no closing '}'"},
      {"${A\\} == 'x'", "1+12: the path that begins here has no closing '}'"},
      {"${A} > 12abc", "8+5: '12abc' is not a number; write a text in quotes"},
      {"${A} > 1.2.3", "8+5: '1.2.3' is not a number; write a text in quotes"},
      {"${A} > 0x1F", "8+4: '0x1F' is not a number; write a text in quotes"},
      {"${A} > 1e", "8+2: '1e' is not a number; write a text in quotes"},
      {"${A} > 1e999", "8+5: '1e999' is not a number; write a text in quotes"},
      {"${A} == #x", "9+1: '#' has no meaning here; write a text in quotes"},
      {"${A} == Öl", "9+1: 'Ö' has no meaning here; write a text in quotes"},
      {"${A} % 2 == 0", "6+1: '%' is not part of the language; write mod(a, b) for a remainder, and 5 [%] for units"},
  });
}

TEST(Parser, WhereSomethingIsMissing) {
  expectFaults({
      {"", "1+1: an expression is missing"},
      {"   ", "1+3: an expression is missing"},
      {"${A} ==", "8+1: a value is missing at the end of the expression"},
      {"true and", "9+1: a value is missing at the end of the expression"},
      {"not", "4+1: a value is missing at the end of the expression"},
      {"== 'x'", "1+2: there is nothing to compare before '=='"},
      {"< 5", "1+1: there is nothing to compare before '<'"},
      {"true and == 5", "10+2: there is nothing to compare before '=='"},
      {"and true", "1+3: a value is missing before 'and'"},
      {"true and or true", "10+2: a value is missing before 'or'"},
      {"* 5 == 5", "1+1: a value is missing before '*'"},
      {"(1 + ) == 1", "6+1: a value is missing before ')'"},
      {"true)", "5+1: ')' has no '(' before it"},
      {"(true", "6+1: ')' is missing to close the '(' at the beginning of this part"},
      {"(true false)", "7+5: ')' is missing to close the '(' at the beginning of this part"},
      {"${A} in ('a', 'b'", "18+1: ')' is missing at the end of the list"},
      {"${A} in ('a' 'b')", "14+3: ')' is missing to close the '(' at the beginning of this part"},
      {"${A} in ('a', 'b' 'c')", "19+3: ')' is missing at the end of the list"},
      {"exists(${A}", "12+1: ')' is missing at the end of the arguments of exists"},
      {"any({A:*} true)", "11+4: ')' is missing at the end of the arguments of any"},
      {"nothing(1 2)", "1+7: unknown function 'nothing'\n11+1: ')' is missing at the end of the arguments"},
      {"${A} ${B}", "6+4: an operator is missing before this"},
      {"${A} 'x'", "6+3: an operator is missing before this"},
      {"${A} AND ${B}", "6+3: an operator is missing before 'AND'; did you mean 'and'?"},
      {"${A} Or ${B}", "6+2: an operator is missing before 'Or'; did you mean 'or'?"},
      {"${A} IN ('x',)", "6+2: an operator is missing before 'IN'; did you mean 'in'?"},
      {"${A} Implies ${B}", "6+7: an operator is missing before 'Implies'; did you mean 'implies'?"},
      {"${A} is ${B}", "6+2: an operator is missing before 'is'; did you mean '=='?"},
      {"${A} count({B:*})",
       "6+5: an operator is missing before this; 'count' is a function: count(set), count(set, condition), count(x in "
       "set, condition)"},
      {"${A} not 'x'", "6+3: 'not' belongs in front of a condition, or before 'in'"},
  });
}

TEST(Parser, NamesThatAreNone) {
  expectFaults(
      {
          {"Motion == 'x'", "1+6: unknown name 'Motion'; write 'Motion' for a text, or ${Motion} for a parameter"},
          {"${A} == Rotating",
           "9+8: unknown name 'Rotating'; write 'Rotating' for a text, or ${Rotating} for a parameter"},
          {"True", "1+4: unknown name 'True'; did you mean 'true'?"},
          {"exists", "1+6: 'exists' is a function; write exists(...)"},
          {"exist(${A})", "1+5: unknown function 'exist'; did you mean 'exists'?"},
          {"Count({A:*}) > 1", "1+5: unknown function 'Count'; did you mean 'count'?"},
          {"startswith(${A}, 'x')",
           "1+10: unknown function 'startswith'; its purpose is served by starts_with(x, y); did you mean "
           "'starts_with'?"},
          {"frobnicate(${A}, {B}, 1)",
           "1+10: unknown function 'frobnicate'; the functions on numbers and texts are abs, floor, ceil, round, mod, "
           "number, text, lower, upper, trim, starts_with, ends_with, contains, matches, length"},
          {"nothing()",
           "1+7: unknown function 'nothing'; the functions on objects are exists, count, any, all, filter, names, "
           "paths, values, name, type, path"},
          {"check('rotatin')", "7+9: there is no check 'rotatin'; did you mean 'rotating'?"},
          {"check('something else')", "7+16: there is no check 'something else'"},
          {"size(list('fluid')) > 0", "11+7: there is no list 'fluid'; did you mean 'fluids'?"},
          {"check('fluids')", "7+8: there is no check 'fluids'; there is a list of that name: list('fluids')"},
          {"check(${A})", "7+4: check takes the name of a check, written in quotes"},
          {"check(rotating)", "7+8: unknown name 'rotating'; there is a check of that name: check('rotating')"},
          {"size(list(1)) > 0", "11+1: list takes the name of a list, written in quotes"},
      },
      "Lists: {fluids: [Water]}\nObjects: {}\n"
      "Quantity Types: {}\n");
}

TEST(Parser, FaultsOfPaths) {
  expectFaults({
      {"${} == 'x'", "3+1: the path is empty"},
      {"exists({})", "9+1: the path is empty"},
      {"${A//B} == 'x'", "5+1: a component of the path is empty"},
      {"${ A/:b/C } == 'x'", "6+2: the type before ':' is empty"},
      {"exists({A:})", "10+1: the name after ':' is empty"},
      {"exists({A:b:c})", "12+1: a component has a second ':'"},
      {"exists({A/^B})", "11+2: '^' is allowed only at the beginning of a path"},
      {"exists({A/@})", "11+1: '@' is allowed only at the beginning of a path"},
      {"exists({A*})", "9+2: '*' can only replace a whole component or a whole name; write '\\*' for the character"},
      {"exists({A:b*})", "11+2: '*' can only replace a whole name; write '\\*' for the character"},
      {"exists({^})", "9+1: '^' needs a type after it"},
      {"exists({^A:b})", "12+1: '^' takes a type only, without a name"},
      {R"(exists({A\/B}))", "10+2: a type or name cannot contain '/'"},
      {"${..} == 'x'", "3+2: the path must end in the name of a parameter"},
      {"${A/B:c} == 'x'", "5+3: the path must end in the name of a parameter, which cannot contain ':'"},
      {"${Ö/B:c} == 'x'", "5+3: the path must end in the name of a parameter, which cannot contain ':'"},
      {"${A:*/B} == 'x'", "1+8: this path can match several parameters; only exists(...) and values(...) accept that"},
      {"${**/B}", "1+7: this path can match several parameters; only exists(...) and values(...) accept that"},
      {"any({A:*}, ${B:*/C} == 'x')",
       "12+8: this path can match several parameters; only exists(...) and values(...) accept that"},
  });
}

TEST(Parser, ConditionsThatAreNone) {
  expectFaults({
      {"5", "1+1: a condition is needed here, not a number; compare it with something"},
      {"'a'", "1+3: a condition is needed here, not a text; compare it with something"},
      {"('a', 'b')", "1+10: a condition is needed here, not a list; write size(...) > 0, or compare with 'in'"},
      {"{A:*}", "1+5: a condition is needed here, not a set of objects; write exists(...) or any(...)"},
      {"not 5", "5+1: a condition is needed here, not a number; compare it with something"},
      {"true and 'a'", "10+3: a condition is needed here, not a text; compare it with something"},
      {"{A} or true", "1+3: a condition is needed here, not a set of objects; write exists(...) or any(...)"},
      {"1 implies 2",
       "1+1: a condition is needed here, not a number; compare it with something\n"
       "11+1: a condition is needed here, not a number; compare it with something"},
      {"any({A:*}, 5)", "12+1: a condition is needed here, not a number; compare it with something"},
      {"if(5, true, false)", "4+1: a condition is needed here, not a number; compare it with something"},
      {"count({A:*})", "1+12: a condition is needed here, not a number; compare it with something"},
      {"name()", "1+6: a condition is needed here, not a text; compare it with something"},
  });
}

TEST(Parser, NumbersThatAreNone) {
  expectFaults({
      {"'a' * 2 == 2", "1+3: a number is needed here, not a text"},
      {"2 / 'a' == 2", "5+3: a number is needed here, not a text"},
      {"-'a' == 2", "2+3: a number is needed here, not a text"},
      {"- true == 2", "3+4: a number is needed here, not a truth value"},
      {"1 - 'a' == 2", "5+3: a number is needed here, not a text"},
      {"true + 1 == 2", "1+4: a number is needed here, not a truth value"},
      {"'a' < 5", "1+3: a number is needed here, not a text"},
      {"true < 5", "1+4: a number is needed here, not a truth value"},
      {"{A:*} > 5", "1+5: a number is needed here, not a set of objects; write count(...) for how many there are"},
      {"('a',) > 5", "1+6: a number is needed here, not a list; write size(...) for how many there are"},
      {"abs('a') > 5", "5+3: a number is needed here, not a text"},
      {"'a' + 1 - 2 == 'x'", "11+1: '-' needs numbers, but the part before it is a text"},
  });
}

TEST(Parser, ValuesTextsListsAndSetsThatAreNone) {
  expectFaults({
      {"{A} == 'x'",
       "1+3: a single value is needed here, not a set of objects; write ${...} for the value of a parameter"},
      {"('a',) == ('a',)",
       "1+6: a list cannot be compared; use 'in', or size(difference(a, b)) == 0\n"
       "11+6: a list cannot be compared; use 'in', or size(difference(a, b)) == 0"},
      {"text(('a',)) == 'x'", "6+6: a single value is needed here, not a list"},
      {"'a' + ('b',) == 'x'", "7+6: a single value is needed here, not a list"},
      {"lower(true) == 'x'", "7+4: a text is needed here, not a truth value; write text(...)"},
      {"true in ('true',)", "1+4: a text is needed here, not a truth value; write text(...)"},
      {"join(('a',), {B}) == 'x'",
       "14+3: a single value is needed here, not a set of objects; write ${...} for the value of a parameter"},
      {"'a' in 'b'", "8+3: a list is needed here, not a text; a list with one item is written ('b',)"},
      {"'a' in 5", "8+1: a list is needed here, not a number"},
      {"'a' in ('b')", "9+3: a list is needed here, not a text; a list with one item is written ('b',)"},
      {"'a' in {B:*}", "8+5: a list is needed here, not a set of objects; write names(...) or paths(...)"},
      {"size('a') > 0", "6+3: a list is needed here, not a text; a list with one item is written ('a',)"},
      {"count(${A}) > 0", "7+4: a set of objects is needed here, not a value; write {...} without the '$'"},
      {"count(('a',)) > 0", "7+6: a set of objects is needed here, not a list"},
      {"exists('A')", "8+3: exists takes a parameter, ${...}, or a set of objects, {...}"},
      {"exists(${A} == 'x')", "13+2: ')' is missing at the end of the arguments of exists"},
      {"size(values({A:*})) > 0", "13+5: values takes a path to a parameter, ${...}"},
      {"${A} in ('a', 5)", "15+1: a list contains texts, not a number; write '5'"},
      {"${A} in ('a', true)", "15+4: a list contains texts, not a truth value; write 'true'"},
      {"${A} in ('a', 1 + 2)", "15+5: a list contains texts, not a number; write text(...)"},
      {"${A} in ('a', ('b',))", "15+6: a list contains texts, not a list"},
      {"${A} in ('a', {B})", "15+3: a list contains texts, not a set of objects"},
      {"if(true, {A}, 'a') == 'x'",
       "1+18: the two results of if must go together, but one is a set of objects and the other a text"},
      {"size(if(true, ('a',), 'b')) > 0",
       "6+21: the two results of if must go together, but one is a list and the other a text"},
  });
}

TEST(Parser, ChainedComparisons) {
  for (char const* const expression : {"1 < 2 < 3", "1 < 2 == 3", "1 < 2 in ('1',)"}) {
    EXPECT_EQ(test::conditionFault(expression).substr(5),
              "comparisons cannot be chained; combine two of them with 'and'")
        << expression;
  }
  expectFaults({{"1 == 2 == 3", "8+2: comparisons cannot be chained; combine two of them with 'and'"},
                {"'a' in ('a',) == true", "15+2: comparisons cannot be chained; combine two of them with 'and'"},
                {"'a' in ('a',) in ('b',)", "15+2: comparisons cannot be chained; combine two of them with 'and'"},
                {"(1 < 2) == (3 < 4)", ""}});
}

TEST(Parser, TheNumberOfArguments) {
  expectFaults({
      {"exists()", "1+8: exists takes 1 argument, not 0: exists(x)"},
      {"exists(${A}, ${B})", "1+18: exists takes 1 argument, not 2: exists(x)"},
      {"count() > 0",
       "1+7: count takes 1 or 2 arguments, not 0: count(set), count(set, condition), count(x in set, condition)"},
      {"count({A}, true, true) > 0",
       "1+22: count takes 1 or 2 arguments, not 3: count(set), count(set, condition), count(x in set, condition)"},
      {"any({A:*})", "1+10: any takes 2 arguments, not 1: any(set, condition), any(x in set, condition)"},
      {"if(true, 1) == 1", "1+11: if takes 3 arguments, not 2: if(condition, a, b)"},
      {"if(true, 1, 2, 3) == 1", "1+17: if takes 3 arguments, not 4: if(condition, a, b)"},
      {"name({A}, {B}) == 'x'", "1+14: name takes 0 or 1 argument, not 2: name(), name(set)"},
      {"size(union()) > 0", "6+7: union takes at least 1 argument, not 0: union(a, b, ...)"},
      {"check() or true", "1+7: check takes 1 argument, not 0: check('name')"},
      {"check('a', 'b')", "1+15: check takes 1 argument, not 2: check('name')\n7+3: there is no check 'a'"},
  });
}

TEST(Parser, AllFaultsOfAnExpressionAreToldInTheirOrder) {
  expectFaults({{"exist(${A//B}) and coun({C:*}) > 'x' or not 5",
                 "1+5: unknown function 'exist'; did you mean 'exists'?\n"
                 "11+1: a component of the path is empty\n"
                 "20+4: unknown function 'coun'; did you mean 'count'?\n"
                 "34+3: a number is needed here, not a text\n"
                 "45+1: a condition is needed here, not a number; compare it with something"}});
}

TEST(Parser, AFaultInAnArgumentIsNotToldTwice) {
  expectFaults({{"any({A:*}, exist(${B}))", "12+5: unknown function 'exist'; did you mean 'exists'?"},
                {"size(union(('a',), exist(1))) > 0", "20+5: unknown function 'exist'; did you mean 'exists'?"},
                {"if(exist(${B}), 1, 2) == 1", "4+5: unknown function 'exist'; did you mean 'exists'?"}});
}

TEST(Parser, TheRoleOfAnExpressionDecidesWhatItMayBe) {
  auto const faultOf = [](std::string const& attribute) {
    return test::errorsOf(
        "Rule Database: 1\nObjects:\n  /Case:\n    Parameters:\n      Material:\n"
        "        Parameter Type: String\n        " +
        attribute + "\n");
  };
  EXPECT_EQ(faultOf("Default Value: = ('a', 'b')"),
            "flow.rules.yaml:7:26: error: a single value is needed here, not a list\n"
            "    7 |         Default Value: = ('a', 'b')\n"
            "      |                          ^~~~~~~~~~\n");
  EXPECT_EQ(faultOf("Value List Source: \"'a'\""),
            "flow.rules.yaml:7:29: error: a list is needed here, not a text; a list with one item is written ('a',)\n"
            "    7 |         Value List Source: \"'a'\"\n"
            "      |                             ^~~\n");
  EXPECT_EQ(faultOf("Available: count({Boundary:*})"),
            "flow.rules.yaml:7:20: error: a condition is needed here, not a number; compare it with something\n"
            "    7 |         Available: count({Boundary:*})\n"
            "      |                    ^~~~~~~~~~~~~~~~~~~\n");
}

TEST(Parser, AnExpressionIsAtMostAHundredThousandCharactersLong) {
  std::string const blanks(100'000 - 4, ' ');
  EXPECT_EQ(test::conditionFault("true" + blanks), "");
  EXPECT_EQ(test::conditionFault("true " + blanks), "100001+1: the expression is longer than 100000 characters");
}

TEST(Parser, NestingIsLimitedInEveryForm) {
  auto const repeated = [](std::string const& text, int count) {
    std::string result;
    for (int i = 0; i < count; ++i) result += text;
    return result;
  };
  std::string const message = ": the expression is nested deeper than 200 levels; move a part of it into a named check";
  for (std::string const opening :
       {"(", "not ", "not(", "-", "- (", "true implies ", "if(true, ", "any({A:*}, ", "nothing(", "1 + (", "('a', "}) {
    auto const fault = test::conditionFault(repeated(opening, 5000));
    auto const lastLine = fault.substr(fault.rfind('\n') + 1);
    EXPECT_NE(lastLine.find(message), std::string::npos) << opening << " gave " << lastLine;
  }
  EXPECT_EQ(test::conditionFault(repeated("(", 99) + "true" + repeated(")", 99)), "");
  EXPECT_EQ(test::conditionFault(repeated("not ", 199) + "true"), "");
  EXPECT_EQ(test::conditionFault(repeated("not ", 200) + "true"), "797+3" + message);
}

TEST(Parser, AChainOfOneOperatorIsNoNesting) {
  std::string chain = "1 == 1";
  for (int i = 0; i < 5000; ++i) chain += " or 1 == 2";
  EXPECT_EQ(test::conditionFault(chain), "");

  std::string sum = "1";
  for (int i = 0; i < 20000; ++i) sum += " + 1";
  EXPECT_EQ(test::conditionFault(sum + " == 20001"), "");
}

}  // namespace
}  // namespace tarn::rules
