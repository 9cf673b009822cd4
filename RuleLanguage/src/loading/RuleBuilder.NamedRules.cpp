// The named checks and lists: first all names, then the bodies, which may call any of them, then the chains of calls.
// Circles and chains that would take too long are errors.

#include <algorithm>
#include <memory>
#include <unordered_map>
#include <utility>

#include <tarn/StringUtilities.h>

#include "expression/NearMatch.h"
#include "expression/Nodes.h"
#include "loading/RuleBuilder.h"
#include "loading/RuleSections.h"

namespace tarn::rules {

void RuleBuilder::registerNamed(File const& file) {
  auto const each = [&](std::string_view section, auto& names, auto& rules, auto make, auto add) {
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
      rules.emplace(name.node->value, rule.get());
      auto& pending = bodies_.emplace_back();
      pending.rule = &rule->rule();
      pending.name = name;
      pending.body = body;
      if (keepPlaces_) index_.namedPlaces_.emplace(pending.rule, name);
      add(name.node->value, std::move(rule));
    });
  };
  each(
      "Checks", checkNames_, named_.checks, [](std::string const& name) { return std::make_unique<NamedCheck>(name); },
      [&](std::string const& name, auto rule) { (void)data_->addCheck(name, std::move(rule)); });
  each(
      "Lists", listNames_, named_.lists, [](std::string const& name) { return std::make_unique<NamedList>(name); },
      [&](std::string const& name, auto rule) { (void)data_->addList(name, std::move(rule)); });
}

void RuleBuilder::parseNamedBodies() {
  for (auto& pending : bodies_) {
    bool const isList = [&] {
      auto const found = listNames_.find(pending.rule->name());
      return found != listNames_.end() && found->second.node == pending.name.node;
    }();
    owner_ = {};
    std::size_t const usesBefore = laterUses_.size();
    auto const takeExpression = [&](std::size_t skipped, Role role) {
      if (!scalar(pending.body, isList ? "a computed list" : "a check")) return;
      skipped = pending.body.beginOfExpression(skipped);
      pending.skipped = skipped;
      auto result = parsed(pending.body, skipped, role);
      pending.hasQuantities = result.hasQuantities;
      pending.expression = std::move(result.expression);
      pending.source = StringUtilities::trimmed(std::string_view(pending.body.node->value).substr(skipped));
      for (auto const& call : result.calls) pending.calls.push_back(call.rule);
      pending.nesting = result.depth;
      if (keepPlaces_ && pending.expression) {
        laterUses_.push_back({pending.body, skipped, role, isList ? "Lists" : "Checks", owner_, nullptr});
      }
    };
    if (!isList) {
      takeExpression(0, Role::Condition);
    } else if (isExpression(*pending.body.node)) {
      takeExpression(1, Role::List);
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
    for (std::size_t i = usesBefore; i < laterUses_.size(); ++i) laterUses_[i].named = pending.rule;
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
