#pragma once

#include <string_view>

#include <nlohmann/json.hpp>

#include <tarn/Export.h>
#include <tarn/session/How.h>
#include <tarn/session/Proof.h>

// The answers to why and how as JSON, in the manner of SessionJson.h.

namespace tarn::service {

/// "question", "hidden", and "nodes": the first is the answer, and "children" and "node" are indices of nodes.
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json proofAsJson(session::Proof const& proof);
/// "answer", "ways", "trials", "completedEdits", and what else there is.
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json howAsJson(session::HowResult const& result);

/// "last-edit".
[[nodiscard]] TARN_EXPORT std::string_view questionName(session::Question question) noexcept;
/// "already-so".
[[nodiscard]] TARN_EXPORT std::string_view answerName(session::HowAnswer answer) noexcept;
/// "not-available".
[[nodiscard]] TARN_EXPORT std::string_view factName(session::Fact fact) noexcept;

}  // namespace tarn::service
