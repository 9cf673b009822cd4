#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <tarn/BetaLoggingController.h>
#include <tarn/ModelTDF.h>
#include <tarn/PhysicsData.h>
#include <tarn/ProvisionalTDF.h>

#include "support/FullWalks.h"
#include "support/RandomRuleBase.h"

/// The law that an update which visits only what an edit concerns does exactly what a walk of everything does. Two
/// states go through one session, one each way, and everything that they show, publish and keep is compared after every
/// step. After a rollback they also show what they showed at the mark, and at the end what a third state shows that
/// never made the steps that were taken back.
///
///     EqualWalksReport report = checkEqualWalks({.firstSeed = 1, .steps = 5000});
///     EXPECT_EQ(report.broken, "");
///
/// When the law is broken, the session is made as short as possible and printed with its rules, its models and the
/// first getter that differs.
namespace tarn::test {

/// The first of all getters, trees and printed texts in which the two states differ, with both contents; "" if there
/// is none.
[[nodiscard]] std::string firstDifference(ProvisionalTDF const& a, ProvisionalTDF const& b);

/// Lets one allocation of an operation fail, counted from 0. Returns whether the failure came out of the operation as
/// an exception.
using FailAllocation = std::function<bool(std::size_t allocation, std::function<void()> const& operation)>;

struct Session {
  SessionStart start;
  std::vector<SessionStep> steps;

  [[nodiscard]] std::string text() const;
};

/// Two states in one session.
///
/// An allocation that fails stops both states at the same place only if both work alike. So in a session with such a
/// step, both visit only what is concerned until the failure, and the second walks everything from then on.
class EqualWalks {
 public:
  /// `failAllocation` may be null; steps with a failing allocation then are steps like others. `willFail` says that
  /// there will be such a step.
  EqualWalks(SessionStart const& start, FailAllocation failAllocation, bool willFail);

  /// How the states differ after the start, or "".
  [[nodiscard]] std::string const& brokenByStart() const { return brokenByStart_; }

  /// Makes the step in both states. Returns how they differ after it, or "".
  [[nodiscard]] std::string make(SessionStep const& step);

  /// To be called after the last step. Returns how the first state differs from one that went through the same session
  /// without the steps that were rolled back, or "".
  [[nodiscard]] std::string brokenAtEnd() const;

  /// Makes an edit in the first state only, to test the comparison.
  void makeInFirstOnly(Edit const& edit) { (void)first_.state.apply(edit); }
  [[nodiscard]] std::string difference() const { return firstDifference(first_.state, second_.state); }

  /// For the random choice of the next step.
  [[nodiscard]] ProvisionalTDF const& state() const { return first_.state; }
  /// The two states cannot be compared any longer, because an allocation failed in one of them only.
  [[nodiscard]] bool isOver() const { return isOver_; }

  [[nodiscard]] std::size_t refused() const { return refused_; }
  [[nodiscard]] std::size_t thrown() const { return thrown_; }
  [[nodiscard]] std::size_t failed() const { return failed_; }
  [[nodiscard]] std::size_t rolledBack() const { return rolledBack_; }

 private:
  struct Side {
    explicit Side(SessionStart const& start);
    [[nodiscard]] std::string make(SessionStep const& step);
    void replaceBase(ModelState const& base);

    std::unique_ptr<PhysicsData> rules;
    BetaLoggingController messages;
    ReadingModifier modifier;
    bool baseIsTree;
    /// All so far: a rollback may bring one back.
    std::vector<std::shared_ptr<ModelTDF const>> bases;
    ProvisionalTDF state;
  };

  struct OpenMark {
    ProvisionalTDF::Mark ofFirst;
    ProvisionalTDF::Mark ofSecond;
    std::string shown;
    std::size_t kept;
    bool isIncomplete;
  };
  [[nodiscard]] std::string endOrSetMark(SessionStep const& step);
  void endInnerMarks();
  [[nodiscard]] std::string differenceAfter(std::string const& ofFirst, std::string const& ofSecond);

  Side first_;
  Side second_;
  FailAllocation failAllocation_;
  std::string brokenByStart_;
  bool isOver_ = false;
  std::size_t refused_ = 0;
  std::size_t thrown_ = 0;
  std::size_t failed_ = 0;

  std::vector<OpenMark> marks_;
  std::size_t rolledBack_ = 0;
  /// The steps that no rollback has taken back, from the start on.
  SessionStart start_;
  std::vector<SessionStep> kept_;
  /// The last update broke off, so its lists are of no use.
  bool isIncomplete_ = false;
};

/// How a session breaks the law, or "".
[[nodiscard]] std::string brokenBy(Session const& session, FailAllocation const& failAllocation);

/// A session that breaks the law as well, with fewer steps and rules. Stops after some thousand trials.
[[nodiscard]] Session shortened(Session session, FailAllocation const& failAllocation);

/// The full text of a broken law: the difference, and the shortened session.
[[nodiscard]] std::string explained(Session const& session, FailAllocation const& failAllocation);

struct EqualWalksPlan {
  std::uint32_t firstSeed = 1;
  /// The number of steps of all sessions together. Each seed is a session of up to `stepsOfASession`.
  std::size_t steps = 1000;
  std::size_t stepsOfASession = 40;
  FailAllocation failAllocation = nullptr;
  /// Called now and then with the last seed and the number of steps so far.
  std::function<void(std::uint32_t seed, std::size_t steps)> progress = nullptr;
};

struct EqualWalksReport {
  /// Empty if the law holds.
  std::string broken;
  std::size_t sessions = 0;
  std::size_t steps = 0;
  std::size_t refused = 0;
  std::size_t thrown = 0;
  std::size_t failedAllocations = 0;
  std::size_t rolledBack = 0;
  /// Steps after which the change lists were not empty.
  std::size_t changing = 0;
  /// Sessions that ended early because an allocation failed in one state only.
  std::size_t incomparable = 0;
};

[[nodiscard]] EqualWalksReport checkEqualWalks(EqualWalksPlan const& plan);

}  // namespace tarn::test
