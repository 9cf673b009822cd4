#pragma once

#include <string>

#include <tarn/Explanation.h>
#include <tarn/ModelRead.h>

namespace tarn::tool {

/// The value of a part, as an author of rules would write it: `true`, `12.5`, `'Water'`, `['a', 'b']`, and for objects
/// their paths in braces.
[[nodiscard]] std::string valueText(Explanation::Result const& result);

/// The parts of an explanation, a line each, indented below the part that they belong to:
///
///     ${Motion} == 'Rotating' and ${Speed} > 10   false   (1 of 2 operands do not hold)
///       ${Speed} > 10   false
///         ${Speed}   '5 [m s^-1]'
///             /Case/Domain:rotor/Speed = 5 [m s^-1]
///
/// Parts that are written out, such as 10, have no line. `indent` is put before each line.
[[nodiscard]] std::string explanationText(Explanation const& explanation, std::string const& indent = {});

}  // namespace tarn::tool
