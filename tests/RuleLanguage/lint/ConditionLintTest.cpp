// The verdicts of lint on conditions, against an evaluation with all values; and the limits of the analysis.

#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tarn/EvalContext.h>
#include <tarn/PhysicsData.h>
#include <tarn/TDFContext.h>
#include <tarn/rules/RuleLoader.h>

#include "RuleLanguage/ExpressionTable.h"
#include "lint/ConditionLint.h"
#include "lint/ConditionTerms.h"
#include "lint/ValueModel.h"

namespace tarn::rules {
namespace {

std::string rulesWith(std::string const& condition) {
  return "Rule Database: 1\n"
         "Pertinent Roots: [Case]\n"
         "Checks:\n"
         "  turns: ${Motion} == 'Rotating'\n"
         "Objects:\n"
         "  /Case:\n"
         "    Parameters:\n"
         "      Motion: {Required: yes, Parameter Type: String, Ordered Allowed String List: [Resting, Rotating]}\n"
         "      Fluid: {Parameter Type: String, Ordered Allowed String List: [Air, Oil, Water]}\n"
         "      Blades: {Parameter Type: Integer}\n"
         "      Steady: {Parameter Type: Logical}\n"
         "      Width:\n"
         "        Available: >-\n"
         "          " +
         condition +
         "\n"
         "        Parameter Type: Real\n";
}

/// The values that a parameter can have in a model without findings; nothing when it does not exist.
struct Domain {
  std::string name;
  std::vector<std::optional<std::string>> values;
};
std::vector<Domain> const domains = {
    {"Motion", {"Resting", "Rotating"}},
    {"Fluid", {std::nullopt, "Air", "Oil", "Water"}},
    {"Blades", {std::nullopt, "", "-1", "0", "1", "2", "3", "4", "5"}},
    {"Steady", {std::nullopt, "", "true", "false", "yes", "0"}},
};

class Conditions {
 public:
  explicit Conditions(unsigned seed) : random_(seed) {}

  std::string any(int depth) {
    switch (depth > 0 ? number(9) : 5 + number(4)) {
      case 0:
      case 1:
        return "(" + any(depth - 1) + " and " + any(depth - 1) + ")";
      case 2:
      case 3:
        return "(" + any(depth - 1) + " or " + any(depth - 1) + ")";
      case 4:
        return number(2) == 0 ? "not (" + any(depth - 1) + ")"
                              : "(" + any(depth - 1) + " implies " + any(depth - 1) + ")";
      case 5:
        return "${Motion} " + equality() + one({"'Resting'", "'Rotating'"});
      case 6:
        return number(2) == 0 ? "${Fluid} " + equality() + one({"'Air'", "'Oil'", "'Water'"})
                              : "${Fluid} " + one({"in", "not in"}) + one({" ('Air', 'Oil')", " ('Oil', 'Water')"});
      case 7:
        return "${Blades} " + one({"<", "<=", ">", ">=", "==", "!="}) + " " + one({"0", "1", "2", "3"});
      default:
        return one({"${Steady}", "${Steady} == false", "exists(${Fluid})", "check('turns')"});
    }
  }

 private:
  int number(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }
  std::string one(std::vector<std::string> const& texts) {
    return texts[static_cast<std::size_t>(number(static_cast<int>(texts.size())))];
  }
  std::string equality() { return one({"== ", "!= "}); }

  std::mt19937 random_;
};

/// "never-holds", "always-holds" or "": whether the condition holds with all values.
std::string judgedByAllValues(PhysicsData const& data) {
  auto const& param = *data.getObjDependDef("/Case", true)->findParam("Width");
  ValueModel model;
  for (auto const& domain : domains) model.parameters().push_back({"/Case", domain.name, {}});
  bool canHold = false;
  bool canFail = false;
  std::vector<std::size_t> index(domains.size(), 0);
  for (;;) {
    for (std::size_t i = 0; i < domains.size(); ++i) {
      auto const& value = domains[i].values[index[i]];
      model.parameters()[i].isThere = value.has_value();
      model.parameters()[i].value = value.value_or("");
    }
    EvalContext evalContext(&model);
    (param.evaluate(TDFContext("/Case"), &evalContext) ? canHold : canFail) = true;
    std::size_t next = 0;
    while (next < index.size() && ++index[next] == domains[next].values.size()) index[next++] = 0;
    if (next == index.size()) break;
  }
  return canHold && canFail ? "" : canHold ? "always-holds" : "never-holds";
}

/// The verdict of lint on the whole condition, which is on line 14.
std::string judgedByLint(std::string const& rules) {
  for (auto const& one : lintText(rules).diagnostics) {
    bool const isWhole = one.message.starts_with("this condition") || one.message.starts_with("where it is evaluated");
    if (one.line == 14 && isWhole) return one.code;
  }
  return "";
}

TEST(ConditionLint, SaysOfRandomConditionsWhatAnEvaluationWithAllValuesShows) {
  int decided = 0;
  for (unsigned seed = 1; seed <= 1500; ++seed) {
    std::string const condition = Conditions(seed).any(3);
    std::string const rules = rulesWith(condition);
    auto const expected = judgedByAllValues(*parseRules(rules));
    EXPECT_EQ(judgedByLint(rules), expected) << "seed " << seed << ": " << condition;
    decided += expected.empty() ? 0 : 1;
  }
  EXPECT_GT(decided, 50) << "too few conditions are decided for this to be a test";
}

/// Conditions that compare many parameters with each other, so that each partial assignment leaves the rest open: no
/// `count` different things find place in one fewer.
std::string pigeons(int count) {
  std::string condition;
  auto const name = [&](int pigeon, int hole) {
    return "exists({P" + std::to_string(pigeon) + "-" + std::to_string(hole) + ":*})";
  };
  for (int pigeon = 0; pigeon < count; ++pigeon) {
    condition += condition.empty() ? "(" : " and (";
    for (int hole = 0; hole + 1 < count; ++hole) condition += (hole > 0 ? " or " : "") + name(pigeon, hole);
    condition += ")";
  }
  for (int hole = 0; hole + 1 < count; ++hole) {
    for (int a = 0; a < count; ++a) {
      for (int b = a + 1; b < count; ++b) condition += " and not (" + name(a, hole) + " and " + name(b, hole) + ")";
    }
  }
  return condition;
}

std::vector<std::string> codesFor(std::string const& condition) {
  std::vector<std::string> codes;
  for (auto const& one : lintText(rulesWith(condition)).diagnostics) {
    if (one.line == 14 && one.code != "unknown-object-path") codes.push_back(one.code);
  }
  return codes;
}

TEST(ConditionLint, GivesUpAfterTwentyThousandSteps) {
  EXPECT_EQ(conditionSteps, 20'000U);
  EXPECT_EQ(codesFor(pigeons(3)), std::vector<std::string>{"never-holds"});
  EXPECT_EQ(codesFor(pigeons(9)), std::vector<std::string>{"analysis-given-up"});
}

TEST(ConditionLint, DoesNotAnalyseConditionsOfMoreThanAThousandParts) {
  EXPECT_EQ(ConditionTerms::mostParts, 1000U);
  auto const parts = [](int count) {
    std::string condition = "exists({P0:*})";
    for (int i = 1; i < count; ++i) condition += " and exists({P" + std::to_string(i) + ":*})";
    return condition;
  };
  // The chain itself is a part.
  EXPECT_EQ(codesFor(parts(999)), std::vector<std::string>{});
  EXPECT_EQ(codesFor(parts(1000)), std::vector<std::string>{"analysis-given-up"});
}

TEST(ConditionLint, FindsASharedConditionThatOnlyALaterEntryMakesImpossible) {
  auto const result = lintText(
      "Rule Database: 1\n"
      "Pertinent Roots: [Case]\n"
      "Objects:\n"
      "  /Case:\n"
      "    Parameters:\n"
      "      Early: {Parameter Type: Real, Available: 'not exists(${Motion})'}\n"
      "      Motion: {Required: yes, Parameter Type: String, Ordered Allowed String List: [Resting, Rotating]}\n"
      "      Late: {Parameter Type: Real, Available: 'not exists(${Motion})'}\n");
  std::vector<int> lines;
  for (auto const& one : result.diagnostics) {
    if (one.code == "never-holds") lines.push_back(static_cast<int>(one.line));
  }
  EXPECT_EQ(lines, std::vector<int>{8});
}

TEST(ConditionLint, TheNoteSaysWhatToDo) {
  auto const result = lintText(rulesWith(pigeons(9)));
  std::string message;
  for (auto const& one : result.diagnostics) {
    if (one.code == "analysis-given-up") message = one.message;
  }
  EXPECT_EQ(message, "lint did not find out whether this condition always or never holds; divide it into named checks");
}

}  // namespace
}  // namespace tarn::rules
