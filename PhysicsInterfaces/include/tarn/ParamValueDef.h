#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <tarn/EvalContext.h>
#include <tarn/Export.h>
#include <tarn/ModelRules.h>
#include <tarn/ParamAllowedValues.h>
#include <tarn/RuleExpressions.h>
#include <tarn/RulePlace.h>
#include <tarn/TDFContext.h>
#include <tarn/TDFParam.h>

namespace tarn {

/// What values a parameter may take: its type, allowed values, default, override, bounds and quantity type. Fill the
/// fields and hand the record to `ObjDependDef::addParam`. The `ModelRules` of the evaluating operations may be null;
/// beta messages then go to the controller of the `EvalContext` only.
class TARN_EXPORT ParamValueDef {
 public:
  enum AllowedValueKind : int { NoAllowedValues = 0, FixedAllowedValues = 1, ComputedAllowedValues = 2 };

  /// A value that counts while its condition holds.
  struct GuardedText {
    std::unique_ptr<Condition> when;
    std::unique_ptr<TextExpression> value;
  };

  TDFParam::Type type = TDFParam::String;
  /// 0: the parameter may take any text, and the allowed value fields below are not looked at.
  int allowedValueKind = NoAllowedValues;
  /// The parameter stays available when its allowed list evaluates empty.
  bool availableWithNoAllowedValues = false;
  /// A list value must name all allowed values.
  bool completeListRequired = false;

  /// The allowed values in the order of display. Required when `allowedValueKind` is not 0.
  std::unique_ptr<ListExpression> allowedValues;
  /// A value with an entry here is allowed only while the condition holds.
  std::map<std::string, std::unique_ptr<Condition>> allowedValueChecks;
  /// Values that are known but never allowed, also when `allowedValues` holds them.
  SharedStrings unusedValues;
  /// The subset on offer. Null: none.
  std::unique_ptr<ListExpression> subset;
  /// The allowed values are advice only.
  bool allowsAnyValue = false;
  /// Given with a value whenever the allowed values were evaluated and hold it.
  std::map<std::string, std::string> betaValues;

  /// The default, unless a check before it holds: of `defaultChecks` the first one whose condition holds. Null: none.
  std::unique_ptr<TextExpression> defaultValue;
  std::vector<GuardedText> defaultChecks;
  /// What stands in for a default that is not allowed now: blank, or else the first value on offer.
  bool fallbackToBlankDefault = false;

  /// The first whose condition holds is the override in force.
  std::vector<GuardedText> overrideChecks;

  /// Null: no bound.
  std::unique_ptr<TextExpression> lowerBound;
  std::unique_ptr<TextExpression> upperBound;

  /// Null: none. Evaluates to a key of `PhysicsData::quantityTypes`.
  std::unique_ptr<TextExpression> quantityType;

  /// Where the parameter is written: its name. The texts, lists and conditions above have places of their own.
  RulePlace rulePlace;

  /// A default or a list of conditional defaults is given.
  [[nodiscard]] bool hasDefault() const noexcept { return defaultValue != nullptr || !defaultChecks.empty(); }
  [[nodiscard]] bool hasValueOverride() const noexcept { return !overrideChecks.empty(); }
  /// One of the bounds reads the model. Asks the bounds what they read, so keep the answer where it is asked often.
  [[nodiscard]] bool hasVariableBounds() const;

  /// The allowed values now: those of `allowedValues` without the ones whose check fails and the unused ones, and of
  /// the subset those that are allowed. With `allowedValueKind` 0 a default-constructed record.
  [[nodiscard]] ParamAllowedValues evaluateAllowedValues(ModelRules const* rules, TDFContext const& context,
                                                         EvalContext* evalContext) const;

  /// The default as given, or "" when none is in force.
  [[nodiscard]] std::string evaluateDefault(ModelRules const* rules, TDFContext const& context,
                                            EvalContext* evalContext) const;

  /// The default in the light of the allowed values. With none in force (`hasAllowedValues` clear), as above.
  /// Otherwise: a default that is allowed is given as it stands; of a list type, the items that are allowed, joined by
  /// commas. A default that is not allowed, a list that loses all its items, or no default at all gives the first value
  /// on offer: the first of the subset when there is a subset, else of the allowed values, "" when that list is empty,
  /// and "" with `fallbackToBlankDefault`.
  [[nodiscard]] std::string evaluateDefault(ModelRules const* rules, TDFContext const& context,
                                            EvalContext* evalContext, ParamAllowedValues const& allowed) const;

  /// Whether an override is in force, and its value. The value is given as it stands, allowed or not.
  [[nodiscard]] std::pair<bool, std::string> evaluateValueOverride(ModelRules const* rules, TDFContext const& context,
                                                                   EvalContext* evalContext) const;
  [[nodiscard]] std::pair<bool, std::string> evaluateValueOverride(ModelRules const* rules, TDFContext const& context,
                                                                   EvalContext* evalContext,
                                                                   ParamAllowedValues const& allowed) const;

  /// Lower and upper bound as value texts; "" where there is none.
  [[nodiscard]] std::pair<std::string, std::string> evaluateBounds(ModelRules const* rules, TDFContext const& context,
                                                                   EvalContext* evalContext) const;

  /// The quantity type, or "" when there is none.
  [[nodiscard]] std::string evaluateQuantityType(ModelRules const* rules, TDFContext const& context,
                                                 EvalContext* evalContext) const;

 private:
  friend class ObjDependDef;
  std::string paramName_;
};

}  // namespace tarn
