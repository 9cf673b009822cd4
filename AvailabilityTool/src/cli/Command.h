#pragma once

#include <functional>
#include <iosfwd>

namespace tarn::tool {

/// What the command line chose to do: writes results to the first stream and all else to the second, and returns the
/// exit status. Throws a `Failure`, or an `Error` of the library, when it cannot do its work.
using Command = std::function<int(std::ostream& out, std::ostream& err)>;

}  // namespace tarn::tool
