#include <tarn/workbench/RuleDependencies.h>

#include <string>

#include <gtest/gtest.h>

#include <tarn/rules/RuleLoader.h>

namespace {

using namespace tarn;
using workbench::DependencyGraph;
using workbench::GraphEdge;
using workbench::GraphNode;
using workbench::GraphOptions;
using workbench::RuleDependencies;

constexpr char const* pumpRules = R"yaml(Rule Database: 1
Pertinent Roots: [Case]
Checks:
  rotates: ${Motion} == 'Rotating'
Objects:
  /Case:
    Parameters:
      Highest Speed: {Parameter Type: Real}
      Alone: {Parameter Type: Real}
    Children:
      Domain: {Coupled: yes, Maximum Count: "= if(exists(${Highest Speed}), 1, 5)"
}
  /Case/Domain:
    Parameters:
      Motion: {Context Rule: yes, Parameter Type: String, Ordered Allowed String List: [Stationary, Rotating]}
      Speed:
        Available: check('rotates')
        Parameter Type: Real
        Upper Bound: = ${/Case/Highest Speed}
        Default Value: = ${^Case/Highest Speed}
      Axis: {Context: Rotating, Parameter Type: String}
      Loss: {Parameter Type: Real, Available: "exists(${Speed})"}
    Checks:
      fast enough: {Check: "${Speed} > 1", Message: Too slow.}
Global Checks:
  a domain: {Check: "count({/Case/Domain:*}, ${Motion} == 'Rotating') > 0", Message: Nothing turns.}
)yaml";

RuleDependencies const& pump() {
  static auto const rules = rules::parseRules(pumpRules, "pump.rules.yaml");
  static RuleDependencies const dependencies(*rules);
  return dependencies;
}

/// A line for each edge: "reader <- read: keys"; then the entries without one.
std::string textOf(DependencyGraph const& graph) {
  std::string text;
  for (GraphEdge const& edge : graph.edges) {
    text += graph.nodes[edge.reader].text() + " <- " + graph.nodes[edge.read].text() + ':';
    for (std::string const& attribute : edge.attributes) text += ' ' + attribute + ',';
    text.back() = '\n';
  }
  for (GraphNode const& node : graph.nodes) text += node.text() + ' ' + std::to_string(node.distance) + '\n';
  return text;
}

TEST(RuleDependencies, FindsWhatAnEntryReadsAndWhoReadsIt) {
  EXPECT_EQ(textOf(pump().around("/Case/Domain/Speed")),
            "/Case/Domain/Speed <- /Case/Highest Speed: Default Value, Upper Bound\n"
            "/Case/Domain/Speed <- /Case/Domain/Motion: Available\n"
            "/Case/Domain/Loss <- /Case/Domain/Speed: Available\n"
            "/Case/Domain/fast enough <- /Case/Domain/Speed: Check\n"
            "/Case/Highest Speed 1\n"
            "/Case/Domain/Motion 1\n"
            "/Case/Domain/Speed 0\n"
            "/Case/Domain/Loss 1\n"
            "/Case/Domain/fast enough 1\n");
}

TEST(RuleDependencies, FollowsOneWayOnlyWhenAsked) {
  GraphOptions options;
  options.followsReaders = false;
  EXPECT_EQ(textOf(pump().around("/Case/Domain/Loss", options)),
            "/Case/Domain/Loss <- /Case/Domain/Speed: Available\n"
            "/Case/Domain/Speed 1\n"
            "/Case/Domain/Loss 0\n");
  options.depth = 2;
  EXPECT_EQ(pump().around("/Case/Domain/Loss", options).nodes.size(), 4U);
}

TEST(RuleDependencies, AnEntryWithAContextDependsOnTheParameterThatSelectsIt) {
  EXPECT_EQ(textOf(pump().around("/Case/Domain/Axis")),
            "/Case/Domain/Axis <- /Case/Domain/Motion: Context\n"
            "/Case/Domain/Motion 1\n"
            "/Case/Domain/Axis 0\n");
}

TEST(RuleDependencies, SetsOfObjectsAreReadsOfTheTypeOfChildren) {
  EXPECT_EQ(textOf(pump().around("/Case/Domain")),
            "/Case/Domain <- /Case/Highest Speed: Maximum Count\n"
            "a domain <- /Case/Domain: Check\n"
            "/Case/Highest Speed 1\n"
            "/Case/Domain 0\n"
            "a domain 1\n");
}

TEST(RuleDependencies, NamesOfObjectsInThePathDoNotCount) {
  EXPECT_EQ(textOf(pump().around("/Case/Domain:rotor/Axis")), textOf(pump().around("/Case/Domain/Axis")));
}

TEST(RuleDependencies, AnUnknownPathHasNoGraphAndANearestOne) {
  EXPECT_TRUE(pump().around("/Case/Domain/Sped").nodes.empty());
  EXPECT_EQ(pump().nearest("/Case/Domain:rotor/Sped"), "/Case/Domain/Speed");
  EXPECT_EQ(pump().nearest("/Window/Width"), "");
}

TEST(RuleDependencies, TheWholeGraphHasAllEntriesThatDependOnSomething) {
  DependencyGraph const graph = pump().whole();
  EXPECT_EQ(graph.nodes.size(), 8U);
  for (GraphNode const& node : graph.nodes) EXPECT_NE(node.entry, "Alone");
  EXPECT_EQ(graph.leftOut, 0U);
}

TEST(RuleDependencies, BeyondTheLimitEntriesAreCountedOnly) {
  EXPECT_EQ(pump().whole(3).nodes.size(), 3U);
  EXPECT_EQ(pump().whole(3).leftOut, 5U);
  GraphOptions options;
  options.mostNodes = 2;
  DependencyGraph const graph = pump().around("/Case/Domain/Speed", options);
  EXPECT_EQ(graph.nodes.size(), 2U);
  EXPECT_EQ(graph.leftOut, 3U);
}

}  // namespace
