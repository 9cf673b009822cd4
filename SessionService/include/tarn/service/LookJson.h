#pragma once

#include <cstddef>

#include <nlohmann/json.hpp>

#include <tarn/Export.h>
#include <tarn/ParamAllowedValues.h>
#include <tarn/session/ObjectRecord.h>
#include <tarn/session/ParamRecord.h>
#include <tarn/session/Step.h>

// The records of the items of a session as JSON, in the manner of SessionJson.h.

namespace tarn::service {

/// More values than these are left out of a list of allowed values; a count says how many there are.
inline constexpr std::size_t mostAllowedInRecord = 1000;

/// Everything about a parameter. Texts that are empty and flags that are false are left out, except "required",
/// "present", "offered" and "available". "allowed" is there when the rules restrict the values.
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json paramRecordAsJson(session::ParamRecord const& param);
/// Everything about an object, likewise.
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json objectRecordAsJson(session::ObjectRecord const& object);
/// A type of children. Lists of present or offered children end after `mostPaths`. Then "presentCount" or
/// "offeredCount" says how many there are.
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json childTypeRecordAsJson(session::ChildTypeRecord const& type,
                                                                       std::size_t mostPaths = 100);
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json ownValueAsJson(session::OwnValue const& value);
[[nodiscard]] TARN_EXPORT nlohmann::ordered_json differenceAsJson(session::Difference const& difference);

}  // namespace tarn::service
