// A switch in the environment. It is read at the first call of `value`.
#include <tarn/BoolFromEnvironment.h>

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
  if (std::string_view(text) == "1" || StringUtilities::asYesNo(text) == true) state_ = State::On;
}

}  // namespace tarn
