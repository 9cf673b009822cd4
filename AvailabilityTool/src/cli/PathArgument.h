#pragma once

#include <string>

#include <tarn/PhysicsData.h>
#include <tarn/TDFPath.h>

namespace tarn::tool {

/// Returns the path that was given for `option`. Throws a `Failure` when the text is not a path.
[[nodiscard]] TDFPath pathArgument(std::string const& option, std::string const& text);

/// As `pathArgument`, but throws for the root of the model as well, which is not an object.
[[nodiscard]] TDFPath objectArgument(std::string const& option, std::string const& text);

/// Throws a `Failure` when the rules have no objects of the type of `path`, which was given for `option`. The failure
/// proposes the type path that was probably meant.
void requireKnownType(std::string const& option, std::string const& path, PhysicsData const& rules);

}  // namespace tarn::tool
