#pragma once

#include <string>

#include <tarn/Export.h>
#include <tarn/GlobalCheck.h>
#include <tarn/RuleExpressions.h>

namespace tarn::rules {

/// Says in words what a rule of a rule file means, for people who do not read the rule language: "Motion is 'Rotating',
/// and the number of Boundary objects is more than 4". Parts that words would make longer stay as they are written.
///
/// A condition gives a clause that can follow "while", a text or a list the words for its value. Returns "" for rules
/// that a program made, and for texts and lists that are fixed. Linear in the length of the rule.
[[nodiscard]] TARN_EXPORT std::string inWords(RuleExpression const& rule);

/// The rule for the message of a global check of a rule file. Null for a check that a program made. Valid as long as
/// the check.
[[nodiscard]] TARN_EXPORT TextExpression const* messageOf(GlobalCheck const& check) noexcept;

}  // namespace tarn::rules
