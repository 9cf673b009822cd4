#pragma once

#include <memory>
#include <string>
#include <vector>

#include <tarn/EvalContext.h>
#include <tarn/Export.h>
#include <tarn/ItemHistory.h>
#include <tarn/RuleExpressions.h>
#include <tarn/RulePlace.h>
#include <tarn/TDFContext.h>

namespace tarn {

class ParamValueDef;
class PhysicsData;

/// The rule for when a parameter is available in an object, and what it is there. Fill the fields and hand the record
/// to `ObjDependDef::addParam`.
class TARN_EXPORT ParamAvail {
 public:
  std::string name;
  bool required = false;
  /// The value of this parameter decides which of the later entries of the object are live, see `contexts`.
  bool contextRule = false;
  /// The validator does not judge the parameter.
  bool validationRelaxed = false;

  /// The entry is live only while the last context rule parameter before it has one of these values. Empty: always
  /// live.
  std::vector<std::string> contexts;
  /// Null: always available.
  std::unique_ptr<Condition> available;

  /// For people: what the parameter is, and why it is not available when `available` does not hold.
  std::string description;
  std::string reason;
  /// For user interfaces; no result depends on them. The group under which the parameter is shown, and the name that
  /// is shown instead of `name`; empty when the rules give none. Interfaces fold parameters that are `advanced`.
  std::string group;
  std::string label;
  bool advanced = false;
  /// Whether models should still use the parameter, and its former names.
  ItemHistory history;
  /// Collected when an evaluation finds the parameter available. Empty: none.
  std::string betaMessage;
  /// Where the entry is written: the parameter's name.
  RulePlace rulePlace;

  /// Returns whether the parameter is available in the context. If so, collects the beta message.
  bool evaluate(TDFContext const& context, EvalContext* evalContext) const;

  /// The value rule that was added with this entry, or null. Takes no look-up.
  [[nodiscard]] ParamValueDef const* valueDef() const noexcept { return valueDef_; }

 private:
  friend class ObjDependDef;
  PhysicsData const* data_ = nullptr;
  ParamValueDef const* valueDef_ = nullptr;
};

}  // namespace tarn
