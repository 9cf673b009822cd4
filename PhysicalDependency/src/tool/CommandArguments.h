#pragma once

#include <string>
#include <vector>

namespace tarn {

/// Returns whether a command has as many arguments as it takes. If not, prints the fault on the standard output.
[[nodiscard]] bool checkArgCount(std::vector<std::string> const& args, std::size_t expected);

}  // namespace tarn
