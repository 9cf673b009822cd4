// The numbers on the page about limits are those that the program uses.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <tarn/ModelText.h>
#include <tarn/PathPattern.h>
#include <tarn/TDFChangeFile.h>
#include <tarn/rules/RuleLoader.h>
#include <tarn/service/FindingJson.h>
#include <tarn/service/Service.h>
#include <tarn/session/Refused.h>
#include <tarn/workbench/RuleDependencies.h>
#include <tarn/workbench/RuleTests.h>

#include "Places.h"
#include "console/Completion.h"
#include "console/HistoryFile.h"
#include "lsp/LanguageServer.h"

namespace tarn::tool {
namespace {

using testing::AllOf;
using testing::Each;
using testing::IsEmpty;
using testing::Not;

/// The numbers of all rows of the page about `name`.
std::vector<std::size_t> told(std::string const& name) {
  std::ifstream page(TARN_SOURCE_DIR "/docs/limits.md");
  std::vector<std::size_t> numbers;
  for (std::string line; std::getline(page, line);) {
    std::istringstream row(line);
    std::string cell, most, place;
    std::getline(row, cell, '|') && std::getline(row, cell, '|') && std::getline(row, most, '|') &&
        std::getline(row, place, '|');
    if (place != " `" + name + "` ") continue;
    most.erase(std::remove(most.begin(), most.end(), ','), most.end());
    numbers.push_back(std::stoul(most));
  }
  return numbers;
}

auto is(std::size_t number) {
  return AllOf(Not(IsEmpty()), Each(number));
}

TEST(LimitsPage, TellsTheLimitsOfTestsAndGraphs) {
  workbench::TestLimits const limits;
  EXPECT_THAT(told("TestLimits::fileSize"), is(limits.fileSize));
  EXPECT_THAT(told("TestLimits::yamlDepth"), is(limits.yamlDepth));
  EXPECT_THAT(told("TestLimits::yamlNodes"), is(limits.yamlNodes));
  EXPECT_THAT(told("TestLimits::errors"), is(limits.errors));
  EXPECT_THAT(told("GraphOptions::mostNodes"), is(workbench::GraphOptions{}.mostNodes));
}

TEST(LimitsPage, TellsTheLimitsOfRuleFiles) {
  rules::LoadLimits const limits;
  EXPECT_THAT(told("fileSize"), is(limits.fileSize));
  EXPECT_THAT(told("yamlDepth"), is(limits.yamlDepth));
  EXPECT_THAT(told("yamlNodes"), is(limits.yamlNodes));
  EXPECT_THAT(told("expressionLength"), is(limits.expressionLength));
  EXPECT_THAT(told("expressionDepth"), is(limits.expressionDepth));
  EXPECT_THAT(told("callDepth"), is(limits.callDepth));
  EXPECT_THAT(told("nestingDepth"), is(limits.nestingDepth));
  EXPECT_THAT(told("callCount"), is(limits.callCount));
  EXPECT_THAT(told("templateDepth"), is(limits.templateDepth));
  EXPECT_THAT(told("templateNodes"), is(limits.templateNodes));
  EXPECT_THAT(told("errors"), is(limits.errors));
}

TEST(LimitsPage, TellsTheLimitsOfPathsAndOfTheConsole) {
  EXPECT_THAT(told("TDFChangeFile::maxComponents"), is(TDFChangeFile::maxComponents));
  EXPECT_THAT(told("ModelText::mostFaults"), is(ModelText::mostFaults));
  EXPECT_THAT(told("ModelText::mostOccurrences"), is(ModelText::mostOccurrences));
  EXPECT_THAT(told("mostAllowedInJson"), is(service::mostAllowedInJson));
  EXPECT_THAT(told("Refused::mostPaths"), is(session::Refused::mostPaths));
  EXPECT_THAT(told("PathPattern::maxSteps"), is(PathPattern::maxSteps));
  EXPECT_THAT(told("HistoryFile::maxLines"), is(HistoryFile::maxLines));
  EXPECT_THAT(told("Completion::maxChoices"), is(Completion::maxChoices));
}

TEST(LimitsPage, TellsTheLimitsOfTheLanguageServer) {
  LspLimits const limits;
  EXPECT_THAT(told("LspLimits::messageBytes"), is(limits.messageBytes));
  EXPECT_THAT(told("LspLimits::messageDepth"), is(limits.messageDepth));
  EXPECT_THAT(told("LspLimits::completions"), is(limits.completions));
  EXPECT_THAT(told("RuleBases::Limits::documents"), is(limits.bases.documents));
  EXPECT_THAT(told("RuleBases::Limits::files"), is(limits.bases.files));
  EXPECT_THAT(told("RuleBases::Limits::fileBytes"), is(limits.bases.fileBytes));
}

TEST(LimitsPage, TellsTheLimitsOfSessionsForPrograms) {
  service::ServiceLimits const limits;
  EXPECT_THAT(told("messageBytes"), is(limits.messageBytes));
  EXPECT_THAT(told("messageDepth"), is(limits.messageDepth));
  EXPECT_THAT(told("batch"), is(limits.batch));
  EXPECT_THAT(told("edits"), is(limits.edits));
  EXPECT_THAT(told("documents"), is(limits.documents));
  EXPECT_THAT(told("modelBytes"), is(limits.modelBytes));
  EXPECT_THAT(told("page"), is(limits.page));
  EXPECT_THAT(told("whyDepth"), is(limits.whyDepth));
  EXPECT_THAT(told("streams"), is(limits.streams));
  EXPECT_THAT(told("waitingEvents"), is(limits.waitingEvents));
  EXPECT_THAT(told("rememberedEdits"), is(limits.rememberedEdits));
}

}  // namespace
}  // namespace tarn::tool
