#pragma once

#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ModelState.h>
#include <tarn/ModelText.h>
#include <tarn/PhysicsData.h>
#include <tarn/PhysicsValidator2.h>
#include <tarn/session/Findings.h>

namespace tarn::session {

/// The parts of a model that a review judges, and how.
struct TARN_EXPORT ReviewOptions {
  /// Paths of the objects where the walks start, in the form that `TDFPath::getFullPath` gives. Empty: the walks start
  /// at each object at the root of the model whose type is pertinent.
  std::vector<std::string> roots;
  /// The phases of the validator. The other judgements are always made, unless `onlyValidator` is set.
  PhysicsValidator2::ValType phases = PhysicsValidator2::ValAll;
  /// Leave out unknown names and everything that is judged by the declaration of a parameter or a child type.
  bool onlyValidator = false;
};

/// Finds everything that is wrong with a model. One review serves any number of models, also on several threads at
/// once.
///
///     Review const review(*rules);
///     ModelText const text = ModelText::read("pump.tdf");
///     for (Finding const& finding : review.judge(text).list) std::cout << finding.message << '\n';
class TARN_EXPORT Review {
 public:
  /// `rules` must outlive the review. No `BetaLoggingController` may be attached to `rules`: it would mix the messages
  /// of all threads.
  explicit Review(PhysicsData const& rules, ReviewOptions options = {});

  /// Judges `model`. If it lacks one of the roots that the options ask for, `Findings::missingRoots` names those and
  /// nothing else is judged; this is not an error. Throws what a rule throws. The findings have no places in a text.
  [[nodiscard]] Findings judge(ModelState const& model) const;
  /// Judges the model that `text` holds. The findings have their places in the text, and parameters that the text gives
  /// more than once are findings too. Malformed lines are not: ask `ModelText::faults` first, and do not judge a model
  /// of which a part is missing. Without findings it costs no more than the above.
  [[nodiscard]] Findings judge(ModelText const& text) const;

 private:
  PhysicsData const* rules_;
  ReviewOptions options_;
};

}  // namespace tarn::session
