#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include <tarn/PhysicsData.h>

namespace tarn::tool {

/// Loads the rules that `--rules` names. If they contain errors, writes all of them to `err` and throws a `Failure`.
[[nodiscard]] std::unique_ptr<PhysicsData> loadRuleFiles(std::vector<std::string> const& paths, std::ostream& err);

}  // namespace tarn::tool
