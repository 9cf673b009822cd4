// The commands that load, show and edit the provisional state. Each checks its arguments and calls one operation. The
// printer that is attached to the state prints what an edit changed.

#include <algorithm>
#include <iostream>

#include <tarn/DynamicTDF.h>
#include <tarn/Edit.h>
#include <tarn/Error.h>
#include <tarn/ProvTDFLogger.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFChange.h>
#include <tarn/TDFPath.h>

#include "tool/CommandArguments.h"
#include "tool/LoadModelFile.h"
#include "tool/ProvTDFDriverImpl.h"

namespace tarn {

namespace {

/// Splits a parameter path into the object path and the parameter name. The name is the type of the last component: a
/// ":" in it and the text after the ":" are ignored.
std::pair<std::string, std::string> splitParamPath(std::string const& paramPath) {
  TDFPath const path(paramPath);
  auto const count = path.numComponent();
  if (count == 0) return {};
  return {path.getSubPath(0, count - 1), path.getType(count - 1)};
}

}  // namespace

void ProvTDFDriver::Impl::editTDFHandler(Arguments const& /*args*/) {
  std::cout << "Not yet implemented." << std::endl;
}

void ProvTDFDriver::Impl::printParamHandler(Arguments const& args) {
  if (!checkArgCount(args, 1)) return;
  auto const [objPath, name] = splitParamPath(args[0]);
  logger_->printParamStateWithDecoration("printParam", args[0], objPath, name);
}

void ProvTDFDriver::Impl::printObjHandler(Arguments const& args) {
  if (checkArgCount(args, 1)) logger_->printObjectState(args[0]);
}

void ProvTDFDriver::Impl::printStateHandler(Arguments const& args) {
  if (args.empty()) {
    logger_->printState();
  } else if (checkArgCount(args, 1)) {
    std::cout << "This print state option is not yet implemented." << std::endl;
  }
}

void ProvTDFDriver::Impl::setParamHandler(Arguments const& args) {
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
  // When the text could not be read, the edit still runs with three empty strings. It changes nothing, but its update
  // prints a summary, so that every "sp" ends with one.
  if (hasPotParam(objPath, name)) {
    std::cout << "The parameter " << objPath << "/" << name << " has not yet been 'activated'." << std::endl;
    std::cout << "(Use \"ap " << objPath << "/" << name << "\")" << std::endl;
    return;
  }
  edit(Edit::setParam(objPath, name, value));
}

void ProvTDFDriver::Impl::activateParamHandler(Arguments const& args) {
  if (!checkArgCount(args, 1)) return;
  auto const [objPath, name] = splitParamPath(args[0]);
  if (hasPotParam(objPath, name)) {
    edit(Edit::activateParam(objPath, name));
    return;
  }
  std::cout << "Parameter " << args[0] << " cannot be activated." << std::endl;
  std::cout << "It is either physically unavailable, or is not an optional parameter." << std::endl;
}

void ProvTDFDriver::Impl::deactivateParamHandler(Arguments const& args) {
  if (!checkArgCount(args, 1)) return;
  auto const [objPath, name] = splitParamPath(args[0]);
  edit(Edit::deactivateParam(objPath, name));
}

void ProvTDFDriver::Impl::activateObjHandler(Arguments const& args) {
  if (!checkArgCount(args, 1)) return;
  if (hasPotObject(args[0])) {
    edit(Edit::activateObject(args[0]));
    return;
  }
  std::cout << "Object " << args[0] << " cannot be activated." << std::endl;
  std::cout << "It is either physically unavailable, or is not an optional named object with a pre-determined name."
            << std::endl;
}

void ProvTDFDriver::Impl::deactivateObjHandler(Arguments const& args) {
  if (checkArgCount(args, 1)) edit(Edit::deactivateObject(args[0]));
}

void ProvTDFDriver::Impl::newNamedObjHandler(Arguments const& args) {
  if (checkArgCount(args, 1)) edit(Edit::addObject(args[0]));
}

void ProvTDFDriver::Impl::removeNamedObjHandler(Arguments const& args) {
  if (checkArgCount(args, 1)) edit(Edit::removeObject(args[0]));
}

void ProvTDFDriver::Impl::loadHandler(Arguments const& args) {
  if (loadIntoBase(args)) provisional_->initialise(getBaseTDF(), ModelState{});
}

void ProvTDFDriver::Impl::loadBaseHandler(Arguments const& args) {
  if (loadIntoBase(args)) provisional_->baseUpdate(getBaseTDF());
}

bool ProvTDFDriver::Impl::loadIntoBase(Arguments const& args) {
  if (!checkArgCount(args, 1)) return false;
  ModelState state;
  if (!loadFile(args[0], strictLoad_, state)) return false;
  getBaseTDF()->initialise(state.begin(), state.end(), false);
  return true;
}

DynamicTDF* ProvTDFDriver::Impl::getBaseTDF() {
  if (!baseTree_) baseTree_ = std::make_shared<DynamicTDF>(false);
  return baseTree_.get();
}

/// A refused edit shows in the summary that the logger prints, and nowhere else.
void ProvTDFDriver::Impl::edit(Edit const& edit) {
  (void)provisional_->apply(edit);
}

bool ProvTDFDriver::Impl::hasPotObject(std::string const& path) const {
  auto const& objects = provisional_->getAvailPotObjects();
  return std::find(objects.begin(), objects.end(), path) != objects.end();
}

bool ProvTDFDriver::Impl::hasPotParam(std::string const& objPath, std::string const& name) const {
  auto const [first, last] = provisional_->getAvailPotParams().equal_range(objPath);
  return std::any_of(first, last, [&](auto const& entry) { return entry.second == name; });
}

}  // namespace tarn
