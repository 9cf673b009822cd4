// Defines the destructor here, so that there is one virtual table and every library of the family sees the same type.
// Models derive from the interface elsewhere.
#include <tarn/ModelTDF.h>

namespace tarn {

ModelTDF::~ModelTDF() = default;

ObjectReader const* ModelTDF::objectReader() const noexcept {
  return nullptr;
}

}  // namespace tarn
