// The command loop, driven as a user drives it: lines in, text out, compared whole. The output for an edit is tested
// with the state printer. Sessions here run without a logger on the state when only the driver's own output matters.

#include <tarn/ProvTDFDriver.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

#include <tarn/DynamicTDF.h>
#include <tarn/Error.h>
#include <tarn/PhysicsData.h>
#include <tarn/ProvTDFLogger.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/TDFPath.h>

#include "support/Redirected.h"
#include "support/Rules.h"

namespace tarn {
namespace {

using test::Captured;
using test::Dialogue;
using test::Rules;
using test::when;

/// A rotor: its motion decides whether it has a speed, and it may have a title and a heat model.
struct RotorRules : PhysicsData {
  RotorRules() {
    addPertinentRoot("Case");
    Rules rules(*this);
    rules.object("/Case");
    rules.child("Domain").coupled();
    rules.object("/Case/Domain");
    rules.param("Motion").required().allowed({"Stationary", "Rotating"}).byDefault("Stationary");
    rules.param("Speed").type(TDFParam::Real).required().availableWhen(when("Motion", "Rotating")).byDefault("1");
    rules.param("Title");
    rules.child("Heat").singleton().coupled();
    rules.child("Boundary").coupled();
    rules.object("/Case/Domain/Heat");
    rules.param("Option").required().byDefault("Thermal");
    rules.object("/Case/Domain/Boundary");
    rules.param("Kind").required().byDefault("Wall");
  }
};

/// The text that is printed when this path is refused.
std::string messageOfPath(std::string const& path) {
  std::ostringstream message;
  try {
    TDFPath const parsed(path);
  } catch (Error const& error) {
    error.write(message);
  }
  return message.str();
}

class ProvTDFDriverTest : public testing::Test {
 protected:
  ProvTDFDriverTest() {
    base_.setParameter("/Case/Domain:rotor", "Motion", "Rotating");
    state_.initialise(&base_, {});
    // Its header is of no interest here.
    Captured const header(std::cout);
    printer_ = std::make_unique<ProvTDFLogger>(&state_, "stdout");
  }
  ~ProvTDFDriverTest() override {
    Captured const footer(std::cout);
    printer_.reset();
  }

  /// The output of the tool for the input.
  std::string session(std::string const& input, bool quiet = true, bool strict = true) {
    Dialogue const dialogue(input);
    ProvTDFDriver driver(strict, quiet, "/Case/Domain:rotor", &rules_, printer_.get(), &state_);
    driver.waitInput();
    return dialogue.output();
  }

  /// The name of a file with that content, which goes with the test.
  std::string file(std::string const& content) {
    auto const name =
        testing::TempDir() + "driver-" + testing::UnitTest::GetInstance()->current_test_info()->name() + ".tdf";
    std::ofstream(name) << content;
    return name;
  }

  std::string value(std::string const& name) { return state_.getParamValue("/Case/Domain:rotor", name); }

  RotorRules rules_;
  DynamicTDF base_;
  ProvisionalTDF state_{&rules_, "/Case/Domain:rotor"};
  std::unique_ptr<ProvTDFLogger> printer_;
};

TEST_F(ProvTDFDriverTest, BannerAndPromptAreWrittenUnlessQuiet) {
  EXPECT_EQ(session("\nq\n", false),
            "\n\n"
            "  --------------------------------------------\n"
            "  ---- ZEV-Pre Physical Availability Tool ----\n"
            "  --------------------------------------------\n"
            "\n"
            "\n"
            "ZEV> ZEV> ");
  EXPECT_EQ(session("\nq\n"), "");
}

TEST_F(ProvTDFDriverTest, EndOfInputQuitsAndALastLineWithoutLineEndIsLost) {
  EXPECT_TRUE(session("", false).ends_with("\n\nZEV> "));
  EXPECT_EQ(session("nonsense"), "");
}

TEST_F(ProvTDFDriverTest, LinesOfWhiteSpaceDoNothing) {
  EXPECT_EQ(session("\n  \t \nq\n"), "");
}

TEST_F(ProvTDFDriverTest, UnknownAndMiscasedCommandsAreTold) {
  EXPECT_EQ(session("frobnicate /Case\nQ\nq\n"),
            "Unrecognised command \"frobnicate\".\n"
            "Unrecognised command \"Q\".\n");
}

TEST_F(ProvTDFDriverTest, QuitTakesNoArguments) {
  EXPECT_EQ(session("q x, y\nfoo\nq\nbar\n"),
            "Unexpected arguments: x,y\n"
            "Unrecognised command \"foo\".\n");
}

TEST_F(ProvTDFDriverTest, TooFewArgumentsAreTold) {
  std::string expected;
  std::string input;
  for (std::string const command : {"pp", "po", "ap", "dp", "ao", "do", "no", "ro", "l", "lb", "vf"}) {
    input += command + "\n";
    expected += "Insufficient arguments.\n";
  }
  EXPECT_EQ(session(input), expected);
}

TEST_F(ProvTDFDriverTest, TooManyArgumentsAreToldAndTheCommandIsNotRun) {
  EXPECT_EQ(session("po /Case, a, b\nv x\nps a,b\n"),
            "Unexpected arguments: a,b\n"
            "Unexpected arguments: x\n"
            "Unexpected arguments: b\n");
}

TEST_F(ProvTDFDriverTest, HelpWithArgumentsTellsOfThemAndHelps) {
  std::string const help = session("h\n");
  EXPECT_EQ(session("h x\n"), "Unexpected arguments: x\n" + help);
  EXPECT_EQ(help.substr(0, 77), "\n  COMMANDS ----------------------------------------------------------------\n");
  EXPECT_NE(help.find("including optional parameters/named child \n"), std::string::npos);
  EXPECT_TRUE(help.ends_with("  -------------------------------------------------------------------------\n\n"));
  EXPECT_EQ(help.find("  no "), std::string::npos);
  EXPECT_EQ(help.find("  ro "), std::string::npos);
}

TEST_F(ProvTDFDriverTest, WhatIsNotYetThereSaysSo) {
  EXPECT_EQ(session("e\ne x,y\nps -b\nps /Case\n"),
            "Not yet implemented.\n"
            "Not yet implemented.\n"
            "This print state option is not yet implemented.\n"
            "This print state option is not yet implemented.\n");
}

TEST_F(ProvTDFDriverTest, PrintingTheStateShowsTheActiveBranch) {
  EXPECT_EQ(session("ps\n"),
            "\n"
            "Case: \n"
            "  Domain: rotor\n"
            "    Motion = Rotating\n"
            "    Speed = 1\n"
            "  END # Domain:rotor\n"
            "END # Case:\n");
}

TEST_F(ProvTDFDriverTest, AProgramPrintsTheStateWithoutACommand) {
  std::string const asCommand = session("ps\n");
  ProvTDFDriver const driver(true, true, "/Case/Domain:rotor", &rules_, printer_.get(), &state_);
  Captured const out(std::cout);
  driver.printState();
  EXPECT_EQ(out.text(), asCommand);
}

TEST_F(ProvTDFDriverTest, ACopyKeepsTheModelThatItsOriginalLoaded) {
  Dialogue const dialogue("l " + file("/Case/Domain:rotor/Title=loaded\n") + "\nq\n");
  auto original = std::make_unique<ProvTDFDriver>(true, true, "/Case/Domain:rotor", &rules_, printer_.get(), &state_);
  auto copy = std::make_unique<ProvTDFDriver>(*original);
  original->waitInput();
  *copy = *original;  // now with the model
  original.reset();
  EXPECT_EQ(value("Title"), "loaded");

  state_.activeSetParam("/Case/Domain:rotor", "Title", "edited");
  EXPECT_EQ(value("Title"), "edited");
  EXPECT_EQ(dialogue.output(), "");
  state_.baseUpdate(&base_);  // the model goes with the copy
}

TEST_F(ProvTDFDriverTest, AHostThatKeepsTheLoadedModelGoesOnWithTheStateWithoutTheDriver) {
  Rules(rules_, "/Case/Domain")
      .param("Note")
      .required()
      .byDefault(test::text(
          [](TDFContext const&, ModelTDF const& model) { return model.getParameterValue("/Case", "Title"); }));
  Dialogue const dialogue("l " + file("/Case/Title=loaded\n/Case/Domain:rotor/Motion=Stationary\n") + "\nq\n");
  auto driver = std::make_unique<ProvTDFDriver>(true, true, "/Case/Domain:rotor", &rules_, printer_.get(), &state_);
  EXPECT_EQ(driver->getLoadedBaseModel(), nullptr);
  driver->waitInput();
  std::shared_ptr<DynamicTDF const> base = driver->getLoadedBaseModel();
  driver.reset();
  ASSERT_NE(base, nullptr);
  EXPECT_EQ(base.use_count(), 1) << "nobody else keeps it";

  state_.activeSetParam("/Case/Domain:rotor", "Motion", "Rotating");
  EXPECT_EQ(value("Note"), "loaded") << "the rules still read the loaded model";
  state_.baseUpdate(&base_);
  base.reset();
  state_.activeSetParam("/Case/Domain:rotor", "Motion", "Stationary");
  EXPECT_EQ(value("Note"), "") << "the rules read the other model";
}

TEST_F(ProvTDFDriverTest, AnEditOfAPathThatCannotBeReadIsAnErrorOfTheInputAndChangesNothing) {
  EXPECT_EQ(session("no /Case/Domain:rotor/Boundary:a:b\nq\n"),
            "Error processing input.\n" + messageOfPath("/Case/Domain:rotor/Boundary:a:b") + "\n");
  EXPECT_FALSE(state_.hasObject("/Case/Domain:rotor/Boundary:a"));
}

TEST_F(ProvTDFDriverTest, PrintingAParameterShowsAllowedValues) {
  EXPECT_EQ(session("pp /Case/Domain:rotor/Motion\n"),
            "COMMAND: printParam /Case/Domain:rotor/Motion\n"
            "\n"
            "Allowed Values\n"
            "--------------\n"
            "/Case/Domain:rotor/Motion = Rotating [Stationary|Rotating]\n"
            "\n"
            "Subset Allowed Values\n"
            "---------------------\n"
            "/Case/Domain:rotor/Motion = Rotating\n"
            "\n");
}

TEST_F(ProvTDFDriverTest, PrintingAnObjectShowsWhatCanBeActivated) {
  EXPECT_EQ(session("po /Case/Domain:rotor\n"),
            "/Case/Domain:rotor : \n"
            "Parameters:\n"
            "  Motion = Rotating\n"
            "  Speed = 1\n"
            "Inactive available parameters:\n"
            "  Title\n"
            "Inactive available child objects:\n"
            "  /Case/Domain:rotor/Heat\n");
}

TEST_F(ProvTDFDriverTest, SettingAParameterTakesCommasAndBlanksAsTheyAre) {
  EXPECT_EQ(session("ap /Case/Domain:rotor/Title\nsp /Case/Domain:rotor/Title=main rotor, left\n"), "");
  EXPECT_EQ(value("Title"), "main rotor,left");
  EXPECT_EQ(session("sp /Case/Domain:rotor/Title=\n"), "");
  EXPECT_EQ(value("Title"), "");
}

TEST_F(ProvTDFDriverTest, SettingAPotentialParameterIsRefusedUntilItIsActivated) {
  EXPECT_EQ(session("sp /Case/Domain:rotor/Title=x\n"),
            "The parameter /Case/Domain:rotor/Title has not yet been 'activated'.\n"
            "(Use \"ap /Case/Domain:rotor/Title\")\n");
  EXPECT_EQ(value("Title"), "");
  EXPECT_EQ(session("ap /Case/Domain:rotor/Title\nsp /Case/Domain:rotor/Title=x\n"), "");
  EXPECT_EQ(value("Title"), "x");
}

TEST_F(ProvTDFDriverTest, SettingFromATextThatIsNoChangeIsToldAndRunsAnEditOfNothing) {
  state_.setLogger(printer_.get());
  std::string const out = session("sp nonsense\n");
  state_.setLogger(nullptr);
  EXPECT_TRUE(out.starts_with("Error processing parameter setting.\n")) << out;
  EXPECT_NE(out.find("\nCOMMAND: activeSetParam / = \n"), std::string::npos) << out;
}

TEST_F(ProvTDFDriverTest, WhatIsNotPotentialCannotBeActivated) {
  EXPECT_EQ(session("ap /Case/Domain:rotor/Motion\nao /Case/Domain:rotor/Boundary:inlet\n"),
            "Parameter /Case/Domain:rotor/Motion cannot be activated.\n"
            "It is either physically unavailable, or is not an optional parameter.\n"
            "Object /Case/Domain:rotor/Boundary:inlet cannot be activated.\n"
            "It is either physically unavailable, or is not an optional named object with a pre-determined name.\n");
}

TEST_F(ProvTDFDriverTest, OptionalItemsAreActivatedAndDeactivated) {
  EXPECT_EQ(session("ap /Case/Domain:rotor/Title\nao /Case/Domain:rotor/Heat\n"), "");
  EXPECT_EQ(state_.getActiveTDFState().at("/Case/Domain:rotor").count("Title"), 1U);
  EXPECT_EQ(state_.getActiveTDFState().at("/Case/Domain:rotor/Heat").at("Option"), "Thermal");
  EXPECT_EQ(session("dp /Case/Domain:rotor/Title\ndo /Case/Domain:rotor/Heat\n"), "");
  EXPECT_EQ(state_.getActiveTDFState().at("/Case/Domain:rotor").count("Title"), 0U);
  EXPECT_EQ(state_.getActiveTDFState().count("/Case/Domain:rotor/Heat"), 0U);
}

TEST_F(ProvTDFDriverTest, NamedObjectsAreAddedAndRemoved) {
  EXPECT_EQ(session("no /Case/Domain:rotor/Boundary:inlet\n"), "");
  EXPECT_EQ(state_.getActiveTDFState().at("/Case/Domain:rotor/Boundary:inlet").at("Kind"), "Wall");
  EXPECT_EQ(session("ro /Case/Domain:rotor/Boundary:inlet\n"), "");
  EXPECT_EQ(state_.getActiveTDFState().count("/Case/Domain:rotor/Boundary:inlet"), 0U);
}

TEST_F(ProvTDFDriverTest, APathThatCannotBeParsedLeavesTheLoopRunning) {
  std::string const out = session("pp no path\nfoo\n");
  EXPECT_TRUE(out.starts_with("Error processing input.\n")) << out;
  EXPECT_TRUE(out.ends_with("Unrecognised command \"foo\".\n")) << out;
}

TEST_F(ProvTDFDriverTest, LoadingAFileMakesANewStateFromItAndTheFirstValueOfAParameterStands) {
  auto const name = file(
      "/Case/Domain:rotor/Motion=Stationary\n/Case/Domain:rotor/Motion=Rotating\n/Case/Domain:rotor/Title=loaded\n");
  Dialogue const dialogue("l " + name + "\n");
  ProvTDFDriver driver(true, true, "/Case/Domain:rotor", &rules_, printer_.get(), &state_);
  driver.waitInput();
  EXPECT_EQ(dialogue.output(), "");
  EXPECT_EQ(value("Motion"), "Stationary");
  EXPECT_EQ(value("Title"), "loaded");
  state_.baseUpdate(&base_);  // the driver's own model goes with it
}

TEST_F(ProvTDFDriverTest, LoadingFromTheStandardInputTakesTheRestOfItAndQuits) {
  Dialogue const dialogue("l -\n/Case/Domain:rotor/Title=piped\n/Case/Domain:rotor/Motion=Stationary\n");
  ProvTDFDriver driver(true, true, "/Case/Domain:rotor", &rules_, printer_.get(), &state_);
  driver.waitInput();
  EXPECT_EQ(dialogue.output(), "");
  EXPECT_EQ(value("Title"), "piped");
  EXPECT_EQ(value("Motion"), "Stationary");
  state_.baseUpdate(&base_);  // the driver's own model goes with it
}

TEST_F(ProvTDFDriverTest, ValidatingTheStandardInputTakesTheRestOfItForModelText) {
  std::string const out = session("vf -\nfoo\n");
  EXPECT_TRUE(out.starts_with("Failed to load -\n")) << out;
  EXPECT_EQ(out.find("Unrecognised command"), std::string::npos) << out;
}

TEST_F(ProvTDFDriverTest, AFileThatCannotBeLoadedLeavesTheStateAlone) {
  auto const before = state_.getActiveTDFState();
  for (std::string const command : {"l", "lb", "vf"}) {
    std::string const out = session(command + " /no/such/file\n");
    EXPECT_TRUE(out.starts_with("Failed to load /no/such/file\n")) << out;
    EXPECT_NE(out.find("No such file"), std::string::npos) << out;
  }
  EXPECT_EQ(state_.getActiveTDFState(), before);
}

TEST_F(ProvTDFDriverTest, StrictLoadingRefusesAFileThatLenientLoadingTakes) {
  auto const name = file("/Case/Domain:rotor/Motion=Stationary\nno line of a model\n");
  EXPECT_TRUE(session("vf " + name + "\n", true, true).starts_with("Failed to load " + name + "\n"));
  testing::internal::CaptureStderr();
  EXPECT_EQ(session("vf " + name + "\n", true, false), "");
  EXPECT_NE(testing::internal::GetCapturedStderr().find(":2:"), std::string::npos);
}

TEST_F(ProvTDFDriverTest, ValidatingASoundStateSaysNothing) {
  EXPECT_EQ(session("v\n"), "");
}

TEST_F(ProvTDFDriverTest, ValidatingAFileTellsEachFindingInFourLines) {
  Rules(rules_).globalCheck(
      "something turns", [](ModelTDF const&) { return false; }, std::string("Nothing turns."));
  auto const name = file("/Case/Domain:rotor/Motion=Sideways\n");
  EXPECT_EQ(session("vf " + name + "\n"),
            "**Dependency error on path \"/Case/Domain:rotor\"\n"
            "---\n"
            "The parameter \"Motion\" in \"/Case/Domain:rotor\" has the value \"Sideways\". This does not match any of "
            "the allowed values: \"Stationary, Rotating\".\n"
            "===\n"
            "**General physics errors detected \n"
            "---\n"
            "Nothing turns.\n"
            "===\n");
}

TEST_F(ProvTDFDriverTest, ValidatingAnEmptyFileSaysNothing) {
  EXPECT_EQ(session("vf " + file("") + "\n"), "");
}

TEST_F(ProvTDFDriverTest, ASecondCallAfterQuittingWritesTheBannerAndReturns) {
  Dialogue const dialogue("q\nfoo\n");
  ProvTDFDriver driver(true, false, "/Case/Domain:rotor", &rules_, printer_.get(), &state_);
  driver.waitInput();
  std::string const first = dialogue.output();
  driver.waitInput();
  EXPECT_EQ(dialogue.output(), first + first.substr(0, first.size() - 5));
}

}  // namespace
}  // namespace tarn
