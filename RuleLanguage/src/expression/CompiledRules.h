#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tarn/GlobalCheck.h>
#include <tarn/RuleExpressions.h>

#include "expression/Explainer.h"
#include "expression/Expression.h"
#include "expression/FlatCondition.h"
#include "expression/Quantities.h"

// Expressions in the form in which a rule database owns them. Rules with the same text share one parsed expression;
// each keeps its own `RulePlace`.

namespace tarn::rules {

/// True when an object can have this name: it is not empty and does not contain "/" or ":".
[[nodiscard]] inline bool canBeObjectName(std::string_view name) noexcept {
  return !name.empty() && name.find_first_of("/:") == std::string_view::npos;
}

/// A parsed expression and its text. The ranges of the nodes are ranges of `source`; only a list with conditions has no
/// source, because its parts are written in several places.
struct Compiled {
  ExpressionPtr expression;
  /// The same as tests in a row, if the expression is a condition.
  FlatCondition condition;
  std::string source;
};

using CompiledPtr = std::shared_ptr<Compiled const>;

template <typename Base>
class CompiledRule : public Base {
 public:
  explicit CompiledRule(CompiledPtr compiled) : compiled_(std::move(compiled)) {}

  void collectReads(RuleReads& reads) const override { compiled_->expression->collectReads(reads, PathPattern()); }
  /// The language has nothing whose reads are not known.
  [[nodiscard]] bool readsUnknown() const override { return false; }
  [[nodiscard]] std::string sourceText() const override { return compiled_->source; }
  [[nodiscard]] Expression const& expression() const { return *compiled_->expression; }
  /// For tools that look into the expression.
  [[nodiscard]] Compiled const& compiled() const noexcept { return *compiled_; }

 protected:
  [[nodiscard]] FlatCondition const& condition() const { return compiled_->condition; }
  [[nodiscard]] Explanation explainAs(Form form, TDFContext const& context, ModelTDF const& model) const {
    return rules::explain({*compiled_->expression, compiled_->source, this->rulePlace()}, form, context, model);
  }
  [[nodiscard]] static Frame frame(TDFContext const& context, EvalContext* evalContext) {
    return Frame{*evalContext->getDB(), context, evalContext};
  }

 private:
  CompiledPtr compiled_;
};

class CompiledCondition final : public CompiledRule<Condition> {
 public:
  using CompiledRule::CompiledRule;
  [[nodiscard]] bool evaluate(TDFContext const& context, EvalContext* evalContext) const override {
    return condition().holds(frame(context, evalContext));
  }
  [[nodiscard]] Explanation explain(TDFContext const& context, ModelTDF const& model) const override {
    return explainAs(Form::Truth, context, model);
  }
};

class CompiledText final : public CompiledRule<TextExpression> {
 public:
  using CompiledRule::CompiledRule;
  [[nodiscard]] std::string evaluate(TDFContext const& context, EvalContext* evalContext) const override {
    return expression().text(frame(context, evalContext));
  }
  [[nodiscard]] Explanation explain(TDFContext const& context, ModelTDF const& model) const override {
    return explainAs(Form::Text, context, model);
  }
};

/// The rule for the quantity type of a parameter.
class CompiledQuantityType final : public CompiledRule<TextExpression> {
 public:
  using CompiledRule::CompiledRule;
  [[nodiscard]] std::string evaluate(TDFContext const& context, EvalContext* evalContext) const override {
    DeterminingQuantityType const scope;
    return expression().text(frame(context, evalContext));
  }
  [[nodiscard]] Explanation explain(TDFContext const& context, ModelTDF const& model) const override {
    DeterminingQuantityType const scope;
    return explainAs(Form::Text, context, model);
  }
};

class CompiledList final : public CompiledRule<ListExpression> {
 public:
  using CompiledRule::CompiledRule;
  [[nodiscard]] SharedStrings evaluate(TDFContext const& context, EvalContext* evalContext) const override {
    return expression().list(frame(context, evalContext));
  }
  [[nodiscard]] Explanation explain(TDFContext const& context, ModelTDF const& model) const override {
    return explainAs(Form::List, context, model);
  }
};

/// The computed names of children. Names that no object can have are left out: they would make a walk look for objects
/// that nothing can provide.
class CompiledNames final : public CompiledRule<ListExpression> {
 public:
  using CompiledRule::CompiledRule;
  [[nodiscard]] SharedStrings evaluate(TDFContext const& context, EvalContext* evalContext) const override {
    auto names = expression().list(frame(context, evalContext));
    auto const isNoName = [](std::string const& name) { return !canBeObjectName(name); };
    if (std::none_of(names.begin(), names.end(), isNoName)) return names;
    std::vector<std::string> kept = names.vector();
    std::erase_if(kept, isNoName);
    return kept;
  }
  [[nodiscard]] Explanation explain(TDFContext const& context, ModelTDF const& model) const override {
    return explainAs(Form::List, context, model);
  }
};

/// A condition on the whole model, evaluated at the root, with the message for when it does not hold.
class CompiledGlobalCheck final : public CompiledRule<GlobalCheck> {
 public:
  CompiledGlobalCheck(CompiledPtr condition, std::unique_ptr<TextExpression> message)
      : CompiledRule(std::move(condition)), message_(std::move(message)) {}

  [[nodiscard]] std::pair<bool, PhysicsErrorMsg> evaluate(EvalContext* evalContext) const override {
    TDFContext const root{std::string{}};
    if (expression().truth(frame(root, evalContext))) return {true, PhysicsErrorMsg(std::string{})};
    return {false, PhysicsErrorMsg(message_->evaluate(root, evalContext))};
  }

  [[nodiscard]] Explanation explain(TDFContext const& /*context*/, ModelTDF const& model) const override {
    return explainAs(Form::Truth, TDFContext(std::string{}), model);
  }

  void collectReads(RuleReads& reads) const override {
    CompiledRule::collectReads(reads);
    message_->collectReads(reads);
  }

  [[nodiscard]] TextExpression const& message() const noexcept { return *message_; }

 private:
  std::unique_ptr<TextExpression> message_;
};

}  // namespace tarn::rules
