// Single cases of updates that visit only what an edit concerns, above all after a rollback: what is visited, and what
// is not.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <tarn/DynamicTDF.h>
#include <tarn/EvalCache.h>
#include <tarn/EvalContext.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/RuleExpressions.h>
#include <tarn/RuleReads.h>

#include "PhysicalDependency/provisional/ProvisionalFixture.h"

namespace tarn::test {
namespace {

class FollowedWalks : public ProvisionalTest {
 protected:
  /// Known reads, so that only a change of them brings the rule back.
  static RuleReads nothing() { return {}; }

  /// Holds while `name` has the text, and counts its evaluations.
  std::unique_ptr<Condition> counting(std::string const& name, std::string const& text) {
    return when(
        [this, name, text](TDFContext const& at, ModelTDF const& model) {
          ++asked_;
          return model.getParameterValue(at.objPath(), name) == text;
        },
        nothing());
  }

  int asked_ = 0;
};

/// A condition about the whole model. All conditions with one key keep one result, as those of a rule file do.
class KeptCondition final : public Condition {
 public:
  using Question = std::function<bool(ModelTDF const& model)>;
  KeptCondition(int const& key, Question question) : key_(key), question_(std::move(question)) {}

  bool evaluate(TDFContext const& /*context*/, EvalContext* evalContext) const override {
    EvalCache* const cache = evalContext->getCache();
    if (cache == nullptr) return question_(*evalContext->getDB());
    if (EvalCache::Result const* const kept = cache->find(&key_)) return std::get<bool>(*kept);
    bool const result = question_(*evalContext->getDB());
    (void)cache->store(&key_, result);
    return result;
  }
  void collectReads(RuleReads& /*reads*/) const override {}

 private:
  int const& key_;
  Question question_;
};

TEST_F(FollowedWalks, AResultThatRulesKeepIsMadeOnceForAllOfThemAndAgainAfterAChange) {
  int const key = 0;
  auto const isRotating = [this](ModelTDF const& model) {
    ++asked_;
    return model.getParameterValue(rotor, "Motion") == "Rotating";
  };
  Rules(rules_, "/Case/Domain")
      .param("Motion")
      .param("Title")
      .param("Speed")
      .required()
      .availableWhen(std::make_unique<KeptCondition>(key, isRotating))
      .param("Axis")
      .required()
      .availableWhen(std::make_unique<KeptCondition>(key, isRotating));
  start();
  asked_ = 0;
  set("Motion", "Rotating");
  EXPECT_EQ(asked_, 1);
  EXPECT_EQ(value("Speed"), "");
  EXPECT_EQ(value("Axis"), "");
  set("Title", "Pump");
  EXPECT_EQ(asked_, 1);
  set("Motion", "Stationary");
  EXPECT_EQ(asked_, 2);
  EXPECT_EQ(value("Speed"), std::nullopt);
  EXPECT_EQ(value("Axis"), std::nullopt);
}

// To learn what a named object would have, the walk makes one, and takes it away. Only that object may see itself.
TEST_F(FollowedWalks, AResultAboutAnObjectThatIsOnlyTriedIsNotKept) {
  int const key = 0;
  bool wasZoneSeen = false;
  auto const hasZone = [&wasZoneSeen](ModelTDF const& model) {
    Strings zones;
    bool const isSeen = model.getChildObjectPathsByType("/Case", "Zone", zones);
    wasZoneSeen |= isSeen;
    return isSeen;
  };
  Rules(rules_, "/Case")
      .child("Zone")
      .required()
      .child("Setup")
      .singleton()
      .required()
      .object("/Case/Zone")
      .param("Speed")
      .required()
      .availableWhen(std::make_unique<KeptCondition>(key, hasZone))
      .object("/Case/Setup")
      .param("Title")
      .required()
      .param("Solver")
      .required()
      .availableWhen(std::make_unique<KeptCondition>(key, hasZone));
  startAt("/Case");
  EXPECT_TRUE(wasZoneSeen);
  EXPECT_EQ(value("Title", "/Case/Setup"), "");
  EXPECT_EQ(value("Solver", "/Case/Setup"), std::nullopt);
}

TEST_F(FollowedWalks, ARuleIsAskedAgainOnlyAfterAChangeOfWhatItHasRead) {
  Rules(rules_, "/Case/Domain")
      .param("Motion")
      .param("Title")
      .param("Speed")
      .required()
      .availableWhen(counting("Motion", "Rotating"));
  start();
  asked_ = 0;
  set("Title", "Pump");
  EXPECT_EQ(asked_, 0);
  set("Motion", "Rotating");
  EXPECT_EQ(asked_, 1);
  EXPECT_EQ(value("Speed"), "");
}

TEST_F(FollowedWalks, EveryWayToReadTheModelBringsTheRuleBack) {
  std::string const title = rotor + "/Title";
  std::string const child = rotor + "/Rotation";
  using Holds = bool(ModelTDF const& model, Strings& out);
  std::vector<std::pair<char const*, std::function<Holds>>> const reads = {
      {"hasObject", [&](auto& model, auto&) { return model.hasObject(child); }},
      {"hasParameter by path", [&](auto& model, auto&) { return model.hasParameter(title); }},
      {"hasParameter", [&](auto& model, auto&) { return model.hasParameter(rotor, "Title"); }},
      {"getObjectName", [&](auto& model, auto&) { return !model.getObjectName(child).empty(); }},
      {"getObjectType", [&](auto& model, auto&) { return !model.getObjectType(child).empty(); }},
      {"getParameterValue by path", [&](auto& model, auto&) { return model.getParameterValue(title) == "Pump"; }},
      {"getParameterValue", [&](auto& model, auto&) { return model.getParameterValue(rotor, "Title") == "Pump"; }},
      {"getParamValueAsList by path", [&](auto& model, auto& out) { return model.getParamValueAsList(title, out); }},
      {"getParamValueAsList",
       [&](auto& model, auto& out) { return model.getParamValueAsList(rotor, "Title", out); }},
      {"getParameterNames",
       [&](auto& model, auto& out) {
         model.getParameterNames(rotor, out);
         return std::find(out.begin(), out.end(), "Title") != out.end();
       }},
      {"getParameterNames of an object that comes",
       [&](auto& model, auto& out) { return model.getParameterNames(child, out); }},
      {"getChildObjectPaths", [&](auto& model, auto& out) { return model.getChildObjectPaths(rotor, out); }},
      {"getChildObjectNamesByType",
       [&](auto& model, auto& out) { return model.getChildObjectNamesByType(rotor, "Rotation", out); }},
      {"getChildObjectPathsByType",
       [&](auto& model, auto& out) { return model.getChildObjectPathsByType(rotor, "Rotation", out); }},
      {"anyChildOfType", [&](auto& model, auto&) {
         return model.anyChildOfType(rotor, "Rotation", [](std::string const&) { return true; });
       }}};
  for (auto const& [what, holds] : reads) {
    SCOPED_TRACE(what);
    PhysicsData rules;
    auto const condition = [&holds = holds](TDFContext const&, ModelTDF const& model) {
      Strings out;
      return holds(model, out);
    };
    Rules(rules, "/Case/Domain")
        .param("Title")
        .param("Motion")
        .param("Speed")
        .required()
        .availableWhen(when(condition, nothing()))
        .child("Rotation")
        .singleton()
        .required()
        .availableWhen(when("Motion", "Rotating"))
        .object("/Case/Domain/Rotation")
        .param("Axis")
        .required();
    ProvisionalTDF state(&rules, rotor);
    state.initialise(&base_, {});
    EXPECT_FALSE(state.hasParameter(rotor, "Speed"));
    state.activeSetParam(rotor, "Title", "Pump");
    state.activeSetParam(rotor, "Motion", "Rotating");
    state.activeSetParam(rotor, "Unknown to the Rules", "1");  // children come after the rule that reads them
    EXPECT_TRUE(state.hasParameter(rotor, "Speed"));
    state.deactivateOptParam(rotor, "Title");
    state.activeSetParam(rotor, "Motion", "Stationary");
    state.activeSetParam(rotor, "Unknown to the Rules", "2");
    EXPECT_FALSE(state.hasParameter(rotor, "Speed"));
  }
}

TEST_F(FollowedWalks, ARuleThatReadsThousandsOfParametersIsAskedAfterAnyChange) {
  Rules(rules_, "/Case/Domain")
      .param("Blade 1500")
      .param("Speed")
      .required()
      .availableWhen(when(
          [](TDFContext const& at, ModelTDF const& model) {
            bool isAnyOn = false;
            for (int i = 0; i < 2000; ++i) {
              isAnyOn |= model.getParameterValue(at.objPath(), "Blade " + std::to_string(i)) == "on";
            }
            return isAnyOn;
          },
          nothing()));
  start();
  EXPECT_EQ(value("Speed"), std::nullopt);
  set("Blade 1500", "on");
  EXPECT_EQ(value("Speed"), "");
}

TEST_F(FollowedWalks, ARuleThatLooksForThousandsOfObjectsIsAskedAfterOneCame) {
  Rules(rules_, "/Case/Domain")
      .param("Motion")
      .param("Speed")
      .required()
      .availableWhen(when(
          [](TDFContext const& at, ModelTDF const& model) {
            bool isAnyThere = false;
            for (int i = 0; i < 2000; ++i) isAnyThere |= model.hasObject(at.objPath() + "/Blade" + std::to_string(i));
            return isAnyThere;
          },
          nothing()))
      .child("Blade1500")
      .singleton()
      .required()
      .availableWhen(when("Motion", "Rotating"))
      .object("/Case/Domain/Blade1500")
      .param("Angle")
      .required();
  start();
  set("Motion", "Rotating");
  ASSERT_EQ(value("Speed"), std::nullopt);  // it reads ahead
  walkAgain();
  EXPECT_EQ(value("Speed"), "");
}

TEST_F(FollowedWalks, ARuleThatReadsTheNamesOfParametersIsAskedWhenOneComes) {
  Rules(rules_, "/Case/Domain")
      .param("Title")
      .param("Speed")
      .required()
      .availableWhen(when(
          [](TDFContext const& at, ModelTDF const& model) {
            std::vector<std::string> names;
            return model.getParameterNames(at.objPath(), names) && !names.empty();
          },
          nothing()));
  start();
  ASSERT_EQ(value("Speed"), std::nullopt);
  set("Title", "Pump");
  EXPECT_EQ(value("Speed"), "");
}

TEST_F(FollowedWalks, ARuleThatMayReadAnythingIsAskedInEveryWalk) {
  bool isOn = false;
  Rules(rules_, "/Case/Domain")
      .param("Title")
      .param("Speed")
      .required()
      .availableWhen(when([&isOn](TDFContext const&, ModelTDF const&) { return isOn; }, std::nullopt))
      .child("Rotation")
      .singleton()
      .required()
      .availableWhen(when([&isOn](TDFContext const&, ModelTDF const&) { return isOn; }, std::nullopt))
      .object("/Case/Domain/Rotation")
      .param("Axis")
      .required();
  start();
  ASSERT_EQ(value("Speed"), std::nullopt);
  for (bool const on : {true, false, true}) {
    isOn = on;
    walkAgain();
    EXPECT_EQ(value("Speed").has_value(), on);
    EXPECT_EQ(value("Axis", rotor + "/Rotation").has_value(), on);
  }
}

TEST_F(FollowedWalks, ARuleThatReadsOutsideOfTheRootIsAskedAfterTheModelOutsideChanged) {
  using Holds = bool(ModelTDF const& model, Strings& out);
  std::vector<std::pair<char const*, std::function<Holds>>> const reads = {
      {"a value", [](auto& model, auto&) { return model.getParameterValue("/Case/Setup", "Mode") == "Steady"; }},
      {"an object", [](auto& model, auto&) { return model.hasObject("/Case/Setup"); }},
      {"the names of parameters", [](auto& model, auto& out) { return model.getParameterNames("/Case/Setup", out); }},
      {"children of an object outside",
       [](auto& model, auto& out) { return model.getChildObjectPathsByType("/Library", "Material", out); }},
      {"all children of an object outside",
       [](auto& model, auto& out) { return model.getChildObjectPaths("/Library", out); }},
      {"the objects beside the root",
       [](auto& model,
          auto& out) { return model.getChildObjectNamesByType("/Case", "Domain", out) && out.size() > 1; }},
      {"the objects beside the root, one by one", [](auto& model, auto&) {
         return model.anyChildOfType("/Case", "Domain",
                                     [](std::string const& child) { return child == "/Case/Domain:stator"; });
       }}};
  for (bool const isTree : {false, true}) {
    for (auto const& [what, holds] : reads) {
      SCOPED_TRACE(std::string(what) + (isTree ? ", in a tree" : ", in a program's own model"));
      PhysicsData rules;
      auto const condition = [&holds = holds](TDFContext const&, ModelTDF const& model) {
        Strings out;
        return holds(model, out);
      };
      Rules(rules, "/Case/Domain").param("Title").param("Speed").required().availableWhen(when(condition, nothing()));
      MapModel model;
      model.add(rotor);
      DynamicTDF tree(false);
      tree.createObject("/Case", "Domain", "rotor");
      ProvisionalTDF state(&rules, rotor);
      state.initialise(isTree ? static_cast<ModelTDF const*>(&tree) : &model, {});
      EXPECT_FALSE(state.hasParameter(rotor, "Speed"));
      model.set("/Case/Setup", "Mode", "Steady");
      model.add("/Library/Material:Water");
      model.add("/Case/Domain:stator");
      tree.setParameter("/Case/Setup", "Mode", "Steady");
      tree.createObject("/Library", "Material", "Water");
      tree.createObject("/Case", "Domain", "stator");
      state.activeSetParam(rotor, "Title", "Pump");
      EXPECT_TRUE(state.hasParameter(rotor, "Speed"));
    }
  }
}

TEST_F(FollowedWalks, AnAnswerOfAModifierThatMayReadAnythingIsAskedForInEveryWalk) {
  Rules(rules_, "/Case/Domain").param("Inflow").type(TDFParam::Real).required().param("Title");
  start();
  modifier_.type = "Volume Flow";
  set("Title", "Pump");
  EXPECT_EQ(state().getModQuantParams().size(), 1U);
}

TEST_F(FollowedWalks, ARollbackRestoresWhatARuleHadRead) {
  Rules(rules_, "/Case/Domain")
      .param("Motion")
      .param("Turning")
      .param("Speed")
      .required()
      .availableWhen(when(
          [](TDFContext const& at, ModelTDF const& model) {
            return model.getParameterValue(at.objPath(), "Motion") == "Rotating" &&
                   model.getParameterValue(at.objPath(), "Turning") == "left";
          },
          nothing()));
  start({{rotor, {{"Motion", "Rotating"}, {"Turning", "left"}}}});
  ProvisionalTDF::Mark const before = state().mark();
  set("Motion", "Stationary");  // now the rule does not read the direction
  state().rollback(before);
  set("Turning", "right");
  EXPECT_EQ(value("Speed"), std::nullopt);
}

TEST_F(FollowedWalks, AnObjectThatATriedEditDeletedIsNotVisitedAgainAfterTheRollback) {
  Rules(rules_, "/Case/Domain")
      .param("Motion")
      .param("Title")
      .child("Rotation")
      .singleton()
      .required()
      .availableWhen(when("Motion", "Rotating"))
      .object("/Case/Domain/Rotation")
      .param("Speed")
      .required()
      .availableWhen(counting("Unknown to the Rules", ""));
  start({{rotor, {{"Motion", "Rotating"}}}});
  ProvisionalTDF::Mark const before = state().mark();
  set("Motion", "Stationary");
  state().rollback(before);
  asked_ = 0;
  set("Title", "Pump");
  EXPECT_EQ(asked_, 0);
  EXPECT_EQ(value("Speed", rotor + "/Rotation"), "");
}

TEST_F(FollowedWalks, AnObjectThatComesBackByARollbackIsAskedAgainAfterAChangeOfWhatItHadRead) {
  Rules(rules_, "/Case/Domain")
      .param("Motion")
      .param("Turning")
      .child("Rotation")
      .singleton()
      .required()
      .availableWhen(when("Motion", "Rotating"))
      .object("/Case/Domain/Rotation")
      .param("Axis")
      .required()
      .param("Speed")
      .required()
      .availableWhen(when(
          [](TDFContext const&, ModelTDF const& model) { return model.getParameterValue(rotor, "Turning") == "left"; },
          nothing()));
  start({{rotor, {{"Motion", "Rotating"}, {"Turning", "left"}}}});
  ASSERT_EQ(value("Speed", rotor + "/Rotation"), "");
  ProvisionalTDF::Mark const before = state().mark();
  set("Motion", "Stationary");
  ASSERT_FALSE(state().hasObject(rotor + "/Rotation"));
  state().rollback(before);
  set("Turning", "right");
  EXPECT_TRUE(state().hasObject(rotor + "/Rotation"));
  EXPECT_EQ(value("Speed", rotor + "/Rotation"), std::nullopt);
}

TEST_F(FollowedWalks, AVisitThatIsDueStaysDueWhenATriedEditDeletesItsObject) {
  Rules(rules_, "/Case/Domain")
      .param("Motion")
      .child("Rotation")
      .singleton()
      .required()
      .availableWhen(when("Motion", "Rotating"))
      .object("/Case/Domain/Rotation")
      .param("Blade Angle")
      .required()
      .availableWhen(when("Blades", "3"))  // reads ahead, so a change comes into force one walk later
      .param("Blades");
  start({{rotor, {{"Motion", "Rotating"}}}});
  state().activeSetParam(rotor + "/Rotation", "Blades", "3");
  ASSERT_EQ(value("Blade Angle", rotor + "/Rotation"), std::nullopt);
  ProvisionalTDF::Mark const before = state().mark();
  set("Motion", "Stationary");
  state().rollback(before);
  walkAgain();
  EXPECT_EQ(value("Blade Angle", rotor + "/Rotation"), "");
}

TEST_F(FollowedWalks, ARollbackAfterAnUpdateThatMarkedAVisitLeavesItUnmarked) {
  Rules(rules_, "/Case/Domain")
      .param("Speed")
      .required()
      .availableWhen(counting("Motion", "Rotating"))  // reads ahead
      .param("Motion")
      .param("Title");
  start();
  ProvisionalTDF::Mark const before = state().mark();
  set("Motion", "Rotating");
  state().rollback(before);
  asked_ = 0;
  set("Title", "Pump");
  EXPECT_EQ(asked_, 0);
  EXPECT_EQ(value("Speed"), std::nullopt);
}

}  // namespace
}  // namespace tarn::test
