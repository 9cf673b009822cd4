#include <tarn/EvalCache.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tarn/MeasurementSink.h>

namespace tarn {
namespace {

using testing::ElementsAre;

class Counts final : public MeasurementSink {
 public:
  void operationEnded(std::string const& name, std::chrono::nanoseconds /*duration*/,
                      std::vector<Section> const& /*sections*/) override {
    ADD_FAILURE() << name;
  }
  void cacheReported(std::size_t hits, std::size_t misses, std::size_t size) override {
    reported = {hits, misses, size};
  }
  std::vector<std::size_t> reported;
};

TEST(EvalCache, StartsDisabledAndThenNeitherFindsNorStores) {
  EvalCache cache;
  int const rule = 0;

  EXPECT_FALSE(cache.isEnabled());
  EXPECT_EQ(cache.store(&rule, true), nullptr);
  EXPECT_EQ(cache.find(&rule), nullptr);
  cache.enable(true);
  EXPECT_EQ(cache.find(&rule), nullptr) << "what came while it was disabled must not have been stored";
}

TEST(EvalCache, HandsOutWhatWasStoredForTheRule) {
  EvalCache cache;
  cache.enable(true);
  int const rules[5] = {};

  EXPECT_TRUE(std::get<bool>(*cache.store(&rules[0], true)));
  cache.store(&rules[1], 2.5);
  cache.store(&rules[2], std::string("Water"));
  cache.store(&rules[3], SharedStrings{"Water", "Air"});

  EXPECT_TRUE(std::get<bool>(*cache.find(&rules[0])));
  EXPECT_EQ(std::get<double>(*cache.find(&rules[1])), 2.5);
  EXPECT_EQ(std::get<std::string>(*cache.find(&rules[2])), "Water");
  EXPECT_THAT(std::get<SharedStrings>(*cache.find(&rules[3])).vector(), ElementsAre("Water", "Air"));
  EXPECT_EQ(cache.find(&rules[4]), nullptr);
}

TEST(EvalCache, ClearingForgetsTheResultsAndTakesNewOnes) {
  EvalCache cache;
  cache.enable(true);
  int const rules[2] = {};
  cache.store(&rules[0], std::string("before"));
  cache.store(&rules[1], true);

  cache.clear();
  EXPECT_EQ(cache.find(&rules[0]), nullptr);
  EXPECT_EQ(cache.find(&rules[1]), nullptr);
  cache.store(&rules[0], std::string("after"));
  EXPECT_EQ(std::get<std::string>(*cache.find(&rules[0])), "after");
  EXPECT_EQ(cache.find(&rules[1]), nullptr);
}

TEST(EvalCache, APauseHidesTheResultsAndKeepsThem) {
  EvalCache cache;
  cache.enable(true);
  int const rule = 0;
  cache.store(&rule, std::string("before"));

  cache.enable(false);
  EXPECT_EQ(cache.find(&rule), nullptr);
  EXPECT_EQ(cache.store(&rule, std::string("during")), nullptr);

  cache.enable(true);
  ASSERT_NE(cache.find(&rule), nullptr);
  EXPECT_EQ(std::get<std::string>(*cache.find(&rule)), "before");
}

TEST(EvalCache, AResultStaysWhereItIsWhileOthersAreStored) {
  EvalCache cache;
  cache.enable(true);
  std::vector<int> const rules(10000);
  auto const* const first = cache.store(&rules[0], std::string("Water"));
  for (auto const& rule : rules) {
    if (&rule != &rules[0]) cache.store(&rule, true);
  }

  EXPECT_EQ(cache.find(&rules[0]), first);
  EXPECT_EQ(std::get<std::string>(*first), "Water");
}

TEST(EvalCache, ReportsItsCountsToTheSinkOfTheThread) {
  EvalCache cache;
  cache.enable(true);
  int const rules[2] = {};
  (void)cache.find(&rules[0]);
  cache.store(&rules[0], true);
  (void)cache.find(&rules[0]);
  (void)cache.find(&rules[0]);
  (void)cache.find(&rules[1]);

  Counts counts;
  MeasurementSink::set(&counts);
  cache.report();
  MeasurementSink::set(nullptr);
  EXPECT_THAT(counts.reported, ElementsAre(2U, 2U, 1U));
}

TEST(EvalCache, WithoutASinkTheReportIsDropped) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  EvalCache().report();

  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace tarn
