// The home of the logger interface's virtual table, so that every library of the family sees one and the same type.
// A logger that keeps its findings in memory comes with the validator.
#include <tarn/PhysicsErrorLogger.h>

namespace tarn {

PhysicsErrorLogger::~PhysicsErrorLogger() = default;

}  // namespace tarn
