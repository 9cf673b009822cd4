// The read view of two models: which of them answers for which path, and how the parent of the active root lists its
// children.

#include <tarn/ProvisionalTDFDB.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include <tarn/DynamicTDF.h>
#include <tarn/Error.h>

namespace tarn {
namespace {

using Strings = std::vector<std::string>;

/// A base model with three domains, of which the middle one is edited in the active model. Each value says whose it is.
class ProvisionalTDFDBTest : public testing::Test {
 protected:
  ProvisionalTDFDBTest() {
    for (char const* path :
         {"", "/Case", "/Case/Domain:A", "/Case/Domain:AB", "/Case/Domain:A/Boundary:in", "/Case/Solver"}) {
      for (char const* name : {"Owner", "Base Only"}) base.setParameter(path, name, "base");
    }
    for (char const* path : {"", "/Case", "/Case/Domain:A", "/Case/Domain:AB", "/Case/Domain:A/Boundary:out"}) {
      for (char const* name : {"Owner", "Active Only"}) active.setParameter(path, name, "active");
    }
  }

  DynamicTDF base;
  DynamicTDF active;
  ProvisionalTDFDB view{"/Case/Domain:A", &active, &base};
};

TEST_F(ProvisionalTDFDBTest, EachPathIsAnsweredByTheModelOfItsSide) {
  for (auto const& [path, owner] :
       std::vector<std::pair<std::string, std::string>>{{"", "base"},
                                                        {"/Case", "base"},
                                                        {"/Case/Solver", "base"},
                                                        {"/Case/Domain:AB", "base"},
                                                        {"/Case/Domain:A", "active"},
                                                        {"/Case/Domain:A/Boundary:out", "active"}}) {
    EXPECT_EQ(view.getParameterValue(path, "Owner"), owner) << path;
    EXPECT_EQ(view.getParameterValue(path + "/Owner"), owner) << path;
  }
}

TEST_F(ProvisionalTDFDBTest, WhatOnlyTheOtherModelHasIsNotThere) {
  EXPECT_FALSE(view.hasObject("/Case/Domain:A/Boundary:in"));
  EXPECT_TRUE(view.hasObject("/Case/Domain:A/Boundary:out"));
  EXPECT_TRUE(view.hasParameter("/Case/Domain:A", "Active Only"));
  EXPECT_FALSE(view.hasParameter("/Case/Domain:A", "Base Only"));
  EXPECT_TRUE(view.hasParameter("/Case/Domain:A/Active Only"));
  EXPECT_FALSE(view.hasParameter("/Case/Domain:A/Base Only"));
  EXPECT_FALSE(view.hasParameter("/Case/Domain:AB", "Active Only"));
  EXPECT_TRUE(view.hasParameter("/Case/Domain:AB/Base Only"));
}

TEST_F(ProvisionalTDFDBTest, NamesAndTypesComeFromTheModelOfTheirSide) {
  EXPECT_EQ(view.getObjectName("/Case/Domain:A/Boundary:out"), "out");
  EXPECT_EQ(view.getObjectType("/Case/Domain:A/Boundary:out"), "Boundary");
  EXPECT_EQ(view.getObjectName("/Case/Domain:A/Boundary:in"), "");
  EXPECT_EQ(view.getObjectType("/Case/Domain:A/Boundary:in"), "");
  EXPECT_EQ(view.getObjectType("/Case/Solver"), "Solver");
}

TEST_F(ProvisionalTDFDBTest, ChildrenAreVisitedAsTheyAreListed) {
  base.setParameter("/Case/Solver:s", "Owner", "base");
  active.deleteObject("/Case/Domain:A");
  for (bool const isThere : {false, true}) {
    if (isThere) active.setParameter("/Case/Domain:A/Boundary:out", "Owner", "active");
    for (auto const& [path, type] : std::vector<std::pair<std::string, std::string>>{{"/Case", "Domain"},
                                                                                     {"/Case", "Solver"},
                                                                                     {"/Case/Domain:A", "Boundary"},
                                                                                     {"/Case/Domain:AB", "Boundary"}}) {
      Strings listed;
      view.getChildObjectPathsByType(path, type, listed);
      Strings visited;
      EXPECT_FALSE(view.anyChildOfType(path, type, [&](std::string const& child) {
        visited.push_back(child);
        return false;
      }));
      EXPECT_EQ(visited, listed) << path << ' ' << type;
    }
  }
}

TEST_F(ProvisionalTDFDBTest, ListsAreReadFromTheModelOfTheirSide) {
  active.setParameter("/Case/Domain:A", "Owner", "active,edited");
  Strings out;
  EXPECT_TRUE(view.getParamValueAsList("/Case/Domain:A", "Owner", out));
  EXPECT_EQ(out, (Strings{"active", "edited"}));
  EXPECT_TRUE(view.getParamValueAsList("/Case/Domain:AB/Owner", out));
  EXPECT_EQ(out, Strings{"base"});
  EXPECT_TRUE(view.getParamValueAsList("/Case/Domain:A/Owner", out));
  EXPECT_EQ(out, (Strings{"active", "edited"}));
  EXPECT_FALSE(view.getParamValueAsList("/Case/Domain:AB", "Active Only", out));
  EXPECT_TRUE(out.empty());
}

TEST_F(ProvisionalTDFDBTest, ParameterNamesAtTheParentAreTheBaseModels) {
  Strings out;
  EXPECT_TRUE(view.getParameterNames("/Case", out));
  EXPECT_EQ(out, (Strings{"Base Only", "Owner"}));
  EXPECT_TRUE(view.getParameterNames("/Case/Domain:A", out));
  EXPECT_EQ(out, (Strings{"Active Only", "Owner"}));
}

TEST_F(ProvisionalTDFDBTest, ParameterNamesOfAnUnknownObjectLeaveTheListAsItWas) {
  Strings out{"before"};
  EXPECT_FALSE(view.getParameterNames("/Case/Domain:A/Boundary:in", out));
  EXPECT_EQ(out, Strings{"before"});
}

TEST_F(ProvisionalTDFDBTest, AnActiveRootThatBothModelsHaveKeepsItsPlaceInTheBaseModel) {
  Strings out;
  EXPECT_TRUE(view.getChildObjectPaths("/Case", out));
  EXPECT_EQ(out, (Strings{"/Case/Domain:A", "/Case/Domain:AB", "/Case/Solver"}));
  EXPECT_TRUE(view.getChildObjectNamesByType("/Case", "Domain", out));
  EXPECT_EQ(out, (Strings{"A", "AB"}));
  EXPECT_TRUE(view.getChildObjectPathsByType("/Case", "Domain", out));
  EXPECT_EQ(out, (Strings{"/Case/Domain:A", "/Case/Domain:AB"}));
}

TEST_F(ProvisionalTDFDBTest, AnActiveRootThatOnlyTheActiveModelHasComesLast) {
  base.deleteObject("/Case/Domain:A");
  Strings out;
  EXPECT_TRUE(view.getChildObjectPaths("/Case", out));
  EXPECT_EQ(out, (Strings{"/Case/Domain:AB", "/Case/Solver", "/Case/Domain:A"}));
  EXPECT_TRUE(view.getChildObjectNamesByType("/Case", "Domain", out));
  EXPECT_EQ(out, (Strings{"AB", "A"}));
  EXPECT_TRUE(view.getChildObjectPathsByType("/Case", "Domain", out));
  EXPECT_EQ(out, (Strings{"/Case/Domain:AB", "/Case/Domain:A"}));
}

TEST_F(ProvisionalTDFDBTest, AnActiveRootThatOnlyTheBaseModelHasIsLeftOut) {
  active.deleteObject("/Case/Domain:A");
  Strings out;
  EXPECT_TRUE(view.getChildObjectPaths("/Case", out));
  EXPECT_EQ(out, (Strings{"/Case/Domain:AB", "/Case/Solver"}));
  EXPECT_TRUE(view.getChildObjectNamesByType("/Case", "Domain", out));
  EXPECT_EQ(out, Strings{"AB"});
  EXPECT_TRUE(view.getChildObjectPathsByType("/Case", "Domain", out));
  EXPECT_EQ(out, Strings{"/Case/Domain:AB"});
}

TEST_F(ProvisionalTDFDBTest, AnActiveRootThatNeitherModelHasIsLeftOut) {
  base.deleteObject("/Case/Domain:A");
  active.deleteObject("/Case/Domain:A");
  Strings out;
  EXPECT_TRUE(view.getChildObjectPaths("/Case", out));
  EXPECT_EQ(out, (Strings{"/Case/Domain:AB", "/Case/Solver"}));
}

TEST_F(ProvisionalTDFDBTest, OnlyTheCorrectedListCounts) {
  Strings out{"before"};
  base.deleteObjects({"/Case/Domain:A", "/Case/Domain:AB"});
  EXPECT_TRUE(view.getChildObjectNamesByType("/Case", "Domain", out)) << "the base model alone would answer false";
  EXPECT_EQ(out, Strings{"A"});
  base.createObject("/Case", "Domain", "A");
  active.deleteObject("/Case/Domain:A");
  EXPECT_FALSE(view.getChildObjectNamesByType("/Case", "Domain", out)) << "the base model alone would answer true";
  EXPECT_TRUE(out.empty());
}

TEST_F(ProvisionalTDFDBTest, ChildrenOfTheParentOfAnotherTypeAreTheBaseModelsUntouched) {
  base.deleteObject("/Case/Domain:A");
  active.createObject("/Case", "Solver", "second");
  Strings out;
  EXPECT_TRUE(view.getChildObjectNamesByType("/Case", "Solver", out));
  EXPECT_EQ(out, Strings{"Solver"});
  EXPECT_TRUE(view.getChildObjectPathsByType("/Case", "Solver", out));
  EXPECT_EQ(out, Strings{"/Case/Solver"});
}

TEST_F(ProvisionalTDFDBTest, ChildrenElsewhereComeFromTheModelOfTheirSide) {
  Strings out;
  EXPECT_TRUE(view.getChildObjectPaths("/Case/Domain:A", out));
  EXPECT_EQ(out, Strings{"/Case/Domain:A/Boundary:out"});
  EXPECT_TRUE(view.getChildObjectNamesByType("/Case/Domain:A", "Boundary", out));
  EXPECT_EQ(out, Strings{"out"});
  EXPECT_TRUE(view.getChildObjectPathsByType("/Case/Domain:A", "Boundary", out));
  EXPECT_EQ(out, Strings{"/Case/Domain:A/Boundary:out"});
  EXPECT_TRUE(view.getChildObjectPaths("", out));
  EXPECT_EQ(out, Strings{"/Case"});
  EXPECT_FALSE(view.getChildObjectPathsByType("/Case/Domain:AB", "Domain", out));
}

TEST_F(ProvisionalTDFDBTest, ASingletonAtTheFirstLevelMayBeTheActiveRoot) {
  ProvisionalTDFDB const ofCase("/Case", &active, &base);
  DynamicTDF const nothing;
  ProvisionalTDFDB const overNothing("/Case", &active, &nothing);
  Strings out;
  EXPECT_EQ(ofCase.getParameterValue("/Case", "Owner"), "active");
  EXPECT_EQ(ofCase.getParameterValue("", "Owner"), "base");
  EXPECT_TRUE(overNothing.getChildObjectPaths("", out));
  EXPECT_EQ(out, Strings{"/Case"});
  EXPECT_TRUE(overNothing.getChildObjectNamesByType("", "Case", out));
  EXPECT_EQ(out, Strings{"Case"});
}

TEST_F(ProvisionalTDFDBTest, AParameterOfTheParentThatIsNamedLikeTheRootsComponentIsTakenForTheActiveRoot) {
  base.setParameter("/Case", "Domain:A", "base");
  EXPECT_FALSE(view.hasParameter("/Case/Domain:A"));
  EXPECT_TRUE(view.hasParameter("/Case", "Domain:A"));
}

TEST_F(ProvisionalTDFDBTest, WithAnEmptyActiveRootTheActiveModelAnswersButForTheListOfTheRootsChildren) {
  active.createObject("", "Library", "");
  ProvisionalTDFDB const all("", &active, &base);
  EXPECT_EQ(all.getParameterValue("", "Owner"), "active");
  EXPECT_EQ(all.getParameterValue("/Owner"), "active");
  EXPECT_EQ(all.getParameterValue("/Case/Domain:AB", "Owner"), "active");
  EXPECT_FALSE(all.hasObject("/Case/Solver"));
  Strings out;
  EXPECT_TRUE(all.getChildObjectPaths("/Case", out));
  EXPECT_EQ(out, (Strings{"/Case/Domain:A", "/Case/Domain:AB"}));
  EXPECT_TRUE(all.getChildObjectPathsByType("", "Library", out));
  EXPECT_EQ(out, Strings{"/Library"});
  EXPECT_TRUE(all.getChildObjectPaths("", out));
  EXPECT_EQ(out, Strings{"/Case"});
}

TEST_F(ProvisionalTDFDBTest, ACopyReadsTheSameModels) {
  ProvisionalTDFDB const copy(view);
  active.setParameter("/Case/Domain:A", "Owner", "edited later");
  EXPECT_EQ(copy.getParameterValue("/Case/Domain:A", "Owner"), "edited later");
  EXPECT_EQ(copy.getParameterValue("/Case/Domain:AB", "Owner"), "base");
}

TEST_F(ProvisionalTDFDBTest, AnActiveRootThatIsNoPathThrows) {
  EXPECT_THROW(ProvisionalTDFDB("Case", &active, &base), Error);
}

}  // namespace
}  // namespace tarn
