#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <utility>

#include <tarn/NameSlots.h>

namespace tarn {

/// One copy of each type and parameter name of a tree. Thousands of objects share a few names, so an object and a
/// parameter keep only a pointer. Names come from the rules, so their number is limited. The pool keeps every name
/// until it is cleared.
class NamePool {
 public:
  /// Returns the pool's own copy of `name`. It does not move as long as the pool exists. Throws `std::bad_alloc`, and
  /// adds nothing, when memory runs out.
  [[nodiscard]] std::string const& intern(std::string_view name) {
    auto const nameAt = [this](std::size_t position) -> std::string_view { return names_[position]; };
    std::size_t const known = slots_.find(name, nameAt);
    if (known != NameSlots::none) return names_[known];
    slots_.reserve(names_.size() + 1, nameAt);
    names_.emplace_back(name);
    slots_.add(name, names_.size() - 1);
    return names_.back();
  }

  void clear() noexcept {
    names_.clear();
    slots_.clear();
  }
  void swap(NamePool& other) noexcept {
    names_.swap(other.names_);
    std::swap(slots_, other.slots_);
  }

 private:
  // Side by side in the order of their arrival, because names that come together are mostly read together.
  std::deque<std::string> names_;
  NameSlots slots_;
};

}  // namespace tarn
