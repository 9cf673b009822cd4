#include <tarn/PathPattern.h>

#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "PhysicsInterfaces/paths/PathPatternModel.h"

namespace tarn {
namespace {

using test::expand;
using test::MapModel;
using test::pump;
using testing::ElementsAre;
using testing::IsEmpty;

/// The path that a single pattern resolves to; "none" when there is none.
std::string resolve(std::string const& pattern, std::string const& context = "", std::string const& owner = "") {
  PathPattern const parsed(pattern);
  EXPECT_TRUE(parsed.isSingle()) << pattern;
  std::string path;
  return parsed.resolve(TDFContext(context, owner), path) ? path : "none";
}

TEST(PathPattern, ASinglePatternResolvesWhetherTheModelHoldsTheObjectOrNot) {
  EXPECT_EQ(resolve("/Case/Domain:diffuser"), "/Case/Domain:diffuser");
  EXPECT_EQ(resolve("Motion", "/Case/Domain:rotor"), "/Case/Domain:rotor/Motion");
  EXPECT_EQ(resolve("/", "/Case"), "");
}

TEST(PathPattern, ParentsLeadUpToTheRootAndNotBeyond) {
  EXPECT_EQ(resolve("..", "/Case/Domain:rotor"), "/Case");
  EXPECT_EQ(resolve("../..", "/Case/Domain:rotor"), "");
  EXPECT_EQ(resolve("../../..", "/Case/Domain:rotor"), "none");
  EXPECT_EQ(resolve("../Domain:stator", "/Case/Domain:rotor"), "/Case/Domain:stator");
  EXPECT_EQ(resolve("Boundary:in/../Motion", "/Case/Domain:rotor"), "/Case/Domain:rotor/Motion");
}

TEST(PathPattern, TheNearestObjectOfATypeIsLookedForAtTheContextAndAbove) {
  EXPECT_EQ(resolve("^Domain", "/Case/Domain:rotor/Boundary:in"), "/Case/Domain:rotor");
  EXPECT_EQ(resolve("^Domain", "/Case/Domain:rotor"), "/Case/Domain:rotor");
  EXPECT_EQ(resolve("^Case/Output Control", "/Case/Domain:rotor"), "/Case/Output Control");
  EXPECT_EQ(resolve("^Boundary", "/Case/Domain:rotor"), "none");
  EXPECT_EQ(resolve("^Domain", ""), "none");
  EXPECT_EQ(resolve("^Group", "/Group:outer/Group:inner/Item:x"), "/Group:outer/Group:inner");
  EXPECT_EQ(resolve("^Dom", "/Case/Domain:rotor"), "none");
}

TEST(PathPattern, TheOwnerIsNotTheContext) {
  EXPECT_EQ(resolve("@", "/Case/Domain:rotor/Boundary:in", "/Case/Domain:stator"), "/Case/Domain:stator");
  EXPECT_EQ(resolve("@/..", "/Case/Domain:rotor/Boundary:in", "/Case/Domain:stator"), "/Case");
}

TEST(PathPattern, ASinglePatternExpandsToTheObjectIfTheModelHoldsIt) {
  EXPECT_THAT(expand("/Case/Domain:rotor"), ElementsAre("/Case/Domain:rotor"));
  EXPECT_THAT(expand("Motion", "/Case/Domain:rotor"), ElementsAre("/Case/Domain:rotor/Motion"));
  EXPECT_THAT(expand("/Case/Domain:diffuser"), IsEmpty());
  EXPECT_THAT(expand("/Case/Domain"), IsEmpty()) << "the singleton of the type, which is not there";
  EXPECT_THAT(expand("/Case/Domain:rotor/../Domain:stator"), ElementsAre("/Case/Domain:stator"));
  EXPECT_THAT(expand("../../..", "/Case"), IsEmpty());
  EXPECT_THAT(expand("^Boundary", "/Case"), IsEmpty());
  EXPECT_THAT(expand("@", "/Case", "/Library"), ElementsAre("/Library"));
}

TEST(PathPattern, ATypeWithAStarIsEveryChildOfTheTypeASingletonIncluded) {
  EXPECT_THAT(expand("/Case/Domain:*"), ElementsAre("/Case/Domain:rotor", "/Case/Domain:stator"));
  EXPECT_THAT(expand("Motion:*", "/Case/Domain:rotor"), ElementsAre("/Case/Domain:rotor/Motion"));
  EXPECT_THAT(expand("Dom:*", "/Case"), IsEmpty());
}

TEST(PathPattern, AStarIsEveryChildInTheOrderOfTheModel) {
  EXPECT_THAT(expand("/Case/*"), ElementsAre("/Case/Domain:rotor", "/Case/Domain:stator", "/Case/Output Control"));
  EXPECT_THAT(expand("/*"), ElementsAre("/Case", "/Library"));
  EXPECT_THAT(expand("*", "/Case/Output Control"), IsEmpty());
}

TEST(PathPattern, OnlyTheLastOfSingleStepsIsAskedFor) {
  EXPECT_THAT(expand("/Case/*/Motion"), ElementsAre("/Case/Domain:rotor/Motion", "/Case/Domain:stator/Motion"));
  EXPECT_THAT(expand("/Case/Domain:*/Boundary:wall"), ElementsAre("/Case/Domain:stator/Boundary:wall"));
}

TEST(PathPattern, TwoStarsAreAnyNumberOfLevelsDepthFirstParentsBeforeChildren) {
  EXPECT_THAT(expand("/Case/**"),
              ElementsAre("/Case", "/Case/Domain:rotor", "/Case/Domain:rotor/Motion", "/Case/Domain:rotor/Boundary:in",
                          "/Case/Domain:rotor/Boundary:out", "/Case/Domain:stator", "/Case/Domain:stator/Boundary:wall",
                          "/Case/Domain:stator/Motion", "/Case/Output Control"));
}

TEST(PathPattern, TwoStarsMayBeNoLevelAtAll) {
  EXPECT_THAT(expand("/**/Case"), ElementsAre("/Case"));
  EXPECT_THAT(expand("**", "/Case/Output Control"), ElementsAre("/Case/Output Control"));
  EXPECT_THAT(expand("/Case/**/Domain:*"), ElementsAre("/Case/Domain:rotor", "/Case/Domain:stator"));
  EXPECT_THAT(expand("/**/Boundary:*"), ElementsAre("/Case/Domain:rotor/Boundary:in", "/Case/Domain:rotor/Boundary:out",
                                                    "/Case/Domain:stator/Boundary:wall"));
  EXPECT_THAT(expand("**", "/Nowhere"), IsEmpty());
}

TEST(PathPattern, EveryObjectIsGivenOnceHoweverManyWaysLeadToIt) {
  EXPECT_THAT(expand("/Case/**/**/Motion"), ElementsAre("/Case/Domain:rotor/Motion", "/Case/Domain:stator/Motion"));
  EXPECT_THAT(expand("/Case/Domain:*/Boundary:*/.."), ElementsAre("/Case/Domain:rotor", "/Case/Domain:stator"));
  EXPECT_THAT(expand("/Case/*/../Output Control"), ElementsAre("/Case/Output Control"));
}

TEST(PathPattern, ManyStarsOverADeepModelStayLinear) {
  MapModel model;
  std::string path;
  for (int i = 0; i < 500; ++i) {
    path += "/Group";
    model.add(path);
  }
  std::string pattern = "";
  for (int i = 0; i < 50; ++i) pattern += "/**";

  EXPECT_EQ(PathPattern(pattern + "/Group").expand(TDFContext(""), model).size(), 500U);
}

TEST(PathPattern, ObjectsAreAskedAboutNoFurtherThanNeeded) {
  std::vector<std::string> asked;
  auto const isRotor = [&](std::string const& path) {
    asked.push_back(path);
    return path == "/Case/Domain:rotor";
  };
  EXPECT_TRUE(PathPattern("/Case/Domain:*").findIf(TDFContext(""), pump(), isRotor));
  EXPECT_EQ(asked.back(), "/Case/Domain:rotor");
  auto const all = expand("/Case/Domain:*");
  EXPECT_TRUE(std::equal(asked.begin(), asked.end(), all.begin()));
  EXPECT_FALSE(PathPattern("/Case/Boundary:*").findIf(TDFContext(""), pump(), isRotor));
}

TEST(PathPattern, SearchEndsAsSoonAsAChildOfAnyStarIsFound) {
  class CountingModel : public MapModel {
   public:
    using MapModel::MapModel;
    bool anyChildOfType(std::string const& path, std::string const& type,
                        std::function<bool(std::string const& child)> const& visit) const override {
      return MapModel::anyChildOfType(path, type, [&](std::string const& child) {
        visited.push_back(child);
        return visit(child);
      });
    }
    mutable std::vector<std::string> visited;
  };
  CountingModel const model{{"/Case/Domain:rotor/Boundary:in/Profile", {}},
                            {"/Case/Domain:rotor/Boundary:out/Profile", {}},
                            {"/Case/Domain:stator/Boundary:wall/Profile", {}}};
  EXPECT_TRUE(PathPattern("/Case/Domain:*/Boundary:*/Profile").findIf(TDFContext(""), model, [](std::string const&) {
    return true;
  }));
  EXPECT_EQ(model.visited, (std::vector<std::string>{"/Case/Domain:rotor", "/Case/Domain:rotor/Boundary:in"}));
}

TEST(PathPattern, ObjectThatTheModelListsTwiceIsMatchedOnce) {
  // A model that has /Case/Domain and /Case/Domain:Domain.
  class BothForms : public MapModel {
   public:
    using MapModel::MapModel;
    bool getChildObjectPaths(std::string const& path, std::vector<std::string>& out) const override {
      MapModel::getChildObjectPaths(path, out);
      if (path == "/Case") out.emplace_back("/Case/Domain");
      return !out.empty();
    }
    bool getChildObjectPathsByType(std::string const& path, std::string const& type,
                                   std::vector<std::string>& out) const override {
      MapModel::getChildObjectPathsByType(path, type, out);
      if (path == "/Case" && type == "Domain") out.emplace_back("/Case/Domain");
      return !out.empty();
    }
  };
  BothForms const model{{"/Case/Domain/Boundary:in", {}}, {"/Case/Domain:rotor/Boundary:out", {}}};
  for (char const* pattern : {"/Case/Domain:*", "/Case/*", "/Case/Domain:*/Boundary:*", "/Case/*/*"}) {
    std::vector<std::string> visited;
    EXPECT_FALSE(PathPattern(pattern).findIf(TDFContext(""), model, [&](std::string const& path) {
      visited.push_back(path);
      return false;
    }));
    EXPECT_EQ(visited, PathPattern(pattern).expand(TDFContext(""), model)) << pattern;
    EXPECT_EQ(visited.size(), 2U) << pattern;
  }
}

TEST(PathPattern, SearchWithVeryManyStarsFindsTheDeepestObject) {
  for (int const depth : {16, 17, 1000}) {
    MapModel model;
    std::string path;
    std::string pattern;
    for (int i = 0; i < depth; ++i) {
      path += "/Group:g";
      pattern += i % 2 == 0 ? "/Group:*" : "/*";
      model.add(path);
    }
    EXPECT_TRUE(PathPattern(pattern).findIf(TDFContext(""), model, [&](std::string const& found) {
      return found == path;
    })) << depth;
  }
}

}  // namespace
}  // namespace tarn
