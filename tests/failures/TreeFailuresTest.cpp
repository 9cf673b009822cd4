// Trees without memory. A single edit and its entry in the log either have been made or have not been made. A load may
// have been made in part. Loading again gives the same result as without the failure.

#include <tarn/DynamicTDF.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "failures/Injection.h"
#include "failures/RotorCase.h"

namespace tarn::test {
namespace {

using Edit = std::function<void(DynamicTDF&)>;

/// Objects, parameters and log of a tree.
struct Content {
  ModelState state;
  std::vector<std::string> objects;
  std::vector<DynamicTDF::ParamId> added, modified, deleted;
  std::vector<std::string> deletedObjects;

  explicit Content(DynamicTDF const& tree)
      : state(tree.getState("")),
        added(tree.getAddedParameters()),
        modified(tree.getModifiedParameters()),
        deleted(tree.getDeletedParameters()),
        deletedObjects(tree.getDeletedObjects()) {
    std::vector<std::string> pending{""};
    while (!pending.empty()) {
      objects.push_back(pending.back());
      pending.pop_back();
      std::vector<std::string> children;
      tree.getChildObjectPaths(objects.back(), children);
      pending.insert(pending.end(), children.rbegin(), children.rend());
    }
  }
  friend bool operator==(Content const&, Content const&) = default;
};

void fill(DynamicTDF& tree) {
  tree.setParameter(rotor, "Motion of the Domain", "Rotating about an Axis");
  tree.setParameter(rotor, "Fluid in the Domain",
                    ParamAllowedValues({"Water at 25 degrees", "Air at 25 degrees C"}, {"Water at 25 degrees"}),
                    "Water at 25 degrees");
  tree.setParameter(rotor + "/Boundary:casing of the pump", "Kind", "Wall that turns with the rotor");
  tree.createObject(rotor, "Boundary", "inlet of the pump");
}

/// As many children as are kept by type, and as many parameters as take a second chunk.
void fillWidely(DynamicTDF& tree) {
  for (int i = 0; i < 16; ++i) tree.createObject(rotor, "Boundary", "wall number " + std::to_string(i));
  for (int i = 0; i < 128; ++i) tree.setParameter(rotor, "Coefficient number " + std::to_string(i), "1");
}

void isMadeOrNot(Edit const& edit, bool thereAreOthers = false) {
  auto const filled = [&] {
    auto tree = std::make_unique<DynamicTDF>();
    fill(*tree);
    if (thereAreOthers) fillWidely(*tree);
    tree->resetChanges();
    return tree;
  };
  Content const before(*filled());
  auto const edited = filled();
  edit(*edited);
  Content const after(*edited);
  ASSERT_FALSE(before == after);
  forEveryFailureOf(FailingCall::Allocation, [&](Attempt& attempt) {
    auto const tree = filled();
    bool const failed = attempt([&] { edit(*tree); });
    EXPECT_TRUE(Content(*tree) == (failed ? before : after));
    if (failed) edit(*tree);
    EXPECT_TRUE(Content(*tree) == after);
  });
}

TEST(TreeFailures, AParameterIsSetOrNot) {
  isMadeOrNot(
      [](auto& tree) { tree.setParameter(rotor, "Motion of the Domain", "Stationary, in the frame of the case"); });
}

TEST(TreeFailures, AParameterIsAddedOrNot) {
  isMadeOrNot([](auto& tree) { tree.setParameter(rotor, "Title of the Domain", "Impeller of the pump"); });
}

TEST(TreeFailures, AParameterIsAddedToAFullChunkOrNot) {
  isMadeOrNot([](auto& tree) { tree.setParameter(rotor, "Title of the Domain", "Impeller of the pump"); }, true);
}

TEST(TreeFailures, AParameterIsAddedTogetherWithItsObjectsOrNeitherIs) {
  isMadeOrNot([](auto& tree) {
    tree.setParameter(rotor + "/Monitor:torque at the shaft/Axis of the Torque", "Direction of the Axis",
                      "0, 0, 1 [-]");
  });
}

TEST(TreeFailures, AllowedValuesAndValueAreSetOrNeitherIs) {
  isMadeOrNot([](auto& tree) {
    tree.setParameter(rotor, "Fluid in the Domain",
                      ParamAllowedValues({"Oil of the gear box", "Air at 25 degrees C"}, {"Oil of the gear box"}),
                      "Oil of the gear box of the pump");
  });
}

TEST(TreeFailures, AnObjectIsMadeOrNot) {
  isMadeOrNot([](auto& tree) { tree.createObject(rotor + "/Subdomain:sponge of metal", "Porous Medium", "of steel"); });
}

TEST(TreeFailures, AnObjectIsMadeAmongManyOrNot) {
  isMadeOrNot([](auto& tree) { tree.createObject(rotor, "Boundary", "outlet of the pump"); }, true);
}

TEST(TreeFailures, AParameterIsDeletedOrNot) {
  isMadeOrNot([](auto& tree) { tree.deleteParameter(rotor, "Motion of the Domain"); });
}

TEST(TreeFailures, AnObjectIsDeletedOrNot) {
  isMadeOrNot([](auto& tree) { tree.deleteObject(rotor + "/Boundary:casing of the pump"); });
}

/// The log lists exactly the deleted part.
TEST(TreeFailures, OfASubtreeThatCouldNotBeDeletedWholeThePartThatIsGoneIsLogged) {
  forEveryFailureOf(FailingCall::Allocation, [&](Attempt& attempt) {
    DynamicTDF tree;
    fill(tree);
    tree.resetChanges();
    ModelState const before = tree.getState("");
    bool const failed = attempt([&] { tree.deleteObject("/Case"); });
    EXPECT_EQ(tree.hasObject("/Case"), failed);
    EXPECT_EQ(tree.getDeletedObjects().size(), failed ? 0U : 1U);
    ModelState rest = before;
    for (auto const& [path, name] : tree.getDeletedParameters()) {
      EXPECT_EQ(rest[path].erase(name), 1U);
      if (rest[path].empty()) rest.erase(path);
    }
    EXPECT_EQ(tree.getState(""), rest);
  });
}

/// Deleting without recording needs no memory.
TEST(TreeFailures, WithoutALogDeletingDoesNotFail) {
  std::string const motion = "Motion of the Domain";
  DynamicTDF tree(false);
  fill(tree);
  Attempt attempt(FailingCall::Allocation, 0, true);
  EXPECT_FALSE(attempt([&] {
    tree.deleteParameter(rotor, motion);
    tree.deleteObject(rotor);
  }));
  EXPECT_FALSE(tree.hasObject(rotor));
}

TEST(TreeFailures, ReadingDoesNotFail) {
  std::string const absent = rotor + "/Title of the Domain";
  std::string const deep = rotor + "/A/B/C/D/E/F/G/H/I/J/K/L/M/N/O/P/Q/R/S/T/U/V/W/X/Y/Z";
  std::string const motion = "Motion of the Domain";
  std::string const fluid = "Fluid in the Domain";
  DynamicTDF tree;
  fill(tree);
  tree.setParameter(deep, motion, "Stationary in Space");
  Attempt attempt(FailingCall::Allocation, 0, true);
  bool found = false;
  EXPECT_FALSE(attempt([&] {
    found = tree.hasObject(rotor) && !tree.hasObject(absent) && tree.hasParameter(rotor, motion) &&
            tree.getParameterValue(deep, motion) == "Stationary in Space" && tree.getObjectType(deep) == "Z" &&
            tree.getObjectName(rotor) == "rotor" && tree.getAllowedValueData(rotor, fluid).hasSubset &&
            !tree.isObjectEmpty(rotor) && tree.findParameterValue(rotor, fluid) != nullptr;
  }));
  EXPECT_TRUE(found);
}

void canBeDoneAgain(FailingCall call, Edit const& load, bool recording) {
  auto const filled = [&] {
    auto tree = std::make_unique<DynamicTDF>(recording);
    fill(*tree);
    return tree;
  };
  auto const loaded = filled();
  load(*loaded);
  ModelState const after = loaded->getState("");
  forEveryFailureOf(call, [&](Attempt& attempt) {
    auto const tree = filled();
    if (attempt([&] { load(*tree); })) {
      (void)tree->getState("");
      load(*tree);
    }
    EXPECT_EQ(tree->getState(""), after);
    // No mode of the load is left: an empty value is a value.
    tree->setParameter(rotor, "Title of the Domain", "");
    EXPECT_TRUE(tree->hasParameter(rotor, "Title of the Domain"));
  });
}

ModelState const& loadedState() {
  static ModelState const state = {
      {"/Case", {{"Flow Regime of the Case", "Turbulent"}, {"Turbulence Intensity", "0.05 of the speed"}}},
      {rotor, {{"Motion of the Domain", "Rotating about an Axis"}, {"Title of the Domain", ""}}},
      {rotor + "/Boundary:outlet of the pump", {{"Kind", "Opening to the atmosphere"}}}};
  return state;
}

TEST(TreeFailures, AModelCanBeLoadedAgain) {
  for (FailingCall const call : {FailingCall::Allocation, FailingCall::Hook}) {
    RotorModel const model;
    canBeDoneAgain(
        call, [&](auto& tree) { tree.initialise(&model, "", true); }, true);
    canBeDoneAgain(
        call, [&](auto& tree) { tree.update(&model, "", true); }, true);
  }
}

TEST(TreeFailures, AStateCanBeLoadedAgain) {
  auto const load = [](auto& tree) { tree.initialise(loadedState().begin(), loadedState().end(), true); };
  canBeDoneAgain(FailingCall::Allocation, load, true);
  canBeDoneAgain(FailingCall::Allocation, load, false);
  // Behind another with the same objects only values are put in.
  ModelState other = loadedState();
  other["/Case"] = {{"Reference Pressure", "1 [bar], as measured"}};
  canBeDoneAgain(
      FailingCall::Allocation,
      [&](auto& tree) {
        tree.initialise(loadedState().begin(), loadedState().end(), true);
        tree.initialise(other.begin(), other.end(), true);
      },
      false);
}

TEST(TreeFailures, ABranchCanBeMirroredAgain) {
  DynamicTDF source;
  source.initialise(loadedState().begin(), loadedState().end());
  source.createObject(rotor, "Subdomain", "sponge of metal");
  canBeDoneAgain(
      FailingCall::Allocation, [&](auto& tree) { tree.copyBranch(&source, "/Case"); }, true);
}

}  // namespace
}  // namespace tarn::test
