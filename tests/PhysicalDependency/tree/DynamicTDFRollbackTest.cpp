// Rollbacks of a tree to a mark: one situation each. RollbackFailuresTest.cpp makes random ones of all of them.

#include <tarn/DynamicTDF.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "journal/Journal.h"
#include "support/AllowedValues.h"
#include "tree/DynamicTDFImpl.h"
#include "tree/TreeListener.h"

namespace tarn {
namespace {

using Strings = std::vector<std::string>;
using ParamIds = std::vector<DynamicTDF::ParamId>;

std::string const rotor = "/Case/Domain:rotor";

class DynamicTDFRollback : public testing::Test {
 protected:
  DynamicTDFRollback() {
    tree_.setParameter(rotor, "Motion", "Rotating");
    for (char const* const name : {"inlet", "outlet", "wall"}) tree_.createObject(rotor, "Boundary", name);
    DynamicTDFAccess::attach(tree_, journal_);
  }
  template <class Change>
  void changeAndRollBack(Change const& change) {
    Journal::Mark const mark = journal_.mark();
    change();
    journal_.rollback(mark);
  }
  [[nodiscard]] Strings boundaries() const {
    Strings names;
    tree_.getChildObjectNamesByType(rotor, "Boundary", names);
    return names;
  }

  Journal journal_;
  DynamicTDF tree_;
};

TEST_F(DynamicTDFRollback, ADeletedObjectIsBackAtItsPositionAmongItsSiblings) {
  changeAndRollBack([this] { tree_.deleteObject(rotor + "/Boundary:outlet"); });
  EXPECT_EQ(boundaries(), (Strings{"inlet", "outlet", "wall"}));
}

TEST_F(DynamicTDFRollback, ADeletedSubtreeIsBackWhole) {
  tree_.setParameter(rotor + "/Boundary:inlet", "Kind", "Inlet");
  changeAndRollBack([this] {
    tree_.deleteObject("/Case");
    tree_.setParameter("/Case", "Title", "pump");
  });
  EXPECT_EQ(boundaries(), (Strings{"inlet", "outlet", "wall"}));
  EXPECT_EQ(tree_.getParameterValue(rotor + "/Boundary:inlet", "Kind"), "Inlet");
  EXPECT_FALSE(tree_.hasParameter("/Case", "Title"));
}

TEST_F(DynamicTDFRollback, ManyChildrenOfSeveralTypesAreBackInTheirOrder) {
  for (int i = 0; i < 30; ++i) tree_.createObject(rotor, i % 3 == 0 ? "Monitor" : "Boundary", std::to_string(i));
  Strings children;
  tree_.getChildObjectPaths(rotor, children);
  Strings const names = boundaries();
  changeAndRollBack([&] {
    tree_.deleteObjects({children.front(), children[7], children[8], children.back()});
    tree_.createObject(rotor, "Monitor", "torque");
  });
  Strings now;
  tree_.getChildObjectPaths(rotor, now);
  EXPECT_EQ(now, children);
  EXPECT_EQ(boundaries(), names);
}

TEST_F(DynamicTDFRollback, ChildrenAreListedByTypeAfterTheirNumberWasLargeForAWhile) {
  changeAndRollBack([this] {
    tree_.deleteObject(rotor + "/Boundary:outlet");
    for (int i = 0; i < 30; ++i) tree_.createObject(rotor, "Monitor", std::to_string(i));
  });
  EXPECT_EQ(boundaries(), (Strings{"inlet", "outlet", "wall"}));
  tree_.createObject(rotor, "Boundary", "casing");
  EXPECT_EQ(boundaries(), (Strings{"inlet", "outlet", "wall", "casing"}));
}

TEST_F(DynamicTDFRollback, ObjectsThatWereCreatedAreGone) {
  changeAndRollBack([this] { tree_.createObject(rotor + "/Boundary:inlet/Profile", "Table", "speed"); });
  EXPECT_FALSE(tree_.hasObject(rotor + "/Boundary:inlet/Profile/Table:speed"));
  EXPECT_FALSE(tree_.hasObject(rotor + "/Boundary:inlet/Profile"));
}

TEST_F(DynamicTDFRollback, ParametersHaveTheValuesOfTheMark) {
  changeAndRollBack([this] {
    tree_.setParameter(rotor, "Motion", "Stationary");
    tree_.setParameter(rotor, "Title", "impeller");
    tree_.deleteParameter(rotor, "Motion");
  });
  EXPECT_EQ(tree_.getParameterValue(rotor, "Motion"), "Rotating");
  EXPECT_FALSE(tree_.hasParameter(rotor, "Title"));
}

TEST_F(DynamicTDFRollback, AllowedValuesAreThoseOfTheMark) {
  tree_.setParameter(rotor, "Fluid", test::allowing({"Water", "Air"}), "Air");
  changeAndRollBack([this] { tree_.setParameter(rotor, "Fluid", test::allowing({"Oil"}), "Air"); });
  EXPECT_EQ(tree_.getAllowedValueData(rotor, "Fluid").allowedValues, (Strings{"Water", "Air"}));
}

TEST_F(DynamicTDFRollback, AListIsThatOfTheValueOfTheMark) {
  tree_.setParameter(rotor, "Axes", "x,y");
  changeAndRollBack([this] {
    tree_.setParameter(rotor, "Axes", "z");
    Strings list;
    tree_.getParamValueAsList(rotor, "Axes", list);
  });
  Strings list;
  tree_.getParamValueAsList(rotor, "Axes", list);
  EXPECT_EQ(list, (Strings{"x", "y"}));
}

TEST_F(DynamicTDFRollback, TheLogHoldsWhatItHeldAtTheMark) {
  changeAndRollBack([this] {
    tree_.setParameter(rotor, "Title", "impeller");
    tree_.setParameter(rotor, "Motion", "Stationary");
    tree_.deleteObject(rotor);
  });
  EXPECT_EQ(tree_.getAddedParameters(), (ParamIds{{rotor, "Motion"}}));
  EXPECT_TRUE(tree_.getModifiedParameters().empty());
  EXPECT_TRUE(tree_.getDeletedParameters().empty());
  EXPECT_TRUE(tree_.getDeletedObjects().empty());
}

TEST_F(DynamicTDFRollback, ALogThatWasClearedIsBack) {
  tree_.setParameter(rotor, "Motion", "Stationary");
  tree_.deleteParameter(rotor, "Motion");
  tree_.deleteObject(rotor + "/Boundary:wall");
  changeAndRollBack([this] {
    tree_.resetChanges();
    tree_.setParameter(rotor, "Title", "impeller");
    tree_.resetChanges();
    tree_.setParameter(rotor, "Title", "runner");
  });
  EXPECT_EQ(tree_.getAddedParameters(), (ParamIds{{rotor, "Motion"}}));
  EXPECT_EQ(tree_.getModifiedParameters(), (ParamIds{{rotor, "Motion"}}));
  EXPECT_EQ(tree_.getDeletedParameters(), (ParamIds{{rotor, "Motion"}}));
  EXPECT_EQ(tree_.getDeletedObjects(), (Strings{rotor + "/Boundary:wall"}));
}

TEST_F(DynamicTDFRollback, ATreeRecordsAgainIfItDidAtTheMark) {
  changeAndRollBack([this] { tree_.stopRecordingUpdates(); });
  tree_.setParameter(rotor, "Title", "impeller");
  EXPECT_EQ(tree_.getAddedParameters().size(), 2U);
}

TEST_F(DynamicTDFRollback, ATreeThatWasLoadedAnewHasItsFormerContent) {
  ModelState const loaded{{"/Case/Domain:stator", {{"Motion", "Stationary"}}}};
  changeAndRollBack([&] {
    tree_.initialise(loaded.begin(), loaded.end());
    tree_.setParameter(rotor, "Motion", "Stationary");
  });
  EXPECT_EQ(tree_.getState(""), (ModelState{{rotor, {{"Motion", "Rotating"}}}}));
  EXPECT_EQ(boundaries(), (Strings{"inlet", "outlet", "wall"}));
  EXPECT_EQ(tree_.getAddedParameters(), (ParamIds{{rotor, "Motion"}}));
}

TEST_F(DynamicTDFRollback, ATreeWithoutALogThatWasLoadedAnewHasItsFormerContent) {
  ModelState const former{{rotor, {{"Motion", "Rotating"}}}};
  ModelState const later{{rotor, {{"Motion", "Stationary"}}}};
  tree_.stopRecordingUpdates();
  tree_.initialise(former.begin(), former.end());
  changeAndRollBack([&] { tree_.initialise(later.begin(), later.end()); });
  EXPECT_EQ(tree_.getState(""), former);
  tree_.initialise(later.begin(), later.end());
  EXPECT_EQ(tree_.getState(""), later);
}

TEST_F(DynamicTDFRollback, AnObjectOfALongFormIsForgotten) {
  changeAndRollBack([this] { tree_.setParameter("/Case/Log:Log", "Level", "1"); });
  EXPECT_FALSE(DynamicTDFAccess::storeOf(tree_).hasOtherwiseListed());
}

TEST_F(DynamicTDFRollback, AnObjectOfALongFormIsRememberedAgainAfterALoad) {
  tree_.setParameter("/Case/Log:Log", "Level", "1");
  ModelState const loaded{{"/Case", {{"Title", "pump"}}}};
  changeAndRollBack([&] {
    tree_.initialise(loaded.begin(), loaded.end());
    EXPECT_FALSE(DynamicTDFAccess::storeOf(tree_).hasOtherwiseListed());
  });
  EXPECT_TRUE(DynamicTDFAccess::storeOf(tree_).hasOtherwiseListed());
}

TEST_F(DynamicTDFRollback, TheRevisionMovesForward) {
  std::uint64_t const atMark = tree_.getRevision();
  std::uint64_t changed = 0;
  changeAndRollBack([&] {
    tree_.setParameter(rotor, "Motion", "Stationary");
    changed = tree_.getRevision();
  });
  EXPECT_GT(changed, atMark);
  EXPECT_GT(tree_.getRevision(), changed);
}

TEST_F(DynamicTDFRollback, WithoutAMarkNothingIsKept) {
  tree_.deleteObject(rotor + "/Boundary:outlet");
  changeAndRollBack([] {});
  EXPECT_EQ(boundaries(), (Strings{"inlet", "wall"}));
}

/// Writes down the calls that it gets.
class Notes final : public TreeListener {
 public:
  void onParamSetChange(PathHash const& object, std::string_view name) noexcept override { add("set", object, name); }
  void onParamChange(PathHash const& object, std::string_view name) noexcept override { add("value", object, name); }
  void onObjectSetChange(PathHash const& parent, std::string_view type, PathHash const& /*object*/) noexcept override {
    add("children", parent, type);
  }
  Strings notes;

 private:
  void add(char const* kind, PathHash const& object, std::string_view name) noexcept {
    std::string const whose = object == PathHash(rotor) ? " of the rotor: " : ": ";
    notes.push_back(kind + whose + std::string(name));
  }
};

TEST_F(DynamicTDFRollback, AListenerIsToldOfEachStepLikeOfAChange) {
  tree_.setParameter(rotor + "/Boundary:inlet", "Kind", "Inlet");
  Notes notes;
  DynamicTDFAccess::storeOf(tree_).setListener(&notes);
  changeAndRollBack([&] {
    tree_.setParameter(rotor, "Motion", "Stationary");
    tree_.setParameter(rotor, "Title", "impeller");
    tree_.deleteParameter(rotor, "Motion");
    tree_.createObject(rotor, "Monitor", "torque");
    tree_.deleteObject(rotor + "/Boundary:inlet");
    notes.notes.clear();
  });
  EXPECT_EQ(notes.notes,
            (Strings{"children of the rotor: Boundary", "set: Kind", "children of the rotor: Monitor",
                     "set of the rotor: Motion", "set of the rotor: Title", "value of the rotor: Motion"}));
}

}  // namespace
}  // namespace tarn
