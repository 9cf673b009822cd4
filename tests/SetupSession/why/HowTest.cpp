#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tarn/session/How.h>
#include <tarn/session/Session.h>

#include "FlowCase.h"

namespace tarn::session::test {
namespace {

std::string const rotor = "/Case/Domain:rotor";

std::string howText(FlowCase const& flow, Goal const& goal, HowOptions const& options = {}) {
  return '\n' + textOf(flow.session->how(goal, options));
}

TEST(How, OneEditBringsAParameter) {
  FlowCase const flow;
  EXPECT_EQ(howText(flow, {{rotor, "Angular Velocity"}, {}}), R"(
/Case/Domain:rotor/Angular Velocity comes with this:
  set /Case/Domain:rotor/Motion to "Rotating"
)");
}

TEST(How, ThreeEditsTogether) {
  FlowCase const flow({{"/Case", {}}, {rotor, {{"Motion", "Rotating"}}}});
  EXPECT_EQ(howText(flow, {{rotor, "Drag"}, {}}), R"(
/Case/Domain:rotor/Drag comes with this:
  set /Case/Domain:rotor/Angular Velocity to "11"; then set /Case/Domain:rotor/Material to "Water"; then set /Case/Flow Regime to "Turbulent"  (1 new error of the review)
)");
}

TEST(How, ObjectAboveIsBroughtFirst) {
  FlowCase const flow;
  EXPECT_EQ(howText(flow, {{rotor + "/Turbulence", "Intensity"}, {}}), R"(
/Case/Domain:rotor/Turbulence/Intensity comes with this:
  set /Case/Flow Regime to "Turbulent"
)");
}

TEST(How, SetThatHasNoFittingObject) {
  FlowCase const flow;
  EXPECT_EQ(howText(flow, {{"/Case/Heat", {}}, {}}), R"(
/Case/Heat comes with this:
  set /Case/Domain:rotor/Material to "Water"; then switch on /Case/Heat
)");
}

TEST(How, ValueThatIsNotAllowedYet) {
  FlowCase const flow;
  EXPECT_EQ(howText(flow, {{rotor, "Motion"}, "Sliding"}), R"(
/Case/Domain:rotor/Motion = 'Sliding' comes with this:
  set /Case/Flow Regime to "Turbulent"; then set /Case/Domain:rotor/Motion to "Sliding"
)");
}

TEST(How, ValueUnderAnOverride) {
  FlowCase const flow;
  flow.session->edit(Edit::setParam(rotor, "Material", "Water"));
  EXPECT_EQ(howText(flow, {{rotor, "Wall Treatment"}, "Rough"}), R"(
/Case/Domain:rotor/Wall Treatment = 'Rough' comes with any of these:
  set /Case/Domain:rotor/Material to "Air"; then set /Case/Domain:rotor/Wall Treatment to "Rough"
  switch off /Case/Domain:rotor/Material; then set /Case/Domain:rotor/Wall Treatment to "Rough"
)");
}

TEST(How, WaySaysWhatItWouldLose) {
  FlowCase const flow;
  flow.session->edit(Edit::setParam(rotor, "Motion", "Rotating"));
  flow.session->edit(Edit::setParam(rotor, "Angular Velocity", "120"));
  HowResult const result = flow.session->how({{rotor, "Motion"}, "Stationary"});
  ASSERT_EQ(result.ways.size(), 1U);
  ASSERT_EQ(result.ways.front().lost.size(), 1U);
  EXPECT_EQ(result.ways.front().lost.front().name, "Angular Velocity");
  EXPECT_EQ(result.ways.front().lost.front().before, "120");
}

TEST(How, GoalOfARuleThatReadsAheadComesWithTheNextEdit) {
  FlowCase const flow;
  HowResult const result = flow.session->how({{"/Case", "Summary"}, {}});
  ASSERT_EQ(result.answer, HowAnswer::Found);
  EXPECT_EQ('\n' + textOf(result), R"(
/Case/Summary comes with this:
  switch on /Case/Comment; then set /Case/Steps to "11"; then switch on /Case/Summary
)");
}

TEST(How, ImpossibleGoalsAreCalledSo) {
  FlowCase const flow;
  EXPECT_EQ(flow.session->how({{rotor, "Unknown"}, {}}).answer, HowAnswer::Impossible);
  EXPECT_EQ(flow.session->how({{rotor, "Motion"}, "Flying"}).answer, HowAnswer::Impossible);
  EXPECT_EQ(flow.session->how({{"/Elsewhere", {}}, {}}).answer, HowAnswer::Impossible);
}

TEST(How, GoalThatIsReachedNeedsNoEdit) {
  FlowCase const flow;
  HowResult const result = flow.session->how({{rotor, "Motion"}, "Stationary"});
  EXPECT_EQ(result.answer, HowAnswer::AlreadySo);
  EXPECT_EQ(result.trials, 0U);
}

TEST(How, SearchWithoutSuccessSaysWhatItTriedAndWhatBlocks) {
  FlowCase const flow;
  HowResult const result = flow.session->how({{rotor, "Drag"}, {}}, {.maxEdits = 1});
  EXPECT_EQ(result.answer, HowAnswer::NotFound);
  EXPECT_EQ(result.completedEdits, 1U);
  EXPECT_GT(result.trials, 0U);
  ASSERT_TRUE(result.blocking);
  EXPECT_EQ(result.blocking->answer().fact, Fact::NotAvailable);
}

TEST(How, SearchChangesNothing) {
  FlowCase const flow;
  FlowCase const untouched;
  (void)flow.session->how({{rotor, "Drag"}, {}});
  EXPECT_EQ(flow.session->result(), untouched.session->result());
  EXPECT_TRUE(flow.session->steps().empty());
  EXPECT_EQ(flow.session->edit(Edit::setParam(rotor, "Motion", "Rotating")),
            untouched.session->edit(Edit::setParam(rotor, "Motion", "Rotating")));
}

/// The search for this goal, given up when it asks for the given time whether it is.
HowResult cancelled(FlowCase const& flow, std::size_t at, std::size_t& asked) {
  HowOptions options;
  asked = 0;
  options.isCancelled = [&asked, at] { return ++asked >= at; };
  return flow.session->how({{rotor, "Drag"}, {}}, options);
}

TEST(How, CancelledSearchHasNoWaysAndChangesNothing) {
  FlowCase const flow({{"/Case", {}}, {rotor, {{"Motion", "Rotating"}}}});
  ModelState const before = flow.session->result();
  std::size_t asked = 0;
  HowResult const whole = cancelled(flow, 1'000'000, asked);
  ASSERT_EQ(whole.answer, HowAnswer::Found);
  EXPECT_FALSE(whole.cancelled);
  std::size_t const questions = asked;
  ASSERT_GT(questions, 20U);
  // In the middle, and in the comparison of the ways at the end.
  for (std::size_t const at : {std::size_t{1}, std::size_t{2}, questions / 2, questions - 1, questions}) {
    HowResult const result = cancelled(flow, at, asked);
    EXPECT_TRUE(result.cancelled) << at;
    EXPECT_EQ(result.answer, HowAnswer::NotFound) << at;
    EXPECT_TRUE(result.ways.empty()) << at;
    EXPECT_EQ(asked, at) << "the search went on";
    EXPECT_EQ(flow.session->result(), before) << at;
  }
  EXPECT_EQ(textOf(cancelled(flow, 1'000'000, asked)), textOf(whole));
}

TEST(How, TextOfACancelledSearchSaysSo) {
  FlowCase const flow;
  std::size_t asked = 0;
  std::string const text = textOf(cancelled(flow, 1, asked));
  EXPECT_EQ(text.substr(0, text.find('\n')),
            "No way to /Case/Domain:rotor/Drag was found: 0 trials, all of up to 0 edits, cancelled");
}

char const* const pumpRules = R"rules(Rule Database: 1
Pertinent Roots: [Plant]
Quantity Types:
  Length: {Units: [m, mm]}
Objects:
  /Plant:
    Parameters:
      Never: {Available: "false", Parameter Type: Logical}
      Hardly: {Available: "${Stage} == 'Two' and false", Parameter Type: Logical}
      Stage: {Required: yes, Parameter Type: String, Ordered Allowed String List: [One, Two]}
      Main Pump:
        Required: yes
        Parameter Type: String
        Value List Source: names({/Plant/Pump:*})
      Spare Pumps:
        Available: count({/Plant/Pump:*}, ${Kind} == 'Piston') >= 3
        Parameter Type: Integer
      Single Pump:
        Available: count({/Plant/Pump:*}) == 1
        Parameter Type: Logical
      Long Pipe:
        Available: ${Length} > 2.5
        Parameter Type: Logical
      Both Pipes:
        Available: ${Length} + ${Return} >= 10
        Parameter Type: Logical
      Named:
        Available: contains(${Title}, 'pump')
        Parameter Type: Logical
      Length: {Required: yes, Parameter Type: Real, Quantity Type: Length, Default Value: "1 [m]", Upper Bound: "6 [m]"}
      Return: {Required: yes, Parameter Type: Real, Default Value: 2}
      Title: {Required: yes, Parameter Type: String, Default Value: Untitled}
    Children:
      Pump: {Required: yes}
      Tank: {Singleton: yes, Coupled: yes, Available: "any({/Plant/Pump:*}, ${Kind} == 'Screw')"}
  /Plant/Pump:
    Parameters:
      Kind: {Required: yes, Parameter Type: String, Ordered Allowed String List: [Piston, Gear, Screw]}
  /Plant/Tank:
    Parameters:
      Volume: {Required: yes, Parameter Type: Real, Default Value: 3}
)rules";

struct PumpCase : FlowCase {
  PumpCase() : FlowCase({{"/Plant", {}}, {"/Plant/Pump:a", {}}, {"/Plant/Pump:b", {}}}, pumpRules, "/Plant") {}
};

TEST(How, RuleThatIsNeverTrueMakesAGoalImpossible) {
  PumpCase const pumps;
  EXPECT_EQ(howText(pumps, {{"/Plant", "Never"}, {}}), R"(
/Plant/Never is impossible under these rules
/Plant/Never is absent: not available
  Available: false  (flow.rules.yaml:8:27)
)");
  EXPECT_EQ(pumps.session->how({{"/Plant", "Hardly"}, {}}).answer, HowAnswer::Impossible);
}

TEST(How, ValueThatCannotBeReadMakesAGoalImpossible) {
  PumpCase const pumps;
  EXPECT_EQ(howText(pumps, {{"/Plant", "Length"}, "long"}), R"(
/Plant/Length = 'long' is impossible under these rules
  The parameter "Length" in "/Plant" cannot have the value "long": it is not a number.
)");
}

TEST(How, GoalInOtherUnitsIsTheSameGoal) {
  PumpCase const pumps;
  EXPECT_EQ(pumps.session->how({{"/Plant", "Length"}, "1"}).answer, HowAnswer::AlreadySo);
  EXPECT_EQ(pumps.session->how({{"/Plant", "Length"}, "1 [mm]"}).answer, HowAnswer::Found);
}

TEST(How, ItemsOfAListInAnotherOrderAreAnotherGoal) {
  FlowCase const flow({{"/Case", {}}}, R"rules(Rule Database: 1
Objects:
  /Case:
    Parameters:
      Order: {Required: yes, Parameter Type: String List, Ordered Allowed String List: [Mass, Energy], Complete List Required: yes}
)rules");
  std::string const present = flow.session->lookParam("/Case", "Order")->value.value();
  EXPECT_EQ(flow.session->how({{"/Case", "Order"}, "Energy, Mass"}).answer,
            present == "Energy,Mass" ? HowAnswer::AlreadySo : HowAnswer::Found);
  EXPECT_EQ(flow.session->how({{"/Case", "Order"}, "Mass, Energy"}).answer,
            present == "Mass,Energy" ? HowAnswer::AlreadySo : HowAnswer::Found);
}

TEST(How, ObjectIsAddedForAValueThatNamesIt) {
  PumpCase const pumps;
  EXPECT_EQ(howText(pumps, {{"/Plant", "Main Pump"}, "c"}), R"(
/Plant/Main Pump = 'c' comes with any of these:
  add /Plant/Pump:c; then set /Plant/Main Pump to "c"
  copy /Plant/Pump:a to the name "c"; then set /Plant/Main Pump to "c"
  copy /Plant/Pump:b to the name "c"; then set /Plant/Main Pump to "c"
)");
}

TEST(How, ObjectIsAddedWhereThereAreTooFew) {
  PumpCase const pumps;
  HowResult const result = pumps.session->how({{"/Plant", "Spare Pumps"}, {}});
  ASSERT_EQ(result.answer, HowAnswer::Found);
  EXPECT_EQ(result.ways.front().edits.size(), 2U) << textOf(result);
  EXPECT_EQ(result.ways.front().edits.back(), Edit::activateParam("/Plant", "Spare Pumps")) << textOf(result);
}

TEST(How, ObjectIsRemovedWhereThereAreTooMany) {
  PumpCase const pumps;
  EXPECT_EQ(howText(pumps, {{"/Plant", "Single Pump"}, {}}, {.maxWays = 1}), R"(
/Plant/Single Pump comes with this:
  remove /Plant/Pump:a; then switch on /Plant/Single Pump  (loses 1 object)
)");
}

TEST(How, ObjectBecomesAvailableThroughAnother) {
  PumpCase const pumps;
  EXPECT_EQ(howText(pumps, {{"/Plant/Tank", "Volume"}, {}}, {.maxWays = 1}), R"(
/Plant/Tank/Volume comes with this:
  set /Plant/Pump:a/Kind to "Screw"; then switch on /Plant/Tank
)");
}

TEST(How, NumberBeyondALimitDiffersInItsLastDigit) {
  PumpCase const pumps;
  EXPECT_EQ(howText(pumps, {{"/Plant", "Long Pipe"}, {}}), R"(
/Plant/Long Pipe comes with this:
  set /Plant/Length to "2.6"; then switch on /Plant/Long Pipe
)");
}

TEST(How, NumbersThatAreAddedAreSolvedAndTheWayWithoutNewErrorsComesFirst) {
  PumpCase const pumps;
  EXPECT_EQ(howText(pumps, {{"/Plant", "Both Pipes"}, {}}, {.maxWays = 20}), R"(
/Plant/Both Pipes comes with any of these:
  set /Plant/Return to "10"; then switch on /Plant/Both Pipes
  set /Plant/Return to "9"; then switch on /Plant/Both Pipes
  set /Plant/Length to "10"; then switch on /Plant/Both Pipes  (1 new error of the review)
  set /Plant/Length to "8"; then switch on /Plant/Both Pipes  (1 new error of the review)
  set /Plant/Length to "9"; then switch on /Plant/Both Pipes  (1 new error of the review)
)");
}

TEST(How, TextThatARuleLooksForIsTried) {
  PumpCase const pumps;
  EXPECT_EQ(howText(pumps, {{"/Plant", "Named"}, {}}), R"(
/Plant/Named comes with this:
  set /Plant/Title to "pump"; then switch on /Plant/Named
)");
}

TEST(How, UserValuesAreKeptRatherThanLost) {
  // Both ways have one edit. One of them withdraws a value of the user.
  FlowCase const flow({{"/Case", {}}}, R"rules(Rule Database: 1
Objects:
  /Case:
    Parameters:
      Mode: {Required: yes, Parameter Type: String, Ordered Allowed String List: [A, B, C]}
      Note: {Available: "${Mode} != 'B'", Parameter Type: String}
      Goal: {Required: yes, Available: "${Mode} in ('B', 'C')", Parameter Type: String, Default Value: x}
)rules");
  flow.session->edit(Edit::setParam("/Case", "Note", "mine"));
  EXPECT_EQ(howText(flow, {{"/Case", "Goal"}, {}}), R"(
/Case/Goal comes with any of these:
  set /Case/Mode to "C"
  set /Case/Mode to "B"  (loses /Case/Note = 'mine')
)");
}

TEST(How, SameQuestionGetsTheSameAnswer) {
  FlowCase const first;
  FlowCase const second;
  EXPECT_EQ(howText(first, {{rotor, "Drag"}, {}}), howText(second, {{rotor, "Drag"}, {}}));
}

}  // namespace
}  // namespace tarn::session::test
