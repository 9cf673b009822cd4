// Checks of objects, and the levels of checks.
#include "review/CheckJudge.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tarn/session/Review.h>

#include "SetupSession/review/Judging.h"
#include "support/MapModel.h"
#include "support/Rules.h"

namespace tarn::session {
namespace {

using test::findingsOf;
using test::linesOf;
using testing::ElementsAre;
using testing::IsEmpty;

using tarn::test::MapModel;
using tarn::test::Rules;
using tarn::test::text;
using tarn::test::valueOf;
using tarn::test::when;

ObjectCheck check(std::string const& name, std::unique_ptr<Condition> condition,
                  std::unique_ptr<TextExpression> message, CheckLevel level = CheckLevel::Error) {
  ObjectCheck result;
  result.name = name;
  result.check = std::move(condition);
  result.message = std::move(message);
  result.level = level;
  return result;
}

class CheckJudgeTest : public testing::Test {
 protected:
  CheckJudgeTest() {
    Rules rules(rules_, "/Chip");
    rules.pertinentRoot("Chip").param("Kind").child("Pin").required();
    rules.object("/Chip/Pin").param("Direction").param("Driver").param("Remark");
    ObjectCheck driven = check("one driver", when("Driver", "one"), valueOf("Remark"), CheckLevel::Warning);
    driven.when = when("Direction", "Output");
    rules.objectCheck(std::move(driven));
    rules.objectCheck(check("a direction", when("Direction", "Output"), text("A pin must have the direction Output.")));
  }

  PhysicsData rules_;
};

TEST_F(CheckJudgeTest, EveryObjectOfTheTypeIsCheckedInTheOrderOfTheRules) {
  MapModel const model{
      {"/Chip/Pin:A1", {{"Direction", "Output"}, {"Driver", "two"}, {"Remark", "A1 has two drivers."}}},
      {"/Chip/Pin:A2", {{"Direction", "Input"}}}};
  auto const findings = findingsOf<CheckJudge>(rules_, model);

  EXPECT_THAT(linesOf(findings), ElementsAre("warning object-check-failed: A1 has two drivers.",
                                             "error object-check-failed: A pin must have the direction Output."));
  EXPECT_EQ(findings[0].path, "/Chip/Pin:A1");
  EXPECT_EQ(findings[0].check, "one driver");
  EXPECT_EQ(findings[1].path, "/Chip/Pin:A2");
  EXPECT_EQ(findings[1].check, "a direction");
}

TEST_F(CheckJudgeTest, AnObjectThatPassesGivesNothing) {
  EXPECT_THAT(findingsOf<CheckJudge>(rules_, MapModel{{"/Chip/Pin:A1", {{"Direction", "Output"}, {"Driver", "one"}}}}),
              IsEmpty());
}

TEST_F(CheckJudgeTest, AFailedGlobalCheckHasTheLevelOfItsRule) {
  auto const never = [](ModelTDF const&) { return false; };
  auto doubtful = lambda::globalCheck(never, PhysicsErrorMsg("The chip gets warm."));
  doubtful->setLevel(CheckLevel::Warning);
  EXPECT_TRUE(rules_.addGlobalCheck("heat", std::move(doubtful)));
  Rules(rules_).globalCheck("power", never, PhysicsErrorMsg("The chip has no power."));

  EXPECT_THAT(linesOf(Review(rules_).judge({{"/Chip", {{"Kind", "Timer"}}}}).list),
              ElementsAre("warning global-check-failed: The chip gets warm.",
                          "error global-check-failed: The chip has no power."));
}

}  // namespace
}  // namespace tarn::session
