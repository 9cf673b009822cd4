#include "edit/ResultText.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "edit/ShownText.h"

namespace tarn::tool {
namespace {

using session::ChoicesChange;
using session::EditResult;
using session::RefusalCode;
using session::Refused;
using session::ValueChange;
using session::Waiting;
using session::WaitingChange;
using session::WaitingReason;

ParamAllowedValues choices(std::vector<std::string> values) {
  ParamAllowedValues allowed;
  allowed.hasAllowedValues = true;
  allowed.allowedValues = std::move(values);
  return allowed;
}

WaitingChange begins(std::string path, std::string name, std::string value, WaitingReason reason,
                     std::string ruleReason = {}) {
  session::Item const item = {std::move(path), std::move(name)};
  return {item, std::nullopt, Waiting{item, std::move(value), reason, std::move(ruleReason), {}}};
}

ResultTextOptions inTheEditor() {
  ResultTextOptions options;
  options.opener = [](std::optional<Section> section) {
    return "effects " + (section ? std::string(sectionWord(*section)) : "all");
  };
  return options;
}

EditResult setTo(std::string path, std::string name, std::string value, std::size_t step = 3) {
  EditResult result;
  result.step = step;
  result.made = {Edit::setParam(std::move(path), std::move(name), std::move(value))};
  return result;
}

TEST(ResultText, SaysOldAndNewValueInTheVerdictAndGroupsTheRestByObject) {
  EditResult result = setTo("/Case/Analysis", "Analysis Type", "Transient");
  result.effect.values = {{"/Case/Analysis", "Analysis Type", "Steady", "Transient"},
                          {"/Case/Analysis", "Length Scale", "2 [m]", std::nullopt},
                          {"/Case/Analysis", "Pseudo Time Step", "3 [s]", std::nullopt},
                          {"/Case/Analysis", "Time Step", std::nullopt, "0.01 [s]"},
                          {"/Case/Analysis", "Total Time", std::nullopt, ""},
                          {"/Case/Solver", "Loops", "1", "10"}};
  result.effect.objectsCreated = {"/Case/Output/Results:all"};
  result.effect.objectsDeleted = {"/Case/Solver/Steady"};
  result.effect.choices = {{"/Case/Solver", "Scheme", choices({"Upwind", "Central"}), choices({"Upwind", "Bounded"})}};
  result.effect.bounds = {{"/Case/Solver", "Loops", {"1", ""}, {"", "100"}}};
  result.effect.defaults = {{"/Case/Solver", "Loops", "1", ""}};
  result.effect.quantities = {{"/Case/Solver", "Limit", "Speed", "Pressure"}};
  result.effect.offersGained = {{"/Case/Analysis", "Start"}, {"/Case/Output/Monitor", std::nullopt}};
  result.effect.offersLost = {{"/Case/Analysis", "Time Step"}, {"/Case/Analysis", "Relaxation"}};
  result.effect.waiting = {begins("/Case/Analysis", "Pseudo Time Step", "3 [s]", WaitingReason::NotAvailable,
                                  "Only a steady case has one.")};

  EXPECT_EQ(resultText(result, inTheEditor()),
            "done 3: /Case/Analysis/Analysis Type: Steady -> Transient\n"
            "  1 waiting, 1 gone, 1 changed, 2 new, 1 new object, 1 object gone, 1 list of choices, 1 default, "
            "1 pair of bounds, 1 quantity type, 2 offers, 1 offer withdrawn\n"
            "! 1 waiting\n"
            "    /Case/Analysis\n"
            "      Pseudo Time Step = 3 [s]   not available now: Only a steady case has one.\n"
            "- 1 gone\n"
            "    /Case/Analysis\n"
            "      Length Scale (was 2 [m])\n"
            "~ 1 changed\n"
            "    /Case/Solver\n"
            "      Loops: 1 -> 10\n"
            "+ 2 new\n"
            "    /Case/Analysis\n"
            "      Time Step = 0.01 [s]\n"
            "      Total Time   needs a value\n"
            "+ 1 new object\n"
            "    /Case/Output/Results:all\n"
            "- 1 object gone\n"
            "    /Case/Solver/Steady\n"
            "~ 1 list of choices\n"
            "    /Case/Solver\n"
            "      Scheme: + Bounded, - Central\n"
            "~ 1 default\n"
            "    /Case/Solver\n"
            "      Loops: 1 -> none\n"
            "~ 1 pair of bounds\n"
            "    /Case/Solver\n"
            "      Loops: at least 1 -> at most 100\n"
            "~ 1 quantity type\n"
            "    /Case/Solver\n"
            "      Limit: Speed -> Pressure\n"
            "+ 2 offers\n"
            "    /Case/Analysis\n"
            "      Start\n"
            "    /Case/Output/Monitor\n"
            "- 1 offer withdrawn\n"
            "    /Case/Analysis\n"
            "      Relaxation\n");
}

/// The flow of 40 pipes became turbulent, and the user's value of one of them waits.
EditResult turbulentPipes() {
  EditResult result = setTo("/Plant", "Flow", "Turbulent");
  for (int i = 0; i < 40; ++i) {
    std::string const pipe = "/Plant/Line:east/Pipe:P" + std::to_string(10 + i);
    result.effect.values.push_back({pipe, "Friction", "Linear", "Quadratic"});
    result.effect.values.push_back({pipe, "Wall", std::nullopt, "Smooth"});
    result.effect.values.push_back({pipe, "Roughness", std::nullopt, i == 7 ? "2 [mm]" : "1 [mm]"});
    if (i < 3) result.effect.waiting.push_back(begins(pipe, "Slope", "2", WaitingReason::ValueNotAllowed));
  }
  return result;
}

TEST(ResultText, FoldsEqualChangesOfManyObjectsButNotAFewValuesThatWait) {
  EXPECT_EQ(resultText(turbulentPipes(), inTheEditor()),
            "done 3: /Plant/Flow = Turbulent\n"
            "  3 waiting, 40 changed, 80 new\n"
            "! 3 waiting\n"
            "    /Plant/Line:east/Pipe:P10\n"
            "      Slope = 2   the value is not allowed now\n"
            "    /Plant/Line:east/Pipe:P11\n"
            "      Slope = 2   the value is not allowed now\n"
            "    /Plant/Line:east/Pipe:P12\n"
            "      Slope = 2   the value is not allowed now\n"
            "~ 40 changed\n"
            "    /Plant/Line:east/Pipe:*  (40 objects)\n"
            "      Friction: Linear -> Quadratic\n"
            "+ 80 new\n"
            "    /Plant/Line:east/Pipe:*  (40 objects)\n"
            "      Wall = Smooth\n"
            "    /Plant/Line:east/Pipe:*  (39 objects)\n"
            "      Roughness = 1 [mm]\n"
            "    /Plant/Line:east/Pipe:P17\n"
            "      Roughness = 2 [mm]\n"
            "\"effects all\" shows every change\n");
}

TEST(ResultText, AFoldOpensToEachOfItsChanges) {
  ResultTextOptions options = inTheEditor();
  options.only = Section::Changed;
  std::string const text = resultText(turbulentPipes(), options);
  EXPECT_TRUE(
      text.starts_with("~ 40 changed\n"
                       "    /Plant/Line:east/Pipe:P10\n"
                       "      Friction: Linear -> Quadratic\n"
                       "    /Plant/Line:east/Pipe:P11\n"))
      << text;
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 81);
  options.only = Section::Gone;
  EXPECT_EQ(resultText(turbulentPipes(), options), "nothing went\n");
}

TEST(ResultText, CutsALongSectionOffAndSaysHowToSeeTheRest) {
  EditResult result = setTo("/Case", "Heat", "yes");
  for (char c = 'a'; c <= 'z'; ++c) result.effect.values.push_back({"/Case/Solver", std::string(1, c), {}, "1"});
  std::string const text = resultText(result, inTheEditor());
  EXPECT_EQ(text.substr(text.find("      k")),
            "      k = 1\n"
            "    ... and 15 more; \"effects new\" lists them\n"
            "\"effects all\" shows every change\n");
  ResultTextOptions open;
  open.isOpen = true;
  EXPECT_NE(resultText(result, open).find("      z = 1\n"), std::string::npos);
  EXPECT_NE(resultText(result).find("    ... and 15 more\n"), std::string::npos) << "no command that nobody can type";
}

TEST(ResultText, NamesALostValueOfTheUserWhereOthersAreFolded) {
  EditResult result;
  result.step = 1;
  result.made = {Edit::removeObject("/Plant/Line:east")};
  for (char c = 'a'; c <= 'e'; ++c) {
    result.effect.values.push_back({std::string("/Plant/Line:east/Pipe:") + c, "Wall", "Smooth", std::nullopt});
  }
  ResultTextOptions options;
  options.own = {{"/Plant/Line:east/Pipe:c", "Wall"}};
  EXPECT_EQ(resultText(result, options),
            "done 1: remove /Plant/Line:east\n"
            "  5 gone\n"
            "- 5 gone\n"
            "    /Plant/Line:east/Pipe:*  (4 objects)\n"
            "      Wall (was Smooth)\n"
            "    /Plant/Line:east/Pipe:c\n"
            "      Wall (was Smooth, set by you)\n");
}

TEST(ResultText, AValueThatIsKeptButNotInForceDoesNotLookDone) {
  EditResult result = setTo("/Case/Analysis", "Time Step", "0.1 [s]", 4);
  result.effect.waiting = {
      begins("/Case/Analysis", "Time Step", "0.1 [s]", WaitingReason::NotAvailable, "Only a transient case has one")};
  EXPECT_EQ(resultText(result),
            "done 4: /Case/Analysis/Time Step = 0.1 [s] waits: not available now: Only a transient case has one\n");
}

TEST(ResultText, SaysThatAnEditChangedNothing) {
  EXPECT_EQ(resultText(setTo("/Case", "Heat", "yes")), "done 3: /Case/Heat = yes; nothing else changes\n");
}

TEST(ResultText, SaysWhatWasConvertedAndWhatFollowed) {
  EditResult result = setTo("/Case/Inlet", "Speed", "0.025 [m s^-1]");
  result.conversions = {{0, {"/Case/Inlet", "Speed"}, "25 mm s^-1", "0.025 [m s^-1]"}};
  result.effect.values = {{"/Case/Inlet", "Speed", "1 [m s^-1]", "0.025 [m s^-1]"}};
  EXPECT_EQ(resultText(result),
            "done 3: /Case/Inlet/Speed: 1 [m s^-1] -> 0.025 [m s^-1]\n"
            "  converted: 25 mm s^-1 is 0.025 [m s^-1] of Speed\n");

  EditResult renamed;
  renamed.step = 9;
  renamed.made = {Edit::renameObject("/Case/Material:Water", "Sea"),
                  Edit::setParam("/Case/Domain:a", "Material", "Sea")};
  renamed.followed = {{{"/Case/Domain:a", "Material"}, "Water", "Sea"}};
  EXPECT_EQ(resultText(renamed),
            "done 9: rename /Case/Material:Water = Sea; nothing else changes\n"
            "  followed: /Case/Domain:a/Material: Water -> Sea\n");
}

TEST(ResultText, ARenamingIsNotShownAsItemsThatWentAndCame) {
  EditResult result;
  result.step = 2;
  result.made = {Edit::renameObject("/Case/Material:Air", "Dry Air")};
  result.effect.values = {{"/Case/Material:Air", "Density", "1.2", std::nullopt},
                          {"/Case/Material:Air", "Phase", "Gas", std::nullopt},
                          {"/Case/Material:Air/Law", "Constant", "120", std::nullopt},
                          {"/Case/Material:Dry Air", "Density", std::nullopt, "1.2"},
                          {"/Case/Material:Dry Air", "Phase", std::nullopt, "Liquid"},
                          {"/Case/Material:Dry Air/Law", "Constant", std::nullopt, "120"}};
  result.effect.objectsCreated = {"/Case/Material:Dry Air", "/Case/Material:Dry Air/Law"};
  result.effect.objectsDeleted = {"/Case/Material:Air", "/Case/Material:Air/Law"};
  result.effect.offersGained = {{"/Case/Material:Dry Air", "Colour"}};
  result.effect.offersLost = {{"/Case/Material:Air", "Colour"}};
  WaitingChange const waits = begins("/Case/Material:Dry Air", "Limit", "3", WaitingReason::NotAvailable);
  session::Item const before = {"/Case/Material:Air", "Limit"};
  result.effect.waiting = {{before, Waiting{before, "3", WaitingReason::NotAvailable, {}, {}}, std::nullopt}, waits};
  EXPECT_EQ(resultText(result),
            "done 2: rename /Case/Material:Air = Dry Air\n"
            "  1 gone, 1 new\n"
            "- 1 gone\n"
            "    /Case/Material:Air\n"
            "      Phase (was Gas)\n"
            "+ 1 new\n"
            "    /Case/Material:Dry Air\n"
            "      Phase = Liquid\n");
}

TEST(ResultText, ARefusalSaysWhatIsPossibleAndNamesTheNearestCommand) {
  EditResult result;
  result.refused = Refused{RefusalCode::ValueNotAllowed,
                           0,
                           Edit::setParam("/Case", "Flow", "turbulant"),
                           "The flow cannot be \"turbulant\".",
                           Edit::setParam("/Case", "Flow", "Turbulent"),
                           SharedStrings{"Laminar", "Turbulent"}};
  EXPECT_EQ(resultText(result),
            "refused: The flow cannot be \"turbulant\". Nothing has changed.\n"
            "  possible: Laminar, Turbulent\n"
            "  nearest: set /Case/Flow = Turbulent\n");
}

TEST(ResultText, ARefusalCountsThePathsThatAreNotListed) {
  EditResult result;
  result.refused.emplace();
  result.refused->code = RefusalCode::UnknownParameter;
  result.refused->sentence = "The rules know no parameter \"Bore\" in \"/Case\".";
  result.refused->possible = SharedStrings{"/Case/Pipe:a/Bore", "/Case/Pipe:b/Bore"};
  result.refused->possibleCount = 25;
  EXPECT_EQ(resultText(result),
            "refused: The rules know no parameter \"Bore\" in \"/Case\". Nothing has changed.\n"
            "  possible: /Case/Pipe:a/Bore, /Case/Pipe:b/Bore and 23 more\n");
}

TEST(ResultText, ShowsControlCharactersAsTheirBytes) {
  EditResult result = setTo("/Case/Domain:a\x1b[2J", "Remark", "x");
  result.effect.values = {{"/Case/Domain:a\x1b[2J", "Remark", "old\r", "a\u202e\tb"}};
  EXPECT_EQ(resultText(result), "done 3: /Case/Domain:a\\x1B[2J/Remark: old\\x0D -> a\\xE2\\x80\\xAE\\x09b\n");
}

TEST(ResultText, ColoursTheVerdictAndTheMarksOnly) {
  EditResult result = setTo("/Case", "Heat", "yes");
  result.effect.values = {{"/Case", "Heat", "no", "yes"}, {"/Case/Solver", "Energy", std::nullopt, "1"}};
  ResultTextOptions options;
  options.look.colour = true;
  EXPECT_EQ(resultText(result, options),
            "\x1b[32mdone 3\x1b[0m: /Case/Heat: no -> yes\n"
            "  1 new\n"
            "\x1b[32m+ 1 new\x1b[0m\n"
            "    /Case/Solver\n"
            "      Energy = 1\n");
}

TEST(ResultText, ShortensValuesToTheWidthOfTheTerminal) {
  EditResult result = setTo("/Case", "Title", std::string(300, 'y'));
  result.effect.values = {{"/Case", "Title", std::string(300, 'x'), std::string(300, 'y')}};
  ResultTextOptions options;
  options.look.width = 60;
  EXPECT_EQ(resultText(result, options),
            "done 3: /Case/Title: " + std::string(17, 'x') + "... -> " + std::string(17, 'y') + "...\n");
}

TEST(ResultText, KeepsTheVerdictOnTheScreenAndShowsTheLastSectionsAsTitles) {
  EditResult result = setTo("/Case", "Heat", "yes");
  result.effect.values = {{"/Case", "Heat", "no", "yes"}, {"/Case/Solver", "Energy", std::nullopt, "1"}};
  result.effect.defaults = {{"/Case/Solver", "Loops", "1", "2"}, {"/Case/Solver", "Steps", "1", "2"}};
  result.effect.offersGained = {{"/Case/Solver", "Start"}};
  ResultTextOptions options = inTheEditor();
  options.look.rows = 10;
  EXPECT_EQ(resultText(result, options),
            "done 3: /Case/Heat: no -> yes\n"
            "  1 new, 2 defaults, 1 offer\n"
            "+ 1 new\n"
            "    /Case/Solver\n"
            "      Energy = 1\n"
            "~ 2 defaults   \"effects defaults\" lists them\n"
            "+ 1 offer   \"effects offers\" lists it\n"
            "\"effects all\" shows every change\n");
}

TEST(ResultText, TenThousandChangesAreShownInShortTime) {
  EditResult result = setTo("/Case", "Heat", "yes");
  for (int i = 0; i < 10'000; ++i) {
    std::string const path = "/Case/Domain:d" + std::to_string(100'000 + i);
    result.effect.values.push_back({path, "Heat", "yes", std::nullopt});
    result.effect.waiting.push_back(begins(path, "Heat", "yes", WaitingReason::NotAvailable));
    result.effect.offersLost.push_back({path, "Heat"});
  }
  EXPECT_EQ(resultText(result, inTheEditor()),
            "done 3: /Case/Heat = yes\n"
            "  10000 waiting, 10000 offers withdrawn\n"
            "! 10000 waiting\n"
            "    /Case/Domain:*  (10000 objects)\n"
            "      Heat = yes   not available now\n"
            "- 10000 offers withdrawn\n"
            "    /Case/Domain:*  (10000 objects)\n"
            "      Heat\n"
            "\"effects all\" shows every change\n");
}

TEST(ResultText, ValuesThatTheUserHasSetAreNotFoldedWhenTheyWait) {
  EditResult result = setTo("/Case", "Heat", "yes");
  ResultTextOptions options = inTheEditor();
  for (int i = 10; i < 40; ++i) {
    std::string const path = "/Case/Domain:d" + std::to_string(i);
    result.effect.values.push_back({path, "Heat", "yes", std::nullopt});
    result.effect.waiting.push_back(begins(path, "Heat", "yes", WaitingReason::NotAvailable));
    if (i == 20) options.own.insert({path, "Heat"});
  }
  EXPECT_EQ(resultText(result, options),
            "done 3: /Case/Heat = yes\n"
            "  30 waiting\n"
            "! 30 waiting\n"
            "    /Case/Domain:*  (29 objects)\n"
            "      Heat = yes   not available now\n"
            "    /Case/Domain:d20\n"
            "      Heat = yes   not available now\n"
            "\"effects all\" shows every change\n");
}

TEST(ShownText, HarmlessTextIsUnchangedAndOtherBytesAreEscaped) {
  EXPECT_EQ(harmless("Größe 水 \"x\" \\"), "Größe 水 \"x\" \\");
  EXPECT_EQ(harmless(std::string_view("\0\x07\x1b\x7f\xc2\x9b\xff\xed\xa0\x80", 10)),
            "\\x00\\x07\\x1B\\x7F\\xC2\\x9B\\xFF\\xED\\xA0\\x80");
}

TEST(ShownText, ALongTextIsCutBetweenCharacters) {
  EXPECT_EQ(shortened("Größenordnung", 8), "Größe...");
  EXPECT_EQ(shortened("Größe", 5), "Größe");
  EXPECT_EQ(charactersOf(shortened(std::string(1'000'000, 'x'))), mostShown);
}

}  // namespace
}  // namespace tarn::tool
