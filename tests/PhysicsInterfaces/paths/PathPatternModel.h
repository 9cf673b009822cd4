#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tarn/PathPattern.h>

#include "support/MapModel.h"

namespace tarn::test {

/// A pump: two domains with boundaries, each with its singleton Motion, and a library of materials.
inline MapModel const& pump() {
  static MapModel const model{{"/Case/Domain:rotor/Motion", {}},       {"/Case/Domain:rotor/Boundary:in", {}},
                              {"/Case/Domain:rotor/Boundary:out", {}}, {"/Case/Domain:stator/Boundary:wall", {}},
                              {"/Case/Domain:stator/Motion", {}},      {"/Case/Output Control", {}},
                              {"/Library/Material:Water at 25 C", {}}};
  return model;
}

inline std::vector<std::string> expand(std::string const& pattern, std::string const& context = "",
                                       std::string const& owner = "") {
  auto const found = PathPattern(pattern).expand(TDFContext(context, owner), pump());
  // Asked one by one, the objects are the same.
  std::vector<std::string> asked;
  EXPECT_FALSE(PathPattern(pattern).findIf(TDFContext(context, owner), pump(), [&](std::string const& path) {
    asked.push_back(path);
    return false;
  })) << pattern;
  EXPECT_EQ(asked, found) << pattern;
  return found;
}

}  // namespace tarn::test
