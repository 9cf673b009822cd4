// Conversions between units, as the units library knows them.
#include "units/UnitLibrary.h"

#include <gtest/gtest.h>

#include <string>

namespace tarn::rules {
namespace {

using Status = UnitConversion::Status;

struct Known {
  std::string from;
  std::string to;
  double factor;
  double offset;
};

TEST(UnitLibrary, KnowsFactorsAndOffsetsToTheLastDigit) {
  Known const table[] = {
      {"V", "V", 1, 0},         {"mV", "V", 0.001, 0},       {"kV", "V", 1000, 0},
      {"min", "s", 60, 0},      {"in", "m", 0.0254, 0},      {"mm^2", "m^2", 1e-6, 0},
      {"degC", "K", 1, 273.15}, {"K", "degC", 1, -273.15},   {"degF", "K", 5.0 / 9, 459.67 * 5 / 9},
      {"bar", "Pa", 100000, 0}, {"MHz", "kHz", 1000, 0},     {"rad", "degree", 180 / 3.14159265358979323846, 0},
      {"mA h", "C", 3.6, 0},    {" mV ", "V", 0.001, 0},     {"%", "1", 0.01, 0},
      {"us", "s", 1e-6, 0},     {"\xC2\xB5s", "s", 1e-6, 0}, {"", "%", 100, 0},
  };
  for (auto const& row : table) {
    auto const found = conversionBetween(row.from, row.to);
    EXPECT_EQ(found.status, Status::Known) << row.from << " to " << row.to;
    EXPECT_DOUBLE_EQ(found.factor, row.factor) << row.from << " to " << row.to;
    EXPECT_DOUBLE_EQ(found.offset, row.offset) << row.from << " to " << row.to;
  }
}

TEST(UnitLibrary, ReportsWhichUnitItDoesNotKnow) {
  EXPECT_EQ(conversionBetween("widget", "V").status, Status::UnknownFrom);
  EXPECT_EQ(conversionBetween("V", "widget").status, Status::UnknownTo);
  EXPECT_EQ(conversionBetween("[", "V").status, Status::UnknownFrom);
}

TEST(UnitLibrary, RefusesUnitsOfDifferentQuantities) {
  EXPECT_EQ(conversionBetween("kg", "V").status, Status::Different);
  EXPECT_EQ(conversionBetween("1", "m").status, Status::Different);
}

TEST(UnitLibrary, DoesNotTakeRadiansForPlainNumbers) {
  EXPECT_EQ(conversionBetween("rpm", "rad/s").status, Status::Known);
  EXPECT_EQ(conversionBetween("rpm", "Hz").status, Status::Different);
  EXPECT_EQ(conversionBetween("rad s^-1", "Hz").status, Status::Different);
  EXPECT_EQ(conversionBetween("rad^2", "sr").status, Status::Known);
}

TEST(UnitLibrary, DoesNotConvertScalesThatAreNotLinear) {
  EXPECT_EQ(conversionBetween("dBm", "W").status, Status::NotLinear);
}

TEST(UnitLibrary, ReadsNoTextThatCannotBeAUnit) {
  EXPECT_EQ(conversionBetween(std::string(std::size_t{1} << 20, 'm'), "m").status, Status::UnknownFrom);
  EXPECT_EQ(conversionBetween(std::string("m\0m", 3), "m").status, Status::UnknownFrom);
}

TEST(UnitLibrary, WritesNothing) {
  testing::internal::CaptureStderr();
  (void)conversionBetween("widget", "V");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace tarn::rules
