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

/// Under a mark, too, a single edit is made or not.
void isMadeOrNotUnderAMark(std::function<void(DynamicTDF&)> const& edit) {
  forEveryFailureOf(FailingCall::Allocation, [&](Attempt& attempt) {
    Journal journal;
    DynamicTDF tree;
    tree.setParameter("/Case/Domain:rotor", "Motion of the Domain", "Rotating about an Axis");
    for (int i = 0; i < 128; ++i) tree.setParameter("/Case", "Coefficient number " + std::to_string(i), "1");
    for (int i = 0; i < 16; ++i) tree.createObject("/Case/Domain:rotor", "Boundary", std::to_string(i));
    DynamicTDFAccess::attach(tree, journal);
    TreeContent const before(tree);
    Journal::Mark const mark = journal.mark();
    bool const failed = attempt([&] { edit(tree); });
    TreeContent const after(tree);
    EXPECT_EQ(after == before, failed);
    EXPECT_TRUE(after.isConsistent);
    journal.rollback(mark);
    EXPECT_TRUE(TreeContent(tree) == before);
  });
}

TEST(RollbackFailures, AParameterIsSetOrNot) {
  isMadeOrNotUnderAMark([](auto& tree) {
    tree.setParameter("/Case/Domain:rotor", "Motion of the Domain", "Stationary, in the frame of the case");
  });
}

TEST(RollbackFailures, AParameterIsAddedOrNot) {
  isMadeOrNotUnderAMark([](auto& tree) { tree.setParameter("/Case", "Title of the whole Case", "Pump of the plant"); });
}

TEST(RollbackFailures, AParameterIsAddedTogetherWithItsObjectsOrNeitherIs) {
  isMadeOrNotUnderAMark([](auto& tree) {
    tree.setParameter("/Case/Domain:rotor/Boundary:casing of the pump/Profile:of the velocity", "Points of the Profile",
                      "0, 1, 2, 3, 4, 5, 6, 7");
  });
}

TEST(RollbackFailures, AParameterIsErasedOrNot) {
  isMadeOrNotUnderAMark([](auto& tree) { tree.deleteParameter("/Case/Domain:rotor", "Motion of the Domain"); });
}

TEST(RollbackFailures, AnObjectIsDeletedOrNot) {
  isMadeOrNotUnderAMark([](auto& tree) { tree.deleteObject("/Case/Domain:rotor/Boundary:7"); });
}

TEST(RollbackFailures, TheLogIsClearedOrNot) {
  isMadeOrNotUnderAMark([](auto& tree) { tree.resetChanges(); });
}

TEST(RollbackFailures, TreeAndLogAreEmptiedForALoadOrNeitherIs) {
  ModelState const none;
  isMadeOrNotUnderAMark([&none](auto& tree) { tree.initialise(none.begin(), none.end()); });
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
