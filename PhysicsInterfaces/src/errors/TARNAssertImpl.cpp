// The one way in which the family reports that a promise of its own code does not hold. It throws: a host with unsaved
// work decides itself what to do, and the console tool shows the error and goes on.
#include <tarn/TARNAssertImpl.h>

#include <tarn/Error.h>

namespace tarn::TARNAssertImpl {

void assertFail(std::string const& condition, std::string const& file, int line) {
  throw AssertionError(condition, file, line);
}

}  // namespace tarn::TARNAssertImpl
