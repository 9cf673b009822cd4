#pragma once

#include <string>
#include <vector>

#include <tarn/EvalContext.h>
#include <tarn/Export.h>
#include <tarn/RuleExpressions.h>
#include <tarn/TDFContext.h>

namespace tarn {

/// A list of strings that the rule database holds under a name. `lambda::namedList` makes one from a function.
class TARN_EXPORT List : public RuleExpression {
 public:
  [[nodiscard]] virtual std::vector<std::string> evaluate(TDFContext const& context,
                                                          EvalContext* evalContext) const = 0;
  [[nodiscard]] Explanation explain(TDFContext const& context, ModelTDF const& model) const override;
};

}  // namespace tarn
