// The record of a finding: text and level.
#include <tarn/PhysicsErrorMsg.h>

#include <gtest/gtest.h>

namespace tarn {
namespace {

TEST(PhysicsErrorMsg, IsAFaultUnlessToldOtherwise) {
  PhysicsErrorMsg const message(std::string("There are outlets but no inlet."));
  EXPECT_EQ(message.message, "There are outlets but no inlet.");
  EXPECT_EQ(message.level, PhysicsErrorMsg::Fault);
}

TEST(PhysicsErrorMsg, KeepsTheLevelOfABetaMessage) {
  PhysicsErrorMsg const message("not released yet", PhysicsErrorMsg::Beta);
  EXPECT_EQ(message.message, "not released yet");
  EXPECT_EQ(static_cast<int>(message.level), 1);
}

}  // namespace
}  // namespace tarn
