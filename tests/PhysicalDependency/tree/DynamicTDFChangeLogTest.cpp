// The change log of the editable tree: the entries of each operation, their order, and the entries that stay while
// recording is off.

#include <tarn/DynamicTDF.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/AllowedValues.h"

namespace tarn {
namespace {

using test::allowing;
using Strings = std::vector<std::string>;
using Params = std::vector<DynamicTDF::ParamId>;

/// All four lists at once, so that a test says of each what it holds.
struct Log {
  Params added;
  Params modified;
  Params deleted;
  Strings objects;
  bool operator==(Log const&) const = default;
};

void PrintTo(Log const& log, std::ostream* stream) {
  auto const print = [stream](char const* title, Params const& params) {
    *stream << title << ":";
    for (auto const& [path, name] : params) *stream << " " << path << "|" << name;
    *stream << "; ";
  };
  print("added", log.added);
  print("modified", log.modified);
  print("deleted", log.deleted);
  *stream << "objects:";
  for (auto const& path : log.objects) *stream << " " << path;
}

Log logOf(DynamicTDF const& model) {
  return {model.getAddedParameters(), model.getModifiedParameters(), model.getDeletedParameters(),
          model.getDeletedObjects()};
}

void fill(DynamicTDF& model) {
  model.setParameter("/Case", "Flow Regime", "Turbulent");
  model.setParameter("/Case/Domain:a", "Motion", "Rotating");
  model.setParameter("/Case/Domain:a", "Material", "Water");
  model.setParameter("/Case/Domain:a/Boundary:in", "Kind", "Inlet");
  model.setParameter("/Case/Domain:a/Boundary:in/Area:1", "Size", "2");
  model.setParameter("/Case/Domain:a/Boundary:out", "Kind", "Outlet");
  model.setParameter("/Case/Domain:b", "Motion", "Stationary");
  model.resetChanges();
}

TEST(DynamicTDFChangeLog, ANewTreeHasAnEmptyLog) {
  EXPECT_EQ(logOf(DynamicTDF()), Log{});
}

TEST(DynamicTDFChangeLog, SettingANewParameterAddsItAndNoneOfTheObjectsMadeForIt) {
  DynamicTDF model;
  model.setParameter("/Case/Domain:a", "Motion", "Rotating");
  EXPECT_EQ(logOf(model), (Log{{{"/Case/Domain:a", "Motion"}}, {}, {}, {}}));
}

TEST(DynamicTDFChangeLog, SettingAnotherValueModifiesTheParameter) {
  DynamicTDF model;
  fill(model);
  model.setParameter("/Case/Domain:a", "Motion", "Stationary");
  EXPECT_EQ(logOf(model), (Log{{}, {{"/Case/Domain:a", "Motion"}}, {}, {}}));
}

TEST(DynamicTDFChangeLog, SettingTheSameValueButForWhiteSpaceIsNoEvent) {
  DynamicTDF model;
  fill(model);
  model.setParameter("/Case/Domain:a", "Motion", "Rotating");
  model.setParameter("/Case/Domain:a", "Motion", " \tRotating\n");
  EXPECT_EQ(logOf(model), Log{});
}

TEST(DynamicTDFChangeLog, AnAllowedValueParameterIsModifiedByAnotherValueOrOtherAllowedValues) {
  DynamicTDF model;
  model.setParameter("/Case", "Model", allowing({"SST", "LES"}), "SST");
  EXPECT_EQ(logOf(model), (Log{{{"/Case", "Model"}}, {}, {}, {}}));
  model.resetChanges();
  model.setParameter("/Case", "Model", allowing({"SST", "LES"}), " SST ");
  EXPECT_EQ(logOf(model), Log{});
  model.setParameter("/Case", "Model", allowing({"SST"}), "SST");
  EXPECT_EQ(logOf(model), (Log{{}, {{"/Case", "Model"}}, {}, {}}));
  model.resetChanges();
  model.setParameter("/Case", "Model", allowing({"SST"}), "LES");
  EXPECT_EQ(logOf(model), (Log{{}, {{"/Case", "Model"}}, {}, {}}));
  model.resetChanges();
  model.setParameter("/Case", "Model", allowing({"DES"}), "DES");
  EXPECT_EQ(logOf(model), (Log{{}, {{"/Case", "Model"}}, {}, {}}));
}

TEST(DynamicTDFChangeLog, AnEntryCarriesThePathAsTheCallerWroteIt) {
  DynamicTDF model;
  model.setParameter("/", "Version", "3");
  model.setParameter("", "Version", "4");
  EXPECT_EQ(logOf(model), (Log{{{"/", "Version"}}, {{"", "Version"}}, {}, {}}));
}

TEST(DynamicTDFChangeLog, DeletingAParameterIsAnEventOnlyIfItWasThere) {
  DynamicTDF model;
  fill(model);
  model.deleteParameter("/Case/Domain:a", "Motion");
  model.deleteParameter("/Case/Domain:a", "Motion");
  model.deleteParameter("/Case/Domain:c", "Motion");
  EXPECT_EQ(logOf(model), (Log{{}, {}, {{"/Case/Domain:a", "Motion"}}, {}}));
}

TEST(DynamicTDFChangeLog, DeletingAnObjectEntersItsSubtreesParametersLeavesFirstFromTheLastChildBackwards) {
  DynamicTDF model;
  fill(model);
  model.deleteObject("/Case/Domain:a");
  EXPECT_EQ(logOf(model), (Log{{},
                               {},
                               {{"/Case/Domain:a/Boundary:out", "Kind"},
                                {"/Case/Domain:a/Boundary:in/Area:1", "Size"},
                                {"/Case/Domain:a/Boundary:in", "Kind"},
                                {"/Case/Domain:a", "Material"},
                                {"/Case/Domain:a", "Motion"}},
                               {"/Case/Domain:a"}}));
}

TEST(DynamicTDFChangeLog, DeletingAnUnknownObjectIsNoEvent) {
  DynamicTDF model;
  fill(model);
  model.deleteObject("/Case/Domain:c");
  model.deleteObjects({"/Case/Domain:c", "/"});
  model.deleteObjectUnrecorded("/Case/Domain:c");
  EXPECT_EQ(logOf(model), Log{});
}

TEST(DynamicTDFChangeLog, DeletingSeveralObjectsEntersEachInTheOrderGiven) {
  DynamicTDF model;
  fill(model);
  model.deleteObjects({"/Case/Domain:b", "/Case/Domain:a/Boundary:out"});
  EXPECT_EQ(logOf(model), (Log{{},
                               {},
                               {{"/Case/Domain:b", "Motion"}, {"/Case/Domain:a/Boundary:out", "Kind"}},
                               {"/Case/Domain:b", "/Case/Domain:a/Boundary:out"}}));
}

TEST(DynamicTDFChangeLog, DeletingAnObjectUnrecordedStillEntersItsParameters) {
  DynamicTDF model;
  model.setParameter("/Case/Domain:a", "Motion", "Rotating");
  model.setParameter("/Case/Domain:a", "Material", "Water");
  model.resetChanges();
  model.deleteObjectUnrecorded("/Case/Domain:a");
  EXPECT_EQ(logOf(model), (Log{{}, {}, {{"/Case/Domain:a", "Material"}, {"/Case/Domain:a", "Motion"}}, {}}));
  EXPECT_FALSE(model.hasObject("/Case/Domain:a"));
}

TEST(DynamicTDFChangeLog, CreatingAndDeletingAnObjectWithoutParametersEntersTheDeletionOnly) {
  DynamicTDF model;
  model.createObject("/Case", "Domain", "a");
  EXPECT_EQ(logOf(model), Log{});
  model.deleteObject("/Case/Domain:a");
  EXPECT_EQ(logOf(model), (Log{{}, {}, {}, {"/Case/Domain:a"}}));
}

TEST(DynamicTDFChangeLog, NothingIsFolded) {
  DynamicTDF model;
  model.setParameter("/Case", "a", "1");
  model.setParameter("/Case", "a", "2");
  model.setParameter("/Case", "a", "3");
  model.setParameter("/Case", "a", "1");
  model.deleteParameter("/Case", "a");
  model.setParameter("/Case", "a", "1");
  DynamicTDF::ParamId const a{"/Case", "a"};
  EXPECT_EQ(logOf(model), (Log{{a, a}, {a, a, a}, {a}, {}}));
}

TEST(DynamicTDFChangeLog, LoadingAModelOrAStateEntersEveryParameter) {
  ModelState const state{{"/Case", {{"b", "2"}, {"a", "1"}}}, {"/Case/Domain:x", {{"c", "3"}}}};
  Log const all{{{"/Case", "a"}, {"/Case", "b"}, {"/Case/Domain:x", "c"}}, {}, {}, {}};
  DynamicTDF first;
  first.initialise(state.begin(), state.end());
  EXPECT_EQ(logOf(first), all);
  DynamicTDF second;
  second.initialise(&first, "");
  EXPECT_EQ(logOf(second), all);
  second.resetChanges();
  second.update(&first, "");
  second.update(state.begin(), state.end());
  EXPECT_EQ(logOf(second), Log{});
}

TEST(DynamicTDFChangeLog, MergingEntersWhatIsNewAndWhatDiffers) {
  DynamicTDF model;
  fill(model);
  ModelState const state{{"/Case/Domain:a", {{"Material", "Oil"}, {"Motion", "Rotating"}, {"Speed", "9"}}}};
  model.update(state.begin(), state.end());
  EXPECT_EQ(logOf(model), (Log{{{"/Case/Domain:a", "Speed"}}, {{"/Case/Domain:a", "Material"}}, {}, {}}));
}

TEST(DynamicTDFChangeLog, InitialiseEmptiesTheLogFirst) {
  DynamicTDF model;
  fill(model);
  model.deleteObject("/Case/Domain:b");
  ModelState const state{{"/Case", {{"a", "1"}}}};
  model.initialise(state.begin(), state.end());
  EXPECT_EQ(logOf(model), (Log{{{"/Case", "a"}}, {}, {}, {}}));
}

TEST(DynamicTDFChangeLog, InitialiseWithRecordingOffLeavesOldEntriesStanding) {
  DynamicTDF model;
  fill(model);
  model.deleteObject("/Case/Domain:b");
  Log const before = logOf(model);
  model.stopRecordingUpdates();
  ModelState const state{{"/Case", {{"a", "1"}}}};
  model.initialise(state.begin(), state.end());
  EXPECT_EQ(logOf(model), before);
}

TEST(DynamicTDFChangeLog, WithRecordingOffNoOperationChangesTheLists) {
  DynamicTDF source;
  source.setParameter("/Case", "Flow Regime", "Laminar");
  DynamicTDF model;
  fill(model);
  model.setParameter("/Case", "Added", "1");
  model.setParameter("/Case", "Added", "2");
  model.deleteObject("/Case/Domain:b");
  Log const before = logOf(model);
  model.stopRecordingUpdates();
  EXPECT_EQ(logOf(model), before);

  model.setParameter("/Case", "x", "1");
  model.setParameter("/Case", "x", "2");
  model.setParameter("/Case", "y", allowing({"1"}), "1");
  model.setParameter("/Case", "y", allowing({"1", "2"}), "2");
  model.deleteParameter("/Case", "x");
  model.deleteObject("/Case/Domain:a/Boundary:in");
  model.deleteObjectUnrecorded("/Case/Domain:a/Boundary:out");
  model.deleteObjects({"/Case/Domain:a"});
  model.createObject("/Case", "Domain", "c");
  model.copyBranch(&source, "/Case");
  model.copyBranch(&source, "/Gone");
  model.update(&source, "");
  model.resetChanges();
  EXPECT_EQ(logOf(model), before);
}

TEST(DynamicTDFChangeLog, ATreeMadeWithoutRecordingRecordsNothingUntilItIsStarted) {
  DynamicTDF model(false);
  model.setParameter("/Case", "a", "1");
  EXPECT_EQ(logOf(model), Log{});
  model.startRecordingUpdates();
  model.setParameter("/Case", "b", "1");
  EXPECT_EQ(logOf(model), (Log{{{"/Case", "b"}}, {}, {}, {}}));
}

TEST(DynamicTDFChangeLog, AResetWorksOnlyWhileRecordingIsOn) {
  DynamicTDF model;
  model.setParameter("/Case", "a", "1");
  Log const filled = logOf(model);
  model.stopRecordingUpdates();
  model.resetChanges();
  EXPECT_EQ(logOf(model), filled);
  model.startRecordingUpdates();
  EXPECT_EQ(logOf(model), filled);
  model.resetChanges();
  EXPECT_EQ(logOf(model), Log{});
}

TEST(DynamicTDFChangeLog, AReferenceToAListShowsLaterEvents) {
  DynamicTDF model;
  Params const& added = model.getAddedParameters();
  model.setParameter("/Case", "a", "1");
  EXPECT_EQ(added.size(), 1U);
  model.resetChanges();
  EXPECT_TRUE(added.empty());
}

TEST(DynamicTDFChangeLog, MirroringABranchEntersEachNodesParametersAndThenWhatTheSourceLacks) {
  DynamicTDF source;
  source.setParameter("/Case/Domain:a", "Motion", "Stationary");
  source.setParameter("/Case/Domain:a", "Speed", "5");
  source.setParameter("/Case/Domain:a/Boundary:new", "Kind", "Wall");
  DynamicTDF model;
  fill(model);
  model.copyBranch(&source, "/Case/Domain:a");
  EXPECT_EQ(logOf(model), (Log{{{"/Case/Domain:a", "Speed"}, {"/Case/Domain:a/Boundary:new", "Kind"}},
                               {{"/Case/Domain:a", "Motion"}},
                               {{"/Case/Domain:a", "Material"},
                                {"/Case/Domain:a/Boundary:in/Area:1", "Size"},
                                {"/Case/Domain:a/Boundary:in", "Kind"},
                                {"/Case/Domain:a/Boundary:out", "Kind"}},
                               {"/Case/Domain:a/Boundary:in", "/Case/Domain:a/Boundary:out"}}));
}

TEST(DynamicTDFChangeLog, ChildrenThatTheSourceLacksGoInByteOrderDeeperLevelsBeforeHigherOnes) {
  DynamicTDF source;
  source.createObject("/Case/Domain:a", "Boundary", "keep");
  DynamicTDF model;
  for (char const* path :
       {"/Case/Solver", "/Case/Domain:z", "/Case/Domain:a/Boundary:keep", "/Case/Domain:a/Boundary:y",
        "/Case/Domain:a/Boundary:x", "/Case/Domain:a/Boundary:keep/Area:2"}) {
    model.setParameter(path, "p", "1");
  }
  model.resetChanges();
  model.copyBranch(&source, "/Case");
  EXPECT_EQ(model.getDeletedObjects(), (Strings{"/Case/Domain:a/Boundary:keep/Area:2", "/Case/Domain:a/Boundary:x",
                                                "/Case/Domain:a/Boundary:y", "/Case/Domain:z", "/Case/Solver"}));
}

TEST(DynamicTDFChangeLog, MirroringABranchThatTheSourceLacksEntersItsParametersAndNoObject) {
  DynamicTDF const source;
  DynamicTDF model;
  fill(model);
  model.copyBranch(&source, "/Case/Domain:b");
  EXPECT_EQ(logOf(model), (Log{{}, {}, {{"/Case/Domain:b", "Motion"}}, {}}));
}

}  // namespace
}  // namespace tarn
