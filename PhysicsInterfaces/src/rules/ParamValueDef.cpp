// Evaluates the value rule of a parameter. The expressions are opaque here. This source defines how allowed values,
// checks, subset, defaults and overrides work together.

#include <tarn/ParamValueDef.h>

#include <algorithm>

#include <tarn/StringUtilities.h>

#include "rules/BetaGathering.h"

namespace tarn {

namespace {

/// The value of the first entry whose condition holds, or null.
TextExpression const* firstInForce(std::vector<ParamValueDef::GuardedText> const& entries, TDFContext const& context,
                                   EvalContext* evalContext) {
  for (auto const& entry : entries) {
    if (!entry.when || entry.when->evaluate(context, evalContext)) return entry.value.get();
  }
  return nullptr;
}

bool readsModel(TextExpression const* expression) {
  if (expression == nullptr) return false;
  RuleReads reads;
  expression->collectReads(reads);
  return reads.readsModel();
}

std::string firstOnOffer(ParamAllowedValues const& allowed) {
  auto const& offered = allowed.hasSubset ? allowed.subsetValues : allowed.allowedValues;
  return offered.empty() ? std::string{} : offered.front();
}

}  // namespace

bool ParamValueDef::hasVariableBounds() const {
  return readsModel(lowerBound.get()) || readsModel(upperBound.get());
}

ParamAllowedValues ParamValueDef::evaluateAllowedValues(ModelRules const* rules, TDFContext const& context,
                                                        EvalContext* evalContext) const {
  ParamAllowedValues result;
  if (allowedValueKind == NoAllowedValues || !allowedValues) return result;

  result.hasAllowedValues = true;
  result.allowsAnyValue = allowsAnyValue;
  result.allowedValues = allowedValues->evaluate(context, evalContext);

  // The list is copied only if a value is removed from it.
  if (!allowedValueChecks.empty() || !unusedValues.empty()) {
    std::vector<std::string_view> withdrawn;
    for (auto const& [value, check] : allowedValueChecks) {
      if (check && !check->evaluate(context, evalContext)) withdrawn.push_back(value);
    }
    auto const isOut = [&](std::string const& value) {
      return std::binary_search(withdrawn.begin(), withdrawn.end(), std::string_view(value)) ||
             unusedValues.contains(value);
    };
    auto const& all = result.allowedValues.vector();
    if (std::any_of(all.begin(), all.end(), isOut)) {
      std::vector<std::string> left;
      left.reserve(all.size());
      std::remove_copy_if(all.begin(), all.end(), std::back_inserter(left), isOut);
      result.allowedValues = std::move(left);
    }
  }

  if (subset) {
    result.hasSubset = true;
    result.subsetValues = subset->evaluate(context, evalContext);
    if (!result.allowedValues.containsAll(result.subsetValues)) {
      auto const& all = result.subsetValues.vector();
      std::vector<std::string> left;
      std::copy_if(all.begin(), all.end(), std::back_inserter(left),
                   [&](std::string const& value) { return result.allowedValues.contains(value); });
      result.subsetValues = std::move(left);
    }
  }

  if (!betaValues.empty()) {
    if (auto* beta = betaTarget(evalContext, rules != nullptr ? rules->data() : nullptr)) {
      for (auto const& [value, message] : betaValues) {
        if (result.allowedValues.contains(value)) beta->gatherParamValueMessage(paramName_, value, message);
      }
    }
  }
  return result;
}

std::string ParamValueDef::evaluateDefault(ModelRules const* /*rules*/, TDFContext const& context,
                                           EvalContext* evalContext) const {
  if (auto const* conditional = firstInForce(defaultChecks, context, evalContext)) {
    return conditional->evaluate(context, evalContext);
  }
  return defaultValue ? defaultValue->evaluate(context, evalContext) : std::string{};
}

std::string ParamValueDef::evaluateDefault(ModelRules const* rules, TDFContext const& context, EvalContext* evalContext,
                                           ParamAllowedValues const& allowed) const {
  if (!allowed.hasAllowedValues) return evaluateDefault(rules, context, evalContext);

  auto const* source = firstInForce(defaultChecks, context, evalContext);
  if (source == nullptr) source = defaultValue.get();
  if (source != nullptr) {
    std::string given = source->evaluate(context, evalContext);
    if (!TDFParam::isListType(type)) {
      if (allowed.isAllowedValue(given, false)) return given;
    } else {
      auto items = StringUtilities::stringToVector(given, ',');
      bool const hadItems = !items.empty();
      std::erase_if(items, [&](std::string const& item) { return !allowed.isAllowedValue(item, false); });
      if (!items.empty() || !hadItems) return StringUtilities::vectorToString(items, ',');
    }
  }
  return fallbackToBlankDefault ? std::string{} : firstOnOffer(allowed);
}

std::pair<bool, std::string> ParamValueDef::evaluateValueOverride(ModelRules const* /*rules*/,
                                                                  TDFContext const& context,
                                                                  EvalContext* evalContext) const {
  auto const* inForce = firstInForce(overrideChecks, context, evalContext);
  if (inForce == nullptr) return {false, std::string{}};
  return {true, inForce->evaluate(context, evalContext)};
}

std::pair<bool, std::string> ParamValueDef::evaluateValueOverride(ModelRules const* rules, TDFContext const& context,
                                                                  EvalContext* evalContext,
                                                                  ParamAllowedValues const& /*allowed*/) const {
  return evaluateValueOverride(rules, context, evalContext);
}

std::pair<std::string, std::string> ParamValueDef::evaluateBounds(ModelRules const* /*rules*/,
                                                                  TDFContext const& context,
                                                                  EvalContext* evalContext) const {
  return {lowerBound ? lowerBound->evaluate(context, evalContext) : std::string{},
          upperBound ? upperBound->evaluate(context, evalContext) : std::string{}};
}

std::string ParamValueDef::evaluateQuantityType(ModelRules const* /*rules*/, TDFContext const& context,
                                                EvalContext* evalContext) const {
  return quantityType ? quantityType->evaluate(context, evalContext) : std::string{};
}

}  // namespace tarn
