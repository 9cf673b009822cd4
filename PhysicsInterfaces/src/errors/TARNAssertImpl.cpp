// Reports that an assumption of the family's own code does not hold. It throws, so a host with unsaved work can decide
// what to do. The console tool shows the error and continues.
#include <tarn/TARNAssertImpl.h>

#include <tarn/Error.h>

namespace tarn::TARNAssertImpl {

void assertFail(std::string const& condition, std::string const& file, int line) {
  throw AssertionError(condition, file, line);
}

}  // namespace tarn::TARNAssertImpl
