#include "cli/ListArguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>

namespace tarn::tool {
namespace {

using testing::ElementsAre;

std::vector<std::string> divide(std::vector<std::string> const& arguments) {
  return divideListArguments(arguments, {{"--rules", looksLikeRules}, {"--root", looksLikeObject}});
}

TEST(ListArguments, TheFirstValueBelongsToTheOptionAndTheRestIsFree) {
  EXPECT_THAT(divide({"validate", "--rules", "rules", "pump.tdf", "fan.tdf"}),
              ElementsAre("validate", "--rules", "rules", "pump.tdf", "fan.tdf"));
}

TEST(ListArguments, FurtherRuleFilesAreGivenTheOptionAgain) {
  EXPECT_THAT(divide({"validate", "--rules", "a.rules.yaml", "b.rules.yaml", "pump.tdf"}),
              ElementsAre("validate", "--rules", "a.rules.yaml", "--rules", "b.rules.yaml", "pump.tdf"));
}

TEST(ListArguments, FurtherObjectsAreGivenTheOptionAgain) {
  EXPECT_THAT(divide({"validate", "--root", "/Case/Domain:a", "/Case/Domain:b", "pump.tdf"}),
              ElementsAre("validate", "--root", "/Case/Domain:a", "--root", "/Case/Domain:b", "pump.tdf"));
}

TEST(ListArguments, TheLastArgumentIsFreeWhenNoOtherIs) {
  EXPECT_THAT(divide({"validate", "--root", "/Case", "/no/such.tdf"}),
              ElementsAre("validate", "--root", "/Case", "/no/such.tdf"));
  EXPECT_THAT(divide({"validate", "--rules", "a.yaml", "b.yaml"}),
              ElementsAre("validate", "--rules", "a.yaml", "b.yaml"));
}

TEST(ListArguments, WithAModelInFrontTheLastArgumentMayBelongToTheOption) {
  EXPECT_THAT(divide({"validate", "pump.tdf", "--rules", "a.yaml", "b.yaml"}),
              ElementsAre("validate", "pump.tdf", "--rules", "a.yaml", "--rules", "b.yaml"));
}

TEST(ListArguments, AnArgumentThatIsAValueAlreadyIsFree) {
  EXPECT_THAT(divide({"validate", "--rules", "a.yaml", "b.yaml", "a.yaml", "--format", "json"}),
              ElementsAre("validate", "--rules", "a.yaml", "--rules", "b.yaml", "a.yaml", "--format", "json"));
}

TEST(ListArguments, AnotherOptionEndsTheList) {
  EXPECT_THAT(divide({"validate", "--rules", "a.yaml", "--only-validator", "b.yaml", "pump.tdf"}),
              ElementsAre("validate", "--rules", "a.yaml", "--only-validator", "b.yaml", "pump.tdf"));
}

TEST(ListArguments, BehindTwoHyphensNothingIsDivided) {
  EXPECT_THAT(divide({"validate", "--rules", "a.yaml", "--", "b.yaml", "c.yaml"}),
              ElementsAre("validate", "--rules", "a.yaml", "--", "b.yaml", "c.yaml"));
}

TEST(ListArguments, TheStandardInputIsFree) {
  EXPECT_THAT(divide({"validate", "--rules", "a.yaml", "-"}), ElementsAre("validate", "--rules", "a.yaml", "-"));
}

TEST(ListArguments, AnOptionWithoutAValueIsLeftToTheParser) {
  EXPECT_THAT(divide({"validate", "--rules"}), ElementsAre("validate", "--rules"));
}

TEST(ListArguments, AFolderLooksLikeRulesWhenItHoldsSome) {
  namespace fs = std::filesystem;
  fs::path const folder = fs::temp_directory_path() / ("zev-list-arguments-" + std::to_string(::getpid()));
  fs::create_directories(folder);
  EXPECT_FALSE(looksLikeRules(folder.string()));
  std::ofstream(folder / "flow.rules.yaml") << "Rule Database: 1\n";
  EXPECT_TRUE(looksLikeRules(folder.string()));
  EXPECT_FALSE(looksLikeObject(folder.string()));
  fs::remove_all(folder);
  EXPECT_FALSE(looksLikeRules(folder.string()));
  EXPECT_TRUE(looksLikeObject(folder.string()));
}

}  // namespace
}  // namespace tarn::tool
