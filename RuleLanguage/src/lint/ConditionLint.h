#pragma once

#include <cstddef>

#include "lint/LintContext.h"

namespace tarn::rules {

/// The steps of the search in one condition, after which it is left undecided.
inline constexpr std::size_t conditionSteps = 20'000;

/// Warns of conditions that can never or must always hold in a model without findings, of entries of check lists that
/// are never reached, and of entries of objects that are never live. A note says which conditions were not analysed,
/// because they have more than `ConditionTerms::mostParts` parts or take more than `conditionSteps` steps. The
/// constants there bound what is tried for one entry, so the time of all is linear in their number.
void checkConditions(LintContext& context);

}  // namespace tarn::rules
