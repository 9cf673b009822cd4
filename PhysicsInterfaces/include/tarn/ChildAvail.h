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

class PhysicsData;

/// When children of a type are available in an object, and what that means. Fill the fields and hand the record to
/// `ObjDependDef::addChild`.
class TARN_EXPORT ChildAvail {
 public:
  std::string type;
  bool required = false;
  /// At most one child of this type, addressed without a name.
  bool singleton = false;
  /// The child takes part in the state of its parent.
  bool coupled = false;
  bool validationRelaxed = false;

  /// The names that children of the type may have; of a required type, the names that must be there. Null: any name.
  /// A child with allowed names counts as coupled.
  std::unique_ptr<ListExpression> allowedNamesSource;
  /// The names that a required type without allowed names starts with. Null: none.
  std::unique_ptr<ListExpression> defaultNamesSource;

  /// As in `ParamAvail`.
  std::vector<std::string> contexts;
  std::unique_ptr<Condition> available;
  std::string description;
  std::string reason;
  std::string betaMessage;
  /// Where the entry is written: the child type.
  RulePlace rulePlace;

  /// Whether children of the type are available in the context; gathers the beta message when they are.
  bool evaluate(TDFContext const& context, EvalContext* evalContext) const;

  /// Puts the allowed names, or the default names, into `out`, which the caller has cleared.
  void evaluateAllowedNames(TDFContext const& context, EvalContext* evalContext, std::vector<std::string>& out) const;
  void evaluateDefaultNames(TDFContext const& context, EvalContext* evalContext, std::vector<std::string>& out) const;

 private:
  friend class ObjDependDef;
  PhysicsData const* data_ = nullptr;
};

}  // namespace tarn
