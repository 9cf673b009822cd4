#pragma once

#include <string_view>

#include <nlohmann/json.hpp>

#include <tarn/Edit.h>
#include <tarn/Export.h>
#include <tarn/TextPlace.h>
#include <tarn/session/EditResult.h>
#include <tarn/session/Effect.h>
#include <tarn/session/Found.h>
#include <tarn/session/Item.h>
#include <tarn/session/Refused.h>
#include <tarn/session/Waiting.h>

// The records of a session as JSON, for the protocol and for all subcommands. Keys have the names of the members of the
// records. A key is left out where the record has nothing to say; the lists of an effect are always there.

namespace tarn::service {

/// The number of this form. It rises when a key is taken away or changes its meaning. New keys may come at any time.
inline constexpr int sessionJsonSchema = 1;

/// {"path":"/Case","name":"Title"}; without "name" for an object.
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json itemAsJson(session::Item const& item);
/// {"kind":"set-param","path":…,"name":…,"value":…}, with the keys that the kind uses.
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json editAsJson(Edit const& edit);
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json waitingAsJson(session::Waiting const& waiting);
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json valueChangeAsJson(session::ValueChange const& change);
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json effectAsJson(session::Effect const& effect);
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json refusedAsJson(session::Refused const& refused);
/// "applied", then either "refused" or everything else that the record has, then "message", a sentence.
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json editResultAsJson(session::EditResult const& result);
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json foundAsJson(session::Found const& found);
/// {"file":…,"line":…,"column":…}
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json placeAsJson(TextPlace const& place);

/// Lower case words with hyphens: "set-param".
[[nodiscard]] TARN_EXPORT std::string_view editKindName(Edit::Kind kind) noexcept;
/// "not-available".
[[nodiscard]] TARN_EXPORT std::string_view waitingReasonName(session::WaitingReason reason) noexcept;
/// "exact", "prefix", "word" or "substring".
[[nodiscard]] TARN_EXPORT std::string_view matchKindName(session::MatchKind kind) noexcept;

}  // namespace tarn::service
