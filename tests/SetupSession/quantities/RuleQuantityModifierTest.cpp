#include <tarn/session/RuleQuantityModifier.h>

#include <gtest/gtest.h>

#include <string>

#include <tarn/DynamicTDF.h>

#include "support/Rules.h"

namespace tarn::session {
namespace {

// An inlet whose flow is a mass flow or a volume flow, as another of its parameters says.
class RuleQuantityModifierTest : public testing::Test {
 protected:
  RuleQuantityModifierTest() {
    test::Rules inlet(rules_, "/Case/Inlet");
    inlet.quantity("Mass Flow", {"kg/s", "g/s"}).quantity("Dimensionless", {});
    inlet.param("Flow").type(TDFParam::Real).quantityType(test::valueOf("Flow Is"));
    inlet.param("Swirl").type(TDFParam::Real);
  }

  void flowIs(std::string const& type) { model_.setParameter("/Case/Inlet:hub", "Flow Is", type); }

  PhysicsData rules_;
  DynamicTDF model_{false};
  RuleQuantityModifier const modifier_{rules_};
  std::string type_ = "before";
};

TEST_F(RuleQuantityModifierTest, TheEvaluatedTypeCountsWhenTheRulesListIt) {
  flowIs("Mass Flow");
  EXPECT_EQ(modifier_.getQuantityType(&model_, "/Case/Inlet:hub", "Flow", type_), 1);
  EXPECT_EQ(type_, "Mass Flow");
}

TEST_F(RuleQuantityModifierTest, ATypeThatTheRulesDoNotListLeavesTheParameterAlone) {
  flowIs("Heat Flow");
  EXPECT_EQ(modifier_.getQuantityType(&model_, "/Case/Inlet:hub", "Flow", type_), 0);
  EXPECT_EQ(type_, "before");
}

TEST_F(RuleQuantityModifierTest, AParameterWithoutATypeOrWithoutARuleIsLeftAlone) {
  EXPECT_EQ(modifier_.getQuantityType(&model_, "/Case/Inlet:hub", "Swirl", type_), 0);
  EXPECT_EQ(modifier_.getQuantityType(&model_, "/Case/Inlet:hub", "Colour", type_), 0);
  EXPECT_EQ(modifier_.getQuantityType(&model_, "/Case/Outlet:hub", "Flow", type_), 0);
  EXPECT_EQ(type_, "before");
}

TEST_F(RuleQuantityModifierTest, ListedUnitsStayAndOthersBecomeTheFirst) {
  EXPECT_EQ(modifier_.getQuantityUnits("Mass Flow", "g/s"), "g/s");
  EXPECT_EQ(modifier_.getQuantityUnits("Mass Flow", "m^3/s"), "kg/s");
  EXPECT_EQ(modifier_.getQuantityUnits("Mass Flow", ""), "kg/s");
}

TEST_F(RuleQuantityModifierTest, UnitsStayWhereTheTypeIsUnknownOrListsNone) {
  EXPECT_EQ(modifier_.getQuantityUnits("Dimensionless", "rad"), "rad");
  EXPECT_EQ(modifier_.getQuantityUnits("Heat Flow", "W"), "W");
}

}  // namespace
}  // namespace tarn::session
