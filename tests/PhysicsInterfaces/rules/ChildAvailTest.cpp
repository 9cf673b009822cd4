#include <tarn/ChildAvail.h>

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

class ChildAvailRecord : public testing::Test {
 protected:
  ChildAvailRecord() {
    Rules rules(data_);
    rules.object("/Case");
    rules.child("Boundary");
    rules.child("Turbulence").availableWhen(when("Flow Regime", "Turbulent")).beta("Turbulence is new.");
    rules.child("Domain").allowedNames(test::listOf("Domains"));
    rules.child("Monitor").defaultNames({"Residual", "Mass Flow"});
  }

  [[nodiscard]] ChildAvail const& entry(std::string const& type) const {
    return *data_.getObjDependDef("/Case", true)->findChild(type);
  }

  PhysicsData data_;
  MapModel model_{{"/Case", {{"Flow Regime", "Turbulent"}, {"Domains", "rotor,stator"}}}};
  MapModel laminar_{{"/Case", {{"Flow Regime", "Laminar"}}}};
  EvalContext evaluation_{&model_};
  EvalContext laminarEvaluation_{&laminar_};
  TDFContext context_{"/Case"};
  BetaLoggingController controller_;
};

TEST_F(ChildAvailRecord, WithoutAConditionItIsAlwaysAvailable) {
  EXPECT_TRUE(entry("Boundary").evaluate(context_, &evaluation_));
}

TEST_F(ChildAvailRecord, TheConditionReadsTheModelOfTheEvaluation) {
  EXPECT_TRUE(entry("Turbulence").evaluate(context_, &evaluation_));
  EXPECT_FALSE(entry("Turbulence").evaluate(context_, &laminarEvaluation_));
}

TEST_F(ChildAvailRecord, TheBetaMessageIsGatheredByTypeOnlyWhenTheConditionHolds) {
  data_.attach(&controller_);
  entry("Turbulence").evaluate(context_, &laminarEvaluation_);
  EXPECT_FALSE(controller_.anyLoggedMessages());

  entry("Turbulence").evaluate(context_, &evaluation_);
  EXPECT_THAT(controller_.getObjAvailMessages("Turbulence"), ElementsAre("Turbulence is new."));
  EXPECT_THAT(controller_.getParamAvailMessages("Turbulence"), IsEmpty());
}

TEST_F(ChildAvailRecord, TheControllerOfTheEvaluationGoesBeforeTheAttachedOne) {
  BetaLoggingController own;
  data_.attach(&controller_);
  evaluation_.setBetaLoggingController(&own);
  entry("Turbulence").evaluate(context_, &evaluation_);

  EXPECT_TRUE(own.anyLoggedMessages());
  EXPECT_FALSE(controller_.anyLoggedMessages());
}

TEST_F(ChildAvailRecord, NamesAreWrittenToAnEmptyVector) {
  std::vector<std::string> names;
  entry("Domain").evaluateAllowedNames(context_, &evaluation_, names);
  EXPECT_THAT(names, ElementsAre("rotor", "stator"));

  names.clear();
  entry("Domain").evaluateAllowedNames(context_, &laminarEvaluation_, names);
  EXPECT_THAT(names, IsEmpty());

  names.clear();
  entry("Monitor").evaluateDefaultNames(context_, &evaluation_, names);
  EXPECT_THAT(names, ElementsAre("Residual", "Mass Flow"));
}

TEST_F(ChildAvailRecord, WithoutAnExpressionThereAreNoNames) {
  std::vector<std::string> names;
  entry("Boundary").evaluateAllowedNames(context_, &evaluation_, names);
  EXPECT_THAT(names, IsEmpty());
  entry("Boundary").evaluateDefaultNames(context_, &evaluation_, names);
  EXPECT_THAT(names, IsEmpty());
  EXPECT_EQ(entry("Boundary").allowedNamesSource, nullptr);
}

}  // namespace
}  // namespace tarn
