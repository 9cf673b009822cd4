// Every command that the editor proposes can be typed.
#include <gmock/gmock.h>
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
  std::regex const proposal(
      "(?:  nearest: |next: |(?:type|or):\n  )(.*)\n|\"((?:effects|save|quit|help|set|list|waiting|diff|findings)(?: "
      "[^\"]*)?)\"");
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
                    "mine all", "copy Domain:channel = other", "remove Domain:channel", "set Title = x",
                    "why Analysis/Time Step", "how Analysis/Time Step", "why Domain:fan/Material",
                    "how Domain:sink/Reference Pressure", "add Domain:a=b", "rename Domain:sink = a=b",
                    "set Maximum Speed = 3,5", "set Flow Regim = laminar", "try set Flow Regim = laminar"));

/// The command lines that zev proposes after one of its own: after "nearest:", "next:", "more:", "type:" and "or:".
std::vector<std::string> proposedLinesIn(std::string const& answer) {
  std::regex const proposal("(?:nearest|next|more): (zev .*)\n|(?:type|or):\n  (zev .*)\n");
  std::vector<std::string> lines;
  for (std::sregex_iterator at(answer.begin(), answer.end(), proposal), end; at != end; ++at) {
    lines.push_back((*at)[1].matched ? (*at)[1] : (*at)[2]);
  }
  return lines;
}

class CommandLineHints : public testing::TestWithParam<std::string> {};

TEST_P(CommandLineHints, ArePossibleCommandLines) {
  std::string const example = TARN_SOURCE_DIR "/examples/flow";
  std::string const zev = "PATH=\"$(dirname " TARN_ZEV "):$PATH\"; ";
  std::string const question = GetParam();
  std::size_t const blank = question.find(' ');
  std::string const answer = outputOf(zev + "zev " + question.substr(0, blank) + " --rules " + example + "/rules " +
                                      example + "/models/sound.tdf" + question.substr(blank) + "; true");
  std::vector<std::string> const proposed = proposedLinesIn(answer);
  ASSERT_FALSE(proposed.empty()) << answer;
  for (std::string const& line : proposed) {
    std::string const again = outputOf(zev + line + "; echo status $?");
    EXPECT_THAT(again, testing::EndsWith("status 0\n")) << line;
  }
}

INSTANTIATE_TEST_SUITE_P(AfterZev, CommandLineHints,
                         testing::Values("edit --set 'Flow Regim=Laminar'", "edit --set 'Flow Regime=laminar'",
                                         "edit --set 'Flow Regim=laminar'", "edit --add Domain",
                                         "edit --add Domain:a=b", "edit --copy Domain:sink channel",
                                         "edit --rename Domain:sink a/b --follow-references",
                                         "edit --on Domain:channel/Colou",
                                         "edit --set 'Titl=x' --set 'Flow Regime=laminar' --dry-run --format text",
                                         "why 'Analysis/Time Step'", "why 'Analysis/Time Stp'",
                                         "why Domain:fan/Material", "why Domain:sinc", "how 'Analysis/Time Step'",
                                         "how 'Analysis/Time Stp'", "how Domain:fan"));

}  // namespace
}  // namespace tarn::test
