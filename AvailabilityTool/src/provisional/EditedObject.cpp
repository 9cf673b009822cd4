#include "provisional/EditedObject.h"

#include <tarn/Error.h>
#include <tarn/TDFPath.h>

#include "cli/Failure.h"

namespace tarn::tool {

namespace {

std::string const& checkedRoot(std::string const& root) {
  try {
    if (TDFPath(root).size() > 0) return root;
  } catch (Error const& error) {
    throw Failure("--root: " + error.getMessage() + "; give the path of an object, such as /Case");
  }
  throw Failure("--root: \"" + root + "\" names no object; give the path of one, such as /Case");
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
