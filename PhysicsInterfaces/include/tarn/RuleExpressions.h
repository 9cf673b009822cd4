#pragma once

#include <memory>
#include <string>
#include <utility>

#include <tarn/EvalContext.h>
#include <tarn/Export.h>
#include <tarn/RulePlace.h>
#include <tarn/RuleReads.h>
#include <tarn/SharedStrings.h>
#include <tarn/TDFContext.h>

namespace tarn {

/// The common part of the small objects that make up a rule: a condition, a text, a list of texts.
///
/// Evaluation reads the model of the `EvalContext`, must not change anything, and should not throw: what it throws ends
/// the walk and reaches its caller. One object is evaluated from several threads at once.
class TARN_EXPORT RuleExpression {
 public:
  virtual ~RuleExpression();

  /// Adds to `reads` what an evaluation may read. The default adds nothing, which is right only for an expression that
  /// reads nothing.
  virtual void collectReads(RuleReads& reads) const;

  /// The expression as its author wrote it, for explanation; empty when it was not written as text.
  [[nodiscard]] virtual std::string sourceText() const;

  /// Where the expression begins in its rule file; not known for an expression that a program made. Set it before the
  /// expression is shared between threads.
  [[nodiscard]] RulePlace const& rulePlace() const noexcept { return rulePlace_; }
  void setRulePlace(RulePlace place) noexcept { rulePlace_ = std::move(place); }

 protected:
  RuleExpression() = default;
  RuleExpression(RuleExpression const&) = default;
  RuleExpression& operator=(RuleExpression const&) = default;

 private:
  RulePlace rulePlace_;
};

/// Something that holds or does not.
class TARN_EXPORT Condition : public RuleExpression {
 public:
  [[nodiscard]] virtual bool evaluate(TDFContext const& context, EvalContext* evalContext) const = 0;
};

/// Something that gives a text: a default, a bound, a message.
class TARN_EXPORT TextExpression : public RuleExpression {
 public:
  [[nodiscard]] virtual std::string evaluate(TDFContext const& context, EvalContext* evalContext) const = 0;
};

/// Something that gives a list of texts: allowed values, names.
class TARN_EXPORT ListExpression : public RuleExpression {
 public:
  [[nodiscard]] virtual SharedStrings evaluate(TDFContext const& context, EvalContext* evalContext) const = 0;
};

/// A text that is always the same.
class TARN_EXPORT FixedText final : public TextExpression {
 public:
  explicit FixedText(std::string text) : text_(std::move(text)) {}
  [[nodiscard]] std::string evaluate(TDFContext const& context, EvalContext* evalContext) const override;
  [[nodiscard]] std::string const& text() const noexcept { return text_; }

 private:
  std::string text_;
};

/// A list that is always the same.
class TARN_EXPORT FixedList final : public ListExpression {
 public:
  explicit FixedList(SharedStrings items) : items_(std::move(items)) {}
  [[nodiscard]] SharedStrings evaluate(TDFContext const& context, EvalContext* evalContext) const override;
  [[nodiscard]] SharedStrings const& items() const noexcept { return items_; }

 private:
  SharedStrings items_;
};

}  // namespace tarn
