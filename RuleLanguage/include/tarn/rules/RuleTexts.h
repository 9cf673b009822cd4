#pragma once

#include <vector>

#include <tarn/Export.h>
#include <tarn/rules/RuleLoader.h>

namespace tarn::rules {

/// Finds everything that is wrong or doubtful in the texts of several rule files, in the order given, as `lintRules`
/// does. For programs whose rules are not saved, such as editors.
[[nodiscard]] TARN_EXPORT LintResult lintTexts(std::vector<RuleText> const& texts, LintOptions const& options = {});

/// How much of the rules that count is in the texts that are linted.
enum class LintExtent : int {
  /// Everything.
  All = 0,
  /// All parameters of the objects whose findings matter, and what their rules read.
  Objects = 1,
  /// Some entries of objects, and what they read.
  Entries = 2
};

/// The same for texts that are a part of a rule base. The caller must leave out the findings that other rules could
/// change. Two things are different. A `reads-later-decision` gets advice about what to move if `extent` includes all
/// that the advice depends on; otherwise its message ends by saying that this is not known yet. And there is no
/// `unused-name`, unless `extent` is everything.
[[nodiscard]] TARN_EXPORT LintResult lintPart(std::vector<RuleText> const& texts, LintExtent extent);

}  // namespace tarn::rules
