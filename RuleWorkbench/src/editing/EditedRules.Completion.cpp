// Proposals for the text at the cursor. The text before the cursor decides, because the rest is rarely complete.

#include <algorithm>
#include <array>
#include <set>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/RuleAttributes.h>
#include <tarn/StringUtilities.h>
#include <tarn/rules/Diagnostic.h>
#include <tarn/rules/RuleFunction.h>

#include "editing/CursorContext.h"
#include "editing/EditedRulesImpl.h"
#include "editing/ExpressionScan.h"
#include "editing/FileKeys.h"

namespace tarn::workbench {

std::vector<std::string> allowedValuesOf(Definition const& parameter) {
  for (std::string_view const key : {RuleAttributes::orderedAllowedStringList}) {
    if (auto const* values = parameter.attribute(key); values != nullptr) return *values;
  }
  std::string const& type = parameter.firstOf(RuleAttributes::parameterType);
  if (type == "Logical" || type == "Logical List") return {"true", "false"};
  return {};
}

namespace {

using Kind = EditorItemKind;

bool isWordPart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

/// The text in the quotes of an expression.
std::string quotedText(std::string_view text) {
  std::string result = "'";
  for (char const c : text) {
    if (c == '\'') result += c;
    result += c;
  }
  return result + "'";
}

/// The text as a scalar of YAML that may be part of a list in flow style.
std::string asScalar(std::string const& text, bool isFlow) {
  bool const isPlain = !text.empty() && text.find(": ") == std::string::npos && text.find(" #") == std::string::npos &&
                       std::string_view("-?:,[]{}#&*!|>'\"%@`= ").find(text.front()) == std::string_view::npos &&
                       text.back() != ' ' && text.back() != ':' &&
                       (!isFlow || text.find_first_of(",[]{}") == std::string::npos);
  return isPlain ? text : quotedText(text);
}

class Completer {
 public:
  Completer(RuleNames const& names, EditedFile const& file, std::size_t offset)
      : names_(names),
        file_(file),
        offset_(offset),
        cursor_(contextAt(file.buffer, file.partAt(offset), offset, file.isTest)) {}

  std::vector<EditorCompletion> run() {
    if (cursor_.isComment) return {};
    KeyForm const& root = file_.isTest ? FileKeys::ofTests().root() : FileKeys::ofRules().root();
    KeyForm const* const form = formAt(root, cursor_.path);
    if (cursor_.isKey) {
      if (form != nullptr) keys(*form);
    } else if (form != nullptr) {
      value(*form);
    }
    return std::move(result_);
  }

 private:
  // Adding

  /// The range of `length` bytes before the cursor and `after` bytes after it.
  [[nodiscard]] EditorRange around(std::size_t length, std::size_t after) const {
    EditorPosition const position = file_.buffer.positionOf(offset_);
    return {{position.line, position.byte - std::min(length, position.byte)}, {position.line, position.byte + after}};
  }

  [[nodiscard]] std::string_view restOfLine() const {
    EditorPosition const position = file_.buffer.positionOf(offset_);
    return file_.buffer.line(position.line).substr(position.byte);
  }

  void add(std::string label, Kind kind, std::string detail, std::string documentation, std::string text,
           EditorRange const& replaced) {
    if (!seen_.insert(label).second) return;
    result_.push_back({std::move(label), kind, std::move(detail), std::move(documentation), replaced, std::move(text)});
  }

  // Keys

  void keys(KeyForm const& form) {
    std::string_view const rest = restOfLine();
    std::size_t const colon = cursor_.hasColon ? rest.find(':') : std::string_view::npos;
    std::size_t const after = colon == std::string_view::npos ? 0 : colon;
    EditorRange const replaced = around(cursor_.before.size(), after);
    auto const isTaken = [&](std::string const& key) {
      return std::find(cursor_.siblings.begin(), cursor_.siblings.end(), key) != cursor_.siblings.end();
    };
    auto const addKey = [&](std::string const& key, Kind kind, std::string detail, std::string documentation,
                            bool hasValueBelow) {
      if (isTaken(key)) return;
      std::string text = cursor_.quote != 0 ? key : key.starts_with('/') ? key : asScalar(key, cursor_.isFlow);
      if (cursor_.quote == 0 && !cursor_.hasColon) text += hasValueBelow ? ":" : ": ";
      add(key, kind, std::move(detail), std::move(documentation), std::move(text), replaced);
    };
    for (auto const& [key, property] : form.keys) {
      bool const isMap = property.form != nullptr && property.form->named != nullptr && property.form->keys.empty();
      addKey(key, Kind::Key, property.isRequired ? "required" : "", property.description, isMap && !cursor_.isFlow);
    }
    if (file_.isTest) {
      testKeys(form);
      return;
    }
    auto const& path = cursor_.path;
    if (path.size() == 1 && path[0] == "Objects") {
      for (auto const& [type, children] : names_.tree().all()) {
        auto const known = names_.types().find(type);
        bool const isNew = known == names_.types().end() || known->second.definitions.empty();
        if (!type.empty() && isNew) addKey(type, Kind::ObjectType, "has no object entry yet", "", true);
      }
    } else if (path.size() == 3 && path[2] == "Children") {
      for (std::string const& child : names_.tree().childTypes(path[1])) {
        if (names_.findChild(path[1], child).empty()) addKey(child, Kind::Child, "has no child entry yet", "", true);
      }
    } else if (!path.empty() && path.back() == "Accepted") {
      for (auto const& code : rules::diagnosticCodes()) {
        if (code.isOfLint) addKey(std::string(code.name), Kind::Value, "", std::string(code.meaning), false);
      }
    } else if (path.size() == 5 && (path[4] == RuleAttributes::allowedStringListChecks || path[4] == "Beta Values")) {
      for (std::string const& value : ownValues()) addKey(value, Kind::Value, "", "", false);
    }
  }

  /// The values of the parameter whose entry the cursor is in.
  [[nodiscard]] std::vector<std::string> ownValues() const {
    auto const& path = cursor_.path;
    if (path.size() < 4 || path[2] != "Parameters") return {};
    bool const isTemplate = path[0] == "Templates";
    auto const& owners = isTemplate ? names_.templates() : names_.types();
    auto const owner = owners.find(path[1]);
    if (owner == owners.end()) return {};
    for (DefinitionAt const& param : owner->second.params) {
      if (param.definition->name == path[3]) return allowedValuesOf(*param.definition);
    }
    return {};
  }

  // Values

  [[nodiscard]] FactOwner owner() const {
    auto const& path = cursor_.path;
    if (file_.isTest) return testOwner("", siblingText(file_.buffer, offset_, "At"));
    if (path.size() < 2) return {};
    if (path[0] == "Objects") return {Kind::ObjectType, path[1]};
    if (path[0] == "Templates") return {Kind::Template, path[1]};
    if (path[0] == "Checks") return {Kind::NamedCheck, path[1]};
    if (path[0] == "Lists") return {Kind::NamedList, path[1]};
    if (path[0] == "Values") return {Kind::NamedValue, path[1]};
    return {};
  }

  void value(KeyForm const& form) {
    std::string_view before = cursor_.before;
    if (cursor_.quote == 0) {
      before = before.substr(std::min(before.find_first_not_of(' '), before.size()));
    }
    if (form.scalar == KeyForm::Scalar::Expression) {
      expression(before, owner());
      return;
    }
    if (form.scalar == KeyForm::Scalar::TextOrExpression && before.starts_with('=')) {
      expression(before.substr(1), owner());
      return;
    }
    if (file_.isTest) {
      testValue(form, before);
      return;
    }
    auto const& path = cursor_.path;
    std::string const& key = path.empty() ? std::string() : keyOfValue();
    for (std::string const& one : form.values) scalar(one, Kind::Value, "", "", before);
    if (key == RuleAttributes::quantityType) {
      for (auto const& [name, places] : names_.named()) {
        if (name.first == Kind::QuantityType) scalar(name.second, Kind::QuantityType, unitsOf(places), "", before);
      }
    } else if (key == "Use") {
      for (auto const& [name, entries] : names_.templates()) scalar(name, Kind::Template, "", "", before);
    } else if (key == "Pertinent Roots") {
      for (std::string const& type : names_.tree().childTypes("")) scalar(type, Kind::ObjectType, "", "", before);
    } else if (key == "Context") {
      contexts(before);
    } else if (key == RuleAttributes::defaultValue || key == "Value" || isListOfValues(key)) {
      for (std::string const& one : ownValues()) scalar(one, Kind::Value, "", "", before);
    }
  }

  [[nodiscard]] static bool isListOfValues(std::string const& key) {
    return key == RuleAttributes::subsetAllowedStringList;
  }

  /// The last key of the path that is not an item of a list.
  [[nodiscard]] std::string const& keyOfValue() const {
    static std::string const none;
    auto const key = std::find_if(cursor_.path.rbegin(), cursor_.path.rend(),
                                  [](std::string const& one) { return one != listItem; });
    return key != cursor_.path.rend() ? *key : none;
  }

  [[nodiscard]] static std::string unitsOf(std::vector<DefinitionAt> const& places) {
    auto const* units = places.empty() ? nullptr : places.front().definition->attribute("Units");
    std::string text;
    if (units == nullptr) return text;
    for (std::string const& unit : *units) text += (text.empty() ? "[" : ", [") + unit + "]";
    return text;
  }

  /// The values of the parameters that select contexts.
  void contexts(std::string_view before) {
    if (cursor_.path.size() < 2) return;
    for (std::string const& type : names_.contextsOf(owner())) {
      for (DefinitionAt const& param : names_.paramsOf(type)) {
        if (!StringUtilities::equalIgnoringCase(param.definition->firstOf("Context Rule"), "yes")) continue;
        for (std::string const& one : allowedValuesOf(*param.definition)) {
          scalar(one, Kind::Value, "of " + param.definition->name, "", before);
        }
      }
    }
  }

  /// A whole scalar in place of what is written before the cursor.
  void scalar(std::string const& text, Kind kind, std::string detail, std::string documentation,
              std::string_view before) {
    std::string_view const rest = restOfLine();
    std::size_t after = 0;
    if (cursor_.quote != 0) {
      after = std::min(rest.find(cursor_.quote), rest.size());
      if (after == rest.size()) after = 0;
    } else if (cursor_.isFlow) {
      while (after < rest.size() && isWordPart(rest[after])) ++after;
    } else {
      after = rest.substr(0, std::min(rest.find(" #"), rest.size())).size();
    }
    std::string written = text;
    if (cursor_.quote == 0) written = asScalar(text, cursor_.isFlow);
    if (cursor_.before.empty() && cursor_.quote == 0 && !cursor_.isFlow && offset_ > 0 &&
        file_.buffer.text()[offset_ - 1] == ':') {
      written.insert(0, 1, ' ');
    }
    add(text, kind, std::move(detail), std::move(documentation), std::move(written), around(before.size(), after));
  }

  // Expressions

  void expression(std::string_view before, FactOwner const& who) {
    auto const parts = scanExpression(before);
    if (!parts.empty() && parts.back().isOpen) {
      ExpressionPart const& last = parts.back();
      bool const isParameter = last.kind == ExpressionPart::Kind::Parameter;
      if (isParameter || last.kind == ExpressionPart::Kind::Objects) {
        path(last.text, last.scope.get(), isParameter, who);
      } else {
        openText(parts, who);
      }
      return;
    }
    std::size_t word = 0;
    while (word < before.size() && isWordPart(before[before.size() - 1 - word])) ++word;
    std::string_view const beforeWord = before.substr(0, before.size() - word);
    auto const partsBefore = scanExpression(beforeWord);
    bool const needsOperand = partsBefore.empty() || isOperator(partsBefore.back());
    std::string_view const rest = restOfLine();
    std::size_t after = 0;
    while (after < rest.size() && isWordPart(rest[after])) ++after;
    EditorRange const replaced = around(word, after);
    if (!needsOperand) {
      for (std::string_view const keyword : {"and", "or", "implies", "in", "not in"}) {
        add(std::string(keyword), Kind::Word, "", "", std::string(keyword), replaced);
      }
      return;
    }
    for (std::string const& one : comparedValues(partsBefore, who)) {
      add(quotedText(one), Kind::Value, "", "", inYaml(quotedText(one)), replaced);
    }
    auto const scope = scopeAtEnd(beforeWord);
    bool const isCalled = rest.substr(after).starts_with('(');
    for (auto const& function : rules::ruleFunctions()) {
      std::string const name(function.name);
      add(name, Kind::Function, std::string(function.signature), std::string(function.help) + ".",
          name + (isCalled ? "" : "("), replaced);
    }
    for (std::string_view const keyword : {"not", "true", "false"}) {
      add(std::string(keyword), Kind::Word, "", "", std::string(keyword), replaced);
    }
    if (scope) {
      for (auto const& [name, objects] : scope->names) {
        add(name, Kind::Word, "the object under test", "", name, replaced);
      }
    }
    namedRules(replaced);
    for (std::string const& type : contextTypes(scope.get(), who)) {
      for (DefinitionAt const& param : names_.paramsOf(type)) {
        add("${" + param.definition->name + "}", Kind::Parameter, detailOf(*param.definition),
            param.definition->firstOf("Description"), inYaml("${" + param.definition->name + "}"), replaced);
      }
    }
  }

  void namedRules(EditorRange const& replaced) {
    for (auto const& [name, places] : names_.named()) {
      std::string_view function;
      if (name.first == Kind::NamedCheck) function = "check";
      if (name.first == Kind::NamedList) function = "list";
      if (name.first == Kind::NamedValue) function = "value";
      if (function.empty() || places.empty()) continue;
      std::string const call = std::string(function) + "(" + quotedText(name.second) + ")";
      add(call, name.first, places.front().definition->firstOf(""), "", inYaml(call), replaced);
    }
  }

  /// A text of the language inside the quotes of YAML around it.
  [[nodiscard]] std::string inYaml(std::string const& text) const {
    std::string result;
    for (char const c : text) {
      if (cursor_.quote == '\'' && c == '\'') result += c;
      if (cursor_.quote == '"' && (c == '"' || c == '\\')) result += '\\';
      result += c;
    }
    return result;
  }

  [[nodiscard]] static bool isOperator(ExpressionPart const& part) {
    if (part.kind == ExpressionPart::Kind::Keyword) return part.text != "true" && part.text != "false";
    return part.kind == ExpressionPart::Kind::Symbol && part.text != ")";
  }

  [[nodiscard]] std::set<std::string> contextTypes(ExpressionScope const* scope, FactOwner const& who) const {
    if (scope == nullptr) return names_.contextsOf(who);
    std::set<std::string> result;
    for (std::string const& type : names_.viewpointsOf(who)) result.merge(names_.tree().resolve(scope->context, type));
    return result;
  }

  /// The parameter that the parts end by comparing with something; null if they do not.
  [[nodiscard]] static ExpressionPart const* compared(std::vector<ExpressionPart> const& parts) {
    std::size_t i = parts.size();
    if (i == 0) return nullptr;
    if (parts[i - 1].text == "==" || parts[i - 1].text == "!=") {
      return i >= 2 && parts[i - 2].kind == ExpressionPart::Kind::Parameter ? &parts[i - 2] : nullptr;
    }
    // The items of a list after `in`.
    while (i > 0 && (parts[i - 1].text == "," || parts[i - 1].kind == ExpressionPart::Kind::Text)) --i;
    if (i == 0 || parts[i - 1].text != "(" || i < 3) return nullptr;
    --i;
    if (parts[i - 1].text != "in") return nullptr;
    --i;
    if (i > 0 && parts[i - 1].text == "not") --i;
    return i > 0 && parts[i - 1].kind == ExpressionPart::Kind::Parameter ? &parts[i - 1] : nullptr;
  }

  [[nodiscard]] std::vector<std::string> comparedValues(std::vector<ExpressionPart> const& parts,
                                                        FactOwner const& who) const {
    ExpressionPart const* const parameter = compared(parts);
    std::vector<std::string> values;
    if (parameter == nullptr) return values;
    auto const components = componentsOf(parameter->text);
    if (components.empty()) return values;
    std::string const name =
        typeOfComponent(std::string_view(parameter->text).substr(components.back().begin, components.back().size()));
    for (std::string const& type : names_.resolveOwners(parameter->text, parameter->scope.get(), who)) {
      for (DefinitionAt const& param : names_.findParam(type, name)) {
        for (std::string& one : allowedValuesOf(*param.definition)) {
          if (std::find(values.begin(), values.end(), one) == values.end()) values.push_back(std::move(one));
        }
      }
    }
    return values;
  }

  /// In a text that has no end yet.
  void openText(std::vector<ExpressionPart> const& parts, FactOwner const& who) {
    ExpressionPart const& last = parts.back();
    std::string_view const rest = restOfLine();
    std::size_t const close = rest.find(offset_ > 0 ? quoteOf(last) : '\'');
    std::size_t const after = close == std::string_view::npos ? 0 : close;
    EditorRange const replaced = around(last.text.size(), after);
    std::string const end = close == std::string_view::npos ? std::string(1, quoteOf(last)) : std::string();
    Kind kind = Kind::Section;
    if (last.kind == ExpressionPart::Kind::CheckName) kind = Kind::NamedCheck;
    if (last.kind == ExpressionPart::Kind::ListName) kind = Kind::NamedList;
    if (last.kind == ExpressionPart::Kind::ValueName) kind = Kind::NamedValue;
    if (kind != Kind::Section) {
      for (auto const& [name, places] : names_.named()) {
        if (name.first != kind || places.empty()) continue;
        add(name.second, kind, places.front().definition->firstOf(""), "", inYaml(name.second + end), replaced);
      }
      return;
    }
    std::vector<ExpressionPart> const before(parts.begin(), parts.end() - 1);
    for (std::string const& one : comparedValues(before, who)) {
      add(one, Kind::Value, "", "", inYaml(one + end), replaced);
    }
  }

  [[nodiscard]] char quoteOf(ExpressionPart const& text) const {
    // The quote is the character before the content, which the scan leaves out.
    std::string_view const before = cursor_.before;
    std::size_t const at = before.size() - std::min(before.size(), text.text.size());
    return at > 0 && before[at - 1] == '"' ? '"' : '\'';
  }

  /// In a path that has no end yet.
  void path(std::string_view text, ExpressionScope const* scope, bool isParameter, FactOwner const& who) {
    std::size_t slash = std::string_view::npos;
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text[i] == '\\') {
        ++i;
      } else if (text[i] == '/') {
        slash = i;
      }
    }
    bool const isFirst = slash == std::string_view::npos;
    std::string_view const component = isFirst ? text : text.substr(slash + 1);
    std::string_view const rest = restOfLine();
    std::size_t const end = rest.find_first_of("/:}'\"");
    bool const isClosed = end != std::string_view::npos && rest.find('}') != std::string_view::npos;
    std::size_t const after = isClosed ? end : 0;
    EditorRange const replaced = around(component.size(), after);
    std::string const close = isClosed || rest.starts_with('}') ? "" : "}";
    if (component.find(':') != std::string_view::npos) {
      std::string_view const name = component.substr(component.find(':') + 1);
      add("*", Kind::Word, "all of the type", "", "*", around(name.size(), after));
      return;
    }
    std::set<std::string> types;
    if (isFirst) {
      types = contextTypes(scope, who);
    } else if (slash == 0) {
      types = {""};
    } else {
      types = names_.resolve(text.substr(0, slash), scope, who);
    }
    for (std::string const& type : types) {
      if (isParameter) {
        for (DefinitionAt const& param : names_.paramsOf(type)) {
          std::string const& name = param.definition->name;
          add(name, Kind::Parameter, detailOf(*param.definition), param.definition->firstOf("Description"),
              inYaml(PathPattern::escapedPath(name) + close), replaced);
        }
      }
      for (std::string const& child : names_.tree().childTypes(type)) {
        auto const entries = names_.findChild(type, child);
        bool const isSingle =
            type.empty() || std::any_of(entries.begin(), entries.end(), [](DefinitionAt const& entry) {
              return StringUtilities::equalIgnoringCase(entry.definition->firstOf("Singleton"), "yes");
            });
        std::string const written = PathPattern::escapedPath(child) + (isSingle ? "" : ":*");
        auto const known = names_.types().find(type + '/' + child);
        std::string const description = known == names_.types().end() || known->second.definitions.empty()
                                            ? std::string()
                                            : known->second.definitions.front().definition->firstOf("Description");
        add(child, Kind::ObjectType, type + '/' + child, description, inYaml(written), replaced);
      }
    }
    if (!isFirst) return;
    add("..", Kind::Word, "the parent", "", "..", replaced);
    add("@", Kind::Word, "the object that owns the rule", "", "@", replaced);
    if (scope != nullptr) {
      for (auto const& [name, objects] : scope->names) {
        add(name, Kind::Word, "the object under test", "", name, replaced);
      }
    }
    std::set<std::string> ancestors;
    for (std::string type : types) {
      for (std::size_t at = type.rfind('/'); at != std::string::npos; at = type.rfind('/')) {
        ancestors.insert(type.substr(at + 1));
        type.resize(at);
      }
    }
    for (std::string const& type : ancestors) {
      add('^' + type, Kind::ObjectType, "the nearest at or above the object", "", inYaml('^' + type), replaced);
    }
    for (std::string const& root : names_.tree().childTypes("")) {
      add('/' + root, Kind::ObjectType, "from the root of the model", "", inYaml('/' + root), replaced);
    }
  }

  [[nodiscard]] static std::string detailOf(Definition const& param) {
    std::string detail = param.firstOf(RuleAttributes::parameterType);
    if (auto const& quantity = param.firstOf(RuleAttributes::quantityType); !quantity.empty()) {
      detail += ", " + quantity;
    }
    return detail;
  }

  // Tests

  void testKeys(KeyForm const& form) {
    // The keys of `Set` and of most expectations are paths.
    bool const hasPaths = form.keys.empty() && form.named != nullptr && cursor_.path.size() > 2;
    if (hasPaths) modelPath(cursor_.before, cursor_.hasColon ? "" : ": ");
  }

  void testValue(KeyForm const& form, std::string_view before) {
    for (std::string const& one : form.values) scalar(one, Kind::Value, "", "", before);
    std::string const& key = keyOfValue();
    if (key.starts_with('/')) {
      std::string const type = PathUtils::typePathOf(key);
      std::size_t const slash = type.rfind('/');
      for (DefinitionAt const& param : names_.findParam(type.substr(0, slash), type.substr(slash + 1))) {
        for (std::string const& one : allowedValuesOf(*param.definition)) scalar(one, Kind::Value, "", "", before);
      }
    } else if (form.scalar == KeyForm::Scalar::Path || before.starts_with('/')) {
      std::size_t const line = before.rfind(key == "Model" ? '\n' : '\0');
      modelPath(line == std::string_view::npos ? before : before.substr(line + 1), "");
    }
  }

  /// The path of an object or parameter of a model.
  void modelPath(std::string_view before, std::string_view end) {
    std::size_t const slash = before.rfind('/');
    std::string_view const component = slash == std::string_view::npos ? before : before.substr(slash + 1);
    if (component.find(':') != std::string_view::npos) return;
    std::string const type =
        slash == std::string_view::npos ? std::string() : PathUtils::typePathOf(before.substr(0, slash));
    EditorRange const replaced = around(component.size(), 0);
    std::string const lead = slash == std::string_view::npos ? "/" : "";
    for (DefinitionAt const& param : names_.paramsOf(type)) {
      add(param.definition->name, Kind::Parameter, detailOf(*param.definition),
          param.definition->firstOf("Description"), param.definition->name + std::string(end), replaced);
    }
    for (std::string const& child : names_.tree().childTypes(type)) {
      add(lead + child, Kind::ObjectType, type + '/' + child, "", lead + child, replaced);
    }
  }

  RuleNames const& names_;
  EditedFile const& file_;
  std::size_t offset_;
  CursorContext cursor_;
  std::set<std::string> seen_;
  std::vector<EditorCompletion> result_;
};

}  // namespace

std::vector<EditorCompletion> EditedRules::complete(std::string const& file, EditorPosition position) const {
  EditedFile const* const known = impl_->file(file);
  if (known == nullptr) return {};
  return Completer(impl_->names(), *known, known->buffer.offsetOf(position)).run();
}

}  // namespace tarn::workbench
