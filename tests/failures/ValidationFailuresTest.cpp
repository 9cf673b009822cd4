// A validation that breaks off, and the next validation of the same validator, of the same model or of another one. The
// next one reports the same faults as a new validator. The broken one never counts as done, and nothing that it left
// hides a fault of the next model.

#include <tarn/PhysicsValidator2.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include <tarn/BasicPhysicsErrorLogger.h>
#include <tarn/BetaLoggingController.h>

#include "failures/Injection.h"
#include "failures/RotorCase.h"

namespace tarn::test {
namespace {

using Strings = std::vector<std::string>;

/// Keeps all messages, and may fail at each operation.
class FailingLogger final : public PhysicsErrorLogger {
 public:
  void logDependencyError(std::string const& path, PhysicsErrorMsg const& message) override {
    mayFail();
    kept_.logDependencyError(path, message);
  }
  void logGlobalError(PhysicsErrorMsg const& message) override {
    mayFail();
    kept_.logGlobalError(message);
  }
  void logTermination(std::string const& text) override { kept_.logTermination(text); }
  void reset() override {
    mayFail();
    kept_.reset();
  }
  [[nodiscard]] bool hasDependencyErrors() const override {
    mayFail();
    return kept_.hasDependencyErrors();
  }
  [[nodiscard]] bool hasGlobalErrors() const override {
    mayFail();
    return kept_.hasGlobalErrors();
  }

  [[nodiscard]] Strings dependencyErrors() const {
    Strings errors;
    for (auto const& [path, message] : kept_.getDependencyErrors()) errors.push_back(path + " | " + message);
    return errors;
  }
  [[nodiscard]] Strings globalErrors() const { return kept_.getGlobalErrors(); }

 private:
  BasicPhysicsErrorLogger kept_;
};

/// A validator with all that it needs.
class Bench {
 public:
  explicit Bench(PhysicsData const& rules) : validator_(&rules) {
    validator_.setLogger(&logger);
    validator_.setBetaLoggingController(&beta_);
  }

  void validate(ModelState const& model, PhysicsValidator2::ValType type = PhysicsValidator2::ValAll) {
    status = validator_.validate(type, model, {"/Case"});
  }

  FailingLogger logger;
  PhysicsValidator2::ValStatus status = PhysicsValidator2::ValStatusClean;

 private:
  BetaLoggingController beta_;
  PhysicsValidator2 validator_;
};

struct Verdict {
  explicit Verdict(Bench const& bench)
      : status(bench.status),
        dependencyErrors(bench.logger.dependencyErrors()),
        globalErrors(bench.logger.globalErrors()) {}
  Verdict(PhysicsData const& rules, ModelState const& model) : Verdict(benchOf(rules, model)) {}

  PhysicsValidator2::ValStatus status;
  Strings dependencyErrors;
  Strings globalErrors;

 private:
  struct Done {
    std::unique_ptr<Bench> bench;
    operator Bench const&() const { return *bench; }  // NOLINT(google-explicit-constructor)
  };
  static Done benchOf(PhysicsData const& rules, ModelState const& model) {
    Done done{std::make_unique<Bench>(rules)};
    done.bench->validate(model);
    return done;
  }
};

/// Lacks the regime, the stator, and the solver with all that it needs; the rotor has values that are not allowed.
ModelState const faulty = {{"/Case", {{"Turbulence Intensity", "0.05 of the speed"}}},
                           {rotor,
                            {{"Motion of the Domain", "Standing on its head"},
                             {"Angular Velocity of the Rotor", "100 [rad/s]"},
                             {"Fluid in the Domain", "Air at 25 degrees C"},
                             {"Variables to be Written", "Pressure of the Fluid,Colour of the Fluid"}}},
                           {rotor + "/Monitor:temperature of the oil", {{"Place", "0 [m]"}}}};

/// One value is different.
ModelState const faultyOtherwise = [] {
  ModelState model = faulty;
  model[rotor]["Fluid in the Domain"] = "Quicksilver of a thermometer";
  return model;
}();

/// The absent objects are present now, and are faulty. If the validator took them for the placeholders that it tried
/// before, it would report nothing about them.
ModelState const withWhatWasAbsent = [] {
  ModelState model = faulty;
  model["/Case"]["Flow Regime of the Case"] = "Laminar";
  model["/Case/Solver of the Case"] = {{"Time Step", "1 [s]"}};
  model["/Case/Domain:stator of the pump"] = {{"Motion of the Domain", "Standing on its head"}};
  model["/Library"] = {{"Not looked at", "1"}};
  return model;
}();

ModelState const empty;

class ValidationFailures : public testing::TestWithParam<FailingCall> {
 protected:
  /// After a validation of `before` and a failing validation of `broken`, `next` is judged as by a new validator.
  void theNextIsJudgedAsEver(ModelState const* before, ModelState const& broken, ModelState const& next) {
    Verdict const expected(rules_, next);
    bool const isSame = &broken == &next;
    forEveryFailureOf(GetParam(), {.alone = isSame ? 1U : 3U}, [&](Attempt& attempt) {
      Bench bench(rules_);
      if (before != nullptr) bench.validate(*before);
      bool const failed = attempt([&] { bench.validate(broken); });
      bench.validate(next);
      Verdict const now(bench);
      EXPECT_EQ(now.status, expected.status);
      if (failed && isSame) {
        expectBehindThoseOfTheBrokenRun(now.dependencyErrors, expected.dependencyErrors);
        expectBehindThoseOfTheBrokenRun(now.globalErrors, expected.globalErrors);
      } else {
        EXPECT_EQ(now.dependencyErrors, expected.dependencyErrors);
        EXPECT_EQ(now.globalErrors, expected.globalErrors);
      }
    });
  }

  /// If the model is the same, the logger keeps the messages from before the failure.
  static void expectBehindThoseOfTheBrokenRun(Strings const& logged, Strings const& expected) {
    ASSERT_GE(logged.size(), expected.size());
    auto const behind = static_cast<std::ptrdiff_t>(logged.size() - expected.size());
    EXPECT_EQ(Strings(logged.begin() + behind, logged.end()), expected);
    ASSERT_LE(static_cast<std::size_t>(behind), expected.size());
    EXPECT_EQ(Strings(logged.begin(), logged.begin() + behind), Strings(expected.begin(), expected.begin() + behind));
  }

  RotorRules const rules_;
};

TEST_P(ValidationFailures, TheModelsOfTheseTestsHaveFaultsOfAllKinds) {
  Verdict const verdict(rules_, faulty);
  EXPECT_EQ(verdict.status, PhysicsValidator2::ValAllErrors);
  EXPECT_EQ(verdict.dependencyErrors.size(), 12U) << testing::PrintToString(verdict.dependencyErrors);
  EXPECT_EQ(verdict.globalErrors.size(), 2U);
}

TEST_P(ValidationFailures, AFirstModelIsJudgedAgain) {
  theNextIsJudgedAsEver(nullptr, faulty, faulty);
}

TEST_P(ValidationFailures, AModelWithAnotherValueIsJudgedAgain) {
  theNextIsJudgedAsEver(&faulty, faultyOtherwise, faultyOtherwise);
}

TEST_P(ValidationFailures, AModelWithOtherObjectsIsJudgedAgain) {
  theNextIsJudgedAsEver(&faulty, withWhatWasAbsent, withWhatWasAbsent);
}

TEST_P(ValidationFailures, WhatWasAbsentIsJudgedWhenItIsThere) {
  theNextIsJudgedAsEver(nullptr, faulty, withWhatWasAbsent);
}

TEST_P(ValidationFailures, TheModelBeforeIsJudgedAnew) {
  theNextIsJudgedAsEver(&faulty, withWhatWasAbsent, faulty);
}

TEST_P(ValidationFailures, AnEmptyModelIsJudgedAnew) {
  theNextIsJudgedAsEver(&faulty, faultyOtherwise, empty);
}

/// No rule is evaluated for a known model, but memory is still needed.
TEST(KnownModelFailures, AVerdictThatStandsStandsOn) {
  RotorRules const rules;
  Verdict const expected(rules, faulty);
  forEveryFailureOf(FailingCall::Allocation, [&](Attempt& attempt) {
    Bench bench(rules);
    bench.validate(faulty);
    (void)attempt([&] { bench.validate(faulty); });
    bench.validate(faulty);
    EXPECT_EQ(bench.status, expected.status);
    EXPECT_EQ(bench.logger.dependencyErrors(), expected.dependencyErrors);
    EXPECT_EQ(bench.logger.globalErrors(), expected.globalErrors);
  });
}

TEST_P(ValidationFailures, AFurtherPhaseIsMadeUpFor) {
  Verdict const expected(rules_, faulty);
  forEveryFailureOf(GetParam(), [&](Attempt& attempt) {
    Bench bench(rules_);
    bench.validate(faulty, PhysicsValidator2::ValDependency);
    (void)attempt([&] { bench.validate(faulty, PhysicsValidator2::ValGlobal); });
    bench.validate(faulty, PhysicsValidator2::ValGlobal);
    EXPECT_EQ(bench.status, expected.status);
    EXPECT_EQ(bench.logger.dependencyErrors(), expected.dependencyErrors);
    expectBehindThoseOfTheBrokenRun(bench.logger.globalErrors(), expected.globalErrors);
  });
}

INSTANTIATE_TEST_SUITE_P(Of, ValidationFailures, testing::Values(FailingCall::Allocation, FailingCall::Hook),
                         [](testing::TestParamInfo<FailingCall> const& call) {
                           return call.param == FailingCall::Allocation ? "Memory" : "ARuleOrTheLogger";
                         });

}  // namespace
}  // namespace tarn::test
