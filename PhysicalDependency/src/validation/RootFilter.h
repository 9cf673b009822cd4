#pragma once

#include <string_view>

#include <tarn/PertinentRoots.h>

namespace tarn {

/// Decides which objects of a state count: those below a pertinent root, or all. A state is in the order of paths, so
/// objects below one root mostly follow each other. The last answer is kept and given again for the next such path.
class RootFilter {
 public:
  RootFilter(PertinentRoots const& roots, bool takesAll) noexcept : roots_(roots), takesAll_(takesAll) {}

  [[nodiscard]] bool counts(std::string_view path) {
    if (takesAll_) return true;
    if (root_.empty() || !path.starts_with(root_) || (path.size() > root_.size() && !endsType(path[root_.size()]))) {
      counts_ = roots_.covers(path);
      root_ = path.empty() ? path : path.substr(0, 1 + PertinentRoots::typeAtRoot(path).size());
    }
    return counts_;
  }

 private:
  [[nodiscard]] static bool endsType(char c) noexcept { return c == '/' || c == ':'; }

  PertinentRoots const& roots_;
  bool takesAll_;
  /// The start of the last path, up to the end of the type at the root.
  std::string_view root_;
  bool counts_ = false;
};

}  // namespace tarn
