// The probe object: what is off while it exists, and that nothing remains of it.

#include "provisional/NamedObjectProbe.h"

#include <gtest/gtest.h>

#include <string>

#include <tarn/DynamicTDF.h>
#include <tarn/ModifiedQuantityTracker.h>
#include <tarn/PotentialUpdateTracker.h>

#include "PhysicalDependency/provisional/ProvisionalFixture.h"
#include "PhysicalDependency/trackers/StatedParam.h"

namespace tarn {
namespace {

using test::rotor;

class NamedObjectProbeTest : public testing::Test {
 protected:
  NamedObjectProbeTest() { active_.createObject("/Case", "Domain", "rotor"); }

  std::string adjusted(std::string const& value) {
    test::StatedParam const info(TDFParam::Real);
    return quantities_.modifyQuantity(&active_, rotor, "Inflow", value, &info);
  }

  std::string const path_ = rotor + "/Boundary:__%%dummy%%__";
  test::FlowModifier modifier_;
  DynamicTDF active_;
  DynamicTDF guide_;
  PotentialUpdateTracker potential_;
  ModifiedQuantityTracker quantities_{&modifier_};
  NamedObjectProbe probe_{active_, guide_, potential_, quantities_};
};

TEST_F(NamedObjectProbeTest, AtTheStartThereIsNone) {
  EXPECT_FALSE(probe_.inTestNamedObject());
  EXPECT_FALSE(probe_.isTestNamedObjectPath(""));
  EXPECT_FALSE(probe_.isTestNamedObjectPath(path_));
}

TEST_F(NamedObjectProbeTest, ItIsAnObjectOfTheActiveTreeUnderANameOfItsOwn) {
  probe_.createTestNamedObject(rotor, "Boundary");
  EXPECT_TRUE(probe_.inTestNamedObject());
  EXPECT_TRUE(probe_.isTestNamedObjectPath(path_));
  EXPECT_FALSE(probe_.isTestNamedObjectPath(rotor));
  EXPECT_TRUE(active_.hasObject(path_));
}

TEST_F(NamedObjectProbeTest, WhileItExistsNothingIsRecordedAndNoQuantityAdjusted) {
  probe_.createTestNamedObject(rotor, "Boundary");
  active_.setParameter(path_, "Kind", "Wall");
  EXPECT_TRUE(active_.getAddedParameters().empty());
  EXPECT_EQ(adjusted("1"), "1");
}

TEST_F(NamedObjectProbeTest, NothingRemainsOfItAndAllIsOnAgain) {
  potential_.start();
  probe_.createTestNamedObject(rotor, "Boundary");
  active_.setParameter(path_ + "/Patch", "Area", "1");
  guide_.setParameter(path_, "Kind", "Wall");
  potential_.addParam(path_, "Label");
  potential_.addObject(path_ + "/Turbulence");
  potential_.addParam(rotor, "Title");
  probe_.deleteTestNamedObject();

  EXPECT_FALSE(probe_.inTestNamedObject());
  EXPECT_FALSE(active_.hasObject(path_));
  EXPECT_TRUE(active_.getDeletedParameters().empty());
  EXPECT_TRUE(active_.getDeletedObjects().empty());
  EXPECT_FALSE(guide_.hasObject(path_));
  EXPECT_EQ(potential_.getParams().size(), 1U);
  EXPECT_TRUE(potential_.getObjects().empty());
  active_.setParameter(rotor, "Title", "Impeller");
  EXPECT_EQ(active_.getAddedParameters().size(), 1U);
  EXPECT_EQ(adjusted("1"), "1 [kg/s]");
}

TEST_F(NamedObjectProbeTest, ForgettingWhereItIsTakesNothingBack) {
  probe_.createTestNamedObject(rotor, "Boundary");
  probe_.clearPath();
  EXPECT_FALSE(probe_.inTestNamedObject());
  EXPECT_TRUE(active_.hasObject(path_));
  EXPECT_EQ(adjusted("1"), "1");
}

}  // namespace
}  // namespace tarn
