#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace tarn {

namespace short_texts {

template <class Block>
[[nodiscard]] inline bool sameBlock(char const* a, char const* b) noexcept {
  Block blockA;
  Block blockB;
  std::memcpy(&blockA, a, sizeof blockA);
  std::memcpy(&blockB, b, sizeof blockB);
  return blockA == blockB;
}

}  // namespace short_texts

/// Compares strings of a few dozen bytes, such as paths, types and names. Calling a library function for each would
/// take most of the time of a look-up. The last block of a string overlaps the previous one.
[[nodiscard]] inline bool sameBytes(char const* a, char const* b, std::size_t size) noexcept {
  using short_texts::sameBlock;
  if (size >= sizeof(std::uint64_t)) {
    std::size_t const last = size - sizeof(std::uint64_t);
    // Starts at the end, because paths that are looked up together mostly have the same beginning.
    if (!sameBlock<std::uint64_t>(a + last, b + last)) return false;
    for (std::size_t i = 0; i < last; i += sizeof(std::uint64_t)) {
      if (!sameBlock<std::uint64_t>(a + i, b + i)) return false;
    }
    return true;
  }
  if (size >= sizeof(std::uint32_t)) {
    std::size_t const last = size - sizeof(std::uint32_t);
    return sameBlock<std::uint32_t>(a, b) && sameBlock<std::uint32_t>(a + last, b + last);
  }
  for (std::size_t i = 0; i < size; ++i) {
    if (a[i] != b[i]) return false;
  }
  return true;
}

[[nodiscard]] inline bool sameText(std::string_view a, std::string_view b) noexcept {
  return a.size() == b.size() && sameBytes(a.data(), b.data(), a.size());
}

}  // namespace tarn
