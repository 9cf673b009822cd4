#include <tarn/rules/Words.h>

#include <gtest/gtest.h>

#include <string>

#include <tarn/RuleLambdas.h>
#include <tarn/rules/RuleLoader.h>

namespace tarn::rules {
namespace {

/// The words for a condition of a parameter of a domain.
std::string words(std::string const& condition) {
  auto const data = parseRules(R"yaml(Rule Database: 1
Checks: {flow is turbulent: "${/Case/Flow} == 'Turbulent'"}
Lists: {fluids: [Water, Oil]}
Values: {limit: 5}
Objects:
  /Case/Domain:
    Parameters:
      Speed:
        Parameter Type: Real
        Available: >-
          )yaml" + condition + "\n");
  return inWords(*data->getObjDependDef("/Case/Domain", true)->findParam("Speed")->available);
}

struct Row {
  char const* condition;
  char const* words;
};

class WordsOfConditions : public testing::TestWithParam<Row> {};

TEST_P(WordsOfConditions, SayWhatTheConditionMeans) {
  EXPECT_EQ(words(GetParam().condition), GetParam().words);
}

INSTANTIATE_TEST_SUITE_P(
    Of, WordsOfConditions,
    testing::Values(Row{"${Motion} == 'Rotating'", "Motion is 'Rotating'"},
                    Row{"${Motion} != 'Rotating'", "Motion is not 'Rotating'"},
                    Row{"${Count} >= 4 and ${Count} < 9", "Count is at least 4, and Count is less than 9"},
                    Row{"${A} or ${B} and ${C}", "A is true, or (B is true, and C is true)"},
                    Row{"not ${A}", "A is not true"},
                    Row{"not (${A} or ${B})", "it is not so that (A is true, or B is true)"},
                    Row{"${A} implies ${B} == 'x'", "if A is true, then B is 'x'"},
                    Row{"${Kind} in ('Inlet', 'Opening', 'Wall')", "Kind is 'Inlet', 'Opening' or 'Wall'"},
                    Row{"${Kind} not in ('Inlet', 'Opening')", "Kind is neither 'Inlet' nor 'Opening'"},
                    Row{"${Kind} in list('fluids')", "Kind is in the list 'fluids'"},
                    Row{"exists(${Axis})", "Axis is present"}, Row{"not exists(${Axis})", "Axis is absent"},
                    Row{"exists({Boundary:*})", "there is at least one of the Boundary objects in it"},
                    Row{"count({Boundary:*}) > value('limit')",
                        "the number of the Boundary objects in it is more than the value 'limit'"},
                    Row{"count({Boundary:*}, ${Kind} == 'Inlet') > 0",
                        "the number of the Boundary objects in it for which (Kind is 'Inlet') is more than 0"},
                    Row{"any({/Case/Domain:*}, ${Motion} != ${@/Motion})",
                        "for at least one of /Case/Domain:*, Motion is not Motion of the object that has the rule"},
                    Row{"all(b in {Boundary:*}, ${b/Kind} == 'Wall')",
                        "for each of the Boundary objects in it (each called b), ${b/Kind} is 'Wall'"},
                    Row{"${../Flow} == 'x' and ${^Case/Flow} == 'y'",
                        "Flow of the object above it is 'x', and Flow of the nearest Case is 'y'"},
                    Row{"check('flow is turbulent')", "the check 'flow is turbulent' holds"},
                    Row{"not check('flow is turbulent')", "the check 'flow is turbulent' does not hold"},
                    Row{"length(${Name}) < 20", "length(${Name}) is less than 20"},
                    Row{"if(${A}, ${B}, ${C}) == 'x'", "(B if A is true, otherwise C) is 'x'"}, Row{"true", "always"}));

TEST(Words, RulesOfAProgramHaveNone) {
  EXPECT_EQ(inWords(*lambda::always()), "");
  EXPECT_EQ(inWords(FixedText("5")), "");
}

}  // namespace
}  // namespace tarn::rules
