#pragma once

#include <string>

#include <tarn/ModelState.h>

namespace tarn {

/// Reads a file of model text into `state`, replacing what it held. Of a parameter given twice the first value stands.
/// On failure it says so on the standard output and returns false; what `state` then holds is of no use.
[[nodiscard]] bool loadFile(std::string const& fileName, bool strictLoad, ModelState& state);

}  // namespace tarn
