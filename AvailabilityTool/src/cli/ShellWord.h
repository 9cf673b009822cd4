#pragma once

#include <string>
#include <string_view>

namespace tarn::tool {

/// The text as one word of a POSIX shell: in single quotes unless it has only characters that need none. So a command
/// line that is printed can be copied and run.
[[nodiscard]] std::string shellWord(std::string_view text);

}  // namespace tarn::tool
