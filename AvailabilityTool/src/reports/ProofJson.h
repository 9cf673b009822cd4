#pragma once

#include <string_view>

#include <nlohmann/json.hpp>

#include <tarn/session/How.h>
#include <tarn/session/Proof.h>

// The answers to why and how as JSON, in the manner of SessionJson.h.

namespace tarn::tool {

/// "question", "hidden", and "nodes": the first is the answer, and "children" and "node" are indices of nodes.
[[nodiscard]] nlohmann::ordered_json proofAsJson(session::Proof const& proof);
/// "answer", "ways", "trials", "completedEdits", and what else there is.
[[nodiscard]] nlohmann::ordered_json howAsJson(session::HowResult const& result);

/// "not-available".
[[nodiscard]] std::string_view factName(session::Fact fact) noexcept;

}  // namespace tarn::tool
