#pragma once

// What the tests of the validator share: rules written in a line, conditions that count and look around, a logger that
// remembers everything, and a fixture that validates a case of a pump.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
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

namespace tarn::validation_test {

using Strings = std::vector<std::string>;

/// Decides on the availability of an item of the object at `objPath`.
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

inline bool never(std::string const&, EvalContext&) {
  return false;
}

/// Counts how often it is asked and says yes.
inline Decision counting(int& count) {
  return [&count](std::string const&, EvalContext&) {
    ++count;
    return true;
  };
}

/// A parameter entry with its value rule, filled in a chain: `Param("Regime").required().allowed({"Laminar"})`.
class Param {
 public:
  explicit Param(std::string name) { entry_.name = std::move(name); }
  Param&& required() && { return entry_.required = true, std::move(*this); }
  Param&& relaxed() && { return entry_.validationRelaxed = true, std::move(*this); }
  Param&& contextRule() && { return entry_.contextRule = true, std::move(*this); }
  Param&& when(Decision decision) && {
    entry_.available = std::make_unique<DecidedCondition>(std::move(decision));
    return std::move(*this);
  }
  Param&& unavailable() && { return std::move(*this).when(never); }
  Param&& beta(std::string message) && { return entry_.betaMessage = std::move(message), std::move(*this); }
  Param&& list() && { return values_.type = TDFParam::StringList, std::move(*this); }
  Param&& allowed(SharedStrings values) && {
    values_.allowedValueKind = ParamValueDef::FixedAllowedValues;
    values_.availableWithNoAllowedValues = true;
    values_.allowedValues = std::make_unique<FixedList>(std::move(values));
    return std::move(*this);
  }
  Param&& subset(SharedStrings values) && {
    values_.subset = std::make_unique<FixedList>(std::move(values));
    return std::move(*this);
  }
  Param&& anyValue() && { return values_.allowsAnyValue = true, std::move(*this); }
  Param&& betaValue(std::string const& value, std::string message) && {
    return values_.betaValues[value] = std::move(message), std::move(*this);
  }

  void addTo(ObjDependDef& object) && { ASSERT_TRUE(object.addParam(std::move(entry_), std::move(values_))); }

 private:
  ParamAvail entry_;
  ParamValueDef values_;
};

/// A child entry; of named objects unless it is made a singleton.
class Child {
 public:
  explicit Child(std::string type) { entry_.type = std::move(type); }
  Child&& required() && { return entry_.required = true, std::move(*this); }
  Child&& singleton() && { return entry_.singleton = true, std::move(*this); }
  Child&& relaxed() && { return entry_.validationRelaxed = true, std::move(*this); }
  Child&& names(SharedStrings names) && {
    entry_.allowedNamesSource = std::make_unique<FixedList>(std::move(names));
    return std::move(*this);
  }
  Child&& when(Decision decision) && {
    entry_.available = std::make_unique<DecidedCondition>(std::move(decision));
    return std::move(*this);
  }
  Child&& unavailable() && { return std::move(*this).when(never); }
  Child&& beta(std::string message) && { return entry_.betaMessage = std::move(message), std::move(*this); }

  void addTo(ObjDependDef& object) && { ASSERT_TRUE(object.addChild(std::move(entry_))); }

 private:
  ChildAvail entry_;
};

/// Remembers what it is told, levels included, and how often it was reset.
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

  /// Adds entries to the rules of an object type.
  template <typename... Entries>
  void rule(std::string const& typePath, Entries&&... entries) {
    ObjDependDef& object = rules_.addObject(typePath);
    (std::forward<Entries>(entries).addTo(object), ...);
  }

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
