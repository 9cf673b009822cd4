#include <tarn/session/Found.h>

#include <gtest/gtest.h>

#include <optional>

namespace tarn::session {
namespace {

TEST(Found, ANameMatchesByItsBestPlace) {
  EXPECT_EQ(matchOf("Flow Regime", "flow regime"), MatchKind::Exact);
  EXPECT_EQ(matchOf("Flow Regime", "FLOW"), MatchKind::Prefix);
  EXPECT_EQ(matchOf("Flow Regime", "reg"), MatchKind::Word);
  EXPECT_EQ(matchOf("Flow Regime", "gim"), MatchKind::Substring);
  EXPECT_EQ(matchOf("Flow Regime", "speed"), std::nullopt);
}

TEST(Found, ALaterWordIsBetterThanAnEarlierPartOfAWord) {
  EXPECT_EQ(matchOf("Overflow Flow", "flow"), MatchKind::Word);
}

TEST(Found, WhiteSpaceAtTheEndsOfTheTextIsIgnoredAndNothingMatchesNothing) {
  EXPECT_EQ(matchOf("Flow Regime", "  flow "), MatchKind::Prefix);
  EXPECT_EQ(matchOf("Flow Regime", " "), std::nullopt);
  EXPECT_EQ(matchOf("Flow Regime", ""), std::nullopt);
}

}  // namespace
}  // namespace tarn::session
