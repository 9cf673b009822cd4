// Quantity types: which number a quantity counts by.
#include <tarn/QuantityType.h>

#include <gtest/gtest.h>

#include <limits>

namespace tarn {
namespace {

QuantityType voltage() {
  return QuantityType({{"V", true, 1, 0}, {"mV", true, 0.001, 0}, {"jar", false, 1, 0}});
}

QuantityType temperature() {
  return QuantityType({{"K", true, 1, 0}, {"degC", true, 1, 273.15}, {"degF", true, 5.0 / 9, 459.67 * 5 / 9}});
}

TEST(QuantityType, ANumberCountsInTheFirstUnit) {
  EXPECT_EQ(voltage().numberOf("1800 [mV]"), 1.8);
  EXPECT_EQ(voltage().numberOf("1.8 [V]"), 1.8);
}

TEST(QuantityType, AnOffsetMovesTheZeroPoint) {
  EXPECT_EQ(temperature().numberOf("20 [degC]"), 293.15);
  EXPECT_DOUBLE_EQ(*temperature().numberOf("68 [degF]"), 293.15);
}

TEST(QuantityType, ANumberWithoutUnitsCountsAsGivenInTheFirstUnit) {
  EXPECT_EQ(temperature().numberOf("20"), 20);
}

TEST(QuantityType, WhatCannotBeConvertedCountsByItsNumberAlone) {
  EXPECT_EQ(voltage().numberOf("5 [jar]"), 5);
  EXPECT_EQ(voltage().numberOf("5 [kg]"), 5);
  EXPECT_EQ(voltage().inFirstUnit({5, "5", "jar"}), std::nullopt);
  EXPECT_EQ(voltage().inFirstUnit({5, "5", "kg"}), std::nullopt);
}

TEST(QuantityType, ATextThatIsNoQuantityHasNoNumber) {
  EXPECT_EQ(voltage().numberOf("full"), std::nullopt);
}

TEST(QuantityType, ANumberInTheFirstUnitCanBeExpressedInAnotherUnit) {
  QuantityType const type = temperature();
  EXPECT_EQ(QuantityType::fromFirstUnit(293.15, *type.find("degC")), 20);
}

TEST(QuantityType, TheFirstUnitAlwaysConvertsToItself) {
  QuantityType const type({{"V", false, 7, 3}});
  EXPECT_EQ(type.numberOf("5 [V]"), 5);
  EXPECT_EQ(type.inFirstUnit({5, "5", "V"}), 5);
}

TEST(QuantityType, AFactorThatIsZeroOrNotFiniteConvertsNothing) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  QuantityType const type(
      {{"V", true, 1, 0}, {"none", true, 0, 0}, {"all", true, infinity, 0}, {"up", true, 1, infinity}});
  EXPECT_FALSE(type.find("none")->isConvertible);
  EXPECT_FALSE(type.find("all")->isConvertible);
  EXPECT_FALSE(type.find("up")->isConvertible);
  EXPECT_FALSE(type.hasConversions());
}

TEST(QuantityType, UnitsOnTheirOwnHaveNoConversions) {
  QuantityType const type(std::vector<std::string>{"V", "mV"});
  EXPECT_FALSE(type.hasConversions());
  EXPECT_EQ(type.numberOf("1800 [mV]"), 1800);
}

TEST(QuantityType, ConvertedNumbersAreEqualWithinTheErrorOfRounding) {
  EXPECT_TRUE(QuantityType::areEqual(0.1 + 0.2, 0.3));
  EXPECT_TRUE(QuantityType::areEqual(0, 0));
  EXPECT_FALSE(QuantityType::areEqual(1, 1.00000000001));
  EXPECT_FALSE(QuantityType::areEqual(0, 1e-300));
  EXPECT_FALSE(QuantityType::areEqual(std::numeric_limits<double>::quiet_NaN(), 1));
}

TEST(QuantityType, ATypeWithoutUnitsCountsNumbersAlone) {
  QuantityType const type(std::vector<std::string>{});
  EXPECT_EQ(type.firstUnit(), "");
  EXPECT_EQ(type.numberOf("5 [V]"), 5);
}

}  // namespace
}  // namespace tarn
