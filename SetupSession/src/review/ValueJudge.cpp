// Judges values by type and bounds. A rule is evaluated only as far as its value requires: the bounds for a number, the
// allowed values for a text that is not a number.
#include "review/ValueJudge.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include <tarn/StringUtilities.h>
#include <tarn/TDFParam.h>

namespace tarn::session {

namespace {

// The corrected text of a number whose units lack their brackets: "12 [m]" for "12 m". Otherwise empty.
std::string withBrackets(std::string_view text) {
  std::size_t const blank = text.find(' ');
  if (blank == std::string_view::npos || text.find_first_of("[],") != std::string_view::npos) return {};
  if (!TDFParam::asNumber(text.substr(0, blank))) return {};
  std::string_view const units = StringUtilities::trimmed(text.substr(blank));
  return std::string(text.substr(0, blank)) + " [" + std::string(units) + ']';
}

// The fault of a value, or of an item of a list.
struct Fault {
  FindingCode code;
  std::string sentence;        // the end of "... has the value 5, which ..."
  std::string corrected = {};  // a text that can replace the item
  bool isAboutBounds = false;
};

Fault notANumber(std::string_view text) {
  std::string corrected = withBrackets(text);
  if (corrected.empty()) return {FindingCode::NotANumber, "is not a number"};
  return {FindingCode::NotANumber, "is not a number; units are written in brackets: " + shown(corrected),
          std::move(corrected)};
}

// The fault of the quantity under these bounds.
std::optional<Fault> outOfBounds(TDFParam::Quantity const& quantity,
                                 std::pair<std::string, std::string> const& bounds) {
  auto const comparable = [&quantity](std::string const& bound) -> std::optional<double> {
    if (bound.empty()) return std::nullopt;
    auto const parsed = TDFParam::asQuantity(bound);
    if (!parsed || parsed->units != quantity.units) return std::nullopt;
    return parsed->number;
  };
  if (auto const lower = comparable(bounds.first); lower && quantity.number < *lower) {
    return Fault{FindingCode::BelowLowerBound, "is below its lower bound " + bounds.first, {}, true};
  }
  if (auto const upper = comparable(bounds.second); upper && quantity.number > *upper) {
    return Fault{FindingCode::AboveUpperBound, "is above its upper bound " + bounds.second, {}, true};
  }
  return std::nullopt;
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

// The fault of a value, or of an item of a list, of element type `type`.
std::optional<Fault> faultOf(JudgedParam const& param, std::string_view text, TDFParam::Type type,
                             ReviewContext& context) {
  if (type == TDFParam::Logical) {
    if (TDFParam::asLogical(text) || isAllowed(param, text, context)) return std::nullopt;
    return Fault{FindingCode::NotALogical, "is not a logical value such as true or false"};
  }
  auto const quantity = TDFParam::asQuantity(text);
  if (!quantity) {
    if (isAllowed(param, text, context)) return std::nullopt;
    return notANumber(text);
  }
  if (type == TDFParam::Integer && std::trunc(quantity->number) != quantity->number) {
    if (isAllowed(param, text, context)) return std::nullopt;
    return Fault{FindingCode::NotAWholeNumber, "is not a whole number"};
  }
  return outOfBounds(*quantity, param.info.getBounds());
}

// `number` is the number of the item in a list, and 0 for a value that is not a list.
void report(JudgedParam const& param, std::string_view text, std::size_t number, Fault fault, ReviewContext& context) {
  std::string const item = number == 0 ? "" : "as item " + std::to_string(number) + ' ';
  Finding finding = makeFinding(fault.code, param.info.getObjPath(),
                                (number == 0 ? "The parameter \"" : "The list parameter \"") + param.info.getName() +
                                    "\" in the object \"" + param.info.getObjPath() + "\" has " + item + "the value " +
                                    shown(text) + ", which " + fault.sentence + '.');
  finding.name = param.info.getName();
  finding.value = param.value;
  finding.rule = param.entry.rulePlace;
  if (fault.isAboutBounds) {
    auto const& [lower, upper] = param.info.getBounds();
    if (!lower.empty()) finding.expected.lowerBound = lower;
    if (!upper.empty()) finding.expected.upperBound = upper;
  }
  if (number != 0) finding.wrong = {std::string(text)};
  if (number == 0 && !fault.corrected.empty()) finding.expected.value = std::move(fault.corrected);
  context.findings.push_back(std::move(finding));
}

}  // namespace

void ValueJudge::judgeParam(JudgedParam const& param, ReviewContext& context) {
  TDFParam::Type const type = TDFParam::elementType(param.info.getType());
  if (type == TDFParam::String) return;
  if (!param.info.isListType()) {
    auto fault = faultOf(param, StringUtilities::trimmed(param.value), type, context);
    if (fault) report(param, param.value, 0, std::move(*fault), context);
    return;
  }
  std::size_t number = 0;
  for (std::string const& item : StringUtilities::stringToVector(param.value, ',')) {
    ++number;
    auto fault = faultOf(param, item, type, context);
    if (!fault) continue;
    report(param, item, number, std::move(*fault), context);
    return;
  }
}

}  // namespace tarn::session
