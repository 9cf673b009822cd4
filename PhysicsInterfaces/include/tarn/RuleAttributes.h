#pragma once

#include <string_view>

/// The keys of a parameter's rule, and the names of parameter types, as rule files write them.
namespace tarn::RuleAttributes {

inline constexpr std::string_view parameterType = "Parameter Type";
inline constexpr std::string_view integer = "Integer";
inline constexpr std::string_view integerList = "Integer List";
inline constexpr std::string_view logical = "Logical";
inline constexpr std::string_view logicalList = "Logical List";
inline constexpr std::string_view real = "Real";
inline constexpr std::string_view realList = "Real List";
inline constexpr std::string_view string = "String";
inline constexpr std::string_view stringList = "String List";
inline constexpr std::string_view orderedAllowedStringList = "Ordered Allowed String List";
inline constexpr std::string_view subsetAllowedStringList = "Subset Allowed String List";
inline constexpr std::string_view unusedAllowedStringList = "Unused Allowed String List";
inline constexpr std::string_view allowedStringListChecks = "Allowed String List Checks";
inline constexpr std::string_view valueListSource = "Value List Source";
inline constexpr std::string_view subsetValueListSource = "Subset Value List Source";
inline constexpr std::string_view availableWithNoAllowedValues = "Available With No Allowed Values";
inline constexpr std::string_view defaultValue = "Default Value";
inline constexpr std::string_view defaultValueCheckList = "Default Value Check List";
inline constexpr std::string_view fallbackToBlankDefault = "Fallback To Blank Default";
inline constexpr std::string_view valueOverrideCheckList = "Value Override Check List";
inline constexpr std::string_view lowerBound = "Lower Bound";
inline constexpr std::string_view upperBound = "Upper Bound";
inline constexpr std::string_view lowerBoundExcluded = "Lower Bound Excluded";
inline constexpr std::string_view upperBoundExcluded = "Upper Bound Excluded";
inline constexpr std::string_view pattern = "Pattern";
inline constexpr std::string_view patternMessage = "Pattern Message";
inline constexpr std::string_view quantityType = "Quantity Type";
inline constexpr std::string_view completeListRequired = "Complete List Required";
inline constexpr std::string_view group = "Group";
inline constexpr std::string_view label = "Label";
inline constexpr std::string_view advanced = "Advanced";
inline constexpr std::string_view deprecated = "Deprecated";
inline constexpr std::string_view renamedFrom = "Renamed From";
inline constexpr std::string_view renameMessage = "Rename Message";

}  // namespace tarn::RuleAttributes
