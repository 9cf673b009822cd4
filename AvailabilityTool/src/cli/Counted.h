#pragma once

#include <cstddef>
#include <string>

namespace tarn::tool {

/// "1 model", "2 models". `one` is the singular; the plural adds an "s".
[[nodiscard]] inline std::string counted(std::size_t count, std::string const& one) {
  return std::to_string(count) + ' ' + one + (count == 1 ? "" : "s");
}

}  // namespace tarn::tool
