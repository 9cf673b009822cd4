// The units of values on their way into a model, and the account of whose quantity type changed. What the quantity of a
// parameter is, and its units, are the host's to say; here stands when it is asked and what is made of the answer.

#include <tarn/ModifiedQuantityTracker.h>

#include <tarn/ParamAvailInfo.h>
#include <tarn/PathUtils.h>
#include <tarn/QuantityModifier.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFParam.h>

namespace tarn {

QuantityModifier::~QuantityModifier() = default;

std::string ModifiedQuantityTracker::modifyQuantity(ModelTDF const* model, std::string const& objPath,
                                                    std::string const& name, std::string const& value,
                                                    ParamAvailInfo const* info) {
  if (!enabled_ || modifier_ == nullptr || info->getType() != TDFParam::Real) return value;

  bool const isBlank = StringUtilities::trimmed(value).empty();
  std::string number;
  std::string units;
  if (!isBlank && !TDFParam::valueAsFloat(value, number, units).second) return value;

  std::string quantityType;
  if (modifier_->getQuantityType(model, objPath, name, quantityType) != 1) return value;

  // A parameter without a value has a quantity type too, which an editor for it wants to know.
  storeModifiedQuantity(objPath, name, quantityType);
  if (isBlank) return {};
  return number + " [" + modifier_->getQuantityUnits(quantityType, units) + "]";
}

void ModifiedQuantityTracker::storeModifiedQuantity(std::string const& objPath, std::string const& name,
                                                    std::string const& quantityType) {
  std::string key = objPath + PathUtils::pathSeparator + name;
  auto const [known, isNew] = knownQuantities_.try_emplace(key, quantityType);
  if (!isNew) {
    if (known->second == quantityType) return;
    known->second = quantityType;
  }
  // An entry of this batch stays: readers are told what the quantity became first.
  modifiedParams_.try_emplace(std::move(key), quantityType);
}

}  // namespace tarn
