// Why and how of a session. The search for ways is breadth first: all single edits before all pairs. After each edit
// the question is asked again, because a rule in the way is often the first of several.

#include <algorithm>
#include <chrono>
#include <set>
#include <tuple>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/RuleReads.h>
#include <tarn/StringUtilities.h>
#include <tarn/session/Sentences.h>

#include "session/SessionImpl.h"
#include "why/Prover.h"
#include "why/WaySearch.h"

namespace tarn::session {

namespace {

bool isReached(RuledState const& state, Goal const& goal) {
  if (!goal.item.isParam()) return state.hasObject(goal.item.path);
  std::string const* const value = state.value(goal.item.path, *goal.item.name);
  if (value == nullptr || !goal.value) return value != nullptr;
  ParamRules const rules = state.rulesOfParam(goal.item.path, *goal.item.name);
  return *value == *goal.value || (rules && RuledState::isInForce(rules.value->type, *goal.value, *value));
}

/// The state as tried, in a form that distinguishes different states: what is different from the start, and what was
/// asked for, whatever its order.
std::string fingerprint(EditResult const& result) {
  std::string key;
  auto const append = [&](std::string const& text) { key += std::to_string(text.size()) + ':' + text; };
  for (ValueChange const& change : result.effect.values) {
    append(change.path);
    append(change.name);
    append(change.after ? 'v' + *change.after : std::string());
  }
  for (std::string const& path : result.effect.objectsCreated) append('+' + path);
  for (std::string const& path : result.effect.objectsDeleted) append('-' + path);
  std::vector<std::string> edits;
  for (Edit const& edit : result.made) edits.push_back(sentenceOf(edit));
  std::sort(edits.begin(), edits.end());
  for (std::string const& edit : edits) append(edit);
  return key;
}

/// Whether the goal can never be reached, for a reason that the rules alone show.
bool isImpossible(RuledState const& state, Goal const& goal) {
  Item const& item = goal.item;
  if (!StringUtilities::isPathRootedAt(state.state().getActiveRoot(), item.path)) return true;
  if (!item.isParam()) {
    ChildRules const rules = state.rulesOfChild(item.path);
    return !rules || state.isInMirroredBranch(item.path);
  }
  ParamRules const rules = state.rulesOfParam(item.path, *item.name);
  if (!rules || state.isInMirroredBranch(item.path)) return true;
  if (!goal.value || rules.value->allowsAnyValue) return false;
  if (rules.value->allowedValueKind == ParamValueDef::NoAllowedValues) return false;
  if (TDFParam::isListType(rules.value->type)) return false;
  if (rules.value->unusedValues.contains(*goal.value)) return true;
  auto const* fixed = dynamic_cast<FixedList const*>(rules.value->allowedValues.get());
  return fixed != nullptr && !fixed->items().contains(*goal.value);
}

/// A condition that reads nothing has the same result for ever.
bool isAlwaysFalse(Proof const& proof) {
  ProofNode const* node = &proof.answer();
  while (node->fact == Fact::ObjectAbsent) node = &proof.nodes[node->children.front()];
  return node->fact == Fact::NotAvailable && node->rules.size() == 1 && !node->isOutdated &&
         node->rules.front().explanation.isComplete && node->rules.front().reads.empty() &&
         node->rules.front().explanation.nodes.front().operation != Explanation::Operation::Opaque;
}

/// Whether an item is on offer, from the lists of the state.
bool isListedAsOffered(ProvisionalTDF const& state, Item const& item) {
  if (!item.isParam()) {
    auto const& objects = state.getAvailPotObjects();
    return std::find(objects.begin(), objects.end(), item.path) != objects.end();
  }
  auto const [begin, end] = state.getAvailPotParams().equal_range(item.path);
  return std::any_of(begin, end, [&](auto const& entry) { return entry.second == *item.name; });
}

auto rankOf(Way const& way) {
  std::string text;
  for (Edit const& edit : way.edits) text += sentenceOf(edit) + '\n';
  return std::tuple(way.edits.size(), way.atNextEdit, way.lost.size(), way.result.effect.objectsDeleted.size(),
                    way.result.effect.size(), std::move(text));
}

}  // namespace

Proof SessionImpl::why(Item const& item, WhyOptions const& options) const {
  EditResult const* const last = lastResult();
  ProofSources const sources{work_->ruled, [this](Item const& asked) { return work_->offers.has(asked); },
                             [this](Item const& asked, std::size_t& step) {
                               return originOf(asked.path, asked.name.value_or(std::string()), step);
                             },
                             steps_.empty() ? nullptr : &steps_.back(), last != nullptr ? &last->effect : nullptr};
  return Prover(sources).prove(options.question, item, options.value, options.depth);
}

HowResult SessionImpl::how(Goal const& goal, HowOptions const& options) const {
  HowResult result;
  result.goal = goal;
  RuledState const& state = work_->ruled;
  if (isReached(state, goal)) {
    result.answer = HowAnswer::AlreadySo;
    return result;
  }
  bool const isPresent = goal.item.isParam() && state.value(goal.item.path, *goal.item.name) != nullptr;
  result.blocking = why(goal.item, {isPresent ? Question::Allowed : Question::Presence, goal.value.value_or(""), 3});
  if (isImpossible(state, goal) || isAlwaysFalse(*result.blocking)) {
    result.answer = HowAnswer::Impossible;
    return result;
  }

  using Clock = std::chrono::steady_clock;
  auto const end = Clock::now() + options.maxTime;
  std::set<std::string> seen;
  struct State {
    std::vector<Edit> edits;
    std::vector<Edit> candidates;
  };

  // The candidates of the state in force, which is that after the edits of `made`.
  auto const candidatesNow = [&](EditResult const* made) {
    Step step;
    if (made != nullptr) step.made = made->made;
    // A search looks at present values: what they were before decides only until the next edit.
    Effect const none;
    ProofSources const sources{state, [this](Item const& asked) { return isListedAsOffered(provisional(), asked); },
                               [this](Item const& asked, std::size_t& number) {
                                 return originOf(asked.path, asked.name.value_or(std::string()), number);
                               },
                               &step, &none};
    Candidates candidates(sources, options.maxCandidates);
    std::vector<Edit> edits = candidates.towards(goal);
    for (Item const& item : candidates.freeParams()) {
      auto& known = result.freeParams;
      if (std::find(known.begin(), known.end(), item) == known.end()) known.push_back(item);
    }
    return edits;
  };
  // Rules that read what comes after them decide anew in the next update.
  auto const isReachedNext = [&](Edit const& last) {
    if (last.kind != Edit::Kind::SetParam && last.kind != Edit::Kind::ActivateParam &&
        last.kind != Edit::Kind::DeactivateParam)
      return false;
    ProvisionalTDF::Mark const mark = work_->state->mark();
    bool isSo = false;
    try {
      (void)work_->state->apply(last);
      isSo = isReached(state, goal);
    } catch (...) {
      work_->state->rollback(mark);
      throw;
    }
    work_->state->rollback(mark);
    return isSo;
  };

  std::vector<State> level{{{}, candidatesNow(nullptr)}};
  bool isStopped = false;
  for (std::size_t length = 1; length <= options.maxEdits && !isStopped && result.ways.empty(); ++length) {
    std::vector<State> next;
    for (State const& from : level) {
      for (Edit const& candidate : from.candidates) {
        result.stoppedByTime = Clock::now() >= end;
        isStopped = result.stoppedByTime || result.trials >= options.maxTrials;
        if (isStopped) break;
        if (std::find(from.edits.begin(), from.edits.end(), candidate) != from.edits.end()) continue;
        State to;
        to.edits = from.edits;
        to.edits.push_back(candidate);
        ++result.trials;
        bool isThere = false;
        bool isThereNext = false;
        EditResult tried = attempt(*work_, to.edits, References::Stay, [&] {
          isThere = isReached(state, goal);
          isThereNext = !isThere && isReachedNext(candidate);
          if (!isThere && !isThereNext && length < options.maxEdits) to.candidates = candidatesNow(nullptr);
        });
        if (tried.refused || !seen.insert(fingerprint(tried)).second) continue;
        if (isThere || isThereNext) {
          Way way;
          way.edits = to.edits;
          way.atNextEdit = isThereNext;
          way.lost = lostBy(tried);
          way.result = std::move(tried);
          result.ways.push_back(std::move(way));
          continue;
        }
        if (!to.candidates.empty()) next.push_back(std::move(to));
      }
      if (isStopped) break;
    }
    if (!isStopped) result.completedEdits = length;
    level = std::move(next);
  }
  std::sort(result.ways.begin(), result.ways.end(), [](Way const& a, Way const& b) { return rankOf(a) < rankOf(b); });
  if (result.ways.size() > options.maxWays) result.ways.resize(options.maxWays);
  result.answer = result.ways.empty() ? HowAnswer::NotFound : HowAnswer::Found;
  return result;
}

/// The values of the user and of the model that edits put out of force.
std::vector<ValueChange> SessionImpl::lostBy(EditResult const& result) const {
  std::vector<ValueChange> lost;
  for (ValueChange const& change : result.effect.values) {
    if (!change.before) continue;
    bool const isEdited = std::any_of(result.made.begin(), result.made.end(), [&](Edit const& edit) {
      return edit.path == change.path && edit.name == change.name;
    });
    std::size_t step = 0;
    Origin const origin = isEdited ? Origin::None : originOf(change.path, change.name, step);
    if (origin == Origin::User || origin == Origin::Model) lost.push_back(change);
  }
  return lost;
}

}  // namespace tarn::session
