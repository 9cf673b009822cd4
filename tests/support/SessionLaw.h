#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/session/Session.h>

#include "support/RandomRuleBase.h"

/// The laws of a session, checked while it goes through random operations under random rules:
///
/// - A refused edit, a trial, an undo with its redo, and an operation that failed leave every answer as it was.
/// - A trial answers what the edit answers.
/// - The effect of an edit is the difference between all answers before and after it, and that of undo its reverse.
/// - At the end, and now and then, every answer is that of a fresh session that makes the steps that remain.
///
///     SessionLawReport report = checkSessionLaw({.firstSeed = 1, .operations = 2000});
///     EXPECT_EQ(report.broken, "");
namespace tarn::test {

/// Everything that the session answers about its state, as text.
[[nodiscard]] std::string answersOf(session::Session const& session);

class SessionLaw {
 public:
  /// The rules and the model come from `rules`, the operations from `operations`.
  SessionLaw(RandomNumbers rules, RandomNumbers operations);

  /// Makes a random operation. Returns how it broke a law, or "".
  [[nodiscard]] std::string step();
  /// Asks why and how about a random item. Returns how the answers contradict the state or change it, or "".
  [[nodiscard]] std::string ask();
  /// Opens a new session of the same rules and model. False if it cannot be opened.
  [[nodiscard]] bool openAnew();
  /// Compares with a fresh session. Returns how they differ, or "".
  [[nodiscard]] std::string compareWithFresh();
  [[nodiscard]] bool hasBytes() const { return random_.hasBytes(); }
  /// The rules, the model and all operations so far.
  [[nodiscard]] std::string text() const;
  /// The model cannot be opened, because a rule throws. There is nothing to check then.
  [[nodiscard]] bool isOpen() const { return opened_.session != nullptr; }

  struct Counts {
    std::size_t applied = 0;
    std::size_t refused = 0;
    std::size_t failedRules = 0;
    std::size_t tried = 0;
    std::size_t undone = 0;
    std::size_t redone = 0;
    std::size_t changing = 0;
    std::size_t waiting = 0;
    std::size_t followed = 0;
    Counts& operator+=(Counts const& other);
  };
  [[nodiscard]] Counts const& counts() const { return counts_; }

 private:
  [[nodiscard]] std::size_t pick(std::size_t n) { return random_() % n; }
  [[nodiscard]] Edit someEdit();
  [[nodiscard]] std::string edit();
  [[nodiscard]] std::string rename();
  [[nodiscard]] std::string tryEdits();
  [[nodiscard]] std::string undo();
  [[nodiscard]] std::string redo();
  [[nodiscard]] session::SessionOptions options() const;

  RandomNumbers random_;
  RandomRuleBase edits_;
  std::unique_ptr<PhysicsData> rules_;
  session::Session::Opened opened_;
  std::size_t quickSteps_;
  /// Whether each step that is in force, or can be redone, follows references.
  std::vector<bool> follows_;
  std::vector<std::string> operations_;
  Counts counts_;
};

struct SessionLawPlan {
  std::uint32_t firstSeed = 1;
  /// The number of operations of all sessions together.
  std::size_t operations = 1000;
  std::size_t operationsOfASession = 30;
};

struct SessionLawReport {
  /// Empty if the laws hold.
  std::string broken;
  std::size_t sessions = 0;
  /// Sessions that ended because a faulty rule answered a question.
  std::size_t faulty = 0;
  SessionLaw::Counts counts;
};

[[nodiscard]] SessionLawReport checkSessionLaw(SessionLawPlan const& plan);

}  // namespace tarn::test
