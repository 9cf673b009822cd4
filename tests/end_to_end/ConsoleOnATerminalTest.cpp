// Drives the built program on a terminal, as a user does. For editing, the tests check the final line that the program
// reads, not how the editor draws the keys.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>

#include "Places.h"
#include "end_to_end/Terminal.h"
#include "support/FileText.h"
#include "support/TemporaryFolder.h"

namespace tarn::test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

class ConsoleOnATerminal : public testing::Test {
 protected:
  /// A console that edits the channel of the example case, with what it prints of the state put into a file.
  std::vector<std::string> arguments(std::vector<std::string> const& further = {}) const {
    std::vector<std::string> all = {TARN_ZEV,  "console",          "--rules", "rules",
                                    "--model", "models/sound.tdf", "--root",  "/Case/Domain:channel",
                                    "--log",   (home_ / "log")};
    all.insert(all.end(), further.begin(), further.end());
    return all;
  }
  std::vector<std::string> environment(std::string const& terminal = "TERM=xterm") const {
    return {terminal, "HOME=" + home_.string(), "PATH=/usr/bin:/bin"};
  }
  static std::string folder() { return std::string(TARN_SOURCE_DIR) + "/examples/flow"; }

  std::unique_ptr<Terminal> start(unsigned short rows = 24, unsigned short columns = 80) const {
    auto terminal = std::make_unique<Terminal>(folder(), arguments(), environment(), rows, columns);
    terminal->waitFor("ZEV> ");
    return terminal;
  }

  /// The last edit in the log of the run.
  std::string lastEdit() const {
    std::ifstream stream(home_ / "log");
    std::string last;
    for (std::string line; std::getline(stream, line);) {
      if (line.starts_with("COMMAND: ")) last = line.substr(9);
    }
    return last;
  }

  TemporaryFolder temporary_{"zev-terminal"};
  fs::path const home_ = temporary_.path();
};

std::string unrecognised(std::string const& word) {
  return "\r\nUnrecognised command \"" + word + "\".";
}

std::string const up = "\x1b[A";
std::string const down = "\x1b[B";
std::string const right = "\x1b[C";
std::string const left = "\x1b[D";

TEST_F(ConsoleOnATerminal, ShowsBannerAndPromptAndQuits) {
  Terminal terminal(folder(), arguments(), environment());
  EXPECT_EQ(terminal.waitFor("ZEV> "),
            "\r\n\r\n"
            "  --------------------------------------------\r\n"
            "  ---- ZEV-Pre Physical Availability Tool ----\r\n"
            "  --------------------------------------------\r\n\r\n\r\n");
  terminal.type("q\r");
  EXPECT_EQ(terminal.waitForEnd(), 0);
  EXPECT_TRUE(terminal.echoes());
}

TEST_F(ConsoleOnATerminal, QuietShowsNoPromptAndDoesWhatIsTyped) {
  Terminal terminal(folder(), arguments({"--quiet"}), environment());
  terminal.type("foo\r");
  EXPECT_THAT(terminal.waitFor(unrecognised("foo")), Not(HasSubstr("Z")));
  terminal.type("q\r");
  EXPECT_EQ(terminal.waitForEnd(), 0);
}

TEST_F(ConsoleOnATerminal, ALineIsEditedWithArrowsBackspaceAndDelete) {
  auto const terminal = start();
  EXPECT_THAT(terminal->enter("fax" + left + "\x7f" + "o" + right + "y"), EndsWith(unrecognised("foxy")));
  EXPECT_THAT(terminal->enter("bcd\x01" + std::string("a\x05") + "e"), EndsWith(unrecognised("abcde")));
  EXPECT_THAT(terminal->enter("xab\x1b[H\x1b[3~"), EndsWith(unrecognised("ab")));
}

TEST_F(ConsoleOnATerminal, CharactersOfSeveralBytesAreEditedAsOne) {
  auto const terminal = start();
  EXPECT_THAT(terminal->enter("Größe" + left + left + "\x7f" + "ss水" + left + "\x7f"),
              EndsWith(unrecognised("Grs水ße")));
}

TEST_F(ConsoleOnATerminal, BytesThatAreNoCharacterAreDropped) {
  auto const terminal = start();
  EXPECT_THAT(terminal->enter("a\xff\xfe"
                              "b"),
              EndsWith(unrecognised("ab")));
}

TEST_F(ConsoleOnATerminal, AParameterIsSetWithAFewKeys) {
  auto const terminal = start();
  terminal->type("s\t");
  terminal->waitFor("p ");
  terminal->type("\t");
  terminal->waitFor("/Case/Domain:channel/");
  terminal->type("Mat\t\t");
  terminal->waitFor("Air");
  terminal->type(
      "\x7f\x7f\x7f"
      "Water\r");
  terminal->waitFor("ZEV> ");
  terminal->type("q\r");
  EXPECT_EQ(terminal->waitForEnd(), 0);
  EXPECT_EQ(lastEdit(), "activeSetParam /Case/Domain:channel/Material = Water");
}

TEST_F(ConsoleOnATerminal, WaysToGoOnAreListedBelowTheLine) {
  auto const terminal = start();
  terminal->type("p");
  terminal->waitFor("p");
  terminal->type("\t");
  EXPECT_EQ(terminal->waitFor("ZEV> p"), "\r\npo  pp  ps\r\n\r\x1b[K");
  terminal->type(
      "\x15"
      "foo\r");
  terminal->waitFor(unrecognised("foo"));
}

TEST_F(ConsoleOnATerminal, FilesAreCompletedInTheFolderOfTheProgram) {
  auto const terminal = start();
  terminal->type("vf m\tf\t");
  terminal->waitFor("aulty.tdf");
  EXPECT_THAT(terminal->enter("\x7f"), HasSubstr("\r\nFailed to load models/faulty.td\r\n"));
}

TEST_F(ConsoleOnATerminal, LinesAreCalledUpAgainAlsoInTheNextRun) {
  {
    auto const terminal = start();
    terminal->enter("first");
    terminal->enter("second");
    EXPECT_THAT(terminal->enter(up + up), EndsWith(unrecognised("first")));
    terminal->type("q\r");
    EXPECT_EQ(terminal->waitForEnd(), 0);
  }
  auto const terminal = start();
  EXPECT_THAT(terminal->enter(up + up + up), EndsWith(unrecognised("second")));
  EXPECT_THAT(terminal->enter(up + up + down), EndsWith(unrecognised("second")));
}

TEST_F(ConsoleOnATerminal, LinesOfAKilledRunAreKept) {
  {
    auto const terminal = start();
    terminal->enter("precious");
    ::kill(terminal->process(), SIGKILL);
    EXPECT_EQ(terminal->waitForEnd(), -SIGKILL);
  }
  EXPECT_THAT(start()->enter(up), EndsWith(unrecognised("precious")));
}

TEST_F(ConsoleOnATerminal, WithoutAPlaceForHistoryItWorksAndSaysNothing) {
  Terminal terminal(folder(), arguments(), {"TERM=xterm", "XDG_STATE_HOME=/proc/nowhere"});
  terminal.waitFor("ZEV> ");
  EXPECT_THAT(terminal.enter("foo"), EndsWith(unrecognised("foo")));
  EXPECT_THAT(terminal.enter(up), EndsWith(unrecognised("foo")));
}

TEST_F(ConsoleOnATerminal, InterruptingDropsTheLine) {
  auto const terminal = start();
  terminal->type("half a line");
  terminal->waitFor("half a line");
  terminal->type("\x03");
  EXPECT_EQ(terminal->waitFor("ZEV> "), "^C\r\n");
  EXPECT_THAT(terminal->enter("foo"), EndsWith(unrecognised("foo")));
}

TEST_F(ConsoleOnATerminal, AnInterruptFromElsewhereDropsTheLineAsWell) {
  auto const terminal = start();
  terminal->type("half");
  terminal->waitFor("half");
  ::kill(terminal->process(), SIGINT);
  EXPECT_EQ(terminal->waitFor("ZEV> "), "^C\r\n");
  EXPECT_THAT(terminal->enter("foo"), EndsWith(unrecognised("foo")));
}

/// A command that is under way until the test lets it go on: it reads a model from a pipe.
class ConsoleAtWork : public ConsoleOnATerminal {
 protected:
  ConsoleAtWork() {
    EXPECT_EQ(::mkfifo(pipe().c_str(), 0600), 0);
    terminal_ = start();
    terminal_->enter("ap /Case/Domain:channel/Colour");
    terminal_->type("vf " + pipe().string() + "\r");
    // Opened by both sides at once: now the command waits for the model.
    model_ = ::open(pipe().c_str(), O_WRONLY);
  }
  ~ConsoleAtWork() override {
    if (model_ != -1) ::close(model_);
  }
  fs::path pipe() const { return home_ / "model"; }

  void endModel() {
    ::close(model_);
    model_ = -1;
  }

  std::unique_ptr<Terminal> terminal_;
  int model_ = -1;
};

TEST_F(ConsoleAtWork, AnInterruptLetsTheCommandFinishAndKeepsTheState) {
  terminal_->type("\x03");
  terminal_->waitFor("^C");  // the terminal shows it, and sends the signal
  endModel();
  terminal_->waitFor("ZEV> ");
  EXPECT_THAT(terminal_->enter("sp /Case/Domain:channel/Colour=Red"), Not(HasSubstr("activated")));
  terminal_->type("q\r");
  EXPECT_EQ(terminal_->waitForEnd(), 0);
  EXPECT_EQ(lastEdit(), "activeSetParam /Case/Domain:channel/Colour = Red");
}

TEST_F(ConsoleAtWork, ASecondInterruptEndsTheProgram) {
  terminal_->type("\x03");
  terminal_->waitFor("^C");
  // A signal that comes before the program has got the one before it counts as one with that.
  while (terminal_->hasSignalWaiting()) ::usleep(1000);
  terminal_->type("\x03");
  EXPECT_EQ(terminal_->waitForEnd(), -SIGINT);
}

TEST_F(ConsoleOnATerminal, EndOfInputOnAnEmptyLineEndsItOnALineOfItsOwn) {
  auto const terminal = start();
  terminal->type("\x04");
  EXPECT_EQ(terminal->waitForEnd(), 0);
  EXPECT_TRUE(terminal->echoes());
}

TEST_F(ConsoleOnATerminal, EndOfInputWithinALineIsPassedOver) {
  auto const terminal = start();
  EXPECT_THAT(terminal->enter("fo\x04"
                              "o"),
              EndsWith(unrecognised("foo")));
}

TEST_F(ConsoleOnATerminal, ATerminalThatGoesAwayEndsIt) {
  auto const terminal = start();
  ::kill(terminal->process(), SIGHUP);
  EXPECT_EQ(terminal->waitForEnd(), -SIGHUP);
}

TEST_F(ConsoleOnATerminal, EndedFromElsewhereItGivesTheTerminalBack) {
  auto const terminal = start();
  EXPECT_FALSE(terminal->echoes());
  ::kill(terminal->process(), SIGTERM);
  EXPECT_EQ(terminal->waitForEnd(), -SIGTERM);
  EXPECT_TRUE(terminal->echoes());
}

TEST_F(ConsoleOnATerminal, StoppedAndContinuedByAShellItGoesOnWithTheLine) {
  Terminal terminal(folder(), {"/bin/bash", "--norc", "--noprofile", "--noediting", "-i"},
                    {"TERM=xterm", "PS1=shell: ", "HOME=" + home_.string(), "PATH=/usr/bin:/bin"});
  terminal.waitFor("shell: ");
  std::string command;
  for (std::string const& argument : arguments()) command += argument + ' ';
  terminal.type(command + '\n');
  terminal.waitFor("ZEV> ");
  for (int time = 0; time < 2; ++time) {
    terminal.type("fo");
    terminal.waitFor("fo");
    terminal.type("\x1a");
    terminal.waitFor("Stopped");
    terminal.waitFor("shell: ");
    EXPECT_TRUE(terminal.echoes());
    terminal.type("fg\n");
    terminal.waitFor("ZEV> fo");
    EXPECT_THAT(terminal.enter("o"), EndsWith(unrecognised("foo")));
  }
}

TEST_F(ConsoleOnATerminal, WorksInATinyWindow) {
  auto const terminal = start(2, 8);
  EXPECT_THAT(terminal->enter("abcdefghijklmnopqrstuvwxyz"), EndsWith(unrecognised("abcdefghijklmnopqrstuvwxyz")));
  terminal->type("po /\t\t\t");
  terminal->waitFor("Turbulence\r\n");
  terminal->type("\x03");
  terminal->waitFor("^C");
  terminal->type("q\r");
  EXPECT_EQ(terminal->waitForEnd(), 0);
}

TEST_F(ConsoleOnATerminal, AWindowThatShrinksUnderALongLineLeavesTheLineAlone) {
  auto const terminal = start();
  std::string const line = std::string(300, 'x') + 'y';
  terminal->type(line);
  terminal->waitFor("y");
  // A resized window shows the line once more; its end shows that it is complete.
  for (auto const& [rows, columns] : {std::pair<unsigned short, unsigned short>{2, 20}, {1, 1}, {0, 0}, {24, 80}}) {
    terminal->resize(rows, columns);
    terminal->waitFor("y");
  }
  terminal->type("\r");
  terminal->waitFor(unrecognised(line));
  terminal->type("q\r");
  EXPECT_EQ(terminal->waitForEnd(), 0);
}

TEST_F(ConsoleOnATerminal, ALineOfAMillionCharactersIsTaken) {
  auto const terminal = start();
  std::string const line(1'000'000, 'x');
  terminal->type(line + "\r");
  terminal->waitFor(unrecognised(line));
  terminal->type("q\r");
  EXPECT_EQ(terminal->waitForEnd(), 0);
}

TEST_F(ConsoleOnATerminal, ControlCharactersDoNoHarm) {
  auto const terminal = start();
  for (char c = 1; c < ' '; ++c) {
    // Not those that end, stop or interrupt the program, hold the output, or wait for a further key.
    if (std::string("\x03\x04\x11\x12\x13\x16\x1a\x1b\x1c").find(c) != std::string::npos) continue;
    terminal->type(std::string("ab") + c + "c\t\x15");
  }
  terminal->type("\x18\x18\x1b\x1b\x1b[99~\x1bOx\x1bx'\t");
  terminal->type("\x15\x0b");
  terminal->type("foo\r");
  terminal->waitFor("foo\".");
  terminal->type("q\r");
  EXPECT_EQ(terminal->waitForEnd(), 0);
}

TEST_F(ConsoleOnATerminal, OnATerminalThatCannotMoveItsCursorLinesAreReadAsTheyCome) {
  for (std::string const kind : {"TERM=dumb", "TERM="}) {
    Terminal terminal(folder(), arguments(), environment(kind));
    terminal.waitFor("ZEV> ");
    EXPECT_TRUE(terminal.echoes());
    EXPECT_THAT(terminal.enter("foo"), EndsWith(unrecognised("foo")));
    terminal.type("\x04");
    EXPECT_EQ(terminal.waitForEnd(), 0);
  }
}

TEST_F(ConsoleOnATerminal, WithOutputToAFileLinesAreReadAsTheyCome) {
  std::string command = "exec";
  for (std::string const& argument : arguments()) command += ' ' + argument;
  Terminal terminal(folder(), {"/bin/sh", "-c", command + " >" + (home_ / "out").string()}, environment());
  terminal.type("foo\nq\n");
  EXPECT_EQ(terminal.waitForEnd(), 0);
  std::string const out = fileText(home_ / "out");
  EXPECT_THAT(out, AllOf(HasSubstr("ZEV> Unrecognised command \"foo\".\nZEV> "), Not(HasSubstr("\x1b"))));
  EXPECT_FALSE(fs::exists(home_ / ".local"));
}

}  // namespace
}  // namespace tarn::test
