#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <tarn/BasicPhysicsErrorLogger.h>
#include <tarn/DynamicTDF.h>
#include <tarn/ModelState.h>
#include <tarn/PhysicsData.h>
#include <tarn/PhysicsValidator2.h>
#include <tarn/ProvisionalTDF.h>

#include "CaseWorkload.h"

namespace tarn::benchmarks {

/// The rules of the case, from the file beside the sources.
[[nodiscard]] std::string caseRulesFile();
[[nodiscard]] std::unique_ptr<PhysicsData> loadCaseRules();

/// What an edit changed, had by reading every getter as a user interface does after each edit.
[[nodiscard]] EditCounts readAllGetters(ProvisionalTDF const& state, std::string const& editedObject,
                                        std::string const& editedParameter);

/// A validator that gets to see one model after another.
class RepeatedValidation {
 public:
  RepeatedValidation(PhysicsData const* rules, ModelState const& model);

  /// Validates a model that differs from the last one in one value.
  void validateChanged();
  /// Validates the model of the last call once more.
  void validateUnchanged();

  /// The paths of the objects that the last call found something about, one for each finding, sorted.
  [[nodiscard]] std::vector<std::string> findings() const;
  [[nodiscard]] std::vector<std::string> globalFindings() const { return logger_.getGlobalErrors(); }

 private:
  BasicPhysicsErrorLogger logger_;
  PhysicsValidator2 validator_;
  ModelState models_[2];
  std::size_t last_ = 0;
};

/// The whole case as a user edits it.
class RepeatedEditing {
 public:
  RepeatedEditing(PhysicsData const* rules, CaseWorkload const& workload, ModelState const& model);

  /// Makes the inlet of one domain a wall, and an inlet again with the next call; then that of the next domain.
  EditCounts editOneBoundary();
  /// Makes the case laminar, and turbulent again with the next call.
  EditCounts editWholeCase();
  /// Sets one parameter.
  EditCounts edit(std::string const& object, std::string const& parameter, std::string const& value);

  [[nodiscard]] ProvisionalTDF const& state() const noexcept { return *state_; }
  /// What the heap gave for the state, without the model that it reads.
  [[nodiscard]] double bytesPerParameter() const noexcept { return bytes_ / static_cast<double>(parameters_); }

 private:
  DynamicTDF base_;
  std::unique_ptr<ProvisionalTDF> state_;
  std::vector<std::string> inlets_;
  std::size_t edits_ = 0;
  double bytes_ = 0;
  std::size_t parameters_ = 0;
};

/// Throws an error that names the first count which is not what the workload says: parameters, findings in the sound,
/// the faulty and the inletless case, and what each edit adds, removes, modifies and offers. Nothing is worth timing
/// before.
void checkCounts(CaseWorkload const& workload, PhysicsData const* rules);

}  // namespace tarn::benchmarks
