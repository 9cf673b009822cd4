// There are few messages, and a validator clears them after each rule. So plain ordered maps are fast enough.

#include <tarn/BetaLoggingController.h>

#include <algorithm>

namespace tarn {

namespace {

template <typename Map>
std::vector<std::string> messagesOf(Map const& map, typename Map::key_type const& key) {
  auto const found = map.find(key);
  return found == map.end() ? std::vector<std::string>{} : found->second;
}

void addOnce(std::vector<std::string>& messages, std::string const& message) {
  if (std::find(messages.begin(), messages.end(), message) == messages.end()) messages.push_back(message);
}

}  // namespace

std::vector<std::string> BetaLoggingController::getObjAvailMessages(std::string const& type) const {
  return messagesOf(objMessages_, type);
}

std::vector<std::string> BetaLoggingController::getParamAvailMessages(std::string const& name) const {
  return messagesOf(paramMessages_, name);
}

std::vector<std::string> BetaLoggingController::getParamValAvailMessages(std::string const& name,
                                                                         std::string const& value) const {
  return messagesOf(paramValueMessages_, {name, value});
}

bool BetaLoggingController::anyLoggedMessages() const noexcept {
  return !objMessages_.empty() || !paramMessages_.empty() || !paramValueMessages_.empty();
}

void BetaLoggingController::clearMessages() noexcept {
  objMessages_.clear();
  paramMessages_.clear();
  paramValueMessages_.clear();
}

void BetaLoggingController::gatherObjMessage(std::string const& type, std::string const& message) {
  addOnce(objMessages_[type], message);
}

void BetaLoggingController::gatherParamMessage(std::string const& name, std::string const& message) {
  addOnce(paramMessages_[name], message);
}

void BetaLoggingController::gatherParamValueMessage(std::string const& name, std::string const& value,
                                                    std::string const& message) {
  addOnce(paramValueMessages_[{name, value}], message);
}

}  // namespace tarn
