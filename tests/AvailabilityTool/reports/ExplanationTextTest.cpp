#include "reports/ExplanationText.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <tarn/TDFContext.h>
#include <tarn/rules/Query.h>
#include <tarn/rules/RuleLoader.h>

#include "support/MapModel.h"

namespace tarn::tool {
namespace {

std::string explained(std::string const& text, std::string const& at = "/Case") {
  auto const rules = rules::parseRules(
      "Rule Database: 1\n"
      "Checks:\n"
      "  is wide: ${Width} > 3\n"
      "Objects:\n"
      "  /Case/Pipe:\n"
      "    Parameters:\n"
      "      Width: {Parameter Type: Real}\n");
  test::MapModel const model{
      {"/Case", {{"Title", "it's"}}}, {"/Case/Pipe:a", {{"Width", "5"}}}, {"/Case/Pipe:b", {{"Width", "1"}}}};
  auto const parsed = rules::parseQuery(text, *rules);
  EXPECT_TRUE(parsed.query) << rules::format(parsed.diagnostics);
  return parsed.query ? "\n" + explanationText(parsed.query->explain(TDFContext(at), model)) : "";
}

TEST(ExplanationText, APartHasItsValueAndWhatItRead) {
  EXPECT_EQ(explained("${Width} + 1", "/Case/Pipe:a"),
            "\n"
            "${Width} + 1   6\n"
            "  ${Width}   '5'\n"
            "      /Case/Pipe:a/Width = 5\n");
}

TEST(ExplanationText, AFailingAndShowsTheOperandsThatFail) {
  EXPECT_EQ(explained("check('is wide') and ${Title} == 'no' and ${Width} == 1", "/Case/Pipe:b"),
            "\n"
            "check('is wide') and ${Title} == 'no' and ${Width} == 1   false   (2 of 3 operands do not hold)\n"
            "  check('is wide')   false\n"
            "    ${Width} > 3   false\n"
            "      ${Width}   '1'\n"
            "          /Case/Pipe:b/Width = 1\n"
            "  ${Title} == 'no'   false   (fails as well)\n"
            "    ${Title}   ''\n"
            "        /Case/Pipe:b/Title is not present\n");
}

TEST(ExplanationText, APartInTheContextOfAnotherObjectNamesIt) {
  EXPECT_EQ(explained("any({Pipe:*}, ${Width} > 3)"),
            "\n"
            "any({Pipe:*}, ${Width} > 3)   true   (1 of 2 objects hold)\n"
            "  at /Case/Pipe:a: ${Width} > 3   true\n"
            "      the children Pipe of /Case: 2\n"
            "    ${Width}   '5'\n"
            "        /Case/Pipe:a/Width = 5\n");
}

TEST(ExplanationText, ATextHasItsQuotesDoubled) {
  EXPECT_EQ(explained("${Title}"),
            "\n"
            "${Title}   'it''s'\n"
            "    /Case/Title = it's\n");
}

TEST(ExplanationText, AnExpressionOnSeveralLinesIsOnOne) {
  EXPECT_EQ(explained("1\n    + 2"),
            "\n"
            "1 + 2   3\n");
}

TEST(ExplanationText, AnExplanationThatWasNotMadeIsEmpty) {
  EXPECT_EQ(explanationText({}), "");
}

}  // namespace
}  // namespace tarn::tool
