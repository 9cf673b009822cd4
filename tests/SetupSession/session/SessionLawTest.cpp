// The laws of sessions under random rules. With TARN_SESSION_LAW_OPERATIONS the last test makes that many operations
// instead of 200, from the seed TARN_SESSION_LAW_SEED on:
//
//     TARN_SESSION_LAW_OPERATIONS=100000 build/dev/bin/SetupSessionTest --gtest_filter='SessionLaw.*More*'
#include "support/SessionLaw.h"

#include <cstdlib>

#include <gtest/gtest.h>

namespace tarn::test {
namespace {

std::uint32_t numberFrom(char const* variable, std::uint32_t otherwise) {
  char const* const text = std::getenv(variable);  // NOLINT(concurrency-mt-unsafe)
  return text != nullptr ? static_cast<std::uint32_t>(std::stoul(text)) : otherwise;
}

TEST(SessionLaw, AnswersAreThoseOfAFreshSessionThatMakesTheRemainingSteps) {
  SessionLawReport const report = checkSessionLaw({.firstSeed = 1, .operations = 1800});
  ASSERT_EQ(report.broken, "");
  EXPECT_LT(report.faulty, report.sessions / 2);
  EXPECT_GT(report.counts.changing, 200U);
  EXPECT_GT(report.counts.refused, 100U);
  EXPECT_GT(report.counts.undone, 50U);
  EXPECT_GT(report.counts.redone, 10U);
  EXPECT_GT(report.counts.waiting, 20U);
}

/// Edits with questions between them, under random rules.
TEST(SessionLaw, AnswersToWhyAndHowAgreeWithTheStateAndLeaveItAsItWas) {
  std::size_t asked = 0;
  std::uint32_t const sessions = numberFrom("TARN_SESSION_LAW_OPERATIONS", 300) / 20;
  std::uint32_t const first = numberFrom("TARN_SESSION_LAW_SEED", 1);
  for (std::uint32_t seed = first; seed < first + sessions; ++seed) {
    SessionLaw law{RandomNumbers(seed), RandomNumbers(seed + 2'000'000)};
    for (int i = 0; i < 10 && law.isOpen(); ++i) {
      try {
        ASSERT_EQ(law.step(), "") << law.text();
        ASSERT_EQ(law.ask(), "") << law.text();
        ++asked;
      } catch (RuleFault const&) {
        if (!law.openAnew()) break;
      }
    }
  }
  EXPECT_GT(asked, sessions * 4);
}

TEST(SessionLaw, HoldsForMoreOperationsWhenAsked) {
  std::uint32_t const operations = numberFrom("TARN_SESSION_LAW_OPERATIONS", 200);
  SessionLawReport const report = checkSessionLaw({numberFrom("TARN_SESSION_LAW_SEED", 1'000), operations});
  EXPECT_EQ(report.broken, "");
}

}  // namespace
}  // namespace tarn::test
