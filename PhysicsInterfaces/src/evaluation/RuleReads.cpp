#include <tarn/RuleReads.h>

#include <algorithm>

namespace tarn {

bool RuleReads::isContextFree() const noexcept {
  return !contextIdentity && std::all_of(parameters.begin(), parameters.end(), [](Parameter const& read) {
    return read.objects.isAbsolute();
  }) && std::all_of(objectSets.begin(), objectSets.end(), [](PathPattern const& set) { return set.isAbsolute(); });
}

}  // namespace tarn
