// Checks of the entries of objects: object types that nothing leads to, attributes without effect, names, allowed
// values, bounds, defaults and contexts.

#include "lint/EntryLint.h"

#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>

#include "lint/ValueLint.h"
#include "loading/RuleSections.h"

namespace tarn::rules {

namespace {

class EntryLint {
 public:
  explicit EntryLint(LintContext& context) : context_(context) {}

  void run() {
    checkObjects();
    for (auto const* object : context_.data().objects()) {
      auto const& places = context_.rules().objectPlaces().at(object->typePath());
      auto const& params = object->params();
      for (std::size_t i = 0; i < params.size(); ++i) {
        if (params[i]->valueDef() != nullptr) {
          checkParameter(*object, *params[i], *params[i]->valueDef(), places.params[i]);
        }
      }
      auto const& children = object->children();
      for (std::size_t i = 0; i < children.size(); ++i) checkChild(*object, *children[i], places.children[i]);
    }
    context_.setTaken({});
  }

 private:
  Diagnostic& warn(Code code, Item const& item, std::string message) {
    return context_.warn(code, item, std::move(message));
  }

  void checkObjects() {
    for (auto const& [typePath, places] : context_.rules().objectPlaces()) {
      auto const& place = places.name;
      std::string const parentPath(PathUtils::parentOf(typePath));
      if (parentPath.empty()) continue;
      auto const* parent = context_.data().getObjDependDef(parentPath, true);
      std::string const type(PathUtils::lastType(typePath));
      if (parent != nullptr && parent->findChild(type) != nullptr) continue;
      std::vector<std::string> candidates;
      if (parent != nullptr && context_.hints().take(parent->children().size())) {
        for (auto const& child : parent->children()) candidates.push_back(child->type);
      }
      auto near = context_.hints().nearest(type, candidates);
      if (near.empty() && !candidates.empty()) near = partOfName(*parent, type);
      // The entry that the other type lacks is this one.
      if (!near.empty()) meant_.insert(parentPath + "/" + near);
      if (auto const lacking = near.empty() ? lackingOf(type) : std::string(); !lacking.empty()) {
        meant_.insert(lacking);
        auto& warning = context_.warn(
            Code::UnreachableType, place,
            "no child rule leads to objects of this type, so this entry is never used" + didYouMean(lacking));
        LintContext::fixText(warning, place, typePath, lacking);
        continue;
      }
      auto& warning = context_.warn(
          Code::UnreachableType, place,
          "no child rule leads to objects of this type, so this entry is never used" + orDidYouMean(near));
      // Where entries of objects below it would have to change as well, there is no single replacement.
      auto const& all = context_.rules().objectPlaces();
      auto const below = all.lower_bound(typePath + "/");
      bool const isAlone = below == all.end() || !below->first.starts_with(typePath + "/");
      auto const path = parentPath + "/" + near;
      if (!near.empty() && isAlone && !all.contains(path)) LintContext::fixText(warning, place, typePath, path);
    }
  }

  /// The only child type of an object that has no entry under Objects and begins with the words of `type`, or the other
  /// way round. Empty when there are none or several.
  [[nodiscard]] std::string partOfName(ObjDependDef const& parent, std::string const& type) const {
    std::string found;
    for (auto const& child : parent.children()) {
      auto const& other = child->type;
      if (!other.starts_with(type + " ") && !type.starts_with(other + " ")) continue;
      if (context_.data().getObjDependDef(parent.typePath() + "/" + other, true) != nullptr) continue;
      if (!found.empty()) return {};
      found = other;
    }
    return found;
  }

  /// The only child type `type` that has no entry under Objects, as a type path. Empty when there are none or several.
  [[nodiscard]] std::string lackingOf(std::string const& type) {
    if (!lacking_) {
      lacking_.emplace();
      for (auto const* object : context_.data().objects()) {
        for (auto const& child : object->children()) {
          auto path = object->typePath() + "/" + child->type;
          if (context_.data().getObjDependDef(path, true) != nullptr) continue;
          auto const [known, isNew] = lacking_->try_emplace(child->type, std::move(path));
          if (!isNew) known->second.clear();
        }
      }
    }
    auto const found = lacking_->find(type);
    return found != lacking_->end() ? found->second : std::string();
  }

  void checkChild(ObjDependDef const& object, ChildAvail const& child, EntryPlace const& place) {
    auto const typePath = object.typePath() + "/" + child.type;
    context_.setTaken(place.taken);
    if (context_.data().getObjDependDef(typePath, true) == nullptr && !meant_.contains(typePath)) {
      warn(Code::MissingObjectEntry, place.name,
           "there is no entry " + typePath + " under Objects, so the rules define nothing inside this child");
    }
    auto const at = [&](std::string_view attribute) { return place.attribute(attribute); };
    auto const allowedNames = at("Allowed Names");
    auto const defaultNames = at("Default Names");
    if (child.singleton) {
      if (allowedNames)
        warn(Code::NoEffect, allowedNames, "Allowed Names has no effect on a singleton, which has no name");
      if (defaultNames)
        warn(Code::NoEffect, defaultNames, "Default Names has no effect on a singleton, which has no name");
    } else if (defaultNames && allowedNames) {
      warn(Code::NoEffect, defaultNames, "Default Names has no effect beside Allowed Names");
    } else if (defaultNames && !child.required) {
      warn(Code::NoEffect, defaultNames, "Default Names has no effect on a child that is not required");
    }
    if (!child.singleton) {
      checkNames(child, allowedNames);
      checkNames(child, defaultNames);
      if (!allowedNames) checkFreeNames(child, place.name, at("Required"));
    }
    if (auto const reason = at("Reason"); reason && !at("Available")) {
      warn(Code::NoEffect, reason, "Reason has no effect without Available");
    }
    if (!StringUtilities::trimmed(child.type).empty())
      checkWritableName(child.type, place.name, "objects of this type");
    if (child.singleton && !child.required && !child.coupled && !child.validationRelaxed) {
      warn(Code::NeverAdded, at("Singleton"),
           "no edit can switch this child on or off; add 'Coupled: yes', or 'Required: yes' when it always exists");
    }
    checkCounts(child, at("Minimum Count"), at("Maximum Count"));
    if (!child.contexts.empty()) checkContext(object, nullptr, child.contexts, at("Context"));
  }

  /// Children whose names are the user's choice: whether they can be there, and must be.
  void checkFreeNames(ChildAvail const& child, Item const& name, Item const& required) {
    if (child.required && !child.minimumCount) {
      warn(Code::RequiresNothing, required,
           "this does not make a child necessary, because its name is the user's choice; add 'Minimum Count: 1', or "
           "'Minimum Count: 0' when there may be none");
    } else if (!child.required && !child.coupled) {
      warn(Code::NeverAdded, name,
           "no edit can add a child of this type; add 'Coupled: yes', or 'Required: yes' and a 'Minimum Count'");
    }
  }

  void checkCounts(ChildAvail const& child, Item const& minimum, Item const& maximum) {
    auto const numberOf = [](std::unique_ptr<TextExpression> const& count) {
      auto const* fixed = dynamic_cast<FixedText const*>(count.get());
      return fixed != nullptr ? TDFParam::asNumber(fixed->text()) : std::nullopt;
    };
    auto const least = numberOf(child.minimumCount);
    auto const most = numberOf(child.maximumCount);
    if (least && most && *most < *least) {
      warn(Code::CountsReversed, maximum, "the maximum count is below the minimum count");
      return;
    }
    if (child.singleton) {
      if (least && *least > 1) {
        warn(Code::CountsReversed, minimum,
             "there is at most one child of this type, because it is a singleton; remove the count or 'Singleton'");
      }
      return;
    }
    auto const* names = dynamic_cast<FixedList const*>(child.allowedNamesSource.get());
    if (names == nullptr) return;
    auto const count = std::set<std::string_view>(names->items().begin(), names->items().end()).size();
    if (least && *least > static_cast<double>(count)) {
      warn(Code::CountsReversed, minimum,
           "Allowed Names has only " + std::to_string(count) + (count == 1 ? " name" : " names") +
               ", so there can be no more children of this type");
    } else if (most && child.required && *most < static_cast<double>(count)) {
      warn(Code::CountsReversed, maximum,
           "a child with each of the " + std::to_string(count) + " Allowed Names is required, which is more than this");
    }
  }

  /// Model text has signs that no name can hold.
  void checkWritableName(std::string_view name, Item const& item, std::string_view what) {
    std::string fault;
    if (name.starts_with('#')) fault = "begins with '#'";
    if (name.find('=') != std::string_view::npos) fault = "contains '='";
    if (name.find_first_of("\n\r") != std::string_view::npos) fault = "contains a line end";
    if (fault.empty()) return;
    warn(Code::UnwritableName, item,
         "model text cannot hold " + std::string(what) + ", because the name " + fault + "; use another name");
  }

  /// The names that a list gives as plain texts.
  void checkNames(ChildAvail const& child, Item const& list) {
    if (!list || list.node->kind != YamlNode::Kind::Sequence) return;
    checkListedNames(context_, list);
    for (auto const* node : list.node->children) {
      bool const isGuarded = node->kind == YamlNode::Kind::Mapping;
      if (isGuarded) node = valueIn(*node, "Value");
      if (node == nullptr || node->kind != YamlNode::Kind::Scalar) continue;
      if (isGuarded && node->value.starts_with('=')) continue;  // an expression, which is checked as one
      auto const problem = problemOfName(node->value, child.type);
      if (!problem) checkWritableName(node->value, {list.source, node}, "an object of this name");
      if (problem) warn(problem->code, {list.source, node}, problem->message);
    }
  }

  void checkParameter(ObjDependDef const& object, ParamAvail const& param, ParamValueDef const& def,
                      EntryPlace const& place) {
    context_.setTaken(place.taken);
    auto const at = [&](std::string_view attribute) { return place.attribute(attribute); };
    checkWritableName(param.name, place.name, "this parameter");
    if (def.allowedValueKind == ParamValueDef::NoAllowedValues) {
      for (std::string_view const attribute :
           {"Allowed String List Checks", "Unused Allowed String List", "Subset Allowed String List",
            "Subset Value List Source", "Allows Any Value", "Available With No Allowed Values",
            "Fallback To Blank Default", "Complete List Required", "Beta Values"}) {
        if (auto const item = at(attribute)) {
          warn(Code::NoEffect, item, std::string(attribute) + " has no effect without allowed values");
        }
      }
    } else if (auto const* list = dynamic_cast<FixedList const*>(def.allowedValues.get())) {
      checkListed(list->items(), def, at("Allowed String List Checks"));
      checkListed(list->items(), def, at("Beta Values"));
    }
    checkBounds(def, at("Lower Bound"), at("Upper Bound"));
    for (auto const& [flag, needed] :
         {std::pair("Lower Bound Excluded", "Lower Bound"), std::pair("Upper Bound Excluded", "Upper Bound"),
          std::pair("Pattern Message", "Pattern"), std::pair("Reason", "Available")}) {
      if (auto const item = at(flag); item && !at(needed)) {
        warn(Code::NoEffect, item, std::string(flag) + " has no effect without " + needed);
      }
    }
    checkValues(context_, param, def, place);
    if (auto const item = at("Pattern")) checkPattern(def, item, at("Default Value"));
    if (auto const item = at("Quantity Type")) checkQuantityType(def, item);
    if (!param.contexts.empty()) checkContext(object, &param, param.contexts, at("Context"));
  }

  /// The keys of a map from allowed values must be allowed values.
  void checkListed(SharedStrings const& items, ParamValueDef const& def, Item const& map) {
    if (!map || map.node->kind != YamlNode::Kind::Mapping || def.allowsAnyValue) return;
    // At most one fix in a map: two slips of the same value cannot both become that value.
    bool isProposed = false;
    for (std::size_t i = 0; i + 1 < map.node->children.size(); i += 2) {
      auto const* key = map.node->children[i];
      if (items.contains(key->value)) continue;
      auto const near = context_.hints().nearest(key->value, items);
      auto& warning = warn(Code::UnknownAllowedValue, {map.source, key},
                           inQuotes(key->value) + " is not among the allowed values" + orDidYouMean(near));
      if (!near.empty() && !std::exchange(isProposed, true) && !hasKey(*map.node, near)) {
        LintContext::fixText(warning, {map.source, key}, key->value, near);
      }
    }
  }

  void checkBounds(ParamValueDef const& def, Item const& lowerItem, Item const& upperItem) {
    auto const check = [&](TextExpression const* bound, Item const& item) {
      if (bound == nullptr || !item) return;
      if (!TDFParam::isNumericType(def.type)) {
        warn(Code::NoEffect, item,
             "a bound has no effect on a parameter of type " + std::string(TDFParam::typeName(def.type)));
      } else if (auto const* fixed = dynamic_cast<FixedText const*>(bound)) {
        if (!TDFParam::asQuantity(fixed->text()))
          warn(Code::BoundNotANumber, item,
               "the bound " + inQuotes(fixed->text()) + " is not a number" +
                   numberRemedy(context_.data(), def, fixed->text()));
      }
    };
    check(def.lowerBound.get(), lowerItem);
    check(def.upperBound.get(), upperItem);
    auto const* lower = dynamic_cast<FixedText const*>(def.lowerBound.get());
    auto const* upper = dynamic_cast<FixedText const*>(def.upperBound.get());
    if (lower == nullptr || upper == nullptr) return;
    auto const low = TDFParam::asQuantity(lower->text());
    auto const high = TDFParam::asQuantity(upper->text());
    if (low && high && orderOf(context_.data(), def, *high, *low).value_or(0) < 0) {
      warn(Code::BoundsReversed, upperItem,
           "the upper bound " + upper->text() + " is below the lower bound " + lower->text());
    }
  }

  void checkPattern(ParamValueDef const& def, Item const& item, Item const& defaultItem) {
    if (TDFParam::elementType(def.type) != TDFParam::String) {
      warn(Code::NoEffect, item,
           "a pattern has no effect on a parameter of type " + std::string(TDFParam::typeName(def.type)));
      return;
    }
    std::string const text = def.pattern->text();
    if (text.size() > 2 && text.starts_with('/') && text.ends_with('/')) {
      auto const inside = std::string_view(text).substr(1, text.size() - 2);
      auto& warning = warn(Code::PatternInSlashes, item,
                           "the slashes belong to this pattern, so only texts with slashes match it; leave them out");
      LintContext::fixText(warning, item, text, inside);
      return;
    }
    if (def.pattern->matches("")) {
      warn(Code::PatternMatchesEmpty, item,
           "this pattern also matches the empty text; write '+' instead of '*' when there must be something");
    }
    auto const* fixed = dynamic_cast<FixedText const*>(def.defaultValue.get());
    if (fixed == nullptr || fixed->text().empty()) return;
    auto const values = TDFParam::isListType(def.type) ? StringUtilities::stringToVector(fixed->text(), ',')
                                                       : std::vector<std::string>{fixed->text()};
    auto const* list = dynamic_cast<FixedList const*>(def.allowedValues.get());
    for (auto const& value : values) {
      if (def.pattern->matches(value) || (list != nullptr && list->items().contains(value))) continue;
      // That it should be computed is reported.
      if (!computedRemedy(value).empty()) continue;
      warn(Code::DefaultNotMatching, defaultItem, "the default " + inQuotes(value) + " does not match the pattern");
    }
  }

  /// The only quantity type that lists a unit. Empty when none or several do.
  [[nodiscard]] std::string typeWithUnit(std::string_view unit) const {
    std::string found;
    for (auto const& [name, type] : context_.data().quantityTypes()) {
      if (type.find(unit) == nullptr) continue;
      if (!found.empty()) return {};
      found = name;
    }
    return found;
  }

  void checkQuantityType(ParamValueDef const& def, Item const& item) {
    if (auto const* fixed = dynamic_cast<FixedText const*>(def.quantityType.get())) {
      if (!context_.data().quantityTypes().contains(fixed->text())) {
        std::vector<std::string> names;
        for (auto const& entry : context_.data().quantityTypes()) names.push_back(entry.first);
        auto near = context_.hints().nearest(fixed->text(), names);
        if (near.empty()) near = typeWithUnit(fixed->text());
        auto& warning = warn(Code::UnknownQuantityType, item,
                             "there is no quantity type " + inQuotes(fixed->text()) + " under Quantity Types" +
                                 (near.empty() ? computedRemedy(fixed->text()) : didYouMean(near)));
        LintContext::fixText(warning, item, fixed->text(), near);
      }
    }
    if (!TDFParam::isNumericType(def.type)) {
      warn(Code::NoEffect, item,
           "a quantity type has no effect on a parameter of type " + std::string(TDFParam::typeName(def.type)));
    }
  }

  /// `param` is the parameter whose entry has the contexts; null for a child, which comes after all parameters.
  void checkContext(ObjDependDef const& object, ParamAvail const* param, std::vector<std::string> const& contexts,
                    Item const& item) {
    auto const& positions = context_.positionsOf(object);
    // For a parameter, only the context rules before it count.
    std::size_t const end =
        param != nullptr ? EntryPositions::indexIn(positions.params, param->name) : object.params().size();
    for (auto const& context : contexts) {
      if (context.empty()) continue;
      if (positions.firstContextRule >= end) {
        bool const hasNone = positions.contextRules.empty();
        warn(Code::NeverLive, item,
             hasNone ? "the object has no context rule, so this entry is never live; write 'Context Rule: yes' at the "
                       "parameter that selects it"
                     : "there is no context rule before this parameter, so it is never live; move it after the context "
                       "rule");
        context_.setCause("context " + object.typePath() + (hasNone ? "" : " of parameters"));
        return;
      }
      if (positions.firstOpenContextRule < end) continue;
      auto const found = positions.contexts.find(context);
      if (found != positions.contexts.end() && found->second < end) continue;
      auto const near = nearContext(object, end, context);
      bool const isCondition = context.find("${") != std::string::npos;
      auto& warning = warn(Code::NeverLive, item,
                           "no context rule can have the value " + inQuotes(context) +
                               (isCondition ? "; a condition is written after 'Available'" : orDidYouMean(near)));
      LintContext::fixText(warning, item, context, near);
    }
  }

  std::string nearContext(ObjDependDef const& object, std::size_t end, std::string const& context) {
    std::vector<std::string> values;
    for (std::size_t const position : context_.positionsOf(object).contextRules) {
      if (position >= end) break;
      auto const* def = object.params()[position]->valueDef();
      auto const* list = def != nullptr ? dynamic_cast<FixedList const*>(def->allowedValues.get()) : nullptr;
      if (list == nullptr || !context_.hints().take(list->items().size())) continue;
      values.insert(values.end(), list->items().begin(), list->items().end());
    }
    return context_.hints().nearest(context, values);
  }

  LintContext& context_;
  std::optional<std::unordered_map<std::string, std::string>> lacking_;  // see `lackingOf`; made when first needed
  std::unordered_set<std::string> meant_;  // the type paths that entries of object types were probably meant to have
};

}  // namespace

void checkEntries(LintContext& context) {
  EntryLint(context).run();
}

std::optional<NameProblem> problemOfName(std::string_view name, std::string_view type) {
  if (name.empty()) return NameProblem{Code::ImpossibleName, "the name of an object cannot be empty"};
  if (!canBeObjectName(name)) {
    return NameProblem{Code::ImpossibleName,
                       "no object can be named " + inQuotes(name) + ": a name cannot contain '/' or ':'"};
  }
  if (name == type) {
    return NameProblem{Code::NameEqualsType, "an object of the type " + inQuotes(name) +
                                                 " with this name is printed and loaded as a singleton without a name"};
  }
  return std::nullopt;
}

}  // namespace tarn::rules
