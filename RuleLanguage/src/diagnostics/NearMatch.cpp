#include "diagnostics/NearMatch.h"

namespace tarn::rules {

std::string inQuotes(std::string_view text) {
  return "'" + std::string(text) + "'";
}

std::string didYouMean(std::string_view name) {
  return "; did you mean " + inQuotes(name) + "?";
}

std::string orDidYouMean(std::string_view name) {
  return name.empty() ? std::string{} : didYouMean(name);
}

}  // namespace tarn::rules
