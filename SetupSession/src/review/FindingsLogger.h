#pragma once

#include <string>

#include <tarn/NearMatches.h>
#include <tarn/PhysicsData.h>
#include <tarn/PhysicsErrorLogger.h>
#include <tarn/PhysicsFault.h>
#include <tarn/session/Findings.h>

namespace tarn::session {

/// Collects what a validator finds in `Findings`. Set it both as the logger and as the fault observer. Beta messages go
/// to a list of their own: they are not errors, so a model without other messages is clean.
class FindingsLogger final : public PhysicsErrorLogger, public PhysicsFaultObserver {
 public:
  /// `rules` and `findings` must outlive the logger.
  FindingsLogger(PhysicsData const& rules, Findings& findings) noexcept : rules_(rules), findings_(findings) {}

  void onFault(PhysicsFault const& fault) override;
  void logDependencyError(std::string const& path, PhysicsErrorMsg const& message) override;
  void logGlobalError(PhysicsErrorMsg const& message) override;
  void logTermination(std::string const& text) override;
  /// Removes the findings of the validator. The others stay.
  void reset() override;
  [[nodiscard]] bool hasDependencyErrors() const override { return hasDependencyErrors_; }
  [[nodiscard]] bool hasGlobalErrors() const override { return hasGlobalErrors_; }

 private:
  PhysicsData const& rules_;
  Findings& findings_;
  NearMatches nearMatches_;
  bool hasDependencyErrors_ = false;
  bool hasGlobalErrors_ = false;
};

}  // namespace tarn::session
