#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/session/Finding.h>

namespace tarn::session {

/// Everything that is wrong with one model.
struct TARN_EXPORT Findings {
  /// The errors and warnings, in the order of `FindingKind`. Within a kind: the validator's findings in the order of
  /// its walk; global checks in the order of the rules; unknown names and repeated parameters in the order of the
  /// model's paths; all others in the order of the walk.
  std::vector<Finding> list;
  /// Remarks of the rule authors about items that are not released yet, in the order of the walk. These are not
  /// findings.
  std::vector<Finding> beta;
  /// The result of the validator: a bit set of `PhysicsValidator2::ValStatus`.
  int status = 0;
  /// Roots that were asked for and that the model does not have. If there is one, nothing was judged.
  std::vector<std::string> missingRoots;
  /// Number of objects at the root of the model that were not judged, because the rules do not look at their types.
  /// These are not findings.
  std::size_t objectsPassedOver = 0;

  /// Whether there is an error or a warning.
  [[nodiscard]] bool any() const noexcept { return !list.empty(); }
  /// The number of findings of this severity. Linear in the number of findings.
  [[nodiscard]] std::size_t count(Severity severity) const noexcept;
};

}  // namespace tarn::session
