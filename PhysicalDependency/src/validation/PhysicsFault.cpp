#include <tarn/PhysicsFault.h>

namespace tarn {

PhysicsFaultObserver::~PhysicsFaultObserver() = default;

}  // namespace tarn
