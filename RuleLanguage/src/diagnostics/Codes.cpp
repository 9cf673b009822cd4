#include "diagnostics/Codes.h"

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

bool preventsLoading(Diagnostic const& diagnostic) noexcept {
  if (diagnostic.severity != Severity::Error) return false;
  auto const* code = findCode(diagnostic.code);
  return code == nullptr || !code->isOfLint;
}

}  // namespace tarn::rules
