#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <tarn/UnitConverter.h>

namespace tarn::rules {

/// The way from one unit to another: number in the other unit = number * factor + offset.
struct UnitConversion {
  enum class Status {
    Known,
    /// The library does not know the first or the second unit.
    UnknownFrom,
    UnknownTo,
    /// The two units measure different quantities.
    Different,
    /// The conversion is not a factor and an offset, or these are not finite numbers: decibels, for example.
    NotLinear,
    /// The library's definitions could not be read, so it knows no units at all.
    NoDefinitions
  };
  Status status = Status::NoDefinitions;
  double factor = 1;
  double offset = 0;
};

/// The way from the unit `from` to the unit `to`, as the units library (udunits2) knows it. Both are texts as a value
/// writes them between its brackets; longer ones than `longestUnit` are unknown.
///
/// Radians count as a unit of their own: rotations per minute convert to radians per second, but not to hertz.
///
/// May be called from several threads at once. The first call reads the definitions of all units, which takes about
/// 10 ms; a further one takes microseconds.
[[nodiscard]] UnitConversion conversionBetween(std::string_view from, std::string_view to);

/// The units library as a rule database has it.
class LibraryUnitConverter final : public UnitConverter {
 public:
  [[nodiscard]] std::optional<double> convert(double number, std::string_view from, std::string_view to) const override;
};

/// The most bytes that the text of a unit may have.
inline constexpr std::size_t longestUnit = 100;

}  // namespace tarn::rules
