#pragma once

#include <span>
#include <string>
#include <vector>

#include <tarn/SharedStrings.h>

/// The messages of a validation in the user's words, and the list handling that they need.
///
/// Wrong items are always shown in full, joined by commas. Only a few of the right ones are shown; see `shortList`.
/// Singular and plural follow the number of wrong items.
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
/// The message does not mention the type.
[[nodiscard]] std::string formatInvalidNames(std::string const& objPath, std::string const& type, Strings allowed,
                                             std::vector<std::string> const& disallowed);
[[nodiscard]] std::string formatMissingSingleton(std::string const& objPath, std::string const& type);
[[nodiscard]] std::string formatMissingNamedObjs(std::string const& objPath, std::string const& type,
                                                 std::vector<std::string> const& names);

/// Returns the first four items joined by ", ", followed by ", ..." when there are more. Empty for an empty list.
[[nodiscard]] std::string shortList(Strings items);

/// Returns the items that `others` lacks, each once, in ascending byte order.
[[nodiscard]] std::vector<std::string> setDifferenceOf(Strings items, Strings others);
[[nodiscard]] inline std::vector<std::string> setDifferenceOf(Strings items, std::vector<std::string> const& others) {
  return setDifferenceOf(items, Strings(others));
}
/// The same for a list of others that may be long, because it is asked and not sorted: O(items) for a list that has
/// been asked before.
[[nodiscard]] std::vector<std::string> setDifferenceOf(Strings items, SharedStrings const& others);

}  // namespace tarn::ValidationMessages
