// Answers to why and how.
#include <cstddef>
#include <limits>
#include <string_view>

#include <tarn/service/ExplanationJson.h>
#include <tarn/service/ProofJson.h>

#include "Converter.h"
#include "RecordType.h"

namespace tarn::python {

namespace py = pybind11;

namespace {

std::string_view kindName(ModelRead::Kind kind) noexcept {
  using Kind = ModelRead::Kind;
  switch (kind) {
    case Kind::Value:
      return "value";
    case Kind::Presence:
      return "presence";
    case Kind::Object:
      return "object";
    case Kind::ParameterNames:
      return "parameter-names";
    case Kind::Children:
      return "children";
    case Kind::ChildrenOfType:
      break;
  }
  return "children-of-type";
}

std::string_view kindName(Explanation::Result::Kind kind) noexcept {
  using Kind = Explanation::Result::Kind;
  switch (kind) {
    case Kind::Truth:
      return "truth";
    case Kind::Number:
      return "number";
    case Kind::Text:
      return "text";
    case Kind::List:
      return "list";
    case Kind::Objects:
      break;
  }
  return "objects";
}

py::object valueOf(Converter& convert, Explanation::Result const& result) {
  using Kind = Explanation::Result::Kind;
  switch (result.kind) {
    case Kind::Truth:
      return convert(result.truth);
    case Kind::Number:
      return convert(result.number);
    case Kind::Text:
      return convert(result.text);
    case Kind::List:
    case Kind::Objects:
      break;
  }
  return convert(result.items);
}

}  // namespace

py::object Converter::operator()(ModelRead const& read) {
  static RecordType const type("ModelRead", {"kind", "object", "name", "is_present", "value", "items", "item_count"});
  Converter& convert = *this;
  return type.make(convert(kindName(read.kind)), convert(read.object), convert(read.name), convert(read.isPresent),
                   convert(read.value), convert(read.items), convert(read.itemCount));
}

py::object Converter::operator()(Explanation::Result const& result) {
  static RecordType const type("ExplanationResult", {"kind", "value", "item_count"});
  Converter& convert = *this;
  return type.make(convert(kindName(result.kind)), valueOf(convert, result), convert(result.itemCount));
}

py::object Converter::operator()(Explanation const& explanation) {
  static RecordType const nodeType(
      "ExplanationNode", {"text", "operation", "name", "place", "context", "result", "also_fails", "total", "agreeing",
                          "is_cut_short", "reads", "children"});
  static RecordType const type("Explanation", {"nodes", "reads", "is_complete", "is_minimal"});
  Converter& convert = *this;
  py::tuple nodes(explanation.nodes.size());
  for (std::size_t i = 0; i < explanation.nodes.size(); ++i) {
    Explanation::Node const& node = explanation.nodes[i];
    TextPlace const place =
        node.source < explanation.sources.size() ? explanation.sources[node.source].place : TextPlace();
    nodes[i] = nodeType.make(convert(explanation.textOf(node)), convert(service::operationName(node.operation)),
                             convert(node.name), convert(place), convert(node.context), convert(node.result),
                             convert(node.alsoFails), convert(node.total), convert(node.agreeing),
                             convert(node.isCutShort), convert(node.reads), convert(node.children));
  }
  return type.make(nodes, convert(explanation.reads), convert(explanation.isComplete), convert(explanation.isMinimal));
}

py::object Converter::operator()(session::ProofRead const& read) {
  static RecordType const type("ProofRead", {"read", "origin", "step", "place", "is_old", "value_now", "node"});
  Converter& convert = *this;
  return type.make(convert(read.read), convert(originName(read.origin)), convert(read.step), convert(read.place),
                   convert(read.isOld), convert(read.valueNow), convert(read.node));
}

py::object Converter::operator()(session::ProofRule const& rule) {
  static RecordType const type("ProofRule", {"attribute", "text", "place", "explanation", "reads"});
  Converter& convert = *this;
  return type.make(convert(rule.attribute), convert(rule.text), convert(rule.place), convert(rule.explanation),
                   convert(rule.reads));
}

py::object Converter::operator()(session::ProofNode const& node) {
  static RecordType const type("ProofNode", {"item", "fact", "value", "step", "context_param", "needed", "reason",
                                             "place", "rules", "before", "after", "is_outdated", "children"});
  Converter& convert = *this;
  return type.make(convert(node.item), convert(service::factName(node.fact)), convert(node.value), convert(node.step),
                   convert(node.contextParam), convert(node.needed), convert(node.reason), convert(node.place),
                   convert(node.rules), convert(node.before), convert(node.after), convert(node.isOutdated),
                   convert(node.children));
}

py::object Converter::operator()(session::Proof const& proof) {
  static RecordType const type("Proof", {"question", "item", "nodes", "hidden", "_text"});
  Converter& convert = *this;
  return type.make(convert(service::questionName(proof.question)), convert(proof.item), convert(proof.nodes),
                   convert(proof.hidden),
                   convert(withoutLineEnd(textOf(proof, std::numeric_limits<std::size_t>::max()))));
}

py::object Converter::operator()(session::Goal const& goal) {
  static RecordType const type("Goal", {"item", "value"});
  Converter& convert = *this;
  return type.make(convert(goal.item), convert(goal.value));
}

py::object Converter::operator()(session::Way const& way) {
  static RecordType const type("Way", {"edits", "result", "lost", "findings_gained", "at_next_edit"});
  Converter& convert = *this;
  return type.make(convert(way.edits), convert(way.result), convert(way.lost), convert(way.findingsGained),
                   convert(way.atNextEdit));
}

py::object Converter::operator()(session::HowResult const& result) {
  static RecordType const type("HowResult", {"goal", "answer", "ways", "trials", "completed_edits", "stopped_by_time",
                                             "refused", "blocking", "free_params", "_text"});
  Converter& convert = *this;
  return type.make(convert(result.goal), convert(service::answerName(result.answer)), convert(result.ways),
                   convert(result.trials), convert(result.completedEdits), convert(result.stoppedByTime),
                   convert(result.refused), convert(result.blocking), convert(result.freeParams),
                   convert(withoutLineEnd(textOf(result))));
}

}  // namespace tarn::python
