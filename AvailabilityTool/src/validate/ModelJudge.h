#pragma once

#include <string>
#include <vector>

#include <tarn/ModelState.h>
#include <tarn/PhysicsData.h>
#include <tarn/PhysicsValidator2.h>

#include "reports/Findings.h"

namespace tarn::tool {

/// What a model is judged by.
struct JudgeOptions {
  /// Where the walks start. Empty: at the objects at the root of the model that are of pertinent types.
  std::vector<std::string> roots;
  PhysicsValidator2::ValType phases = PhysicsValidator2::ValAll;
  /// Leave out the search for unknown names and the judgement of values.
  bool onlyValidator = false;
};

/// Judges models under the same rules, also several at once on threads of their own.
class ModelJudge {
 public:
  /// `rules` must outlive the judge, with no controller attached to them: that would gather for all threads.
  ModelJudge(PhysicsData const& rules, JudgeOptions options);

  /// All that is found in `model`. Throws a `Failure` when one of the roots asked for is not in the model, and passes
  /// on what a rule throws.
  [[nodiscard]] Findings judge(ModelState model) const;

 private:
  [[nodiscard]] std::vector<std::string> rootsIn(ModelState const& model) const;
  void validate(ModelState const& model, std::vector<std::string> const& roots, Findings& findings) const;
  void judgeValues(ModelState const& model, std::vector<std::string> const& roots, Findings& findings) const;
  [[nodiscard]] bool isPertinent(std::string const& path) const;

  PhysicsData const& rules_;
  JudgeOptions const options_;
};

}  // namespace tarn::tool
