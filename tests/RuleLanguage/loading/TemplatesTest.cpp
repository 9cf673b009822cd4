// Objects that take the entries of templates: which entries they have, in which order, and where they are written.

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include <tarn/rules/RuleLoader.h>

#include "RuleLanguage/ExpressionTable.h"

namespace tarn::rules {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> params(PhysicsData const& data, std::string const& typePath) {
  std::vector<std::string> names;
  for (auto const& param : data.getObjDependDef(typePath, true)->params()) names.push_back(param->name);
  return names;
}

std::vector<std::string> children(PhysicsData const& data, std::string const& typePath) {
  std::vector<std::string> names;
  for (auto const& child : data.getObjDependDef(typePath, true)->children()) names.push_back(child->type);
  return names;
}

std::vector<std::string> checks(PhysicsData const& data, std::string const& typePath) {
  std::vector<std::string> names;
  for (auto const& check : data.getObjDependDef(typePath, true)->checks()) names.push_back(check->name);
  return names;
}

std::string const templates = R"(Rule Database: 1
Templates:
  nameplate:
    Description: The text on the plate.
    Parameters:
      Maker: {Parameter Type: String}
      Serial Number: {Parameter Type: String}
  pump:
    Parameters:
      Flow: {Parameter Type: Real}
      Use: [nameplate]
      Head: {Parameter Type: Real, Available: "${Flow} > 0", Default Value: "= 2 * ${Flow}"}
    Children:
      Motor: {Required: yes, Singleton: yes}
    Checks:
      has head: {Check: "${Head} > 0", Message: "= name() + ' has no head.'"}
Objects:
)";

TEST(Templates, AnObjectTakesAllEntriesAtThePlaceAmongItsKeys) {
  auto const data = parseRules(templates + R"(
  /Plant/First:
    Use: [pump]
    Parameters: {Own: {Parameter Type: Real}}
    Children: {Valve: {Coupled: yes}}
    Checks: {own: {Check: "true", Message: x}}
  /Plant/Last:
    Parameters: {Own: {Parameter Type: Real}}
    Children: {Valve: {Coupled: yes}}
    Checks: {own: {Check: "true", Message: x}}
    Use: [pump]
)");
  EXPECT_THAT(params(*data, "/Plant/First"), ElementsAre("Flow", "Maker", "Serial Number", "Head", "Own"));
  EXPECT_THAT(children(*data, "/Plant/First"), ElementsAre("Motor", "Valve"));
  EXPECT_THAT(checks(*data, "/Plant/First"), ElementsAre("has head", "own"));
  EXPECT_THAT(params(*data, "/Plant/Last"), ElementsAre("Own", "Flow", "Maker", "Serial Number", "Head"));
  EXPECT_THAT(children(*data, "/Plant/Last"), ElementsAre("Valve", "Motor"));
  EXPECT_THAT(checks(*data, "/Plant/Last"), ElementsAre("own", "has head"));
  EXPECT_EQ(data->getObjDependDef("/Plant/First", true)->description, "");
}

TEST(Templates, ASectionTakesTheEntriesOfItsKindAtThePlaceAmongItsOwn) {
  auto const data = parseRules(templates + R"(
  /Plant/Pump:
    Parameters:
      Before: {Parameter Type: Real}
      Use: [pump]
      After: {Parameter Type: Real}
    Children:
      Use: [pump]
      Valve: {Coupled: yes}
    Checks:
      own: {Check: "true", Message: x}
      Use: [pump]
)");
  EXPECT_THAT(params(*data, "/Plant/Pump"), ElementsAre("Before", "Flow", "Maker", "Serial Number", "Head", "After"));
  EXPECT_THAT(children(*data, "/Plant/Pump"), ElementsAre("Motor", "Valve"));
  EXPECT_THAT(checks(*data, "/Plant/Pump"), ElementsAre("own", "has head"));
}

TEST(Templates, AnObjectOfALaterFileCanTakeATemplateOfAnEarlierOrLaterPart) {
  auto const data = parseRules(R"(Rule Database: 1
Objects:
  /Plant: {Use: [nameplate]}
Templates:
  nameplate: {Parameters: {Maker: {Parameter Type: String}}}
)");
  EXPECT_THAT(params(*data, "/Plant"), ElementsAre("Maker"));
}

TEST(Templates, EachObjectEvaluatesWhatItTookInItsOwnContext) {
  auto const data = parseRules(templates + R"(
  /Plant/Pump: {Use: [pump]}
  /Plant/Fan: {Use: [pump]}
)");
  test::MapModel const model{{"/Plant/Pump:p", {{"Flow", "3"}}}, {"/Plant/Fan:f", {{"Flow", "0"}}}};
  EvalContext evaluation(&model);
  auto const head = [&](std::string const& type, std::string const& object) {
    TDFContext const context(object);
    auto const* param = data->getObjDependDef(type, true)->findParam("Head");
    std::string text = param->evaluate(context, &evaluation) ? "available, " : "not available, ";
    text += param->valueDef()->evaluateDefault(data->getRules(), context, &evaluation);
    auto const& check = *data->getObjDependDef(type, true)->checks().front();
    return text + (check.passes(context, &evaluation) ? "" : ", " + check.evaluateMessage(context, &evaluation));
  };
  EXPECT_EQ(head("/Plant/Pump", "/Plant/Pump:p"), "available, 6, p has no head.");
  EXPECT_EQ(head("/Plant/Fan", "/Plant/Fan:f"), "not available, 0, f has no head.");
}

TEST(Templates, ATakenEntryIsWrittenInTheTemplate) {
  auto const data = parseRules(templates + "  /Plant/Pump: {Use: [pump]}\n", "pumps");
  auto const& head = *data->getObjDependDef("/Plant/Pump", true)->findParam("Head");
  EXPECT_EQ(head.rulePlace.line(), 12U);
  EXPECT_EQ(head.rulePlace.column(), 7U);
  EXPECT_EQ(head.available->rulePlace().line(), 12U);
  EXPECT_EQ(head.available->sourceText(), "${Flow} > 0");
}

TEST(Templates, AWarningAboutATakenEntryIsGivenOnceAndNamesTheObjectsThatTakeIt) {
  auto const diagnostics = lintText(R"(Rule Database: 1
Pertinent Roots: [Pump, Fan]
Templates:
  machine:
    Parameters:
      Speed: {Parameter Type: Real, Quantity Type: Rate}
Objects:
  /Pump:
    Use: [machine]
  /Fan:
    Use: [machine]
)",
                                    "flow.rules.yaml")
                               .diagnostics;
  ASSERT_EQ(diagnostics.size(), 1U);
  EXPECT_EQ(
      format(diagnostics.front()),
      "flow.rules.yaml:6:52: warning: there is no quantity type 'Rate' under Quantity Types; this affects 2 places\n"
      "    6 |       Speed: {Parameter Type: Real, Quantity Type: Rate}\n"
      "      |                                                    ^~~~\n"
      "flow.rules.yaml:9:11: note: an object takes it here\n"
      "    9 |     Use: [machine]\n"
      "      |           ^~~~~~~\n"
      "flow.rules.yaml:11:11: note: an object takes it here\n"
      "   11 |     Use: [machine]\n"
      "      |           ^~~~~~~\n");
}

TEST(Templates, AnUnusedTemplateAddsNothing) {
  auto const data = parseRules(templates + "  /Plant: {}\n");
  EXPECT_THAT(params(*data, "/Plant"), IsEmpty());
  EXPECT_EQ(data->objects().size(), 1U);
}

TEST(Templates, ChainsOfTemplatesHaveALimit) {
  auto const chain = [](std::size_t length) {
    std::string text = "Rule Database: 1\nTemplates:\n  t1: {Parameters: {A: {Parameter Type: Real}}}\n";
    for (std::size_t i = 2; i <= length; ++i) {
      text += "  t" + std::to_string(i) + ": {Use: [t" + std::to_string(i - 1) + "]}\n";
    }
    return text + "Objects:\n  /Plant: {Use: [t" + std::to_string(length) + "]}\n";
  };
  LoadLimits limits;
  limits.templateDepth = 5;
  EXPECT_EQ(test::errorsOf(chain(5), limits), "");
  EXPECT_EQ(test::errorsOf(chain(6), limits),
            "flow.rules.yaml:8:3: error: templates use each other in a chain of more than 5\n"
            "    8 |   t6: {Use: [t5]}\n"
            "      |   ^~\n");
  EXPECT_THAT(params(*parseRules(chain(20)), "/Plant"), ElementsAre("A"));
}

TEST(Templates, TheNumberOfNodesThatAllUsesTakeHasALimit) {
  std::string text = "Rule Database: 1\nTemplates:\n  t: {Parameters: {A: {Parameter Type: Real}}}\nObjects:\n";
  for (int i = 0; i < 10; ++i) text += "  /Plant/P" + std::to_string(i) + ": {Use: [t]}\n";
  LoadLimits limits;
  limits.templateNodes = 70;
  EXPECT_EQ(test::errorsOf(text, limits), "");
  limits.templateNodes = 69;
  EXPECT_EQ(
      test::errorsOf(text, limits),
      "flow.rules.yaml:14:21: error: the templates that objects use have more than 69 YAML nodes, counted once for "
      "each use\n"
      "   14 |   /Plant/P9: {Use: [t]}\n"
      "      |                     ^\n");
}

}  // namespace
}  // namespace tarn::rules
