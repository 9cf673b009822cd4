// `zev graph`: what an entry of the rules depends on, and what depends on it.
#include "graph/GraphCommand.h"

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <tarn/StringUtilities.h>
#include <tarn/workbench/RuleDependencies.h>

#include "cli/ChoiceOption.h"
#include "cli/Counted.h"
#include "cli/EmptyPath.h"
#include "cli/ExitStatus.h"
#include "cli/Failure.h"
#include "cli/RuleFiles.h"
#include "reports/GraphReport.h"

namespace tarn::tool {

namespace {

struct GraphArguments {
  std::vector<std::string> rules;
  std::string item;
  std::string direction = "both";
  std::string format = "mermaid";
  workbench::GraphOptions options;
};

workbench::DependencyGraph graphOf(GraphArguments const& arguments, PhysicsData const& rules) {
  workbench::RuleDependencies const dependencies(rules);
  if (arguments.item.empty()) return dependencies.whole(arguments.options.mostNodes);
  workbench::DependencyGraph graph = dependencies.around(arguments.item, arguments.options);
  if (!graph.nodes.empty()) return graph;
  std::string const near = dependencies.nearest(arguments.item);
  throw Failure("the rules have no parameter, type of children or check \"" + arguments.item + '"' +
                (near.empty() ? "; give a path such as /Case/Domain/Motion" : "; did you mean \"" + near + "\"?"));
}

int graph(GraphArguments const& arguments, std::ostream& out, std::ostream& err) {
  auto const rules = loadRuleFiles(arguments.rules, err);
  workbench::DependencyGraph const graph = graphOf(arguments, *rules);
  if (arguments.format == "json") {
    writeGraphAsJson(out, graph);
  } else if (arguments.format == "dot") {
    writeGraphAsDot(out, graph);
  } else {
    writeGraphAsMermaid(out, graph);
  }
  out.flush();
  if (graph.leftOut > 0) {
    err << "zev: " << counted(graph.leftOut, "more item") << " left out; name an item, a smaller --depth or a larger "
        << "--limit\n";
  }
  return NothingFound;
}

}  // namespace

void addGraphCommand(CLI::App& app, Command& chosen) {
  auto arguments = std::make_shared<GraphArguments>();
  CLI::App* command = app.add_subcommand("graph", "Show what entries of rules depend on");
  addRulesOption(*command, arguments->rules);
  command->add_option("--depth", arguments->options.depth, "So many steps from the item; default: 1")
      ->type_name("N")
      ->check(CLI::Range(std::size_t{1}, std::size_t{1000}).description(""));
  command
      ->add_option("--direction", arguments->direction,
                   "reads, what the item depends on; readers, what depends on it; or both,\nthe default")
      ->type_name("WAY")
      ->check(CLI::IsMember({"reads", "readers", "both"}).description(""));
  command->add_option("--limit", arguments->options.mostNodes, "Show at most so many entries; default: 1000")
      ->type_name("N")
      ->check(CLI::Range(std::size_t{1}, std::size_t{1'000'000}).description(""));
  addChoiceOption(*command, "--format", arguments->format, {"mermaid", "dot", "json"},
                  "mermaid, for viewers of Markdown, the default; dot, for Graphviz; or json, one\nobject on a line");
  CLI::Option const* const item =
      command
          ->add_option(
              "ITEM", arguments->item,
              "The path of a parameter or of a type of children; default: all entries that\ndepend on something")
          ->type_name("");
  command->footer(
      "An arrow goes from what is read to what depends on it, with the keys of the rules that read. Names of objects "
      "in\n"
      "the path do not count.\n"
      "Examples: zev graph --rules rules/ /Case/Domain/Motion\n"
      "          zev graph --rules rules/ --format dot --depth 3 /Case/Domain/Motion | dot -Tsvg > motion.svg\n"
      "Exit status: 0, or 2 for wrong usage, or rules that could not be read.");
  command->callback([arguments, item, &chosen] {
    if (item->count() > 0 && StringUtilities::trimmed(arguments->item).empty()) {
      throw emptyPath("ITEM", false, "the path of a parameter or of a type of children, or nothing for all entries");
    }
    arguments->options.followsReads = arguments->direction != "readers";
    arguments->options.followsReaders = arguments->direction != "reads";
    chosen = [arguments](std::ostream& out, std::ostream& err) { return graph(*arguments, out, err); };
  });
}

}  // namespace tarn::tool
