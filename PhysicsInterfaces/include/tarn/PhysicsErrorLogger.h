#pragma once

#include <string>

#include <tarn/Export.h>
#include <tarn/PhysicsErrorMsg.h>

namespace tarn {

/// Where a validator puts what it finds. Derive from it to show findings in your own way; `BasicPhysicsErrorLogger`
/// keeps them in memory.
///
/// A validator calls `reset` when it is handed another model, then the two log operations in the order in which it
/// finds things, and asks the two queries once at the end of its phases. A logger must keep what it was told until the
/// next `reset`: for an unchanged model the validator does not repeat it. What an operation throws ends the validation
/// and reaches its caller.
class TARN_EXPORT PhysicsErrorLogger {
 public:
  virtual ~PhysicsErrorLogger();

  /// `path` is the object that the finding is about; of a beta message, the item.
  virtual void logDependencyError(std::string const& path, PhysicsErrorMsg const& message) = 0;
  virtual void logGlobalError(PhysicsErrorMsg const& message) = 0;
  virtual void logTermination(std::string const& text) = 0;
  virtual void reset() = 0;
  [[nodiscard]] virtual bool hasDependencyErrors() const = 0;
  [[nodiscard]] virtual bool hasGlobalErrors() const = 0;
};

}  // namespace tarn
