#pragma once

#include <string_view>

/// The keys of rules that are counted, beside those of `RuleAttributes`.
namespace tarn::workbench::attributes {

/// An entry as a whole.
inline constexpr std::string_view entry = "Available";
inline constexpr std::string_view context = "Context";
inline constexpr std::string_view minimumCount = "Minimum Count";
inline constexpr std::string_view maximumCount = "Maximum Count";
inline constexpr std::string_view allowedNames = "Allowed Names";
inline constexpr std::string_view defaultNames = "Default Names";
inline constexpr std::string_view check = "Check";
inline constexpr std::string_view when = "When";
inline constexpr std::string_view message = "Message";

}  // namespace tarn::workbench::attributes
