#pragma once

#include <string>

#include <tarn/ParamAllowedValues.h>

namespace tarn {

/// The results of read operations that return a reference and find nothing.
[[nodiscard]] inline std::string const& sharedEmptyString() noexcept {
  static std::string const empty;
  return empty;
}

[[nodiscard]] inline ParamAllowedValues const& sharedEmptyAllowedValues() noexcept {
  static ParamAllowedValues const empty;
  return empty;
}

}  // namespace tarn
