#include <tarn/TypeTree.h>

#include <memory>
#include <set>
#include <string>

#include <gmock/gmock.h>

#include <tarn/PathPattern.h>
#include <tarn/PhysicsData.h>

namespace {

using namespace tarn;
using testing::ElementsAre;
using testing::IsEmpty;

ChildAvail child(std::string const& type) {
  ChildAvail entry;
  entry.type = type;
  return entry;
}

/// A case with domains, which have boundaries and a motion, and with an output that only a deeper type mentions.
std::unique_ptr<PhysicsData> madeRules() {
  auto made = std::make_unique<PhysicsData>();
  made->addPertinentRoot("Case");
  (void)made->addObject("/Case").addChild(child("Domain"));
  (void)made->addObject("/Case/Domain").addChild(child("Boundary"));
  (void)made->addObject("/Case/Domain").addChild(child("Motion"));
  (void)made->addObject("/Case/Output/Monitor").addChild(child("Motion"));
  return made;
}

PhysicsData const& rules() {
  static auto const made = madeRules();
  return *made;
}

std::set<std::string> resolved(std::string const& pattern, std::string const& owner) {
  return TypeTree(rules()).resolve(PathPattern(pattern), owner);
}

TEST(TypeTree, HasTypesWithRulesTypesOfChildrenAndAllTypesAbove) {
  TypeTree const types(rules());
  for (char const* type :
       {"", "/Case", "/Case/Domain", "/Case/Domain/Motion", "/Case/Output", "/Case/Output/Monitor"}) {
    EXPECT_TRUE(types.knows(type)) << type;
  }
  EXPECT_FALSE(types.knows("/Case/Motion"));
  EXPECT_THAT(types.childTypes("/Case"), ElementsAre("Domain", "Output"));
  EXPECT_THAT(types.childTypes("/Case/Motion"), IsEmpty());
}

TEST(TypeTree, ResolvesPatternsWithoutRegardToNames) {
  EXPECT_THAT(resolved("Boundary:inlet", "/Case/Domain"), ElementsAre("/Case/Domain/Boundary"));
  EXPECT_THAT(resolved("../Motion", "/Case/Domain/Boundary"), ElementsAre("/Case/Domain/Motion"));
  EXPECT_THAT(resolved("/Case/Domain:*/Motion", "/Case/Output"), ElementsAre("/Case/Domain/Motion"));
  EXPECT_THAT(resolved("^Case/Output", "/Case/Domain/Boundary"), ElementsAre("/Case/Output"));
  EXPECT_THAT(resolved("*", "/Case/Domain"), ElementsAre("/Case/Domain/Boundary", "/Case/Domain/Motion"));
  EXPECT_THAT(resolved("/Case/**/Motion", "/Case"), ElementsAre("/Case/Domain/Motion", "/Case/Output/Monitor/Motion"));
}

TEST(TypeTree, ResolvesNothingForPathsThatNoRuleKnows) {
  EXPECT_THAT(resolved("Motion", "/Case"), IsEmpty());
  EXPECT_THAT(resolved("^Plant/Motion", "/Case/Domain"), IsEmpty());
  EXPECT_THAT(resolved("../..", "/Case"), IsEmpty());
}

}  // namespace
