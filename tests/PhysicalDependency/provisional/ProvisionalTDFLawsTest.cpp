// Laws that hold for every edit, whatever the rules, the models and the edits before it. They are tested with random
// ones, and the seed is printed when a law is broken. The laws only check that the answers of a state fit together;
// other tests compare the whole state with the expected one.

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include <tarn/ProvisionalTDF.h>

#include "PhysicalDependency/provisional/ProvisionalFixture.h"
#include "support/EditLaws.h"
#include "support/RandomRules.h"

namespace tarn {
namespace {

using test::EditResult;
using test::MapModel;
using test::RandomCase;
using test::RandomProfile;
using test::StateSnapshot;
using test::Strings;

bool publishesNothing(ProvisionalTDF const& state) {
  return state.getNewlyAvailParams().empty() && state.getModParams().empty() && state.getNewlyUnavailParams().empty() &&
         state.getDeletedObjects().empty() && state.getModQuantParams().empty() && state.getModBoundsParams().empty() &&
         state.getNewlyAvailPotParams().empty() && state.getNewlyAvailPotObjects().empty() &&
         state.getNewlyUnavailPotParams().empty() && state.getNewlyUnavailPotObjects().empty() &&
         state.getModPotParams().empty();
}

/// Edits one random case after the other and has a law checked after each edit.
class ProvisionalTDFLaws : public testing::Test {
 protected:
  struct Run {
    Run(std::uint32_t seed, RandomProfile profile) : random(seed, profile), base(random.base) {
      random.rules.fill(rules);
      state.emplace(&rules, &modifier, RandomCase::root);
      state->initialise(&base, random.guide);
    }
    void edit() {
      std::optional<Edit> const next = random.nextEdit();
      history += "\n" + (next ? test::textOf(*next) : "base update");
      result = {};
      if (!next) {
        random.changeBase();
        base = MapModel(random.base);
        state->baseUpdate(&base);
      } else {
        result = test::resultOf(*next, *state);
      }
    }
    void walkAgain() { state->activeSetParam(RandomCase::root, "Unknown", "1"); }

    RandomCase random;
    PhysicsData rules;
    test::FlowModifier modifier;
    MapModel base;
    std::optional<ProvisionalTDF> state;
    std::string history;
    EditResult result;
  };

  static void forEachEdit(RandomProfile profile, std::function<void(Run&, StateSnapshot const& before)> const& law) {
    for (std::uint32_t seed = 1; seed <= 100 && !HasFailure(); ++seed) {
      Run run(seed, profile);
      for (int i = 0; i < 12 && !HasFailure(); ++i) {
        StateSnapshot const before(*run.state);
        run.edit();
        SCOPED_TRACE("seed " + std::to_string(seed) + run.history);
        if (run.result.isUnreadable) {
          EXPECT_TRUE(StateSnapshot(*run.state) == before) << "an edit of a path that cannot be read changes nothing";
        } else {
          law(run, before);
        }
      }
    }
  }

  /// Whether there are types of children without rules: their objects are made in every walk and thrown out again.
  static bool hasUnknownTypes(test::RuleSheet const& rules) {
    for (auto const& object : rules.objects) {
      for (auto const& child : object.children) {
        if (rules.find(object.typePath + '/' + child.type) == nullptr) return true;
      }
    }
    return false;
  }

  static constexpr RandomProfile wild{true};
  static constexpr RandomProfile tame{false};
};

TEST_F(ProvisionalTDFLaws, ThePublishedChangesBringACopyOfTheFormerStateUpToDate) {
  forEachEdit(wild, [](Run& run, StateSnapshot const& before) {
    EXPECT_EQ(test::laws::brokenByChanges(before, StateSnapshot(*run.state), *run.state), "");
  });
}

TEST_F(ProvisionalTDFLaws, AnEditThatChangesNothingPublishesNothing) {
  int unchanged = 0;
  for (RandomProfile const profile : {wild, tame}) {
    forEachEdit(profile, [&](Run& run, StateSnapshot const& /*before*/) {
      if (hasUnknownTypes(run.random.rules)) return;
      run.walkAgain();  // after a refused edit, everything potential is listed as new
      StateSnapshot const settled(*run.state);
      run.walkAgain();
      if (settled != StateSnapshot(*run.state)) return;  // rules that look ahead take more walks
      ++unchanged;
      EXPECT_TRUE(publishesNothing(*run.state));
    });
  }
  EXPECT_GT(unchanged, 1000);
}

TEST_F(ProvisionalTDFLaws, ThePotentialItemsAreTheFormerOnesWithTheNewAndWithoutTheGone) {
  forEachEdit(wild, [](Run& run, StateSnapshot const& before) {
    EXPECT_EQ(test::laws::brokenByPotentials(before, StateSnapshot(*run.state), *run.state), "");
  });
}

TEST_F(ProvisionalTDFLaws, AStateThatIsSavedAndUsedAsGuideComesOutTheSame) {
  forEachEdit(tame, [](Run& run, StateSnapshot const&) {
    // An override that was taken over settles with the next walk.
    run.walkAgain();
    run.walkAgain();
    ModelState const saved = run.state->getActiveTDFState();
    ProvisionalTDF again(&run.rules, &run.modifier, RandomCase::root);
    again.initialise(&run.base, saved);
    EXPECT_EQ(again.getActiveTDFState(), saved);
  });
}

TEST_F(ProvisionalTDFLaws, NeitherTheBaseModelNorTheRulesAreTouched) {
  for (std::uint32_t seed = 1; seed <= 100 && !HasFailure(); ++seed) {
    Run run(seed, wild);
    StateSnapshot const first(*run.state);
    for (int i = 0; i < 12; ++i) {
      if (auto const edit = run.random.nextEdit()) (void)test::resultOf(*edit, *run.state);
    }
    for (auto const& [path, params] : run.random.base) {
      Strings names;
      run.base.getParameterNames(path, names);
      EXPECT_EQ(names.size(), params.size()) << "seed " << seed;
      for (auto const& [name, value] : params)
        EXPECT_EQ(run.base.getParameterValue(path, name), value) << "seed " << seed;
    }
    ProvisionalTDF again(&run.rules, &run.modifier, RandomCase::root);
    again.initialise(&run.base, run.random.guide);
    EXPECT_EQ(StateSnapshot(again), first) << "seed " << seed;
  }
}

TEST_F(ProvisionalTDFLaws, BetweenTwoEditsTheStateIsWhole) {
  forEachEdit(wild, [](Run& run, StateSnapshot const&) {
    EXPECT_EQ(test::laws::brokenByState(StateSnapshot(*run.state), *run.state), "");
  });
}

}  // namespace
}  // namespace tarn
