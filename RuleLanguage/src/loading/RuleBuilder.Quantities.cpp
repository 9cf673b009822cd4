// Reads the section `Quantity Types`: the units of each type, and their conversions to its first unit. A list of units
// gets its conversions from the units library; a map gives them itself.

#include <string>
#include <utility>
#include <vector>

#include <tarn/QuantityType.h>
#include <tarn/TDFParam.h>

#include "diagnostics/NearMatch.h"
#include "loading/RuleBuilder.h"
#include "loading/RuleSections.h"
#include "units/UnitLibrary.h"

namespace tarn::rules {

namespace {

enum class UnitsKey { Units };
constexpr auto unitsKeys = std::to_array<Key<UnitsKey>>({{"Units", UnitsKey::Units}});

enum class ConversionKey { Factor, Offset };
constexpr auto conversionKeys =
    std::to_array<Key<ConversionKey>>({{"Factor", ConversionKey::Factor}, {"Offset", ConversionKey::Offset}});

}  // namespace

bool RuleBuilder::isUnit(Item const& item) {
  std::string_view const text = item.node->value;
  if (text.size() > longestUnit) {
    error(Code::InvalidUnits, item, "the text of a unit has at most " + std::to_string(longestUnit) + " bytes");
    return false;
  }
  if (text.find_first_of("[]") != std::string_view::npos) {
    error(Code::InvalidUnits, item, "a unit is written here without brackets, and cannot contain any");
    return false;
  }
  return true;
}

bool RuleBuilder::readNumber(Item const& item, std::string_view what, double& number) {
  auto const text = scalar(item, what);
  if (!text) return false;
  if (auto const given = TDFParam::asNumber(*text)) {
    number = *given;
    return true;
  }
  error(Code::InvalidConversion, item, std::string(what) + " must be a number, not " + inQuotes(text->substr(0, 60)));
  return false;
}

void RuleBuilder::readConversion(Item const& item, bool isFirst, QuantityUnit& unit) {
  bool good = true;
  Item factor = item;
  if (item.node->kind == YamlNode::Kind::Mapping) {
    forEachKnown(
        item, "the conversion of a unit", conversionKeys, [&](ConversionKey key, Item const&, Item const& value) {
          if (key == ConversionKey::Factor) factor = value;
          good &= readNumber(value, key == ConversionKey::Factor ? "the factor of a unit" : "the offset of a unit",
                             key == ConversionKey::Factor ? unit.factor : unit.offset);
        });
  } else if (item.node->kind == YamlNode::Kind::Scalar) {
    good = readNumber(item, "the factor of a unit", unit.factor);
  } else {
    error(Code::WrongKind, item, "write a factor, or {Factor: ..., Offset: ...}");
    return;
  }
  if (!good) return;
  if (unit.factor == 0) {
    error(Code::InvalidConversion, factor, "the factor of a unit cannot be zero");
  } else if (isFirst && (unit.factor != 1 || unit.offset != 0)) {
    error(Code::InvalidConversion, item,
          "the first unit is the one that numbers are converted to, so its factor is 1 and it has no offset");
  } else {
    unit.isConvertible = true;
  }
}

std::vector<QuantityUnit> RuleBuilder::unitsOfMap(Item const& map) {
  std::vector<QuantityUnit> units;
  forEach(map, "Units", [&](Item const& name, Item const& conversion) {
    if (!isUnit(name)) return;
    QuantityUnit unit;
    unit.text = name.node->value;
    readConversion(conversion, units.empty(), unit);
    units.push_back(std::move(unit));
  });
  return units;
}

std::vector<QuantityUnit> RuleBuilder::unitsOfList(Item const& list) {
  std::vector<QuantityUnit> units;
  auto const given = texts(list, false);
  if (!given) return units;
  for (auto const* child : list.node->children) {
    Item const item{list.source, child};
    if (!isUnit(item)) continue;
    QuantityUnit unit;
    unit.text = child->value;
    // The way from the first unit to itself needs no library, so that a type with one unit can have any.
    if (!units.empty()) {
      auto const conversion = conversionBetween(unit.text, units.front().text);
      if (conversion.status == UnitConversion::Status::NoDefinitions && !std::exchange(noDefinitionsReported_, true)) {
        error(
            Code::NoUnitDefinitions, item,
            "the units library cannot read its definitions of units; install udunits2 whole, or write the conversions "
            "as a map of unit to factor");
      }
      unit.isConvertible = conversion.status == UnitConversion::Status::Known;
      unit.factor = conversion.factor;
      unit.offset = conversion.offset;
    }
    units.push_back(std::move(unit));
  }
  return units;
}

void RuleBuilder::readQuantityTypes(Item const& section) {
  forEach(section, "Quantity Types", [&](Item const& name, Item const& body) {
    if (!isName(name, "a quantity type")) return;
    auto const [former, isNew] = quantityNames_.try_emplace(name.node->value, name);
    if (!isNew) {
      twice(Code::DuplicateName, name, former->second, inQuotes(name.node->value) + " is given twice");
      return;
    }
    bool unitsGiven = false;
    forEachKnown(body, "a quantity type", unitsKeys, [&](UnitsKey, Item const&, Item const& value) {
      unitsGiven = true;
      bool const isMap = value.node->kind == YamlNode::Kind::Mapping;
      if (!isMap && value.node->kind != YamlNode::Kind::Sequence) {
        (void)texts(value, false, "write the units themselves");
        return;
      }
      if (value.node->children.empty()) {
        error(Code::NoUnits, value, "a quantity type needs at least one unit");
        return;
      }
      auto units = isMap ? unitsOfMap(value) : unitsOfList(value);
      (void)data_->addQuantityType(name.node->value, QuantityType(std::move(units)));
      if (data_->unitConverter() == nullptr) data_->setUnitConverter(std::make_unique<LibraryUnitConverter>());
      if (keepPlaces_) index_.quantityTypes_.emplace_back(name, value);
    });
    if (!unitsGiven && isLackOf("Units", body, name))
      error(Code::MissingKey, name, "the quantity type has no 'Units'; write {Units: [...]}");
  });
}

}  // namespace tarn::rules
