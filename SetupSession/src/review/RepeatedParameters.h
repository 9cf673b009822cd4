#pragma once

#include <string>
#include <vector>

#include <tarn/ModelText.h>
#include <tarn/PhysicsData.h>
#include <tarn/session/Finding.h>

namespace tarn::session {

/// The parameters that `text` gives more than once, with all places. If `roots` is empty, those of objects that the
/// rules look at and those at the root of the model; otherwise those at and below the objects `roots`.
[[nodiscard]] std::vector<Finding> findRepeatedParameters(PhysicsData const& rules,
                                                          std::vector<std::string> const& roots, ModelText const& text);

}  // namespace tarn::session
