#pragma once

#include <optional>
#include <string>

#include <tarn/RuleExpressions.h>

#include "expression/Expression.h"

namespace tarn::rules {

// Expressions whose value is known without a model, because they read nothing of it.

/// True when the value is the same for every model and every object.
[[nodiscard]] bool readsNothing(Expression const& expression);
/// The value of an expression that reads nothing, as a condition.
[[nodiscard]] bool constantTruth(Expression const& expression);
/// The same as a number.
[[nodiscard]] double constantNumber(Expression const& expression);
/// The same as a text.
[[nodiscard]] std::string constantText(Expression const& expression);
/// The same as a list.
[[nodiscard]] SharedStrings constantList(Expression const& expression);
/// The text of a rule that gives the same one for every model; nothing for other rules, and for null.
[[nodiscard]] std::optional<std::string> constantTextOf(TextExpression const* rule);

}  // namespace tarn::rules
