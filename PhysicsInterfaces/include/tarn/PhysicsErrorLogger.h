#pragma once

#include <string>

#include <tarn/Export.h>
#include <tarn/PhysicsErrorMsg.h>

namespace tarn {

/// Receives the findings of a validator. Derive from it to show findings in your own way. `BasicPhysicsErrorLogger`
/// keeps them in memory.
///
/// The validator calls `reset` when it gets another model. Then it calls the two log operations in the order in which
/// it finds something, and each of the two queries once at the end of its phase. A logger must keep its findings until
/// the next `reset`: for an unchanged model the validator does not repeat them. An exception that an operation throws
/// ends the validation and reaches its caller.
class TARN_EXPORT PhysicsErrorLogger {
 public:
  virtual ~PhysicsErrorLogger();

  /// `path` is the object that the finding is about. For a beta message it is the path of the item.
  virtual void logDependencyError(std::string const& path, PhysicsErrorMsg const& message) = 0;
  virtual void logGlobalError(PhysicsErrorMsg const& message) = 0;
  /// Not called by `PhysicsValidator2`. It is for validators of sibling libraries that stop before the end and say why.
  virtual void logTermination(std::string const& text) = 0;
  /// Removes all findings.
  virtual void reset() = 0;
  /// Whether there are findings of that kind since the last `reset`. The validator computes its result from these: a
  /// logger that does not count beta messages here keeps them out of the result.
  [[nodiscard]] virtual bool hasDependencyErrors() const = 0;
  [[nodiscard]] virtual bool hasGlobalErrors() const = 0;
};

}  // namespace tarn
