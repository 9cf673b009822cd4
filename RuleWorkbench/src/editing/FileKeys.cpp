// JSON is YAML, so the reader of rule files reads the schemas.

#include "editing/FileKeys.h"

#include <algorithm>
#include <limits>
#include <utility>

#include <tarn/workbench/Schemas.h>

#include "diagnostics/DiagnosticList.h"
#include "yaml/YamlDocument.h"

namespace tarn::workbench {

using rules::YamlNode;

struct FileKeys::Reader {
  YamlNode const& schema;
  std::deque<KeyForm>& forms;
  std::map<std::string, KeyForm*> definitions = {};

  KeyForm* read(YamlNode const& node) {
    if (auto const* reference = valueIn(node, "$ref")) return definition(reference->value);
    KeyForm& form = forms.emplace_back();
    fill(form, node);
    return &form;
  }

 private:
  KeyForm* definition(std::string const& reference) {
    std::string const name = reference.substr(reference.rfind('/') + 1);
    auto const [known, isNew] = definitions.try_emplace(name, nullptr);
    if (!isNew) return known->second;
    KeyForm& form = forms.emplace_back();
    definitions[name] = &form;
    form.name = name;
    if (name == "expression") form.scalar = KeyForm::Scalar::Expression;
    if (name == "textOrExpression" || name == "names") form.scalar = KeyForm::Scalar::TextOrExpression;
    if (name == "yesOrNo") {
      form.scalar = KeyForm::Scalar::YesOrNo;
      form.values = {"yes", "no"};
    }
    if (name == "path") form.scalar = KeyForm::Scalar::Path;
    auto const* all = valueIn(schema, "definitions");
    auto const* body = all != nullptr ? valueIn(*all, name) : nullptr;
    if (body != nullptr) fill(form, *body);
    return &form;
  }

  /// Adds what another form allows.
  static void merge(KeyForm& form, KeyForm const& other) {
    if (form.description.empty()) form.description = other.description;
    if (form.name.empty()) form.name = other.name;
    for (auto const& key : other.keys) {
      if (form.find(key.first) == nullptr) form.keys.push_back(key);
    }
    if (form.named == nullptr) form.named = other.named;
    if (form.items == nullptr) form.items = other.items;
    if (form.values.empty()) form.values = other.values;
    if (form.scalar == KeyForm::Scalar::Text) form.scalar = other.scalar;
  }

  void fill(KeyForm& form, YamlNode const& node) {
    if (auto const* text = valueIn(node, "description")) form.description = text->value;
    if (auto const* values = valueIn(node, "enum")) {
      for (auto const* value : values->children) {
        if (std::find(form.values.begin(), form.values.end(), value->value) == form.values.end()) {
          form.values.push_back(value->value);
        }
      }
    }
    auto const* required = valueIn(node, "required");
    auto const isRequired = [&](std::string const& key) {
      return required != nullptr && std::any_of(required->children.begin(), required->children.end(),
                                                [&](YamlNode const* one) { return one->value == key; });
    };
    rules::forEachIn(valueIn(node, "properties"), [&](YamlNode const& key, YamlNode const& value) {
      KeyForm* const property = read(value);
      if (key.value == "Expression") property->scalar = KeyForm::Scalar::Expression;  // of a test
      form.keys.push_back({key.value, {property->description, property, isRequired(key.value)}});
    });
    if (auto const* named = valueIn(node, "additionalProperties"); named != nullptr && isMap(*named)) {
      form.named = read(*named);
    }
    if (auto const* items = valueIn(node, "items")) form.items = read(*items);
    for (char const* const choice : {"anyOf", "allOf"}) {
      auto const* all = valueIn(node, choice);
      if (all == nullptr) continue;
      for (auto const* one : all->children) merge(form, *read(*one));
    }
  }

  static bool isMap(YamlNode const& node) { return node.kind == YamlNode::Kind::Mapping; }
};

FileKeys::FileKeys(std::string_view schema) {
  rules::SourceText const source("schema", std::string(schema));
  rules::DiagnosticList diagnostics(1);
  rules::YamlDocument const document(source, {64, std::numeric_limits<std::size_t>::max()}, diagnostics);
  static YamlNode const nothing;
  Reader reader{document.root() != nullptr ? *document.root() : nothing, forms_};
  root_ = reader.read(reader.schema);
}

FileKeys const& FileKeys::ofRules() {
  static FileKeys const keys(ruleFileSchema());
  return keys;
}

FileKeys const& FileKeys::ofTests() {
  static FileKeys const keys(ruleTestsSchema());
  return keys;
}

KeyForm::Property const* KeyForm::find(std::string_view key) const noexcept {
  auto const found = std::find_if(keys.begin(), keys.end(), [&](auto const& one) { return one.first == key; });
  return found != keys.end() ? &found->second : nullptr;
}

KeyForm const* KeyForm::valueOf(std::string_view key) const noexcept {
  auto const* property = find(key);
  return property != nullptr ? property->form : named;
}

KeyForm const* formAt(KeyForm const& root, std::vector<std::string> const& path) {
  KeyForm const* form = &root;
  for (std::string const& key : path) {
    form = key == listItem ? form->items : form->valueOf(key);
    if (form == nullptr) return nullptr;
  }
  return form;
}

}  // namespace tarn::workbench
