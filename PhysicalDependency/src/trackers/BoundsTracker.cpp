// Which computed bounds changed. Two maps by parameter path: the last bounds of every parameter, which keep their
// entries, and the changes since the last reset. Evaluating bounds is expensive, so it is done only for parameters that
// are tracked.

#include <tarn/BoundsTracker.h>

#include <tarn/ParamAvailInfo.h>
#include <tarn/PathUtils.h>
#include <tarn/TDFParam.h>

namespace tarn {

void BoundsTracker::updateBounds(std::string const& objPath, std::string const& name, ParamAvailInfo const* info) {
  if (enabled_ && TDFParam::isNumericType(info->getType()) && info->hasDynamicBounds()) {
    storeUpdatedBounds(objPath, name, info->getBounds());
  }
}

void BoundsTracker::storeUpdatedBounds(std::string const& objPath, std::string const& name, Bounds const& bounds) {
  std::string key = objPath + PathUtils::pathSeparator + name;
  auto const [known, isNew] = knownBounds_.try_emplace(key, bounds);
  if (!isNew) {
    if (known->second == bounds) return;
    known->second = bounds;
  }
  // An existing entry of this batch stays, because readers get the first change.
  updatedBounds_.try_emplace(std::move(key), bounds);
}

}  // namespace tarn
