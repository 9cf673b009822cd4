#pragma once

#include <algorithm>
#include <functional>
#include <set>
#include <string>
#include <string_view>

#include <tarn/PhysicsValidator2.h>

namespace tarn {

/// Which objects of a state count: those of a root type, or all. States are in the order of paths, so objects of one
/// type at the root mostly stand together, and the last answer is the next one.
class [[gnu::visibility("hidden")]] PhysicsValidator2::RootFilter {
 public:
  RootFilter(std::set<std::string, std::less<>> const& rootTypes, bool takesAll) noexcept
      : rootTypes_(rootTypes), takesAll_(takesAll) {}

  [[nodiscard]] bool counts(std::string_view path) {
    if (takesAll_) return true;
    if (root_.empty() || !path.starts_with(root_) || (path.size() > root_.size() && !endsType(path[root_.size()]))) {
      std::size_t const typeEnd = std::min(path.find_first_of("/:", 1), path.size());
      // Throws for the empty path: it has no leading "/".
      counts_ = rootTypes_.contains(path.substr(1, typeEnd - 1));
      root_ = path.substr(0, typeEnd);
    }
    return counts_;
  }

 private:
  [[nodiscard]] static bool endsType(char c) noexcept {
    return c == '/' || c == ':';
  }

  std::set<std::string, std::less<>> const& rootTypes_;
  bool takesAll_;
  /// The beginning of the last path, up to the end of the type at the root.
  std::string_view root_;
  bool counts_ = false;
};

}  // namespace tarn
