#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/Export.h>
#include <tarn/session/EditResult.h>
#include <tarn/session/Finding.h>
#include <tarn/session/Item.h>
#include <tarn/session/Proof.h>
#include <tarn/session/Refused.h>

namespace tarn::session {

/// The state to reach: the item is present, or the parameter has the value. The value is read as that of an edit: "25
/// [mm]" is reached by "0.025 [m]", and without units the first units of the quantity type are meant.
struct TARN_EXPORT Goal {
  Item item;
  std::optional<std::string> value;
};

/// The bounds of a search.
struct TARN_EXPORT HowOptions {
  std::size_t maxEdits = 3;
  /// The edits that are tried first from one state: those that change a part of a rule in the way.
  std::size_t maxCandidates = 100;
  /// The bound of the work, in trials. A trial that changes very many items counts more than once, and so does looking
  /// for what to try.
  std::size_t maxTrials = 20'000;
  /// The ways that are returned.
  std::size_t maxWays = 3;
  /// A safety stop. A search that ends by it depends on the machine, and says so. All other bounds are the same
  /// everywhere.
  std::chrono::milliseconds maxTime{10'000};
  /// Lets the caller give up, for instance when a user no longer waits. It is called before each trial, on the thread
  /// of the search; returning true ends the search. Not called while empty. It must not use the session, and must not
  /// throw.
  std::function<bool()> isCancelled = {};
};

/// A sequence of edits that was tried and reached the goal.
struct TARN_EXPORT Way {
  std::vector<Edit> edits;
  /// The effect of the edits, as `Session::tryEdits` returns it.
  EditResult result;
  /// Values of the user or the model that would no longer be in force, apart from those that the edits set themselves.
  /// They are kept, and wait.
  std::vector<ValueChange> lost;
  /// Findings of a review that these edits would cause, as `Session::tryWithFindings` returns them.
  std::vector<Finding> findingsGained;
  /// The goal is reached only in the update after these edits, because a rule reads what is decided after it. Any
  /// further edit makes that update. Such ways are returned only if no way of their length reaches the goal at once.
  bool atNextEdit = false;
};

enum class HowAnswer : int {
  /// The goal is reached already.
  AlreadySo = 0,
  Found = 1,
  /// No edits can reach the goal: the item is unknown to the rules, the value is in no list, or the condition is always
  /// false.
  Impossible = 2,
  /// None of the tried sequences reached it. That does not mean that there is none.
  NotFound = 3
};

struct TARN_EXPORT HowResult {
  Goal goal;
  HowAnswer answer = HowAnswer::NotFound;
  /// All have the shortest length that was found. The best comes first: with fewer lost values, fewer new errors of
  /// a review, fewer deleted objects, a smaller effect. If there are very many ways, only the first ones that were
  /// found are compared.
  std::vector<Way> ways;
  /// The number of tried sequences.
  std::size_t trials = 0;
  /// Every sequence of edits that have to do with the goal was tried, up to this length. Not counted are other values
  /// of parameters that can have any number or text, and other names of objects.
  std::size_t completedEdits = 0;
  bool stoppedByTime = false;
  /// `HowOptions::isCancelled` has ended the search. Then there are no ways, and the answer is `NotFound`.
  bool cancelled = false;
  /// Why the parameter can never have the value: it is of the wrong type, or its units cannot be converted.
  std::optional<Refused> refused;
  /// The obstacle now: the proof of the goal's opposite. Not set for `AlreadySo`, and where `refused` is set.
  std::optional<Proof> blocking;
  /// Parameters in the way that can have any number or text. Only the values that the rules mention were tried.
  std::vector<Item> freeParams;
};

/// One sentence about what was found, with the number of trials; the ways, one a line; and what blocks.
[[nodiscard]] TARN_EXPORT std::string textOf(HowResult const& result);

}  // namespace tarn::session
