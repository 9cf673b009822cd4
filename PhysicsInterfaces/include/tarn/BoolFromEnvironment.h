#pragma once

#include <string>

#include <tarn/Export.h>

namespace tarn {

/// A switch in the environment. It is on if the variable is 1, true, yes or on, in any case. It is off if the variable
/// is anything else, or absent. The environment is read at the first call of `value`; later changes are not seen.
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
