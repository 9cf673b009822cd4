// Which bounds count as changed, within one batch and from batch to batch.

#include <tarn/BoundsTracker.h>

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "PhysicalDependency/trackers/StatedParam.h"

namespace tarn {
namespace {

using test::StatedParam;
using Updates = std::map<std::string, std::pair<std::string, std::string>>;

std::string const inlet = "/Case/Domain:rotor/Boundary:inlet";

class BoundsTrackerTest : public testing::Test {
 protected:
  void see(std::string const& lower, std::string const& upper) {
    StatedParam const info = StatedParam(TDFParam::Real).dynamicBounds(lower, upper);
    tracker_.updateBounds(inlet, "Mach Number", &info);
  }
  static Updates mach(std::string const& lower, std::string const& upper) {
    return {{inlet + "/Mach Number", {lower, upper}}};
  }

  BoundsTracker tracker_;
};

TEST_F(BoundsTrackerTest, ANewTrackerHasNoUpdates) {
  EXPECT_EQ(tracker_.getUpdatedBounds(), Updates());
}

TEST_F(BoundsTrackerTest, TheFirstSightingIsAnUpdate) {
  see("0", "0.3");
  EXPECT_EQ(tracker_.getUpdatedBounds(), mach("0", "0.3"));
}

TEST_F(BoundsTrackerTest, TheFirstSightingIsAnUpdateWithEmptyBoundsToo) {
  see("", "");
  EXPECT_EQ(tracker_.getUpdatedBounds(), mach("", ""));
}

TEST_F(BoundsTrackerTest, TheSameBoundsInTheNextBatchAreNoUpdate) {
  see("0", "0.3");
  tracker_.reset();
  see("0", "0.3");
  EXPECT_EQ(tracker_.getUpdatedBounds(), Updates());
}

TEST_F(BoundsTrackerTest, ALowerBoundThatMovedIsAnUpdate) {
  see("0", "0.3");
  tracker_.reset();
  see("0.1", "0.3");
  EXPECT_EQ(tracker_.getUpdatedBounds(), mach("0.1", "0.3"));
}

TEST_F(BoundsTrackerTest, AnUpperBoundThatMovedIsAnUpdate) {
  see("0", "0.3");
  tracker_.reset();
  see("0", "5");
  EXPECT_EQ(tracker_.getUpdatedBounds(), mach("0", "5"));
}

TEST_F(BoundsTrackerTest, BoundsAreComparedAsTexts) {
  see("0", "1");
  tracker_.reset();
  see("0", "1.0");
  EXPECT_EQ(tracker_.getUpdatedBounds(), mach("0", "1.0"));
}

TEST_F(BoundsTrackerTest, OfTwoMovesInABatchTheFirstIsTold) {
  see("0", "0.3");
  see("0", "5");
  EXPECT_EQ(tracker_.getUpdatedBounds(), mach("0", "0.3"));
}

TEST_F(BoundsTrackerTest, OfTwoMovesInABatchTheLastIsWhatTheNextBatchIsComparedWith) {
  see("0", "0.3");
  see("0", "5");
  tracker_.reset();
  see("0", "5");
  EXPECT_EQ(tracker_.getUpdatedBounds(), Updates());
  see("0", "0.3");
  EXPECT_EQ(tracker_.getUpdatedBounds(), mach("0", "0.3"));
}

TEST_F(BoundsTrackerTest, BoundsThatGoAndComeBackInABatchAreToldAsTheyWereFirst) {
  see("0", "0.3");
  see("0", "5");
  see("0", "0.3");
  EXPECT_EQ(tracker_.getUpdatedBounds(), mach("0", "0.3"));
}

TEST_F(BoundsTrackerTest, AParameterThatComesBackWithItsOldBoundsIsNoUpdate) {
  see("0", "0.3");
  tracker_.reset();
  tracker_.reset();  // a batch in which the parameter was not there
  see("0", "0.3");
  EXPECT_EQ(tracker_.getUpdatedBounds(), Updates());
}

TEST_F(BoundsTrackerTest, ParametersOfOneNameInTwoObjectsAreTwo) {
  StatedParam const info = StatedParam(TDFParam::Real).dynamicBounds("0", "1");
  tracker_.updateBounds("/Case/Domain:rotor", "Relaxation", &info);
  tracker_.updateBounds("/Case", "Relaxation", &info);
  Updates const both{{"/Case/Domain:rotor/Relaxation", {"0", "1"}}, {"/Case/Relaxation", {"0", "1"}}};
  EXPECT_EQ(tracker_.getUpdatedBounds(), both);
}

TEST_F(BoundsTrackerTest, FixedBoundsAreNotTrackedAndNotEvaluated) {
  StatedParam const info = StatedParam(TDFParam::Real).fixedBounds("0", "1");
  tracker_.updateBounds(inlet, "Mach Number", &info);
  EXPECT_EQ(tracker_.getUpdatedBounds(), Updates());
  EXPECT_EQ(info.boundsAsked(), 0);
}

TEST_F(BoundsTrackerTest, ADisabledTrackerLeavesWhatWasSeenStale) {
  see("0", "0.3");
  tracker_.reset();
  tracker_.enable(false);
  see("0", "5");
  EXPECT_EQ(tracker_.getUpdatedBounds(), Updates());
  tracker_.enable(true);
  see("0", "0.3");
  EXPECT_EQ(tracker_.getUpdatedBounds(), Updates());
  see("0", "5");
  EXPECT_EQ(tracker_.getUpdatedBounds(), mach("0", "5"));
}

TEST_F(BoundsTrackerTest, NumericTypesAreTrackedAndOthersAreNotEvenAskedForBounds) {
  std::vector<std::pair<TDFParam::Type, bool>> const isTracked{
      {TDFParam::Integer, true},      {TDFParam::IntegerList, true}, {TDFParam::Logical, false},
      {TDFParam::LogicalList, false}, {TDFParam::Real, true},        {TDFParam::RealList, true},
      {TDFParam::String, false},      {TDFParam::StringList, false}};
  for (auto const& [type, tracked] : isTracked) {
    SCOPED_TRACE(TDFParam::typeName(type));
    BoundsTracker tracker;
    StatedParam const info = StatedParam(type).dynamicBounds("0", "1");
    tracker.updateBounds("/Case", "Steps", &info);
    EXPECT_EQ(!tracker.getUpdatedBounds().empty(), tracked);
    EXPECT_EQ(info.boundsAsked() > 0, tracked);
  }
}

}  // namespace
}  // namespace tarn
