#include <tarn/BetaLoggingController.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(BetaLoggingController, AFreshOneHoldsNothing) {
  BetaLoggingController const controller;

  EXPECT_FALSE(controller.anyLoggedMessages());
  EXPECT_THAT(controller.getObjAvailMessages("Turbulence"), IsEmpty());
  EXPECT_THAT(controller.getParamAvailMessages("Material"), IsEmpty());
  EXPECT_THAT(controller.getParamValAvailMessages("Material", "Oil"), IsEmpty());
}

TEST(BetaLoggingController, MessagesAreGivenForTheItemTheyWereGatheredFor) {
  BetaLoggingController controller;
  controller.gatherObjMessage("Turbulence", "of the child");
  controller.gatherParamMessage("Material", "of the parameter");
  controller.gatherParamValueMessage("Material", "Oil", "of the value");

  EXPECT_THAT(controller.getObjAvailMessages("Turbulence"), ElementsAre("of the child"));
  EXPECT_THAT(controller.getParamAvailMessages("Material"), ElementsAre("of the parameter"));
  EXPECT_THAT(controller.getParamValAvailMessages("Material", "Oil"), ElementsAre("of the value"));
  EXPECT_THAT(controller.getObjAvailMessages("Material"), IsEmpty());
  EXPECT_THAT(controller.getParamAvailMessages("Turbulence"), IsEmpty());
  EXPECT_THAT(controller.getParamValAvailMessages("Material", "Water"), IsEmpty());
  EXPECT_THAT(controller.getParamValAvailMessages("Oil", "Material"), IsEmpty());
}

TEST(BetaLoggingController, OneMessageOfAnyKindIsEnoughToHaveLoggedSome) {
  BetaLoggingController ofObject;
  ofObject.gatherObjMessage("Turbulence", "new");
  EXPECT_TRUE(ofObject.anyLoggedMessages());

  BetaLoggingController ofParam;
  ofParam.gatherParamMessage("Material", "new");
  EXPECT_TRUE(ofParam.anyLoggedMessages());

  BetaLoggingController ofValue;
  ofValue.gatherParamValueMessage("Material", "Oil", "new");
  EXPECT_TRUE(ofValue.anyLoggedMessages());
}

TEST(BetaLoggingController, AskingDoesNotTakeTheMessagesAway) {
  BetaLoggingController controller;
  controller.gatherParamMessage("Material", "new");

  EXPECT_THAT(controller.getParamAvailMessages("Material"), ElementsAre("new"));
  EXPECT_THAT(controller.getParamAvailMessages("Material"), ElementsAre("new"));
  EXPECT_TRUE(controller.anyLoggedMessages());
}

TEST(BetaLoggingController, AMessageIsKeptOnceAndDifferentOnesInTheirOrder) {
  BetaLoggingController controller;
  controller.gatherParamMessage("Material", "second thoughts");
  controller.gatherParamMessage("Material", "a first release");
  controller.gatherParamMessage("Material", "second thoughts");

  EXPECT_THAT(controller.getParamAvailMessages("Material"), ElementsAre("second thoughts", "a first release"));
}

TEST(BetaLoggingController, ClearingForgetsEverythingAndGatheringGoesOn) {
  BetaLoggingController controller;
  controller.gatherObjMessage("Turbulence", "new");
  controller.gatherParamMessage("Material", "new");
  controller.gatherParamValueMessage("Material", "Oil", "new");
  controller.clearMessages();

  EXPECT_FALSE(controller.anyLoggedMessages());
  EXPECT_THAT(controller.getObjAvailMessages("Turbulence"), IsEmpty());
  EXPECT_THAT(controller.getParamAvailMessages("Material"), IsEmpty());
  EXPECT_THAT(controller.getParamValAvailMessages("Material", "Oil"), IsEmpty());

  controller.gatherParamMessage("Material", "again");
  EXPECT_THAT(controller.getParamAvailMessages("Material"), ElementsAre("again"));
}

}  // namespace
}  // namespace tarn
