// Reads the texts of parameter values. Nothing depends on the locale. Numbers and quantities are read without
// allocation, because every bound and every comparison reads them.
#include <tarn/TDFParam.h>

#include <array>
#include <charconv>
#include <string>
#include <system_error>
#include <utility>

#include <tarn/StringUtilities.h>

namespace tarn {

namespace {

using StringUtilities::trimmed;

constexpr std::array<std::string_view, 8> typeNames{"Integer", "Integer List", "Logical", "Logical List",
                                                    "Real",    "Real List",    "String",  "String List"};

bool isDigit(char c) noexcept {
  return c >= '0' && c <= '9';
}

// The parts of a decimal number: [sign] digits [. digits] [e [sign] digits], with a digit before or after the point.
struct Decimal {
  bool negative = false;
  std::string_view whole;
  std::string_view fraction;
  bool negativeExponent = false;
  std::string_view exponent;
  std::string_view unsignedText;  // without the sign
};

std::string_view takeDigits(std::string_view& text) noexcept {
  std::size_t n = 0;
  while (n < text.size() && isDigit(text[n])) ++n;
  std::string_view const digits = text.substr(0, n);
  text.remove_prefix(n);
  return digits;
}

// Removes a sign from the front. Returns whether it was a minus.
bool takeSign(std::string_view& text) noexcept {
  bool const negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  return negative;
}

std::optional<Decimal> parseDecimal(std::string_view text) noexcept {
  Decimal number;
  number.negative = takeSign(text);
  number.unsignedText = text;
  number.whole = takeDigits(text);
  if (text.starts_with('.')) {
    text.remove_prefix(1);
    number.fraction = takeDigits(text);
  }
  if (number.whole.empty() && number.fraction.empty()) return std::nullopt;
  if (text.starts_with('e') || text.starts_with('E')) {
    text.remove_prefix(1);
    number.negativeExponent = takeSign(text);
    number.exponent = takeDigits(text);
    if (number.exponent.empty()) return std::nullopt;
  }
  if (!text.empty()) return std::nullopt;
  return number;
}

// Whether a number outside the range of a double is too large rather than too small. The power of ten of its first
// non-zero digit decides.
bool isTooLarge(Decimal const& number) noexcept {
  long long power = 0;
  if (std::size_t const first = number.whole.find_first_not_of('0'); first != std::string_view::npos) {
    power = static_cast<long long>(number.whole.size() - first) - 1;
  } else if (std::size_t const behind = number.fraction.find_first_not_of('0'); behind != std::string_view::npos) {
    power = -static_cast<long long>(behind) - 1;
  } else {
    return false;
  }
  constexpr long long farOut = 1'000'000'000'000'000;  // more than the length of any text
  long long exponent = 0;
  for (char const c : number.exponent) {
    if (exponent < farOut) exponent = exponent * 10 + (c - '0');
  }
  return power + (number.negativeExponent ? -exponent : exponent) > 0;
}

bool itemsEqual(TDFParam::Type type, std::string_view a, std::string_view b) noexcept {
  if (a == b) return true;
  if (type == TDFParam::Logical) {
    std::optional<bool> const left = TDFParam::asLogical(a);
    return left && left == TDFParam::asLogical(b);
  }
  if (TDFParam::isNumericType(type)) {
    std::optional<TDFParam::Quantity> const left = TDFParam::asQuantity(a);
    if (!left) return false;
    std::optional<TDFParam::Quantity> const right = TDFParam::asQuantity(b);
    return right && left->number == right->number && left->units == right->units;
  }
  return false;
}

// Iterates over the items of a list.
class Items {
 public:
  explicit Items(std::string_view text) noexcept : rest_(text), done_(text.empty()) {}

  [[nodiscard]] std::optional<std::string_view> next() noexcept {
    if (done_) return std::nullopt;
    std::size_t const comma = rest_.find(',');
    std::string_view const item = trimmed(rest_.substr(0, comma));
    done_ = comma == std::string_view::npos;
    if (!done_) rest_.remove_prefix(comma + 1);
    return item;
  }

 private:
  std::string_view rest_;
  bool done_;
};

}  // namespace

bool TDFParam::isListType(Type type) noexcept {
  return type == IntegerList || type == LogicalList || type == RealList || type == StringList;
}

TDFParam::Type TDFParam::elementType(Type type) noexcept {
  switch (type) {
    case IntegerList:
      return Integer;
    case LogicalList:
      return Logical;
    case RealList:
      return Real;
    case StringList:
      return String;
    default:
      return type;
  }
}

bool TDFParam::isNumericType(Type type) noexcept {
  Type const element = elementType(type);
  return element == Integer || element == Real;
}

bool TDFParam::valuesEqual(Type type, std::string const& a, std::string const& b) {
  if (a == b) return true;
  if (!isListType(type)) return itemsEqual(type, a, b);
  Type const element = elementType(type);
  Items left(a);
  Items right(b);
  for (;;) {
    std::optional<std::string_view> const x = left.next();
    std::optional<std::string_view> const y = right.next();
    if (!x || !y) return !x && !y;
    if (!itemsEqual(element, *x, *y)) return false;
  }
}

std::pair<float, bool> TDFParam::valueAsFloat(std::string const& value, std::string& number, std::string& units) {
  std::optional<Quantity> const quantity = asQuantity(value);
  if (!quantity) {
    number.clear();
    units.clear();
    return {0.0F, false};
  }
  // Copy first: one of the two results may be the value itself.
  std::string numberText(quantity->numberText);
  std::string unitsText(quantity->units);
  auto const result = static_cast<float>(quantity->number);
  number = std::move(numberText);
  units = std::move(unitsText);
  return {result, true};
}

std::optional<double> TDFParam::asNumber(std::string_view text) noexcept {
  std::optional<Decimal> const decimal = parseDecimal(trimmed(text));
  if (!decimal) return std::nullopt;
  std::string_view const digits = decimal->unsignedText;
  double number = 0;
  std::errc const status = std::from_chars(digits.data(), digits.data() + digits.size(), number).ec;
  if (status == std::errc::result_out_of_range) {
    // `from_chars` does not say at which end the number is out of range. For a number that is too small `strtod` gives
    // 0.
    if (isTooLarge(*decimal)) return std::nullopt;
    number = 0;
  } else if (status != std::errc()) {
    return std::nullopt;
  }
  return decimal->negative ? -number : number;
}

std::optional<TDFParam::Quantity> TDFParam::asQuantity(std::string_view text) noexcept {
  std::string_view numberText = trimmed(text);
  std::string_view units;
  if (numberText.ends_with(']')) {
    std::size_t const bracket = numberText.find('[');
    if (bracket == std::string_view::npos) return std::nullopt;
    units = numberText.substr(bracket + 1, numberText.size() - bracket - 2);
    if (units.find_first_of("[]") != std::string_view::npos) return std::nullopt;
    numberText = trimmed(numberText.substr(0, bracket));
  }
  std::optional<double> const number = asNumber(numberText);
  if (!number) return std::nullopt;
  return Quantity{*number, numberText, units};
}

std::optional<bool> TDFParam::asLogical(std::string_view text) noexcept {
  std::string_view const word = trimmed(text);
  if (word == "1") return true;
  if (word == "0") return false;
  return StringUtilities::asYesNo(word);
}

std::string_view TDFParam::typeName(Type type) noexcept {
  auto const i = static_cast<std::size_t>(type);
  return i < typeNames.size() ? typeNames[i] : std::string_view();
}

std::optional<TDFParam::Type> TDFParam::typeFromName(std::string_view name) noexcept {
  for (std::size_t i = 0; i < typeNames.size(); ++i) {
    if (typeNames[i] == name) return static_cast<Type>(i);
  }
  return std::nullopt;
}

}  // namespace tarn
