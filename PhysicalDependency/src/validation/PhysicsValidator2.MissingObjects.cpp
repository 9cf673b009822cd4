// What becomes of a required object that is absent. It is a fault only when the object would hold a parameter that is
// available and not relaxed, in itself or in a required object below it, and that is known only once the rules have
// been evaluated in it. So empty placeholders are put in a second tree, the view shows them, and the walk goes into
// them as into any object. Within, nothing is said: the hooks only watch for such a parameter.
//
// The check of the parent's child rule opens a group, one singleton or all absent names of a type. The mode is
//   off         until the walk enters a placeholder, and again between two of them;
//   probing     within a placeholder;
//   confirmed   within a placeholder that has shown to be needed.
// When the last placeholder of the group ends, one message names those that are needed, and the group is closed. The
// walk goes into the children of a rule straight after the rule's own check and meets placeholders ahead of real
// objects, so a group is closed before anything else is judged, and groups never nest.

#include <tarn/PhysicsValidator2.h>

#include <tarn/EvalCache.h>

#include "validation/MissingObjRecord.h"
#include "validation/PVModelTDF.h"
#include "validation/ValidationMessages.h"

namespace tarn {

void PhysicsValidator2::beginMissingSingleton(std::string const& objPath, std::string const& type) {
  // The record first: should the rest fail, it shows that there is a group to be closed.
  missingRecord_->beginSingleton(objPath, type);
  currentView_->setMissing(objPath, type, &missingTree_);
  missingTree_.createObject(objPath, type, "");
}

void PhysicsValidator2::beginMissingNamedObjs(std::string const& objPath, std::string const& type,
                                              std::vector<std::string> const& names) {
  missingRecord_->beginNamed(objPath, type, names);
  currentView_->setMissing(objPath, type, &missingTree_);
  for (std::string const& name : names) currentView_->addMissingName(name);
  for (std::string const& name : names) missingTree_.createObject(objPath, type, name);
}

/// One available parameter is enough, required or not: the user has something to set there.
PhysicsValidator2::HandlerStatus PhysicsValidator2::checkParamMissingObj(ParamAvailInfo const* info) {
  if (missingMode_ == MissingProbing && info->isAvailable() && !info->hasValidationRelaxed()) {
    missingMode_ = MissingConfirmed;
  }
  return Continue;
}

/// Grows the placeholder by the objects that it would have to hold, so that the walk goes on into them. Once the
/// placeholder is confirmed there is nothing left to learn.
PhysicsValidator2::HandlerStatus PhysicsValidator2::checkChildMissingObj(ChildAvailInfo const* info) {
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

PhysicsValidator2::HandlerStatus PhysicsValidator2::endObjectMissingObj(std::string const& path) {
  // The end of an object within the placeholder is not the placeholder's.
  if (!missingRecord_->matches(path)) return Continue;

  missingRecord_->finishObject(missingMode_ == MissingConfirmed);
  if (missingRecord_->hasPending()) {
    // The next placeholder follows at once, so record and view stay open and the cache stays off.
    missingMode_ = MissingOff;
  } else {
    logMissingObjError();
    resetMissingObjMode();
  }
  return Continue;
}

void PhysicsValidator2::logMissingObjError() {
  if (!missingRecord_->hasReported()) return;
  std::string const& objPath = missingRecord_->objPath();
  std::string const& type = missingRecord_->type();
  logError(objPath, missingRecord_->isSingleton() ? ValidationMessages::formatMissingSingleton(objPath, type)
                                                  : ValidationMessages::formatMissingNamedObjs(
                                                        objPath, type, missingRecord_->getReportedNames()));
}

/// The record last, so that it is done once more if it fails.
void PhysicsValidator2::resetMissingObjMode() {
  ModelState const none;
  missingTree_.initialise(none.begin(), none.end(), false);
  currentView_->clearMissing();
  missingRecord_->clear();
  missingMode_ = MissingOff;
  if (useEvalCache_) evalCache_->enable(true);
}

}  // namespace tarn
