// Patterns of texts.
#include "review/PatternJudge.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "SetupSession/review/Judging.h"
#include "support/MapModel.h"
#include "support/Rules.h"

namespace tarn::session {
namespace {

using test::findingsOf;
using test::linesOf;
using testing::ElementsAre;
using testing::IsEmpty;

using tarn::test::MapModel;
using tarn::test::Rules;

std::unique_ptr<TextPattern> upperCase() {
  return lambda::pattern("[A-Z]+", [](std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
  });
}

class PatternJudgeTest : public testing::Test {
 protected:
  PatternJudgeTest() {
    Rules rules(rules_, "/Chip");
    rules.param("Label").pattern(upperCase());
    rules.param("Part").pattern(upperCase(), "A part is named in upper case letters.");
    rules.param("Nets").type(TDFParam::StringList).pattern(upperCase());
    rules.param("Mode").allowed({"auto"}).anyValueAllowed().pattern(upperCase());
    rules.param("Count").type(TDFParam::Integer).pattern(upperCase());
  }
  std::vector<Finding> judged(std::string const& name, std::string const& value) {
    return findingsOf<PatternJudge>(rules_, MapModel{{"/Chip", {{name, value}}}});
  }
  PhysicsData rules_;
};

TEST_F(PatternJudgeTest, ATextThatDoesNotMatchIsAnError) {
  auto const findings = judged("Label", "Tx 1");
  EXPECT_THAT(linesOf(findings),
              ElementsAre("error pattern-not-matched: The parameter \"Label\" in the object \"/Chip\" has the value "
                          "\"Tx 1\", which does not match the pattern [A-Z]+."));
  EXPECT_EQ(findings[0].expected.pattern, "[A-Z]+");
  EXPECT_THAT(judged("Label", "TX"), IsEmpty());
}

TEST_F(PatternJudgeTest, TheSentenceOfTheRulesTakesThePlaceOfThePattern) {
  EXPECT_THAT(linesOf(judged("Part", "tx")),
              ElementsAre("error pattern-not-matched: The parameter \"Part\" in the object \"/Chip\" has the value "
                          "\"tx\". A part is named in upper case letters."));
}

TEST_F(PatternJudgeTest, OfAListEachItemMustMatch) {
  EXPECT_THAT(judged("Nets", "VDD, GND"), IsEmpty());
  auto const findings = judged("Nets", "VDD, gnd, vss");
  EXPECT_THAT(linesOf(findings),
              ElementsAre("error pattern-not-matched: The list parameter \"Nets\" in the object \"/Chip\" has as item "
                          "2 the value \"gnd\", which does not match the pattern [A-Z]+."));
  EXPECT_THAT(findings[0].wrong, ElementsAre("gnd"));
}

TEST_F(PatternJudgeTest, AnAllowedTextIsRightAsItIs) {
  EXPECT_THAT(judged("Mode", "auto"), IsEmpty());
  EXPECT_THAT(judged("Mode", "manual"), testing::SizeIs(1));
}

TEST_F(PatternJudgeTest, NumbersHaveNoPattern) {
  EXPECT_THAT(judged("Count", "5"), IsEmpty());
}

}  // namespace
}  // namespace tarn::session
