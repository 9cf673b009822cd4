// Values as users type them. A value that cannot be meant is refused here, with the nearest value that could be. A
// value of the right form is passed on as it was typed, with three exceptions: items of a list lose the blanks around
// them, units get their brackets, and a number in units that the quantity type does not list is converted.
#include "session/EnteredValue.h"

#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

#include <tarn/StringUtilities.h>
#include <tarn/TDFParam.h>
#include <tarn/UnitConverter.h>

#include "review/JudgedItems.h"

namespace tarn::session {

namespace {

EnteredValue fault(RefusalCode code, std::string reason, std::string nearest = {}, SharedStrings possible = {}) {
  EnteredValue entered;
  entered.fault = code;
  entered.reason = std::move(reason);
  entered.value = std::move(nearest);
  entered.possible = std::move(possible);
  return entered;
}

EnteredValue accepted(std::string value, bool isConverted = false) {
  EnteredValue entered;
  entered.value = std::move(value);
  entered.isConverted = isConverted;
  return entered;
}

std::string inUnits(std::string_view number, std::string_view units) {
  std::string text(number);
  if (!units.empty()) text.append(" [").append(units).append("]");
  return text;
}

/// A number with units that lack their brackets: "25 mm", "25mm".
struct LooseQuantity {
  std::string_view number;
  std::string_view units;
};
std::optional<LooseQuantity> asLooseQuantity(std::string_view text) {
  if (text.find_first_of("[],") != std::string_view::npos) return std::nullopt;
  // The longest beginning that is a number. It is short, whatever follows it.
  constexpr std::size_t longest = 60;
  for (std::size_t end = std::min(text.size(), longest); end > 0; --end) {
    std::string_view const number = StringUtilities::trimmed(text.substr(0, end));
    if (!TDFParam::asNumber(number)) continue;
    std::string_view const units = StringUtilities::trimmed(text.substr(end));
    if (units.empty()) return std::nullopt;
    // 1e400 is too large for a number, and must not be read as 1e40 with the units "0".
    bool const isCutInside = text[end] == '.' || (text[end] >= '0' && text[end] <= '9');
    if (isCutInside && !StringUtilities::isSpace(text[end - 1])) return std::nullopt;
    return LooseQuantity{number, units};
  }
  return std::nullopt;
}

/// The units of a parameter. Without units, none are expected.
struct ExpectedUnits {
  bool isUnknown = false;  // the rules name a quantity type that they do not have
  QuantityType const* type = nullptr;
  std::vector<std::string> units;

  [[nodiscard]] bool lists(std::string_view text) const {
    return std::find(units.begin(), units.end(), text) != units.end();
  }
};

ExpectedUnits expectedUnits(RuledState const& state, ParamRules const& rules, std::string const& path) {
  ExpectedUnits expected;
  if (rules.value->quantityType != nullptr) {
    expected.type = state.rules().findQuantityType(state.quantityType(rules, path));
    expected.isUnknown = expected.type == nullptr || expected.type->units().empty();
    if (!expected.isUnknown) {
      for (QuantityUnit const& unit : expected.type->units()) expected.units.push_back(unit.text);
    }
    return expected;
  }
  auto const [lower, upper] = state.bounds(rules, path);
  expected.units = unitsOfTexts(lower, upper, state.defaultValue(rules, path, {}), rules.value->type);
  return expected;
}

EnteredValue readQuantity(RuledState const& state, ParamRules const& rules, std::string const& path,
                          std::string_view number, std::string_view units, std::string asTyped) {
  if (units.empty()) return accepted(std::move(asTyped));
  ExpectedUnits const expected = expectedUnits(state, rules, path);
  if (expected.isUnknown || expected.lists(units)) return accepted(std::move(asTyped));
  if (expected.units.empty()) {
    return fault(RefusalCode::UnknownUnits, "no units are expected", std::string(number));
  }
  UnitConverter const* const converter = state.rules().unitConverter();
  std::string const& target = expected.units.front();
  if (converter != nullptr) {
    if (auto const converted = converter->convert(*TDFParam::asNumber(number), units, target)) {
      if (std::isfinite(*converted)) return accepted(inUnits(remedyNumber(*converted), target), true);
    }
  }
  std::string const near = StringUtilities::nearMatch(units, expected.units);
  return fault(RefusalCode::UnknownUnits, "the units cannot be converted", near.empty() ? near : inUnits(number, near),
               expected.units);
}

/// A value that is not a list, or an item of one.
EnteredValue readItem(RuledState const& state, ParamRules const& rules, std::string const& path,
                      std::string const& text) {
  TDFParam::Type const type = TDFParam::elementType(rules.value->type);
  if (type == TDFParam::String || StringUtilities::trimmed(text).empty()) return accepted(text);
  if (type == TDFParam::Logical) {
    if (TDFParam::asLogical(text)) return accepted(text);
    std::string const near = StringUtilities::nearMatch(text, {"true", "false", "yes", "no", "on", "off"});
    return fault(RefusalCode::WrongType, "it is not a logical value such as true or false", near);
  }
  std::string_view number;
  std::string_view units;
  std::string asTyped = text;
  if (auto const quantity = TDFParam::asQuantity(text)) {
    number = quantity->numberText;
    units = quantity->units;
  } else if (auto const loose = asLooseQuantity(StringUtilities::trimmed(text))) {
    number = loose->number;
    units = loose->units;
    asTyped = inUnits(number, units);
  } else {
    std::string nearest;
    // A comma is refused rather than guessed at, because a guess can be wrong by a factor of 1000.
    std::string withPoint = text;
    std::size_t const comma = withPoint.find(',');
    if (comma != std::string::npos) {
      withPoint[comma] = '.';
      if (TDFParam::asQuantity(withPoint) || asLooseQuantity(withPoint)) nearest = std::move(withPoint);
    }
    return fault(RefusalCode::WrongType, "it is not a number", std::move(nearest));
  }
  EnteredValue entered = readQuantity(state, rules, path, number, units, std::move(asTyped));
  if (entered.fault || type != TDFParam::Integer) return entered;
  auto const quantity = TDFParam::asQuantity(entered.value);
  if (quantity && std::trunc(quantity->number) != quantity->number) {
    return fault(RefusalCode::WrongType, "it is not a whole number",
                 inUnits(remedyNumber(std::round(quantity->number)), quantity->units));
  }
  return entered;
}

EnteredValue notAllowed(std::string const& text, ParamAllowedValues const& allowed) {
  if (allowed.allowedValues.empty()) return fault(RefusalCode::ValueNotAllowed, "no value is allowed now");
  return fault(RefusalCode::ValueNotAllowed, "it is not an allowed value",
               StringUtilities::nearMatch(text, allowed.allowedValues), allowed.allowedValues);
}

}  // namespace

EnteredValue readEnteredValue(RuledState const& state, ParamRules const& rules, std::string const& path,
                              std::string const& text, bool isAvailable) {
  bool const isList = TDFParam::isListType(rules.value->type);
  bool const hasAllowed = rules.value->allowedValueKind != ParamValueDef::NoAllowedValues;
  ParamAllowedValues allowed;
  if (hasAllowed) allowed = state.allowedValues(rules, path);
  bool const isLimited = hasAllowed && isAvailable && !allowed.allowsAnyValue;

  std::string const trimmed = StringUtilities::removeWhitespace(text);
  if (!isList) {
    if (hasAllowed && allowed.allowedValues.contains(trimmed)) return accepted(trimmed);
    if (isLimited) return notAllowed(trimmed, allowed);
    return readItem(state, rules, path, trimmed);
  }

  // A free list of texts is passed on as it is: blanks may matter.
  bool const isFreeText = rules.value->type == TDFParam::StringList && !isLimited;
  std::vector<std::string> items = StringUtilities::stringToVector(text, ',');
  if (isFreeText) return accepted(trimmed);
  bool isConverted = false;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (hasAllowed && allowed.allowedValues.contains(items[i])) continue;
    EnteredValue item = isLimited ? notAllowed(items[i], allowed) : readItem(state, rules, path, items[i]);
    if (!isLimited && !item.fault && items[i].empty()) item = fault(RefusalCode::WrongType, "an item is missing");
    if (item.fault) {
      item.reason = "item " + std::to_string(i + 1) + " is wrong: " + item.reason;
      if (!item.value.empty()) {
        items[i] = item.value;
        item.value = StringUtilities::vectorToString(items, ',');
      }
      return item;
    }
    isConverted = isConverted || item.isConverted;
    items[i] = std::move(item.value);
  }
  return accepted(StringUtilities::vectorToString(items, ','), isConverted);
}

std::optional<std::string> convertedQuantity(PhysicsData const& rules, std::string_view quantity,
                                             std::string_view units) {
  auto const read = TDFParam::asQuantity(quantity);
  UnitConverter const* const converter = rules.unitConverter();
  if (!read || read->units.empty() || converter == nullptr) return std::nullopt;
  auto const converted = converter->convert(read->number, read->units, units);
  if (!converted || !std::isfinite(*converted)) return std::nullopt;
  return inUnits(remedyNumber(*converted), units);
}

}  // namespace tarn::session
