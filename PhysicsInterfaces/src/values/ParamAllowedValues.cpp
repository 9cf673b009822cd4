// Queries on evaluated allowed values. ParamValueDef evaluates them.
#include <tarn/ParamAllowedValues.h>

#include <utility>

namespace tarn {

ParamAllowedValues::ParamAllowedValues(SharedStrings allowed, SharedStrings subset)
    : hasAllowedValues(true), hasSubset(true), allowedValues(std::move(allowed)), subsetValues(std::move(subset)) {}

bool ParamAllowedValues::isAllowedValue(std::string const& value, bool askSubset) const {
  if (allowsAnyValue) return true;
  return askSubset && hasSubset ? subsetValues.contains(value) : allowedValues.contains(value);
}

bool ParamAllowedValues::isEqualTo(ParamAllowedValues const& other) const noexcept {
  return hasAllowedValues == other.hasAllowedValues && hasSubset == other.hasSubset &&
         allowsAnyValue == other.allowsAnyValue && allowedValues == other.allowedValues &&
         subsetValues == other.subsetValues;
}

}  // namespace tarn
