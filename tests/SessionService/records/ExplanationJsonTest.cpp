#include <tarn/service/ExplanationJson.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include <tarn/service/JsonText.h>

namespace tarn::service {
namespace {

TEST(ExplanationJson, NumbersAreWholeWhereTheyAreAndNullWhereThereIsNone) {
  EXPECT_EQ(jsonLine(numberAsJson(3)), "3");
  EXPECT_EQ(jsonLine(numberAsJson(-0.5)), "-0.5");
  EXPECT_EQ(jsonLine(numberAsJson(1e300)), "1e+300");
  EXPECT_EQ(jsonLine(numberAsJson(std::nan(""))), "null");
  EXPECT_EQ(jsonLine(numberAsJson(std::numeric_limits<double>::infinity())), "null");
}

TEST(ExplanationJson, AnExplanationThatWasNotMadeIsNull) {
  EXPECT_EQ(jsonLine(explanationAsJson({})), "null");
}

}  // namespace
}  // namespace tarn::service
