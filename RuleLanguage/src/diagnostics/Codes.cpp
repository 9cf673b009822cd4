#include "diagnostics/Codes.h"

namespace tarn::rules {

namespace {

constexpr auto publicRows = [] {
  std::array<DiagnosticCode, codeTable.size()> rows{};
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i] = codeTable[i].info;
  return rows;
}();

}  // namespace

std::span<DiagnosticCode const> diagnosticCodes() noexcept {
  return publicRows;
}

}  // namespace tarn::rules
