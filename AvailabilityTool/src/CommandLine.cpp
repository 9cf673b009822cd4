// The frame of the program: the subcommands, the help, and the one place where every failure becomes a sentence. Each
// subcommand has a source of its own, with its options. A new one needs a line in `addCommands`.
#include "CommandLine.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <tarn/Error.h>
#include <tarn/StringUtilities.h>

#include "cli/Command.h"
#include "cli/ExitStatus.h"
#include "cli/Failure.h"
#include "cli/ListArguments.h"
#include "cli/Output.h"
#include "console/ConsoleCommand.h"
#include "diff/DiffRulesCommand.h"
#include "doc/DocCommand.h"
#include "edit/EditCommand.h"
#include "eval/EvalCommand.h"
#include "find/FindCommand.h"
#include "graph/GraphCommand.h"
#include "lint/LintCommand.h"
#include "lsp/LspCommand.h"
#include "migrate/MigrateCommand.h"
#include "schema/SchemaCommand.h"
#include "serve/ServeCommand.h"
#include "show/ShowCommand.h"
#include "study/StudyCommand.h"
#include "test/TestCommand.h"
#include "validate/ValidateCommand.h"
#include "why/WhyCommand.h"

namespace tarn::tool {

namespace {

void addCommands(CLI::App& app, Command& chosen) {
  addEditCommand(app, chosen);
  addValidateCommand(app, chosen);
  addWhyCommand(app, chosen);
  addHowCommand(app, chosen);
  addFindCommand(app, chosen);
  addEvalCommand(app, chosen);
  addLintCommand(app, chosen);
  addTestCommand(app, chosen);
  addGraphCommand(app, chosen);
  addLspCommand(app, chosen);
  addDocCommand(app, chosen);
  addMigrateCommand(app, chosen);
  addDiffRulesCommand(app, chosen);
  addSchemaCommand(app, chosen);
  addShowCommand(app, chosen);
  addConsoleCommand(app, chosen);
  addServeCommand(app, chosen);
  addStudyCommand(app, chosen);
}

int printUsage(CLI::App const& app, CLI::ParseError const& error) {
  if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
    app.exit(error, std::cout, std::cerr);  // help, or the version
    flushResults(std::cout);
    return NothingFound;
  }
  std::string name = app.get_name();
  for (CLI::App const* sub : app.get_subcommands()) name += ' ' + sub->get_name();
  std::cerr << name << ": " << error.what() << "\nRun \"" << name << " --help\" to see its options.\n";
  return Failed;
}

// Without this the parser would only say that a command is required.
void requireKnownCommand(CLI::App const& app, std::string const& name) {
  if (name.starts_with('-')) return;
  std::vector<std::string> known;
  for (CLI::App const* command : app.get_subcommands({})) {
    if (command->get_name() == name) return;
    known.push_back(command->get_name());
  }
  std::string const match = StringUtilities::nearMatch(name, known);
  throw CLI::ParseError(
      "there is no command \"" + name + '"' + (match.empty() ? "" : "; did you mean \"" + match + "\"?"),
      CLI::ExitCodes::InvalidError);
}

/// The options of a command that take more than one value.
std::vector<ListOption> listOptions(std::string const& command) {
  if (command == "validate") return validateListOptions();
  if (command == "lint" || command == "schema" || command == "study" || command == "diff-rules") return {};
  if (command == "test") return {{"--rules", looksLikeRulesUnderTest}};
  return {{"--rules", looksLikeRules}};
}

int run(std::vector<std::string> arguments) {
  CLI::App app("Finds what is physically wrong with the set-up of a simulation, by rules.", "zev");
  app.set_version_flag("--version", std::string("zev ") + TARN_VERSION, "Print the version and exit");
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.require_subcommand(1);
  app.footer(
      "\"zev COMMAND --help\" describes a command and its options.\n"
      "Exit status: 0 nothing found, 1 findings, 2 wrong usage or something that could not be read.");
  Command chosen;
  addCommands(app, chosen);

  try {
    if (arguments.empty()) {
      std::cerr << app.help();
      return Failed;
    }
    requireKnownCommand(app, arguments.front());
    arguments = divideListArguments(arguments, listOptions(arguments.front()));
    std::reverse(arguments.begin(), arguments.end());  // the order in which the parser takes them
    app.parse(std::move(arguments));
  } catch (CLI::ParseError const& error) {
    return printUsage(app, error);
  }
  int const status = chosen(std::cout, std::cerr);
  flushResults(std::cout);
  return status;
}

/// As `run`, but prints every failure.
int runAndReport(int argc, char const* const* argv) {
  try {
    WriteErrors const errors(std::cout);
    return run(std::vector<std::string>(argv + (argc > 0), argv + argc));
  } catch (Failure const& failure) {
    print(std::cerr, failure);
  } catch (Error const& error) {
    std::cerr << "zev: " << error.getMessage() << '\n';
  } catch (std::bad_alloc const&) {
    std::fputs("zev: there is not enough memory; give smaller files, or fewer at a time\n", stderr);
  } catch (std::exception const& error) {
    std::cerr << "zev: " << error.what() << '\n';
  }
  return Failed;
}

/// Whether messages could not be written. A caller who closed the standard error does not want them: none is lost then.
bool areLost(WriteErrors const& messages) {
  std::cerr.flush();
  return !std::cerr && messages.first() != EBADF;
}

}  // namespace

int runCommandLine(int argc, char const* const* argv) noexcept {
  WriteErrors const messages(std::cerr);
  int const status = runAndReport(argc, argv);
  return areLost(messages) ? Failed : status;
}

}  // namespace tarn::tool
