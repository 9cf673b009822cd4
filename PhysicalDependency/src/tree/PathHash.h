#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tarn {

/// The hash of a text, in a form that can be carried on: appending "/Domain:rotor" to the hash of "/Case" gives the
/// hash of "/Case/Domain:rotor". So the hash of an object's path is made from that of its parent and its own component,
/// and the hash of a text that is looked up in one go over the text. How a text was cut into pieces does not show.
///
/// Full blocks of eight bytes are mixed at once, whatever stands behind them waits for more.
class PathHash {
 public:
  /// That of the empty text.
  PathHash() noexcept = default;
  explicit PathHash(std::string_view text) noexcept : PathHash(PathHash().joined<true>(text)) {}

  void append(std::string_view text) noexcept { *this = tail_ == 0 ? joined<true>(text) : joined<false>(text); }

  /// The low bits are as good as any.
  [[nodiscard]] std::size_t value() const noexcept {
    std::uint64_t value = (blocks_ ^ tail_) * multiplier;
    value ^= value >> 32U;
    value *= multiplier;
    return static_cast<std::size_t>(value ^ value >> 32U);
  }

  /// Equal texts have equal hashes; of different ones hardly ever.
  friend bool operator==(PathHash const& a, PathHash const& b) noexcept = default;

 private:
  static constexpr unsigned blockSize = 8;
  /// Less than a block is held, so the highest byte of the tail is free to say how much.
  static constexpr unsigned countShift = 56;
  static constexpr std::uint64_t multiplier = 0x9e3779b97f4a7c15U;

  [[nodiscard]] static std::uint64_t byteAt(char const* place) noexcept {
    return static_cast<std::uint64_t>(static_cast<unsigned char>(*place));
  }

  /// The first byte lowest on every machine: a tail is shifted on by bytes. Compilers make one load of it.
  [[nodiscard]] static std::uint64_t blockAt(char const* place) noexcept {
    return byteAt(place) | byteAt(place + 1) << 8U | byteAt(place + 2) << 16U | byteAt(place + 3) << 24U |
           byteAt(place + 4) << 32U | byteAt(place + 5) << 40U | byteAt(place + 6) << 48U | byteAt(place + 7) << 56U;
  }

  /// What of `block` did not fit behind `held` bytes.
  [[nodiscard]] static std::uint64_t spill(std::uint64_t block, unsigned held) noexcept {
    return held == 0 ? 0 : block >> 8 * (blockSize - held);
  }

  /// The first half does not wait for the blocks before, so that it is done beside them.
  [[nodiscard]] static std::uint64_t mixed(std::uint64_t blocks, std::uint64_t block) noexcept {
    block *= multiplier;
    return (blocks ^ block ^ block >> 32U) * multiplier;
  }

  /// With `text` behind. On whole blocks, which a look-up begins with, nothing has to be shifted.
  template <bool onWholeBlocks>
  [[nodiscard]] PathHash joined(std::string_view text) const noexcept {
    // In locals, since a store to a field might, for all that a compiler knows, change the text.
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
