// The validator logs beta messages in the stream of dependency errors and tells them by their level alone. The queries
// decide about the status that the validator returns, so leaving them out there keeps the status clean.
#include "reports/FindingsLogger.h"

namespace tarn::tool {

void FindingsLogger::logDependencyError(std::string const& path, PhysicsErrorMsg const& message) {
  auto& list = message.level == PhysicsErrorMsg::Beta ? findings_.beta : findings_.dependency;
  list.push_back({path, message.message});
}

void FindingsLogger::logGlobalError(PhysicsErrorMsg const& message) {
  findings_.global.push_back(message.message);
}

// Tells of nothing that a user could act on.
void FindingsLogger::logTermination(std::string const&) {}

void FindingsLogger::reset() {
  findings_.dependency.clear();
  findings_.global.clear();
  findings_.beta.clear();
}

bool FindingsLogger::hasDependencyErrors() const {
  return !findings_.dependency.empty();
}

bool FindingsLogger::hasGlobalErrors() const {
  return !findings_.global.empty();
}

}  // namespace tarn::tool
