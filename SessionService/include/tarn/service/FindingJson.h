#pragma once

#include <cstddef>

#include <nlohmann/json.hpp>

#include <tarn/Export.h>
#include <tarn/session/Finding.h>

namespace tarn::service {

/// More allowed values than these are only counted: thousands of findings may have the same long list.
inline constexpr std::size_t mostAllowedInJson = 100;

/// A finding with everything that is known about it. Keys are left out where there is nothing to say; "code",
/// "severity", "path" and "message" are always there. If there are more than `mostAllowedInJson`
/// allowed values, "allowedCount" says how many there are.
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json findingAsJson(session::Finding const& finding);

}  // namespace tarn::service
