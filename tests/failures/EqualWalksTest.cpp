// An update that visits only what an edit concerns does exactly what a walk of everything does: under random rules,
// models and sessions, with rules that throw and allocations that fail in the middle.
//
// The tests make some thousand steps. With TARN_EQUAL_WALKS_STEPS, the last test makes that many, from the seed
// TARN_EQUAL_WALKS_SEED on, and reports its progress:
//
//     TARN_EQUAL_WALKS_STEPS=1000000 build/dev/bin/FailuresTest --gtest_filter='EqualWalks.*MoreSteps*'

#include "support/EqualWalks.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <string>

#include "failures/Injection.h"

namespace tarn::test {
namespace {

bool failAllocation(std::size_t allocation, std::function<void()> const& operation) {
  Attempt attempt(FailingCall::Allocation, allocation, false);
  return attempt(operation);
}

std::size_t numberFrom(char const* variable, std::size_t otherwise) {
  char const* const text = std::getenv(variable);  // NOLINT(concurrency-mt-unsafe)
  return text != nullptr ? std::stoul(text) : otherwise;
}

/// A case with a parameter Motion and a parameter that is present while there is a motion.
SessionStart caseWithMotion() {
  SessionStart start;
  start.root = "/Case";
  ObjectText object;
  object.typePath = "/Case";
  object.params = {{"Motion", {"Required: yes", "Parameter Type: String"}},
                   {"Speed", {"Required: yes", "Parameter Type: Real", "Available: ${Motion} == 'Rotating'"}}};
  start.rules.objects.push_back(object);
  return start;
}

TEST(EqualWalks, TwoStatesOfOneSessionAreEqualAfterEveryStep) {
  EqualWalksReport const report = checkEqualWalks({.firstSeed = 1, .steps = 5000});
  ASSERT_EQ(report.broken, "");
  EXPECT_GT(report.changing, report.steps / 3);
  EXPECT_GT(report.refused, 100U);
  EXPECT_GT(report.thrown, 10U);
  EXPECT_GT(report.rolledBack, 100U);
}

TEST(EqualWalks, TwoStatesAreEqualAfterAnAllocationFailedInBoth) {
  EqualWalksReport const report =
      checkEqualWalks({.firstSeed = 100'001, .steps = 3000, .failAllocation = failAllocation});
  ASSERT_EQ(report.broken, "");
  EXPECT_GT(report.failedAllocations, 5U);
  EXPECT_LT(report.incomparable, report.sessions / 20);
}

TEST(EqualWalks, AnEditOfOneStateOnlyIsReportedWithBothContents) {
  EqualWalks walks(caseWithMotion(), nullptr, false);
  ASSERT_EQ(walks.brokenByStart(), "");
  walks.makeInFirstOnly(Edit::setParam("/Case", "Motion", "Rotating"));
  EXPECT_EQ(walks.difference(),
            "the guide differs\n"
            "  first: \n    /\n    /Case/\n      Motion = Rotating\n"
            "  second: \n    /\n    /Case/");
}

TEST(EqualWalks, AMemoryThatOnlyLaterEditsShowIsCompared) {
  EqualWalks walks(caseWithMotion(), nullptr, false);
  walks.makeInFirstOnly(Edit::setParam("/Case", "Unknown to the Rules", "1"));
  EXPECT_TRUE(walks.difference().starts_with("the guide differs")) << walks.difference();
}

TEST(EqualWalks, AListOfTheLastUpdateIsCompared) {
  EqualWalks walks(caseWithMotion(), nullptr, false);
  SessionStep step;
  step.edit = Edit::setParam("/Case", "Motion", "Rotating");
  ASSERT_EQ(walks.make(step), "");
  walks.makeInFirstOnly(step.edit);  // the same trees, but now the update changed nothing
  EXPECT_EQ(walks.difference(), "getModParams differs\n  first: nothing\n  second: \n    (/Case | Motion)");
}

TEST(EqualWalks, ASessionIsShortenedToTheStepsAndRulesThatBreakTheLaw) {
  Session session{caseWithMotion(), {}};
  session.start.base = {{"/Case", {{"Title", "Pump"}}}, {"/Case/Domain:rotor", {}}};
  for (char const* value : {"Stationary", "Rotating", "Rotating", "Oscillating"}) {
    session.steps.emplace_back().edit = Edit::setParam("/Case", "Motion", value);
  }
  // The second state does not make this step, and its failure is hidden. So the step acts as a fault of the library:
  // the guides are equal, but the lists of the second state are still those of the step before.
  session.steps[2].failingAllocation = 0;
  int calls = 0;
  FailAllocation const hiddenFailure = [&calls](std::size_t, std::function<void()> const& operation) {
    if (++calls % 2 == 1) operation();
    return false;
  };
  EXPECT_EQ(explained(session, hiddenFailure),
            "getNewlyAvailParams differs\n"
            "  first: nothing\n"
            "  second: \n"
            "    (/Case | Motion)\n"
            "\n"
            "in the session\n"
            "Rule Database: 1\n"
            "Pertinent Roots: [Case]\n"
            "Quantity Types:\n"
            "  Mass Flow: {Units: [kg/s]}\n"
            "  Volume Flow: {Units: [m^3/s]}\n"
            "Objects:\n"
            "  /Case:\n"
            "    Description: An object.\n"
            "    Parameters:\n"
            "      Motion:\n"
            "        Parameter Type: String\n"
            "# active root: /Case\n"
            "# base model:\n"
            "# guide:\n"
            "# steps:\n"
            "- set /Case | Motion = Rotating\n"
            "- with failing allocation 0, set /Case | Motion = Rotating\n");
}

TEST(EqualWalks, TwoStatesStayEqualInMoreStepsWhenAsked) {
  EqualWalksPlan plan;
  plan.steps = numberFrom("TARN_EQUAL_WALKS_STEPS", 500);
  plan.firstSeed = static_cast<std::uint32_t>(numberFrom("TARN_EQUAL_WALKS_SEED", 200'001));
  plan.failAllocation = failAllocation;
  if (plan.steps > 10'000) {
    plan.progress = [](std::uint32_t seed, std::size_t steps) {
      if (seed % 1000 == 0) std::cout << "seed " << seed << ", " << steps << " steps" << std::endl;
    };
  }
  EqualWalksReport const report = checkEqualWalks(plan);
  EXPECT_EQ(report.broken, "");
  EXPECT_GE(report.steps, plan.steps);
}

}  // namespace
}  // namespace tarn::test
