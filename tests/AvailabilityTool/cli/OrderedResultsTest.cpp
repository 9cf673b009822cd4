#include "cli/OrderedResults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <latch>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace tarn::tool {
namespace {

using testing::ElementsAre;

TEST(OrderedResults, AreHandedOutInTheirOrderWhicheverIsReadyFirst) {
  std::latch lastIsMade(1);
  OrderedResults<std::string> results(3, 3, [&](std::size_t i) {
    if (i == 2) lastIsMade.count_down();
    lastIsMade.wait();
    return "model " + std::to_string(i);
  });
  std::vector<std::string> got;
  for (int i = 0; i < 3; ++i) got.push_back(results.next());
  EXPECT_THAT(got, ElementsAre("model 0", "model 1", "model 2"));
}

TEST(OrderedResults, OfManyEachIsMadeOnce) {
  std::size_t const count = 500;
  std::vector<std::atomic<int>> made(count);
  OrderedResults<std::size_t> results(count, 4, [&](std::size_t i) {
    ++made[i];
    return i;
  });
  for (std::size_t i = 0; i < count; ++i) ASSERT_EQ(results.next(), i);
  EXPECT_TRUE(std::all_of(made.begin(), made.end(), [](auto const& times) { return times == 1; }));
}

TEST(OrderedResults, AFailureStandsInThePlaceOfItsResult) {
  for (std::size_t const threads : {1U, 2U}) {
    OrderedResults<int> results(3, threads, [](std::size_t i) {
      if (i == 1) throw std::runtime_error("cannot open fan.tdf");
      return static_cast<int>(i);
    });
    EXPECT_EQ(results.next(), 0);
    EXPECT_THROW((void)results.next(), std::runtime_error);
    EXPECT_EQ(results.next(), 2);
  }
}

TEST(OrderedResults, AreNotMadeFarAheadOfTheOneThatIsWaitedFor) {
  std::latch mayFinishFirst(1);
  std::atomic<std::size_t> furthest = 0;
  OrderedResults<int> results(1000, 2, [&](std::size_t i) {
    for (std::size_t seen = furthest; seen < i && !furthest.compare_exchange_weak(seen, i);) continue;
    if (i == 0) mayFinishFirst.wait();
    return 0;
  });
  while (furthest < 7) std::this_thread::yield();
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_EQ(furthest, 7U);
  mayFinishFirst.count_down();
  (void)results.next();
}

TEST(OrderedResults, WhatNobodyAskedForIsNotBegunAnyMore) {
  std::atomic<int> made = 0;
  {
    OrderedResults<int> results(1000, 2, [&](std::size_t) { return ++made; });
    (void)results.next();
  }
  EXPECT_LE(made, 9);
}

TEST(OrderedResults, AreNotMadeOnTheThreadThatAsksForThem) {
  std::thread::id const here = std::this_thread::get_id();
  OrderedResults<bool> results(1, 1, [&](std::size_t) { return std::this_thread::get_id() == here; });
  EXPECT_FALSE(results.next());
}

TEST(OrderedResults, OneThreadMakesOneAfterTheOther) {
  std::atomic<int> atOnce = 0;
  OrderedResults<int> results(20, 1, [&](std::size_t) {
    int const now = ++atOnce;
    std::this_thread::yield();
    --atOnce;
    return now;
  });
  for (int i = 0; i < 20; ++i) EXPECT_EQ(results.next(), 1);
}

TEST(OrderedResults, OfNoneNoThreadIsStarted) {
  OrderedResults<int> const results(0, 4, [](std::size_t) { return 0; });
}

}  // namespace
}  // namespace tarn::tool
