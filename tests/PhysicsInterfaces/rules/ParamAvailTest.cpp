#include <tarn/ParamAvail.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tarn/PhysicsData.h>

#include "support/MapModel.h"
#include "support/Rules.h"

namespace tarn {
namespace {

using test::MapModel;
using test::Rules;
using test::when;
using testing::ElementsAre;
using testing::IsEmpty;

class ParamAvailRecord : public testing::Test {
 protected:
  ParamAvailRecord() {
    Rules rules(data_);
    rules.object("/Domain");
    rules.param("Motion");
    rules.param("Speed").availableWhen(when("Motion", "Rotating")).beta("Rotation is new.");
  }

  [[nodiscard]] ParamAvail const& entry(std::string const& name) const {
    return *data_.getObjDependDef("/Domain", true)->findParam(name);
  }

  PhysicsData data_;
  MapModel model_{{"/Domain:rotor", {{"Motion", "Rotating"}}}, {"/Domain:stator", {{"Motion", "Stationary"}}}};
  EvalContext evaluation_{&model_};
  BetaLoggingController controller_;
};

TEST_F(ParamAvailRecord, WithoutAConditionItIsAlwaysAvailable) {
  EXPECT_TRUE(entry("Motion").evaluate(TDFContext("/Domain:rotor"), &evaluation_));
  EXPECT_TRUE(entry("Motion").evaluate(TDFContext("/Nowhere"), &evaluation_));
}

TEST_F(ParamAvailRecord, TheConditionIsJudgedInTheContextOfTheObject) {
  EXPECT_TRUE(entry("Speed").evaluate(TDFContext("/Domain:rotor"), &evaluation_));
  EXPECT_FALSE(entry("Speed").evaluate(TDFContext("/Domain:stator"), &evaluation_));
}

TEST_F(ParamAvailRecord, TheConditionReadsTheModelOfTheEvaluation) {
  MapModel const other{{"/Domain:stator", {{"Motion", "Rotating"}}}};
  EvalContext otherEvaluation(&other);

  EXPECT_TRUE(entry("Speed").evaluate(TDFContext("/Domain:stator"), &otherEvaluation));
  EXPECT_FALSE(entry("Speed").evaluate(TDFContext("/Domain:stator"), &evaluation_));
}

TEST_F(ParamAvailRecord, TheBetaMessageIsGatheredWhenTheConditionHolds) {
  data_.attach(&controller_);
  entry("Speed").evaluate(TDFContext("/Domain:rotor"), &evaluation_);

  EXPECT_THAT(controller_.getParamAvailMessages("Speed"), ElementsAre("Rotation is new."));
}

TEST_F(ParamAvailRecord, NothingIsGatheredWhenTheConditionDoesNotHold) {
  data_.attach(&controller_);
  entry("Speed").evaluate(TDFContext("/Domain:stator"), &evaluation_);

  EXPECT_FALSE(controller_.anyLoggedMessages());
}

TEST_F(ParamAvailRecord, NothingIsGatheredForAnEntryWithoutAMessage) {
  data_.attach(&controller_);
  entry("Motion").evaluate(TDFContext("/Domain:rotor"), &evaluation_);

  EXPECT_FALSE(controller_.anyLoggedMessages());
}

TEST_F(ParamAvailRecord, TheControllerOfTheEvaluationGoesBeforeTheAttachedOne) {
  BetaLoggingController own;
  data_.attach(&controller_);
  evaluation_.setBetaLoggingController(&own);
  entry("Speed").evaluate(TDFContext("/Domain:rotor"), &evaluation_);

  EXPECT_THAT(own.getParamAvailMessages("Speed"), ElementsAre("Rotation is new."));
  EXPECT_THAT(controller_.getParamAvailMessages("Speed"), IsEmpty());
}

TEST_F(ParamAvailRecord, WithoutAnyControllerAMessageIsDropped) {
  EXPECT_TRUE(entry("Speed").evaluate(TDFContext("/Domain:rotor"), &evaluation_));
}

}  // namespace
}  // namespace tarn
