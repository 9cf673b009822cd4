#include <tarn/NearMatches.h>

#include <gtest/gtest.h>

namespace tarn {
namespace {

std::vector<std::string> const parameters = {"Material", "Motion", "Temperature"};

TEST(NearMatches, ProposesTheNameThatWasProbablyMeant) {
  NearMatches matches;
  EXPECT_EQ(matches.find("Motoin", parameters), "Motion");
  EXPECT_EQ(matches.find("Colour", parameters), "");
}

TEST(NearMatches, ProposesNothingOnceItsLimitIsReached) {
  NearMatches matches(7);
  EXPECT_EQ(matches.find("Motoin", parameters), "Motion");
  EXPECT_EQ(matches.find("Temprature", parameters), "Temperature");
  EXPECT_EQ(matches.find("Motoin", parameters), "") << "one candidate is left";
  EXPECT_EQ(matches.find("Motoin", {"Motion"}), "Motion") << "a search that was not made does not count";
}

TEST(NearMatches, CountsWhatACallerLooksAtItself) {
  NearMatches matches(3);
  EXPECT_FALSE(matches.take(4));
  EXPECT_TRUE(matches.take(3));
  EXPECT_FALSE(matches.take(1));
  EXPECT_TRUE(matches.take(0));
}

}  // namespace
}  // namespace tarn
