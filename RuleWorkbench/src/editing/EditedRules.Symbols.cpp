// The contents of a file: its items, the lines that fold, and the parts of its expressions.

#include <algorithm>
#include <cctype>
#include <string_view>
#include <utility>

#include <tarn/RuleAttributes.h>
#include <tarn/StringUtilities.h>

#include "editing/EditedRulesImpl.h"

namespace tarn::workbench {

namespace {

using Kind = EditorItemKind;

std::string detailOf(Definition const& definition) {
  if (definition.kind == Kind::Parameter) return definition.firstOf(RuleAttributes::parameterType);
  if (definition.kind == Kind::QuantityType) {
    auto const* units = definition.attribute("Units");
    return units != nullptr && !units->empty() ? "[" + units->front() + "]" : std::string();
  }
  return {};
}

std::string_view sectionOf(Kind kind) {
  switch (kind) {
    case Kind::ObjectType:
      return "Objects";
    case Kind::Template:
      return "Templates";
    case Kind::NamedCheck:
      return "Checks";
    case Kind::NamedList:
      return "Lists";
    case Kind::NamedValue:
      return "Values";
    case Kind::QuantityType:
      return "Quantity Types";
    case Kind::GlobalCheck:
      return "Global Checks";
    default:
      return "";
  }
}

std::string lowered(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return result;
}

/// Puts the items of a file into those that contain them.
class SymbolTree {
 public:
  explicit SymbolTree(EditedFile const& file) : file_(file) {}

  std::vector<EditorSymbol> make() {
    for (ReadPart const& part : file_.parts) {
      for (Definition const& definition : part.facts->definitions) add(definition, part.part.span.begin);
    }
    return std::move(roots_);
  }

 private:
  void add(Definition const& definition, std::size_t shift) {
    EditorSymbol symbol;
    symbol.name = definition.name;
    symbol.kind = definition.kind;
    symbol.detail = detailOf(definition);
    symbol.range = file_.buffer.rangeOf({definition.span.begin + shift, definition.span.end + shift});
    symbol.nameRange = file_.buffer.rangeOf({definition.nameSpan.begin + shift, definition.nameSpan.end + shift});
    if (symbol.name.empty()) symbol.name = "(no name)";
    if (definition.kind == Kind::Test) {
      roots_.push_back(std::move(symbol));
      return;
    }
    if (definition.owner.kind == Kind::Section) {
      EditorSymbol& section = sectionFor(definition.kind, symbol);
      extend(section, symbol.range);
      section.children.push_back(std::move(symbol));
      return;
    }
    // The entries of an object follow it.
    EditorSymbol& section = sectionFor(definition.owner.kind, symbol);
    auto const owner = std::find_if(section.children.rbegin(), section.children.rend(),
                                    [&](EditorSymbol const& one) { return one.name == definition.owner.name; });
    if (owner == section.children.rend()) return;
    extend(section, symbol.range);
    extend(*owner, symbol.range);
    owner->children.push_back(std::move(symbol));
  }

  EditorSymbol& sectionFor(Kind kind, EditorSymbol const& first) {
    std::string_view const name = sectionOf(kind);
    auto const known = std::find_if(roots_.begin(), roots_.end(), [&](auto const& one) { return one.name == name; });
    if (known != roots_.end()) return *known;
    EditorSymbol section;
    section.name = name;
    section.kind = Kind::Section;
    section.nameRange = keyRange(name, first.range.begin.line);
    section.range = section.nameRange;
    extend(section, first.range);
    roots_.push_back(std::move(section));
    return roots_.back();
  }

  /// The key of a section, in a line above or the same.
  [[nodiscard]] EditorRange keyRange(std::string_view name, std::size_t line) const {
    for (std::size_t i = line + 1; i-- > 0;) {
      std::string_view const text = file_.buffer.line(i);
      LineKey key;
      if (!text.empty() && text.front() != ' ' && readLineKey(text, key) && key.key == name) {
        return {{i, key.span.begin}, {i, key.span.end}};
      }
    }
    return {{line, 0}, {line, 0}};
  }

  static void extend(EditorSymbol& symbol, EditorRange const& range) {
    symbol.range.begin = std::min(symbol.range.begin, range.begin);
    symbol.range.end = std::max(symbol.range.end, range.end);
  }

  EditedFile const& file_;
  std::vector<EditorSymbol> roots_;
};

bool isSilent(std::string_view line) {
  std::string_view const content = StringUtilities::trimmed(line);
  return content.empty() || content.front() == '#';
}

}  // namespace

std::vector<EditorSymbol> EditedRules::symbols(std::string const& file) const {
  EditedFile const* const known = impl_->file(file);
  return known != nullptr ? SymbolTree(*known).make() : std::vector<EditorSymbol>();
}

std::vector<EditorFoundSymbol> EditedRules::findSymbols(std::string_view part, std::size_t most) const {
  impl_->readAll();
  std::string const wanted = lowered(part);
  std::vector<EditorFoundSymbol> result;
  for (auto const& file : impl_->files) {
    for (ReadPart const& one : file->parts) {
      for (Definition const& definition : one.facts->definitions) {
        if (lowered(definition.name).find(wanted) == std::string::npos) continue;
        if (result.size() == most) return result;
        DefinitionAt const at{&definition, file.get(), one.part.span.begin};
        result.push_back({definition.name, definition.kind, definition.owner.name, at.location()});
      }
    }
  }
  return result;
}

std::vector<EditorFold> EditedRules::folds(std::string const& file) const {
  EditedFile const* const known = impl_->file(file);
  std::vector<EditorFold> result;
  if (known == nullptr) return result;
  // A line folds those below it that are indented deeper. The lines that are open wait with their indentation.
  struct Open {
    std::size_t line;
    std::size_t indent;
  };
  std::vector<Open> open;
  std::size_t last = 0;  // the last line that is not empty
  auto const closeTo = [&](std::size_t indent) {
    while (!open.empty() && open.back().indent >= indent) {
      if (last > open.back().line) result.push_back({open.back().line, last});
      open.pop_back();
    }
  };
  for (std::size_t i = 0; i < known->buffer.lineCount(); ++i) {
    std::string_view const line = known->buffer.line(i);
    if (isSilent(line)) continue;
    std::size_t const indent = std::min(line.find_first_not_of(' '), line.size());
    closeTo(indent);
    open.push_back({i, indent});
    last = i;
  }
  closeTo(0);
  std::sort(result.begin(), result.end(),
            [](EditorFold const& a, EditorFold const& b) { return a.firstLine < b.firstLine; });
  return result;
}

namespace {

std::optional<EditorTokenKind> tokenKind(ExpressionPart const& part) {
  switch (part.kind) {
    case ExpressionPart::Kind::Function:
      return EditorTokenKind::Function;
    case ExpressionPart::Kind::Keyword:
      return EditorTokenKind::Keyword;
    case ExpressionPart::Kind::Number:
      return EditorTokenKind::Number;
    case ExpressionPart::Kind::Text:
    case ExpressionPart::Kind::CheckName:
    case ExpressionPart::Kind::ListName:
    case ExpressionPart::Kind::ValueName:
      return EditorTokenKind::Text;
    case ExpressionPart::Kind::Parameter:
      return EditorTokenKind::Parameter;
    case ExpressionPart::Kind::Objects:
      return EditorTokenKind::Objects;
    case ExpressionPart::Kind::Name:
      return EditorTokenKind::Variable;
    case ExpressionPart::Kind::Word:
      break;
    case ExpressionPart::Kind::Symbol:
      if (part.text != "(" && part.text != ")" && part.text != ",") return EditorTokenKind::Operator;
      break;
  }
  return std::nullopt;
}

/// The parts of the expressions in a part of a file. They are found once, as long as the part does not change.
std::vector<ReadPart::Coloured> const& colouredIn(EditedFile const& file, ReadPart const& part) {
  if (part.coloured) return *part.coloured;
  std::vector<ReadPart::Coloured> found;
  auto const text = std::string_view(file.buffer.text()).substr(part.part.span.begin, part.part.span.size());
  forEachExpressionPart({text, part.part.context, file.isTest}, [&](ExpressionPart const& one, Span written) {
    if (auto const kind = tokenKind(one)) found.push_back({written, *kind});
  });
  part.coloured = std::make_shared<std::vector<ReadPart::Coloured> const>(std::move(found));
  return *part.coloured;
}

}  // namespace

std::vector<EditorToken> EditedRules::tokens(std::string const& file, std::size_t firstLine,
                                             std::size_t endLine) const {
  EditedFile const* const known = impl_->file(file);
  std::vector<EditorToken> result;
  if (known == nullptr) return result;
  std::size_t const begin = known->buffer.lineStart(firstLine);
  std::size_t const end = known->buffer.lineStart(endLine);
  for (ReadPart const& part : known->parts) {
    std::size_t const shift = part.part.span.begin;
    if (part.part.span.end <= begin || shift >= end) continue;
    for (auto const& [written, kind] : colouredIn(*known, part)) {
      if (written.end + shift <= begin || written.begin + shift >= end) continue;
      // A part on several lines gets one token for each.
      EditorRange const range = known->buffer.rangeOf({written.begin + shift, written.end + shift});
      for (std::size_t line = range.begin.line; line <= range.end.line; ++line) {
        if (line < firstLine || line >= endLine) continue;
        std::string_view const content = known->buffer.line(line);
        std::size_t const from =
            line == range.begin.line ? range.begin.byte : std::min(content.find_first_not_of(' '), content.size());
        std::size_t const to = line == range.end.line ? range.end.byte : content.size();
        if (to > from) result.push_back({{line, from}, to - from, kind});
      }
    }
  }
  std::sort(result.begin(), result.end(),
            [](EditorToken const& a, EditorToken const& b) { return a.position < b.position; });
  // The same part of a file can be read through several aliases.
  std::vector<EditorToken> kept;
  for (EditorToken const& token : result) {
    bool const overlaps = !kept.empty() && kept.back().position.line == token.position.line &&
                          kept.back().position.byte + kept.back().bytes > token.position.byte;
    if (!overlaps) kept.push_back(token);
  }
  return kept;
}

}  // namespace tarn::workbench
