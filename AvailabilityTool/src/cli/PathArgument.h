#pragma once

#include <string>

#include <tarn/TDFPath.h>

namespace tarn::tool {

/// The path that was given for `option`. Throws a `Failure` when the text is no path.
[[nodiscard]] TDFPath pathArgument(std::string const& option, std::string const& text);

/// As `pathArgument`, and throws as well when the path is that of no object: it is the root.
[[nodiscard]] TDFPath objectArgument(std::string const& option, std::string const& text);

}  // namespace tarn::tool
