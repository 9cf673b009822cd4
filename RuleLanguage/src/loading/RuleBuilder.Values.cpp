// Reads the kinds of values that attributes have: single values, lists of texts, expressions, and lists whose items
// depend on conditions. Expressions and lists that are written alike in many places are parsed once and shared.

#include <algorithm>
#include <cmath>
#include <utility>

#include <tarn/StringUtilities.h>

#include "diagnostics/NearMatch.h"
#include "expression/Nodes.h"
#include "loading/RuleBuilder.h"
#include "loading/RuleSections.h"

namespace tarn::rules {

void RuleBuilder::shownName(Item const& item, std::string_view what, std::string& name) {
  if (!scalar(item, what) || !isName(item, what)) return;
  if (item.node->value.find('\n') != std::string::npos) {
    error(Code::InvalidName, item, std::string(what) + " must be on one line");
    return;
  }
  name = item.node->value;
}

bool RuleBuilder::isLackOf(std::string_view key, Item const& map, Item const& at) const {
  return canHoldKeys(*map.node) && !index_.lacksPartOf(at) && !isMisspelled(key, *map.node);
}

ParsedExpression RuleBuilder::parsed(Item const& item, std::size_t skipped, Role role) {
  ParserLimits const limits{limits_.expressionLength, limits_.expressionDepth};
  auto result = parseExpression(std::string_view(item.node->value).substr(skipped), role, named_, data_.get(), limits);
  for (auto const& issue : result.issues) report(item, skipped, issue);
  if (readTemplate_ != nullptr) {
    for (auto const& call : result.calls) {
      auto const place = index_.namedPlaces_.find(call.rule);
      if (place != index_.namedPlaces_.end()) place->second.isCalledInTemplate = true;
    }
  }
  return result;
}

CompiledPtr RuleBuilder::compiled(Item const& item, std::size_t skipped, Role role, std::string_view attribute) {
  if (!scalar(item, "an expression")) return nullptr;
  auto& shared = shared_[static_cast<std::size_t>(role)];
  skipped = item.beginOfExpression(skipped);
  auto const text = StringUtilities::trimmed(std::string_view(item.node->value).substr(skipped));
  auto const known = shared.find(text);
  CompiledPtr compiled = known != shared.end() ? known->second : nullptr;
  if (!compiled) {
    auto result = parsed(item, skipped, role);
    if (!result.expression) return nullptr;
    auto made = std::make_shared<Compiled>();
    made->expression = keepContextFreeParts(std::move(result.expression));
    made->source = text;
    if (role == Role::Condition) made->condition = FlatCondition(*made->expression);
    toBind(*made->expression, result.hasQuantities, item, skipped);
    compiled = std::move(made);
    // Units that are wrong are reported in every place, so an expression with units is not shared.
    if (result.hasQuantities) {
      unshared_.push_back(compiled);
    } else {
      shared.emplace(text, compiled);
    }
  }
  noteUse(item, skipped, compiled, role, attribute);
  return compiled;
}

void RuleBuilder::toBind(Expression& expression, bool hasQuantities, Item const& item, std::size_t skipped) {
  unbound_.push_back({&expression, hasQuantities, item, skipped});
}

void RuleBuilder::bindQuantities() {
  if (quantityTypesAreWrong_ || index_.isIncomplete() || isSectionMisspelled("Quantity Types")) return;
  QuantityIndex const index(*data_);
  bool const hasTypes = !data_->quantityTypes().empty();
  for (auto const& [expression, hasQuantities, item, skipped] : unbound_) {
    if (!hasTypes && !hasQuantities) continue;
    for (auto& issue : QuantityBinding(index).bind(*expression)) report(item, skipped, std::move(issue));
  }
}

void RuleBuilder::noteUse(Item const& item, std::size_t skipped, CompiledPtr const& compiled, Role role,
                          std::string_view attribute) {
  if (!keepPlaces_) return;
  ExpressionUse use;
  use.item = item;
  use.skipped = skipped;
  use.compiled = compiled;
  use.role = role;
  use.objectName = owner_.object;
  use.entryName = owner_.entry;
  use.kind = owner_.kind;
  use.attribute = attribute;
  use.taken = owner_.taken;
  index_.uses_.push_back(std::move(use));
}

namespace {

/// The rule for a parsed expression, with its place. Null when the expression could not be parsed.
template <typename Rule>
std::unique_ptr<Rule> placed(CompiledPtr expression, Item const& item, std::size_t skipped) {
  if (!expression) return nullptr;
  auto rule = std::make_unique<Rule>(std::move(expression));
  rule->setRulePlace(item.placeOfExpression(skipped));
  return rule;
}

}  // namespace

std::unique_ptr<Condition> RuleBuilder::condition(Item const& item, std::string_view attribute) {
  return placed<CompiledCondition>(compiled(item, 0, Role::Condition, attribute), item, 0);
}

std::unique_ptr<TextExpression> RuleBuilder::textOrExpression(Item const& item, std::string_view attribute) {
  if (!scalar(item, attribute)) return nullptr;
  if (isExpression(*item.node)) {
    auto expression = compiled(item, 1, Role::Text, attribute);
    if (attribute == "Quantity Type") return placed<CompiledQuantityType>(std::move(expression), item, 1);
    return placed<CompiledText>(std::move(expression), item, 1);
  }
  auto text = std::make_unique<FixedText>(item.node->value);
  text->setRulePlace(item.place());
  return text;
}

void RuleBuilder::readLevel(Item const& item, CheckLevel& level) {
  auto const text = scalar(item, "Level");
  if (!text) return;
  if (*text == "Error") {
    level = CheckLevel::Error;
  } else if (*text == "Warning") {
    level = CheckLevel::Warning;
  } else {
    auto const near = StringUtilities::nearMatch(*text, {"Error", "Warning"});
    auto& diagnostic = error(Code::UnknownLevel, item,
                             "unknown level " + inQuotes(text->substr(0, 60)) +
                                 (near.empty() ? std::string("; the levels are Error and Warning") : didYouMean(near)));
    if (!near.empty()) fixText(diagnostic, item, near);
  }
}

std::unique_ptr<TextExpression> RuleBuilder::count(Item const& item, std::string_view attribute) {
  auto text = textOrExpression(item, attribute);
  if (!text || isExpression(*item.node)) return text;
  auto const number = TDFParam::asNumber(item.node->value);
  if (number && *number >= 0 && *number == std::trunc(*number)) return text;
  error(Code::InvalidCount, item,
        std::string(attribute) + " must be a whole number from 0 on, or an expression after '=', not " +
            inQuotes(std::string_view(item.node->value).substr(0, 60)));
  return nullptr;
}

std::unique_ptr<TextPattern> RuleBuilder::pattern(Item const& item) {
  auto const text = scalar(item, "Pattern");
  if (!text) return nullptr;
  auto& known = patterns_[std::string(*text)];
  if (!known) {
    auto expression = std::make_shared<RegularExpression>(std::string(*text));
    if (!expression->fault().empty()) {
      error(Code::InvalidPattern, item, notAPattern(*expression));
      return nullptr;
    }
    known = std::move(expression);
  }
  return std::make_unique<RegularPattern>(known);
}

std::unique_ptr<ListExpression> RuleBuilder::listExpression(Item const& item, std::string_view attribute) {
  return placed<CompiledList>(compiled(item, 0, Role::List, attribute), item, 0);
}

std::unique_ptr<ListExpression> RuleBuilder::sharedFixedList(Item const& item, std::vector<std::string> items) {
  std::string key;
  for (auto const& text : items) key.append(std::to_string(text.size())).append(":").append(text);
  auto const [known, isNew] = sharedLists_.try_emplace(std::move(key));
  if (isNew) known->second = std::move(items);
  auto list = std::make_unique<FixedList>(known->second);
  list->setRulePlace(item.place());
  return list;
}

ExpressionPtr RuleBuilder::guardedItems(Item const& item, std::string_view attribute,
                                        std::optional<std::vector<std::string>>& fixed, PendingBody* named) {
  auto const& children = item.node->children;
  auto const isGuarded = [](YamlNode const* child) { return child->kind == YamlNode::Kind::Mapping; };
  if (std::none_of(children.begin(), children.end(), isGuarded)) {
    fixed = texts(item, false);
    return nullptr;
  }
  std::vector<GuardedList::Item> items;
  std::vector<Unbound> parts;
  bool good = true;
  for (auto const* child : children) {
    Item const childItem{item.source, child};
    GuardedList::Item guarded;
    auto const fixedText = [&](Item const& value) {
      guarded.valueSource = {value.node->value, value.placeOfExpression(0), {}};
      return std::make_unique<Literal>(Range{0, value.node->value.size()}, value.node->value);
    };
    if (child->kind == YamlNode::Kind::Scalar) {
      guarded.value = fixedText(childItem);
    } else if (child->kind == YamlNode::Kind::Sequence) {
      error(Code::WrongKind, childItem,
            "an item of this list must be a single text, but this is " + std::string(kindText(*child)));
      good = false;
    } else {
      auto const parse = [&](Item const& part, std::size_t skipped, Role role) {
        skipped = part.beginOfExpression(skipped);
        auto result = parsed(part, skipped, role);
        auto& source = role == Role::Condition ? guarded.whenSource : guarded.valueSource;
        source.text = StringUtilities::trimmed(std::string_view(part.node->value).substr(skipped));
        source.place = part.placeOfExpression(skipped);
        if (result.expression) parts.push_back({result.expression.get(), result.hasQuantities, part, skipped});
        if (named != nullptr) {
          for (auto const& call : result.calls) named->calls.push_back(call.rule);
          named->nesting = std::max(named->nesting, result.depth);
        }
        // The list owns this expression, so `RuleIndex::uses` gets one that is parsed again later.
        if (keepPlaces_ && result.expression) laterUses_.push_back({part, skipped, role, attribute, owner_, nullptr});
        return std::move(result.expression);
      };
      forEachKnown(childItem, "an item of a list", guardKeys, [&](GuardKey key, Item const&, Item const& value) {
        if (!scalar(value, "an item of a list")) {
          good = false;
        } else if (key == GuardKey::When) {
          guarded.when = parse(value, 0, Role::Condition);
          good &= guarded.when != nullptr;
        } else if (isExpression(*value.node)) {
          guarded.value = parse(value, 1, Role::Text);
          good &= guarded.value != nullptr;
        } else {
          guarded.value = fixedText(value);
        }
      });
      if (good && !guarded.value) {
        if (isLackOf("Value", childItem, childItem)) error(Code::MissingKey, childItem, "the item has no 'Value'");
        good = false;
      }
    }
    items.push_back(std::move(guarded));
  }
  if (!good) return nullptr;
  unbound_.insert(unbound_.end(), parts.begin(), parts.end());
  return std::make_unique<GuardedList>(std::move(items));
}

std::unique_ptr<ListExpression> RuleBuilder::names(Item const& item, std::string_view attribute) {
  if (item.node->kind != YamlNode::Kind::Sequence) {
    if (isExpression(*item.node)) return placed<CompiledNames>(compiled(item, 1, Role::List, attribute), item, 1);
    (void)texts(item, false);
    return nullptr;
  }
  std::optional<std::vector<std::string>> fixed;
  if (auto guarded = guardedItems(item, attribute, fixed, nullptr)) {
    auto compiledList = std::make_shared<Compiled>();
    compiledList->expression = keepContextFreeParts(std::move(guarded));
    auto list = std::make_unique<CompiledNames>(std::move(compiledList));
    list->setRulePlace(item.place());
    return list;
  }
  return fixed ? sharedFixedList(item, std::move(*fixed)) : nullptr;
}

}  // namespace tarn::rules
