// Why and how of a session. The search for ways is breadth first: all single edits before all pairs. After each edit
// the question is asked again, because a rule in the way is often the first of several.

#include <algorithm>
#include <map>
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

/// Whether the item is absent because of a part of a condition that reads nothing, so that it has the same result for
/// ever.
bool isAlwaysFalse(Proof const& proof) {
  ProofNode const* node = &proof.answer();
  while (node->fact == Fact::ObjectAbsent) node = &proof.nodes[node->children.front()];
  if (node->fact != Fact::NotAvailable || node->rules.size() != 1 || node->isOutdated) return false;
  Explanation const& explanation = node->rules.front().explanation;
  if (!explanation.isComplete || explanation.nodes.front().operation == Explanation::Operation::Opaque) return false;
  auto const isNeeded = explanation.neededReads();
  return std::find(isNeeded.begin(), isNeeded.end(), true) == isNeeded.end();
}

std::size_t newErrors(Way const& way) {
  return static_cast<std::size_t>(std::count_if(way.findingsGained.begin(), way.findingsGained.end(),
                                                [](Finding const& f) { return f.severity == Severity::Error; }));
}

std::string textOf(std::vector<Edit> const& edits) {
  std::string text;
  for (Edit const& edit : edits) text += sentenceOf(edit) + '\n';
  return text;
}

/// The sequences without those that have the same edits in another order. To bring an optional parameter it is enough
/// to switch it on; that some value of its own brings it as well says nothing more. Sequences that need a further edit
/// count only if there are no others.
std::vector<WaySearch::Found> withoutRepetitions(std::vector<WaySearch::Found> const& found, Goal const& goal) {
  bool const isAnyAtOnce = std::any_of(found.begin(), found.end(), [](auto const& way) { return !way.atNextEdit; });
  auto const isOfGoal = [&](Edit const& edit, Edit::Kind kind) {
    return edit.kind == kind && !goal.value && edit.path == goal.item.path && edit.name == goal.item.name;
  };
  auto const switchesOn = [&](WaySearch::Found const& way) {
    return std::any_of(way.edits.begin(), way.edits.end(),
                       [&](Edit const& edit) { return isOfGoal(edit, Edit::Kind::ActivateParam); });
  };
  std::map<std::set<std::string>, std::size_t> known;
  std::vector<WaySearch::Found> kept;
  for (WaySearch::Found const& way : found) {
    if (way.atNextEdit && isAnyAtOnce) continue;
    std::set<std::string> edits;
    for (Edit const& edit : way.edits) {
      bool const isSame = isOfGoal(edit, Edit::Kind::SetParam);
      edits.insert(sentenceOf(isSame ? Edit::activateParam(edit.path, edit.name) : edit));
    }
    auto const [entry, isNew] = known.try_emplace(std::move(edits), kept.size());
    if (isNew) {
      kept.push_back(way);
    } else if (switchesOn(way) && !switchesOn(kept[entry->second])) {
      kept[entry->second] = way;
    }
  }
  return kept;
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

HowResult SessionImpl::how(Goal const& asked, HowOptions const& options) const {
  HowResult result;
  result.goal = asked;
  RuledState const& state = work_->ruled;
  Goal goal = asked;
  if (auto refused = readGoal(goal)) {
    result.answer = HowAnswer::Impossible;
    result.refused = std::move(refused);
    return result;
  }
  if (isReached(state, goal)) {
    result.answer = HowAnswer::AlreadySo;
    return result;
  }
  result.blocking = obstacle(goal);
  if (isImpossible(state, goal) || isAlwaysFalse(*result.blocking)) {
    result.answer = HowAnswer::Impossible;
    return result;
  }
  SearchGround const ground{
      *work_->state, state, work_->offers, readers_, requests_, [this](Item const& item, std::size_t& step) {
        return originOf(item.path, item.name.value_or(std::string()), step);
      }};
  WaySearch search(ground, goal, options);
  std::vector<WaySearch::Found> const found = search.run();
  result.trials = search.trials();
  result.completedEdits = search.completedEdits();
  result.stoppedByTime = search.isStoppedByTime();
  result.freeParams = search.freeParams();
  auto ways = search.isCancelled() ? std::nullopt : bestWays(found, goal, options);
  result.cancelled = !ways;
  if (ways) result.ways = std::move(*ways);
  result.answer = result.ways.empty() ? HowAnswer::NotFound : HowAnswer::Found;
  return result;
}

/// Reads the value of a goal as that of an edit is read. Returns why the parameter can never have it.
std::optional<Refused> SessionImpl::readGoal(Goal& goal) const {
  if (!goal.item.isParam() || !goal.value) return std::nullopt;
  if (!work_->ruled.rulesOfParam(goal.item.path, *goal.item.name)) return std::nullopt;
  Edit edit = Edit::setParam(goal.item.path, *goal.item.name, *goal.value);
  auto refused = EditChecks(work_->ruled, nullptr).readValue(edit, false);
  if (!refused) goal.value = edit.value;
  return refused;
}

/// The proof of what is instead of the goal.
Proof SessionImpl::obstacle(Goal const& goal) const {
  constexpr std::size_t depth = 3;
  bool const isPresent = goal.item.isParam() && work_->ruled.value(goal.item.path, *goal.item.name) != nullptr;
  if (!isPresent) return why(goal.item, {Question::Presence, {}, depth});
  Proof refused = why(goal.item, {Question::Allowed, goal.value.value_or(std::string()), depth});
  switch (refused.answer().fact) {
    case Fact::NotInList:
    case Fact::Unused:
    case Fact::CheckFails:
      return refused;
    default:
      return why(goal.item, {Question::Value, {}, depth});
  }
}

std::optional<std::vector<Way>> SessionImpl::bestWays(std::vector<WaySearch::Found> const& found, Goal const& goal,
                                                      HowOptions const& options) const {
  // If there are very many sequences, the first ones are compared: they were tried first because they are the
  // straightest.
  constexpr std::size_t mostCompared = 100;
  constexpr std::size_t mostReviewed = 12;
  std::size_t const most = options.maxWays;
  auto const isCancelled = [&] { return options.isCancelled && options.isCancelled(); };
  std::vector<Way> ways;
  for (WaySearch::Found const& each : withoutRepetitions(found, goal)) {
    if (ways.size() == mostCompared) break;
    if (isCancelled()) return std::nullopt;
    Way way;
    way.edits = each.edits;
    way.atNextEdit = each.atNextEdit;
    way.result = attempt(*work_, each.edits, References::Stay);
    if (way.result.refused) continue;
    way.lost = lostBy(way.result);
    ways.push_back(std::move(way));
  }
  auto const costOf = [](Way const& way) { return way.lost.size(); };
  std::stable_sort(ways.begin(), ways.end(), [&](Way const& a, Way const& b) { return costOf(a) < costOf(b); });
  // Only those can be among the best that lose no more than the last of the best.
  if (ways.size() > most && most > 0) {
    auto const limit = costOf(ways[most - 1]);
    std::erase_if(ways, [&](Way const& way) { return costOf(way) > limit; });
  }
  if (ways.size() > std::max(most, mostReviewed)) ways.resize(std::max(most, mostReviewed));
  for (Way& way : ways) {
    if (isCancelled()) return std::nullopt;
    way.findingsGained = tryWithFindings(way.edits, References::Stay).findingsGained;
  }
  auto const rankOf = [&](Way const& way) {
    return std::tuple(costOf(way), newErrors(way), way.result.effect.objectsDeleted.size(), way.result.effect.size(),
                      textOf(way.edits));
  };
  std::sort(ways.begin(), ways.end(), [&](Way const& a, Way const& b) { return rankOf(a) < rankOf(b); });
  ways.resize(std::min(ways.size(), most));
  return ways;
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
