#pragma once

#include <functional>
#include <iosfwd>

namespace tarn::tool {

/// The command that the command line chose. It writes results to the first stream and everything else to the second,
/// and returns the exit status. Throws a `Failure`, or an `Error` of the library, when it cannot do its work.
using Command = std::function<int(std::ostream& out, std::ostream& err)>;

}  // namespace tarn::tool
