// The comparison of two walks, and the answers in each state of the tracker.

#include <tarn/PotentialUpdateTracker.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <tarn/DynamicTDF.h>

#include "support/AllowedValues.h"

namespace tarn {
namespace {

using test::allowing;
using Strings = std::vector<std::string>;
using Pairs = std::vector<std::pair<std::string, std::string>>;

Pairs listOf(PotentialUpdateTracker::Params const& params) {
  return {params.begin(), params.end()};
}

std::string const rotor = "/Case/Domain:rotor";
std::string const stator = "/Case/Domain:stator";

class PotentialUpdateTrackerTest : public testing::Test {
 protected:
  using Finds = std::function<void(PotentialUpdateTracker&)>;

  /// A walk that finds what `finds` adds, and is compared.
  void walk(Finds const& finds) {
    tracker_.start();
    finds(tracker_);
    tracker_.synchWithTDF(&model_);
  }

  void expectNoComparison() const {
    EXPECT_EQ(tracker_.getAddedObjects(), Strings());
    EXPECT_EQ(tracker_.getDeletedObjects(), Strings());
    EXPECT_EQ(listOf(tracker_.getAddedParams()), Pairs());
    EXPECT_EQ(listOf(tracker_.getChangedParams()), Pairs());
    EXPECT_EQ(listOf(tracker_.getDeletedParams()), Pairs());
  }

  DynamicTDF model_;
  PotentialUpdateTracker tracker_;
};

void findNothing(PotentialUpdateTracker&) {}

// Parameters from one walk to the next.

TEST_F(PotentialUpdateTrackerTest, AllThatTheFirstWalkFindsIsAdded) {
  walk([](auto& found) {
    found.addObject("/Case/Solver");
    found.addParam(rotor, "Title");
    found.addParam("/Case", "Fluid", allowing({"Water"}));
  });
  EXPECT_EQ(tracker_.getAddedObjects(), (Strings{"/Case/Solver"}));
  EXPECT_EQ(listOf(tracker_.getAddedParams()), (Pairs{{"/Case", "Fluid"}, {rotor, "Title"}}));
  EXPECT_EQ(tracker_.getDeletedObjects(), Strings());
  EXPECT_EQ(listOf(tracker_.getDeletedParams()), Pairs());
  EXPECT_EQ(listOf(tracker_.getChangedParams()), Pairs());
}

TEST_F(PotentialUpdateTrackerTest, WhatWasPotentialAndStillIsIsNotTold) {
  auto const finds = [](auto& found) {
    found.addObject("/Case/Solver");
    found.addParam(rotor, "Title");
    found.addParam("/Case", "Fluid", allowing({"Water"}));
  };
  walk(finds);
  walk(finds);
  expectNoComparison();
  EXPECT_EQ(tracker_.getObjects(), (Strings{"/Case/Solver"}));
  EXPECT_EQ(listOf(tracker_.getParams()), (Pairs{{"/Case", "Fluid"}, {rotor, "Title"}}));
}

TEST_F(PotentialUpdateTrackerTest, AParameterThatTheModelHeldAndIsPotentialNowIsAdded) {
  walk(findNothing);
  model_.setParameter(rotor, "Title", "Impeller");
  walk([](auto& found) { found.addParam(rotor, "Title"); });
  EXPECT_EQ(listOf(tracker_.getAddedParams()), (Pairs{{rotor, "Title"}}));
}

TEST_F(PotentialUpdateTrackerTest, AParameterThatIsNoLongerPotentialAndNotInTheModelIsDeleted) {
  walk([](auto& found) { found.addParam(rotor, "Title"); });
  walk(findNothing);
  EXPECT_EQ(listOf(tracker_.getDeletedParams()), (Pairs{{rotor, "Title"}}));
}

TEST_F(PotentialUpdateTrackerTest, AParameterThatTheModelHoldsNowHasBeenActivatedAndIsNotTold) {
  walk([](auto& found) { found.addParam(rotor, "Title"); });
  model_.setParameter(rotor, "Title", "Impeller");
  walk(findNothing);
  expectNoComparison();
}

TEST_F(PotentialUpdateTrackerTest, OtherAllowedValuesAreAChange) {
  walk([](auto& found) { found.addParam(rotor, "Fluid", allowing({"Water"})); });
  walk([](auto& found) { found.addParam(rotor, "Fluid", allowing({"Water", "Air"})); });
  EXPECT_EQ(listOf(tracker_.getChangedParams()), (Pairs{{rotor, "Fluid"}}));
  EXPECT_EQ(listOf(tracker_.getAddedParams()), Pairs());
  EXPECT_EQ(listOf(tracker_.getDeletedParams()), Pairs());
}

TEST_F(PotentialUpdateTrackerTest, AParameterThatLosesItsAllowedValuesIsChanged) {
  walk([](auto& found) { found.addParam(rotor, "Fluid", allowing({"Water"})); });
  walk([](auto& found) { found.addParam(rotor, "Fluid"); });
  EXPECT_EQ(listOf(tracker_.getChangedParams()), (Pairs{{rotor, "Fluid"}}));
}

TEST_F(PotentialUpdateTrackerTest, AParameterThatGetsAllowedValuesIsChanged) {
  walk([](auto& found) { found.addParam(rotor, "Fluid"); });
  walk([](auto& found) { found.addParam(rotor, "Fluid", allowing({"Water"})); });
  EXPECT_EQ(listOf(tracker_.getChangedParams()), (Pairs{{rotor, "Fluid"}}));
}

TEST_F(PotentialUpdateTrackerTest, OfAnObjectInBothWalksEachParameterIsToldByItself) {
  walk([](auto& found) {
    found.addParam(rotor, "Activated");
    found.addParam(rotor, "Withdrawn");
    found.addParam(rotor, "Kept");
    found.addParam(rotor, "Changed", allowing({"Water"}));
  });
  model_.setParameter(rotor, "Activated", "1");
  walk([](auto& found) {
    found.addParam(rotor, "Changed", allowing({"Air"}));
    found.addParam(rotor, "Offered");
    found.addParam(rotor, "Kept");
  });
  EXPECT_EQ(listOf(tracker_.getAddedParams()), (Pairs{{rotor, "Offered"}}));
  EXPECT_EQ(listOf(tracker_.getDeletedParams()), (Pairs{{rotor, "Withdrawn"}}));
  EXPECT_EQ(listOf(tracker_.getChangedParams()), (Pairs{{rotor, "Changed"}}));
}

TEST_F(PotentialUpdateTrackerTest, OfOneObjectAddedAndDeletedStandInTheOrderOfTheWalkAndChangedInNameOrder) {
  walk([](auto& found) {
    found.addParam(rotor, "Z old");
    found.addParam(rotor, "A old");
    found.addParam(rotor, "Z both", allowing({"Water"}));
    found.addParam(rotor, "A both", allowing({"Water"}));
  });
  walk([](auto& found) {
    found.addParam(rotor, "Z new");
    found.addParam(rotor, "A new");
    found.addParam(rotor, "Z both");
    found.addParam(rotor, "A both");
  });
  EXPECT_EQ(listOf(tracker_.getAddedParams()), (Pairs{{rotor, "Z new"}, {rotor, "A new"}}));
  EXPECT_EQ(listOf(tracker_.getDeletedParams()), (Pairs{{rotor, "Z old"}, {rotor, "A old"}}));
  EXPECT_EQ(listOf(tracker_.getChangedParams()), (Pairs{{rotor, "A both"}, {rotor, "Z both"}}));
}

TEST_F(PotentialUpdateTrackerTest, ObjectsOfOneWalkOnlyAreToldWhereverTheyStandAmongTheOthers) {
  walk([](auto& found) {
    found.addParam("/Case/A", "P");
    found.addParam("/Case/C", "P");
    found.addParam("/Case/E", "P");
  });
  walk([](auto& found) {
    found.addParam("/Case/B", "P");
    found.addParam("/Case/C", "P");
    found.addParam("/Case/F", "P");
  });
  EXPECT_EQ(listOf(tracker_.getAddedParams()), (Pairs{{"/Case/B", "P"}, {"/Case/F", "P"}}));
  EXPECT_EQ(listOf(tracker_.getDeletedParams()), (Pairs{{"/Case/A", "P"}, {"/Case/E", "P"}}));
}

TEST_F(PotentialUpdateTrackerTest, AParameterOfAnotherObjectIsOneAddedAndOneDeletedAndNeverAChange) {
  walk([](auto& found) { found.addParam(rotor, "Fluid", allowing({"Water"})); });
  walk([](auto& found) { found.addParam(stator, "Fluid", allowing({"Air"})); });
  EXPECT_EQ(listOf(tracker_.getAddedParams()), (Pairs{{stator, "Fluid"}}));
  EXPECT_EQ(listOf(tracker_.getDeletedParams()), (Pairs{{rotor, "Fluid"}}));
  EXPECT_EQ(listOf(tracker_.getChangedParams()), Pairs());
}

TEST_F(PotentialUpdateTrackerTest, ANewParameterThatWasFoundTwiceIsToldTwice) {
  walk([](auto& found) { found.addParam(rotor, "Title"); });
  walk([](auto& found) {
    found.addParam(rotor, "Title");
    found.addParam(rotor, "Notes");
    found.addParam(rotor, "Notes");
  });
  EXPECT_EQ(listOf(tracker_.getAddedParams()), (Pairs{{rotor, "Notes"}, {rotor, "Notes"}}));
}

TEST_F(PotentialUpdateTrackerTest, AParameterInBothWalksIsComparedOnceHoweverOftenItWasFound) {
  walk([](auto& found) {
    found.addParam(rotor, "Fluid", allowing({"Water"}));
    found.addParam(rotor, "Fluid", allowing({"Water"}));
  });
  walk([](auto& found) {
    found.addParam(rotor, "Fluid", allowing({"Air"}));
    found.addParam(rotor, "Fluid", allowing({"Air"}));
  });
  EXPECT_EQ(listOf(tracker_.getChangedParams()), (Pairs{{rotor, "Fluid"}}));
}

// Objects from one walk to the next.

TEST_F(PotentialUpdateTrackerTest, ObjectsAreToldInByteOrderAndEachOnce) {
  walk([](auto& found) {
    found.addObject(stator);
    found.addObject(rotor);
    found.addObject(stator);
  });
  EXPECT_EQ(tracker_.getAddedObjects(), (Strings{rotor, stator}));
  walk(findNothing);
  EXPECT_EQ(tracker_.getDeletedObjects(), (Strings{rotor, stator}));
}

TEST_F(PotentialUpdateTrackerTest, AnObjectThatTheModelHoldsNowHasBeenActivatedAndIsNotTold) {
  walk([](auto& found) {
    found.addObject(rotor);
    found.addObject(stator);
  });
  model_.createObject("/Case", "Domain", "rotor");
  walk(findNothing);
  EXPECT_EQ(tracker_.getDeletedObjects(), (Strings{stator}));
}

TEST_F(PotentialUpdateTrackerTest, AnObjectThatIsPotentialNowIsAddedEvenIfTheModelHoldsIt) {
  model_.createObject("/Case", "Domain", "rotor");
  walk([](auto& found) { found.addObject(rotor); });
  EXPECT_EQ(tracker_.getAddedObjects(), (Strings{rotor}));
}

TEST_F(PotentialUpdateTrackerTest, OfTwoWalksTheDifferenceIsTold) {
  walk([](auto& found) {
    found.addObject("/Case/A");
    found.addObject("/Case/B");
  });
  walk([](auto& found) {
    found.addObject("/Case/B");
    found.addObject("/Case/C");
  });
  EXPECT_EQ(tracker_.getAddedObjects(), (Strings{"/Case/C"}));
  EXPECT_EQ(tracker_.getDeletedObjects(), (Strings{"/Case/A"}));
}

// The states.

TEST_F(PotentialUpdateTrackerTest, ANewTrackerIgnoresWhatIsAddedAndComparesNothing) {
  tracker_.addObject(rotor);
  tracker_.addParam(rotor, "Title");
  tracker_.addParam(rotor, "Fluid", allowing({"Water"}));
  tracker_.synchWithTDF(&model_);
  EXPECT_EQ(tracker_.getObjects(), Strings());
  EXPECT_EQ(listOf(tracker_.getParams()), Pairs());
  expectNoComparison();
  walk([](auto& found) { found.addObject(stator); });
  EXPECT_EQ(tracker_.getAddedObjects(), (Strings{stator}));
}

TEST_F(PotentialUpdateTrackerTest, DuringAWalkTheComparisonIsEmptyAndWhatWasFoundShows) {
  walk([](auto& found) {
    found.addObject(rotor);
    found.addParam(rotor, "Fluid", allowing({"Water"}));
  });
  EXPECT_FALSE(tracker_.getAllowedValueData(rotor, "Fluid").isEmpty());
  tracker_.start();
  expectNoComparison();
  tracker_.addObject(stator);
  tracker_.addParam(stator, "Fluid", allowing({"Water"}));
  expectNoComparison();
  EXPECT_EQ(tracker_.getObjects(), (Strings{stator}));
  EXPECT_EQ(listOf(tracker_.getParams()), (Pairs{{stator, "Fluid"}}));
  EXPECT_TRUE(tracker_.hasObjPotentialChildren(stator));
  EXPECT_TRUE(tracker_.getAllowedValueData(stator, "Fluid").isEmpty());
}

TEST_F(PotentialUpdateTrackerTest, WhatIsAddedBehindTheComparisonIsLost) {
  walk(findNothing);
  tracker_.addObject(rotor);
  tracker_.addParam(rotor, "Title");
  EXPECT_EQ(tracker_.getObjects(), Strings());
  EXPECT_EQ(listOf(tracker_.getParams()), Pairs());
}

TEST_F(PotentialUpdateTrackerTest, ComparingTwiceLeavesTheFirstResult) {
  walk([](auto& found) { found.addObject(rotor); });
  walk(findNothing);
  model_.createObject("/Case", "Domain", "rotor");
  tracker_.synchWithTDF(&model_);
  EXPECT_EQ(tracker_.getDeletedObjects(), (Strings{rotor}));
}

TEST_F(PotentialUpdateTrackerTest, StartingTwiceLosesNothing) {
  walk([](auto& found) { found.addObject(rotor); });
  tracker_.start();
  tracker_.addObject(stator);
  tracker_.start();
  tracker_.addObject("/Case/Solver");
  tracker_.synchWithTDF(&model_);
  EXPECT_EQ(tracker_.getObjects(), (Strings{stator, "/Case/Solver"}));
  EXPECT_EQ(tracker_.getAddedObjects(), (Strings{stator, "/Case/Solver"}));
  EXPECT_EQ(tracker_.getDeletedObjects(), (Strings{rotor}));
}

TEST_F(PotentialUpdateTrackerTest, WhatIsClearedDuringAWalkCountsAsGone) {
  auto const finds = [](auto& found) {
    found.addObject(rotor + "/Boundary:inlet");
    found.addParam(rotor, "Title");
    found.addParam(stator, "Title");
  };
  walk(finds);
  model_.setParameter(rotor, "Title", "Impeller");
  tracker_.start();
  finds(tracker_);
  tracker_.clearObjectReferences(rotor);
  tracker_.synchWithTDF(&model_);
  EXPECT_EQ(tracker_.getDeletedObjects(), (Strings{rotor + "/Boundary:inlet"}));
  EXPECT_EQ(listOf(tracker_.getDeletedParams()), Pairs());  // the model holds it
  EXPECT_EQ(listOf(tracker_.getParams()), (Pairs{{stator, "Title"}}));
}

TEST_F(PotentialUpdateTrackerTest, ClearingBehindTheComparisonLeavesTheComparison) {
  walk([](auto& found) { found.addObject(rotor); });
  tracker_.clearObjectReferences(rotor);
  EXPECT_EQ(tracker_.getObjects(), Strings());
  EXPECT_EQ(tracker_.getAddedObjects(), (Strings{rotor}));
}

TEST_F(PotentialUpdateTrackerTest, AWalkThatIsNotPotentialAnywhereIsComparedWithTheOneBeforeItOnly) {
  walk([](auto& found) { found.addObject(rotor); });
  walk(findNothing);
  walk(findNothing);
  expectNoComparison();
  walk([](auto& found) { found.addObject(rotor); });
  EXPECT_EQ(tracker_.getAddedObjects(), (Strings{rotor}));
}

}  // namespace
}  // namespace tarn
