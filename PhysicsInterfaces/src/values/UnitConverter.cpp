#include <tarn/UnitConverter.h>

namespace tarn {

UnitConverter::~UnitConverter() = default;

}  // namespace tarn
