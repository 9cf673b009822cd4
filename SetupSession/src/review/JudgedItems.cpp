#include "review/JudgedItems.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace tarn::session {

std::string remedyNumber(double number) {
  constexpr int digits = 12;
  std::array<char, 40> buffer{};
  auto const end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::general, digits).ptr;
  return {buffer.data(), end};
}

std::vector<std::string> unitsOfTexts(std::string const& lowerBound, std::string const& upperBound,
                                      std::string const& defaultValue, TDFParam::Type type) {
  std::vector<std::string> units;
  auto const add = [&units](std::string const& text) {
    auto const quantity = TDFParam::asQuantity(text);
    if (!quantity || quantity->units.empty()) return;
    if (std::find(units.begin(), units.end(), quantity->units) == units.end()) units.emplace_back(quantity->units);
  };
  add(lowerBound);
  add(upperBound);
  if (TDFParam::isListType(type)) {
    for (std::string const& item : StringUtilities::stringToVector(defaultValue, ',')) add(item);
  } else {
    add(defaultValue);
  }
  return units;
}

bool isAllowed(JudgedParam const& param, std::string_view text, ReviewContext& context) {
  ParamAllowedValues const& known = param.info.getAllowedValues();
  if (known.hasAllowedValues) return known.allowedValues.contains(text);
  // The walk does not evaluate the allowed values of a parameter that is not available.
  if (param.info.isAvailable()) return false;
  return param.declaration
      .evaluateAllowedValues(context.rules.getRules(), TDFContext(param.info.getObjPath()), &context.evaluation)
      .allowedValues.contains(text);
}

QuantityType const* quantityTypeOf(JudgedParam const& param, ReviewContext& context) {
  if (!param.declaration.quantityType) return nullptr;
  return context.rules.findQuantityType(param.declaration.evaluateQuantityType(
      context.rules.getRules(), TDFContext(param.info.getObjPath()), &context.evaluation));
}

Finding& reportItem(FindingCode code, JudgedParam const& param, JudgedItem const& item, std::string const& rest,
                    ReviewContext& context) {
  bool const isInList = item.number != 0;
  std::string message = isInList ? "The list parameter \"" : "The parameter \"";
  message += param.info.getName() + "\" in the object \"" + param.info.getObjPath() + "\" has ";
  if (isInList) message += "as item " + std::to_string(item.number) + ' ';
  message += "the value " + shown(item.text) + rest;

  Finding finding = makeFinding(code, param.info.getObjPath(), std::move(message));
  finding.name = param.info.getName();
  finding.value = param.value;
  finding.rule = param.entry.rulePlace;
  if (isInList) finding.wrong = {std::string(item.text)};
  return context.findings.emplace_back(std::move(finding));
}

}  // namespace tarn::session
