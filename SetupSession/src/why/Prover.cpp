// The causes of an item are asked in the order in which a walk decides them, and the first that applies is the proof.
// Its consequences, such as everything inside an absent object, is not repeated.

#include "why/Prover.h"

#include <algorithm>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/RuleAttributes.h>
#include <tarn/StringUtilities.h>

#include "why/ValueInList.h"

namespace tarn::session {

namespace {

constexpr std::size_t mostNeeded = 20;

/// The context parameter that selects the entry at `place`, or null: the last one before it that is present.
ParamAvail const* contextOf(RuledState const& state, ObjDependDef const& rules, std::string const& path,
                            std::size_t place) {
  for (std::size_t i = std::min(place, rules.params().size()); i-- > 0;) {
    ParamAvail const& entry = *rules.params()[i];
    if (entry.contextRule && state.value(path, entry.name) != nullptr) return &entry;
  }
  return nullptr;
}

bool isLive(std::vector<std::string> const& contexts, std::string const& value) {
  return contexts.empty() || std::find(contexts.begin(), contexts.end(), value) != contexts.end();
}

/// The key under which the allowed values are written.
std::string listAttribute(ParamValueDef const& rules) {
  return std::string(rules.allowedValueKind == ParamValueDef::ComputedAllowedValues
                         ? RuleAttributes::valueListSource
                         : RuleAttributes::orderedAllowedStringList);
}

/// The key of the subset, which there is.
std::string subsetAttribute(ParamValueDef const& rules) {
  bool const isFixed = dynamic_cast<FixedList const*>(rules.subset.get()) != nullptr;
  return std::string(isFixed ? RuleAttributes::subsetAllowedStringList : RuleAttributes::subsetValueListSource);
}

template <typename Items>
std::vector<std::string> firstOf(Items const& items) {
  auto const kept = static_cast<std::ptrdiff_t>(std::min(items.size(), mostNeeded));
  return {items.begin(), items.begin() + kept};
}

}  // namespace

Prover::Prover(ProofSources const& sources)
    : sources_(sources), state_(sources.state), former_(sources.state, sources.lastEffect) {}

Proof Prover::prove(Question question, Item const& item, std::string const& value, std::size_t depth) {
  proof_.question = question;
  proof_.item = item;
  depth_ = depth;
  std::size_t const first = addNode(item);
  switch (question) {
    case Question::Presence:
      explainPresence(first);
      break;
    case Question::Value:
      explainValue(first);
      break;
    case Question::Allowed:
      proof_.nodes[first].value = value;
      explainAllowed(first, value);
      break;
    case Question::LastEdit:
      explainLastEdit(first);
      return std::move(proof_);
  }
  known_.emplace(Key{item, question}, first);
  // Breadth first: nodes that are added here are at the end, one level deeper each.
  std::size_t level = 1;
  std::size_t begin = 0;
  while (begin < proof_.nodes.size()) {
    std::size_t const end = proof_.nodes.size();
    for (std::size_t node = begin; node < end; ++node) openReads(node, level);
    begin = end;
    ++level;
  }
  return std::move(proof_);
}

std::size_t Prover::addNode(Item const& item) {
  proof_.nodes.emplace_back().item = item;
  return proof_.nodes.size() - 1;
}

std::size_t Prover::nodeOf(Item const& item, Question question, std::size_t depth) {
  if (auto const found = known_.find({item, question}); found != known_.end()) return found->second;
  if (depth >= depth_ || proof_.nodes.size() >= Proof::maxNodes) {
    ++proof_.hidden;
    return none;
  }
  std::size_t const node = addNode(item);
  known_.emplace(Key{item, question}, node);
  if (question == Question::Value) {
    explainValue(node);
  } else {
    explainPresence(node);
  }
  return node;
}

/// Looks for the nodes that explain what the rules of a node have read.
void Prover::openReads(std::size_t node, std::size_t depth) {
  for (std::size_t r = 0; r < proof_.nodes[node].rules.size(); ++r) {
    auto const isNeeded = proof_.nodes[node].rules[r].explanation.neededReads();
    for (std::size_t i = 0; i < proof_.nodes[node].rules[r].reads.size(); ++i) {
      ProofRead const& read = proof_.nodes[node].rules[r].reads[i];
      if (!isNeeded[i] || read.isOld ||
          !StringUtilities::isPathRootedAt(state_.state().getActiveRoot(), read.read.object))
        continue;
      // A value that the user or the model has given needs no further explanation.
      if (read.origin == Origin::User || read.origin == Origin::Model) continue;
      std::size_t found = none;
      if (read.read.isParameter() && state_.rulesOfParam(read.read.object, read.read.name)) {
        found = nodeOf({read.read.object, read.read.name}, read.read.isPresent ? Question::Value : Question::Presence,
                       depth);
      } else if (read.read.kind == ModelRead::Kind::Object && state_.rulesOfChild(read.read.object)) {
        found = nodeOf({read.read.object, std::nullopt}, Question::Presence, depth);
      }
      if (found == none || found <= node) continue;
      proof_.nodes[node].rules[r].reads[i].node = found;
      auto& children = proof_.nodes[node].children;
      if (std::find(children.begin(), children.end(), found) == children.end()) children.push_back(found);
    }
  }
}

RulePlace Prover::placeOfValue(Item const& item, Origin origin) const {
  ParamRules const rules = state_.rulesOfParam(item.path, *item.name);
  if (!rules) return {};
  if (origin == Origin::Default && rules.value->defaultChecks.empty() && rules.value->defaultValue != nullptr) {
    if (rules.value->defaultValue->rulePlace().isKnown()) return rules.value->defaultValue->rulePlace();
  }
  return rules.entry->rulePlace;
}

ProofRead Prover::readOf(ModelRead read, DecisionModel const& model) const {
  ProofRead result;
  if (read.isParameter()) {
    Item const item{read.object, read.name};
    std::string const* const now = state_.state().getModelOfRules()->hasParameter(read.object, read.name)
                                       ? &state_.state().getModelOfRules()->getParameterValue(read.object, read.name)
                                       : nullptr;
    bool const isSame =
        (now != nullptr) == read.isPresent &&
        (now == nullptr || read.kind == ModelRead::Kind::Presence || now->substr(0, ModelRead::maxValue) == read.value);
    result.isOld = !isSame && !model.isBefore(read.object, read.name, false);
    if (now != nullptr) result.valueNow = *now;
    if (!result.isOld && now != nullptr) {
      bool const isInside = StringUtilities::isPathRootedAt(state_.state().getActiveRoot(), read.object);
      result.origin = isInside ? sources_.originOf(item, result.step) : Origin::Model;
      bool const isOfRules = result.origin != Origin::User && result.origin != Origin::Model;
      if (isOfRules) result.place = placeOfValue(item, result.origin);
    }
  }
  result.read = std::move(read);
  return result;
}

Explanation::Result Prover::addRule(std::size_t node, std::string attribute, RuleExpression const& expression,
                                    std::function<void(Explanation&)> const& trim) {
  Item const& item = proof_.nodes[node].item;
  DecisionModel const model(former_, item);
  std::string const owner = item.isParam() ? item.path : std::string(PathUtils::parentOf(item.path));
  ProofRule rule;
  rule.attribute = std::move(attribute);
  rule.explanation = expression.explain(TDFContext(owner), model);
  if (trim != nullptr) trim(rule.explanation);
  if (!rule.explanation.sources.empty()) {
    rule.text = rule.explanation.sources.front().text;
    rule.place = rule.explanation.sources.front().place;
  }
  rule.reads.reserve(rule.explanation.reads.size());
  for (ModelRead const& read : rule.explanation.reads) rule.reads.push_back(readOf(read, model));
  Explanation::Result result =
      rule.explanation.nodes.empty() ? Explanation::Result() : rule.explanation.nodes.front().result;
  proof_.nodes[node].rules.push_back(std::move(rule));
  return result;
}

void Prover::addCondition(std::size_t node, std::string attribute, RuleExpression const& condition, bool expected) {
  if (addRule(node, std::move(attribute), condition).truth != expected) proof_.nodes[node].isOutdated = true;
}

// Presence

std::string Prover::absentAncestor(std::string const& path) const {
  return state_.hasObject(path) ? std::string() : state_.missingObject(path);
}

void Prover::explainPresence(std::size_t node) {
  Item const item = proof_.nodes[node].item;
  std::string const& root = state_.state().getActiveRoot();
  std::string const holder = item.isParam() ? item.path : std::string(PathUtils::parentOf(item.path));
  if (!StringUtilities::isPathRootedAt(root, item.path)) {
    proof_.nodes[node].fact = Fact::OutsideRoot;
    return;
  }
  if (!item.isParam() && item.path == root) {
    proof_.nodes[node].fact = Fact::IsRoot;
    return;
  }
  bool const isKnown = item.isParam() ? static_cast<bool>(state_.rulesOfParam(item.path, *item.name))
                                      : static_cast<bool>(state_.rulesOfChild(item.path));
  bool const isPresent = item.isParam() ? state_.value(item.path, *item.name) != nullptr : state_.hasObject(item.path);
  if (state_.isInMirroredBranch(item.path)) {
    proof_.nodes[node].fact = isPresent ? Fact::TakenFromModel : Fact::NotInModel;
    return;
  }
  if (!isKnown) {
    proof_.nodes[node].fact = isPresent ? Fact::TakenFromModel : Fact::UnknownToTheRules;
    return;
  }
  if (std::string const missing = absentAncestor(holder); !missing.empty()) {
    proof_.nodes[node].fact = Fact::ObjectAbsent;
    // The cause is the whole proof, so it takes no depth.
    std::size_t const cause = addNode({missing, std::nullopt});
    proof_.nodes[node].children.push_back(cause);
    explainPresence(cause);
    return;
  }
  if (item.isParam()) {
    explainParamPresence(node);
  } else {
    explainObjectPresence(node);
  }
}

void Prover::explainParamPresence(std::size_t node) {
  Item const item = proof_.nodes[node].item;
  ParamRules const rules = state_.rulesOfParam(item.path, *item.name);
  std::string const* const value = state_.value(item.path, *item.name);
  bool const isOffered = sources_.isOffered(item);
  bool const isAvailable = value != nullptr || isOffered;
  ParamAvail const& entry = *rules.entry;
  proof_.nodes[node].place = entry.rulePlace;

  ParamAvail const* const context = contextOf(state_, *rules.object, item.path, rules.object->placeOfParam(*item.name));
  std::string const contextValue = context != nullptr ? *state_.value(item.path, context->name) : std::string();
  if (!isAvailable && !isLive(entry.contexts, contextValue)) {
    proof_.nodes[node].fact = Fact::NotLive;
    proof_.nodes[node].needed = firstOf(entry.contexts);
    proof_.nodes[node].contextParam = context != nullptr ? context->name : std::string();
    proof_.nodes[node].value = contextValue;
    return;
  }
  if (!isAvailable) {
    proof_.nodes[node].reason = entry.reason;
    bool const holds = entry.available == nullptr || addRule(node, "Available", *entry.available).truth;
    if (!holds) {
      proof_.nodes[node].fact = Fact::NotAvailable;
      return;
    }
    proof_.nodes[node].rules.clear();
    bool const canBeEmpty =
        rules.value->allowedValueKind == ParamValueDef::NoAllowedValues || rules.value->availableWithNoAllowedValues;
    if (!canBeEmpty && state_.allowedValues(rules, item.path).allowedValues.empty()) {
      proof_.nodes[node].fact = Fact::NoAllowedValue;
      proof_.nodes[node].reason.clear();
      if (rules.value->allowedValues != nullptr) {
        (void)addRule(node, std::string(RuleAttributes::valueListSource), *rules.value->allowedValues);
      }
      return;
    }
    proof_.nodes[node].fact = Fact::NotAvailable;
    proof_.nodes[node].isOutdated = true;
    if (entry.available != nullptr) (void)addRule(node, "Available", *entry.available);
    return;
  }
  if (entry.available != nullptr) addCondition(node, "Available", *entry.available, true);
  if (value != nullptr) {
    proof_.nodes[node].fact = entry.required ? Fact::Required : Fact::AskedFor;
    return;
  }
  std::string const* const asked = state_.askedValue(item.path, *item.name);
  bool const isOff = !state_.state().getParamDecision(item.path, *item.name).value_or(true);
  proof_.nodes[node].fact = isOff ? Fact::SwitchedOff : asked != nullptr ? Fact::ValueRefused : Fact::NeverSwitchedOn;
  if (isOff || asked == nullptr) return;
  proof_.nodes[node].value = *asked;
  std::size_t const cause = addNode(item);
  proof_.nodes[node].children.push_back(cause);
  proof_.nodes[cause].value = *asked;
  explainAllowed(cause, *asked);
}

void Prover::explainObjectPresence(std::size_t node) {
  Item const item = proof_.nodes[node].item;
  ChildRules const rules = state_.rulesOfChild(item.path);
  ChildAvail const& entry = *rules.entry;
  std::string const parent(PathUtils::parentOf(item.path));
  bool const isPresent = state_.hasObject(item.path);
  bool const isOffered = sources_.isOffered(item);
  proof_.nodes[node].place = entry.rulePlace;

  ParamAvail const* const context = contextOf(state_, *rules.parent, parent, rules.parent->params().size());
  std::string const contextValue = context != nullptr ? *state_.value(parent, context->name) : std::string();
  if (!isPresent && !isOffered && !isLive(entry.contexts, contextValue)) {
    proof_.nodes[node].fact = Fact::NotLive;
    proof_.nodes[node].needed = firstOf(entry.contexts);
    proof_.nodes[node].contextParam = context != nullptr ? context->name : std::string();
    proof_.nodes[node].value = contextValue;
    return;
  }
  bool const holds = entry.available == nullptr || addRule(node, "Available", *entry.available).truth;
  if (!isPresent && !isOffered) {
    if (!holds) {
      proof_.nodes[node].fact = Fact::NotAvailable;
      proof_.nodes[node].reason = entry.reason;
      return;
    }
    if (auto const names = state_.allowedNames(rules, parent)) {
      bool const isAllowed = std::find(names->begin(), names->end(), PathUtils::lastName(item.path)) != names->end();
      if (!isAllowed) {
        proof_.nodes[node].fact = Fact::NameNotAllowed;
        proof_.nodes[node].needed = firstOf(*names);
        std::string const name(PathUtils::lastName(item.path));
        (void)addRule(node, "Allowed Names", *entry.allowedNamesSource,
                      [&name](Explanation& explanation) { keepWhatDecides(explanation, name); });
        return;
      }
      proof_.nodes[node].fact = Fact::NotAvailable;
      proof_.nodes[node].isOutdated = true;
      return;
    }
    proof_.nodes[node].fact = entry.singleton ? Fact::NotAvailable : Fact::NotAskedFor;
    proof_.nodes[node].isOutdated = entry.singleton;
    return;
  }
  if (!holds) proof_.nodes[node].isOutdated = true;
  if (isPresent) {
    bool const isByTheRules = entry.required && (entry.singleton || entry.allowedNamesSource != nullptr);
    proof_.nodes[node].fact = isByTheRules ? Fact::Required : Fact::AskedFor;
    return;
  }
  bool const isOff = !state_.state().getObjectDecision(item.path).value_or(true);
  proof_.nodes[node].fact = isOff ? Fact::SwitchedOff : Fact::NeverSwitchedOn;
}

// Values

void Prover::explainValue(std::size_t node) {
  Item const item = proof_.nodes[node].item;
  std::string const* const value = item.isParam() ? state_.value(item.path, *item.name) : nullptr;
  if (value == nullptr) {
    explainPresence(node);
    return;
  }
  proof_.nodes[node].value = *value;
  ParamRules const rules = state_.rulesOfParam(item.path, *item.name);
  std::size_t step = 0;
  Origin const origin = sources_.originOf(item, step);
  proof_.nodes[node].step = step;
  if (rules) proof_.nodes[node].place = rules.entry->rulePlace;
  switch (origin) {
    case Origin::User:
      proof_.nodes[node].fact = Fact::SetByUser;
      return;
    case Origin::Model:
      proof_.nodes[node].fact =
          rules && !state_.isInMirroredBranch(item.path) ? Fact::GivenByModel : Fact::TakenFromModel;
      return;
    case Origin::FormerOverride:
      proof_.nodes[node].fact = Fact::FormerOverride;
      return;
    case Origin::Override:
      proof_.nodes[node].fact = Fact::Override;
      for (ParamValueDef::GuardedText const& check : rules.value->overrideChecks) {
        bool const holds = check.when == nullptr ||
                           addRule(node, std::string(RuleAttributes::valueOverrideCheckList), *check.when).truth;
        if (!holds) continue;
        if (check.value != nullptr) (void)addRule(node, "Value", *check.value);
        break;
      }
      return;
    case Origin::CompletedList:
      proof_.nodes[node].fact = Fact::CompletedList;
      if (rules.value->allowedValues != nullptr) {
        (void)addRule(node, std::string(RuleAttributes::completeListRequired), *rules.value->allowedValues);
      }
      return;
    case Origin::Default:
    case Origin::None:
      break;
  }
  if (rules) explainDefault(node, rules, state_.state().getAllowedValueData(item.path, *item.name));
}

void Prover::explainDefault(std::size_t node, ParamRules const& rules, ParamAllowedValues const& allowed) {
  Item const item = proof_.nodes[node].item;
  std::string const value = proof_.nodes[node].value;
  // A value that was asked for and refused comes first: it is what the user waits for.
  std::string const* const asked = state_.askedValue(item.path, *item.name);
  if (asked != nullptr && *asked != value && allowed.hasAllowedValues && !allowed.isAllowedValue(*asked, false)) {
    std::size_t const cause = addNode(item);
    proof_.nodes[node].children.push_back(cause);
    proof_.nodes[cause].value = *asked;
    explainAllowed(cause, *asked);
  }
  std::string given;
  Fact fact = Fact::Blank;
  bool isFound = false;
  for (ParamValueDef::GuardedText const& check : rules.value->defaultChecks) {
    bool const holds =
        check.when == nullptr || addRule(node, std::string(RuleAttributes::defaultValueCheckList), *check.when).truth;
    if (!holds) continue;
    if (check.value != nullptr) {
      given = addRule(node, "Value", *check.value).text;
      fact = Fact::ConditionalDefault;
      isFound = true;
    }
    break;
  }
  if (!isFound && rules.value->defaultValue != nullptr) {
    given = addRule(node, std::string(RuleAttributes::defaultValue), *rules.value->defaultValue).text;
    fact = Fact::Default;
  }
  proof_.nodes[node].fact = fact;
  if (!allowed.hasAllowedValues || RuledState::isInForce(rules.value->type, given, value)) return;
  proof_.nodes[node].fact = value.empty() ? Fact::Blank : Fact::FirstOnOffer;
  RuleExpression const* const list = allowed.hasSubset ? rules.value->subset.get() : rules.value->allowedValues.get();
  if (list == nullptr) return;
  (void)addRule(node, allowed.hasSubset ? subsetAttribute(*rules.value) : listAttribute(*rules.value), *list,
                [&value](Explanation& explanation) { keepUpTo(explanation, value); });
}

void Prover::explainAllowed(std::size_t node, std::string const& value) {
  Item const item = proof_.nodes[node].item;
  ParamRules const rules = item.isParam() ? state_.rulesOfParam(item.path, *item.name) : ParamRules();
  if (!rules) {
    proof_.nodes[node].fact = Fact::UnknownToTheRules;
    return;
  }
  proof_.nodes[node].place = rules.entry->rulePlace;
  ParamValueDef const& def = *rules.value;
  if (def.allowedValueKind == ParamValueDef::NoAllowedValues || def.allowsAnyValue || def.allowedValues == nullptr) {
    proof_.nodes[node].fact = Fact::AnyValueAllowed;
    return;
  }
  if (def.unusedValues.contains(value)) {
    proof_.nodes[node].fact = Fact::Unused;
    return;
  }
  DecisionModel const model(former_, item);
  EvalContext evaluation(&model);
  SharedStrings const list = def.allowedValues->evaluate(TDFContext(item.path), &evaluation);
  std::string const attribute = listAttribute(def);
  auto const membership = [&value](Explanation& explanation) { keepWhatDecides(explanation, value); };
  if (!list.contains(value)) {
    proof_.nodes[node].fact = Fact::NotInList;
    // The list may have got the value since.
    SharedStrings const now = state_.allowedValues(rules, item.path).allowedValues;
    proof_.nodes[node].isOutdated = now.contains(value);
    proof_.nodes[node].needed = firstOf(now.contains(value) ? list : now);
    (void)addRule(node, attribute, *def.allowedValues, membership);
    return;
  }
  // A list that is written out says nothing that the value does not.
  if (attribute == RuleAttributes::valueListSource) (void)addRule(node, attribute, *def.allowedValues, membership);
  if (auto const check = def.allowedValueChecks.find(value);
      check != def.allowedValueChecks.end() && check->second != nullptr) {
    bool const holds = addRule(node, std::string(RuleAttributes::allowedStringListChecks), *check->second).truth;
    proof_.nodes[node].fact = holds ? Fact::ValueAllowed : Fact::CheckFails;
    if (!holds) return;
  }
  proof_.nodes[node].fact = Fact::ValueAllowed;
  if (def.subset == nullptr) return;
  SharedStrings const subset = def.subset->evaluate(TDFContext(item.path), &evaluation);
  if (subset.contains(value)) return;
  proof_.nodes[node].fact = Fact::OutsideSubset;
  (void)addRule(node, subsetAttribute(def), *def.subset, membership);
}

// The last step

bool Prover::isEditedItself(Item const& item) const {
  if (sources_.lastStep == nullptr) return false;
  return std::any_of(sources_.lastStep->made.begin(), sources_.lastStep->made.end(), [&](Edit const& edit) {
    switch (edit.kind) {
      case Edit::Kind::SetParam:
      case Edit::Kind::ActivateParam:
      case Edit::Kind::DeactivateParam:
        return item.isParam() && edit.path == item.path && edit.name == *item.name;
      case Edit::Kind::DuplicateObject:
      case Edit::Kind::RenameObject: {
        std::string const made =
            edit.path.substr(0, edit.path.size() - PathUtils::lastName(edit.path).size()) + edit.name;
        return StringUtilities::isPathRootedAt(edit.path, item.path) ||
               StringUtilities::isPathRootedAt(made, item.path);
      }
      default:
        return edit.path == item.path && !item.isParam();
    }
  });
}

bool Prover::wasChanged(ModelRead const& read) const {
  if (sources_.lastEffect == nullptr) return false;
  if (read.isParameter()) return former_.isChanged(read.object, read.name);
  auto const changes = [&](std::string const& path) {
    switch (read.kind) {
      case ModelRead::Kind::Object:
        return path == read.object;
      case ModelRead::Kind::ChildrenOfType:
        return PathUtils::parentOf(path) == read.object && PathUtils::lastType(path) == read.name;
      case ModelRead::Kind::Children:
        return PathUtils::parentOf(path) == read.object;
      default:
        return false;
    }
  };
  Effect const& effect = *sources_.lastEffect;
  return std::any_of(effect.objectsCreated.begin(), effect.objectsCreated.end(), changes) ||
         std::any_of(effect.objectsDeleted.begin(), effect.objectsDeleted.end(), changes);
}

/// A chain from the item to what the step itself changed. Each link is an item whose own rules have read something that
/// changed; the first such read is followed.
void Prover::explainLastEdit(std::size_t first) {
  std::size_t node = first;
  while (true) {
    Item const item = proof_.nodes[node].item;
    known_.emplace(Key{item, Question::LastEdit}, node);
    bool isChanged = false;
    if (sources_.lastStep != nullptr && item.isParam()) {
      isChanged = former_.isChanged(item.path, *item.name);
      if (std::string const* before = former_.value(item.path, *item.name)) proof_.nodes[node].before = *before;
      if (std::string const* after = state_.value(item.path, *item.name)) proof_.nodes[node].after = *after;
    } else if (sources_.lastStep != nullptr) {
      isChanged = former_.hadObject(item.path) != state_.hasObject(item.path);
      if (former_.hadObject(item.path)) proof_.nodes[node].before = item.path;
      if (state_.hasObject(item.path)) proof_.nodes[node].after = item.path;
    }
    proof_.nodes[node].step = sources_.lastStep != nullptr ? sources_.lastStep->number : 0;
    if (!isChanged) {
      proof_.nodes[node].fact = Fact::NotChanged;
      return;
    }
    if (isEditedItself(item)) {
      proof_.nodes[node].fact = Fact::EditedItself;
      return;
    }
    // The item's rules explain what it is now; they may have read what has changed.
    explainValue(node);
    std::optional<Item> next;
    if (proof_.nodes[node].fact == Fact::ObjectAbsent) {
      next = proof_.nodes[proof_.nodes[node].children.front()].item;
      proof_.nodes.resize(node + 1);
      proof_.nodes[node].children.clear();
    } else if (proof_.nodes[node].fact == Fact::NotLive && !proof_.nodes[node].contextParam.empty()) {
      std::string const holder = item.isParam() ? item.path : std::string(PathUtils::parentOf(item.path));
      next = Item{holder, proof_.nodes[node].contextParam};
    } else {
      // A present parameter with a value of its own is there because it became available.
      if (!proof_.nodes[node].before && proof_.nodes[node].after) {
        proof_.nodes[node].rules.clear();
        explainPresence(node);
      }
      proof_.nodes.resize(node + 1);
      proof_.nodes[node].children.clear();
      for (ProofRule const& rule : proof_.nodes[node].rules) {
        auto const isNeeded = rule.explanation.neededReads();
        for (std::size_t i = 0; i < rule.reads.size() && !next; ++i) {
          ModelRead const& read = rule.reads[i].read;
          if (!isNeeded[i] || !wasChanged(read)) continue;
          if (read.isParameter()) {
            next = Item{read.object, read.name};
          } else if (read.kind == ModelRead::Kind::Object) {
            next = Item{read.object, std::nullopt};
          } else if (sources_.lastEffect != nullptr) {
            for (auto const* list : {&sources_.lastEffect->objectsCreated, &sources_.lastEffect->objectsDeleted}) {
              for (std::string const& path : *list) {
                if (!next && PathUtils::parentOf(path) == read.object) next = Item{path, std::nullopt};
              }
            }
          }
        }
      }
      // A new object brings its parameters.
      if (!next && item.isParam() && former_.isCreated(item.path)) next = Item{item.path, std::nullopt};
    }
    proof_.nodes[node].fact = Fact::ChangedByRules;
    if (!next || known_.contains({*next, Question::LastEdit}) || proof_.nodes.size() >= Proof::maxNodes) return;
    std::size_t const cause = addNode(*next);
    proof_.nodes[node].children.push_back(cause);
    node = cause;
  }
}

}  // namespace tarn::session
