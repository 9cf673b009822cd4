// Judges values by type and bounds. A rule is evaluated only as far as its value requires: the bounds for a number, the
// allowed values for a text that is not a number.
#include "review/ValueJudge.h"

#include <cmath>
#include <optional>
#include <utility>

#include <tarn/TDFParam.h>

#include "review/BoundsCheck.h"
#include "review/JudgedItems.h"

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

// The fault of the quantity under the bounds of its parameter.
std::optional<Fault> outOfBounds(TDFParam::Quantity const& quantity, JudgedParam const& param, ReviewContext& context) {
  auto const& [lower, upper] = param.info.getBounds();
  if (lower.empty() && upper.empty()) return std::nullopt;
  Bounds const bounds = {lower, upper, param.declaration.lowerBoundExcluded, param.declaration.upperBoundExcluded};
  auto fault = faultOfBounds(quantity, bounds, quantityTypeOf(param, context));
  if (!fault) return std::nullopt;
  return Fault{fault->code, std::move(fault->sentence), {}, true};
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
  return outOfBounds(*quantity, param, context);
}

}  // namespace

void ValueJudge::judgeParam(JudgedParam const& param, ReviewContext& context) {
  TDFParam::Type const type = TDFParam::elementType(param.info.getType());
  if (type == TDFParam::String) return;
  forEachItem(param, [&](JudgedItem const& item) {
    auto fault = faultOf(param, item.text, type, context);
    if (!fault) return true;
    Finding& finding = reportItem(fault->code, param, item, ", which " + fault->sentence + '.', context);
    if (fault->isAboutBounds) {
      auto const& [lower, upper] = param.info.getBounds();
      if (!lower.empty()) finding.expected.lowerBound = lower;
      if (!upper.empty()) finding.expected.upperBound = upper;
      finding.expected.lowerBoundExcluded = !lower.empty() && param.declaration.lowerBoundExcluded;
      finding.expected.upperBoundExcluded = !upper.empty() && param.declaration.upperBoundExcluded;
    }
    if (item.number == 0 && !fault->corrected.empty()) finding.expected.value = std::move(fault->corrected);
    return false;
  });
}

}  // namespace tarn::session
