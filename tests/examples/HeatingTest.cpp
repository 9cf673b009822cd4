// Edits of the house in examples/heating: what the rules do by templates, named values and named objects follows.

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tarn/ModelText.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/rules/RuleLoader.h>
#include <tarn/session/Session.h>

#include "Places.h"

namespace tarn {
namespace {

using session::Session;
using testing::ElementsAre;
using testing::IsEmpty;

class Heating : public testing::Test {
 protected:
  static std::unique_ptr<PhysicsData> rules() { return rules::loadRules(folder + "/rules"); }
  static std::string const folder;

  bool set(std::string const& path, std::string const& name, std::string const& value) {
    return session_->edit(Edit::setParam(path, name, value)).applied();
  }
  [[nodiscard]] bool has(std::string const& path) const { return session_->provisional().hasObject(path); }
  [[nodiscard]] std::vector<std::string> messages() const {
    std::vector<std::string> all;
    for (auto const& finding : session_->review().list) all.push_back(finding.message);
    return all;
  }

  std::unique_ptr<PhysicsData> const rules_ = rules();
  std::unique_ptr<Session> const session_ =
      Session::open(*rules_, ModelText::read(folder + "/models/house.tdf")).session;
};

std::string const Heating::folder = TARN_SOURCE_DIR "/examples/heating";

TEST_F(Heating, NothingIsWrongWithTheHouse) {
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(Heating, AMixingValveGoesWhenTheBoilerIsNotHotterThanTheCircuit) {
  ASSERT_TRUE(has("/Plant/Circuit:ground/Mixing Valve"));
  EXPECT_FALSE(has("/Plant/Circuit:upstairs/Mixing Valve"));

  ASSERT_TRUE(set("/Plant/Boiler:main", "Flow Temperature", "35 [degC]"));
  EXPECT_FALSE(has("/Plant/Circuit:ground/Mixing Valve"));

  ASSERT_TRUE(set("/Plant/Boiler:main", "Flow Temperature", "330 [K]"));
  EXPECT_TRUE(has("/Plant/Circuit:ground/Mixing Valve"));
  EXPECT_TRUE(has("/Plant/Circuit:upstairs/Mixing Valve"));
}

TEST_F(Heating, AnOfficeHasAMeterForEachCircuit) {
  EXPECT_FALSE(has("/Plant/Meter:ground"));
  ASSERT_TRUE(set("/Plant", "Building", "Office"));
  EXPECT_TRUE(has("/Plant/Meter:ground"));
  EXPECT_TRUE(has("/Plant/Meter:upstairs"));

  ASSERT_TRUE(session_->edit(Edit::renameObject("/Plant/Circuit:ground", "cellar")).applied());
  EXPECT_FALSE(has("/Plant/Meter:ground"));
  EXPECT_TRUE(has("/Plant/Meter:cellar"));
}

TEST_F(Heating, ANewBoilerComesWithEverythingThatItsTemplatesBring) {
  ASSERT_TRUE(session_->edit(Edit::addObject("/Plant/Boiler:spare")).applied());
  EXPECT_TRUE(has("/Plant/Boiler:spare/Pump"));
  auto const head = session_->lookParam("/Plant/Boiler:spare/Pump", "Head");
  ASSERT_TRUE(head);
  EXPECT_EQ(head->value, "0.4 [bar]");
  EXPECT_THAT(session_->params("/Plant/Boiler:spare/Pump"),
              ElementsAre("Flow Rate", "Head", "Speed Control", "Maker", "Serial Number"));
}

TEST_F(Heating, AConsumerMoreCanBeTooMuchForTheBoiler) {
  ASSERT_TRUE(session_->edit(Edit::addObject("/Plant/Circuit:ground/Consumer:hall")).applied());
  ASSERT_TRUE(set("/Plant/Circuit:ground/Consumer:hall", "Room", "Hall"));
  ASSERT_TRUE(set("/Plant/Circuit:ground/Consumer:hall", "Power", "8 [kW]"));
  EXPECT_THAT(messages(), ElementsAre("The boilers have less than 16 kW."));
}

TEST_F(Heating, TheLargestNumberOfCircuitsIsANamedValueThatFollowsTheBuilding) {
  for (std::string const name : {"a", "b", "c"}) {
    ASSERT_TRUE(session_->edit(Edit::addObject("/Plant/Circuit:" + name)).applied());
  }
  auto const isAboutCounts = [](std::string const& message) {
    return message.find("may have at most 4") != std::string::npos;
  };
  auto all = messages();
  EXPECT_EQ(std::count_if(all.begin(), all.end(), isAboutCounts), 1);
  ASSERT_TRUE(set("/Plant", "Building", "Factory"));
  all = messages();
  EXPECT_EQ(std::count_if(all.begin(), all.end(), isAboutCounts), 0);
}

}  // namespace
}  // namespace tarn
