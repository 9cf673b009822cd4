// Expressions in the records of a rule database: the reads that they report, and their source text.

#include <algorithm>

#include <gmock/gmock.h>

#include <tarn/PhysicsErrorMsg.h>

#include "RuleLanguage/ExpressionTable.h"

namespace tarn::rules {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// The reads of the condition `expression` of a parameter in `/Case/Domain`: strings "${path/Name}" and "{path}", and
/// "name()" when the identity of the context is used.
std::vector<std::string> readsOf(std::string const& expression) {
  auto const data = parseRules(R"(Rule Database: 1
Lists:
  kinds: = values(${Boundary:*/Kind})
  guarded: [LES, {Value: "= ${Material}", When: "${Motion} == 'Rotating'"}]
Checks:
  rotating: ${Motion} == 'Rotating'
  alike: ${Material} == ${@/Material}
  named: name() == 'rotor'
Values:
  limit: 1.5
  faster: = 2 * ${Preset}
Objects:
  /Case/Domain:
    Parameters:
      Speed:
        Parameter Type: Real
        Available: )" + test::yamlText(expression) +
                               "\n");
  RuleReads reads;
  data->getObjDependDef("/Case/Domain", true)->findParam("Speed")->available->collectReads(reads);
  std::vector<std::string> texts;
  for (auto const& read : reads.parameters) {
    auto const objects = read.objects.text();
    texts.push_back("${" + objects + (objects.empty() || objects == "/" ? "" : "/") + read.name + "}");
  }
  for (auto const& set : reads.objectSets) texts.push_back("{" + set.text() + "}");
  if (reads.contextIdentity) texts.emplace_back("name()");
  EXPECT_EQ(reads.isContextFree(),
            std::all_of(texts.begin(), texts.end(),
                        [](std::string const& text) { return text.starts_with("${/") || text.starts_with("{/"); }))
      << expression;
  return texts;
}

TEST(CompiledRules, LiteralsReadNothing) {
  EXPECT_THAT(readsOf("1 + 2 == 3 and 'a' in ('a', 'b')"), IsEmpty());
}

TEST(CompiledRules, ParametersAndSetsAreSeenFromTheOwnerOfTheRule) {
  EXPECT_THAT(readsOf("${Motion} == 'Rotating'"), ElementsAre("${Motion}"));
  EXPECT_THAT(readsOf("${/Case/Flow Regime} == ${../Flow Regime}"),
              ElementsAre("${/Case/Flow Regime}", "${../Flow Regime}"));
  EXPECT_THAT(readsOf("exists({Boundary:*}) and exists(${^Case/Title})"),
              ElementsAre("${^Case/Title}", "{Boundary:*}"));
  EXPECT_THAT(readsOf("'x' in (${Material}, name())"), ElementsAre("${Material}", "name()"));
}

TEST(CompiledRules, WhatAQuantifierReadsIsSeenThroughItsSet) {
  EXPECT_THAT(readsOf("any({Boundary:*}, ${Kind} == 'Inlet' and ${../Motion} == ${@/Motion})"),
              UnorderedElementsAre("{Boundary:*}", "${Boundary:*/Kind}", "${Boundary:*/../Motion}", "${@/Motion}"));
  EXPECT_THAT(readsOf("any({/Case/Domain:*}, any({Boundary:*}, ${^Domain/Motion} == 'x'))"),
              UnorderedElementsAre("{/Case/Domain:*}", "{/Case/Domain:*/Boundary:*}", "${/Case/Domain:*/Motion}"));
  EXPECT_THAT(readsOf("exists(filter({/Case/*}, ${/Title} == 'x'))"), UnorderedElementsAre("{/Case/*}", "${/Title}"));
  EXPECT_THAT(readsOf("any(filter({/Case/*}, ${A} == 'x'), ${B} == 'x')"),
              UnorderedElementsAre("{/Case/*}", "${/Case/*/A}", "${/Case/*/B}"));
}

TEST(CompiledRules, AChoiceOfSetsIsSeenAsEverything) {
  EXPECT_THAT(readsOf("any(if(${Motion} == 'x', {/Case/A:*}, {/Case/B:*}), ${C} == 'x')"),
              UnorderedElementsAre("${Motion}", "{/Case/A:*}", "{/Case/B:*}", "${/**/C}"));
}

TEST(CompiledRules, TheIdentityOfTheContextIsReadUnlessTheContextIsFoundFromTheRoot) {
  EXPECT_THAT(readsOf("name() == 'rotor'"), ElementsAre("name()"));
  EXPECT_THAT(readsOf("type() == 'x' or path() == 'x'"), ElementsAre("name()"));
  EXPECT_THAT(readsOf("name({..}) == 'rotor'"), ElementsAre("{..}"));
  EXPECT_THAT(readsOf("any({/Case/*}, name() == 'rotor')"), ElementsAre("{/Case/*}"));
  EXPECT_THAT(readsOf("any({Boundary:*}, name() == 'inlet')"), ElementsAre("{Boundary:*}", "name()"));
}

TEST(CompiledRules, WhatANamedRuleReadsIsSeenFromTheCaller) {
  EXPECT_THAT(readsOf("check('rotating')"), ElementsAre("${Motion}"));
  EXPECT_THAT(readsOf("any({/Case/Domain:*}, check('rotating'))"),
              UnorderedElementsAre("{/Case/Domain:*}", "${/Case/Domain:*/Motion}"));
  EXPECT_THAT(readsOf("any({/Case/Domain:*}, check('alike'))"),
              UnorderedElementsAre("{/Case/Domain:*}", "${/Case/Domain:*/Material}", "${@/Material}"));
  EXPECT_THAT(readsOf("any({/Case/Domain:*}, check('named'))"), ElementsAre("{/Case/Domain:*}"));
  EXPECT_THAT(readsOf("check('named')"), ElementsAre("name()"));
  EXPECT_THAT(readsOf("'x' in list('kinds')"), ElementsAre("${Boundary:*/Kind}"));
  EXPECT_THAT(readsOf("'x' in list('guarded')"), UnorderedElementsAre("${Material}", "${Motion}"));
}

TEST(CompiledRules, APathThatBeginsWithANameIsSeenFromTheSetThatTheNameStandsFor) {
  EXPECT_THAT(readsOf("any(b in {Boundary:*}, ${b/Kind} == 'Inlet')"),
              UnorderedElementsAre("{Boundary:*}", "${Boundary:*/Kind}"));
  EXPECT_THAT(readsOf("any(d in {/Case/Domain:*}, any({d/Boundary:*}, ${Kind} == ${d/Preferred}))"),
              UnorderedElementsAre("{/Case/Domain:*}", "{/Case/Domain:*/Boundary:*}",
                                   "${/Case/Domain:*/Boundary:*/Kind}", "${/Case/Domain:*/Preferred}"));
  EXPECT_THAT(
      readsOf("any(d in {../Domain:*}, any(b in {Boundary:*}, ${d/Kind} == ${b/Kind} and name(d) == ${Kind}))"),
      UnorderedElementsAre("{../Domain:*}", "{../Domain:*/Boundary:*}", "${../Domain:*/Kind}",
                           "${../Domain:*/Boundary:*/Kind}", "{../Domain:*}", "${../Domain:*/Boundary:*/Kind}"));
  EXPECT_THAT(readsOf("any(b in filter(c in {Boundary:*}, ${c/Kind} == 'x'), ${b/../Motion} == 'y')"),
              UnorderedElementsAre("{Boundary:*}", "${Boundary:*/Kind}", "${Boundary:*/../Motion}"));
}

TEST(CompiledRules, ANamedValueReadsWhatItsExpressionReads) {
  EXPECT_THAT(readsOf("value('limit') > 1"), IsEmpty());
  EXPECT_THAT(readsOf("value('faster') > value('limit')"), ElementsAre("${Preset}"));
  EXPECT_THAT(readsOf("any(b in {Boundary:*}, value('faster') > ${b/Flow})"),
              UnorderedElementsAre("{Boundary:*}", "${Boundary:*/Preset}", "${Boundary:*/Flow}"));
}

TEST(CompiledRules, EveryExpressionOfARecordTellsItsReadsAndItsSource) {
  auto const data = parseRules(R"(Rule Database: 1
Objects:
  /Case/Domain:
    Parameters:
      Speed:
        Available:   ${Motion} == 'Rotating'
        Parameter Type: Real
        Default Value: = ${Preset Speed}
        Default Value Check List:
          - {When: "${A} == 'x'", Value: "= ${B}"}
        Value Override Check List:
          - {When: "${C} == 'x'", Value: 3}
        Lower Bound: 0 [m/s]
        Upper Bound: =${/Case/Maximum Speed}
        Quantity Type: = if(${D}, 'Velocity', 'Rate')
      Material:
        Parameter Type: String
        Value List Source: values(${/Library/Material:*/Title})
        Allowed String List Checks:
          Oil: ${E} == 'x'
        Subset Value List Source: ${Favourites}
    Children:
      Boundary:
        Available: >-
          exists(${F})
          or exists(${G})
        Allowed Names: = ${Names}
        Default Names: [a, b]
Global Checks:
  a case is there:
    Check: exists({/Case})
    Message: = 'no case in ' + ${/Title}
)");
  auto const& object = *data->getObjDependDef("/Case/Domain", true);
  auto const sourceAndRead = [](RuleExpression const& expression) {
    RuleReads reads;
    expression.collectReads(reads);
    std::string text = expression.sourceText() + " |";
    for (auto const& read : reads.parameters) text += " " + read.name;
    for (auto const& set : reads.objectSets) text += " {" + set.text() + "}";
    return text;
  };
  auto const& speed = *object.findValueDef("Speed");
  auto const& material = *object.findValueDef("Material");
  auto const& boundary = *object.findChild("Boundary");

  EXPECT_EQ(sourceAndRead(*object.findParam("Speed")->available), "${Motion} == 'Rotating' | Motion");
  EXPECT_EQ(sourceAndRead(*speed.defaultValue), "${Preset Speed} | Preset Speed");
  EXPECT_EQ(sourceAndRead(*speed.defaultChecks[0].when), "${A} == 'x' | A");
  EXPECT_EQ(sourceAndRead(*speed.defaultChecks[0].value), "${B} | B");
  EXPECT_EQ(sourceAndRead(*speed.overrideChecks[0].when), "${C} == 'x' | C");
  EXPECT_EQ(sourceAndRead(*speed.overrideChecks[0].value), " |");
  EXPECT_EQ(sourceAndRead(*speed.lowerBound), " |");
  EXPECT_EQ(sourceAndRead(*speed.upperBound), "${/Case/Maximum Speed} | Maximum Speed");
  EXPECT_EQ(sourceAndRead(*speed.quantityType), "if(${D}, 'Velocity', 'Rate') | D");
  EXPECT_TRUE(speed.hasVariableBounds());
  EXPECT_EQ(sourceAndRead(*material.allowedValues), "values(${/Library/Material:*/Title}) | Title");
  EXPECT_EQ(sourceAndRead(*material.allowedValueChecks.at("Oil")), "${E} == 'x' | E");
  EXPECT_EQ(sourceAndRead(*material.subset), "${Favourites} | Favourites");
  EXPECT_EQ(sourceAndRead(*boundary.available), "exists(${F}) or exists(${G}) | F G");
  EXPECT_EQ(sourceAndRead(*boundary.allowedNamesSource), "${Names} | Names");
  EXPECT_EQ(sourceAndRead(*boundary.defaultNamesSource), " |");
  EXPECT_EQ(sourceAndRead(*data->getGlobalCheck("a case is there", true)), "exists({/Case}) | Title {/Case}");
}

TEST(CompiledRules, ABoundThatReadsNothingIsNotVariable) {
  auto const data = parseRules(R"yaml(Rule Database: 1
Objects:
  /Case:
    Parameters:
      Speed: {Parameter Type: Real, Lower Bound: "= 2 * 3", Upper Bound: "= 'a' + name()"}
)yaml");
  EXPECT_FALSE(data->getParamValueDef("/Case", "Speed", true)->hasVariableBounds());
}

TEST(CompiledRules, AGlobalCheckIsEvaluatedAtTheRootAndTellsItsMessageWhenItFails) {
  auto const data = parseRules(R"(Rule Database: 1
Global Checks:
  outlet needs an inlet:
    Check: not any({**}, ${Kind} == 'Outlet') or any({/Case/**}, ${Kind} == 'Inlet')
    Message: = 'no inlet for ' + join(names(filter({/**}, ${Kind} == 'Outlet')), ', ')
  plain:
    Check: exists({Case})
    Message: There is no case.
)");
  EXPECT_THAT(data->getGlobalCheckNames(), ElementsAre("outlet needs an inlet", "plain"));

  test::MapModel model{{"/Case/Boundary:exhaust", {{"Kind", "Outlet"}}}};
  EvalContext evaluation(&model);
  auto const* outlet = data->getGlobalCheck("outlet needs an inlet", true);
  EXPECT_FALSE(outlet->evaluate(&evaluation).first);
  EXPECT_EQ(outlet->evaluate(&evaluation).second.message, "no inlet for exhaust");
  EXPECT_TRUE(data->getGlobalCheck("plain", true)->evaluate(&evaluation).first);

  model.set("/Case/Boundary:supply", "Kind", "Inlet");
  EXPECT_TRUE(outlet->evaluate(&evaluation).first);
  model.remove("/Case");
  EXPECT_FALSE(data->getGlobalCheck("plain", true)->evaluate(&evaluation).first);
  EXPECT_EQ(data->getGlobalCheck("plain", true)->evaluate(&evaluation).second.message, "There is no case.");
}

}  // namespace
}  // namespace tarn::rules
