// `zev find`: objects, parameters, values and rules whose names contain a text.
#include "find/FindCommand.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <tarn/ObjDependDef.h>
#include <tarn/PathUtils.h>
#include <tarn/PhysicsData.h>
#include <tarn/RulePlace.h>
#include <tarn/StringUtilities.h>
#include <tarn/service/JsonText.h>
#include <tarn/service/SessionJson.h>
#include <tarn/session/Found.h>
#include <tarn/session/Session.h>

#include "cli/ChoiceOption.h"
#include "cli/Counted.h"
#include "cli/ExitStatus.h"
#include "cli/RuleFiles.h"
#include "edit/ShownText.h"
#include "session/OpenedSession.h"

namespace tarn::tool {

namespace {

using Json = nlohmann::ordered_json;

struct FindOptions {
  SessionArguments arguments;
  std::string text;
  /// The most hits of each kind that are shown. 0: no limit.
  std::size_t limit = 100;
  bool asJson = false;
};

enum class Kind { Object, Parameter, Value, Rule };

/// A thing that was found, and what there is to say about it.
struct Hit {
  Kind kind = Kind::Object;
  session::Found found;
  std::optional<std::string> value;
  /// For `Rule`: "check", "parameter".
  std::string what;
  RulePlace place;
};

/// Adds a rule if its name matches.
class RuleSearch {
 public:
  RuleSearch(std::string const& text, std::vector<Hit>& hits) : text_(text), hits_(hits) {}

  void add(std::string what, std::string const& path, std::string const& name, RulePlace const& place) {
    add(std::move(what), {path, name}, name, place);
  }
  void addType(std::string const& typePath, RulePlace const& place) {
    add("object type", {typePath, std::nullopt}, PathUtils::lastType(typePath), place);
  }

 private:
  void add(std::string what, session::Item item, std::string_view name, RulePlace const& place) {
    auto const match = session::matchOf(name, text_);
    if (match) hits_.push_back({Kind::Rule, {std::move(item), *match, true}, std::nullopt, std::move(what), place});
  }

  std::string const& text_;
  std::vector<Hit>& hits_;
};

void findRules(PhysicsData const& rules, std::string const& text, std::vector<Hit>& hits) {
  RuleSearch search(text, hits);
  for (ObjDependDef const* object : rules.objects()) {
    search.addType(object->typePath(), object->rulePlace);
    for (auto const& param : object->params())
      search.add("parameter", object->typePath(), param->name, param->rulePlace);
    for (auto const& child : object->children()) {
      // A type with rules of its own is found there.
      if (rules.getObjDependDef(object->typePath() + '/' + child->type, true) != nullptr) continue;
      search.addType(object->typePath() + '/' + child->type, child->rulePlace);
    }
    for (auto const& check : object->checks()) search.add("check", object->typePath(), check->name, check->rulePlace);
  }
  for (std::string const& name : rules.getCheckNames()) {
    search.add("named check", {}, name, rules.getCheck(name, true)->rulePlace());
  }
  for (std::string const& name : rules.getListNames()) {
    search.add("named list", {}, name, rules.getList(name, true)->rulePlace());
  }
  for (std::string const& name : rules.getValueNames()) {
    search.add("named value", {}, name, rules.findValue(name)->rulePlace());
  }
  for (std::string const& name : rules.getGlobalCheckNames()) {
    search.add("global check", {}, name, rules.getGlobalCheck(name, true)->rulePlace());
  }
  for (auto const& [name, type] : rules.quantityTypes()) search.add("quantity type", {}, name, {});
}

/// Everything that was found, kind by kind, the best matches of each first.
std::vector<Hit> findAll(session::Session const& session, std::string const& text) {
  std::vector<Hit> hits;
  ModelState const result = session.result();
  for (session::Found& found : session.find(text, std::numeric_limits<std::size_t>::max())) {
    Hit hit{found.item.isParam() ? Kind::Parameter : Kind::Object, std::move(found), std::nullopt, {}, {}};
    if (hit.kind == Kind::Parameter && hit.found.present) {
      hit.value = result.at(hit.found.item.path).at(*hit.found.item.name);
    }
    hits.push_back(std::move(hit));
  }
  for (auto const& [path, params] : result) {
    for (auto const& [name, value] : params) {
      auto const match = session::matchOf(value, text);
      if (match) hits.push_back({Kind::Value, {{path, name}, *match, true}, value, {}, {}});
    }
  }
  findRules(session.rules(), text, hits);
  std::stable_sort(hits.begin(), hits.end(), [](Hit const& a, Hit const& b) {
    return std::pair(a.kind, a.found.match) < std::pair(b.kind, b.found.match);
  });
  return hits;
}

char const* headingOf(Kind kind) {
  switch (kind) {
    case Kind::Object:
      return "objects";
    case Kind::Parameter:
      return "parameters";
    case Kind::Value:
      return "values";
    case Kind::Rule:
      break;
  }
  return "rules";
}

char const* nameOf(Kind kind) {
  switch (kind) {
    case Kind::Object:
      return "object";
    case Kind::Parameter:
      return "parameter";
    case Kind::Value:
      return "value";
    case Kind::Rule:
      break;
  }
  return "rule";
}

/// A rule that belongs to no object.
bool isNamedRule(Hit const& hit) {
  return hit.kind == Kind::Rule && hit.found.item.path.empty() && hit.found.item.name;
}

std::string textOf(Hit const& hit) {
  session::Item const& item = hit.found.item;
  std::string const path = isNamedRule(hit) ? shortened(*item.name) : shortened(item.text());
  if (hit.kind == Kind::Rule) return hit.what + ' ' + path + (hit.place.isKnown() ? "   " + hit.place.text() : "");
  if (hit.value) return path + " = " + shortened(*hit.value);
  return path + (hit.found.present ? "" : "   (not present)");
}

Json jsonOf(Hit const& hit) {
  Json json = {{"schema", service::sessionJsonSchema}, {"kind", nameOf(hit.kind)}};
  if (hit.kind == Kind::Rule) json["rule"] = hit.what;
  Json found = service::foundAsJson(hit.found);
  if (hit.kind == Kind::Rule || hit.kind == Kind::Value) found.erase("present");
  if (isNamedRule(hit)) found.erase("path");
  json.update(found);
  if (hit.value) json["value"] = *hit.value;
  if (hit.place.isKnown()) json["place"] = service::placeAsJson(hit.place);
  return json;
}

/// The name in the rules that was probably meant.
std::string nearName(PhysicsData const& rules, std::string const& text) {
  std::vector<std::string> names;
  for (ObjDependDef const* object : rules.objects()) {
    names.emplace_back(PathUtils::lastType(object->typePath()));
    for (auto const& param : object->params()) names.push_back(param->name);
  }
  return StringUtilities::nearMatch(text, names);
}

int find(FindOptions const& options, std::ostream& out, std::ostream& err) {
  OpenedSession opened(options.arguments, err);
  std::vector<Hit> const hits = findAll(opened.session(), options.text);
  if (hits.empty()) {
    std::string const near = nearName(opened.rules(), options.text);
    err << "zev: nothing found" << (near.empty() ? "" : "; did you mean \"" + near + "\"?") << '\n';
    return FindingsMade;
  }
  std::size_t left = 0;
  std::size_t ofKind = 0;
  std::optional<Kind> last;
  for (Hit const& hit : hits) {
    if (last != hit.kind) {
      if (!options.asJson) out << headingOf(hit.kind) << '\n';
      last = hit.kind;
      ofKind = 0;
    }
    if (options.limit != 0 && ++ofKind > options.limit) {
      ++left;
    } else if (options.asJson) {
      out << service::jsonLine(jsonOf(hit)) << '\n';
    } else {
      out << "  " << textOf(hit) << '\n';
    }
  }
  if (left > 0) err << "zev: " << left << " more found; --limit 0 shows all.\n";
  return NothingFound;
}

}  // namespace

void addFindCommand(CLI::App& app, Command& chosen) {
  auto options = std::make_shared<FindOptions>();
  auto format = std::make_shared<std::string>("text");
  auto arguments = std::make_shared<std::vector<std::string>>();
  CLI::App* command = app.add_subcommand("find", "Find objects, parameters, values and rules by a part of their names");
  addRulesOption(*command, options->arguments.rules);
  command
      ->add_option("--root", options->arguments.root,
                   "The object to search, with everything below it; default: the only\none that the rules look at")
      ->type_name("OBJECT");
  command->add_option("--limit", options->limit, "Show at most so many of each kind; default: 100, and 0 is all")
      ->type_name("N");
  addChoiceOption(*command, "--format", *format, {"text", "json"},
                  "text, for people, the default; or json, one object on a line for each");
  command
      ->add_option("TEXT", *arguments,
                   "A model file, or - for the standard input, and the text to find;\nthe model can be left out")
      ->type_name("[MODEL] TEXT")
      ->expected(1, 2)
      ->required();
  command->footer(
      "Upper and lower case are the same. In each kind, whole names come first, then names that begin with the text,\n"
      "then words, then parts of words. The model is searched as the rules complete it, with the parameters that its\n"
      "objects could have.\n"
      "Example: zev find --rules rules/ pump.tdf turbulence\n"
      "Exit status: 0 something was found, 1 nothing was, 2 wrong usage or a file that could not be read.");
  command->callback([options, format, arguments, &chosen] {
    options->asJson = *format == "json";
    options->text = arguments->back();
    if (StringUtilities::trimmed(options->text).empty()) {
      throw CLI::ValidationError("TEXT", "the text is empty; write a part of a name");
    }
    if (arguments->size() == 2) options->arguments.model = arguments->front();
    chosen = [options](std::ostream& out, std::ostream& err) { return find(*options, out, err); };
  });
}

}  // namespace tarn::tool
