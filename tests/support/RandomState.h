#pragma once

#include <random>
#include <string>
#include <vector>

#include <tarn/ModelState.h>

namespace tarn::test {

/// A state of a few objects, with values drawn from `values`. Most objects and parameters are in every state, so states
/// that follow each other often differ little. In byte order the paths of other objects come between those of an object
/// and its children.
[[nodiscard]] inline ModelState randomState(std::mt19937& random, std::vector<std::string> const& values) {
  ModelState state;
  for (std::string const path :
       {"/Case", "/Case A", "/Case/Domain:a", "/Case/Domain:a/Wall", "/Case/Domain:ab", "/Log"}) {
    if (random() % 8 == 0) continue;
    ObjectState& object = state[path];
    for (std::string const name : {"Gravity", "Motion", "Title"}) {
      if (random() % 6 != 0) object[name] = values[random() % values.size()];
    }
  }
  return state;
}

}  // namespace tarn::test
