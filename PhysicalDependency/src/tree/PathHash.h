#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tarn {

/// The hash of a text, to which more text can be appended: appending "/Domain:rotor" to the hash of "/Case" gives the
/// hash of "/Case/Domain:rotor". So the hash of an object's path is made from the hash of its parent and its own
/// component, and the hash of a path that is looked up in one pass. The result does not depend on how the text was
/// split.
///
/// Full blocks of eight bytes are mixed at once. The bytes after them wait for more.
class PathHash {
 public:
  /// The hash of the empty text.
  PathHash() noexcept = default;
  explicit PathHash(std::string_view text) noexcept : PathHash(PathHash().joined<true>(text)) {}

  void append(std::string_view text) noexcept { *this = tail_ == 0 ? joined<true>(text) : joined<false>(text); }

  /// The low bits are as well distributed as the others.
  [[nodiscard]] std::size_t value() const noexcept {
    std::uint64_t value = (blocks_ ^ tail_) * multiplier;
    value ^= value >> 32U;
    value *= multiplier;
    return static_cast<std::size_t>(value ^ value >> 32U);
  }

  /// Equal texts have equal hashes. Different texts have equal hashes very rarely.
  friend bool operator==(PathHash const& a, PathHash const& b) noexcept = default;

 private:
  static constexpr unsigned blockSize = 8;
  /// The tail holds less than a block, so its highest byte is free for the number of bytes held.
  static constexpr unsigned countShift = 56;
  static constexpr std::uint64_t multiplier = 0x9e3779b97f4a7c15U;

  [[nodiscard]] static std::uint64_t byteAt(char const* place) noexcept {
    return static_cast<std::uint64_t>(static_cast<unsigned char>(*place));
  }

  /// The first byte is the lowest one on every machine, because a tail is shifted by bytes. Compilers make one load of
  /// it.
  [[nodiscard]] static std::uint64_t blockAt(char const* place) noexcept {
    return byteAt(place) | byteAt(place + 1) << 8U | byteAt(place + 2) << 16U | byteAt(place + 3) << 24U |
           byteAt(place + 4) << 32U | byteAt(place + 5) << 40U | byteAt(place + 6) << 48U | byteAt(place + 7) << 56U;
  }

  /// The part of `block` that does not fit after `held` bytes.
  [[nodiscard]] static std::uint64_t spill(std::uint64_t block, unsigned held) noexcept {
    return held == 0 ? 0 : block >> 8 * (blockSize - held);
  }

  /// The first half does not depend on the earlier blocks, so the processor computes it in parallel.
  [[nodiscard]] static std::uint64_t mixed(std::uint64_t blocks, std::uint64_t block) noexcept {
    block *= multiplier;
    return (blocks ^ block ^ block >> 32U) * multiplier;
  }

  /// Returns the hash with `text` appended. After whole blocks, as at the start of a look-up, nothing has to be
  /// shifted.
  template <bool onWholeBlocks>
  [[nodiscard]] PathHash joined(std::string_view text) const noexcept {
    // In local variables, because the compiler must assume that a store to a field may change the text.
    std::uint64_t blocks = blocks_;
    std::uint64_t tail = onWholeBlocks ? 0 : tail_ & ~(std::uint64_t{0xff} << countShift);
    unsigned held = onWholeBlocks ? 0 : static_cast<unsigned>(tail_ >> countShift);
    std::size_t const size = text.size();
    std::size_t at = 0;
    for (; size - at >= blockSize; at += blockSize) {
      std::uint64_t const block = blockAt(text.data() + at);
      blocks = mixed(blocks, tail | block << 8 * held);
      tail = spill(block, held);
    }
    if (auto const left = static_cast<unsigned>(size - at); left != 0) {
      std::uint64_t rest = 0;
      if (size >= blockSize) {
        rest = blockAt(text.data() + size - blockSize) >> 8 * (blockSize - left);
      } else {
        for (unsigned i = 0; i < left; ++i) rest |= byteAt(text.data() + i) << 8 * i;
      }
      tail |= rest << 8 * held;
      if (held + left >= blockSize) {
        blocks = mixed(blocks, tail);
        tail = spill(rest, held);
        held -= blockSize;
      }
      held += left;
    }
    PathHash result;
    result.blocks_ = blocks;
    result.tail_ = tail | std::uint64_t{held} << countShift;
    return result;
  }

  std::uint64_t blocks_ = 0x243f6a8885a308d3U;
  std::uint64_t tail_ = 0;
};

}  // namespace tarn
