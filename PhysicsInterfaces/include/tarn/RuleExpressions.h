#pragma once

#include <memory>
#include <string>
#include <utility>

#include <tarn/EvalContext.h>
#include <tarn/Explanation.h>
#include <tarn/Export.h>
#include <tarn/ModelTDF.h>
#include <tarn/RulePlace.h>
#include <tarn/RuleReads.h>
#include <tarn/SharedStrings.h>
#include <tarn/TDFContext.h>

namespace tarn {

/// Base of the small objects that rules consist of: conditions, texts and lists of texts. A program makes its own by
/// deriving, or from lambdas (`<tarn/RuleLambdas.h>`).
///
/// An evaluation reads the model of the `EvalContext`. It must not change anything, and it should not throw: what it
/// throws ends the walk and reaches the caller of the walk. One object may be evaluated from several threads at once.
class TARN_EXPORT RuleExpression {
 public:
  virtual ~RuleExpression();

  /// Adds to `reads` everything that an evaluation may read. The default sets `RuleReads::unknown`, which is always
  /// safe: the expression is then evaluated whenever its value is needed, and a bound made of it counts as variable.
  /// Override it only with a complete list; an expression that reads nothing overrides it with an empty body. An
  /// incomplete list makes results stale.
  virtual void collectReads(RuleReads& reads) const;

  /// Whether `collectReads` reports unknown reads. The default calls it. Override this only to answer faster, because
  /// the start of a `ProvisionalTDF` asks it of every rule.
  [[nodiscard]] virtual bool readsUnknown() const;

  /// The expression as its author wrote it, for explanations. Empty, the default, if it was not written as text.
  [[nodiscard]] virtual std::string sourceText() const;

  /// Evaluates the expression on `model`, without a cache, and says how the result came about.
  ///
  /// `Condition`, `TextExpression`, `ListExpression`, `Check` and `List` do this for any expression: one node with the
  /// source text, the result, and all reads of the model that the evaluation was given. Reads elsewhere are not seen.
  /// Override it if the parts of the expression are known. An explanation must have the result that `evaluate` returns.
  /// Throws what the evaluation throws. The default of this class, for expressions of other kinds, evaluates nothing
  /// and returns an explanation that is not complete.
  [[nodiscard]] virtual Explanation explain(TDFContext const& context, ModelTDF const& model) const;

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

/// An expression that holds or does not hold.
class TARN_EXPORT Condition : public RuleExpression {
 public:
  [[nodiscard]] virtual bool evaluate(TDFContext const& context, EvalContext* evalContext) const = 0;
  [[nodiscard]] Explanation explain(TDFContext const& context, ModelTDF const& model) const override;
};

/// An expression whose value is a text: a default, a bound, a message.
class TARN_EXPORT TextExpression : public RuleExpression {
 public:
  [[nodiscard]] virtual std::string evaluate(TDFContext const& context, EvalContext* evalContext) const = 0;
  [[nodiscard]] Explanation explain(TDFContext const& context, ModelTDF const& model) const override;
};

/// An expression whose value is a list of texts: allowed values, names.
class TARN_EXPORT ListExpression : public RuleExpression {
 public:
  [[nodiscard]] virtual SharedStrings evaluate(TDFContext const& context, EvalContext* evalContext) const = 0;
  [[nodiscard]] Explanation explain(TDFContext const& context, ModelTDF const& model) const override;
};

/// A constant text.
class TARN_EXPORT FixedText final : public TextExpression {
 public:
  explicit FixedText(std::string text) : text_(std::move(text)) {}
  [[nodiscard]] std::string evaluate(TDFContext const& context, EvalContext* evalContext) const override;
  /// Adds nothing.
  void collectReads(RuleReads& reads) const override;
  [[nodiscard]] Explanation explain(TDFContext const& context, ModelTDF const& model) const override;
  [[nodiscard]] std::string const& text() const noexcept { return text_; }

 private:
  std::string text_;
};

/// A constant list.
class TARN_EXPORT FixedList final : public ListExpression {
 public:
  explicit FixedList(SharedStrings items) : items_(std::move(items)) {}
  [[nodiscard]] SharedStrings evaluate(TDFContext const& context, EvalContext* evalContext) const override;
  /// Adds nothing.
  void collectReads(RuleReads& reads) const override;
  [[nodiscard]] Explanation explain(TDFContext const& context, ModelTDF const& model) const override;
  [[nodiscard]] SharedStrings const& items() const noexcept { return items_; }

 private:
  SharedStrings items_;
};

}  // namespace tarn
