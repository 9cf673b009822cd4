// Every command that the editor proposes can be typed.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "Places.h"
#include "end_to_end/Shell.h"
#include "support/TemporaryFolder.h"

namespace tarn::test {
namespace {

/// The output of the example case under these commands, with the exit status as its last line.
std::string answerTo(std::string const& commands) {
  TemporaryFolder const folder("zev-edit-hints");
  std::ofstream(folder.path() / "commands") << commands;
  return outputOf("cd " + folder.path().string() +
                  " && cp " TARN_SOURCE_DIR "/examples/flow/models/sound.tdf . && " TARN_ZEV
                  " edit --rules " TARN_SOURCE_DIR "/examples/flow/rules sound.tdf < commands; echo status $?");
}

/// The commands that an answer proposes: after "nearest:", and those in quotes that begin with a word of the editor.
std::vector<std::string> proposedIn(std::string const& answer) {
  std::regex const proposal("  nearest: (.*)\n|\"((?:effects|save|quit|help|set|list|waiting)(?: [^\"]*)?)\"");
  std::vector<std::string> commands;
  for (std::sregex_iterator at(answer.begin(), answer.end(), proposal), end; at != end; ++at) {
    commands.push_back((*at)[1].matched ? (*at)[1] : (*at)[2]);
  }
  return commands;
}

class EditHints : public testing::TestWithParam<std::string> {};

TEST_P(EditHints, ArePossibleCommands) {
  std::string const answer = answerTo(GetParam() + "\n");
  std::vector<std::string> const proposed = proposedIn(answer);
  ASSERT_FALSE(proposed.empty()) << answer;
  bool const isEffect = proposed.front().starts_with("effects");
  for (std::string const& command : proposed) {
    std::string const again = answerTo((isEffect ? GetParam() + '\n' : "") + command + "\nquit unsaved\n");
    EXPECT_TRUE(again.ends_with("\nstatus 0\n") || again == "status 0\n") << command << '\n' << again;
  }
}

INSTANTIATE_TEST_SUITE_P(
    AfterA, EditHints,
    testing::Values("sett Title = x", "exit", "?", "cd Solver", "s", "help und", "set Flow Regim = Laminar",
                    "set Flow Regime = laminar", "set Domain:chanel/Material = Air",
                    "set Domain:channel/Domain Type = Fluids", "set Title", "set", "on Domain:channel/Colou",
                    "off Domain:channel/Buoyanci", "add Domain", "remove Domain:chanel", "copy Domain:channel",
                    "copy Domain:channel = sink", "rename Domain:channel = a/b", "rename Domain:sinc = x",
                    "show Analisis", "show Analysis/Time Stp", "list Analysis/Analysis Type", "go Domain:sin", "undo x",
                    "try show Solver", "find", "find xyzzy", "why", "how Analysis/Time Stp", "why Solver = 3",
                    "mine all", "copy Domain:channel = other", "remove Domain:channel", "set Title = x"));

}  // namespace
}  // namespace tarn::test
