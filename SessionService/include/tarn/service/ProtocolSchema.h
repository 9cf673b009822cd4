#pragma once

#include <string_view>

#include <tarn/Export.h>

namespace tarn::service {

/// The version of the protocol. The first number rises when a client would have to change; the second when something
/// is added that clients may ignore.
inline constexpr int protocolMajor = 1;
inline constexpr int protocolMinor = 0;

/// A JSON Schema (draft 2020-12) of every message and record of the protocol. `$defs` has an entry `params NAME` and an
/// entry `result NAME` for each method. Valid until the program ends.
[[nodiscard]] TARN_EXPORT std::string_view protocolSchema() noexcept;

}  // namespace tarn::service
