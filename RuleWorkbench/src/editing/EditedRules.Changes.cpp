// A check of what was edited. Lint gets the changed parts of the files, the parts that give names to all rules, and the
// parts that have what the changed ones read; that is little in a rule base of any size. Its findings in the changed
// parts join those of the last check of everything in the others, at the lines where they are now.

#include <tarn/workbench/EditedRules.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "diagnostics/Codes.h"
#include "editing/EditedRulesImpl.h"

namespace tarn::workbench {

namespace {

using Kind = EditorItemKind;

/// More text than this is not checked at once. Then only errors are looked for, in the changed parts alone.
constexpr std::size_t mostBytes = std::size_t{384} << 10;

bool preventsLoading(EditorDiagnostic const& diagnostic) {
  auto const* code = rules::findCode(diagnostic.code);
  return diagnostic.severity == rules::Severity::Error && (code == nullptr || !code->isOfLint);
}

/// Errors that are only certain when the rules that are read are known.
bool needsReadRules(std::string_view code) {
  static constexpr std::array<std::string_view, 4> codes = {"units-of-no-type", "units-of-another-type",
                                                            "ambiguous-units", "template-taken-in-part"};
  return std::find(codes.begin(), codes.end(), code) != codes.end();
}

/// Findings that are only certain when all rules are known, and so wait for a check of everything.
bool needsAllRules(std::string_view code) {
  static constexpr std::array<std::string_view, 5> codes = {"missing-roots", "reads-later-decision", "never-live",
                                                            "unused-name", "needless-acceptance"};
  return std::find(codes.begin(), codes.end(), code) != codes.end();
}

/// Whether other files may need what is given in this part: names, units, templates.
bool isShared(ReadPart const& part) {
  if (!part.part.context.empty()) return part.part.context.front() != "Objects";
  auto const& definitions = part.facts->definitions;
  bool const hasObjects = std::any_of(definitions.begin(), definitions.end(), [](Definition const& one) {
    return one.kind == Kind::Parameter || one.kind == Kind::Child;
  });
  return !hasObjects || std::any_of(definitions.begin(), definitions.end(), [](Definition const& one) {
    return one.kind >= Kind::GlobalCheck && one.kind <= Kind::QuantityType;
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

/// The text of the parts of a file that `isNeeded` wants, each under the keys around it.
template <typename IsNeeded>
std::string textOf(EditedFile const& file, IsNeeded const& isNeeded) {
  std::vector<Span> spans;
  std::set<std::size_t> headers;
  for (ReadPart const& part : file.parts) {
    if (!isNeeded(part)) continue;
    for (auto const& header : part.part.headers) {
      // A part before this one may have the line already.
      bool const isThere = !spans.empty() && header.line.begin < spans.back().end;
      if (!isThere && headers.insert(header.line.begin).second) spans.push_back(header.line);
    }
    spans.push_back(part.part.span);
  }
  return spans.empty() ? std::string() : onlyLines(file.buffer, spans);
}

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

/// The parts that lint must know to judge the changed ones: what their rules read, the types above the objects that
/// they are about, and what else these objects have of the same names.
class NeededParts {
 public:
  explicit NeededParts(EditedRulesImpl const& rules) : rules_(rules), names_(rules.names()) {}

  void addChanged(EditedFile const& file, ReadPart const& part) {
    if (!parts_.insert(&part).second) return;
    bytes_ += part.part.span.size();
    std::size_t const shift = part.part.span.begin;
    if (part.part.context.size() > 1) addOwner(part.part.context[1]);
    std::map<std::string, std::set<std::string_view>> params;  // by object type
    for (Definition const& definition : part.facts->definitions) {
      if (definition.kind == Kind::Parameter) {
        for (std::string const& type : names_.contextsOf(definition.owner)) params[type].insert(definition.name);
      } else {
        addMeaning(names_.meaningOf(DefinitionAt{&definition, &file, shift}));
      }
      if (definition.kind == Kind::ObjectType) addOwner(definition.name);
    }
    for (auto const& [type, names] : params) {
      addType(type);
      for (DefinitionAt const& param : names_.paramsOf(type)) {
        if (names.contains(param.definition->name)) add(param);
      }
    }
    for (Reference const& use : part.facts->references) {
      addUse({&use, &part.facts->entries[use.entry], &file, shift});
    }
  }

  [[nodiscard]] bool contains(ReadPart const& part) const { return parts_.contains(&part); }
  /// Whether there is more than can be checked at once.
  [[nodiscard]] bool isTooMuch() const noexcept { return bytes_ > mostBytes; }

 private:
  void addUse(ReferenceAt const& use) {
    if (isTooMuch() || !uses_.insert(use.reference).second) return;
    Meaning const meaning = names_.meaningOf(use);
    addMeaning(meaning);
    if (!meaning.definitions.empty() || meaning.kind != Kind::Parameter) return;
    // The names that there are instead, so that one of them can be proposed.
    for (std::string const& type : meaning.types) {
      for (DefinitionAt const& param : names_.paramsOf(type)) {
        if (bytes_ > mostBytes / 2) return;
        add(param);
      }
    }
  }

  void addMeaning(Meaning const& meaning) {
    for (std::string const& type : meaning.types) addType(type);
    for (DefinitionAt const& definition : meaning.definitions) add(definition);
  }

  /// The entries of a type and of all types above it.
  void addType(std::string type) {
    for (; !type.empty() && !isTooMuch() && types_.insert(type).second; type.resize(type.rfind('/'))) {
      for (DefinitionAt const& definition : names_.definitionsOfType(type)) add(definition);
      if (!type.starts_with('/')) return;
    }
  }

  /// The templates that an object uses may be named in another part of it.
  void addOwner(std::string const& owner) {
    if (!owners_.insert(owner).second) return;
    for (auto const& file : rules_.files) {
      for (ReadPart const& part : file->parts) {
        if (part.part.context.size() < 2 || part.part.context[1] != owner) continue;
        auto const& references = part.facts->references;
        bool const usesTemplates = std::any_of(references.begin(), references.end(), [](Reference const& use) {
          return use.kind == Reference::Kind::Template;
        });
        if (usesTemplates) addPart(part);
      }
    }
  }

  void add(DefinitionAt const& definition) {
    ReadPart const* const part = definition.file->partAt(definition.shift);
    if (part == nullptr || definition.file->isTest) return;
    addPart(*part);
    Kind const kind = definition.definition->kind;
    bool const isCalled = kind == Kind::NamedCheck || kind == Kind::NamedList || kind == Kind::NamedValue;
    if (!isCalled || !called_.insert(definition.definition).second) return;
    Span const span = {definition.definition->span.begin + definition.shift,
                       definition.definition->span.end + definition.shift};
    for (ReferenceAt const& use : names_.usesIn(*definition.file, span)) waiting_.push_back(use);
    if (isFollowing_) return;
    // Named rules call each other, in chains of any length.
    isFollowing_ = true;
    while (!waiting_.empty()) {
      ReferenceAt const use = waiting_.back();
      waiting_.pop_back();
      addUse(use);
    }
    isFollowing_ = false;
  }

  void addPart(ReadPart const& part) {
    if (parts_.insert(&part).second) bytes_ += part.part.span.size();
  }

  EditedRulesImpl const& rules_;
  RuleNames const& names_;
  std::set<ReadPart const*> parts_;
  std::set<std::string> types_;
  std::set<std::string> owners_;
  std::set<Reference const*> uses_;
  std::set<Definition const*> called_;
  std::vector<ReferenceAt> waiting_;
  bool isFollowing_ = false;
  std::size_t bytes_ = 0;
};

/// Checks the changed parts, and keeps the diagnostics of the others, at the lines where they are now.
class ChangeCheck {
 public:
  explicit ChangeCheck(EditedRulesImpl const& rules) : rules_(rules) {
    static std::vector<AcceptedPart> const none;
    for (auto const& file : rules.files) {
      if (file->isTest) continue;
      auto const accepted = rules.accepted.find(file->name);
      auto const& lines =
          shifts_.try_emplace(file->name, accepted != rules.accepted.end() ? accepted->second : none, *file)
              .first->second;
      for (ReadPart const& part : file->parts) {
        if (lines.isUnchanged(part)) continue;
        changed_.insert(&part);
        changedLines_[file->name].push_back(linesOf(*file, part.part.span));
      }
    }
  }

  EditorDiagnostics run(EditorDiagnostics const& last) {
    for (auto const& file : rules_.files) {
      if (!file->isTest) result_[file->name];
    }
    keep(last);
    if (!changed_.empty()) look();
    bool const hasErrors = std::any_of(result_.begin(), result_.end(), [](auto const& file) {
      return std::any_of(file.second.begin(), file.second.end(), preventsLoading);
    });
    for (auto& [name, diagnostics] : result_) {
      if (hasErrors) std::erase_if(diagnostics, [](EditorDiagnostic const& one) { return !preventsLoading(one); });
      std::stable_sort(
          diagnostics.begin(), diagnostics.end(),
          [](EditorDiagnostic const& a, EditorDiagnostic const& b) { return a.range.begin < b.range.begin; });
    }
    return std::move(result_);
  }

 private:
  /// Diagnostics of unchanged parts.
  void keep(EditorDiagnostics const& last) {
    for (auto const& [name, diagnostics] : last) {
      auto const lines = shifts_.find(name);
      if (lines == shifts_.end()) continue;
      for (EditorDiagnostic one : diagnostics) {
        if (!lines->second.apply(one.range)) continue;
        std::erase_if(one.notes, [&](EditorDiagnostic::Note& note) {
          auto const other = shifts_.find(note.location.file);
          return other == shifts_.end() || !other->second.apply(note.location.range);
        });
        if (one.fix && !lines->second.apply(one.fix->change.range)) one.fix.reset();
        result_[name].push_back(std::move(one));
      }
    }
  }

  /// Looks for what is wrong with the changed parts.
  void look() {
    NeededParts needed(rules_);
    for (auto const& file : rules_.files) {
      for (ReadPart const& part : file->parts) {
        if (changed_.contains(&part)) needed.addChanged(*file, part);
      }
    }
    bool const isWhole = !needed.isTooMuch();
    std::vector<rules::RuleText> texts;
    for (auto const& file : rules_.files) {
      if (file->isTest) continue;
      std::string text = textOf(*file, [&](ReadPart const& part) {
        return changed_.contains(&part) || isShared(part) || (isWhole && needed.contains(part));
      });
      if (!text.empty()) texts.push_back({file->name, std::move(text)});
    }
    if (isWhole) {
      take(editorDiagnostics(texts, rules::lintTexts(texts).diagnostics), needsAllRules);
      return;
    }
    try {
      (void)rules::parseRules(texts);
    } catch (rules::RuleError const& error) {
      take(editorDiagnostics(texts, error.diagnostics()), needsReadRules);
    }
  }

  /// Takes what was found in the changed parts, without what is not certain.
  template <typename IsUncertain>
  void take(EditorDiagnostics const& found, IsUncertain const& isUncertain) {
    for (auto const& [name, diagnostics] : found) {
      auto const lines = changedLines_.find(name);
      if (lines == changedLines_.end()) continue;
      for (EditorDiagnostic const& one : diagnostics) {
        bool const isInside = std::any_of(lines->second.begin(), lines->second.end(), [&](auto const& changed) {
          return one.range.begin.line >= changed.first && one.range.begin.line <= changed.second;
        });
        if (isInside && !isUncertain(one.code)) result_[name].push_back(one);
      }
    }
  }

  EditedRulesImpl const& rules_;
  std::map<std::string, LineShifts> shifts_;
  std::set<ReadPart const*> changed_;
  std::map<std::string, std::vector<std::pair<std::size_t, std::size_t>>> changedLines_;
  EditorDiagnostics result_;
};

}  // namespace

EditorDiagnostics EditedRules::checkChanges(EditorDiagnostics const& last) const {
  impl_->readAll();
  return ChangeCheck(*impl_).run(last);
}

}  // namespace tarn::workbench
