// Loading, merging and mirroring: the content of the tree afterwards. The test of the change log covers their log
// entries.

#include <tarn/DynamicTDF.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <tarn/Error.h>
#include <tarn/PhysicsDepErrors.h>

#include "support/AllowedValues.h"

namespace tarn {
namespace {

using test::allowing;
using Strings = std::vector<std::string>;

void load(DynamicTDF& model, ModelState const& state) {
  model.initialise(state.begin(), state.end());
}

Strings childPaths(DynamicTDF const& model, std::string const& path) {
  Strings out;
  model.getChildObjectPaths(path, out);
  return out;
}

ModelState const pumpState{{"/Case", {{"Flow Regime", "Turbulent"}}},
                           {"/Case/Domain:rotor", {{"Material", "Water"}, {"Motion", "Rotating"}}},
                           {"/Case/Domain:rotor/Boundary:inlet", {{"Kind", "Inlet"}}}};

// --- loading
// -------------------------------------------------------------------------------------------------------------

TEST(DynamicTDFBulk, AStateIsLoadedAsItStands) {
  DynamicTDF model;
  load(model, pumpState);
  EXPECT_EQ(model.getState(""), pumpState);
}

TEST(DynamicTDFBulk, LoadingReplacesWhatTheTreeHeld) {
  DynamicTDF model;
  model.setParameter("/Old/Domain:x", "Motion", "Rotating");
  load(model, pumpState);
  EXPECT_FALSE(model.hasObject("/Old"));
  EXPECT_EQ(childPaths(model, ""), Strings{"/Case"});
}

TEST(DynamicTDFBulk, AnEmptyRangeLeavesTheRootAlone) {
  DynamicTDF model;
  load(model, pumpState);
  load(model, {});
  EXPECT_TRUE(model.hasObject(""));
  EXPECT_TRUE(model.getState("").empty());
  EXPECT_FALSE(model.hasObject("/Case"));
  model.setParameter("/Case", "Title", "usable again");
  EXPECT_EQ(model.getParameterValue("/Case/Title"), "usable again");
}

TEST(DynamicTDFBulk, AnObjectThatTwoPartsHoldGetsTheParametersOfBothInEveryLoad) {
  ModelState const model{{"/Case", {{"Flow Regime", "Turbulent"}}}, {"/Case/Domain:rotor", {{"Motion", "Rotating"}}}};
  ModelState const overlay{{"/Case/Domain:rotor", {{"Material", "Water"}}}};
  ModelState const both{{"/Case", {{"Flow Regime", "Turbulent"}}},
                        {"/Case/Domain:rotor", {{"Material", "Water"}, {"Motion", "Rotating"}}}};
  DynamicTDF tree(false);
  for (int load = 0; load < 3; ++load) {
    tree.initialise({{model.begin(), model.end()}, {overlay.begin(), overlay.end()}});
    ASSERT_EQ(tree.getState(""), both) << "load " << load;
  }
}

TEST(DynamicTDFBulk, OfAParameterThatOverlappingPartsHoldTheLastValueStandsInEveryLoad) {
  ModelState const model{{"/Case", {{"Title", "pump"}}}, {"/Log", {{"Level", "1"}}}};
  ModelState const other{{"/Case", {{"Title", "turbine"}}}};
  DynamicTDF tree(false);
  for (int load = 0; load < 3; ++load) {
    tree.initialise({{model.begin(), model.end()}, {other.begin(), other.end()}, {model.begin(), model.end()}});
    ASSERT_EQ(tree.getState(""), model) << "load " << load;
  }
}

TEST(DynamicTDFBulk, AnEntryWithoutParametersMakesItsObject) {
  DynamicTDF model;
  load(model, {{"/Case/Domain:stator", {}}});
  EXPECT_TRUE(model.hasObject("/Case/Domain:stator"));
  EXPECT_TRUE(model.isObjectEmpty("/Case"));
}

TEST(DynamicTDFBulk, ParametersAtTheRootAreLoaded) {
  ModelState const state{{"", {{"Version", "3"}}}};
  DynamicTDF model;
  load(model, state);
  EXPECT_EQ(model.getState(""), state);
}

TEST(DynamicTDFBulk, OnlyTheRangeGivenIsLoaded) {
  DynamicTDF model;
  model.initialise(pumpState.find("/Case/Domain:rotor"), pumpState.find("/Case/Domain:rotor/Boundary:inlet"));
  EXPECT_EQ(model.getState(""), (ModelState{*pumpState.find("/Case/Domain:rotor")}));
}

TEST(DynamicTDFBulk, AModelIsLoadedFromThePathDownwardWithTheObjectsAboveImplied) {
  DynamicTDF source;
  load(source, pumpState);
  source.createObject("/Case/Domain:rotor", "Boundary", "wall");
  source.setParameter("/Case/Domain:stator", "Motion", "Stationary");
  DynamicTDF model;
  model.initialise(&source, "/Case/Domain:rotor");
  EXPECT_EQ(model.getState(""), source.getState("/Case/Domain:rotor"));
  EXPECT_EQ(childPaths(model, "/Case"), Strings{"/Case/Domain:rotor"});
  EXPECT_FALSE(model.hasParameter("/Case", "Flow Regime"));
}

TEST(DynamicTDFBulk, AModelIsLoadedWithItsObjectsThatHoldNoParameters) {
  DynamicTDF source;
  source.createObject("/Case/Domain:a", "Boundary", "wall");
  DynamicTDF model;
  model.initialise(&source, "");
  EXPECT_TRUE(model.hasObject("/Case/Domain:a/Boundary:wall"));
}

TEST(DynamicTDFBulk, AModelIsLoadedInItsOwnOrderOfChildren) {
  DynamicTDF source;
  for (char const* name : {"z", "a", "m"}) source.createObject("/Case", "Domain", name);
  source.createObject("/Case/Domain:a", "Boundary", "in");
  DynamicTDF model;
  model.initialise(&source, "");
  EXPECT_EQ(childPaths(model, "/Case"), childPaths(source, "/Case"));
}

TEST(DynamicTDFBulk, AnObjectThatTheModelLacksIsCreatedWithoutParameters) {
  DynamicTDF const source;
  DynamicTDF model;
  model.initialise(&source, "/Case/Domain:rotor");
  EXPECT_TRUE(model.hasObject("/Case/Domain:rotor"));
  EXPECT_TRUE(model.isObjectEmpty(""));
}

TEST(DynamicTDFBulk, LoadingTheTreeFromItselfEmptiesIt) {
  DynamicTDF model;
  load(model, pumpState);
  model.initialise(&model, "");
  EXPECT_TRUE(model.getState("").empty());
}

TEST(DynamicTDFBulk, ThePathMayBeATextOfTheTree) {
  DynamicTDF source;
  load(source, pumpState);
  DynamicTDF model;
  model.setParameter("/Settings", "A parameter that names the branch", "/Case/Domain:rotor");
  model.initialise(&source, model.getParameterValue("/Settings", "A parameter that names the branch"));
  EXPECT_EQ(model.getState(""), source.getState("/Case/Domain:rotor"));
}

TEST(DynamicTDFBulk, APathThatCannotBeReadThrowsAndKeepsWhatCameBefore) {
  DynamicTDF model;
  ModelState const state{{"/Case", {{"Title", "pump"}}}, {"/Case/Domain:", {{"Motion", "Rotating"}}}};
  EXPECT_THROW(model.initialise(state.begin(), state.end(), true), Error);
  EXPECT_EQ(model.getState(""), (ModelState{{"/Case", {{"Title", "pump"}}}}));
  model.setParameter("/Case", "Title", "");
  EXPECT_TRUE(model.hasParameter("/Case", "Title"));
  EXPECT_EQ(model.getParameterValue("/Case", "Title"), "") << "empty values are passed over only during the load";
}

// --- a path of "/"
// -------------------------------------------------------------------------------------------------------

/// A model that answers to "/" as well as to "".
class SlashModel : public DynamicTDF {
 public:
  using DynamicTDF::getParameterValue;
  bool getParameterNames(std::string const& path, Strings& out) const override {
    return DynamicTDF::getParameterNames(rooted(path), out);
  }
  std::string const& getParameterValue(std::string const& objPath, std::string const& name) const override {
    return DynamicTDF::getParameterValue(rooted(objPath), name);
  }
  bool getChildObjectPaths(std::string const& path, Strings& out) const override {
    return DynamicTDF::getChildObjectPaths(rooted(path), out);
  }

 private:
  static std::string rooted(std::string const& path) { return path == "/" ? "" : path; }
};

TEST(DynamicTDFBulk, ASlashGivesNothingFromAModelThatDoesNotAnswerToIt) {
  DynamicTDF source;
  load(source, pumpState);
  DynamicTDF model;
  model.update(&source, "/");
  EXPECT_TRUE(model.getState("").empty());
  EXPECT_FALSE(model.hasObject("/Case"));
  EXPECT_FALSE(model.hasObject("/"));
}

TEST(DynamicTDFBulk, ASlashLoadsOntoTheRootAndIsLoggedAsItWasGiven) {
  SlashModel source;
  source.setParameter("", "Version", "3");
  source.setParameter("/Case", "Title", "pump");
  DynamicTDF model;
  model.update(&source, "/");
  EXPECT_EQ(model.getState(""), source.getState(""));
  EXPECT_EQ(model.getAddedParameters(), (std::vector<DynamicTDF::ParamId>{{"/", "Version"}, {"/Case", "Title"}}));
}

// --- merging
// -------------------------------------------------------------------------------------------------------------

TEST(DynamicTDFBulk, MergingAddsAndOverwritesAndRemovesNothing) {
  DynamicTDF model;
  load(model, pumpState);
  model.createObject("/Case", "Domain", "stator");
  ModelState const more{{"/Case/Domain:rotor", {{"Motion", "Stationary"}, {"Speed", "3"}}}, {"/Case/Solver", {}}};
  model.update(more.begin(), more.end());
  ModelState expected = pumpState;
  expected["/Case/Domain:rotor"] = {{"Material", "Water"}, {"Motion", "Stationary"}, {"Speed", "3"}};
  EXPECT_EQ(model.getState(""), expected);
  EXPECT_EQ(childPaths(model, "/Case"), (Strings{"/Case/Domain:rotor", "/Case/Domain:stator", "/Case/Solver"}));
}

TEST(DynamicTDFBulk, MergingAModelKeepsWhatTheModelLacks) {
  DynamicTDF source;
  source.setParameter("/Case/Domain:rotor", "Motion", "Stationary");
  DynamicTDF model;
  load(model, pumpState);
  model.update(&source, "/Case/Domain:rotor");
  ModelState expected = pumpState;
  expected["/Case/Domain:rotor"]["Motion"] = "Stationary";
  EXPECT_EQ(model.getState(""), expected);
}

TEST(DynamicTDFBulk, MergingAnObjectThatTheModelLacksCreatesItHere) {
  DynamicTDF source;
  source.setParameter("/Case/Domain:rotor", "Motion", "Rotating");
  DynamicTDF model;
  model.setParameter("/Case/Domain:stator", "Motion", "Stationary");
  model.resetChanges();
  model.update(&source, "/Case/Domain:typo");
  model.update(&source, "/Case/Domain:stator");
  EXPECT_EQ(childPaths(model, "/Case"), (Strings{"/Case/Domain:stator", "/Case/Domain:typo"}));
  EXPECT_EQ(model.getParameterValue("/Case/Domain:stator", "Motion"), "Stationary");
  EXPECT_TRUE(model.getAddedParameters().empty());
}

TEST(DynamicTDFBulk, MergingAPlainValueKeepsTheAllowedValues) {
  DynamicTDF model;
  model.setParameter("/Case", "Model", allowing({"SST", "LES"}), "SST");
  ModelState const more{{"/Case", {{"Model", "LES"}}}};
  model.update(more.begin(), more.end());
  EXPECT_EQ(model.getParameterValue("/Case", "Model"), "LES");
  EXPECT_TRUE(model.getAllowedValueData("/Case", "Model").isEqualTo(allowing({"SST", "LES"})));
}

TEST(DynamicTDFBulk, LoadingAModelMakesOrdinaryParameters) {
  DynamicTDF source;
  source.setParameter("/Case", "Model", allowing({"SST", "LES"}), "SST");
  DynamicTDF model;
  model.initialise(&source, "");
  EXPECT_TRUE(model.getAllowedValueData("/Case", "Model").isEmpty());
}

TEST(DynamicTDFBulk, MergingTheTreeIntoItselfChangesNothing) {
  DynamicTDF model;
  load(model, pumpState);
  model.resetChanges();
  model.update(&model, "");
  EXPECT_EQ(model.getState(""), pumpState);
  EXPECT_TRUE(model.getAddedParameters().empty());
  EXPECT_TRUE(model.getModifiedParameters().empty());
}

// --- empty values
// --------------------------------------------------------------------------------------------------------

TEST(DynamicTDFBulk, SkippedEmptyValuesNeitherAddNorOverwriteAndAreStoredByALaterLoad) {
  DynamicTDF source;
  source.setParameter("/Case", "Title", " \t ");
  source.setParameter("/Case", "Notes", "");
  DynamicTDF model;
  model.setParameter("/Case", "Title", "pump");
  model.update(&source, "", true);
  EXPECT_EQ(model.getState(""), (ModelState{{"/Case", {{"Title", "pump"}}}}));
  model.update(&source, "");
  EXPECT_EQ(model.getState(""), (ModelState{{"/Case", {{"Notes", ""}, {"Title", ""}}}}));
}

TEST(DynamicTDFBulk, TheObjectOfASkippedValueIsCreatedAllTheSame) {
  ModelState const state{{"/Case/Domain:a", {{"Motion", "  "}}}};
  DynamicTDF model;
  model.initialise(state.begin(), state.end(), true);
  EXPECT_TRUE(model.hasObject("/Case/Domain:a"));
  EXPECT_TRUE(model.isObjectEmpty(""));
}

TEST(DynamicTDFBulk, EmptyValuesAreStoredAgainAfterEveryKindOfLoad) {
  ModelState const state{{"/Case", {{"Title", "pump"}}}};
  DynamicTDF source;
  load(source, state);
  for (int kind = 0; kind < 4; ++kind) {
    DynamicTDF model;
    if (kind == 0) model.initialise(state.begin(), state.end(), true);
    if (kind == 1) model.update(state.begin(), state.end(), true);
    if (kind == 2) model.initialise(&source, "", true);
    if (kind == 3) model.update(&source, "", true);
    model.setParameter("/Case", "Notes", " ");
    EXPECT_TRUE(model.hasParameter("/Case", "Notes")) << kind;
    model.update(state.begin(), state.end());
    ModelState const withEmpty{{"/Case", {{"Title", ""}}}};
    model.update(withEmpty.begin(), withEmpty.end());
    EXPECT_EQ(model.getParameterValue("/Case", "Title"), "") << kind;
  }
}

TEST(DynamicTDFBulk, SkippingEmptyValuesHoldsForARangeThatIsInitialised) {
  ModelState const state{{"/Case", {{"Notes", " "}, {"Title", "pump"}}}};
  DynamicTDF model;
  model.initialise(state.begin(), state.end(), true);
  EXPECT_EQ(model.getState(""), (ModelState{{"/Case", {{"Title", "pump"}}}}));
}

// --- mirroring
// -----------------------------------------------------------------------------------------------------------

TEST(DynamicTDFBulk, AMirroredBranchEqualsThatOfTheSourceAndNothingElseChanges) {
  DynamicTDF source;
  source.setParameter("/Case", "Flow Regime", "Laminar");
  source.setParameter("/Case/Domain:rotor", "Motion", "Stationary");
  source.setParameter("/Case/Domain:rotor/Boundary:outlet", "Kind", "Outlet");
  DynamicTDF model;
  load(model, pumpState);
  model.copyBranch(&source, "/Case/Domain:rotor");
  EXPECT_EQ(model.getState("/Case/Domain:rotor"), source.getState("/Case/Domain:rotor"));
  EXPECT_EQ(model.getParameterValue("/Case", "Flow Regime"), "Turbulent");
  EXPECT_FALSE(model.hasObject("/Case/Domain:rotor/Boundary:inlet"));
}

TEST(DynamicTDFBulk, MirroringTheRootMirrorsTheWholeTree) {
  DynamicTDF source;
  load(source, pumpState);
  source.setParameter("", "Version", "3");
  DynamicTDF model;
  model.setParameter("/Old", "p", "1");
  model.setParameter("", "q", "1");
  model.copyBranch(&source, "");
  EXPECT_EQ(model.getState(""), source.getState(""));
  EXPECT_FALSE(model.hasObject("/Old"));
}

TEST(DynamicTDFBulk, MirroringCreatesWhatIsMissingAboveTheBranchWithoutRecord) {
  DynamicTDF source;
  load(source, pumpState);
  DynamicTDF model;
  model.copyBranch(&source, "/Case/Domain:rotor/Boundary:inlet");
  EXPECT_EQ(model.getState(""), source.getState("/Case/Domain:rotor/Boundary:inlet"));
  EXPECT_EQ(model.getAddedParameters(),
            (std::vector<DynamicTDF::ParamId>{{"/Case/Domain:rotor/Boundary:inlet", "Kind"}}));
}

TEST(DynamicTDFBulk, MirroringCopiesObjectsThatHoldNoParameters) {
  DynamicTDF source;
  source.createObject("/Case/Domain:a", "Boundary", "wall");
  DynamicTDF model;
  model.setParameter("/Case/Domain:a", "Motion", "Rotating");
  model.copyBranch(&source, "/Case");
  EXPECT_TRUE(model.hasObject("/Case/Domain:a/Boundary:wall"));
  EXPECT_TRUE(model.isObjectEmpty("/Case"));
}

TEST(DynamicTDFBulk, MirroringABranchThatTheSourceLacksDeletesItHere) {
  DynamicTDF source;
  source.setParameter("/Case", "Title", "pump");
  DynamicTDF model;
  load(model, pumpState);
  model.copyBranch(&source, "/Case/Domain:rotor");
  EXPECT_FALSE(model.hasObject("/Case/Domain:rotor"));
  EXPECT_TRUE(model.hasObject("/Case"));
  EXPECT_NO_THROW(model.copyBranch(&source, "/Case/Domain:rotor"));
}

TEST(DynamicTDFBulk, MirroringTheTreeOntoItselfDoesNothing) {
  DynamicTDF model;
  load(model, pumpState);
  model.resetChanges();
  model.copyBranch(&model, "/Case");
  model.copyBranch(&model, "/Gone");
  EXPECT_EQ(model.getState(""), pumpState);
  EXPECT_TRUE(model.getDeletedObjects().empty());
  model.setParameter("/Solver:Solver", "Steps", "100");
  model.copyBranch(&model, "/Solver:Solver");
  EXPECT_FALSE(model.hasObject("/Solver"));
}

TEST(DynamicTDFBulk, ChildrenThatAreHereKeepTheirPlaceAndNewOnesGoBehindThemInTheOrderOfTheSource) {
  DynamicTDF source;
  for (char const* name : {"new 2", "b", "new 1", "a"}) source.createObject("/Case", "Domain", name);
  DynamicTDF model;
  for (char const* name : {"a", "gone", "b"}) model.createObject("/Case", "Domain", name);
  model.copyBranch(&source, "/Case");
  EXPECT_EQ(childPaths(model, "/Case"),
            (Strings{"/Case/Domain:a", "/Case/Domain:b", "/Case/Domain:new 2", "/Case/Domain:new 1"}));
}

TEST(DynamicTDFBulk, MirroringCopiesAllowedValues) {
  DynamicTDF source;
  source.setParameter("/Case", "Model", allowing({"SST", "LES"}), "SST");
  DynamicTDF model;
  model.setParameter("/Case", "Model", allowing({"DES"}), "DES");
  model.copyBranch(&source, "/Case");
  EXPECT_EQ(model.getParameterValue("/Case", "Model"), "SST");
  EXPECT_TRUE(model.getAllowedValueData("/Case", "Model").isEqualTo(allowing({"SST", "LES"})));
}

TEST(DynamicTDFBulk, MirroringAllowedValuesOntoAnOrdinaryParameterThrowsAndKeepsWhatWasCopied) {
  DynamicTDF source;
  source.setParameter("/Case", "A", "copied");
  source.setParameter("/Case", "Model", allowing({"SST", "LES"}), "SST");
  source.setParameter("/Case", "Z", "not copied");
  DynamicTDF model;
  model.setParameter("/Case", "Model", "LES");
  model.setParameter("/Case", "Obsolete", "1");
  EXPECT_THROW(model.copyBranch(&source, "/Case"), physics_dep::invalidParamVal);
  EXPECT_EQ(model.getState(""), (ModelState{{"/Case", {{"A", "copied"}, {"Model", "LES"}, {"Obsolete", "1"}}}}));
}

TEST(DynamicTDFBulk, MirroringAPlainValueOntoAnAllowedValueParameterKeepsTheAllowedValues) {
  DynamicTDF source;
  source.setParameter("/Case", "Model", "LES");
  DynamicTDF model;
  model.setParameter("/Case", "Model", allowing({"SST", "LES"}), "SST");
  model.copyBranch(&source, "/Case");
  EXPECT_EQ(model.getParameterValue("/Case", "Model"), "LES");
  EXPECT_TRUE(model.getAllowedValueData("/Case", "Model").isEqualTo(allowing({"SST", "LES"})));
}

TEST(DynamicTDFBulk, AnAllowedValueParameterWithAnEmptyRecordIsMirroredAsAPlainValue) {
  DynamicTDF source;
  source.setParameter("/Case", "Model", ParamAllowedValues(), "LES");
  DynamicTDF model;
  model.setParameter("/Case", "Model", "SST");
  EXPECT_NO_THROW(model.copyBranch(&source, "/Case"));
  EXPECT_EQ(model.getParameterValue("/Case", "Model"), "LES");
  EXPECT_THROW(model.setParameter("/Case", "Model", allowing({"LES"}), "LES"), physics_dep::invalidParamVal);
}

// --- depth and width
// -----------------------------------------------------------------------------------------------------

/// A tree with children of its own that a mirror must leave alone: they do not show in its listings.
class TreeWithNotes : public DynamicTDF {
 public:
  bool getChildObjectPaths(std::string const& path, std::vector<std::string>& out) const override {
    DynamicTDF::getChildObjectPaths(path, out);
    std::erase_if(out, [this](std::string const& child) { return getObjectType(child) == "Note"; });
    return !out.empty();
  }
};

TEST(DynamicTDFBulk, AMirrorDeletesOnlyChildrenThatADerivedTreeLists) {
  DynamicTDF source;
  load(source, pumpState);
  TreeWithNotes tree;
  tree.setParameter("/Case/Note:author", "Text", "check the inlet");
  tree.setParameter("/Case/Domain:rotor/Note:mesh", "Text", "coarse");
  tree.setParameter("/Case/Domain:stator", "Motion", "Stationary");
  tree.setParameter("/Case/Domain:rotor/Boundary:outlet", "Kind", "Outlet");
  tree.resetChanges();
  tree.copyBranch(&source, "/Case");

  ModelState expected = pumpState;
  expected["/Case/Note:author"] = {{"Text", "check the inlet"}};
  expected["/Case/Domain:rotor/Note:mesh"] = {{"Text", "coarse"}};
  EXPECT_EQ(tree.getState(""), expected);
  EXPECT_EQ(tree.getDeletedObjects(), (Strings{"/Case/Domain:rotor/Boundary:outlet", "/Case/Domain:stator"}));
}

TEST(DynamicTDFBulk, AMirrorAsksADerivedTreeForItsChildrenBeforeItCopiesThose) {
  struct Asked : DynamicTDF {
    bool getChildObjectPaths(std::string const& path, std::vector<std::string>& out) const override {
      DynamicTDF::getChildObjectPaths(path, out);
      questions.push_back(path + " has " + std::to_string(out.size()));
      return !out.empty();
    }
    mutable Strings questions;
  };
  DynamicTDF source;
  load(source, pumpState);
  Asked tree;
  tree.copyBranch(&source, "/Case");
  EXPECT_EQ(tree.questions,
            (Strings{"/Case has 0", "/Case/Domain:rotor has 0", "/Case/Domain:rotor/Boundary:inlet has 0"}));
  EXPECT_EQ(tree.getState(""), pumpState);
}

TEST(DynamicTDFBulk, AMirrorDeletesWhateverADerivedTreeListsAmongTheChildren) {
  struct Listing : DynamicTDF {
    bool getChildObjectPaths(std::string const& path, std::vector<std::string>& out) const override {
      DynamicTDF::getChildObjectPaths(path, out);
      if (path == "/Case/Domain:rotor") out.push_back("/Case");
      return !out.empty();
    }
  };
  DynamicTDF source;
  load(source, pumpState);
  source.createObject("/Case", "Solver", "");
  Listing tree;
  load(tree, pumpState);
  tree.copyBranch(&source, "/Case");
  // The rotor's own path went with the case; the walk goes on to the next object, which is made again.
  EXPECT_FALSE(tree.hasObject("/Case/Domain:rotor"));
  EXPECT_TRUE(tree.hasObject("/Case/Solver"));
}

TEST(DynamicTDFBulk, AChainOfTwoThousandObjectsIsLoadedMirroredAndRemoved) {
  constexpr int depth = 2000;
  DynamicTDF source;
  std::string path;
  for (int i = 0; i < depth; ++i) {
    path += "/D";
    source.setParameter(path, "p", std::to_string(i));
  }
  ModelState const state = source.getState("");
  DynamicTDF loaded;
  loaded.initialise(&source, "");
  EXPECT_EQ(loaded.getState(""), state);
  DynamicTDF mirrored;
  mirrored.copyBranch(&source, "/D");
  EXPECT_EQ(mirrored.getState(""), state);
  source.deleteObject("/D/D");
  mirrored.resetChanges();
  mirrored.copyBranch(&source, "/D");
  EXPECT_EQ(mirrored.getState(""), source.getState(""));
  EXPECT_EQ(mirrored.getDeletedObjects(), Strings{"/D/D"});
  EXPECT_EQ(mirrored.getDeletedParameters().size(), depth - 1U);
}

TEST(DynamicTDFBulk, ALongListOfSiblingsIsMirroredAndDeletedOneByOneFromItsFront) {
  constexpr int width = 20000;
  DynamicTDF source;
  for (int i = 0; i < width; ++i) source.setParameter("/Case/Domain:" + std::to_string(i), "p", "1");
  DynamicTDF model;
  model.copyBranch(&source, "");
  Strings const paths = childPaths(model, "/Case");
  EXPECT_EQ(paths.size(), static_cast<std::size_t>(width));
  model.deleteObjects(paths);
  EXPECT_TRUE(childPaths(model, "/Case").empty());
  EXPECT_EQ(model.getDeletedObjects(), paths);
}

// --- an object with very many parameters
// -------------------------------------------------------------------------------------------------------------

constexpr int manyOptions = 3000;

std::string option(int number) {
  return "Option " + std::to_string(number);
}

/// The value of each option is its number; those from `missing` to `missing + 9` do not exist.
void expectOptions(DynamicTDF const& model, int missing) {
  for (int i = 0; i < manyOptions; ++i) {
    bool const exists = i < missing || i > missing + 9;
    ASSERT_EQ(model.hasParameter("/Program", option(i)), exists) << i;
    ASSERT_EQ(model.getParameterValue("/Program", option(i)), exists ? std::to_string(i) : "") << i;
  }
  EXPECT_FALSE(model.hasParameter("/Program", "Option"));
}

ModelState manyOptionsState(int missing) {
  ModelState state;
  for (int i = 0; i < manyOptions; ++i) {
    if (i < missing || i > missing + 9) state["/Program"][option(i)] = std::to_string(i);
  }
  return state;
}

TEST(DynamicTDFBulk, EachOfManyLoadedParametersIsFoundAndNoOther) {
  DynamicTDF model(false);
  load(model, manyOptionsState(100));
  expectOptions(model, 100);
}

TEST(DynamicTDFBulk, ParametersAreFoundAfterSomeOfManyLoadedOnesWereDeletedAndOthersAdded) {
  DynamicTDF model;
  load(model, manyOptionsState(100));
  for (int i = 100; i < 110; ++i) model.setParameter("/Program", option(i), std::to_string(i));
  for (int i = 2000; i < 2010; ++i) model.deleteParameter("/Program", option(i));
  expectOptions(model, 2000);
}

TEST(DynamicTDFBulk, ParametersAreFoundAfterAnotherStateWithFewerOrOthersWasLoaded) {
  DynamicTDF model(false);
  load(model, manyOptionsState(manyOptions));
  load(model, manyOptionsState(manyOptions - 10));
  expectOptions(model, manyOptions - 10);
  load(model, manyOptionsState(0));
  expectOptions(model, 0);
}

}  // namespace
}  // namespace tarn
