#pragma once

#include <iosfwd>

#include <tarn/Export.h>
#include <tarn/ModelState.h>

namespace tarn {

/// Writes `state` as nested blocks, behind one blank line:
///
///     Case:
///       Flow Regime = Turbulent
///       Domain: rotor
///         Angular Velocity = 120 [rad/s]
///       END # Domain:rotor
///     END # Case:
///
/// Objects come in the order of the state, each with its parameters in name order, and objects that share their leading
/// components share the blocks of these. A block of an object whose name equals its type opens with the type, a colon
/// and a blank. Byte order puts `/Case B` between `/Case` and `/Case/Domain`, so a block may be closed and opened
/// again.
///
/// `TDFChangeFile` reads the text back to the same state, as long as its lines can be told from each other: types and
/// names hold no "=", parameter names no ":"; types and parameter names begin with none of "#", "/" and "END #"; no
/// text has white space at its ends, and no value holds a line end. An object without parameters is read back if
/// nothing stands below it; otherwise the objects below imply it.
///
/// Throws the `Error` of `TDFPath` for an object path that it refuses; what stands before that object has then been
/// written or not. Flushes `stream` once, at the end.
TARN_EXPORT void printModelState(ModelState const& state, std::ostream& stream);

}  // namespace tarn
