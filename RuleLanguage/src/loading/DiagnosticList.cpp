#include "loading/DiagnosticList.h"

#include <algorithm>
#include <map>
#include <tuple>

namespace tarn::rules {

namespace {

/// What is kept of a source line for display: a minified file can be one line of megabytes.
constexpr std::size_t keptLineLength = 2000;

std::string shownLine(SourceText const& source, std::size_t line) {
  return std::string(source.line(line).substr(0, keptLineLength));
}

}  // namespace

Diagnostic& DiagnosticList::add(Severity severity, SourceText const& source, Place place, std::size_t length,
                                std::string message) {
  if (severity == Severity::Error && ++errors_ > limit_) return surplus_;
  Diagnostic diagnostic;
  diagnostic.source = source.name();
  diagnostic.line = place.line;
  diagnostic.column = place.column;
  diagnostic.severity = severity;
  diagnostic.message = std::move(message);
  diagnostic.sourceLine = shownLine(source, place.line);
  diagnostic.length = std::max<std::size_t>(length, 1);
  list_.push_back(std::move(diagnostic));
  return list_.back();
}

void DiagnosticList::addAboutFile(std::string const& name, std::string message) {
  ++errors_;
  Diagnostic diagnostic;
  diagnostic.source = name;
  diagnostic.line = 0;
  diagnostic.column = 0;
  diagnostic.message = std::move(message);
  list_.push_back(std::move(diagnostic));
}

void DiagnosticList::note(Diagnostic& diagnostic, SourceText const& source, Place place, std::size_t length,
                          std::string message) {
  diagnostic.notes.push_back({source.name(), place.line, place.column, std::move(message),
                              shownLine(source, place.line), std::max<std::size_t>(length, 1)});
}

std::vector<Diagnostic> DiagnosticList::take(std::vector<std::string> const& files, bool warnings) {
  std::map<std::string, std::size_t> order;
  for (auto const& file : files) order.try_emplace(file, order.size());
  auto const key = [&](Diagnostic const& one) {
    auto const found = order.find(one.source);
    return std::make_tuple(found == order.end() ? order.size() : found->second, one.line, one.column);
  };
  auto const isSame = [](Diagnostic const& a, Diagnostic const& b) {
    return a.source == b.source && a.line == b.line && a.column == b.column && a.message == b.message;
  };
  if (!warnings) std::erase_if(list_, [](Diagnostic const& one) { return one.severity == Severity::Warning; });
  std::stable_sort(list_.begin(), list_.end(), [&](auto const& a, auto const& b) { return key(a) < key(b); });
  // A part that aliases bring in several times is read several times.
  list_.erase(std::unique(list_.begin(), list_.end(), isSame), list_.end());
  if (errors_ > limit_ && !list_.empty()) {
    Diagnostic last;
    last.source = list_.back().source;
    last.line = 0;
    last.column = 0;
    last.message = "there are " + std::to_string(errors_) + " errors, of which the first " + std::to_string(limit_) +
                   " found are shown";
    list_.push_back(std::move(last));
  }
  return std::move(list_);
}

}  // namespace tarn::rules
