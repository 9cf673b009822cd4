// Lists everything that rules can show, and what was counted of it.
#include <tarn/workbench/RuleCoverage.h>

#include <algorithm>
#include <array>
#include <set>
#include <utility>

#include <tarn/DynamicTDF.h>
#include <tarn/PertinentRoots.h>
#include <tarn/RuleAttributes.h>
#include <tarn/session/Review.h>

#include "coverage/Attributes.h"
#include "coverage/CoverageWalk.h"

namespace tarn::workbench {

namespace {

using Kind = CoverageKind;

/// The items of one entry of the rules after the other.
class ItemList {
 public:
  ItemList(CoverageCounts const& counts, std::vector<CoverageItem>& items) : counts_(counts), items_(items) {}

  /// The subject of the next items.
  void about(std::string typePath, std::string entry) {
    typePath_ = std::move(typePath);
    entry_ = std::move(entry);
  }

  void add(Kind kind, void const* subject, std::string_view attribute, TextPlace const& place,
           std::vector<std::string> const& outcomes) {
    CoverageItem item = itemOf(kind, attribute, place);
    auto const seen = counts_.times.find({subject, attribute});
    for (std::string const& outcome : outcomes) {
      std::size_t times = 0;
      if (seen != counts_.times.end()) {
        if (auto const found = seen->second.find(outcome); found != seen->second.end()) times = found->second;
      }
      item.outcomes.push_back({outcome, times});
    }
    items_.push_back(std::move(item));
  }

  /// The conditions and operands of a rule; nothing for null. `isShown`: the first part is the rule itself, which
  /// another item shows already.
  void addParts(RuleExpression const* rule, std::string_view attribute, TextPlace const& place, bool isShown = false,
                std::string const& value = {}) {
    if (rule == nullptr) return;
    auto const parts = counts_.operands.partsOf(*rule);
    for (std::size_t i = isShown ? 1 : 0; i < parts.size(); ++i) {
      TextPlace const& at = rule->rulePlace().isKnown() ? rule->rulePlace() : place;
      CoverageItem item = itemOf(i == 0 ? Kind::Condition : Kind::Operand, attribute, at);
      item.text = parts[i].text;
      item.value = value;
      item.outcomes = {{outcomes::holds, parts[i].timesTrue}, {outcomes::doesNotHold, parts[i].timesFalse}};
      items_.push_back(std::move(item));
    }
  }

 private:
  [[nodiscard]] CoverageItem itemOf(Kind kind, std::string_view attribute, TextPlace const& place) const {
    CoverageItem item;
    item.kind = kind;
    item.typePath = typePath_;
    item.entry = entry_;
    item.attribute = attribute;
    item.place = place;
    return item;
  }

  CoverageCounts const& counts_;
  std::vector<CoverageItem>& items_;
  std::string typePath_;
  std::string entry_;
};

/// The parts that parameters and types of children have in common.
template <typename Entry>
void addEntry(ItemList& list, Entry const& entry, bool canBeEmpty) {
  std::vector<std::string> outcomes = {outcomes::available};
  if (entry.available || !entry.contexts.empty() || canBeEmpty) outcomes.emplace_back(outcomes::notAvailable);
  list.add(Kind::Entry, &entry, attributes::entry, entry.rulePlace, outcomes);
  if (!entry.contexts.empty()) list.add(Kind::Context, &entry, attributes::context, entry.rulePlace, entry.contexts);
  list.addParts(entry.available.get(), attributes::entry, entry.rulePlace);
}

void addBranches(ItemList& list, Kind kind, ParamValueDef const& rule, std::string_view attribute, char const* last,
                 std::vector<ParamValueDef::GuardedText> const& branches) {
  if (branches.empty()) return;
  std::vector<std::string> outcomes;
  bool canEnd = true;
  for (std::size_t i = 0; i < branches.size(); ++i) {
    outcomes.push_back(outcomes::branch(i));
    canEnd = canEnd && branches[i].when != nullptr;
  }
  if (canEnd) outcomes.emplace_back(last);
  TextPlace const place = branches.front().when && branches.front().when->rulePlace().isKnown()
                              ? branches.front().when->rulePlace()
                              : rule.rulePlace;
  list.add(kind, &rule, attribute, place, outcomes);
  for (auto const& branch : branches) {
    // The whole condition is seen by the branches.
    list.addParts(branch.when.get(), attribute, rule.rulePlace, true);
    list.addParts(branch.value.get(), attribute, rule.rulePlace);
  }
}

void addBound(ItemList& list, ParamValueDef const& rule, std::string_view attribute, TextExpression const* bound) {
  if (bound == nullptr) return;
  TextPlace const& place = bound->rulePlace().isKnown() ? bound->rulePlace() : rule.rulePlace;
  list.add(Kind::Bound, &rule, attribute, place, {outcomes::kept, outcomes::broken});
  list.addParts(bound, attribute, rule.rulePlace);
}

void addValueRule(ItemList& list, ParamValueDef const& rule) {
  if (rule.allowedValueKind != ParamValueDef::NoAllowedValues) {
    auto const* const fixed = dynamic_cast<FixedList const*>(rule.allowedValues.get());
    if (fixed != nullptr && !rule.allowsAnyValue) {
      std::vector<std::string> values;
      for (std::string const& value : fixed->items()) {
        bool const isKnown = std::find(values.begin(), values.end(), value) != values.end();
        if (!isKnown && !rule.unusedValues.contains(value)) values.push_back(value);
      }
      TextPlace const& place = fixed->rulePlace().isKnown() ? fixed->rulePlace() : rule.rulePlace;
      list.add(Kind::AllowedValue, &rule, RuleAttributes::orderedAllowedStringList, place, values);
    }
    list.addParts(rule.allowedValues.get(), RuleAttributes::valueListSource, rule.rulePlace);
    for (auto const& [value, condition] : rule.allowedValueChecks) {
      list.addParts(condition.get(), RuleAttributes::allowedStringListChecks, rule.rulePlace, false, value);
    }
    list.addParts(rule.subset.get(), RuleAttributes::subsetValueListSource, rule.rulePlace);
  }
  addBranches(list, Kind::Default, rule, RuleAttributes::defaultValueCheckList, outcomes::otherwise,
              rule.defaultChecks);
  list.addParts(rule.defaultValue.get(), RuleAttributes::defaultValue, rule.rulePlace);
  addBranches(list, Kind::Override, rule, RuleAttributes::valueOverrideCheckList, outcomes::none, rule.overrideChecks);
  addBound(list, rule, RuleAttributes::lowerBound, rule.lowerBound.get());
  addBound(list, rule, RuleAttributes::upperBound, rule.upperBound.get());
  if (rule.pattern && TDFParam::elementType(rule.type) == TDFParam::String) {
    list.add(Kind::Pattern, &rule, RuleAttributes::pattern, rule.rulePlace, {outcomes::matched, outcomes::notMatched});
  }
  list.addParts(rule.quantityType.get(), RuleAttributes::quantityType, rule.rulePlace);
}

void addChild(ItemList& list, ChildAvail const& entry) {
  addEntry(list, entry, entry.allowedNamesSource != nullptr);
  list.addParts(entry.allowedNamesSource.get(), attributes::allowedNames, entry.rulePlace);
  list.addParts(entry.defaultNamesSource.get(), attributes::defaultNames, entry.rulePlace);
  for (auto const& [attribute, count] : {std::pair{attributes::minimumCount, entry.minimumCount.get()},
                                         std::pair{attributes::maximumCount, entry.maximumCount.get()}}) {
    if (count == nullptr) continue;
    list.add(Kind::Bound, &entry, attribute, count->rulePlace().isKnown() ? count->rulePlace() : entry.rulePlace,
             {outcomes::kept, outcomes::broken});
    list.addParts(count, attribute, entry.rulePlace);
  }
}

void addCheck(ItemList& list, ObjectCheck const& check) {
  list.add(Kind::Check, &check, attributes::check, check.rulePlace, {outcomes::passed, outcomes::failed});
  list.addParts(check.when.get(), attributes::when, check.rulePlace);
  list.addParts(check.check.get(), attributes::check, check.rulePlace, true);
  list.addParts(check.message.get(), attributes::message, check.rulePlace);
}

/// Whether a rule can make the list empty, so that the parameter is not available.
bool canBeEmpty(ParamValueDef const* rule) {
  if (rule == nullptr || rule->allowedValueKind == ParamValueDef::NoAllowedValues) return false;
  if (rule->availableWithNoAllowedValues || rule->allowedValues == nullptr) return false;
  auto const* const fixed = dynamic_cast<FixedList const*>(rule->allowedValues.get());
  if (fixed == nullptr) return true;
  return std::all_of(fixed->items().begin(), fixed->items().end(), [&](std::string const& value) {
    return rule->allowedValueChecks.contains(value) || rule->unusedValues.contains(value);
  });
}

}  // namespace

std::string_view coverageKindName(CoverageKind kind) noexcept {
  constexpr std::array<std::string_view, 10> names = {"entry",   "context",  "condition", "operand", "allowed-value",
                                                      "default", "override", "bound",     "check",   "pattern"};
  return names[static_cast<std::size_t>(kind)];
}

std::size_t CoverageItem::seen() const noexcept {
  return static_cast<std::size_t>(
      std::count_if(outcomes.begin(), outcomes.end(), [](Outcome const& one) { return one.times > 0; }));
}

struct RuleCoverage::Impl {
  PhysicsData const* rules;
  session::Review review;
  CoverageCounts counts;
};

RuleCoverage::RuleCoverage(PhysicsData const& rules)
    : impl_(std::make_unique<Impl>(Impl{&rules, session::Review(rules), {}})) {}
RuleCoverage::~RuleCoverage() = default;
RuleCoverage::RuleCoverage(RuleCoverage&&) noexcept = default;
RuleCoverage& RuleCoverage::operator=(RuleCoverage&&) noexcept = default;

void RuleCoverage::add(ModelState const& model) {
  session::Findings const findings = impl_->review.judge(model);
  DynamicTDF tree(false);
  tree.initialise(model.begin(), model.end());
  CoverageWalk walk(*impl_->rules, tree, findings, impl_->counts);
  for (std::string const& root : PertinentRoots(*impl_->rules).objectsIn(model)) walk.from(root);
  walk.checkGlobally();
}

void RuleCoverage::add(RuleCoverage const& other) {
  for (auto const& [subject, seen] : other.impl_->counts.times) {
    for (auto const& [outcome, times] : seen) impl_->counts.times[subject][outcome] += times;
  }
  impl_->counts.operands.add(other.impl_->counts.operands);
}

std::vector<CoverageItem> RuleCoverage::items() const {
  std::vector<CoverageItem> items;
  ItemList list(impl_->counts, items);
  PhysicsData const& rules = *impl_->rules;
  for (ObjDependDef const* object : rules.objects()) {
    for (auto const& param : object->params()) {
      list.about(object->typePath(), param->name);
      addEntry(list, *param, canBeEmpty(param->valueDef()));
      if (param->valueDef() != nullptr) addValueRule(list, *param->valueDef());
    }
    for (auto const& child : object->children()) {
      list.about(object->typePath(), child->type);
      addChild(list, *child);
    }
    for (auto const& check : object->checks()) {
      list.about(object->typePath(), check->name);
      addCheck(list, *check);
    }
  }
  for (std::string const& name : rules.getGlobalCheckNames()) {
    GlobalCheck const* const check = rules.getGlobalCheck(name, false);
    list.about({}, name);
    list.add(Kind::Check, check, attributes::check, check->rulePlace(), {outcomes::passed, outcomes::failed});
    list.addParts(check, attributes::check, check->rulePlace(), true);
  }
  for (std::string const& name : rules.getCheckNames()) {
    list.about({}, name);
    list.addParts(rules.getCheck(name, false), "Checks", {});
  }
  for (std::string const& name : rules.getListNames()) {
    list.about({}, name);
    list.addParts(rules.getList(name, false), "Lists", {});
  }
  for (std::string const& name : rules.getValueNames()) {
    list.about({}, name);
    list.addParts(rules.findValue(name), "Values", {});
  }
  return items;
}

CoverageCount countOf(std::vector<CoverageItem> const& items) noexcept {
  CoverageCount count;
  for (CoverageItem const& item : items) {
    count.seen += item.seen();
    count.all += item.outcomes.size();
  }
  return count;
}

CoverageCount countOf(std::vector<CoverageItem> const& items, CoverageKind kind) noexcept {
  CoverageCount count;
  for (CoverageItem const& item : items) {
    if (item.kind != kind) continue;
    count.seen += item.seen();
    count.all += item.outcomes.size();
  }
  return count;
}

}  // namespace tarn::workbench
