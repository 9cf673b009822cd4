// The commands that load, show and edit the provisional state. Each checks its arguments and calls one operation; what
// an edit changed is printed by the logger of the state.

#include <algorithm>
#include <iostream>

#include <tarn/DynamicTDF.h>
#include <tarn/Error.h>
#include <tarn/ProvTDFDriver.h>
#include <tarn/ProvTDFLogger.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFChange.h>
#include <tarn/TDFPath.h>

#include "tool/CommandArguments.h"
#include "tool/LoadModelFile.h"

namespace tarn {

namespace {

/// The object path and the name that a parameter path holds; the name is the type of the last component, so what stands
/// behind a ":" in it is not looked at.
std::pair<std::string, std::string> splitParamPath(std::string const& paramPath) {
  TDFPath const path(paramPath);
  auto const count = path.numComponent();
  if (count == 0) return {};
  return {path.getSubPath(0, count - 1), path.getType(count - 1)};
}

}  // namespace

void ProvTDFDriver::editTDFHandler(Arguments const& /*args*/) {
  std::cout << "Not yet implemented." << std::endl;
}

void ProvTDFDriver::printParamHandler(Arguments const& args) {
  if (!checkArgCount(args, 1)) return;
  auto const [objPath, name] = splitParamPath(args[0]);
  logger_->printParamStateWithDecoration("printParam", args[0], objPath, name);
}

void ProvTDFDriver::printObjHandler(Arguments const& args) {
  if (checkArgCount(args, 1)) logger_->printObjectState(args[0]);
}

void ProvTDFDriver::printStateHandler(Arguments const& args) {
  if (args.empty()) {
    logger_->printState();
  } else if (checkArgCount(args, 1)) {
    std::cout << "This print state option is not yet implemented." << std::endl;
  }
}

void ProvTDFDriver::setParamHandler(Arguments const& args) {
  std::string objPath;
  std::string name;
  std::string value;
  try {
    TDFChange const change(StringUtilities::vectorToString(args, ','));
    objPath = change.getFullPath();
    name = change.name;
    value = change.value;
  } catch (Error const& error) {
    std::cout << "Error processing parameter setting." << std::endl;
    error.write(std::cout);
    std::cout << std::endl;
  } catch (std::string const& text) {
    std::cout << "Error processing parameter setting." << std::endl << text << std::endl;
  }
  // After a text that could not be read the edit still runs, on nothing: the update that it makes tells the user, in
  // the summary, that nothing was changed.
  if (hasPotParam(objPath, name)) {
    std::cout << "The parameter " << objPath << "/" << name << " has not yet been 'activated'." << std::endl;
    std::cout << "(Use \"ap " << objPath << "/" << name << "\")" << std::endl;
    return;
  }
  provisional_->activeSetParam(objPath, name, value);
}

void ProvTDFDriver::activateParamHandler(Arguments const& args) {
  if (!checkArgCount(args, 1)) return;
  auto const [objPath, name] = splitParamPath(args[0]);
  if (hasPotParam(objPath, name)) {
    provisional_->activateOptParam(objPath, name);
    return;
  }
  std::cout << "Parameter " << args[0] << " cannot be activated." << std::endl;
  std::cout << "It is either physically unavailable, or is not an optional parameter." << std::endl;
}

void ProvTDFDriver::deactivateParamHandler(Arguments const& args) {
  if (!checkArgCount(args, 1)) return;
  auto const [objPath, name] = splitParamPath(args[0]);
  provisional_->deactivateOptParam(objPath, name);
}

void ProvTDFDriver::activateObjHandler(Arguments const& args) {
  if (!checkArgCount(args, 1)) return;
  if (hasPotObject(args[0])) {
    provisional_->activateOptObject(args[0]);
    return;
  }
  std::cout << "Object " << args[0] << " cannot be activated." << std::endl;
  std::cout << "It is either physically unavailable, or is not an optional named object with a pre-determined name."
            << std::endl;
}

void ProvTDFDriver::deactivateObjHandler(Arguments const& args) {
  if (checkArgCount(args, 1)) provisional_->deactivateOptObject(args[0]);
}

void ProvTDFDriver::newNamedObjHandler(Arguments const& args) {
  if (checkArgCount(args, 1)) provisional_->addNewNamedObject(args[0]);
}

void ProvTDFDriver::removeNamedObjHandler(Arguments const& args) {
  if (checkArgCount(args, 1)) provisional_->removeNamedObject(args[0]);
}

void ProvTDFDriver::loadHandler(Arguments const& args) {
  if (loadIntoBase(args)) provisional_->initialise(getBaseTDF(), ModelState{});
}

void ProvTDFDriver::loadBaseHandler(Arguments const& args) {
  if (loadIntoBase(args)) provisional_->baseUpdate(getBaseTDF());
}

bool ProvTDFDriver::loadIntoBase(Arguments const& args) {
  if (!checkArgCount(args, 1)) return false;
  ModelState state;
  if (!loadFile(args[0], strictLoad_, state)) return false;
  getBaseTDF()->initialise(state.begin(), state.end(), false);
  return true;
}

DynamicTDF* ProvTDFDriver::getBaseTDF() {
  if (!baseTree_) baseTree_ = std::make_shared<DynamicTDF>(false);
  return baseTree_.get();
}

bool ProvTDFDriver::hasPotObject(std::string const& path) const {
  auto const& objects = provisional_->getAvailPotObjects();
  return std::find(objects.begin(), objects.end(), path) != objects.end();
}

bool ProvTDFDriver::hasPotParam(std::string const& objPath, std::string const& name) const {
  auto const [first, last] = provisional_->getAvailPotParams().equal_range(objPath);
  return std::any_of(first, last, [&](auto const& entry) { return entry.second == name; });
}

}  // namespace tarn
