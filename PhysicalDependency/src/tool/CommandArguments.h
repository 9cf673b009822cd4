#pragma once

#include <string>
#include <vector>

namespace tarn {

/// Whether a command was given as many arguments as it takes; if not, says so on the standard output.
[[nodiscard]] bool checkArgCount(std::vector<std::string> const& args, std::size_t expected);

}  // namespace tarn
