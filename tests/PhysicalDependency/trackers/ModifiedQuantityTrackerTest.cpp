// The path of a value through the tracker: when the modifier is asked, the value that results, and what is reported.

#include <tarn/ModifiedQuantityTracker.h>

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include <tarn/QuantityModifier.h>

#include "PhysicalDependency/trackers/StatedParam.h"
#include "support/MapModel.h"

namespace tarn {
namespace {

using test::MapModel;
using test::StatedParam;
using Quantities = std::map<std::string, std::string>;

std::string const inlet = "/Case/Domain:rotor/Boundary:inlet";

/// Says that every parameter measures what the test wants it to, and writes down what it is asked.
class InflowModifier final : public QuantityModifier {
 public:
  int getQuantityType(ModelTDF const* model, std::string const& objPath, std::string const& name,
                      std::string& quantityType) const override {
    asked.push_back(objPath + '|' + name + (model == expectedModel ? "" : " of another model"));
    quantityType = type;
    return answer;
  }
  std::string getQuantityUnits(std::string const& quantityType, std::string const& units) const override {
    unitsAsked.push_back(quantityType + '|' + units);
    return quantityType == "Mass Flow" ? "kg/s" : "m^3/s";
  }

  int answer = 1;
  std::string type = "Mass Flow";
  ModelTDF const* expectedModel = nullptr;
  mutable std::vector<std::string> asked;
  mutable std::vector<std::string> unitsAsked;
};

class ModifiedQuantityTrackerTest : public testing::Test {
 protected:
  ModifiedQuantityTrackerTest() { modifier_.expectedModel = &model_; }

  std::string pass(std::string const& value, TDFParam::Type type = TDFParam::Real) {
    StatedParam const info(type);
    return tracker_.modifyQuantity(&model_, inlet, "Inflow", value, &info);
  }
  static Quantities inflow(std::string const& type) { return {{inlet + "/Inflow", type}}; }

  MapModel model_;
  InflowModifier modifier_;
  ModifiedQuantityTracker tracker_{&modifier_};
};

TEST_F(ModifiedQuantityTrackerTest, APlainNumberGetsTheUnitsOfItsQuantity) {
  EXPECT_EQ(pass("1.5"), "1.5 [kg/s]");
  EXPECT_EQ(modifier_.unitsAsked, std::vector<std::string>{"Mass Flow|"});
}

TEST_F(ModifiedQuantityTrackerTest, AQuantityGetsOtherUnitsAndKeepsTheTextOfItsNumber) {
  EXPECT_EQ(pass("1.50e+0 [m^3/s]"), "1.50e+0 [kg/s]");
  EXPECT_EQ(modifier_.unitsAsked, std::vector<std::string>{"Mass Flow|m^3/s"});
}

TEST_F(ModifiedQuantityTrackerTest, TheModifierIsAskedForTheParameterInTheModel) {
  pass("1.5");
  EXPECT_EQ(modifier_.asked, std::vector<std::string>{inlet + "|Inflow"});
}

TEST_F(ModifiedQuantityTrackerTest, AnAdjustedParameterIsTold) {
  pass("1.5");
  EXPECT_EQ(tracker_.getModifiedParams(), inflow("Mass Flow"));
}

TEST_F(ModifiedQuantityTrackerTest, WithoutAModifierEveryValuePassesUnchanged) {
  ModifiedQuantityTracker tracker(nullptr);
  StatedParam const info(TDFParam::Real);
  EXPECT_EQ(tracker.modifyQuantity(&model_, inlet, "Inflow", "1.5 [m^3/s]", &info), "1.5 [m^3/s]");
  EXPECT_EQ(tracker.modifyQuantity(&model_, inlet, "Inflow", "  ", &info), "  ");
  EXPECT_EQ(tracker.getModifiedParams(), Quantities());
}

TEST_F(ModifiedQuantityTrackerTest, ADisabledTrackerLetsEveryValuePassUnchanged) {
  tracker_.enable(false);
  EXPECT_EQ(pass("1.5"), "1.5");
  EXPECT_EQ(modifier_.asked.size(), 0U);
  EXPECT_EQ(tracker_.getModifiedParams(), Quantities());
  tracker_.enable(true);
  EXPECT_EQ(pass("1.5"), "1.5 [kg/s]");
}

TEST_F(ModifiedQuantityTrackerTest, OnlyRealParametersAreAdjusted) {
  for (TDFParam::Type const type : {TDFParam::Integer, TDFParam::IntegerList, TDFParam::Logical, TDFParam::LogicalList,
                                    TDFParam::RealList, TDFParam::String, TDFParam::StringList}) {
    EXPECT_EQ(pass("1", type), "1") << TDFParam::typeName(type);
  }
  EXPECT_EQ(modifier_.asked.size(), 0U);
  EXPECT_EQ(tracker_.getModifiedParams(), Quantities());
}

TEST_F(ModifiedQuantityTrackerTest, ATextThatIsNoQuantityPassesUnchangedAndTheModifierIsNotAsked) {
  EXPECT_EQ(pass("Pump Curve"), "Pump Curve");
  EXPECT_EQ(modifier_.asked.size(), 0U);
  EXPECT_EQ(tracker_.getModifiedParams(), Quantities());
}

TEST_F(ModifiedQuantityTrackerTest, AValueThatTheModifierLeavesAlonePassesUnchanged) {
  for (int const answer : {0, 2, -1}) {
    modifier_.answer = answer;
    EXPECT_EQ(pass("1.5 [m^3/s]"), "1.5 [m^3/s]") << answer;
  }
  EXPECT_EQ(modifier_.unitsAsked.size(), 0U);
  EXPECT_EQ(tracker_.getModifiedParams(), Quantities());
}

TEST_F(ModifiedQuantityTrackerTest, ABlankValueBecomesEmptyAndItsParameterIsTold) {
  EXPECT_EQ(pass(" \t"), "");
  EXPECT_EQ(modifier_.unitsAsked.size(), 0U);
  EXPECT_EQ(tracker_.getModifiedParams(), inflow("Mass Flow"));
}

TEST_F(ModifiedQuantityTrackerTest, AnEmptyValueStaysEmptyAndItsParameterIsTold) {
  EXPECT_EQ(pass(""), "");
  EXPECT_EQ(tracker_.getModifiedParams(), inflow("Mass Flow"));
}

TEST_F(ModifiedQuantityTrackerTest, ABlankValueThatTheModifierLeavesAloneKeepsItsWhiteSpace) {
  modifier_.answer = 0;
  EXPECT_EQ(pass(" \t"), " \t");
  EXPECT_EQ(tracker_.getModifiedParams(), Quantities());
}

TEST_F(ModifiedQuantityTrackerTest, TheSameQuantityInTheNextBatchIsNotToldButTheValueIsRewritten) {
  pass("1.5");
  tracker_.reset();
  EXPECT_EQ(pass("2 [m^3/s]"), "2 [kg/s]");
  EXPECT_EQ(tracker_.getModifiedParams(), Quantities());
}

TEST_F(ModifiedQuantityTrackerTest, AnotherQuantityInTheNextBatchIsTold) {
  pass("1.5");
  tracker_.reset();
  modifier_.type = "Volume Flow";
  EXPECT_EQ(pass("1.5 [kg/s]"), "1.5 [m^3/s]");
  EXPECT_EQ(tracker_.getModifiedParams(), inflow("Volume Flow"));
}

TEST_F(ModifiedQuantityTrackerTest, OfTwoQuantitiesInABatchTheFirstIsToldAndTheLastIsRemembered) {
  pass("1.5");
  modifier_.type = "Volume Flow";
  pass("1.5");
  EXPECT_EQ(tracker_.getModifiedParams(), inflow("Mass Flow"));
  tracker_.reset();
  pass("1.5");
  EXPECT_EQ(tracker_.getModifiedParams(), Quantities());
  modifier_.type = "Mass Flow";
  pass("1.5");
  EXPECT_EQ(tracker_.getModifiedParams(), inflow("Mass Flow"));
}

}  // namespace
}  // namespace tarn
