// Every rule that was read from a file knows where it is written.

#include <gtest/gtest.h>

#include <tarn/PhysicsData.h>
#include <tarn/rules/RuleLoader.h>

namespace tarn::rules {
namespace {

std::unique_ptr<PhysicsData> flowRules() {
  return parseRules(R"yaml(Rule Database: 1
Lists:
  fluids: [Water, Air]
  solids: = ('Steel',)
Checks:
  rotating: ${Motion} == 'Rotating'
  described: |
    exists(${Title})
Objects:
  /Case/Domain:
    Parameters:
      Motion: {Parameter Type: String, Ordered Allowed String List: [Rotating, Resting], Default Value: Resting}
      Speed:
        Available: check('rotating')
        Parameter Type: Real
        Default Value: "=  ${Maximum Speed}"
        Lower Bound: 0 [rad/s]
        Upper Bound: &limit !computed = ${Maximum Speed}
        Default Value Check List:
          - {When: 'true', Value: '= ''1'''}
      Größe: {Parameter Type: Real, Lower Bound: = 1 + 1}
    Children:
      Boundary:
        Available: >-
          true
        Default Names: = names({/Library/Material:*})
  /Case:
    Children: {Domain: {}}
  /Library:
Global Checks:
  flow:
    Check: exists({/Case})
    Message: There is no case.
)yaml",
                    "flow.rules.yaml");
}

TEST(RulePlaces, EntriesKnowTheirNames) {
  auto const data = flowRules();
  auto const& domain = *data->getObjDependDef("/Case/Domain", true);

  EXPECT_EQ(domain.rulePlace.text(), "flow.rules.yaml:10:3");
  EXPECT_EQ(data->getObjDependDef("/Library", true)->rulePlace.text(), "flow.rules.yaml:29:3");
  EXPECT_EQ(domain.findParam("Motion")->rulePlace.text(), "flow.rules.yaml:12:7");
  EXPECT_EQ(domain.findValueDef("Speed")->rulePlace.text(), "flow.rules.yaml:13:7");
  EXPECT_EQ(domain.findChild("Boundary")->rulePlace.text(), "flow.rules.yaml:23:7");
}

TEST(RulePlaces, ExpressionsKnowWhereTheirTextBegins) {
  auto const data = flowRules();
  auto const& domain = *data->getObjDependDef("/Case/Domain", true);
  auto const& speed = *domain.findValueDef("Speed");

  EXPECT_EQ(domain.findParam("Speed")->available->rulePlace().text(), "flow.rules.yaml:14:20");
  EXPECT_EQ(speed.defaultValue->rulePlace().text(), "flow.rules.yaml:16:28") << "after quote, sign and blanks";
  EXPECT_EQ(speed.upperBound->rulePlace().text(), "flow.rules.yaml:18:41") << "after anchor, tag, sign and blank";
  EXPECT_EQ(speed.defaultChecks.at(0).when->rulePlace().text(), "flow.rules.yaml:20:21");
  EXPECT_EQ(speed.defaultChecks.at(0).value->rulePlace().text(), "flow.rules.yaml:20:38");
  EXPECT_EQ(domain.findValueDef("Größe")->lowerBound->rulePlace().text(), "flow.rules.yaml:21:52")
      << "a column counts characters";
  EXPECT_EQ(domain.findChild("Boundary")->available->rulePlace().text(), "flow.rules.yaml:25:11") << "in a block";
  EXPECT_EQ(domain.findChild("Boundary")->defaultNamesSource->rulePlace().text(), "flow.rules.yaml:26:26");
}

TEST(RulePlaces, FixedTextsAndListsKnowWhereTheyAreWritten) {
  auto const data = flowRules();
  auto const& domain = *data->getObjDependDef("/Case/Domain", true);

  EXPECT_EQ(domain.findValueDef("Motion")->allowedValues->rulePlace().text(), "flow.rules.yaml:12:69");
  EXPECT_EQ(domain.findValueDef("Motion")->defaultValue->rulePlace().text(), "flow.rules.yaml:12:105");
  EXPECT_EQ(domain.findValueDef("Speed")->lowerBound->rulePlace().text(), "flow.rules.yaml:17:22");
}

TEST(RulePlaces, NamedRulesAndGlobalChecksKnowTheirBodies) {
  auto const data = flowRules();

  EXPECT_EQ(data->getCheck("rotating", true)->rulePlace().text(), "flow.rules.yaml:6:13");
  EXPECT_EQ(data->getCheck("described", true)->rulePlace().text(), "flow.rules.yaml:8:5");
  EXPECT_EQ(data->getList("fluids", true)->rulePlace().text(), "flow.rules.yaml:3:11");
  EXPECT_EQ(data->getList("solids", true)->rulePlace().text(), "flow.rules.yaml:4:13");
  EXPECT_EQ(data->getGlobalCheck("flow", true)->rulePlace().text(), "flow.rules.yaml:32:12");
}

TEST(RulePlaces, RulesThatAreWrittenAlikeShareTheirExpressionButNotTheirPlace) {
  auto const data = parseRules(R"yaml(Rule Database: 1
Objects:
  /Case:
    Parameters:
      A: {Parameter Type: Real, Available: true}
      B: {Parameter Type: Real, Available: true}
)yaml");
  auto const& object = *data->getObjDependDef("/Case", true);

  EXPECT_EQ(object.findParam("A")->available->rulePlace().text(), "<rules>:5:44");
  EXPECT_EQ(object.findParam("B")->available->rulePlace().text(), "<rules>:6:44");
}

TEST(RulePlaces, OutliveTheDatabase) {
  auto data = parseRules("Rule Database: 1\nObjects: {/Case: {}}\n", "flow.rules.yaml");
  RulePlace const place = data->getObjDependDef("/Case", true)->rulePlace;
  data.reset();

  EXPECT_EQ(place.text(), "flow.rules.yaml:2:11");
}

}  // namespace
}  // namespace tarn::rules
