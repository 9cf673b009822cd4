// Which values the evaluated record allows.
#include <tarn/ParamAllowedValues.h>

#include <gtest/gtest.h>

namespace tarn {
namespace {

TEST(ParamAllowedValues, ByDefaultIsEmptyAndOfNoAllowedValueType) {
  ParamAllowedValues const record;
  EXPECT_FALSE(record.hasAllowedValues);
  EXPECT_FALSE(record.hasSubset);
  EXPECT_FALSE(record.allowsAnyValue);
  EXPECT_TRUE(record.isEmpty());
  EXPECT_FALSE(record.isAllowedValue("Water", false));
}

TEST(ParamAllowedValues, OfTwoListsHasAllowedValuesAndASubset) {
  ParamAllowedValues const record({"Water", "Air", "Oil"}, {"Air"});
  EXPECT_TRUE(record.hasAllowedValues);
  EXPECT_TRUE(record.hasSubset);
  EXPECT_FALSE(record.allowsAnyValue);
  EXPECT_EQ(record.allowedValues, (std::vector<std::string>{"Water", "Air", "Oil"}));
  EXPECT_EQ(record.subsetValues, (std::vector<std::string>{"Air"}));
}

TEST(ParamAllowedValues, AsksTheSubsetOnlyWhenToldAndWhenThereIsOne) {
  ParamAllowedValues record({"Water", "Air"}, {"Air"});
  EXPECT_TRUE(record.isAllowedValue("Water", false));
  EXPECT_FALSE(record.isAllowedValue("Water", true));
  EXPECT_TRUE(record.isAllowedValue("Air", true));
  record.hasSubset = false;
  EXPECT_TRUE(record.isAllowedValue("Water", true));
  EXPECT_FALSE(record.isAllowedValue("water", false));
  EXPECT_FALSE(record.isAllowedValue("", false));
}

TEST(ParamAllowedValues, AllowsEverythingWhenTheListIsAdvice) {
  ParamAllowedValues record({"Water"}, {"Water"});
  record.allowsAnyValue = true;
  EXPECT_TRUE(record.isAllowedValue("Mercury", false));
  EXPECT_TRUE(record.isAllowedValue("Mercury", true));
}

TEST(ParamAllowedValues, IsEmptyByTheAllowedValuesAlone) {
  EXPECT_TRUE(ParamAllowedValues({}, {"Air"}).isEmpty());
  EXPECT_FALSE(ParamAllowedValues({"Air"}, {}).isEmpty());
}

TEST(ParamAllowedValues, IsEqualWhenFlagsAndListsAgree) {
  ParamAllowedValues const record({"Water", "Air"}, {"Air"});
  EXPECT_TRUE(record.isEqualTo(ParamAllowedValues({"Water", "Air"}, {"Air"})));
  EXPECT_FALSE(record.isEqualTo(ParamAllowedValues({"Air", "Water"}, {"Air"})));
  EXPECT_FALSE(record.isEqualTo(ParamAllowedValues({"Water", "Air"}, {})));
  for (bool ParamAllowedValues::*const flag :
       {&ParamAllowedValues::hasAllowedValues, &ParamAllowedValues::hasSubset, &ParamAllowedValues::allowsAnyValue}) {
    ParamAllowedValues other = record;
    other.*flag = !(other.*flag);
    EXPECT_FALSE(record.isEqualTo(other));
  }
}

}  // namespace
}  // namespace tarn
