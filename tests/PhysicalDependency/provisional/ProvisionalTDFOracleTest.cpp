// The provisional state against a second, plain reading of what it should be, under random rules, models and edits.

#include <tarn/ProvisionalTDF.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "PhysicalDependency/provisional/ProvisionalFixture.h"
#include "support/PlainProvisional.h"
#include "support/RandomRules.h"

namespace tarn {
namespace {

using test::MapModel;
using test::PlainProvisional;
using test::RandomCase;
using test::RandomEdit;
using test::Strings;

constexpr std::uint32_t cases = 1000;
constexpr int editsOfACase = 12;  // with the start, more than ten thousand updates are compared

/// Whether both say the same; tells what differs.
testing::AssertionResult agree(ProvisionalTDF const& state, PlainProvisional const& plain) {
  auto const fail = [](char const* what) { return testing::AssertionFailure() << "they differ in " << what; };
  if (state.getActiveTDFState() != plain.activeState()) return fail("the active state");
  if (state.getAvailPotObjects() != plain.potentialObjects) return fail("the potential objects");
  auto potential = plain.potentialParams;
  std::stable_sort(potential.begin(), potential.end(), [](auto const& a, auto const& b) { return a.first < b.first; });
  auto const& params = state.getAvailPotParams();
  if (test::Pairs(params.begin(), params.end()) != potential) return fail("the potential parameters");
  if (state.getEmptyParameters(false) != plain.emptyParams) return fail("the empty parameters");
  if (state.getEmptyParameters(true) != plain.emptyTypedParams) return fail("the empty parameters of typed input");
  for (std::string const& parent : {RandomCase::root, RandomCase::root + "/Zone:a", RandomCase::root + "/Boundary:ab",
                                    RandomCase::root + "/Turbulence"}) {
    for (std::string const& type : RandomCase::types()) {
      if (state.isUserNamedTypeAvailable(parent, type) != plain.userNamedTypes.contains({parent, type})) {
        return fail("the types that may be added");
      }
    }
  }
  for (auto const& [path, values] : plain.activeState()) {
    for (auto const& [name, value] : values) {
      auto const valuesOf = [&, key = path + '/' + name](auto const& all) {
        auto const entry = all.find(key);
        return entry != all.end() ? entry->second : Strings();
      };
      if (state.getAllowedParamValues(path, name) != valuesOf(plain.allowedValues)) return fail("the allowed values");
      if (state.getSubsetAllowedParamValues(path, name) != valuesOf(plain.subsetValues)) return fail("the subset");
    }
  }
  return testing::AssertionSuccess();
}

TEST(ProvisionalTDFOracle, ParametersAndChildrenAgreeWithAPlainReading) {
  for (std::uint32_t seed = 1; seed <= cases; ++seed) {
    RandomCase random(seed);
    PhysicsData rules;
    random.rules.fill(rules);
    test::FlowModifier const modifier;
    MapModel base(random.base);
    ProvisionalTDF state(&rules, &modifier, RandomCase::root);
    PlainProvisional plain(random.rules, RandomCase::root);

    std::string history = "seed " + std::to_string(seed);
    state.initialise(&base, random.guide);
    plain.initialise(random.base, random.guide);
    ASSERT_TRUE(agree(state, plain)) << history;
    for (int i = 0; i < editsOfACase; ++i) {
      RandomEdit const edit = random.nextEdit();
      history += "\n" + edit.text();
      if (edit.kind == RandomEdit::BaseUpdate) {
        random.changeBase();
        base = MapModel(random.base);
        state.baseUpdate(&base);
        plain.baseUpdate(random.base);
      } else {
        apply(edit, state);
        apply(edit, plain);
      }
      ASSERT_TRUE(agree(state, plain)) << history;
    }
  }
}

}  // namespace
}  // namespace tarn
