#include "reports/ExplanationText.h"

#include <cstddef>
#include <utility>
#include <vector>

#include "edit/ShownText.h"

namespace tarn::tool {

namespace {

using Operation = Explanation::Operation;
using Result = Explanation::Result;

std::string quoted(std::string const& text) {
  std::string result = "'";
  for (char const c : shortened(text)) result.append(c == '\'' ? 2 : 1, c);
  return result + '\'';
}

// A rule may be written on several lines.
std::string onOneLine(std::string_view text) {
  std::string result;
  for (char const c : text) {
    bool const isBlank = c == ' ' || c == '\t' || c == '\n' || c == '\r';
    if (!isBlank) {
      result += c;
    } else if (!result.empty() && result.back() != ' ') {
      result += ' ';
    }
  }
  return shortened(result);
}

std::string readText(ModelRead const& read) {
  using Kind = ModelRead::Kind;
  std::string const object = read.object.empty() ? "/" : shortened(read.object);
  switch (read.kind) {
    case Kind::Value:
      return shortened(read.object + '/' + read.name) +
             (read.isPresent ? " = " + shortened(read.value) : " is not present");
    case Kind::Presence:
      return shortened(read.object + '/' + read.name) + (read.isPresent ? " is present" : " is not present");
    case Kind::Object:
      return object + (read.isPresent ? " is present" : " is not present");
    case Kind::ParameterNames:
      return "the parameters of " + object + ": " + std::to_string(read.itemCount);
    case Kind::Children:
      return "the children of " + object + ": " + std::to_string(read.itemCount);
    case Kind::ChildrenOfType:
      return "the children " + shortened(read.name) + " of " + object + ": " + std::to_string(read.itemCount);
  }
  return {};
}

bool isSet(Operation operation) {
  return operation == Operation::Any || operation == Operation::All || operation == Operation::Count ||
         operation == Operation::Filter;
}

/// How many of the operands, or objects, agree: "1 of 2".
std::string share(Explanation::Node const& node) {
  bool const isRow = node.operation == Operation::And || node.operation == Operation::Or;
  if (node.total < 2 || !(isRow || isSet(node.operation))) return {};
  bool const isMatch = isSet(node.operation) && node.result.kind != Result::Kind::Truth;
  std::string const agree = isMatch ? "match" : node.result.truth ? "hold" : "do not hold";
  std::string const number = node.isCutShort ? "at least " + std::to_string(node.agreeing)
                                             : std::to_string(node.agreeing) + " of " + std::to_string(node.total);
  return "   (" + number + (isRow ? " operands " : " objects ") + agree + ')';
}

}  // namespace

std::string valueText(Result const& result) {
  switch (result.kind) {
    case Result::Kind::Truth:
      return result.truth ? "true" : "false";
    case Result::Kind::Number:
      return result.text.empty() ? "not a number" : shortened(result.text);
    case Result::Kind::Text:
      return quoted(result.text);
    case Result::Kind::List:
    case Result::Kind::Objects:
      break;
  }
  bool const isList = result.kind == Result::Kind::List;
  std::string text = isList ? "(" : "{";
  for (std::string const& item : result.items) {
    text += (text.size() > 1 ? ", " : "") + (isList ? quoted(item) : shortened(item));
  }
  if (result.itemCount > result.items.size()) {
    text += " and " + std::to_string(result.itemCount - result.items.size()) + " more";
  }
  return text + (isList ? ")" : "}");
}

std::string explanationText(Explanation const& explanation, std::string const& indent) {
  struct Open {
    std::size_t node;
    std::size_t depth;
    std::string const* context;  // of the part above
  };
  std::string text;
  if (explanation.nodes.empty()) return text;
  std::vector<Open> open = {{0, 0, &explanation.nodes.front().context}};
  while (!open.empty()) {
    Open const next = open.back();
    open.pop_back();
    Explanation::Node const& node = explanation.nodes[next.node];
    if (node.operation == Operation::Literal && next.depth > 0) continue;
    std::string const margin = indent + std::string(2 * next.depth, ' ');
    std::string const written = onOneLine(explanation.textOf(node));
    text += margin;
    if (node.context != *next.context) text += "at " + shortened(node.context.empty() ? "/" : node.context) + ": ";
    text += (written.empty() ? "(computed)" : written) + "   " + valueText(node.result) + share(node);
    if (node.alsoFails) text += "   (fails as well)";
    text += '\n';
    for (std::size_t const read : node.reads) text += margin + "    " + readText(explanation.reads[read]) + '\n';
    for (auto child = node.children.rbegin(); child != node.children.rend(); ++child) {
      open.push_back({*child, next.depth + 1, &node.context});
    }
  }
  return text;
}

}  // namespace tarn::tool
