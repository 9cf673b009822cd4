// Proofs as their text, compared whole: the lines that an engineer reads.

#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tarn/session/Proof.h>
#include <tarn/session/Session.h>

#include "FlowCase.h"

namespace tarn::session::test {
namespace {

std::string const rotor = "/Case/Domain:rotor";

TEST(Why, AbsentParameterShowsTheReasonTheRuleAndWhatItNeeds) {
  FlowCase const flow;
  EXPECT_EQ(flow.why(rotor, "Angular Velocity"), R"(
/Case/Domain:rotor/Angular Velocity is absent: not available
  "Only a rotating domain has an angular velocity."
  Available: ${Motion} == 'Rotating'  (flow.rules.yaml:38:20)
    Motion is 'Stationary', needs 'Rotating'  (default, flow.rules.yaml:34:24)
  1 more fact with more depth
)");
}

TEST(Why, EveryOperandThatStandsInTheWayIsShown) {
  FlowCase const flow;
  EXPECT_EQ(flow.why(rotor, "Drag"), R"(
/Case/Domain:rotor/Drag is absent: not available
  Available: ${Angular Velocity} > 10 and ${Material} == 'Water' and check('flow is turbulent')  (flow.rules.yaml:49:20)
    needs all of
      Angular Velocity is absent, needs more than 10
      also Material is 'Air', needs 'Water'  (default, flow.rules.yaml:47:24)
      also 'flow is turbulent' does not hold  (flow.rules.yaml:4:22)
        /Case/Flow Regime is 'Laminar', needs 'Turbulent'  (default, flow.rules.yaml:8:7)
  1 more fact with more depth
)");
}

TEST(Why, DepthExplainsWhatWasRead) {
  FlowCase const flow;
  EXPECT_EQ(flow.why(rotor, "Angular Velocity", {Question::Value, {}, 2}), R"(
/Case/Domain:rotor/Angular Velocity is absent: not available
  "Only a rotating domain has an angular velocity."
  Available: ${Motion} == 'Rotating'  (flow.rules.yaml:38:20)
    Motion is 'Stationary', needs 'Rotating'  (default, flow.rules.yaml:34:24)
  /Case/Domain:rotor/Motion is 'Stationary': the default
    Default Value: 'Stationary'  (flow.rules.yaml:34:24)
)");
}

TEST(Why, AbsentObjectAboveIsTheWholeProof) {
  FlowCase const flow;
  EXPECT_EQ(flow.why(rotor + "/Turbulence", "Intensity"), R"(
/Case/Domain:rotor/Turbulence/Intensity is absent: its object is absent
  /Case/Domain:rotor/Turbulence is absent: not available
    "A laminar flow has no turbulence."
    Available: check('flow is turbulent')  (flow.rules.yaml:65:20)
      'flow is turbulent' does not hold  (flow.rules.yaml:4:22)
        /Case/Flow Regime is 'Laminar', needs 'Turbulent'  (default, flow.rules.yaml:8:7)
  1 more fact with more depth
)");
}

TEST(Why, ObjectThatNoObjectOfASetMakesAvailable) {
  FlowCase const flow;
  EXPECT_EQ(flow.whyObject("/Case/Heat"), R"(
/Case/Heat is absent: not available
  "Only water is heated."
  Available: any({/Case/Domain:*}, ${Material} == 'Water')  (flow.rules.yaml:26:20)
    any({/Case/Domain:*}, ${Material} == 'Water'): fails for 1 of 1
      /Case/Domain:rotor/Material is 'Air', needs 'Water'  (default, flow.rules.yaml:47:24)
  1 more fact with more depth
)");
}

TEST(Why, ValueOfTheUserNamesItsStep) {
  FlowCase const flow;
  flow.session->edit(Edit::setParam(rotor, "Motion", "Rotating"));
  EXPECT_EQ(flow.why(rotor, "Motion"), R"(
/Case/Domain:rotor/Motion is 'Rotating': set by the user in step 1
)");
}

TEST(Why, ValueOfTheModelIsGiven) {
  FlowCase const flow({{"/Case", {}}, {rotor, {{"Motion", "Rotating"}}}});
  EXPECT_EQ(flow.why(rotor, "Motion"), R"(
/Case/Domain:rotor/Motion is 'Rotating': given by the model
)");
}

TEST(Why, ConditionalDefaultShowsItsCondition) {
  FlowCase const flow;
  flow.session->edit(Edit::setParam(rotor, "Motion", "Rotating"));
  EXPECT_EQ(flow.why(rotor, "Wall Treatment"), R"(
/Case/Domain:rotor/Wall Treatment is 'Rough': the default
  Default Value Check List: ${Motion} == 'Rotating'  (flow.rules.yaml:57:21)
    Motion is 'Rotating'  (user, step 1)
  Value: 'Rough'  (flow.rules.yaml:57:54)
)");
}

TEST(Why, OverrideShowsItsCondition) {
  FlowCase const flow;
  flow.session->edit(Edit::setParam(rotor, "Material", "Water"));
  EXPECT_EQ(flow.why(rotor, "Wall Treatment"), R"(
/Case/Domain:rotor/Wall Treatment is 'Smooth': fixed by the rules
  Value Override Check List: ${Material} == 'Water'  (flow.rules.yaml:60:21)
    Material is 'Water'  (user, step 1)
  Value: 'Smooth'  (flow.rules.yaml:60:53)
)");
}

TEST(Why, ValueThatACheckForbidsIsNotAllowed) {
  FlowCase const flow;
  EXPECT_EQ(flow.why(rotor, "Motion", {Question::Allowed, "Sliding", 1}), R"(
'Sliding' is not allowed for /Case/Domain:rotor/Motion now
  Allowed String List Checks: check('flow is turbulent')  (flow.rules.yaml:36:20)
    'flow is turbulent' does not hold  (flow.rules.yaml:4:22)
      /Case/Flow Regime is 'Laminar', needs 'Turbulent'  (default, flow.rules.yaml:8:7)
  1 more fact with more depth
)");
  EXPECT_EQ(flow.why(rotor, "Motion", {Question::Allowed, "Flying", 1}), R"(
'Flying' is not allowed for /Case/Domain:rotor/Motion: allowed are 'Stationary', 'Rotating'
  Ordered Allowed String List: 'Stationary', 'Rotating', 'Sliding'  (flow.rules.yaml:33:38)
)");
}

TEST(Why, ParameterOnOfferSaysThatItWasNeverSwitchedOn) {
  FlowCase const flow;
  EXPECT_EQ(flow.why("/Case", "Comment"), R"(
/Case/Comment is on offer: it was never switched on  (flow.rules.yaml:19:7)
)");
  flow.session->edit(Edit::setParam("/Case", "Comment", "first run"));
  flow.session->edit(Edit::deactivateParam("/Case", "Comment"));
  EXPECT_EQ(flow.why("/Case", "Comment"), R"(
/Case/Comment is on offer: it was switched off  (flow.rules.yaml:19:7)
)");
}

TEST(Why, RuleThatReadsAheadShowsTheOldValueThatItUsed) {
  FlowCase const flow;
  flow.session->edit(Edit::setParam("/Case", "Comment", "first run"));
  flow.session->edit(Edit::setParam("/Case", "Steps", "20"));
  EXPECT_EQ(flow.why("/Case", "Summary"), R"(
/Case/Summary is absent: not available
  Available: exists(${Comment}) and ${Steps} > 10  (flow.rules.yaml:13:20)
    Steps was '5' when this was decided (now '20'; decided again at the next edit), needs more than 10
)");
  // Any further edit asks the rule again.
  flow.session->edit(Edit::setParam(rotor, "Material", "Water"));
  EXPECT_EQ(flow.why("/Case", "Summary"), R"(
/Case/Summary is on offer: it was never switched on  (flow.rules.yaml:12:7)
  Available: exists(${Comment}) and ${Steps} > 10  (flow.rules.yaml:13:20)
    Comment exists  (user, step 1)
    Steps is '20'  (user, step 2)
)");
}

TEST(Why, LastEditIsShownAsAChain) {
  FlowCase const flow;
  flow.session->edit(Edit::setParam(rotor, "Motion", "Rotating"));
  flow.session->edit(Edit::setParam(rotor, "Motion", "Stationary"));
  EXPECT_EQ(flow.why(rotor, "Angular Velocity", {Question::LastEdit, {}, 1}), R"(
/Case/Domain:rotor/Angular Velocity went (it was '1') because of the last edit
  "Only a rotating domain has an angular velocity."
  Available: ${Motion} == 'Rotating'  (flow.rules.yaml:38:20)
    Motion is 'Stationary', needs 'Rotating'  (user, step 2)
  /Case/Domain:rotor/Motion changed from 'Rotating' to 'Stationary' by the last edit itself
)");
  EXPECT_EQ(flow.why("/Case", "Steps", {Question::LastEdit, {}, 1}), R"(
/Case/Steps was not changed by the last edit
)");
}

TEST(Why, ItemThatTheRulesDoNotKnow) {
  FlowCase const flow;
  EXPECT_EQ(flow.why(rotor, "Angular Velocty"), R"(
/Case/Domain:rotor/Angular Velocty is unknown to the rules
)");
  EXPECT_EQ(flow.why("/Elsewhere", "Motion"), R"(
/Elsewhere/Motion is outside of the object that is edited
)");
}

TEST(Why, LongProofIsCutAtItsLines) {
  FlowCase const flow;
  std::string const text = flow.why(rotor, "Drag", {Question::Value, {}, 5}, 4);
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 5);
}

char const* const groupRules = R"rules(Rule Database: 1
Checks:
  flow is turbulent: ${/Case/Flow Regime} == 'Turbulent'
Lists:
  library groups:
    - Air Data
    - {Value: Refrigerants, When: "${Phase} != 'Solid'"}
    - {Value: Metals, When: "${Phase} == 'Solid' and check('flow is turbulent')"}
Objects:
  /Case:
    Parameters:
      Flow Regime: {Required: yes, Parameter Type: String, Ordered Allowed String List: [Laminar, Turbulent]}
      Phase: {Required: yes, Parameter Type: String, Ordered Allowed String List: [Gas, Solid]}
      Group: {Required: yes, Parameter Type: String, Value List Source: list('library groups')}
)rules";

TEST(Why, ValueThatIsNotInAListIsExplainedByItsOwnItemAlone) {
  FlowCase const flow({{"/Case", {}}}, groupRules);
  EXPECT_EQ(flow.why("/Case", "Group", {Question::Allowed, "Metals", 1}), R"(
'Metals' is not allowed for /Case/Group: allowed are 'Air Data', 'Refrigerants'
  Value List Source: list('library groups')  (flow.rules.yaml:14:73)
    'library groups' is 'Air Data', 'Refrigerants'  (flow.rules.yaml:6:5)
      'Metals' does not count: ${Phase} == 'Solid' and check('flow is turbulent')  (flow.rules.yaml:8:30)
        needs all of
          Phase is 'Gas', needs 'Solid'  (default, flow.rules.yaml:13:7)
          also 'flow is turbulent' does not hold  (flow.rules.yaml:3:22)
            Flow Regime is 'Laminar', needs 'Turbulent'  (default, flow.rules.yaml:12:7)
  1 more fact with more depth
)");
}

TEST(Why, ValueThatNoItemOfAListHasReadsNothing) {
  FlowCase const flow({{"/Case", {}}}, groupRules);
  Proof const proof = flow.session->why({"/Case", "Group"}, {Question::Allowed, "Plastics", 1});
  ASSERT_EQ(proof.answer().rules.size(), 1U);
  EXPECT_TRUE(proof.answer().rules.front().reads.empty());
  EXPECT_TRUE(proof.answer().rules.front().explanation.reads.empty());
}

TEST(Why, AComputedSubsetIsNamedByItsKey) {
  FlowCase const flow({{"/Case", {}}}, R"rules(Rule Database: 1
Pertinent Roots: [Case]
Objects:
  /Case:
    Parameters:
      Quick: {Required: yes, Parameter Type: Logical, Default Value: yes}
      Model:
        Required: yes
        Parameter Type: String
        Ordered Allowed String List: [simple, rough, exact]
        Subset Value List Source: if(${Quick}, ('simple', 'rough'), ('exact', 'rough'))
)rules");
  Proof const proof = flow.session->why({"/Case", "Model"}, {Question::Allowed, "exact", 1});
  EXPECT_EQ(proof.answer().fact, Fact::OutsideSubset);
  ASSERT_FALSE(proof.answer().rules.empty());
  EXPECT_EQ(proof.answer().rules.front().attribute, "Subset Value List Source");
}

char const* const materialRules = R"rules(Rule Database: 1
Pertinent Roots: [Case]
Lists:
  gases: [Air, Argon]
  coolants:
    - Water
    - {Value: R134a, When: "${Phase} == 'Gas'"}
  preferred:
    - {Value: Steel, When: "${Phase} == 'Solid'"}
    - {Value: Air, When: "${Depth} > 1"}
    - {Value: Water, When: "${Depth} > 2"}
Objects:
  /Case:
    Parameters:
      Phase: {Required: yes, Parameter Type: String, Ordered Allowed String List: [Liquid, Gas, Solid]}
      Depth: {Required: yes, Parameter Type: Real, Default Value: 3}
      Limit: {Required: yes, Parameter Type: Real, Default Value: 5}
      Any: {Required: yes, Parameter Type: String, Value List Source: "union(list('gases'), list('coolants'))"}
      Common: {Required: yes, Parameter Type: String, Value List Source: "intersection(list('gases'), list('coolants'))"}
      Rest: {Required: yes, Parameter Type: String, Value List Source: "difference(('Air', 'Water', 'R134a'), list('coolants'))"}
      Warm: {Required: yes, Parameter Type: String, Value List Source: "names(filter({Material:*}, ${Temperature} > 20))"}
      First: {Required: yes, Parameter Type: String, Value List Source: list('preferred')}
      Deep: {Required: yes, Parameter Type: Logical, Available: "${Depth} > ${Limit}"}
    Children:
      Material: {Coupled: yes}
  /Case/Material:
    Parameters:
      Temperature: {Required: yes, Parameter Type: Real, Default Value: 10}
      Marked: {Required: yes, Parameter Type: Logical, Available: "name() == ${../First}"}
)rules";

struct MaterialCase : FlowCase {
  MaterialCase()
      : FlowCase({{"/Case", {}},
                  {"/Case/Material:Ice", {}},
                  {"/Case/Material:Steam", {{"Temperature", "120"}}},
                  {"/Case/Material:Water", {}}},
                 materialRules) {}

  /// Everything that the proof has read.
  [[nodiscard]] std::vector<std::string> readsOf(std::string const& name, std::string const& value) const {
    std::vector<std::string> reads;
    Proof const proof = session->why({"/Case", name}, {Question::Allowed, value, 1});
    for (ProofRule const& rule : proof.answer().rules) {
      for (ProofRead const& read : rule.reads) {
        reads.push_back(read.read.object + (read.read.name.empty() ? "" : '/' + read.read.name));
      }
    }
    return reads;
  }
};

TEST(Why, ValueThatIsNotInAUnionIsExplainedByEveryArgument) {
  MaterialCase const materials;
  EXPECT_EQ(materials.why("/Case", "Any", {Question::Allowed, "R134a", 1}), R"(
'R134a' is not allowed for /Case/Any: allowed are 'Air', 'Argon', 'Water'
  Value List Source: union(list('gases'), list('coolants'))  (flow.rules.yaml:18:72)
    union(list('gases'), list('coolants')) is 'Air', 'Argon', 'Water'
      'gases' is 'Air', 'Argon'  (flow.rules.yaml:4:10)
      'coolants' is 'Water'  (flow.rules.yaml:6:5)
        'R134a' does not count: ${Phase} == 'Gas'  (flow.rules.yaml:7:29)
          Phase is 'Liquid', needs 'Gas'  (default, flow.rules.yaml:15:7)
  1 more fact with more depth
)");
}

TEST(Why, ValueThatIsNotInAnIntersectionIsExplainedByTheFirstArgumentWithoutIt) {
  MaterialCase const materials;
  EXPECT_EQ(materials.why("/Case", "Common", {Question::Allowed, "Water", 1}), R"(
'Water' is not allowed for /Case/Common: no value is allowed now
  Value List Source: intersection(list('gases'), list('coolants'))  (flow.rules.yaml:19:75)
    intersection(list('gases'), list('coolants')) is nothing
      'gases' is 'Air', 'Argon'  (flow.rules.yaml:4:10)
)");
}

TEST(Why, ValueThatADifferenceTakesAwayIsExplainedByTheListThatHasIt) {
  MaterialCase const materials;
  // It is allowed, because the second list does not have it.
  EXPECT_EQ(materials.readsOf("Rest", "R134a"), (std::vector<std::string>{"/Case/Phase"}));
  materials.session->edit(Edit::setParam("/Case", "Phase", "Gas"));
  EXPECT_EQ(materials.readsOf("Rest", "R134a"), (std::vector<std::string>{"/Case/Phase"}));
  // Not in the first list: what the second has does not matter.
  EXPECT_THAT(materials.readsOf("Rest", "Argon"), testing::IsEmpty());
}

TEST(Why, NameThatAFilterLeavesOutIsExplainedByItsOwnObject) {
  MaterialCase const materials;
  // Children are decided after the parameters. The rule sees them from the next edit on.
  EXPECT_EQ(materials.why("/Case", "Warm", {Question::Allowed, "Steam", 1}), R"(
'Steam' is not allowed for /Case/Warm: no value is allowed now
  Value List Source: names(filter({Material:*}, ${Temperature} > 20))  (flow.rules.yaml:21:73)
    names(filter({Material:*}, ${Temperature} > 20)) is nothing
      {Material:*} is nothing
  Decided on values that have changed since; decided again at the next edit.
)");
  materials.session->edit(Edit::setParam("/Case", "Depth", "4"));
  EXPECT_EQ(materials.readsOf("Warm", "Ice"),
            (std::vector<std::string>{"/Case/Material", "/Case/Material:Ice/Temperature"}));
  EXPECT_EQ(materials.readsOf("Warm", "Oil"), (std::vector<std::string>{"/Case/Material"}));
}

TEST(Why, FirstValueOnOfferIsExplainedByTheItemsUpToIt) {
  MaterialCase const materials;
  EXPECT_EQ(materials.why("/Case", "First"), R"(
/Case/First is 'Air': the first value on offer
  Value List Source: list('preferred')  (flow.rules.yaml:22:73)
    'preferred' is 'Air', 'Water'  (flow.rules.yaml:9:5)
      'Steel' does not count: ${Phase} == 'Solid'  (flow.rules.yaml:9:29)
        Phase is 'Liquid', needs 'Solid'  (default, flow.rules.yaml:15:7)
      'Air' counts: ${Depth} > 1  (flow.rules.yaml:10:27)
        Depth is '3'  (default, flow.rules.yaml:16:67)
  2 more facts with more depth
)");
}

TEST(Why, NeededValueOfAnotherParameterIsNamed) {
  MaterialCase const materials;
  EXPECT_EQ(materials.why("/Case", "Deep"), R"(
/Case/Deep is absent: not available
  Available: ${Depth} > ${Limit}  (flow.rules.yaml:23:66)
    Depth is '3', needs more than '5', the value of Limit  (default, flow.rules.yaml:16:67)  (default, flow.rules.yaml:17:67)
  2 more facts with more depth
)");
}

TEST(Why, NameOfAnObjectIsSaidInWords) {
  MaterialCase const materials;
  EXPECT_EQ(materials.why("/Case/Material:Ice", "Marked"), R"(
/Case/Material:Ice/Marked is absent: not available
  Available: name() == ${../First}  (flow.rules.yaml:29:68)
    the name of /Case/Material:Ice is 'Ice', needs 'Air', the value of /Case/First  (default, flow.rules.yaml:22:7)
  1 more fact with more depth
)");
}

}  // namespace
}  // namespace tarn::session::test
