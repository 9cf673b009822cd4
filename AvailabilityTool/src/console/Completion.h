#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tarn::tool {

/// How a line that is being typed can go on.
struct Completion {
  /// At most this many `choices` are named.
  static constexpr std::size_t maxChoices = 100;

  /// What all ways to go on have in common and the line does not have yet; to be put in at the cursor.
  std::string insert;
  /// The ways to go on, sorted, each as the component of a path that it is.
  std::vector<std::string> choices;
  /// How many ways there are, those that are not named included.
  std::size_t total = 0;
};

}  // namespace tarn::tool
