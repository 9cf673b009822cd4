#pragma once

#include <initializer_list>
#include <memory>
#include <string>

#include <tarn/ModelTDF.h>
#include <tarn/PhysicsData.h>
#include <tarn/RuleLambdas.h>

namespace tarn::session {

/// The value of a parameter of one object, whichever object owns the rule.
inline std::unique_ptr<TextExpression> valueOf(std::string const& path, std::string const& name) {
  return lambda::text([=](TDFContext const&, ModelTDF const& model) { return model.getParameterValue(path, name); });
}

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
