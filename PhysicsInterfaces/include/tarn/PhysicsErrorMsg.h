#pragma once

#include <string>

#include <tarn/Export.h>

namespace tarn {

/// A finding in words, with a level.
struct TARN_EXPORT PhysicsErrorMsg {
  enum Level : int {
    /// Something is wrong.
    Fault = 0,
    /// The item works but is not released yet: a message of the rule author's.
    Beta = 1
  };

  std::string message;
  Level level = Fault;

  PhysicsErrorMsg(std::string const& message);  // NOLINT(google-explicit-constructor)
  PhysicsErrorMsg(std::string const& message, Level level);
};

}  // namespace tarn
