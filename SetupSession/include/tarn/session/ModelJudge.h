#pragma once

#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ModelState.h>
#include <tarn/PhysicsData.h>
#include <tarn/PhysicsValidator2.h>
#include <tarn/session/Findings.h>

namespace tarn::session {

/// The parts of a model that a judge checks, and how.
struct JudgeOptions {
  /// Paths of the objects where the walks start, in the form that `TDFPath::getFullPath` gives. Empty: the walks start
  /// at each object at the root of the model whose type is pertinent.
  std::vector<std::string> roots;
  /// The phases of the validator. The other analyses always run, unless `onlyValidator` is set.
  PhysicsValidator2::ValType phases = PhysicsValidator2::ValAll;
  /// Leave out the search for unknown names and the judgement of values.
  bool onlyValidator = false;
};

/// Judges models: it runs the validator, the search for unknown names and the judgement of values on a model, and
/// returns what they find. One judge serves any number of models, also on several threads at once.
class TARN_EXPORT ModelJudge {
 public:
  /// `rules` must outlive the judge. No `BetaLoggingController` may be attached to `rules`: it would mix the messages
  /// of all threads.
  explicit ModelJudge(PhysicsData const& rules, JudgeOptions options = {});

  /// Judges `model`. If it lacks one of the roots that the options ask for, `Findings::missingRoots` names those and
  /// nothing else is judged; this is not an error. Throws what a rule throws. An empty model has no findings.
  [[nodiscard]] Findings judge(ModelState model) const;

 private:
  PhysicsData const* rules_;
  JudgeOptions options_;
};

}  // namespace tarn::session
