#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <tarn/PhysicsData.h>
#include <tarn/SharedStrings.h>
#include <tarn/session/Refused.h>

#include "session/RuledState.h"

namespace tarn::session {

/// A value as a user entered it for a parameter, after it was read.
struct EnteredValue {
  /// Set when the value cannot be meant.
  std::optional<RefusalCode> fault;
  /// Why: the end of a sentence that begins with the value.
  std::string reason;
  SharedStrings possible;
  /// The value to set. With a fault, the nearest value that would do, or "" when there is none.
  std::string value;
  /// The value was converted to other units.
  bool isConverted = false;
};

/// Reads a value for a parameter that the rules know. `isAvailable` says whether the parameter is present or on offer:
/// only then its allowed values are judged. Throws what a rule throws.
[[nodiscard]] EnteredValue readEnteredValue(RuledState const& state, ParamRules const& rules, std::string const& path,
                                            std::string const& text, bool isAvailable);

/// See `Session::convert`.
[[nodiscard]] std::optional<std::string> convertedQuantity(PhysicsData const& rules, std::string_view quantity,
                                                           std::string_view units);

}  // namespace tarn::session
