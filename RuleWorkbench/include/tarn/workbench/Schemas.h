#pragma once

#include <string_view>

#include <tarn/Export.h>

/// JSON Schemas (draft 7) of the files that rule authors write. Editors that know YAML use them to complete keys, to
/// show what a key means, and to mark mistakes of form. Expressions and names are for lint.
namespace tarn::workbench {

/// The schema of `*.rules.yaml`. Valid until the program ends.
[[nodiscard]] TARN_EXPORT std::string_view ruleFileSchema() noexcept;
/// The schema of `*.rule-tests.yaml`. Valid until the program ends.
[[nodiscard]] TARN_EXPORT std::string_view ruleTestsSchema() noexcept;

}  // namespace tarn::workbench
