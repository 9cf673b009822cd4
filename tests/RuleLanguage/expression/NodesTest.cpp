// The result of each form of expression: literals, values of parameters, logic, comparisons, membership, arithmetic,
// paths and quantifiers. Functions, named rules and reads have tests of their own.

#include "RuleLanguage/ExpressionTable.h"
#include "support/ModelView.h"

namespace tarn::rules {
namespace {

class Expressions : public test::ExpressionTable {};

TEST_F(Expressions, LiteralsAreWhatTheyStandFor) {
  expectTexts({{"'Water'", "Water"},
               {"\"Water\"", "Water"},
               {"''", ""},
               {"'it''s'", "it's"},
               {"\"a \"\"b\"\"\"", "a \"b\""},
               {"'say \"x\"'", "say \"x\""},
               {"'blank  inside '", "blank  inside "},
               {"'Größe'", "Größe"},
               {"12", "12"},
               {"1.50", "1.5"},
               {".5", "0.5"},
               {"5.", "5"},
               {"1e3", "1000"},
               {"1.5E-3", "0.0015"},
               {"007", "7"},
               {"true", "true"},
               {"false", "false"}});
}

TEST_F(Expressions, NumbersBecomeTextWithoutAPointWhenTheyAreWholeAndElseTheShortestTextThatReadsBack) {
  expectTexts({{"0", "0"},
               {"-0", "0"},
               {"3.0", "3"},
               {"-3.0", "-3"},
               {"0.1", "0.1"},
               {"0.1 + 0.2", "0.30000000000000004"},
               {"1/3", "0.3333333333333333"},
               {"999999999999999", "999999999999999"},
               {"-999999999999999", "-999999999999999"},
               {"1e15", "1e+15"},
               {"123456789012345680", "123456789012345680"},
               {"1e-7", "1e-07"},
               {"1e300", "1e+300"},
               {"1e22", "1e+22"}});
}

TEST_F(Expressions, WhatIsNotANumberBecomesTheEmptyText) {
  expectTexts({{"1/0", ""},
               {"0/0", ""},
               {"-(1/0)", ""},
               {"1e308 * 10", ""},
               {"1e308 + 1e308", ""},
               {"${Motion} * 1", ""},
               {"${Missing} + 1", ""},
               {"1/0 + 1", ""},
               {"'x' + 1/0", "x"}});
}

TEST_F(Expressions, ListsOfTexts) {
  expectLists({{"('a', 'b')", "[a, b]"},
               {"('a',)", "[a]"},
               {"('a', 'b',)", "[a, b]"},
               {"()", "[]"},
               {"( )", "[]"},
               {"('a', ${Material}, name())", "[a, Water, rotor]"},
               {"('a', 'a')", "[a, a]"},
               {"('a, b',)", "[a, b]"}});
}

TEST_F(Expressions, AParameterIsItsValueAndAnAbsentOneTheEmptyText) {
  expectTexts({{"${Motion}", "Rotating"},
               {"${ Motion }", "Rotating"},
               {"${Speed}", "12.5 [m/s]"},
               {"${Padded}", "  Water "},
               {"${Title}", ""},
               {"${Missing}", ""},
               {"${Missing Child/Axis}", ""},
               {"${../../../Motion}", ""},
               {"${^Boundary/Kind}", ""}});
}

TEST_F(Expressions, AListParameterGivesItsTrimmedItems) {
  expectLists({{"${Fluids}", "[Water, Air, Oil, Water]"},
               {"${Material}", "[Water]"},
               {"${Padded}", "[Water]"},
               {"${Title}", "[]"},
               {"${Missing}", "[]"}});
}

TEST_F(Expressions, PathsOfEveryKindLeadToAParameter) {
  expectTexts({{"${Motion Frame/Axis}", "z"},
               {"${Boundary:in/Kind}", "Inlet"},
               {"${ Boundary : in / Kind }", "Inlet"},
               {"${../Flow Regime}", "Turbulent"},
               {"${../Domain:stator/Motion}", "Stationary"},
               {"${/Case/Domain:stator/Motion}", "Stationary"},
               {"${^Domain/Motion}", "Rotating"},
               {"${^Case/Flow Regime}", "Turbulent"},
               {"${@/Motion}", "Rotating"},
               {"${@/../Flow Regime}", "Turbulent"},
               {"${/Library/Material:Water at 25 C/Density}", "997 [kg m^-3]"},
               {R"(${/Library/Material:a\}b\*/Density})", "1"},
               {R"(${\Motion})", "Rotating"}});
}

TEST_F(Expressions, SetsOfObjectsStandInTheOrderOfTheModelEachObjectOnce) {
  expectLists(
      {{"paths({Boundary:*})",
        "[/Case/Domain:rotor/Boundary:in, /Case/Domain:rotor/Boundary:out, /Case/Domain:rotor/Boundary:shroud]"},
       {"paths({Boundary:out})", "[/Case/Domain:rotor/Boundary:out]"},
       {"paths({Boundary:missing})", "[]"},
       {"paths({Motion Frame})", "[/Case/Domain:rotor/Motion Frame]"},
       {"paths({..})", "[/Case]"},
       {"paths({../*})", "[/Case/Domain:rotor, /Case/Domain:stator]"},
       {"paths({@})", "[/Case/Domain:rotor]"},
       {"paths({^Case/Domain:*})", "[/Case/Domain:rotor, /Case/Domain:stator]"},
       {"paths({^Nothing})", "[]"},
       {"paths({/Case/*})", "[/Case/Domain:rotor, /Case/Domain:stator]"},
       {"paths({/Case/**/Boundary:in})", "[/Case/Domain:rotor/Boundary:in, /Case/Domain:stator/Boundary:in]"},
       {"paths({/Case/*/Boundary:*/..})", "[/Case/Domain:rotor, /Case/Domain:stator]"},
       {"paths({Motion Frame/**})", "[/Case/Domain:rotor/Motion Frame]"},
       {R"(paths({/Library/Material:a\}b\*}))", "[/Library/Material:a}b*]"},
       {"paths({../../../..})", "[]"}});
}

// Logic

TEST_F(Expressions, NotAndOrImplies) {
  expectTexts({{"not true", "false"},
               {"not false", "true"},
               {"not not true", "true"},
               {"true and true", "true"},
               {"true and false", "false"},
               {"false and true", "false"},
               {"false or false", "false"},
               {"false or true", "true"},
               {"true or false", "true"},
               {"true implies true", "true"},
               {"true implies false", "false"},
               {"false implies true", "true"},
               {"false implies false", "true"},
               {"true and true and false", "false"},
               {"false or false or true", "true"}});
}

TEST_F(Expressions, AParameterAsAConditionHoldsWhenItsValueIsTrue) {
  model_.set("/Case/Domain:rotor", "One", "1");
  model_.set("/Case/Domain:rotor", "On", " ON ");
  model_.set("/Case/Domain:rotor", "Two", "2");
  expectTexts({{"not ${Periodic}", "false"},
               {"${One} and ${On}", "true"},
               {"not ${Heated}", "true"},
               {"${Two} or false", "false"},
               {"${Motion} or false", "false"},
               {"${Title} or false", "false"},
               {"${Missing} or false", "false"},
               {"not ${Missing}", "true"}});
}

TEST_F(Expressions, BindingStrengths) {
  expectTexts({
      {"1 + 2 * 3", "7"},
      {"2 * 3 + 1", "7"},
      {"(1 + 2) * 3", "9"},
      {"10 - 4 - 3", "3"},
      {"16 / 4 / 2", "2"},
      {"16 / 4 * 2", "8"},
      {"-2 * 3", "-6"},
      {"2 * -3", "-6"},
      {"2 - -3", "5"},
      {"- - 2", "2"},
      {"-2 + 3", "1"},
      {"1 + 2 == 3", "true"},
      {"3 == 1 + 2", "true"},
      {"1 + 1 < 2 * 2", "true"},
      {"not 1 == 2", "true"},
      {"not false and false", "false"},
      {"not (false and false)", "true"},
      {"not true or true", "true"},
      {"true or true and false", "true"},
      {"(true or true) and false", "false"},
      {"false and false or true", "true"},
      {"false implies false or false", "true"},
      {"true or false implies false", "false"},
      {"false implies false implies false", "true"},
      {"(false implies false) implies false", "false"},
      {"true implies false implies false", "true"},
      {"not 'a' in ('a', 'b')", "false"},
      {"'a' + 'b' in ('ab',)", "true"},
      {"'a' in ('a',) and not 'b' in ('a',)", "true"},
      {"'b' not in ('a',) or false", "true"},
  });
}

TEST_F(Expressions, BlanksAndLineBreaksAreFree) {
  expectTexts({{"1+2", "3"}, {"\n  1\n+\t2\n", "3"}, {"count ( { Boundary:* } )", "3"}, {"not\ntrue", "false"}});
}

TEST_F(Expressions, LogicStopsAtTheFirstOperandThatDecides) {
  auto const data = parseRules(R"(Rule Database: 1
Checks:
  and: false and ${Motion} == 'x'
  or: true or ${Motion} == 'x'
  implies: false implies ${Motion} == 'x'
  if: if(true, 'a', ${Motion}) == 'a'
  any: any({Boundary:*}, name() == 'in' or ${Kind} == 'x')
  all: all({Boundary:*}, ${Kind} == 'x')
)");
  std::map<std::string, int> const expected = {{"and", 0}, {"or", 0},  {"implies", 0},
                                               {"if", 0},  {"any", 0}, {"all", 1}};
  for (auto const& [name, reads] : expected) {
    int valuesRead = 0;
    tarn::test::ModelView const counting(model_, [&](tarn::test::Question question, auto&, auto&) {
      valuesRead += question == tarn::test::Question::ParameterValue;
    });
    EvalContext evaluation(&counting);
    (void)data->getCheck(name, true)->evaluate(context_, &evaluation);
    EXPECT_EQ(valuesRead, reads) << name;
  }
}

// Comparison

TEST_F(Expressions, WithATextParametersAreComparedAsTextExactly) {
  expectTexts({{"${Motion} == 'Rotating'", "true"},
               {"'Rotating' == ${Motion}", "true"},
               {"${Motion} != 'Rotating'", "false"},
               {"${Motion} == 'rotating'", "false"},
               {"${Padded} == 'Water'", "false"},
               {"${Blades} == '3'", "true"},
               {"${Blades} == '3.0'", "false"},
               {"${Speed} == '12.5 [m/s]'", "true"},
               {"${Title} == ''", "true"},
               {"${Missing} == ''", "true"},
               {"${Missing} != ''", "false"},
               {"${Periodic} == 'yes'", "false"},
               {"name() == 'rotor'", "true"},
               {"name() == ${Motion}", "false"},
               {"lower(${Motion}) == 'rotating'", "true"}});
}

TEST_F(Expressions, WithANumberParametersAreComparedAsNumbers) {
  expectTexts({{"${Blades} == 3", "true"},
               {"3.0 == ${Blades}", "true"},
               {"${Blades} != 3", "false"},
               {"${Speed} == 12.5", "true"},
               {"${Speed} == 12.50", "true"},
               {"${Motion} == 3", "false"},
               {"${Motion} != 3", "true"},
               {"${Missing} == 0", "false"},
               {"${Missing} != 0", "true"},
               {"${Title} == 0", "false"},
               {"${Lengths} == 3", "false"},
               {"${Blades} == 1 + 2", "true"},
               {"${Blades} == count({Boundary:*})", "true"}});
}

TEST_F(Expressions, WithATruthParametersAreComparedAsLogicalValues) {
  model_.set("/Case/Domain:rotor", "One", "1");
  expectTexts({{"${Periodic} == true", "true"},
               {"${Periodic} == false", "false"},
               {"${Periodic} != true", "false"},
               {"true == ${Periodic}", "true"},
               {"${Heated} == false", "true"},
               {"${Heated} == true", "false"},
               {"${One} == true", "true"},
               {"${Missing} == false", "true"},
               {"${Missing} == true", "false"},
               {"${Missing} != false", "false"},
               {"${Motion} == true", "false"},
               {"${Motion} == false", "false"},
               {"${Motion} != true", "true"},
               {"${Motion} != false", "true"},
               {"${Title} == false", "false"},
               {"${Title} == true", "false"},
               {"${Periodic} == (1 < 2)", "true"},
               {"${Missing} == (1 > 2)", "true"}});
}

TEST_F(Expressions, LiteralsOnBothSidesGoByTruthThenNumberThenText) {
  expectTexts({{"true == true", "true"},
               {"true == false", "false"},
               {"true == 'true'", "true"},
               {"'yes' == true", "true"},
               {"'maybe' == true", "false"},
               {"'maybe' == false", "false"},
               {"'maybe' != false", "true"},
               {"1 == true", "true"},
               {"0 == false", "true"},
               {"2 == true", "false"},
               {"1 == 1.0", "true"},
               {"1 == '1.0'", "true"},
               {"'5 [m]' == 5", "true"},
               {"'abc' == 5", "false"},
               {"'1' == '1.0'", "false"},
               {"'a' == 'a'", "true"},
               {"1/0 == 1/0", "false"},
               {"1/0 != 1/0", "true"}});
}

TEST_F(Expressions, TwoParametersAreComparedByTheDeclaredTypeOfTheLeftOneElseOfTheRightOne) {
  declarations_ =
      "      Height: {Parameter Type: Real}\n"
      "      Width: {Parameter Type: Real}\n"
      "      Label: {Parameter Type: String}\n"
      "      Active: {Parameter Type: Logical}\n"
      "      Hot: {Parameter Type: Logical}\n"
      "      Sizes: {Parameter Type: Real List}\n";
  auto const set = [&](std::string const& name, std::string const& value) {
    model_.set("/Case/Domain:rotor", name, value);
  };
  set("Height", "1.0 [m]");
  set("Width", "1 [m]");
  set("Label", "1 [m]");
  set("Active", "yes");
  set("Hot", "TRUE");
  set("Sizes", "1, 2.0");
  set("Undeclared", "1 [m]");
  set("Other", "1.00 [m]");
  set("Undeclared Sizes", "1.0 ,2");
  expectTexts({{"${Height} == ${Width}", "true"},
               {"${Height} != ${Width}", "false"},
               {"${Height} == ${Label}", "true"},
               {"${Label} == ${Height}", "false"},
               {"${Label} == ${Width}", "true"},
               {"${Active} == ${Hot}", "true"},
               {"${Height} == ${Undeclared}", "true"},
               {"${Undeclared} == ${Height}", "true"},
               {"${Undeclared} == ${Other}", "false"},
               {"${Undeclared} == ${Label}", "true"},
               {"${Sizes} == ${Undeclared Sizes}", "true"},
               {"${Undeclared Sizes} == ${Sizes}", "true"},
               {"${Motion} == ${../Domain:stator/Motion}", "false"},
               {"${Missing} == ${Title}", "true"},
               {"${Missing} == ${Missing Too}", "true"},
               {"${../../../X} == ${Missing}", "true"}});
}

TEST_F(Expressions, OrderIsForNumbers) {
  expectTexts({{"1 < 2", "true"},
               {"2 < 2", "false"},
               {"2 <= 2", "true"},
               {"3 > 2", "true"},
               {"2 > 2", "false"},
               {"2 >= 2", "true"},
               {"10 > 9", "true"},
               {"${Speed} > 12", "true"},
               {"${Speed} < ${/Case/Maximum Speed}", "true"},
               {"${Blades} >= 3", "true"},
               {"${Motion} < 1", "false"},
               {"${Motion} >= 1", "false"},
               {"${Missing} < 1", "false"},
               {"${Missing} > -1", "false"},
               {"1/0 < 1", "false"},
               {"1/0 >= 1", "false"},
               {"first(${Lengths}) > 2", "true"}});
}

// Membership

TEST_F(Expressions, MembershipInAList) {
  expectTexts({{"${Motion} in ('Rotating', 'Stationary')", "true"},
               {"${Motion} in ('rotating',)", "false"},
               {"${Motion} not in ('Rotating',)", "false"},
               {"${Motion} not in ()", "true"},
               {"${Motion} in ()", "false"},
               {"'Air' in ${Fluids}", "true"},
               {"'Lead' in ${Fluids}", "false"},
               {"'Lead' not in ${Fluids}", "true"},
               {"${Material} in ${Fluids}", "true"},
               {"'' in ${Missing}", "false"},
               {"'' in ${Title}", "false"},
               {"'' not in ${Missing}", "true"},
               {"${Missing} in ('',)", "true"},
               {"3 in ('3', '4')", "true"},
               {"1.50 in ('1.5',)", "true"},
               {"name() in names({/Case/Domain:*})", "true"},
               {"'Water' in unique(${Fluids})", "true"}});
}

// Arithmetic

TEST_F(Expressions, QuantitiesCountAsTheirNumbers) {
  expectTexts({{"${Speed} * 2", "25"},
               {"${Speed} + ${Blades}", "15.5"},
               {"-${Speed}", "-12.5"},
               {"${/Case/Maximum Speed} / ${Speed}", "2"},
               {"${Blades} - 1", "2"}});
}

TEST_F(Expressions, PlusWithATextOnEitherSideJoins) {
  expectTexts({{"'a' + 'b'", "ab"},
               {"'a' + 1", "a1"},
               {"1 + 'a'", "1a"},
               {"1 + 2 + 'a'", "3a"},
               {"'a' + 1 + 2", "a12"},
               {"'a' + (1 + 2)", "a3"},
               {"'a' + 2 * 3", "a6"},
               {"10 - 4 + 'a'", "6a"},
               {"'at ' + ${Speed}", "at 12.5 [m/s]"},
               {"${Speed} + ' fast'", "12.5 [m/s] fast"},
               {"${Missing} + 'a'", "a"},
               {"name() + 1", "rotor1"},
               {"1 + name()", "1rotor"},
               {"'holds: ' + (1 < 2)", "holds: true"},
               {"'a' + 0.5", "a0.5"},
               {"${Speed} + ${Blades} + ' in all'", "15.5 in all"}});
}

TEST_F(Expressions, ANumberReadFromATextByAFunctionCanBeCalculatedWith) {
  expectTexts({{"first(${Lengths}) * 2", "6"}, {"-first(('4',))", "-4"}, {"name() * 1", ""}});
}

// Quantifiers

TEST_F(Expressions, AnyAllCountAndFilterJudgeEachObjectOfASet) {
  expectTexts({{"any({Boundary:*}, ${Kind} == 'Outlet')", "true"},
               {"any({Boundary:*}, ${Kind} == 'Opening')", "false"},
               {"any({Nothing:*}, true)", "false"},
               {"all({Boundary:*}, exists(${Kind}))", "true"},
               {"all({Boundary:*}, ${Kind} != '')", "false"},
               {"all({Nothing:*}, false)", "true"},
               {"count({Boundary:*})", "3"},
               {"count({Boundary:*}, ${Kind} == 'Inlet')", "1"},
               {"count({/Case/**/Boundary:*}, ${Kind} == 'Inlet')", "2"},
               {"count({Nothing:*})", "0"},
               {"count({..})", "1"},
               {"count(filter({Boundary:*}, ${Kind} != ''))", "2"},
               {"any(filter({Boundary:*}, ${Flow} > 3), ${Kind} == 'Inlet')", "true"}});
  expectLists({{"names(filter({Boundary:*}, ${Kind} == 'Inlet'))", "[in]"},
               {"names(filter(filter({Boundary:*}, ${Kind} != ''), ${Flow} < 4))", "[out]"},
               {"names(filter({Nothing:*}, true))", "[]"},
               {"names(if(${Periodic}, {Boundary:in}, {Boundary:out}))", "[in]"}});
}

TEST_F(Expressions, InsideAQuantifierPathsStartAtTheObjectUnderTestAndAtSignAtTheOwner) {
  expectTexts(
      {{"any({/Case/Domain:*}, ${Motion} != ${@/Motion})", "true"},
       {"count({/Case/Domain:*}, ${Motion} == ${@/Motion})", "1"},
       {"any({/Case/Domain:*/Boundary:*}, ${^Domain/Motion} != ${@/Motion})", "true"},
       {"count({/Case/Domain:*/Boundary:*}, ${../Motion} == 'Rotating')", "3"},
       {"any({/Case/Domain:*}, any({Boundary:*}, ${Kind} == 'Outlet') and ${Motion} == 'Stationary')", "false"},
       {"any({/Case/Domain:*}, any({Boundary:*}, ${@/Material} == 'Water' and ${^Domain/Material} == 'Air'))", "true"},
       {"count({/Case/Domain:*}, name() == name({@}))", "1"},
       {"count({/Case/Domain:*}, count({Boundary:*}) > count({@/Boundary:*}) - 1)", "1"},
       {"any({Boundary:*}, count({/Case/Domain:*}) == 2)", "true"},
       {"all({Boundary:*}, any({/Case/Domain:*}, ${Material} == ${@/Material}))", "true"}});
}

TEST_F(Expressions, AtSignInsideAQuantifierIsNotKeptFromOneOwnerToTheNext) {
  auto const data = parseRules(R"(Rule Database: 1
Checks:
  others: any({/Case/Domain:*}, any({/Case/Domain:*}, ${Material} == ${@/Material} and ${Motion} == 'Stationary'))
  two domains: count({/Case/Domain:*}) == 2 and ${Motion} == 'Rotating'
)");
  EvalCache cache;
  cache.enable(true);
  EvalContext cached(&model_, &cache);
  TDFContext const rotor("/Case/Domain:rotor");
  TDFContext const stator("/Case/Domain:stator");

  EXPECT_FALSE(data->getCheck("others", true)->evaluate(rotor, &cached));
  EXPECT_TRUE(data->getCheck("others", true)->evaluate(stator, &cached));
  EXPECT_TRUE(data->getCheck("two domains", true)->evaluate(rotor, &cached));
  EXPECT_FALSE(data->getCheck("two domains", true)->evaluate(stator, &cached));
}

}  // namespace
}  // namespace tarn::rules
