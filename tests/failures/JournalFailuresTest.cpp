// Journals without memory.

#include <gtest/gtest.h>

#include <string>

#include "failures/Injection.h"
#include "journal/Journal.h"

namespace tarn::test {
namespace {

struct TwoFlags final : Journal::Participant {
  void noteAtMark(Journal& journal) override {
    journal.add([this, was = first]() noexcept { first = was; });
    journal.add([this, was = second]() noexcept { second = was; });
  }

  bool first = false;
  bool second = false;
};

TEST(JournalFailures, AMarkIsSetOrNot) {
  forEveryFailureOf(FailingCall::Allocation, [](Attempt& attempt) {
    Journal journal;
    TwoFlags flags;
    flags.attachTo(journal);
    bool const failed = attempt([&] { (void)journal.mark(); });
    EXPECT_EQ(journal.isRecording(), !failed);
    flags.first = flags.second = true;
    Journal::Mark const mark = journal.mark();
    flags.first = flags.second = false;
    journal.rollback(mark);
    EXPECT_TRUE(flags.first && flags.second);
  });
}

TEST(JournalFailures, AStepThatFindsNoMemoryIsNotAdded) {
  forEveryFailureOf(FailingCall::Allocation, [](Attempt& attempt) {
    Journal journal;
    int undone = 0;
    Journal::Mark const mark = journal.mark();
    bool const failed = attempt([&] { journal.add([&undone]() noexcept { ++undone; }); });
    journal.rollback(mark);
    EXPECT_EQ(undone, failed ? 0 : 1);
  });
}

TEST(JournalFailures, AfterAFailureTheStepsThatAreSetAsideCanBeAdded) {
  Journal journal;
  std::size_t undone = 0;
  auto const step = [&undone]() noexcept { ++undone; };
  Journal::Mark const mark = journal.mark();
  for (int i = 0; i < 100; ++i) journal.add(step);
  for (int again = 0; again < 2; ++again) {
    journal.add(step);
    Attempt attempt(FailingCall::Allocation, 0, true);
    EXPECT_FALSE(attempt([&] {
      Journal::CannotFail const scope(journal);
      for (std::size_t i = 0; i < Journal::stepsSetAside; ++i) journal.add(step);
    }));
  }
  Attempt attempt(FailingCall::Allocation, 0, true);
  EXPECT_TRUE(attempt([&] { journal.add(step); }));
  journal.rollback(mark);
  EXPECT_EQ(undone, 102 + 2 * Journal::stepsSetAside);
}

}  // namespace
}  // namespace tarn::test
