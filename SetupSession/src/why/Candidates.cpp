#include "why/Candidates.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFParam.h>

#include "why/Leaves.h"

namespace tarn::session {

namespace {

using Operation = Explanation::Operation;

/// So many values of one parameter are tried, so many aims are followed, and so many objects of a set are changed.
constexpr std::size_t mostValues = 64;
constexpr std::size_t mostAims = 200;
constexpr std::size_t mostObjects = 8;

std::string numberText(double number) {
  std::array<char, 32> text{};
  auto const end = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::general, 12).ptr;
  return {text.data(), end};
}

/// The number that differs from `number` by one in the last written digit: 11 for "10", 0.6 for "0.5", in the same
/// units. "" for what is not a number.
std::string beside(std::string const& number, bool isBelow) {
  auto const quantity = TDFParam::asQuantity(number);
  if (!quantity || !std::isfinite(quantity->number)) return {};
  std::string const digits(quantity->numberText);
  std::size_t const exponentAt = digits.find_first_of("eE");
  std::string const mantissa = digits.substr(0, exponentAt);
  std::size_t const point = mantissa.find('.');
  int exponent = point == std::string::npos ? 0 : -static_cast<int>(mantissa.size() - point - 1);
  if (exponentAt != std::string::npos) exponent += std::atoi(digits.c_str() + exponentAt + 1);
  double const next = quantity->number + (isBelow ? -1 : 1) * std::pow(10, exponent);
  std::string const units(quantity->units);
  return units.empty() ? numberText(next) : numberText(next) + " [" + units + ']';
}

std::string textOf(Explanation::Result const& result) {
  if (result.kind == Explanation::Result::Kind::Truth) return result.truth ? "true" : "false";
  if (result.text.empty() && result.kind == Explanation::Result::Kind::Number) return numberText(result.number);
  return result.text;
}

/// Values that are on the other side of a limit, for `p op limit`.
std::vector<std::string> valuesBeside(Operation operation, bool wanted, Explanation::Result const& limit) {
  if (!std::isfinite(limit.number)) return {};
  bool const isBelow = (operation == Operation::Less || operation == Operation::LessEqual) == wanted;
  bool const isStrict = (operation == Operation::Less || operation == Operation::Greater) == wanted;
  std::vector<std::string> values;
  if (!isStrict) values.push_back(textOf(limit));
  values.push_back(beside(textOf(limit), isBelow));
  std::erase(values, std::string());
  return values;
}

Item itemOf(ModelRead const& read) {
  return {read.object, read.isParameter() ? std::optional(read.name) : std::nullopt};
}

}  // namespace

std::vector<Edit> Candidates::towards(Goal const& goal) {
  aimAt({goal.item, goal.value});
  for (std::size_t i = 0; i < aims_.size() && !isFull(); ++i) open(Aim(aims_[i]));
  return std::move(edits_);
}

void Candidates::add(Edit edit) {
  if (std::find(edits_.begin(), edits_.end(), edit) != edits_.end()) return;
  if (!isFull()) edits_.push_back(std::move(edit));
}

void Candidates::aimAt(Aim aim) {
  if (!StringUtilities::isPathRootedAt(state_.state().getActiveRoot(), aim.item.path)) return;
  if (aims_.size() < mostAims && known_.insert(aim).second) aims_.push_back(std::move(aim));
}

void Candidates::open(Aim const& aim) {
  bool const isPresent =
      aim.item.isParam() ? state_.value(aim.item.path, *aim.item.name) != nullptr : state_.hasObject(aim.item.path);
  if (aim.isAbsence) {
    if (isPresent) openAbsence(aim.item);
    return;
  }
  if (!isPresent) {
    Proof const proof = Prover(sources_).prove(Question::Presence, aim.item, {}, 1);
    openPresence(aim, proof, 0);
    if (aim.item.isParam() && aim.value) {
      (void)openValue(aim);
      openOverride(aim.item);
    }
    return;
  }
  if (!aim.item.isParam() || !aim.value) return;
  Proof const why = Prover(sources_).prove(Question::Value, aim.item, {}, 1);
  if (why.answer().fact == Fact::Override) {
    openRules(why.answer(), *aim.value);
    return;
  }
  if (!openValue(aim)) return;
  add(Edit::setParam(aim.item.path, *aim.item.name, *aim.value));
  if (!state_.state().getParamDecision(aim.item.path, *aim.item.name).value_or(true)) {
    add(Edit::activateParam(aim.item.path, *aim.item.name));
  }
}

/// Looks for what would make the value allowed. Returns whether it is allowed already.
bool Candidates::openValue(Aim const& aim) {
  Proof const allowed = Prover(sources_).prove(Question::Allowed, aim.item, *aim.value, 1);
  switch (allowed.answer().fact) {
    case Fact::NotInList:
    case Fact::CheckFails:
      openRules(allowed.answer(), *aim.value);
      return false;
    case Fact::Unused:
    case Fact::UnknownToTheRules:
      return false;
    default:
      return true;
  }
}

/// Looks for what would end an override that waits for an absent parameter: it would leave its value behind.
void Candidates::openOverride(Item const& item) {
  ParamRules const rules = state_.rulesOfParam(item.path, *item.name);
  if (!rules) return;
  ModelTDF const& model = *state_.state().getModelOfRules();
  for (ParamValueDef::GuardedText const& check : rules.value->overrideChecks) {
    if (check.when == nullptr) return;
    openExplanation(check.when->explain(TDFContext(item.path), model), {});
    EvalContext evaluation(&model);
    if (check.when->evaluate(TDFContext(item.path), &evaluation)) return;
  }
}

/// Switches an item off, and looks for what would withdraw it.
void Candidates::openAbsence(Item const& item) {
  Proof const proof = Prover(sources_).prove(Question::Presence, item, {}, 1);
  if (proof.answer().fact == Fact::AskedFor) {
    if (item.isParam()) {
      add(Edit::deactivateParam(item.path, *item.name));
    } else {
      add(isNamedObject(item.path) ? Edit::removeObject(item.path) : Edit::deactivateObject(item.path));
    }
  }
  openRules(proof.answer());
  if (item.isParam()) aimAt({{item.path, std::nullopt}, std::nullopt, true});
}

void Candidates::openPresence(Aim const& aim, Proof const& proof, std::size_t index) {
  ProofNode const& node = proof.nodes[index];
  Item const& item = node.item;
  switch (node.fact) {
    case Fact::ObjectAbsent:
      aimAt({proof.nodes[node.children.front()].item, std::nullopt});
      return;
    case Fact::NotLive:
      if (node.contextParam.empty()) return;
      for (std::string const& value : node.needed) {
        std::string const holder = item.isParam() ? item.path : std::string(PathUtils::parentOf(item.path));
        setTo({holder, node.contextParam}, value);
      }
      return;
    case Fact::NotAvailable:
    case Fact::NoAllowedValue:
    case Fact::NameNotAllowed:
      if (node.isOutdated) {
        // The rules would have it now, so it comes when it is asked for.
        ask(aim);
        return;
      }
      openRules(node, node.fact == Fact::NameNotAllowed ? std::string(PathUtils::lastName(item.path)) : std::string());
      return;
    case Fact::NotAskedFor: {
      add(Edit::addObject(item.path));
      std::string const parent(PathUtils::parentOf(item.path));
      std::string const name(PathUtils::lastName(item.path));
      // A copy brings the values of another object with it.
      std::vector<std::string> const others =
          choices_.namedChildren(parent, std::string(PathUtils::lastType(item.path)));
      for (std::size_t i = 0; i < std::min(others.size(), mostObjects); ++i) {
        add(Edit::duplicateObject(others[i], name));
      }
      return;
    }
    case Fact::NeverSwitchedOn:
    case Fact::SwitchedOff:
      if (!item.isParam() || node.fact == Fact::NeverSwitchedOn) {
        ask(aim);
        return;
      }
      if (aim.value) setTo(item, *aim.value);
      add(Edit::activateParam(item.path, *item.name));
      return;
    case Fact::ValueRefused:
      add(Edit::activateParam(item.path, *item.name));
      if (aim.value) setTo(item, *aim.value);
      for (std::size_t const child : node.children) openRules(proof.nodes[child]);
      return;
    default:
      return;
  }
}

/// Asks for an item that is available, or would be in the next update.
void Candidates::ask(Aim const& aim) {
  Item const& item = aim.item;
  if (!item.isParam()) {
    add(Edit::activateObject(item.path));
  } else if (aim.value) {
    add(Edit::setParam(item.path, *item.name, *aim.value));
  } else {
    add(Edit::activateParam(item.path, *item.name));
    // Another value than the default may be what the rest of a rule needs.
    for (std::string const& value : choices_.values(item)) add(Edit::setParam(item.path, *item.name, value));
  }
}

void Candidates::openRules(ProofNode const& node, std::string const& value) {
  for (ProofRule const& rule : node.rules) openExplanation(rule.explanation, value);
}

void Candidates::openExplanation(Explanation const& explanation, std::string const& value) {
  if (explanation.nodes.empty()) return;
  if (explanation.nodes.front().result.kind == Explanation::Result::Kind::Truth) {
    for (Leaf const& leaf : leavesOf(explanation)) openLeaf(explanation, leaf.node, leaf.wanted);
    return;
  }
  openReads(explanation, 0, value.empty() ? std::vector<std::string>() : std::vector{value});
  // The value could be one of the names of objects.
  if (value.empty() || value.find_first_of(":/,") != std::string::npos) return;
  for (ModelRead const& read : explanation.reads) {
    if (read.kind == ModelRead::Kind::ChildrenOfType) changeObjects(read, value);
  }
}

void Candidates::openLeaf(Explanation const& explanation, std::size_t index, bool wanted) {
  Explanation::Node const& node = explanation.nodes[index];
  switch (node.operation) {
    case Operation::Equal:
    case Operation::NotEqual:
    case Operation::Less:
    case Operation::LessEqual:
    case Operation::Greater:
    case Operation::GreaterEqual:
    case Operation::In:
    case Operation::NotIn:
      openComparison(explanation, node, wanted);
      break;
    case Operation::Parameter: {
      if (node.reads.empty()) break;
      Item const item = itemOf(explanation.reads[node.reads.front()]);
      setTo(item, wanted ? "true" : "false");
      setToOthers(item, {});
      if (!wanted) aimAt({item, std::nullopt, true});
      return;
    }
    case Operation::Exists:
      for (std::size_t const read : node.reads) {
        ModelRead const& asked = explanation.reads[read];
        if (asked.isParameter() || asked.kind == ModelRead::Kind::Object) {
          aimAt({itemOf(asked), std::nullopt, !wanted});
        } else {
          changeObjects(asked);
        }
      }
      return;
    case Operation::Any:
    case Operation::All:
      openSet(explanation, node);
      return;
    default:
      break;
  }
  // Texts that the part names may be what it looks for.
  std::vector<std::string> texts;
  std::vector<std::size_t> open{index};
  while (!open.empty()) {
    Explanation::Node const& part = explanation.nodes[open.back()];
    open.pop_back();
    open.insert(open.end(), part.children.rbegin(), part.children.rend());
    if (part.operation == Operation::Literal) texts.push_back(textOf(part.result));
  }
  openReads(explanation, index, texts);
}

void Candidates::openComparison(Explanation const& explanation, Explanation::Node const& node, bool wanted) {
  if (node.children.size() != 2) return;
  for (std::size_t side = 0; side < 2; ++side) {
    Explanation::Node const& subject = explanation.nodes[node.children[side]];
    Explanation::Node const& other = explanation.nodes[node.children[1 - side]];
    Operation const operation = side == 0 ? node.operation : mirrored(node.operation);
    if (subject.operation == Operation::Count) openSet(explanation, subject);
    bool const isParameter = subject.operation == Operation::Parameter && !subject.reads.empty();
    Item const item = isParameter ? itemOf(explanation.reads[subject.reads.front()]) : Item();
    // The subject should become one of these, or anything else than the other side.
    std::vector<std::string> wishes;
    bool isAnythingElse = false;
    switch (operation) {
      case Operation::Equal:
      case Operation::NotEqual:
        isAnythingElse = (operation == Operation::Equal) != wanted;
        wishes.push_back(textOf(other.result));
        break;
      case Operation::In:
      case Operation::NotIn:
        if (side != 0) continue;
        isAnythingElse = (operation == Operation::In) != wanted;
        wishes = other.result.items;
        break;
      default:
        wishes = valuesBeside(operation, wanted, other.result);
        break;
    }
    if (isAnythingElse) {
      std::string const next = wishes.empty() ? std::string() : beside(wishes.front(), false);
      wishes = {next.empty() ? "new" : next};
    }
    if (!isParameter) {
      for (std::string const& target : wishes) openArithmetic(explanation, node.children[side], target);
    } else if (isAnythingElse) {
      setToOthers(item, wishes);
      aimAt({item, std::nullopt, true});
    } else {
      for (std::string const& value : wishes) setTo(item, value);
    }
  }
}

/// The computation is not known, so each number gets the values that would be right if it were a summand, a subtrahend
/// or a factor.
void Candidates::openArithmetic(Explanation const& explanation, std::size_t side, std::string const& target) {
  auto const wanted = TDFParam::asQuantity(target);
  double const present = explanation.nodes[side].result.number;
  if (!wanted || !std::isfinite(wanted->number) || !std::isfinite(present)) return;
  double const missing = wanted->number - present;
  std::vector<std::size_t> open{side};
  while (!open.empty()) {
    Explanation::Node const& part = explanation.nodes[open.back()];
    open.pop_back();
    open.insert(open.end(), part.children.rbegin(), part.children.rend());
    if (part.operation != Operation::Parameter || part.reads.empty() || !std::isfinite(part.result.number)) continue;
    Item const item = itemOf(explanation.reads[part.reads.front()]);
    if (!choices_.isFree(item)) continue;
    std::vector<double> values = {part.result.number + missing, part.result.number - missing};
    if (present != 0) values.push_back(part.result.number * wanted->number / present);
    if (wanted->number != 0) values.push_back(part.result.number * present / wanted->number);
    for (double const value : values) {
      if (std::isfinite(value)) setTo(item, numberText(value));
    }
  }
}

void Candidates::openSet(Explanation const& explanation, Explanation::Node const& node, std::string const& name) {
  std::size_t objects = 0;
  for (std::size_t const child : node.children) {
    Explanation::Node const& part = explanation.nodes[child];
    if (part.operation == Operation::Objects) {
      for (std::size_t const read : part.reads) changeObjects(explanation.reads[read], name);
      continue;
    }
    if (part.result.kind != Explanation::Result::Kind::Truth || ++objects > mostObjects) continue;
    for (Leaf const& leaf : leavesOf(explanation, child)) openLeaf(explanation, leaf.node, leaf.wanted);
    if (isNamedObject(part.context)) add(Edit::removeObject(part.context));
  }
}

void Candidates::openReads(Explanation const& explanation, std::size_t node, std::vector<std::string> const& texts) {
  std::vector<std::size_t> open{node};
  while (!open.empty()) {
    Explanation::Node const& part = explanation.nodes[open.back()];
    open.pop_back();
    for (std::size_t const read : part.reads) {
      ModelRead const& asked = explanation.reads[read];
      if (asked.isParameter()) {
        setToOthers(itemOf(asked), texts);
        aimAt({itemOf(asked), std::nullopt, asked.isPresent});
      } else {
        changeObjects(asked);
      }
    }
    open.insert(open.end(), part.children.rbegin(), part.children.rend());
  }
}

/// Adds an object to a set that was read, copies or removes one of it, or switches on an object that was not there.
void Candidates::changeObjects(ModelRead const& read, std::string const& name) {
  if (read.kind == ModelRead::Kind::Object) {
    aimAt({{read.object, std::nullopt}, std::nullopt, read.isPresent});
    return;
  }
  if (read.kind != ModelRead::Kind::ChildrenOfType) return;
  if (!state_.hasObject(read.object)) {
    aimAt({{read.object, std::nullopt}, std::nullopt});
    return;
  }
  for (auto const& offered : state_.state().getAvailPotObjects()) {
    if (PathUtils::parentOf(offered) == read.object && PathUtils::lastType(offered) == read.name) {
      add(Edit::activateObject(offered));
    }
  }
  std::string const path = read.object + '/' + read.name;
  ChildRules const rules = state_.rulesOfChild(path);
  if (!rules) return;
  if (rules.entry->singleton) {
    aimAt({{path, std::nullopt}, std::nullopt, state_.hasObject(path)});
    return;
  }
  aimAt({{path + ':' + (name.empty() ? choices_.freeName(read.object, read.name) : name), std::nullopt}, std::nullopt});
  std::vector<std::string> const present = choices_.namedChildren(read.object, read.name);
  for (std::size_t i = 0; i < std::min(present.size(), mostObjects); ++i) add(Edit::removeObject(present[i]));
}

void Candidates::noteFree(Item const& item) {
  if (choices_.isFree(item) && std::find(freeParams_.begin(), freeParams_.end(), item) == freeParams_.end()) {
    freeParams_.push_back(item);
  }
}

void Candidates::setTo(Item const& item, std::string const& value) {
  ParamRules const rules = state_.rulesOfParam(item.path, *item.name);
  if (!rules || value.empty()) return;
  noteFree(item);
  std::string const* const present = state_.value(item.path, *item.name);
  // An offered parameter can be given its value at once; what is absent has to come first.
  if (present == nullptr && sources_.isOffered(item)) {
    ParamAllowedValues const allowed = state_.allowedValues(rules, item.path);
    if (!allowed.hasAllowedValues || allowed.isAllowedValue(value, false)) {
      add(Edit::setParam(item.path, *item.name, value));
      if (!state_.state().getParamDecision(item.path, *item.name).value_or(true)) {
        add(Edit::activateParam(item.path, *item.name));
      }
      return;
    }
  }
  aimAt({item, value});
}

void Candidates::setToOthers(Item const& item, std::vector<std::string> const& texts) {
  if (!StringUtilities::isPathRootedAt(state_.state().getActiveRoot(), item.path)) return;
  std::vector<std::string> const values = choices_.otherValues(item);
  for (std::size_t i = 0; i < std::min(values.size(), mostValues); ++i) setTo(item, values[i]);
  if (!choices_.isFree(item)) return;
  noteFree(item);
  for (std::string const& text : texts) setTo(item, text);
}

}  // namespace tarn::session
