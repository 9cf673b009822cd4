// The units of values that are about to be written, and the record of changed quantity types. The host's modifier
// decides the quantity and the units of a parameter. This source decides when it is asked and how its answer is used.

#include <tarn/ModifiedQuantityTracker.h>

#include <tarn/ParamAvailInfo.h>
#include <tarn/PathUtils.h>
#include <tarn/QuantityModifier.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFParam.h>

#include "journal/JournaledWrites.h"

namespace tarn {

QuantityModifier::~QuantityModifier() = default;

std::string ModifiedQuantityTracker::modifyQuantity(ModelTDF const* model, std::string const& objPath,
                                                    std::string const& name, std::string const& value,
                                                    ParamAvailInfo const* info) {
  return modifyQuantity(model, objPath, name, value, info, nullptr);
}

std::string ModifiedQuantityTracker::modifyQuantity(ModelTDF const* model, std::string const& objPath,
                                                    std::string const& name, std::string const& value,
                                                    ParamAvailInfo const* info, Journal* journal) {
  if (!enabled_ || modifier_ == nullptr || info->getType() != TDFParam::Real) return value;

  bool const isBlank = StringUtilities::trimmed(value).empty();
  std::string number;
  std::string units;
  if (!isBlank && !TDFParam::valueAsFloat(value, number, units).second) return value;

  std::string quantityType;
  if (modifier_->getQuantityType(model, objPath, name, quantityType) != 1) return value;

  // A parameter without a value has a quantity type too, and an editor needs it.
  storeModifiedQuantity(objPath, name, quantityType, journal);
  if (isBlank) return {};
  return number + " [" + modifier_->getQuantityUnits(quantityType, units) + "]";
}

void ModifiedQuantityTracker::storeModifiedQuantity(std::string const& objPath, std::string const& name,
                                                    std::string const& quantityType, Journal* journal) {
  std::string key = objPath + PathUtils::pathSeparator + name;
  auto const [known, isNew] = journaled::emplace(journal, knownQuantities_, key, quantityType);
  if (!isNew) {
    if (known->second == quantityType) return;
    journaled::assign(journal, known->second, quantityType);
  }
  // An existing entry of this batch stays, because readers get the first change.
  journaled::emplace(journal, modifiedParams_, std::move(key), quantityType);
}

}  // namespace tarn
