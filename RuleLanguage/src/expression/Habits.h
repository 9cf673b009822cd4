#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Notations of other languages and tools that users write by habit, and what serves their purpose here. The tables are
// only asked when a word means nothing in this language, so a row cannot take the place of something that exists.

namespace tarn::rules {

/// The calls that serve the purpose of a function of other languages, as a sentence lists them: "length(text) and
/// size(list)". Empty when the function is not known.
[[nodiscard]] std::string_view callsInsteadOf(std::string_view function);

/// The replacement of a word that means a value in other languages.
struct WordAdvice {
  std::string_view instead;  // the right word; empty when there is no plain replacement
  std::string_view message;  // the end of a sentence
};
[[nodiscard]] std::optional<WordAdvice> adviceForValue(std::string_view word);
/// The same for a word that is written between two operands.
[[nodiscard]] std::optional<WordAdvice> adviceForOperator(std::string_view word);

/// The same for the type of a parameter. Case does not matter.
[[nodiscard]] std::optional<WordAdvice> adviceForType(std::string_view word);

/// A map of a rule file, seen by its habitual keys.
enum class KeyPlace { File, Object, Parameter, Child, Check, GuardedItem, Other };

/// The key that serves the purpose of an unknown one. Empty when none of `keys`, the keys that exist there, does. Case,
/// blanks, hyphens and underscores do not matter.
[[nodiscard]] std::string keyInsteadOf(std::string_view key, KeyPlace place, std::vector<std::string> const& keys);

}  // namespace tarn::rules
