#include <tarn/RuleReads.h>

#include <algorithm>
#include <utility>

namespace tarn {

RuleReads RuleReads::ofOwnParameter(std::string name) {
  RuleReads reads;
  reads.parameters.push_back({PathPattern(), std::move(name)});
  return reads;
}

void RuleReads::add(RuleReads const& other) {
  parameters.insert(parameters.end(), other.parameters.begin(), other.parameters.end());
  objectSets.insert(objectSets.end(), other.objectSets.begin(), other.objectSets.end());
  contextIdentity = contextIdentity || other.contextIdentity;
  unknown = unknown || other.unknown;
}

bool RuleReads::isContextFree() const noexcept {
  return !unknown && !contextIdentity && std::all_of(parameters.begin(), parameters.end(), [](Parameter const& read) {
    return read.objects.isAbsolute();
  }) && std::all_of(objectSets.begin(), objectSets.end(), [](PathPattern const& set) { return set.isAbsolute(); });
}

}  // namespace tarn
