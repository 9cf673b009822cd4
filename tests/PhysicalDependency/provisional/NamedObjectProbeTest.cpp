// The probe object: what is off while it exists, and that nothing remains of it.

#include "provisional/NamedObjectProbe.h"

#include <gtest/gtest.h>

#include <string>

#include <tarn/DynamicTDF.h>
#include <tarn/PotentialUpdateTracker.h>

#include "PhysicalDependency/provisional/ProvisionalFixture.h"
#include "PhysicalDependency/trackers/StatedParam.h"
#include "provisional/ProvisionalFacts.h"

namespace tarn {
namespace {

using test::rotor;

class NamedObjectProbeTest : public testing::Test {
 protected:
  NamedObjectProbeTest() { facts_.createObject("/Case", "Domain", "rotor"); }

  std::string adjusted(std::string const& value) {
    test::StatedParam const info(TDFParam::Real);
    return facts_.modifyQuantity(&active_, rotor, "Inflow", value, &info);
  }

  std::string const path_ = rotor + "/Boundary:__%%dummy%%__";
  test::FlowModifier modifier_;
  ProvisionalFacts facts_{&modifier_};
  DynamicTDF const& active_ = facts_.outcome().active;
  PotentialUpdateTracker const& potential_ = facts_.outcome().offers;
  NamedObjectProbe probe_{facts_};
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
  facts_.updateParam(path_, "Kind", "Wall");
  EXPECT_TRUE(active_.getAddedParameters().empty());
  EXPECT_EQ(adjusted("1"), "1");
}

TEST_F(NamedObjectProbeTest, NothingRemainsOfItAndAllIsOnAgain) {
  facts_.beginUpdate(UpdateKind::FullWalk);
  probe_.createTestNamedObject(rotor, "Boundary");
  facts_.updateParam(path_ + "/Patch", "Area", "1");
  facts_.setGuideParam(path_, "Kind", "Wall");
  facts_.addPotentialParam(path_, "Label");
  facts_.addPotentialObject(path_ + "/Turbulence");
  facts_.addPotentialParam(rotor, "Title");
  probe_.deleteTestNamedObject();

  EXPECT_FALSE(probe_.inTestNamedObject());
  EXPECT_FALSE(active_.hasObject(path_));
  EXPECT_TRUE(active_.getDeletedParameters().empty());
  EXPECT_TRUE(active_.getDeletedObjects().empty());
  EXPECT_FALSE(facts_.isObjectInGuide(path_));
  EXPECT_EQ(potential_.getParams().size(), 1U);
  EXPECT_TRUE(potential_.getObjects().empty());
  facts_.updateParam(rotor, "Title", "Impeller");
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
