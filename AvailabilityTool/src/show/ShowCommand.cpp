// `zev show`: prints the state of an object after the first walk under the rules, or a part of it.
#include "show/ShowCommand.h"

#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <tarn/Error.h>
#include <tarn/PathUtils.h>
#include <tarn/ProvTDFPrinter.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFPath.h>

#include "cli/ExitStatus.h"
#include "cli/Failure.h"
#include "cli/ModelFiles.h"
#include "cli/PathArgument.h"
#include "cli/RuleFiles.h"
#include "provisional/EditedObject.h"

namespace tarn::tool {

namespace {

struct ShowOptions {
  std::vector<std::string> rules;
  std::string model;
  std::string root;
  std::string item;
};

/// Whether there is an object at the path, or something below it, or something potential.
bool isObject(ProvisionalTDF const& state, std::string const& path) {
  ModelState const& active = state.getActiveTDFState();
  auto const found = active.lower_bound(path);
  if (found != active.end() && PathUtils::isChildPath(path, found->first)) return true;
  auto const below = active.lower_bound(path + "/");
  if (below != active.end() && PathUtils::isChildPath(path, below->first)) return true;
  if (state.getAvailPotParams().contains(path)) return true;
  auto const& objects = state.getAvailPotObjects();
  return std::any_of(objects.begin(), objects.end(),
                     [&](std::string const& object) { return PathUtils::isChildPath(path, object); });
}

int show(ShowOptions const& options, std::ostream& out, std::ostream& err) {
  EditedObject object(loadRuleFiles(options.rules, err), options.root);
  requireKnownType("--root", options.root, object.rules());
  object.setModel(readModelFile(options.model, TDFChangeFile::Strict));
  object.initialise({}, {});

  ProvTDFPrinter const printer(&object.state(), &out);
  if (options.item.empty()) {
    printer.printState();
    return NothingFound;
  }
  TDFPath path;
  try {
    path = TDFPath(options.item);
  } catch (Error const& error) {
    throw Failure(error.getMessage() + "; give the path of an object or a parameter");
  }
  if (path.size() == 0 || !path.isSingleton() || isObject(object.state(), path.getFullPath())) {
    printer.printObjectState(path.getFullPath());
  } else {
    printer.printParamState(path.getParentPath(), path.getLastType(), false);
  }
  return NothingFound;
}

}  // namespace

void addShowCommand(CLI::App& app, Command& chosen) {
  auto options = std::make_shared<ShowOptions>();
  CLI::App* command = app.add_subcommand("show", "Show an object as the rules complete it");
  addRulesOption(*command, options->rules);
  command->add_option("--model", options->model, "A file with model text; - is the standard input")
      ->type_name("FILE")
      ->required();
  command->add_option("--root", options->root, "The object to show, with everything below it")
      ->type_name("OBJECT")
      ->required();
  command->add_option("ITEM", options->item, "An object or a parameter at or below the root: show only this")
      ->type_name("");
  command->footer(
      "The object is shown as it is after one walk under the rules: required items have their defaults, and items\n"
      "that are not available are gone. Without an ITEM, the output is model text that can be loaded again. For an\n"
      "ITEM that is an object, the output is its parameters and what \"zev console\" could activate in it; for a\n"
      "parameter, its value and the allowed values.\n"
      "Examples: zev show --rules flow.rules.yaml --model pump.tdf --root /Case/Domain:rotor\n"
      "          zev show --rules rules/ --model pump.tdf --root /Case /Case/Domain:rotor/Material\n"
      "Exit status: 0, or 2 for wrong usage or a file that could not be read.");
  command->callback([options, &chosen] {
    chosen = [options](std::ostream& out, std::ostream& err) { return show(*options, out, err); };
  });
}

}  // namespace tarn::tool
