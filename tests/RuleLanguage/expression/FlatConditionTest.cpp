// Tests in a row give the truth of the condition that they were made of, and read the model in the same order.

#include "expression/FlatCondition.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include <tarn/EvalContext.h>

#include "expression/Parser.h"
#include "support/MapModel.h"
#include "support/ModelView.h"

namespace tarn::rules {
namespace {

using tarn::test::MapModel;
using tarn::test::ModelView;
using tarn::test::Question;

class FlatConditions : public testing::Test {
 protected:
  /// The truth of the expression and the questions to the model, as node or as tests in a row.
  struct Evaluation {
    bool truth = false;
    std::vector<std::string> questions;
    friend bool operator==(Evaluation const&, Evaluation const&) = default;
  };

  static ExpressionPtr parsed(std::string const& text) {
    auto result = parseExpression(text, Role::Condition, NamedRules(), nullptr, ParserLimits());
    EXPECT_TRUE(result.expression) << text;
    return std::move(result.expression);
  }
  template <typename Evaluate>
  Evaluation evaluation(Evaluate const& evaluate) const {
    Evaluation result;
    ModelView const view(model_, [&](Question question, std::string const& path, std::string const& name) {
      // Whether an empty value is present matters to a node that asks for more than the truth.
      if (question == Question::ParameterValue) result.questions.push_back(path + '/' + name);
    });
    EvalContext context(&view);
    TDFContext const rotor("/Case/Domain:rotor");
    result.truth = evaluate(Frame{view, rotor, &context});
    return result;
  }
  void expectSame(std::string const& text) const {
    auto const expression = parsed(text);
    if (!expression) return;
    FlatCondition const flat(*expression);
    auto const ofNodes = evaluation([&](Frame const& frame) { return expression->truth(frame); });
    auto const ofTests = evaluation([&](Frame const& frame) { return flat.holds(frame); });
    EXPECT_EQ(ofTests.truth, ofNodes.truth) << text;
    EXPECT_EQ(ofTests.questions, ofNodes.questions) << text;
  }

  MapModel model_{{"/Case", {{"Regime", "Turbulent"}}},
                  {"/Case/Domain:rotor",
                   {{"Motion", "Rotating"}, {"Heated", "yes"}, {"Porous", "off"}, {"Blades", "3"}, {"Title", ""}}},
                  {"/Case/Domain:rotor/Boundary:inlet", {{"Heated", "no"}}}};
};

TEST_F(FlatConditions, EachOperandHasTheTruthOfItsNode) {
  for (char const* text : {"${Heated}",
                           "${Porous}",
                           "${Motion}",
                           "${Title}",
                           "${Absent}",
                           "true",
                           "false",
                           "${Motion} == 'Rotating'",
                           "'Rotating' == ${Motion}",
                           "${Motion} != 'Rotating'",
                           "${Motion} != 'Stationary'",
                           "${Absent} == ''",
                           "${Absent} != ''",
                           "${Blades} == 3",
                           "${Blades} > 2",
                           "${Motion} == ${Title}",
                           "${Heated} == true",
                           "${../Regime} == 'Turbulent'",
                           "any({Boundary:*}, ${Heated})",
                           "any({Boundary:*}, not ${Heated})",
                           "${Motion} in ('Rotating', 'Stationary')",
                           "${Motion} in ('Stationary', 'Oscillating')",
                           "${Motion} not in ('Rotating', 'Stationary')",
                           "${Motion} not in ('Stationary', 'Oscillating')",
                           "${Blades} in ('3', '5')",
                           "${Absent} in ('Rotating', '')",
                           "${Motion} in ('Stationary', ${Title})",
                           "${../Regime} in ('Turbulent', 'Laminar')",
                           "'Rotating' in ('Rotating', 'Stationary')",
                           "exists(${Title})"}) {
    expectSame(text);
  }
}

TEST_F(FlatConditions, OperatorsStopAtTheFirstOperandThatDecides) {
  for (char const* text :
       {"not ${Heated}", "not not ${Heated}", "${Heated} and ${Porous} and ${Blades}", "${Porous} and ${Heated}",
        "${Porous} or ${Heated} or ${Blades}", "not (${Heated} and ${Porous}) or ${Absent}",
        "${Heated} implies ${Porous}", "${Porous} implies ${Absent}",
        "(${Heated} implies ${Porous}) implies ${Motion} == 'Rotating'",
        "not ((${Porous} or not ${Heated}) and (${Blades} == 3 implies ${Absent}))"}) {
    expectSame(text);
  }
}

TEST_F(FlatConditions, RandomConditionsHaveTheTruthOfTheirNodes) {
  std::mt19937 random(12);
  std::vector<std::string> const operands = {"${Heated}",
                                             "${Porous}",
                                             "${Motion} == 'Rotating'",
                                             "${Motion} != 'Rotating'",
                                             "${Absent}",
                                             "${Blades} > 2",
                                             "true",
                                             "${Motion} in ('Rotating', 'Stationary')",
                                             "${Motion} not in ('Rotating', 'Other')"};
  for (int i = 0; i < 500 && !HasFailure(); ++i) {
    std::vector<std::string> parts;
    for (int j = 0; j < 6; ++j) parts.push_back(operands[random() % operands.size()]);
    while (parts.size() > 1) {
      std::string const last = parts.back();
      parts.pop_back();
      std::string& other = parts[random() % parts.size()];
      std::vector<std::string> const operators = {" and ", " or ", " implies "};
      other = "(" + other + operators[random() % 3] + (random() % 3 == 0 ? "not " : "") + last + ")";
    }
    expectSame(parts.front());
  }
}

TEST_F(FlatConditions, WithoutTestsItHolds) {
  EXPECT_TRUE(evaluation([](Frame const& frame) { return FlatCondition().holds(frame); }).truth);
}

}  // namespace
}  // namespace tarn::rules
