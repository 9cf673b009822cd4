#pragma once

#include <string>

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

}  // namespace tarn::rules
