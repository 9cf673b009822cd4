// The treatment of a required object that is absent. It is a fault only when the object would hold a parameter that is
// available and not relaxed, in itself or in a required object below it. That is known only after the rules have been
// evaluated in the object. So empty placeholders are put in a second tree, the view shows them, and the walk enters
// them like any object. Inside a placeholder nothing is reported: the hooks only watch for such a parameter.
//
// The check of the parent's child rule opens a group: one singleton, or all absent names of a type. The mode is
//   off         until the walk enters a placeholder, and again between two of them;
//   probing     in a placeholder;
//   confirmed   in a placeholder that has turned out to be needed.
// When the last placeholder of the group ends, one message names those that are needed, and the group is closed. The
// walk enters the children of a rule directly after the rule's own check, and placeholders come before real objects. So
// a group is closed before anything else is judged, and groups never nest.

#include "validation/PhysicsValidator2Impl.h"

#include <tarn/EvalCache.h>

#include "validation/PVModelTDF.h"
#include "validation/ValidationMessages.h"

namespace tarn {

void PhysicsValidator2::Impl::beginMissingSingleton(std::string const& objPath, std::string const& type) {
  // The record comes first: if the rest fails, it shows that there is a group to close.
  missingRecord_.beginSingleton(objPath, type);
  currentView_->setMissing(objPath, type, &missingTree_);
  missingTree_.createObject(objPath, type, "");
}

void PhysicsValidator2::Impl::beginMissingNamedObjs(std::string const& objPath, std::string const& type,
                                                    std::vector<std::string> const& names) {
  missingRecord_.beginNamed(objPath, type, names);
  currentView_->setMissing(objPath, type, &missingTree_);
  for (std::string const& name : names) currentView_->addMissingName(name);
  for (std::string const& name : names) missingTree_.createObject(objPath, type, name);
}

/// One available parameter is enough, required or not, because the user can set it.
PhysicsValidator2::HandlerStatus PhysicsValidator2::Impl::checkParamMissingObj(ParamAvailInfo const* info) {
  if (missingMode_ == MissingProbing && info->isAvailable() && !info->hasValidationRelaxed()) {
    missingMode_ = MissingConfirmed;
  }
  return Continue;
}

/// Adds the objects that the placeholder would have to hold, so that the walk enters them. Once the placeholder is
/// confirmed, nothing is left to find out.
PhysicsValidator2::HandlerStatus PhysicsValidator2::Impl::checkChildMissingObj(ChildAvailInfo const* info) {
  if (missingMode_ != MissingProbing || !info->isAvailable() || !info->isRequired()) return Continue;
  if (info->isSingleton()) {
    missingTree_.createObject(info->getObjPath(), info->getType(), "");
  } else if (info->hasAllowedNames()) {
    auto const [first, last] = info->getAllowedNames();
    for (auto name = first; name != last; ++name) {
      missingTree_.createObject(info->getObjPath(), info->getType(), *name);
    }
  }
  return Continue;
}

PhysicsValidator2::HandlerStatus PhysicsValidator2::Impl::endObjectMissingObj(std::string const& path) {
  // An object inside the placeholder may end here too.
  if (!missingRecord_.matches(path)) return Continue;

  missingRecord_.finishObject(missingMode_ == MissingConfirmed);
  if (missingRecord_.hasPending()) {
    // The next placeholder follows directly, so record and view stay open and the cache stays off.
    missingMode_ = MissingOff;
  } else {
    logMissingObjError();
    resetMissingObjMode();
  }
  return Continue;
}

void PhysicsValidator2::Impl::logMissingObjError() {
  if (!missingRecord_.hasReported()) return;
  std::string const& objPath = missingRecord_.objPath();
  std::string const& type = missingRecord_.type();
  PhysicsFault fault = {.kind = PhysicsFault::MissingObject, .path = objPath, .item = type};
  if (missingRecord_.isSingleton()) {
    logError(fault, ValidationMessages::formatMissingSingleton(objPath, type));
    return;
  }
  std::vector<std::string> const names = missingRecord_.getReportedNames();
  fault.wrong = names;
  logError(fault, ValidationMessages::formatMissingNamedObjs(objPath, type, names));
}

/// The record is cleared last, so that all of it is repeated after a failure.
void PhysicsValidator2::Impl::resetMissingObjMode() {
  ModelState const none;
  missingTree_.initialise(none.begin(), none.end(), false);
  currentView_->clearMissing();
  missingRecord_.clear();
  missingMode_ = MissingOff;
  if (useEvalCache_) evalCache_->enable(true);
}

}  // namespace tarn
