#pragma once

#include <utility>

#include <tarn/EvalContext.h>
#include <tarn/Export.h>
#include <tarn/PhysicsErrorMsg.h>
#include <tarn/RuleExpressions.h>

namespace tarn {

/// A check of the model as a whole.
class TARN_EXPORT GlobalCheck : public RuleExpression {
 public:
  /// Whether the check passes, and what to tell the user when it does not.
  [[nodiscard]] virtual std::pair<bool, PhysicsErrorMsg> evaluate(EvalContext* evalContext) const = 0;
};

}  // namespace tarn
