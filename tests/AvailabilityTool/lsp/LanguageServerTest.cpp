#include "lsp/LanguageServer.h"

#include <chrono>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

namespace tarn::tool {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Json = LanguageServer::Json;

/// A client that keeps what the server sends.
class Client {
 public:
  explicit Client(LspLimits limits = {}) : server([this](Json const& message) { sent.push_back(message); }, limits) {
    ask("initialize", {{"capabilities", Json::object()}});
  }

  void notify(std::string const& method, Json params) {
    server.take(Json{{"jsonrpc", "2.0"}, {"method", method}, {"params", std::move(params)}}.dump());
    server.work();
    server.rest();
  }

  Json ask(std::string const& method, Json params) {
    server.take(Json{{"jsonrpc", "2.0"}, {"id", 1}, {"method", method}, {"params", std::move(params)}}.dump());
    server.work();
    return sent.back().value("result", Json());
  }

  void open(std::string const& uri, std::string const& text) {
    notify("textDocument/didOpen", {{"textDocument", {{"uri", uri}, {"version", 1}, {"text", text}}}});
  }

  /// Waits until everything is checked.
  void settle() {
    while (server.isChecking()) server.rest();
  }

  /// The texts of messages for the user.
  [[nodiscard]] std::vector<std::string> shown() const {
    std::vector<std::string> texts;
    for (Json const& message : sent) {
      if (message.value("method", "") == "window/showMessage") texts.push_back(message["params"]["message"]);
    }
    return texts;
  }

  /// The codes of the diagnostics of a document, as they were published last.
  [[nodiscard]] std::vector<std::string> codes(std::string const& uri) const {
    std::vector<std::string> codes;
    for (Json const& message : sent) {
      if (message.value("method", "") != "textDocument/publishDiagnostics" || message["params"]["uri"] != uri) continue;
      codes.clear();
      for (Json const& one : message["params"]["diagnostics"]) codes.push_back(one["code"]);
    }
    return codes;
  }

  std::vector<Json> sent;
  LanguageServer server;
};

constexpr char const* pumpRules =
    "Rule Database: 1\nPertinent Roots: [Pump]\nObjects:\n  /Pump:\n    Parameters:\n"
    "      Speed: {Parameter Type: Real}\n      Flow: {Parameter Type: Real}\n      Head: {Parameter Type: Real}\n";

TEST(LanguageServer, AMessageThatIsNestedTooDeepIsRefused) {
  LspLimits limits;
  limits.messageDepth = 10;
  Client client(limits);
  client.server.take(std::string(11, '[') + std::string(11, ']'));
  EXPECT_EQ(client.sent.back()["error"]["message"], "the message is nested more than 10 deep");
}

TEST(LanguageServer, OneDocumentMoreThanAllowedIsLeftOut) {
  LspLimits limits;
  limits.bases.documents = 1;
  Client client(limits);
  client.open("file:///nowhere/a.rules.yaml", pumpRules);
  client.open("file:///nowhere/b.rules.yaml", pumpRules);
  EXPECT_THAT(client.shown(),
              ElementsAre("/nowhere/b.rules.yaml: more than 1 documents are open; this one is left out"));
}

TEST(LanguageServer, ADocumentThatIsOrBecomesTooLargeIsLeftOut) {
  LspLimits limits;
  limits.bases.fileBytes = 300;
  Client client(limits);
  client.open("file:///nowhere/a.rules.yaml", std::string(301, '#'));
  client.open("file:///nowhere/b.rules.yaml", pumpRules);
  client.notify("textDocument/didChange", {{"textDocument", {{"uri", "file:///nowhere/b.rules.yaml"}, {"version", 2}}},
                                           {"contentChanges", Json::array({{{"text", std::string(301, '#')}}})}});
  EXPECT_THAT(client.shown(),
              ElementsAre("/nowhere/a.rules.yaml: the document is larger than 300 bytes; it is left out",
                          "/nowhere/b.rules.yaml: the document has become too large; it is left out"));
}

TEST(LanguageServer, OfTooManyFilesTheFirstAreRead) {
  LspLimits limits;
  limits.bases.files = 2;
  test::TemporaryFolder const folder("lsp");
  for (char const* const name : {"a", "b", "c"}) {
    std::ofstream(folder.path() / (std::string(name) + ".rules.yaml")) << "Rule Database: 1\n";
  }
  Client client(limits);
  client.open("file://" + (folder.path() / "a.rules.yaml").string(), "Rule Database: 1\n");
  EXPECT_THAT(client.shown(), ElementsAre(HasSubstr("c.rules.yaml: a rule base has more than 2 files; the others are "
                                                    "not read")));
}

TEST(LanguageServer, OfTooManyProposalsTheFirstAreSent) {
  LspLimits limits;
  limits.completions = 2;
  Client client(limits);
  std::string const uri = "file:///nowhere/a.rules.yaml";
  client.open(uri, std::string(pumpRules) + "      Power: {Parameter Type: Real, Available: \"${\"}\n");
  Json const answer = client.ask("textDocument/completion",
                                 {{"textDocument", {{"uri", uri}}}, {"position", {{"line", 8}, {"character", 50}}}});
  EXPECT_EQ(answer["items"].size(), 2u);
  EXPECT_TRUE(answer["isIncomplete"]);
}

TEST(LanguageServer, WarningsOfAnEditAreThereBeforeEverythingIsChecked) {
  LspLimits limits;
  limits.quickCheck = std::chrono::milliseconds(-1);  // as in a large rule base
  Client client(limits);
  std::string const uri = "file:///nowhere/a.rules.yaml";
  client.open(uri, pumpRules);
  client.settle();
  EXPECT_THAT(client.codes(uri), IsEmpty());
  client.notify(
      "textDocument/didChange",
      {{"textDocument", {{"uri", uri}, {"version", 2}}},
       {"contentChanges",
        Json::array(
            {{{"range", {{"start", {{"line", 6}, {"character", 33}}}, {"end", {{"line", 6}, {"character", 33}}}}},
              {"text", ", Available: \"${Sped} > 1\""}}})}});
  EXPECT_THAT(client.codes(uri), ElementsAre("unknown-parameter"));
}

}  // namespace
}  // namespace tarn::tool
