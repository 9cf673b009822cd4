#pragma once

#include <memory>
#include <string>
#include <vector>

#include <tarn/DynamicTDF.h>
#include <tarn/PhysicsData.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/session/RuleQuantityModifier.h>

namespace tarn::tool {

/// A provisional state with all that it stands on, in the order in which these things live: the rules, the model, the
/// quantity modifier of the rules, and the state.
class EditedObject {
 public:
  /// A state of the object at `root`, not yet initialised, over an empty model. Throws a `Failure` when `root` is no
  /// path of an object.
  EditedObject(std::unique_ptr<PhysicsData> rules, std::string const& root);

  [[nodiscard]] PhysicsData const& rules() const noexcept { return *rules_; }
  [[nodiscard]] ProvisionalTDF& state() noexcept { return state_; }

  void setModel(ModelState const& model);
  /// Runs the first walk. `basedOn` is the object that a new one starts from; empty for none.
  void initialise(std::string const& basedOn, ModelState const& guide);

 private:
  std::unique_ptr<PhysicsData> rules_;
  DynamicTDF model_{false};
  session::RuleQuantityModifier modifier_;
  ProvisionalTDF state_;
};

}  // namespace tarn::tool
