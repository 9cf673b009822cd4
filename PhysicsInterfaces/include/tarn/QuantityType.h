#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Export.h>
#include <tarn/TDFParam.h>

namespace tarn {

/// A unit of a quantity type, with its conversion to the first unit of the type:
///
///     number in the first unit = number * factor + offset
struct QuantityUnit {
  /// As a value writes it between its brackets: "mV".
  std::string text;
  /// False: the conversion is not known, and `factor` and `offset` are not used.
  bool isConvertible = false;
  /// Finite and not zero.
  double factor = 1;
  /// Finite. Not zero only for scales with another zero point, such as degrees Celsius and kelvin.
  double offset = 0;
};

/// A kind of quantity, such as Voltage, with the units in which a value of that kind may be written. The first unit is
/// the one in which numbers are counted and compared, and the one that a value without units has.
///
/// A quantity type does not change after its construction, so several threads may use it at once. All operations but
/// the constructors take time linear in the number of units and allocate nothing.
class TARN_EXPORT QuantityType {
 public:
  /// A type with the given units and without conversions, except that the first unit converts to itself. Values in
  /// other units then count by their number alone.
  explicit QuantityType(std::vector<std::string> const& units);
  /// A type with the given units. The first one gets the factor 1 and the offset 0, whatever it had. A unit whose
  /// factor is 0 or not finite, or whose offset is not finite, is not convertible.
  explicit QuantityType(std::vector<QuantityUnit> units);

  [[nodiscard]] std::vector<QuantityUnit> const& units() const noexcept { return units_; }
  /// The text of the first unit; "" for a type without units.
  [[nodiscard]] std::string const& firstUnit() const noexcept;
  /// The unit with exactly this text, or null. Valid as long as the type.
  [[nodiscard]] QuantityUnit const* find(std::string_view units) const noexcept;
  /// Whether a number can change when it is converted: a unit other than the first one is convertible.
  [[nodiscard]] bool hasConversions() const noexcept { return hasConversions_; }

  /// The number of the quantity in the first unit. A quantity without units is taken as given in the first unit. Empty
  /// if the type does not list the units, or does not know their conversion.
  [[nodiscard]] std::optional<double> inFirstUnit(TDFParam::Quantity const& quantity) const noexcept;
  /// The number by which the quantity counts: as above, and for what cannot be converted, its number alone.
  [[nodiscard]] double numberOf(TDFParam::Quantity const& quantity) const noexcept;
  /// The same for the text of a quantity. Empty if the text is not a quantity.
  [[nodiscard]] std::optional<double> numberOf(std::string_view text) const noexcept;

  /// The way back: a number in the first unit, expressed in a convertible unit of the type.
  [[nodiscard]] static double fromFirstUnit(double number, QuantityUnit const& unit) noexcept {
    return (number - unit.offset) / unit.factor;
  }
  /// Whether two converted numbers are equal: they differ by no more than 1e-12 of the larger one. Conversions round,
  /// so 25.4 [mm] and 1 [in] would otherwise differ.
  [[nodiscard]] static bool areEqual(double a, double b) noexcept;

 private:
  std::vector<QuantityUnit> units_;
  bool hasConversions_ = false;
};

}  // namespace tarn
