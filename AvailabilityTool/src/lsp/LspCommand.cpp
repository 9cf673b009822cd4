// zev lsp: the language server on standard input and output.
#include "lsp/LspCommand.h"

#include <unistd.h>

#include <cerrno>
#include <memory>
#include <ostream>
#include <string>
#include <utility>

#include <CLI/CLI.hpp>

#include <tarn/service/JsonText.h>

#include "cli/ExitStatus.h"
#include "cli/Failure.h"
#include "lsp/LanguageServer.h"
#include "lsp/MessageStream.h"
#include "serve/TerminationSignals.h"

namespace tarn::tool {

namespace {

constexpr int waitForCheck = 5;     // milliseconds
constexpr int waitForInput = 1000;  // milliseconds

/// The protocol wants 0 only after a request to shut down.
int statusOf(LanguageServer const& server) {
  return server.wasShutDown() ? NothingFound : FindingsMade;
}

int serve(std::ostream& out) {
  TerminationSignals const signals;
  LanguageServer server([&](LanguageServer::Json const& message) { writeMessage(out, service::jsonLine(message)); });
  MessageStream stream(server.limits().messageBytes);
  MessageStream::Handlers const handlers{[&](std::string const& message) { server.take(message); },
                                         [&](std::string const& reason) { server.refuse(reason); }};
  std::string buffer(std::size_t{1} << 16U, '\0');
  bool hasEnded = false;
  while (out && !server.isDone()) {
    // All input that is there is read first: a later message may cancel or outdate an earlier one.
    int patience = server.isChecking() ? waitForCheck : waitForInput;
    for (;;) {
      auto const event = hasEnded ? TerminationSignals::Event::None : signals.wait(STDIN_FILENO, patience);
      if (event == TerminationSignals::Event::Terminate) return statusOf(server);
      if (event == TerminationSignals::Event::None) break;
      ssize_t const count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) throw Failure("the standard input cannot be read");
      if (count == 0) {
        hasEnded = true;
        break;
      }
      stream.take(std::string_view(buffer).substr(0, static_cast<std::size_t>(count)), handlers);
      patience = 0;
    }
    server.work();
    if (!server.isDone()) server.rest();
    if (hasEnded && !server.isChecking()) break;
  }
  return statusOf(server);
}

}  // namespace

void addLspCommand(CLI::App& app, Command& chosen) {
  CLI::App* command = app.add_subcommand("lsp", "Serve an editor as the language server for rule files");
  auto const overPipe = std::make_shared<bool>(false);
  command->add_flag("--stdio", *overPipe,
                    "Speak on standard input and output; there is no other way, so it changes nothing");
  command->footer(
      "An editor starts it; see the page on editors. It speaks the Language Server Protocol, version 3.17.\n"
      "A rule file belongs together with the other rule files of its folder, unless the initialization\n"
      "option \"rules\" names files and folders.\n"
      "Exit status: 0 after a request to shut down, 1 without one, 2 if the input could not be read.");
  command->callback(
      [overPipe, &chosen] { chosen = [](std::ostream& out, std::ostream& /*err*/) { return serve(out); }; });
}

}  // namespace tarn::tool
