// Completion in bash, as bash runs it: the input is the words of a command line, the output is the possible
// completions.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "Places.h"
#include "end_to_end/Shell.h"
#include "support/TemporaryFolder.h"

namespace tarn::test {
namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

using Strings = std::vector<std::string>;

class BashCompletion : public testing::Test {
 protected:
  BashCompletion() {
    fs::create_directory(folder_ / "rules");
    for (std::string const file : {"pump.tdf", "old pump.tdf", "flow.rules.yaml"})
      std::ofstream(folder_ / file) << '\n';
  }

  /// The completions of the last of `words`.
  Strings complete(Strings const& words) const {
    std::string line;
    for (std::string const& word : words) line += " '" + word + '\'';
    std::string const script = std::string(TARN_SOURCE_DIR) + "/AvailabilityTool/completions/zev.bash";
    std::istringstream stream(outputOf("cd '" + folder_.string() + "' && bash --norc --noprofile -c '. " + script +
                                       " && COMP_WORDS=(zev \"$@\") && COMP_CWORD=$# && _zev && " +
                                       "((!${#COMPREPLY[@]})) || printf \"%s\\n\" \"${COMPREPLY[@]}\"' bash" + line));
    Strings found;
    for (std::string one; std::getline(stream, one);) found.push_back(one);
    return found;
  }

  TemporaryFolder temporary_{"zev-completion"};
  fs::path const folder_ = temporary_.path();
};

TEST_F(BashCompletion, IsRegisteredForTheProgram) {
  EXPECT_EQ(outputOf("bash --norc --noprofile -c '. " + std::string(TARN_SOURCE_DIR) +
                     "/AvailabilityTool/completions/zev.bash && complete -p zev'"),
            "complete -F _zev zev\n");
}

TEST_F(BashCompletion, OffersTheCommandsFirst) {
  EXPECT_THAT(complete({""}), UnorderedElementsAre("edit", "validate", "why", "how", "find", "eval", "lint", "test",
                                                   "graph", "lsp", "doc", "migrate", "diff-rules", "schema", "show",
                                                   "console", "serve", "study", "--version", "-h", "--help"));
  EXPECT_THAT(complete({"v"}), UnorderedElementsAre("validate"));
}

TEST_F(BashCompletion, OffersEachCommandTheOptionsOfItsHelp) {
  for (std::string const command : {"edit", "validate", "why", "how", "find", "eval", "lint", "test", "graph", "lsp",
                                    "doc", "migrate", "diff-rules", "schema", "show", "console", "serve", "study"}) {
    if (command == "study" && !TARN_HAS_PYTHON_PACKAGE) continue;  // it has the options
    std::string const help = outputOf(std::string(TARN_ZEV) + ' ' + command + " --help");
    std::regex const option("\n  (?:(-[a-z]), ?)?(--[a-z-]+)");
    std::set<std::string> expected;
    for (std::sregex_iterator at(help.begin(), help.end(), option), end; at != end; ++at) {
      expected.insert((*at)[2]);
      if ((*at)[1].matched) expected.insert((*at)[1]);
    }
    ASSERT_TRUE(expected.contains("--help")) << command;
    Strings const offered = complete({command, "-"});
    EXPECT_EQ(std::set<std::string>(offered.begin(), offered.end()), expected) << command;
  }
}

TEST_F(BashCompletion, OffersTheValuesOfAnOption) {
  EXPECT_THAT(complete({"validate", "--phase", ""}), UnorderedElementsAre("dependency", "global", "all"));
  EXPECT_THAT(complete({"validate", "--format", "j"}), UnorderedElementsAre("json"));
  EXPECT_THAT(complete({"lint", "--format", ""}), UnorderedElementsAre("text", "json", "sarif"));
  EXPECT_THAT(complete({"edit", "--format", ""}), UnorderedElementsAre("text", "json"));
  EXPECT_THAT(complete({"validate", "--phase", "=", "g"}), UnorderedElementsAre("global"));
  EXPECT_THAT(complete({"validate", "--phase", "="}), UnorderedElementsAre("dependency", "global", "all"));
}

TEST_F(BashCompletion, OffersRuleFilesAndFoldersBehindRules) {
  EXPECT_THAT(complete({"lint", "--rules", ""}), UnorderedElementsAre("flow.rules.yaml", "rules"));
}

TEST_F(BashCompletion, OffersFilesWhereAModelIsWanted) {
  EXPECT_THAT(complete({"console", "--model", "p"}), UnorderedElementsAre("pump.tdf"));
  EXPECT_THAT(complete({"validate", "--rules", "rules", "o"}), UnorderedElementsAre("old pump.tdf"));
  EXPECT_THAT(complete({"edit", "--out", "o"}), UnorderedElementsAre("old pump.tdf"));
}

TEST_F(BashCompletion, OffersTheStreamsAsTargetOfTheLog) {
  EXPECT_THAT(complete({"console", "--log", "std"}), UnorderedElementsAre("stdout", "stderr"));
}

TEST_F(BashCompletion, OffersNothingForAnObjectOrANumberNorBehindAnUnknownCommand) {
  EXPECT_THAT(complete({"validate", "-j", ""}), IsEmpty());
  EXPECT_THAT(complete({"show", "--root", "/"}), IsEmpty());
  EXPECT_THAT(complete({"edit", "--set", "/"}), IsEmpty());
  EXPECT_THAT(complete({"prove", "-"}), IsEmpty());
}

}  // namespace
}  // namespace tarn::test
