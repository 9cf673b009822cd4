#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/SessionLaw.h"

namespace tarn::fuzz {

/// The law of a session over random rules and a random model. The first byte, times sixteen, is the number of bytes for
/// the rules and the model. The remaining bytes are for the operations. `size` must not be 0.
[[nodiscard]] inline test::SessionLaw sessionLawOf(std::uint8_t const* data, std::size_t size) {
  constexpr std::size_t bytesOfACount = 16;
  std::size_t const ofRules = std::min<std::size_t>(data[0] * bytesOfACount, size - 1);
  std::uint8_t const* const operations = data + 1 + ofRules;
  return {test::RandomNumbers(std::vector<std::uint8_t>(data + 1, operations)),
          test::RandomNumbers(std::vector<std::uint8_t>(operations, data + size))};
}

}  // namespace tarn::fuzz
