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
#include <tarn/TextPattern.h>

namespace tarn {

/// The value rule of a parameter: its type, allowed values, default, override, bounds, pattern and quantity type. Fill
/// the fields and pass the record to `ObjDependDef::addParam`. The `ModelRules` of the evaluating operations may be
/// null; then only the controller of the `EvalContext` collects beta messages.
///
/// Null members. Every expression may be null. A null condition holds always. The other null expressions mean that the
/// rule has no such part, with two consequences that are easy to miss: with `allowedValues` null the parameter has no
/// allowed values, whatever `allowedValueKind` says; and an entry of `defaultChecks` or `overrideChecks` with a null
/// value ends the search when its condition holds, so `defaultValue` counts, or there is no override.
class TARN_EXPORT ParamValueDef {
 public:
  enum AllowedValueKind : int { NoAllowedValues = 0, FixedAllowedValues = 1, ComputedAllowedValues = 2 };

  /// A value that is in force while its condition holds.
  struct GuardedText {
    std::unique_ptr<Condition> when;
    std::unique_ptr<TextExpression> value;
  };

  TDFParam::Type type = TDFParam::String;
  /// 0: the parameter may have any text, and the fields for allowed values below are ignored.
  int allowedValueKind = NoAllowedValues;
  /// The parameter stays available when its evaluated list of allowed values is empty.
  bool availableWithNoAllowedValues = false;
  /// A list value must contain all allowed values.
  bool completeListRequired = false;

  /// The allowed values in the order of display, when `allowedValueKind` is not 0.
  std::unique_ptr<ListExpression> allowedValues;
  /// A value with an entry here is allowed only while its condition holds.
  std::map<std::string, std::unique_ptr<Condition>> allowedValueChecks;
  /// Values that are known but never allowed, also when they are in `allowedValues`.
  SharedStrings unusedValues;
  /// The subset on offer. Null: none.
  std::unique_ptr<ListExpression> subset;
  /// The allowed values are advice only: any other value is allowed too.
  bool allowsAnyValue = false;
  /// Value to beta message. It is collected when the allowed values are evaluated and contain the value.
  std::map<std::string, std::string> betaValues;

  /// The default. The first entry of `defaultChecks` whose condition holds takes precedence. Null: none.
  std::unique_ptr<TextExpression> defaultValue;
  std::vector<GuardedText> defaultChecks;
  /// The replacement of a default that is not allowed now: true for blank, false for the first value on offer.
  bool fallbackToBlankDefault = false;

  /// The first entry whose condition holds is the override in force.
  std::vector<GuardedText> overrideChecks;

  /// Null: no bound.
  std::unique_ptr<TextExpression> lowerBound;
  std::unique_ptr<TextExpression> upperBound;
  /// A value equal to the bound is outside. A review judges this; nothing else reads it.
  bool lowerBoundExcluded = false;
  bool upperBoundExcluded = false;

  /// Its value is a key of `PhysicsData::quantityTypes`. Null: none.
  std::unique_ptr<TextExpression> quantityType;

  /// The pattern that a String, or each item of a String List, must match as a whole. Null: any text will do. A review
  /// judges it; nothing else reads it.
  std::unique_ptr<TextPattern> pattern;
  /// For people: the sentence for a text that does not match. Empty: a sentence that shows the pattern.
  std::string patternMessage;

  /// Where the parameter is written: its name. The texts, lists and conditions above have places of their own.
  RulePlace rulePlace;

  /// Whether there is a default or a conditional default.
  [[nodiscard]] bool hasDefault() const noexcept { return defaultValue != nullptr || !defaultChecks.empty(); }
  [[nodiscard]] bool hasValueOverride() const noexcept { return !overrideChecks.empty(); }
  /// Whether a bound may read the model, see `RuleReads::readsModel`. Collects the reads of both bounds each time, so
  /// keep the result where it is needed often.
  [[nodiscard]] bool hasVariableBounds() const;

  /// The allowed values now. These are `allowedValues` without the unused values and those whose check fails. The
  /// subset loses the values that are not allowed. With `allowedValueKind` 0, a default-constructed record.
  [[nodiscard]] ParamAllowedValues evaluateAllowedValues(ModelRules const* rules, TDFContext const& context,
                                                         EvalContext* evalContext) const;

  /// The default as given, or "" if none is in force.
  [[nodiscard]] std::string evaluateDefault(ModelRules const* rules, TDFContext const& context,
                                            EvalContext* evalContext) const;

  /// The default that fits the allowed values. With `hasAllowedValues` clear, the same as above. Otherwise a default
  /// that is allowed is returned as given; a list default loses the items that are not allowed. If the default is not
  /// allowed, if a list loses all its items, or if there is no default, the result is the first value on offer: the
  /// first of the subset if there is one, otherwise the first allowed value, "" if that list is empty. With
  /// `fallbackToBlankDefault` the result is "" instead.
  [[nodiscard]] std::string evaluateDefault(ModelRules const* rules, TDFContext const& context,
                                            EvalContext* evalContext, ParamAllowedValues const& allowed) const;

  /// Whether an override is in force, and its value. The value is returned as given, also if it is not allowed.
  [[nodiscard]] std::pair<bool, std::string> evaluateValueOverride(ModelRules const* rules, TDFContext const& context,
                                                                   EvalContext* evalContext) const;
  [[nodiscard]] std::pair<bool, std::string> evaluateValueOverride(ModelRules const* rules, TDFContext const& context,
                                                                   EvalContext* evalContext,
                                                                   ParamAllowedValues const& allowed) const;

  /// Lower and upper bound as value texts, "" for a bound that does not exist.
  [[nodiscard]] std::pair<std::string, std::string> evaluateBounds(ModelRules const* rules, TDFContext const& context,
                                                                   EvalContext* evalContext) const;

  /// The quantity type, or "" if there is none.
  [[nodiscard]] std::string evaluateQuantityType(ModelRules const* rules, TDFContext const& context,
                                                 EvalContext* evalContext) const;

 private:
  friend class ObjDependDef;
  std::string paramName_;
};

}  // namespace tarn
