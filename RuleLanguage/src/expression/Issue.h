#pragma once

#include <optional>
#include <string>
#include <utility>

#include "diagnostics/Codes.h"
#include "expression/Expression.h"

namespace tarn::rules {

/// A change of an expression's text that removes an issue: what to write in `range` instead, and a title for a menu.
struct Replacement {
  Range range;
  std::string text;
  std::string title;
};

/// A problem in an expression, and its position in the text.
struct Issue {
  Range range;
  std::string message;
  Code code = Code::ExpressionSyntax;
  std::optional<Replacement> fix = std::nullopt;
};

}  // namespace tarn::rules
