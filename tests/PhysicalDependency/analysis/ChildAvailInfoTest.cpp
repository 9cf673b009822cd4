// The record of a type of children that onChildCheck gets.

#include <tarn/ChildAvailInfo.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <tarn/EvalContext.h>
#include <tarn/PhysicsData.h>

#include "support/ContinuingWalk.h"
#include "support/MapModel.h"
#include "support/Rules.h"

namespace tarn {
namespace {

using test::listOf;
using test::MapModel;
using test::never;
using test::Rules;
using Strings = std::vector<std::string>;

/// Records the content of each child record of a walk.
class ChildWalk final : public test::ContinuingWalk {
 public:
  using ContinuingWalk::ContinuingWalk;
  Strings told;

 private:
  HandlerStatus onChildCheck(ChildAvailInfo const* info) override {
    std::string line = info->getObjPath() + '|' + info->getType() + ':';
    if (info->isAvailable()) line += " available";
    if (info->isRequired()) line += " required";
    if (info->isSingleton()) line += " singleton";
    if (info->hasValidationRelaxed()) line += " relaxed";
    if (info->isCoupled()) line += " coupled";
    if (info->hasAllowedNames()) line += " named";
    auto const [allowedBegin, allowedEnd] = info->getAllowedNames();
    for (auto name = allowedBegin; name != allowedEnd; ++name) line += " allowed=" + *name;
    auto const [defaultBegin, defaultEnd] = info->getDefaultNames();
    for (auto name = defaultBegin; name != defaultEnd; ++name) line += " default=" + *name;
    told.push_back(line);
    return Continue;
  }
};

class ChildAvailInfoTest : public testing::Test {
 protected:
  Rules rotor() { return {rules_, "/Case/Domain"}; }

  Strings told() {
    MapModel const model{{"/Case/Domain:rotor", {}}};
    EvalContext context(&model);
    ChildWalk walk(&rules_);
    walk.analyse("/Case/Domain:rotor", &context);
    return walk.told;
  }

  PhysicsData rules_;
};

TEST_F(ChildAvailInfoTest, EachMarkIsToldByItsOwnQuestion) {
  rotor().child("Plain").child("Required").required().child("Singleton").singleton().child("Relaxed").relaxed();
  rotor().child("Coupled").coupled().child("Gone").availableWhen(never());
  EXPECT_EQ(told(), (Strings{"/Case/Domain:rotor|Plain: available", "/Case/Domain:rotor|Required: available required",
                             "/Case/Domain:rotor|Singleton: available singleton",
                             "/Case/Domain:rotor|Relaxed: available relaxed",
                             "/Case/Domain:rotor|Coupled: available coupled", "/Case/Domain:rotor|Gone:"}));
}

TEST_F(ChildAvailInfoTest, AChildWithAllowedNamesIsCoupledAndHasNoDefaultNames) {
  rotor().child("Boundary").allowedNames({"inlet", "outlet"}).defaultNames({"wall"});
  EXPECT_EQ(told(), Strings{"/Case/Domain:rotor|Boundary: available coupled named allowed=inlet allowed=outlet"});
}

TEST_F(ChildAvailInfoTest, AChildWithDefaultNamesHasNoAllowedNames) {
  rotor().child("Boundary").defaultNames({"wall"});
  EXPECT_EQ(told(), Strings{"/Case/Domain:rotor|Boundary: available default=wall"});
}

TEST_F(ChildAvailInfoTest, AChildWithAllowedNamesThatComeOutEmptyIsUnavailableAndNamed) {
  rotor().child("Boundary").allowedNames(listOf("Openings"));
  EXPECT_EQ(told(), Strings{"/Case/Domain:rotor|Boundary: coupled named"});
}

TEST_F(ChildAvailInfoTest, OfAChildWhoseConditionDoesNotHoldNoNamesAreKnown) {
  rotor().child("Boundary").allowedNames({"inlet"}).availableWhen(never());
  rotor().child("Wall").defaultNames({"wall"}).availableWhen(never());
  EXPECT_EQ(told(), (Strings{"/Case/Domain:rotor|Boundary: coupled", "/Case/Domain:rotor|Wall:"}));
}

TEST_F(ChildAvailInfoTest, ASingletonWithAllowedNamesIsCoupledButNotNamed) {
  rotor().child("Axis").singleton().allowedNames({"main"});
  EXPECT_EQ(told(), Strings{"/Case/Domain:rotor|Axis: available singleton coupled allowed=main"});
}

TEST_F(ChildAvailInfoTest, OneChildsNamesDoNotShowInTheNext) {
  rotor().child("Wall").defaultNames({"wall"}).child("Boundary").allowedNames({"inlet"}).child("Probe");
  EXPECT_EQ(told(), (Strings{"/Case/Domain:rotor|Wall: available default=wall",
                             "/Case/Domain:rotor|Boundary: available coupled named allowed=inlet",
                             "/Case/Domain:rotor|Probe: available"}));
}

}  // namespace
}  // namespace tarn
