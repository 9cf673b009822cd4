// The verdicts on one rule of an object that exists: on a parameter, on children of a type, and the beta messages of
// rule authors that go with them. Availability comes first: an item that is not available must not exist, whether or
// not it is required.
//
// The checks read the filtered tree and not the view, because they never run in a placeholder. Faults are logged under
// the path of the object that holds the item, beta messages under the path of the item.

#include "validation/PhysicsValidator2Impl.h"

#include <span>

#include <tarn/BetaLoggingController.h>
#include <tarn/PhysicsErrorLogger.h>
#include <tarn/StringUtilities.h>

#include "analysis/AvailInfoAdapters.h"
#include "validation/ValidationMessages.h"

namespace tarn {

using namespace ValidationMessages;

std::string const* PhysicsValidator2::Impl::findValue(ParamAvailInfo const* info) const {
  if (currentReader_ != nullptr) return currentReader_->findParameterValue(currentObject_, info->getName());
  return filteredTree_.findParameterValue(info->getObjPath(), info->getName());
}

bool PhysicsValidator2::Impl::hasSingleton(ChildAvailInfo const* info) const {
  ObjectHandle const parent = info->getObject();
  ObjectReader const* const reader = parent.readerIn(filteredTree_);
  // The type of an entry may be a path of several components.
  if (reader != nullptr && isPlainWord(info->getType()))
    return !reader->findSingleton(parent, info->getType()).isEmpty();
  return filteredTree_.hasObject(info->getObjPath() + "/" + info->getType());
}

PhysicsValidator2::HandlerStatus PhysicsValidator2::Impl::checkAvailableParam(ParamAvailInfo const* info) {
  if (std::string const* const value = findValue(info)) {
    logIfParamBetaMessage(info);
    ParamAllowedValues const& allowed = info->getAllowedValues();
    if (allowed.hasAllowedValues && !allowed.allowsAnyValue)
      checkAllowedValues(info->getObjPath(), info->getName(), *value, info);
  } else if (info->isRequired()) {
    std::string const& objPath = info->getObjPath();
    std::string const& name = info->getName();
    logError({.kind = PhysicsFault::MissingParameter, .path = objPath, .item = name},
             formatMissingParam(objPath, name));
  }
  return Continue;
}

PhysicsValidator2::HandlerStatus PhysicsValidator2::Impl::checkUnavailableParam(ParamAvailInfo const* info) {
  if (std::string const* const value = findValue(info)) {
    std::string const& objPath = info->getObjPath();
    std::string const& name = info->getName();
    logError({.kind = PhysicsFault::ParameterNotAvailable, .path = objPath, .item = name, .value = *value},
             formatInvalidParam(objPath, name));
  }
  return Continue;
}

/// Values are compared character by character. A subset does not narrow the allowed values.
void PhysicsValidator2::Impl::checkAllowedValues(std::string const& objPath, std::string const& name,
                                                 std::string const& value, ParamAvailInfo const* info) {
  SharedStrings const& allowed = info->getAllowedValues().allowedValues;
  if (!info->isListType()) {
    if (allowed.contains(value)) {
      logIfParamValueBetaMessage(objPath, name, value);
    } else {
      logError(
          {.kind = PhysicsFault::ValueNotAllowed, .path = objPath, .item = name, .value = value, .allowed = allowed},
          formatInvalidValue(objPath, name, allowed.vector(), value));
    }
    return;
  }

  std::vector<std::string> values;
  filteredTree_.getParamValueAsList(objPath, name, values);
  std::vector<std::string> const disallowed = setDifferenceOf(values, allowed);
  if (!disallowed.empty()) {
    logError({.kind = PhysicsFault::ValueNotAllowed,
              .path = objPath,
              .item = name,
              .value = value,
              .wrong = disallowed,
              .allowed = allowed},
             formatInvalidValues(objPath, name, allowed.vector(), disallowed));
  }
  // Beta messages are rare. Without any, the good values are not needed.
  if (betaController_ != nullptr && betaController_->anyLoggedMessages()) {
    for (std::string const& good : setDifferenceOf(values, disallowed)) {
      logIfParamValueBetaMessage(objPath, name, good);
    }
  }
}

PhysicsValidator2::HandlerStatus PhysicsValidator2::Impl::checkAvailableChild(ChildAvailInfo const* info) {
  std::string const& objPath = info->getObjPath();
  std::string const& type = info->getType();
  if (info->isSingleton()) {
    if (hasSingleton(info)) {
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

PhysicsValidator2::HandlerStatus PhysicsValidator2::Impl::checkUnavailableChild(ChildAvailInfo const* info) {
  std::string const& objPath = info->getObjPath();
  std::string const& type = info->getType();
  if (info->isSingleton()) {
    if (hasSingleton(info)) {
      logError({.kind = PhysicsFault::ObjectNotAvailable, .path = objPath, .item = type},
               formatInvalidSingleton(objPath, type));
    }
    return Continue;
  }

  std::vector<std::string> names;
  if (filteredTree_.getChildObjectNamesByType(objPath, type, names)) {
    logError({.kind = PhysicsFault::ObjectNotAvailable, .path = objPath, .item = type, .wrong = names},
             formatInvalidNamedObjs(objPath, type, names));
  }
  return Continue;
}

/// All allowed names of a required type must exist. So one rule can report names that are not allowed and then try out
/// those that are absent.
void PhysicsValidator2::Impl::checkChildNames(std::string const& objPath, std::string const& type,
                                              ChildAvailInfo const* info) {
  std::vector<std::string> names;
  filteredTree_.getChildObjectNamesByType(objPath, type, names);
  auto const [firstAllowed, lastAllowed] = info->getAllowedNames();
  Strings const allowed(firstAllowed, lastAllowed);

  std::vector<std::string> const disallowed = setDifferenceOf(names, allowed);
  if (!disallowed.empty()) {
    logError({.kind = PhysicsFault::ObjectNameNotAllowed,
              .path = objPath,
              .item = type,
              .wrong = disallowed,
              .allowed = std::vector<std::string>(firstAllowed, lastAllowed)},
             formatInvalidNames(objPath, type, allowed, disallowed));
  }
  if (info->isRequired()) {
    std::vector<std::string> const missing = setDifferenceOf(allowed, names);
    if (!missing.empty()) beginMissingNamedObjs(objPath, type, missing);
  }
}

void PhysicsValidator2::Impl::observe(PhysicsFault const& fault) {
  if (observer_ != nullptr) observer_->onFault(fault);
}

void PhysicsValidator2::Impl::logError(PhysicsFault fault, std::string const& text) {
  fault.message = text;
  observe(fault);
  logger_->logDependencyError(std::string(fault.path), PhysicsErrorMsg(text));
}

void PhysicsValidator2::Impl::logBetaMessage(std::string const& objPath, std::string const& item,
                                             std::vector<std::string> const& messages) {
  if (messages.empty()) return;
  PhysicsErrorMsg const message(StringUtilities::vectorToString(messages, '\n'), PhysicsErrorMsg::Beta);
  observe({.kind = PhysicsFault::BetaMessage, .path = objPath, .item = item, .message = message.message});
  logger_->logDependencyError(objPath + "/" + item, message);
}

void PhysicsValidator2::Impl::logIfParamBetaMessage(ParamAvailInfo const* info) {
  if (betaController_ == nullptr) return;
  std::string const& name = info->getName();
  logBetaMessage(info->getObjPath(), name, betaController_->getParamAvailMessages(name));
}

void PhysicsValidator2::Impl::logIfParamValueBetaMessage(std::string const& objPath, std::string const& name,
                                                         std::string const& value) {
  if (betaController_ != nullptr) logBetaMessage(objPath, name, betaController_->getParamValAvailMessages(name, value));
}

void PhysicsValidator2::Impl::logIfObjBetaMessage(std::string const& objPath, std::string const& type) {
  if (betaController_ != nullptr) logBetaMessage(objPath, type, betaController_->getObjAvailMessages(type));
}

void PhysicsValidator2::Impl::logIfObjBetaMessage(std::string const& objPath, std::string const& type,
                                                  std::vector<std::string> const& names) {
  if (betaController_ == nullptr) return;
  std::vector<std::string> const messages = betaController_->getObjAvailMessages(type);
  if (messages.empty()) return;
  for (std::string const& name : names) logBetaMessage(objPath, type + ":" + name, messages);
}

void PhysicsValidator2::Impl::clearBetaMessages() noexcept {
  if (betaController_ != nullptr) betaController_->clearMessages();
}

}  // namespace tarn
