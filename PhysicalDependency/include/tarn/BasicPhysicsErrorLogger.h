#pragma once

#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/PhysicsErrorLogger.h>

namespace tarn {

/// Keeps the findings of a validation in memory, in the order in which they arrive.
///
///     BasicPhysicsErrorLogger logger;
///     validator.setLogger(&logger);
///     validator.validate(PhysicsValidator2::ValAll, model, {"/Case"});
///     for (auto const& error : logger.getDependencyErrors()) std::cout << error.path << ": " << error.message << '\n';
///
/// Nothing is sorted, merged or left out: a finding that is logged twice is listed twice. Levels are not kept, so a
/// beta message counts as an error here. A host that needs the level derives its own logger from `PhysicsErrorLogger`.
/// A copy is independent of its original.
class TARN_EXPORT BasicPhysicsErrorLogger : public PhysicsErrorLogger {
 public:
  struct DepError {
    /// The path of the object that the finding concerns; for a beta message, the path of the item.
    std::string path;
    std::string message;
  };

  BasicPhysicsErrorLogger();
  BasicPhysicsErrorLogger(BasicPhysicsErrorLogger const& other);
  BasicPhysicsErrorLogger& operator=(BasicPhysicsErrorLogger const& other);
  ~BasicPhysicsErrorLogger() override;

  void logDependencyError(std::string const& path, PhysicsErrorMsg const& message) override;
  void logGlobalError(PhysicsErrorMsg const& message) override;
  /// Does nothing. The text is not kept.
  void logTermination(std::string const& text) override;
  /// Empties both lists.
  void reset() override;

  [[nodiscard]] bool hasDependencyErrors() const override;
  [[nodiscard]] bool hasGlobalErrors() const override;

  /// Return copies of the lists, in order of arrival.
  [[nodiscard]] std::vector<DepError> getDependencyErrors() const;
  [[nodiscard]] std::vector<std::string> getGlobalErrors() const;
  /// Always empty; see `logTermination`.
  [[nodiscard]] std::string getTerminationMsg() const;

 private:
  std::vector<DepError> dependencyErrors_;
  std::vector<std::string> globalErrors_;
};

}  // namespace tarn
