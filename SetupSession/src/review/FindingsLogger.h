#pragma once

#include <string>

#include <tarn/PhysicsErrorLogger.h>
#include <tarn/session/Findings.h>

namespace tarn::session {

/// Collects the messages of a validator in `Findings`. Beta messages go to a list of their own: they are not errors, so
/// a model without other messages is clean.
class FindingsLogger final : public PhysicsErrorLogger {
 public:
  /// `findings` must outlive the logger.
  explicit FindingsLogger(Findings& findings) noexcept : findings_(findings) {}

  void logDependencyError(std::string const& path, PhysicsErrorMsg const& message) override;
  void logGlobalError(PhysicsErrorMsg const& message) override;
  void logTermination(std::string const& text) override;
  /// Empties the lists that the logger fills. The other lists stay as they are.
  void reset() override;
  [[nodiscard]] bool hasDependencyErrors() const override;
  [[nodiscard]] bool hasGlobalErrors() const override;

 private:
  Findings& findings_;
};

}  // namespace tarn::session
