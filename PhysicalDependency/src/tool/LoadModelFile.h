#pragma once

#include <string>

#include <tarn/ModelState.h>

namespace tarn {

/// Reads a file of model text into `state` and replaces what `state` held. When the file sets a parameter twice, the
/// first value counts. On failure the function prints the reason on the standard output and returns false; the content
/// of `state` is then unspecified. Nothing is thrown.
[[nodiscard]] bool loadFile(std::string const& fileName, bool strictLoad, ModelState& state);

}  // namespace tarn
