// The named checks, lists and values: first all names, then the bodies, which may call any of them, then the chains of
// calls. Circles and chains that would take too long are errors.

#include <algorithm>
#include <memory>
#include <unordered_map>
#include <utility>

#include <tarn/StringUtilities.h>
#include <tarn/TDFParam.h>

#include "diagnostics/NearMatch.h"
#include "expression/Nodes.h"
#include "loading/RuleBuilder.h"
#include "loading/RuleSections.h"

namespace tarn::rules {

namespace {

/// The kind of a value that is written out is known before any expression is parsed.
void setFixedKind(NamedRule& rule, YamlNode const& body) {
  if (body.kind != YamlNode::Kind::Scalar || isExpression(body)) return;
  bool const isNumber = TDFParam::asQuantity(body.value).has_value();
  rule.setKind(isNumber ? Kind::Number : Kind::Text);
  if (!isNumber) rule.setFixedText(body.value);
}

}  // namespace

void RuleBuilder::registerNamed(File const& file) {
  auto const each = [&](std::string_view section, Argument calledAs, auto& names, auto& rules, auto make, auto add) {
    auto const found = file.sections.find(section);
    if (found == file.sections.end()) return;
    forEach({file.source, found->second}, section, [&](Item const& name, Item const& body) {
      if (!isName(name, "a name")) return;
      auto const [former, isNew] = names.try_emplace(name.node->value, name);
      if (!isNew) {
        twice(Code::DuplicateName, name, former->second, inQuotes(name.node->value) + " is given twice");
        return;
      }
      auto rule = make(name.node->value);
      rule->setRulePlace(isExpression(*body.node)                    ? body.placeOfExpression(1)
                         : body.node->kind == YamlNode::Kind::Scalar ? body.placeOfExpression(0)
                                                                     : body.place());
      rule->rule().setPlace(rule->rulePlace());
      rules.emplace(name.node->value, rule.get());
      auto& pending = bodies_.emplace_back();
      pending.rule = &rule->rule();
      pending.calledAs = calledAs;
      pending.name = name;
      pending.body = body;
      if (calledAs == Argument::ValueName) setFixedKind(*pending.rule, *body.node);
      if (keepPlaces_) index_.namedPlaces_.emplace(pending.rule, NamedPlace{name, body});
      add(name.node->value, std::move(rule));
    });
  };
  each(
      "Checks", Argument::CheckName, checkNames_, named_.checks,
      [](std::string const& name) { return std::make_unique<NamedCheck>(name); },
      [&](std::string const& name, auto rule) { (void)data_->addCheck(name, std::move(rule)); });
  each(
      "Lists", Argument::ListName, listNames_, named_.lists,
      [](std::string const& name) { return std::make_unique<NamedList>(name); },
      [&](std::string const& name, auto rule) { (void)data_->addList(name, std::move(rule)); });
  each(
      "Values", Argument::ValueName, valueNames_, named_.values,
      [](std::string const& name) { return std::make_unique<NamedValue>(name); },
      [&](std::string const& name, auto rule) { (void)data_->addValue(name, std::move(rule)); });
}

std::vector<RuleBuilder::PendingBody*> RuleBuilder::computedValuesInOrder() {
  // Each value is parsed once only to see which values it calls: their kinds must be known before it is parsed for use.
  ParserLimits const limits{limits_.expressionLength, limits_.expressionDepth};
  std::unordered_map<NamedRule const*, PendingBody*> waiting;
  for (auto& pending : bodies_) {
    bool const isComputed = pending.calledAs == Argument::ValueName && isExpression(*pending.body.node);
    if (isComputed) waiting.emplace(pending.rule, &pending);
  }
  struct Step {
    PendingBody* pending;
    std::vector<RuleCall> calls;
  };
  std::vector<PendingBody*> order;
  std::vector<Step> stack;
  auto const open = [&](NamedRule const* rule) {
    auto const found = waiting.find(rule);
    if (found == waiting.end()) return;
    auto* const pending = found->second;
    waiting.erase(found);
    auto const text = std::string_view(pending->body.node->value).substr(1);
    stack.push_back({pending, parseExpression(text, Role::Text, named_, data_.get(), limits).calls});
  };
  for (auto& start : bodies_) {
    open(start.rule);
    while (!stack.empty()) {
      auto& calls = stack.back().calls;
      if (calls.empty()) {
        order.push_back(stack.back().pending);
        stack.pop_back();
      } else {
        auto const* called = calls.back().rule;
        calls.pop_back();
        open(called);
      }
    }
  }
  return order;
}

void RuleBuilder::readFixedValue(PendingBody& pending) {
  auto const text = scalar(pending.body, "a named value");
  if (!text) return;
  Range const range{0, text->size()};
  auto const quantity = TDFParam::asQuantity(*text);
  if (quantity && !quantity->units.empty()) {
    pending.hasQuantities = true;
    pending.expression =
        std::make_unique<QuantityLiteral>(range, quantity->number, std::string(quantity->units), std::string(*text));
  } else if (quantity) {
    pending.expression = std::make_unique<Literal>(range, quantity->number, std::string(*text));
  } else {
    pending.expression = std::make_unique<Literal>(range, std::string(*text));
  }
  pending.source = *text;
}

void RuleBuilder::parseBody(PendingBody& pending) {
  owner_ = {};
  std::size_t const usesBefore = laterUses_.size();
  auto const takeExpression = [&](std::size_t skipped, Role role, std::string_view what, std::string_view section) {
    if (!scalar(pending.body, what)) return;
    skipped = pending.body.beginOfExpression(skipped);
    pending.skipped = skipped;
    auto result = parsed(pending.body, skipped, role);
    pending.hasQuantities = result.hasQuantities;
    pending.expression = std::move(result.expression);
    pending.source = StringUtilities::trimmed(std::string_view(pending.body.node->value).substr(skipped));
    for (auto const& call : result.calls) pending.calls.push_back(call.rule);
    pending.nesting = result.depth;
    if (keepPlaces_ && pending.expression) {
      laterUses_.push_back({pending.body, skipped, role, section, owner_, nullptr});
    }
  };
  switch (pending.calledAs) {
    case Argument::ListName:
      if (isExpression(*pending.body.node)) {
        takeExpression(1, Role::List, "a computed list", "Lists");
      } else if (pending.body.node->kind == YamlNode::Kind::Sequence) {
        std::optional<std::vector<std::string>> fixed;
        pending.expression = guardedItems(pending.body, "Lists", fixed, &pending);
        if (fixed) {
          std::vector<ExpressionPtr> items;
          for (auto& text : *fixed) items.push_back(std::make_unique<Literal>(Range{}, std::move(text)));
          pending.expression = std::make_unique<ListLiteral>(Range{}, std::move(items));
        }
      } else {
        error(Code::WrongKind, pending.body, "write a list as [a, b, c], or compute it by one expression after '='");
      }
      break;
    case Argument::ValueName:
      if (!isExpression(*pending.body.node)) {
        readFixedValue(pending);
        break;
      }
      takeExpression(1, Role::Text, "a named value", "Values");
      if (!pending.expression) break;
      if (pending.expression->kind() == Kind::Truth) {
        report(pending.body, pending.skipped,
               {pending.expression->range(),
                "a named value is a number or a text, not a truth value; write this under Checks",
                Code::WrongOperandKind});
      } else {
        pending.rule->setKind(pending.expression->kind());
      }
      break;
    default:
      takeExpression(0, Role::Condition, "a check", "Checks");
      break;
  }
  for (std::size_t i = usesBefore; i < laterUses_.size(); ++i) laterUses_[i].named = pending.rule;
}

void RuleBuilder::parseNamedBodies() {
  for (auto* pending : computedValuesInOrder()) parseBody(*pending);
  for (auto& pending : bodies_) {
    bool const isParsed = pending.calledAs == Argument::ValueName && isExpression(*pending.body.node);
    if (!isParsed) parseBody(pending);
  }
}

void RuleBuilder::bindNamedRules() {
  std::unordered_map<NamedRule const*, PendingBody*> byRule;
  for (auto& pending : bodies_) byRule.emplace(pending.rule, &pending);

  // Depth first with its own stack: a rule is bound when all rules that it calls are bound. A call of a rule that is
  // still open closes a circle.
  enum class State { New, Open, Done };
  std::unordered_map<PendingBody const*, State> states;
  struct Step {
    PendingBody* pending;
    std::size_t next = 0;
  };
  std::vector<Step> stack;
  for (auto& start : bodies_) {
    if (states[&start] != State::New) continue;
    stack.push_back({&start});
    states[&start] = State::Open;
    while (!stack.empty()) {
      auto& step = stack.back();
      auto& pending = *step.pending;
      if (step.next < pending.calls.size()) {
        auto* const called = byRule.at(pending.calls[step.next++]);
        if (states[called] == State::New) {
          states[called] = State::Open;
          stack.push_back({called});
        } else if (states[called] == State::Open) {
          auto const first =
              std::find_if(stack.begin(), stack.end(), [&](Step const& open) { return open.pending == called; });
          std::string circle;
          std::size_t shown = 0;
          for (auto open = first; open != stack.end(); ++open, ++shown) {
            if (shown < 10) circle += inQuotes(open->pending->rule->name()) + " calls ";
          }
          if (shown >= 10) circle += "... calls ";
          error(Code::CircularCall, pending.name,
                "named rules call each other in a circle: " + circle + inQuotes(called->rule->name()));
        }
        continue;
      }
      std::size_t nestingBelow = 0;
      for (auto const* call : pending.calls) {
        auto const& called = *byRule.at(call);
        nestingBelow = std::max(nestingBelow, called.nesting);
        pending.depth = std::max(pending.depth, called.depth);
        pending.callCount += 1 + called.callCount;
      }
      // Each excess is reported once: the callers of such a rule count it as nothing.
      if (++pending.depth > limits_.callDepth) {
        error(Code::LimitExceeded, pending.name,
              "named rules call each other in a chain of more than " + std::to_string(limits_.callDepth) + " calls");
        pending.depth = 0;
      }
      pending.nesting += nestingBelow;
      if (pending.nesting > limits_.nestingDepth) {
        error(Code::LimitExceeded, pending.name,
              "this rule and the rules that it calls are nested deeper than " + std::to_string(limits_.nestingDepth) +
                  " levels; use fewer levels");
        pending.nesting = 0;
      }
      if (pending.callCount > limits_.callCount) {
        error(Code::LimitExceeded, pending.name,
              "one evaluation of this rule makes more than " + std::to_string(limits_.callCount) +
                  " calls of named rules; use fewer calls");
        pending.callCount = 0;
      }
      if (pending.expression) {
        pending.rule->bind(std::move(pending.expression), std::move(pending.source));
        toBind(*pending.rule->expression(), pending.hasQuantities, pending.body, pending.skipped);
      }
      states[&pending] = State::Done;
      stack.pop_back();
    }
  }
}

}  // namespace tarn::rules
