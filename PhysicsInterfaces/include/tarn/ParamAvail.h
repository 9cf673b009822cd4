#pragma once

#include <memory>
#include <string>
#include <vector>

#include <tarn/EvalContext.h>
#include <tarn/Export.h>
#include <tarn/RuleExpressions.h>
#include <tarn/RulePlace.h>
#include <tarn/TDFContext.h>

namespace tarn {

class ParamValueDef;
class PhysicsData;

/// When a parameter is available in an object, and what that means. Fill the fields and hand the record to
/// `ObjDependDef::addParam`.
class TARN_EXPORT ParamAvail {
 public:
  std::string name;
  bool required = false;
  /// The value of this parameter selects the branch that later entries of the object belong to.
  bool contextRule = false;
  /// The validator does not judge the parameter.
  bool validationRelaxed = false;

  /// The entry is live only while the last context rule parameter has one of these values. Empty: always live.
  std::vector<std::string> contexts;
  /// Null: always available.
  std::unique_ptr<Condition> available;

  /// For people: what the parameter is, and why it is withdrawn when `available` does not hold.
  std::string description;
  std::string reason;
  /// Given with the parameter whenever it was evaluated and found available. Empty: none.
  std::string betaMessage;
  /// Where the entry is written: the parameter's name.
  RulePlace rulePlace;

  /// Whether the parameter is available in the context; gathers the beta message when it is.
  bool evaluate(TDFContext const& context, EvalContext* evalContext) const;

  /// The value rule that was added with the entry, without a look-up; null when there is none.
  [[nodiscard]] ParamValueDef const* valueDef() const noexcept { return valueDef_; }

 private:
  friend class ObjDependDef;
  PhysicsData const* data_ = nullptr;
  ParamValueDef const* valueDef_ = nullptr;
};

}  // namespace tarn
