#pragma once

#include <cstddef>
#include <limits>
#include <string_view>

#include <nlohmann/json.hpp>

#include <tarn/Edit.h>
#include <tarn/Export.h>
#include <tarn/TextPlace.h>
#include <tarn/session/EditResult.h>
#include <tarn/session/Effect.h>
#include <tarn/session/Found.h>
#include <tarn/session/Item.h>
#include <tarn/session/ModelFile.h>
#include <tarn/session/Refused.h>
#include <tarn/session/Session.h>
#include <tarn/session/Step.h>
#include <tarn/session/Waiting.h>

// The records of a session as JSON, for the protocol and for all subcommands. Keys have the names of the members of the
// records. A key is left out where the record has nothing to say; the lists of an effect are always there.

namespace tarn::service {

/// The number of this form. It rises when a key is taken away or changes its meaning. New keys may come at any time.
inline constexpr int sessionJsonSchema = 1;

inline constexpr std::size_t noLimit = std::numeric_limits<std::size_t>::max();

/// {"path":"/Case","name":"Title"}; without "name" for an object.
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json itemAsJson(session::Item const& item);
/// {"kind":"set-param","path":…,"name":…,"value":…}, with the keys that the kind uses.
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json editAsJson(Edit const& edit);
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json waitingAsJson(session::Waiting const& waiting);
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json valueChangeAsJson(session::ValueChange const& change);
/// A list with more than `most` entries is cut. Then "cut" has the names of the lists that were cut, with the number of
/// all their entries.
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json effectAsJson(session::Effect const& effect,
                                                              std::size_t most = noLimit);
/// One list of an effect by its key, from the entry at `offset` on. Null for a key that no list has.
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json effectListAsJson(session::Effect const& effect, std::string_view key,
                                                                  std::size_t offset, std::size_t most);
/// The number of entries of a list of an effect; 0 for a key that no list has.
[[nodiscard]] TARN_EXPORT std::size_t effectListSize(session::Effect const& effect, std::string_view key);
/// "possibleCount" is there when "possible" leaves something out: paths beyond `Refused::mostPaths`, and values beyond
/// `mostAllowedInRecord`.
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json refusedAsJson(session::Refused const& refused);
/// "applied", then either "refused" or everything else that the record has, then "message", a sentence. The effect is
/// limited as by `effectAsJson`.
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json editResultAsJson(session::EditResult const& result,
                                                                  std::size_t most = noLimit);
/// The same for edits that were only tried. If they would be applied, there is no "message", and "findingsGained" and
/// "findingsLost" have at most `most` findings each.
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json tryResultAsJson(session::TryResult const& result,
                                                                 std::size_t most = noLimit);
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json stepAsJson(session::Step const& step);
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json foundAsJson(session::Found const& found);
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json openErrorAsJson(session::OpenError const& error);
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json saveErrorAsJson(session::SaveError const& error);
/// {"file":…,"line":…,"column":…}
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json placeAsJson(TextPlace const& place);

/// Lower case words with hyphens: "set-param".
[[nodiscard]] TARN_EXPORT std::string_view editKindName(Edit::Kind kind) noexcept;
/// "not-available".
[[nodiscard]] TARN_EXPORT std::string_view waitingReasonName(session::WaitingReason reason) noexcept;
/// "exact", "prefix", "word" or "substring".
[[nodiscard]] TARN_EXPORT std::string_view matchKindName(session::MatchKind kind) noexcept;
/// "root-unknown".
[[nodiscard]] TARN_EXPORT std::string_view openFaultName(session::OpenFault fault) noexcept;
/// "file-changed".
[[nodiscard]] TARN_EXPORT std::string_view saveFaultName(session::SaveFault fault) noexcept;

}  // namespace tarn::service
