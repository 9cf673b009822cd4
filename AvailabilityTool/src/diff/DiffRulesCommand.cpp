// `zev diff-rules`: what differs between two rule databases, and which models feel it.
#include "diff/DiffRulesCommand.h"

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <nlohmann/json.hpp>

#include <tarn/service/FindingJson.h>
#include <tarn/service/JsonText.h>
#include <tarn/service/SessionJson.h>
#include <tarn/workbench/RuleComparison.h>

#include "cli/ChoiceOption.h"
#include "cli/Counted.h"
#include "cli/ExitStatus.h"
#include "cli/Failure.h"
#include "cli/ModelFiles.h"
#include "cli/RuleFiles.h"
#include "edit/ShownText.h"

namespace tarn::tool {

namespace {

using Json = nlohmann::ordered_json;
using workbench::ChangeKind;
using workbench::ModelComparison;
using workbench::RuleChange;

struct DiffOptions {
  std::string before;
  std::string after;
  std::vector<std::string> models;
  bool asJson = false;
};

std::string placesOf(RuleChange const& change) {
  std::string text;
  if (change.before.isKnown()) text += change.before.text();
  if (change.after.isKnown()) text += (text.empty() ? "" : " -> ") + change.after.text();
  return text.empty() ? text : "   " + harmless(text);
}

std::string orNothing(std::string const& text) {
  return text.empty() ? "(nothing)" : shortened(text);
}

void writeChange(std::ostream& out, RuleChange const& change) {
  switch (change.kind) {
    case ChangeKind::Came:
      out << "+ ";
      break;
    case ChangeKind::Went:
      out << "- ";
      break;
    case ChangeKind::Renamed:
    case ChangeKind::Changed:
      out << "~ ";
      break;
  }
  out << change.item << ' ' << harmless(change.name);
  if (!change.formerName.empty()) out << ", formerly " << harmless(change.formerName);
  out << placesOf(change) << '\n';
  for (auto const& attribute : change.attributes) {
    out << "    " << attribute.attribute << ": " << orNothing(attribute.before) << " -> " << orNothing(attribute.after)
        << '\n';
  }
}

Json placeAsJson(TextPlace const& place) {
  return {{"file", place.source()}, {"line", place.line()}, {"column", place.column()}};
}

Json changeAsJson(RuleChange const& change) {
  Json json = {{"change", workbench::changeKindName(change.kind)}, {"item", change.item}, {"name", change.name}};
  if (!change.formerName.empty()) json["formerName"] = change.formerName;
  if (!change.attributes.empty()) {
    json["attributes"] = service::jsonList(change.attributes, [](workbench::AttributeChange const& one) {
      return Json{{"attribute", one.attribute}, {"before", one.before}, {"after", one.after}};
    });
  }
  if (change.before.isKnown()) json["before"] = placeAsJson(change.before);
  if (change.after.isKnown()) json["after"] = placeAsJson(change.after);
  return json;
}

Json modelAsJson(std::string const& name, ModelComparison const& comparison) {
  Json json = {{"model", name}, {"same", comparison.isSame()}};
  json["findingsGone"] = service::jsonList(comparison.findingsGone, service::findingAsJson);
  json["findingsNew"] = service::jsonList(comparison.findingsNew, service::findingAsJson);
  json["edited"] = service::jsonList(comparison.edited, [](workbench::EditedDifference const& one) {
    Json entry = {{"item", one.item}, {"what", one.what}};
    if (one.before) entry["before"] = *one.before;
    if (one.after) entry["after"] = *one.after;
    return entry;
  });
  if (!comparison.notOpenedBefore.empty()) json["notOpenedBefore"] = comparison.notOpenedBefore;
  if (!comparison.notOpenedAfter.empty()) json["notOpenedAfter"] = comparison.notOpenedAfter;
  return json;
}

void writeModel(std::ostream& out, std::string const& name, ModelComparison const& comparison) {
  if (comparison.isSame()) {
    out << harmless(name) << ": the same under both\n";
    return;
  }
  out << harmless(name) << ":\n";
  auto const findings = [&](char const* sign, std::vector<session::Finding> const& list) {
    for (session::Finding const& finding : list) {
      out << "  " << sign << ' ' << severityName(finding.severity) << ": " << harmless(finding.message) << '\n';
    }
  };
  findings("- finding,", comparison.findingsGone);
  findings("+ finding,", comparison.findingsNew);
  for (auto const& one : comparison.edited) {
    out << "  ~ " << harmless(one.item) << ", " << one.what << ": "
        << (one.before ? shortened(*one.before) : "(nothing)") << " -> "
        << (one.after ? shortened(*one.after) : "(nothing)") << '\n';
  }
  if (!comparison.notOpenedBefore.empty()) {
    out << "  cannot be edited under the old rules: " << harmless(comparison.notOpenedBefore) << '\n';
  }
  if (!comparison.notOpenedAfter.empty()) {
    out << "  cannot be edited under the new rules: " << harmless(comparison.notOpenedAfter) << '\n';
  }
}

int diff(DiffOptions const& options, std::ostream& out, std::ostream& err) {
  auto const before = loadRuleFiles({options.before}, err);
  auto const after = loadRuleFiles({options.after}, err);
  std::vector<RuleChange> const changes = workbench::compareRules(*before, *after);
  Json json = {{"schema", service::sessionJsonSchema}};
  if (options.asJson) {
    json["changes"] = service::jsonList(changes, changeAsJson);
    json["models"] = Json::array();
  } else {
    for (RuleChange const& change : changes) writeChange(out, change);
  }
  std::size_t different = 0;
  std::size_t failures = 0;
  for (std::string const& name : options.models) {
    try {
      ModelText const text = readModelText(name);
      if (!text.faults().empty()) throw ModelFailure(text, true);
      ModelComparison const comparison = workbench::compareModel(*before, *after, text);
      if (!comparison.isSame()) ++different;
      if (options.asJson) {
        json["models"].push_back(modelAsJson(name, comparison));
      } else {
        writeModel(out, name, comparison);
      }
    } catch (ModelFailure const& failure) {
      ++failures;
      err << "zev: " << failure.what() << '\n';
    }
  }
  if (options.asJson) out << service::jsonLine(json) << '\n';
  err << "zev: " << (changes.empty() ? "no difference" : counted(changes.size(), "difference")) << " in the rules";
  if (!options.models.empty())
    err << "; " << different << " of " << counted(options.models.size() - failures, "model") << " treated differently";
  if (failures > 0) err << "; " << counted(failures, "model") << " not read";
  err << ".\n";
  if (failures > 0) return Failed;
  return changes.empty() && different == 0 ? NothingFound : FindingsMade;
}

}  // namespace

void addDiffRulesCommand(CLI::App& app, Command& chosen) {
  auto options = std::make_shared<DiffOptions>();
  auto format = std::make_shared<std::string>("text");
  CLI::App* command = app.add_subcommand("diff-rules", "Compare two versions of rules");
  command->add_option("OLD", options->before, "The old rules: a rule file, or a folder with *.rules.yaml")
      ->type_name("")
      ->required();
  command->add_option("NEW", options->after, "The new rules")->type_name("")->required();
  command->add_option("MODEL", options->models, "Models to review and to open for editing under both")->type_name("");
  addChoiceOption(*command, "--format", *format, {"text", "json"},
                  "text, for people, the default; or json, one object on a line");
  command->footer(
      "A line begins with + for what came, - for what went and ~ for what is renamed or changed. Places are those in\n"
      "the old and in the new rules. Texts for people, such as descriptions, are compared, too.\n"
      "Examples: zev diff-rules released/ rules/\n"
      "          zev diff-rules released/ rules/ models/*.tdf\n"
      "Exit status: 0 no difference, 1 differences, 2 wrong usage or a file that could not be read.");
  command->callback([options, format, &chosen] {
    options->asJson = *format == "json";
    chosen = [options](std::ostream& out, std::ostream& err) { return diff(*options, out, err); };
  });
}

}  // namespace tarn::tool
