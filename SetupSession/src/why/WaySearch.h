#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/ModelState.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/session/How.h>
#include <tarn/session/Item.h>
#include <tarn/session/ParamRecord.h>

#include "session/EffectFinder.h"
#include "session/RuledState.h"
#include "why/RelevantEdits.h"

namespace tarn::session {

/// The session that is searched. All must outlive the search.
struct SearchGround {
  ProvisionalTDF& state;
  RuledState const& ruled;
  OfferIndex const& offers;
  RuleReaders const& readers;
  Requests const& requests;
  std::function<Origin(Item const&, std::size_t& step)> originOf;
};

/// Whether a goal is reached in the present state.
[[nodiscard]] bool isReached(RuledState const& state, Goal const& goal);

/// An edit that the rules do not know. Making it only completes what the update before has left for the next one.
[[nodiscard]] Edit emptyEdit(ProvisionalTDF const& state);

/// Searches for the shortest sequences of edits after which a goal is reached. Every edit is made, and everything is
/// taken back.
class WaySearch {
 public:
  struct Found {
    std::vector<Edit> edits;
    bool atNextEdit = false;
  };

  WaySearch(SearchGround const& ground, Goal const& goal, HowOptions const& options);

  /// All sequences of the shortest length that were found, in the order in which they were tried. Throws what a rule
  /// throws that is asked before the first edit; edits whose rules throw lead nowhere.
  [[nodiscard]] std::vector<Found> run();

  [[nodiscard]] std::size_t trials() const noexcept { return trials_; }
  /// Every sequence of edits that have to do with the goal was tried, up to this length.
  [[nodiscard]] std::size_t completedEdits() const noexcept { return completedEdits_; }
  [[nodiscard]] bool isStoppedByTime() const noexcept { return isStoppedByTime_; }
  /// The caller has ended the search. The ways that were found so far are not all.
  [[nodiscard]] bool isCancelled() const noexcept { return isCancelled_; }
  [[nodiscard]] std::vector<Item> const& freeParams() const noexcept { return freeParams_; }

 private:
  using Clock = std::chrono::steady_clock;

  /// A state that was reached, and not the goal.
  struct State {
    std::vector<Edit> edits;
    /// The edits that were tried from it.
    std::vector<Edit> tried;
  };
  class Branch;

  /// Tries edits from every state of the level, and adds the new states to `next`. `editsIn` returns the edits for the
  /// state in force. False when a bound has ended it.
  bool expand(std::vector<State>& level, std::vector<State>& next, std::size_t mostWork,
              std::function<std::vector<Edit>(Branch const&)> const& editsIn);
  void tryEdit(Branch const& from, State const& state, Edit const& edit, std::vector<State>& next);
  void reorder(Found& way);
  [[nodiscard]] std::vector<Edit> candidatesIn(Branch const& branch);
  [[nodiscard]] std::vector<Edit> candidatesNow(Branch const& branch);
  [[nodiscard]] std::vector<Edit> relevantIn(Branch const& branch);
  [[nodiscard]] std::string fingerprint(Branch const& branch) const;
  [[nodiscard]] bool isOverBudget(std::size_t mostWork);
  [[nodiscard]] bool isStopped() const noexcept { return isStoppedByTime_ || isCancelled_; }

  SearchGround const& ground_;
  Goal const& goal_;
  HowOptions const& options_;
  Clock::time_point end_;

  // The state at the start.
  ModelState active_;
  ModelState guide_;
  std::map<Item, bool> decisions_;

  std::optional<RelevantEdits> relevant_;
  /// Values that rules in the way ask of parameters that can have any value.
  std::map<Item, std::set<std::string>> mentioned_;
  std::vector<Item> freeParams_;
  std::unordered_set<std::string> seen_;
  std::vector<Found> found_;
  std::size_t trials_ = 0;
  /// Trials, with those counted more often that touch very many items, and with the search for candidates.
  std::size_t work_ = 0;
  std::size_t completedEdits_ = 0;
  bool isCutOff_ = false;
  bool isStoppedByTime_ = false;
  bool isCancelled_ = false;
};

}  // namespace tarn::session
