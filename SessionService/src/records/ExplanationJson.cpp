#include <tarn/service/ExplanationJson.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <tarn/service/JsonText.h>

namespace tarn::service {

namespace {

using Json = nlohmann::ordered_json;

void addResult(Json& json, Explanation::Result const& result) {
  using Kind = Explanation::Result::Kind;
  switch (result.kind) {
    case Kind::Truth:
      json["value"] = result.truth;
      break;
    case Kind::Number:
      json["value"] = numberAsJson(result.number);
      break;
    case Kind::Text:
      json["value"] = result.text;
      break;
    case Kind::List:
    case Kind::Objects:
      json["value"] = result.items;
      if (result.itemCount > result.items.size()) json["itemCount"] = result.itemCount;
      break;
  }
}

// The depth of a tree is limited, so this may call itself.
Json partAsJson(Explanation const& explanation, std::size_t index) {
  Explanation::Node const& node = explanation.nodes[index];
  Json json;
  json["text"] = explanation.textOf(node);
  json["operation"] = operationName(node.operation);
  if (!node.name.empty()) json["name"] = node.name;
  addResult(json, node.result);
  json["context"] = node.context;
  if (node.alsoFails) json["alsoFails"] = true;
  if (node.total > 0) {
    json["total"] = node.total;
    json["agreeing"] = node.agreeing;
  }
  if (node.isCutShort) json["isCutShort"] = true;
  if (!node.reads.empty()) {
    json["reads"] = jsonList(node.reads, [&](std::size_t read) { return modelReadAsJson(explanation.reads[read]); });
  }
  if (!node.children.empty()) {
    json["parts"] = jsonList(node.children, [&](std::size_t child) { return partAsJson(explanation, child); });
  }
  return json;
}

}  // namespace

std::string_view operationName(Explanation::Operation operation) noexcept {
  using Operation = Explanation::Operation;
  switch (operation) {
    case Operation::Opaque:
      return "opaque";
    case Operation::Literal:
      return "literal";
    case Operation::Parameter:
      return "parameter";
    case Operation::Objects:
      return "objects";
    case Operation::Not:
      return "not";
    case Operation::And:
      return "and";
    case Operation::Or:
      return "or";
    case Operation::Implies:
      return "implies";
    case Operation::Equal:
      return "equal";
    case Operation::NotEqual:
      return "not-equal";
    case Operation::Less:
      return "less";
    case Operation::LessEqual:
      return "less-equal";
    case Operation::Greater:
      return "greater";
    case Operation::GreaterEqual:
      return "greater-equal";
    case Operation::In:
      return "in";
    case Operation::NotIn:
      return "not-in";
    case Operation::Exists:
      return "exists";
    case Operation::Any:
      return "any";
    case Operation::All:
      return "all";
    case Operation::Count:
      return "count";
    case Operation::Filter:
      return "filter";
    case Operation::Choice:
      return "choice";
    case Operation::NamedRule:
      return "named-rule";
    case Operation::Function:
      return "function";
    case Operation::Arithmetic:
      return "arithmetic";
    case Operation::ListOfItems:
      return "list";
  }
  return {};
}

Json numberAsJson(double number) {
  if (!std::isfinite(number)) return {};
  constexpr double mostExact = 9007199254740992.0;  // up to here, every whole number is a double
  if (std::abs(number) <= mostExact && std::trunc(number) == number) return static_cast<std::int64_t>(number);
  return number;
}

Json modelReadAsJson(ModelRead const& read) {
  using Kind = ModelRead::Kind;
  Json json = {{"path", read.object}};
  switch (read.kind) {
    case Kind::Value:
    case Kind::Presence:
      json["name"] = read.name;
      break;
    case Kind::ChildrenOfType:
      json["childrenOfType"] = read.name;
      break;
    case Kind::Children:
      json["children"] = true;
      break;
    case Kind::ParameterNames:
      json["parameterNames"] = true;
      break;
    case Kind::Object:
      break;
  }
  json["isPresent"] = read.isPresent;
  if (read.kind == Kind::Value && read.isPresent) json["value"] = read.value;
  if (!read.items.empty()) json["items"] = read.items;
  if (read.itemCount > read.items.size()) json["itemCount"] = read.itemCount;
  return json;
}

Json explanationAsJson(Explanation const& explanation) {
  return explanation.nodes.empty() ? Json() : partAsJson(explanation, 0);
}

}  // namespace tarn::service
