#pragma once

#include <memory>
#include <string>

#include <tarn/CheckLevel.h>
#include <tarn/EvalContext.h>
#include <tarn/Export.h>
#include <tarn/RuleExpressions.h>
#include <tarn/RulePlace.h>
#include <tarn/TDFContext.h>

namespace tarn {

/// A check that every object of one type must pass. A review evaluates it in each object of the type; walks, editing
/// and the validator do not. Fill the fields and hand the record to `ObjDependDef::addCheck`.
class TARN_EXPORT ObjectCheck {
 public:
  /// Unique in the object type.
  std::string name;
  /// The check applies only while this holds. Null: always.
  std::unique_ptr<Condition> when;
  /// Null: the check passes.
  std::unique_ptr<Condition> check;
  /// The sentence for the user when the check fails. Null: no sentence.
  std::unique_ptr<TextExpression> message;
  CheckLevel level = CheckLevel::Error;
  /// Where the check is written: its name.
  RulePlace rulePlace;

  /// Returns whether the object of the context passes: `when` does not hold, or `check` holds.
  [[nodiscard]] bool passes(TDFContext const& context, EvalContext* evalContext) const;
  /// The sentence for an object that does not pass, or "".
  [[nodiscard]] std::string evaluateMessage(TDFContext const& context, EvalContext* evalContext) const;
};

}  // namespace tarn
