#include "session/RuledState.h"

#include <algorithm>

#include <tarn/EvalContext.h>
#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFContext.h>
#include <tarn/TDFParam.h>

namespace tarn::session {

// The rules.

ObjDependDef const* RuledState::rulesOfObject(std::string const& path) const {
  return rules_->getObjDependDef(PathUtils::typePathOf(path), false);
}

ParamRules RuledState::rulesOfParam(std::string const& path, std::string const& name) const {
  ParamRules found;
  found.object = rulesOfObject(path);
  if (found.object == nullptr) return {};
  found.entry = found.object->findParam(name);
  if (found.entry == nullptr) return {};
  found.value = found.entry->valueDef();
  return found.value != nullptr ? found : ParamRules();
}

ChildRules RuledState::rulesOfChild(std::string const& path) const {
  ChildRules found;
  if (path.empty()) return found;
  found.parent = rulesOfObject(std::string(PathUtils::parentOf(path)));
  if (found.parent == nullptr) return {};
  found.place = found.parent->placeOfChild(PathUtils::lastType(path));
  if (found.place == ObjDependDef::noPlace) return {};
  found.entry = found.parent->children()[found.place].get();
  return found;
}

bool RuledState::isMirrored(ChildAvail const& entry) noexcept {
  return !entry.required && !entry.coupled && entry.allowedNamesSource == nullptr;
}

bool RuledState::isInMirroredBranch(std::string const& path) const {
  std::string const root = state_->getActiveRoot();
  for (std::string at = path; at.size() > root.size(); at = PathUtils::parentOf(at)) {
    ChildRules const rules = rulesOfChild(at);
    if (rules && isMirrored(*rules.entry)) return true;
  }
  return false;
}

// The content of the state.

bool RuledState::hasObject(std::string const& path) const {
  return state_->hasObject(path);
}

std::vector<std::string> RuledState::presentObjects(std::string_view typePath) const {
  DynamicTDF const& tree = state_->getActiveTree();
  std::vector<std::string> objects = {std::string()};
  while (!typePath.empty() && !objects.empty()) {
    std::string_view::size_type const end = typePath.find('/', 1);
    std::string const type(typePath.substr(1, end == std::string_view::npos ? end : end - 1));
    std::vector<std::string> next;
    for (std::string const& object : objects) {
      std::vector<std::string> children;
      if (tree.getChildObjectPathsByType(object, type, children)) {
        next.insert(next.end(), children.begin(), children.end());
      }
    }
    objects = std::move(next);
    typePath = end == std::string_view::npos ? std::string_view() : typePath.substr(end);
  }
  return objects;
}

std::string const* RuledState::value(std::string const& path, std::string const& name) const {
  return state_->getActiveTree().findParameterValue(path, name);
}

std::string const* RuledState::askedValue(std::string const& path, std::string const& name) const {
  return state_->getGuideTree().findParameterValue(path, name);
}

std::string RuledState::missingObject(std::string const& path) const {
  std::string missing;
  std::string const root = state_->getActiveRoot();
  for (std::string at = path; !hasObject(at); at = PathUtils::parentOf(at)) {
    missing = at;
    if (at.size() <= root.size()) break;
  }
  return missing;
}

bool RuledState::isInForce(TDFParam::Type type, std::string const& asked, std::string const& value) {
  if (asked == value) return true;
  if (TDFParam::isListType(type)) {
    std::vector<std::string> const items = StringUtilities::stringToVector(value, ',');
    std::vector<std::string> const wanted = StringUtilities::stringToVector(asked, ',');
    return !wanted.empty() && std::all_of(wanted.begin(), wanted.end(), [&items](std::string const& item) {
      return std::find(items.begin(), items.end(), item) != items.end();
    });
  }
  if (type != TDFParam::Real) return false;
  // The units may have been replaced.
  auto const a = TDFParam::asQuantity(asked);
  auto const b = TDFParam::asQuantity(value);
  return a && b && a->numberText == b->numberText;
}

std::optional<Waiting> RuledState::waitingParam(std::string const& path, std::string const& name,
                                                bool isOffered) const {
  std::string const* const asked = askedValue(path, name);
  std::string const* const present = value(path, name);
  std::optional<bool> const decision = state_->getParamDecision(path, name);
  bool const isOn = decision.value_or(false);
  bool const isOff = !decision.value_or(true);
  ParamRules const rules = asked != nullptr || isOn ? rulesOfParam(path, name) : ParamRules();
  Waiting waiting;
  waiting.item = {path, name};
  if (present != nullptr) {
    if (asked == nullptr || (rules && isInForce(rules.value->type, *asked, *present)) || *asked == *present) {
      return std::nullopt;
    }
  } else if (asked == nullptr && !isOn) {
    return std::nullopt;
  }
  if (asked != nullptr) waiting.value = *asked;
  if (!rules) {
    waiting.reason = WaitingReason::NotInTheRules;
    return waiting;
  }
  if (present == nullptr && !hasObject(path)) {
    waiting.reason = WaitingReason::ObjectNotPresent;
    waiting.missingObject = missingObject(path);
    return waiting;
  }
  if (present == nullptr && !isOffered) {
    waiting.reason = WaitingReason::NotAvailable;
    waiting.ruleReason = rules.entry->reason;
    return waiting;
  }
  bool const isOverridden =
      rules.value->hasValueOverride() && override(rules, path, state_->getAllowedValueData(path, name)).first;
  // An override takes the request over where the parameter is present. So nothing of the user's waits there.
  if (isOverridden && present != nullptr) return std::nullopt;
  if (isOff) {
    waiting.reason = WaitingReason::SwitchedOff;
  } else {
    waiting.reason = isOverridden ? WaitingReason::Overridden : WaitingReason::ValueNotAllowed;
  }
  return waiting;
}

std::optional<Waiting> RuledState::waitingObject(std::string const& path, bool isOffered) const {
  if (path.empty() || hasObject(path)) return std::nullopt;
  DynamicTDF const& guide = state_->getGuideTree();
  bool const isOn = state_->getObjectDecision(path).value_or(false);
  bool const isInGuide = guide.hasObject(path);
  if (!isInGuide && !isOn) return std::nullopt;
  std::string const parent(PathUtils::parentOf(path));
  Waiting waiting;
  waiting.item = {path, std::nullopt};
  if (path.size() > state_->getActiveRoot().size() && !hasObject(parent)) {
    // The guide holds the objects above whatever it holds. Only what was asked for itself waits itself.
    std::vector<std::string> content;
    bool const isImplied = isInGuide && (guide.getChildObjectPaths(path, content) ||
                                         (guide.getParameterNames(path, content) && !content.empty()));
    if (isImplied && !isOn) return std::nullopt;
    waiting.reason = WaitingReason::ObjectNotPresent;
    waiting.missingObject = missingObject(parent);
    return waiting;
  }
  ChildRules const rules = rulesOfChild(path);
  if (!rules) {
    waiting.reason = WaitingReason::NotInTheRules;
    return waiting;
  }
  if (isOffered) {
    waiting.reason = WaitingReason::SwitchedOff;
    return waiting;
  }
  waiting.reason = WaitingReason::NotAvailable;
  waiting.ruleReason = rules.entry->reason;
  return waiting;
}

// The answers of the rules now.

ParamAllowedValues RuledState::allowedValues(ParamRules const& rules, std::string const& path) const {
  EvalContext evaluation(state_->getModelOfRules());
  return rules.value->evaluateAllowedValues(rules_->getRules(), TDFContext(path), &evaluation);
}

std::string RuledState::defaultValue(ParamRules const& rules, std::string const& path,
                                     ParamAllowedValues const& allowed) const {
  EvalContext evaluation(state_->getModelOfRules());
  return rules.value->evaluateDefault(rules_->getRules(), TDFContext(path), &evaluation, allowed);
}

std::pair<bool, std::string> RuledState::override(ParamRules const& rules, std::string const& path,
                                                  ParamAllowedValues const& allowed) const {
  EvalContext evaluation(state_->getModelOfRules());
  return rules.value->evaluateValueOverride(rules_->getRules(), TDFContext(path), &evaluation, allowed);
}

std::pair<std::string, std::string> RuledState::bounds(ParamRules const& rules, std::string const& path) const {
  EvalContext evaluation(state_->getModelOfRules());
  return rules.value->evaluateBounds(rules_->getRules(), TDFContext(path), &evaluation);
}

std::string RuledState::quantityType(ParamRules const& rules, std::string const& path) const {
  if (rules.value->quantityType == nullptr) return {};
  EvalContext evaluation(state_->getModelOfRules());
  return rules.value->evaluateQuantityType(rules_->getRules(), TDFContext(path), &evaluation);
}

bool RuledState::isChildAvailable(ChildRules const& rules, std::string const& parent,
                                  ObjDependency::AllowedNameData& names) const {
  EvalContext evaluation(state_->getModelOfRules());
  ObjDependency cursor(parent, rules.parent, &evaluation, rules_);
  cursor.goToChild(rules.place, contextRuleValue(*rules.parent, parent));
  return cursor.isChildAvailable(names);
}

std::optional<std::vector<std::string>> RuledState::allowedNames(ChildRules const& rules,
                                                                 std::string const& parent) const {
  if (rules.entry->singleton || rules.entry->allowedNamesSource == nullptr) return std::nullopt;
  EvalContext evaluation(state_->getModelOfRules());
  std::vector<std::string> names;
  rules.entry->evaluateAllowedNames(TDFContext(parent), &evaluation, names);
  return names;
}

/// The children are selected by the last context rule parameter that is present.
std::string RuledState::contextRuleValue(ObjDependDef const& rules, std::string const& path) const {
  auto const [entry, isNew] = contextRules_.try_emplace(&rules);
  if (isNew) {
    for (auto const& param : rules.params()) {
      if (param->contextRule) entry->second.push_back(&param->name);
    }
  }
  for (auto name = entry->second.rbegin(); name != entry->second.rend(); ++name) {
    if (std::string const* const found = value(path, **name)) return *found;
  }
  return {};
}

}  // namespace tarn::session
