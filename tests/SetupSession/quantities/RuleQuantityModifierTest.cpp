#include <tarn/session/RuleQuantityModifier.h>

#include <gtest/gtest.h>

#include <memory>

#include <tarn/DynamicTDF.h>

#include "SetupSession/FlowRules.h"

namespace tarn::session {
namespace {

// An inlet whose flow is a mass flow or a volume flow, as another of its parameters says.
class RuleQuantityModifierTest : public testing::Test {
 protected:
  RuleQuantityModifierTest() {
    EXPECT_TRUE(rules_.addQuantityType("Mass Flow", {"kg/s", "g/s"}));
    EXPECT_TRUE(rules_.addQuantityType("Dimensionless", {}));
    ObjDependDef& inlet = rules_.addObject("/Case/Inlet");
    ParamValueDef flow = valueOfType(TDFParam::Real);
    flow.quantityType = valueOf("/Case/Inlet:hub", "Flow Is");
    EXPECT_TRUE(inlet.addParam(parameter("Flow"), std::move(flow)));
    EXPECT_TRUE(inlet.addParam(parameter("Swirl"), valueOfType(TDFParam::Real)));
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
