#include <tarn/service/JsonText.h>

namespace tarn::service {

std::string jsonLine(nlohmann::ordered_json const& json) {
  return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace tarn::service
