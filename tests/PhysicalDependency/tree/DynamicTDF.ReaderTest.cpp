// Reads of a tree by handles: what they find, and when a handle goes out of force.

#include <tarn/DynamicTDF.h>
#include <tarn/ObjectReader.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DynamicTDFReader : public testing::Test {
 protected:
  DynamicTDFReader() {
    tree_.setParameter("/Case", "Flow Regime", "Turbulent");
    tree_.setParameter("/Case/Domain:rotor", "Motion", "Rotating");
    tree_.setParameter("/Case/Domain:rotor", "Notes", "");
    tree_.createObject("/Case", "Solver", "");
    tree_.createObject("/Case", "Domain", "stator");
  }

  [[nodiscard]] ObjectReader const& reader() const { return *tree_.objectReader(); }
  [[nodiscard]] ObjectHandle find(std::string const& path) const { return reader().findObject(path); }
  [[nodiscard]] bool isInForce(ObjectHandle const& object) const { return object.readerIn(tree_) != nullptr; }

  /// The names of the children, each with a star if it has a handle.
  [[nodiscard]] std::vector<std::string> children(std::string const& path, std::string const& type) const {
    std::vector<ObjectReader::Child> found{{"before", {}}};
    reader().getChildren(find(path), type, found);
    std::vector<std::string> names;
    for (auto const& [name, object] : found) names.push_back(name + (object.isEmpty() ? "" : "*"));
    return names;
  }

  DynamicTDF tree_;
};

TEST_F(DynamicTDFReader, AnObjectIsFoundUnderItsPathOnly) {
  EXPECT_TRUE(isInForce(find("")));
  EXPECT_TRUE(isInForce(find("/Case/Domain:rotor")));
  EXPECT_TRUE(find("/Case/Domain").isEmpty());
  EXPECT_FALSE(isInForce(find("/Case/Domain")));
}

TEST_F(DynamicTDFReader, AValueIsReadAndAnAbsentParameterIsNull) {
  ObjectHandle const rotor = find("/Case/Domain:rotor");
  EXPECT_EQ(*reader().findParameterValue(rotor, "Motion"), "Rotating");
  EXPECT_EQ(*reader().findParameterValue(rotor, "Notes"), "");
  EXPECT_EQ(reader().findParameterValue(rotor, "Flow Regime"), nullptr);
}

TEST_F(DynamicTDFReader, AValueIsReadAsItIsNow) {
  ObjectHandle const rotor = find("/Case/Domain:rotor");
  tree_.setParameter("/Case/Domain:rotor", "Motion", "Stationary");
  tree_.setParameter("/Case/Domain:fan", "Motion", "Rotating");
  ASSERT_TRUE(isInForce(rotor));
  EXPECT_EQ(*reader().findParameterValue(rotor, "Motion"), "Stationary");
}

TEST_F(DynamicTDFReader, TheSingletonIsTheChildWithoutAName) {
  EXPECT_TRUE(isInForce(reader().findSingleton(find("/Case"), "Solver")));
  EXPECT_TRUE(reader().findSingleton(find("/Case"), "Domain").isEmpty());
  EXPECT_TRUE(reader().findSingleton(find("/Case"), "Output").isEmpty());
}

TEST_F(DynamicTDFReader, ChildrenOfATypeComeInTheOrderOfTheTree) {
  EXPECT_THAT(children("/Case", "Domain"), ElementsAre("rotor*", "stator*"));
  EXPECT_THAT(children("/Case", "Output"), IsEmpty());
}

TEST_F(DynamicTDFReader, AChildThatIsListedUnderANameItIsNotFoundUnderHasNoHandle) {
  EXPECT_THAT(children("/Case", "Solver"), ElementsAre("Solver"));
}

TEST_F(DynamicTDFReader, AHandleGoesOutOfForceWhenAnObjectIsDeleted) {
  ObjectHandle const rotor = find("/Case/Domain:rotor");
  tree_.deleteObject("/Case/Domain:rotor");
  EXPECT_FALSE(isInForce(rotor));
  tree_.createObject("/Case", "Domain", "rotor");
  EXPECT_FALSE(isInForce(rotor));
}

TEST_F(DynamicTDFReader, AHandleGoesOutOfForceWhenTheTreeIsLoaded) {
  ObjectHandle const rotor = find("/Case/Domain:rotor");
  ModelState const state = tree_.getState("");
  tree_.initialise(state.begin(), state.end());
  EXPECT_FALSE(isInForce(rotor));
}

TEST_F(DynamicTDFReader, AHandleIsOfTheTreeThatHasTheObjectAfterASwap) {
  ObjectHandle const rotor = find("/Case/Domain:rotor");
  DynamicTDF other;
  tree_.swap(other);
  EXPECT_EQ(rotor.readerIn(tree_), nullptr);
  ASSERT_NE(rotor.readerIn(other), nullptr);
  EXPECT_EQ(*rotor.readerIn(other)->findParameterValue(rotor, "Motion"), "Rotating");
}

TEST_F(DynamicTDFReader, AHandleIsNotInForceInAnotherModel) {
  DynamicTDF const other;
  EXPECT_EQ(find("/Case").readerIn(other), nullptr);
}

TEST_F(DynamicTDFReader, ChildrenAreVisitedAsTheyAreListedUntilOneIsFound) {
  for (int i = 0; i < 40; ++i) tree_.createObject("/Case", "Probe", "p" + std::to_string(i));
  for (char const* type : {"Domain", "Solver", "Probe", "Boundary"}) {
    std::vector<std::string> listed;
    tree_.getChildObjectPathsByType("/Case", type, listed);
    std::vector<std::string> visited;
    EXPECT_FALSE(tree_.anyChildOfType("/Case", type, [&](std::string const& child) {
      visited.push_back(child);
      return false;
    }));
    EXPECT_EQ(visited, listed) << type;
  }
  int visits = 0;
  EXPECT_TRUE(tree_.anyChildOfType("/Case", "Probe", [&](std::string const&) { return ++visits == 3; }));
  EXPECT_EQ(visits, 3);
  EXPECT_FALSE(tree_.anyChildOfType("/Elsewhere", "Probe", [](std::string const&) { return true; }));
}

TEST(DynamicTDFWithReads, AClassThatListsOtherChildrenIsAskedForItsList) {
  class OneProbe : public DynamicTDF {
   public:
    bool getChildObjectPathsByType(std::string const& /*path*/, std::string const& /*type*/,
                                   std::vector<std::string>& out) const override {
      out = {"/Case/Probe:only"};
      return true;
    }
  };
  OneProbe const model;
  EXPECT_TRUE(
      model.anyChildOfType("/Case", "Probe", [](std::string const& child) { return child == "/Case/Probe:only"; }));
}

TEST(DynamicTDFWithReads, AClassThatMayAnswerOtherwiseOffersNoReader) {
  class Doubled : public DynamicTDF {};
  EXPECT_EQ(Doubled().objectReader(), nullptr);
}

}  // namespace
}  // namespace tarn
