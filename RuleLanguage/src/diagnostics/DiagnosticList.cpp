#include "diagnostics/DiagnosticList.h"

#include <algorithm>
#include <string_view>
#include <tuple>
#include <utility>

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
  lastIsSurplus_ = info.severity == Severity::Error && ++errors_ > limit_;
  if (lastIsSurplus_) return surplus_ = {};
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

void DiagnosticList::setCause(std::string cause) {
  if (!lastIsSurplus_) causes_[list_.size() - 1] = std::move(cause);
}

std::size_t DiagnosticList::removeIf(std::function<bool(Diagnostic const&)> const& isAccepted) {
  std::size_t kept = 0;
  std::unordered_map<std::size_t, std::string> causes;
  for (std::size_t i = 0; i < list_.size(); ++i) {
    if (isAccepted(list_[i])) {
      if (list_[i].severity == Severity::Error) --errors_;
      continue;
    }
    if (auto const cause = causes_.find(i); cause != causes_.end()) causes.emplace(kept, std::move(cause->second));
    if (kept != i) list_[kept] = std::move(list_[i]);
    ++kept;
  }
  std::size_t const removed = list_.size() - kept;
  list_.resize(kept);
  causes_ = std::move(causes);
  return removed;
}

void DiagnosticList::setSeverities(Severities const& severities) {
  removeIf([&](Diagnostic const& one) {
    auto const set = severities.find(one.code);
    if (set != severities.end()) return !set->second;
    auto const* code = findCode(one.code);
    return code != nullptr && code->isOffByDefault;
  });
  for (auto& one : list_) {
    if (auto const set = severities.find(one.code); set != severities.end()) one.severity = *set->second;
  }
}

namespace {

/// So many further places are shown with a diagnostic that affects many.
constexpr std::size_t shownPlaces = 3;

/// Says in the message of `first` how many places it affects.
void addNumber(Diagnostic& first) {
  if (first.affected > 1) first.message += "; this affects " + std::to_string(first.affected) + " places";
}

/// Adds `other`, which has the same cause, to `first`. `others` is the number of further places that `first` shows.
void merge(Diagnostic& first, Diagnostic const& other, std::size_t& others) {
  ++first.affected;
  bool const isElsewhere = other.source != first.source || other.line != first.line || other.column != first.column;
  if (!isElsewhere || others >= shownPlaces) return;
  ++others;
  first.notes.push_back({other.source, other.line, other.column, other.endLine, other.endColumn, "it is also here",
                         other.sourceLine, other.sourceColumn});
}

bool hasNote(Diagnostic const& diagnostic, Diagnostic::Note const& note) {
  return std::any_of(diagnostic.notes.begin(), diagnostic.notes.end(), [&](Diagnostic::Note const& other) {
    return other.source == note.source && other.line == note.line && other.column == note.column &&
           other.message == note.message;
  });
}

}  // namespace

std::vector<Diagnostic> DiagnosticList::take(std::vector<std::string> const& files, bool warnings) {
  std::map<std::string, std::size_t> order;
  for (auto const& file : files) order.try_emplace(file, order.size());
  if (!warnings) removeIf([](Diagnostic const& one) { return one.severity != Severity::Error; });

  using Key = std::tuple<std::size_t, std::size_t, std::size_t, std::size_t>;
  std::vector<Key> keys;
  keys.reserve(list_.size());
  for (std::size_t i = 0; i < list_.size(); ++i) {
    auto const found = order.find(list_[i].source);
    keys.emplace_back(found == order.end() ? order.size() : found->second, list_[i].line, list_[i].column, i);
  }
  std::sort(keys.begin(), keys.end());

  std::vector<Diagnostic> result;
  result.reserve(list_.size() + 1);
  struct Known {
    std::size_t index;
    std::size_t others = 0;
  };
  std::unordered_map<std::string, Known> byCause;  // code and cause
  // Diagnostics without a cause: those at one position follow each other.
  std::unordered_map<std::string, std::size_t> here;
  Key lastPlace{};
  for (auto const& key : keys) {
    auto& one = list_[std::get<3>(key)];
    if (auto const cause = causes_.find(std::get<3>(key)); cause != causes_.end()) {
      auto const [known, isNew] = byCause.try_emplace(one.code + '\n' + cause->second, Known{result.size()});
      if (isNew) {
        result.push_back(std::move(one));
      } else {
        merge(result[known->second.index], one, known->second.others);
      }
      continue;
    }
    Key place = key;
    std::get<3>(place) = 0;
    if (place != lastPlace) here.clear();
    lastPlace = place;
    auto const [known, isNew] = here.try_emplace(one.message, result.size());
    if (isNew) {
      result.push_back(std::move(one));
    } else {
      // The same in an entry that several objects take from a template: the notes say which objects.
      auto& first = result[known->second];
      ++first.affected;
      for (auto& note : one.notes) {
        if (first.notes.size() < shownPlaces && !hasNote(first, note)) first.notes.push_back(std::move(note));
      }
    }
  }
  for (auto& one : result) {
    if (!preventsLoading(one)) addNumber(one);
  }
  if (errors_ > limit_ && !result.empty()) {
    auto last = aboutFile(Code::TooManyErrors, result.back().source,
                          "there are " + std::to_string(errors_) + " errors; only the first " + std::to_string(limit_) +
                              " found are shown");
    result.push_back(std::move(last));
  }
  list_.clear();
  causes_.clear();
  return result;
}

}  // namespace tarn::rules
