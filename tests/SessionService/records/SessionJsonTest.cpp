// Each record of a session as JSON, with everything that it can have. Programs rely on the names of the keys.
#include <tarn/service/SessionJson.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/service/JsonText.h>
#include <tarn/service/LookJson.h>
#include <tarn/session/EditResult.h>

namespace tarn::service {
namespace {

using session::Item;
using session::Waiting;
using session::WaitingReason;

TEST(SessionJson, AnEditHasTheKeysThatItsKindUses) {
  EXPECT_EQ(jsonLine(editAsJson(Edit::setParam("/Case", "Title", "x"))),
            R"({"kind":"set-param","path":"/Case","name":"Title","value":"x"})");
  EXPECT_EQ(jsonLine(editAsJson(Edit::activateParam("/Case", "Title"))),
            R"({"kind":"activate-param","path":"/Case","name":"Title"})");
  EXPECT_EQ(jsonLine(editAsJson(Edit::deactivateParam("/Case", "Title"))),
            R"({"kind":"deactivate-param","path":"/Case","name":"Title"})");
  EXPECT_EQ(jsonLine(editAsJson(Edit::activateObject("/Case/Solver"))),
            R"({"kind":"activate-object","path":"/Case/Solver"})");
  EXPECT_EQ(jsonLine(editAsJson(Edit::deactivateObject("/Case/Solver"))),
            R"({"kind":"deactivate-object","path":"/Case/Solver"})");
  EXPECT_EQ(jsonLine(editAsJson(Edit::addObject("/Case/Domain:a"))),
            R"({"kind":"add-object","path":"/Case/Domain:a"})");
  EXPECT_EQ(jsonLine(editAsJson(Edit::removeObject("/Case/Domain:a"))),
            R"({"kind":"remove-object","path":"/Case/Domain:a"})");
  EXPECT_EQ(jsonLine(editAsJson(Edit::duplicateObject("/Case/Domain:a", "b"))),
            R"({"kind":"duplicate-object","path":"/Case/Domain:a","name":"b"})");
  EXPECT_EQ(jsonLine(editAsJson(Edit::renameObject("/Case/Domain:a", "b"))),
            R"({"kind":"rename-object","path":"/Case/Domain:a","name":"b"})");
}

TEST(SessionJson, WhatWaitsHasItsReasonAndWhatMustComeFirst) {
  EXPECT_EQ(jsonLine(waitingAsJson(Waiting{{"/Case/Solver", "Scheme"},
                                           "Upwind",
                                           WaitingReason::ObjectNotPresent,
                                           "Only a run has a solver.",
                                           "/Case/Solver"})),
            R"({"path":"/Case/Solver","name":"Scheme","value":"Upwind","reason":"object-not-present",)"
            R"("ruleReason":"Only a run has a solver.","missingObject":"/Case/Solver"})");
  EXPECT_EQ(jsonLine(waitingAsJson(
                Waiting{{"/Case/Solver", std::nullopt}, std::nullopt, WaitingReason::SwitchedOff, "", ""})),
            R"({"path":"/Case/Solver","reason":"switched-off"})");
}

TEST(SessionJson, EachReasonForWaitingHasItsOwnName) {
  EXPECT_EQ(waitingReasonName(WaitingReason::NotAvailable), "not-available");
  EXPECT_EQ(waitingReasonName(WaitingReason::ValueNotAllowed), "value-not-allowed");
  EXPECT_EQ(waitingReasonName(WaitingReason::Overridden), "overridden");
  EXPECT_EQ(waitingReasonName(WaitingReason::NotInTheRules), "not-in-the-rules");
}

TEST(SessionJson, AnEmptyEffectHasAllItsLists) {
  EXPECT_EQ(jsonLine(effectAsJson({})),
            R"({"values":[],"choices":[],"bounds":[],"defaults":[],"quantities":[],"offersGained":[],"offersLost":[],)"
            R"("objectsCreated":[],"objectsDeleted":[],"waiting":[]})");
}

TEST(SessionJson, AnEffectHasBeforeAndAfterWhereThereIsOne) {
  session::Effect effect;
  effect.values = {{"/Case", "Title", std::nullopt, "x"}, {"/Case", "Width", "1", std::nullopt}};
  ParamAllowedValues none;
  ParamAllowedValues some;
  some.hasAllowedValues = true;
  some.allowedValues = SharedStrings({"a", "b"});
  some.hasSubset = true;
  some.subsetValues = SharedStrings({"b"});
  effect.choices = {{"/Case", "Kind", none, some}};
  effect.bounds = {{"/Case", "Width", {"0 [m]", ""}, {"", "1 [m]"}}};
  effect.defaults = {{"/Case", "Width", "", "1"}};
  effect.quantities = {{"/Case", "Width", "Length", ""}};
  effect.offersGained = {{"/Case", "Remarks"}};
  effect.offersLost = {{"/Case/Solver", std::nullopt}};
  effect.objectsCreated = {"/Case/Domain:a"};
  effect.objectsDeleted = {"/Case/Domain:b"};
  effect.waiting = {
      {{"/Case", "Width"}, std::nullopt, Waiting{{"/Case", "Width"}, "1", WaitingReason::NotAvailable, "", ""}}};
  EXPECT_EQ(
      jsonLine(effectAsJson(effect)),
      R"({"values":[{"path":"/Case","name":"Title","after":"x"},{"path":"/Case","name":"Width","before":"1"}],)"
      R"("choices":[{"path":"/Case","name":"Kind","before":{"allowsAnyValue":true},)"
      R"("after":{"allowedValues":["a","b"],"subsetValues":["b"],"allowsAnyValue":false}}],)"
      R"("bounds":[{"path":"/Case","name":"Width","before":{"lowerBound":"0 [m]"},"after":{"upperBound":"1 [m]"}}],)"
      R"("defaults":[{"path":"/Case","name":"Width","after":"1"}],)"
      R"("quantities":[{"path":"/Case","name":"Width","before":"Length"}],)"
      R"("offersGained":[{"path":"/Case","name":"Remarks"}],"offersLost":[{"path":"/Case/Solver"}],)"
      R"("objectsCreated":["/Case/Domain:a"],"objectsDeleted":["/Case/Domain:b"],)"
      R"("waiting":[{"path":"/Case","name":"Width","after":{"path":"/Case","name":"Width","value":"1",)"
      R"("reason":"not-available"}}]})");
}

TEST(SessionJson, ARefusalHasWhatWouldBePossible) {
  session::Refused refused;
  refused.code = session::RefusalCode::ValueNotAllowed;
  refused.index = 2;
  refused.edit = Edit::setParam("/Case", "Kind", "c");
  refused.sentence = "No.";
  refused.nearest = Edit::setParam("/Case", "Kind", "b");
  refused.possible = SharedStrings({"a", "b"});
  EXPECT_EQ(
      jsonLine(refusedAsJson(refused)),
      R"({"code":"value-not-allowed","index":2,"edit":{"kind":"set-param","path":"/Case","name":"Kind","value":"c"},)"
      R"("sentence":"No.","nearest":{"kind":"set-param","path":"/Case","name":"Kind","value":"b"},)"
      R"("possible":["a","b"]})");
}

TEST(SessionJson, ARefusalSaysHowManyAreLeftOut) {
  session::Refused refused;
  refused.possible = SharedStrings({"/Case/Pipe:a/Bore", "/Case/Pipe:b/Bore"});
  refused.possibleCount = 25;
  EXPECT_EQ(refusedAsJson(refused).at("possibleCount"), 25);
  EXPECT_EQ(refusedAsJson(refused).at("possible").size(), 2);

  std::vector<std::string> names;
  for (std::size_t i = 0; i < mostAllowedInRecord + 5; ++i) names.push_back("pipe " + std::to_string(i));
  refused.possible = SharedStrings(names);
  refused.possibleCount = 0;
  EXPECT_EQ(refusedAsJson(refused).at("possibleCount"), names.size());
  EXPECT_EQ(refusedAsJson(refused).at("possible").size(), mostAllowedInRecord);
  names.resize(mostAllowedInRecord);
  refused.possible = SharedStrings(names);
  EXPECT_FALSE(refusedAsJson(refused).contains("possibleCount"));
}

TEST(SessionJson, AResultHasConversionsAndFollowedReferences) {
  session::EditResult result;
  result.made = {Edit::setParam("/Case", "Width", "0.025 [m]")};
  result.conversions = {{0, {"/Case", "Width"}, "25 mm", "0.025 [m]"}};
  result.followed = {{{"/Case", "Inlet"}, "a", "b"}};
  auto const json = editResultAsJson(result);
  EXPECT_TRUE(json.at("applied").get<bool>());
  EXPECT_FALSE(json.contains("step"));
  EXPECT_FALSE(json.contains("refused"));
  EXPECT_EQ(jsonLine(json.at("conversions")),
            R"([{"index":0,"path":"/Case","name":"Width","from":"25 mm","to":"0.025 [m]"}])");
  EXPECT_EQ(jsonLine(json.at("followed")), R"([{"path":"/Case","name":"Inlet","before":"a","after":"b"}])");
}

TEST(SessionJson, BytesThatAreNotUtf8AreReplaced) {
  EXPECT_EQ(jsonLine(itemAsJson({"/Case", "a\xff"})), "{\"path\":\"/Case\",\"name\":\"a\xEF\xBF\xBD\"}");
}

}  // namespace
}  // namespace tarn::service
