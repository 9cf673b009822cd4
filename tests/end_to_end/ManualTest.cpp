// The manual page lists the options that the program itself reports.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "Places.h"
#include "end_to_end/Shell.h"

namespace tarn::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::IsSupersetOf;

std::string const page = std::string(TARN_SOURCE_DIR) + "/AvailabilityTool/man/zev.1";

/// The options that a line of help, or of the manual, begins with.
std::set<std::string> optionsIn(std::string const& text) {
  static std::regex const line("^ +(?:-[a-z], ?)?(--[a-z][a-z-]*).*");
  std::set<std::string> options;
  std::istringstream stream(text);
  std::smatch match;
  for (std::string one; std::getline(stream, one);) {
    if (std::regex_match(one, match, line)) options.insert(match[1]);
  }
  return options;
}

/// The lines of the manual after the line with `title`, up to the next title at its level or above.
std::string section(std::string const& title) {
  std::istringstream stream(outputOf("groff -Tascii -P-cbou -mandoc " + page));
  std::string text;
  bool inside = false;
  for (std::string line; std::getline(stream, line);) {
    std::size_t const indent = line.find_first_not_of(' ');
    if (inside && indent < 5) break;
    if (inside) text += line + '\n';
    if (indent != std::string::npos && line.substr(indent) == title) inside = true;
  }
  EXPECT_NE(text, "") << "no section " << title;
  return text;
}

/// The commands of the program that print a help of their own.
std::vector<std::string> commandsWithHelp() {
  std::vector<std::string> commands = {"edit",       "validate", "why",   "how",     "find", "eval",
                                       "lint",       "test",     "graph", "lsp",     "doc",  "migrate",
                                       "diff-rules", "schema",   "show",  "console", "serve"};
  // The Python package has the options of this one.
  if (TARN_HAS_PYTHON_PACKAGE) commands.push_back("study");
  return commands;
}

class Manual : public testing::TestWithParam<std::string> {};

TEST_P(Manual, TellsTheOptionsOfTheHelpAndNoOthers) {
  std::set<std::string> expected = optionsIn(outputOf(std::string(TARN_ZEV) + ' ' + GetParam() + " --help"));
  ASSERT_TRUE(expected.contains("--help"));
  expected.erase("--help");  // described once for all
  EXPECT_EQ(optionsIn(section("zev " + GetParam())), expected);
}

INSTANTIATE_TEST_SUITE_P(OfCommand, Manual, testing::ValuesIn(commandsWithHelp()), [](auto const& command) {
  std::string name = command.param;
  std::erase(name, '-');
  return name;
});

TEST(ManualPage, TellsTheOptionsThatNeedNoCommand) {
  EXPECT_EQ(optionsIn(section("DESCRIPTION")), optionsIn(outputOf(std::string(TARN_ZEV) + " --help")));
}

TEST(ManualPage, HasAPartForEachCommandOfTheProgram) {
  std::string const help = outputOf(std::string(TARN_ZEV) + " --help");
  std::string const commands = help.substr(help.find("Subcommands:\n"));
  std::regex const line("\n  ([a-z-]+) ");
  std::vector<std::string> const known = {"edit",       "validate", "why",   "how",     "find",  "eval",
                                          "lint",       "test",     "graph", "lsp",     "doc",   "migrate",
                                          "diff-rules", "schema",   "show",  "console", "serve", "study"};
  std::vector<std::string> found;
  for (std::sregex_iterator at(commands.begin(), commands.end(), line), end; at != end; ++at) found.push_back((*at)[1]);
  EXPECT_EQ(found, known) << "a new command wants its part of the manual, of the completion in bash, and of this test";
}

TEST(ManualPage, TellsTheCommandsOfTheConsole) {
  std::string const rules = std::string(TARN_SOURCE_DIR) + "/examples/flow/rules";
  std::string const help = outputOf("echo h | " + std::string(TARN_ZEV) + " console --quiet --log /dev/null --rules " +
                                    rules + " --root /Case/Domain:new");
  std::regex const helpLine("(?:^|\n)  ([a-z]{1,2}) ");
  std::set<std::string> expected = {"no", "ro"};  // those for who knows them
  for (std::sregex_iterator at(help.begin(), help.end(), helpLine), end; at != end; ++at) expected.insert((*at)[1]);
  ASSERT_EQ(expected.size(), 17);

  std::string const text = section("CONSOLE");
  std::regex const manualLine("(?:^|\n)     ([a-z]{1,2})(?= |\n)");
  std::set<std::string> told;
  for (std::sregex_iterator at(text.begin(), text.end(), manualLine), end; at != end; ++at) told.insert((*at)[1]);
  EXPECT_THAT(told, IsSupersetOf(expected));
}

TEST(ManualPage, IsFormattedWithoutWarnings) {
  EXPECT_EQ(outputOf("groff -Tutf8 -ww -mandoc " + page + " >/dev/null"), "");
}

TEST(ManualPage, TheCheckOfItsFormFindsAFault) {
  EXPECT_NE(
      outputOf(
          "printf '.Dd x\\n.Dt ZEV 1\\n.Sh NAME\\n.Qx bad\\n\\\\*[none]\\n' | groff -Tutf8 -ww -mandoc - >/dev/null"),
      "");
}

}  // namespace
}  // namespace tarn::test
