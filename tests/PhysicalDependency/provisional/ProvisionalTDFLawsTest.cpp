// What holds of every edit, whatever the rules, the models and the edits before it: random ones, with the seed told
// when a law is broken. What a state is to be, not only how its answers fit together, is compared elsewhere.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <tarn/ProvisionalTDF.h>

#include "PhysicalDependency/provisional/ProvisionalFixture.h"
#include "support/RandomRules.h"

namespace tarn {
namespace {

using test::MapModel;
using test::Pairs;
using test::RandomCase;
using test::RandomEdit;
using test::RandomProfile;
using test::Strings;

using ParamSet = std::set<std::pair<std::string, std::string>>;

ParamSet setOf(ProvisionalTDF::ParamsByObject const& params) {
  return {params.begin(), params.end()};
}
std::set<std::string> setOf(Strings const& items) {
  return {items.begin(), items.end()};
}
template <typename Set>
Set without(Set const& a, Set const& b) {
  Set rest;
  std::set_difference(a.begin(), a.end(), b.begin(), b.end(), std::inserter(rest, rest.end()));
  return rest;
}

bool holds(ModelState const& state, std::string const& path, std::string const& name) {
  auto const object = state.find(path);
  return object != state.end() && object->second.contains(name);
}
bool hasObject(ProvisionalTDF const& state, std::string const& path) {
  return !state.getPathExpansion(path, "").empty();
}

/// All that a user interface shows.
struct Snapshot {
  explicit Snapshot(ProvisionalTDF const& state)
      : active(state.getActiveTDFState()),
        potentialParams(setOf(state.getAvailPotParams())),
        potentialObjects(setOf(state.getAvailPotObjects())) {
    auto const look = [&](std::string const& path, std::string const& name) {
      allowed[{path, name}] = {state.getAllowedParamValues(path, name), state.getSubsetAllowedParamValues(path, name)};
    };
    for (auto const& [path, params] : active) {
      for (auto const& param : params) look(path, param.first);
    }
    for (auto const& [path, name] : potentialParams) look(path, name);
  }
  friend bool operator==(Snapshot const&, Snapshot const&) = default;

  ModelState active;
  ParamSet potentialParams;
  std::set<std::string> potentialObjects;
  std::map<std::pair<std::string, std::string>, std::pair<Strings, Strings>> allowed;
};

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
      RandomEdit const next = random.nextEdit();
      history += "\n" + next.text();
      if (next.kind == RandomEdit::BaseUpdate) {
        random.changeBase();
        base = MapModel(random.base);
        state->baseUpdate(&base);
      } else {
        apply(next, *state);
      }
    }
    void walkAgain() { state->activeSetParam(RandomCase::root, "Unknown", "1"); }

    RandomCase random;
    PhysicsData rules;
    test::FlowModifier modifier;
    MapModel base;
    std::optional<ProvisionalTDF> state;
    std::string history;
  };

  static void forEachEdit(RandomProfile profile, std::function<void(Run&, Snapshot const& before)> const& law) {
    for (std::uint32_t seed = 1; seed <= 100 && !HasFailure(); ++seed) {
      Run run(seed, profile);
      for (int i = 0; i < 12 && !HasFailure(); ++i) {
        Snapshot const before(*run.state);
        run.edit();
        SCOPED_TRACE("seed " + std::to_string(seed) + run.history);
        law(run, before);
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
  forEachEdit(wild, [](Run& run, Snapshot const& before) {
    ProvisionalTDF const& state = *run.state;
    ModelState copy = before.active;
    auto const erase = [&copy](auto const& param) {
      auto const object = copy.find(param.first);
      if (object == copy.end()) return;
      object->second.erase(param.second);
      if (object->second.empty()) copy.erase(object);
    };
    for (auto const& param : state.getNewlyUnavailParams()) erase(param);
    for (auto const& param : state.getNewlyAvailPotParams()) {
      if (!holds(state.getActiveTDFState(), param.first, param.second)) erase(param);
    }
    for (auto const* changed : {&state.getNewlyAvailParams(), &state.getModParams()}) {
      for (auto const& [path, name] : *changed) {
        if (holds(state.getActiveTDFState(), path, name)) copy[path][name] = state.getParamValue(path, name);
      }
    }
    EXPECT_EQ(copy, state.getActiveTDFState());
  });
}

TEST_F(ProvisionalTDFLaws, WithADeletedObjectAllBelowItIsGone) {
  forEachEdit(wild, [](Run& run, Snapshot const& before) {
    ParamSet const lost(run.state->getNewlyUnavailParams().begin(), run.state->getNewlyUnavailParams().end());
    ParamSet const added(run.state->getNewlyAvailParams().begin(), run.state->getNewlyAvailParams().end());
    for (std::string const& top : run.state->getDeletedObjects()) {
      for (auto const& [path, params] : before.active) {
        if (path != top && !path.starts_with(top + '/')) continue;
        for (auto const& param : params) EXPECT_TRUE(lost.contains({path, param.first})) << path << '/' << param.first;
      }
    }
    for (auto const& [path, params] : run.state->getActiveTDFState()) {
      for (auto const& param : params) {
        EXPECT_TRUE(holds(before.active, path, param.first) || added.contains({path, param.first}));
      }
    }
  });
}

TEST_F(ProvisionalTDFLaws, AnEditThatChangesNothingPublishesNothing) {
  int unchanged = 0;
  for (RandomProfile const profile : {wild, tame}) {
    forEachEdit(profile, [&](Run& run, Snapshot const& /*before*/) {
      if (hasUnknownTypes(run.random.rules)) return;
      run.walkAgain();  // behind an edit that was refused, all that is potential is news
      Snapshot const settled(*run.state);
      run.walkAgain();
      if (settled != Snapshot(*run.state)) return;  // rules that look ahead take more walks
      ++unchanged;
      EXPECT_TRUE(publishesNothing(*run.state));
    });
  }
  EXPECT_GT(unchanged, 1000);
}

TEST_F(ProvisionalTDFLaws, ThePotentialItemsAreTheFormerOnesWithTheNewAndWithoutTheGone) {
  forEachEdit(wild, [](Run& run, Snapshot const& before) {
    ProvisionalTDF const& state = *run.state;
    Snapshot const now(state);
    EXPECT_EQ(setOf(state.getNewlyAvailPotParams()), without(now.potentialParams, before.potentialParams));
    EXPECT_EQ(setOf(state.getNewlyAvailPotObjects()), without(now.potentialObjects, before.potentialObjects));

    ParamSet gone = without(before.potentialParams, now.potentialParams);
    std::erase_if(gone, [&](auto const& param) { return holds(now.active, param.first, param.second); });
    EXPECT_EQ(setOf(state.getNewlyUnavailPotParams()), gone);
    std::set<std::string> goneObjects = without(before.potentialObjects, now.potentialObjects);
    std::erase_if(goneObjects, [&](std::string const& path) { return hasObject(state, path); });
    EXPECT_EQ(setOf(state.getNewlyUnavailPotObjects()), goneObjects);

    ParamSet changed;
    for (auto const& param : now.potentialParams) {
      bool const wasPotential = before.potentialParams.contains(param);
      if (wasPotential && before.allowed.at(param) != now.allowed.at(param)) changed.insert(param);
    }
    // The subset on offer may change as well, and of a potential parameter it cannot be asked for.
    EXPECT_EQ(without(changed, setOf(state.getModPotParams())), ParamSet());
  });
}

TEST_F(ProvisionalTDFLaws, NothingIsPresentAndPotentialAtOnce) {
  forEachEdit(wild, [](Run& run, Snapshot const&) {
    Snapshot const now(*run.state);
    for (auto const& [path, name] : now.potentialParams)
      EXPECT_FALSE(holds(now.active, path, name)) << path << '/' << name;
    for (std::string const& path : now.potentialObjects) EXPECT_FALSE(hasObject(*run.state, path)) << path;
    EXPECT_EQ(now.potentialParams.size(), run.state->getAvailPotParams().size());
    EXPECT_EQ(now.potentialObjects.size(), run.state->getAvailPotObjects().size());
  });
}

TEST_F(ProvisionalTDFLaws, AStateThatIsSavedAndUsedAsGuideComesOutTheSame) {
  forEachEdit(tame, [](Run& run, Snapshot const&) {
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
    Snapshot const first(*run.state);
    for (int i = 0; i < 12; ++i) {
      RandomEdit const edit = run.random.nextEdit();
      if (edit.kind != RandomEdit::BaseUpdate) apply(edit, *run.state);
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
    EXPECT_EQ(Snapshot(again), first) << "seed " << seed;
  }
}

TEST_F(ProvisionalTDFLaws, BetweenTwoEditsTheStateIsWhole) {
  forEachEdit(wild, [](Run& run, Snapshot const&) {
    ProvisionalTDF const& state = *run.state;
    auto const isProbe = [](std::string const& path) { return path.find("__%%dummy%%__") != std::string::npos; };
    for (auto const& [path, params] : state.getActiveTDFState()) {
      EXPECT_TRUE(path == RandomCase::root || path.starts_with(RandomCase::root + '/')) << path;
      EXPECT_FALSE(isProbe(path)) << path;
      EXPECT_FALSE(params.empty()) << path;
      for (auto const& [name, value] : params) EXPECT_EQ(state.getParamValue(path, name), value);
    }
    for (auto const& path : state.getPathExpansion(RandomCase::root + "/**", "")) EXPECT_FALSE(isProbe(path)) << path;
    for (auto const& param : state.getAvailPotParams()) EXPECT_FALSE(isProbe(param.first)) << param.first;
    for (auto const& path : state.getAvailPotObjects()) EXPECT_FALSE(isProbe(path)) << path;
    for (auto const* list : {&state.getNewlyAvailParams(), &state.getModParams(), &state.getNewlyUnavailParams()}) {
      for (auto const& param : *list) EXPECT_FALSE(isProbe(param.first)) << param.first;
    }
    for (auto const& path : state.getDeletedObjects()) EXPECT_FALSE(isProbe(path)) << path;
    for (auto const& param : state.getModQuantParams()) EXPECT_FALSE(isProbe(param.first)) << param.first;

    Strings const& all = state.getEmptyParameters(false);
    Strings const& typed = state.getEmptyParameters(true);
    EXPECT_TRUE(without(setOf(typed), setOf(all)).empty());
    for (std::string const& path : all) {
      auto const slash = path.rfind('/');
      EXPECT_TRUE(holds(state.getActiveTDFState(), path.substr(0, slash), path.substr(slash + 1))) << path;
      EXPECT_EQ(state.getParamValue(path.substr(0, slash), path.substr(slash + 1)), "") << path;
    }
  });
}

}  // namespace
}  // namespace tarn
