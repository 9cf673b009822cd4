// Breadth first: all single edits before all pairs. From each state two kinds of edits are tried. First come those that
// change a part of a rule in the way; they go straight to the goal. If no sequence of a length reaches it, everything
// is tried that can have to do with the goal at all: the first edits of a sequence may prepare what only later is in
// the way, or take effect through the old values that a rule reads.
//
// After each edit the next update is looked at as well, because rules that read what comes after them decide anew then.
// States that were reached before, with the same next update, are not continued.

#include "why/WaySearch.h"

#include <algorithm>
#include <new>
#include <numeric>
#include <utility>

#include <tarn/StringUtilities.h>
#include <tarn/TDFParam.h>

#include "session/EditChecks.h"
#include "why/Candidates.h"

namespace tarn::session {

namespace {

/// Finding candidates counts as so many trials.
constexpr std::size_t workOfCandidates = 8;
/// A trial that touches so many items counts as one more.
constexpr std::size_t itemsOfATrial = 50;
constexpr std::size_t mostRelevant = 2000;
/// No rule can give a parameter this name.
constexpr char const* nameOfNothing = "\n";

/// Takes the state back at the end of the scope.
class Rollback {
 public:
  explicit Rollback(ProvisionalTDF& state) : state_(state), mark_(state.mark()) {}
  ~Rollback() { state_.rollback(mark_); }
  Rollback(Rollback const&) = delete;
  Rollback& operator=(Rollback const&) = delete;

 private:
  ProvisionalTDF& state_;
  ProvisionalTDF::Mark mark_;
};

std::string const* valueIn(ModelState const& model, Item const& param) {
  auto const object = model.find(param.path);
  if (object == model.end()) return nullptr;
  auto const value = object->second.find(*param.name);
  return value == object->second.end() ? nullptr : &value->second;
}

bool isOfObject(Edit const& edit) {
  return edit.kind != Edit::Kind::SetParam && edit.kind != Edit::Kind::ActivateParam &&
         edit.kind != Edit::Kind::DeactivateParam;
}

std::string textOf(Edit const& edit) {
  return std::to_string(static_cast<int>(edit.kind)) + edit.path + '\n' + edit.name + '\n' + edit.value;
}

}  // namespace

bool isReached(RuledState const& state, Goal const& goal) {
  if (!goal.item.isParam()) return state.hasObject(goal.item.path);
  std::string const* const value = state.value(goal.item.path, *goal.item.name);
  if (value == nullptr || !goal.value) return value != nullptr;
  if (*value == *goal.value) return true;
  ParamRules const rules = state.rulesOfParam(goal.item.path, *goal.item.name);
  if (!rules) return false;
  if (TDFParam::valuesEqual(rules.value->type, *goal.value, *value)) return true;
  // Without units, the first ones are meant.
  auto const asked = TDFParam::asQuantity(*goal.value);
  if (rules.value->type != TDFParam::Real || !asked || !asked->units.empty()) return false;
  QuantityType const* const type = state.rules().findQuantityType(state.quantityType(rules, goal.item.path));
  return type != nullptr && !type->units().empty() &&
         TDFParam::valuesEqual(TDFParam::Real, *goal.value + " [" + type->units().front().text + ']', *value);
}

Edit emptyEdit(ProvisionalTDF const& state) {
  return Edit::activateParam(state.getActiveRoot(), nameOfNothing);
}

/// The edits of one branch of the search, with the items that they touch.
class WaySearch::Branch {
 public:
  explicit Branch(SearchGround const& ground)
      : ground_(&ground), finder_(ground.ruled, ground.offers, ground.readers, ground.requests) {}

  /// False when the edit is refused; the state may have changed then.
  bool make(Edit const& edit) {
    EditChecks const checks(ground_->ruled, [this](Item const& item) { return isOffered(item); });
    Edit made = edit;
    if (checks.before(made)) return false;
    std::optional<Refusal> const refusal = ground_->state.apply(made);
    if (checks.after(made, refusal)) return false;
    finder_.noteUpdate(made);
    if (isOfObject(made)) objectEdits_.push_back(textOf(made));
    return true;
  }
  void makeEmpty() {
    Edit const edit = emptyEdit(ground_->state);
    (void)ground_->state.apply(edit);
    finder_.noteUpdate(edit);
  }

  [[nodiscard]] bool isOffered(Item const& item) const { return finder_.isOffered(item); }
  [[nodiscard]] EffectFinder const& finder() const noexcept { return finder_; }
  [[nodiscard]] std::vector<std::string> const& objectEdits() const noexcept { return objectEdits_; }

 private:
  SearchGround const* ground_;
  EffectFinder finder_;
  std::vector<std::string> objectEdits_;
};

WaySearch::WaySearch(SearchGround const& ground, Goal const& goal, HowOptions const& options)
    : ground_(ground), goal_(goal), options_(options), end_(Clock::now() + options.maxTime) {
  std::string const root = ground.state.getActiveRoot();
  active_ = ground.state.getActiveTDFState();
  guide_ = ground.state.getGuideTree().getState(root);
  for (auto const& [item, count] : ground.requests.decided()) {
    auto const decision = item.isParam() ? ground.state.getParamDecision(item.path, *item.name)
                                         : ground.state.getObjectDecision(item.path);
    if (decision) decisions_[item] = *decision;
  }
}

std::vector<WaySearch::Found> WaySearch::run() {
  seen_.insert(fingerprint(Branch(ground_)));
  std::vector<State> level(1);
  for (std::size_t length = 1; length <= options_.maxEdits && !level.empty(); ++length) {
    std::vector<State> next;
    bool isComplete =
        expand(level, next, options_.maxTrials, [this](Branch const& branch) { return candidatesIn(branch); });
    if (!found_.empty() || isStopped()) break;
    // Half of what is left is kept for the next length, where the straight way may lead on.
    std::size_t const left = options_.maxTrials - std::min(options_.maxTrials, work_);
    std::size_t const most = length < options_.maxEdits ? work_ + left / 2 : options_.maxTrials;
    if (!relevant_) relevant_.emplace(ground_.ruled.rules(), goal_.item);
    isComplete = expand(level, next, most, [this](Branch const& branch) { return relevantIn(branch); }) && isComplete;
    if (isComplete && !isCutOff_ && completedEdits_ == length - 1) completedEdits_ = length;
    if (!found_.empty() || isStopped()) break;
    if (next.empty() && completedEdits_ == length) completedEdits_ = options_.maxEdits;
    level = std::move(next);
  }
  for (Found& way : found_) {
    if (way.atNextEdit) reorder(way);
  }
  return std::move(found_);
}

/// In another order, the last edit may be the one whose update completes the goal.
void WaySearch::reorder(Found& way) {
  std::vector<std::size_t> order(way.edits.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  while (std::next_permutation(order.begin(), order.end())) {
    if (isOverBudget(options_.maxTrials)) return;
    ++trials_;
    ++work_;
    Rollback const back(ground_.state);
    try {
      Branch branch(ground_);
      bool const isMade = std::all_of(order.begin(), order.end(),
                                      [&](std::size_t const index) { return branch.make(way.edits[index]); });
      if (!isMade || !isReached(ground_.ruled, goal_)) continue;
    } catch (std::bad_alloc const&) {
      throw;
    } catch (std::exception const&) {
      continue;  // A rule fails after one of these edits.
    }
    std::vector<Edit> edits;
    edits.reserve(order.size());
    for (std::size_t const index : order) edits.push_back(way.edits[index]);
    way = {std::move(edits), false};
    return;
  }
}

bool WaySearch::isOverBudget(std::size_t mostWork) {
  isStoppedByTime_ = isStoppedByTime_ || Clock::now() >= end_;
  isCancelled_ = isCancelled_ || (options_.isCancelled && options_.isCancelled());
  return isStopped() || work_ >= mostWork;
}

bool WaySearch::expand(std::vector<State>& level, std::vector<State>& next, std::size_t mostWork,
                       std::function<std::vector<Edit>(Branch const&)> const& editsIn) {
  for (State& state : level) {
    if (isOverBudget(mostWork)) return false;
    Rollback const back(ground_.state);
    try {
      Branch branch(ground_);
      for (Edit const& edit : state.edits) (void)branch.make(edit);
      for (Edit& edit : editsIn(branch)) {
        if (isOverBudget(mostWork)) return false;
        if (std::find(state.tried.begin(), state.tried.end(), edit) != state.tried.end()) continue;
        tryEdit(branch, state, edit, next);
        state.tried.push_back(std::move(edit));
      }
    } catch (std::bad_alloc const&) {
      throw;
    } catch (std::exception const&) {
      // A rule fails in this state, and it is not known what could be done about it.
      if (state.edits.empty()) throw;
    }
  }
  return true;
}

void WaySearch::tryEdit(Branch const& from, State const& state, Edit const& edit, std::vector<State>& next) {
  ++trials_;
  ++work_;
  Rollback const back(ground_.state);
  try {
    Branch branch = from;
    if (!branch.make(edit)) return;
    bool const isThere = isReached(ground_.ruled, goal_);
    std::string print = isThere ? std::string() : fingerprint(branch) + '\n';
    if (!isThere) branch.makeEmpty();
    bool const isThereNext = !isThere && isReached(ground_.ruled, goal_);
    work_ += branch.finder().touchedItems().size() / itemsOfATrial;
    std::vector<Edit> edits = state.edits;
    edits.push_back(edit);
    if (isThere || isThereNext) {
      found_.push_back({std::move(edits), isThereNext});
      return;
    }
    if (edits.size() == options_.maxEdits) return;
    print += fingerprint(branch);
    if (seen_.insert(std::move(print)).second) next.push_back({std::move(edits), {}});
  } catch (std::bad_alloc const&) {
    throw;
  } catch (std::exception const&) {
    return;  // A rule fails after this edit.
  }
}

std::vector<Edit> WaySearch::candidatesIn(Branch const& branch) {
  std::vector<Edit> edits = candidatesNow(branch);
  // The next edit meets the state that the next update makes by itself.
  std::string const print = fingerprint(branch);
  Rollback const back(ground_.state);
  Branch next = branch;
  next.makeEmpty();
  if (fingerprint(next) == print) return edits;
  for (Edit& edit : candidatesNow(next)) {
    if (std::find(edits.begin(), edits.end(), edit) == edits.end()) edits.push_back(std::move(edit));
  }
  return edits;
}

std::vector<Edit> WaySearch::candidatesNow(Branch const& branch) {
  work_ += workOfCandidates;
  // The search looks at present values: what they were before decides only until the next edit.
  Step const step;
  Effect const none;
  ProofSources const sources{ground_.ruled, [&](Item const& item) { return branch.isOffered(item); }, ground_.originOf,
                             &step, &none};
  Candidates candidates(sources, options_.maxCandidates);
  std::vector<Edit> edits = candidates.towards(goal_);
  for (Item const& item : candidates.freeParams()) {
    if (mentioned_.contains(item)) continue;
    mentioned_[item];
    freeParams_.push_back(item);
  }
  for (Edit const& edit : edits) {
    if (edit.kind != Edit::Kind::SetParam) continue;
    auto const free = mentioned_.find({edit.path, edit.name});
    if (free != mentioned_.end()) free->second.insert(edit.value);
  }
  return edits;
}

std::vector<Edit> WaySearch::relevantIn(Branch const& /*branch*/) {
  work_ += workOfCandidates;
  return relevant_->in(
      ground_.ruled,
      [this](Item const& item) {
        auto const found = mentioned_.find(item);
        return found != mentioned_.end() ? &found->second : nullptr;
      },
      mostRelevant, isCutOff_);
}

/// The difference from the start, in a form that is the same for the same state. Copies and removals of objects are
/// named as such, since not all that they change is listed.
std::string WaySearch::fingerprint(Branch const& branch) const {
  std::string key;
  auto const append = [&](std::string const& text) {
    key += std::to_string(text.size());
    key += ':';
    key += text;
  };
  ProvisionalTDF const& state = ground_.state;
  for (auto const& [item, touched] : branch.finder().touchedItems()) {
    if (item.name == nameOfNothing) continue;
    auto const before = decisions_.find(item);
    auto const decision =
        item.isParam() ? state.getParamDecision(item.path, *item.name) : state.getObjectDecision(item.path);
    auto const decided = before == decisions_.end() ? std::nullopt : std::optional(before->second);
    std::string facts;
    if (decision != decided) facts += decision ? *decision ? "on" : "off" : "none";
    if (item.isParam()) {
      std::string const* const value = ground_.ruled.value(item.path, *item.name);
      std::string const* const asked = ground_.ruled.askedValue(item.path, *item.name);
      std::string const* const valueBefore = valueIn(active_, item);
      std::string const* const askedBefore = valueIn(guide_, item);
      auto const isSame = [](std::string const* a, std::string const* b) {
        return (a == nullptr) == (b == nullptr) && (a == nullptr || *a == *b);
      };
      if (!isSame(value, valueBefore)) facts += value != nullptr ? "v" + *value : "V";
      if (!isSame(asked, askedBefore)) facts += asked != nullptr ? "\na" + *asked : "\nA";
    } else {
      facts += ground_.ruled.hasObject(item.path) ? "o" : "O";
    }
    if (facts.empty()) continue;
    append(item.path);
    append(item.name.value_or(std::string()));
    append(facts);
  }
  std::vector<std::string> edits = branch.objectEdits();
  std::sort(edits.begin(), edits.end());
  for (std::string const& edit : edits) append(edit);
  return key;
}

}  // namespace tarn::session
