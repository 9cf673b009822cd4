// Names that a rule computes and that no object can have are left out, so that they hide no finding.

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tarn/BasicPhysicsErrorLogger.h>
#include <tarn/EvalContext.h>
#include <tarn/PhysicsData.h>
#include <tarn/PhysicsValidator2.h>
#include <tarn/rules/RuleLoader.h>

#include "support/MapModel.h"

namespace tarn::rules {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The names that `Allowed Names` gives in a case whose title is "a/b".
std::vector<std::string> allowedNames(std::string const& names) {
  auto const data =
      parseRules("Rule Database: 1\nObjects: {/Case: {Children: {Domain: {Allowed Names: " + names + "}}}}\n");
  tarn::test::MapModel model{{"/Case", {{"Title", "a/b"}, {"Fluids", "Water,,Oil:1,Air"}}}};
  EvalContext evaluation(&model);
  TDFContext context("/Case");
  std::vector<std::string> result;
  data->getObjDependDef("/Case", true)->findChild("Domain")->evaluateAllowedNames(context, &evaluation, result);
  return result;
}

TEST(ComputedNames, NamesThatNoObjectCanHaveAreLeftOut) {
  EXPECT_THAT(allowedNames("\"= ('rotor', '', 'a/b', 'c:d', 'stator')\""), ElementsAre("rotor", "stator"));
  EXPECT_THAT(allowedNames("\"= values(${Title})\""), IsEmpty());
  EXPECT_THAT(allowedNames("\"= union(values(${Fluids}), ('rotor',))\""), testing::Contains("rotor"));
}

TEST(ComputedNames, OfAListParameterTheItemsThatCanBeNamesAreKept) {
  EXPECT_THAT(allowedNames("\"= ${Fluids}\""), ElementsAre("Water", "Air"));
}

TEST(ComputedNames, ItemsWithConditionsAreComputedToo) {
  EXPECT_THAT(allowedNames("[rotor, {Value: \"= ${Title}\"}, {Value: stator, When: \"true\"}]"),
              ElementsAre("rotor", "stator"));
}

TEST(ComputedNames, ANameThatNoObjectCanHaveHidesNoMissingObject) {
  auto const data = parseRules(R"yaml(Rule Database: 1
Pertinent Roots: [Case]
Objects:
  /Case:
    Parameters:
      Rotors: {Parameter Type: String List}
    Children:
      Domain: {Required: yes, Allowed Names: "= ${Rotors}"}
      Solver: {Required: yes, Singleton: yes}
  /Case/Domain: {Parameters: {Material: {Parameter Type: String, Required: yes, Default Value: Water}}}
  /Case/Solver: {Parameters: {Time Step: {Parameter Type: Real, Required: yes, Default Value: 1}}}
)yaml");
  ModelState const model{{"/Case", {{"Rotors", ",a/b,c:d,rotor"}}}};
  BasicPhysicsErrorLogger findings;
  PhysicsValidator2 validator(data.get());
  validator.setLogger(&findings);

  EXPECT_EQ(validator.validate(PhysicsValidator2::ValAll, model, {"/Case"}), PhysicsValidator2::ValDependencyErrors);
  std::vector<std::string> messages;
  for (auto const& error : findings.getDependencyErrors()) messages.push_back(error.message);
  EXPECT_THAT(messages,
              ElementsAre("The object \"/Case\" does not contain the Domain object: \"rotor\", which must be present.",
                          "There must be an object of type \"Solver\" in the object \"/Case\" but it does not exist."));
}

}  // namespace
}  // namespace tarn::rules
