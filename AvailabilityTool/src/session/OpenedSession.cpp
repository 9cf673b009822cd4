#include "session/OpenedSession.h"

#include <cstddef>
#include <string_view>
#include <utility>

#include <tarn/Error.h>
#include <tarn/ModelState.h>

#include "cli/Failure.h"
#include "cli/ListArguments.h"
#include "cli/ModelFiles.h"
#include "cli/RuleFiles.h"
#include "cli/ShellWord.h"

namespace tarn::tool {

namespace {

// The advice for a user of the command line.
std::string adviceOn(session::OpenError const& error) {
  using session::OpenFault;
  std::string objects;
  for (std::string const& object : error.candidates) objects += (objects.empty() ? "" : ", ") + object;
  switch (error.fault) {
    case OpenFault::RootUnknown:
      return objects.empty() ? "" : " Did you mean " + objects + '?';
    case OpenFault::NoRoot:
    case OpenFault::SeveralRoots:
      return objects.empty() ? " Give it with --root OBJECT." : " Give one with --root: " + objects + '.';
    case OpenFault::RootUnreadable:
      return " Give the path of an object after --root, such as /Case.";
    case OpenFault::ModelUnreadable:
    case OpenFault::RuleFailed:
      break;
  }
  return {};
}

}  // namespace

std::string commandLine(std::string const& command, SessionArguments const& arguments, std::string const& rest) {
  std::string line = command;
  if (!arguments.root.empty()) line += " --root " + shellWord(arguments.root);
  // With "=", what comes next is not taken for further rules.
  char const* const before = looksLikeRules(arguments.model) ? " --rules=" : " --rules ";
  for (std::string const& path : arguments.rules) line += before + shellWord(path);
  if (!arguments.model.empty()) line += ' ' + shellWord(arguments.model);
  return rest.empty() ? line : line + ' ' + rest;
}

OpenedSession::OpenedSession(SessionArguments const& arguments, std::ostream& err)
    : rules_(loadRuleFiles(arguments.rules, err)) {
  session::SessionOptions options;
  if (!arguments.root.empty()) options.root = arguments.root;
  session::Session::Opened opened;
  if (arguments.model.empty()) {
    opened = session::Session::open(*rules_, ModelState{}, std::move(options));
  } else {
    file_ = readEditedFile(arguments.model);
    ModelText text = file_->text();
    if (!text.faults().empty()) throw ModelFailure(text, true);
    opened = session::Session::open(*rules_, std::move(text), std::move(options));
  }
  if (!opened.session) {
    std::string const about =
        arguments.model.empty() ? "" : (arguments.model == "-" ? "<stdin>" : arguments.model) + ": ";
    throw Failure(about + opened.error->sentence + adviceOn(*opened.error));
  }
  session_ = std::move(opened.session);
}

}  // namespace tarn::tool
