#pragma once

#include <tarn/EvalContext.h>
#include <tarn/Export.h>
#include <tarn/RuleExpressions.h>
#include <tarn/TDFContext.h>

namespace tarn {

/// A condition that the rule database holds under a name. `lambda::check` makes one from a function.
class TARN_EXPORT Check : public RuleExpression {
 public:
  [[nodiscard]] virtual bool evaluate(TDFContext const& context, EvalContext* evalContext) const = 0;
  [[nodiscard]] Explanation explain(TDFContext const& context, ModelTDF const& model) const override;
};

}  // namespace tarn
