#include "provisional/EditedObject.h"

#include "cli/PathArgument.h"

namespace tarn::tool {

namespace {

std::string const& checkedRoot(std::string const& root) {
  (void)objectArgument("--root", root);
  return root;
}

}  // namespace

EditedObject::EditedObject(std::unique_ptr<PhysicsData> rules, std::string const& root)
    : rules_(std::move(rules)), modifier_(*rules_), state_(rules_.get(), &modifier_, checkedRoot(root)) {}

void EditedObject::setModel(ModelState const& model) {
  model_.initialise(model.begin(), model.end(), false);
}

void EditedObject::initialise(std::string const& basedOn, ModelState const& guide) {
  if (basedOn.empty()) {
    state_.initialise(&model_, guide);
  } else {
    state_.initialiseBasedOn(basedOn, &model_, guide);
  }
}

}  // namespace tarn::tool
