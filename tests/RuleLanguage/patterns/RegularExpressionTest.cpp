// Regular expressions: what matches, and what cannot be read.
#include "patterns/RegularExpression.h"

#include <gtest/gtest.h>

#include <string>

namespace tarn::rules {
namespace {

TEST(RegularExpression, MatchesOnlyTheWholeText) {
  RegularExpression const label("[A-Z][A-Z0-9_]*");
  EXPECT_TRUE(label.matchesWhole("UART_TX"));
  EXPECT_FALSE(label.matchesWhole("UART TX"));
  EXPECT_FALSE(label.matchesWhole("xUART"));
  EXPECT_FALSE(label.matchesWhole(""));
}

TEST(RegularExpression, AChoiceMatchesTheWholeTextToo) {
  EXPECT_FALSE(RegularExpression("in|out").matchesWhole("input"));
}

TEST(RegularExpression, CountsCharactersAndNotBytes) {
  EXPECT_TRUE(RegularExpression(".").matchesWhole("\xC3\xA9"));
}

TEST(RegularExpression, SaysWhyAPatternCannotBeRead) {
  EXPECT_EQ(RegularExpression("[A-Z").fault(), "missing ]: [A-Z");
  EXPECT_EQ(RegularExpression("(a").fault(), "missing ): (a");
  EXPECT_EQ(RegularExpression("a").fault(), "");
}

TEST(RegularExpression, RefusesPatternsThatWouldTakeTooMuchMemory) {
  EXPECT_NE(RegularExpression("((((a{100}){100}){100}){100})").fault(), "");
  EXPECT_EQ(RegularExpression(std::string(10'001, 'a')).fault(), "it is longer than 10000 bytes");
}

TEST(RegularExpression, APatternThatRepeatsTheEmptyTextEnds) {
  EXPECT_TRUE(RegularExpression("(a*)*").matchesWhole(""));
  EXPECT_FALSE(RegularExpression("(a*)*").matchesWhole(std::string(100'000, 'a') + "b"));
}

}  // namespace
}  // namespace tarn::rules
