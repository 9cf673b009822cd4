#pragma once

#include <string>
#include <vector>

#include <tarn/SharedStrings.h>

namespace tarn {

/// Removes from `list` what `allowed` lacks; the rest keeps its order and its duplicates.
void keepAllowedOnly(SharedStrings const& allowed, std::vector<std::string>& list);

/// The items of `first` that `second` lacks, in byte order and each once.
[[nodiscard]] std::vector<std::string> sortedDifference(std::vector<std::string> const& first,
                                                        std::vector<std::string> const& second);

}  // namespace tarn
