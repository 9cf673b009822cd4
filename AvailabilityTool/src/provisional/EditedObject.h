#pragma once

#include <memory>
#include <string>
#include <vector>

#include <tarn/DynamicTDF.h>
#include <tarn/PhysicsData.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/session/RuleQuantityModifier.h>

namespace tarn::tool {

/// A provisional state with everything it needs, in the order of their lifetimes: the rules, the model, the quantity
/// modifier of the rules, and the state.
class EditedObject {
 public:
  /// A state of the object at `root` over an empty model. It is not initialised yet. Throws a `Failure` if `root` is
  /// not the path of an object.
  EditedObject(std::unique_ptr<PhysicsData> rules, std::string const& root);

  [[nodiscard]] PhysicsData const& rules() const noexcept { return *rules_; }
  [[nodiscard]] ProvisionalTDF& state() noexcept { return state_; }

  void setModel(ModelState const& model);
  /// Runs the first walk. `basedOn` is the object that a new object is copied from, or empty.
  void initialise(std::string const& basedOn, ModelState const& guide);

 private:
  std::unique_ptr<PhysicsData> rules_;
  DynamicTDF model_{false};
  session::RuleQuantityModifier modifier_;
  ProvisionalTDF state_;
};

}  // namespace tarn::tool
