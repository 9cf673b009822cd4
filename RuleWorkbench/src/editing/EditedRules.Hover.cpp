// Descriptions of items, in Markdown: from its own entry, from its uses, and from the description of the language.

#include <algorithm>
#include <array>
#include <set>
#include <utility>

#include <tarn/RuleAttributes.h>
#include <tarn/rules/Diagnostic.h>
#include <tarn/rules/RuleFunction.h>

#include "editing/CursorContext.h"
#include "editing/EditedRulesImpl.h"
#include "editing/ExpressionScan.h"
#include "editing/FileKeys.h"

namespace tarn::workbench {

namespace {

using Kind = EditorItemKind;

/// So many places, values and types are listed.
constexpr std::size_t mostListed = 10;
/// Longer texts are cut.
constexpr std::size_t mostCharacters = 300;

std::string cut(std::string const& text) {
  if (text.size() <= mostCharacters) return text;
  std::size_t end = mostCharacters;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
  return text.substr(0, end) + "...";
}

/// The text as code in Markdown.
std::string code(std::string const& text) {
  std::string line = cut(text);
  std::replace(line.begin(), line.end(), '\n', ' ');
  bool const hasMark = line.find('`') != std::string::npos;
  return hasMark ? "`` " + line + " ``" : '`' + line + '`';
}

/// A text of the rules as plain text of Markdown.
std::string plain(std::string const& text) {
  std::string result;
  for (char const c : cut(text)) {
    if (std::string_view("\\`*_{}[]<>#|").find(c) != std::string_view::npos) result += '\\';
    result += c;
  }
  return result;
}

std::string_view nameOfKind(Kind kind) {
  switch (kind) {
    case Kind::ObjectType:
    case Kind::Child:
      return "object type";
    case Kind::Parameter:
      return "parameter";
    case Kind::ObjectCheck:
      return "check of an object";
    case Kind::GlobalCheck:
      return "global check";
    case Kind::NamedCheck:
      return "named check";
    case Kind::NamedList:
      return "named list";
    case Kind::NamedValue:
      return "named value";
    case Kind::Template:
      return "template";
    case Kind::QuantityType:
      return "quantity type";
    case Kind::Test:
      return "test";
    default:
      return "";
  }
}

class Describer {
 public:
  explicit Describer(RuleNames const& names) : names_(names) {}

  std::string describe(Meaning const& meaning) {
    std::string const title =
        meaning.kind == Kind::ObjectType && !meaning.types.empty() ? list(meaning.types) : plain(meaning.name);
    text_ = "**" + title + "** (" + std::string(nameOfKind(meaning.kind)) + ")";
    if (meaning.kind == Kind::Parameter && !meaning.types.empty()) text_ += " of " + list(meaning.types);
    if (meaning.definitions.empty()) {
      paragraph("The rules do not have it.");
      return std::move(text_);
    }
    std::set<Definition const*> shown;
    for (DefinitionAt const& one : meaning.definitions) {
      if (shown.size() < 3 && shown.insert(one.definition).second) entry(one);
    }
    if (meaning.kind == Kind::Template) {
      paragraph("Used by " + list(names_.contextsOf({Kind::Template, meaning.name})) + ".");
    } else if (meaning.kind != Kind::GlobalCheck && meaning.kind != Kind::ObjectCheck && meaning.kind != Kind::Test) {
      users(meaning);
    }
    return std::move(text_);
  }

  /// The items that the rules in a part of a file read.
  [[nodiscard]] std::string reads(EditedFile const& file, Span span) const {
    std::vector<std::string> items;
    for (ReferenceAt const& use : names_.usesIn(file, span)) {
      Meaning const meaning = names_.meaningOf(use);
      if (meaning.kind == Kind::Parameter) {
        for (std::string const& type : meaning.types) items.push_back(type + '/' + meaning.name);
      } else if (use.reference->kind == Reference::Kind::Objects) {
        items.insert(items.end(), meaning.types.begin(), meaning.types.end());
      } else if (use.reference->kind == Reference::Kind::NamedRule) {
        items.push_back(std::string(nameOfKind(meaning.kind)) + " '" + meaning.name + "'");
      }
    }
    std::string text;
    std::set<std::string> seen;
    for (std::string const& item : items) {
      if (!seen.insert(item).second) continue;
      if (seen.size() > mostListed) return text + "\n- and others";
      text += "\n- " + code(item);
    }
    return text;
  }

 private:
  void paragraph(std::string const& text) { text_ += "\n\n" + text; }

  [[nodiscard]] static std::string list(std::set<std::string> const& types) {
    std::string text;
    std::size_t count = 0;
    for (std::string const& type : types) {
      if (count++ == mostListed) return text + " and others";
      text += (text.empty() ? "" : ", ") + (type.empty() ? std::string("the model") : plain(type));
    }
    return text.empty() ? "nothing" : text;
  }

  void entry(DefinitionAt const& at) {
    Definition const& definition = *at.definition;
    if (auto const& description = definition.firstOf("Description"); !description.empty()) {
      paragraph(plain(description));
    }
    if (definition.kind == Kind::Parameter || definition.kind == Kind::Child) {
      std::string lines;
      for (auto const& [key, values] : definition.attributes) {
        if (key == "Description" || key == "Accepted" || values.empty()) continue;
        lines += "\n- " + key + ": " + texts(values);
        if (key == RuleAttributes::quantityType) lines += units(values.front());
      }
      if (!lines.empty()) text_ += "\n" + lines;
    } else if (definition.kind == Kind::QuantityType) {
      if (auto const* all = definition.attribute("Units")) paragraph("Units: " + texts(*all));
    } else if (definition.attribute("") != nullptr) {
      paragraph(texts(*definition.attribute("")));
    } else if (definition.kind == Kind::ObjectType) {
      object(definition.name);
    }
    if (definition.owner.kind == Kind::Template) {
      paragraph("From the template " + plain(definition.owner.name) + ".");
    }
  }

  void object(std::string const& type) {
    std::set<std::string> params;
    for (DefinitionAt const& param : names_.paramsOf(type)) params.insert(param.definition->name);
    if (!params.empty()) paragraph(std::to_string(params.size()) + " parameters: " + list(params) + ".");
    auto const& children = names_.tree().childTypes(type);
    if (!children.empty()) paragraph("Children: " + list({children.begin(), children.end()}) + ".");
  }

  [[nodiscard]] std::string units(std::string const& quantity) const {
    auto const found = names_.named().find({Kind::QuantityType, quantity});
    if (found == names_.named().end() || found->second.empty()) return {};
    auto const* all = found->second.front().definition->attribute("Units");
    if (all == nullptr) return {};
    std::string text;
    for (std::string const& unit : *all) text += (text.empty() ? " [" : "] [") + plain(unit);
    return text.empty() ? text : text + "]";
  }

  [[nodiscard]] static std::string texts(std::vector<std::string> const& values) {
    std::string text;
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (i == mostListed) return text + " and " + std::to_string(values.size() - i) + " more";
      text += (i > 0 ? ", " : "") + code(values[i]);
    }
    return text;
  }

  void users(Meaning const& meaning) {
    std::vector<RuleNames::Use> const uses = names_.usesOf(meaning);
    std::string lines;
    std::set<std::string> seen;
    for (RuleNames::Use const& use : uses) {
      Reference const& reference = *use.at.reference;
      if (reference.kind == Reference::Kind::TypeKey || reference.kind == Reference::Kind::ModelPath) continue;
      FactEntry const& entry = *use.at.entry;
      if (entry.kind == Kind::Test) continue;
      std::string who = entry.owner.kind == Kind::ObjectType || entry.owner.kind == Kind::Template
                            ? entry.owner.name + (entry.kind == entry.owner.kind ? "" : '/' + entry.name)
                            : entry.name;
      if (who.empty()) who = use.at.file->name.substr(use.at.file->name.rfind('/') + 1);
      if (!reference.attribute.empty()) who += ", " + reference.attribute;
      if (!seen.insert(who).second) continue;
      if (seen.size() > mostListed) {
        lines += "\n- and others";
        break;
      }
      lines += "\n- " + plain(who);
    }
    if (!lines.empty()) {
      paragraph(std::string(meaning.kind == Kind::Parameter ? "Read by:" : "Used by:") + "\n" + lines);
    } else if (meaning.kind == Kind::Parameter) {
      paragraph("No rule reads it.");
    }
  }

  RuleNames const& names_;
  std::string text_;
};

/// The whole expression at an offset, which may be on several lines; the line if there is none that can be read.
Span expressionAt(EditedFile const& file, ReadPart const& part, std::size_t offset) {
  std::size_t const shift = part.part.span.begin;
  std::string_view const text = std::string_view(file.buffer.text()).substr(shift, part.part.span.size());
  for (Span const& span : expressionsIn({text, part.part.context, file.isTest})) {
    if (span.touches(offset - shift)) return {span.begin + shift, span.end + shift};
  }
  std::size_t const line = file.buffer.positionOf(offset).line;
  return {file.buffer.lineStart(line), file.buffer.lineStart(line) + file.buffer.line(line).size()};
}

/// A key with its value: its line, and the lines below that are indented more.
Span linesOfKey(TextBuffer const& buffer, std::size_t line, std::size_t indent) {
  std::size_t last = line;
  for (std::size_t next = line + 1; next < buffer.lineCount(); ++next) {
    std::string_view const text = buffer.line(next);
    std::size_t const own = text.find_first_not_of(' ');
    if (own == std::string_view::npos) continue;
    if (own <= indent) break;
    last = next;
  }
  return {buffer.lineStart(line), buffer.lineStart(last) + buffer.line(last).size()};
}

/// The word at an offset.
Span wordAt(std::string_view text, std::size_t offset) {
  auto const isPart = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
  };
  Span span{std::min(offset, text.size()), std::min(offset, text.size())};
  while (span.begin > 0 && isPart(text[span.begin - 1])) --span.begin;
  while (span.end < text.size() && isPart(text[span.end])) ++span.end;
  return span;
}

}  // namespace

std::optional<EditorHover> EditedRules::hover(std::string const& file, EditorPosition position) const {
  EditedFile const* const known = impl_->file(file);
  if (known == nullptr) return std::nullopt;
  std::size_t const offset = known->buffer.offsetOf(position);
  RuleNames const& names = impl_->names();
  Describer describer(names);
  if (auto const meaning = names.meaningAt(*known, offset)) {
    return EditorHover{known->buffer.rangeOf(meaning->span), describer.describe(*meaning)};
  }

  // The key at the cursor: what comes before its end decides where it is.
  KeyForm const& root = known->isTest ? FileKeys::ofTests().root() : FileKeys::ofRules().root();
  std::string_view const line = known->buffer.line(position.line);
  ReadPart const* const part = known->partAt(offset);
  LineKey key;
  std::size_t const dashes = std::min(line.find_first_not_of(" -"), line.size());
  std::string const padded = std::string(dashes, ' ') + std::string(line.substr(dashes));
  CursorContext const cursor = contextAt(known->buffer, part, offset, known->isTest);
  if (cursor.isComment) return std::nullopt;
  if (readLineKey(padded, key) && key.span.touches(position.byte) && cursor.isKey) {
    KeyForm const* const form = formAt(root, cursor.path);
    auto const* const property = form != nullptr ? form->find(key.key) : nullptr;
    if (property != nullptr && !property->description.empty()) {
      std::size_t const begin = known->buffer.lineStart(position.line);
      std::string markdown = "**" + key.key + "**\n\n" + property->description;
      std::string const reads = describer.reads(*known, linesOfKey(known->buffer, position.line, key.indent));
      if (!reads.empty()) markdown += "\n\nReads:\n" + reads;
      return EditorHover{known->buffer.rangeOf({begin + key.span.begin, begin + key.span.end}), markdown};
    }
    if (!cursor.path.empty() && cursor.path.back() == "Accepted") {
      for (auto const& one : rules::diagnosticCodes()) {
        if (one.name != key.key) continue;
        std::size_t const begin = known->buffer.lineStart(position.line);
        return EditorHover{known->buffer.rangeOf({begin + key.span.begin, begin + key.span.end}),
                           "**" + key.key + "**\n\n" + std::string(one.meaning)};
      }
    }
    return std::nullopt;
  }
  if (cursor.isKey) return std::nullopt;
  KeyForm const* const form = formAt(root, cursor.path);
  std::size_t const blanks = std::min(cursor.before.find_first_not_of(' '), cursor.before.size());
  bool const isExpression =
      form != nullptr &&
      (form->scalar == KeyForm::Scalar::Expression ||
       (form->scalar == KeyForm::Scalar::TextOrExpression && cursor.before.compare(blanks, 1, "=") == 0));
  if (!isExpression) return std::nullopt;
  Span const word = wordAt(known->buffer.text(), offset);
  std::string const text = known->buffer.text().substr(word.begin, word.size());
  for (auto const& function : rules::ruleFunctions()) {
    if (function.name != text) continue;
    return EditorHover{known->buffer.rangeOf(word),
                       "**" + text + "** (function)\n\n" + code(std::string(function.signature)) + "\n\n" +
                           std::string(function.help) + ". The result is " + std::string(function.result) + "."};
  }
  // Elsewhere in an expression: what it reads.
  if (part == nullptr) return std::nullopt;
  std::string const reads = describer.reads(*known, expressionAt(*known, *part, offset));
  if (reads.empty()) return std::nullopt;
  return EditorHover{known->buffer.rangeOf(word), "This expression reads:\n" + reads};
}

}  // namespace tarn::workbench
