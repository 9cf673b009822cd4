// The validator logs beta messages among the dependency errors; only their level differs. The two queries below decide
// which status the validator returns. So they must not count beta messages.
#include "review/FindingsLogger.h"

namespace tarn::session {

void FindingsLogger::logDependencyError(std::string const& path, PhysicsErrorMsg const& message) {
  auto& list = message.level == PhysicsErrorMsg::Beta ? findings_.beta : findings_.dependency;
  list.push_back({path, message.message});
}

void FindingsLogger::logGlobalError(PhysicsErrorMsg const& message) {
  findings_.global.push_back(message.message);
}

// No finding: the validator never calls it.
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

}  // namespace tarn::session
