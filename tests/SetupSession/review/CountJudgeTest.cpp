// The number of children of a type.
#include "review/CountJudge.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

/// A chip with one pin or two, and as many contacts as it says.
class CountJudgeTest : public testing::Test {
 protected:
  CountJudgeTest() {
    Rules rules(rules_, "/Chip");
    rules.child("Pin").required().counts(text("1"), text("2"));
    rules.child("Contact").counts(nullptr, valueOf("Contact Limit"));
    rules.child("Core").availableWhen(when("Kind", "Processor")).counts(text("1"), nullptr);
    rules.child("Clock").singleton().availableWhen(when("Kind", "Timer")).counts(text("1"), nullptr);
  }
  std::vector<Finding> judged(MapModel const& model) { return findingsOf<CountJudge>(rules_, model); }

  PhysicsData rules_;
};

TEST_F(CountJudgeTest, TooFewChildrenAreAnErrorOfTheParent) {
  auto const findings = judged({{"/Chip", {}}});
  EXPECT_THAT(linesOf(findings), ElementsAre("error too-few-objects: The object \"/Chip\" has 0 objects of the type "
                                             "\"Pin\", but needs at least 1."));
  EXPECT_EQ(findings[0].path, "/Chip");
  EXPECT_EQ(findings[0].type, "Pin");
  EXPECT_EQ(findings[0].expected.minimumCount, 1U);
  EXPECT_EQ(findings[0].expected.maximumCount, 2U);
}

TEST_F(CountJudgeTest, CountsWithinTheLimitsAreRight) {
  EXPECT_THAT(judged({{"/Chip/Pin:A1", {}}}), IsEmpty());
  EXPECT_THAT(judged({{"/Chip/Pin:A1", {}}, {"/Chip/Pin:A2", {}}}), IsEmpty());
}

TEST_F(CountJudgeTest, TooManyChildrenAreAnErrorOfTheParent) {
  EXPECT_THAT(
      linesOf(judged({{"/Chip/Pin:A1", {}}, {"/Chip/Pin:A2", {}}, {"/Chip/Pin:A3", {}}})),
      ElementsAre("error too-many-objects: The object \"/Chip\" has 3 objects of the type \"Pin\", but may have "
                  "at most 2."));
}

TEST_F(CountJudgeTest, ACountCanBeComputedInTheParent) {
  MapModel const model{
      {"/Chip", {{"Contact Limit", "1"}}}, {"/Chip/Pin:A1", {}}, {"/Chip/Contact:a", {}}, {"/Chip/Contact:b", {}}};
  EXPECT_THAT(linesOf(judged(model)), ElementsAre("error too-many-objects: The object \"/Chip\" has 2 objects of the "
                                                  "type \"Contact\", but may have at most 1."));
}

TEST_F(CountJudgeTest, AnEmptyCountIsNoLimit) {
  EXPECT_THAT(judged({{"/Chip/Pin:A1", {}}, {"/Chip/Contact:a", {}}}), IsEmpty());
}

TEST_F(CountJudgeTest, ACountThatIsNotANumberIsAFaultOfItsOwn) {
  EXPECT_THAT(
      linesOf(judged({{"/Chip", {{"Contact Limit", "many"}}}, {"/Chip/Pin:A1", {}}})),
      ElementsAre("error invalid-count: The rules give the maximum number of objects of the type \"Contact\" in "
                  "the object \"/Chip\" as \"many\", which is not a number from 0 on."));
  EXPECT_THAT(judged({{"/Chip", {{"Contact Limit", "-1"}}}, {"/Chip/Pin:A1", {}}}), testing::SizeIs(1));
}

TEST_F(CountJudgeTest, OnlyTypesThatAreAvailableAreCounted) {
  EXPECT_THAT(
      linesOf(judged({{"/Chip", {{"Kind", "Processor"}}}, {"/Chip/Pin:A1", {}}})),
      ElementsAre("error too-few-objects: The object \"/Chip\" has 0 objects of the type \"Core\", but needs at "
                  "least 1."));
}

TEST_F(CountJudgeTest, ASingletonCountsAsOne) {
  EXPECT_THAT(judged({{"/Chip", {{"Kind", "Timer"}}}, {"/Chip/Pin:A1", {}}, {"/Chip/Clock", {}}}), IsEmpty());
  EXPECT_THAT(judged({{"/Chip", {{"Kind", "Timer"}}}, {"/Chip/Pin:A1", {}}}), testing::SizeIs(1));
}

}  // namespace
}  // namespace tarn::session
