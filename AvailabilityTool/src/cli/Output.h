#pragma once

#include <iosfwd>
#include <ostream>

namespace tarn::tool {

/// Sees to it that what was written to `out` has arrived. Throws a `Failure` when it has not: the reader is gone, the
/// disk is full.
void flushResults(std::ostream& out);

/// Prepares the process for writing: a reader that goes away becomes a write that fails, and a standard stream that the
/// caller has closed does not turn into the first file that is opened.
void prepareStandardStreams() noexcept;

}  // namespace tarn::tool
