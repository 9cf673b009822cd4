#include "review/BoundsCheck.h"

namespace tarn::session {

namespace {

/// Less than 0 when the quantity is below the bound, 0 when they are equal. Empty when they cannot be compared.
std::optional<int> compare(TDFParam::Quantity const& quantity, std::string const& bound, QuantityType const* type) {
  if (bound.empty()) return std::nullopt;
  auto const limit = TDFParam::asQuantity(bound);
  if (!limit) return std::nullopt;
  double a = quantity.number;
  double b = limit->number;
  if (quantity.units != limit->units) {
    if (type == nullptr) return std::nullopt;
    auto const converted = type->inFirstUnit(quantity);
    auto const convertedLimit = type->inFirstUnit(*limit);
    if (!converted || !convertedLimit) return std::nullopt;
    a = *converted;
    b = *convertedLimit;
    if (QuantityType::areEqual(a, b)) return 0;
  }
  return a < b ? -1 : a > b ? 1 : 0;
}

}  // namespace

bool isBound(std::string_view text) {
  return TDFParam::asQuantity(text).has_value();
}

std::optional<BoundsFault> faultOfBounds(TDFParam::Quantity const& quantity, Bounds const& bounds,
                                         QuantityType const* type) {
  if (auto const order = compare(quantity, bounds.lower, type)) {
    if (*order < 0) return BoundsFault{FindingCode::BelowLowerBound, "is below its lower bound " + bounds.lower};
    if (*order == 0 && bounds.lowerExcluded) {
      return BoundsFault{FindingCode::BelowLowerBound,
                         "is equal to its lower bound " + bounds.lower + ", but must be above it"};
    }
  }
  if (auto const order = compare(quantity, bounds.upper, type)) {
    if (*order > 0) return BoundsFault{FindingCode::AboveUpperBound, "is above its upper bound " + bounds.upper};
    if (*order == 0 && bounds.upperExcluded) {
      return BoundsFault{FindingCode::AboveUpperBound,
                         "is equal to its upper bound " + bounds.upper + ", but must be below it"};
    }
  }
  return std::nullopt;
}

}  // namespace tarn::session
