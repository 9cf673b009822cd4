#include "support/SessionLaw.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/session/Sentences.h>

#include "support/EqualWalks.h"
#include "support/Reachable.h"

namespace tarn::test {

namespace {

using session::ChildTypeRecord;
using session::EditResult;
using session::Effect;
using session::Item;
using session::ObjectRecord;
using session::ParamRecord;
using session::sentenceOf;
using session::sentencesOf;
using session::Waiting;

std::string listed(std::vector<std::string> const& items) {
  std::string text;
  for (std::string const& item : items) text += item + "|";
  return text;
}

std::string shown(std::optional<std::string> const& text) {
  return text ? '"' + *text + '"' : "-";
}

std::string shown(std::optional<bool> const& decision) {
  return decision ? *decision ? "on" : "off" : "-";
}

std::string shown(ParamAllowedValues const& allowed) {
  std::ostringstream out;
  out << allowed.hasAllowedValues << allowed.hasSubset << allowed.allowsAnyValue << ' '
      << listed(allowed.allowedValues.vector()) << ' ' << listed(allowed.subsetValues.vector());
  return out.str();
}

std::string shown(std::optional<Waiting> const& waiting) {
  return waiting ? sentenceOf(*waiting) : "-";
}

std::string shown(ParamRecord const& r) {
  std::ostringstream out;
  out << sentenceOf(r) << ' ' << r.type << r.required << r.present << r.offered << ' ' << r.reason << ' '
      << shown(r.decision) << ' ' << shown(r.value) << ' ' << originName(r.origin) << ' ' << r.step << ' '
      << shown(r.waiting) << ' ' << shown(r.valueInModel) << ' ' << shown(r.defaultValue) << ' ' << shown(r.lowerBound)
      << shown(r.upperBound) << ' ' << r.quantityType << ' ' << listed(r.units) << ' ' << shown(r.allowed);
  return out.str();
}

std::string shown(ObjectRecord const& r) {
  std::ostringstream out;
  out << sentenceOf(r) << ' ' << r.required << r.singleton << r.editable << r.present << r.offered << r.available
      << r.inModel << ' ' << r.reason << ' ' << shown(r.decision) << ' ' << shown(r.waiting) << ' ' << r.params << ' '
      << r.children;
  return out.str();
}

std::string shown(ChildTypeRecord const& r) {
  return sentenceOf(r) + (r.canAdd ? " can add " : " ") +
         (r.allowedNames ? listed(r.allowedNames->vector()) : std::string("any")) + ' ' + listed(r.present) + ' ' +
         listed(r.offered);
}

std::string shown(EditResult const& result) {
  std::string text = sentenceOf(result) + '\n';
  for (Edit const& edit : result.made) text += "  made " + sentenceOf(edit) + '\n';
  for (auto const& sentence : sentencesOf(result.effect)) text += "  " + sentence + '\n';
  return text;
}

std::vector<std::string> presentObjects(session::Session const& session) {
  std::vector<std::string> objects;
  DynamicTDF const& tree = session.provisional().getActiveTree();
  if (!session.provisional().hasObject(session.root())) return objects;
  objects.push_back(session.root());
  for (std::size_t i = 0; i < objects.size(); ++i) {
    std::vector<std::string> children;
    std::string const path = objects[i];
    if (tree.getChildObjectPaths(path, children)) objects.insert(objects.end(), children.begin(), children.end());
  }
  return objects;
}

/// Everything that can be looked at.
std::set<Item> itemsOf(session::Session const& session) {
  std::set<Item> items;
  auto const addObject = [&](std::string const& path) {
    items.insert({path, std::nullopt});
    for (std::string const& name : session.params(path)) items.insert({path, name});
    std::vector<std::string> names;
    session.provisional().getActiveTree().getParameterNames(path, names);
    for (std::string const& name : names) items.insert({path, name});
  };
  for (std::string const& path : presentObjects(session)) addObject(path);
  for (std::string const& path : session.provisional().getAvailPotObjects()) addObject(path);
  for (auto const& [path, name] : session.provisional().getAvailPotParams()) items.insert({path, name});
  for (Waiting const& waiting : session.waiting()) items.insert(waiting.item);
  return items;
}

/// All that an effect can tell about an item.
struct Facts {
  bool isPresent = false;
  bool isOffered = false;
  bool isNumeric = false;
  std::optional<std::string> value;
  ParamAllowedValues allowed;
  std::string defaultValue;
  std::pair<std::string, std::string> bounds;
  std::string quantity;
  std::optional<Waiting> waiting;
};

Facts factsOf(session::Session const& session, Item const& item) {
  Facts facts;
  if (!item.isParam()) {
    auto const record = session.lookObject(item.path);
    if (!record) return facts;
    facts.isPresent = record->present;
    facts.isOffered = record->offered;
    facts.waiting = record->waiting;
    return facts;
  }
  auto const record = session.lookParam(item.path, *item.name);
  if (!record) return facts;
  facts.isPresent = record->present;
  facts.isOffered = record->offered;
  facts.isNumeric = TDFParam::isNumericType(record->type);
  facts.value = record->value;
  facts.allowed = record->allowed;
  facts.defaultValue = record->defaultValue.value_or("");
  facts.bounds = {record->lowerBound.value_or(""), record->upperBound.value_or("")};
  facts.quantity = record->quantityType;
  facts.waiting = record->waiting;
  return facts;
}

std::map<Item, Facts> allFacts(session::Session const& session) {
  std::map<Item, Facts> all;
  for (Item const& item : itemsOf(session)) all[item] = factsOf(session, item);
  for (Waiting const& waiting : session.waiting()) all[waiting.item].waiting = waiting;
  return all;
}

Effect differenceOf(std::map<Item, Facts> const& before, std::map<Item, Facts> const& after) {
  std::map<Item, std::pair<Facts, Facts>> all;
  for (auto const& [item, facts] : before) all[item].first = facts;
  for (auto const& [item, facts] : after) all[item].second = facts;
  Effect effect;
  for (auto const& [item, both] : all) {
    auto const& [a, b] = both;
    if (a.isOffered != b.isOffered) (b.isOffered ? effect.offersGained : effect.offersLost).push_back(item);
    if (a.waiting != b.waiting) effect.waiting.push_back({item, a.waiting, b.waiting});
    if (!item.isParam()) {
      if (a.isPresent != b.isPresent)
        (b.isPresent ? effect.objectsCreated : effect.objectsDeleted).push_back(item.path);
      continue;
    }
    std::string const& path = item.path;
    std::string const& name = *item.name;
    if (a.value != b.value) effect.values.push_back({path, name, a.value, b.value});
    if (!(a.isPresent || a.isOffered) || !(b.isPresent || b.isOffered)) continue;
    if (!a.allowed.isEqualTo(b.allowed)) effect.choices.push_back({path, name, a.allowed, b.allowed});
    if (a.defaultValue != b.defaultValue) effect.defaults.push_back({path, name, a.defaultValue, b.defaultValue});
    if (!a.isPresent || !b.isPresent || !a.isNumeric) continue;
    if (a.bounds != b.bounds) effect.bounds.push_back({path, name, a.bounds, b.bounds});
    if (a.quantity != b.quantity) effect.quantities.push_back({path, name, a.quantity, b.quantity});
  }
  return effect;
}

std::string textOf(Effect const& effect) {
  std::string text;
  for (std::string const& sentence : sentencesOf(effect)) text += "    " + sentence + '\n';
  return text;
}

/// A value that a proof names is the present one, or it says that it is old and names the present one too.
std::string checkReads(session::Proof const& proof, session::Session const& session) {
  auto const& model = *session.provisional().getModelOfRules();
  for (session::ProofNode const& node : proof.nodes) {
    for (session::ProofRule const& rule : node.rules) {
      if (rule.reads.size() != rule.explanation.reads.size()) return "a rule of a proof lacks a read";
      for (session::ProofRead const& read : rule.reads) {
        if (!read.read.isParameter()) continue;
        bool const isPresent = model.hasParameter(read.read.object, read.read.name);
        std::string const value = isPresent ? model.getParameterValue(read.read.object, read.read.name) : std::string();
        if (isPresent != read.valueNow.has_value() || (isPresent && *read.valueNow != value)) {
          return "a proof names another present value of " + read.read.name;
        }
        bool const isSame = read.read.isPresent == isPresent &&
                            (read.read.kind == ModelRead::Kind::Presence || read.read.value == value);
        if (!isSame && !read.isOld && !value.empty() && value.size() < 100) {
          return "a proof names an old value of " + read.read.name + " as the present one";
        }
      }
    }
  }
  return {};
}

/// The first line in which the two texts differ.
std::string firstDifferentLine(std::string const& a, std::string const& b) {
  std::istringstream first(a);
  std::istringstream second(b);
  for (;;) {
    std::string lineOfFirst;
    std::string lineOfSecond;
    bool const hasFirst = static_cast<bool>(std::getline(first, lineOfFirst));
    bool const hasSecond = static_cast<bool>(std::getline(second, lineOfSecond));
    if (!hasFirst && !hasSecond) return {};
    if (lineOfFirst != lineOfSecond || hasFirst != hasSecond) return "  " + lineOfFirst + "\n  " + lineOfSecond + '\n';
  }
}

}  // namespace

std::string answersOf(session::Session const& session) {
  std::ostringstream out;
  for (Item const& item : itemsOf(session)) {
    out << item.text() << ": ";
    if (item.isParam()) {
      auto const record = session.lookParam(item.path, *item.name);
      out << (record ? shown(*record) : "unknown");
    } else {
      auto const record = session.lookObject(item.path);
      out << (record ? shown(*record) : "unknown") << '\n';
      for (ChildTypeRecord const& type : session.childTypes(item.path)) out << "  " << shown(type) << '\n';
    }
    out << '\n';
  }
  for (auto const& waiting : session.waiting()) out << "waiting " << sentenceOf(waiting) << '\n';
  for (auto const& own : session.own()) out << "own " << sentenceOf(own) << '\n';
  for (auto const& difference : session.differences()) out << "difference " << sentenceOf(difference) << '\n';
  for (auto const& found : session.find("o", 30)) out << "found " << sentenceOf(found) << '\n';
  for (auto const& [path, params] : session.result()) {
    out << "result " << path << '\n';
    for (auto const& [name, value] : params) out << "  " << name << " = " << value << '\n';
  }
  for (auto const& step : session.steps()) out << "step " << sentenceOf(step) << '\n';
  if (EditResult const* const last = session.lastResult()) out << "last " << shown(*last);
  return out.str();
}

SessionLaw::Counts& SessionLaw::Counts::operator+=(Counts const& other) {
  applied += other.applied;
  refused += other.refused;
  failedRules += other.failedRules;
  tried += other.tried;
  undone += other.undone;
  redone += other.redone;
  changing += other.changing;
  waiting += other.waiting;
  followed += other.followed;
  return *this;
}

SessionLaw::SessionLaw(RandomNumbers rules, RandomNumbers operations)
    : random_(std::move(operations)), edits_(std::move(rules)), rules_(edits_.start().rules.load()) {
  constexpr std::size_t limits[] = {0, 1, 2, 3, 1000, 1000};
  quickSteps_ = limits[pick(std::size(limits))];
  opened_ = session::Session::open(*rules_, edits_.start().base, options());
}

session::SessionOptions SessionLaw::options() const {
  session::SessionOptions options;
  options.root = edits_.start().root;
  options.quickSteps = quickSteps_;
  return options;
}

std::string SessionLaw::text() const {
  std::string text = edits_.start().text() + "quick steps " + std::to_string(quickSteps_) + '\n';
  for (std::string const& operation : operations_) text += operation + '\n';
  return text;
}

/// An edit that probably applies, or one of anything.
Edit SessionLaw::someEdit() {
  session::Session const& session = *opened_.session;
  edits_.continueWith(RandomNumbers(random_()));
  if (pick(3) != 0) {
    SessionStep step;
    do {
      step = edits_.nextStep(session.provisional());
    } while (step.kind != SessionStep::Kind::MakeEdit);
    return step.edit;
  }
  std::set<Item> const items = itemsOf(session);
  if (items.empty()) return Edit::addObject(session.root() + "/Region:a");
  Item const item = *std::next(items.begin(), static_cast<std::ptrdiff_t>(pick(items.size())));
  if (!item.isParam()) return pick(2) == 0 ? Edit::activateObject(item.path) : Edit::deactivateObject(item.path);
  auto const record = session.lookParam(item.path, *item.name);
  if (!record || pick(4) == 0) {
    return pick(2) == 0 ? Edit::activateParam(item.path, *item.name) : Edit::deactivateParam(item.path, *item.name);
  }
  std::string value = std::to_string(pick(5));
  if (!record->allowed.allowedValues.empty()) {
    value = record->allowed.allowedValues[pick(record->allowed.allowedValues.size())];
  } else if (record->type == TDFParam::Logical) {
    value = pick(2) == 0 ? "true" : "false";
  }
  return Edit::setParam(item.path, *item.name, value);
}

std::string SessionLaw::step() {
  switch (pick(10)) {
    case 0:
      return tryEdits();
    case 1:
    case 2:
      return undo();
    case 3:
      return redo();
    case 4:
      return pick(3) == 0 ? compareWithFresh() : rename();
    default:
      return edit();
  }
}

std::string SessionLaw::edit() {
  session::Session& session = *opened_.session;
  std::vector<Edit> edits = {someEdit()};
  while (pick(4) == 0) edits.push_back(someEdit());
  operations_.emplace_back("edit");
  for (Edit const& edit : edits) operations_.back() += "; " + sentenceOf(edit);

  std::string const before = answersOf(session);
  auto const factsBefore = allFacts(session);
  std::size_t const undoneBefore = session.undoneSteps();
  EditResult const tried = session.tryEdits(edits);
  if (std::string const now = answersOf(session); now != before) {
    return "a trial changed an answer:\n" + firstDifferentLine(before, now);
  }
  EditResult result = session.edit(edits);
  EditResult asTried = result;
  asTried.step = 0;
  if (!(asTried == tried)) return "a trial answers otherwise than the edit:\n" + shown(tried) + shown(asTried);
  if (result.refused) {
    ++counts_.refused;
    if (result.refused->code == session::RefusalCode::RuleFailed) ++counts_.failedRules;
    if (session.undoneSteps() != undoneBefore) return "a refused edit forgot undone steps";
    std::string const now = answersOf(session);
    return now == before ? std::string() : "a refused edit changed an answer:\n" + firstDifferentLine(before, now);
  }
  ++counts_.applied;
  if (!result.effect.empty()) ++counts_.changing;
  if (!result.effect.waiting.empty()) ++counts_.waiting;
  follows_.resize(session.steps().size() - 1);
  follows_.push_back(false);
  Effect const expected = differenceOf(factsBefore, allFacts(session));
  if (expected == result.effect) return {};
  return "the effect is not the difference of the answers:\n" + textOf(result.effect) + "  expected:\n" +
         textOf(expected);
}

std::string SessionLaw::rename() {
  session::Session& session = *opened_.session;
  std::vector<std::string> named;
  for (std::string const& path : presentObjects(session)) {
    if (PathUtils::lastName(path) != PathUtils::lastType(path)) named.push_back(path);
  }
  if (named.empty()) return {};
  std::string const path = named[pick(named.size())];
  std::string const name = std::string(PathUtils::lastName(path)) + std::to_string(pick(3));
  operations_.push_back("rename followed " + path + " to " + name);
  std::string const before = answersOf(session);
  auto const factsBefore = allFacts(session);
  EditResult const result = session.renameFollowed(path, name);
  if (result.refused) {
    std::string const now = answersOf(session);
    return now == before ? std::string() : "a refused renaming changed an answer:\n" + firstDifferentLine(before, now);
  }
  counts_.followed += result.followed.size();
  follows_.resize(session.steps().size() - 1);
  follows_.push_back(true);
  Effect const expected = differenceOf(factsBefore, allFacts(session));
  if (expected == result.effect) return {};
  return "the effect of a renaming is not the difference of the answers:\n" + textOf(result.effect) + "  expected:\n" +
         textOf(expected);
}

std::string SessionLaw::tryEdits() {
  session::Session& session = *opened_.session;
  std::vector<Edit> const edits = {someEdit(), someEdit()};
  operations_.push_back("try; " + sentenceOf(edits[0]) + "; " + sentenceOf(edits[1]));
  std::string const before = answersOf(session);
  (void)session.tryEdits(edits);
  ++counts_.tried;
  std::string const now = answersOf(session);
  return now == before ? std::string() : "a trial changed an answer:\n" + firstDifferentLine(before, now);
}

std::string SessionLaw::undo() {
  session::Session& session = *opened_.session;
  operations_.emplace_back("undo");
  std::string const before = answersOf(session);
  auto const factsBefore = allFacts(session);
  auto const undone = session.undo();
  if (!undone) return {};
  ++counts_.undone;
  if (undone->refused) return "an undo was refused:\n" + shown(*undone);
  Effect const expected = differenceOf(factsBefore, allFacts(session));
  if (!(expected == undone->effect)) {
    return "the effect of undo is not the difference of the answers:\n" + textOf(undone->effect) + "  expected:\n" +
           textOf(expected);
  }
  if (pick(2) == 0) return {};
  operations_.emplace_back("redo at once");
  auto const redone = session.redo();
  if (!redone || redone->refused) return "the last undone step cannot be made again";
  std::string const now = answersOf(session);
  return now == before ? std::string() : "undo and redo changed an answer:\n" + firstDifferentLine(before, now);
}

std::string SessionLaw::redo() {
  session::Session& session = *opened_.session;
  operations_.emplace_back("redo");
  auto const factsBefore = allFacts(session);
  auto const redone = session.redo();
  if (!redone) return {};
  // The step may be one that was made only to check a way.
  if (follows_.size() < session.steps().size()) follows_.resize(session.steps().size(), false);
  ++counts_.redone;
  if (redone->refused) return "a redo was refused:\n" + shown(*redone);
  Effect const expected = differenceOf(factsBefore, allFacts(session));
  if (expected == redone->effect) return {};
  return "the effect of redo is not the difference of the answers:\n" + textOf(redone->effect) + "  expected:\n" +
         textOf(expected);
}

std::string SessionLaw::compareWithFresh() {
  session::Session const& session = *opened_.session;
  operations_.emplace_back("compare");
  auto const fresh = session::Session::open(*rules_, edits_.start().base, options());
  if (!fresh.session) return "a fresh session cannot be opened";
  for (std::size_t i = 0; i < session.steps().size(); ++i) {
    session::Step const& step = session.steps()[i];
    EditResult const result = follows_[i] ? fresh.session->renameFollowed(step.edits[0].path, step.edits[0].name)
                                          : fresh.session->edit(step.edits);
    if (result.refused) return "a fresh session refuses a step:\n" + shown(result);
  }
  std::string const here = answersOf(session);
  std::string const there = answersOf(*fresh.session);
  if (here != there) return "a fresh session answers otherwise:\n" + firstDifferentLine(here, there);
  std::string const below = firstDifference(session.provisional(), fresh.session->provisional());
  return below.empty() ? std::string() : "the state below differs from a fresh one: " + below;
}

bool SessionLaw::openAnew() {
  opened_ = session::Session::open(*rules_, edits_.start().base, options());
  follows_.clear();
  operations_.emplace_back("new session");
  return isOpen();
}

std::string SessionLaw::ask() {
  session::Session& session = *opened_.session;
  std::set<Item> const items = itemsOf(session);
  if (items.empty()) return {};
  Item const item = *std::next(items.begin(), static_cast<std::ptrdiff_t>(pick(items.size())));
  operations_.push_back("ask about " + item.text());
  std::string const before = answersOf(session);
  auto const& state = session.provisional();
  bool const isPresent = item.isParam() ? state.hasParameter(item.path, *item.name) : state.hasObject(item.path);

  std::string value = "1";
  // Numbers may come with units that the rules add, so a goal has a value only where it is a text.
  bool isText = false;
  if (item.isParam()) {
    auto const record = session.lookParam(item.path, *item.name);
    if (record && !record->allowed.allowedValues.empty()) {
      value = record->allowed.allowedValues[pick(record->allowed.allowedValues.size())];
      isText = record->type == TDFParam::String;
    }
  }
  for (session::Question const question : {session::Question::Presence, session::Question::Value,
                                           session::Question::Allowed, session::Question::LastEdit}) {
    if (question == session::Question::Allowed && !item.isParam()) continue;
    session::Proof const proof = session.why(item, {question, value, 1 + pick(3)});
    if (proof.nodes.empty()) return "a question has no answer";
    std::string const text = session::textOf(proof);
    if (text.empty() || std::count(text.begin(), text.end(), '\n') > 10) return "a proof has no text, or too much";
    bool const isOfPresence = question == session::Question::Presence;
    auto const fact = static_cast<int>(proof.answer().fact);
    bool const saysPresent = fact >= static_cast<int>(session::Fact::IsRoot);
    if (isOfPresence && saysPresent != isPresent) return "a proof contradicts the state:\n" + text;
    if (std::string const broken = checkReads(proof, session); !broken.empty()) return broken + '\n' + text;
  }
  session::HowOptions bounds;
  bounds.maxEdits = 2;
  bounds.maxTrials = 150;
  session::Goal const goal{item, isText && pick(2) == 0 ? std::optional(value) : std::nullopt};
  session::HowResult const found = session.how(goal, bounds);
  std::string const now = answersOf(session);
  if (now != before) return "a question changed an answer:\n" + firstDifferentLine(before, now);
  if (found.answer == session::HowAnswer::Found && found.ways.empty()) return "a way was found and is not there";
  return checkHow(session, goal, std::nullopt, found);
}

SessionLawReport checkSessionLaw(SessionLawPlan const& plan) {
  SessionLawReport report;
  std::size_t operations = 0;
  for (std::uint32_t seed = plan.firstSeed; operations < plan.operations; ++seed) {
    SessionLaw law{RandomNumbers(seed), RandomNumbers(seed + 1'000'000)};
    ++report.sessions;
    ++operations;
    if (!law.isOpen()) continue;
    std::string broken;
    bool isFaulty = false;
    for (std::size_t i = 0; i <= plan.operationsOfASession && broken.empty(); ++i, ++operations) {
      try {
        broken = i < plan.operationsOfASession ? law.step() : law.compareWithFresh();
      } catch (RuleFault const&) {
        // A question evaluates rules, and passes on what a rule throws. The session of a faulty rule ends here, and
        // another one goes on.
        isFaulty = true;
        if (!law.openAnew()) break;
      }
    }
    report.faulty += isFaulty ? 1 : 0;
    report.counts += law.counts();
    if (broken.empty()) continue;
    report.broken = "seed " + std::to_string(seed) + ": " + broken + '\n' + law.text();
    break;
  }
  return report;
}

}  // namespace tarn::test
