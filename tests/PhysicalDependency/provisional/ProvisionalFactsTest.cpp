// Rollbacks of the facts of a provisional state. Each test changes one of them after a mark.

#include "provisional/ProvisionalFacts.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "PhysicalDependency/trackers/StatedParam.h"

namespace tarn {
namespace {

using test::StatedParam;

std::string const rotor = "/Case/Domain:rotor";

/// A guide with one object.
std::unique_ptr<DynamicTDF> guideWith(std::string const& object) {
  auto guide = std::make_unique<DynamicTDF>(false);
  guide->createObject("/Case", "Domain", object);
  return guide;
}

class ProvisionalFactsTest : public testing::Test {
 protected:
  template <class Change>
  void changeAndRollBack(Change const& change) {
    Journal::Mark const mark = facts_.journal().mark();
    change();
    facts_.journal().rollback(mark);
  }

  ProvisionalFacts facts_{nullptr};
};

TEST_F(ProvisionalFactsTest, AChangeOfTheGuideIsRolledBack) {
  facts_.setGuideParam(rotor, "Motion", "Rotating");
  changeAndRollBack([this] {
    facts_.setGuideParam(rotor, "Motion", "Stationary");
    facts_.setGuideParam(rotor, "Title", "impeller");
    facts_.createGuideObject("/Case", "Domain", "stator");
    facts_.deleteGuideObject(rotor);
  });
  EXPECT_EQ(facts_.getGuideValue(rotor, "Motion"), "Rotating");
  EXPECT_FALSE(facts_.isParamInGuide(rotor, "Title"));
  EXPECT_FALSE(facts_.isObjectInGuide("/Case/Domain:stator"));
}

TEST_F(ProvisionalFactsTest, AnotherGuideIsRolledBackWithItsLaterChanges) {
  facts_.startWithGuide(guideWith("rotor"), true);
  changeAndRollBack([this] {
    facts_.setGuideParam(rotor, "Motion", "Rotating");
    facts_.startWithGuide(guideWith("stator"), false);
    facts_.setGuideParam("/Case/Domain:stator", "Motion", "Stationary");
    facts_.startWithGuide(guideWith("casing"), true);
  });
  EXPECT_TRUE(facts_.isObjectInGuide(rotor));
  EXPECT_FALSE(facts_.isParamInGuide(rotor, "Motion"));
  EXPECT_FALSE(facts_.isObjectInGuide("/Case/Domain:stator"));
  EXPECT_TRUE(facts_.hasBaseObject());
}

TEST_F(ProvisionalFactsTest, ChangesOfANewGuideAreRolledBackToAMarkAfterIt) {
  Journal::Mark const outer = facts_.journal().mark();
  facts_.startWithGuide(guideWith("stator"), true);
  changeAndRollBack([this] { facts_.createGuideObject("/Case", "Domain", "casing"); });
  EXPECT_TRUE(facts_.isObjectInGuide("/Case/Domain:stator"));
  EXPECT_FALSE(facts_.isObjectInGuide("/Case/Domain:casing"));
  facts_.journal().release(outer);
  changeAndRollBack([this] { facts_.createGuideObject("/Case", "Domain", "casing"); });
  EXPECT_FALSE(facts_.isObjectInGuide("/Case/Domain:casing"));
}

TEST_F(ProvisionalFactsTest, WhetherThereIsABaseObjectIsRolledBack) {
  changeAndRollBack([this] { facts_.startWithGuide(guideWith("rotor"), false); });
  EXPECT_TRUE(facts_.hasBaseObject());
}

TEST_F(ProvisionalFactsTest, DecisionsAreRolledBack) {
  facts_.setObjActivity(rotor, true);
  changeAndRollBack([this] {
    facts_.setObjActivity(rotor, false);
    facts_.setParamActivity(rotor, "Title", true);
  });
  EXPECT_EQ(facts_.getObjActivity(rotor), ActivityState::SetOn);
  EXPECT_EQ(facts_.getParamActivity(rotor, "Title"), ActivityState::Unset);
}

TEST_F(ProvisionalFactsTest, ErasedDecisionsAreRolledBack) {
  facts_.setObjActivity(rotor, true);
  changeAndRollBack([this] { facts_.eraseFromOptActivityMaps(rotor); });
  EXPECT_EQ(facts_.getObjActivity(rotor), ActivityState::SetOn);
}

TEST_F(ProvisionalFactsTest, SelectedValuesAreRolledBack) {
  facts_.rememberSubsetValue(rotor, "Fluid", "Water");
  changeAndRollBack([this] {
    facts_.rememberSubsetValue(rotor, "Fluid", "Oil");
    facts_.rememberSubsetValues(rotor, "Fluid", {"Air"});
  });
  EXPECT_EQ(facts_.getSubsetSelectionValues(rotor, "Fluid"), (std::vector<std::string>{"Water"}));
}

TEST_F(ProvisionalFactsTest, DefaultNamesThatWereAppliedAreRolledBack) {
  changeAndRollBack([this] { facts_.setDefaultNamesApplied("/Case/Domain"); });
  EXPECT_FALSE(facts_.areDefaultNamesApplied("/Case/Domain"));
  facts_.setDefaultNamesApplied("/Case/Boundary");
  facts_.startWithGuide(guideWith("rotor"), true);  // takes back the default names of the update
  EXPECT_FALSE(facts_.areDefaultNamesApplied("/Case/Boundary"));
}

TEST_F(ProvisionalFactsTest, DefaultNamesThatANewGuideTookBackAreRolledBack) {
  facts_.setDefaultNamesApplied("/Case/Domain");
  changeAndRollBack([this] { facts_.startWithGuide(guideWith("rotor"), true); });
  EXPECT_TRUE(facts_.areDefaultNamesApplied("/Case/Domain"));
  facts_.startWithGuide(guideWith("rotor"), true);
  EXPECT_FALSE(facts_.areDefaultNamesApplied("/Case/Domain"));
}

TEST_F(ProvisionalFactsTest, ConfirmedDefaultNamesAreToBeConfirmedAgainAfterARollback) {
  facts_.setDefaultNamesApplied("/Case/Domain");
  changeAndRollBack([this] { facts_.confirmDefaultNames(); });
  facts_.startWithGuide(guideWith("rotor"), true);
  EXPECT_FALSE(facts_.areDefaultNamesApplied("/Case/Domain"));
}

TEST_F(ProvisionalFactsTest, TheActiveTreeAndItsLogAreRolledBack) {
  facts_.createObject("/Case", "Domain", "rotor");
  facts_.updateParam(rotor, "Motion", "Rotating");
  changeAndRollBack([this] {
    facts_.beginUpdate(UpdateKind::FullWalk);
    facts_.updateParam(rotor, "Motion", "Stationary");
    facts_.deleteObject(rotor);
  });
  DynamicTDF const& active = facts_.outcome().active;
  EXPECT_EQ(active.getParameterValue(rotor, "Motion"), "Rotating");
  EXPECT_EQ(active.getAddedParameters(), (std::vector<DynamicTDF::ParamId>{{rotor, "Motion"}}));
  EXPECT_TRUE(active.getModifiedParameters().empty());
  EXPECT_TRUE(active.getDeletedObjects().empty());
}

TEST_F(ProvisionalFactsTest, WhetherChangesArePublishedIsRolledBack) {
  changeAndRollBack([this] { facts_.publishChanges(false); });
  facts_.updateParam(rotor, "Motion", "Rotating");
  EXPECT_EQ(facts_.outcome().active.getAddedParameters().size(), 1U);
}

TEST_F(ProvisionalFactsTest, BoundsAreRolledBack) {
  StatedParam const narrow = StatedParam(TDFParam::Real).dynamicBounds("0", "1");
  StatedParam const wide = StatedParam(TDFParam::Real).dynamicBounds("0", "9");
  facts_.updateBounds(rotor, "Speed", &narrow);
  changeAndRollBack([&] {
    facts_.beginUpdate(UpdateKind::FullWalk);
    facts_.updateBounds(rotor, "Speed", &wide);
    facts_.forgetBoundsAndQuantities();
  });
  EXPECT_EQ(facts_.outcome().bounds.getUpdatedBounds().at(rotor + "/Speed").second, "1");
  facts_.beginUpdate(UpdateKind::FullWalk);
  facts_.updateBounds(rotor, "Speed", &narrow);
  EXPECT_TRUE(facts_.outcome().bounds.getUpdatedBounds().empty());
}

}  // namespace
}  // namespace tarn
