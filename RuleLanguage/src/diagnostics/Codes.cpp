#include "diagnostics/Codes.h"

#include <algorithm>

namespace tarn::rules {

namespace {

constexpr auto publicRows = [] {
  std::array<DiagnosticCode, codeTable.size()> rows{};
  for (std::size_t i = 0; i < rows.size(); ++i) {
    rows[i] = codeTable[i].info;
    rows[i].isOfLint = codeTable[i].code >= firstLintCode;
  }
  return rows;
}();

}  // namespace

std::span<DiagnosticCode const> diagnosticCodes() noexcept {
  return publicRows;
}

std::string_view severityName(Severity severity) noexcept {
  switch (severity) {
    case Severity::Error:
      return "error";
    case Severity::Warning:
      return "warning";
    case Severity::Note:
      return "note";
  }
  return "";
}

DiagnosticCode const* findCode(std::string_view name) noexcept {
  auto const row =
      std::find_if(publicRows.begin(), publicRows.end(), [&](DiagnosticCode const& one) { return one.name == name; });
  return row == publicRows.end() ? nullptr : &*row;
}

bool preventsLoading(Diagnostic const& diagnostic) noexcept {
  if (diagnostic.severity != Severity::Error) return false;
  auto const* code = findCode(diagnostic.code);
  return code == nullptr || !code->isOfLint;
}

}  // namespace tarn::rules
