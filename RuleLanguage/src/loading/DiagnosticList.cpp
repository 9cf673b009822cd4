#include "loading/DiagnosticList.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <tuple>

namespace tarn::rules {

namespace {

/// A line of more bytes is kept in part, so many characters before and behind the place: a minified file can be one
/// line of megabytes.
constexpr std::size_t keptWhole = 2000;
constexpr std::size_t keptAround = 200;

/// Fills what a diagnostic or a note shows of the source.
template <typename Shown>
void keepLine(Shown& shown, SourceText const& source, Place place) {
  std::string_view line = source.line(place.line);
  if (line.size() > keptWhole) {
    if (place.column > keptAround) {
      shown.sourceColumn = place.column - keptAround;
      line.remove_prefix(source.offsetOf({place.line, shown.sourceColumn}) - source.offsetOf({place.line, 1}));
    }
    line = line.substr(0, characterOffset(line, 2 * keptAround));
  }
  shown.sourceLine = line;
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
  keepLine(diagnostic, source, place);
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
  Diagnostic::Note note;
  note.source = source.name();
  note.line = place.line;
  note.column = place.column;
  note.message = std::move(message);
  note.length = std::max<std::size_t>(length, 1);
  keepLine(note, source, place);
  diagnostic.notes.push_back(std::move(note));
}

std::vector<Diagnostic> DiagnosticList::take(std::vector<std::string> const& files, bool warnings) {
  std::map<std::string, std::size_t> order;
  for (auto const& file : files) order.try_emplace(file, order.size());
  auto const key = [&](Diagnostic const& one) {
    auto const found = order.find(one.source);
    return std::make_tuple(found == order.end() ? order.size() : found->second, one.line, one.column);
  };
  // A part that aliases bring in several times is read several times; what is told of it is kept once.
  std::set<std::tuple<std::string_view, std::size_t, std::size_t, std::string_view>> told;
  if (!warnings) std::erase_if(list_, [](Diagnostic const& one) { return one.severity == Severity::Warning; });
  std::stable_sort(list_.begin(), list_.end(), [&](auto const& a, auto const& b) { return key(a) < key(b); });
  std::vector<Diagnostic> result;
  result.reserve(list_.size() + 1);  // the views into it must not move
  for (auto& one : list_) {
    if (told.contains({one.source, one.line, one.column, one.message})) continue;
    result.push_back(std::move(one));
    told.emplace(result.back().source, result.back().line, result.back().column, result.back().message);
  }
  if (errors_ > limit_ && !result.empty()) {
    Diagnostic last;
    last.source = result.back().source;
    last.line = 0;
    last.column = 0;
    last.message = "there are " + std::to_string(errors_) + " errors, of which the first " + std::to_string(limit_) +
                   " found are shown";
    result.push_back(std::move(last));
  }
  list_.clear();
  return result;
}

}  // namespace tarn::rules
