// Compares rules attribute by attribute, as texts. An item is found in the old rules by its name, or by a former name
// that the new rules list.
#include <tarn/workbench/RuleComparison.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/rules/Words.h>

#include "rules/NamedContent.h"

namespace tarn::workbench {

namespace {

using Attributes = std::vector<std::pair<std::string, std::string>>;

std::string joined(SharedStrings const& items) {
  std::string text;
  for (std::string const& item : items) text += (text.empty() ? "" : ", ") + item;
  return text;
}

/// A condition, a named check or a global check.
std::string conditionText(RuleExpression const* condition) {
  if (condition == nullptr) return {};
  std::string text = condition->sourceText();
  return text.empty() ? "computed by the program" : text;
}

std::string sourceOf(RuleExpression const& rule) {
  if (std::string const text = rule.sourceText(); !text.empty()) return "= " + text;
  // A list whose items have conditions is written in several places, and only its words are one text.
  std::string words = rules::inWords(rule);
  return words.empty() ? "computed by the program" : words;
}

std::string valueText(TextExpression const* text) {
  if (text == nullptr) return {};
  auto const* fixed = dynamic_cast<FixedText const*>(text);
  return fixed != nullptr ? fixed->text() : sourceOf(*text);
}

std::string listText(ListExpression const* list) {
  if (list == nullptr) return {};
  auto const* fixed = dynamic_cast<FixedList const*>(list);
  return fixed != nullptr ? joined(fixed->items()) : sourceOf(*list);
}

std::string guardedText(std::vector<ParamValueDef::GuardedText> const& entries) {
  std::string text;
  for (auto const& entry : entries) {
    if (!text.empty()) text += "; ";
    text += valueText(entry.value.get()) + " when " + (entry.when ? conditionText(entry.when.get()) : "true");
  }
  return text;
}

std::string yes(bool given) {
  return given ? "yes" : "";
}

template <typename Entry>
Attributes availabilityOf(Entry const& entry) {
  std::string contexts;
  for (std::string const& context : entry.contexts) contexts += (contexts.empty() ? "" : ", ") + context;
  return {{"Available", conditionText(entry.available.get())},
          {"Required", yes(entry.required)},
          {"Context", contexts},
          {"Validation Relaxed", yes(entry.validationRelaxed)},
          {"Deprecated", entry.history.deprecated}};
}

/// Texts for people. No result depends on them.
template <typename Entry>
void addTexts(Attributes& list, Entry const& entry) {
  list.emplace_back("Description", entry.description);
  list.emplace_back("Reason", entry.reason);
  list.emplace_back("Group", entry.group);
  list.emplace_back("Label", entry.label);
  list.emplace_back("Advanced", yes(entry.advanced));
  list.emplace_back("Beta Message", entry.betaMessage);
  list.emplace_back("Rename Message", entry.history.renameMessage);
}

void addValues(Attributes& list, ParamValueDef const& def) {
  std::string checks;
  for (auto const& [value, when] : def.allowedValueChecks) {
    checks += (checks.empty() ? "" : "; ") + value + " when " + conditionText(when.get());
  }
  bool const hasValues = def.allowedValueKind != ParamValueDef::NoAllowedValues;
  list.emplace_back("Parameter Type", TDFParam::typeName(def.type));
  list.emplace_back(def.allowedValueKind == ParamValueDef::ComputedAllowedValues ? "Value List Source"
                                                                                 : "Ordered Allowed String List",
                    hasValues ? listText(def.allowedValues.get()) : "");
  list.emplace_back("Allowed String List Checks", checks);
  list.emplace_back("Unused Allowed String List", joined(def.unusedValues));
  list.emplace_back("Subset", listText(def.subset.get()));
  list.emplace_back("Allows Any Value", yes(def.allowsAnyValue));
  list.emplace_back("Available With No Allowed Values", yes(def.availableWithNoAllowedValues));
  list.emplace_back("Complete List Required", yes(def.completeListRequired));
  list.emplace_back("Default Value", valueText(def.defaultValue.get()));
  list.emplace_back("Default Value Check List", guardedText(def.defaultChecks));
  list.emplace_back("Fallback To Blank Default", yes(def.fallbackToBlankDefault));
  list.emplace_back("Value Override Check List", guardedText(def.overrideChecks));
  list.emplace_back("Lower Bound", valueText(def.lowerBound.get()));
  list.emplace_back("Upper Bound", valueText(def.upperBound.get()));
  list.emplace_back("Lower Bound Excluded", yes(def.lowerBoundExcluded));
  list.emplace_back("Upper Bound Excluded", yes(def.upperBoundExcluded));
  list.emplace_back("Pattern", def.pattern ? def.pattern->text() : "");
  list.emplace_back("Pattern Message", def.patternMessage);
  list.emplace_back("Quantity Type", valueText(def.quantityType.get()));
  std::string beta;
  for (auto const& [value, message] : def.betaValues) beta += (beta.empty() ? "" : "; ") + value + ": " + message;
  list.emplace_back("Beta Values", beta);
}

Attributes attributesOf(ParamAvail const& param) {
  Attributes list = availabilityOf(param);
  list.emplace_back("Context Rule", yes(param.contextRule));
  if (ParamValueDef const* const def = param.valueDef()) addValues(list, *def);
  addTexts(list, param);
  return list;
}

Attributes attributesOf(ChildAvail const& child) {
  Attributes list = availabilityOf(child);
  list.emplace_back("Singleton", yes(child.singleton));
  list.emplace_back("Coupled", yes(child.coupled));
  list.emplace_back("Allowed Names", listText(child.allowedNamesSource.get()));
  list.emplace_back("Default Names", listText(child.defaultNamesSource.get()));
  list.emplace_back("Minimum Count", valueText(child.minimumCount.get()));
  list.emplace_back("Maximum Count", valueText(child.maximumCount.get()));
  std::string names;
  for (auto const& [before, now] : child.renamedNames) names += (names.empty() ? "" : "; ") + before + ": " + now;
  list.emplace_back("Renamed Names", names);
  addTexts(list, child);
  return list;
}

Attributes attributesOf(ObjDependDef const& object) {
  return {{"Deprecated", object.history.deprecated},
          {"Description", object.description},
          {"Rename Message", object.history.renameMessage}};
}

Attributes attributesOf(ObjectCheck const& check) {
  return {{"When", conditionText(check.when.get())},
          {"Check", conditionText(check.check.get())},
          {"Message", valueText(check.message.get())},
          {"Level", check.level == CheckLevel::Warning ? "Warning" : "Error"}};
}

Attributes attributesOf(GlobalCheck const& check) {
  return {{"Check", conditionText(&check)},
          {"Message", valueText(rules::messageOf(check))},
          {"Level", check.level() == CheckLevel::Warning ? "Warning" : "Error"}};
}

std::string numberText(double number) {
  std::array<char, 32> buffer{};
  auto const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr;
  return {buffer.data(), end};
}

/// The units, and the conversions of those that `other` has, too.
Attributes attributesOf(QuantityType const& type, QuantityType const& other) {
  std::string units;
  std::string conversions;
  for (QuantityUnit const& unit : type.units()) {
    units += (units.empty() ? "" : ", ") + unit.text;
    if (other.find(unit.text) == nullptr) continue;
    std::string text = "unknown";
    if (unit.isConvertible) {
      text = numberText(unit.factor);
      if (unit.offset != 0) text += ", offset " + numberText(unit.offset);
    }
    conversions += (conversions.empty() ? "" : "; ") + unit.text + ": " + text;
  }
  return {{"Units", units}, {"Conversions", conversions}};
}

/// Keys that only one of the two has are compared with "".
std::vector<AttributeChange> difference(Attributes const& before, Attributes const& after) {
  std::vector<AttributeChange> changes;
  auto const in = [](Attributes const& list, std::string const& key) -> std::string {
    auto const found = std::find_if(list.begin(), list.end(), [&](auto const& one) { return one.first == key; });
    return found == list.end() ? std::string() : found->second;
  };
  for (auto const& [key, value] : after) {
    if (std::string old = in(before, key); old != value) changes.push_back({key, std::move(old), value});
  }
  for (auto const& [key, value] : before) {
    bool const isKnown =
        std::any_of(after.begin(), after.end(), [&key = key](auto const& one) { return one.first == key; });
    if (!isKnown && !value.empty()) changes.push_back({key, value, ""});
  }
  return changes;
}

class Comparison {
 public:
  Comparison(PhysicsData const& before, PhysicsData const& after) : before_(before), after_(after) {}

  std::vector<RuleChange> run() {
    compareRoots();
    compareQuantityTypes();
    compareNamed("named value", before_.getValueNames(), after_.getValueNames(),
                 [](PhysicsData const& rules, std::string const& name) {
                   TextExpression const& value = *rules.findValue(name);
                   std::string const fixed = fixedTextOf(value);
                   return std::pair(Attributes{{"Value", fixed.empty() ? sourceOf(value) : fixed}}, value.rulePlace());
                 });
    compareNamed(
        "named list", before_.getListNames(), after_.getListNames(),
        [](PhysicsData const& rules, std::string const& name) {
          List const& list = *rules.getList(name, true);
          SharedStrings const items = fixedItemsOf(list);
          return std::pair(Attributes{{"List", items.empty() ? sourceOf(list) : joined(items)}}, list.rulePlace());
        });
    compareNamed("named check", before_.getCheckNames(), after_.getCheckNames(),
                 [](PhysicsData const& rules, std::string const& name) {
                   Check const& check = *rules.getCheck(name, true);
                   return std::pair(Attributes{{"Check", conditionText(&check)}}, check.rulePlace());
                 });
    for (ObjDependDef const* object : after_.objects()) compareObject(*object);
    for (ObjDependDef const* object : before_.objects()) {
      if (!matched_.contains(object)) reportObject(ChangeKind::Went, *object);
    }
    compareNamed("global check", before_.getGlobalCheckNames(), after_.getGlobalCheckNames(),
                 [](PhysicsData const& rules, std::string const& name) {
                   GlobalCheck const& check = *rules.getGlobalCheck(name, true);
                   return std::pair(attributesOf(check), check.rulePlace());
                 });
    return std::move(changes_);
  }

 private:
  RuleChange& add(ChangeKind kind, std::string item, std::string name) {
    RuleChange& change = changes_.emplace_back();
    change.kind = kind;
    change.item = std::move(item);
    change.name = std::move(name);
    return change;
  }

  void compareRoots() {
    auto const& old = before_.getPertinentGlobalCheckRoots();
    auto const& now = after_.getPertinentGlobalCheckRoots();
    auto const has = [](std::vector<std::string> const& list, std::string const& one) {
      return std::find(list.begin(), list.end(), one) != list.end();
    };
    for (std::string const& root : now) {
      if (!has(old, root)) add(ChangeKind::Came, "root type", root);
    }
    for (std::string const& root : old) {
      if (!has(now, root)) add(ChangeKind::Went, "root type", root);
    }
  }

  void compareQuantityTypes() {
    for (auto const& [name, type] : after_.quantityTypes()) {
      QuantityType const* const old = before_.findQuantityType(name);
      if (old == nullptr) {
        add(ChangeKind::Came, "quantity type", name);
      } else if (auto list = difference(attributesOf(*old, type), attributesOf(type, *old)); !list.empty()) {
        add(ChangeKind::Changed, "quantity type", name).attributes = std::move(list);
      }
    }
    for (auto const& [name, type] : before_.quantityTypes()) {
      if (after_.findQuantityType(name) == nullptr) add(ChangeKind::Went, "quantity type", name);
    }
  }

  template <typename Describe>
  void compareNamed(std::string const& item, std::vector<std::string> const& before,
                    std::vector<std::string> const& after, Describe const& describe) {
    std::set<std::string> const old(before.begin(), before.end());
    std::set<std::string> const now(after.begin(), after.end());
    for (std::string const& name : after) {
      auto const [attributes, place] = describe(after_, name);
      if (!old.contains(name)) {
        add(ChangeKind::Came, item, name).after = place;
        continue;
      }
      auto const [former, formerPlace] = describe(before_, name);
      auto list = difference(former, attributes);
      if (list.empty()) continue;
      RuleChange& change = add(ChangeKind::Changed, item, name);
      change.attributes = std::move(list);
      change.before = formerPlace;
      change.after = place;
    }
    for (std::string const& name : before) {
      if (!now.contains(name)) add(ChangeKind::Went, item, name).before = describe(before_, name).second;
    }
  }

  /// The path that an object type of the new rules had in the old ones. "" when they do not know it.
  [[nodiscard]] std::string const& oldPathOf(std::string const& path) {
    if (auto const known = oldPaths_.find(path); known != oldPaths_.end()) return known->second;
    // From the root down: a path is made from that of its parent.
    std::string old;
    for (std::size_t end = 0; end < path.size();) {
      end = std::min(path.find('/', end + 1), path.size());
      std::string const part = path.substr(0, end);
      auto const [entry, isNew] = oldPaths_.try_emplace(part);
      if (isNew) entry->second = oldChildOf(old, part);
      old = entry->second;
      if (old.empty()) break;
    }
    return oldPaths_[path] = old;
  }

  [[nodiscard]] std::string oldChildOf(std::string const& oldParent, std::string const& path) const {
    std::string const parent(PathUtils::parentOf(path));
    std::string const type(PathUtils::lastType(path));
    if (isKnownBefore(oldParent, type)) return oldParent + '/' + type;
    std::vector<std::string> const* former = nullptr;
    if (parent.empty()) {
      ObjDependDef const* const object = after_.getObjDependDef(path, true);
      if (object != nullptr) former = &object->history.formerNames;
    } else if (ObjDependDef const* const object = after_.getObjDependDef(parent, true)) {
      ChildAvail const* const child = object->findChild(type);
      if (child != nullptr) former = &child->history.formerNames;
    }
    if (former == nullptr) return {};
    for (std::string const& name : *former) {
      if (isKnownBefore(oldParent, name)) return oldParent + '/' + name;
    }
    return {};
  }

  [[nodiscard]] bool isKnownBefore(std::string const& parent, std::string const& type) const {
    if (before_.getObjDependDef(parent + '/' + type, true) != nullptr) return true;
    ObjDependDef const* const object = before_.getObjDependDef(parent, true);
    return object != nullptr && object->findChild(type) != nullptr;
  }

  void compareObject(ObjDependDef const& object) {
    std::string const& oldPath = oldPathOf(object.typePath());
    ObjDependDef const* const old =
        object.typePath().empty() || !oldPath.empty() ? before_.getObjDependDef(oldPath, true) : nullptr;
    if (old == nullptr || !matched_.insert(old).second) {
      reportObject(ChangeKind::Came, object);
      return;
    }
    std::vector<AttributeChange> list = difference(attributesOf(*old), attributesOf(object));
    addOrder(*old, object, list);
    if (oldPath != object.typePath() || !list.empty()) {
      RuleChange& change = add(oldPath != object.typePath() ? ChangeKind::Renamed : ChangeKind::Changed, "object type",
                               object.typePath());
      if (oldPath != object.typePath()) change.formerName = oldPath;
      change.attributes = std::move(list);
      change.before = old->rulePlace;
      change.after = object.rulePlace;
    }
    compareEntries("parameter", *old, object, old->params(), object.params(),
                   [](ParamAvail const& one) -> std::string const& { return one.name; });
    compareEntries("child type", *old, object, old->children(), object.children(),
                   [](ChildAvail const& one) -> std::string const& { return one.type; });
    compareChecks(*old, object);
  }

  /// The rules look at parameters in their order, so another order can give other results.
  static void addOrder(ObjDependDef const& old, ObjDependDef const& object, std::vector<AttributeChange>& list) {
    auto const common = [](ObjDependDef const& one, ObjDependDef const& other) {
      std::vector<std::string> names;
      for (auto const& param : one.params()) {
        if (other.findParam(param->name) != nullptr) names.push_back(param->name);
      }
      return names;
    };
    std::vector<std::string> const before = common(old, object);
    std::vector<std::string> const after = common(object, old);
    auto const [first, second] = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    if (first == before.end()) return;
    auto const from = [](auto begin, auto end) {
      constexpr std::ptrdiff_t most = 10;
      std::string text;
      for (auto one = begin; one != end && one - begin < most; ++one) text += (text.empty() ? "" : ", ") + *one;
      return text + (end - begin > most ? ", ..." : "");
    };
    list.push_back({"Order", from(first, before.end()), from(second, after.end())});
  }

  void reportObject(ChangeKind kind, ObjDependDef const& object) {
    RuleChange& change = add(kind, "object type", object.typePath());
    (kind == ChangeKind::Came ? change.after : change.before) = object.rulePlace;
  }

  template <typename Entries, typename NameOf>
  void compareEntries(std::string const& item, ObjDependDef const& oldObject, ObjDependDef const& object,
                      Entries const& before, Entries const& after, NameOf const& nameOf) {
    std::map<std::string_view, typename Entries::value_type::element_type const*> old;
    for (auto const& entry : before) old.emplace(nameOf(*entry), entry.get());
    std::set<std::string_view> now;
    for (auto const& entry : after) now.insert(nameOf(*entry));
    for (auto const& entry : after) {
      auto found = old.find(nameOf(*entry));
      for (std::string const& former : entry->history.formerNames) {
        if (found != old.end()) break;
        if (!now.contains(former)) found = old.find(former);
      }
      std::string const name = object.typePath() + '/' + nameOf(*entry);
      if (found == old.end()) {
        add(ChangeKind::Came, item, name).after = entry->rulePlace;
        continue;
      }
      auto const& former = *found->second;
      auto list = difference(attributesOf(former), attributesOf(*entry));
      bool const isRenamed = nameOf(former) != nameOf(*entry);
      old.erase(found);
      if (list.empty() && !isRenamed) continue;
      RuleChange& change = add(isRenamed ? ChangeKind::Renamed : ChangeKind::Changed, item, name);
      if (isRenamed) change.formerName = oldObject.typePath() + '/' + nameOf(former);
      change.attributes = std::move(list);
      change.before = former.rulePlace;
      change.after = entry->rulePlace;
    }
    for (auto const& entry : before) {
      if (!old.contains(nameOf(*entry))) continue;
      add(ChangeKind::Went, item, oldObject.typePath() + '/' + nameOf(*entry)).before = entry->rulePlace;
    }
  }

  void compareChecks(ObjDependDef const& old, ObjDependDef const& object) {
    auto const find = [](ObjDependDef const& one, std::string const& name) -> ObjectCheck const* {
      auto const found = std::find_if(one.checks().begin(), one.checks().end(),
                                      [&](auto const& check) { return check->name == name; });
      return found == one.checks().end() ? nullptr : found->get();
    };
    for (auto const& check : object.checks()) {
      ObjectCheck const* const former = find(old, check->name);
      std::string const name = object.typePath() + '/' + check->name;
      if (former == nullptr) {
        add(ChangeKind::Came, "check", name).after = check->rulePlace;
      } else if (auto list = difference(attributesOf(*former), attributesOf(*check)); !list.empty()) {
        RuleChange& change = add(ChangeKind::Changed, "check", name);
        change.attributes = std::move(list);
        change.before = former->rulePlace;
        change.after = check->rulePlace;
      }
    }
    for (auto const& check : old.checks()) {
      if (find(object, check->name) != nullptr) continue;
      add(ChangeKind::Went, "check", old.typePath() + '/' + check->name).before = check->rulePlace;
    }
  }

  PhysicsData const& before_;
  PhysicsData const& after_;
  std::vector<RuleChange> changes_;
  std::map<std::string, std::string> oldPaths_;
  std::set<ObjDependDef const*> matched_;  // of the old rules
};

}  // namespace

std::string_view changeKindName(ChangeKind kind) noexcept {
  switch (kind) {
    case ChangeKind::Came:
      return "came";
    case ChangeKind::Went:
      return "went";
    case ChangeKind::Renamed:
      return "renamed";
    case ChangeKind::Changed:
      return "changed";
  }
  return {};
}

std::vector<RuleChange> compareRules(PhysicsData const& before, PhysicsData const& after) {
  return Comparison(before, after).run();
}

}  // namespace tarn::workbench
