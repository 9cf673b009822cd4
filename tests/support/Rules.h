#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <tarn/PhysicsData.h>
#include <tarn/RuleLambdas.h>

namespace tarn::test {

using lambda::always;
using lambda::list;
using lambda::listOf;
using lambda::never;
using lambda::text;
using lambda::when;

/// The value of a parameter of the object.
inline std::unique_ptr<TextExpression> valueOf(std::string const& name) {
  return text([=](TDFContext const& at, ModelTDF const& model) { return model.getParameterValue(at.objPath(), name); });
}

/// Counts its evaluations in `count`. The text is the new count: "1", "2" and so on. `count` must live as long as the
/// expression.
inline std::unique_ptr<TextExpression> countingText(int& count) {
  return text([&count](TDFContext const&, ModelTDF const&) { return std::to_string(++count); });
}

/// Fills a rule database in a few lines. Every mark belongs to the parameter or child named last, and every parameter
/// and child to the object named last.
///
///     struct PumpRules : PhysicsData {
///       PumpRules() {
///         Rules rules(*this);
///         rules.object("/Case");
///         rules.param("Flow Regime").required().contextRule().allowed({"Laminar", "Turbulent"}).byDefault("Laminar");
///         rules.param("Turbulence Intensity").type(TDFParam::Real).inContexts({"Turbulent"}).bounds("0", "1");
///         rules.child("Domain").required().allowedNames({"rotor", "stator"});
///         rules.child("Solver").singleton();
///         rules.object("/Case/Domain");
///         rules.param("Motion").allowed({"Stationary", "Rotating"});
///         rules.param("Speed").type(TDFParam::Real).availableWhen(when("Motion", "Rotating"));
///       }
///     };
///
/// The entry named last is in the database when the next one is named or the `Rules` goes, so a statement of its own
/// has done its work at its semicolon:
///
///     Rules(data, "/Case/Domain").param("Motion").required().child("Boundary");
///
/// A mark where it does not belong, and a name that the object has already, fail the test.
class Rules {
 public:
  explicit Rules(PhysicsData& data) : data_(data) {}
  Rules(PhysicsData& data, std::string const& typePath) : Rules(data) { object(typePath); }
  Rules(Rules const&) = delete;
  Rules& operator=(Rules const&) = delete;
  ~Rules() { finishEntry(); }

  Rules& object(std::string const& typePath) {
    finishEntry();
    object_ = &data_.addObject(typePath);
    return *this;
  }
  Rules& param(std::string const& name) {
    finishEntry();
    param_.emplace().name = name;
    values_.emplace();
    return *this;
  }
  /// A parameter without a value rule, which well-formed rules do not have.
  Rules& paramWithoutValueRule(std::string const& name) {
    param(name);
    values_.reset();
    return *this;
  }
  Rules& child(std::string const& type) {
    finishEntry();
    child_.emplace().type = type;
    return *this;
  }

  // Marks of both.

  Rules& required() {
    return onEntry([](auto& entry) { entry.required = true; });
  }
  Rules& relaxed() {
    return onEntry([](auto& entry) { entry.validationRelaxed = true; });
  }
  Rules& inContexts(std::vector<std::string> const& values) {
    return onEntry([&](auto& entry) { entry.contexts = values; });
  }
  Rules& availableWhen(std::unique_ptr<Condition> condition) {
    return onEntry([&](auto& entry) { entry.available = std::move(condition); });
  }
  Rules& beta(std::string const& message) {
    return onEntry([&](auto& entry) { entry.betaMessage = message; });
  }

  // Marks of a parameter.

  Rules& contextRule() {
    if (param_) {
      param_->contextRule = true;
    } else {
      misplaced("contextRule");
    }
    return *this;
  }
  Rules& type(TDFParam::Type type) { return values().type = type, *this; }
  Rules& allowed(std::unique_ptr<ListExpression> list) {
    values().allowedValueKind = ParamValueDef::ComputedAllowedValues;
    values().allowedValues = std::move(list);
    return *this;
  }
  Rules& allowed(std::initializer_list<std::string> fixed) {
    allowed(list(std::vector<std::string>(fixed)));
    values().allowedValueKind = ParamValueDef::FixedAllowedValues;
    return *this;
  }
  Rules& allowedWhile(std::string const& value, std::unique_ptr<Condition> condition) {
    values().allowedValueChecks[value] = std::move(condition);
    return *this;
  }
  Rules& subset(std::unique_ptr<ListExpression> list) { return values().subset = std::move(list), *this; }
  Rules& subset(std::initializer_list<std::string> fixed) { return subset(list(std::vector<std::string>(fixed))); }
  Rules& anyValueAllowed() { return values().allowsAnyValue = true, *this; }
  Rules& availableWithNoAllowedValues() { return values().availableWithNoAllowedValues = true, *this; }
  Rules& completeListRequired() { return values().completeListRequired = true, *this; }
  Rules& betaValue(std::string const& value, std::string const& message) {
    values().betaValues[value] = message;
    return *this;
  }
  Rules& byDefault(std::unique_ptr<TextExpression> value) { return values().defaultValue = std::move(value), *this; }
  Rules& byDefault(std::string const& value) { return byDefault(text(value)); }
  Rules& fallbackToBlankDefault() { return values().fallbackToBlankDefault = true, *this; }
  Rules& overriddenWhen(std::unique_ptr<Condition> condition, std::unique_ptr<TextExpression> value) {
    values().overrideChecks.push_back({std::move(condition), std::move(value)});
    return *this;
  }
  Rules& overriddenWhen(std::unique_ptr<Condition> condition, std::string const& value) {
    return overriddenWhen(std::move(condition), text(value));
  }
  Rules& bounds(std::unique_ptr<TextExpression> lower, std::unique_ptr<TextExpression> upper) {
    values().lowerBound = std::move(lower);
    values().upperBound = std::move(upper);
    return *this;
  }
  Rules& bounds(std::string const& lower, std::string const& upper) { return bounds(text(lower), text(upper)); }
  Rules& quantityType(std::unique_ptr<TextExpression> key) { return values().quantityType = std::move(key), *this; }
  Rules& quantityType(std::string const& key) { return quantityType(text(key)); }

  Rules& boundsExcluded() {
    values().lowerBoundExcluded = true;
    values().upperBoundExcluded = true;
    return *this;
  }
  Rules& pattern(std::unique_ptr<TextPattern> pattern, std::string const& message = {}) {
    values().pattern = std::move(pattern);
    values().patternMessage = message;
    return *this;
  }

  // Marks of a child.

  Rules& singleton() { return entryOfChild("singleton").singleton = true, *this; }
  Rules& coupled() { return entryOfChild("coupled").coupled = true, *this; }
  Rules& allowedNames(std::unique_ptr<ListExpression> names) {
    return entryOfChild("allowedNames").allowedNamesSource = std::move(names), *this;
  }
  Rules& allowedNames(std::initializer_list<std::string> names) {
    return allowedNames(list(std::vector<std::string>(names)));
  }
  Rules& defaultNames(std::unique_ptr<ListExpression> names) {
    return entryOfChild("defaultNames").defaultNamesSource = std::move(names), *this;
  }
  Rules& defaultNames(std::initializer_list<std::string> names) {
    return defaultNames(list(std::vector<std::string>(names)));
  }

  Rules& counts(std::unique_ptr<TextExpression> minimum, std::unique_ptr<TextExpression> maximum) {
    auto& entry = entryOfChild("counts");
    entry.minimumCount = std::move(minimum);
    entry.maximumCount = std::move(maximum);
    return *this;
  }

  // A check of the object named last.

  Rules& objectCheck(ObjectCheck check) {
    finishEntry();
    EXPECT_TRUE(object_ != nullptr && object_->addCheck(std::move(check)));
    return *this;
  }

  // For the database as a whole.

  Rules& check(std::string const& name, lambda::Function<bool> function) {
    EXPECT_TRUE(data_.addCheck(name, lambda::check(std::move(function)))) << name;
    return *this;
  }
  Rules& namedList(std::string const& name, lambda::Function<std::vector<std::string>> function) {
    EXPECT_TRUE(data_.addList(name, lambda::namedList(std::move(function)))) << name;
    return *this;
  }
  /// Passes while `function` holds; `message` is reported to the user when it does not.
  Rules& globalCheck(std::string const& name, std::function<bool(ModelTDF const&)> function,
                     PhysicsErrorMsg const& message) {
    EXPECT_TRUE(data_.addGlobalCheck(name, lambda::globalCheck(std::move(function), message))) << name;
    return *this;
  }
  Rules& pertinentRoot(std::string const& type) { return data_.addPertinentRoot(type), *this; }
  Rules& quantity(std::string const& name, QuantityType type) {
    EXPECT_TRUE(data_.addQuantityType(name, std::move(type))) << name;
    return *this;
  }
  Rules& quantity(std::string const& name, std::vector<std::string> const& units) {
    EXPECT_TRUE(data_.addQuantityType(name, units)) << name;
    return *this;
  }

 private:
  template <typename Mark>
  Rules& onEntry(Mark const& mark) {
    if (param_) {
      mark(*param_);
    } else if (child_) {
      mark(*child_);
    } else {
      misplaced("a mark");
    }
    return *this;
  }

  ParamValueDef& values() {
    if (!values_) {
      misplaced("a mark of a parameter's values");
      values_.emplace();
    }
    return *values_;
  }

  ChildAvail& entryOfChild(char const* mark) {
    if (!child_) {
      misplaced(mark);
      child_.emplace();
    }
    return *child_;
  }

  static void misplaced(char const* mark) { ADD_FAILURE() << mark << " stands where there is nothing to be marked"; }

  void finishEntry() {
    if ((param_ || child_) && object_ == nullptr) {
      ADD_FAILURE() << "an entry comes before the first object";
    } else if (param_) {
      std::string const name = param_->name;
      bool const added =
          values_ ? object_->addParam(std::move(*param_), std::move(*values_)) : object_->addParam(std::move(*param_));
      EXPECT_TRUE(added) << object_->typePath() << " has a parameter " << name << " already";
    } else if (child_) {
      std::string const type = child_->type;
      EXPECT_TRUE(object_->addChild(std::move(*child_)))
          << object_->typePath() << " has a child " << type << " already";
    }
    param_.reset();
    values_.reset();
    child_.reset();
  }

  PhysicsData& data_;
  ObjDependDef* object_ = nullptr;
  std::optional<ParamAvail> param_;
  std::optional<ParamValueDef> values_;
  std::optional<ChildAvail> child_;
};

}  // namespace tarn::test
