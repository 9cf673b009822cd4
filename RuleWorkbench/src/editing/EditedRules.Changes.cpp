// A check of what was edited. Lint gets the changed parts of the files, the parts that give names to all rules, and the
// parts that have what the changed ones read; that is little in a rule base of any size. Its findings in the changed
// parts join those of the last check of everything in the others, at the lines where they are now.
//
// Some findings depend on more than that:
//
// - The order of entries and their contexts are judged for whole objects, so lint gets all parts of the objects that
//   have entries in the changed parts, and its findings of this kind replace the former ones in all of these parts. If
//   an object is too large for that, the changed part alone is judged, without advice about what to move.
// - Roots are missing if no file has any. Lint gets all parts that have some.
// - An acceptance is needless if lint finds nothing where it counts. So only acceptances are judged that count nowhere
//   but in parts that were looked at as a whole.

#include <tarn/workbench/EditedRules.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include <tarn/rules/RuleTexts.h>

#include "diagnostics/Codes.h"
#include "editing/EditedRulesImpl.h"

namespace tarn::workbench {

namespace {

using Kind = EditorItemKind;

/// More text than this is not checked at once. Then only errors are looked for, in the changed parts alone.
constexpr std::size_t mostBytes = std::size_t{384} << 10;
/// Objects with more text are not checked as a whole. Lint takes some 50 milliseconds for as much.
constexpr std::size_t mostObjectBytes = std::size_t{256} << 10;

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

constexpr std::string_view needlessAcceptance = "needless-acceptance";
constexpr std::string_view missingRoots = "missing-roots";

/// Findings that depend on all entries of an object.
bool isOfWholeObject(std::string_view code) {
  return code == "reads-later-decision" || code == "never-live";
}

/// Whether other parts may need what is given in this one: names, units, templates, roots, acceptances of a file.
bool isShared(EditedFile const& file, ReadPart const& part) {
  if (!part.part.context.empty()) return part.part.context.front() != "Objects";
  if (file.parts.size() > 1) return true;
  auto const& references = part.facts->references;
  bool const hasRoots = std::any_of(references.begin(), references.end(),
                                    [](Reference const& one) { return one.kind == Reference::Kind::RootType; });
  if (hasRoots) return true;
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
      if (found == lines.end()) {
        hasLost_ = true;
        continue;
      }
      shifts_.push_back({part.firstLine, part.lastLine, found->second});
      unchanged_.insert(part.hash);
      lines.erase(found);
    }
  }

  [[nodiscard]] bool isUnchanged(ReadPart const& part) const { return unchanged_.contains(part.hash); }
  /// Whether something that was there has changed or is gone.
  [[nodiscard]] bool hasLost() const noexcept { return hasLost_; }

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
  bool hasLost_ = false;
};

/// All parts of the objects that have entries in some parts, and so on for the objects in these parts. Those of a
/// template are the objects that use it.
class ObjectParts {
 public:
  explicit ObjectParts(EditedRulesImpl const& rules) : names_(rules.names()) {
    for (auto const& file : rules.files) {
      for (ReadPart const& part : file->parts) {
        auto const& context = part.part.context;
        if (context.size() > 1 && context.front() == "Objects") divided_[context[1]].push_back(&part);
      }
    }
  }

  void add(ReadPart const& first) {
    addPart(&first);
    while (!waiting_.empty() && !isTooMuch()) {
      ReadPart const& part = *waiting_.back();
      waiting_.pop_back();
      auto const& context = part.part.context;
      if (context.size() > 1) {
        addOwner({context.front() == "Templates" ? Kind::Template : Kind::ObjectType, context[1]});
      }
      FactOwner const* last = nullptr;
      for (Definition const& definition : part.facts->definitions) {
        if (definition.kind == Kind::ObjectType || definition.kind == Kind::Template) {
          addOwner({definition.kind, definition.name});
        } else if (!definition.owner.name.empty() && (last == nullptr || *last != definition.owner)) {
          last = &definition.owner;
          addOwner(definition.owner);
        }
      }
    }
  }

  [[nodiscard]] std::set<ReadPart const*> const& parts() const noexcept { return parts_; }
  [[nodiscard]] bool isTooMuch() const noexcept { return bytes_ > mostObjectBytes; }

 private:
  void addOwner(FactOwner const& owner) {
    if (owner.kind == Kind::Template) {
      if (!templates_.insert(owner.name).second) return;
      for (std::string const& type : names_.contextsOf(owner)) addObject(type);
    } else if (owner.kind == Kind::ObjectType) {
      addObject(owner.name);
    }
  }

  void addObject(std::string const& type) {
    if (!objects_.insert(type).second) return;
    auto const entries = names_.types().find(type);
    if (entries == names_.types().end()) return;
    for (auto const* all : {&entries->second.definitions, &entries->second.params, &entries->second.children}) {
      for (DefinitionAt const& one : *all) {
        if (isTooMuch()) return;
        if (!one.file->isTest) addPart(one.file->partAt(one.shift));
      }
    }
    if (auto const divided = divided_.find(type); divided != divided_.end()) {
      for (ReadPart const* part : divided->second) addPart(part);
    }
  }

  void addPart(ReadPart const* part) {
    if (part == nullptr || !parts_.insert(part).second) return;
    bytes_ += part->part.span.size();
    waiting_.push_back(part);
  }

  RuleNames const& names_;
  std::map<std::string, std::vector<ReadPart const*>> divided_;  // by object type: the parts inside of its entry
  std::set<ReadPart const*> parts_;
  std::set<std::string> objects_;
  std::set<std::string> templates_;
  std::vector<ReadPart const*> waiting_;
  std::size_t bytes_ = 0;
};

/// The parts that lint must know to judge the changed ones: what their rules read, the types above the objects that
/// they are about, and what else these objects have of the same names.
class NeededParts {
 public:
  explicit NeededParts(EditedRulesImpl const& rules) : rules_(rules), names_(rules.names()) {}

  void addChanged(EditedFile const& file, ReadPart const& part) {
    addPart(part);  // another part may have needed it already
    std::size_t const shift = part.part.span.begin;
    if (part.part.context.size() > 1) addOwner(part.part.context[1]);
    std::map<std::string, std::set<std::string_view>> params;  // by object type
    std::set<std::string> withContext;
    for (Definition const& definition : part.facts->definitions) {
      if (definition.attribute("Context") != nullptr) withContext.insert(definition.owner.name);
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
    for (std::string const& type : withContext) addContextRules(type);
    for (Reference const& use : part.facts->references) {
      addUse({&use, &part.facts->entries[use.entry], &file, shift});
    }
  }

  /// Without roots, the first object type is the one that lint points at.
  void addFirstObject() {
    for (auto const& [type, entries] : names_.types()) {
      if (!type.starts_with('/') || entries.definitions.empty()) continue;
      for (DefinitionAt const& definition : entries.definitions) add(definition);
      return;
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

  void addContextRules(std::string const& type) {
    for (DefinitionAt const& param : names_.paramsOf(type)) {
      if (param.definition->attribute("Context Rule") != nullptr) add(param);
    }
  }

  /// The templates that an object uses, and what it accepts, may be in another part of it.
  void addOwner(std::string const& owner) {
    if (!owners_.insert(owner).second) return;
    for (auto const& file : rules_.files) {
      for (ReadPart const& part : file->parts) {
        if (part.part.context.size() < 2 || part.part.context[1] != owner) continue;
        if (part.part.context.size() == 2) addPart(part);
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
      hasChanges_ = hasChanges_ || lines.hasLost();
      for (ReadPart const& part : file->parts) {
        if (!lines.isUnchanged(part)) changed_.insert(&part);
      }
    }
    hasChanges_ = hasChanges_ || !changed_.empty() ||
                  std::any_of(rules.accepted.begin(), rules.accepted.end(),
                              [&](auto const& file) { return !file.second.empty() && !shifts_.contains(file.first); });
  }

  EditorDiagnostics run(EditorDiagnostics const& last) {
    for (auto const& file : rules_.files) {
      if (!file->isTest) result_[file->name];
    }
    shift(last);
    if (hasChanges_) look();
    for (auto& [name, diagnostics] : kept_) {
      auto& all = result_[name];
      all.insert(all.end(), std::make_move_iterator(diagnostics.begin()), std::make_move_iterator(diagnostics.end()));
    }
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
  using Parts = std::set<ReadPart const*>;

  /// Diagnostics of unchanged parts.
  void shift(EditorDiagnostics const& last) {
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
        kept_[name].push_back(std::move(one));
      }
    }
  }

  /// Looks for what is wrong with the changed parts.
  void look() {
    if (lookAtObjects()) return;
    NeededParts needed(rules_);
    addTo(needed, changed_);
    if (!needed.isTooMuch()) {
      auto const some = texts(changed_, &needed);
      take(editorDiagnostics(some, rules::lintPart(some, rules::LintExtent::Entries).diagnostics), changed_, false);
      return;
    }
    auto const some = texts(changed_, nullptr);
    try {
      (void)rules::parseRules(some);
    } catch (rules::RuleError const& error) {
      for (auto& [name, diagnostics] : editorDiagnostics(some, error.diagnostics())) {
        for (EditorDiagnostic& one : diagnostics) {
          if (contains(changed_, name, one) && !needsReadRules(one.code)) result_[name].push_back(std::move(one));
        }
      }
    }
  }

  /// Looks at the changed parts together with the other parts of their objects. False if that is too much.
  bool lookAtObjects() {
    ObjectParts objects(rules_);
    for (ReadPart const* part : changed_) objects.add(*part);
    if (objects.isTooMuch()) return false;
    NeededParts needed(rules_);
    addTo(needed, objects.parts());
    if (needed.isTooMuch()) return false;
    auto const some = texts(objects.parts(), &needed);
    take(editorDiagnostics(some, rules::lintPart(some, rules::LintExtent::Objects).diagnostics), objects.parts(), true);
    return true;
  }

  void addTo(NeededParts& needed, Parts const& parts) const {
    for (auto const& file : rules_.files) {
      for (ReadPart const& part : file->parts) {
        if (parts.contains(&part)) needed.addChanged(*file, part);
      }
    }
    if (!rules_.names().hasRoots()) needed.addFirstObject();
  }

  /// The texts of the parts that are looked at, of those that are needed for that, and of those that all may need.
  [[nodiscard]] std::vector<rules::RuleText> texts(Parts const& parts, NeededParts const* needed) const {
    std::vector<rules::RuleText> result;
    for (auto const& file : rules_.files) {
      if (file->isTest) continue;
      std::string text = textOf(*file, [&](ReadPart const& part) {
        return parts.contains(&part) || isShared(*file, part) || (needed != nullptr && needed->contains(part));
      });
      if (!text.empty()) result.push_back({file->name, std::move(text)});
    }
    return result;
  }

  /// Takes what was found, as far as it is certain. It replaces what was kept. `parts` are those that were looked at,
  /// and all that belongs to their objects if `areObjectsWhole`.
  void take(EditorDiagnostics found, Parts const& parts, bool areObjectsWhole) {
    bool const isLoaded = std::none_of(found.begin(), found.end(), [](auto const& file) {
      return std::any_of(file.second.begin(), file.second.end(), preventsLoading);
    });
    auto const isTaken = [&](std::string const& file, EditorDiagnostic const& one) {
      if (one.code == missingRoots) return isLoaded;
      bool const isChanged = contains(changed_, file, one);
      bool const isLookedAt = isLoaded && (isChanged || (areObjectsWhole && contains(parts, file, one)));
      if (isOfWholeObject(one.code)) return isLookedAt;
      if (one.code == needlessAcceptance) return isLookedAt && isScopeInside(file, one, areObjectsWhole);
      return isChanged;
    };
    for (auto& [name, all] : found) {
      for (EditorDiagnostic& one : all) {
        if (!isTaken(name, one)) continue;
        // Without advice, it is not known whether the warning is one with another one elsewhere.
        if (one.message.ends_with(rules::adviceFollows) && !complete(name, one) && !contains(changed_, name, one))
          continue;
        result_[name].push_back(std::move(one));
      }
    }
    for (auto& [name, all] : kept_) {
      std::erase_if(all, [&file = name, &isTaken](EditorDiagnostic const& one) { return isTaken(file, one); });
    }
  }

  /// Whether a diagnostic is in one of these parts.
  [[nodiscard]] bool contains(Parts const& parts, std::string const& file, EditorDiagnostic const& one) const {
    ReadPart const* const part = partOf(file, one);
    return part != nullptr && parts.contains(part);
  }

  [[nodiscard]] ReadPart const* partOf(std::string const& name, EditorDiagnostic const& one) const {
    EditedFile const* const file = rules_.file(name);
    return file != nullptr ? file->partAt(file->buffer.offsetOf(one.range.begin)) : nullptr;
  }

  /// Whether all that an acceptance can accept was looked at. `one` says that it is needless. The acceptance of a map
  /// that is divided is not inside of its part.
  [[nodiscard]] bool isScopeInside(std::string const& name, EditorDiagnostic const& one, bool areObjectsWhole) const {
    ReadPart const* const part = partOf(name, one);
    EditedFile const* const file = rules_.file(name);
    if (part == nullptr || file->parts.size() == 1) return part != nullptr;
    if (part->part.context.size() == 2 && areObjectsWhole) return true;
    std::size_t indent = std::string_view::npos;
    LineKey key;
    LineKey outermost;
    for (std::size_t at = linesOf(*file, part->part.span).first; at <= one.range.begin.line; ++at) {
      if (!readLineKey(file->buffer.line(at), key)) continue;
      if (indent == std::string_view::npos) indent = key.indent;
      if (key.indent == indent) outermost = key;
    }
    return outermost.key != "Accepted";
  }

  /// Replaces a warning without advice by the one that the last check of everything has there. False if it has none.
  [[nodiscard]] bool complete(std::string const& file, EditorDiagnostic& one) const {
    auto const known = kept_.find(file);
    if (known == kept_.end()) return false;
    std::string_view const start(one.message.data(), one.message.size() - rules::adviceFollows.size());
    auto const former = std::find_if(known->second.begin(), known->second.end(), [&](EditorDiagnostic const& other) {
      return other.code == one.code && other.range == one.range && other.message.starts_with(start);
    });
    if (former == known->second.end()) return false;
    one = *former;
    return true;
  }

  EditedRulesImpl const& rules_;
  std::map<std::string, LineShifts> shifts_;
  Parts changed_;
  bool hasChanges_ = false;
  EditorDiagnostics kept_;
  EditorDiagnostics result_;
};

}  // namespace

EditorDiagnostics EditedRules::checkChanges(EditorDiagnostics const& last) const {
  impl_->readAll();
  return ChangeCheck(*impl_).run(last);
}

}  // namespace tarn::workbench
