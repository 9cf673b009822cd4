#pragma once

#include <string>

#include <tarn/Export.h>

namespace tarn::TARNAssertImpl {

/// Reports a failed assertion: throws an `AssertionError`. The process does not end.
[[noreturn]] TARN_EXPORT void assertFail(std::string const& condition, std::string const& file, int line);

}  // namespace tarn::TARNAssertImpl
