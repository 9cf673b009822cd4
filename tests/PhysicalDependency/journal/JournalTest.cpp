#include "journal/Journal.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace tarn {
namespace {

/// A store of the plainest kind: a text, each write of which can be undone.
class Text final : public Journal::Participant {
 public:
  explicit Text(Journal& journal) : journal_(journal) { attachTo(journal); }

  void append(char letter) {
    if (journal_.isRecording()) journal_.add([this]() noexcept { text_.pop_back(); });
    text_ += letter;
  }
  void capitalise() noexcept { isCapital_ = true; }
  void noteAtMark(Journal& journal) override {
    journal.add([this, was = isCapital_]() noexcept { isCapital_ = was; });
  }
  [[nodiscard]] std::string text() const { return isCapital_ ? "capital " + text_ : text_; }

 private:
  Journal& journal_;
  std::string text_;
  bool isCapital_ = false;
};

TEST(Journal, RecordsOnlyWhileAMarkIsOpen) {
  Journal journal;
  EXPECT_FALSE(journal.isRecording());
  Journal::Mark const outer = journal.mark();
  Journal::Mark const inner = journal.mark();
  journal.release(inner);
  EXPECT_TRUE(journal.isRecording());
  journal.rollback(outer);
  EXPECT_FALSE(journal.isRecording());
}

TEST(Journal, ARollbackUndoesTheLastStepFirst) {
  Journal journal;
  std::string undone;
  Journal::Mark const mark = journal.mark();
  for (char const letter : {'a', 'b', 'c'}) journal.add([&undone, letter]() noexcept { undone += letter; });
  journal.rollback(mark);
  EXPECT_EQ(undone, "cba");
}

TEST(Journal, ARollbackToAnInnerMarkKeepsWhatCameBeforeIt) {
  Journal journal;
  Text text(journal);
  Journal::Mark const outer = journal.mark();
  text.append('a');
  Journal::Mark const inner = journal.mark();
  text.append('b');
  journal.rollback(inner);
  EXPECT_EQ(text.text(), "a");
  text.append('c');
  journal.rollback(outer);
  EXPECT_EQ(text.text(), "");
}

TEST(Journal, ARollbackToAnOuterMarkUndoesWhatWasReleasedInside) {
  Journal journal;
  Text text(journal);
  Journal::Mark const outer = journal.mark();
  Journal::Mark const inner = journal.mark();
  text.append('a');
  journal.release(inner);
  text.append('b');
  journal.rollback(outer);
  EXPECT_EQ(text.text(), "");
}

TEST(Journal, ARollbackToAnOuterMarkAlsoEndsTheMarksInside) {
  Journal journal;
  Journal::Mark const outer = journal.mark();
  (void)journal.mark();
  journal.rollback(outer);
  EXPECT_FALSE(journal.isRecording());
}

TEST(Journal, ReleasingAnOuterMarkAlsoEndsTheMarksInside) {
  Journal journal;
  Journal::Mark const outer = journal.mark();
  (void)journal.mark();
  journal.release(outer);
  EXPECT_FALSE(journal.isRecording());
}

TEST(Journal, ReleasingTheOutermostMarkForgetsTheSteps) {
  Journal journal;
  auto const kept = std::make_shared<int>(0);
  Journal::Mark const mark = journal.mark();
  journal.add([kept]() noexcept {});
  EXPECT_EQ(kept.use_count(), 2);
  journal.release(mark);
  EXPECT_EQ(kept.use_count(), 1);
}

TEST(Journal, AnUndoneStepIsDestroyed) {
  Journal journal;
  auto const kept = std::make_shared<int>(0);
  Journal::Mark const mark = journal.mark();
  journal.add([kept]() noexcept {});
  journal.rollback(mark);
  EXPECT_EQ(kept.use_count(), 1);
}

TEST(Journal, TheDestructorForgetsTheStepsAndUndoesNothing) {
  auto const kept = std::make_shared<int>(0);
  {
    Journal journal;
    (void)journal.mark();
    journal.add([kept]() noexcept { ++*kept; });
  }
  EXPECT_EQ(kept.use_count(), 1);
  EXPECT_EQ(*kept, 0);
}

TEST(Journal, AParticipantNotesAtEachMarkWhatItsWritesDoNotRecord) {
  Journal journal;
  Text text(journal);
  Journal::Mark const outer = journal.mark();
  text.append('a');
  Journal::Mark const inner = journal.mark();
  text.capitalise();
  journal.rollback(inner);
  EXPECT_EQ(text.text(), "a");
  text.capitalise();
  journal.rollback(outer);
  EXPECT_EQ(text.text(), "");
}

TEST(Journal, AParticipantThatIsGoneIsNotAskedAnyMore) {
  Journal journal;
  { Text const text(journal); }
  Journal::Mark const mark = journal.mark();
  journal.rollback(mark);
}

TEST(Journal, AParticipantMayOutliveIt) {
  auto journal = std::make_unique<Journal>();
  Text const text(*journal);
  journal.reset();
  EXPECT_EQ(text.text(), "");
}

TEST(Journal, APreparedStepCountsOnceItIsKept) {
  Journal journal;
  std::string undone;
  Journal::Mark const mark = journal.mark();
  auto kept = journal.prepare([&undone]() noexcept { undone += "kept"; });
  {
    auto const dropped = journal.prepare([&undone]() noexcept { undone += "dropped"; });
  }
  journal.keep(std::move(kept));
  journal.rollback(mark);
  EXPECT_EQ(undone, "kept");
}

TEST(Journal, AHalfDoneOperationIsTakenBackToAPosition) {
  Journal journal;
  Text text(journal);
  Journal::Mark const mark = journal.mark();
  text.append('a');
  Journal::Position const before = journal.position();
  text.append('b');
  journal.undoTo(before);
  EXPECT_EQ(text.text(), "a");
  EXPECT_TRUE(journal.isRecording());
  journal.rollback(mark);
  EXPECT_EQ(text.text(), "");
}

TEST(Journal, AMillionStepsAreUndoneAndForgotten) {
  Journal journal;
  int steps = 0;
  auto const addMany = [&] {
    Journal::Mark const mark = journal.mark();
    for (; steps < 1'000'000; ++steps) journal.add([&steps]() noexcept { --steps; });
    return mark;
  };
  journal.rollback(addMany());
  EXPECT_EQ(steps, 0);
  journal.release(addMany());
  EXPECT_EQ(steps, 1'000'000);
}

}  // namespace
}  // namespace tarn
