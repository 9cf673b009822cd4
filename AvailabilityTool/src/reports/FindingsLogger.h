#pragma once

#include <string>

#include <tarn/PhysicsErrorLogger.h>

#include "reports/Findings.h"

namespace tarn::tool {

/// Puts what a validator finds into `Findings`, and keeps beta messages apart from errors: they are not errors, and a
/// model with nothing else is clean.
class FindingsLogger final : public PhysicsErrorLogger {
 public:
  /// `findings` must outlive the logger.
  explicit FindingsLogger(Findings& findings) noexcept : findings_(findings) {}

  void logDependencyError(std::string const& path, PhysicsErrorMsg const& message) override;
  void logGlobalError(PhysicsErrorMsg const& message) override;
  void logTermination(std::string const& text) override;
  /// Empties the lists that the logger fills; those of other analyses stay.
  void reset() override;
  [[nodiscard]] bool hasDependencyErrors() const override;
  [[nodiscard]] bool hasGlobalErrors() const override;

 private:
  Findings& findings_;
};

}  // namespace tarn::tool
