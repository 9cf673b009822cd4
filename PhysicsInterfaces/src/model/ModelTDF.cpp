// The home of the model interface's virtual table, so that every library of the family sees one and the same type.
// The models themselves are made by those who derive from it.
#include <tarn/ModelTDF.h>

namespace tarn {

ModelTDF::~ModelTDF() = default;

}  // namespace tarn
