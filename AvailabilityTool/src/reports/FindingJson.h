#pragma once

#include <nlohmann/json.hpp>

#include <tarn/session/Finding.h>

namespace tarn::tool {

/// A finding with everything that is known about it. Keys are left out where there is nothing to say; "code",
/// "severity", "path" and "message" are always there. At most 100 allowed values are given, then "allowedCount" says
/// how many there are.
[[nodiscard]] nlohmann::ordered_json findingAsJson(session::Finding const& finding);

}  // namespace tarn::tool
