// Any bytes as a rule file: they are loaded, or refused with diagnostics. The places of the diagnostics lie in the
// text, and the diagnostics can be printed. The limits are low, so that input exceeds them quickly.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include <tarn/rules/RuleLoader.h>

namespace {

// Beside carriage return and line feed, YAML ends lines at three characters of Unicode.
std::size_t mostLines(std::string_view text) {
  std::size_t lines = 1;
  for (std::string_view const end : {"\n", "\r", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"}) {
    for (auto at = text.find(end); at != std::string_view::npos; at = text.find(end, at + end.size())) ++lines;
  }
  return lines;
}

}  // namespace

/// Whether a range is empty or forward.
template <typename Ranged>
static bool endsAfterItBegins(Ranged const& one) {
  return one.line < one.endLine || (one.line == one.endLine && one.column <= one.endColumn);
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  std::string const text(reinterpret_cast<char const*>(data), size);
  tarn::rules::LoadLimits limits;
  limits.yamlNodes = 10'000;
  limits.expressionLength = 2'000;
  limits.expressionDepth = 40;
  limits.errors = 50;

  auto const lines = mostLines(text);
  auto const found = tarn::rules::lintText(text, "fuzz", limits);
  bool errors = false;
  for (auto const& diagnostic : found.diagnostics) {
    errors = errors || preventsLoading(diagnostic);
    // Only the count that follows too many errors has no place.
    bool const hasPlace = diagnostic.line >= 1 && diagnostic.line <= lines + 1 && diagnostic.column >= 1;
    bool const isCount = &diagnostic == &found.diagnostics.back() && found.diagnostics.size() > limits.errors;
    if (!hasPlace && !isCount) std::abort();
    if (!endsAfterItBegins(diagnostic) || diagnostic.endLine > lines + 1 || diagnostic.code.empty()) std::abort();
    if (diagnostic.fix && !endsAfterItBegins(*diagnostic.fix)) std::abort();
    if (format(diagnostic).empty()) std::abort();
  }
  try {
    auto const rules = tarn::rules::parseRules(text, "fuzz", limits);
    if (errors || !rules) std::abort();
  } catch (tarn::rules::RuleError const& error) {
    if (!errors || error.diagnostics().empty()) std::abort();
  }
  return 0;
}
