#pragma once

#include <iosfwd>

#include <tarn/Export.h>
#include <tarn/ModelState.h>

namespace tarn {

/// Writes `state` as nested blocks, after one blank line:
///
///     Case:
///       Flow Regime = Turbulent
///       Domain: rotor
///         Angular Velocity = 120 [rad/s]
///       END # Domain:rotor
///     END # Case:
///
/// Objects are printed in the order of the state, each with its parameters in name order. Objects that share their
/// leading components share the blocks of these. Byte order puts `/Case B` between `/Case` and `/Case/Domain`, so a
/// block may be closed and opened again.
///
/// The block of an object whose name equals its type opens with the type, a colon and a blank. So an object that the
/// state writes with such a name, `/Case/Domain:Domain`, prints like the singleton `/Case/Domain`, and is read back as
/// that. If the state has both, they share one block.
///
/// `TDFChangeFile` reads the text back to the same state if its lines are unambiguous: types and names contain no "=",
/// parameter names no ":"; types and parameter names do not begin with "#", "/" or "END #"; no string has white space
/// at its ends, and no value contains a line end. An object without parameters is read back if nothing is below it;
/// otherwise the objects below imply it.
///
/// Throws the `Error` of `TDFPath` for an object path that it cannot read. The text before that object may or may not
/// have been written then. Flushes `stream` once, at the end.
TARN_EXPORT void printModelState(ModelState const& state, std::ostream& stream);

}  // namespace tarn
