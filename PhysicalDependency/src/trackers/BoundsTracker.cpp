// Which computed bounds changed. Two maps by parameter path: the last bounds of every parameter, which keep their
// entries, and the changes since the last reset. Evaluating bounds is expensive, so it is done only for parameters that
// are tracked.

#include <tarn/BoundsTracker.h>

#include <tarn/ParamAvailInfo.h>
#include <tarn/PathUtils.h>
#include <tarn/TDFParam.h>

#include "journal/JournaledWrites.h"

namespace tarn {

void BoundsTracker::updateBounds(std::string const& objPath, std::string const& name, ParamAvailInfo const* info) {
  updateBounds(objPath, name, info, nullptr);
}

void BoundsTracker::updateBounds(std::string const& objPath, std::string const& name, ParamAvailInfo const* info,
                                 Journal* journal) {
  if (enabled_ && TDFParam::isNumericType(info->getType()) && info->hasDynamicBounds()) {
    storeUpdatedBounds(objPath, name, info->getBounds(), journal);
  }
}

void BoundsTracker::storeUpdatedBounds(std::string const& objPath, std::string const& name, Bounds const& bounds,
                                       Journal* journal) {
  std::string key = objPath + PathUtils::pathSeparator + name;
  auto const [known, isNew] = journaled::emplace(journal, knownBounds_, key, bounds);
  if (!isNew) {
    if (known->second == bounds) return;
    journaled::assign(journal, known->second, bounds);
  }
  // An existing entry of this batch stays, because readers get the first change.
  journaled::emplace(journal, updatedBounds_, std::move(key), bounds);
}

}  // namespace tarn
