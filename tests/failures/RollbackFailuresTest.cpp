// Rollbacks of a tree after edits that ran out of memory somewhere in the middle. A rollback brings back exactly what
// the mark saw, and needs no memory for it.

#include <gtest/gtest.h>

#include <string>

#include "failures/Injection.h"
#include "support/RandomTree.h"

namespace tarn::test {
namespace {

bool withoutMemory(std::function<void()> const& rollback) {
  Attempt attempt(FailingCall::Allocation, 0, true);
  bool const failed = attempt(rollback);
  EXPECT_FALSE(attempt.wasReached()) << "a rollback allocates";
  return failed;
}

TEST(RollbackFailures, ARollbackAllocatesNothing) {
  for (unsigned seed = 1; seed <= 40; ++seed) {
    RandomTree random(seed);
    auto const done = [](std::function<void()> const& operation) {
      operation();
      return false;
    };
    ASSERT_EQ(random.differenceAfter(150, done, withoutMemory), "") << "seed " << seed;
  }
}

TEST(RollbackFailures, WhatAnEditDidBeforeMemoryRanOutIsRolledBackToo) {
  for (unsigned seed = 1; seed <= 60; ++seed) {
    RandomTree random(seed);
    auto const failing = [&random](std::function<void()> const& operation) {
      int const passed = random.upTo(2) == 0 ? random.upTo(300) : random.upTo(12);
      Attempt attempt(FailingCall::Allocation, static_cast<std::size_t>(passed), random.upTo(1) == 0);
      return attempt(operation);
    };
    ASSERT_EQ(random.differenceAfter(150, failing, withoutMemory), "") << "seed " << seed;
  }
}

}  // namespace
}  // namespace tarn::test
