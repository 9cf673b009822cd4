#include "RuleLanguage/DiagnosticCases.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <utility>

#include <tarn/rules/RuleLoader.h>

namespace tarn::rules::test {

namespace {

constexpr std::string_view mark = "#!";
constexpr std::string_view caseMark = "#! case ";

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    auto const end = text.find('\n');
    lines.emplace_back(text.substr(0, end));
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
  }
  return lines;
}

/// Where something is, seen from line `from`.
template <typename Ranged>
std::string columns(Ranged const& one, std::size_t from) {
  auto const lineFrom = [](std::size_t line, std::size_t base) {
    return (line >= base ? "+" + std::to_string(line - base) : "-" + std::to_string(base - line)) + ":";
  };
  std::string text = one.line == from ? "" : lineFrom(one.line, from);
  text += std::to_string(one.column);
  if (one.endLine != one.line) return text + "-" + lineFrom(one.endLine, one.line) + std::to_string(one.endColumn - 1);
  return one.endColumn == one.column ? text : text + "-" + std::to_string(one.endColumn - 1);
}

/// One diagnostic with its notes and its fix, each in a line.
std::string expectation(Diagnostic const& one) {
  std::string text(mark);
  text += ' ' + std::string(severityName(one.severity)) + ' ';
  text += one.line == 0 ? "file" : columns(one, one.line);
  text += " " + one.code + ": " + one.message + "\n";
  for (auto const& note : one.notes) {
    text.append(mark).append("   note ").append(columns(note, one.line)).append(" ").append(note.message).append("\n");
  }
  if (one.fix) {
    std::string shown = one.fix->text;
    for (std::size_t at; (at = shown.find('\n')) != std::string::npos;) shown.replace(at, 1, "\\n");
    text.append(mark).append("   fix ").append(columns(*one.fix, one.line)).append(" ").append(shown);
    text.append(": ").append(one.fix->title).append("\n");
  }
  return text;
}

/// The byte at a position of the text.
std::size_t offsetOf(std::string const& text, std::size_t line, std::size_t column) {
  std::size_t at = 0;
  for (; line > 1; --line) at = text.find('\n', at) + 1;
  auto const isContinuation = [&] { return (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80; };
  for (; column > 1; --column) {
    ++at;
    while (at < text.size() && isContinuation()) ++at;
  }
  return at;
}

/// The findings of lint. The cases are short, so most names in them have no use.
std::vector<Diagnostic> diagnosticsOf(std::string const& rules, std::string const& source) {
  LintOptions options;
  options.severities["unused-name"] = std::nullopt;
  return lintText(rules, source, options).diagnostics;
}

/// Faults of the fixes: the changed rules must no longer have that problem there, and no new error.
std::string faultsOfFixes(std::string const& rules, std::vector<Diagnostic> const& diagnostics) {
  auto const errorsIn = [](std::vector<Diagnostic> const& all) {
    return std::count_if(all.begin(), all.end(), [](auto const& one) { return one.severity == Severity::Error; });
  };
  std::string faults;
  for (auto const& one : diagnostics) {
    if (!one.fix) continue;
    auto const& fix = *one.fix;
    std::string fixed = rules;
    std::size_t const begin = offsetOf(fixed, fix.line, fix.column);
    fixed.replace(begin, offsetOf(fixed, fix.endLine, fix.endColumn) - begin, fix.text);
    auto const after = diagnosticsOf(fixed, one.source);
    bool const remains = std::any_of(after.begin(), after.end(), [&](Diagnostic const& other) {
      return other.code == one.code && other.line == one.line && other.message == one.message;
    });
    if (remains) faults += "the fix does not remove its problem: " + format(one);
    if (errorsIn(after) > errorsIn(diagnostics)) faults += "the fix brings a new error: " + format(one) + format(after);
  }
  return faults;
}

std::string errorsOfLoading(std::string const& rules, std::string const& source) {
  try {
    (void)parseRules(rules, source);
  } catch (RuleError const& error) {
    return format(error.diagnostics());
  }
  return {};
}

}  // namespace

DiagnosticCases splitCases(std::string_view file) {
  DiagnosticCases result;
  std::size_t number = 0;
  for (auto const& line : linesOf(file)) {
    ++number;
    if (line.starts_with(caseMark)) {
      result.cases.push_back({line.substr(caseMark.size()), number, {}, {}});
    } else if (result.cases.empty()) {
      result.heading += line + "\n";
    } else {
      auto& one = result.cases.back();
      one.expected += line + "\n";
      if (!line.starts_with(mark)) one.text += line + "\n";
    }
  }
  return result;
}

std::string withDiagnostics(std::string const& rules) {
  std::map<std::size_t, std::string> byLine;
  for (auto const& one : diagnosticsOf(rules, "flow.rules.yaml")) byLine[one.line] += expectation(one);
  std::string text = byLine[0];
  std::size_t number = 0;
  for (auto const& line : linesOf(rules)) text += line + "\n" + byLine[++number];
  // Behind the last line: what is missing at the end of the file.
  for (auto after = byLine.upper_bound(number); after != byLine.end(); ++after) text += after->second;
  return text;
}

std::string faultsOf(DiagnosticCase const& one) {
  std::string faults;
  auto const actual = linesOf(withDiagnostics(one.text));
  auto const expected = linesOf(one.expected);

  // The lines that stay are the same in both, so what lies between two of them belongs to the first.
  std::size_t a = 0;
  std::size_t e = 0;
  std::string at;
  while (a < actual.size() || e < expected.size()) {
    std::vector<std::string> given;
    std::vector<std::string> wanted;
    for (; a < actual.size() && actual[a].starts_with(mark); ++a) given.push_back(actual[a]);
    for (; e < expected.size() && expected[e].starts_with(mark); ++e) wanted.push_back(expected[e]);
    if (given != wanted) {
      faults += "at: " + at + "\n";
      for (auto const& line : wanted) {
        if (std::find(given.begin(), given.end(), line) == given.end()) faults += "  missing:    " + line + "\n";
      }
      for (auto const& line : given) {
        if (std::find(wanted.begin(), wanted.end(), line) == wanted.end()) faults += "  unexpected: " + line + "\n";
      }
      if (std::is_permutation(given.begin(), given.end(), wanted.begin(), wanted.end())) {
        faults += "  in another order\n";
      }
    }
    if (a < actual.size()) at = actual[a];
    ++a;
    ++e;
  }

  std::string const source = "flow.rules.yaml";
  auto diagnostics = diagnosticsOf(one.text, source);
  faults += faultsOfFixes(one.text, diagnostics);
  std::erase_if(diagnostics, [](Diagnostic const& other) { return !preventsLoading(other); });
  if (auto const loading = errorsOfLoading(one.text, source); loading != format(diagnostics)) {
    faults += "loading gives other errors than lint:\n" + loading;
  }
  return faults;
}

}  // namespace tarn::rules::test
