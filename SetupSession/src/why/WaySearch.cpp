#include "why/WaySearch.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFParam.h>

#include "why/Leaves.h"

namespace tarn::session {

namespace {

using Operation = Explanation::Operation;

/// So many values of one parameter are tried, and so many aims are followed.
constexpr std::size_t mostValues = 8;
constexpr std::size_t mostAims = 200;
constexpr std::size_t mostObjects = 3;

std::string wholeText(double number) {
  std::string text = std::to_string(static_cast<long long>(number));
  return text;
}

/// Values that are on the other side of a limit, for `p op limit`.
std::vector<std::string> valuesBeside(Operation operation, bool wanted, Explanation::Result const& limit) {
  if (std::isnan(limit.number) || std::abs(limit.number) > 1e15) return {};
  bool const isBelow = (operation == Operation::Less || operation == Operation::LessEqual) == wanted;
  bool const isStrict = (operation == Operation::Less || operation == Operation::Greater) == wanted;
  double const next = isBelow ? std::ceil(limit.number) - 1 : std::floor(limit.number) + 1;
  std::vector<std::string> values;
  if (!isStrict) values.push_back(limit.text);
  values.push_back(wholeText(next));
  return values;
}

Operation mirrored(Operation operation) {
  switch (operation) {
    case Operation::Less:
      return Operation::Greater;
    case Operation::LessEqual:
      return Operation::GreaterEqual;
    case Operation::Greater:
      return Operation::Less;
    case Operation::GreaterEqual:
      return Operation::LessEqual;
    default:
      return operation;
  }
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
  if (isFull() || std::find(edits_.begin(), edits_.end(), edit) != edits_.end()) return;
  edits_.push_back(std::move(edit));
}

void Candidates::aimAt(Aim aim) {
  if (aims_.size() >= mostAims || !StringUtilities::isPathRootedAt(state_.state().getActiveRoot(), aim.item.path))
    return;
  if (known_.insert(aim).second) aims_.push_back(std::move(aim));
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
    return;
  }
  if (!aim.item.isParam() || !aim.value) return;
  Proof const why = Prover(sources_).prove(Question::Value, aim.item, {}, 1);
  if (why.answer().fact == Fact::Override) {
    openRules(why.answer());
    return;
  }
  Proof const allowed = Prover(sources_).prove(Question::Allowed, aim.item, *aim.value, 1);
  switch (allowed.answer().fact) {
    case Fact::NotInList:
    case Fact::CheckFails:
      openRules(allowed.answer());
      return;
    case Fact::Unused:
    case Fact::UnknownToTheRules:
      return;
    default:
      break;
  }
  add(Edit::setParam(aim.item.path, *aim.item.name, *aim.value));
  if (!state_.state().getParamDecision(aim.item.path, *aim.item.name).value_or(true)) {
    add(Edit::activateParam(aim.item.path, *aim.item.name));
  }
}

/// Switches an item off, and looks for what would withdraw it.
void Candidates::openAbsence(Item const& item) {
  Proof const proof = Prover(sources_).prove(Question::Presence, item, {}, 1);
  if (proof.answer().fact == Fact::AskedFor) {
    bool const isNamed = item.path.find(':', item.path.rfind('/') + 1) != std::string::npos;
    if (item.isParam()) {
      add(Edit::deactivateParam(item.path, *item.name));
    } else {
      add(isNamed ? Edit::removeObject(item.path) : Edit::deactivateObject(item.path));
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
      openRules(node);
      if (node.fact == Fact::NameNotAllowed) add(Edit::addObject(item.path));
      return;
    case Fact::NotAskedFor:
      add(Edit::addObject(item.path));
      return;
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
    for (std::string const& value : valuesOf(item)) add(Edit::setParam(item.path, *item.name, value));
  }
}

void Candidates::openRules(ProofNode const& node) {
  for (ProofRule const& rule : node.rules) {
    Explanation const& explanation = rule.explanation;
    if (explanation.nodes.empty()) continue;
    if (explanation.nodes.front().result.kind != Explanation::Result::Kind::Truth) {
      openReads(explanation, 0);
      continue;
    }
    for (Leaf const& leaf : leavesOf(explanation)) openLeaf(explanation, leaf.node, leaf.wanted);
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
  openReads(explanation, index);
}

void Candidates::openComparison(Explanation const& explanation, Explanation::Node const& node, bool wanted) {
  if (node.children.size() != 2) return;
  for (std::size_t side = 0; side < 2; ++side) {
    Explanation::Node const& subject = explanation.nodes[node.children[side]];
    Explanation::Node const& other = explanation.nodes[node.children[1 - side]];
    if (subject.operation == Operation::Count) openSet(explanation, subject);
    if (subject.operation != Operation::Parameter || subject.reads.empty()) continue;
    Item const item = itemOf(explanation.reads[subject.reads.front()]);
    Operation const operation = side == 0 ? node.operation : mirrored(node.operation);
    switch (operation) {
      case Operation::Equal:
      case Operation::NotEqual: {
        std::string const value = other.result.kind == Explanation::Result::Kind::Truth
                                      ? (other.result.truth ? "true" : "false")
                                      : other.result.text;
        if ((operation == Operation::Equal) == wanted) {
          setTo(item, value);
        } else {
          setToOthers(item, value);
          aimAt({item, std::nullopt, true});
        }
        break;
      }
      case Operation::In:
      case Operation::NotIn:
        if (side != 0) break;
        if ((operation == Operation::In) == wanted) {
          for (std::string const& value : other.result.items) setTo(item, value);
        } else {
          setToOthers(item, {});
          aimAt({item, std::nullopt, true});
        }
        break;
      default:
        for (std::string const& value : valuesBeside(operation, wanted, other.result)) setTo(item, value);
        break;
    }
  }
}

void Candidates::openSet(Explanation const& explanation, Explanation::Node const& node) {
  std::size_t objects = 0;
  for (std::size_t const child : node.children) {
    Explanation::Node const& part = explanation.nodes[child];
    if (part.operation == Operation::Objects) {
      for (std::size_t const read : part.reads) changeObjects(explanation.reads[read]);
      continue;
    }
    if (part.result.kind != Explanation::Result::Kind::Truth || ++objects > mostObjects) continue;
    // The leaves of the condition in the context of this object.
    std::vector<std::size_t> open{child};
    while (!open.empty()) {
      std::size_t const index = open.back();
      open.pop_back();
      Explanation::Node const& below = explanation.nodes[index];
      bool const isOpened = below.operation == Operation::Not || below.operation == Operation::And ||
                            below.operation == Operation::Or || below.operation == Operation::Implies ||
                            below.operation == Operation::NamedRule;
      if (isOpened) {
        open.insert(open.end(), below.children.rbegin(), below.children.rend());
      } else {
        openLeaf(explanation, index, !below.result.truth);
      }
    }
    if (part.context.find(':', part.context.rfind('/') + 1) != std::string::npos) add(Edit::removeObject(part.context));
  }
}

void Candidates::openReads(Explanation const& explanation, std::size_t node) {
  std::vector<std::size_t> open{node};
  while (!open.empty()) {
    Explanation::Node const& part = explanation.nodes[open.back()];
    open.pop_back();
    for (std::size_t const read : part.reads) {
      ModelRead const& asked = explanation.reads[read];
      if (asked.isParameter()) {
        setToOthers(itemOf(asked), asked.value);
        if (!asked.isPresent) aimAt({itemOf(asked), std::nullopt});
      } else {
        changeObjects(asked);
      }
    }
    open.insert(open.end(), part.children.rbegin(), part.children.rend());
  }
}

/// Adds an object to a set that was read, or switches on an object that was not there.
void Candidates::changeObjects(ModelRead const& read) {
  if (read.kind == ModelRead::Kind::Object) {
    if (!read.isPresent) aimAt({{read.object, std::nullopt}, std::nullopt});
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
  ChildRules const rules = state_.rulesOfChild(read.object + '/' + read.name);
  if (!rules || rules.entry->singleton) {
    if (rules) aimAt({{read.object + '/' + read.name, std::nullopt}, std::nullopt});
    return;
  }
  aimAt({{read.object + '/' + read.name + ':' + freeName(read.object, read.name), std::nullopt}, std::nullopt});
}

std::string Candidates::freeName(std::string const& parent, std::string const& type) const {
  std::string const prefix = parent + '/' + type + ':';
  std::size_t number = 1;
  std::string name;
  do {
    name = "new" + std::to_string(number++);
  } while (state_.hasObject(prefix + name) || state_.state().getGuideTree().hasObject(prefix + name));
  return name;
}

void Candidates::setTo(Item const& item, std::string const& value) {
  ParamRules const rules = state_.rulesOfParam(item.path, *item.name);
  if (!rules || value.empty()) return;
  bool const isFree =
      rules.value->allowedValueKind == ParamValueDef::NoAllowedValues && rules.value->type != TDFParam::Logical;
  if (isFree && std::find(freeParams_.begin(), freeParams_.end(), item) == freeParams_.end())
    freeParams_.push_back(item);
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

std::vector<std::string> Candidates::valuesOf(Item const& item) const {
  ParamRules const rules = state_.rulesOfParam(item.path, *item.name);
  if (!rules) return {};
  ParamAllowedValues const allowed = state_.allowedValues(rules, item.path);
  std::vector<std::string> values;
  std::string const byDefault = state_.defaultValue(rules, item.path, allowed);
  if (!byDefault.empty()) values.push_back(byDefault);
  if (allowed.hasAllowedValues) {
    values.insert(values.end(), allowed.allowedValues.begin(), allowed.allowedValues.end());
  } else if (rules.value->type == TDFParam::Logical) {
    values.insert(values.end(), {"true", "false"});
  }
  return values;
}

void Candidates::setToOthers(Item const& item, std::string const& avoided) {
  if (!StringUtilities::isPathRootedAt(state_.state().getActiveRoot(), item.path)) return;
  std::string const* const present = state_.value(item.path, *item.name);
  std::size_t count = 0;
  for (std::string const& value : valuesOf(item)) {
    if (value == avoided || (present != nullptr && value == *present)) continue;
    if (++count > mostValues + 1) return;
    setTo(item, value);
  }
}

}  // namespace tarn::session
