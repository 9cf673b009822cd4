// zev serve: sessions for other programs. The protocol is in SessionService; here are the ways on which its messages
// travel, and what the user of the command line decides.
#include "serve/ServeCommand.h"

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <tarn/service/Service.h>

#include "cli/ExitStatus.h"
#include "cli/Failure.h"
#include "cli/RuleFiles.h"
#include "serve/HttpServer.h"
#include "serve/PipeServer.h"
#include "serve/RequestGuard.h"
#include "serve/TerminationSignals.h"

namespace tarn::tool {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

struct ServeOptions {
  std::vector<std::string> rules;
  std::string model;
  std::string root;
  std::vector<std::string> folders;
  bool overPipe = false;
  std::optional<std::string> http;
  std::optional<std::string> tokenFile;
  std::vector<std::string> names;
  std::optional<std::string> recovery;
  bool withoutRecovery = false;
  std::optional<std::string> web;
};

/// Where programs keep what they need for the next start. "" when there is no such place.
std::string usualRecoveryFolder() {
  char const* const state = std::getenv("XDG_STATE_HOME");
  if (state != nullptr && *state == '/') return (fs::path(state) / "zev" / "recovery").string();
  char const* const home = std::getenv("HOME");
  if (home != nullptr && *home == '/') return (fs::path(home) / ".local/state/zev/recovery").string();
  return {};
}

/// The web editor of this installation. "" when it has none.
std::string installedEditor() {
  std::error_code failed;
  fs::path const program = fs::read_symlink("/proc/self/exe", failed);
  if (failed) return {};
  fs::path const folder = program.parent_path() / TARN_WEB_FOLDER;
  return fs::is_regular_file(folder / "index.html", failed) ? folder.lexically_normal().string() : std::string();
}

std::string folderOf(std::string const& file) {
  fs::path const folder = fs::path(file).parent_path();
  return folder.empty() ? "." : folder.string();
}

service::ServiceOptions serviceOptions(ServeOptions const& given, std::ostream& err) {
  service::ServiceOptions options;
  options.version = TARN_VERSION;
  // A pipe ends with its server. A page in a browser may outlive it, and must not edit another document then.
  constexpr std::size_t lengthOfInstance = 8;
  if (given.http) options.instance = randomToken().substr(0, lengthOfInstance);
  options.folders = given.folders;
  if (options.folders.empty() && !given.model.empty()) options.folders.push_back(folderOf(given.model));
  if (!given.withoutRecovery) {
    options.recoveryFolder = given.recovery ? *given.recovery : usualRecoveryFolder();
    if (options.recoveryFolder.empty()) {
      err << "zev: unsaved edits are not kept, because neither XDG_STATE_HOME nor HOME is set; give --recovery "
             "FOLDER\n";
    }
  }
  return options;
}

/// Opens the model of the command line, as a client would.
void openModel(service::Service& service, ServeOptions const& given) {
  if (given.model.empty()) return;
  Json params = {{"file", fs::absolute(given.model).string()}};
  if (!given.root.empty()) params["root"] = given.root;
  Json const request = {{"jsonrpc", "2.0"}, {"id", 1}, {"method", "open"}, {"params", params}};
  Json const answer = Json::parse(service.answer(request.dump(-1, ' ', false, Json::error_handler_t::replace)));
  if (answer.contains("error")) throw Failure(answer["error"]["message"].get<std::string>());
}

void tellRecoverable(service::Service const& service, std::ostream& err) {
  for (auto const& one : service.recoverable()) {
    err << "zev: unsaved work was left: " << one.steps << (one.steps == 1 ? " step" : " steps") << " in "
        << (one.file.empty() ? "a model without a file" : one.file) << "; \"recover\" with \"" << one.id
        << "\" makes it again\n";
  }
}

/// Checks between options, which the parser of the command line does not make.
void checkUsage(ServeOptions const& given) {
  auto const complain = [](char const* sentence) { throw CLI::ParseError(sentence, CLI::ExitCodes::InvalidError); };
  if (given.overPipe == given.http.has_value()) {
    complain("say how messages travel, by either --stdio or --http [ADDRESS:]PORT");
  }
  if (!given.http && (given.tokenFile || given.web || !given.names.empty())) {
    complain("--token-file, --host-name and --web are for --http");
  }
  if (given.recovery && given.withoutRecovery) complain("give either --recovery or --no-recovery");
}

int serve(ServeOptions const& given, std::ostream& out, std::ostream& err) {
  HttpOptions http;
  if (given.http) {
    http.address = readAddress(*given.http);
    if (!http.address.isLoopback() && !given.tokenFile) {
      throw Failure("other machines can reach " + http.address.hostInUrl() +
                    "; give --token-file FILE with a token that only its users know");
    }
    http.token = given.tokenFile ? readToken(*given.tokenFile) : randomToken();
    http.names = given.names;
    std::string const web = given.web ? *given.web : installedEditor();
    if (web.empty()) {
      err << "zev: this installation has no web editor; the address says how to get it\n";
    } else {
      http.editor = EditorFiles::read(web);
    }
  }
  auto const rules = loadRuleFiles(given.rules, err);
  // Before any thread is started, so that no thread takes the signals.
  TerminationSignals const signals;
  service::Service service(*rules, serviceOptions(given, err));
  openModel(service, given);
  tellRecoverable(service, err);
  if (given.http) {
    serveOverHttp(service, http, signals, out);
  } else {
    serveOverPipe(service, signals, out);
  }
  return NothingFound;
}

}  // namespace

void addServeCommand(CLI::App& app, Command& chosen) {
  auto options = std::make_shared<ServeOptions>();
  CLI::App* command = app.add_subcommand("serve", "Edit models for other programs, by messages");
  addRulesOption(*command, options->rules);
  command
      ->add_option("--root", options->root, "The object of MODEL to edit; default: the only one that the rules look at")
      ->type_name("OBJECT");
  command->add_flag("--stdio", options->overPipe, "Answer each line of the standard input on the standard output");
  command
      ->add_option("--http", options->http,
                   "Serve the web editor and answer requests over HTTP; prints the address;\n"
                   "ADDRESS is 127.0.0.1 unless it is given, and port 0 is any free port")
      ->type_name("[ADDRESS:]PORT");
  command
      ->add_option("--folder", options->folders,
                   "Let clients open and save models in FOLDER and below it; may be given\n"
                   "more than once; default: the folder of MODEL")
      ->type_name("FOLDER")
      ->allow_extra_args(false);
  command
      ->add_option("--token-file", options->tokenFile,
                   "Take the token from FILE, which only its owner can read; default: a new\n"
                   "random token. Needed for addresses that other machines can reach")
      ->type_name("FILE");
  command->add_option("--host-name", options->names, "A further name under which browsers reach this machine")
      ->type_name("NAME")
      ->allow_extra_args(false);
  command->add_option("--web", options->web, "The folder of the web editor; default: that of the installation")
      ->type_name("FOLDER");
  command
      ->add_option("--recovery", options->recovery,
                   "Keep unsaved edits in FOLDER; default: zev/recovery in $XDG_STATE_HOME, or in\n"
                   "~/.local/state")
      ->type_name("FOLDER");
  command->add_flag("--no-recovery", options->withoutRecovery, "Keep no unsaved edits");
  command->add_option("MODEL", options->model, "A model file that is open from the start")->type_name("FILE");
  command->footer(
      "The messages are requests of JSON-RPC 2.0; docs/protocol.md describes them. SIGINT and SIGTERM end the server.\n"
      "Unsaved edits are written at once to a recovery file, and a later server offers them.\n"
      "Example: zev serve --rules rules/ --http 8080 pump.tdf\n"
      "Exit status: 0 ended by a signal or by the end of the input, 2 wrong usage or a file that could not be read.");
  command->callback([options, &chosen] {
    checkUsage(*options);
    chosen = [options](std::ostream& out, std::ostream& err) { return serve(*options, out, err); };
  });
}

}  // namespace tarn::tool
