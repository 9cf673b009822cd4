#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "lint/LintContext.h"

namespace tarn::rules {

/// Warns of entries of objects that are never used, and of attributes that have no effect or contradict each other.
void checkEntries(LintContext& context);

struct NameProblem {
  Code code;
  std::string message;
};
/// The problem of a name for an object of `type`. Empty when the name is good.
[[nodiscard]] std::optional<NameProblem> problemOfName(std::string_view name, std::string_view type);

}  // namespace tarn::rules
