#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include <tarn/PhysicsData.h>

namespace tarn::tool {

/// Loads the rules that `--rules` names. When they hold errors, all of them are written to `err` and a `Failure` is
/// thrown.
[[nodiscard]] std::unique_ptr<PhysicsData> loadRuleFiles(std::vector<std::string> const& paths, std::ostream& err);

}  // namespace tarn::tool
