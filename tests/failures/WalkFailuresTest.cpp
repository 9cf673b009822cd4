// A walk that ends in the middle because of a hook, a rule, the model or a lack of memory, and questions about single
// rules. Nothing is kept of it: the next walk of the same analyser is like any other.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <tarn/EvalCheckList.h>

#include "failures/Injection.h"
#include "failures/RecordingWalk.h"
#include "failures/RotorCase.h"

namespace tarn::test {
namespace {

class WalkFailures : public testing::TestWithParam<FailingCall> {
 protected:
  RotorRules rules_;
  RotorModel model_;
};

TEST_P(WalkFailures, TheNextWalkOfTheAnalyserIsWhole) {
  std::vector<std::string> const whole = RecordingWalk(&rules_).walk("/Case", model_);
  ASSERT_GT(whole.size(), 40U);
  forEveryFailureOf(GetParam(), [&](Attempt& attempt) {
    RecordingWalk walk(&rules_);
    (void)attempt([&] { walk.walk("/Case", model_); });
    EXPECT_EQ(walk.walk("/Case", model_), whole);
  });
}

TEST_P(WalkFailures, AQuestionAboutARuleCanBeAskedAgain) {
  Rules(rules_).check("Turns about an axis", [](TDFContext const& at, ModelTDF const& model) {
    mayFail();
    return model.getParameterValue(at.objPath(), "Motion of the Domain") == "Rotating about an Axis";
  });
  Rules(rules_).namedList("Fluids that are known", [](TDFContext const&, ModelTDF const&) {
    mayFail();
    return std::vector<std::string>{"Water at 25 degrees", "Air at 25 degrees C"};
  });
  model_.set(rotor, "Motion of the Domain", "Rotating about an Axis");
  EvalCheckList const evaluator(&rules_);
  forEveryFailureOf(GetParam(), [&](Attempt& attempt) {
    (void)attempt([&] {
      EXPECT_TRUE(evaluator.evaluateCheck("Turns about an axis", rotor, &model_).first);
      EXPECT_EQ(evaluator.evaluateList("Fluids that are known", rotor, &model_).first.size(), 2U);
    });
    EXPECT_TRUE(evaluator.evaluateCheck("Turns about an axis", rotor, &model_).first);
    EXPECT_EQ(evaluator.evaluateList("Fluids that are known", rotor, &model_).first.size(), 2U);
  });
}

INSTANTIATE_TEST_SUITE_P(Of, WalkFailures, testing::Values(FailingCall::Allocation, FailingCall::Hook),
                         [](testing::TestParamInfo<FailingCall> const& call) {
                           return call.param == FailingCall::Allocation ? "Memory" : "AHookARuleOrTheModel";
                         });

}  // namespace
}  // namespace tarn::test
