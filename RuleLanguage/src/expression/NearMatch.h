#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::rules {

// How all diagnostics show what stands in a rule file, and what was probably meant by it.

/// 'text'
[[nodiscard]] std::string inQuotes(std::string_view text);

/// The end of a sentence that proposes `name`.
[[nodiscard]] std::string didYouMean(std::string_view name);

/// The end of a sentence about `text` that proposes what it is a slip of; empty when none of the candidates is near.
[[nodiscard]] std::string orNear(std::string_view text, std::vector<std::string> const& candidates);

/// How many names may still be looked at in search of near matches. Each search is linear in the names, so that a file
/// with ten thousand slips among ten thousand names would be searched for ever; the later ones do without a hint.
class HintBudget {
 public:
  /// Whether `count` names may be looked at; they are, then.
  [[nodiscard]] bool take(std::size_t count) noexcept;

  /// As the function of this name, if the candidates may still be looked at.
  [[nodiscard]] std::string orNear(std::string_view text, std::vector<std::string> const& candidates);

 private:
  std::size_t left_ = 500'000;
};

}  // namespace tarn::rules
