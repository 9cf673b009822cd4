// `zev eval`: evaluates an expression of the rule language at an object of a model, and shows the value of each of its
// parts.
#include "eval/EvalCommand.h"

#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <tarn/DynamicTDF.h>
#include <tarn/EvalContext.h>
#include <tarn/PertinentRoots.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFContext.h>
#include <tarn/rules/Query.h>
#include <tarn/service/ExplanationJson.h>
#include <tarn/service/JsonText.h>
#include <tarn/service/SessionJson.h>
#include <tarn/session/WrittenItem.h>

#include "cli/ChoiceOption.h"
#include "cli/EmptyPath.h"
#include "cli/ExitStatus.h"
#include "cli/Failure.h"
#include "cli/ModelFiles.h"
#include "cli/PathArgument.h"
#include "cli/RuleFiles.h"
#include "edit/ShownText.h"
#include "reports/ExplanationText.h"

namespace tarn::tool {

namespace {

using Json = nlohmann::ordered_json;
using rules::Query;

struct EvalOptions {
  std::vector<std::string> rules;
  std::string model;
  std::string at;
  std::string expression;
  bool asJson = false;
};

/// The object where relative paths of the expression start. The path after `--at` itself may be relative as well.
std::string objectOf(EvalOptions const& options, PhysicsData const& rules, ModelState const& model,
                     DynamicTDF const& tree) {
  auto const objects = PertinentRoots(rules).objectsIn(model);
  std::string root = objects.size() == 1 ? objects.front() : std::string();
  if (options.at.empty()) return root;
  std::string at = pathArgument("--at", session::absolutePath(root, options.at)).getFullPath();
  if (options.model.empty() || at.empty() || tree.hasObject(at)) return at;
  std::vector<std::string> known;
  for (auto const& [path, params] : model) known.push_back(path);
  std::string const near = StringUtilities::nearMatch(at, known);
  throw Failure("--at: the model has no object " + at + (near.empty() ? "" : "; did you mean " + near + '?'));
}

Json valueOf(Query::Result const& result) {
  switch (result.kind) {
    case Query::Kind::Truth:
      return result.truth;
    case Query::Kind::Number:
      return service::numberAsJson(result.number);
    case Query::Kind::Text:
      return result.text;
    case Query::Kind::List:
    case Query::Kind::Objects:
      break;
  }
  return result.items;
}

char const* nameOf(Query::Kind kind) {
  switch (kind) {
    case Query::Kind::Truth:
      return "truth";
    case Query::Kind::Number:
      return "number";
    case Query::Kind::Text:
      return "text";
    case Query::Kind::List:
      return "list";
    case Query::Kind::Objects:
      break;
  }
  return "objects";
}

/// The value on lines of its own, for scripts: a list has a line for each item.
void writeValue(std::ostream& out, Query::Result const& result) {
  switch (result.kind) {
    case Query::Kind::Truth:
    case Query::Kind::Text:
      out << harmless(result.text) << '\n';
      return;
    case Query::Kind::Number:
      out << (result.text.empty() ? "not a number" : result.text) << '\n';
      return;
    case Query::Kind::List:
    case Query::Kind::Objects:
      break;
  }
  for (std::string const& item : result.items) out << harmless(item) << '\n';
  if (result.items.empty()) out << (result.kind == Query::Kind::List ? "an empty list\n" : "no objects\n");
}

int eval(EvalOptions const& options, std::ostream& out, std::ostream& err) {
  auto const rules = loadRuleFiles(options.rules, err);
  auto const parsed = rules::parseQuery(options.expression, *rules);
  if (!parsed.query) {
    std::error_code failed;
    if (std::filesystem::is_regular_file(options.expression, failed)) {
      throw Failure('"' + options.expression +
                    "\" is a file, not an expression; give the expression last, after the model");
    }
    err << rules::format(parsed.diagnostics);
    throw Failure("the expression cannot be evaluated; see above");
  }
  ModelState const model = options.model.empty() ? ModelState() : readModelFile(options.model, TDFChangeFile::Strict);
  DynamicTDF tree(false);
  tree.initialise(model.begin(), model.end());
  std::string const at = objectOf(options, *rules, model, tree);

  TDFContext const context(at);
  EvalContext evalContext(&tree);
  Query::Result const result = parsed.query->evaluate(context, &evalContext);
  Explanation const explanation = parsed.query->explainAllParts(context, tree);
  if (options.asJson) {
    Json json = {{"schema", service::sessionJsonSchema}};
    json["expression"] = options.expression;
    json["at"] = at;
    json["kind"] = nameOf(result.kind);
    json["value"] = valueOf(result);
    json["explanation"] = service::explanationAsJson(explanation);
    out << service::jsonLine(json) << '\n';
    return NothingFound;
  }
  writeValue(out, result);
  out << "\nat " << (at.empty() ? "/" : harmless(at)) << ":\n" << explanationText(explanation, "  ");
  return NothingFound;
}

}  // namespace

void addEvalCommand(CLI::App& app, Command& chosen) {
  auto options = std::make_shared<EvalOptions>();
  auto format = std::make_shared<std::string>("text");
  auto arguments = std::make_shared<std::vector<std::string>>();
  CLI::App* command = app.add_subcommand("eval", "Evaluate an expression of the rule language in a model");
  addRulesOption(*command, options->rules);
  CLI::Option const* const at =
      command
          ->add_option("--at", options->at,
                       "The object where relative paths start; default: the only object that\nthe rules look at")
          ->type_name("OBJECT");
  addChoiceOption(*command, "--format", *format, {"text", "json"},
                  "text, for people, the default; or json, one object on a line");
  command
      ->add_option("EXPRESSION", *arguments,
                   "A model file, or - for the standard input, and the expression;\nthe model can be left out")
      ->type_name("[MODEL] EXPRESSION")
      ->expected(1, 2)
      ->required();
  command->footer(
      "The value comes first, then the value of each part. The model is taken as it is written: it\n"
      "has no defaults of the rules. A path after --at without a / in front starts at the only object that the rules\n"
      "look at. Put the expression in single quotes, because a shell would replace ${...}. Begin with a blank if the\n"
      "expression begins with a minus.\n"
      "Examples: zev eval --rules rules/ pump.tdf 'count({/Case/Domain:*})'\n"
      "          zev eval --rules rules/ pump.tdf --at Domain:rotor '${Motion} == \"Rotating\"'\n"
      "Exit status: 0, or 2 for wrong usage, an expression with errors, or a file that could not be read.");
  command->callback([options, format, arguments, at, &chosen] {
    if (at->count() > 0 && StringUtilities::trimmed(options->at).empty()) throw emptyPath("--at", false, "--at OBJECT");
    options->asJson = *format == "json";
    options->expression = arguments->back();
    if (arguments->size() == 2) options->model = arguments->front();
    chosen = [options](std::ostream& out, std::ostream& err) { return eval(*options, out, err); };
  });
}

}  // namespace tarn::tool
