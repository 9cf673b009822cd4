// `zev console`: the host of the availability tool. It makes the objects that the loop needs, runs the loop, and
// destroys them in the opposite order.
#include "console/ConsoleCommand.h"

#include <unistd.h>

#include <cerrno>
#include <iostream>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <tarn/ProvTDFDriver.h>
#include <tarn/ProvTDFLogger.h>

#include "cli/ExitStatus.h"
#include "cli/Failure.h"
#include "cli/ModelFiles.h"
#include "cli/Output.h"
#include "cli/PathArgument.h"
#include "cli/RuleFiles.h"
#include "console/CommandInput.h"
#include "console/LogTarget.h"
#include "console/TerminalInput.h"
#include "provisional/EditedObject.h"

namespace tarn::tool {

namespace {

struct ConsoleOptions {
  std::vector<std::string> rules;
  std::string model;
  std::string guide;
  std::string root;
  std::string basedOn;
  std::string log = "stdout";
  std::string validationRoot;
  bool strict = false;
  bool quiet = false;
};

std::string whyInputFailed(int error) {
  return "the standard input cannot be read" + becauseOf(error) +
         "; give it a terminal, a file of commands, or /dev/null";
}

/// Called before any other work, which would be useless without input.
void requireReadableInput() {
  if (::read(STDIN_FILENO, nullptr, 0) != 0) throw Failure(whyInputFailed(errno));
}

/// The commands come from the standard input. A model that is read from it would consume them.
void requireFile(std::string const& option, std::string const& name) {
  if (name != "-") return;
  throw Failure(option +
                ": a model cannot come from the standard input, because the commands do; give the name of a file");
}

/// Runs commands until the user ends the loop, and returns the exit status. The loop also ends when nobody can read the
/// output any more. A full disk does not end it: that would lose the edits.
int runLoop(ConsoleOptions const& options, EditedObject& object, ProvTDFLogger& printer, LogTarget& log,
            std::ostream& err) {
  ProvTDFDriver driver(options.strict, options.quiet,
                       options.validationRoot.empty() ? options.root : options.validationRoot, &object.rules(),
                       &printer, &object.state());
  auto const terminal = TerminalInput::open(object.state());
  CommandInput const input(std::cin, [&] { return log.takesMore(err) && std::cout.good(); });
  driver.waitInput();
  if (!input.hasFailed()) return NothingFound;
  err << "zev: " << whyInputFailed(input.error()) << '\n';
  return Failed;
}

int console(ConsoleOptions const& options, std::ostream& err) {
  requireFile("--model", options.model);
  requireFile("--guide", options.guide);
  if (!options.validationRoot.empty()) (void)objectArgument("--validation-root", options.validationRoot);
  requireReadableInput();
  LogTarget log(options.log);
  EditedObject object(loadRuleFiles(options.rules, err), options.root);
  auto const mode = options.strict ? TDFChangeFile::Strict : TDFChangeFile::Lenient;
  if (!options.model.empty()) object.setModel(readModelFile(options.model, mode));
  ModelState const guide = options.guide.empty() ? ModelState{} : readModelFile(options.guide, mode);

  int status = NothingFound;
  {
    ProvTDFLogger printer(&object.state(), log.stream());
    object.state().setLogger(&printer);
    object.initialise(options.basedOn, guide);
    status = runLoop(options, object, printer, log, err);
    object.state().setLogger(nullptr);
  }
  return log.finish(err) ? status : Failed;
}

}  // namespace

void addConsoleCommand(CLI::App& app, Command& chosen) {
  auto options = std::make_shared<ConsoleOptions>();
  CLI::App* command = app.add_subcommand("console", "Edit an object by commands, under the rules");
  addRulesOption(*command, options->rules);
  command->add_option("--root", options->root, "The object to edit, with everything below it")
      ->type_name("OBJECT")
      ->required();
  command->add_option("--model", options->model, "The model that contains the object; default: an empty one")
      ->type_name("FILE");
  command->add_option("--guide", options->guide, "Values to begin with, from an earlier edit")->type_name("FILE");
  command
      ->add_option("--based-on", options->basedOn,
                   "Begin a new object as a copy of this one, which is in the model and has the same type and parent")
      ->type_name("OBJECT");
  command
      ->add_option("--log", options->log,
                   "Where to print the object and its changes: stdout, the default, stderr, or a file to append to")
      ->type_name("TARGET");
  command
      ->add_option("--validation-root", options->validationRoot,
                   "The object that v and vf judge, with everything below it; default: that of --root")
      ->type_name("OBJECT");
  command->add_flag("--strict", options->strict,
                    "Refuse a model file with a malformed line; without it, the line is skipped");
  command->add_flag("--quiet", options->quiet, "Write neither banner nor prompt");
  command->footer(
      "The command h lists the commands, q ends the program. The list lacks two commands: \"no OBJECT\" adds an "
      "object\n"
      "with a name of your choice, \"ro OBJECT\" removes such an object.\n"
      "The console writes no model file. The command ps prints model text that can be loaded again: copy it from the\n"
      "output or from a --log. \"zev show\" prints the same for a model without edits.\n"
      "Example: zev console --rules flow.rules.yaml --model pump.tdf --root /Case/Domain:rotor\n"
      "Exit status: 0, or 2 for wrong usage or a file that could not be read.");
  command->callback([options, &chosen] {
    chosen = [options](std::ostream& /*out*/, std::ostream& err) { return console(*options, err); };
  });
}

}  // namespace tarn::tool
