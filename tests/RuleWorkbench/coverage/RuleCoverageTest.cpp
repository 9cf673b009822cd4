#include <tarn/workbench/RuleCoverage.h>

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include <tarn/ModelText.h>
#include <tarn/rules/RuleLoader.h>

namespace {

using namespace tarn;
using workbench::CoverageCount;
using workbench::CoverageItem;
using workbench::CoverageKind;
using workbench::RuleCoverage;

constexpr char const* pumpRules = R"(Rule Database: 1
Pertinent Roots: [Case]
Checks:
  rotates: ${Motion} == 'Rotating' and ${Fast}
Objects:
  /Case:
    Children:
      Domain: {Coupled: yes, Maximum Count: 1}
  /Case/Domain:
    Parameters:
      Motion:
        Context Rule: yes
        Parameter Type: String
        Required: yes
        Ordered Allowed String List: [Stationary, Rotating]
      Fast: {Parameter Type: Logical, Required: yes}
      Speed:
        Context: Rotating
        Available: ${Fast} or exists(${Axis})
        Parameter Type: Real
        Lower Bound: '0'
        Upper Bound: '10'
        Default Value Check List:
          - {When: "${Fast}", Value: '5'}
        Default Value: '1'
      Axis: {Parameter Type: String}
    Checks:
      slow pumps stand:
        Check: check('rotates') or not exists(${Speed})
        Message: A slow pump turns.
Global Checks:
  a domain:
    Check: count({/Case/Domain:*}) > 0
    Message: There is no domain.
)";

/// The items of the pump's rules after these models, each in a line: what it is, and how often each outcome was seen.
std::string coverageOf(std::vector<std::string> const& models) {
  auto const rules = rules::parseRules(pumpRules, "pump.rules.yaml");
  RuleCoverage coverage(*rules);
  for (std::string const& model : models) coverage.add(ModelText("model", model).state());
  std::string text;
  for (CoverageItem const& item : coverage.items()) {
    text += std::to_string(item.place.line()) + ' ' + std::string(coverageKindName(item.kind)) + ' ' + item.entry +
            ", " + item.attribute + (item.text.empty() ? "" : ", " + item.text) + ':';
    for (auto const& outcome : item.outcomes) text += ' ' + outcome.name + ' ' + std::to_string(outcome.times);
    text += '\n';
  }
  return text;
}

TEST(RuleCoverage, ListsEverythingThatRulesCanShow) {
  EXPECT_EQ(coverageOf({}),
            "8 entry Domain, Available: available 0\n"
            "8 bound Domain, Maximum Count: kept 0 broken 0\n"
            "11 entry Motion, Available: available 0\n"
            "15 allowed-value Motion, Ordered Allowed String List: Stationary 0 Rotating 0\n"
            "16 entry Fast, Available: available 0\n"
            "17 entry Speed, Available: available 0 unavailable 0\n"
            "17 context Speed, Context: Rotating 0\n"
            "19 condition Speed, Available, ${Fast} or exists(${Axis}): true 0 false 0\n"
            "19 operand Speed, Available, ${Fast}: true 0 false 0\n"
            "19 operand Speed, Available, exists(${Axis}): true 0 false 0\n"
            "24 default Speed, Default Value Check List: branch 1 0 otherwise 0\n"
            "21 bound Speed, Lower Bound: kept 0 broken 0\n"
            "22 bound Speed, Upper Bound: kept 0 broken 0\n"
            "26 entry Axis, Available: available 0\n"
            "28 check slow pumps stand, Check: passed 0 failed 0\n"
            "29 operand slow pumps stand, Check, check('rotates'): true 0 false 0\n"
            "29 operand slow pumps stand, Check, exists(${Speed}): true 0 false 0\n"
            "33 check a domain, Check: passed 0 failed 0\n"
            "4 condition rotates, Checks, ${Motion} == 'Rotating' and ${Fast}: true 0 false 0\n"
            "4 operand rotates, Checks, ${Motion} == 'Rotating': true 0 false 0\n"
            "4 operand rotates, Checks, ${Fast}: true 0 false 0\n");
}

/// The lines of `coverageOf` that begin with `begin`.
std::string linesOf(std::string const& text, std::string const& begin) {
  std::string found;
  for (std::size_t at = 0; at < text.size(); at = text.find('\n', at) + 1) {
    if (text.compare(at, begin.size(), begin) == 0) found += text.substr(at, text.find('\n', at) + 1 - at);
  }
  return found;
}

TEST(RuleCoverage, CountsEntriesContextsAndConditions) {
  std::string const text = coverageOf({"/Case/Domain:a/Motion=Rotating\n/Case/Domain:a/Fast=yes\n",
                                       "/Case/Domain:a/Motion=Stationary\n/Case/Domain:a/Fast=no\n",
                                       "/Case/Domain:a/Motion=Rotating\n/Case/Domain:a/Fast=no\n"});
  EXPECT_EQ(linesOf(text, "17 "),
            "17 entry Speed, Available: available 1 unavailable 2\n"
            "17 context Speed, Context: Rotating 2\n");
  EXPECT_EQ(linesOf(text, "19 "),
            "19 condition Speed, Available, ${Fast} or exists(${Axis}): true 1 false 1\n"
            "19 operand Speed, Available, ${Fast}: true 1 false 1\n"
            "19 operand Speed, Available, exists(${Axis}): true 0 false 1\n");
  EXPECT_EQ(linesOf(text, "15 "), "15 allowed-value Motion, Ordered Allowed String List: Stationary 1 Rotating 2\n");
}

TEST(RuleCoverage, CountsBranchesOfDefaultsWhereTheParameterIsAvailable) {
  std::string const text =
      coverageOf({"/Case/Domain:a/Motion=Rotating\n/Case/Domain:a/Fast=yes\n",
                  "/Case/Domain:a/Motion=Rotating\n/Case/Domain:a/Fast=no\n/Case/Domain:a/Axis=z\n"});
  EXPECT_EQ(linesOf(text, "24 "), "24 default Speed, Default Value Check List: branch 1 1 otherwise 1\n");
}

TEST(RuleCoverage, CountsBoundsAsTheReviewJudgesThem) {
  std::string const domain = "/Case/Domain:a/Motion=Rotating\n/Case/Domain:a/Fast=yes\n/Case/Domain:a/Speed=";
  std::string const text = coverageOf({domain + "5\n", domain + "-1\n", domain + "11\n", domain + "no number\n"});
  EXPECT_EQ(linesOf(text, "21 ") + linesOf(text, "22 "),
            "21 bound Speed, Lower Bound: kept 2 broken 1\n"
            "22 bound Speed, Upper Bound: kept 2 broken 1\n");
}

TEST(RuleCoverage, CountsChecksAndTheNamedChecksThatTheyCall) {
  std::string const text =
      coverageOf({"/Case/Domain:a/Motion=Stationary\n/Case/Domain:a/Fast=no\n/Case/Domain:a/Speed=5\n",
                  "/Case/Domain:a/Motion=Rotating\n/Case/Domain:a/Fast=yes\n/Case/Domain:a/Speed=5\n", "/Case/\n"});
  EXPECT_EQ(linesOf(text, "28 "), "28 check slow pumps stand, Check: passed 1 failed 1\n");
  EXPECT_EQ(linesOf(text, "33 "), "33 check a domain, Check: passed 2 failed 1\n");
  EXPECT_EQ(linesOf(text, "4 "),
            "4 condition rotates, Checks, ${Motion} == 'Rotating' and ${Fast}: true 1 false 1\n"
            "4 operand rotates, Checks, ${Motion} == 'Rotating': true 1 false 1\n"
            "4 operand rotates, Checks, ${Fast}: true 1 false 0\n");
}

TEST(RuleCoverage, CountsNumbersOfChildren) {
  std::string const text = coverageOf({"/Case/Domain:a/\n", "/Case/Domain:a/\n/Case/Domain:b/\n"});
  EXPECT_EQ(linesOf(text, "8 bound"), "8 bound Domain, Maximum Count: kept 1 broken 1\n");
}

TEST(RuleCoverage, OfSeveralThreadsAddUp) {
  auto const rules = rules::parseRules(pumpRules, "pump.rules.yaml");
  RuleCoverage whole(*rules);
  RuleCoverage part(*rules);
  whole.add(ModelText("model", "/Case/Domain:a/Motion=Rotating\n/Case/Domain:a/Fast=yes\n").state());
  part.add(ModelText("model", "/Case/Domain:a/Motion=Stationary\n").state());
  CoverageCount const before = countOf(whole.items());
  whole.add(part);
  CoverageCount const after = countOf(whole.items());
  EXPECT_EQ(before.all, after.all);
  EXPECT_LT(before.seen, after.seen);
  EXPECT_EQ(countOf(whole.items(), CoverageKind::AllowedValue).seen, 2U);
}

TEST(CoverageCount, PercentagesAreRoundedDown) {
  EXPECT_EQ((CoverageCount{999, 1000}).percent(), 99U);
  EXPECT_EQ((CoverageCount{1000, 1000}).percent(), 100U);
  EXPECT_EQ((CoverageCount{0, 0}).percent(), 100U);
}

}  // namespace
