#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <tarn/EvalContext.h>
#include <tarn/ModelTDF.h>
#include <tarn/PathPattern.h>
#include <tarn/RuleExpressions.h>
#include <tarn/RuleReads.h>
#include <tarn/TDFContext.h>

/// Rule expressions made of lambdas, for tests that want rules without rule files. All are handed the context and the
/// model that the evaluation reads, and say of themselves that they may read anything.
///
///     when([](TDFContext const& at, ModelTDF const& model) { return model.hasObject(at.objPath() + "/Turbulence"); })
///     when("Motion", "Rotating")        that parameter of the object has that value
///     text("1 [m]")                     text([](TDFContext const& at, ModelTDF const& model) { ... })
///     list({"Water", "Air"})            list([](TDFContext const& at, ModelTDF const& model) { ... })
namespace tarn::test {

template <typename Result>
using RuleFunction = std::function<Result(TDFContext const&, ModelTDF const&)>;

/// `Base` is `Condition`, `TextExpression` or `ListExpression`.
template <typename Base, typename Result>
class RuleLambda final : public Base {
 public:
  explicit RuleLambda(RuleFunction<Result> function) : function_(std::move(function)) {}

  [[nodiscard]] Result evaluate(TDFContext const& context, EvalContext* evalContext) const override {
    return function_(context, *evalContext->getDB());
  }

  void collectReads(RuleReads& reads) const override {
    reads.objectSets.emplace_back("/**");
    reads.contextIdentity = true;
  }

 private:
  RuleFunction<Result> function_;
};

inline std::unique_ptr<Condition> when(RuleFunction<bool> function) {
  return std::make_unique<RuleLambda<Condition, bool>>(std::move(function));
}

inline std::unique_ptr<Condition> when(std::string const& name, std::string const& value) {
  return when([=](TDFContext const& at, ModelTDF const& model) {
    return model.getParameterValue(at.objPath(), name) == value;
  });
}

inline std::unique_ptr<Condition> always() {
  return when([](TDFContext const&, ModelTDF const&) { return true; });
}

inline std::unique_ptr<Condition> never() {
  return when([](TDFContext const&, ModelTDF const&) { return false; });
}

inline std::unique_ptr<TextExpression> text(std::string fixed) {
  return std::make_unique<FixedText>(std::move(fixed));
}
inline std::unique_ptr<TextExpression> text(char const* fixed) {
  return std::make_unique<FixedText>(fixed);
}
inline std::unique_ptr<TextExpression> text(RuleFunction<std::string> function) {
  return std::make_unique<RuleLambda<TextExpression, std::string>>(std::move(function));
}

inline std::unique_ptr<ListExpression> list(std::vector<std::string> fixed) {
  return std::make_unique<FixedList>(SharedStrings(std::move(fixed)));
}
inline std::unique_ptr<ListExpression> list(RuleFunction<SharedStrings> function) {
  return std::make_unique<RuleLambda<ListExpression, SharedStrings>>(std::move(function));
}

/// The items of a list parameter of the object.
inline std::unique_ptr<ListExpression> listOf(std::string const& name) {
  return list([=](TDFContext const& at, ModelTDF const& model) {
    std::vector<std::string> items;
    model.getParamValueAsList(at.objPath(), name, items);
    return SharedStrings(std::move(items));
  });
}

}  // namespace tarn::test
