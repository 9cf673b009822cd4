// The files of a rule base that is edited, and what is wrong with them. The other questions are in their own sources.

#include <tarn/workbench/EditedRules.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <set>
#include <utility>

#include <tarn/workbench/RuleTests.h>

#include "diagnostics/SourceText.h"
#include "editing/EditedRulesImpl.h"

namespace tarn::workbench {

namespace {

constexpr std::string_view testSuffix = ".rule-tests.yaml";

/// Lines of a text, found when a diagnostic needs them.
class TextPlaces {
 public:
  explicit TextPlaces(std::vector<rules::RuleText> const& texts) {
    for (auto const& text : texts) texts_.emplace(text.source, &text.text);
  }

  [[nodiscard]] EditorRange range(std::string const& file, std::size_t line, std::size_t column, std::size_t endLine,
                                  std::size_t endColumn) {
    if (line == 0) return {};
    Lines const* const lines = linesOf(file);
    if (lines == nullptr) return {{line - 1, 0}, {line - 1, 0}};
    return {lines->position({line, column}), lines->position({endLine, endColumn})};
  }

 private:
  /// The positions of diagnostics count lines as YAML does, and characters.
  struct Lines {
    explicit Lines(std::string const& given)
        : source("", given), buffer(given), shift(given.size() - source.text().size()) {}
    [[nodiscard]] EditorPosition position(rules::Place place) const {
      return buffer.positionOf(source.offsetOf(place) + shift);
    }
    rules::SourceText source;
    TextBuffer buffer;
    std::size_t shift;  // the byte order mark
  };

  Lines const* linesOf(std::string const& file) {
    auto const found = texts_.find(file);
    if (found == texts_.end()) return nullptr;
    return &lines_.try_emplace(file, *found->second).first->second;
  }

  std::map<std::string, std::string const*> texts_;
  std::map<std::string, Lines> lines_;
};

EditorDiagnostic converted(rules::Diagnostic const& one, TextPlaces& places) {
  EditorDiagnostic result;
  result.range = places.range(one.source, one.line, one.column, one.endLine, one.endColumn);
  result.severity = one.severity;
  result.code = one.code;
  result.message = one.message;
  for (auto const& note : one.notes) {
    auto const range = places.range(note.source, note.line, note.column, note.endLine, note.endColumn);
    result.notes.push_back({{note.source, range}, note.message});
  }
  if (one.fix) {
    auto const& fix = *one.fix;
    auto const range = places.range(fix.source, fix.line, fix.column, fix.endLine, fix.endColumn);
    result.fix = EditorDiagnostic::Fix{fix.title, {fix.source, range, fix.text}};
  }
  return result;
}

bool preventsLoading(EditorDiagnostic const& diagnostic) {
  auto const codes = rules::diagnosticCodes();
  auto const code =
      std::find_if(codes.begin(), codes.end(), [&](auto const& one) { return one.name == diagnostic.code; });
  return diagnostic.severity == rules::Severity::Error && (code == codes.end() || !code->isOfLint);
}

/// Errors that are only certain when all rules are known.
bool needsAllRules(std::string_view code) {
  static constexpr std::array<std::string_view, 4> codes = {"units-of-no-type", "units-of-another-type",
                                                            "ambiguous-units", "template-taken-in-part"};
  return std::find(codes.begin(), codes.end(), code) != codes.end();
}

/// Whether other files may need what is given in this part: names, units, templates.
bool isShared(ReadPart const& part) {
  if (!part.part.context.empty()) return part.part.context.front() != "Objects";
  auto const& definitions = part.facts->definitions;
  bool const hasObjects = std::any_of(definitions.begin(), definitions.end(), [](Definition const& one) {
    return one.kind == EditorItemKind::Parameter || one.kind == EditorItemKind::Child;
  });
  return !hasObjects || std::any_of(definitions.begin(), definitions.end(), [](Definition const& one) {
    return one.kind >= EditorItemKind::GlobalCheck && one.kind <= EditorItemKind::QuantityType;
  });
}

/// The text with line ends in place of everything outside of `spans`, which are in order. Lines keep their numbers.
std::string onlyLines(TextBuffer const& buffer, std::vector<Span> const& spans) {
  std::string text;
  std::size_t line = 0;
  for (Span const& span : spans) {
    std::size_t const first = buffer.positionOf(span.begin).line;
    if (first > line) text.append(first - line, '\n');
    text.append(buffer.text(), span.begin, span.size());
    line = buffer.positionOf(span.end).line;
  }
  return text;
}

}  // namespace

EditorDiagnostics editorDiagnostics(std::vector<rules::RuleText> const& texts,
                                    std::vector<rules::Diagnostic> const& diagnostics) {
  EditorDiagnostics result;
  for (auto const& text : texts) result[text.source];
  TextPlaces places(texts);
  for (auto const& one : diagnostics) result[one.source].push_back(converted(one, places));
  return result;
}

std::pair<std::size_t, std::size_t> linesOf(EditedFile const& file, Span span) {
  return {file.buffer.positionOf(span.begin).line,
          file.buffer.positionOf(span.end > span.begin ? span.end - 1 : 0).line};
}

// The files

EditedFile* EditedRulesImpl::find(std::string const& file) noexcept {
  auto const found = std::find_if(files.begin(), files.end(), [&](auto const& one) { return one->name == file; });
  return found != files.end() ? found->get() : nullptr;
}

void EditedRulesImpl::read(EditedFile& file) const {
  if (file.isRead) return;
  file.parts = readParts(file.buffer.text(), file.isTest, file.parts);
  file.isRead = true;
}

void EditedRulesImpl::readAll() const {
  for (auto const& file : files) read(*file);
}

EditedFile const* EditedRulesImpl::file(std::string const& name) const {
  auto const found = std::find_if(files.begin(), files.end(), [&](auto const& one) { return one->name == name; });
  if (found == files.end()) return nullptr;
  read(**found);
  return found->get();
}

RuleNames const& EditedRulesImpl::names() const {
  if (!names_) {
    readAll();
    names_ = std::make_unique<RuleNames>(files);
  }
  return *names_;
}

void EditedRulesImpl::changed(EditedFile& file) {
  file.isRead = false;
  names_.reset();
  ++revision;
}

EditedRules::EditedRules() : impl_(std::make_unique<EditedRulesImpl>()) {}
EditedRules::EditedRules(EditedRules&&) noexcept = default;
EditedRules& EditedRules::operator=(EditedRules&&) noexcept = default;
EditedRules::~EditedRules() = default;

bool EditedRules::isTestFile(std::string_view file) noexcept {
  return file.ends_with(testSuffix);
}

void EditedRules::setText(std::string const& file, std::string text) {
  EditedFile* known = impl_->find(file);
  if (known == nullptr) {
    auto created = std::make_unique<EditedFile>();
    created->name = file;
    created->isTest = isTestFile(file);
    known = created.get();
    std::filesystem::path const path(file);
    auto const next = std::find_if(impl_->files.begin(), impl_->files.end(), [&](auto const& other) {
      std::filesystem::path const otherPath(other->name);
      return otherPath.parent_path() == path.parent_path() && otherPath.filename().string() > path.filename().string();
    });
    impl_->files.insert(next, std::move(created));
  }
  known->buffer = TextBuffer(std::move(text));
  impl_->changed(*known);
}

bool EditedRules::change(std::string const& file, EditorRange const& range, std::string_view text) {
  EditedFile* const known = impl_->find(file);
  if (known == nullptr) return false;
  known->buffer.replace({known->buffer.offsetOf(range.begin), known->buffer.offsetOf(range.end)}, text);
  impl_->changed(*known);
  return true;
}

void EditedRules::remove(std::string const& file) {
  auto const found =
      std::find_if(impl_->files.begin(), impl_->files.end(), [&](auto const& one) { return one->name == file; });
  if (found == impl_->files.end()) return;
  impl_->changed(**found);
  impl_->files.erase(found);
}

bool EditedRules::has(std::string const& file) const {
  return impl_->find(file) != nullptr;
}

std::vector<std::string> EditedRules::files() const {
  std::vector<std::string> names;
  names.reserve(impl_->files.size());
  for (auto const& file : impl_->files) names.push_back(file->name);
  return names;
}

std::string const& EditedRules::text(std::string const& file) const {
  static std::string const none;
  EditedFile const* const known = impl_->find(file);
  return known != nullptr ? known->buffer.text() : none;
}

std::string_view EditedRules::line(std::string const& file, std::size_t number) const {
  EditedFile const* const known = impl_->find(file);
  return known != nullptr ? known->buffer.line(number) : std::string_view();
}

std::size_t EditedRules::revision() const noexcept {
  return impl_->revision;
}

// Diagnostics

EditorDiagnostics RuleSnapshot::check() const {
  if (texts_.empty()) return {};
  return editorDiagnostics(texts_, rules::lintTexts(texts_).diagnostics);
}

RuleSnapshot EditedRules::snapshot() const {
  RuleSnapshot snapshot;
  snapshot.revision_ = impl_->revision;
  for (auto const& file : impl_->files) {
    if (!file->isTest) snapshot.texts_.push_back({file->name, file->buffer.text()});
  }
  return snapshot;
}

void EditedRules::accept() {
  impl_->readAll();
  impl_->accepted.clear();
  for (auto const& file : impl_->files) {
    auto& parts = impl_->accepted[file->name];
    for (ReadPart const& part : file->parts) {
      auto const [first, last] = linesOf(*file, part.part.span);
      parts.push_back({part.hash, first, last});
    }
  }
}

namespace {

/// The new places of the lines of a file since diagnostics were accepted.
class LineShifts {
 public:
  LineShifts(std::vector<AcceptedPart> const& former, EditedFile const& file) {
    std::multimap<std::uint64_t, std::size_t> lines;
    for (ReadPart const& part : file.parts) lines.emplace(part.hash, linesOf(file, part.part.span).first);
    for (auto const& part : former) {
      auto const found = lines.find(part.hash);
      if (found == lines.end()) continue;
      shifts_.push_back({part.firstLine, part.lastLine, found->second});
      unchanged_.insert(part.hash);
      lines.erase(found);
    }
  }

  [[nodiscard]] bool isUnchanged(ReadPart const& part) const { return unchanged_.contains(part.hash); }

  /// Moves a range to where its lines are now. False if they have changed.
  bool apply(EditorRange& range) const {
    auto const part = std::find_if(shifts_.begin(), shifts_.end(), [&](Shift const& one) {
      return range.begin.line >= one.first && range.begin.line <= one.last;
    });
    if (part == shifts_.end()) return false;
    range.begin.line = range.begin.line - part->first + part->now;
    range.end.line = range.end.line - part->first + part->now;
    return true;
  }

 private:
  struct Shift {
    std::size_t first;
    std::size_t last;
    std::size_t now;
  };
  std::vector<Shift> shifts_;
  std::set<std::uint64_t> unchanged_;
};

}  // namespace

EditorDiagnostics EditedRules::checkChanges(EditorDiagnostics const& last) const {
  impl_->readAll();
  EditorDiagnostics result;
  std::vector<rules::RuleText> texts;
  std::map<std::string, std::vector<std::pair<std::size_t, std::size_t>>> changedLines;
  std::map<std::string, LineShifts> shifts;
  static std::vector<AcceptedPart> const none;
  for (auto const& file : impl_->files) {
    if (file->isTest) continue;
    result[file->name];
    auto const accepted = impl_->accepted.find(file->name);
    auto const& lines =
        shifts.try_emplace(file->name, accepted != impl_->accepted.end() ? accepted->second : none, *file)
            .first->second;
    std::vector<Span> spans;
    std::set<std::size_t> headers;
    for (ReadPart const& part : file->parts) {
      bool const isChanged = !lines.isUnchanged(part);
      if (!isChanged && !isShared(part)) continue;
      if (isChanged) changedLines[file->name].push_back(linesOf(*file, part.part.span));
      for (auto const& header : part.part.headers) {
        // A part before this one may have the line already.
        bool const isThere = !spans.empty() && header.line.begin < spans.back().end;
        if (!isThere && headers.insert(header.line.begin).second) spans.push_back(header.line);
      }
      spans.push_back(part.part.span);
    }
    if (!spans.empty()) texts.push_back({file->name, onlyLines(file->buffer, spans)});
  }

  bool hasErrors = false;
  for (auto const& [name, diagnostics] : last) {
    auto const lines = shifts.find(name);
    if (lines == shifts.end()) continue;
    for (EditorDiagnostic one : diagnostics) {
      if (!lines->second.apply(one.range)) continue;
      std::erase_if(one.notes, [&](EditorDiagnostic::Note& note) {
        auto const other = shifts.find(note.location.file);
        return other == shifts.end() || !other->second.apply(note.location.range);
      });
      if (one.fix && !lines->second.apply(one.fix->change.range)) one.fix.reset();
      hasErrors = hasErrors || preventsLoading(one);
      result[name].push_back(std::move(one));
    }
  }
  if (!changedLines.empty()) {
    try {
      (void)rules::parseRules(texts);
    } catch (rules::RuleError const& error) {
      for (auto& [name, diagnostics] : editorDiagnostics(texts, error.diagnostics())) {
        auto const lines = changedLines.find(name);
        if (lines == changedLines.end()) continue;
        for (EditorDiagnostic const& one : diagnostics) {
          bool const isInside = std::any_of(lines->second.begin(), lines->second.end(), [&](auto const& changed) {
            return one.range.begin.line >= changed.first && one.range.begin.line <= changed.second;
          });
          if (!isInside || needsAllRules(one.code)) continue;
          hasErrors = true;
          result[name].push_back(one);
        }
      }
    }
  }
  for (auto& [name, diagnostics] : result) {
    if (hasErrors) std::erase_if(diagnostics, [](EditorDiagnostic const& one) { return !preventsLoading(one); });
    std::stable_sort(diagnostics.begin(), diagnostics.end(), [](EditorDiagnostic const& a, EditorDiagnostic const& b) {
      return a.range.begin < b.range.begin;
    });
  }
  return result;
}

std::vector<EditorDiagnostic> EditedRules::checkTests(std::string const& file) const {
  EditedFile const* const known = impl_->find(file);
  if (known == nullptr) return {};
  std::string const& text = known->buffer.text();
  RuleTests const tests = RuleTests::parse(text, file, std::filesystem::path(file).parent_path());
  return editorDiagnostics({{file, text}}, tests.diagnostics())[file];
}

}  // namespace tarn::workbench
