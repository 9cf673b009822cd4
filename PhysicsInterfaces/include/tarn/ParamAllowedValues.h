#pragma once

#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/SharedStrings.h>

namespace tarn {

/// The evaluated allowed values of one parameter. Copies share their lists, so copying is cheap.
class TARN_EXPORT ParamAllowedValues {
 public:
  /// The rule of the parameter has allowed values. True also when the evaluated list is empty.
  bool hasAllowedValues = false;
  /// There is a subset: only `subsetValues` are on offer.
  bool hasSubset = false;
  /// The list is advice only: any other value is allowed too.
  bool allowsAnyValue = false;
  /// All allowed values, in the order of display.
  SharedStrings allowedValues;
  /// The subset, in its own order. Meaningful only with `hasSubset`.
  SharedStrings subsetValues;

  /// The record of a parameter that may have any text.
  ParamAllowedValues() = default;
  /// A record with `hasAllowedValues` and `hasSubset` set and `allowsAnyValue` clear.
  ParamAllowedValues(SharedStrings allowed, SharedStrings subset);

  /// Returns whether `value` is one of `allowedValues`. If `askSubset` is set and there is a subset, it must be one of
  /// `subsetValues` instead. Always true with `allowsAnyValue`. The comparison is exact.
  [[nodiscard]] bool isAllowedValue(std::string const& value, bool askSubset) const;

  /// True when `allowedValues` is empty.
  [[nodiscard]] bool isEmpty() const noexcept { return allowedValues.empty(); }

  /// Returns whether all flags and both lists are equal.
  [[nodiscard]] bool isEqualTo(ParamAllowedValues const& other) const noexcept;
};

}  // namespace tarn
