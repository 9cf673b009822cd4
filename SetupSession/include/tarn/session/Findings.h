#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <tarn/session/UnknownNames.h>
#include <tarn/session/ValueFaults.h>

namespace tarn::session {

/// A sentence about the item at a path.
struct PathMessage {
  std::string path;
  std::string message;
};

/// Everything that was found in one model. The lists keep the order in which the analyses report.
struct Findings {
  /// The result of the validator: a bit set of `PhysicsValidator2::ValStatus`.
  int status = 0;
  /// Errors of the validator about single items, in the order of its walk.
  std::vector<PathMessage> dependency;
  /// Messages of the global checks that failed, in the order of the rules.
  std::vector<std::string> global;
  std::vector<UnknownName> unknown;
  std::vector<ValueFault> values;
  /// Remarks of the rule authors about items that are not released yet. These are not findings.
  std::vector<PathMessage> beta;
  /// Roots that were asked for and that the model does not have. If there is one, nothing was judged.
  std::vector<std::string> missingRoots;
  /// Number of objects at the root of the model that were not judged, because the rules do not look at their types.
  /// These are not findings.
  std::size_t objectsPassedOver = 0;

  /// Whether there is an error of the validator, a failed global check, an unknown name or a value fault.
  [[nodiscard]] bool any() const noexcept {
    return !dependency.empty() || !global.empty() || !unknown.empty() || !values.empty();
  }
};

}  // namespace tarn::session
