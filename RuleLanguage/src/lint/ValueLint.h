#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/TDFParam.h>

#include "lint/LintContext.h"

namespace tarn::rules {

/// Warns of the values in the entry of a parameter that do not fit it: defaults, conditional defaults, overrides,
/// allowed values and subsets that are of the wrong type, not allowed or out of bounds; of lists that have an item
/// twice; and of texts that look like an expression but are not computed.
void checkValues(LintContext& context, ParamAvail const& param, ParamValueDef const& def, EntryPlace const& place);

/// The same for the texts that are written out in a computed default, override or list of allowed values.
void checkComputedValue(LintContext& context, ExpressionUse const& use);

/// Warns of texts in an expression that have a parameter in them, which is not computed there.
void checkTexts(LintContext& context, ExpressionUse const& use);

/// Warns of names in a list of names of children that are written twice or look like an expression.
void checkListedNames(LintContext& context, Item const& list);

/// The same for the items of the named lists.
void checkNamedLists(LintContext& context);
/// The items of a list in a file that are written twice.
void checkTwice(LintContext& context, Item const& list);

/// Warns of messages of checks that look like an expression but are not computed.
void checkMessages(LintContext& context);

/// Less than 0 when `a` is below `b`, 0 when they are equal. Nothing when they cannot be compared.
[[nodiscard]] std::optional<int> orderOf(PhysicsData const& data, ParamValueDef const& def, TDFParam::Quantity const& a,
                                         TDFParam::Quantity const& b);

/// The end of a sentence about a value that is not allowed: the near match or, without one, the first that are allowed.
[[nodiscard]] std::string orAllowed(std::string_view near, std::vector<std::string> const& items);

/// How to compute a text that looks like an expression, as the end of a sentence; empty for any other text.
[[nodiscard]] std::string computedRemedy(std::string_view text);

/// The replacement of a text that is not a number, for a parameter that needs one, as the end of a sentence.
[[nodiscard]] std::string numberRemedy(PhysicsData const& data, ParamValueDef const& def, std::string_view text);

}  // namespace tarn::rules
