// Asks udunits2 for conversions. The library keeps state in global variables, in its parser too, so one mutex guards
// every call. It writes its errors to the standard error stream unless a handler is set; ours is set only while we
// call, because a host may use the library for itself.
#include "units/UnitLibrary.h"

#include <udunits2.h>

#include <array>
#include <charconv>
#include <cmath>
#include <memory>
#include <mutex>

#include <tarn/StringUtilities.h>

namespace tarn::rules {

namespace {

/// Silences the library for as long as it lives.
class Silence {
 public:
  Silence() : former_(ut_set_error_message_handler(ut_ignore)) {}
  Silence(Silence const&) = delete;
  Silence& operator=(Silence const&) = delete;
  ~Silence() { ut_set_error_message_handler(former_); }

 private:
  ut_error_message_handler former_;
};

using Unit = std::unique_ptr<ut_unit, decltype(&ut_free)>;
using Converter = std::unique_ptr<cv_converter, decltype(&cv_free)>;

/// All units that the library defines. Read once and kept until the program ends. Null when that failed; it is then
/// tried again.
ut_system* definitions() {
  static std::unique_ptr<ut_system, decltype(&ut_free_system)> system(nullptr, &ut_free_system);
  if (!system) system.reset(ut_read_xml(nullptr));
  return system.get();
}

Unit parsed(ut_system* system, std::string_view text) {
  if (text.size() > longestUnit || text.find('\0') != std::string_view::npos) return {nullptr, &ut_free};
  // The library takes blanks at the ends for a mistake.
  std::string const trimmed(StringUtilities::trimmed(text));
  return {ut_parse(system, trimmed.c_str(), UT_UTF8), &ut_free};
}

bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// The power of the radian in the definition of a unit, such as 1 in "0.1047 s-1.rad". The library itself takes radians
/// for plain numbers, and would say that a rotation per second is 6.28 hertz.
int powerOfRadian(ut_unit const& unit) {
  std::array<char, 256> buffer{};
  int const size = ut_format(&unit, buffer.data(), buffer.size() - 1, UT_ASCII | UT_DEFINITION);
  if (size <= 0 || static_cast<std::size_t>(size) >= buffer.size()) return 0;
  std::string_view const text(buffer.data(), static_cast<std::size_t>(size));
  constexpr std::string_view radian = "rad";
  for (std::size_t at = text.find(radian); at != std::string_view::npos; at = text.find(radian, at + 1)) {
    std::size_t const end = at + radian.size();
    if ((at > 0 && isLetter(text[at - 1])) || (end < text.size() && isLetter(text[end]))) continue;
    int power = 1;
    (void)std::from_chars(text.data() + end, text.data() + text.size(), power);
    return power;
  }
  return 0;
}

/// The number with 12 digits, if it differs from that only by rounding: 0.0254 for 0.025400000000000002. The library
/// multiplies its factors one after the other.
double withoutRoundingError(double number) {
  std::array<char, 32> buffer{};
  auto const end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::scientific, 11).ptr;
  double rounded = number;
  (void)std::from_chars(buffer.data(), end, rounded);
  constexpr double fewUlps = 1e-15;
  return std::abs(rounded - number) <= fewUlps * std::abs(number) ? rounded : number;
}

/// The factor and the offset of a converter. Every converter is a function of one number; it is asked for some.
UnitConversion linear(cv_converter const& converter) {
  UnitConversion result;
  result.status = UnitConversion::Status::NotLinear;
  double const offset = cv_convert_double(&converter, 0);
  // A wide interval, so that the offset takes no digits from the factor.
  constexpr double wide = 1073741824;
  double const factor = offset == 0
                            ? cv_convert_double(&converter, 1)
                            : (cv_convert_double(&converter, wide) - cv_convert_double(&converter, -wide)) / (2 * wide);
  if (!std::isfinite(offset) || !std::isfinite(factor) || factor == 0) return result;
  constexpr double tolerance = 1e-9;
  for (double const probe : {2.0, 10.0}) {
    double const expected = probe * factor + offset;
    double const actual = cv_convert_double(&converter, probe);
    // A not-a-number fails this test too.
    if (!(std::abs(actual - expected) <= tolerance * (std::abs(probe * factor) + std::abs(offset)))) return result;
  }
  result.status = UnitConversion::Status::Known;
  result.factor = withoutRoundingError(factor);
  result.offset = withoutRoundingError(offset);
  return result;
}

}  // namespace

UnitConversion conversionBetween(std::string_view from, std::string_view to) {
  using Status = UnitConversion::Status;
  static std::mutex mutex;
  std::lock_guard const lock(mutex);
  Silence const silence;

  auto* const system = definitions();
  if (system == nullptr) return {Status::NoDefinitions};
  Unit const target = parsed(system, to);
  if (!target) return {Status::UnknownTo};
  Unit const source = parsed(system, from);
  if (!source) return {Status::UnknownFrom};
  if (powerOfRadian(*source) != powerOfRadian(*target)) return {Status::Different};
  Converter const converter(ut_get_converter(source.get(), target.get()), &cv_free);
  if (!converter) return {Status::Different};
  return linear(*converter);
}

std::optional<double> LibraryUnitConverter::convert(double number, std::string_view from, std::string_view to) const {
  auto const conversion = conversionBetween(from, to);
  if (conversion.status != UnitConversion::Status::Known) return std::nullopt;
  return number * conversion.factor + conversion.offset;
}

}  // namespace tarn::rules
