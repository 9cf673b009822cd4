// Two states in one session, and the search for a short session in which they differ.

#include "support/EqualWalks.h"

#include <algorithm>
#include <map>
#include <new>
#include <optional>
#include <sstream>
#include <string_view>
#include <typeinfo>
#include <utility>

#include <tarn/DynamicTDF.h>
#include <tarn/Error.h>
#include <tarn/ProvTDFPrinter.h>

#include "provisional/ProvisionalTDFAccess.h"
#include "support/MapModel.h"

namespace tarn::test {

namespace {

// The guide, the base tree and the switch of the walks are not public. An explicit instantiation may name private
// members, so the library needs no friend for tests.
Outcome const& outcomeOf(ProvisionalTDF const& state);
Intent const& intentOf(ProvisionalTDF const& state);
DynamicTDF const& baseTreeOf(ProvisionalTDF const& state);

template <auto Impl, auto Facts, auto Intent, auto Base>
struct Inside {
  friend Outcome const& outcomeOf(ProvisionalTDF const& state) { return (state.*Impl)->outcome(); }
  friend tarn::Intent const& intentOf(ProvisionalTDF const& state) { return ((*(state.*Impl)).*Facts).*Intent; }
  friend DynamicTDF const& baseTreeOf(ProvisionalTDF const& state) { return (*(state.*Impl)).*Base; }
};
template struct Inside<&ProvisionalTDF::m_impl, &ProvisionalTDF::Impl::m_facts, &ProvisionalFacts::m_intent,
                       &ProvisionalTDF::Impl::m_baseTDF>;

// Texts for the report.

std::string textOf(std::string const& item) {
  return item;
}
template <typename A, typename B>
std::string textOf(std::pair<A, B> const& pair);
template <typename Items>
requires requires(Items items) {
  items.begin()->size();
} || requires(Items items) {
  items.begin()->first;
}
std::string textOf(Items const& items);

template <typename A, typename B>
std::string textOf(std::pair<A, B> const& pair) {
  return "(" + textOf(pair.first) + " | " + textOf(pair.second) + ")";
}
template <typename Items>
requires requires(Items items) {
  items.begin()->size();
} || requires(Items items) {
  items.begin()->first;
}
std::string textOf(Items const& items) {
  std::string result;
  for (auto const& item : items) result += "\n    " + textOf(item);
  return result.empty() ? "nothing" : result;
}

/// Objects and parameters of a tree in its own order.
std::string dump(ModelTDF const& tree) {
  std::string result;
  std::vector<std::string> open{""};
  std::vector<std::string> names;
  while (!open.empty()) {
    std::string const path = std::move(open.back());
    open.pop_back();
    result.append("\n    ").append(path).append("/");
    tree.getParameterNames(path, names);
    for (std::string const& name : names) {
      result.append("\n      ").append(name).append(" = ").append(tree.getParameterValue(path, name));
    }
    tree.getChildObjectPaths(path, names);
    open.insert(open.end(), names.rbegin(), names.rend());
  }
  return result;
}

/// Collects the first difference.
class Comparison {
 public:
  Comparison(ProvisionalTDF const& a, ProvisionalTDF const& b) : a_(a), b_(b) {}

  template <typename Getter>
  void compare(std::string_view name, Getter const& getter) {
    if (!difference_.empty()) return;
    decltype(auto) ofA = getter(a_);
    decltype(auto) ofB = getter(b_);
    if (ofA == ofB) return;
    difference_ = std::string(name) + " differs\n  first: " + textOf(ofA) + "\n  second: " + textOf(ofB);
  }
  [[nodiscard]] std::string const& difference() const { return difference_; }

 private:
  ProvisionalTDF const& a_;
  ProvisionalTDF const& b_;
  std::string difference_;
};

/// Writes down what one state shows.
class Description {
 public:
  explicit Description(ProvisionalTDF const& state) : state_(state) {}

  template <typename Getter>
  void compare(std::string_view name, Getter const& getter) {
    text_.append(name).append(": ").append(textOf(getter(state_))).append("\n");
  }
  [[nodiscard]] std::string const& text() const { return text_; }

 private:
  ProvisionalTDF const& state_;
  std::string text_;
};

std::string yesNo(bool yes) {
  return yes ? "yes" : "no";
}

void compareTrees(auto& comparison) {
  comparison.compare("the guide", [](ProvisionalTDF const& state) { return dump(intentOf(state).guide); });
  comparison.compare("the base tree", [](ProvisionalTDF const& state) { return dump(baseTreeOf(state)); });
  comparison.compare(
      "the memory of default names",
      [](ProvisionalTDF const& state) -> auto& { return intentOf(state).defaultNamesApplied; });
  comparison.compare(
      "getActiveTDFState", [](auto const& state) -> auto& { return state.getActiveTDFState(); });
}

void compareLists(auto& comparison) {
  comparison.compare(
      "getModParams", [](auto const& state) -> auto& { return state.getModParams(); });
  comparison.compare(
      "getNewlyAvailParams", [](auto const& state) -> auto& { return state.getNewlyAvailParams(); });
  comparison.compare(
      "getNewlyUnavailParams", [](auto const& state) -> auto& { return state.getNewlyUnavailParams(); });
  comparison.compare(
      "getDeletedObjects", [](auto const& state) -> auto& { return state.getDeletedObjects(); });
  comparison.compare(
      "getModBoundsParams", [](auto const& state) -> auto& { return state.getModBoundsParams(); });
  comparison.compare(
      "getModQuantParams", [](auto const& state) -> auto& { return state.getModQuantParams(); });
  comparison.compare(
      "getAvailPotObjects", [](auto const& state) -> auto& { return state.getAvailPotObjects(); });
  comparison.compare(
      "getAvailPotParams", [](auto const& state) -> auto& { return state.getAvailPotParams(); });
  comparison.compare(
      "getNewlyAvailPotObjects", [](auto const& state) -> auto& { return state.getNewlyAvailPotObjects(); });
  comparison.compare(
      "getNewlyAvailPotParams", [](auto const& state) -> auto& { return state.getNewlyAvailPotParams(); });
  comparison.compare(
      "getNewlyUnavailPotObjects", [](auto const& state) -> auto& { return state.getNewlyUnavailPotObjects(); });
  comparison.compare(
      "getNewlyUnavailPotParams", [](auto const& state) -> auto& { return state.getNewlyUnavailPotParams(); });
  comparison.compare(
      "getModPotParams", [](auto const& state) -> auto& { return state.getModPotParams(); });
  comparison.compare(
      "getEmptyParameters(false)", [](auto const& state) -> auto& { return state.getEmptyParameters(false); });
  comparison.compare(
      "getEmptyParameters(true)", [](auto const& state) -> auto& { return state.getEmptyParameters(true); });
}

/// The getters that are asked about one item at a time. Both states have the same items by now.
void compareItems(auto& comparison, ProvisionalTDF const& one) {
  auto const compareParam = [&](std::string const& path, std::string const& name) {
    std::string const of = " of " + path + '/' + name;
    comparison.compare(
        "getParamValue" + of, [&](auto const& state) -> auto& { return state.getParamValue(path, name); });
    comparison.compare("hasParameter" + of, [&](auto const& state) { return yesNo(state.hasParameter(path, name)); });
    comparison.compare("getAllowedParamValues" + of,
                       [&](auto const& state) { return state.getAllowedParamValues(path, name); });
    comparison.compare("getSubsetAllowedParamValues" + of,
                       [&](auto const& state) { return state.getSubsetAllowedParamValues(path, name); });
  };
  for (auto const& [path, params] : one.getActiveTDFState()) {
    for (auto const& param : params) compareParam(path, param.first);
  }
  for (auto const& [path, name] : one.getAvailPotParams()) compareParam(path, name);

  std::vector<std::string> objects = one.getPathExpansion(one.getActiveRoot() + "/**", "");
  for (std::string const& path : objects) {
    comparison.compare("hasObject of " + path, [&](auto const& state) { return yesNo(state.hasObject(path)); });
    for (char const* type : {"Zone", "Boundary", "Layer", "Domain"}) {
      comparison.compare("isUserNamedTypeAvailable of " + path + " and " + type,
                         [&](auto const& state) { return yesNo(state.isUserNamedTypeAvailable(path, type)); });
    }
  }
}

std::string printed(ProvisionalTDF const& state) {
  std::ostringstream out;
  ProvTDFPrinter const printer(&state, &out);
  printer.printUpdates();
  printer.printState();
  for (std::string const& path : state.getPathExpansion(state.getActiveRoot() + "/**", "")) {
    printer.printObjectState(path);
  }
  return out.str();
}

std::string messagesOf(BetaLoggingController const& controller) {
  if (!controller.anyLoggedMessages()) return {};
  std::string result;
  auto const add = [&](std::vector<std::string> const& messages) {
    for (std::string const& message : messages) result += message + '\n';
  };
  for (char const* type : {"Domain", "Zone", "Boundary", "Layer", "Turbulence"}) {
    add(controller.getObjAvailMessages(type));
  }
  for (char const* name : {"Motion", "Fluid", "Inflow", "Level", "Order", "Title", "Kind", "Speed"}) {
    add(controller.getParamAvailMessages(name));
    add(controller.getParamValAvailMessages(name, "Water"));
  }
  return result;
}

std::shared_ptr<ModelTDF const> modelOf(ModelState const& state, bool isTree) {
  if (!isTree) return std::make_shared<MapModel>(state);
  auto tree = std::make_shared<DynamicTDF>(false);
  tree->initialise(state.begin(), state.end());
  return tree;
}

bool changedAnything(ProvisionalTDF const& state) {
  return !state.getModParams().empty() || !state.getNewlyAvailParams().empty() ||
         !state.getNewlyUnavailParams().empty() || !state.getNewlyAvailPotParams().empty() ||
         !state.getDeletedObjects().empty();
}

std::string shownBy(ProvisionalTDF const& state) {
  Description description(state);
  compareTrees(description);
  description.compare("the active tree", [](ProvisionalTDF const& of) { return dump(outcomeOf(of).active); });
  compareLists(description);
  compareItems(description, state);
  description.compare("the printed text", printed);
  return description.text();
}

}  // namespace

std::string firstDifference(ProvisionalTDF const& a, ProvisionalTDF const& b) {
  Comparison comparison(a, b);
  compareTrees(comparison);
  comparison.compare("the active tree", [](ProvisionalTDF const& state) { return dump(outcomeOf(state).active); });
  compareLists(comparison);
  if (comparison.difference().empty()) compareItems(comparison, a);
  comparison.compare("the printed text", printed);
  return comparison.difference();
}

std::string Session::text() const {
  std::string result = start.text() + "# steps:\n";
  for (SessionStep const& step : steps) result += "- " + step.text() + '\n';
  return result;
}

EqualWalks::Side::Side(SessionStart const& start)
    : rules(start.rules.load()), baseIsTree(start.baseIsTree), state(rules.get(), &modifier, start.root) {
  if (start.gathersMessages) rules->attach(&messages);
}

void EqualWalks::Side::replaceBase(ModelState const& newBase) {
  bases.push_back(modelOf(newBase, baseIsTree));
}

/// Returns what became of the step: "" if it was made, a refusal or an exception.
std::string EqualWalks::Side::make(SessionStep const& step) {
  messages.clearMessages();
  try {
    switch (step.kind) {
      case SessionStep::Kind::MakeEdit:
        if (auto const refusal = state.apply(step.edit)) return "refusal " + std::to_string(static_cast<int>(*refusal));
        break;
      case SessionStep::Kind::BaseUpdate:
        replaceBase(step.base);
        state.baseUpdate(bases.back().get());
        break;
      case SessionStep::Kind::Initialise:
        replaceBase(step.base);
        state.initialise(bases.back().get(), step.guide);
        break;
      case SessionStep::Kind::InitialiseBasedOn:
        replaceBase(step.base);
        state.initialiseBasedOn("/Case/Domain:stator", bases.back().get(), step.guide);
        break;
      case SessionStep::Kind::SetMark:
      case SessionStep::Kind::RollBack:
      case SessionStep::Kind::Release:
        break;  // the marks belong to the session
    }
  } catch (std::bad_alloc const&) {
    throw;
  } catch (std::exception const& exception) {
    return std::string("exception ") + exception.what();
  }
  return {};
}

EqualWalks::EqualWalks(SessionStart const& start, FailAllocation failAllocation, bool willFail)
    : first_(start), second_(start), failAllocation_(std::move(failAllocation)), start_(start) {
  forceFullWalks(second_.state, !(willFail && failAllocation_));
  SessionStep step;
  step.kind = SessionStep::Kind::Initialise;
  step.base = start.base;
  step.guide = start.guide;
  brokenByStart_ = make(step);
}

std::string EqualWalks::make(SessionStep const& step) {
  if (step.kind >= SessionStep::Kind::SetMark) return endOrSetMark(step);
  kept_.push_back(step);
  std::string ofFirst;
  std::string ofSecond;
  if (failAllocation_ && step.failingAllocation) {
    if (step.kind != SessionStep::Kind::MakeEdit) endInnerMarks();
    auto const failing = [&](Side& side, std::string& result) {
      if (failAllocation_(*step.failingAllocation, [&] { result = side.make(step); })) result = "exception of memory";
    };
    failing(first_, ofFirst);
    failing(second_, ofSecond);
    forceFullWalks(second_.state, true);
    bool const failedInBoth = ofFirst == "exception of memory" && ofSecond == ofFirst;
    if (failedInBoth) ++failed_;
    isOver_ = ofFirst != ofSecond || dump(intentOf(first_.state).guide) != dump(intentOf(second_.state).guide);
    if (isOver_) return {};
  } else {
    ofFirst = first_.make(step);
    ofSecond = second_.make(step);
  }
  return differenceAfter(ofFirst, ofSecond);
}

/// Before memory runs out in an update that walks everything: the lists of inner marks may be lost then.
void EqualWalks::endInnerMarks() {
  if (marks_.size() < 2) return;
  first_.state.release(marks_[1].ofFirst);
  second_.state.release(marks_[1].ofSecond);
  marks_.erase(marks_.begin() + 1, marks_.end());
}

std::string EqualWalks::endOrSetMark(SessionStep const& step) {
  constexpr std::size_t most = 4;
  if (step.kind == SessionStep::Kind::SetMark) {
    if (marks_.size() == most) return {};
    std::string shown = shownBy(first_.state);
    marks_.push_back({first_.state.mark(), second_.state.mark(), std::move(shown), kept_.size(), isIncomplete_});
    return shownBy(first_.state) == marks_.back().shown ? difference() : "setting a mark changes what a state shows";
  }
  if (marks_.empty()) return {};
  std::size_t const at = step.mark % marks_.size();
  OpenMark const mark = std::move(marks_[at]);
  marks_.erase(marks_.begin() + static_cast<std::ptrdiff_t>(at), marks_.end());
  if (step.kind == SessionStep::Kind::Release) {
    first_.state.release(mark.ofFirst);
    second_.state.release(mark.ofSecond);
    return {};
  }
  first_.state.rollback(mark.ofFirst);
  second_.state.rollback(mark.ofSecond);
  kept_.resize(mark.kept);
  isIncomplete_ = mark.isIncomplete;
  ++rolledBack_;
  std::string const shown = shownBy(first_.state);
  if (shown != mark.shown) return "a rollback leaves a difference\n  at the mark: " + mark.shown + "\n  now: " + shown;
  return isIncomplete_ ? "" : difference();
}

std::string EqualWalks::brokenAtEnd() const {
  bool const mayCompare = rolledBack_ != 0 && !isOver_ && !isIncomplete_ && failed_ == 0;
  if (!mayCompare) return {};
  Side straight(start_);
  for (SessionStep const& step : kept_) (void)straight.make(step);
  std::string const different = firstDifference(first_.state, straight.state);
  return different.empty() ? "" : "a state that never made what was rolled back is different: " + different;
}

std::string EqualWalks::differenceAfter(std::string const& ofFirst, std::string const& ofSecond) {
  if (ofFirst != ofSecond) return "the result differs\n  first: " + ofFirst + "\n  second: " + ofSecond;
  if (ofFirst.starts_with("refusal")) ++refused_;
  bool const threw = ofFirst.starts_with("exception");
  if (threw) ++thrown_;
  isIncomplete_ = threw && first_.state.getActiveTDFState().empty();
  if (isIncomplete_) {
    // The update is incomplete: its lists are of no use, and the active tree is what it came to.
    Comparison comparison(first_.state, second_.state);
    compareTrees(comparison);
    return comparison.difference();
  }
  std::string const ofMessages = messagesOf(first_.messages);
  if (ofMessages != messagesOf(second_.messages)) {
    return "the beta messages differ\n  first: " + ofMessages + "\n  second: " + messagesOf(second_.messages);
  }
  return difference();
}

std::string brokenBy(Session const& session, FailAllocation const& failAllocation) {
  bool const willFail = std::any_of(session.steps.begin(), session.steps.end(),
                                    [](SessionStep const& step) { return step.failingAllocation.has_value(); });
  EqualWalks walks(session.start, failAllocation, willFail);
  std::string broken = walks.brokenByStart();
  for (std::size_t i = 0; i < session.steps.size() && broken.empty() && !walks.isOver(); ++i) {
    broken = walks.make(session.steps[i]);
  }
  return broken.empty() ? walks.brokenAtEnd() : broken;
}

namespace {

/// Leaves parts out as long as the session still breaks the law.
class Shortening {
 public:
  Shortening(Session session, FailAllocation const& failAllocation)
      : session_(std::move(session)), failAllocation_(failAllocation) {}

  Session result() {
    bool shorter = true;
    while (shorter && trials_ < mostTrials) {
      shorter = shorten([](Session & s) -> auto& { return s.steps; });
      shorter |= shorten([](Session & s) -> auto& { return s.start.rules.objects; });
      for (std::size_t i = 0; i < session_.start.rules.objects.size(); ++i) {
        shorter |= shorten([i](Session & s) -> auto& { return s.start.rules.objects[i].params; });
        shorter |= shorten([i](Session & s) -> auto& { return s.start.rules.objects[i].children; });
        shorter |= shorten([i](Session & s) -> auto& { return s.start.rules.objects[i].programs; });
        for (std::size_t j = 0; j < session_.start.rules.objects[i].params.size(); ++j) {
          shorter |= shorten([=](Session & s) -> auto& { return s.start.rules.objects[i].params[j].lines; });
        }
        for (std::size_t j = 0; j < session_.start.rules.objects[i].children.size(); ++j) {
          shorter |= shorten([=](Session & s) -> auto& { return s.start.rules.objects[i].children[j].lines; });
        }
      }
      shorter |= shorten([](Session & s) -> auto& { return s.start.rules.checks; });
      shorter |= shorten([](Session & s) -> auto& { return s.start.rules.lists; });
      shorter |= shortenState([](Session & s) -> auto& { return s.start.base; });
      shorter |= shortenState([](Session & s) -> auto& { return s.start.guide; });
      for (std::size_t i = 0; i < session_.steps.size(); ++i) {
        shorter |= shortenState([i](Session & s) -> auto& { return s.steps[i].base; });
        shorter |= shortenState([i](Session & s) -> auto& { return s.steps[i].guide; });
      }
    }
    return std::move(session_);
  }

 private:
  static constexpr std::size_t mostTrials = 20'000;

  bool isBroken(Session const& session) {
    ++trials_;
    try {
      return !brokenBy(session, failAllocation_).empty();
    } catch (Error const&) {
      return false;  // the shortened text is no rule file
    }
  }

  /// Leaves out runs of items, first long ones.
  template <typename Items>
  bool shorten(Items const& items) {
    bool shorter = false;
    for (std::size_t length = std::max<std::size_t>(items(session_).size() / 2, 1); length > 0; length /= 2) {
      for (std::size_t end = items(session_).size(); end >= length && trials_ < mostTrials;) {
        Session trial = session_;
        auto& all = items(trial);
        auto const last = all.begin() + static_cast<std::ptrdiff_t>(end);
        all.erase(last - static_cast<std::ptrdiff_t>(length), last);
        end -= length;
        if (isBroken(trial)) {
          session_ = std::move(trial);
          shorter = true;
        }
      }
    }
    return shorter;
  }

  template <typename State>
  bool shortenState(State const& state) {
    bool shorter = false;
    ModelState const whole = state(session_);
    for (auto const& [path, params] : whole) {
      auto const leaveOut = [&](auto const& change) {
        if (trials_ >= mostTrials) return false;
        Session trial = session_;
        change(state(trial));
        if (!isBroken(trial)) return false;
        session_ = std::move(trial);
        return shorter = true;
      };
      if (leaveOut([&path = path](ModelState& s) { s.erase(path); })) continue;
      for (auto const& param : params) {
        (void)leaveOut([&path = path, &param](ModelState& s) { s[path].erase(param.first); });
      }
    }
    return shorter;
  }

  Session session_;
  FailAllocation const& failAllocation_;
  std::size_t trials_ = 0;
};

}  // namespace

Session shortened(Session session, FailAllocation const& failAllocation) {
  return Shortening(std::move(session), failAllocation).result();
}

std::string explained(Session const& session, FailAllocation const& failAllocation) {
  Session const brief = shortened(session, failAllocation);
  std::string const broken = brokenBy(brief, failAllocation);
  if (broken.empty()) return "the law is broken only once, in this session:\n" + session.text();
  return broken + "\n\nin the session\n" + brief.text();
}

EqualWalksReport checkEqualWalks(EqualWalksPlan const& plan) {
  EqualWalksReport report;
  for (std::uint32_t seed = plan.firstSeed; report.steps < plan.steps; ++seed) {
    RandomNumbers choice(seed);
    RandomRuleBase random{RandomNumbers(seed)};
    std::optional<std::size_t> failingStep;
    if (plan.failAllocation && choice() % 3 == 0) failingStep = choice() % plan.stepsOfASession;
    // Small steps make few allocations, so small numbers are as frequent as large ones.
    std::uint32_t const mostAllocations = 1U << (1 + choice() % 12);
    std::size_t const failingAllocation = choice() % mostAllocations;

    Session session{random.start(), {}};
    EqualWalks walks(session.start, plan.failAllocation, failingStep.has_value());
    std::string broken = walks.brokenByStart();
    for (std::size_t i = 0; i < plan.stepsOfASession && broken.empty() && !walks.isOver(); ++i) {
      session.steps.push_back(random.nextStep(walks.state()));
      if (failingStep == i) session.steps.back().failingAllocation = failingAllocation;
      broken = walks.make(session.steps.back());
      ++report.steps;
      if (changedAnything(walks.state())) ++report.changing;
    }
    if (broken.empty()) broken = walks.brokenAtEnd();
    ++report.sessions;
    report.rolledBack += walks.rolledBack();
    report.refused += walks.refused();
    report.thrown += walks.thrown();
    report.failedAllocations += walks.failed();
    report.incomparable += walks.isOver() ? 1 : 0;
    if (!broken.empty()) {
      report.broken = "seed " + std::to_string(seed) + ": " + explained(session, plan.failAllocation);
      return report;
    }
    if (plan.progress && seed % 100 == 0) plan.progress(seed, report.steps);
  }
  return report;
}

}  // namespace tarn::test
