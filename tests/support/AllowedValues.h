#pragma once

#include <string>
#include <utility>
#include <vector>

#include <tarn/ParamAllowedValues.h>

namespace tarn::test {

/// The allowed values of a parameter that has a list of them, which may be empty.
[[nodiscard]] inline ParamAllowedValues allowing(std::vector<std::string> values) {
  ParamAllowedValues allowed;
  allowed.hasAllowedValues = true;
  allowed.allowedValues = std::move(values);
  return allowed;
}

}  // namespace tarn::test
