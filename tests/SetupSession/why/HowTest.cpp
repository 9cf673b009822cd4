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
  set /Case/Domain:rotor/Angular Velocity to "11"; then set /Case/Domain:rotor/Material to "Water"; then set /Case/Flow Regime to "Turbulent"
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
/Case/Domain:rotor/Wall Treatment = 'Rough' comes with this:
  set /Case/Domain:rotor/Material to "Air"; then set /Case/Domain:rotor/Wall Treatment to "Rough"
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

}  // namespace
}  // namespace tarn::session::test
