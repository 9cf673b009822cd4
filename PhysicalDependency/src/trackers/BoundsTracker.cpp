// Which computed bounds moved. Two maps by parameter path: what was seen last, which never loses an entry, and what
// changed since the last reset. Evaluating bounds is dear, so a parameter is asked for them only once it is known to be
// tracked at all.

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
  // An entry of this batch stays: readers are told where the bounds went first.
  updatedBounds_.try_emplace(std::move(key), bounds);
}

}  // namespace tarn
