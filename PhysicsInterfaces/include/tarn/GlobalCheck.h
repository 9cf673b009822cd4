#pragma once

#include <utility>

#include <tarn/CheckLevel.h>
#include <tarn/EvalContext.h>
#include <tarn/Export.h>
#include <tarn/PhysicsErrorMsg.h>
#include <tarn/RuleExpressions.h>

namespace tarn {

/// A check of the model as a whole. `lambda::globalCheck` makes one from a function.
class TARN_EXPORT GlobalCheck : public RuleExpression {
 public:
  /// Returns whether the check passes, and the message for the user. The message is used only if it fails.
  [[nodiscard]] virtual std::pair<bool, PhysicsErrorMsg> evaluate(EvalContext* evalContext) const = 0;

  /// The level of a failure in a review. A validator does not look at it. Set it before the check is shared between
  /// threads.
  [[nodiscard]] CheckLevel level() const noexcept { return level_; }
  void setLevel(CheckLevel level) noexcept { level_ = level; }

 private:
  CheckLevel level_ = CheckLevel::Error;
};

}  // namespace tarn
