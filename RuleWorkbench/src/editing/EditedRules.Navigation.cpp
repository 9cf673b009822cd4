// Where items are given and used, and what happens when they get another name.

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include <tarn/StringUtilities.h>

#include "diagnostics/NearMatch.h"
#include "editing/EditedRulesImpl.h"

namespace tarn::workbench {

namespace {

using Kind = EditorItemKind;
using rules::inQuotes;

/// Without those that are given twice, in the order in which they come first.
void removeDuplicates(std::vector<EditorLocation>& locations) {
  std::vector<EditorLocation> kept;
  std::set<std::tuple<std::string, EditorPosition, EditorPosition>> seen;
  for (EditorLocation& one : locations) {
    if (seen.emplace(one.file, one.range.begin, one.range.end).second) kept.push_back(std::move(one));
  }
  locations = std::move(kept);
}

/// The place of the name of an item within the place where it is given: an object type is the last component of a path.
Span writtenName(DefinitionAt const& given) {
  Span span = given.nameSpan();
  if (given.definition->kind != Kind::ObjectType || !given.definition->isExact) return span;
  span.begin += given.definition->name.rfind('/') + 1;
  return span;
}

bool isRenamable(Kind kind) {
  switch (kind) {
    case Kind::Parameter:
    case Kind::ObjectType:
    case Kind::NamedCheck:
    case Kind::NamedList:
    case Kind::NamedValue:
    case Kind::Template:
    case Kind::QuantityType:
      return true;
    default:
      return false;
  }
}

/// Why a name cannot be written at every place where an item may be named. Empty when it can.
std::string whyNotWritable(std::string const& name, Kind kind) {
  if (name.empty()) return "the name is empty";
  if (StringUtilities::trimmed(name) != name) return "a name cannot begin or end with a blank";
  for (char const c : name) {
    bool const isControl = static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
    bool const isPath = kind == Kind::Parameter || kind == Kind::ObjectType;
    bool const isSign = std::string_view("'\"\\{}[]#&*!|>%@`,:").find(c) != std::string_view::npos ||
                        (isPath && std::string_view("/^").find(c) != std::string_view::npos);
    if (isControl) return "a name cannot contain a control character";
    if (isSign) return "the character '" + std::string(1, c) + "' cannot be written at every place of the name";
  }
  if (std::string_view("-?=~<").find(name.front()) != std::string_view::npos) {
    return "a name that begins with '" + name.substr(0, 1) + "' cannot be written without quotes";
  }
  if (name == ".." || name == "Use") return inQuotes(name) + " has another meaning";
  return {};
}

class Renaming {
 public:
  Renaming(RuleNames const& names, Meaning const& meaning, std::string const& name)
      : names_(names), meaning_(meaning), name_(name) {}

  /// Why it is refused; empty when it is not.
  std::string refusal() {
    if (meaning_.definitions.empty()) return "the rules do not have " + inQuotes(meaning_.name);
    if (meaning_.kind == Kind::Parameter && meaning_.definitions.size() > 1) {
      return "the path can mean several parameters; go to the entry of the one that you want to rename";
    }
    if (meaning_.kind == Kind::ObjectType && meaning_.types.size() > 1) {
      return "the name can mean several object types; go to the entry of the one that you want to rename";
    }
    if (auto why = whyNotWritable(name_, meaning_.kind); !why.empty()) return why;
    if (auto by = takenBy(); !by.empty()) return by;
    for (DefinitionAt const& given : meaning_.definitions) {
      if (!given.definition->isExact) return notExact(given.file->name, given.file->buffer.rangeOf(given.nameSpan()));
      add(*given.file, writtenName(given));
    }
    for (RuleNames::Use const& use : names_.usesOf(meaning_)) {
      auto const range = use.at.file->buffer.rangeOf(use.span);
      if (use.isShared) {
        return "the path " + inQuotes(use.at.reference->text) + " at " + placeText(use.at.file->name, range) +
               " can also mean other items; write it more exactly first";
      }
      if (!use.isExact) return notExact(use.at.file->name, range);
      add(*use.at.file, use.span);
    }
    return {};
  }

  [[nodiscard]] std::vector<EditorChange> changes() const {
    std::vector<EditorChange> result;
    for (auto const& [file, spans] : spans_) {
      for (auto const& [begin, end] : spans) {
        result.push_back({file->name, file->buffer.rangeOf({begin, end}), name_});
      }
    }
    return result;
  }

 private:
  static std::string placeText(std::string const& file, EditorRange const& range) {
    return file.substr(file.rfind('/') + 1) + ":" + std::to_string(range.begin.line + 1);
  }

  static std::string notExact(std::string const& file, EditorRange const& range) {
    return "the name at " + placeText(file, range) + " is written with escapes or in several lines; change it by hand";
  }

  void add(EditedFile const& file, Span span) { spans_[&file].emplace(span.begin, span.end); }

  [[nodiscard]] std::string takenBy() const {
    std::string const taken = inQuotes(name_) + " is taken";
    switch (meaning_.kind) {
      case Kind::Parameter:
        for (std::string const& type : names_.contextsOf(meaning_.definitions.front().definition->owner)) {
          if (!names_.findParam(type, name_).empty()) return taken + ": " + type + " has a parameter of that name";
          if (!names_.findChild(type, name_).empty()) return taken + ": " + type + " has children of that type";
        }
        break;
      case Kind::ObjectType:
        for (std::string const& type : meaning_.types) {
          std::string const parent = type.substr(0, type.rfind('/'));
          if (names_.tree().knows(parent + '/' + name_)) return taken + ": there is an object type of that path";
          if (!names_.findParam(parent, name_).empty()) return taken + ": " + parent + " has a parameter of that name";
        }
        break;
      case Kind::Template:
        if (names_.templates().contains(name_)) return taken + ": there is a template of that name";
        break;
      default:
        if (names_.named().contains({meaning_.kind, name_})) return taken + ": there is another one of that name";
        break;
    }
    return {};
  }

  RuleNames const& names_;
  Meaning const& meaning_;
  std::string const& name_;
  std::map<EditedFile const*, std::set<std::pair<std::size_t, std::size_t>>> spans_;
};

/// Diagnostics without their positions in lines, which move, and messages, which name items.
std::map<std::string, int> counted(EditorDiagnostics const& diagnostics) {
  std::map<std::string, int> counts;
  for (auto const& [file, all] : diagnostics) {
    for (auto const& one : all) ++counts[file + '\n' + one.code];
  }
  return counts;
}

}  // namespace

std::vector<EditorLocation> EditedRules::definition(std::string const& file, EditorPosition position) const {
  EditedFile const* const known = impl_->file(file);
  if (known == nullptr) return {};
  auto const meaning = impl_->names().meaningAt(*known, known->buffer.offsetOf(position));
  std::vector<EditorLocation> locations;
  if (!meaning) return locations;
  locations.reserve(meaning->definitions.size());
  for (DefinitionAt const& given : meaning->definitions) locations.push_back(given.location());
  removeDuplicates(locations);
  return locations;
}

std::vector<EditorLocation> EditedRules::references(std::string const& file, EditorPosition position,
                                                    bool withDefinitions) const {
  EditedFile const* const known = impl_->file(file);
  if (known == nullptr) return {};
  auto const meaning = impl_->names().meaningAt(*known, known->buffer.offsetOf(position));
  std::vector<EditorLocation> locations;
  if (!meaning) return locations;
  std::set<std::tuple<std::string, EditorPosition, EditorPosition>> definitions;
  for (DefinitionAt const& given : meaning->definitions) {
    EditorRange const range = given.file->buffer.rangeOf(writtenName(given));
    definitions.emplace(given.file->name, range.begin, range.end);
    if (withDefinitions) locations.push_back({given.file->name, range});
  }
  for (RuleNames::Use const& use : impl_->names().usesOf(*meaning)) {
    EditorLocation location{use.at.file->name, use.at.file->buffer.rangeOf(use.span)};
    if (!definitions.contains({location.file, location.range.begin, location.range.end})) {
      locations.push_back(std::move(location));
    }
  }
  std::map<std::string, std::size_t> order;
  for (auto const& one : impl_->files) order.emplace(one->name, order.size());
  std::stable_sort(locations.begin(), locations.end(), [&](EditorLocation const& a, EditorLocation const& b) {
    return std::pair(order[a.file], a.range.begin) < std::pair(order[b.file], b.range.begin);
  });
  removeDuplicates(locations);
  return locations;
}

std::optional<EditorName> EditedRules::renamable(std::string const& file, EditorPosition position) const {
  EditedFile const* const known = impl_->file(file);
  if (known == nullptr) return std::nullopt;
  auto const meaning = impl_->names().meaningAt(*known, known->buffer.offsetOf(position));
  if (!meaning || meaning->definitions.empty() || !isRenamable(meaning->kind)) return std::nullopt;
  Span span = meaning->span;
  std::string const written = known->buffer.text().substr(span.begin, span.size());
  return EditorName{known->buffer.rangeOf(span), written};
}

EditorRename EditedRules::rename(std::string const& file, EditorPosition position, std::string const& name) const {
  EditorRename result;
  EditedFile const* const known = impl_->file(file);
  auto const meaning =
      known != nullptr ? impl_->names().meaningAt(*known, known->buffer.offsetOf(position)) : std::optional<Meaning>();
  if (!meaning || !isRenamable(meaning->kind)) {
    result.refusal = "there is no name here that can be changed";
    return result;
  }
  Renaming renaming(impl_->names(), *meaning, name);
  result.refusal = renaming.refusal();
  if (!result.refusal.empty()) return result;

  EditorDiagnostics const before = snapshot().check();
  for (auto const& [source, diagnostics] : before) {
    for (auto const& one : diagnostics) {
      if (one.severity == rules::Severity::Error) {
        result.refusal = "the rules have errors; correct them first: " + one.message;
        return result;
      }
    }
  }
  result.changes = renaming.changes();
  EditedRules renamed;
  for (auto const& one : impl_->files) renamed.setText(one->name, one->buffer.text());
  for (auto change = result.changes.rbegin(); change != result.changes.rend(); ++change) {
    (void)renamed.change(change->file, change->range, change->text);
  }
  EditorDiagnostics const after = renamed.snapshot().check();
  if (counted(before) != counted(after)) {
    result.changes.clear();
    result.refusal = "with this name the rules would have other findings than now";
    auto const countsBefore = counted(before);
    for (auto const& [source, diagnostics] : after) {
      for (auto const& one : diagnostics) {
        auto const found = countsBefore.find(source + '\n' + one.code);
        if (found == countsBefore.end()) {
          result.refusal = "with this name the rules would have another finding: " + one.message;
          return result;
        }
      }
    }
  }
  return result;
}

}  // namespace tarn::workbench
