#pragma once

#include <span>
#include <string>
#include <vector>

#include <tarn/SharedStrings.h>

/// What a validation tells the user, in his words, and the treatment of lists that goes with it.
///
/// What is wrong is always shown in full, joined by commas; what would be right is only hinted at, see `shortList`.
/// Singular and plural follow the number of items that are wrong.
namespace tarn::ValidationMessages {

using Strings = std::span<std::string const>;

[[nodiscard]] std::string formatMissingParam(std::string const& objPath, std::string const& name);
[[nodiscard]] std::string formatInvalidParam(std::string const& objPath, std::string const& name);
[[nodiscard]] std::string formatInvalidValue(std::string const& objPath, std::string const& name, Strings allowed,
                                             std::string const& value);
[[nodiscard]] std::string formatInvalidValues(std::string const& objPath, std::string const& name, Strings allowed,
                                              std::vector<std::string> const& disallowed);
[[nodiscard]] std::string formatInvalidSingleton(std::string const& objPath, std::string const& type);
[[nodiscard]] std::string formatInvalidNamedObjs(std::string const& objPath, std::string const& type,
                                                 std::vector<std::string> const& names);
/// The type is not part of the wording.
[[nodiscard]] std::string formatInvalidNames(std::string const& objPath, std::string const& type, Strings allowed,
                                             std::vector<std::string> const& disallowed);
[[nodiscard]] std::string formatMissingSingleton(std::string const& objPath, std::string const& type);
[[nodiscard]] std::string formatMissingNamedObjs(std::string const& objPath, std::string const& type,
                                                 std::vector<std::string> const& names);

/// The first four items joined by ", "; behind them ", ..." when there are more. Empty for an empty list.
[[nodiscard]] std::string shortList(Strings items);

/// The items of `items` that `others` lacks, each once, in ascending byte order.
[[nodiscard]] std::vector<std::string> setDifferenceOf(Strings items, Strings others);
[[nodiscard]] inline std::vector<std::string> setDifferenceOf(Strings items, std::vector<std::string> const& others) {
  return setDifferenceOf(items, Strings(others));
}
/// The same; the list of the others may be long, since it is asked rather than sorted: O(items) for a list that has
/// been asked before.
[[nodiscard]] std::vector<std::string> setDifferenceOf(Strings items, SharedStrings const& others);

}  // namespace tarn::ValidationMessages
