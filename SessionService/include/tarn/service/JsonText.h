#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include <tarn/Export.h>

namespace tarn::service {

/// The text of a JSON value on one line. Bytes that are not UTF-8 become U+FFFD.
[[nodiscard]] TARN_EXPORT std::string jsonLine(nlohmann::ordered_json const& json);

/// The list of `asJson(record)` for all `records`.
template <typename Records, typename AsJson>
[[nodiscard]] nlohmann::ordered_json jsonList(Records const& records, AsJson const& asJson) {
  auto list = nlohmann::ordered_json::array();
  for (auto const& record : records) list.push_back(asJson(record));
  return list;
}

}  // namespace tarn::service
