#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>

namespace tarn {

/// One copy of each type and parameter name of a tree. Thousands of objects share a few names, so an object and a
/// parameter keep only a pointer. Names come from the rules, so their number is limited. The pool keeps every name
/// until it is cleared.
class NamePool {
 public:
  /// Returns the pool's own copy of `name`. It does not move as long as the pool exists.
  [[nodiscard]] std::string const& intern(std::string_view name) {
    auto const place = names_.find(name);
    return place == names_.end() ? *names_.emplace(name).first : *place;
  }

  void clear() noexcept { names_.clear(); }
  void swap(NamePool& other) noexcept { names_.swap(other.names_); }

 private:
  struct Hash {
    using is_transparent = void;
    [[nodiscard]] std::size_t operator()(std::string_view text) const noexcept {
      return std::hash<std::string_view>()(text);
    }
  };
  std::unordered_set<std::string, Hash, std::equal_to<>> names_;
};

}  // namespace tarn
