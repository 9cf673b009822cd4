#pragma once

#include <string>
#include <utility>
#include <vector>

#include <tarn/Export.h>

namespace tarn {

class ModelTDF;

/// Evaluates the named checks and lists of a rule database in a model of the caller's choice, for callers who want
/// their results without knowing rules. `EvalCheckList` is the evaluator over a `PhysicsData`; derive from it to stand
/// in for one.
///
/// No call leaves anything behind, so one evaluator serves many models in turn.
class TARN_EXPORT PhysicsEvaluator {
 public:
  PhysicsEvaluator() = default;
  virtual ~PhysicsEvaluator();

  /// The value of the check at the object `path` of `model`, and whether there is such a check. Read the second first:
  /// an unknown name gives (false, false) and is no error. Passes on what the rule throws.
  [[nodiscard]] virtual std::pair<bool, bool> evaluateCheck(std::string const& name, std::string const& path,
                                                            ModelTDF const* model) const = 0;

  /// The items of the list at the object `path` of `model`, and whether there is such a list. An unknown name gives no
  /// items and false, a list that comes out empty no items and true. Passes on what the rule throws.
  [[nodiscard]] virtual std::pair<std::vector<std::string>, bool> evaluateList(std::string const& name,
                                                                               std::string const& path,
                                                                               ModelTDF const* model) const = 0;

  /// Whether there is such a check, such a list. `flag` is handed to the look-up of the rule database as it is.
  [[nodiscard]] virtual bool hasCheck(std::string const& name, bool flag) const = 0;
  [[nodiscard]] virtual bool hasList(std::string const& name, bool flag) const = 0;

 protected:
  PhysicsEvaluator(PhysicsEvaluator const&) = default;
  PhysicsEvaluator& operator=(PhysicsEvaluator const&) = default;
};

}  // namespace tarn
