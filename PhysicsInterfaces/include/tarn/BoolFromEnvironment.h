#pragma once

#include <string>

#include <tarn/Export.h>

namespace tarn {

/// A switch in the environment. It is on when the variable holds 1, true, yes or on, in any case; anything else, and
/// its absence, is off. The environment is read at the first question and the answer kept.
class TARN_EXPORT BoolFromEnvironment {
 public:
  explicit BoolFromEnvironment(std::string const& variableName);

  [[nodiscard]] bool value() const;
  explicit operator bool() const { return value(); }

 private:
  enum class State { NotRead, Off, On };
  void checkEnv() const;

  std::string variableName_;
  mutable State state_ = State::NotRead;
};

}  // namespace tarn
