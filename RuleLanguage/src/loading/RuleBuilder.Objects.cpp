// Reads the section `Objects`: object types, their parameters, children and checks.

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include <tarn/StringUtilities.h>

#include "diagnostics/NearMatch.h"
#include "expression/Habits.h"
#include "loading/RuleBuilder.h"
#include "loading/RuleSections.h"

namespace tarn::rules {

namespace {

using StringUtilities::isSpace;

enum class ObjectKey { Description, History, Use, Parameters, Children, Checks, Accepted };
constexpr auto objectKeys = std::to_array<Key<ObjectKey>>({
    {"Description", ObjectKey::Description},
    {attributes::deprecated, ObjectKey::History},
    {attributes::renamedFrom, ObjectKey::History},
    {attributes::renameMessage, ObjectKey::History},
    {"Use", ObjectKey::Use},
    {"Parameters", ObjectKey::Parameters},
    {"Children", ObjectKey::Children},
    {"Checks", ObjectKey::Checks},
    {"Accepted", ObjectKey::Accepted},
});

enum class ParamKey {
  Available,
  Required,
  ContextRule,
  Context,
  ValidationRelaxed,
  Description,
  Reason,
  Group,
  Label,
  Advanced,
  Deprecated,
  RenamedFrom,
  RenameMessage,
  BetaMessage,
  BetaValues,
  Type,
  AllowedList,
  ListSource,
  Checks,
  Unused,
  Subset,
  SubsetSource,
  AllowsAny,
  AvailableWithNone,
  CompleteList,
  Default,
  DefaultChecks,
  FallbackToBlank,
  OverrideChecks,
  LowerBound,
  UpperBound,
  LowerExcluded,
  UpperExcluded,
  Pattern,
  PatternMessage,
  QuantityType,
  Accepted
};
constexpr auto paramKeys = std::to_array<Key<ParamKey>>({
    {"Available", ParamKey::Available},
    {"Required", ParamKey::Required},
    {"Context Rule", ParamKey::ContextRule},
    {"Context", ParamKey::Context},
    {"Validation Relaxed", ParamKey::ValidationRelaxed},
    {"Description", ParamKey::Description},
    {"Reason", ParamKey::Reason},
    {attributes::group, ParamKey::Group},
    {attributes::label, ParamKey::Label},
    {attributes::advanced, ParamKey::Advanced},
    {attributes::deprecated, ParamKey::Deprecated},
    {attributes::renamedFrom, ParamKey::RenamedFrom},
    {attributes::renameMessage, ParamKey::RenameMessage},
    {"Beta Message", ParamKey::BetaMessage},
    {"Beta Values", ParamKey::BetaValues},
    {attributes::parameterType, ParamKey::Type},
    {attributes::orderedAllowedStringList, ParamKey::AllowedList},
    {attributes::valueListSource, ParamKey::ListSource},
    {attributes::allowedStringListChecks, ParamKey::Checks},
    {attributes::unusedAllowedStringList, ParamKey::Unused},
    {attributes::subsetAllowedStringList, ParamKey::Subset},
    {attributes::subsetValueListSource, ParamKey::SubsetSource},
    {"Allows Any Value", ParamKey::AllowsAny},
    {attributes::availableWithNoAllowedValues, ParamKey::AvailableWithNone},
    {attributes::completeListRequired, ParamKey::CompleteList},
    {attributes::defaultValue, ParamKey::Default},
    {attributes::defaultValueCheckList, ParamKey::DefaultChecks},
    {attributes::fallbackToBlankDefault, ParamKey::FallbackToBlank},
    {attributes::valueOverrideCheckList, ParamKey::OverrideChecks},
    {attributes::lowerBound, ParamKey::LowerBound},
    {attributes::upperBound, ParamKey::UpperBound},
    {attributes::lowerBoundExcluded, ParamKey::LowerExcluded},
    {attributes::upperBoundExcluded, ParamKey::UpperExcluded},
    {attributes::pattern, ParamKey::Pattern},
    {attributes::patternMessage, ParamKey::PatternMessage},
    {attributes::quantityType, ParamKey::QuantityType},
    {"Accepted", ParamKey::Accepted},
});

enum class ChildKey {
  Available,
  Required,
  Context,
  ValidationRelaxed,
  Description,
  Reason,
  Group,
  Label,
  Advanced,
  Deprecated,
  RenamedFrom,
  RenameMessage,
  BetaMessage,
  Singleton,
  Coupled,
  AllowedNames,
  DefaultNames,
  MinimumCount,
  MaximumCount,
  RenamedNames,
  Accepted
};
constexpr auto childKeys = std::to_array<Key<ChildKey>>({
    {"Available", ChildKey::Available},
    {"Required", ChildKey::Required},
    {"Context", ChildKey::Context},
    {"Validation Relaxed", ChildKey::ValidationRelaxed},
    {"Description", ChildKey::Description},
    {"Reason", ChildKey::Reason},
    {attributes::group, ChildKey::Group},
    {attributes::label, ChildKey::Label},
    {attributes::advanced, ChildKey::Advanced},
    {attributes::deprecated, ChildKey::Deprecated},
    {attributes::renamedFrom, ChildKey::RenamedFrom},
    {attributes::renameMessage, ChildKey::RenameMessage},
    {"Beta Message", ChildKey::BetaMessage},
    {"Singleton", ChildKey::Singleton},
    {"Coupled", ChildKey::Coupled},
    {"Allowed Names", ChildKey::AllowedNames},
    {"Default Names", ChildKey::DefaultNames},
    {"Minimum Count", ChildKey::MinimumCount},
    {"Maximum Count", ChildKey::MaximumCount},
    {"Renamed Names", ChildKey::RenamedNames},
    {"Accepted", ChildKey::Accepted},
});

enum class CheckKey { When, Check, Message, Level, Accepted };
constexpr auto checkKeys = std::to_array<Key<CheckKey>>({
    {"When", CheckKey::When},
    {"Check", CheckKey::Check},
    {"Message", CheckKey::Message},
    {"Level", CheckKey::Level},
    {"Accepted", CheckKey::Accepted},
});

}  // namespace

bool RuleBuilder::holdsSeparator(std::string_view name) {
  return name.find_first_of("/:") != std::string_view::npos;
}

bool RuleBuilder::isTypePath(Item const& item) {
  std::string_view const path = item.node->value;
  if (!path.starts_with('/')) {
    error(Code::InvalidTypePath, item,
          "an object type path must begin with '/'; write " + inQuotes("/" + std::string(path.substr(0, 100))));
    return false;
  }
  std::size_t begin = 1;
  for (;;) {
    std::size_t const end = std::min(path.find('/', begin), path.size());
    auto const type = path.substr(begin, end - begin);
    if (type.empty()) return error(Code::InvalidTypePath, item, "the path has an empty type"), false;
    if (type.find(':') != std::string_view::npos) {
      return error(Code::InvalidTypePath, item,
                   "an object type path has types only; remove the ':' and the name after it"),
             false;
    }
    if (isSpace(type.front()) || isSpace(type.back())) {
      return error(Code::InvalidTypePath, item, "a type cannot begin or end with a blank"), false;
    }
    if (end == path.size()) return true;
    begin = end + 1;
  }
}

void RuleBuilder::readObjects(Item const& section) {
  forEach(section, "Objects", [&](Item const& name, Item const& body) {
    if (isTypePath(name)) readObject(name, body);
  });
}

void RuleBuilder::readObject(Item const& name, Item const& body) {
  auto& object = data_->addObject(name.node->value);
  if (!object.rulePlace.isKnown()) object.rulePlace = name.place();
  if (keepPlaces_)
    objectPlaces_ = &index_.objects_.try_emplace(name.node->value, ObjectPlaces{name, {}, {}}).first->second;
  owner_ = {name.node, nullptr, EntryKind::Parameter};
  readEntries(object, name, body, "an object", std::nullopt);
}

void RuleBuilder::setOwner(Item const& name, EntryKind kind) {
  owner_ = {owner_.object, name.node, kind, taking_ ? taking_->use : Item{}};
}

EntryPlace RuleBuilder::entryPlace(Item const& name, Item const& body) const {
  return {name, body, owner_.taken, section_, taking_ ? taking_->list : Item{}};
}

void RuleBuilder::readEntries(ObjDependDef& object, Item const& name, Item const& body, std::string_view what,
                              std::optional<EntryKind> only) {
  auto const section = [&](EntryKind kind, Item const& value) {
    if (!only || *only == kind) readSection(object, kind, value);
  };
  forEachKnown(body, what, objectKeys, [&](ObjectKey key, Item const& keyItem, Item const& value) {
    switch (key) {
      case ObjectKey::Description:
        // That of a template describes the template.
        if (auto const text = scalar(value, "Description"); text && object.description.empty() && !taking_) {
          object.description = *text;
        }
        break;
      case ObjectKey::History:
        readHistoryOfObject(object, keyItem, value);
        break;
      case ObjectKey::Use:
        use(object, value, only);
        break;
      case ObjectKey::Parameters:
        section(EntryKind::Parameter, value);
        break;
      case ObjectKey::Children:
        section(EntryKind::Child, value);
        break;
      case ObjectKey::Checks:
        section(EntryKind::Check, value);
        break;
      case ObjectKey::Accepted:
        readAccepted(name, body, value);
        break;
    }
  });
}

void RuleBuilder::readSection(ObjDependDef& object, EntryKind kind, Item const& section) {
  if (readTemplate_ == nullptr)
    sectionsSeen_.push_back({object.typePath(), kind, section, taking_ ? taking_->use : Item{}});
  forEach(section, sectionName(kind), [&](Item const& name, Item const& body) {
    section_ = section;  // a Use has read other sections
    if (isUse(*name.node, *body.node)) {
      use(object, body, kind);
      return;
    }
    if (readTemplate_ != nullptr) readTemplate_->has[static_cast<std::size_t>(kind)] = true;
    switch (kind) {
      case EntryKind::Parameter:
        readParameter(object, name, body);
        break;
      case EntryKind::Child:
        readChild(object, name, body);
        break;
      case EntryKind::Check:
        readObjectCheck(object, name, body);
        break;
    }
  });
}

RuleBuilder::FormerEntry RuleBuilder::formerPlace(std::string const& typePath, EntryKind kind, Item const& entry) {
  if (diagnostics_.isFull()) return {};
  auto const keyOf = [](std::string const& path, EntryKind entryKind, std::string_view name) {
    return (path + "\n" + std::to_string(static_cast<int>(entryKind)) + "\n").append(name);
  };
  for (; sectionsIndexed_ < sectionsSeen_.size(); ++sectionsIndexed_) {
    auto const& seen = sectionsSeen_[sectionsIndexed_];
    if (seen.section.node->kind != YamlNode::Kind::Mapping) continue;
    auto const& children = seen.section.node->children;
    for (std::size_t i = 0; i + 1 < children.size(); i += 2) {
      if (isUse(*children[i], *children[i + 1])) continue;
      formerPlaces_[keyOf(seen.typePath, seen.kind, children[i]->value)].push_back(
          {{seen.section.source, children[i]}, seen.taken});
    }
  }
  auto const found = formerPlaces_.find(keyOf(typePath, kind, entry.node->value));
  if (found == formerPlaces_.end()) return {};
  for (auto const& other : found->second) {
    if (other.name.node != entry.node) return other;
  }
  return {};
}

void RuleBuilder::reportExisting(ObjDependDef const& object, EntryKind kind, std::string_view what, Item const& name) {
  auto const former = formerPlace(object.typePath(), kind, name);
  auto const note = [](Diagnostic& diagnostic, Item const& item, std::string_view message) {
    if (item) DiagnosticList::note(diagnostic, *item.source, item.node->range(), std::string(message));
  };
  auto& diagnostic =
      taking_ ? error(Code::DuplicateName, taking_->use,
                      "the template " + inQuotes(taking_->outermost->name.node->value) + " brings " +
                          std::string(what) + " " + inQuotes(name.node->value) + ", which the object already has")
              : error(Code::DuplicateName, name,
                      "the object already has " + std::string(what) + " " + inQuotes(name.node->value));
  if (taking_) note(diagnostic, name, "the template has it here");
  note(diagnostic, former.name, "the first one is here");
  note(diagnostic, former.taken, "the first one is taken here");
}

std::vector<ParamValueDef::GuardedText> RuleBuilder::guardedTexts(Item const& item, std::string_view attribute) {
  std::vector<ParamValueDef::GuardedText> result;
  if (item.node->kind != YamlNode::Kind::Sequence) {
    if (!isNothing(*item.node)) {
      error(Code::WrongKind, item,
            std::string(attribute) + " must be a list of {When: condition, Value: value}, but this is " +
                std::string(kindText(*item.node)));
    }
    return result;
  }
  for (auto const* child : item.node->children) {
    Item const entry{item.source, child};
    if (child->kind != YamlNode::Kind::Mapping) {
      error(Code::WrongKind, entry,
            "an item must be {When: condition, Value: value}, but this is " + std::string(kindText(*child)));
      continue;
    }
    if (child->children.size() == 2 && child->children[0]->value.find("${") != std::string::npos) {
      error(Code::WrongKind, {item.source, child->children[0]},
            "an item must be {When: condition, Value: value}; write the condition after 'When:', in quotes");
      continue;
    }
    ParamValueDef::GuardedText guarded;
    bool whenGiven = false;
    bool valueGiven = false;
    forEachKnown(entry, "an item of " + std::string(attribute), guardKeys,
                 [&](GuardKey key, Item const&, Item const& value) {
                   if (key == GuardKey::When) {
                     whenGiven = true;
                     guarded.when = condition(value, attribute);
                   } else {
                     valueGiven = true;
                     guarded.value = textOrExpression(value, attribute);
                   }
                 });
    if (!whenGiven && isLackOf("When", entry, entry))
      error(Code::MissingKey, entry, "the item has no 'When'; write 'When: true' if the value always applies");
    if (!valueGiven && isLackOf("Value", entry, entry)) error(Code::MissingKey, entry, "the item has no 'Value'");
    if (guarded.when && guarded.value) result.push_back(std::move(guarded));
  }
  return result;
}

void RuleBuilder::readParameter(ObjDependDef& object, Item const& name, Item const& body) {
  if (!isName(name, "a parameter name")) return;
  if (holdsSeparator(name.node->value)) {
    error(Code::InvalidName, name, "a parameter name cannot contain '/' or ':'");
    return;
  }
  setOwner(name, EntryKind::Parameter);

  ParamAvail entry;
  ParamValueDef def;
  entry.name = name.node->value;
  entry.rulePlace = name.place();
  def.rulePlace = entry.rulePlace;
  Item type;
  bool typeKnown = false;
  Item fixedList;
  Item listSource;
  Item subset;
  Item subsetSource;
  Item completeList;

  auto const text = [&](Item const& value, std::string_view attribute, std::string& target) {
    if (auto const given = scalar(value, attribute)) target = *given;
  };
  forEachKnown(body, "a parameter", paramKeys, [&](ParamKey key, Item const& keyItem, Item const& value) {
    std::string_view const attribute = keyItem.node->value;
    switch (key) {
      case ParamKey::Available:
        entry.available = condition(value, attribute);
        break;
      case ParamKey::Required:
        yesNo(value, entry.required);
        break;
      case ParamKey::ContextRule:
        yesNo(value, entry.contextRule);
        break;
      case ParamKey::Context:
        if (auto contexts = texts(value, true)) entry.contexts = std::move(*contexts);
        break;
      case ParamKey::ValidationRelaxed:
        yesNo(value, entry.validationRelaxed);
        break;
      case ParamKey::Description:
        text(value, attribute, entry.description);
        break;
      case ParamKey::Reason:
        text(value, attribute, entry.reason);
        break;
      case ParamKey::Group:
        shownName(value, "a group", entry.group);
        break;
      case ParamKey::Label:
        shownName(value, "a label", entry.label);
        break;
      case ParamKey::Advanced:
        yesNo(value, entry.advanced);
        break;
      case ParamKey::Deprecated:
        readDeprecated(value, entry.history.deprecated);
        break;
      case ParamKey::RenamedFrom:
        readFormerNames(value, entry.history.formerNames);
        break;
      case ParamKey::RenameMessage:
        text(value, attribute, entry.history.renameMessage);
        break;
      case ParamKey::BetaMessage:
        text(value, attribute, entry.betaMessage);
        break;
      case ParamKey::BetaValues:
        forEach(value, attribute, [&](Item const& betaValue, Item const& message) {
          if (auto const given = scalar(message, "a beta message"))
            def.betaValues.emplace(betaValue.node->value, *given);
        });
        break;
      case ParamKey::Type:
        type = value;
        if (auto const given = scalar(value, attribute)) {
          if (auto const known = TDFParam::typeFromName(*given)) {
            def.type = *known;
            typeKnown = true;
          } else {
            std::vector<std::string> types;
            for (int i = TDFParam::Integer; i <= TDFParam::StringList; ++i) {
              types.emplace_back(TDFParam::typeName(static_cast<TDFParam::Type>(i)));
            }
            auto const habit = adviceForType(*given);
            auto const near = habit ? std::string(habit->instead) : StringUtilities::nearMatch(*given, types);
            std::string remedy =
                "; the types are Integer, Logical, Real and String, and each of them with List after it";
            if (habit && near.empty()) {
              remedy = habit->message;
            } else if (!near.empty()) {
              remedy = habit ? "; here it is called " + inQuotes(near) : didYouMean(near);
            }
            auto& diagnostic = error(Code::UnknownParameterType, value,
                                     "unknown parameter type " + inQuotes(given->substr(0, 60)) + remedy);
            if (!near.empty()) fixText(diagnostic, value, near);
          }
        }
        break;
      case ParamKey::AllowedList:
        fixedList = value;
        if (auto items = texts(value, false, "write a computed list in Value List Source, without the '='")) {
          def.allowedValues = sharedFixedList(value, std::move(*items));
          def.allowedValueKind = ParamValueDef::FixedAllowedValues;
        }
        break;
      case ParamKey::ListSource:
        listSource = value;
        def.allowedValues = listExpression(value, attribute);
        def.allowedValueKind = ParamValueDef::ComputedAllowedValues;
        break;
      case ParamKey::Checks:
        forEach(value, attribute, [&](Item const& checked, Item const& when) {
          if (auto check = condition(when, attribute))
            def.allowedValueChecks.emplace(checked.node->value, std::move(check));
        });
        break;
      case ParamKey::Unused:
        if (auto items = texts(value, false)) def.unusedValues = std::move(*items);
        break;
      case ParamKey::Subset:
        subset = value;
        if (auto items = texts(value, false, "write a computed subset in Subset Value List Source, without the '='")) {
          def.subset = sharedFixedList(value, std::move(*items));
        }
        break;
      case ParamKey::SubsetSource:
        subsetSource = value;
        def.subset = listExpression(value, attribute);
        break;
      case ParamKey::AllowsAny:
        yesNo(value, def.allowsAnyValue);
        break;
      case ParamKey::AvailableWithNone:
        yesNo(value, def.availableWithNoAllowedValues);
        break;
      case ParamKey::CompleteList:
        completeList = value;
        yesNo(value, def.completeListRequired);
        break;
      case ParamKey::Default:
        def.defaultValue = textOrExpression(value, attribute);
        break;
      case ParamKey::DefaultChecks:
        def.defaultChecks = guardedTexts(value, attribute);
        break;
      case ParamKey::FallbackToBlank:
        yesNo(value, def.fallbackToBlankDefault);
        break;
      case ParamKey::OverrideChecks:
        def.overrideChecks = guardedTexts(value, attribute);
        break;
      case ParamKey::LowerBound:
        def.lowerBound = textOrExpression(value, attribute);
        break;
      case ParamKey::UpperBound:
        def.upperBound = textOrExpression(value, attribute);
        break;
      case ParamKey::LowerExcluded:
        yesNo(value, def.lowerBoundExcluded);
        break;
      case ParamKey::UpperExcluded:
        yesNo(value, def.upperBoundExcluded);
        break;
      case ParamKey::Pattern:
        def.pattern = pattern(value);
        break;
      case ParamKey::PatternMessage:
        text(value, attribute, def.patternMessage);
        break;
      case ParamKey::QuantityType:
        def.quantityType = textOrExpression(value, attribute);
        break;
      case ParamKey::Accepted:
        readAccepted(name, body, value);
        break;
    }
  });

  if (!type && isLackOf("Parameter Type", body, name))
    error(Code::MissingKey, name, "the parameter has no 'Parameter Type'");
  if (fixedList && listSource) {
    twice(Code::ConflictingKeys, listSource, fixedList,
          "the allowed values are given twice; keep either Ordered Allowed String List or Value List Source");
  }
  if (subset && subsetSource) {
    twice(Code::ConflictingKeys, subsetSource, subset,
          "the subset is given twice; keep either Subset Allowed String List or Subset Value List Source");
  }
  if (def.completeListRequired && typeKnown && !TDFParam::isListType(def.type)) {
    error(Code::NotAListType, completeList,
          "Complete List Required is for list types, but the parameter is of type " +
              std::string(TDFParam::typeName(def.type)));
  }
  if (!object.addParam(std::move(entry), std::move(def))) {
    reportExisting(object, EntryKind::Parameter, "a parameter", name);
    return;
  }
  if (keepPlaces_) objectPlaces_->params.push_back(entryPlace(name, body));
}

void RuleBuilder::readChild(ObjDependDef& object, Item const& name, Item const& body) {
  if (!isName(name, "a child type")) return;
  if (holdsSeparator(name.node->value)) {
    error(Code::InvalidName, name,
          "a child type cannot contain '/' or ':'; give deeper objects their own entries under Objects");
    return;
  }
  setOwner(name, EntryKind::Child);

  ChildAvail entry;
  entry.type = name.node->value;
  entry.rulePlace = name.place();
  auto const text = [&](Item const& value, std::string_view attribute, std::string& target) {
    if (auto const given = scalar(value, attribute)) target = *given;
  };
  forEachKnown(body, "a child", childKeys, [&](ChildKey key, Item const& keyItem, Item const& value) {
    std::string_view const attribute = keyItem.node->value;
    switch (key) {
      case ChildKey::Available:
        entry.available = condition(value, attribute);
        break;
      case ChildKey::Required:
        yesNo(value, entry.required);
        break;
      case ChildKey::Context:
        if (auto contexts = texts(value, true)) entry.contexts = std::move(*contexts);
        break;
      case ChildKey::ValidationRelaxed:
        yesNo(value, entry.validationRelaxed);
        break;
      case ChildKey::Description:
        text(value, attribute, entry.description);
        break;
      case ChildKey::Reason:
        text(value, attribute, entry.reason);
        break;
      case ChildKey::Group:
        shownName(value, "a group", entry.group);
        break;
      case ChildKey::Label:
        shownName(value, "a label", entry.label);
        break;
      case ChildKey::Advanced:
        yesNo(value, entry.advanced);
        break;
      case ChildKey::Deprecated:
        readDeprecated(value, entry.history.deprecated);
        break;
      case ChildKey::RenamedFrom:
        readFormerNames(value, entry.history.formerNames);
        break;
      case ChildKey::RenameMessage:
        text(value, attribute, entry.history.renameMessage);
        break;
      case ChildKey::BetaMessage:
        text(value, attribute, entry.betaMessage);
        break;
      case ChildKey::Singleton:
        yesNo(value, entry.singleton);
        break;
      case ChildKey::Coupled:
        yesNo(value, entry.coupled);
        break;
      case ChildKey::AllowedNames:
        entry.allowedNamesSource = names(value, attribute);
        break;
      case ChildKey::DefaultNames:
        entry.defaultNamesSource = names(value, attribute);
        break;
      case ChildKey::MinimumCount:
        entry.minimumCount = count(value, attribute);
        break;
      case ChildKey::MaximumCount:
        entry.maximumCount = count(value, attribute);
        break;
      case ChildKey::RenamedNames:
        readRenamedNames(value, entry.renamedNames);
        break;
      case ChildKey::Accepted:
        readAccepted(name, body, value);
        break;
    }
  });
  if (!object.addChild(std::move(entry))) {
    reportExisting(object, EntryKind::Child, "a child type", name);
    return;
  }
  if (keepPlaces_) objectPlaces_->children.push_back(entryPlace(name, body));
}

void RuleBuilder::readObjectCheck(ObjDependDef& object, Item const& name, Item const& body) {
  if (!isName(name, "the name of a check")) return;
  setOwner(name, EntryKind::Check);
  ObjectCheck check;
  check.name = name.node->value;
  check.rulePlace = name.place();
  bool checkGiven = false;
  bool messageGiven = false;
  forEachKnown(body, "a check of an object", checkKeys, [&](CheckKey key, Item const& keyItem, Item const& value) {
    std::string_view const attribute = keyItem.node->value;
    switch (key) {
      case CheckKey::When:
        check.when = condition(value, attribute);
        break;
      case CheckKey::Check:
        checkGiven = true;
        check.check = condition(value, attribute);
        break;
      case CheckKey::Message:
        messageGiven = true;
        check.message = textOrExpression(value, attribute);
        break;
      case CheckKey::Level:
        readLevel(value, check.level);
        break;
      case CheckKey::Accepted:
        readAccepted(name, body, value);
        break;
    }
  });
  if (!checkGiven && isLackOf("Check", body, name)) error(Code::MissingKey, name, "the check has no 'Check'");
  if (!messageGiven && isLackOf("Message", body, name)) error(Code::MissingKey, name, "the check has no 'Message'");
  if (!object.addCheck(std::move(check))) {
    reportExisting(object, EntryKind::Check, "a check", name);
  }
}

}  // namespace tarn::rules
