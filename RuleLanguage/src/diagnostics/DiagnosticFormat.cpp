// Turns diagnostics into text. Nothing else does.

#include <algorithm>

#include <tarn/rules/Diagnostic.h>
#include <tarn/rules/RuleError.h>

#include <ostream>

#include "diagnostics/SourceText.h"

namespace tarn::rules {

namespace {

/// How many characters of a long line are shown: before the problem, and at all.
constexpr std::size_t shownBefore = 60;
constexpr std::size_t shownAtMost = 120;

/// The text with blanks instead of control characters, which would move the marks or change the terminal.
std::string printable(std::string_view text) {
  std::string result(text);
  for (auto& c : result) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = ' ';
  }
  return result;
}

/// Appends a diagnostic or one of its notes.
template <typename Shown>
void appendPlace(std::string& out, Shown const& one, std::string_view label) {
  out += printable(one.source);
  if (one.line > 0) out += ":" + std::to_string(one.line) + ":" + std::to_string(one.column);
  out += ": ";
  out += label;
  out += ": ";
  out += printable(one.message);
  out += '\n';
  if (one.line == 0) return;

  std::size_t const total = characterCount(one.sourceLine);
  std::size_t const at = std::min(one.column - one.sourceColumn, total);
  std::size_t first = 0;
  std::string lead;
  if (total > shownAtMost && at > shownBefore) {
    first = at - shownBefore;
    lead = "...";
  }
  std::size_t const count = std::min(shownAtMost, total - first);
  std::size_t const begin = characterOffset(one.sourceLine, first);
  std::size_t const end = characterOffset(one.sourceLine, first + count);
  std::string shown = lead + printable(std::string_view(one.sourceLine).substr(begin, end - begin));
  if (first + count < total) shown += "...";

  std::string const number = std::to_string(one.line);
  std::string const margin(std::max<std::size_t>(5, number.size()) - number.size(), ' ');
  out += margin + number + " | " + shown + '\n';
  std::size_t const length = one.endLine == one.line && one.endColumn > one.column ? one.endColumn - one.column : 1;
  std::size_t const marked = std::max<std::size_t>(1, std::min(length, count - std::min(count, at - first)));
  out += std::string(margin.size() + number.size(), ' ') + " | " + std::string(lead.size() + at - first, ' ') + '^' +
         std::string(marked - 1, '~') + '\n';
}

}  // namespace

std::string format(Diagnostic const& diagnostic) {
  std::string out;
  appendPlace(out, diagnostic, severityName(diagnostic.severity));
  for (auto const& note : diagnostic.notes) appendPlace(out, note, "note");
  return out;
}

std::string format(std::vector<Diagnostic> const& diagnostics) {
  std::string out;
  for (auto const& diagnostic : diagnostics) out += format(diagnostic);
  return out;
}

RuleError::RuleError(std::vector<Diagnostic> diagnostics)
    : Error("tarn::rules::RuleError", "RuleLoader", "loadRules", format(diagnostics), errorType::InvalidInput, 0),
      diagnostics_(std::move(diagnostics)) {}

void RuleError::write(std::ostream& stream) const {
  std::string text = getMessage();
  if (!text.empty() && text.back() == '\n') text.pop_back();
  stream << text;
}

}  // namespace tarn::rules
