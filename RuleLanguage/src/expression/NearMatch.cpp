#include "expression/NearMatch.h"

#include <tarn/StringUtilities.h>

namespace tarn::rules {

std::string inQuotes(std::string_view text) {
  return "'" + std::string(text) + "'";
}

std::string didYouMean(std::string_view name) {
  return "; did you mean " + inQuotes(name) + "?";
}

std::string orDidYouMean(std::string_view name) {
  return name.empty() ? std::string{} : didYouMean(name);
}

bool HintBudget::take(std::size_t count) noexcept {
  if (count > left_) return false;
  left_ -= count;
  return true;
}

std::string HintBudget::nearest(std::string_view text, std::vector<std::string> const& candidates) {
  return take(candidates.size()) ? StringUtilities::nearMatch(text, candidates) : std::string{};
}

}  // namespace tarn::rules
