// Quantity types are small: a linear search in a handful of units is faster than any index.
#include <tarn/QuantityType.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tarn {

namespace {

std::vector<QuantityUnit> withoutConversions(std::vector<std::string> const& texts) {
  std::vector<QuantityUnit> units;
  units.reserve(texts.size());
  for (std::string const& text : texts) units.push_back({text, false, 1, 0});
  return units;
}

}  // namespace

QuantityType::QuantityType(std::vector<std::string> const& units) : QuantityType(withoutConversions(units)) {}

QuantityType::QuantityType(std::vector<QuantityUnit> units) : units_(std::move(units)) {
  if (units_.empty()) return;
  for (QuantityUnit& unit : units_) {
    unit.isConvertible =
        unit.isConvertible && std::isfinite(unit.factor) && unit.factor != 0 && std::isfinite(unit.offset);
  }
  units_.front().isConvertible = true;
  units_.front().factor = 1;
  units_.front().offset = 0;
  hasConversions_ =
      std::any_of(units_.begin() + 1, units_.end(), [](QuantityUnit const& unit) { return unit.isConvertible; });
}

std::string const& QuantityType::firstUnit() const noexcept {
  static std::string const none;
  return units_.empty() ? none : units_.front().text;
}

QuantityUnit const* QuantityType::find(std::string_view units) const noexcept {
  auto const found =
      std::find_if(units_.begin(), units_.end(), [&](QuantityUnit const& unit) { return unit.text == units; });
  return found == units_.end() ? nullptr : &*found;
}

std::optional<double> QuantityType::inFirstUnit(TDFParam::Quantity const& quantity) const noexcept {
  if (quantity.units.empty()) return quantity.number;
  QuantityUnit const* const unit = find(quantity.units);
  if (unit == nullptr || !unit->isConvertible) return std::nullopt;
  return quantity.number * unit->factor + unit->offset;
}

double QuantityType::numberOf(TDFParam::Quantity const& quantity) const noexcept {
  return inFirstUnit(quantity).value_or(quantity.number);
}

std::optional<double> QuantityType::numberOf(std::string_view text) const noexcept {
  std::optional<TDFParam::Quantity> const quantity = TDFParam::asQuantity(text);
  if (!quantity) return std::nullopt;
  return numberOf(*quantity);
}

bool QuantityType::areEqual(double a, double b) noexcept {
  constexpr double tolerance = 1e-12;
  // The first test holds for two equal infinities too, whose difference is not a number.
  return a == b || std::abs(a - b) <= tolerance * std::max(std::abs(a), std::abs(b));
}

}  // namespace tarn
