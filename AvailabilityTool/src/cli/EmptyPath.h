#pragma once

#include <string>

#include <CLI/CLI.hpp>

namespace tarn::tool {

/// The error of wrong usage for an argument without a path. `form` is what to write: "PATH=VALUE". `hasValue`: the
/// argument has a value after its "=".
[[nodiscard]] inline CLI::ValidationError emptyPath(std::string const& argument, bool hasValue,
                                                    std::string const& form) {
  std::string const fault = hasValue ? "there is no path before the \"=\"" : "the path is empty";
  return CLI::ValidationError(argument, fault + "; write " + form);
}

}  // namespace tarn::tool
