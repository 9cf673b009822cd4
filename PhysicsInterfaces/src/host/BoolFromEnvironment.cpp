// A switch in the environment, read when it is first asked for.
#include <tarn/BoolFromEnvironment.h>

#include <array>
#include <cstdlib>
#include <string_view>

#include <tarn/StringUtilities.h>

namespace tarn {

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
    if (StringUtilities::equalIgnoringCase(text, word)) state_ = State::On;
  }
}

}  // namespace tarn
