#include <tarn/RecordingModel.h>

#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/MapModel.h"

namespace tarn::test {
namespace {

MapModel pump() {
  return MapModel{{"/Case/Domain:rotor", {{"Motion", "Rotating"}}}, {"/Case/Domain:stator", {}}};
}

TEST(RecordingModel, EachFactIsListedOnceWithItsAnswer) {
  MapModel const model = pump();
  RecordingModel recording(model);
  EXPECT_EQ(recording.getParameterValue("/Case/Domain:rotor", "Motion"), "Rotating");
  EXPECT_EQ(recording.getParameterValue("/Case/Domain:rotor/Motion"), "Rotating");
  EXPECT_FALSE(recording.hasObject("/Case/Domain:casing"));
  ASSERT_EQ(recording.reads().size(), 2U);
  EXPECT_EQ(recording.reads()[0].value, "Rotating");
  EXPECT_TRUE(recording.reads()[0].isPresent);
  EXPECT_EQ(recording.reads()[1].kind, ModelRead::Kind::Object);
  EXPECT_FALSE(recording.reads()[1].isPresent);
}

TEST(RecordingModel, ValueReplacesThePresenceOfTheSameParameter) {
  MapModel const model = pump();
  RecordingModel recording(model);
  EXPECT_TRUE(recording.hasParameter("/Case/Domain:rotor", "Motion"));
  EXPECT_EQ(recording.reads().front().kind, ModelRead::Kind::Presence);
  EXPECT_EQ(recording.reads().front().value, "");
  (void)recording.getParameterValue("/Case/Domain:rotor", "Motion");
  ASSERT_EQ(recording.reads().size(), 1U);
  EXPECT_EQ(recording.reads().front().kind, ModelRead::Kind::Value);
  EXPECT_EQ(recording.reads().front().value, "Rotating");
}

TEST(RecordingModel, NamesAndPathsOfChildrenAreOneFact) {
  MapModel const model = pump();
  RecordingModel recording(model);
  std::vector<std::string> found;
  EXPECT_TRUE(recording.getChildObjectNamesByType("/Case", "Domain", found));
  EXPECT_EQ(found, (std::vector<std::string>{"rotor", "stator"}));
  EXPECT_TRUE(recording.getChildObjectPathsByType("/Case", "Domain", found));
  ASSERT_EQ(recording.reads().size(), 1U);
  EXPECT_EQ(recording.reads().front().items, (std::vector<std::string>{"/Case/Domain:rotor", "/Case/Domain:stator"}));
}

TEST(RecordingModel, ChildrenThatAreAskedOneByOneCountAsTheWholeList) {
  MapModel const model = pump();
  RecordingModel recording(model);
  std::vector<std::string> asked;
  EXPECT_TRUE(recording.anyChildOfType("/Case", "Domain", [&](std::string const& child) {
    asked.push_back(child);
    return true;
  }));
  EXPECT_EQ(asked, (std::vector<std::string>{"/Case/Domain:rotor"}));
  std::vector<std::string> found;
  EXPECT_TRUE(recording.getChildObjectPathsByType("/Case", "Domain", found));
  ASSERT_EQ(recording.reads().size(), 1U);
  EXPECT_EQ(recording.reads().front().items, found);
  EXPECT_EQ(recording.reads().front().itemCount, 2U);
  EXPECT_TRUE(recording.reads().front().isPresent);
}

TEST(RecordingModel, ChildrenThatAreAskedOneByOneGoToTheSinkEachTime) {
  MapModel const model = pump();
  RecordingModel recording(model);
  recording.recordAll(false);
  auto const never = [](std::string const&) { return false; };
  for (int i = 0; i < 2; ++i) {
    std::vector<std::size_t> reads;
    recording.setSink(&reads);
    EXPECT_FALSE(recording.anyChildOfType("/Case", "Boundary", never));
    recording.setSink(nullptr);
    EXPECT_EQ(reads, (std::vector<std::size_t>{0}));
  }
  EXPECT_FALSE(recording.reads().front().isPresent);
}

TEST(RecordingModel, SinkGetsEachReadSinceItWasSet) {
  MapModel const model = pump();
  RecordingModel recording(model);
  recording.recordAll(false);
  (void)recording.hasObject("/Case");
  std::vector<std::size_t> first;
  recording.setSink(&first);
  (void)recording.hasObject("/Case/Domain:rotor");
  std::vector<std::size_t> second;
  recording.setSink(&second);
  (void)recording.hasObject("/Case/Domain:stator");
  (void)recording.hasObject("/Case/Domain:rotor");
  recording.setSink(nullptr);
  EXPECT_EQ(first, (std::vector<std::size_t>{0}));
  EXPECT_EQ(second, (std::vector<std::size_t>{1, 0}));
  EXPECT_EQ(recording.reads().size(), 2U);
}

TEST(RecordingModel, ReadsBeyondTheLimitAreLeftOut) {
  MapModel const model = pump();
  RecordingModel recording(model, 2);
  for (char const* path : {"/Case", "/Case/Domain:rotor"}) (void)recording.hasObject(path);
  EXPECT_FALSE(recording.isOverfull());
  EXPECT_TRUE(recording.hasObject("/Case/Domain:stator"));
  EXPECT_TRUE(recording.isOverfull());
  EXPECT_EQ(recording.reads().size(), 2U);
}

TEST(RecordingModel, LongValuesAndListsAreCutOff) {
  MapModel model;
  model.set("/Case", "Comment", std::string(10'000, 'c'));
  for (int i = 0; i < 200; ++i) model.add("/Case/Domain:d" + std::to_string(i));
  RecordingModel recording(model);
  EXPECT_EQ(recording.getParameterValue("/Case", "Comment").size(), 10'000U);
  std::vector<std::string> found;
  recording.getChildObjectPaths("/Case", found);
  EXPECT_EQ(recording.reads()[0].value.size(), ModelRead::maxValue);
  EXPECT_EQ(recording.reads()[1].items.size(), ModelRead::maxItems);
  EXPECT_EQ(recording.reads()[1].itemCount, 200U);
}

}  // namespace
}  // namespace tarn::test
