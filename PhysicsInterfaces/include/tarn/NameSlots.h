#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace tarn {

/// Finds the position of a name in a list that somebody else keeps. The list only grows, and holds no name twice. Takes
/// eight to sixteen bytes a name, which is a fraction of what a map of strings takes, and lies in one piece.
///
///     std::deque<std::string> names;
///     NameSlots slots;
///     auto const nameAt = [&](std::size_t position) -> std::string_view { return names[position]; };
///     slots.reserve(names.size() + 1, nameAt);
///     names.push_back("Motion");
///     slots.add("Motion", names.size() - 1);
///     slots.find("Motion", nameAt);            // 0
///
/// `nameAt` returns the name at a position that was added.
class NameSlots {
 public:
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  /// The position of the name, or `none`. Constant time.
  template <class NameAt>
  [[nodiscard]] std::size_t find(std::string_view name, NameAt const& nameAt) const {
    if (slots_.empty()) return none;
    for (std::size_t slot = firstSlotOf(name); slots_[slot] != empty; slot = next(slot)) {
      if (nameAt(slots_[slot]) == name) return slots_[slot];
    }
    return none;
  }

  /// Makes room for `count` names in all, so that `add` cannot fail. Throws `std::bad_alloc`, and changes nothing, when
  /// memory runs out.
  template <class NameAt>
  void reserve(std::size_t count, NameAt const& nameAt) {
    if (2 * count <= slots_.size()) return;
    NameSlots larger;
    std::size_t size = leastSlots;
    while (size < 2 * count) size *= 2;
    larger.slots_.assign(size, empty);
    for (std::uint32_t const position : slots_) {
      if (position != empty) larger.add(nameAt(position), position);
    }
    slots_.swap(larger.slots_);
  }

  /// There must be room, and `position` must be less than 2^32 - 1.
  void add(std::string_view name, std::size_t position) noexcept {
    std::size_t slot = firstSlotOf(name);
    while (slots_[slot] != empty) slot = next(slot);
    slots_[slot] = static_cast<std::uint32_t>(position);
  }

  void clear() noexcept { slots_.clear(); }

 private:
  static constexpr std::uint32_t empty = 0xffff'ffff;
  static constexpr std::size_t leastSlots = 8;

  // The number of slots is a power of two, and at least half of them are empty.
  [[nodiscard]] std::size_t firstSlotOf(std::string_view name) const noexcept {
    return std::hash<std::string_view>()(name) & (slots_.size() - 1);
  }
  [[nodiscard]] std::size_t next(std::size_t slot) const noexcept { return (slot + 1) & (slots_.size() - 1); }

  std::vector<std::uint32_t> slots_;
};

}  // namespace tarn
