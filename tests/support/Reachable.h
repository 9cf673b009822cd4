#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/session/How.h>
#include <tarn/session/Session.h>

/// The second reading of how to reach something: every edit is made in every state, without thought.
namespace tarn::test {

/// Every edit of everything that is there or on offer: each parameter set to each of its choices, or to one of
/// `numbers` where it may have any; switched on and off; each object switched on and off, removed, copied and added.
[[nodiscard]] std::vector<Edit> everyEdit(session::Session const& session, std::vector<std::string> const& numbers);

/// A goal as `Goal` has it, in an order.
struct ReachedGoal {
  session::Item item;
  std::optional<std::string> value;
  friend auto operator<=>(ReachedGoal const&, ReachedGoal const&) = default;
};

/// All goals that sequences of up to `most` edits reach, each with the shortest that was found. The session is as it
/// was afterwards. With `mostStates`, the search ends early.
[[nodiscard]] std::map<ReachedGoal, std::vector<Edit>> everythingReached(session::Session& session, std::size_t most,
                                                                         std::vector<std::string> const& numbers,
                                                                         std::size_t mostStates = 1'000'000);

/// Compares `how` with what edits reach: it finds a way that is no longer, whose edits lead to the goal. Returns how it
/// fails, or "". `fewest` is empty when nothing is known.
[[nodiscard]] std::string checkHow(session::Session& session, session::Goal const& goal,
                                   std::optional<std::size_t> fewest, session::HowResult const& found);

}  // namespace tarn::test
