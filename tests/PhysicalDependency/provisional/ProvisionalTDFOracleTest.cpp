// The provisional state is compared with a second, plain implementation, under random rules, models and edits.

#include <tarn/ProvisionalTDF.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

#include "PhysicalDependency/provisional/ProvisionalFixture.h"
#include "support/EditLaws.h"
#include "support/PlainProvisional.h"
#include "support/RandomRules.h"

namespace tarn {
namespace {

using test::MapModel;
using test::PlainProvisional;
using test::RandomCase;

constexpr std::uint32_t cases = 1000;
constexpr int editsOfACase = 12;  // with the start, more than ten thousand updates are compared

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
    ASSERT_EQ(difference(state, plain), "") << history;
    for (int i = 0; i < editsOfACase; ++i) {
      std::optional<Edit> const edit = random.nextEdit();
      history += "\n" + (edit ? test::textOf(*edit) : "base update");
      if (!edit) {
        random.changeBase();
        base = MapModel(random.base);
        state.baseUpdate(&base);
        plain.baseUpdate(random.base);
      } else {
        test::EditResult const result = test::resultOf(*edit, state);
        ASSERT_EQ(result, plain.apply(*edit)) << history;
      }
      ASSERT_EQ(difference(state, plain), "") << history;
    }
  }
}

}  // namespace
}  // namespace tarn
