// The probe object of a named type. The reconciliation of children decides when one is needed and what its walk means.

#include "provisional/NamedObjectProbe.h"

#include <tarn/PathUtils.h>

#include "provisional/ProvisionalFacts.h"

namespace tarn {

namespace {

char const* const probeName = "__%%dummy%%__";

}  // namespace

void NamedObjectProbe::createTestNamedObject(std::string const& objPath, std::string const& type) {
  testNamedObjectPath_ = objPath + PathUtils::pathSeparator + type + PathUtils::nameSeparator + probeName;
  facts_.publishChanges(false);
  facts_.createObject(objPath, type, probeName);
}

void NamedObjectProbe::deleteTestNamedObject() {
  facts_.publishChanges(false);  // still off, unless this has failed before
  // Before recording starts again, since an unrecorded deletion also logs the parameters that go.
  facts_.deleteObjectUnrecorded(testNamedObjectPath_);
  // Overrides and default objects that its walk wrote.
  facts_.deleteGuideObject(testNamedObjectPath_);
  facts_.publishChanges(true);
  // Last, since it alone can fail, and then only where it finds something.
  facts_.clearObjectReferences(testNamedObjectPath_);
  clearPath();
}

}  // namespace tarn
