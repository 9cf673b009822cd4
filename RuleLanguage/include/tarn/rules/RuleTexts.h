#pragma once

#include <vector>

#include <tarn/Export.h>
#include <tarn/rules/RuleLoader.h>

namespace tarn::rules {

/// Finds everything that is wrong or doubtful in the texts of several rule files, in the order given, as `lintRules`
/// does. For programs whose rules are not saved, such as editors.
[[nodiscard]] TARN_EXPORT LintResult lintTexts(std::vector<RuleText> const& texts, LintOptions const& options = {});

}  // namespace tarn::rules
