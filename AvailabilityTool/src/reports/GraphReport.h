#pragma once

#include <iosfwd>

#include <tarn/workbench/RuleDependencies.h>

// A graph of dependencies between entries of rules, in the forms that `zev graph` writes.

namespace tarn::tool {

/// A flow chart of Mermaid, which many viewers of Markdown show. Arrows go from what is read to what depends on it.
void writeGraphAsMermaid(std::ostream& out, workbench::DependencyGraph const& graph);
/// A directed graph in the language of Graphviz.
void writeGraphAsDot(std::ostream& out, workbench::DependencyGraph const& graph);
/// One JSON object on one line: nodes, and edges by their indices.
void writeGraphAsJson(std::ostream& out, workbench::DependencyGraph const& graph);

}  // namespace tarn::tool
