#pragma once

#include <string>

#include <tarn/ModelState.h>
#include <tarn/TDFChangeFile.h>

namespace tarn::tool {

/// The model in a file; "-" is the standard input. Throws a `Failure` that says what to do if it cannot be read.
[[nodiscard]] ModelState readModelFile(std::string const& name, TDFChangeFile::InputMode mode);

}  // namespace tarn::tool
