#pragma once

#include <string>

#include <tarn/Export.h>

namespace tarn::TARNAssertImpl {

/// Reports a failed assertion by throwing an `AssertionError`; the process goes on.
[[noreturn]] TARN_EXPORT void assertFail(std::string const& condition, std::string const& file, int line);

}  // namespace tarn::TARNAssertImpl
