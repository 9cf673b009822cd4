#include <tarn/PathPattern.h>

#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "PhysicsInterfaces/paths/PathPatternModel.h"

namespace tarn {
namespace {

using test::expand;
using test::pump;

std::string seen(std::string const& pattern, std::string const& base) {
  return PathPattern(pattern).seenFrom(PathPattern(base)).text();
}

TEST(PathPattern, ARelativePatternIsSeenBehindItsBase) {
  EXPECT_EQ(seen("Boundary:*", "/Case/Domain:*"), "/Case/Domain:*/Boundary:*");
  EXPECT_EQ(seen("..", "Boundary:*"), "Boundary:*/..");
  EXPECT_EQ(seen("Motion", "@/Domain:rotor"), "@/Domain:rotor/Motion");
  EXPECT_EQ(PathPattern("Motion").seenFrom(PathPattern()).text(), "Motion");
}

TEST(PathPattern, APatternFromTheRootOrTheOwnerIsTheSameFromEverywhere) {
  EXPECT_EQ(seen("/Case/Domain:*", "Boundary:*"), "/Case/Domain:*");
  EXPECT_EQ(seen("@/Motion", "/Case/Domain:*"), "@/Motion");
}

TEST(PathPattern, TheNearestOfATypeIsFoundInTheBaseOrLeftToTheOwner) {
  EXPECT_EQ(seen("^Domain/Motion", "/Case/Domain:*/Boundary:*"), "/Case/Domain:*/Motion");
  EXPECT_EQ(seen("^Domain", "Domain:*"), "Domain:*");
  EXPECT_EQ(seen("^Case", "Boundary:*"), "^Case");
  EXPECT_EQ(PathPattern("^Case").seenFrom(PathPattern()).text(), "^Case");
}

TEST(PathPattern, WhereTheNearestOfATypeCannotBeToldEveryOneIsNamed) {
  EXPECT_EQ(seen("^Domain/Motion", "**"), "/**/Domain:*/Motion");
  EXPECT_EQ(seen("^Domain", "../Domain:*/.."), "/**/Domain:*");
  EXPECT_EQ(seen("^Domain", "@/Boundary:*"), "/**/Domain:*");
}

TEST(PathPattern, WithoutItsFirstStepTheRestBeginsAtTheSameObject) {
  auto const rest = [](std::string const& pattern) { return PathPattern(pattern).withoutFirstStep().text(); };
  EXPECT_EQ(rest("Domain/Boundary:in"), "Boundary:in");
  EXPECT_EQ(rest("Domain/.."), "..");
  EXPECT_EQ(rest("Domain"), "");
  EXPECT_EQ(PathPattern().withoutFirstStep().text(), "");
  EXPECT_EQ(rest("/Case/Domain"), "/Domain");
  EXPECT_TRUE(PathPattern("Domain:*/Motion").withoutFirstStep().isSingle());
}

TEST(PathPattern, WhatIsSeenFromABaseNamesAtLeastWhatIsFoundFromEachOfItsObjects) {
  for (std::string const base : {"/Case/Domain:*", "/Case/**", "Boundary:*", "../*", "@/Boundary:*", "^Case/*"}) {
    for (std::string const pattern : {"Boundary:*", "..", "^Domain", "^Case/*", "@/..", "/Library/*", "../..", "**"}) {
      TDFContext const owner("/Case/Domain:rotor");
      auto const all = PathPattern(pattern).seenFrom(PathPattern(base)).expand(owner, pump());
      for (auto const& object : PathPattern(base).expand(owner, pump())) {
        for (auto const& found : PathPattern(pattern).expand(TDFContext(object, owner.ownerPath()), pump())) {
          EXPECT_THAT(all, testing::Contains(found)) << pattern << " seen from " << base;
        }
      }
    }
  }
}

}  // namespace
}  // namespace tarn
