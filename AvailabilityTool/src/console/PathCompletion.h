#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "console/Candidates.h"
#include "console/Completion.h"

namespace tarn::tool {

/// The components after `folder`, which is the text of a path up to and including a "/", that begin with `start`.
using PathLevel = std::function<Candidates(std::string const& folder, std::string const& start)>;
/// Whether a text reaches its command unchanged. Others are not offered.
using Arrives = std::function<bool(std::string const& text)>;

/// Completes `typed` through `level`, component by component: if there is only one, and it only leads to something
/// without being it, the next level follows. `end` is added to a path that is complete. A component that is complete is
/// entered only if it is already typed.
[[nodiscard]] Completion completePath(std::string const& typed, PathLevel const& level, Arrives const& arrives,
                                      std::string_view end);

/// Completes `typed` to one of `words`. Words that cannot be typed are not offered.
[[nodiscard]] Completion completeWord(std::vector<std::string> const& words, std::string_view typed);

}  // namespace tarn::tool
