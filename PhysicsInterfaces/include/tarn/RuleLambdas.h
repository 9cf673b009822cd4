#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tarn/Check.h>
#include <tarn/EvalContext.h>
#include <tarn/GlobalCheck.h>
#include <tarn/List.h>
#include <tarn/ModelTDF.h>
#include <tarn/PhysicsErrorMsg.h>
#include <tarn/RuleExpressions.h>
#include <tarn/RuleReads.h>
#include <tarn/SharedStrings.h>
#include <tarn/TDFContext.h>
#include <tarn/TextPattern.h>

/// Rule expressions made of functions, for a program that fills a `PhysicsData` itself:
///
///     using namespace tarn;
///     ObjDependDef& domain = rules.addObject("/Case/Domain");
///     ParamAvail speed;
///     speed.name = "Speed";
///     speed.available = lambda::when("Motion", "Rotating");
///     ParamValueDef value;
///     value.type = TDFParam::Real;
///     value.upperBound = lambda::text([](TDFContext const& at, ModelTDF const& model) {
///       return model.getParameterValue(at.objPath(), "Maximum Speed");
///     });
///     (void)domain.addParam(std::move(speed), std::move(value));
///
/// A function gets the context, whose `objPath` is the object that owns the rule, and the model that the evaluation
/// reads. It must not change the model or keep a reference to it, and it may be called from several threads at once. It
/// should not throw: what it throws ends the walk and reaches the caller of the walk.
///
/// A function cannot list what it reads. So its expression reports unknown reads (`RuleReads::unknown`): bounds made of
/// it count as variable, and nothing is skipped or remembered because of what it reads. A program that knows what a
/// function reads can pass a `RuleReads` beside it. That list must be complete; an incomplete one makes results stale.
/// The functions below that take no lambda report exactly what they read.
namespace tarn::lambda {

template <typename Result>
using Function = std::function<Result(TDFContext const& at, ModelTDF const& model)>;

/// An expression that calls a function. `Base` is `Condition`, `TextExpression`, `ListExpression`, `Check` or `List`.
/// Made by the functions below.
template <typename Base, typename Result>
class Expression final : public Base {
 public:
  explicit Expression(Function<Result> function, std::optional<RuleReads> reads = std::nullopt)
      : function_(std::move(function)), reads_(std::move(reads)) {}

  /// The model of `evalContext` must not be null.
  [[nodiscard]] Result evaluate(TDFContext const& context, EvalContext* evalContext) const override {
    return function_(context, *evalContext->getDB());
  }

  void collectReads(RuleReads& reads) const override {
    if (reads_) {
      reads.add(*reads_);
    } else {
      reads.unknown = true;
    }
  }

 private:
  Function<Result> function_;
  std::optional<RuleReads> reads_;
};

/// A global check that calls a function. Made by `globalCheck`.
class FunctionGlobalCheck final : public GlobalCheck {
 public:
  FunctionGlobalCheck(std::function<bool(ModelTDF const&)> holds, PhysicsErrorMsg message)
      : holds_(std::move(holds)), message_(std::move(message)) {}

  [[nodiscard]] std::pair<bool, PhysicsErrorMsg> evaluate(EvalContext* evalContext) const override {
    return {holds_(*evalContext->getDB()), message_};
  }

 private:
  std::function<bool(ModelTDF const&)> holds_;
  PhysicsErrorMsg message_;
};

/// @name Conditions
/// @{
/// Holds while `function` returns true.
[[nodiscard]] inline std::unique_ptr<Condition> when(Function<bool> function,
                                                     std::optional<RuleReads> reads = std::nullopt) {
  return std::make_unique<Expression<Condition, bool>>(std::move(function), std::move(reads));
}

/// Holds while the parameter `name` of the owner has exactly the text `value`. An absent parameter has the text "".
[[nodiscard]] inline std::unique_ptr<Condition> when(std::string const& name, std::string const& value) {
  return when([name, value](TDFContext const& at,
                            ModelTDF const& model) { return model.getParameterValue(at.objPath(), name) == value; },
              RuleReads::ofOwnParameter(name));
}

[[nodiscard]] inline std::unique_ptr<Condition> always() {
  return when([](TDFContext const&, ModelTDF const&) { return true; }, RuleReads());
}

[[nodiscard]] inline std::unique_ptr<Condition> never() {
  return when([](TDFContext const&, ModelTDF const&) { return false; }, RuleReads());
}
/// @}

/// @name Texts: a default, an override, a bound, a quantity type
/// @{
[[nodiscard]] inline std::unique_ptr<TextExpression> text(std::string fixed) {
  return std::make_unique<FixedText>(std::move(fixed));
}
[[nodiscard]] inline std::unique_ptr<TextExpression> text(char const* fixed) {
  return std::make_unique<FixedText>(fixed);
}
[[nodiscard]] inline std::unique_ptr<TextExpression> text(Function<std::string> function,
                                                          std::optional<RuleReads> reads = std::nullopt) {
  return std::make_unique<Expression<TextExpression, std::string>>(std::move(function), std::move(reads));
}
/// @}

/// @name Lists: allowed values, a subset, allowed or default names
/// @{
[[nodiscard]] inline std::unique_ptr<ListExpression> list(std::vector<std::string> fixed) {
  return std::make_unique<FixedList>(SharedStrings(std::move(fixed)));
}
[[nodiscard]] inline std::unique_ptr<ListExpression> list(Function<SharedStrings> function,
                                                          std::optional<RuleReads> reads = std::nullopt) {
  return std::make_unique<Expression<ListExpression, SharedStrings>>(std::move(function), std::move(reads));
}

/// The items of the list parameter `name` of the owner, as `ModelTDF::getParamValueAsList` gives them. An absent
/// parameter gives the empty list.
[[nodiscard]] inline std::unique_ptr<ListExpression> listOf(std::string const& name) {
  return list(
      [name](TDFContext const& at, ModelTDF const& model) {
        std::vector<std::string> items;
        model.getParamValueAsList(at.objPath(), name, items);
        return SharedStrings(std::move(items));
      },
      RuleReads::ofOwnParameter(name));
}
/// @}

/// @name Patterns
/// @{
/// A pattern that `matches` decides; messages show it as `text`.
class FunctionPattern final : public TextPattern {
 public:
  FunctionPattern(std::string text, std::function<bool(std::string_view)> matches)
      : text_(std::move(text)), matches_(std::move(matches)) {}

  [[nodiscard]] bool matches(std::string_view text) const override { return matches_(text); }
  [[nodiscard]] std::string text() const override { return text_; }

 private:
  std::string text_;
  std::function<bool(std::string_view)> matches_;
};

[[nodiscard]] inline std::unique_ptr<TextPattern> pattern(std::string text,
                                                          std::function<bool(std::string_view)> matches) {
  return std::make_unique<FunctionPattern>(std::move(text), std::move(matches));
}
/// @}

/// @name Named rules, for `PhysicsData::addCheck`, `addList` and `addGlobalCheck`
/// @{
[[nodiscard]] inline std::unique_ptr<Check> check(Function<bool> function,
                                                  std::optional<RuleReads> reads = std::nullopt) {
  return std::make_unique<Expression<Check, bool>>(std::move(function), std::move(reads));
}

[[nodiscard]] inline std::unique_ptr<List> namedList(Function<std::vector<std::string>> function,
                                                     std::optional<RuleReads> reads = std::nullopt) {
  return std::make_unique<Expression<List, std::vector<std::string>>>(std::move(function), std::move(reads));
}

/// The check passes while `holds` returns true. Otherwise the validator logs `message`.
[[nodiscard]] inline std::unique_ptr<GlobalCheck> globalCheck(std::function<bool(ModelTDF const&)> holds,
                                                              PhysicsErrorMsg message) {
  return std::make_unique<FunctionGlobalCheck>(std::move(holds), std::move(message));
}
/// @}

}  // namespace tarn::lambda
