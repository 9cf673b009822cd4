// A switch in the environment: which texts set it, and when it is read.
#include <tarn/BoolFromEnvironment.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace tarn {
namespace {

constexpr char const* variable = "TARN_TEST_SWITCH";

TEST(BoolFromEnvironment, IsOnForFourWordsOnly) {
  for (char const* const on : {"1", "true", "TRUE", "yes", "Yes", "on", "oN"}) {
    setenv(variable, on, 1);
    EXPECT_TRUE(BoolFromEnvironment(variable).value()) << on;
  }
  for (char const* const off : {"", "0", "false", "no", "off", "2", "11", " 1", "yes ", "tru", "y"}) {
    setenv(variable, off, 1);
    EXPECT_FALSE(BoolFromEnvironment(variable).value()) << off;
  }
  unsetenv(variable);
  EXPECT_FALSE(BoolFromEnvironment(variable).value());
}

TEST(BoolFromEnvironment, IsReadAtTheFirstQuestionAndKept) {
  unsetenv(variable);
  BoolFromEnvironment const flag(variable);
  setenv(variable, "on", 1);
  EXPECT_TRUE(flag.value());
  unsetenv(variable);
  EXPECT_TRUE(static_cast<bool>(flag));
}

}  // namespace
}  // namespace tarn
