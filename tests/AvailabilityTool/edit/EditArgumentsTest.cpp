#include "edit/EditArguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include <tarn/ModelText.h>
#include <tarn/rules/RuleLoader.h>
#include <tarn/session/Session.h>

namespace tarn::tool {
namespace {

using testing::ElementsAre;
using Option = EditArgument::Option;

std::vector<EditArgument> parsed(std::vector<std::string> arguments) {
  CLI::App app;
  addEditOptions(app);
  std::string model;
  app.add_option("MODEL", model);
  std::reverse(arguments.begin(), arguments.end());
  app.parse(std::move(arguments));
  return editArguments(app);
}

std::string faultOf(std::vector<std::string> arguments) {
  try {
    (void)parsed(std::move(arguments));
  } catch (CLI::ParseError const& error) {
    return error.what();
  }
  return "no fault";
}

TEST(EditArguments, AreInTheOrderInWhichTheyWereGiven) {
  EXPECT_THAT(parsed({"--set",    "A=1",   "pump.tdf", "--copy",   "Domain:a", "b",     "--on", "C",
                      "--set",    "D=2",   "--copy",   "Domain:b", "c",        "--off", "E",    "--remove",
                      "Domain:x", "--add", "Domain:y", "--rename", "Domain:y", "z"}),
              ElementsAre(EditArgument{Option::Set, "A=1", ""}, EditArgument{Option::Copy, "Domain:a", "b"},
                          EditArgument{Option::On, "C", ""}, EditArgument{Option::Set, "D=2", ""},
                          EditArgument{Option::Copy, "Domain:b", "c"}, EditArgument{Option::Off, "E", ""},
                          EditArgument{Option::Remove, "Domain:x", ""}, EditArgument{Option::Add, "Domain:y", ""},
                          EditArgument{Option::Rename, "Domain:y", "z"}));
}

TEST(EditArguments, AValueCanFollowTheOptionAfterAnEqualsSign) {
  EXPECT_THAT(parsed({"--set=/Case/Formula=a=b"}), ElementsAre(EditArgument{Option::Set, "/Case/Formula=a=b", ""}));
}

TEST(EditArguments, BracketsAreNoLists) {
  EXPECT_THAT(parsed({"--copy", "Domain:a", "[b,c]", "--on", "[d]"}),
              ElementsAre(EditArgument{Option::Copy, "Domain:a", "[b,c]"}, EditArgument{Option::On, "[d]", ""}));
}

TEST(EditArguments, ThatCannotBeReadAreNamedWithWhatToWrite) {
  EXPECT_EQ(faultOf({"--set", "Motion"}), "--set: \"Motion\" has no \"=\"; write --set PATH=VALUE");
  EXPECT_EQ(faultOf({"--set", " =5"}), "--set: there is no path before the \"=\"; write --set PATH=VALUE");
  EXPECT_EQ(faultOf({"--off", ""}), "--off: the path is empty; write --off PATH");
}

class EditOf : public testing::Test {
 protected:
  EditOf()
      : rules_(rules::parseRules("Rule Database: 1\n"
                                 "Pertinent Roots: [Case]\n"
                                 "Objects:\n"
                                 "  /Case:\n"
                                 "    Parameters:\n"
                                 "      Title: {Parameter Type: String}\n"
                                 "    Children:\n"
                                 "      Domain: {Required: yes, Minimum Count: 1}\n"
                                 "      Solver: {Singleton: yes, Coupled: yes}\n"
                                 "  /Case/Domain:\n"
                                 "    Parameters:\n"
                                 "      Motion: {Parameter Type: String}\n")),
        opened_(session::Session::open(*rules_, ModelText("model", "/Case/Domain:rotor/Motion=Rotating\n"))) {}

  Edit editOf(Option option, std::string text, std::string newName = {}) const {
    return tool::editOf({option, std::move(text), std::move(newName)}, *opened_.session);
  }

  std::unique_ptr<PhysicsData> rules_;
  session::Session::Opened opened_;
};

TEST_F(EditOf, ARelativePathStartsAtTheRootObject) {
  EXPECT_EQ(editOf(Option::Set, "Title=A pump"), Edit::setParam("/Case", "Title", "A pump"));
  EXPECT_EQ(editOf(Option::Add, "Domain:fan"), Edit::addObject("/Case/Domain:fan"));
  EXPECT_EQ(editOf(Option::Remove, "/Case/Domain:rotor/"), Edit::removeObject("/Case/Domain:rotor"));
  EXPECT_EQ(editOf(Option::Rename, ".", "x"), Edit::renameObject("/Case", "x"));
}

TEST_F(EditOf, TheFirstEqualsSignEndsThePathAndBlanksAroundItDoNotCount) {
  EXPECT_EQ(editOf(Option::Set, " Title =  a = b "), Edit::setParam("/Case", "Title", "a = b"));
  EXPECT_EQ(editOf(Option::Set, "Title="), Edit::setParam("/Case", "Title", ""));
}

TEST_F(EditOf, TheRulesSayWhetherAParameterOrAnObjectIsSwitched) {
  EXPECT_EQ(editOf(Option::On, "Title"), Edit::activateParam("/Case", "Title"));
  EXPECT_EQ(editOf(Option::Off, "Solver"), Edit::deactivateObject("/Case/Solver"));
  EXPECT_EQ(editOf(Option::On, "Domain:rotor"), Edit::activateObject("/Case/Domain:rotor"));
  EXPECT_EQ(editOf(Option::Off, "Domain:rotor/Motion"), Edit::deactivateParam("/Case/Domain:rotor", "Motion"));
}

TEST_F(EditOf, AParameterOfAnObjectThatIsNotThereYetIsAParameter) {
  EXPECT_EQ(editOf(Option::On, "Domain:fan/Motion"), Edit::activateParam("/Case/Domain:fan", "Motion"));
}

TEST_F(EditOf, ASlipIsTakenForWhatWasProbablyMeant) {
  EXPECT_EQ(editOf(Option::On, "Titel"), Edit::activateParam("/Case", "Titel"));
  EXPECT_EQ(editOf(Option::On, "Slover"), Edit::activateObject("/Case/Slover"));
}

TEST_F(EditOf, ArgumentsOfAnEditMeanThatEdit) {
  EXPECT_EQ(argumentText(Edit::setParam("/Case", "Title", "it's \"new\"")), "--set '/Case/Title=it'\\''s \"new\"'");
  EXPECT_EQ(argumentText(Edit::activateParam("/Case", "Title")), "--on /Case/Title");
  EXPECT_EQ(argumentText(Edit::deactivateParam("/Case", "Title")), "--off /Case/Title");
  EXPECT_EQ(argumentText(Edit::activateObject("/Case/Solver")), "--on /Case/Solver");
  EXPECT_EQ(argumentText(Edit::deactivateObject("/Case/Solver")), "--off /Case/Solver");
  EXPECT_EQ(argumentText(Edit::addObject("/Case/Domain:a b")), "--add '/Case/Domain:a b'");
  EXPECT_EQ(argumentText(Edit::removeObject("/Case/Domain:a")), "--remove /Case/Domain:a");
  EXPECT_EQ(argumentText(Edit::duplicateObject("/Case/Domain:a", "b c")), "--copy /Case/Domain:a 'b c'");
  EXPECT_EQ(argumentText(Edit::renameObject("/Case/Domain:a", "")), "--rename /Case/Domain:a ''");
}

}  // namespace
}  // namespace tarn::tool
