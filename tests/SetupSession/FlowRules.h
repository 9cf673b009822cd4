#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

#include <tarn/EvalContext.h>
#include <tarn/ModelTDF.h>
#include <tarn/PhysicsData.h>

namespace tarn::session {

/// Holds while the parameter of the object under judgement has the value.
class HasValue final : public Condition {
 public:
  HasValue(std::string name, std::string value) : name_(std::move(name)), value_(std::move(value)) {}
  [[nodiscard]] bool evaluate(TDFContext const& context, EvalContext* evalContext) const override {
    return evalContext->getDB()->getParameterValue(context.objPath(), name_) == value_;
  }

 private:
  std::string name_;
  std::string value_;
};

/// The value of a parameter, as a bound that moves with the model.
class ValueOf final : public TextExpression {
 public:
  ValueOf(std::string path, std::string name) : path_(std::move(path)), name_(std::move(name)) {}
  [[nodiscard]] std::string evaluate(TDFContext const&, EvalContext* evalContext) const override {
    return evalContext->getDB()->getParameterValue(path_, name_);
  }

 private:
  std::string path_;
  std::string name_;
};

inline ParamAvail parameter(std::string const& name) {
  ParamAvail entry;
  entry.name = name;
  return entry;
}

inline ParamValueDef valueOfType(TDFParam::Type type) {
  ParamValueDef def;
  def.type = type;
  return def;
}

inline ParamValueDef oneOf(TDFParam::Type type, std::initializer_list<std::string> values) {
  ParamValueDef def = valueOfType(type);
  def.allowedValueKind = ParamValueDef::FixedAllowedValues;
  def.allowedValues = std::make_unique<FixedList>(values);
  return def;
}

inline ParamValueDef between(TDFParam::Type type, std::string const& lower, std::string const& upper) {
  ParamValueDef def = valueOfType(type);
  if (!lower.empty()) def.lowerBound = std::make_unique<FixedText>(lower);
  if (!upper.empty()) def.upperBound = std::make_unique<FixedText>(upper);
  return def;
}

inline ChildAvail child(std::string const& type, bool singleton) {
  ChildAvail entry;
  entry.type = type;
  entry.singleton = singleton;
  return entry;
}

}  // namespace tarn::session
