// Filling the tokens of a message. The law at the end compares with a second version that does what the contract says,
// step by step and with a limit on the steps.
#include <tarn/UserMsg.h>

#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "support/Redirected.h"

namespace tarn {
namespace {

std::string filled(std::string const& text, std::vector<std::string> const& values) {
  UserMsg message(text, nullptr);
  for (std::string const& value : values) message << value;
  return message;
}

TEST(UserMsg, WithoutValuesIsItsTemplate) {
  EXPECT_EQ(filled("The object \"%1\" has no \"%2\".", {}), "The object \"%1\" has no \"%2\".");
  EXPECT_EQ(filled("", {}), "");
}

TEST(UserMsg, FillsTheTokensInNumberOrderWhereverTheyStand) {
  EXPECT_EQ(filled("\"%2\" is no value of %1.", {"Motion", "Flying"}), "\"Flying\" is no value of Motion.");
}

TEST(UserMsg, FillsEveryOccurrenceOfAToken) {
  EXPECT_EQ(filled("%1 and %1%1", {"a"}), "a and aa");
}

TEST(UserMsg, AnEmptyValueTakesTheTokenAway) {
  EXPECT_EQ(filled("[%1]", {""}), "[]");
}

TEST(UserMsg, AValueThatHoldsALaterTokenHasItReplacedByTheLaterValue) {
  EXPECT_EQ(filled("%1 in %2", {"a %2 b", "Case"}), "a Case b in Case");
}

TEST(UserMsg, AValueThatHoldsAnEarlierTokenKeepsIt) {
  EXPECT_EQ(filled("%1 in %2", {"x", "%1"}), "x in %1");
}

TEST(UserMsg, AValueThatHoldsItsOwnTokenKeepsItAsText) {
  EXPECT_EQ(filled("%1, %1 in %2", {"100%1", "Case"}), "100%1, 100%1 in Case");
  EXPECT_EQ(filled("[%1]", {"%1"}), "[%1]");
}

TEST(UserMsg, AValueThatMakesATokenWithItsNeighboursIsSearchedAgain) {
  EXPECT_EQ(filled("%11", {"%"}), "%");
  EXPECT_EQ(filled("%%1", {"1x"}), "1xx");
  EXPECT_EQ(filled("%111", {"a%"}), "aaa%");
}

TEST(UserMsg, AValueThatGrowsForEverAcrossItsBordersIsPutInOnce) {
  EXPECT_EQ(filled("%%1", {"11%%"}), "%11%%");
  EXPECT_EQ(filled("%1%1", {"11-%%"}), "11-%%11-%%");
}

TEST(UserMsg, ATokenOfTwoDigitsLosesTwoCharactersOnly) {
  tarn::test::Captured const quiet(std::cerr);
  EXPECT_EQ(filled("[%9]", {"1", "2", "3", "4", "5", "6", "7", "8", "%10", "J"}), "[J0]");
}

TEST(UserMsg, WarnsForEachOfItsTwoTextsWhenTheTokenIsNowhere) {
  tarn::test::Captured const errors(std::cerr);
  EXPECT_EQ(filled("Nothing to fill", {"lost \"value\""}), "Nothing to fill");
  EXPECT_EQ(errors.text(),
            "Warning: token %1 was not used in the message: \"lost \"value\"\""
            "Warning: token %1 was not used in the message: \"lost \"value\"\"");
}

TEST(UserMsg, CountsAValueThatFoundNoToken) {
  tarn::test::Captured const errors(std::cerr);
  EXPECT_EQ(filled("only %2", {"a", "b"}), "only b");
  EXPECT_NE(errors.text().find("token %1 was"), std::string::npos);
  EXPECT_EQ(errors.text().find("token %2"), std::string::npos);
}

TEST(UserMsg, TellsThatThereIsNoTranslation) {
  bool translated = true;
  UserMsg const message("text", &translated);
  EXPECT_FALSE(translated);
}

TEST(UserMsg, FillsALongMessageInLinearTime) {
  std::string text;
  std::string expected;
  for (int i = 0; i < 300000; ++i) {
    text += "-%1";
    expected += "-rotor";
  }
  EXPECT_EQ(filled(text, {"rotor"}), expected);
  std::string const large(10'000'000, 'x');
  EXPECT_EQ(filled("<%1>", {large}), "<" + large + ">");
}

// The contract, step by step; nothing when it has not ended after many steps.
std::optional<std::string> naive(std::string text, std::string const& token, std::string const& value) {
  for (int step = 0; step < 400; ++step) {
    std::size_t const at = text.find(token);
    if (at == std::string::npos) return text;
    text.replace(at, 2, value);
  }
  return std::nullopt;
}

std::string once(std::string const& text, std::string const& token, std::string const& value) {
  std::string result;
  std::size_t from = 0;
  for (std::size_t at = text.find(token); at != std::string::npos; at = text.find(token, from)) {
    result += text.substr(from, at - from) + value;
    from = at + 2;
  }
  return result + text.substr(from);
}

std::vector<std::string> textsUpTo(std::size_t length, std::string const& alphabet) {
  std::vector<std::string> texts{""};
  for (std::size_t i = 0; i < texts.size() && texts[i].size() < length; ++i) {
    std::string const shorter = texts[i];
    for (char const c : alphabet) texts.push_back(shorter + c);
  }
  return texts;
}

TEST(UserMsg, EqualsTheStepByStepVersionForAllShortTextsAndValues) {
  int ended = 0;
  int endless = 0;
  for (std::string const& text : textsUpTo(5, "%1-")) {
    if (text.find("%1") == std::string::npos) continue;
    for (std::string const& value : textsUpTo(3, "%1-")) {
      std::string const result = filled(text, {value});
      std::optional<std::string> const expected = naive(text, "%1", value);
      ASSERT_EQ(result, expected ? *expected : once(text, "%1", value)) << "text " << text << ", value " << value;
      ++(expected ? ended : endless);
    }
  }
  EXPECT_GT(ended, 2000);
  EXPECT_GT(endless, 200);
}

TEST(UserMsg, EqualsTheStepByStepVersionForTheTenthToken) {
  tarn::test::Captured const quiet(std::cerr);
  for (std::string const& text : textsUpTo(5, "%10")) {
    if (text.find("%10") == std::string::npos) continue;
    for (std::string const& value : textsUpTo(3, "%10")) {
      // The ninth value brings the text in, since an earlier one would have its tokens filled.
      UserMsg message("%9", nullptr);
      for (char c = '1'; c <= '8'; ++c) message << "";
      message << text;
      message << value;
      std::optional<std::string> const expected = naive(text, "%10", value);
      ASSERT_EQ(std::string(message), expected ? *expected : once(text, "%10", value))
          << "text " << text << ", value " << value;
    }
  }
}

}  // namespace
}  // namespace tarn
