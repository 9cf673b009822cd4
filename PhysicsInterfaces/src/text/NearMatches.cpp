#include <tarn/NearMatches.h>

#include <tarn/StringUtilities.h>

namespace tarn {

std::string NearMatches::find(std::string_view text, std::vector<std::string> const& candidates) {
  return take(candidates.size()) ? StringUtilities::nearMatch(text, candidates) : std::string();
}

bool NearMatches::take(std::size_t count) noexcept {
  if (count > left_) return false;
  left_ -= count;
  return true;
}

}  // namespace tarn
