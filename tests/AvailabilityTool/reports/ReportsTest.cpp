#include <gtest/gtest.h>

#include <sstream>

#include "reports/JsonReport.h"
#include "reports/Summary.h"
#include "reports/TextReport.h"

namespace tarn::tool {
namespace {

using session::Finding;
using session::FindingCode;
using session::Severity;

Finding finding(FindingCode code, std::string path, std::string message) {
  Finding made;
  made.code = code;
  made.severity = describe(code).severity;
  made.path = std::move(path);
  made.message = std::move(message);
  return made;
}

Finding unknownColour() {
  Finding made = finding(FindingCode::UnknownParameter, "/Case", "No such parameter.");
  made.name = "Colour";
  made.value = "red";
  return made;
}

Finding speedThatIsNoNumber() {
  Finding made = finding(FindingCode::NotANumber, "/Case", "Not a number.");
  made.name = "Speed";
  made.value = "fast";
  return made;
}

Finding notReleased() {
  return finding(FindingCode::BetaMessage, "/Case/Combustion", "Not released.");
}

session::Findings oneOfEach() {
  session::Findings findings;
  findings.status = 3;
  findings.list = {finding(FindingCode::MissingParameter, "/Case", "Something is missing."),
                   finding(FindingCode::GlobalCheckFailed, "", "There are outlets but no inlet."), unknownColour(),
                   finding(FindingCode::UnknownObject, "/Case/Mesh", "No such object."), speedThatIsNoNumber()};
  findings.beta = {notReleased()};
  return findings;
}

std::string textOf(session::Findings const& findings) {
  std::ostringstream out;
  writeTextReport(out, "pump.tdf", findings);
  return out.str();
}

std::string jsonOf(session::Findings const& findings, std::string const& name = "pump.tdf") {
  std::ostringstream out;
  writeJsonReport(out, name, findings);
  return out.str();
}

TEST(TextReport, GivesFourLinesAFindingUnderTheNameOfTheModel) {
  EXPECT_EQ(textOf(oneOfEach()),
            "pump.tdf:\n"
            "**Dependency error on path \"/Case\"\n---\nSomething is missing.\n===\n"
            "**General physics errors detected \n---\nThere are outlets but no inlet.\n===\n"
            "**Unknown name on path \"/Case\"\n---\nNo such parameter.\n===\n"
            "**Unknown name on path \"/Case/Mesh\"\n---\nNo such object.\n===\n"
            "**Value fault on path \"/Case\"\n---\nNot a number.\n===\n"
            "**Beta message on path \"/Case/Combustion\"\n---\nNot released.\n===\n");
}

TEST(TextReport, CallsAWarningAWarning) {
  session::Findings findings;
  findings.list = {finding(FindingCode::RepeatedParameter, "/Case", "Given twice.")};
  EXPECT_EQ(textOf(findings), "pump.tdf:\n**Warning on path \"/Case\"\n---\nGiven twice.\n===\n");
}

TEST(TextReport, OfACleanModelIsEmpty) {
  EXPECT_EQ(textOf({}), "");
}

TEST(TextReport, ShowsBetaMessagesOfACleanModel) {
  session::Findings findings;
  findings.beta = {notReleased()};
  EXPECT_EQ(textOf(findings), "pump.tdf:\n**Beta message on path \"/Case/Combustion\"\n---\nNot released.\n===\n");
}

TEST(JsonReport, IsOneLineWithItsKeysInOrder) {
  EXPECT_EQ(
      jsonOf(oneOfEach()),
      R"({"model":"pump.tdf","status":3,)"
      R"("dependency":[{"path":"/Case","message":"Something is missing."}],)"
      R"("global":["There are outlets but no inlet."],)"
      R"("unknown":[{"path":"/Case","name":"Colour","message":"No such parameter."},)"
      R"({"path":"/Case/Mesh","message":"No such object."}],)"
      R"("values":[{"path":"/Case","name":"Speed","value":"fast","message":"Not a number."}],)"
      R"("beta":[{"path":"/Case/Combustion","message":"Not released."}],)"
      R"("findings":[)"
      R"({"code":"missing-parameter","severity":"error","path":"/Case","message":"Something is missing."},)"
      R"({"code":"global-check-failed","severity":"error","path":"","message":"There are outlets but no inlet."},)"
      R"({"code":"unknown-parameter","severity":"error","path":"/Case","name":"Colour","value":"red",)"
      R"("message":"No such parameter."},)"
      R"({"code":"unknown-object","severity":"error","path":"/Case/Mesh","message":"No such object."},)"
      R"({"code":"not-a-number","severity":"error","path":"/Case","name":"Speed","value":"fast",)"
      R"("message":"Not a number."}]})"
      "\n");
}

TEST(JsonReport, GivesAFindingWithAllThatIsKnownOfIt) {
  auto const model = std::make_shared<std::string const>("pump.tdf");
  Finding speed = finding(FindingCode::AboveUpperBound, "/Case", "Too fast.");
  speed.name = "Speed";
  speed.value = "4000";
  speed.expected.lowerBound = "0";
  speed.expected.upperBound = "3000";
  speed.places = {{model, 3, 7}};
  speed.rule = {std::make_shared<std::string const>("pump.rules.yaml"), 11, 7};
  Finding domains = finding(FindingCode::ObjectNameNotAllowed, "/Case", "No such name.");
  domains.type = "Domain";
  domains.wrong = {"shaft"};
  domains.expected.allowed = {"rotor", "stator"};
  domains.expected.nearMatch = "stator";
  domains.severity = Severity::Warning;
  session::Findings findings;
  findings.list = {domains, speed};
  EXPECT_EQ(
      jsonOf(findings),
      R"({"model":"pump.tdf","status":0,"dependency":[],"global":[],"unknown":[],)"
      R"("values":[{"path":"/Case","name":"Speed","value":"4000","message":"Too fast."}],"beta":[],)"
      R"("findings":[{"code":"object-name-not-allowed","severity":"warning","path":"/Case","type":"Domain",)"
      R"("wrong":["shaft"],"expected":{"allowed":["rotor","stator"],"nearMatch":"stator"},"message":"No such name."},)"
      R"({"code":"above-upper-bound","severity":"error","path":"/Case","name":"Speed","value":"4000",)"
      R"("expected":{"lowerBound":"0","upperBound":"3000"},)"
      R"("places":[{"file":"pump.tdf","line":3,"column":7}],)"
      R"("rule":{"file":"pump.rules.yaml","line":11,"column":7},"message":"Too fast."}]})"
      "\n");
}

TEST(JsonReport, GivesTheFirstHundredAllowedValuesAndHowManyThereAre) {
  std::vector<std::string> names;
  for (int i = 1; i <= 101; ++i) names.push_back("plane " + std::to_string(i));
  Finding one = finding(FindingCode::ValueNotAllowed, "/Case", "No such plane.");
  one.expected.allowed = names;
  session::Findings findings;
  findings.list = {one};
  std::string const json = jsonOf(findings);
  EXPECT_NE(json.find(R"("plane 100"],"allowedCount":101},)"), std::string::npos) << json;
}

TEST(JsonReport, OfACleanModelHasAllKeys) {
  EXPECT_EQ(jsonOf({}),
            R"({"model":"pump.tdf","status":0,"dependency":[],"global":[],"unknown":[],"values":[],"beta":[],)"
            R"("findings":[]})"
            "\n");
}

TEST(JsonReport, ReplacesWhatIsNotUtf8) {
  EXPECT_EQ(jsonOf({}, "p\xffq"),
            "{\"model\":\"p\xEF\xBF\xBDq\",\"status\":0,\"dependency\":[],\"global\":[],\"unknown\":[],\"values\":[],"
            "\"beta\":[],\"findings\":[]}\n");
}

TEST(Summary, CountsModelsAndKinds) {
  Summary summary;
  summary.add(oneOfEach());
  summary.add({});
  EXPECT_EQ(
      summary.text(),
      "2 models validated, 1 with findings: 1 dependency error, 1 general physics error, 2 unknown names, 1 value "
      "fault. 1 beta message.");
  EXPECT_EQ(summary.exitStatus(), 1);
}

TEST(Summary, LeavesOutKindsThatWereNotFound) {
  session::Findings findings;
  findings.list = {speedThatIsNoNumber()};
  Summary summary;
  summary.add(findings);
  EXPECT_EQ(summary.text(), "1 model validated, 1 with findings: 1 value fault.");
}

TEST(Summary, OfCleanModelsSaysSo) {
  Summary summary;
  summary.add({});
  EXPECT_EQ(summary.text(), "1 model validated, nothing found.");
  EXPECT_EQ(summary.exitStatus(), 0);
}

TEST(Summary, TellsObjectsThatWerePassedOver) {
  session::Findings findings;
  findings.objectsPassedOver = 1;
  Summary summary;
  summary.add(findings);
  EXPECT_EQ(summary.text(),
            "1 model validated, nothing found. 1 object at the root is of a type that the rules do not look at.");
  EXPECT_EQ(summary.exitStatus(), 0);
  summary.add(findings);
  EXPECT_EQ(summary.text(),
            "2 models validated, nothing found. 2 objects at the root are of types that the rules do not look at.");
}

TEST(Summary, AFailureOutranksFindings) {
  Summary summary;
  summary.add(oneOfEach());
  summary.addFailure();
  EXPECT_EQ(summary.exitStatus(), 2);
  EXPECT_EQ(summary.text(),
            "1 model validated, 1 with findings: 1 dependency error, 1 general physics error, 2 unknown names, 1 value "
            "fault. 1 beta message. 1 model could not be validated, see above.");
}

TEST(Summary, OfModelsThatCouldNotBeReadPromisesNothing) {
  Summary summary;
  summary.addFailure();
  summary.addFailure();
  EXPECT_EQ(summary.text(), "no model validated. 2 models could not be validated, see above.");
  EXPECT_EQ(summary.exitStatus(), 2);
}

}  // namespace
}  // namespace tarn::tool
