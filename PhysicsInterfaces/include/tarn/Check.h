#pragma once

#include <tarn/EvalContext.h>
#include <tarn/Export.h>
#include <tarn/RuleExpressions.h>
#include <tarn/TDFContext.h>

namespace tarn {

/// A named condition of the rule database.
class TARN_EXPORT Check : public RuleExpression {
 public:
  [[nodiscard]] virtual bool evaluate(TDFContext const& context, EvalContext* evalContext) const = 0;
};

}  // namespace tarn
