// The files of a rule base that is edited, and what is wrong with them. The other questions are in their own sources.

#include <tarn/workbench/EditedRules.h>

#include <algorithm>
#include <filesystem>
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

std::vector<EditorDiagnostic> EditedRules::checkTests(std::string const& file) const {
  EditedFile const* const known = impl_->find(file);
  if (known == nullptr) return {};
  std::string const& text = known->buffer.text();
  RuleTests const tests = RuleTests::parse(text, file, std::filesystem::path(file).parent_path());
  return editorDiagnostics({{file, text}}, tests.diagnostics())[file];
}

}  // namespace tarn::workbench
