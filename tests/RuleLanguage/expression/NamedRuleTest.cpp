// Named checks and lists from the database, and their cost when they call each other.

#include <algorithm>
#include <random>

#include <gmock/gmock.h>

#include <tarn/EvalCheckList.h>

#include "RuleLanguage/ExpressionTable.h"

namespace tarn::rules {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

class NamedRules : public test::ExpressionTable {
 protected:
  [[nodiscard]] bool holds(PhysicsData const& data, std::string const& name, std::string const& path,
                           EvalCache* cache = nullptr) const {
    EvalContext evaluation(&model_, cache);
    return data.getCheck(name, true)->evaluate(TDFContext(path), &evaluation);
  }
};

TEST_F(NamedRules, AreEvaluatedByNameAtAPathOfAnyModel) {
  auto const data = parseRules(R"(Rule Database: 1
Checks:
  rotating: ${Motion} == 'Rotating'
Lists:
  boundaries: = names({Boundary:*})
  fluids: [Water, Air]
  nothing: []
)");
  EvalCheckList const evaluator(data.get());

  EXPECT_THAT(evaluator.evaluateCheck("rotating", "/Case/Domain:rotor", &model_), Pair(true, true));
  EXPECT_THAT(evaluator.evaluateCheck("rotating", "/Case/Domain:stator", &model_), Pair(false, true));
  EXPECT_THAT(evaluator.evaluateCheck("Rotating", "/Case/Domain:rotor", &model_), Pair(false, false));
  EXPECT_THAT(evaluator.evaluateList("boundaries", "/Case/Domain:stator", &model_), Pair(ElementsAre("in"), true));
  EXPECT_THAT(evaluator.evaluateList("fluids", "/Case", &model_), Pair(ElementsAre("Water", "Air"), true));
  EXPECT_THAT(evaluator.evaluateList("nothing", "/Case", &model_), Pair(IsEmpty(), true));
  EXPECT_THAT(evaluator.evaluateList("rotating", "/Case", &model_), Pair(IsEmpty(), false));

  test::MapModel const other{{"/Case/Domain:stator", {{"Motion", "Rotating"}}}};
  EXPECT_THAT(evaluator.evaluateCheck("rotating", "/Case/Domain:stator", &other), Pair(true, true));
}

TEST_F(NamedRules, TellTheirSource) {
  auto const data = parseRules(R"(Rule Database: 1
Checks:
  rotating: ${Motion} == 'Rotating'
Lists:
  boundaries: = names({Boundary:*})
  fluids: [Water, Air]
)");

  EXPECT_EQ(data->getCheck("rotating", true)->sourceText(), "${Motion} == 'Rotating'");
  EXPECT_EQ(data->getList("boundaries", true)->sourceText(), "names({Boundary:*})");
  EXPECT_EQ(data->getList("fluids", true)->sourceText(), "");
}

TEST_F(NamedRules, MayCallEachOtherInAnyOrderOfTheFile) {
  auto const data = parseRules(R"(Rule Database: 1
Checks:
  turns: check('rotating') and size(list('boundaries')) == 3
  rotating: ${Motion} == 'Rotating'
Lists:
  boundaries: = if(check('rotating'), names({Boundary:*}), ())
)");

  EXPECT_TRUE(holds(*data, "turns", "/Case/Domain:rotor"));
  EXPECT_FALSE(holds(*data, "turns", "/Case/Domain:stator"));
}

TEST_F(NamedRules, AnAtSignInThemIsTheOwnerOfTheRuleThatCalled) {
  auto const data = parseRules(R"(Rule Database: 1
Checks:
  like the owner: ${Material} == ${@/Material}
  all alike: all({/Case/Domain:*}, check('like the owner'))
  one alike: count({/Case/Domain:*}, check('like the owner')) == 1
)");

  EXPECT_FALSE(holds(*data, "all alike", "/Case/Domain:rotor"));
  EXPECT_TRUE(holds(*data, "one alike", "/Case/Domain:rotor"));
  EXPECT_TRUE(holds(*data, "one alike", "/Case/Domain:stator"));
  EXPECT_FALSE(holds(*data, "one alike", "/Case"));
}

/// Checks of which each calls the one before it twice: level n makes 2^(n+1) - 2 calls.
std::string doublingChecks(int levels) {
  std::string file = "Checks:\n  level 0: ${Motion} == 'Rotating'\n";
  for (int i = 1; i < levels; ++i) {
    std::string const below = "check('level " + std::to_string(i - 1) + "')";
    file += "  level " + std::to_string(i) + ": " + below + " and " + below + "\n";
  }
  return file;
}

TEST_F(NamedRules, CallsThatDoubleFromLevelToLevelAreTakenUpToTenThousand) {
  auto const data = parseRules("Rule Database: 1\n" + doublingChecks(13));

  EXPECT_TRUE(holds(*data, "level 12", "/Case/Domain:rotor"));
  EXPECT_FALSE(holds(*data, "level 12", "/Case/Domain:stator"));
  RuleReads reads;
  data->getCheck("level 12", true)->collectReads(reads);
  for (auto const& read : reads.parameters) EXPECT_EQ(read.name, "Motion");
  EXPECT_FALSE(reads.isContextFree());
  EXPECT_EQ(test::errorsOf("Rule Database: 1\n" + doublingChecks(14)),
            "flow.rules.yaml:16:3: error: one evaluation of this rule makes more than 10000 calls of named rules; "
            "use fewer calls\n"
            "   16 |   level 13: check('level 12') and check('level 12')\n"
            "      |   ^~~~~~~~\n");
}

TEST_F(NamedRules, TheLimitOfCallsIsTheHosts) {
  LoadLimits limits;
  limits.callCount = 6;
  EXPECT_EQ(test::errorsOf("Rule Database: 1\n" + doublingChecks(3), limits), "");
  EXPECT_THAT(test::errorsOf("Rule Database: 1\n" + doublingChecks(4), limits),
              HasSubstr("makes more than 6 calls of named rules"));
}

TEST_F(NamedRules, LintingRulesThatDoubleTheirCallsTakesNoTime) {
  auto const found = lintText(
      "Rule Database: 1\nPertinent Roots: [Case]\nObjects:\n  /Case:\n    Parameters:\n      Motion: "
      "{Parameter Type: String}\n" +
      doublingChecks(13));
  ASSERT_EQ(found.diagnostics.size(), 1U);
  EXPECT_THAT(format(found.diagnostics), HasSubstr("no rule uses 'level 12'"));
}

/// Checks that call each other in a chain, each with its call inside that many quantifiers, so of twice as many levels
/// and one.
std::string nestedChecks(int count, int quantifiers) {
  std::string file = "Rule Database: 1\nChecks:\n";
  for (int i = 0; i < count; ++i) {
    std::string condition = i == 0 ? "${Motion} == 'Rotating'" : "check('level " + std::to_string(i - 1) + "')";
    for (int nesting = 0; nesting < quantifiers; ++nesting) condition = "any({@}, " + condition + ")";
    file += "  level " + std::to_string(i) + ": " + condition + "\n";
  }
  return file;
}

TEST_F(NamedRules, TheDeepestNestingThatIsAllowedIsEvaluatedWithoutHarm) {
  auto const data = parseRules(nestedChecks(10, 49));

  EXPECT_TRUE(holds(*data, "level 9", "/Case/Domain:rotor"));
  EXPECT_FALSE(holds(*data, "level 9", "/Case/Domain:stator"));
}

TEST_F(NamedRules, NestingThatAddsUpOverCallsIsLimited) {
  EXPECT_THAT(
      test::errorsOf(nestedChecks(20, 49)),
      HasSubstr("error: this rule and the rules that it calls are nested deeper than 1000 levels; use fewer levels\n"));
  LoadLimits limits;
  limits.nestingDepth = 6;
  EXPECT_EQ(test::errorsOf("Rule Database: 1\nChecks:\n  a: not not true\n  b: not check('a')\n", limits), "");
  EXPECT_EQ(test::errorsOf("Rule Database: 1\nChecks:\n  a: not not true\n  b: not not check('a')\n", limits),
            "flow.rules.yaml:4:3: error: this rule and the rules that it calls are nested deeper than 6 levels; use "
            "fewer levels\n"
            "    4 |   b: not not check('a')\n"
            "      |   ^\n");
}

TEST_F(NamedRules, CirclesAreRefusedWithTheNamesInThem) {
  EXPECT_EQ(test::errorsOf(R"(Rule Database: 1
Checks:
  alone: check('alone')
  a: check('b')
  b: any({Boundary:*}, check('c'))
  c: size(list('d')) > 0
  outside: check('a')
Lists:
  d: = if(check('a'), ('x',), ())
)"),
            "flow.rules.yaml:3:3: error: named rules call each other in a circle: 'alone' calls 'alone'\n"
            "    3 |   alone: check('alone')\n"
            "      |   ^~~~~\n"
            "flow.rules.yaml:9:3: error: named rules call each other in a circle: 'a' calls 'b' calls 'c' calls 'd' "
            "calls 'a'\n"
            "    9 |   d: = if(check('a'), ('x',), ())\n"
            "      |   ^\n");
}

TEST_F(NamedRules, ACircleThroughAGuardedItemIsFoundToo) {
  EXPECT_THAT(test::errorsOf(R"yaml(Rule Database: 1
Lists:
  models: [SST, {Value: LES, When: "'LES' in list('models')"}]
)yaml"),
              HasSubstr("named rules call each other in a circle: 'models' calls 'models'"));
}

TEST_F(NamedRules, AChainOfAHundredIsTakenAndOneMoreIsNot) {
  auto const chain = [](int length) {
    std::string file = "Rule Database: 1\nChecks:\n  c0: ${Motion} == 'Rotating'\n";
    for (int i = 1; i < length; ++i) {
      file += "  c" + std::to_string(i) + ": check('c" + std::to_string(i - 1) + "')\n";
    }
    return file;
  };
  EXPECT_EQ(test::errorsOf(chain(100)), "");
  EXPECT_EQ(test::errorsOf(chain(101)),
            "flow.rules.yaml:103:3: error: named rules call each other in a chain of more than 100 calls\n"
            "  103 |   c100: check('c99')\n"
            "      |   ^~~~\n");
  LoadLimits limits;
  limits.callDepth = 2;
  EXPECT_EQ(test::errorsOf(chain(2), limits), "");
  EXPECT_THAT(test::errorsOf(chain(3), limits), HasSubstr("in a chain of more than 2 calls"));
}

TEST_F(NamedRules, AChainOfAHundredThousandAndACircleOfAsManyAreRefusedInShortTime) {
  std::string chain = "Rule Database: 1\nChecks:\n";
  std::string circle = chain;
  for (int i = 0; i < 100'000; ++i) {
    chain += "  c" + std::to_string(i) + ": " + (i > 0 ? "check('c" + std::to_string(i - 1) + "')" : "true") + "\n";
    circle += "  c" + std::to_string(i) + ": check('c" + std::to_string((i + 1) % 100'000) + "')\n";
  }
  EXPECT_THAT(test::errorsOf(chain), HasSubstr("in a chain of more than 100 calls"));
  EXPECT_THAT(
      test::errorsOf(circle),
      HasSubstr("in a circle: 'c0' calls 'c1' calls 'c2' calls 'c3' calls 'c4' calls 'c5' calls 'c6' calls 'c7' "
                "calls 'c8' calls 'c9' calls ... calls 'c0'\n"));
}

/// Random expressions over the pump: whatever they are, a cache must make no difference.
class RandomCondition {
 public:
  explicit RandomCondition(unsigned seed) : random_(seed) {}

  std::string condition(int depth) {
    switch (pick(depth > 0 ? 12 : 4)) {
      case 0:
        return value() + (pick(2) != 0 ? " == " : " != ") + pickOf({"'Rotating'", "'Water'", "'Inlet'", "3", "true"});
      case 1:
        return value() + (pick(2) != 0 ? " == " : " != ") + value();
      case 2:
        return "exists(" + pickOf({set(), "${Kind}", "${/Case/*/Motion}", "${@/Motion}"}) + ")";
      case 3:
        return "name() in " + list(depth - 1);
      case 4:
        return "not " + condition(depth - 1);
      case 5:
        return "(" + condition(depth - 1) + " and " + condition(depth - 1) + ")";
      case 6:
        return "(" + condition(depth - 1) + " or " + condition(depth - 1) + ")";
      case 7:
        return "(" + condition(depth - 1) + " implies " + condition(depth - 1) + ")";
      case 8:
        return pickOf({"any(", "all("}) + set() + ", " + condition(depth - 1) + ")";
      case 9:
        return "count(" + set() + ", " + condition(depth - 1) + ") > " + pickOf({"0", "1", "count({Boundary:*})"});
      case 10:
        return "check('" + pickOf({"absolute", "of context", "of owner"}) + "')";
      default:
        return "size(" + list(depth - 1) + ") >= size(" + list(depth - 1) + ")";
    }
  }

 private:
  std::size_t pick(int count) { return random_() % static_cast<std::size_t>(count); }
  std::string pickOf(std::vector<std::string> const& options) {
    return options[pick(static_cast<int>(options.size()))];
  }

  std::string value() {
    return pickOf({"${Motion}", "${Kind}", "${../Motion}", "${^Domain/Material}", "${@/Motion}", "${@/Material}",
                   "${/Case/Domain:rotor/Motion}", "${/Case/Domain:stator/Material}", "${Missing}"});
  }
  std::string set() {
    return pickOf({"{Boundary:*}", "{/Case/Domain:*}", "{/Case/**}", "{..}", "{@/Boundary:*}", "{^Domain}", "{../*}"});
  }
  std::string list(int depth) {
    switch (pick(depth > 0 ? 5 : 3)) {
      case 0:
        return "names(" + set() + ")";
      case 1:
        return "values(${/Case/Domain:*/Material})";
      case 2:
        return "('in', ${Material}, ${@/Motion})";
      case 3:
        return "union(" + list(depth - 1) + ", " + list(depth - 1) + ")";
      default:
        return "names(filter(" + set() + ", " + condition(depth - 1) + "))";
    }
  }

  std::mt19937 random_;
};

std::vector<std::string> randomConditions(unsigned seed, int count, int depth) {
  RandomCondition random(seed);
  std::vector<std::string> conditions;
  for (int i = 0; i < count; ++i) conditions.push_back(random.condition(depth));
  return conditions;
}

/// A rule file with the named checks that random conditions call, and with the conditions as "random 0", "random 1" and
/// so on.
std::string fileWith(std::vector<std::string> const& conditions) {
  std::string file = R"(Rule Database: 1
Checks:
  absolute: count({/Case/Domain:*}, ${Motion} == 'Rotating') == 1
  of context: any({Boundary:*}, ${Kind} == 'Inlet') and ${Motion} == 'Rotating'
  of owner: any({/Case/Domain:*}, ${Material} == ${@/Material})
)";
  for (std::size_t i = 0; i < conditions.size(); ++i) {
    file += "  random " + std::to_string(i) + ": " + test::yamlText(conditions[i]) + "\n";
  }
  return file;
}

TEST_F(NamedRules, ACacheMakesNoDifferenceToAnyRandomCondition) {
  unsigned const seed = 20261121;
  auto const conditions = randomConditions(seed, 400, 4);
  auto const data = parseRules(fileWith(conditions));
  std::vector<std::string> const contexts = {"", "/Case", "/Case/Domain:rotor", "/Case/Domain:stator",
                                             "/Case/Domain:rotor/Boundary:in"};
  EvalCache cache;
  cache.enable(true);
  for (std::size_t i = 0; i < conditions.size(); ++i) {
    auto const name = "random " + std::to_string(i);
    for (auto const& path : contexts) {
      EXPECT_EQ(holds(*data, name, path, &cache), holds(*data, name, path))
          << "seed " << seed << " at " << path << ": " << conditions[i];
    }
  }
}

TEST_F(NamedRules, WhatARandomConditionIsSaidToReadIsAllThatCanChangeIt) {
  unsigned const seed = 7;
  auto const conditions = randomConditions(seed, 300, 3);
  auto const data = parseRules(fileWith(conditions));
  TDFContext const owner("/Case/Domain:rotor");
  struct Change {
    std::string object;
    std::string name;
    std::string value;
  };
  std::vector<Change> const changes = {{"/Case/Domain:rotor", "Motion", "Stationary"},
                                       {"/Case/Domain:stator", "Motion", "Rotating"},
                                       {"/Case/Domain:rotor", "Material", "Air"},
                                       {"/Case/Domain:rotor/Boundary:in", "Kind", "Wall"},
                                       {"/Case/Domain:stator/Boundary:in", "Kind", "Rotating"}};
  for (std::size_t i = 0; i < conditions.size(); ++i) {
    auto const* check = data->getCheck("random " + std::to_string(i), true);
    RuleReads reads;
    check->collectReads(reads);
    auto const evaluate = [&](test::MapModel const& model) {
      EvalContext evaluation(&model);
      return check->evaluate(owner, &evaluation);
    };
    bool const before = evaluate(model_);
    if (reads.isContextFree()) {
      EXPECT_EQ(holds(*data, "random " + std::to_string(i), "/Case"), before)
          << "seed " << seed << ": " << conditions[i];
    }
    for (auto const& change : changes) {
      bool const isRead = std::any_of(reads.parameters.begin(), reads.parameters.end(), [&](auto const& read) {
        auto const objects = read.objects.expand(owner, model_);
        return read.name == change.name && std::find(objects.begin(), objects.end(), change.object) != objects.end();
      });
      if (isRead) continue;
      test::MapModel changed = model_;
      changed.set(change.object, change.name, change.value);
      EXPECT_EQ(evaluate(changed), before)
          << "seed " << seed << ": " << change.object << "/" << change.name << " is not read by " << conditions[i];
    }
  }
}

}  // namespace
}  // namespace tarn::rules
