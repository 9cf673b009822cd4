// The verdicts on one rule of an object that is there: on a parameter, on children of a type, and the rule authors'
// beta messages that go with them. Availability is asked first and settles everything else: what is not available must
// not be there, whether or not it is required.
//
// The checks read the filtered tree and not the view, since they never run in a placeholder. Faults are logged under
// the path of the object that holds the item, beta messages under that of the item.

#include <tarn/PhysicsValidator2.h>

#include <span>

#include <tarn/BetaLoggingController.h>
#include <tarn/PhysicsErrorLogger.h>
#include <tarn/StringUtilities.h>

#include "tree/DynamicTDFObjectAt.h"
#include "validation/ValidationMessages.h"

namespace tarn {

using namespace ValidationMessages;

PhysicsValidator2::HandlerStatus PhysicsValidator2::checkAvailableParam(ParamAvailInfo const* info) {
  std::string const& objPath = info->getObjPath();
  std::string const& name = info->getName();
  if (std::string const* const value = currentObject_->findValue(name)) {
    logIfParamBetaMessage(objPath, name);
    ParamAllowedValues const& allowed = info->getAllowedValues();
    if (allowed.hasAllowedValues && !allowed.allowsAnyValue) checkAllowedValues(objPath, name, *value, info);
  } else if (info->isRequired()) {
    logError(objPath, formatMissingParam(objPath, name));
  }
  return Continue;
}

PhysicsValidator2::HandlerStatus PhysicsValidator2::checkUnavailableParam(ParamAvailInfo const* info) {
  std::string const& objPath = info->getObjPath();
  std::string const& name = info->getName();
  if (currentObject_->findValue(name) != nullptr) logError(objPath, formatInvalidParam(objPath, name));
  return Continue;
}

/// Values are compared as texts, to the character, and a subset in force does not narrow what is allowed.
void PhysicsValidator2::checkAllowedValues(std::string const& objPath, std::string const& name,
                                           std::string const& value, ParamAvailInfo const* info) {
  SharedStrings const& allowed = info->getAllowedValues().allowedValues;
  if (!info->isListType()) {
    if (allowed.contains(value)) {
      logIfParamValueBetaMessage(objPath, name, value);
    } else {
      logError(objPath, formatInvalidValue(objPath, name, allowed.vector(), value));
    }
    return;
  }

  std::vector<std::string> values;
  filteredTree_.getParamValueAsList(objPath, name, values);
  std::vector<std::string> const disallowed = setDifferenceOf(values, allowed);
  if (!disallowed.empty()) logError(objPath, formatInvalidValues(objPath, name, allowed.vector(), disallowed));
  // Beta messages are rare, and with none gathered the good values need not be worked out.
  if (betaController_ != nullptr && betaController_->anyLoggedMessages()) {
    for (std::string const& good : setDifferenceOf(values, disallowed)) {
      logIfParamValueBetaMessage(objPath, name, good);
    }
  }
}

PhysicsValidator2::HandlerStatus PhysicsValidator2::checkAvailableChild(ChildAvailInfo const* info) {
  std::string const& objPath = info->getObjPath();
  std::string const& type = info->getType();
  if (info->isSingleton()) {
    if (filteredTree_.hasObject(objPath + "/" + type)) {
      logIfObjBetaMessage(objPath, type);
    } else if (info->isRequired()) {
      beginMissingSingleton(objPath, type);
    }
    return Continue;
  }

  if (betaController_ != nullptr) {
    std::vector<std::string> names;
    filteredTree_.getChildObjectNamesByType(objPath, type, names);
    if (!names.empty()) logIfObjBetaMessage(objPath, type, names);
  }
  if (info->hasAllowedNames()) checkChildNames(objPath, type, info);
  return Continue;
}

PhysicsValidator2::HandlerStatus PhysicsValidator2::checkUnavailableChild(ChildAvailInfo const* info) {
  std::string const& objPath = info->getObjPath();
  std::string const& type = info->getType();
  if (info->isSingleton()) {
    if (filteredTree_.hasObject(objPath + "/" + type)) logError(objPath, formatInvalidSingleton(objPath, type));
    return Continue;
  }

  std::vector<std::string> names;
  if (filteredTree_.getChildObjectNamesByType(objPath, type, names)) {
    logError(objPath, formatInvalidNamedObjs(objPath, type, names));
  }
  return Continue;
}

/// The allowed names of a required type are at the same time the names that must be there, all of them. So one rule can
/// report names that are too much and go on to try out those that are absent.
void PhysicsValidator2::checkChildNames(std::string const& objPath, std::string const& type,
                                        ChildAvailInfo const* info) {
  std::vector<std::string> names;
  filteredTree_.getChildObjectNamesByType(objPath, type, names);
  auto const [firstAllowed, lastAllowed] = info->getAllowedNames();
  Strings const allowed(firstAllowed, lastAllowed);

  std::vector<std::string> const disallowed = setDifferenceOf(names, allowed);
  if (!disallowed.empty()) logError(objPath, formatInvalidNames(objPath, type, allowed, disallowed));
  if (info->isRequired()) {
    std::vector<std::string> const missing = setDifferenceOf(allowed, names);
    if (!missing.empty()) beginMissingNamedObjs(objPath, type, missing);
  }
}

void PhysicsValidator2::logError(std::string const& objPath, std::string const& text) {
  logger_->logDependencyError(objPath, PhysicsErrorMsg(text));
}

void PhysicsValidator2::logBetaMessage(std::string const& objPath, std::string const& item,
                                       std::vector<std::string> const& messages) {
  if (messages.empty()) return;
  logger_->logDependencyError(objPath + "/" + item,
                              PhysicsErrorMsg(StringUtilities::vectorToString(messages, '\n'), PhysicsErrorMsg::Beta));
}

void PhysicsValidator2::logIfParamBetaMessage(std::string const& objPath, std::string const& name) {
  if (betaController_ != nullptr) logBetaMessage(objPath, name, betaController_->getParamAvailMessages(name));
}

void PhysicsValidator2::logIfParamValueBetaMessage(std::string const& objPath, std::string const& name,
                                                   std::string const& value) {
  if (betaController_ != nullptr) logBetaMessage(objPath, name, betaController_->getParamValAvailMessages(name, value));
}

void PhysicsValidator2::logIfObjBetaMessage(std::string const& objPath, std::string const& type) {
  if (betaController_ != nullptr) logBetaMessage(objPath, type, betaController_->getObjAvailMessages(type));
}

void PhysicsValidator2::logIfObjBetaMessage(std::string const& objPath, std::string const& type,
                                            std::vector<std::string> const& names) {
  if (betaController_ == nullptr) return;
  std::vector<std::string> const messages = betaController_->getObjAvailMessages(type);
  if (messages.empty()) return;
  for (std::string const& name : names) logBetaMessage(objPath, type + ":" + name, messages);
}

void PhysicsValidator2::clearBetaMessages() noexcept {
  if (betaController_ != nullptr) betaController_->clearMessages();
}

}  // namespace tarn
