// The judgement needs the units of a value only, so numbers out of bounds and texts that are no numbers are left to
// ValueJudge.
#include "review/UnitJudge.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include <tarn/QuantityType.h>
#include <tarn/UnitConverter.h>

#include "review/JudgedItems.h"

namespace tarn::session {

namespace {

std::vector<std::string> unitTexts(QuantityType const& type) {
  std::vector<std::string> texts;
  texts.reserve(type.units().size());
  for (QuantityUnit const& unit : type.units()) texts.push_back(unit.text);
  return texts;
}

std::string inBrackets(std::vector<std::string> const& units) {
  constexpr std::size_t most = 10;
  std::string text;
  for (std::size_t i = 0; i < units.size() && i < most; ++i) text += (i == 0 ? "[" : ", [") + units[i] + ']';
  return units.size() > most ? text + ", ..." : text;
}

// The same quantity in the first unit of the type. Empty when the conversion is not known.
std::string remedy(TDFParam::Quantity const& quantity, QuantityType const& type, ReviewContext const& context) {
  UnitConverter const* const converter = context.rules.unitConverter();
  if (converter == nullptr) return {};
  auto const number = converter->convert(quantity.number, quantity.units, type.firstUnit());
  return number ? remedyNumber(*number) + " [" + type.firstUnit() + ']' : std::string();
}

// Judges an item of a parameter with a quantity type. Returns whether there is no fault.
bool fits(JudgedParam const& param, JudgedItem const& item, TDFParam::Quantity const& quantity,
          QuantityType const& type, ReviewContext& context) {
  if (type.units().empty() || type.find(quantity.units) != nullptr || isAllowed(param, item.text, context)) return true;
  std::vector<std::string> units = unitTexts(type);
  std::string value;
  Finding* finding = nullptr;
  if (quantity.units.empty()) {
    value = std::string(quantity.numberText) + " [" + type.firstUnit() + ']';
    finding =
        &reportItem(FindingCode::UnitsAssumed, param, item, " without units; it is taken as " + value + '.', context);
  } else {
    value = remedy(quantity, type, context);
    std::string sentence = ", whose units are not among those of its quantity type: " + inBrackets(units);
    if (!value.empty()) sentence += "; write " + value;
    finding = &reportItem(FindingCode::UnitsNotListed, param, item, sentence + '.', context);
    finding->expected.nearMatch = StringUtilities::nearMatch(quantity.units, units);
    if (finding->expected.nearMatch->empty()) finding->expected.nearMatch.reset();
  }
  finding->expected.units = std::move(units);
  if (item.number == 0 && !value.empty()) finding->expected.value = std::move(value);
  return false;
}

// The units of the bounds and of the default of a parameter without a quantity type, each once.
std::vector<std::string> unitsOfRule(JudgedParam const& param, ReviewContext& context) {
  auto const& [lower, upper] = param.info.getBounds();
  return unitsOfTexts(lower, upper,
                      param.declaration.evaluateDefault(context.rules.getRules(), TDFContext(param.info.getObjPath()),
                                                        &context.evaluation),
                      param.info.getType());
}

// Judges an item with units of a parameter without a quantity type. Returns whether there is no fault.
bool isExpected(JudgedParam const& param, JudgedItem const& item, TDFParam::Quantity const& quantity,
                ReviewContext& context) {
  std::vector<std::string> units = unitsOfRule(param, context);
  if (std::find(units.begin(), units.end(), quantity.units) != units.end()) return true;
  if (isAllowed(param, item.text, context)) return true;
  std::string const sentence = units.empty() ? ", but no units are expected."
                                             : ", but its bounds and its default are in " + inBrackets(units) + '.';
  Finding& finding = reportItem(FindingCode::UnitsNotExpected, param, item, sentence, context);
  if (item.number == 0 && units.empty()) finding.expected.value = std::string(quantity.numberText);
  finding.expected.units = std::move(units);
  return false;
}

}  // namespace

void UnitJudge::judgeParam(JudgedParam const& param, ReviewContext& context) {
  if (!TDFParam::isNumericType(param.info.getType())) return;
  bool const hasType = param.declaration.quantityType != nullptr;
  QuantityType const* const type = quantityTypeOf(param, context);
  // A type that the rules do not know says nothing about units.
  if (hasType && type == nullptr) return;
  forEachItem(param, [&](JudgedItem const& item) {
    auto const quantity = TDFParam::asQuantity(item.text);
    if (!quantity) return true;
    if (type != nullptr) return fits(param, item, *quantity, *type, context);
    return quantity->units.empty() || isExpected(param, item, *quantity, context);
  });
}

}  // namespace tarn::session
