#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include <tarn/session/Sentences.h>
#include <tarn/session/Session.h>

#include "SetupSession/session/TankCase.h"
#include "support/SessionLaw.h"

namespace tarn::session {
namespace {

using tarn::test::answersOf;
using test::Tanks;
using testing::ElementsAre;
using testing::IsEmpty;

Edit const transient = Edit::setParam("/Plant/Solver", "Mode", "Transient");

TEST(SessionHistory, ATrialAnswersWhatTheEditAnswersAndChangesNothing) {
  Tanks tanks;
  std::string const before = answersOf(*tanks);
  EditResult tried = tanks->tryEdit(transient);
  EXPECT_EQ(answersOf(*tanks), before);
  EXPECT_EQ(tried.step, 0U);
  tried.step = 1;
  EXPECT_EQ(tried, tanks->edit(transient));
}

TEST(SessionHistory, ATrialWithFindingsReportsThoseThatWouldComeAndGo) {
  Tanks tanks("/Plant/Tank:T1/Height=-1 [m]\n/Plant/Pipe:P1/From=T1\n");
  std::vector<Edit> const edits = {Edit::setParam("/Plant/Tank:T1", "Height", "4 [m]"),
                                   Edit::setParam("/Plant/Tank:T1", "Level", "5 [m]")};
  TryResult const tried = tanks->tryWithFindings(edits);
  ASSERT_TRUE(tried.result.applied());
  ASSERT_EQ(tried.findingsGained.size(), 1U);
  EXPECT_EQ(
      tried.findingsGained[0].message,
      "The parameter \"Level\" in the object \"/Plant/Tank:T1\" has the value \"5 [m]\", which is above its upper "
      "bound 4 [m].");
  ASSERT_EQ(tried.findingsLost.size(), 2U);
  EXPECT_EQ(tried.findingsLost[0].message,
            "The parameter \"Height\" in the object \"/Plant/Tank:T1\" has the value \"-1 [m]\", which is below its "
            "lower bound 0 [m].");
  EXPECT_EQ(tanks->review().list.size(), 2U);
}

TEST(SessionHistory, TheReviewIsThatOfTheStateAfterEachEditAndUndo) {
  Tanks tanks;
  std::size_t const before = tanks->review().list.size();
  ASSERT_TRUE(tanks->edit(Edit::setParam("/Plant/Tank:T1", "Height", "-1 [m]")).applied());
  EXPECT_GT(tanks->review().list.size(), before);
  ASSERT_TRUE(tanks->undo());
  EXPECT_EQ(tanks->review().list.size(), before);
}

TEST(SessionHistory, AConversionHasTheIndexOfItsEdit) {
  Tanks tanks;
  std::vector<Edit> const edits = {Edit::setParam("/Plant", "Title", "Works"),
                                   Edit::setParam("/Plant/Tank:T1", "Height", "250 cm")};
  EditResult const result = tanks->edit(edits);
  ASSERT_EQ(result.conversions.size(), 1);
  EXPECT_EQ(result.conversions.front().index, 1);
}

TEST(SessionHistory, UndoTakesBackTheLastStepAndRedoMakesItAgain) {
  Tanks tanks;
  EXPECT_FALSE(tanks->undo());
  EXPECT_FALSE(tanks->redo());
  std::string const opened = answersOf(*tanks);
  EditResult const done = tanks->edit(transient);
  std::string const changed = answersOf(*tanks);

  auto const undone = tanks->undo();
  ASSERT_TRUE(undone);
  EXPECT_EQ(undone->made, done.made);
  EXPECT_EQ(undone->effect, done.effect.reversed());
  EXPECT_EQ(answersOf(*tanks), opened);
  EXPECT_EQ(tanks->undoneSteps(), 1U);

  EXPECT_EQ(tanks->redo(), done);
  EXPECT_EQ(answersOf(*tanks), changed);
  EXPECT_FALSE(tanks->redo());
}

TEST(SessionHistory, AnEditForgetsTheStepsThatWereUndoneAndARefusedOneDoesNot) {
  Tanks tanks;
  (void)tanks->edit(transient);
  (void)tanks->undo();
  EXPECT_FALSE(tanks->edit(Edit::setParam("/Plant", "Titel", "x")).applied());
  EXPECT_EQ(tanks->undoneSteps(), 1U);
  EXPECT_TRUE(tanks->edit(Edit::setParam("/Plant", "Title", "x")).applied());
  EXPECT_EQ(tanks->undoneSteps(), 0U);
  EXPECT_FALSE(tanks->redo());
}

TEST(SessionHistory, UndoesMoreStepsThanTheWaysBackThatAreKept) {
  for (std::size_t const quickSteps : {0U, 1U, 3U, 100U}) {
    SessionOptions options;
    options.quickSteps = quickSteps;
    Tanks tanks(test::tankModel, options);
    std::vector<std::string> answers;
    for (int i = 0; i < 10; ++i) {
      answers.push_back(answersOf(*tanks));
      std::string const mode = i % 2 == 0 ? "Transient" : "Steady";
      ASSERT_TRUE(tanks->edit(Edit::setParam("/Plant/Solver", "Mode", mode)).applied());
    }
    while (!answers.empty()) {
      ASSERT_TRUE(tanks->undo());
      ASSERT_EQ(answersOf(*tanks), answers.back()) << quickSteps << " ways back, step " << answers.size();
      answers.pop_back();
    }
    EXPECT_EQ(tanks->undoneSteps(), 10U);
    while (tanks->redo()) {
    }
    EXPECT_EQ(tanks->lookParam("/Plant/Solver", "Mode")->value, "Steady");
  }
}

TEST(SessionHistory, DropsTheWaysBackWhenTheirEffectsAreTooLarge) {
  SessionOptions options;
  options.quickChanges = 20;
  Tanks tanks(test::tankModel, options);
  std::string const opened = answersOf(*tanks);
  (void)tanks->edit(transient);
  (void)tanks->edit(Edit::setParam("/Plant/Solver", "Mode", "Steady"));
  (void)tanks->undo();
  (void)tanks->undo();
  EXPECT_EQ(answersOf(*tanks), opened);
}

TEST(SessionHistory, RenamingMovesWhatWaitsAndWhatIsSwitchedOff) {
  Tanks tanks;
  (void)tanks->edit(transient);  // the set level of T1 waits now
  (void)tanks->edit(Edit::deactivateParam("/Plant/Tank:T1", "Height"));
  EXPECT_TRUE(tanks->edit(Edit::renameObject("/Plant/Tank:T1", "Main")).applied());
  EXPECT_EQ(tanks->lookParam("/Plant/Tank:Main", "Set Level")->waiting->value, "1.5 [m]");
  EXPECT_EQ(tanks->lookParam("/Plant/Tank:Main", "Height")->waiting->reason, WaitingReason::SwitchedOff);
  EXPECT_EQ(tanks->lookParam("/Plant/Tank:Main", "Height")->value, "2 [m]");
}

TEST(SessionHistory, RenamingWithReferencesChangesTheValuesThatNameTheObject) {
  Tanks tanks;
  EditResult const result = tanks->renameFollowed("/Plant/Tank:T1", "Main");
  std::vector<std::string> followed;
  for (FollowedReference const& reference : result.followed) followed.push_back(sentenceOf(reference));
  EXPECT_THAT(followed, ElementsAre("/Plant/Pipe:P1/From follows the new name, from \"T1\" to \"Main\".",
                                    "/Plant/Pipe:P1/Through follows the new name, from \"T1,T2\" to \"Main,T2\"."));
  EXPECT_EQ(tanks->lookParam("/Plant/Pipe:P1", "Through")->value, "Main,T2");
  EXPECT_EQ(tanks->steps().size(), 1U);
  (void)tanks->undo();
  EXPECT_EQ(tanks->lookParam("/Plant/Pipe:P1", "From")->value, "T1");
}

TEST(SessionHistory, ReferencesFollowARenamingAmongOtherEditsAndInATrial) {
  Tanks tanks;
  std::vector<Edit> const edits = {Edit::renameObject("/Plant/Tank:T1", "Main"),
                                   Edit::setParam("/Plant/Tank:Main", "Height", "4 [m]")};
  EditResult const tried = tanks->tryEdits(edits, References::Follow);
  EXPECT_EQ(tanks->tryWithFindings(edits, References::Follow).result, tried);
  EditResult result = tanks->edit(edits, References::Follow);
  ASSERT_EQ(result.followed.size(), 2U);
  EXPECT_EQ(sentenceOf(result.followed[0]), "/Plant/Pipe:P1/From follows the new name, from \"T1\" to \"Main\".");
  result.step = 0;
  EXPECT_EQ(result, tried);
  EXPECT_EQ(tanks->steps().size(), 1U);
}

TEST(SessionHistory, RenamingWithoutReferencesLeavesThemWaiting) {
  Tanks tanks;
  EditResult const result = tanks->edit(Edit::renameObject("/Plant/Tank:T1", "Main"));
  EXPECT_THAT(result.followed, IsEmpty());
  EXPECT_THAT(sentencesOf(result.effect),
              testing::Contains("/Plant/Pipe:P1/From = \"T1\" waits, because the value is not allowed now."));
}

TEST(SessionHistory, ANameThatAnotherObjectHasIsNotFollowed) {
  // A title is a text of its own, even if it is the name of a tank.
  Tanks tanks;
  (void)tanks->edit(Edit::setParam("/Plant", "Title", "T1"));
  (void)tanks->renameFollowed("/Plant/Tank:T1", "Main");
  EXPECT_EQ(tanks->lookParam("/Plant", "Title")->value, "T1");
}

}  // namespace
}  // namespace tarn::session
