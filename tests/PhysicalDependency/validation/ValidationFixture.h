#pragma once

// Shared by the tests of the validator: conditions and checks that look at the evaluation itself, a logger that
// remembers everything, and a fixture that validates a case of a pump.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <tarn/BasicPhysicsErrorLogger.h>
#include <tarn/BetaLoggingController.h>
#include <tarn/EvalCache.h>
#include <tarn/EvalContext.h>
#include <tarn/GlobalCheck.h>
#include <tarn/ModelState.h>
#include <tarn/ModelTDF.h>
#include <tarn/PhysicsData.h>
#include <tarn/PhysicsValidator2.h>

#include "support/Rules.h"

namespace tarn::validation_test {

using Strings = std::vector<std::string>;

/// The fault of a case that lacks its required parameter "Regime".
inline std::string const noRegime =
    "/Case | The parameter \"Regime\" should exist in the object \"/Case\" but is not present.";

/// Decides on the availability of an item of the object at `objPath`; sees cache and beta controller as well.
using Decision = std::function<bool(std::string const& objPath, EvalContext& evalContext)>;

class DecidedCondition final : public Condition {
 public:
  explicit DecidedCondition(Decision decision) : decision_(std::move(decision)) {}
  bool evaluate(TDFContext const& context, EvalContext* evalContext) const override {
    return decision_(context.objPath(), *evalContext);
  }

 private:
  Decision decision_;
};

class DecidedGlobalCheck final : public GlobalCheck {
 public:
  using Result = std::pair<bool, PhysicsErrorMsg>;
  explicit DecidedGlobalCheck(std::function<Result(EvalContext&)> decision) : decision_(std::move(decision)) {}
  Result evaluate(EvalContext* evalContext) const override { return decision_(*evalContext); }

 private:
  std::function<Result(EvalContext&)> decision_;
};

inline std::unique_ptr<Condition> decided(Decision decision) {
  return std::make_unique<DecidedCondition>(std::move(decision));
}

/// Counts how often it is asked and says yes.
inline Decision counting(int& count) {
  return [&count](std::string const&, EvalContext&) {
    ++count;
    return true;
  };
}

/// Records all messages with their levels, and how often it was reset.
class RecordingLogger final : public PhysicsErrorLogger {
 public:
  void logDependencyError(std::string const& path, PhysicsErrorMsg const& message) override {
    dependency_.push_back((message.level == PhysicsErrorMsg::Beta ? "beta " : "fault ") + path + " | " +
                          message.message);
  }
  void logGlobalError(PhysicsErrorMsg const& message) override { global_.push_back(message.message); }
  void logTermination(std::string const& text) override { global_.push_back("termination " + text); }
  void reset() override {
    dependency_.clear();
    global_.clear();
    ++resets_;
  }
  bool hasDependencyErrors() const override { return !dependency_.empty(); }
  bool hasGlobalErrors() const override { return !global_.empty(); }

  Strings const& dependency() const { return dependency_; }
  Strings const& global() const { return global_; }
  int resets() const { return resets_; }

 private:
  Strings dependency_;
  Strings global_;
  int resets_ = 0;
};

/// Rules for a case that a test fills, and a validator over them, made when it is first used: it reads its lists when
/// it is made.
class ValidationTest : public testing::Test {
 protected:
  ValidationTest() { rules_.addPertinentRoot("Case"); }

  /// The rules of an object type, to be filled within the statement.
  test::Rules rule(std::string const& typePath) { return test::Rules(rules_, typePath); }

  void globalCheck(std::string const& name, std::function<DecidedGlobalCheck::Result(EvalContext&)> decision) {
    ASSERT_TRUE(rules_.addGlobalCheck(name, std::make_unique<DecidedGlobalCheck>(std::move(decision))));
  }

  PhysicsValidator2& validator() {
    if (!validator_) {
      validator_ = std::make_unique<PhysicsValidator2>(&rules_);
      validator_->setLogger(&logger_);
    }
    return *validator_;
  }

  PhysicsValidator2::ValStatus validate(ModelState const& model,
                                        PhysicsValidator2::ValType type = PhysicsValidator2::ValAll) {
    return validator().validate(type, model, {"/Case"});
  }

  /// The dependency errors that validating `model` leaves in the logger, each as "path | message".
  Strings faults(ModelState const& model) {
    validate(model, PhysicsValidator2::ValDependency);
    return loggedFaults();
  }
  Strings loggedFaults() const {
    Strings lines;
    for (auto const& error : logger_.getDependencyErrors()) lines.push_back(error.path + " | " + error.message);
    return lines;
  }

  PhysicsData rules_;
  BasicPhysicsErrorLogger logger_;

 private:
  std::unique_ptr<PhysicsValidator2> validator_;
};

}  // namespace tarn::validation_test
