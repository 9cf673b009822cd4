#include "coverage/CoverageWalk.h"

#include <algorithm>
#include <tuple>

#include <tarn/ChildAvailInfo.h>
#include <tarn/ObjBeginInfo.h>
#include <tarn/ParamAvailInfo.h>
#include <tarn/PathUtils.h>
#include <tarn/RuleAttributes.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFContext.h>

#include "coverage/Attributes.h"

namespace tarn::workbench {

std::string outcomes::branch(std::size_t index) {
  return "branch " + std::to_string(index + 1);
}

CoverageWalk::CoverageWalk(PhysicsData const& rules, ModelTDF const& model, session::Findings const& findings,
                           CoverageCounts& counts)
    : DependencyAnalyser(&rules), rules_(rules), model_(model), counts_(counts), evaluation_(&model) {
  for (session::Finding const& finding : findings.list) {
    found_.emplace(finding.path, finding.name ? *finding.name : finding.type.value_or(""), finding.code);
  }
}

void CoverageWalk::from(std::string const& root) {
  open_.clear();
  analyse(root, &evaluation_);
}

void CoverageWalk::count(void const* subject, std::string_view attribute, std::string const& outcome) {
  ++counts_.times[{subject, attribute}][outcome];
}

void CoverageWalk::record(RuleExpression const* rule, TDFContext const& context) {
  if (rule != nullptr) counts_.operands.evaluate(*rule, context, &evaluation_);
}

bool CoverageWalk::isFound(std::string const& path, std::string const& item, session::FindingCode code) const {
  return found_.contains({path, item, code});
}

CoverageWalk::HandlerStatus CoverageWalk::onBeginObject(ObjBeginInfo const* info) {
  open_.push_back({rules_.getObjDependDef(PathUtils::typePathOf(info->getObjPath()), false), {}, false});
  return Continue;
}

CoverageWalk::HandlerStatus CoverageWalk::onBeginParam(std::string const& /*objPath*/, std::string const& /*name*/) {
  return Continue;
}

/// Counts what parameters and types of children have in common. Returns whether the entry is live.
template <typename Entry>
bool CoverageWalk::countEntry(Entry const& entry, bool isAvailable, TDFContext const& context) {
  count(&entry, attributes::entry, isAvailable ? outcomes::available : outcomes::notAvailable);
  std::string const& value = open_.back().contextValue;
  if (!entry.contexts.empty()) {
    if (std::find(entry.contexts.begin(), entry.contexts.end(), value) == entry.contexts.end()) return false;
    count(&entry, attributes::context, value);
  }
  record(entry.available.get(), context);
  return true;
}

CoverageWalk::HandlerStatus CoverageWalk::onParamCheck(ParamAvailInfo const* info) {
  std::string const& path = info->getObjPath();
  ParamAvail const* const entry = open_.back().rules->findParam(info->getName());
  if (entry == nullptr) return Continue;
  TDFContext const context(path);
  bool const isLive = countEntry(*entry, info->isAvailable(), context);
  if (entry->valueDef() != nullptr && isLive) {
    // With no value allowed the parameter is not available, and the list has decided that.
    bool const isAsked = !entry->available || entry->available->evaluate(context, &evaluation_);
    if (isAsked) countValueRule(*entry, *info, context);
  }
  if (info->isAvailable() && entry->contextRule && model_.hasParameter(path, entry->name)) {
    open_.back().contextValue = model_.getParameterValue(path, entry->name);
  }
  return Continue;
}

void CoverageWalk::countBranches(void const* subject, std::string_view attribute, char const* last,
                                 std::vector<ParamValueDef::GuardedText> const& branches, TDFContext const& context) {
  for (std::size_t i = 0; i < branches.size(); ++i) {
    record(branches[i].when.get(), context);
    if (branches[i].when && !branches[i].when->evaluate(context, &evaluation_)) continue;
    count(subject, attribute, outcomes::branch(i));
    return record(branches[i].value.get(), context);
  }
  count(subject, attribute, last);
}

void CoverageWalk::countValueRule(ParamAvail const& entry, ParamAvailInfo const& info, TDFContext const& context) {
  ParamValueDef const& rule = *entry.valueDef();
  if (rule.allowedValueKind != ParamValueDef::NoAllowedValues) {
    record(rule.allowedValues.get(), context);
    for (auto const& [value, condition] : rule.allowedValueChecks) record(condition.get(), context);
    record(rule.subset.get(), context);
  }
  if (!info.isAvailable()) return;
  countBranches(&rule, RuleAttributes::defaultValueCheckList, outcomes::otherwise, rule.defaultChecks, context);
  record(rule.defaultValue.get(), context);
  countBranches(&rule, RuleAttributes::valueOverrideCheckList, outcomes::none, rule.overrideChecks, context);
  record(rule.lowerBound.get(), context);
  record(rule.upperBound.get(), context);
  record(rule.quantityType.get(), context);
  countValue(entry, info.getObjPath());
}

void CoverageWalk::countValue(ParamAvail const& entry, std::string const& path) {
  if (!model_.hasParameter(path, entry.name)) return;
  ParamValueDef const& rule = *entry.valueDef();
  std::string const value = model_.getParameterValue(path, entry.name);
  bool const isList = TDFParam::isListType(rule.type);
  auto const items = isList ? StringUtilities::stringToVector(value, ',') : std::vector<std::string>{value};
  for (std::string const& item : items) count(&rule, RuleAttributes::orderedAllowedStringList, item);
  if (rule.pattern && !value.empty()) {
    bool const isWrong = isFound(path, entry.name, session::FindingCode::PatternNotMatched);
    count(&rule, RuleAttributes::pattern, isWrong ? outcomes::notMatched : outcomes::matched);
  }
  if (value.empty() || isFound(path, entry.name, session::FindingCode::NotANumber)) return;
  bool const isBelow = isFound(path, entry.name, session::FindingCode::BelowLowerBound);
  bool const isAbove = isFound(path, entry.name, session::FindingCode::AboveUpperBound);
  count(&rule, RuleAttributes::lowerBound, isBelow ? outcomes::broken : outcomes::kept);
  count(&rule, RuleAttributes::upperBound, isAbove ? outcomes::broken : outcomes::kept);
}

CoverageWalk::HandlerStatus CoverageWalk::onChildCheck(ChildAvailInfo const* info) {
  std::string const& path = info->getObjPath();
  checkOpenObject(path);
  ChildAvail const* const entry = open_.back().rules->findChild(info->getType());
  if (entry == nullptr) return Continue;
  TDFContext const context(path);
  if (!countEntry(*entry, info->isAvailable(), context)) return Continue;
  record(entry->allowedNamesSource.get(), context);
  if (!info->isAvailable()) return Continue;
  record(entry->defaultNamesSource.get(), context);
  record(entry->minimumCount.get(), context);
  record(entry->maximumCount.get(), context);
  bool const tooFew = isFound(path, entry->type, session::FindingCode::TooFewObjects);
  bool const tooMany = isFound(path, entry->type, session::FindingCode::TooManyObjects);
  count(entry, attributes::minimumCount, tooFew ? outcomes::broken : outcomes::kept);
  count(entry, attributes::maximumCount, tooMany ? outcomes::broken : outcomes::kept);
  return Continue;
}

CoverageWalk::HandlerStatus CoverageWalk::onEndObject(std::string const& objPath, bool /*required*/) {
  checkOpenObject(objPath);
  open_.pop_back();
  return Continue;
}

// As in a review, checks come between the parameters and the children of an object.
void CoverageWalk::checkOpenObject(std::string const& path) {
  OpenObject& object = open_.back();
  if (object.isChecked || object.rules == nullptr) return;
  object.isChecked = true;
  TDFContext const context(path);
  for (auto const& check : object.rules->checks()) {
    record(check->when.get(), context);
    if (check->when && !check->when->evaluate(context, &evaluation_)) continue;
    record(check->check.get(), context);
    bool const passes = check->passes(context, &evaluation_);
    count(check.get(), attributes::check, passes ? outcomes::passed : outcomes::failed);
    if (!passes) record(check->message.get(), context);
  }
}

void CoverageWalk::checkGlobally() {
  TDFContext const root{std::string{}};
  for (std::string const& name : rules_.getGlobalCheckNames()) {
    GlobalCheck const* const check = rules_.getGlobalCheck(name, false);
    if (check == nullptr) continue;
    record(check, root);
    count(check, attributes::check, check->evaluate(&evaluation_).first ? outcomes::passed : outcomes::failed);
  }
}

}  // namespace tarn::workbench
