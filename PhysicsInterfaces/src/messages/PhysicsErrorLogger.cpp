// Defines the destructor here, so that there is one virtual table and every library of the family sees the same type.
// The validator's library has a logger that keeps its findings in memory.
#include <tarn/PhysicsErrorLogger.h>

namespace tarn {

PhysicsErrorLogger::~PhysicsErrorLogger() = default;

}  // namespace tarn
