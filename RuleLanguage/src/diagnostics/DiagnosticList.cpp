#include "diagnostics/DiagnosticList.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <tuple>

namespace tarn::rules {

namespace {

/// A line with more bytes than `keptWhole` is shortened to `keptAround` characters before and after the position: a
/// minified file can be one line of megabytes.
constexpr std::size_t keptWhole = 2000;
constexpr std::size_t keptAround = 200;

template <typename Ranged>
void setRange(Ranged& one, SourceRange const& range) {
  one.line = range.begin.line;
  one.column = range.begin.column;
  one.endLine = range.end.line;
  one.endColumn = range.end.column;
}

/// Fills what a diagnostic and a note have in common.
template <typename Shown>
void fill(Shown& shown, SourceText const& source, SourceRange const& range) {
  Place const place = range.begin;
  shown.source = source.name();
  setRange(shown, range);
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

Diagnostic aboutFile(Code code, std::string const& name, std::string message) {
  Diagnostic diagnostic;
  diagnostic.source = name;
  setRange(diagnostic, {{0, 0}, {0, 0}});
  diagnostic.severity = infoOf(code).severity;
  diagnostic.code = infoOf(code).name;
  diagnostic.message = std::move(message);
  return diagnostic;
}

}  // namespace

Diagnostic& DiagnosticList::add(Code code, SourceText const& source, SourceRange const& range, std::string message) {
  auto const& info = infoOf(code);
  if (info.severity == Severity::Error && ++errors_ > limit_) return surplus_ = {};
  Diagnostic diagnostic;
  diagnostic.severity = info.severity;
  diagnostic.code = info.name;
  diagnostic.message = std::move(message);
  fill(diagnostic, source, range);
  list_.push_back(std::move(diagnostic));
  return list_.back();
}

void DiagnosticList::addAboutFile(Code code, std::string const& name, std::string message) {
  ++errors_;
  list_.push_back(aboutFile(code, name, std::move(message)));
}

void DiagnosticList::note(Diagnostic& diagnostic, SourceText const& source, SourceRange const& range,
                          std::string message) {
  auto& note = diagnostic.notes.emplace_back();
  note.message = std::move(message);
  fill(note, source, range);
}

void DiagnosticList::fix(Diagnostic& diagnostic, SourceText const& source, SourceRange const& range, std::string text,
                         std::string title) {
  auto& fix = diagnostic.fix.emplace();
  fix.title = std::move(title);
  fix.source = source.name();
  setRange(fix, range);
  fix.text = std::move(text);
}

std::vector<Diagnostic> DiagnosticList::take(std::vector<std::string> const& files, bool warnings) {
  std::map<std::string, std::size_t> order;
  for (auto const& file : files) order.try_emplace(file, order.size());
  auto const key = [&](Diagnostic const& one) {
    auto const found = order.find(one.source);
    return std::make_tuple(found == order.end() ? order.size() : found->second, one.line, one.column);
  };
  // A part that several aliases refer to is read several times. Its diagnostics are kept once.
  std::set<std::tuple<std::string_view, std::size_t, std::size_t, std::string_view>> told;
  if (!warnings) std::erase_if(list_, [](Diagnostic const& one) { return one.severity != Severity::Error; });
  std::stable_sort(list_.begin(), list_.end(), [&](auto const& a, auto const& b) { return key(a) < key(b); });
  std::vector<Diagnostic> result;
  result.reserve(list_.size() + 1);  // the views into its elements must stay valid
  for (auto& one : list_) {
    if (told.contains({one.source, one.line, one.column, one.message})) continue;
    result.push_back(std::move(one));
    told.emplace(result.back().source, result.back().line, result.back().column, result.back().message);
  }
  if (errors_ > limit_ && !result.empty()) {
    auto last = aboutFile(Code::TooManyErrors, result.back().source,
                          "there are " + std::to_string(errors_) + " errors; only the first " + std::to_string(limit_) +
                              " found are shown");
    result.push_back(std::move(last));
  }
  list_.clear();
  return result;
}

}  // namespace tarn::rules
