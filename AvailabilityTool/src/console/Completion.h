#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tarn::tool {

/// How a line that is being typed can continue.
struct Completion {
  /// The maximum number of `choices`.
  static constexpr std::size_t maxChoices = 100;

  /// The text to insert at the cursor: what all continuations have in common and the line does not have yet.
  std::string insert;
  /// The continuations, sorted, each as a component of a path.
  std::vector<std::string> choices;
  /// The number of all continuations, also of those that are not in `choices`.
  std::size_t total = 0;
};

}  // namespace tarn::tool
