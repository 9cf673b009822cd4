// Explanations as an author of rules would draw them: one line a part, with its text, its value, and what it read.

#include <tarn/Explanation.h>

#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tarn/PhysicsData.h>
#include <tarn/RuleLambdas.h>
#include <tarn/rules/RuleLoader.h>

#include "support/MapModel.h"

namespace tarn::rules::test {
namespace {

using tarn::test::MapModel;

std::string valueText(Explanation::Result const& result) {
  switch (result.kind) {
    case Explanation::Result::Kind::Truth:
      return result.truth ? "true" : "false";
    case Explanation::Result::Kind::Number:
    case Explanation::Result::Kind::Text:
      return "'" + result.text + "'";
    case Explanation::Result::Kind::List:
    case Explanation::Result::Kind::Objects:
      break;
  }
  std::string text = "[";
  for (auto const& item : result.items) text += (text.size() > 1 ? ", " : "") + item;
  return text + "]";
}

std::string readText(ModelRead const& read) {
  std::string const absent = read.isPresent ? "" : " absent";
  switch (read.kind) {
    case ModelRead::Kind::Value:
      return read.object + "/" + read.name + (read.isPresent ? "='" + read.value + "'" : absent);
    case ModelRead::Kind::Presence:
      return read.object + "/" + read.name + (read.isPresent ? " exists" : absent);
    case ModelRead::Kind::Object:
      return read.object + (read.isPresent ? " exists" : absent);
    case ModelRead::Kind::ParameterNames:
      return read.object + " names";
    case ModelRead::Kind::Children:
      return read.object + "/*: " + std::to_string(read.itemCount);
    case ModelRead::Kind::ChildrenOfType:
      return read.object + "/" + read.name + ":*: " + std::to_string(read.itemCount);
  }
  return {};
}

void draw(Explanation const& explanation, std::size_t index, std::string const& indent, std::string& out) {
  auto const& node = explanation.nodes[index];
  auto const text = explanation.textOf(node);
  out += indent + (node.alsoFails ? "also " : "") + (text.empty() ? "?" : std::string(text));
  out += " -> " + valueText(node.result);
  if (node.total > 1) out += " " + std::to_string(node.agreeing) + " of " + std::to_string(node.total);
  for (std::size_t const read : node.reads) out += "; " + readText(explanation.reads[read]);
  out += '\n';
  for (std::size_t const child : node.children) draw(explanation, child, indent + "  ", out);
}

std::string drawn(Explanation const& explanation) {
  std::string out = "\n";
  draw(explanation, 0, "", out);
  if (!explanation.isComplete) out += "not complete\n";
  if (!explanation.isMinimal) out += "not minimal\n";
  return out;
}

MapModel pumpModel() {
  return MapModel{{"/Case", {{"Flow Regime", "Turbulent"}, {"Maximum Speed", "100"}}},
                  {"/Case/Domain:rotor", {{"Motion", "Rotating"}, {"Speed", "120"}, {"Length", "25 [mm]"}}},
                  {"/Case/Domain:rotor/Boundary:inlet", {{"Kind", "Inlet"}, {"Speed", "2"}}},
                  {"/Case/Domain:rotor/Boundary:outlet", {{"Kind", "Outlet"}}},
                  {"/Case/Domain:rotor/Boundary:wall", {{"Kind", "Wall"}}},
                  {"/Case/Domain:stator", {{"Motion", "Stationary"}}}};
}

/// The rules of a domain whose parameter Asked has the condition.
std::unique_ptr<PhysicsData> rulesWith(std::string const& condition) {
  return parseRules(
      "Rule Database: 1\n"
      "Quantity Types:\n"
      "  Length: {Units: [m, mm]}\n"
      "Checks:\n"
      "  flow is turbulent: ${/Case/Flow Regime} == 'Turbulent'\n"
      "Lists:\n"
      "  kinds: [Inlet, {Value: Outlet, When: \"${Motion} == 'Stationary'\"}]\n"
      "Objects:\n"
      "  /Case/Domain:\n"
      "    Parameters:\n"
      "      Length: {Parameter Type: Real, Quantity Type: Length}\n"
      "      Asked:\n"
      "        Parameter Type: Logical\n"
      "        Available: |\n"
      "          " +
      condition + "\n");
}

Explanation explained(std::string const& condition, ModelTDF const& model) {
  auto const rules = rulesWith(condition);
  auto const* entry = rules->getObjDependDef("/Case/Domain", true)->findParam("Asked");
  TDFContext const context("/Case/Domain:rotor");
  EvalContext evalContext(&model);
  Explanation result = entry->available->explain(context, model);
  EXPECT_EQ(result.nodes.front().result.truth, entry->available->evaluate(context, &evalContext)) << condition;
  return result;
}

std::string drawing(std::string const& condition) {
  return drawn(explained(condition, pumpModel()));
}

TEST(Explanation, ComparisonShowsBothSidesAndWhatWasRead) {
  EXPECT_EQ(drawing("${Motion} == 'Stationary'"), R"(
${Motion} == 'Stationary' -> false
  ${Motion} -> 'Rotating'; /Case/Domain:rotor/Motion='Rotating'
  'Stationary' -> 'Stationary'
)");
}

TEST(Explanation, AbsentParameterIsARead) {
  EXPECT_EQ(drawing("${Missing}"), R"(
${Missing} -> false; /Case/Domain:rotor/Missing absent
)");
}

TEST(Explanation, FalseAndShowsEveryFalseOperandAndOnlyTheFirstDecides) {
  auto const explanation =
      explained("${Motion} == 'Rotating' and ${Missing} and ${Speed} > 200 and ${Absent}", pumpModel());
  EXPECT_EQ(drawn(explanation), R"(
${Motion} == 'Rotating' and ${Missing} and ${Speed} > 200 and ${Absent} -> false 3 of 4
  ${Missing} -> false; /Case/Domain:rotor/Missing absent
  also ${Speed} > 200 -> false
    ${Speed} -> '120'; /Case/Domain:rotor/Speed='120'
    200 -> '200'
  also ${Absent} -> false; /Case/Domain:rotor/Absent absent
)");
  EXPECT_EQ(explanation.neededReads(), (std::vector<bool>{true, false, false}));
}

TEST(Explanation, TrueAndShowsAllOperands) {
  EXPECT_EQ(drawing("${Motion} == 'Rotating' and ${Speed} > 100"), R"(
${Motion} == 'Rotating' and ${Speed} > 100 -> true 2 of 2
  ${Motion} == 'Rotating' -> true
    ${Motion} -> 'Rotating'; /Case/Domain:rotor/Motion='Rotating'
    'Rotating' -> 'Rotating'
  ${Speed} > 100 -> true
    ${Speed} -> '120'; /Case/Domain:rotor/Speed='120'
    100 -> '100'
)");
}

TEST(Explanation, TrueOrShowsItsFirstTrueOperand) {
  EXPECT_EQ(drawing("${Missing} or exists(${Motion}) or ${Speed} > 100"), R"(
${Missing} or exists(${Motion}) or ${Speed} > 100 -> true 2 of 3
  exists(${Motion}) -> true; /Case/Domain:rotor/Motion exists
)");
}

TEST(Explanation, FalseOrShowsAllOperands) {
  EXPECT_EQ(drawing("${Missing} or not exists(${Motion})"), R"(
${Missing} or not exists(${Motion}) -> false 2 of 2
  ${Missing} -> false; /Case/Domain:rotor/Missing absent
  not exists(${Motion}) -> false
    exists(${Motion}) -> true; /Case/Domain:rotor/Motion exists
)");
}

TEST(Explanation, OperandThatDecidesAnywayReplacesTheFirstOne) {
  EXPECT_EQ(drawing("(exists(${Motion}) or exists(${Speed})) and exists(${Speed})"), R"(
(exists(${Motion}) or exists(${Speed})) and exists(${Speed}) -> true 2 of 2
  exists(${Motion}) or exists(${Speed}) -> true 2 of 2
    exists(${Speed}) -> true; /Case/Domain:rotor/Speed exists
  exists(${Speed}) -> true; /Case/Domain:rotor/Speed exists
)");
}

TEST(Explanation, ImpliesShowsWhyItHoldsOrBothSidesWhenItDoesNot) {
  EXPECT_EQ(drawing("${Missing} implies ${Speed} > 500"), R"(
${Missing} implies ${Speed} > 500 -> true 1 of 2
  ${Missing} -> false; /Case/Domain:rotor/Missing absent
)");
  EXPECT_EQ(drawing("exists(${Speed}) implies ${Missing}"), R"(
exists(${Speed}) implies ${Missing} -> false 2 of 2
  exists(${Speed}) -> true; /Case/Domain:rotor/Speed exists
  ${Missing} -> false; /Case/Domain:rotor/Missing absent
)");
}

TEST(Explanation, AnyThatHoldsShowsItsFirstWitnessInItsOwnContext) {
  auto const explanation = explained("any({Boundary:*}, ${Kind} in ('Outlet', 'Wall'))", pumpModel());
  EXPECT_EQ(drawn(explanation), R"(
any({Boundary:*}, ${Kind} in ('Outlet', 'Wall')) -> true 2 of 3
  ${Kind} in ('Outlet', 'Wall') -> true; /Case/Domain:rotor/Boundary:*: 3
    ${Kind} -> 'Outlet'; /Case/Domain:rotor/Boundary:outlet/Kind='Outlet'
    ('Outlet', 'Wall') -> [Outlet, Wall]
)");
  EXPECT_EQ(explanation.nodes[1].context, "/Case/Domain:rotor/Boundary:outlet");
}

TEST(Explanation, AnyThatFailsShowsTheSetAndEveryObject) {
  EXPECT_EQ(drawing("any({Boundary:*}, ${Speed} > 5)"), R"(
any({Boundary:*}, ${Speed} > 5) -> false 3 of 3
  {Boundary:*} -> [/Case/Domain:rotor/Boundary:inlet, /Case/Domain:rotor/Boundary:outlet, /Case/Domain:rotor/Boundary:wall]; /Case/Domain:rotor/Boundary:*: 3
  ${Speed} > 5 -> false
    ${Speed} -> '2'; /Case/Domain:rotor/Boundary:inlet/Speed='2'
    5 -> '5'
  ${Speed} > 5 -> false
    ${Speed} -> ''; /Case/Domain:rotor/Boundary:outlet/Speed absent
    5 -> '5'
  ${Speed} > 5 -> false
    ${Speed} -> ''; /Case/Domain:rotor/Boundary:wall/Speed absent
    5 -> '5'
)");
}

TEST(Explanation, AllThatFailsShowsCounterexamplesAndTheirNumber) {
  EXPECT_EQ(drawing("all({Boundary:*}, exists(${Speed}))"), R"(
all({Boundary:*}, exists(${Speed})) -> false 2 of 3
  exists(${Speed}) -> false; /Case/Domain:rotor/Boundary:outlet/Speed absent; /Case/Domain:rotor/Boundary:*: 3
  also exists(${Speed}) -> false; /Case/Domain:rotor/Boundary:wall/Speed absent; /Case/Domain:rotor/Boundary:*: 3
)");
}

TEST(Explanation, CountShowsItsNumberAndTheObjects) {
  EXPECT_EQ(drawing("count({Boundary:*}) > 4"), R"(
count({Boundary:*}) > 4 -> false
  count({Boundary:*}) -> '3' 3 of 3
    {Boundary:*} -> [/Case/Domain:rotor/Boundary:inlet, /Case/Domain:rotor/Boundary:outlet, /Case/Domain:rotor/Boundary:wall]; /Case/Domain:rotor/Boundary:*: 3
  4 -> '4'
)");
}

TEST(Explanation, ChoiceShowsTheConditionAndTheChosenBranch) {
  EXPECT_EQ(drawing("if(${Motion} == 'Rotating', ${Speed}, ${Missing}) > 100"), R"(
if(${Motion} == 'Rotating', ${Speed}, ${Missing}) > 100 -> true
  if(${Motion} == 'Rotating', ${Speed}, ${Missing}) -> '120'
    ${Motion} == 'Rotating' -> true
      ${Motion} -> 'Rotating'; /Case/Domain:rotor/Motion='Rotating'
      'Rotating' -> 'Rotating'
    ${Speed} -> '120'; /Case/Domain:rotor/Speed='120'
  100 -> '100'
)");
}

TEST(Explanation, NamedCheckHasItsOwnText) {
  auto const explanation = explained("check('flow is turbulent')", pumpModel());
  EXPECT_EQ(drawn(explanation), R"(
check('flow is turbulent') -> true
  ${/Case/Flow Regime} == 'Turbulent' -> true
    ${/Case/Flow Regime} -> 'Turbulent'; /Case/Flow Regime='Turbulent'
    'Turbulent' -> 'Turbulent'
)");
  ASSERT_EQ(explanation.sources.size(), 2U);
  EXPECT_EQ(explanation.sources[1].name, "flow is turbulent");
}

TEST(Explanation, ItemsWithConditionsAreNeededOnlyWhereTheyCount) {
  EXPECT_EQ(drawing("'Outlet' in list('kinds')"), R"(
'Outlet' in list('kinds') -> false
  'Outlet' -> 'Outlet'
  list('kinds') -> [Inlet]
    ? -> [Inlet]
      Inlet -> 'Inlet'
      ? -> 'Outlet'
        ${Motion} == 'Stationary' -> false
          ${Motion} -> 'Rotating'; /Case/Domain:rotor/Motion='Rotating'
          'Stationary' -> 'Stationary'
        Outlet -> 'Outlet'
)");
}

TEST(Explanation, QuantitiesCountInTheFirstUnitAndShowWhatIsWritten) {
  auto const explanation = explained("${Length} < 10 [mm]", pumpModel());
  EXPECT_EQ(drawn(explanation), R"(
${Length} < 10 [mm] -> false
  ${Length} -> '25 [mm]'; /Case/Domain:rotor/Length='25 [mm]'
  10 [mm] -> '10 [mm]'
)");
  EXPECT_DOUBLE_EQ(explanation.nodes[1].result.number, 0.025);
  EXPECT_DOUBLE_EQ(explanation.nodes[2].result.number, 0.01);
}

TEST(Explanation, ResultKeptInACacheIsExplainedFromTheModel) {
  EXPECT_EQ(drawing("size(unique(values(${/Case/Domain:*/Motion}))) == 2"), R"(
size(unique(values(${/Case/Domain:*/Motion}))) == 2 -> true
  size(unique(values(${/Case/Domain:*/Motion}))) -> '2'
    unique(values(${/Case/Domain:*/Motion})) -> [Rotating, Stationary]
      values(${/Case/Domain:*/Motion}) -> [Rotating, Stationary]; /Case/Domain:*: 2; /Case/Domain:rotor/Motion='Rotating'; /Case/Domain:stator/Motion='Stationary'
  2 -> '2'
)");
}

TEST(Explanation, ConditionOfAProgramShowsItsReads) {
  auto const condition = lambda::when([](TDFContext const& at, ModelTDF const& model) {
    return model.getParameterValue(at.objPath(), "Motion") == "Rotating" && model.hasObject("/Case/Domain:stator");
  });
  auto const explanation = condition->explain(TDFContext("/Case/Domain:rotor"), pumpModel());
  EXPECT_EQ(drawn(explanation), R"(
? -> true; /Case/Domain:rotor/Motion='Rotating'; /Case/Domain:stator exists
)");
}

/// 2,000 walls, of which those with a number from `firstOpen` on are inlets.
MapModel manyBoundaries(int firstOpen) {
  MapModel model;
  for (int i = 0; i < 2000; ++i) {
    std::string number = std::to_string(i);
    number.insert(0, 4 - number.size(), '0');
    model.set("/Case/Domain:rotor/Boundary:b" + number, "Kind", i < firstOpen ? "Wall" : "Inlet");
  }
  return model;
}

struct LongSet {
  std::string result;
  std::size_t agreeing = 0;
  std::size_t total = 0;
  bool isCutShort = false;
  /// The contexts of the conditions that are shown.
  std::vector<std::string> shown;
  bool isComplete = false;

  friend bool operator==(LongSet const&, LongSet const&) = default;
  friend std::ostream& operator<<(std::ostream& out, LongSet const& set) {
    out << set.result << ' ' << set.agreeing << " of " << set.total << (set.isCutShort ? " or more" : "");
    for (auto const& context : set.shown) out << ' ' << context;
    return out << (set.isComplete ? "" : " not complete");
  }
};

/// The explanation of a set function that is the whole condition, or its left side.
LongSet longSet(std::string const& condition, MapModel const& model) {
  auto const explanation = explained(condition, model);
  auto const& nodes = explanation.nodes;
  std::size_t const place =
      nodes.front().operation == Explanation::Operation::Equal ? nodes.front().children.front() : 0;
  LongSet set{valueText(nodes[place].result), nodes[place].agreeing, nodes[place].total, nodes[place].isCutShort, {},
              explanation.isComplete};
  for (std::size_t const child : nodes[place].children) {
    if (nodes[child].result.kind != Explanation::Result::Kind::Truth) continue;
    set.shown.push_back(nodes[child].context.substr(nodes[child].context.rfind(':') + 1));
  }
  return set;
}

TEST(Explanation, VeryLargeSetIsLookedAtUpToTheFirstObjectsThatDecide) {
  EXPECT_EQ(longSet("any({Boundary:*}, ${Kind} == 'Wall')", manyBoundaries(1000)),
            (LongSet{"true", 1, 1, true, {"b0000"}, true}));
  EXPECT_EQ(longSet("any({Boundary:*}, ${Kind} == 'Inlet')", manyBoundaries(1990)),
            (LongSet{"true", 1, 1991, true, {"b1990"}, true}));
  EXPECT_EQ(longSet("all({Boundary:*}, ${Kind} == 'Wall')", manyBoundaries(1990)),
            (LongSet{"false", 3, 1993, true, {"b1990", "b1991", "b1992"}, true}));
  EXPECT_EQ(longSet("any({Boundary:*}, ${Kind} == 'Inlet')", manyBoundaries(1999)),
            (LongSet{"true", 1, 2000, false, {"b1999"}, true}));
  MapModel model = manyBoundaries(2000);
  model.set("/Case/Domain:rotor/Boundary:b0007", "Kind", "Outlet");
  EXPECT_EQ(longSet("all({Boundary:*}, ${Kind} == 'Wall')", model), (LongSet{"false", 1, 508, true, {"b0007"}, true}));
}

TEST(Explanation, VeryLargeSetThatDecidesAsAWholeShowsExamplesAndSaysThatReadsAreMissing) {
  EXPECT_EQ(longSet("any({Boundary:*}, ${Kind} == 'Outlet')", manyBoundaries(1000)),
            (LongSet{"false", 2000, 2000, false, {"b0000", "b0001", "b0002"}, false}));
  EXPECT_EQ(longSet("all({Boundary:*}, exists(${Kind}))", manyBoundaries(1000)),
            (LongSet{"true", 2000, 2000, false, {"b0000", "b0001", "b0002"}, false}));
  EXPECT_EQ(longSet("count({Boundary:*}, ${Kind} == 'Inlet') == 10", manyBoundaries(1990)),
            (LongSet{"'10'", 10, 2000, false, {"b0000", "b0001", "b0002"}, false}));
}

TEST(Explanation, WitnessInAVeryLargeSetNeedsItsOwnReadsAndTheSetAlone) {
  auto const explanation = explained("any({Boundary:*}, ${Kind} == 'Inlet')", manyBoundaries(1999));
  std::vector<std::string> reads;
  for (ModelRead const& read : explanation.reads) reads.push_back(readText(read));
  EXPECT_EQ(reads, (std::vector<std::string>{"/Case/Domain:rotor/Boundary:*: 2000",
                                             "/Case/Domain:rotor/Boundary:b1999/Kind='Inlet'"}));
  EXPECT_TRUE(explanation.isMinimal);
}

TEST(Explanation, VeryLongConditionStaysWithinItsLimits) {
  std::string condition = "${P0}";
  for (int i = 1; i < 3000; ++i) condition += " or ${P" + std::to_string(i) + "}";
  auto const explanation = explained(condition, pumpModel());
  EXPECT_FALSE(explanation.isComplete);
  EXPECT_LE(explanation.nodes.size(), Explanation::maxNodes);
  EXPECT_LE(explanation.reads.size(), Explanation::maxReads);
}

}  // namespace
}  // namespace tarn::rules::test
