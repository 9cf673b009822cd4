// The read view by itself, over two trees: the model of a pump and placeholders for what it lacks.

#include "validation/PVModelTDF.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <tarn/DynamicTDF.h>

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Strings = std::vector<std::string>;
using View = tarn::PVModelTDF;

class PVModelTDF : public testing::Test {
 protected:
  PVModelTDF() {
    model_.setParameter("", "Title", "Pump");
    model_.setParameter("/Case", "Regime", "Turbulent");
    model_.setParameter("/Case/Domain:casing", "Models", "Heat,Mass");
    model_.setParameter("/Case/Domain:casing/Boundary:inlet", "Kind", "Inlet");
    model_.setParameter("/Case/Output", "Interval", "10");
  }

  void showSingleton(std::string const& objPath, std::string const& type) {
    missing_.createObject(objPath, type, "");
    view_.setMissing(objPath, type, &missing_);
  }

  void showNamed(std::string const& objPath, std::string const& type, Strings const& names) {
    for (std::string const& name : names) missing_.createObject(objPath, type, name);
    view_.setMissing(objPath, type, &missing_);
    for (std::string const& name : names) view_.addMissingName(name);
  }

  Strings childPaths(std::string const& path) const {
    Strings out{"before"};
    bool const found = view_.getChildObjectPaths(path, out);
    EXPECT_EQ(found, !out.empty());
    return out;
  }
  Strings namesByType(std::string const& path, std::string const& type) const {
    Strings out{"before"};
    bool const found = view_.getChildObjectNamesByType(path, type, out);
    EXPECT_EQ(found, !out.empty());
    return out;
  }
  Strings pathsByType(std::string const& path, std::string const& type) const {
    Strings out{"before"};
    bool const found = view_.getChildObjectPathsByType(path, type, out);
    EXPECT_EQ(found, !out.empty());
    // Visits give the same children.
    Strings visited;
    EXPECT_FALSE(view_.anyChildOfType(path, type, [&](std::string const& child) {
      visited.push_back(child);
      return false;
    }));
    EXPECT_EQ(visited, out);
    return out;
  }

  DynamicTDF model_;
  DynamicTDF missing_;
  View view_{&model_};
};

/// All thirteen reads of the view give what the model gives.
void expectSameReads(ModelTDF const& view, ModelTDF const& model) {
  for (std::string const path : {"", "/", "/Case", "/Case/Domain:casing", "/Case/Domain:casing/Boundary:inlet",
                                 "/Case/Output", "/Case/Solver", "/None"}) {
    SCOPED_TRACE(path);
    EXPECT_EQ(view.hasObject(path), model.hasObject(path));
    EXPECT_EQ(view.getObjectName(path), model.getObjectName(path));
    EXPECT_EQ(view.getObjectType(path), model.getObjectType(path));
    Strings seen{"before"};
    Strings expected{"before"};
    EXPECT_EQ(view.getParameterNames(path, seen), model.getParameterNames(path, expected));
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(view.getChildObjectPaths(path, seen), model.getChildObjectPaths(path, expected));
    EXPECT_EQ(seen, expected);
    for (std::string const type : {"Case", "Domain", "Boundary", "Output"}) {
      EXPECT_EQ(view.getChildObjectNamesByType(path, type, seen),
                model.getChildObjectNamesByType(path, type, expected));
      EXPECT_EQ(seen, expected);
      EXPECT_EQ(view.getChildObjectPathsByType(path, type, seen),
                model.getChildObjectPathsByType(path, type, expected));
      EXPECT_EQ(seen, expected);
    }
    for (std::string const name : {"Title", "Regime", "Models", "Kind", "Interval"}) {
      SCOPED_TRACE(name);
      std::string const paramPath = path + "/" + name;
      EXPECT_EQ(view.hasParameter(path, name), model.hasParameter(path, name));
      EXPECT_EQ(view.hasParameter(paramPath), model.hasParameter(paramPath));
      EXPECT_EQ(view.getParameterValue(path, name), model.getParameterValue(path, name));
      EXPECT_EQ(view.getParameterValue(paramPath), model.getParameterValue(paramPath));
      EXPECT_EQ(view.getParamValueAsList(path, name, seen), model.getParamValueAsList(path, name, expected));
      EXPECT_EQ(seen, expected);
      EXPECT_EQ(view.getParamValueAsList(paramPath, seen), model.getParamValueAsList(paramPath, expected));
      EXPECT_EQ(seen, expected);
    }
  }
}

TEST_F(PVModelTDF, WithNothingMissingEveryReadGivesWhatTheModelGives) {
  expectSameReads(view_, model_);
}

TEST_F(PVModelTDF, OnceTheMissingObjectsAreClearedEveryReadGivesWhatTheModelGivesAgain) {
  showNamed("/Case", "Domain", {"rotor", "stator"});
  view_.clearMissing();
  expectSameReads(view_, model_);
  EXPECT_FALSE(view_.hasObject("/Case/Domain:rotor"));
}

TEST_F(PVModelTDF, ClearingForgetsTheNames) {
  showNamed("/Case", "Domain", {"rotor"});
  view_.clearMissing();
  showSingleton("/Case", "Solver");
  EXPECT_TRUE(view_.isInMissingSubtree("/Case/Solver/Time"));
}

TEST_F(PVModelTDF, AParameterPathWithoutASlashIsBothObjectPathAndName) {
  DynamicTDF odd;
  odd.setParameter("/Case", "Case", "yes");
  View const view(&odd);
  EXPECT_FALSE(view.hasParameter("Case"));
  EXPECT_EQ(view.getParameterValue("Title"), "");
  EXPECT_TRUE(view_.hasParameter("/Title"));
  EXPECT_FALSE(view_.hasParameter("Title"));
}

TEST_F(PVModelTDF, APlaceholderIsAnObjectOfTheModel) {
  showSingleton("/Case", "Solver");
  EXPECT_TRUE(view_.hasObject("/Case/Solver"));
  EXPECT_TRUE(view_.hasObject("/Case/Output"));
  EXPECT_EQ(view_.getObjectType("/Case/Solver"), "Solver");
  EXPECT_EQ(view_.getObjectName("/Case/Solver"), "Solver");
  EXPECT_FALSE(model_.hasObject("/Case/Solver"));
}

TEST_F(PVModelTDF, AnyObjectOfTheMissingModelIsFound) {
  showSingleton("/Case", "Solver");
  missing_.createObject("/Case/Elsewhere", "Object", "");
  EXPECT_TRUE(view_.hasObject("/Case/Elsewhere/Object"));
}

TEST_F(PVModelTDF, TheSubtreeOfASingletonIsReadFromTheMissingModel) {
  showSingleton("/Case", "Solver");
  missing_.setParameter("/Case/Solver/Time", "Step", "0.1,0.2");
  EXPECT_TRUE(view_.hasParameter("/Case/Solver/Time", "Step"));
  EXPECT_TRUE(view_.hasParameter("/Case/Solver/Time/Step"));
  EXPECT_EQ(view_.getParameterValue("/Case/Solver/Time", "Step"), "0.1,0.2");
  EXPECT_EQ(view_.getParameterValue("/Case/Solver/Time/Step"), "0.1,0.2");
  Strings items;
  EXPECT_TRUE(view_.getParamValueAsList("/Case/Solver/Time", "Step", items));
  EXPECT_THAT(items, ElementsAre("0.1", "0.2"));
  items.clear();
  EXPECT_TRUE(view_.getParamValueAsList("/Case/Solver/Time/Step", items));
  EXPECT_THAT(items, ElementsAre("0.1", "0.2"));
  EXPECT_THAT(childPaths("/Case/Solver"), ElementsAre("/Case/Solver/Time"));
  EXPECT_THAT(namesByType("/Case/Solver", "Time"), ElementsAre("Time"));
  EXPECT_THAT(pathsByType("/Case/Solver", "Time"), ElementsAre("/Case/Solver/Time"));
  EXPECT_EQ(view_.getObjectType("/Case/Solver/Time"), "Time");
}

TEST_F(PVModelTDF, OutsideTheSubtreeEverythingIsReadFromTheModel) {
  showSingleton("/Case", "Solver");
  missing_.setParameter("/Case", "Regime", "Laminar");
  EXPECT_EQ(view_.getParameterValue("/Case", "Regime"), "Turbulent");
  EXPECT_EQ(view_.getParameterValue("/Case/Regime"), "Turbulent");
  EXPECT_THAT(childPaths("/Case/Domain:casing"), ElementsAre("/Case/Domain:casing/Boundary:inlet"));
}

TEST_F(PVModelTDF, ASiblingWhoseTypeBeginsWithTheMissingTypeCountsAsInTheSubtree) {
  showSingleton("/Case", "Out");
  EXPECT_TRUE(view_.isInMissingSubtree("/Case/Out"));
  EXPECT_TRUE(view_.isInMissingSubtree("/Case/Output"));
  EXPECT_TRUE(view_.isInMissingSubtree("/Case/OutOther:a"));
  EXPECT_TRUE(view_.isInMissingSubtree("/Case/Out/Deep:er/Object"));
  EXPECT_FALSE(view_.isInMissingSubtree("/Case/Ou"));
  EXPECT_FALSE(view_.isInMissingSubtree("/Case"));
  EXPECT_FALSE(view_.isInMissingSubtree("/Other/Out"));
  EXPECT_FALSE(view_.hasParameter("/Case/Output", "Interval"));
}

TEST_F(PVModelTDF, OfNamedObjectsOnlyALaterNameOfTheirsLeadsIntoTheSubtree) {
  showNamed("/Case", "Domain", {"a", "b"});
  EXPECT_FALSE(view_.isInMissingSubtree("/Case/Domain:a"));
  EXPECT_FALSE(view_.isInMissingSubtree("/Case/Domain:a/Solver"));
  EXPECT_FALSE(view_.isInMissingSubtree("/Case/Domain:a/Boundary:inlet"));
  EXPECT_TRUE(view_.isInMissingSubtree("/Case/Domain:a/Boundary:b"));
  EXPECT_TRUE(view_.isInMissingSubtree("/Case/Domain:a/Boundary:b/Kind"));
  EXPECT_TRUE(view_.isInMissingSubtree("/Case/Domain:x/Boundary:a"));
  EXPECT_FALSE(view_.isInMissingSubtree("/Case/Domain:a/Boundary:x/Layer:b"));
  EXPECT_FALSE(view_.isInMissingSubtree("/Case/Domain"));
  EXPECT_FALSE(view_.isInMissingSubtree("/Case/Domain:a/Boundary:"));
  // If a longer type begins with this type, its first ":" is taken for a later one.
  EXPECT_TRUE(view_.isInMissingSubtree("/Case/Domains:a"));
}

TEST_F(PVModelTDF, ANamedPlaceholderIsThereButReadFromTheModel) {
  showNamed("/Case", "Domain", {"rotor"});
  missing_.setParameter("/Case/Domain:rotor", "Motion", "Rotating");
  missing_.createObject("/Case/Domain:rotor", "Boundary", "inlet");
  EXPECT_TRUE(view_.hasObject("/Case/Domain:rotor"));
  EXPECT_EQ(view_.getObjectName("/Case/Domain:rotor"), "");
  EXPECT_FALSE(view_.hasParameter("/Case/Domain:rotor", "Motion"));
  EXPECT_THAT(namesByType("/Case/Domain:rotor", "Boundary"), IsEmpty());
  EXPECT_THAT(childPaths("/Case/Domain:rotor"), IsEmpty());
}

TEST_F(PVModelTDF, AParameterPathIsJudgedAsAWhole) {
  showNamed("/Case", "Domain", {"rotor"});
  missing_.setParameter("/Case/Domain:rotor", "Speed:rotor", "1");
  EXPECT_TRUE(view_.hasParameter("/Case/Domain:rotor/Speed:rotor"));
  EXPECT_FALSE(view_.hasParameter("/Case/Domain:rotor", "Speed:rotor"));
}

TEST_F(PVModelTDF, ListingsByTypeGiveThePlaceholdersAheadOfRealObjects) {
  showNamed("/Case", "Domain", {"stator", "rotor"});
  EXPECT_THAT(namesByType("/Case", "Domain"), ElementsAre("stator", "rotor", "casing"));
  EXPECT_THAT(pathsByType("/Case", "Domain"),
              ElementsAre("/Case/Domain:stator", "/Case/Domain:rotor", "/Case/Domain:casing"));
}

TEST_F(PVModelTDF, ListingsByTypeWithoutRealObjectsGiveThePlaceholders) {
  showNamed("/Case", "Material", {"Water"});
  EXPECT_THAT(namesByType("/Case", "Material"), ElementsAre("Water"));
}

TEST_F(PVModelTDF, ListingsOfAnotherTypeOrObjectAreThoseOfTheModel) {
  showNamed("/Case", "Domain", {"rotor"});
  EXPECT_THAT(namesByType("/Case", "Output"), ElementsAre("Output"));
  EXPECT_THAT(namesByType("/Case/Domain:casing", "Boundary"), ElementsAre("inlet"));
  EXPECT_THAT(namesByType("/Case/Domain:casing", "Domain"), IsEmpty());
}

TEST_F(PVModelTDF, AListingIsTrueWhenItHoldsAnythingEvenIfTheModelHasNothing) {
  showNamed("/Case", "Material", {"Water"});
  Strings out;
  EXPECT_TRUE(view_.getChildObjectNamesByType("/Case", "Material", out));
  EXPECT_FALSE(view_.getChildObjectNamesByType("/Case", "Phase", out));
}

TEST_F(PVModelTDF, ChildPathsShowPlaceholdersAheadOfTheFirstRealObjectOfTheirType) {
  model_.setParameter("/Case/Domain:volute", "Models", "Heat");
  showNamed("/Case", "Domain", {"stator", "rotor"});
  EXPECT_THAT(childPaths("/Case"), ElementsAre("/Case/Domain:stator", "/Case/Domain:rotor", "/Case/Domain:casing",
                                               "/Case/Output", "/Case/Domain:volute"));
}

TEST_F(PVModelTDF, ChildPathsDoNotShowPlaceholdersWithoutARealObjectOfTheirType) {
  showNamed("/Case", "Material", {"Water"});
  EXPECT_THAT(childPaths("/Case"), ElementsAre("/Case/Domain:casing", "/Case/Output"));
}

TEST_F(PVModelTDF, ASingletonAtTheEndOfAPathMarksThePlaceOfThePlaceholders) {
  showSingleton("/Case", "put");  // the text of the type is what counts
  EXPECT_THAT(childPaths("/Case"), ElementsAre("/Case/Domain:casing", "/Case/put", "/Case/Output"));
}

TEST_F(PVModelTDF, AnObjectWhoseTypeBeginsWithTheMissingTypeDoesNotMarkThePlaceOfThePlaceholders) {
  DynamicTDF model;
  model.setParameter("/DomainGroup:all", "Models", "Heat");
  model.setParameter("/Domain:casing", "Models", "Heat");
  View view(&model);
  missing_.createObject("", "Domain", "rotor");
  view.setMissing("", "Domain", &missing_);
  Strings out;
  EXPECT_TRUE(view.getChildObjectPaths("", out));
  EXPECT_THAT(out, ElementsAre("/DomainGroup:all", "/Domain:rotor", "/Domain:casing"));
}

TEST_F(PVModelTDF, OnlyTheFirstPlaceWithTheTypeInAPathCounts) {
  DynamicTDF model;
  model.setParameter("/Domain:a/Domain:b", "Models", "Heat");
  View view(&model);
  missing_.createObject("/Domain:a", "Domain", "c");
  view.setMissing("/Domain:a", "Domain", &missing_);
  Strings out;
  EXPECT_TRUE(view.getChildObjectPaths("/Domain:a", out));
  EXPECT_THAT(out, ElementsAre("/Domain:a/Domain:b"));
}

TEST_F(PVModelTDF, NamesOfParametersAlwaysComeFromTheModel) {
  showSingleton("/Case", "Solver");
  missing_.setParameter("/Case/Solver", "Scheme", "Upwind");
  Strings names{"before"};
  EXPECT_FALSE(view_.getParameterNames("/Case/Solver", names));
  EXPECT_THAT(names, ElementsAre("before"));
  EXPECT_TRUE(view_.getParameterNames("/Case", names));
  EXPECT_THAT(names, ElementsAre("Regime"));
}

}  // namespace
}  // namespace tarn
