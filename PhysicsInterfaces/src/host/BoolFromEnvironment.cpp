// A switch in the environment, read when it is first asked for.
#include <tarn/BoolFromEnvironment.h>

#include <array>
#include <cstdlib>
#include <string_view>

namespace tarn {

namespace {

bool equalButForCase(std::string_view text, std::string_view lower) noexcept {
  if (text.size() != lower.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char const c = text[i];
    if ((c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c) != lower[i]) return false;
  }
  return true;
}

}  // namespace

BoolFromEnvironment::BoolFromEnvironment(std::string const& variableName) : variableName_(variableName) {}

bool BoolFromEnvironment::value() const {
  if (state_ == State::NotRead) checkEnv();
  return state_ == State::On;
}

void BoolFromEnvironment::checkEnv() const {
  state_ = State::Off;
  char const* const text = std::getenv(variableName_.c_str());
  if (!text) return;
  for (std::string_view const word : std::array<std::string_view, 4>{"1", "true", "yes", "on"}) {
    if (equalButForCase(text, word)) state_ = State::On;
  }
}

}  // namespace tarn
