#pragma once

#include <string>
#include <utility>
#include <vector>

#include <tarn/BoundsTracker.h>
#include <tarn/DynamicTDF.h>
#include <tarn/ModifiedQuantityTracker.h>
#include <tarn/PotentialUpdateTracker.h>

namespace tarn {

class QuantityModifier;

/// The result of the rules for the intent. Each walk brings it up to date.
struct Outcome {
  explicit Outcome(QuantityModifier const* modifier) : quantities(modifier) {}

  /// The objects and parameters that are present, and the log of what the last update changed in them.
  DynamicTDF active{true};
  /// The items on offer.
  PotentialUpdateTracker offers;
  BoundsTracker bounds;
  ModifiedQuantityTracker quantities;
  /// Paths of the parameters without a value, in walk order; and those of them whose type is typed in.
  std::vector<std::string> emptyParams;
  std::vector<std::string> emptyTypedParams;
  /// Paths of the objects that the last update created, in the order of their creation. A mirrored branch is known by
  /// its top.
  std::vector<std::string> createdObjects;
  /// The parameters whose value in the guide the last update replaced by an override.
  std::vector<std::pair<std::string, std::string>> writtenRequests;
  /// Parent path and type of what a user may add. Sorted between updates; kept by an update without a walk.
  std::vector<std::pair<std::string, std::string>> userNamedTypes;
};

}  // namespace tarn
