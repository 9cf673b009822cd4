// The commands that validate the active state, or a file that is independent of it. Each call makes a validator of its
// own, so an earlier validation cannot affect a later one.

#include <iostream>

#include <tarn/BasicPhysicsErrorLogger.h>
#include <tarn/PhysicsValidator2.h>
#include <tarn/ProvisionalTDF.h>

#include "tool/CommandArguments.h"
#include "tool/LoadModelFile.h"
#include "tool/ProvTDFDriverImpl.h"

namespace tarn {

namespace {

void printFinding(std::string const& message) {
  std::cout << "---" << std::endl << message << std::endl << "===" << std::endl;
}

}  // namespace

void ProvTDFDriver::Impl::validateHandler(Arguments const& args) {
  if (checkArgCount(args, 0)) doPhysicsValidation(provisional_->getActiveTDFState());
}

void ProvTDFDriver::Impl::validateFileHandler(Arguments const& args) {
  if (!checkArgCount(args, 1)) return;
  ModelState state;
  if (loadFile(args[0], strictLoad_, state)) doPhysicsValidation(state);
}

void ProvTDFDriver::Impl::doPhysicsValidation(ModelState const& state) const {
  if (state.empty()) return;
  BasicPhysicsErrorLogger logger;
  PhysicsValidator2 validator(physicsData_);
  validator.setLogger(&logger);
  auto const status = validator.validate(PhysicsValidator2::ValAll, state, {validationRoot_});
  if ((status & PhysicsValidator2::ValDependencyErrors) != 0) {
    for (auto const& [path, message] : logger.getDependencyErrors()) {
      std::cout << "**Dependency error on path \"" << path << "\"" << std::endl;
      printFinding(message);
    }
  }
  if ((status & PhysicsValidator2::ValGlobalErrors) != 0) {
    for (auto const& message : logger.getGlobalErrors()) {
      std::cout << "**General physics errors detected " << std::endl;
      printFinding(message);
    }
  }
}

}  // namespace tarn
