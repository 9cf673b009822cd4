#include <tarn/session/Session.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <tarn/session/Sentences.h>

#include "SetupSession/session/TankCase.h"

namespace tarn::session {
namespace {

using test::Tanks;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

/// The verdict of one edit on a fresh plant, and what it did.
std::vector<std::string> verdictOf(Edit const& edit) {
  Tanks tanks;
  EditResult const result = tanks->edit(edit);
  std::vector<std::string> lines = {sentenceOf(result)};
  for (std::string& line : sentencesOf(result.effect)) lines.push_back(std::move(line));
  for (Conversion const& conversion : result.conversions) lines.push_back(sentenceOf(conversion));
  return lines;
}

TEST(SessionEdit, AnEditReturnsItsNetEffectWithOldAndNew) {
  EXPECT_THAT(
      verdictOf(Edit::setParam("/Plant/Solver", "Mode", "Transient")),
      ElementsAre(
          "Done as step 1: 3 values changed, 2 parameters came, 2 parameters went, 1 list of choices changed, 1 "
          "default changed, 1 offer came, 2 requests wait.",
          "/Plant/Solver/Mode changed from \"Steady\" to \"Transient\".",
          "/Plant/Solver/Relaxation went; its value was \"0.6\".", "/Plant/Solver/Steps came with the value \"10\".",
          "/Plant/Solver/Time Step came with the value \"0.1\".",
          "/Plant/Tank:T1/Control changed from \"Fixed\" to \"Free\".",
          "/Plant/Tank:T1/Level changed from \"1 [m]\" to \"0.5 [m]\".",
          "/Plant/Tank:T1/Set Level went; its value was \"1.5 [m]\".",
          "The choices of /Plant/Pipe:P1/Friction Model changed from \"Laminar\", \"Turbulent\" to \"Laminar\", "
          "\"Turbulent\", \"Unsteady\".",
          "The default of /Plant/Tank:T1/Level changed from \"1 [m]\" to \"0.5 [m]\".",
          "/Plant/Ambient is on offer now.",
          "/Plant/Solver/Relaxation = \"0.6\" waits, because it is not available now: a transient run is not "
          "relaxed",
          "/Plant/Tank:T1/Set Level = \"1.5 [m]\" waits, because it is not available now: only a controlled tank "
          "has a set level"));
}

TEST(SessionEdit, ABoundThatFollowsAnotherParameterIsListed) {
  EXPECT_THAT(verdictOf(Edit::setParam("/Plant/Tank:T2", "Height", "4 [m]")),
              ElementsAre("Done as step 1: 1 value changed, 1 pair of bounds changed.",
                          "/Plant/Tank:T2/Height changed from \"2 [m]\" to \"4 [m]\".",
                          "The bounds of /Plant/Tank:T2/Level changed from at most 2 [m] to at most 4 [m]."));
}

TEST(SessionEdit, WhatCameAndWentWithinOneUpdateIsNotListed) {
  Tanks tanks;
  std::vector<Edit> const thereAndBack = {Edit::setParam("/Plant/Solver", "Mode", "Transient"),
                                          Edit::setParam("/Plant/Solver", "Mode", "Steady"),
                                          Edit::setParam("/Plant/Tank:T1", "Control", "Fixed")};
  EditResult const result = tanks->edit(thereAndBack);
  EXPECT_TRUE(result.applied());
  EXPECT_THAT(sentencesOf(result.effect), IsEmpty());
}

TEST(SessionEdit, ProposesOnlyWhatWouldBeApplied) {
  // A slip in the name and another one in the value.
  EXPECT_THAT(verdictOf(Edit::setParam("/Plant/Solver", "Mod", "transient")),
              ElementsAre("Refused: The rules know no parameter \"Mod\" in \"/Plant/Solver\". Nearest: set "
                          "/Plant/Solver/Mode to \"Transient\"."));
  // Nothing is near the value, but the name was probably meant.
  EXPECT_THAT(
      verdictOf(Edit::setParam("/Plant/Solver", "Mod", "quick")),
      ElementsAre("Refused: The rules know no parameter \"Mod\" in \"/Plant/Solver\". Possible now: \"Mode\"."));
}

TEST(SessionEdit, ProposesTheEditThatObjectsOfAUsersChoiceNeed) {
  EXPECT_THAT(verdictOf(Edit::activateObject("/Plant/Tank:reserve")),
              ElementsAre("Refused: There is no object \"/Plant/Tank:reserve\". Nearest: add /Plant/Tank:reserve."));
  EXPECT_THAT(verdictOf(Edit::deactivateObject("/Plant/Tank:T1")),
              ElementsAre("Refused: The object \"/Plant/Tank:T1\" is required, so it cannot be switched off. Nearest: "
                          "remove /Plant/Tank:T1."));
  EXPECT_THAT(verdictOf(Edit::addObject("/Plant/Tank:Tank")),
              ElementsAre("Refused: The name of an object cannot be its type. Nearest: add /Plant/Tank:Tank 1."));
}

TEST(SessionEdit, FindsAParameterWhoseObjectWasLeftOut) {
  EXPECT_THAT(verdictOf(Edit::setParam("/Plant", "Relaxtion", "0.5")),
              ElementsAre("Refused: The rules know no parameter \"Relaxtion\" in \"/Plant\". Nearest: set "
                          "/Plant/Solver/Relaxation to \"0.5\"."));
  EXPECT_THAT(verdictOf(Edit::setParam("/Plant", "Height", "3 [m]")),
              ElementsAre("Refused: The rules know no parameter \"Height\" in \"/Plant\". Possible now: "
                          "\"/Plant/Tank:T1/Height\", \"/Plant/Tank:T2/Height\"."));
  EXPECT_THAT(verdictOf(Edit::setParam("/Plant", "Moderation", "3")),
              ElementsAre("Refused: The rules know no parameter \"Moderation\" in \"/Plant\"."));
}

TEST(SessionEdit, ListsTheFirstPathsOfACommonNameAndSaysHowManyThereAre) {
  std::string model;
  for (int i = 101; i <= 125; ++i) model += "/Plant/Tank:T" + std::to_string(i) + "/\n";
  Tanks tanks(model.c_str());
  auto const refused = tanks->edit(Edit::setParam("/Plant", "Height", "1 [m]")).refused;
  ASSERT_TRUE(refused);
  EXPECT_FALSE(refused->nearest);
  std::vector<std::string> first;
  for (int i = 101; i <= 120; ++i) first.push_back("/Plant/Tank:T" + std::to_string(i) + "/Height");
  EXPECT_THAT(refused->possible, ElementsAreArray(first));
  EXPECT_EQ(refused->possibleCount, 25);
  EXPECT_EQ(sentenceOf(*refused),
            "The rules know no parameter \"Height\" in \"/Plant\". Possible now: \"/Plant/Tank:T101/Height\", "
            "\"/Plant/Tank:T102/Height\", \"/Plant/Tank:T103/Height\", \"/Plant/Tank:T104/Height\", "
            "\"/Plant/Tank:T105/Height\", \"/Plant/Tank:T106/Height\", \"/Plant/Tank:T107/Height\", "
            "\"/Plant/Tank:T108/Height\", \"/Plant/Tank:T109/Height\", \"/Plant/Tank:T110/Height\" and 15 more.");
}

TEST(SessionEdit, PathsOfANameThatAreAllListedHaveNoCount) {
  Tanks tanks;
  auto const refused = tanks->edit(Edit::setParam("/Plant", "Height", "1 [m]")).refused;
  EXPECT_THAT(refused->possible, ElementsAre("/Plant/Tank:T1/Height", "/Plant/Tank:T2/Height"));
  EXPECT_EQ(refused->possibleCount, 0);
}

TEST(SessionEdit, PathsOfANameComeInTheOrderOfTheModelWhateverTheirTypes) {
  auto const rules = rules::parseRules(R"(Rule Database: 1
Pertinent Roots: [Plant]
Objects:
  /Plant:
    Children:
      Tank: {Coupled: yes}
      Pump: {Coupled: yes}
  /Plant/Tank:
    Parameters:
      Height: {Parameter Type: Real}
    Children:
      Pump: {Coupled: yes}
  /Plant/Tank/Pump:
    Parameters:
      Power: {Parameter Type: Real}
  /Plant/Pump:
    Parameters:
      Power: {Parameter Type: Real}
)");
  auto const session = Session::open(*rules, ModelText("plant.tdf",
                                                       "/Plant/Tank:a/Pump:x/\n/Plant/Tank:b/Pump:y/\n"
                                                       "/Plant/Pump:main/\n"))
                           .session;
  auto const refused = session->edit(Edit::setParam("/Plant", "Power", "1")).refused;
  EXPECT_THAT(refused->possible,
              ElementsAre("/Plant/Tank:a/Pump:x/Power", "/Plant/Tank:b/Pump:y/Power", "/Plant/Pump:main/Power"));
  // A name that is spelt alike is found below as well.
  EXPECT_EQ(session->edit(Edit::setParam("/Plant", "Hight", "1")).refused->possible[1], "/Plant/Tank:b/Height");
}

TEST(SessionEdit, DividesNoNumberToFindItsUnits) {
  for (std::string const value : {"1e400", "1e400 in", "1.5.2 in", "1..2"}) {
    EXPECT_THAT(verdictOf(Edit::setParam("/Plant/Tank:T1", "Height", value)),
                ElementsAre("Refused: The parameter \"Height\" in \"/Plant/Tank:T1\" cannot have the value \"" + value +
                            "\": it is not a number."));
  }
}

TEST(SessionEdit, RefusesTypingSlipsAndProposesWhatWasMeant) {
  struct Case {
    Edit edit;
    std::string verdict;
  };
  std::vector<Case> const cases = {
      {Edit::setParam("/Plant/Solver", "Mod", "Transient"),
       "Refused: The rules know no parameter \"Mod\" in \"/Plant/Solver\". Nearest: set /Plant/Solver/Mode to "
       "\"Transient\"."},
      {Edit::setParam("/Plant/Solvr", "Mode", "Transient"),
       "Refused: The rules know no object \"Solvr\" in \"/Plant\". Nearest: set /Plant/Solver/Mode to \"Transient\"."},
      {Edit::setParam("/Plant/Solver", "Mode", "transient"),
       "Refused: The parameter \"Mode\" in \"/Plant/Solver\" cannot have the value \"transient\": it is not an allowed "
       "value. Possible now: \"Steady\", \"Transient\". Nearest: set /Plant/Solver/Mode to \"Transient\"."},
      {Edit::setParam("/Plant/Solver", "Relaxation", "much"),
       "Refused: The parameter \"Relaxation\" in \"/Plant/Solver\" cannot have the value \"much\": it is not a "
       "number."},
      {Edit::setParam("/Plant/Solver", "Relaxation", "0,5"),
       "Refused: The parameter \"Relaxation\" in \"/Plant/Solver\" cannot have the value \"0,5\": it is not a number. "
       "Nearest: set /Plant/Solver/Relaxation to \"0.5\"."},
      {Edit::setParam("/Plant/Solver", "Steps", "2.5"),
       "Refused: The parameter \"Steps\" in \"/Plant/Solver\" cannot have the value \"2.5\": it is not a whole number. "
       "Nearest: set /Plant/Solver/Steps to \"3\"."},
      {Edit::setParam("/Plant/Solver", "Verbose", "treu"),
       "Refused: The parameter \"Verbose\" in \"/Plant/Solver\" cannot have the value \"treu\": it is not a logical "
       "value such as true or false. Nearest: set /Plant/Solver/Verbose to \"true\"."},
      {Edit::setParam("/Plant/Solver", "Relaxation", "0.5 [m]"),
       "Refused: The parameter \"Relaxation\" in \"/Plant/Solver\" cannot have the value \"0.5 [m]\": no units are "
       "expected. Nearest: set /Plant/Solver/Relaxation to \"0.5\"."},
      {Edit::setParam("/Plant/Tank:T1", "Height", "25 [bananas]"),
       "Refused: The parameter \"Height\" in \"/Plant/Tank:T1\" cannot have the value \"25 [bananas]\": the units "
       "cannot "
       "be converted. Possible now: \"m\", \"in\"."},
      {Edit::setParam("/Plant/Tank:T1", "Height", "2 [kg]"),
       "Refused: The parameter \"Height\" in \"/Plant/Tank:T1\" cannot have the value \"2 [kg]\": the units cannot be "
       "converted. Possible now: \"m\", \"in\"."},
      {Edit::setParam("/Plant/Pipe:P1", "Through", "T1,T7"),
       "Refused: The parameter \"Through\" in \"/Plant/Pipe:P1\" cannot have the value \"T1,T7\": item 2 is wrong: it "
       "is "
       "not an allowed value. Possible now: \"T1\", \"T2\"."},
      {Edit::addObject("/Plant/Tnk:T3"),
       "Refused: The rules know no object \"Tnk\" in \"/Plant\". Nearest: add /Plant/Tank:T3."},
      {Edit::setParam("/Plant/Tank:T1/Hight", "Unit", "m"),
       "Refused: The rules know no object \"Hight\" in \"/Plant/Tank:T1\"."},
      {Edit::setParam("/Plnt", "Title", "x"), "Refused: \"/Plnt\" is outside of \"/Plant\", which is being edited."},
      {Edit::setParam("Plant", "Title", "x"), "Refused: \"Plant\" is not a path: a path begins with \"/\"."},
      {Edit::setParam("/Plant:Plant", "Title", "x"),
       "Refused: \"/Plant:Plant\" is written \"/Plant\". Nearest: set /Plant/Title to \"x\"."},
      {Edit::setParam("/Plant", "Title", "two\nlines"),
       "Refused: Paths, names and values are a single line of text. Nearest: set /Plant/Title to \"two lines\"."},
  };
  for (auto const& [edit, verdict] : cases) EXPECT_THAT(verdictOf(edit), ElementsAre(verdict)) << sentenceOf(edit);
}

TEST(SessionEdit, ARefusedEditChangesNothing) {
  Tanks tanks;
  (void)tanks->edit(Edit::setParam("/Plant/Solver", "Mode", "Transient"));
  auto const offers = tanks->provisional().getAvailPotObjects();
  auto const modified = tanks->provisional().getModParams();
  EditResult const refused = tanks->edit(Edit::setParam("/Plant/Tank:T1", "Control", "Fixed"));
  ASSERT_TRUE(refused.refused);
  EXPECT_EQ(sentenceOf(*refused.refused),
            "The rules fix the parameter \"Control\" in \"/Plant/Tank:T1\" at the value \"Free\". Possible now: "
            "\"Free\".");
  EXPECT_TRUE(refused.effect.empty());
  EXPECT_EQ(tanks->steps().size(), 1U);
  EXPECT_EQ(tanks->provisional().getAvailPotObjects(), offers);
  EXPECT_EQ(tanks->provisional().getModParams(), modified);
}

TEST(SessionEdit, AWishForAKnownParameterThatIsNotAvailableIsKept) {
  Tanks tanks;
  EditResult const result = tanks->edit(Edit::setParam("/Plant/Solver", "Time Step", "0.5"));
  EXPECT_TRUE(result.applied());
  EXPECT_THAT(
      sentencesOf(result.effect),
      ElementsAre("/Plant/Solver/Time Step = \"0.5\" waits, because it is not available now: a steady run has no "
                  "time steps"));
  EditResult const later = tanks->edit(Edit::setParam("/Plant/Solver", "Mode", "Transient"));
  EXPECT_EQ(tanks->lookParam("/Plant/Solver", "Time Step")->value, "0.5");
  EXPECT_THAT(sentencesOf(later.effect), testing::Contains("/Plant/Solver/Time Step waits no longer."));
}

TEST(SessionEdit, ASlipInAParameterThatIsNotAvailableIsRefused) {
  EXPECT_THAT(
      verdictOf(Edit::setParam("/Plant/Solver", "Time Step", "soon")),
      ElementsAre("Refused: The parameter \"Time Step\" in \"/Plant/Solver\" cannot have the value \"soon\": it "
                  "is not a number."));
}

TEST(SessionEdit, ConvertsUnitsThatTheQuantityTypeDoesNotListAndSaysSo) {
  EXPECT_THAT(verdictOf(Edit::setParam("/Plant/Tank:T1", "Height", "250 [cm]")),
              ElementsAre("Done as step 1: 1 value changed, 1 pair of bounds changed.",
                          "/Plant/Tank:T1/Height changed from \"3 [m]\" to \"2.5 [m]\".",
                          "The bounds of /Plant/Tank:T1/Level changed from at most 3 [m] to at most 2.5 [m].",
                          "/Plant/Tank:T1/Height was given as \"250 [cm]\" and set to \"2.5 [m]\"."));
}

TEST(SessionEdit, ACommaInANumberIsRefusedAndThePointProposed) {
  EXPECT_THAT(
      verdictOf(Edit::setParam("/Plant/Tank:T2", "Height", "1,5 in")),
      ElementsAre("Refused: The parameter \"Height\" in \"/Plant/Tank:T2\" cannot have the value \"1,5 in\": it is "
                  "not a number. Nearest: set /Plant/Tank:T2/Height to \"1.5 in\"."));
  EXPECT_THAT(
      verdictOf(Edit::setParam("/Plant/Tank:T2", "Height", "1,5 bananas")),
      ElementsAre("Refused: The parameter \"Height\" in \"/Plant/Tank:T2\" cannot have the value \"1,5 bananas\": "
                  "it is not a number."));
}

TEST(SessionEdit, UnitsWithoutBracketsGetThem) {
  Tanks tanks;
  EXPECT_EQ(tanks->edit(Edit::setParam("/Plant/Tank:T1", "Height", "100 in")).made.front().value, "100 [in]");
  EXPECT_EQ(tanks->edit(Edit::setParam("/Plant/Tank:T1", "Height", "25mm")).made.front().value, "0.025 [m]");
}

TEST(SessionEdit, ListedUnitsAndSpellingOfNumbersAreKept) {
  Tanks tanks;
  EditResult const result = tanks->edit(Edit::setParam("/Plant/Tank:T1", "Height", "1.50e1 [in]"));
  EXPECT_THAT(result.conversions, IsEmpty());
  EXPECT_EQ(tanks->lookParam("/Plant/Tank:T1", "Height")->value, "1.50e1 [in]");
}

TEST(SessionEdit, ItemsOfAListLoseTheBlanksAroundThem) {
  Tanks tanks;
  (void)tanks->edit(Edit::setParam("/Plant/Pipe:P1", "Through", " T2 , T1 "));
  EXPECT_EQ(tanks->lookParam("/Plant/Pipe:P1", "Through")->value, "T2,T1");
}

TEST(SessionEdit, ObjectsCanBeAddedAndRefuseWrongNames) {
  EXPECT_THAT(
      verdictOf(Edit::addObject("/Plant/Tank:T3")),
      ElementsAre("Done as step 1: 3 parameters came, 1 object came, 2 lists of choices changed.",
                  "/Plant/Tank:T3/Control came with the value \"Free\".",
                  "/Plant/Tank:T3/Height came with the value \"2 [m]\".",
                  "/Plant/Tank:T3/Level came with the value \"0.5 [m]\".",
                  "The choices of /Plant/Pipe:P1/From changed from \"T1\", \"T2\" to \"T1\", \"T2\", \"T3\".",
                  "The choices of /Plant/Pipe:P1/Through changed from \"T1\", \"T2\" to \"T1\", \"T2\", \"T3\".",
                  "The object /Plant/Tank:T3 came."));
  EXPECT_THAT(verdictOf(Edit::addObject("/Plant/Tank:T1")),
              ElementsAre("Refused: The name \"T1\" is taken. Nearest: add /Plant/Tank:T1 2."));
  EXPECT_THAT(verdictOf(Edit::addObject("/Plant/Tank")),
              ElementsAre("Refused: Objects \"Tank\" need a name. Nearest: add /Plant/Tank:Tank 1."));
  EXPECT_THAT(verdictOf(Edit::addObject("/Plant/Report:monthly")),
              ElementsAre("Refused: Objects \"Report\" have no name. Nearest: switch on /Plant/Report."));
  EXPECT_THAT(verdictOf(Edit::addObject("/Plant")),
              ElementsAre("Refused: \"/Plant\" is being edited, so it cannot be added, copied, renamed, removed or "
                          "switched."));
}

TEST(SessionEdit, ObjectsThatStandByTheRulesStay) {
  EXPECT_THAT(verdictOf(Edit::deactivateObject("/Plant/Solver")),
              ElementsAre("Refused: The object \"/Plant/Solver\" is required, so it cannot be switched off."));
  EXPECT_THAT(verdictOf(Edit::removeObject("/Plant/Solver")),
              ElementsAre("Refused: The object \"/Plant/Solver\" has no name, so it cannot be removed."));
  EXPECT_THAT(
      verdictOf(Edit::deactivateParam("/Plant/Tank:T2", "Height")),
      ElementsAre("Refused: The parameter \"Height\" in \"/Plant/Tank:T2\" is required, so it cannot be switched "
                  "off."));
  EXPECT_THAT(verdictOf(Edit::setParam("/Plant/Instrument:gauge", "Gain", "3")),
              ElementsAre("Refused: Objects \"Instrument\" in \"/Plant\" are taken from the model as they are."));
}

TEST(SessionEdit, NeverProposesToRemoveAnotherObject) {
  EXPECT_THAT(verdictOf(Edit::removeObject("/Plant/Tank:T9")),
              ElementsAre("Refused: There is no object \"/Plant/Tank:T9\"."));
}

TEST(SessionEdit, SwitchingOffARequiredParameterPutsItsDefaultInForceAndKeepsTheValue) {
  EXPECT_THAT(verdictOf(Edit::deactivateParam("/Plant/Tank:T1", "Height")),
              ElementsAre("Done as step 1: 1 value changed, 1 pair of bounds changed, 1 request waits.",
                          "/Plant/Tank:T1/Height changed from \"3 [m]\" to \"2 [m]\".",
                          "The bounds of /Plant/Tank:T1/Level changed from at most 3 [m] to at most 2 [m].",
                          "/Plant/Tank:T1/Height = \"3 [m]\" waits, because it is switched off."));
}

TEST(SessionEdit, ABatchIsOneStepWithOneEffect) {
  Tanks tanks;
  std::vector<Edit> const edits = {Edit::setParam("/Plant/Solver", "Mode", "Transient"),
                                   Edit::setParam("/Plant/Solver", "Time Step", "0.2"),
                                   Edit::activateObject("/Plant/Ambient")};
  EditResult const result = tanks->edit(edits);
  EXPECT_TRUE(result.applied());
  EXPECT_EQ(tanks->steps().size(), 1U);
  EXPECT_EQ(tanks->lookParam("/Plant/Solver", "Time Step")->value, "0.2");
  EXPECT_TRUE(tanks->lookObject("/Plant/Ambient")->present);
}

TEST(SessionEdit, ABatchWithARefusedEditIsNotMadeAtAll) {
  Tanks tanks;
  std::vector<Edit> const edits = {Edit::setParam("/Plant/Solver", "Mode", "Transient"),
                                   Edit::setParam("/Plant/Solver", "Tme Step", "0.2")};
  EditResult const result = tanks->edit(edits);
  ASSERT_TRUE(result.refused);
  EXPECT_EQ(result.refused->index, 1U);
  EXPECT_EQ(result.refused->edit, edits[1]);
  EXPECT_EQ(result.refused->nearest, Edit::setParam("/Plant/Solver", "Time Step", "0.2"));
  EXPECT_EQ(tanks->lookParam("/Plant/Solver", "Mode")->value, "Steady");
}

TEST(SessionEdit, NoEditsAreNoStep) {
  Tanks tanks;
  EXPECT_TRUE(tanks->edit(std::vector<Edit>()).applied());
  EXPECT_THAT(tanks->steps(), IsEmpty());
}

TEST(SessionEdit, TakesTextsOfAnyLength) {
  Tanks tanks;
  std::string const million(1'000'000, 'x');
  EXPECT_EQ(tanks->edit(Edit::setParam("/Plant", million, "1")).refused->code, RefusalCode::UnknownParameter);
  EXPECT_EQ(tanks->edit(Edit::setParam("/Plant/" + million, "Title", "1")).refused->code, RefusalCode::UnknownObject);
  EXPECT_EQ(tanks->edit(Edit::setParam("/Plant/Tank:T1", "Height", million)).refused->code, RefusalCode::WrongType);
  EXPECT_TRUE(tanks->edit(Edit::setParam("/Plant", "Title", million)).applied());
  EXPECT_LT(sentenceOf(tanks->steps().back()).size(), 300U);
  std::string const tooLong(Session::mostCharacters + 1, 'x');
  EXPECT_EQ(tanks->edit(Edit::setParam("/Plant", "Title", tooLong)).refused->code, RefusalCode::Unreadable);
}

TEST(SessionEdit, AnswersAboutPathsOfManyLevels) {
  Tanks tanks;
  std::string path = "/Plant";
  for (int i = 0; i < 900; ++i) path += "/Deep";
  EXPECT_EQ(tanks->edit(Edit::setParam(path, "Title", "1")).refused->code, RefusalCode::UnknownObject);
  for (int i = 0; i < 100'000; ++i) path += "/Deep";
  EXPECT_EQ(sentenceOf(*tanks->edit(Edit::setParam(path, "Title", "1")).refused),
            "The path has more components than a model can hold.");
  EXPECT_FALSE(tanks->lookParam(path, "Title"));
  EXPECT_FALSE(tanks->lookObject(path));
}

}  // namespace
}  // namespace tarn::session
