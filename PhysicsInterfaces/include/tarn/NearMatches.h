#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Export.h>

namespace tarn {

/// Searches for the names that were probably meant, with a limit on the total work.
///
/// One search is linear in the number of candidates. So ten thousand misspelt names among ten thousand known ones would
/// take minutes. To propose names for many misspelt ones, make one object for all of them. When its limit is reached,
/// it proposes nothing more. For a single name use `StringUtilities::nearMatch`.
class TARN_EXPORT NearMatches {
 public:
  static constexpr std::size_t defaultLimit = 500'000;

  /// `limit` is the number of candidates that all searches together may look at.
  explicit NearMatches(std::size_t limit = defaultLimit) noexcept : left_(limit) {}

  /// As `StringUtilities::nearMatch`. Returns "" as well when there are more candidates than the limit still allows;
  /// they then do not count.
  [[nodiscard]] std::string find(std::string_view text, std::vector<std::string> const& candidates);

  /// Counts `count` candidates that the caller looks at. Returns false, and counts nothing, when they are more than the
  /// limit still allows.
  [[nodiscard]] bool take(std::size_t count) noexcept;

 private:
  std::size_t left_;
};

}  // namespace tarn
