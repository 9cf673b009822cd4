#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/NearMatches.h>
#include <tarn/StringUtilities.h>

namespace tarn::rules {

// How all diagnostics quote a rule file, and propose what was probably meant.

/// 'text'
[[nodiscard]] std::string inQuotes(std::string_view text);

/// The end of a sentence that proposes `name`.
[[nodiscard]] std::string didYouMean(std::string_view name);

/// The same, but empty when `name` is empty.
[[nodiscard]] std::string orDidYouMean(std::string_view name);

/// Limits how many names are compared in search of near matches, see `NearMatches`. When the budget is used up, further
/// slips are reported without a proposal.
class HintBudget {
 public:
  /// Returns whether `count` further names may be compared, and if so takes them from the budget.
  [[nodiscard]] bool take(std::size_t count) noexcept { return matches_.take(count); }

  /// The candidate that `text` is most likely a slip of. Empty when no candidate is near, or the budget is used up.
  [[nodiscard]] std::string nearest(std::string_view text, std::vector<std::string> const& candidates) {
    return matches_.find(text, candidates);
  }

 private:
  NearMatches matches_;
};

/// The key of `map` that `text` is most likely a slip of. Empty when no key is near, or the budget is used up.
template <typename Map>
std::string nearKey(std::string_view text, Map const& map, HintBudget& hints) {
  if (!hints.take(map.size())) return {};
  std::vector<std::string> keys;
  keys.reserve(map.size());
  for (auto const& entry : map) keys.push_back(entry.first);
  return StringUtilities::nearMatch(text, keys);
}

}  // namespace tarn::rules
