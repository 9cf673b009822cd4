#pragma once

#include <string>

#include <tarn/Explanation.h>

namespace tarn::session {

/// Keeps only the parts of a list's explanation that decide whether `value` is in it. For example, a union that has the
/// value keeps its first argument with the value; one that does not have it keeps all arguments.
void keepWhatDecides(Explanation& explanation, std::string const& value);

/// Keeps of a list that is written item by item those up to the first that is `value`. They decide which item comes
/// first.
void keepUpTo(Explanation& explanation, std::string const& value);

}  // namespace tarn::session
