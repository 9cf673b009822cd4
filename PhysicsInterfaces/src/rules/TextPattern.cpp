#include <tarn/TextPattern.h>

namespace tarn {

TextPattern::~TextPattern() = default;

}  // namespace tarn
