#pragma once

#include <map>
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

class PhysicsData;

/// The rule for one type of children of an object: when such children are available, and what they are. Fill the fields
/// and hand the record to `ObjDependDef::addChild`.
class TARN_EXPORT ChildAvail {
 public:
  std::string type;
  bool required = false;
  /// There is at most one child of this type. It is addressed without a name.
  bool singleton = false;
  /// The child takes part in the state of its parent.
  bool coupled = false;
  bool validationRelaxed = false;

  /// The names that children of this type may have. If the type is required, they must all be there. Null: any name. A
  /// child with allowed names counts as coupled.
  std::unique_ptr<ListExpression> allowedNamesSource;
  /// The names of the first children of a required type that has no allowed names. Null: none.
  std::unique_ptr<ListExpression> defaultNamesSource;

  /// How many children of this type there must be at least, and may be at most: numbers as texts, evaluated in the
  /// parent. Null: no limit. A review judges them where the type is available; walks, editing and the validator do not.
  std::unique_ptr<TextExpression> minimumCount;
  std::unique_ptr<TextExpression> maximumCount;

  /// As in `ParamAvail`.
  std::vector<std::string> contexts;
  std::unique_ptr<Condition> available;
  std::string description;
  std::string reason;
  std::string group;
  std::string label;
  bool advanced = false;
  ItemHistory history;
  std::string betaMessage;
  /// The names of children that were renamed in the rules: former name to present name. As with `ItemHistory`, only
  /// reviews and tools read it.
  std::map<std::string, std::string> renamedNames;
  /// Where the entry is written: the child type.
  RulePlace rulePlace;

  /// Returns whether children of this type are available in the context. If so, collects the beta message.
  bool evaluate(TDFContext const& context, EvalContext* evalContext) const;

  /// Assign the allowed names, or the default names, to `out`. If the source is null, `out` stays as it is: clear it
  /// before the call.
  void evaluateAllowedNames(TDFContext const& context, EvalContext* evalContext, std::vector<std::string>& out) const;
  void evaluateDefaultNames(TDFContext const& context, EvalContext* evalContext, std::vector<std::string>& out) const;

 private:
  friend class ObjDependDef;
  PhysicsData const* data_ = nullptr;
};

}  // namespace tarn
