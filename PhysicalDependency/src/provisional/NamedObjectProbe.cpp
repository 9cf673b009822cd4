// The probe object of a named type. When one is needed, and what its walk tells, is decided by the reconciliation of
// children.

#include "provisional/NamedObjectProbe.h"

#include <tarn/DynamicTDF.h>
#include <tarn/ModifiedQuantityTracker.h>
#include <tarn/PathUtils.h>
#include <tarn/PotentialUpdateTracker.h>

namespace tarn {

namespace {

char const* const probeName = "__%%dummy%%__";

}  // namespace

void NamedObjectProbe::createTestNamedObject(std::string const& objPath, std::string const& type) {
  testNamedObjectPath_ = objPath + PathUtils::pathSeparator + type + PathUtils::nameSeparator + probeName;
  activeTDF_.stopRecordingUpdates();
  quantityTracker_.enable(false);
  activeTDF_.createObject(objPath, type, probeName);
}

void NamedObjectProbe::deleteTestNamedObject() {
  activeTDF_.stopRecordingUpdates();  // still off, unless this has failed before
  // Before recording starts again, since also an unrecorded deletion logs the parameters that go.
  activeTDF_.deleteObjectUnrecorded(testNamedObjectPath_);
  activeTDF_.startRecordingUpdates();
  quantityTracker_.enable(true);
  // Overrides and default objects that its walk wrote.
  guideTDF_.deleteObject(testNamedObjectPath_);
  // Last, since it alone can fail, and then only where it finds something.
  potentialTracker_.clearObjectReferences(testNamedObjectPath_);
  clearPath();
}

}  // namespace tarn
