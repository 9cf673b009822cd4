#pragma once

#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/SharedStrings.h>

namespace tarn {

/// The evaluated allowed values of one parameter. Copies share their lists, so a record is cheap to hand on.
class TARN_EXPORT ParamAllowedValues {
 public:
  /// The parameter is of allowed value type. An evaluated list that came out empty still has it.
  bool hasAllowedValues = false;
  /// A subset is in force: `subsetValues` is what is on offer.
  bool hasSubset = false;
  /// The list is advice: a value outside it is no fault.
  bool allowsAnyValue = false;
  /// All allowed values, in the order of display.
  SharedStrings allowedValues;
  /// The subset, in its own order. Meaningful only with `hasSubset`.
  SharedStrings subsetValues;

  /// No allowed values: what a parameter has that may take any text.
  ParamAllowedValues() = default;
  /// A record with `hasAllowedValues` and `hasSubset` set and `allowsAnyValue` clear.
  ParamAllowedValues(SharedStrings allowed, SharedStrings subset);

  /// Whether `value` is one of `allowedValues` or, when `askSubset` is set and there is a subset, one of
  /// `subsetValues`. With `allowsAnyValue` the answer is always true. The comparison is exact.
  [[nodiscard]] bool isAllowedValue(std::string const& value, bool askSubset) const;

  /// True when `allowedValues` is empty.
  [[nodiscard]] bool isEmpty() const noexcept { return allowedValues.empty(); }

  /// True when all flags and both lists agree.
  [[nodiscard]] bool isEqualTo(ParamAllowedValues const& other) const noexcept;
};

}  // namespace tarn
