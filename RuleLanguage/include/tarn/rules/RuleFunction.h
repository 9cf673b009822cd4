#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include <tarn/Export.h>

namespace tarn::rules {

/// A function of the expression language, described for people and for tools that help them write rules. The language
/// itself works from the same table, so a description cannot differ from what the function does.
struct RuleFunction {
  /// How much work one call does, beside evaluating its arguments.
  enum class Cost {
    Small,       // linear in the length of its arguments
    Items,       // makes a new list
    EachObject,  // evaluates a condition once per object
    NamedRule    // that of the named rule it calls
  };

  std::string_view name;
  /// The heading under which the rule reference lists it.
  std::string_view group;
  /// Every form of the call, separated by ", ": `name(), name(set)`.
  std::string_view signature;
  /// A description of the result of the call, without a full stop at the end.
  std::string_view help;
  /// The kind of the result, in words: "a number", or "a value" when it depends on the arguments.
  std::string_view result;
  /// How many arguments a call takes, at least and at most. Without an upper limit, `most` is `unlimited`.
  std::size_t least = 0;
  std::size_t most = 0;
  Cost cost = Cost::Small;

  static constexpr std::size_t unlimited = static_cast<std::size_t>(-1);
};

/// All functions, in the order of the rule reference: functions of one group are adjacent. The list and its texts stay
/// valid until the program ends.
[[nodiscard]] TARN_EXPORT std::vector<RuleFunction> const& ruleFunctions();

}  // namespace tarn::rules
