// Which objects of a model count for validation. The selection is by the text of a path alone: a state may hold paths
// that no object has, and selecting must not fail on them.

#include <tarn/PertinentRoots.h>

#include <algorithm>

#include <tarn/PathUtils.h>
#include <tarn/PhysicsData.h>

namespace tarn {

PertinentRoots::PertinentRoots(PhysicsData const& rules)
    : types_(rules.getPertinentGlobalCheckRoots().begin(), rules.getPertinentGlobalCheckRoots().end()) {}

std::vector<std::string> PertinentRoots::objectsIn(ModelState const& state) const {
  std::set<std::string, PathUtils::PathOrder> tops;
  // A state is in byte order, so the paths below one object are usually adjacent.
  std::string_view last;
  for (auto const& entry : state) {
    std::string_view const path = entry.first;
    std::string_view const top = path.substr(0, path.find('/', 1));
    if (top == last || !covers(path)) continue;
    last = top;
    tops.emplace(top);
  }
  return {tops.begin(), tops.end()};
}

std::string_view PertinentRoots::typeAtRoot(std::string_view path) noexcept {
  if (path.empty()) return {};
  path.remove_prefix(1);
  return path.substr(0, std::min(path.find_first_of("/:"), path.size()));
}

}  // namespace tarn
