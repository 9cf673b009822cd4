#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <tarn/Check.h>
#include <tarn/List.h>
#include <tarn/RuleExpressions.h>
#include <tarn/RulePlace.h>

#include "expression/Expression.h"

namespace tarn::rules {

/// A check, list or value that expressions call by its name. It exists before its expression is parsed, so rules can
/// call each other in any order. `bind` gives it the expression after everything that it calls was bound.
class NamedRule {
 public:
  /// `kind` is the kind of the result.
  NamedRule(std::string name, Kind kind) : name_(std::move(name)), kind_(kind) {}

  void bind(ExpressionPtr expression, std::string source);

  [[nodiscard]] std::string const& name() const noexcept { return name_; }
  [[nodiscard]] Kind kind() const noexcept { return kind_; }
  /// Sets the kind of a computed value, which its expression shows. Before any other rule that calls it is parsed.
  void setKind(Kind kind) noexcept { kind_ = kind; }
  /// The text of a value that is written out and is not a number, else null. Known before `bind`.
  [[nodiscard]] std::string const* fixedText() const noexcept { return fixedText_ ? &*fixedText_ : nullptr; }
  void setFixedText(std::string text) { fixedText_ = std::move(text); }
  /// Null before `bind`.
  [[nodiscard]] Expression const* expression() const noexcept { return expression_.get(); }
  [[nodiscard]] Expression* expression() noexcept { return expression_.get(); }
  [[nodiscard]] std::string const& source() const noexcept { return source_; }
  [[nodiscard]] Dependence const& dependence() const noexcept { return dependence_; }
  /// Where its expression is written.
  [[nodiscard]] RulePlace const& place() const noexcept { return place_; }
  void setPlace(RulePlace place) { place_ = std::move(place); }

 private:
  std::string name_;
  Kind kind_;
  std::optional<std::string> fixedText_;
  ExpressionPtr expression_;
  std::string source_;
  Dependence dependence_;
  RulePlace place_;
};

class NamedCheck final : public Check {
 public:
  explicit NamedCheck(std::string name) : rule_(std::move(name), Kind::Truth) {}
  [[nodiscard]] bool evaluate(TDFContext const& context, EvalContext* evalContext) const override;
  void collectReads(RuleReads& reads) const override;
  [[nodiscard]] std::string sourceText() const override { return rule_.source(); }
  [[nodiscard]] Explanation explain(TDFContext const& context, ModelTDF const& model) const override;
  [[nodiscard]] NamedRule& rule() noexcept { return rule_; }
  [[nodiscard]] NamedRule const& rule() const noexcept { return rule_; }

 private:
  NamedRule rule_;
};

class NamedList final : public List {
 public:
  explicit NamedList(std::string name) : rule_(std::move(name), Kind::List) {}
  [[nodiscard]] std::vector<std::string> evaluate(TDFContext const& context, EvalContext* evalContext) const override;
  void collectReads(RuleReads& reads) const override;
  [[nodiscard]] std::string sourceText() const override { return rule_.source(); }
  [[nodiscard]] Explanation explain(TDFContext const& context, ModelTDF const& model) const override;
  [[nodiscard]] NamedRule& rule() noexcept { return rule_; }
  [[nodiscard]] NamedRule const& rule() const noexcept { return rule_; }

 private:
  NamedRule rule_;
};

/// A number or a text, fixed or computed.
class NamedValue final : public TextExpression {
 public:
  /// The kind of a computed value is `Kind::Value` until its expression is known.
  explicit NamedValue(std::string name) : rule_(std::move(name), Kind::Value) {}
  [[nodiscard]] std::string evaluate(TDFContext const& context, EvalContext* evalContext) const override;
  void collectReads(RuleReads& reads) const override;
  [[nodiscard]] std::string sourceText() const override { return rule_.source(); }
  [[nodiscard]] Explanation explain(TDFContext const& context, ModelTDF const& model) const override;
  [[nodiscard]] NamedRule& rule() noexcept { return rule_; }
  [[nodiscard]] NamedRule const& rule() const noexcept { return rule_; }

 private:
  NamedRule rule_;
};

}  // namespace tarn::rules
