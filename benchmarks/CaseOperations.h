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

/// The changes of an edit, read through every getter as a user interface does after each edit.
[[nodiscard]] EditCounts readAllGetters(ProvisionalTDF const& state, std::string const& editedObject,
                                        std::string const& editedParameter);

/// A copy that lies in memory as a state does that was read or built, object by object. The plain copy of a map does
/// not, and is slower to go through.
[[nodiscard]] ModelState inOrder(ModelState const& model);

/// A validator that is asked about one model again and again.
class RepeatedValidation {
 public:
  RepeatedValidation(PhysicsData const* rules, ModelState const& model);
  RepeatedValidation(RepeatedValidation const&) = delete;
  RepeatedValidation& operator=(RepeatedValidation const&) = delete;

  /// Changes one value of the model, a remark that no rule reads, and validates it.
  void validateChanged();
  /// Validates the model as it was in the last call.
  void validateUnchanged();

  /// The paths of the objects that the last call found something about, one for each finding, sorted.
  [[nodiscard]] std::vector<std::string> findings() const;
  [[nodiscard]] std::vector<std::string> globalFindings() const { return logger_.getGlobalErrors(); }

 private:
  BasicPhysicsErrorLogger logger_;
  PhysicsValidator2 validator_;
  ModelState model_;
  std::string& notes_;
};

/// How a state is updated after an edit.
enum class Updates {
  /// Visits only what the edit concerns, as users have it.
  Affected,
  /// Walks everything, to compare.
  Full
};

/// The whole case as a user edits it.
class RepeatedEditing {
 public:
  RepeatedEditing(PhysicsData const* rules, CaseWorkload const& workload, ModelState const& model,
                  Updates updates = Updates::Affected);

  /// Makes the inlet of one domain a wall, and an inlet again with the next call; then that of the next domain.
  EditCounts editOneBoundary();
  /// Makes the case laminar, and turbulent again with the next call.
  EditCounts editWholeCase();
  /// The same edits from an even number of edits on, each of them taken back after a look at its results.
  EditCounts tryOneBoundary();
  EditCounts tryWholeCase();
  /// Sets one parameter.
  EditCounts edit(std::string const& object, std::string const& parameter, std::string const& value);

  [[nodiscard]] ProvisionalTDF const& state() const noexcept { return *state_; }
  /// The milliseconds that the start took.
  [[nodiscard]] double startTime() const noexcept { return startTime_; }
  /// Heap memory of the state after the start, without the model that it reads.
  [[nodiscard]] double bytesPerParameter() const noexcept { return bytes_ / static_cast<double>(parameters_); }

 private:
  DynamicTDF base_;
  std::unique_ptr<ProvisionalTDF> state_;
  std::vector<std::string> inlets_;
  std::size_t edits_ = 0;
  std::size_t tries_ = 0;
  double startTime_ = 0;
  double bytes_ = 0;
  std::size_t parameters_ = 0;
};

/// Throws an error that names the first count which is not what the workload says: parameters, findings in the sound,
/// the faulty and the inletless case, and what each edit adds, removes, modifies and offers. Nothing is worth timing
/// before.
void checkCounts(CaseWorkload const& workload, PhysicsData const* rules);

}  // namespace tarn::benchmarks
