#include <gtest/gtest.h>

#include <sstream>

#include "reports/JsonReport.h"
#include "reports/Summary.h"
#include "reports/TextReport.h"

namespace tarn::tool {
namespace {

session::Findings oneOfEach() {
  session::Findings findings;
  findings.status = 3;
  findings.dependency = {{"/Case", "Something is missing."}};
  findings.global = {"There are outlets but no inlet."};
  findings.unknown = {{"/Case", "Colour", "No such parameter."}, {"/Case/Mesh", std::nullopt, "No such object."}};
  findings.values = {{"/Case", "Speed", "fast", "Not a number."}};
  findings.beta = {{"/Case/Combustion", "Not released."}};
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

TEST(TextReport, OfACleanModelIsEmpty) {
  EXPECT_EQ(textOf({}), "");
}

TEST(TextReport, ShowsBetaMessagesOfACleanModel) {
  session::Findings findings;
  findings.beta = {{"/Case/Combustion", "Not released."}};
  EXPECT_EQ(textOf(findings), "pump.tdf:\n**Beta message on path \"/Case/Combustion\"\n---\nNot released.\n===\n");
}

TEST(JsonReport, IsOneLineWithItsKeysInOrder) {
  EXPECT_EQ(jsonOf(oneOfEach()),
            R"({"model":"pump.tdf","status":3,)"
            R"("dependency":[{"path":"/Case","message":"Something is missing."}],)"
            R"("global":["There are outlets but no inlet."],)"
            R"("unknown":[{"path":"/Case","name":"Colour","message":"No such parameter."},)"
            R"({"path":"/Case/Mesh","message":"No such object."}],)"
            R"("values":[{"path":"/Case","name":"Speed","value":"fast","message":"Not a number."}],)"
            R"("beta":[{"path":"/Case/Combustion","message":"Not released."}]})"
            "\n");
}

TEST(JsonReport, OfACleanModelHasAllKeys) {
  EXPECT_EQ(jsonOf({}),
            R"({"model":"pump.tdf","status":0,"dependency":[],"global":[],"unknown":[],"values":[],"beta":[]})"
            "\n");
}

TEST(JsonReport, ReplacesWhatIsNotUtf8) {
  EXPECT_EQ(jsonOf({}, "p\xffq"),
            "{\"model\":\"p\xEF\xBF\xBDq\",\"status\":0,\"dependency\":[],\"global\":[],\"unknown\":[],\"values\":[],"
            "\"beta\":[]}\n");
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
  findings.values = {{"/Case", "Speed", "fast", "Not a number."}};
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
