#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "analyses/UnknownNames.h"
#include "analyses/ValueFaults.h"

namespace tarn::tool {

/// A sentence about the item at a path.
struct PathMessage {
  std::string path;
  std::string message;
};

/// All that was found in one model.
struct Findings {
  /// What the validator returned.
  int status = 0;
  std::vector<PathMessage> dependency;
  std::vector<std::string> global;
  std::vector<UnknownName> unknown;
  std::vector<ValueFault> values;
  /// What rule authors have to say about items that are not released yet. No finding.
  std::vector<PathMessage> beta;
  /// Objects at the root that were not judged, being of types that the rules do not look at. No finding either.
  std::size_t objectsPassedOver = 0;

  [[nodiscard]] bool any() const noexcept {
    return !dependency.empty() || !global.empty() || !unknown.empty() || !values.empty();
  }
};

}  // namespace tarn::tool
