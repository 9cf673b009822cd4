#pragma once

#include <optional>
#include <string_view>

#include <tarn/Export.h>

namespace tarn {

/// Converts between units that no quantity type lists together. A review asks it for what to write instead of a value
/// in units that are not listed; no verdict depends on it. The loader of rule files supplies one that asks a units
/// library.
///
/// May be used from several threads at once.
class TARN_EXPORT UnitConverter {
 public:
  virtual ~UnitConverter();

  /// A number in the unit `from`, expressed in the unit `to`. Empty if one of the units is not known or they do not
  /// measure the same. Throws nothing but `std::bad_alloc`.
  [[nodiscard]] virtual std::optional<double> convert(double number, std::string_view from,
                                                      std::string_view to) const = 0;

 protected:
  UnitConverter() = default;
  UnitConverter(UnitConverter const&) = default;
  UnitConverter& operator=(UnitConverter const&) = default;
};

}  // namespace tarn
