#include "console/LineCompleter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>

#include <tarn/DynamicTDF.h>
#include <tarn/PhysicsData.h>
#include <tarn/ProvTDFDriver.h>
#include <tarn/ProvTDFLogger.h>
#include <tarn/ProvisionalTDF.h>

#include "support/Redirected.h"
#include "support/Rules.h"
#include "support/TemporaryFolder.h"

namespace tarn::tool {
namespace {

using test::Rules;
using testing::ElementsAre;
using testing::IsEmpty;

/// A case with a rotor and a stator, of which the rotor is edited.
struct PumpRules : PhysicsData {
  PumpRules() {
    Rules rules(*this, "/Case");
    rules.child("Domain");
    rules.object("/Case/Domain");
    rules.param("Motion").required().allowed({"Rotating", "Stationary"}).byDefault("Rotating");
    rules.param("Material").required().byDefault("Water at 25 °C");
    rules.param("Mass").type(TDFParam::Real);
    rules.param("Colour").allowed({"red", "blue"});
    rules.param("Axis (x,y)").required().byDefault("0");
    rules.param("Fields").type(TDFParam::StringList).required().allowed({"Pressure", "Velocity", "Vorticity"});
    rules.child("Heat Transfer").singleton().required();
    rules.child("Buoyancy").singleton().coupled();
    rules.child("Boundary").required().allowedNames({"inlet", "inlet 2", "outlet"});
    rules.object("/Case/Domain/Heat Transfer").child("Radiation").singleton().required();
    rules.object("/Case/Domain/Heat Transfer/Radiation").param("Rays").required().byDefault("64");
    rules.object("/Case/Domain/Buoyancy").param("Gravity").required().byDefault("9.81");
    rules.object("/Case/Domain/Boundary");
    rules.param("Location").required().byDefault("FACE");
    rules.param("Roughness").type(TDFParam::Real);
  }
};

class LineCompleterTest : public testing::Test {
 protected:
  LineCompleterTest() {
    base_.createObject("", "Case", "");
    base_.createObject("/Case", "Domain", "rotor");
    base_.createObject("/Case", "Domain", "stator");
    state_.initialise(&base_, {});
  }

  Completion complete(std::string const& line) const { return completer_.complete(line, line.size()); }
  std::string insertedBehind(std::string const& line) const { return complete(line).insert; }
  std::vector<std::string> choicesBehind(std::string const& line) const { return complete(line).choices; }

  PumpRules rules_;
  DynamicTDF base_;
  ProvisionalTDF state_{&rules_, "/Case/Domain:rotor"};
  LineCompleter completer_{state_};
};

TEST_F(LineCompleterTest, OnAnEmptyLineAllCommandsAreOffered) {
  EXPECT_THAT(choicesBehind(""), ElementsAre("ao", "ap", "do", "dp", "e", "h", "l", "lb", "no", "po", "pp", "ps", "q",
                                             "ro", "sp", "v", "vf"));
}

TEST_F(LineCompleterTest, ABegunCommandIsCompleted) {
  EXPECT_THAT(choicesBehind("p"), ElementsAre("po", "pp", "ps"));
  EXPECT_EQ(insertedBehind("p"), "");
  EXPECT_EQ(insertedBehind(" s"), "p ");
}

TEST_F(LineCompleterTest, BehindACommandWithoutArgumentsNothingIsAdded) {
  EXPECT_EQ(insertedBehind("q"), "");
  EXPECT_THAT(choicesBehind("q "), IsEmpty());
}

TEST_F(LineCompleterTest, AnUnknownCommandGoesOnInNoWay) {
  EXPECT_THAT(choicesBehind("x"), IsEmpty());
  EXPECT_THAT(choicesBehind("x /"), IsEmpty());
}

TEST_F(LineCompleterTest, APathIsCompletedAsFarAsThereIsOneWay) {
  EXPECT_EQ(insertedBehind("sp "), "/Case/Domain:rotor/");
  EXPECT_EQ(insertedBehind("sp /C"), "ase/Domain:rotor/");
}

TEST_F(LineCompleterTest, AfterSpPresentParametersAndTheObjectsThatHoldSomeAreOffered) {
  EXPECT_THAT(choicesBehind("sp /Case/Domain:rotor/"),
              ElementsAre("Axis (x,y)", "Boundary:inlet/", "Boundary:inlet 2/", "Boundary:outlet/", "Fields",
                          "Heat Transfer/", "Material", "Motion"));
}

TEST_F(LineCompleterTest, AParameterToBeSetGetsItsEqualsSign) {
  EXPECT_EQ(insertedBehind("sp /Case/Domain:rotor/Mo"), "tion=");
}

TEST_F(LineCompleterTest, AParameterToBePrintedOrSwitchedOffGetsNoEqualsSign) {
  EXPECT_EQ(insertedBehind("pp /Case/Domain:rotor/Mo"), "tion");
  EXPECT_EQ(insertedBehind("dp /Case/Domain:rotor/Mo"), "tion");
}

TEST_F(LineCompleterTest, ABlankInAPathIsPartOfIt) {
  EXPECT_EQ(insertedBehind("sp /Case/Domain:rotor/Boundary:inlet 2"), "/Location=");
  EXPECT_EQ(insertedBehind("po /Case/Domain:rotor/Heat T"), "ransfer");
}

TEST_F(LineCompleterTest, BlanksAroundTheArgumentDoNotMatter) {
  EXPECT_EQ(insertedBehind("  sp \t /Case/Domain:rotor/Mo"), "tion=");
}

TEST_F(LineCompleterTest, APathWithACommaIsOfferedOnlyWhereTheLoopJoinsItAgain) {
  EXPECT_EQ(insertedBehind("sp /Case/Domain:rotor/Ax"), "is (x,y)=");
  EXPECT_THAT(choicesBehind("pp /Case/Domain:rotor/Ax"), IsEmpty());
}

TEST_F(LineCompleterTest, BehindTheEqualsSignTheAllowedValuesAreOffered) {
  EXPECT_THAT(choicesBehind("sp /Case/Domain:rotor/Motion="), ElementsAre("Rotating", "Stationary"));
  EXPECT_EQ(insertedBehind("sp /Case/Domain:rotor/Motion = S"), "tationary");
}

TEST_F(LineCompleterTest, BehindACommaTheNextItemOfAListIsCompleted) {
  EXPECT_EQ(insertedBehind("sp /Case/Domain:rotor/Fields=Pressure, Ve"), "locity");
}

TEST_F(LineCompleterTest, AFreeValueIsOfferedAsItIsToBeEdited) {
  EXPECT_EQ(insertedBehind("sp /Case/Domain:rotor/Material="), "Water at 25 °C");
  EXPECT_THAT(choicesBehind("sp /Case/Domain:rotor/Material=Oil"), IsEmpty());
}

TEST_F(LineCompleterTest, AValueThatNobodyWouldEditIsNotBroughtIn) {
  state_.activeSetParam("/Case/Domain:rotor", "Material", std::string(1001, 'w'));
  EXPECT_EQ(insertedBehind("sp /Case/Domain:rotor/Material="), "");
}

TEST_F(LineCompleterTest, AfterApPotentialParametersAreOffered) {
  EXPECT_THAT(choicesBehind("ap /Case/Domain:rotor/"),
              ElementsAre("Boundary:inlet/", "Boundary:inlet 2/", "Boundary:outlet/", "Colour", "Mass"));
  EXPECT_EQ(insertedBehind("ap /Case/Domain:rotor/Boundary:o"), "utlet/Roughness");
}

TEST_F(LineCompleterTest, AnActivatedParameterIsOfferedToBeSetAndNoLongerToBeActivated) {
  state_.activateOptParam("/Case/Domain:rotor", "Colour");
  EXPECT_EQ(insertedBehind("sp /Case/Domain:rotor/C"), "olour=");
  EXPECT_THAT(choicesBehind("ap /Case/Domain:rotor/C"), IsEmpty());
}

TEST_F(LineCompleterTest, AfterAoPotentialObjectsAreOffered) {
  EXPECT_EQ(insertedBehind("ao "), "/Case/Domain:rotor/Buoyancy");
}

TEST_F(LineCompleterTest, AfterOtherCommandsPresentObjectsAreOfferedAlsoThoseWithoutParameters) {
  for (std::string const command : {"do", "no", "ro", "po", "ps"}) {
    EXPECT_THAT(choicesBehind(command + " /Case/Domain:rotor/"),
                ElementsAre("Boundary:inlet", "Boundary:inlet 2", "Boundary:outlet", "Heat Transfer"))
        << command;
  }
}

TEST_F(LineCompleterTest, ObjectsBesideTheActiveRootAreNotOffered) {
  EXPECT_EQ(insertedBehind("po /"), "Case/Domain:rotor");
  EXPECT_THAT(choicesBehind("po /Case/Domain:s"), IsEmpty());
}

TEST_F(LineCompleterTest, AnObjectThatStandsThereIsEnteredNext) {
  EXPECT_EQ(insertedBehind("po /Case/Domain:rotor/Heat Transfer"), "/");
  EXPECT_EQ(insertedBehind("po /Case/Domain:rotor/Heat Transfer/"), "Radiation");
  EXPECT_EQ(insertedBehind("po /Case/Domain:rotor/Heat Transfer/Radiation"), "");
}

TEST_F(LineCompleterTest, WhatIsNoPathGoesOnInNoWay) {
  for (std::string const argument : {"Case", "//", "/Case//", "/Case/Domain:rotor/:", "/*", "/Ca\\", "/Case/:rotor"}) {
    EXPECT_THAT(choicesBehind("do " + argument), IsEmpty()) << argument;
    EXPECT_THAT(choicesBehind("sp " + argument), IsEmpty()) << argument;
  }
}

TEST_F(LineCompleterTest, OnlyWhatStandsBeforeTheCursorIsLookedAt) {
  EXPECT_EQ(completer_.complete("sp /Case/Domain:rotor/Mo=5", 24).insert, "tion=");
  EXPECT_EQ(completer_.complete("sp", 0).total, 17);
}

TEST_F(LineCompleterTest, ACharacterOfSeveralBytesIsNotDivided) {
  Rules(rules_, "/Case/Domain/Buoyancy").param("Größe ä").required().byDefault("1").param("Größe ö").required();
  state_.activateOptObject("/Case/Domain:rotor/Buoyancy");
  EXPECT_EQ(insertedBehind("sp /Case/Domain:rotor/Buoyancy/Grö"), "ße ");
}

TEST_F(LineCompleterTest, BeforeTheStateIsInitialisedThereIsNothingToOffer) {
  ProvisionalTDF const fresh(&rules_, "/Case/Domain:rotor");
  LineCompleter const completer(fresh);
  for (std::string const line : {"sp /", "ap /", "ao /", "po /", "sp /Case/Motion="}) {
    EXPECT_EQ(completer.complete(line, line.size()).total, 0) << line;
  }
}

TEST(LineCompleter, OfAHundredThousandParametersAHundredAreNamedAndAllAreCounted) {
  PhysicsData rules;
  Rules sheet(rules, "/Case");
  for (int i = 0; i < 100'000; ++i) sheet.param("Probe " + std::to_string(100'000 + i)).required().byDefault("1");
  sheet.object("/Nothing");
  DynamicTDF base;
  base.createObject("", "Case", "");
  ProvisionalTDF state(&rules, "/Case");
  state.initialise(&base, {});
  LineCompleter const completer(state);

  std::clock_t const begin = std::clock();
  Completion const all = completer.complete("sp /Case/", 9);
  auto const took = (std::clock() - begin) / CLOCKS_PER_SEC;

  EXPECT_EQ(all.insert, "Probe 1");
  EXPECT_EQ(all.total, 100'000);
  EXPECT_EQ(all.choices.size(), Completion::maxChoices);
  EXPECT_EQ(all.choices.front(), "Probe 100000");
  EXPECT_LT(took, 5) << "seconds of the processor; a fraction of one is usual";
}

TEST(LineCompleter, KnowsTheCommandsThatTheLoopKnowsAndNoOthers) {
  std::vector<std::string> words;
  for (char first = 'a'; first <= 'z'; ++first) {
    words.emplace_back(1, first);
    for (char second = 'a'; second <= 'z'; ++second) words.push_back({first, second});
  }
  std::string lines;
  // With two arguments too many no command does anything but complain.
  for (std::string const& word : words) lines += word + " x,y\n";

  PumpRules rules;
  ProvisionalTDF state(&rules, "/Case");
  ProvTDFLogger logger(&state, "/dev/null");
  std::string out;
  {
    test::Dialogue const dialogue(lines);
    ProvTDFDriver(false, true, "/Case", &rules, &logger, &state).waitInput();
    out = dialogue.output();
  }

  std::erase_if(words, [&](std::string const& word) {
    return out.find("Unrecognised command \"" + word + "\".") != std::string::npos;
  });
  std::sort(words.begin(), words.end());
  EXPECT_EQ(LineCompleter::commands(), words);
}

class FileCompletion : public LineCompleterTest {
 protected:
  FileCompletion() {
    std::filesystem::create_directory(folder_ / "cases of 2024");
    for (std::string const file :
         {"pump.tdf", "pumps.tdf", "fan, old.tdf", ".hidden", "cases of 2024/motor.tdf", "a\tb"}) {
      std::ofstream(folder_ / file) << '\n';
    }
  }

  test::TemporaryFolder temporary_{"zev-complete"};
  std::filesystem::path const folder_ = temporary_.path();
};

TEST_F(FileCompletion, IsOfferedAfterTheCommandsThatLoadAndValidate) {
  for (std::string const command : {"l", "lb", "vf"}) {
    EXPECT_THAT(choicesBehind(command + ' ' + folder_.string() + '/'),
                ElementsAre("cases of 2024/", "pump.tdf", "pumps.tdf"))
        << command;
  }
}

TEST_F(FileCompletion, GoesIntoAFolderWithBlanksInItsName) {
  EXPECT_EQ(insertedBehind("l " + folder_.string() + "/ca"), "ses of 2024/motor.tdf");
}

TEST_F(FileCompletion, StopsWhereNamesDiffer) {
  EXPECT_EQ(insertedBehind("l " + folder_.string() + "/p"), "ump");
}

TEST_F(FileCompletion, OffersHiddenFilesOnlyBehindTheirDot) {
  EXPECT_EQ(insertedBehind("l " + folder_.string() + "/."), "hidden");
}

TEST_F(FileCompletion, LeavesOutAFileThatTheLoopWouldTakeForTwoArguments) {
  EXPECT_THAT(choicesBehind("vf " + folder_.string() + "/f"), IsEmpty());
}

TEST_F(FileCompletion, OfAFolderThatIsNotThereIsEmpty) {
  EXPECT_THAT(choicesBehind("l " + folder_.string() + "/nowhere/"), IsEmpty());
}

}  // namespace
}  // namespace tarn::tool
