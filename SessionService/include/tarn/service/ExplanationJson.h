#pragma once

#include <string_view>

#include <nlohmann/json.hpp>

#include <tarn/Explanation.h>
#include <tarn/Export.h>
#include <tarn/ModelRead.h>

// Explanations of rules as JSON, in the manner of SessionJson.h.

namespace tarn::service {

/// Null for what is not a number. A whole number has no decimal point.
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json numberAsJson(double number);
/// The item, "isPresent", and its "value" or "items"; "childrenOfType", "children" or "parameterNames" for a list.
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json modelReadAsJson(ModelRead const& read);
/// The tree of parts, from its root.
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json explanationAsJson(Explanation const& explanation);

/// "not-equal".
[[nodiscard]] TARN_EXPORT std::string_view operationName(Explanation::Operation operation) noexcept;

}  // namespace tarn::service
