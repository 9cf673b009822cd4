#include <tarn/rules/OperandRecorder.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tarn/PhysicsData.h>
#include <tarn/rules/RuleLoader.h>

#include "support/MapModel.h"

namespace tarn::rules::test {
namespace {

using tarn::test::MapModel;

std::string const path = "/Case/Domain:rotor";

/// Rules of a domain with the named checks `checks`, and a parameter with the attributes `attributes`.
std::unique_ptr<PhysicsData> rulesWith(std::string const& attributes, std::string const& checks = {}) {
  return parseRules(
      "Rule Database: 1\nPertinent Roots: [Case]\n" + checks +
      "Objects:\n  /Case:\n    Children:\n      Domain: {}\n  /Case/Domain:\n    Parameters:\n"
      "      A: {Parameter Type: Logical}\n      B: {Parameter Type: Logical}\n      C: {Parameter Type: Logical}\n"
      "      D: {Parameter Type: Logical}\n      P:\n        Parameter Type: String\n" +
      attributes);
}

/// A model whose domain has the logical parameters of `letters`, "AbC": A and C are true, B is false.
MapModel modelOf(std::string const& letters) {
  MapModel model;
  for (char const letter : letters) {
    bool const isTrue = letter >= 'A' && letter <= 'Z';
    model.set(path, std::string(1, isTrue ? letter : static_cast<char>(letter - 'a' + 'A')), isTrue ? "yes" : "no");
  }
  return model;
}

/// The parts of a condition after one evaluation: "text=1/0" for once true and never false. Parts that did not decide
/// are left out.
std::string decidingParts(std::string const& condition, std::string const& letters, std::string const& checks = {}) {
  auto const rules = rulesWith("        Available: " + condition + "\n", checks);
  auto const& rule = *rules->getObjDependDef("/Case/Domain", false)->findParam("P")->available;
  MapModel const model = modelOf(letters);
  EvalContext context(&model);
  OperandRecorder recorder;
  recorder.evaluate(rule, TDFContext(path), &context);
  std::string text;
  for (auto const& part : recorder.partsOf(rule)) {
    if (part.timesTrue + part.timesFalse == 0) continue;
    text += (text.empty() ? "" : "; ") + part.text + '=' + std::to_string(part.timesTrue) + '/' +
            std::to_string(part.timesFalse);
  }
  return text;
}

TEST(OperandRecorder, BothOperandsOfAnAndThatHoldsDecide) {
  EXPECT_EQ(decidingParts("${A} and ${B}", "AB"), "${A} and ${B}=1/0; ${A}=1/0; ${B}=1/0");
}

TEST(OperandRecorder, OnlyTheFirstOperandThatFailsDecidesAnAnd) {
  EXPECT_EQ(decidingParts("${A} and ${B} and ${C}", "Abc"), "${A} and ${B} and ${C}=0/1; ${B}=0/1");
}

TEST(OperandRecorder, OnlyTheFirstOperandThatHoldsDecidesAnOr) {
  EXPECT_EQ(decidingParts("${A} or ${B} or ${C}", "aBC"), "${A} or ${B} or ${C}=1/0; ${B}=1/0");
  EXPECT_EQ(decidingParts("${A} or ${B}", "ab"), "${A} or ${B}=0/1; ${A}=0/1; ${B}=0/1");
}

TEST(OperandRecorder, ImpliesIsDecidedByAPremiseThatFailsOrByTheConclusion) {
  EXPECT_EQ(decidingParts("${A} implies ${B}", "ab"), "${A} implies ${B}=1/0; ${A}=0/1");
  EXPECT_EQ(decidingParts("${A} implies ${B}", "AB"), "${A} implies ${B}=1/0; ${B}=1/0");
  EXPECT_EQ(decidingParts("${A} implies ${B}", "Ab"), "${A} implies ${B}=0/1; ${A}=1/0; ${B}=0/1");
}

TEST(OperandRecorder, AnOperandIsCountedByItsOwnValueInsideOfNot) {
  EXPECT_EQ(decidingParts("not (${A} and ${B})", "Ab"), "not (${A} and ${B})=1/0; ${B}=0/1");
}

TEST(OperandRecorder, OperandsOfOperandsArePartsAndWhatJoinsThemIsNot) {
  EXPECT_EQ(decidingParts("(${A} or not ${B}) and not (${C} and ${D})", "abCd"),
            "(${A} or not ${B}) and not (${C} and ${D})=1/0; ${B}=0/1; ${D}=0/1");
}

TEST(OperandRecorder, ConditionsInsideOfChoicesAndSetsAreCounted) {
  EXPECT_EQ(decidingParts("if(${A}, ${B}, ${C}) == 'no'", "abc"), "if(${A}, ${B}, ${C}) == 'no'=1/0; ${A}=0/1");
  EXPECT_EQ(decidingParts("any({/Case/Domain:*}, ${A} and ${B})", "Ab"),
            "any({/Case/Domain:*}, ${A} and ${B})=0/1; ${A} and ${B}=0/1; ${B}=0/1");
}

TEST(OperandRecorder, ANamedCheckIsCountedWhereverItIsCalled) {
  auto const rules = rulesWith("        Available: check('both') and ${C}\n", "Checks:\n  both: ${A} and ${B}\n");
  auto const& rule = *rules->getObjDependDef("/Case/Domain", false)->findParam("P")->available;
  MapModel const model = modelOf("AbC");
  EvalContext context(&model);
  OperandRecorder recorder;
  recorder.evaluate(rule, TDFContext(path), &context);
  auto const parts = recorder.partsOf(*rules->getCheck("both", false));
  ASSERT_EQ(parts.size(), 3U);
  EXPECT_EQ(parts[0].text, "${A} and ${B}");
  EXPECT_EQ(parts[0].timesFalse, 1U);
  EXPECT_EQ(parts[1].timesTrue + parts[1].timesFalse, 0U);
  EXPECT_EQ(parts[2].text, "${B}");
  EXPECT_EQ(parts[2].timesFalse, 1U);
}

TEST(OperandRecorder, ANamedCheckOfOneParameterIsCounted) {
  auto const rules = rulesWith("        Available: not check('hot')\n", "Checks:\n  hot: ${A}\n");
  MapModel const model = modelOf("A");
  EvalContext context(&model);
  OperandRecorder recorder;
  recorder.evaluate(*rules->getObjDependDef("/Case/Domain", false)->findParam("P")->available, TDFContext(path),
                    &context);
  auto const parts = recorder.partsOf(*rules->getCheck("hot", false));
  ASSERT_EQ(parts.size(), 1U);
  EXPECT_EQ(parts[0].timesTrue, 1U);
}

TEST(OperandRecorder, RulesWithTheSameTextAreCountedOneByOne) {
  auto const rules =
      rulesWith("        Available: ${A} and ${B}\n      Q: {Parameter Type: String, Available: '${A} and ${B}'}\n");
  ObjDependDef const& object = *rules->getObjDependDef("/Case/Domain", false);
  MapModel const model = modelOf("AB");
  EvalContext context(&model);
  OperandRecorder recorder;
  recorder.evaluate(*object.findParam("P")->available, TDFContext(path), &context);
  EXPECT_EQ(recorder.partsOf(*object.findParam("P")->available).front().timesTrue, 1U);
  EXPECT_EQ(recorder.partsOf(*object.findParam("Q")->available).front().timesTrue, 0U);
}

TEST(OperandRecorder, ConditionsOfItemsOfAListAreParts) {
  auto const rules = rulesWith("", "Lists:\n  letters: [x, {Value: y, When: '${A} or ${B}'}]\n");
  auto const& rule = *rules->getList("letters", false);
  MapModel const model = modelOf("aB");
  EvalContext context(&model);
  OperandRecorder recorder;
  recorder.evaluate(rule, TDFContext(path), &context);
  auto const parts = recorder.partsOf(rule);
  ASSERT_EQ(parts.size(), 3U);
  EXPECT_EQ(parts[0].timesTrue, 1U);
  EXPECT_EQ(parts[1].timesTrue + parts[1].timesFalse, 0U);
  EXPECT_EQ(parts[2].timesTrue, 1U);
}

TEST(OperandRecorder, CountsOfTwoRecordersAdd) {
  auto const rules = rulesWith("        Available: ${A}\n");
  auto const& rule = *rules->getObjDependDef("/Case/Domain", false)->findParam("P")->available;
  OperandRecorder first;
  OperandRecorder second;
  for (auto const& [recorder, letters] : {std::pair{&first, "A"}, std::pair{&second, "a"}, std::pair{&second, "A"}}) {
    MapModel const model = modelOf(letters);
    EvalContext context(&model);
    recorder->evaluate(rule, TDFContext(path), &context);
  }
  first.add(second);
  EXPECT_EQ(first.partsOf(rule).front().timesTrue, 2U);
  EXPECT_EQ(first.partsOf(rule).front().timesFalse, 1U);
}

// The law, over random conditions and all models: the count of the whole condition is its value, and the operands that
// decided give this value whatever the others are.
std::string randomCondition(std::mt19937& numbers, int depth) {
  int const kind = depth == 0 ? 0 : static_cast<int>(numbers() % 6);
  auto const operand = [&] { return randomCondition(numbers, depth - 1); };
  switch (kind) {
    case 1:
      return "(" + operand() + " and " + operand() + ")";
    case 2:
      return "(" + operand() + " or " + operand() + ")";
    case 3:
      return "not " + operand();
    case 4:
      return "(" + operand() + " implies " + operand() + ")";
    case 5:
      return "(" + operand() + " and " + operand() + " and " + operand() + ")";
    default:
      return std::string("${") + "ABCD"[numbers() % 4] + "}";
  }
}

TEST(OperandRecorderLaw, DecidingOperandsGiveTheValueWhateverTheOthersAre) {
  std::mt19937 numbers(20'261'122);
  for (int round = 0; round < 200; ++round) {
    std::string const condition = randomCondition(numbers, 3);
    auto const rules = rulesWith("        Available: " + condition + "\n");
    auto const& rule = *rules->getObjDependDef("/Case/Domain", false)->findParam("P")->available;
    auto const lettersOf = [](unsigned bits) {
      std::string letters;
      for (unsigned i = 0; i < 4; ++i)
        letters += static_cast<char>(((bits >> i & 1U) != 0 ? 'A' : 'a') + static_cast<int>(i));
      return letters;
    };
    for (unsigned bits = 0; bits < 16; ++bits) {
      MapModel const model = modelOf(lettersOf(bits));
      EvalContext context(&model);
      bool const value = rule.evaluate(TDFContext(path), &context);
      OperandRecorder recorder;
      recorder.evaluate(rule, TDFContext(path), &context);
      auto const parts = recorder.partsOf(rule);
      ASSERT_EQ(parts.front().timesTrue, value ? 1U : 0U) << condition << " with " << lettersOf(bits);
      ASSERT_EQ(parts.front().timesFalse, value ? 0U : 1U) << condition << " with " << lettersOf(bits);
      for (auto const& part : parts) {
        bool const isOperand = part.text.size() == 4;
        ASSERT_TRUE(isOperand || &part == &parts.front()) << part.text << " in " << condition;
      }
      unsigned known = 0;
      for (auto const& part : parts) {
        bool const isParameter = part.text.size() == 4 && part.text[0] == '$';
        if (isParameter && part.timesTrue + part.timesFalse > 0)
          known |= 1U << static_cast<unsigned>(part.text[2] - 'A');
      }
      for (unsigned other = 0; other < 16; ++other) {
        if ((other & known) != (bits & known)) continue;
        MapModel const changed = modelOf(lettersOf(other));
        EvalContext changedContext(&changed);
        ASSERT_EQ(rule.evaluate(TDFContext(path), &changedContext), value)
            << condition << " with " << lettersOf(bits) << " and with " << lettersOf(other);
      }
    }
  }
}

}  // namespace
}  // namespace tarn::rules::test
