#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/StringUtilities.h>
#include <tarn/TDFParam.h>

#include "review/ReviewJudge.h"

// Shared by the judges of values: the items of a value, what the rules say about them, and the sentence.

namespace tarn::session {

/// A value, or one item of a list.
struct JudgedItem {
  /// Without white space at the ends, unless it is the value of a String.
  std::string_view text;
  /// From 1 in a list, 0 for a value that is not a list.
  std::size_t number = 0;
};

/// Calls `judge` with the value, or with each item of a list, until it returns false.
template <typename Judge>
void forEachItem(JudgedParam const& param, Judge judge) {
  if (!param.info.isListType()) {
    bool const isText = param.info.getType() == TDFParam::String;
    (void)judge(JudgedItem{isText ? std::string_view(param.value) : StringUtilities::trimmed(param.value), 0});
    return;
  }
  std::size_t number = 0;
  for (std::string const& item : StringUtilities::stringToVector(param.value, ',')) {
    if (!judge(JudgedItem{item, ++number})) return;
  }
}

/// A number as a remedy writes it: with up to 12 digits, which hides what a conversion rounded.
[[nodiscard]] std::string remedyNumber(double number);

/// The units of two bounds and of a default of that type, each once. They are those that a number without a quantity
/// type may have.
[[nodiscard]] std::vector<std::string> unitsOfTexts(std::string const& lowerBound, std::string const& upperBound,
                                                    std::string const& defaultValue, TDFParam::Type type);

/// Whether the text is now among the allowed values of the parameter.
[[nodiscard]] bool isAllowed(JudgedParam const& param, std::string_view text, ReviewContext& context);

/// The quantity type that the parameter has now. Null if it has none, or the rules do not know it.
[[nodiscard]] QuantityType const* quantityTypeOf(JudgedParam const& param, ReviewContext& context);

/// Adds a finding about the item: `The parameter "Speed" in the object "/Case" has the value "12", ` and then `rest`.
/// The reference is valid until the next finding is added.
Finding& reportItem(FindingCode code, JudgedParam const& param, JudgedItem const& item, std::string const& rest,
                    ReviewContext& context);

}  // namespace tarn::session
