#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "lsp/LspText.h"
#include "lsp/RuleBases.h"

namespace tarn::tool {

struct LspLimits {
  std::size_t messageBytes = std::size_t{96} << 20;
  std::size_t messageDepth = 100;
  std::size_t completions = 1000;
  /// Rule bases whose whole check takes no longer are checked at once after each change.
  std::chrono::milliseconds quickCheck{60};
  RuleBases::Limits bases;
};

/// A check of a whole rule base on another thread, and the state of the rules that it is about.
struct RunningCheck {
  std::string base;
  std::size_t revision = 0;
  std::future<std::pair<workbench::EditorDiagnostics, std::chrono::milliseconds>> result;
};

/// A language server for rule files and tests of rules: the protocol, without the way on which its messages travel.
///
/// `take` queues messages. `work` answers all that are queued. Diagnostics are published by `rest`, when no message
/// waits, so that of several edits only the last state is checked. In a large rule base `rest` publishes the errors of
/// form in what was changed, and starts a check of everything on another thread; a later `rest` publishes its result.
///
/// No bytes make it fail: every request gets one answer, and what is no request is reported or passed over.
class LanguageServer {
 public:
  using Json = nlohmann::ordered_json;
  using Send = std::function<void(Json const& message)>;

  explicit LanguageServer(Send send, LspLimits limits = {});
  ~LanguageServer();
  LanguageServer(LanguageServer const&) = delete;
  LanguageServer& operator=(LanguageServer const&) = delete;

  /// The text of a message.
  void take(std::string_view message);
  /// Something that was sent and is no message.
  void refuse(std::string const& reason);
  void work();
  void rest();
  /// A check runs whose result is to be published.
  [[nodiscard]] bool isChecking() const noexcept { return check_.has_value(); }
  /// The client has ended the conversation.
  [[nodiscard]] bool isDone() const noexcept { return isDone_; }
  /// The client asked for the end before it came.
  [[nodiscard]] bool wasShutDown() const noexcept { return isShutDown_; }
  [[nodiscard]] LspLimits const& limits() const noexcept { return limits_; }

 private:
  struct Waiting {
    nlohmann::json message;
    bool isCancelled = false;
  };

  // Messages
  void handle(Waiting const& waiting);
  void notify(std::string const& method, nlohmann::json const& params);
  [[nodiscard]] Json answer(std::string const& method, nlohmann::json const& params);
  void fail(Json const& id, int code, std::string const& message);
  void send(std::string const& method, Json params);
  void log(std::string const& text);

  // Life cycle
  [[nodiscard]] Json initialize(nlohmann::json const& params);
  void initialized();

  // Documents
  void didOpen(nlohmann::json const& params);
  void didChange(nlohmann::json const& params);
  void didClose(nlohmann::json const& params);
  void didChangeWatchedFiles(nlohmann::json const& params);

  // Diagnostics
  void check(std::string const& key, RuleBase& base);
  void checkWhole(RuleBase& base);
  void finishCheck();
  void publish(RuleBase& base);
  void publish(RuleBase const& base, std::string const& file, std::vector<workbench::EditorDiagnostic> const& all);
  [[nodiscard]] Json diagnosticJson(RuleBase const& base, std::string const& file,
                                    workbench::EditorDiagnostic const& one) const;

  // Questions
  struct Asked {
    RuleBase* base = nullptr;
    std::string file;
    workbench::EditorPosition position;
  };
  /// The document and position of a request. The base is null if the document is not open, or is no file of rules.
  [[nodiscard]] Asked asked(nlohmann::json const& params, bool hasPosition = true);
  [[nodiscard]] Json complete(Asked const& asked) const;
  [[nodiscard]] Json hover(Asked const& asked) const;
  [[nodiscard]] Json locations(RuleBase const& base, std::vector<workbench::EditorLocation> const& all) const;
  [[nodiscard]] Json rename(Asked const& asked, std::string const& name) const;
  [[nodiscard]] Json symbols(Asked const& asked) const;
  [[nodiscard]] Json symbolJson(Asked const& asked, workbench::EditorSymbol const& symbol) const;
  [[nodiscard]] Json findSymbols(std::string const& part) const;
  [[nodiscard]] Json folds(Asked const& asked) const;
  [[nodiscard]] Json tokens(Asked const& asked, nlohmann::json const& params) const;
  [[nodiscard]] Json codeActions(Asked const& asked, nlohmann::json const& params);
  [[nodiscard]] Json changesJson(RuleBase const& base, std::vector<workbench::EditorChange> const& changes) const;
  [[nodiscard]] LspPositions positions(RuleBase const& base) const { return {base.rules, encoding_}; }
  [[nodiscard]] std::string uriOfFile(std::string const& file) const;

  Send send_;
  LspLimits limits_;
  std::deque<Waiting> queue_;
  bool isInitialized_ = false;
  bool isShutDown_ = false;
  bool isDone_ = false;

  // What the client can do
  PositionEncoding encoding_ = PositionEncoding::Utf16;
  bool hasRelated_ = false;
  bool hasWatchers_ = false;
  bool hasDocumentChanges_ = false;
  bool hasSymbolTree_ = false;

  RuleBases bases_;
  std::map<std::string, std::string> uris_;       // of open documents, as the client writes them
  std::map<std::string, std::int64_t> versions_;  // of open documents
  std::map<std::string, std::string> published_;  // by file, so that nothing is published twice
  std::optional<RunningCheck> check_;
};

}  // namespace tarn::tool
