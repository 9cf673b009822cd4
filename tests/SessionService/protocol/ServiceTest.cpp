#include <tarn/service/Service.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "SessionService/protocol/ServiceCase.h"

namespace tarn::service {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class ServiceTest : public ServiceCase {
 protected:
  [[nodiscard]] int codeOf(std::string const& text) { return Json::parse(send(text)).at("error").at("code"); }
};

TEST_F(ServiceTest, AnAnswerRepeatsTheIdentifierOfItsRequest) {
  EXPECT_THAT(send(R"({"jsonrpc":"2.0","id":"a b","method":"nothing"})"),
              R"({"jsonrpc":"2.0","id":"a b","error":{"code":-32601,)"
              R"("message":"there is no method \"nothing\"; \"hello\" lists all"}})");
  EXPECT_EQ(Json::parse(send(R"({"jsonrpc":"2.0","id":null,"method":"documents"})")),
            Json::parse(R"({"jsonrpc":"2.0","id":null,"result":{"documents":[],"recoverable":[]}})"));
}

TEST_F(ServiceTest, MembersThatNobodyKnowsAreIgnored) {
  EXPECT_EQ(Json::parse(send(R"({"jsonrpc":"2.0","id":1,"method":"documents","new":1,"params":{"new":[2]}})")),
            Json::parse(R"({"jsonrpc":"2.0","id":1,"result":{"documents":[],"recoverable":[]}})"));
}

TEST_F(ServiceTest, ANotificationIsDoneWithoutAnAnswer) {
  EXPECT_EQ(send(R"({"jsonrpc":"2.0","method":"open","params":{"text":"/Plant/Title = x\n"}})"), "");
  EXPECT_EQ(call("documents").at("documents").size(), 1U);
}

TEST_F(ServiceTest, AMessageThatIsNotJsonSaysWhereTheMistakeIs) {
  EXPECT_EQ(send("{\"id\" 3}"), R"({"jsonrpc":"2.0","id":null,"error":{"code":-32700,)"
                                R"("message":"the message is not JSON in UTF-8; the mistake is at byte 7"}})");
}

TEST_F(ServiceTest, MessagesThatAreTooDeepTooLongOrTooManyAreRefused) {
  limits_.messageDepth = 3;
  limits_.messageBytes = 50;
  limits_.batch = 2;
  restart();
  EXPECT_EQ(codeOf("[[[[]]]]"), -32003);
  EXPECT_EQ(Json::parse(send(R"(["[[[[","\"[[["])")).size(), 2U);  // brackets in strings nest nothing
  EXPECT_EQ(codeOf("[1,2,3]"), -32003);
  EXPECT_EQ(codeOf(std::string(51, ' ')), -32003);
  EXPECT_EQ(codeOf(std::string(50, ' ')), -32700);
}

TEST_F(ServiceTest, TooManyEditsOrAModelThatIsTooLongAreRefused) {
  limits_.edits = 1;
  limits_.modelBytes = 200;
  restart();
  std::string const plant = openPlant();
  Json const one = set("/Plant", "Title", "x");
  EXPECT_EQ(edit(plant, 0, list({one})).at("revision"), 1);
  EXPECT_EQ(error("edit", {{"document", plant}, {"revision", 1}, {"edits", list({one, one})}}).at("code"), -32003);
  EXPECT_EQ(error("open", {{"text", "/Plant/Title = " + std::string(200, 'x')}}).at("code"), -32003);
}

TEST_F(ServiceTest, DocumentsAreLimited) {
  limits_.documents = 1;
  restart();
  std::string const plant = openPlant();
  EXPECT_EQ(error("open", {{"text", ""}}).at("code"), -32003);
  call("close", {{"document", plant}});
  EXPECT_EQ(openPlant(), "2");
}

TEST_F(ServiceTest, AProofIsOnlySoDeep) {
  limits_.whyDepth = 1;
  restart();
  Json const params = {{"document", openPlant()}, {"path", "/Plant"}, {"name", "Level"}, {"depth", 5}};
  EXPECT_EQ(call("why", params).at("proof").at("nodes").size(), 1U);
  limits_.whyDepth = 5;
  restart();
  EXPECT_EQ(openPlant(), params.at("document"));
  EXPECT_EQ(call("why", params).at("proof").at("nodes").size(), 2U);
}

TEST_F(ServiceTest, AnEditForAnOldRevisionChangesNothingAndSaysThePresentOne) {
  std::string const plant = openPlant();
  EXPECT_EQ(edit(plant, 0, list({set("/Plant", "Title", "first")})).at("revision"), 1);
  Json const refused =
      error("edit", {{"document", plant}, {"revision", 0}, {"edits", list({set("/Plant", "Title", "second")})}});
  EXPECT_EQ(
      refused,
      Json::parse(
          R"({"code":-32001,"message":"the document has been changed: its revision is 1, and the request is for 0","data":{"revision":1}})"));
  EXPECT_EQ(call("lookParam", {{"document", plant}, {"path", "/Plant"}, {"name", "Title"}}).at("param").at("value"),
            "first");
}

TEST_F(ServiceTest, EditsOfOneRequestAreMadeAsOneOrNotAtAll) {
  std::string const plant = openPlant();
  Json const edits = list({set("/Plant", "Title", "x"), set("/Plant", "Control", "Fixd")});
  Json const answer = edit(plant, 0, edits);
  EXPECT_EQ(answer.at("revision"), 0);
  EXPECT_EQ(answer.at("result").at("refused").at("index"), 1);
  EXPECT_EQ(answer.at("result").at("refused").at("nearest"), set("/Plant", "Control", "Fixed"));
  EXPECT_EQ(call("own", {{"document", plant}}).at("total"), 0);
}

TEST_F(ServiceTest, AnEditThatAsksIsNotMadeIfItDeletesAnObjectWithAValue) {
  rules_ = rules::parseRules(R"(
Rule Database: 1
Pertinent Roots: [Plant]
Objects:
  /Plant:
    Parameters:
      Control: {Required: yes, Parameter Type: String, Ordered Allowed String List: [Free, Fixed], Default Value: Free}
    Children:
      Tank: {Coupled: yes, Available: "${Control} == 'Fixed'"}
  /Plant/Tank:
    Parameters:
      Height: {Parameter Type: Real}
)",
                             "plant.rules.yaml");
  restart();
  std::string const plant =
      call("open", {{"text", "/Plant/Control = Fixed\n/Plant/Tank:a/Height = 3\n"}}).at("document");
  Json request = {
      {"document", plant}, {"revision", 0}, {"edits", list({set("/Plant", "Control", "Free")})}, {"ask", true}};
  Json const asked = error("edit", request);
  EXPECT_EQ(asked.at("code"), -32009);
  EXPECT_EQ(asked.at("data").at("revision"), 0);
  EXPECT_EQ(asked.at("data").at("result").at("effect").at("objectsDeleted"), list({"/Plant/Tank:a"}));
  EXPECT_FALSE(asked.at("data").at("result").contains("message"));
  EXPECT_EQ(call("state", {{"document", plant}}).at("revision"), 0);
  // An edit that is refused, or loses nothing, is answered as always.
  request["edits"] = list({set("/Plant", "Control", "free")});
  EXPECT_EQ(call("edit", request).at("result").at("refused").at("code"), "value-not-allowed");
  request["edits"] = list({set("/Plant/Tank:a", "Height", "4")});
  EXPECT_EQ(call("edit", request).at("revision"), 1);
  request = {{"document", plant}, {"revision", 1}, {"edits", list({set("/Plant", "Control", "Free")})}};
  EXPECT_EQ(call("edit", request).at("revision"), 2);
}

TEST_F(ServiceTest, ANumberThatIsTooLargeIsNoRequest) {
  EXPECT_EQ(
      send(R"({"jsonrpc":"2.0","id":1e400,"method":"documents"})"),
      R"({"jsonrpc":"2.0","id":null,"error":{"code":-32700,"message":"the message has a number that is too large"}})");
}

TEST_F(ServiceTest, UndoAndRedoRaiseTheRevisionAndEndAtTheSavedState) {
  std::string const plant = openPlant();
  Json const made = edit(plant, 0, list({set("/Plant", "Control", "Fixed")}));
  EXPECT_EQ(made.at("unsaved"), true);
  Json const undone = call("undo", {{"document", plant}, {"revision", 1}});
  EXPECT_EQ(undone.at("revision"), 2);
  EXPECT_EQ(undone.at("unsaved"), false);
  EXPECT_EQ(undone.at("undoneSteps"), 1);
  EXPECT_EQ(call("redo", {{"document", plant}, {"revision", 2}}).at("unsaved"), true);
  EXPECT_FALSE(call("redo", {{"document", plant}, {"revision", 3}}).contains("result"));
}

TEST_F(ServiceTest, LongListsComeInPages) {
  std::string const plant = openPlant();
  auto const page = [&](Json params) {
    params.update({{"document", plant}, {"path", "/Plant"}});
    return call("params", params);
  };
  EXPECT_EQ(page({}).at("list"), Json({"Title", "Control", "Level"}));
  EXPECT_EQ(page({{"offset", 1}, {"limit", 1}}).at("list"), Json({"Control"}));
  EXPECT_EQ(page({{"offset", 1}, {"limit", 1}}).at("total"), 3);
  EXPECT_EQ(page({{"offset", 7}}).at("list"), Json::array());
}

TEST_F(ServiceTest, ALimitOfTheServiceHoldsForEveryPage) {
  limits_.page = 2;
  restart();
  std::string const plant = openPlant();
  Json const answer = call("params", {{"document", plant}, {"path", "/Plant"}, {"limit", 100}});
  EXPECT_EQ(answer.at("list"), Json({"Title", "Control"}));
  EXPECT_EQ(
      error("look", {{"document", plant}, {"items", {{{"path", ""}}, {{"path", ""}}, {{"path", ""}}}}}).at("code"),
      -32003);
}

TEST_F(ServiceTest, AnEffectThatIsTooLongForAnAnswerCanBeReadInPages) {
  std::string const plant = openPlant();
  Json const edits = list({set("/Plant/Tank:a", "Height", "5 [m]"), set("/Plant/Tank:b", "Height", "6 [m]")});
  Json const answer = call("edit", {{"document", plant}, {"revision", 0}, {"edits", edits}, {"limit", 1}});
  Json const& effect = answer.at("result").at("effect");
  EXPECT_EQ(effect.at("values").size(), 1U);
  EXPECT_EQ(effect.at("cut"), Json({{"values", 2}}));
  Json const rest = call("lastResult", {{"document", plant}, {"list", "values"}, {"offset", 1}});
  EXPECT_EQ(rest.at("list"),
            Json::parse(R"([{"path":"/Plant/Tank:b","name":"Height","before":"4 [m]","after":"6 [m]"}])"));
}

TEST_F(ServiceTest, AFormHasTheParametersInTheOrderOfTheRulesWithTheFindings) {
  std::string const plant = call("open", {{"text", "/Plant/Titel = x\n"}}).at("document");
  Json const form = call("form", {{"document", plant}, {"path", "/Plant"}, {"findings", true}});
  std::vector<std::string> names;
  for (Json const& param : form.at("params").at("list")) names.push_back(param.at("name"));
  EXPECT_THAT(names, ElementsAre("Title", "Control", "Level"));
  EXPECT_EQ(form.at("params").at("list").at(2).at("reason"), "Only a controlled plant has a level.");
  EXPECT_EQ(form.at("findings").size(), call("review", {{"document", plant}, {"below", "/Plant"}}).at("total"));
}

TEST_F(ServiceTest, TheFindingsOfAnObjectAreCountedWithThoseBelowItAndNoOthers) {
  // "Tank:a" is the beginning of the names of two other tanks, and "0" comes directly after "/".
  std::string const plant = call("open", {{"text",
                                           "/Plant/Tank:a/Height = -1 [m]\n/Plant/Tank:a0/Height = -1 [m]\n"
                                           "/Plant/Tank:a b/Height = -1 [m]\n/Plant/Tank:c/Height = 1 [m]\n"}})
                                .at("document");
  Json const children = call("children", {{"document", plant}, {"path", "/Plant"}, {"findings", true}});
  std::vector<int> errors;
  for (Json const& child : children.at("list")) errors.push_back(child.at("errors"));
  std::sort(errors.begin(), errors.end());
  EXPECT_THAT(errors, ElementsAre(0, 1, 1, 1));
  Json const root = call("children", {{"document", plant}, {"path", ""}, {"findings", true}});
  EXPECT_EQ(root.at("list").at(0).at("path"), "/Plant");
  EXPECT_EQ(root.at("list").at(0).at("errors"), 3);
}

TEST_F(ServiceTest, TheFindingsOfATypeAreThoseOfAllItsChildren) {
  std::string const plant =
      call("open", {{"text", "/Plant/Tank:a/Height = -1 [m]\n/Plant/Tank:b/Height = -1 [m]\n"}}).at("document");
  Json const types = call("childTypes", {{"document", plant}, {"path", "/Plant"}, {"findings", true}});
  EXPECT_EQ(types.at("list").at(0).at("errors"), 2);
  EXPECT_EQ(types.at("list").at(0).at("warnings"), 0);
}

TEST_F(ServiceTest, AnOutlineHasTheParametersWithoutTheirValues) {
  std::string const plant = openPlant();
  edit(plant, 0, list({set("/Plant", "Level", "3 [m]")}));
  Json const outline = call("outline", {{"document", plant}, {"path", "/Plant"}, {"offset", 1}});
  EXPECT_EQ(outline.at("total"), 3);
  EXPECT_EQ(outline.at("list"), Json::parse(R"([{"name":"Control","available":true},)"
                                            R"({"name":"Level","available":false,"waiting":true}])"));
}

TEST_F(ServiceTest, AValueOutOfItsBoundsSaysSoInItsRecord) {
  std::string const plant = openPlant();
  auto const record = [&] {
    return call("lookParam", {{"document", plant}, {"path", "/Plant/Tank:a"}, {"name", "Height"}}).at("param");
  };
  EXPECT_FALSE(record().contains("outOfBounds"));
  edit(plant, 0, list({set("/Plant/Tank:a", "Height", "-3 [m]")}));
  EXPECT_EQ(record().at("outOfBounds"), "is below its lower bound 0 [m]");
}

TEST_F(ServiceTest, ANameThatManyObjectsHaveIsProposedInTheFirstTwenty) {
  std::string text;
  for (int i = 101; i <= 130; ++i) text += "/Plant/Tank:" + std::to_string(i) + "/Height = 1 [m]\n";
  std::string const plant = call("open", {{"text", text}}).at("document");
  Json const refused = edit(plant, 0, list({set("/Plant", "Height", "2 [m]")})).at("result").at("refused");
  EXPECT_EQ(refused.at("possible").size(), 20);
  EXPECT_EQ(refused.at("possible").at(19), "/Plant/Tank:120/Height");
  EXPECT_EQ(refused.at("possibleCount"), 30);
}

TEST_F(ServiceTest, ANumberIsConvertedToUnitsThatMeasureTheSame) {
  std::string const plant = openPlant();
  auto const converted = [&](std::string const& value, std::string const& units) {
    return call("convert", {{"document", plant}, {"value", value}, {"units", units}}).at("value");
  };
  EXPECT_EQ(converted("2.5 [m]", "mm"), "2500 [mm]");
  EXPECT_EQ(converted("1e3 [mm]", "m"), "1 [m]");
  EXPECT_EQ(converted("1.5 [MPa]", "Pa"), "1500000 [Pa]");
  EXPECT_EQ(converted("2.5 [m]", "kg"), nullptr);
  EXPECT_EQ(converted("2.5", "mm"), nullptr);
  EXPECT_EQ(converted("long [m]", "mm"), nullptr);
}

TEST_F(ServiceTest, ATrialShowsTheFindingsThatComeAndChangesNothing) {
  std::string const plant = openPlant();
  Json const tried =
      call("tryEdits",
           {{"document", plant}, {"edits", list({set("/Plant/Tank:a", "Height", "-3 [m]")})}, {"findings", true}});
  EXPECT_EQ(tried.at("result").at("findingsGained").at(0).at("code"), "below-lower-bound");
  EXPECT_EQ(call("state", {{"document", plant}}).at("revision"), 0);
}

TEST_F(ServiceTest, AnAnswerToARepeatedEditIsThatOfTheFirst) {
  limits_.rememberedEdits = 1;
  restart();
  std::string const plant = openPlant();
  auto const request = [&](std::string const& id, std::size_t revision) {
    return Json{
        {"document", plant}, {"revision", revision}, {"edits", list({set("/Plant", "Title", id)})}, {"editId", id}};
  };
  Json first = call("edit", request("a", 0));
  Json again = call("edit", request("a", 0));
  EXPECT_EQ(again.at("repeated"), true);
  again.erase("repeated");
  EXPECT_EQ(again, first);
  call("edit", request("b", 1));
  EXPECT_EQ(error("edit", request("a", 0)).at("code"), -32001);
}

TEST_F(ServiceTest, EventsTellEveryStreamWhatWasChangedAndByWhom) {
  std::string const plant = openPlant();
  auto const one = service_->subscribe();
  auto const two = service_->subscribe();
  call("edit", {{"document", plant},
                {"revision", 0},
                {"edits", list({set("/Plant", "Control", "Fixed")})},
                {"client", "tab 1"}});
  for (auto const& stream : {one, two}) {
    auto const event = stream->next(std::chrono::seconds(5));
    ASSERT_NE(event, nullptr);
    Json const params = Json::parse(*event).at("params");
    EXPECT_EQ(params.at("cause"), "edit");
    EXPECT_EQ(params.at("client"), "tab 1");
    EXPECT_EQ(params.at("revision"), 1);
    EXPECT_EQ(params.at("result").at("effect").at("values").at(1).at("name"), "Level");
  }
}

TEST_F(ServiceTest, AStreamThatIsTooFarBehindIsToldSo) {
  limits_.waitingEvents = 2;
  restart();
  std::string const plant = openPlant();
  auto const stream = service_->subscribe();
  for (std::size_t i = 0; i < 3; ++i) edit(plant, i, list({set("/Plant", "Title", std::to_string(i))}));
  auto const event = stream->next(std::chrono::seconds(5));
  ASSERT_NE(event, nullptr);
  EXPECT_EQ(*event, R"({"jsonrpc":"2.0","method":"eventsLost","params":{}})");
  EXPECT_EQ(stream->next(std::chrono::milliseconds(0)), nullptr);
}

TEST_F(ServiceTest, ThereAreOnlySoManyStreamsAndOneThatIsDroppedMakesRoom) {
  limits_.streams = 1;
  restart();
  auto first = service_->subscribe();
  EXPECT_EQ(service_->subscribe(), nullptr);
  first.reset();
  EXPECT_NE(service_->subscribe(), nullptr);
}

TEST_F(ServiceTest, WithoutFoldersThereAreNoFiles) {
  EXPECT_EQ(call("hello").at("capabilities").at("files"), false);
  EXPECT_EQ(error("open", {{"file", "/etc/passwd"}}).at("code"), -32004);
}

TEST_F(ServiceTest, BytesOfAModelThatAreNotUtf8AreReplacedInAnswers) {
  test::TemporaryFolder const folder("service-bytes");
  std::ofstream(folder.path() / "plant.tdf") << "/Plant/Title = a\xFF\n";
  Service service(
      *rules_,
      {.version = {}, .instance = {}, .folders = {folder.path().string()}, .recoveryFolder = {}, .limits = {}});
  EXPECT_THAT(service.answer(R"({"jsonrpc":"2.0","id":1,"method":"open","params":{"file":"plant.tdf"}})"),
              HasSubstr("\"revision\":0"));
  EXPECT_THAT(
      service.answer(
          R"({"jsonrpc":"2.0","id":1,"method":"lookParam","params":{"document":"1","path":"/Plant","name":"Title"}})"),
      HasSubstr("\"value\":\"a\xEF\xBF\xBD\""));
}

}  // namespace
}  // namespace tarn::service
