// Rollbacks of the trackers. The next batch shows the remembered values: only a difference from them is an update.

#include "trackers/TrackerAccess.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include <tarn/QuantityModifier.h>

#include "PhysicalDependency/trackers/StatedParam.h"
#include "journal/Journal.h"
#include "support/MapModel.h"

namespace tarn {
namespace {

using test::StatedParam;

std::string const inlet = "/Case/Domain:rotor/Boundary:inlet";

class BoundsRollback : public testing::Test {
 protected:
  void see(std::string const& name, std::string const& upper) {
    StatedParam const info = StatedParam(TDFParam::Real).dynamicBounds("0", upper);
    TrackerAccess::updateBounds(tracker_, inlet, name, &info, journal_.isRecording() ? &journal_ : nullptr);
  }
  /// The updates of a batch in which the parameters have these upper bounds.
  std::map<std::string, std::string> updatesOf(std::map<std::string, std::string> const& uppers) {
    tracker_.reset();
    for (auto const& [name, upper] : uppers) see(name, upper);
    return updates();
  }
  [[nodiscard]] std::map<std::string, std::string> updates() const {
    std::map<std::string, std::string> uppers;
    for (auto const& [path, bounds] : tracker_.getUpdatedBounds()) {
      uppers[path.substr(inlet.size() + 1)] = bounds.second;
    }
    return uppers;
  }

  Journal journal_;
  BoundsTracker tracker_;
};

TEST_F(BoundsRollback, RestoresTheBatch) {
  see("Mach Number", "1");
  Journal::Mark const mark = journal_.mark();
  TrackerAccess::reset(tracker_, &journal_);
  see("Mach Number", "2");
  see("Angle", "90");
  journal_.rollback(mark);
  EXPECT_EQ(updates(), (std::map<std::string, std::string>{{"Mach Number", "1"}}));
}

TEST_F(BoundsRollback, ForgetsNewEntriesOfTheSameBatch) {
  see("Mach Number", "1");
  Journal::Mark const mark = journal_.mark();
  see("Angle", "90");
  journal_.rollback(mark);
  EXPECT_EQ(updates(), (std::map<std::string, std::string>{{"Mach Number", "1"}}));
}

TEST_F(BoundsRollback, RestoresTheRememberedBounds) {
  see("Mach Number", "1");
  Journal::Mark const mark = journal_.mark();
  see("Mach Number", "2");
  see("Angle", "90");
  journal_.rollback(mark);
  EXPECT_EQ(updatesOf({{"Mach Number", "1"}, {"Angle", "90"}}), (std::map<std::string, std::string>{{"Angle", "90"}}));
}

TEST_F(BoundsRollback, RemembersAgainWhatWasForgotten) {
  see("Mach Number", "1");
  Journal::Mark const mark = journal_.mark();
  TrackerAccess::forget(tracker_, &journal_);
  EXPECT_TRUE(updates().empty());
  see("Mach Number", "2");
  journal_.rollback(mark);
  EXPECT_EQ(updates(), (std::map<std::string, std::string>{{"Mach Number", "1"}}));
  EXPECT_TRUE(updatesOf({{"Mach Number", "1"}}).empty());
}

TEST_F(BoundsRollback, RestoresWhetherBoundsAreTracked) {
  Journal::Mark const mark = journal_.mark();
  TrackerAccess::noteAtMark(tracker_, journal_);
  tracker_.enable(false);
  journal_.rollback(mark);
  EXPECT_EQ(updatesOf({{"Mach Number", "1"}}).size(), 1U);
}

/// The quantity type is the one that the test wants.
class AnyQuantity final : public QuantityModifier {
 public:
  int getQuantityType(ModelTDF const* /*model*/, std::string const& /*objPath*/, std::string const& /*name*/,
                      std::string& quantityType) const override {
    quantityType = type;
    return 1;
  }
  std::string getQuantityUnits(std::string const& /*quantityType*/, std::string const& units) const override {
    return units;
  }

  std::string type;
};

class QuantityRollback : public testing::Test {
 protected:
  void pass(std::string const& name, std::string const& type) {
    modifier_.type = type;
    StatedParam const info(TDFParam::Real);
    (void)TrackerAccess::modifyQuantity(tracker_, &model_, inlet, name, "1 [m]", &info,
                                        journal_.isRecording() ? &journal_ : nullptr);
  }
  [[nodiscard]] std::map<std::string, std::string> updates() const {
    std::map<std::string, std::string> types;
    for (auto const& [path, type] : tracker_.getModifiedParams()) types[path.substr(inlet.size() + 1)] = type;
    return types;
  }

  Journal journal_;
  test::MapModel model_;
  AnyQuantity modifier_;
  ModifiedQuantityTracker tracker_{&modifier_};
};

TEST_F(QuantityRollback, RestoresTheBatch) {
  pass("Inflow", "Mass Flow");
  Journal::Mark const mark = journal_.mark();
  pass("Outflow", "Mass Flow");
  TrackerAccess::reset(tracker_, &journal_);
  pass("Inflow", "Volume Flow");
  journal_.rollback(mark);
  EXPECT_EQ(updates(), (std::map<std::string, std::string>{{"Inflow", "Mass Flow"}}));
}

TEST_F(QuantityRollback, RestoresTheRememberedTypes) {
  pass("Inflow", "Mass Flow");
  Journal::Mark const mark = journal_.mark();
  pass("Inflow", "Volume Flow");
  pass("Outflow", "Mass Flow");
  journal_.rollback(mark);
  tracker_.reset();
  pass("Inflow", "Mass Flow");
  pass("Outflow", "Mass Flow");
  EXPECT_EQ(updates(), (std::map<std::string, std::string>{{"Outflow", "Mass Flow"}}));
}

TEST_F(QuantityRollback, RemembersAgainWhatWasForgotten) {
  pass("Inflow", "Mass Flow");
  Journal::Mark const mark = journal_.mark();
  TrackerAccess::forget(tracker_, &journal_);
  EXPECT_TRUE(updates().empty());
  journal_.rollback(mark);
  EXPECT_EQ(updates(), (std::map<std::string, std::string>{{"Inflow", "Mass Flow"}}));
  tracker_.reset();
  pass("Inflow", "Mass Flow");
  EXPECT_TRUE(updates().empty());
}

TEST_F(QuantityRollback, RestoresWhetherValuesAreAdjusted) {
  Journal::Mark const mark = journal_.mark();
  TrackerAccess::noteAtMark(tracker_, journal_);
  tracker_.enable(false);
  journal_.rollback(mark);
  pass("Inflow", "Mass Flow");
  EXPECT_EQ(updates().size(), 1U);
}

}  // namespace
}  // namespace tarn
