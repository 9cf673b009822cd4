// The editor on a terminal of its own, as a person uses it.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

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
using testing::StartsWith;

std::string const up = "\x1b[A";
std::string const clear = "\x15";

class EditOnATerminal : public testing::Test {
 protected:
  EditOnATerminal() {
    std::ofstream(folder_ / "tank.rules.yaml") << R"(Rule Database: 1
Pertinent Roots: [Plant]
Quantity Types:
  Length: {Units: [m, mm]}
Objects:
  /Plant:
    Parameters:
      Mode:
        Required: yes
        Parameter Type: String
        Ordered Allowed String List: [Steady, Transient]
      Step:
        Available: ${Mode} == 'Transient'
        Reason: Only a transient run has steps.
        Parameter Type: Real
        Default Value: 1
    Children:
      Tank: {Coupled: yes}
  /Plant/Tank:
    Parameters:
      Height:
        Required: yes
        Parameter Type: Real
        Quantity Type: Length
        Default Value: 2 [m]
        Lower Bound: 0 [m]
)";
    std::ofstream(model()) << "# the plant\n/Plant/Mode=Steady\n/Plant/Tank:T1/Height=2.50 [m]\n";
  }

  fs::path model() const { return folder_ / "plant.tdf"; }
  std::vector<std::string> arguments() const { return {TARN_ZEV, "edit", "--rules", "tank.rules.yaml", "plant.tdf"}; }
  std::vector<std::string> environment(std::string const& terminal = "TERM=xterm") const {
    return {terminal, "HOME=" + folder_.string(), "PATH=/usr/bin:/bin", "NO_COLOR=1", "PAGER=cat"};
  }
  std::unique_ptr<Terminal> start(std::string const& kind = "TERM=xterm") const {
    auto terminal = std::make_unique<Terminal>(folder_, arguments(), environment(kind));
    terminal->waitFor("/Plant> ");
    return terminal;
  }
  /// Types a command and returns what is shown up to the next prompt, without the echo of the command.
  static std::string answer(Terminal& terminal, std::string const& line, std::string const& prompt) {
    std::string const shown = terminal.enter(line, prompt);
    std::size_t const echo = shown.find("\r\n");
    return echo == std::string::npos ? "" : shown.substr(echo + 2);
  }
  std::string saved() const { return fileText(model()); }

  TemporaryFolder temporary_{"zev-edit-terminal"};
  fs::path const folder_ = temporary_.path();
  std::string const original_ = "# the plant\n/Plant/Mode=Steady\n/Plant/Tank:T1/Height=2.50 [m]\n";
};

TEST_F(EditOnATerminal, GreetsAndQuitsWithoutAQuestionWhenNothingIsUnsaved) {
  Terminal terminal(folder_, arguments(), environment());
  EXPECT_THAT(terminal.waitFor("/Plant> "), EndsWith("plant.tdf, /Plant: 2 parameters in 2 objects\r\n"
                                                     "\"help\" lists the commands, and Tab completes them\r\n"));
  terminal.type("quit\r");
  EXPECT_EQ(terminal.waitForEnd(), 0);
  EXPECT_TRUE(terminal.echoes());
  EXPECT_EQ(saved(), original_);
}

TEST_F(EditOnATerminal, AnEditIsAnsweredAndSavedWithEverythingElseAsItWas) {
  auto const terminal = start();
  EXPECT_EQ(answer(*terminal, "set Tank:T1/Height = 25 mm", "/Plant *> "),
            "done 1: /Plant/Tank:T1/Height: 2.50 [m] -> 25 [mm]\r\n"
            "  converted: 25 mm is 25 [mm] of Height");
  EXPECT_EQ(answer(*terminal, "save", "/Plant> "), "saved plant.tdf");
  EXPECT_EQ(saved(), "# the plant\n/Plant/Mode=Steady\n/Plant/Tank:T1/Height=25 [mm]\n");
  EXPECT_EQ(answer(*terminal, "save", "/Plant> "), "plant.tdf holds this already.");
  terminal->type("quit\r");
  EXPECT_EQ(terminal->waitForEnd(), 0);
}

TEST_F(EditOnATerminal, CommandsPathsAndValuesAreCompleted) {
  auto const terminal = start();
  terminal->type("se\tM\tT\t\r");
  EXPECT_THAT(terminal->waitFor("\r\n/Plant *> "), HasSubstr("done 1: /Plant/Mode: Steady -> Transient\r\n"));
  terminal->type("set /Pl\tTank:T1/H\t");
  terminal->waitFor("eight = ");
  terminal->type("3 [m\t");
  terminal->waitFor("m]   mm]");
  terminal->type("m\t\r");
  EXPECT_THAT(terminal->waitFor("\r\n/Plant *> "), HasSubstr("done 2: /Plant/Tank:T1/Height: 2.50 [m] -> 3 [mm]"));
  terminal->type(clear + "quit unsaved\r");
  EXPECT_EQ(terminal->waitForEnd(), 0);
}

TEST_F(EditOnATerminal, ABeginningOfACommandWillDoIfThereIsOnlyOne) {
  auto const terminal = start();
  EXPECT_EQ(answer(*terminal, "wai", "/Plant> "), "Nothing waits.");
  EXPECT_EQ(answer(*terminal, "s Mode", "/Plant> "),
            "not done: \"s\" can be the beginning of several commands: set, show, save.\r\n"
            "  nearest: help");
}

TEST_F(EditOnATerminal, AValueThatIsNotAvailableWaitsAndIsNamedWhenSavingLeavesItOut) {
  auto const terminal = start();
  EXPECT_EQ(answer(*terminal, "set Step = 5", "/Plant *> "),
            "done 1: /Plant/Step = 5 waits: not available now: Only a transient run has\r\n    steps.");
  EXPECT_EQ(answer(*terminal, "save", "/Plant> "),
            "plant.tdf holds this already.\r\n"
            "! 1 not in the file, because it is not in force:\r\n"
            "  /Plant\r\n"
            "    Step = 5   not available now: Only a transient run has steps.");
}

TEST_F(EditOnATerminal, QuittingWithUnsavedWorkAsksAndEnterStays) {
  auto const terminal = start();
  answer(*terminal, "set Mode = Transient", "/Plant *> ");
  std::string const question = "1 step not saved. Lose it? [y/N/list/save] ";
  terminal->type("quit\r");
  terminal->waitFor(question);
  terminal->type("\r");
  EXPECT_THAT(terminal->waitFor("/Plant *> "), EndsWith("Still here. \"save\" writes the file.\r\n"));
  terminal->type("quit\r");
  terminal->waitFor(question);
  terminal->type("list\r");
  EXPECT_THAT(terminal->waitFor(question), HasSubstr("  1: set /Plant/Mode = Transient\r\n"));
  terminal->type("save\r");
  EXPECT_EQ(terminal->waitForEnd(), 0);
  EXPECT_EQ(saved(), "# the plant\n/Plant/Mode=Transient\n/Plant/Tank:T1/Height=2.50 [m]\n");
}

TEST_F(EditOnATerminal, TheAnswerYesLosesUnsavedWork) {
  auto const terminal = start();
  answer(*terminal, "set Mode = Transient", "/Plant *> ");
  terminal->type("quit\r");
  terminal->waitFor("] ");
  terminal->type("y\r");
  EXPECT_EQ(terminal->waitForEnd(), 0);
  EXPECT_EQ(saved(), original_);
}

TEST_F(EditOnATerminal, UndoneWorkIsNotUnsaved) {
  auto const terminal = start();
  answer(*terminal, "set Mode = Transient", "/Plant *> ");
  EXPECT_EQ(answer(*terminal, "undo", "/Plant> "),
            "undone 1: /Plant/Mode: Transient -> Steady\r\n  1 offer withdrawn\r\n- 1 offer withdrawn\r\n    /Plant\r\n"
            "      Step");
  terminal->type("quit\r");
  EXPECT_EQ(terminal->waitForEnd(), 0);
}

TEST_F(EditOnATerminal, RemovingAnObjectWithOwnValuesAsksAndListsThem) {
  auto const terminal = start();
  answer(*terminal, "set Tank:T1/Height = 3", "/Plant *> ");
  std::string const question = "Remove /Plant/Tank:T1 with 1 value that you have set? [y/N/list] ";
  terminal->type("remove Tank:T1\r");
  terminal->waitFor(question);
  terminal->type("list\r");
  EXPECT_THAT(terminal->waitFor(question), HasSubstr("  /Plant/Tank:T1\r\n    Height = 3\r\n"));
  terminal->type("\r");
  EXPECT_THAT(terminal->waitFor("/Plant *> "), EndsWith("Nothing has changed.\r\n"));
  terminal->type("remove Tank:T1\r");
  terminal->waitFor(question);
  terminal->type("y\r");
  EXPECT_THAT(terminal->waitFor("/Plant *> "), HasSubstr("done 2: remove /Plant/Tank:T1\r\n"));
}

TEST_F(EditOnATerminal, AFileThatSomeoneElseChangedIsWrittenOverOnlyAfterYes) {
  auto const terminal = start();
  answer(*terminal, "set Mode = Transient", "/Plant *> ");
  std::ofstream(model()) << "/Plant/Mode=Steady\n# theirs\n";
  terminal->type("save\r");
  terminal->waitFor("Write over it? [y/N] ");
  terminal->type("\r");
  EXPECT_THAT(terminal->waitFor("/Plant *> "), EndsWith("Nothing was written. \"save over\" writes over it.\r\n"));
  EXPECT_EQ(saved(), "/Plant/Mode=Steady\n# theirs\n");
  EXPECT_EQ(answer(*terminal, "save over", "/Plant> "), "saved plant.tdf");
  EXPECT_EQ(saved(), "# the plant\n/Plant/Mode=Transient\n/Plant/Tank:T1/Height=2.50 [m]\n");
}

TEST_F(EditOnATerminal, WhenSavingFailsTheWorkGoesOn) {
  auto const terminal = start();
  answer(*terminal, "set Mode = Transient", "/Plant *> ");
  EXPECT_THAT(answer(*terminal, "save nowhere/plant.tdf", "/Plant *> "),
              AllOf(StartsWith("not done: "), HasSubstr("nowhere/plant.tdf"), EndsWith("Your edits are still here.")));
  EXPECT_THAT(answer(*terminal, "save over /dev/full", "/Plant *> "), StartsWith("not done: "));
  EXPECT_EQ(answer(*terminal, "save", "/Plant> "), "saved plant.tdf");
}

TEST_F(EditOnATerminal, InterruptingNeverEndsItAndDropsOnlyTheLine) {
  auto const terminal = start();
  answer(*terminal, "set Mode = Transient", "/Plant *> ");
  for (int i = 0; i < 3; ++i) {
    terminal->type("half a line");
    terminal->waitFor("half a line");
    terminal->type("\x03");
    EXPECT_EQ(terminal->waitFor("/Plant *> "), "^C\r\n");
  }
  EXPECT_EQ(answer(*terminal, "mine", "/Plant *> "), "  /Plant\r\n    Mode = Transient   step 1");
}

TEST_F(EditOnATerminal, InterruptsWhileACommandIsAtWorkLoseNothing) {
  fs::path const pipe = folder_ / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  auto const terminal = start();
  answer(*terminal, "set Mode = Transient", "/Plant *> ");
  terminal->type("save over pipe\r");  // waits for a reader
  terminal->waitFor("pipe\r\n");
  for (int i = 0; i < 3; ++i) {
    ::kill(terminal->process(), SIGINT);
    while (terminal->hasSignalWaiting()) ::usleep(1000);
  }
  int const reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
  terminal->waitFor("/Plant");
  ::close(reader);
  terminal->waitFor("> ");
  EXPECT_EQ(answer(*terminal, "mine", "/Plant> "), "  /Plant\r\n    Mode = Transient   step 1");
}

TEST_F(EditOnATerminal, EndOfInputWithUnsavedWorkAsksAndASecondOneKeepsTheWorkInAFile) {
  auto const terminal = start();
  answer(*terminal, "set Mode = Transient", "/Plant *> ");
  terminal->type("\x04");
  terminal->waitFor("Lose it? [y/N/list/save] ");
  terminal->type("\x04");
  terminal->waitFor("zev: 1 step not saved: the model with them is in plant.tdf.unsaved");
  EXPECT_EQ(terminal->waitForEnd(), 1);
  EXPECT_EQ(saved(), original_);
  EXPECT_EQ(fileText(folder_ / "plant.tdf.unsaved"),
            "# the plant\n/Plant/Mode=Transient\n/Plant/Tank:T1/Height=2.50 [m]\n");
}

TEST_F(EditOnATerminal, ASignalThatEndsItKeepsTheWorkAndWhatWaitsInAFile) {
  for (auto const& [signal, name] : {std::pair{SIGTERM, "plant.tdf.unsaved"}, {SIGHUP, "plant.tdf.unsaved-2"}}) {
    auto const terminal = start();
    answer(*terminal, "set Tank:T1/Height = 4", "/Plant *> ");
    answer(*terminal, "set Step = 5", "/Plant *> ");
    ::kill(terminal->process(), signal);
    EXPECT_EQ(terminal->waitForEnd(), -signal);
    EXPECT_EQ(saved(), original_);
    EXPECT_EQ(fileText(folder_ / name),
              "# the plant\n/Plant/Mode=Steady\n/Plant/Tank:T1/Height=4 [m]\n"
              "# These were asked for, and were not in force when zev edit was ended:\n"
              "#   set /Plant/Step = 5\n");
  }
}

TEST_F(EditOnATerminal, EndedWithoutUnsavedWorkItLeavesNoFile) {
  auto const terminal = start();
  ::kill(terminal->process(), SIGTERM);
  EXPECT_EQ(terminal->waitForEnd(), -SIGTERM);
  EXPECT_TRUE(terminal->echoes());
  EXPECT_FALSE(fs::exists(folder_ / "plant.tdf.unsaved"));
}

TEST_F(EditOnATerminal, LinesAreCalledUpAgainAlsoInTheNextRunButAnswersAreNot) {
  {
    auto const terminal = start();
    answer(*terminal, "set Mode = Transient", "/Plant *> ");
    terminal->type("quit\r");
    terminal->waitFor("] ");
    terminal->type("y\r");
    EXPECT_EQ(terminal->waitForEnd(), 0);
  }
  auto const terminal = start();
  terminal->type(up + up + "\r");
  EXPECT_THAT(terminal->waitFor("/Plant *> "), HasSubstr("done 1: /Plant/Mode: Steady -> Transient"));
}

TEST_F(EditOnATerminal, OnATerminalThatCannotMoveItsCursorItWorksWithoutColourAndCompletion) {
  for (std::string const kind : {"TERM=dumb", "TERM="}) {
    auto const terminal = start(kind);
    EXPECT_TRUE(terminal->echoes());
    EXPECT_THAT(terminal->enter("set Mode = Transient", "/Plant *> "),
                AllOf(HasSubstr("done 1: /Plant/Mode: Steady -> Transient"), Not(HasSubstr("\x1b"))));
    terminal->type("\x03");
    terminal->waitFor("/Plant *> ");
    terminal->type("\x04");
    terminal->waitFor("] ");
    terminal->type("y\r");
    EXPECT_EQ(terminal->waitForEnd(), 0);
  }
}

TEST_F(EditOnATerminal, HasColoursUnlessNoColorIsSet) {
  std::vector<std::string> environment = this->environment();
  std::erase(environment, "NO_COLOR=1");
  Terminal terminal(folder_, arguments(), environment);
  terminal.waitFor("/Plant> ");
  EXPECT_THAT(terminal.enter("set Mode = Transient", "/Plant *> "), HasSubstr("\x1b[32mdone 1\x1b[0m: /Plant/Mode"));
  auto const plain = start();
  EXPECT_THAT(plain->enter("set Mode = Transient", "/Plant *> "), Not(HasSubstr("\x1b[32m")));
}

TEST_F(EditOnATerminal, ATextThatIsLongerThanTheScreenGoesThroughThePager) {
  std::vector<std::string> environment = this->environment();
  std::erase(environment, "PAGER=cat");
  environment.emplace_back("PAGER=sed 's/^/| /'");
  Terminal terminal(folder_, arguments(), environment, 10, 80);
  terminal.waitFor("/Plant> ");
  EXPECT_THAT(terminal.enter("help", "/Plant> "), HasSubstr("| set PATH = VALUE "));
  EXPECT_THAT(terminal.enter("mine", "/Plant> "), Not(HasSubstr("| ")));
}

TEST_F(EditOnATerminal, WithoutThePagerTheTextIsShownAtOnce) {
  std::vector<std::string> environment = this->environment();
  std::erase(environment, "PAGER=cat");
  environment.emplace_back("PAGER=/nowhere/pager 2>/dev/null");
  Terminal terminal(folder_, arguments(), environment, 10, 80);
  terminal.waitFor("/Plant> ");
  EXPECT_THAT(terminal.enter("help", "/Plant> "), HasSubstr("set PATH = VALUE "));
}

TEST_F(EditOnATerminal, ALineOfAHundredThousandCharactersIsAnsweredInAFewWords) {
  auto const terminal = start();
  terminal->type("set " + std::string(100'000, 'x') + " = 1\r");
  EXPECT_THAT(terminal->waitFor("\r\n/Plant> "), HasSubstr("refused"));
  terminal->type("set Mode = " + std::string(100'000, 'x') + "\r");
  EXPECT_THAT(terminal->waitFor("  possible: Steady, Transient"), HasSubstr("refused"));
}

TEST_F(EditOnATerminal, LongLinesAreDividedBetweenWordsAtEveryWidthAndCommandsAreNot) {
  auto const terminal = start();
  for (unsigned short const columns : std::array<unsigned short, 3>{60, 80, 120}) {
    terminal->resize(40, columns);
    std::string shown;
    for (char const* line :
         {"set Step = 5", "waiting", "why Step", "save /no folder/with this/rather long name/plant.tdf"}) {
      shown += answer(*terminal, line, "/Plant *> ") + "\r\n";
    }
    std::istringstream lines(shown);
    for (std::string line; std::getline(lines, line);) {
      EXPECT_LE(line.size(), columns + std::size_t{1}) << line;  // with the end of the line
    }
    std::string const proposed =
        answer(*terminal, "set Mode = Transient for a very long and useless while", "/Plant *> ");
    EXPECT_THAT(proposed, HasSubstr("possible: Steady, Transient"));
    std::string const nearest =
        answer(*terminal, "addd Tank:with a very long name that no line can hold at once", "/Plant *> ");
    EXPECT_THAT(nearest, HasSubstr("add Tank:with a very long name that no line can hold at once"));
  }
}

TEST_F(EditOnATerminal, OnANarrowTerminalOriginsStayBesideTheirValues) {
  auto const terminal = start();
  (void)terminal->enter("set Tank:T1/Height = 25 mm", "/Plant *> ");
  terminal->resize(40, 40);
  EXPECT_EQ(answer(*terminal, "show", "/Plant *> "),
            "/Plant\r\n"
            "  Mode = Steady   from the model\r\n"
            "  not available: Step\r\n"
            "  objects:\r\n"
            "    Tank:T1\r\n"
            "  objects to add: Tank:NAME");
  EXPECT_EQ(answer(*terminal, "show Tank:T1", "/Plant *> "),
            "/Plant/Tank:T1\r\n"
            "  Height = 25 [mm]   set by you, step 1");
}

TEST_F(EditOnATerminal, HelpOfACommandHasASentenceOnEachLine) {
  auto const terminal = start();
  terminal->resize(40, 90);
  EXPECT_EQ(answer(*terminal, "help set", "/Plant> "),
            "set PATH = VALUE\r\n"
            "  give a parameter a value\r\n"
            "  Everything after the first \"=\" is the value. Blanks need no quotes.\r\n"
            "  A number may have any units that can be converted: \"25 mm\" and \"25 [mm]\" are the same.\r\n"
            "  A value for a parameter that is not available now is kept and waits.\r\n"
            "  A value that can never be right is refused.");
}

TEST_F(EditOnATerminal, ControlCharactersDoNoHarm) {
  std::ofstream(model()) << "/Plant/Mode=Steady\n/Plant/Tank:a\x1b[2Jb/Height=1\n";
  auto const terminal = start();
  EXPECT_THAT(answer(*terminal, "list", "/Plant> "), HasSubstr("  Tank:a\\x1B[2Jb   1 parameter"));
  for (char c = 1; c < ' '; ++c) {
    // Not those that end, stop or interrupt the program, hold the output, or wait for a further key.
    if (std::string("\x03\x04\x11\x12\x13\x16\x1a\x1b\x1c\x0a\x0d\x0f").find(c) != std::string::npos) continue;
    terminal->type(std::string("ab") + c + "c\t\x15");
  }
  terminal->type(clear + "\x0b" + "waiting\r");
  terminal->waitFor("Nothing waits.");
}

}  // namespace
}  // namespace tarn::test
