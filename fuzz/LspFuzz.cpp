// Lines of bytes as messages for a language server that has two documents open. Every request gets exactly one answer,
// whatever the bytes are, and the server answers to the end. The text of the first document begins with the first line.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "fuzz/support/Laws.h"
#include "lsp/LanguageServer.h"
#include "lsp/MessageStream.h"

namespace {

using tarn::tool::LanguageServer;
using tarn::tool::MessageStream;
using Json = LanguageServer::Json;

constexpr char const* folder = "file:///nowhere/plant/";
constexpr char const* plant = R"yaml(Rule Database: 1
Pertinent Roots: [Plant]
Checks:
  runs: ${/Plant/Control} == 'Fixed'
Templates:
  wear: {Parameters: {Hours: {Parameter Type: Real}}}
Objects:
  /Plant:
    Use: [wear]
    Parameters:
      Control: {Parameter Type: String, Ordered Allowed String List: [Free, Fixed]}
      Level: {Parameter Type: Real, Available: "check('runs') and any(t in {Tank:*}, ${t/Height} > 2)"}
    Children:
      Tank: {Coupled: yes}
  /Plant/Tank:
    Parameters:
      Height: {Parameter Type: Real}
)yaml";

void open(LanguageServer& server, std::string const& name, std::string const& text) {
  nlohmann::json const message = {
      {"jsonrpc", "2.0"},
      {"method", "textDocument/didOpen"},
      {"params", {{"textDocument", {{"uri", folder + name}, {"languageId", "yaml"}, {"version", 1}, {"text", text}}}}}};
  server.take(message.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  std::string_view rest(reinterpret_cast<char const*>(data), size);  // NOLINT: bytes are characters here
  std::size_t answers = 0;
  LanguageServer server([&](Json const& message) {
    bool const isAnswer = message.contains("result") != message.contains("error");
    bool const isOwn = message.contains("method");
    if (isAnswer == isOwn) tarn::fuzz::fail("a message is an answer or has a method", message.dump());
    if (isAnswer && message.at("id") == "last") ++answers;
  });
  server.take(R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"capabilities":{}}})");
  std::size_t const end = std::min(rest.find('\n'), rest.size());
  open(server, "a.rules.yaml", plant);
  open(server, "b.rules.yaml", std::string(rest.substr(0, end)));
  open(server, "c.rule-tests.yaml", std::string(rest.substr(0, end)));
  server.work();
  server.rest();

  // As messages, one a line, and as the bytes of the way on which they travel.
  MessageStream stream(std::size_t{1} << 16);
  stream.take(rest, {[&](std::string const& message) { server.take(message); },
                     [&](std::string const& reason) { server.refuse(reason); }});
  while (!rest.empty()) {
    std::size_t const lineEnd = std::min(rest.find('\n'), rest.size());
    if (rest.find("\"exit\"") == std::string_view::npos && rest.find("\"shutdown\"") == std::string_view::npos) {
      server.take(rest.substr(0, lineEnd));
    }
    rest.remove_prefix(std::min(lineEnd + 1, rest.size()));
  }
  server.work();
  if (server.isDone()) return 0;
  server.rest();
  answers = 0;
  server.take(R"({"jsonrpc":"2.0","id":"last","method":"workspace/symbol","params":{"query":""}})");
  server.work();
  if (answers != 1) tarn::fuzz::fail("a server answers to the end", std::to_string(answers));
  return 0;
}
