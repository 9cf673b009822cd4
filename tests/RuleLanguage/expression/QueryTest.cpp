// Expressions that are asked about a model and are not in any rule file.
#include <tarn/rules/Query.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include <tarn/EvalContext.h>
#include <tarn/PhysicsData.h>
#include <tarn/RuleLambdas.h>
#include <tarn/TDFContext.h>
#include <tarn/rules/RuleLoader.h>

#include "support/MapModel.h"

namespace tarn::rules::test {
namespace {

using tarn::test::MapModel;
using testing::ElementsAre;

class QueryTest : public testing::Test {
 protected:
  QueryTest()
      : rules_(parseRules("Rule Database: 1\n"
                          "Quantity Types:\n"
                          "  Length: {Units: [m, mm]}\n"
                          "Checks:\n"
                          "  is long: ${Length} > 20 [mm]\n"
                          "Lists:\n"
                          "  kinds: [Inlet, Outlet]\n"
                          "Objects:\n"
                          "  /Case/Pipe:\n"
                          "    Parameters:\n"
                          "      Length: {Parameter Type: Real, Quantity Type: Length}\n"
                          "      Kind: {Parameter Type: String}\n")) {}

  Query::Result ask(std::string const& text, std::string const& at = "/Case/Pipe:feed") const {
    auto const parsed = parseQuery(text, *rules_);
    EXPECT_TRUE(parsed.query) << format(parsed.diagnostics);
    if (!parsed.query) return {};
    EvalContext context(&model_);
    return parsed.query->evaluate(TDFContext(at), &context);
  }

  std::unique_ptr<PhysicsData> rules_;
  MapModel const model_{{"/Case", {}},
                        {"/Case/Pipe:feed", {{"Length", "25 [mm]"}, {"Kind", "Inlet"}}},
                        {"/Case/Pipe:drain", {{"Length", "1 [m]"}}}};
};

TEST_F(QueryTest, AConditionIsTrueOrFalse) {
  auto const result = ask("${Kind} == 'Inlet'");
  EXPECT_EQ(result.kind, Query::Kind::Truth);
  EXPECT_TRUE(result.truth);
  EXPECT_EQ(result.text, "true");
}

TEST_F(QueryTest, ANumberOfAQuantityIsInItsFirstUnit) {
  auto const result = ask("${Length} * 2");
  EXPECT_EQ(result.kind, Query::Kind::Number);
  EXPECT_DOUBLE_EQ(result.number, 0.05);
  EXPECT_EQ(result.text, "0.05");
}

TEST_F(QueryTest, WhatIsNoNumberHasNoText) {
  auto const result = ask("number(${Kind})");
  EXPECT_TRUE(std::isnan(result.number));
  EXPECT_EQ(result.text, "");
}

TEST_F(QueryTest, AParameterIsATextThatCountsAsANumberToo) {
  auto const result = ask("${Length}");
  EXPECT_EQ(result.kind, Query::Kind::Text);
  EXPECT_EQ(result.text, "25 [mm]");
  EXPECT_DOUBLE_EQ(result.number, 0.025);
  EXPECT_FALSE(result.truth);
}

TEST_F(QueryTest, AListHasItsItems) {
  auto const result = ask("union(list('kinds'), ('Wall',))");
  EXPECT_EQ(result.kind, Query::Kind::List);
  EXPECT_THAT(result.items, ElementsAre("Inlet", "Outlet", "Wall"));
}

TEST_F(QueryTest, ASetOfObjectsHasTheirPaths) {
  auto const result = ask("filter({Pipe:*}, check('is long'))", "/Case");
  EXPECT_EQ(result.kind, Query::Kind::Objects);
  EXPECT_THAT(result.items, testing::UnorderedElementsAre("/Case/Pipe:feed", "/Case/Pipe:drain"));
}

TEST_F(QueryTest, MistakesAreReportedWithTheirPlacesInTheText) {
  auto const parsed = parseQuery("exist(${Kind})", *rules_, "question");
  EXPECT_FALSE(parsed.query);
  EXPECT_EQ(format(parsed.diagnostics),
            "question:1:1: error: unknown function 'exist'; did you mean 'exists'?\n"
            "    1 | exist(${Kind})\n"
            "      | ^~~~~\n");
}

TEST_F(QueryTest, AMistakeHasTheFixThatAProgramCanMake) {
  auto const parsed = parseQuery("check('is lnog')", *rules_);
  ASSERT_EQ(parsed.diagnostics.size(), 1U);
  ASSERT_TRUE(parsed.diagnostics.front().fix);
  EXPECT_EQ(parsed.diagnostics.front().fix->text, "'is long'");
}

TEST_F(QueryTest, QuantitiesOfUnknownUnitsAreMistakes) {
  auto const parsed = parseQuery("${Length} > 3 [furlongs per cow]", *rules_);
  EXPECT_FALSE(parsed.query);
  EXPECT_EQ(parsed.diagnostics.size(), 1U);
}

TEST_F(QueryTest, AnEmptyTextIsAMistake) {
  auto const parsed = parseQuery("", *rules_);
  EXPECT_FALSE(parsed.query);
  ASSERT_EQ(parsed.diagnostics.size(), 1U);
  EXPECT_EQ(parsed.diagnostics.front().message, "an expression is missing");
}

TEST_F(QueryTest, TheLimitsOfRuleFilesHold) {
  LoadLimits limits;
  limits.expressionLength = 10;
  EXPECT_FALSE(parseQuery("1 + 1 + 1 + 1", *rules_, "question", limits).query);
  limits = {};
  limits.expressionDepth = 5;
  EXPECT_FALSE(parseQuery("((((((1))))))", *rules_, "question", limits).query);
}

TEST_F(QueryTest, NamedRulesOfAProgramCannotBeCalled) {
  ASSERT_TRUE(
      rules_->addCheck("from a program", lambda::check([](TDFContext const&, ModelTDF const&) { return true; })));
  EXPECT_FALSE(parseQuery("check('from a program')", *rules_).query);
}

TEST_F(QueryTest, ExplainsWithTheSameResult) {
  auto const parsed = parseQuery("${Kind} == 'Inlet' and check('is long')", *rules_);
  ASSERT_TRUE(parsed.query);
  Explanation const explanation = parsed.query->explain(TDFContext("/Case/Pipe:feed"), model_);
  ASSERT_FALSE(explanation.nodes.empty());
  EXPECT_TRUE(explanation.nodes.front().result.truth);
  EXPECT_EQ(explanation.textOf(explanation.nodes.front()), "${Kind} == 'Inlet' and check('is long')");
  EXPECT_EQ(explanation.nodes.front().children.size(), 2U);
}

TEST_F(QueryTest, GivesTheValueOfEveryPart) {
  struct Case {
    std::string expression;
    std::vector<std::string> parts;
  };
  std::vector<Case> const cases = {
      {"${Kind} == 'Inlet' and check('is long') and ${Kind} == 'Wall'",
       {"${Kind} == 'Inlet' and check('is long') and ${Kind} == 'Wall': false 1/3", "${Kind} == 'Inlet': true",
        "${Kind}", "'Inlet'", "check('is long'): true", "${Length} > 20 [mm]: true", "${Length}", "20 [mm]",
        "${Kind} == 'Wall': false", "${Kind}", "'Wall'"}},
      {"${Kind} == 'Wall' implies ${Kind} == 'Outlet'",
       {"${Kind} == 'Wall' implies ${Kind} == 'Outlet': true 1/2", "${Kind} == 'Wall': false", "${Kind}", "'Wall'",
        "${Kind} == 'Outlet': false", "${Kind}", "'Outlet'"}},
      {"if(${Kind} == 'Inlet', 1, 2)",
       {"if(${Kind} == 'Inlet', 1, 2)", "${Kind} == 'Inlet': true", "${Kind}", "'Inlet'", "1", "2"}},
      {"any({../Pipe:*}, ${Kind} == 'Inlet')",
       {"any({../Pipe:*}, ${Kind} == 'Inlet'): true 1/2", "{../Pipe:*}", "${Kind} == 'Inlet': true", "${Kind}",
        "'Inlet'", "${Kind} == 'Inlet': false", "${Kind}", "'Inlet'"}},
  };
  for (auto const& [expression, parts] : cases) {
    auto const parsed = parseQuery(expression, *rules_);
    ASSERT_TRUE(parsed.query) << format(parsed.diagnostics);
    Explanation const all = parsed.query->explainAllParts(TDFContext("/Case/Pipe:feed"), model_);
    std::vector<std::string> found;
    for (Explanation::Node const& node : all.nodes) {
      std::string line(all.textOf(node));
      if (node.result.kind == Explanation::Result::Kind::Truth) line += node.result.truth ? ": true" : ": false";
      if (node.total > 1) line += ' ' + std::to_string(node.agreeing) + '/' + std::to_string(node.total);
      found.push_back(line);
    }
    EXPECT_EQ(found, parts) << expression;
    EXPECT_FALSE(all.isMinimal);
  }
}

TEST_F(QueryTest, SaysWhatItReads) {
  auto const parsed = parseQuery("${../Pipe:drain/Length} > 1 [m]", *rules_);
  ASSERT_TRUE(parsed.query);
  RuleReads reads;
  parsed.query->collectReads(reads);
  EXPECT_FALSE(reads.unknown);
  EXPECT_FALSE(reads.parameters.empty());
}

}  // namespace
}  // namespace tarn::rules::test
