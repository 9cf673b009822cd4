#pragma once

#include <string>

#include <tarn/ParamAllowedValues.h>

namespace tarn {

/// What a read operation that returns a reference hands back when there is nothing to find.
[[nodiscard]] inline std::string const& sharedEmptyString() noexcept {
  static std::string const empty;
  return empty;
}

[[nodiscard]] inline ParamAllowedValues const& sharedEmptyAllowedValues() noexcept {
  static ParamAllowedValues const empty;
  return empty;
}

}  // namespace tarn
