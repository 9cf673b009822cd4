#pragma once

#include <string>
#include <utility>
#include <vector>

#include <tarn/Check.h>
#include <tarn/List.h>

#include "expression/Expression.h"

namespace tarn::rules {

/// A check or list that expressions call by its name. It exists before its expression is parsed, so rules can call each
/// other in any order. `bind` gives it the expression after everything that it calls was bound.
class NamedRule {
 public:
  explicit NamedRule(std::string name) : name_(std::move(name)) {}

  void bind(ExpressionPtr expression, std::string source);

  [[nodiscard]] std::string const& name() const noexcept { return name_; }
  /// Null before `bind`.
  [[nodiscard]] Expression const* expression() const noexcept { return expression_.get(); }
  [[nodiscard]] Expression* expression() noexcept { return expression_.get(); }
  [[nodiscard]] std::string const& source() const noexcept { return source_; }
  [[nodiscard]] Dependence const& dependence() const noexcept { return dependence_; }

 private:
  std::string name_;
  ExpressionPtr expression_;
  std::string source_;
  Dependence dependence_;
};

class NamedCheck final : public Check {
 public:
  explicit NamedCheck(std::string name) : rule_(std::move(name)) {}
  [[nodiscard]] bool evaluate(TDFContext const& context, EvalContext* evalContext) const override;
  void collectReads(RuleReads& reads) const override;
  [[nodiscard]] std::string sourceText() const override { return rule_.source(); }
  [[nodiscard]] Explanation explain(TDFContext const& context, ModelTDF const& model) const override;
  [[nodiscard]] NamedRule& rule() noexcept { return rule_; }

 private:
  NamedRule rule_;
};

class NamedList final : public List {
 public:
  explicit NamedList(std::string name) : rule_(std::move(name)) {}
  [[nodiscard]] std::vector<std::string> evaluate(TDFContext const& context, EvalContext* evalContext) const override;
  void collectReads(RuleReads& reads) const override;
  [[nodiscard]] std::string sourceText() const override { return rule_.source(); }
  [[nodiscard]] Explanation explain(TDFContext const& context, ModelTDF const& model) const override;
  [[nodiscard]] NamedRule& rule() noexcept { return rule_; }

 private:
  NamedRule rule_;
};

}  // namespace tarn::rules
