// A failed assertion is an exception like any other of the family.
#include <tarn/TARNAssertImpl.h>

#include <gtest/gtest.h>

#include <tarn/Error.h>

namespace tarn {
namespace {

TEST(TARNAssertImpl, AFailedAssertionThrowsAndTellsConditionFileAndLine) {
  std::string text;
  errorType type = errorType::Unknown;
  try {
    TARNAssertImpl::assertFail("index < size", "DynamicTDF.cpp", 42);
  } catch (Error const& error) {
    text = error.getMessage();
    type = error.getType();
  }
  EXPECT_EQ(text, "assertion failed: index < size (DynamicTDF.cpp:42)");
  EXPECT_EQ(type, errorType::Assertion);
}

}  // namespace
}  // namespace tarn
