#include "reports/GraphReport.h"

#include <ostream>
#include <string>
#include <string_view>
#include <utility>

#include <nlohmann/json.hpp>

#include <tarn/service/JsonText.h>
#include <tarn/service/SessionJson.h>

#include "edit/ShownText.h"

namespace tarn::tool {

namespace {

using Json = nlohmann::ordered_json;
using workbench::DependencyGraph;
using workbench::EntryKind;
using workbench::GraphEdge;
using workbench::GraphNode;

std::string joined(GraphEdge const& edge) {
  std::string text;
  for (std::string const& attribute : edge.attributes) text += (text.empty() ? "" : ", ") + attribute;
  return text;
}

/// The text with `escaped` in place of each `special` character.
std::string withEscapes(std::string_view text, char special, std::string_view escaped) {
  std::string result;
  for (char const c : harmless(text)) {
    if (c == special) {
      result += escaped;
    } else {
      result += c;
    }
  }
  return result;
}

/// A label between double quotes. Mermaid reads entities there, and takes the text for Markdown otherwise.
std::string mermaidLabel(std::string_view text) {
  std::string label;
  for (char const c : harmless(text)) {
    switch (c) {
      case '"':
        label += "#quot;";
        break;
      case '#':
        label += "#35;";
        break;
      case '<':
        label += "#lt;";
        break;
      case '>':
        label += "#gt;";
        break;
      default:
        label += c;
    }
  }
  return '"' + label + '"';
}

std::string dotText(std::string_view text) {
  return '"' + withEscapes(withEscapes(text, '\\', "\\\\"), '"', "\\\"") + '"';
}

/// The brackets by which Mermaid shows the kind of an entry.
std::pair<char const*, char const*> shapeOf(EntryKind kind) {
  switch (kind) {
    case EntryKind::Parameter:
      return {"[", "]"};
    case EntryKind::Child:
      return {"([", "])"};
    case EntryKind::Check:
    case EntryKind::GlobalCheck:
      break;
  }
  return {"{{", "}}"};
}

}  // namespace

void writeGraphAsMermaid(std::ostream& out, DependencyGraph const& graph) {
  out << "flowchart LR\n";
  for (std::size_t i = 0; i < graph.nodes.size(); ++i) {
    auto const [begin, end] = shapeOf(graph.nodes[i].kind);
    out << "  n" << i << begin << mermaidLabel(graph.nodes[i].text()) << end << '\n';
  }
  for (GraphEdge const& edge : graph.edges) {
    out << "  n" << edge.read << " -->|" << mermaidLabel(joined(edge)) << "| n" << edge.reader << '\n';
  }
}

void writeGraphAsDot(std::ostream& out, DependencyGraph const& graph) {
  out << "digraph dependencies {\n  rankdir=LR;\n";
  for (std::size_t i = 0; i < graph.nodes.size(); ++i) {
    GraphNode const& node = graph.nodes[i];
    char const* const shape = node.kind == EntryKind::Parameter ? "box"
                              : node.kind == EntryKind::Child   ? "ellipse"
                                                                : "hexagon";
    out << "  n" << i << " [label=" << dotText(node.text()) << ", shape=" << shape << "];\n";
  }
  for (GraphEdge const& edge : graph.edges) {
    out << "  n" << edge.read << " -> n" << edge.reader << " [label=" << dotText(joined(edge)) << "];\n";
  }
  out << "}\n";
}

void writeGraphAsJson(std::ostream& out, DependencyGraph const& graph) {
  Json json;
  json["schema"] = 1;
  json["nodes"] = service::jsonList(graph.nodes, [](GraphNode const& node) {
    Json item;
    item["kind"] = workbench::entryKindName(node.kind);
    item["path"] = node.text();
    item["distance"] = node.distance;
    if (node.place.isKnown()) item["place"] = service::placeAsJson(node.place);
    return item;
  });
  json["edges"] = service::jsonList(graph.edges, [](GraphEdge const& edge) {
    return Json{{"reader", edge.reader}, {"read", edge.read}, {"attributes", edge.attributes}};
  });
  json["leftOut"] = graph.leftOut;
  out << service::jsonLine(json) << '\n';
}

}  // namespace tarn::tool
