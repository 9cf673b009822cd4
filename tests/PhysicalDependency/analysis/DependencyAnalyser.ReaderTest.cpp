// A walk reads a model by handles where the model offers them. It is the same walk as one by paths, also when a hook
// changes the model under it.

#include <tarn/DependencyAnalyser.h>
#include <tarn/DynamicTDF.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <tarn/EvalContext.h>
#include <tarn/PhysicsData.h>

#include "support/Rules.h"

namespace tarn {
namespace {

using test::Rules;
using test::when;

/// A tree that is read by paths.
class PathTree final : public DynamicTDF {};

/// Writes down the objects and, for each parameter, whether it is available. Runs actions when an object begins.
class Recorder final : public DependencyAnalyser {
 public:
  using DependencyAnalyser::DependencyAnalyser;

  std::vector<std::string> events;
  std::map<std::string, std::function<void()>> atBegin;
  std::vector<std::string> withHandle;

 private:
  HandlerStatus onBeginObject(ObjBeginInfo const* info) override {
    events.push_back("begin " + info->getObjPath());
    if (!info->getObject().isEmpty()) withHandle.push_back(info->getObjPath());
    if (auto const action = atBegin.find(info->getObjPath()); action != atBegin.end()) action->second();
    return Continue;
  }
  HandlerStatus onBeginParam(std::string const& /*objPath*/, std::string const& /*name*/) override { return Continue; }
  HandlerStatus onParamCheck(ParamAvailInfo const* info) override {
    events.push_back(info->getObjPath() + "|" + info->getName() + (info->isAvailable() ? " yes" : " no"));
    return Continue;
  }
  HandlerStatus onChildCheck(ChildAvailInfo const* /*info*/) override { return Continue; }
  HandlerStatus onEndObject(std::string const& objPath, bool /*required*/) override {
    events.push_back("end " + objPath);
    return Continue;
  }
};

class DependencyAnalyserReader : public testing::Test {
 protected:
  DependencyAnalyserReader() {
    Rules(rules_, "/Case").param("Flow Regime").child("Setup").singleton().child("Domain");
    Rules(rules_, "/Case/Setup").param("Steps").availableWhen(isSet("Steps"));
    Rules(rules_, "/Case/Domain").param("Motion").param("Speed").availableWhen(isSet("Motion")).child("Boundary");
    Rules(rules_, "/Case/Domain/Boundary").param("Kind").availableWhen(isSet("Kind"));
  }

  /// The parameter of the object itself has a value, read as compiled conditions read it.
  static std::unique_ptr<Condition> isSet(std::string const& name) {
    return when([name](TDFContext const& at, ModelTDF const& model) {
      if (ObjectReader const* const reader = at.object().readerIn(model))
        return reader->findParameterValue(at.object(), name) != nullptr;
      return model.hasParameter(at.objPath(), name);
    });
  }

  static void fill(DynamicTDF& tree) {
    tree.setParameter("/Case", "Flow Regime", "Laminar");
    tree.setParameter("/Case/Setup", "Steps", "10");
    tree.setParameter("/Case/Domain:rotor", "Motion", "Rotating");
    tree.setParameter("/Case/Domain:rotor/Boundary:inlet", "Kind", "Inlet");
    tree.createObject("/Case/Domain:rotor", "Boundary", "outlet");
    tree.setParameter("/Case/Domain:stator", "Speed", "3");
    tree.createObject("/Case", "Domain", "");
    tree.createObject("/Case/Setup", "Output", "");
  }

  /// The walk of the tree. `change` runs when `object` begins.
  template <class Tree>
  std::vector<std::string> walk(std::string const& object, std::function<void(DynamicTDF&)> const& change) {
    Tree tree;
    fill(tree);
    Recorder recorder(&rules_);
    recorder.atBegin[object] = [&] { change(tree); };
    EvalContext context(&tree);
    recorder.analyse("/Case", &context);
    withHandle_ = recorder.withHandle;
    return recorder.events;
  }

  void expectSameWalks(std::string const& object, std::function<void(DynamicTDF&)> const& change) {
    auto const byHandles = walk<DynamicTDF>(object, change);
    EXPECT_FALSE(withHandle_.empty());
    auto const byPaths = walk<PathTree>(object, change);
    EXPECT_THAT(withHandle_, testing::IsEmpty());
    EXPECT_EQ(byHandles, byPaths);
    EXPECT_THAT(byPaths, testing::Contains("begin " + object));
  }

  PhysicsData rules_;
  std::vector<std::string> withHandle_;
};

TEST_F(DependencyAnalyserReader, AWalkByHandlesIsTheWalkByPaths) {
  expectSameWalks("/Case", [](DynamicTDF&) {});
}

TEST_F(DependencyAnalyserReader, AChildThatIsFoundUnderAnotherPathThanTheWalkedOneHasNoHandle) {
  auto const events = walk<DynamicTDF>("/Case", [](DynamicTDF&) {});
  EXPECT_THAT(withHandle_,
              testing::ElementsAre("/Case", "/Case/Setup", "/Case/Domain:rotor", "/Case/Domain:rotor/Boundary:inlet",
                                   "/Case/Domain:rotor/Boundary:outlet", "/Case/Domain:stator"));
  EXPECT_THAT(events, testing::Contains("begin /Case/Domain:Domain"));
}

TEST_F(DependencyAnalyserReader, AChildTypeOfTwoComponentsIsFound) {
  Rules(rules_, "/Case").child("Setup/Output").singleton();
  expectSameWalks("/Case/Setup/Output", [](DynamicTDF&) {});
}

TEST_F(DependencyAnalyserReader, ASiblingThatIsDeletedBeforeItBeginsIsReadAsAbsent) {
  expectSameWalks("/Case/Domain:rotor", [](DynamicTDF& tree) { tree.deleteObject("/Case/Domain:stator"); });
}

TEST_F(DependencyAnalyserReader, AnObjectThatIsDeletedAndMadeAgainIsReadAsTheNewOne) {
  expectSameWalks("/Case/Domain:rotor", [](DynamicTDF& tree) {
    tree.deleteObject("/Case/Domain:rotor");
    tree.createObject("/Case", "Domain", "rotor");
    tree.setParameter("/Case/Domain:rotor/Boundary:wall", "Kind", "Wall");
  });
}

TEST_F(DependencyAnalyserReader, ChildrenThatAHookCreatesAreWalked) {
  expectSameWalks("/Case/Domain:stator", [](DynamicTDF& tree) {
    tree.setParameter("/Case/Domain:stator/Boundary:wall", "Kind", "Wall");
    tree.setParameter("/Case/Domain:stator", "Motion", "Stationary");
  });
}

}  // namespace
}  // namespace tarn
