#pragma once

#include <string>

#include <tarn/Export.h>

namespace tarn {

/// The sentence of a finding, and its level.
struct TARN_EXPORT PhysicsErrorMsg {
  enum Level : int {
    /// Something is wrong.
    Fault = 0,
    /// Not an error: the rule author says that the item is not released yet.
    Beta = 1
  };

  std::string message;
  Level level = Fault;

  PhysicsErrorMsg(std::string const& message);  // NOLINT(google-explicit-constructor)
  PhysicsErrorMsg(std::string const& message, Level level);
};

}  // namespace tarn
