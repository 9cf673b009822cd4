#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <tarn/Export.h>

namespace tarn {

/// How the texts of parameter values are read.
///
/// Number: a decimal number as `strtod` reads it in the "C" locale. It must be the whole text, except for white space
/// at the ends. There is no hexadecimal form, no infinity and no not-a-number. A number too large for a double is not a
/// number.
/// Quantity: a number, optional white space, and `[units]`; a plain number is a quantity with the units "".
/// Logical: true, yes, on, 1 and false, no, off, 0 in any case, with white space at the ends allowed.
/// List: items separated by commas. An empty text is the empty list.
class TARN_EXPORT TDFParam {
 public:
  /// The type of a parameter as the rules declare it. The numbers are part of the interface.
  enum Type : int {
    Integer = 0,
    IntegerList = 1,
    Logical = 2,
    LogicalList = 3,
    Real = 4,
    RealList = 5,
    String = 6,
    StringList = 7
  };

  /// The parts of a quantity. The views point into the text that was parsed.
  struct Quantity {
    double number;
    std::string_view numberText;
    std::string_view units;
  };

  TDFParam() = delete;

  [[nodiscard]] static bool isListType(Type type) noexcept;
  /// The element type of a list type; any other type itself.
  [[nodiscard]] static Type elementType(Type type) noexcept;
  /// True for the types that can have bounds: Integer, Real and their lists.
  [[nodiscard]] static bool isNumericType(Type type) noexcept;

  /// Returns whether `a` and `b` are the same value of type `type`. Integer and Real compare the number and the text of
  /// the units, Logical compares truth, String compares text, and lists compare their trimmed items one by one. If one
  /// of the two cannot be read as its type, both are compared as text.
  [[nodiscard]] static bool valuesEqual(Type type, std::string const& a, std::string const& b);

  /// Splits a quantity into the texts `number` and `units`. Returns the number, and whether `value` is a quantity. If
  /// it is not, both texts are empty and the number is 0. A number too large for a float is infinite.
  [[nodiscard]] static std::pair<float, bool> valueAsFloat(std::string const& value, std::string& number,
                                                           std::string& units);

  /// The value of the text as a number, quantity or logical value, as defined above. Empty if the text is not of this
  /// form.
  [[nodiscard]] static std::optional<double> asNumber(std::string_view text) noexcept;
  [[nodiscard]] static std::optional<Quantity> asQuantity(std::string_view text) noexcept;
  [[nodiscard]] static std::optional<bool> asLogical(std::string_view text) noexcept;

  /// The name of the type as rule files write it: "Real List".
  [[nodiscard]] static std::string_view typeName(Type type) noexcept;
  /// The type of that name, exactly as `typeName` writes it. Empty if there is none.
  [[nodiscard]] static std::optional<Type> typeFromName(std::string_view name) noexcept;
};

}  // namespace tarn
