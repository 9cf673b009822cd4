#pragma once

#include <string>
#include <utility>
#include <vector>

#include <tarn/Export.h>

namespace tarn {

class ModelTDF;

/// Evaluates the named checks and lists of a rule database in any model, for callers who need only their results.
/// `EvalCheckList` is the evaluator for a `PhysicsData`. Derive another one to replace it, for example in tests.
///
/// Calls are independent of each other, so one evaluator serves many models in turn.
class TARN_EXPORT PhysicsEvaluator {
 public:
  PhysicsEvaluator() = default;
  virtual ~PhysicsEvaluator();

  /// Returns the value of the check at the object `path` of `model`, and whether there is such a check. Test the second
  /// first: an unknown name gives (false, false) and is no error. Exceptions of the rule reach the caller.
  [[nodiscard]] virtual std::pair<bool, bool> evaluateCheck(std::string const& name, std::string const& path,
                                                            ModelTDF const* model) const = 0;

  /// Returns the items of the list at the object `path` of `model`, and whether there is such a list. An unknown name
  /// gives no items and false; an empty list gives no items and true. Exceptions of the rule reach the caller.
  [[nodiscard]] virtual std::pair<std::vector<std::string>, bool> evaluateList(std::string const& name,
                                                                               std::string const& path,
                                                                               ModelTDF const* model) const = 0;

  /// Return whether there is such a check or list. `flag` is passed to the look-up of the rule database unchanged.
  [[nodiscard]] virtual bool hasCheck(std::string const& name, bool flag) const = 0;
  [[nodiscard]] virtual bool hasList(std::string const& name, bool flag) const = 0;

 protected:
  PhysicsEvaluator(PhysicsEvaluator const&) = default;
  PhysicsEvaluator& operator=(PhysicsEvaluator const&) = default;
};

}  // namespace tarn
