#pragma once

#include <string>

#include <tarn/List.h>
#include <tarn/RuleExpressions.h>
#include <tarn/SharedStrings.h>

namespace tarn::workbench {

/// The items of a named list, when they are fixed: the list reads nothing. Empty otherwise.
[[nodiscard]] SharedStrings fixedItemsOf(List const& list);
/// The text of a named value, when it is fixed. "" otherwise.
[[nodiscard]] std::string fixedTextOf(TextExpression const& value);

}  // namespace tarn::workbench
