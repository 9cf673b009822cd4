// Two lists that grow until they are emptied. Callers rely on that: the order is that of the walk, and there is one
// record per finding.

#include <tarn/BasicPhysicsErrorLogger.h>

namespace tarn {

BasicPhysicsErrorLogger::BasicPhysicsErrorLogger() = default;
BasicPhysicsErrorLogger::BasicPhysicsErrorLogger(BasicPhysicsErrorLogger const&) = default;
BasicPhysicsErrorLogger& BasicPhysicsErrorLogger::operator=(BasicPhysicsErrorLogger const&) = default;
BasicPhysicsErrorLogger::~BasicPhysicsErrorLogger() = default;

void BasicPhysicsErrorLogger::logDependencyError(std::string const& path, PhysicsErrorMsg const& message) {
  dependencyErrors_.push_back({path, message.message});
}

void BasicPhysicsErrorLogger::logGlobalError(PhysicsErrorMsg const& message) {
  globalErrors_.push_back(message.message);
}

void BasicPhysicsErrorLogger::logTermination(std::string const& /*text*/) {}

void BasicPhysicsErrorLogger::reset() {
  dependencyErrors_.clear();
  globalErrors_.clear();
}

bool BasicPhysicsErrorLogger::hasDependencyErrors() const {
  return !dependencyErrors_.empty();
}

bool BasicPhysicsErrorLogger::hasGlobalErrors() const {
  return !globalErrors_.empty();
}

std::vector<BasicPhysicsErrorLogger::DepError> BasicPhysicsErrorLogger::getDependencyErrors() const {
  return dependencyErrors_;
}

std::vector<std::string> BasicPhysicsErrorLogger::getGlobalErrors() const {
  return globalErrors_;
}

std::string BasicPhysicsErrorLogger::getTerminationMsg() const {
  return {};
}

}  // namespace tarn
