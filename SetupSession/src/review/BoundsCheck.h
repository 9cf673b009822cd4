#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <tarn/QuantityType.h>
#include <tarn/TDFParam.h>
#include <tarn/session/Finding.h>

namespace tarn::session {

/// The bounds of a parameter as its rules give them: "0 [m]". "" for no bound.
struct Bounds {
  std::string const& lower;
  std::string const& upper;
  /// A value that is equal to the bound is outside.
  bool lowerExcluded = false;
  bool upperExcluded = false;
};

struct BoundsFault {
  FindingCode code;
  /// The end of "... has the value 5, which ...".
  std::string sentence;
};

/// Whether a text is a bound. Any other text limits nothing.
[[nodiscard]] bool isBound(std::string_view text);

/// How a number is outside of its bounds. Empty if it is inside, or cannot be compared with them: a bound that is not a
/// number, or is in units that cannot be converted, limits nothing. `type` is the quantity type of the parameter; null
/// without one.
[[nodiscard]] std::optional<BoundsFault> faultOfBounds(TDFParam::Quantity const& quantity, Bounds const& bounds,
                                                       QuantityType const* type);

}  // namespace tarn::session
