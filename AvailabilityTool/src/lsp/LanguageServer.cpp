// The conversation: which message comes when, and what is published. The answers to questions about rules are in
// LanguageServer.Questions.cpp.

#include "lsp/LanguageServer.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <new>
#include <utility>

#include <tarn/service/JsonDepth.h>
#include <tarn/service/JsonText.h>

#include "lsp/LspError.h"

namespace tarn::tool {

namespace {

using workbench::EditorRange;

constexpr char const* jsonrpc = "2.0";
/// A rule base with less text is checked at once, also for the first time.
constexpr std::size_t smallBytes = std::size_t{1} << 19;

bool isIdentifier(nlohmann::json const& id) {
  return id.is_string() || id.is_number();
}

/// The member at the end of a path of names; null if there is none.
nlohmann::json const* memberAt(nlohmann::json const& object, std::initializer_list<char const*> path) {
  nlohmann::json const* at = &object;
  for (char const* const name : path) {
    if (!at->is_object()) return nullptr;
    auto const found = at->find(name);
    if (found == at->end()) return nullptr;
    at = &*found;
  }
  return at;
}

bool isTrueAt(nlohmann::json const& object, std::initializer_list<char const*> path) {
  auto const* member = memberAt(object, path);
  return member != nullptr && member->is_boolean() && member->get<bool>();
}

std::string textAt(nlohmann::json const& object, std::initializer_list<char const*> path) {
  auto const* member = memberAt(object, path);
  return member != nullptr && member->is_string() ? member->get<std::string>() : std::string();
}

std::string requiredText(nlohmann::json const& object, std::initializer_list<char const*> path, char const* what) {
  auto const* member = memberAt(object, path);
  if (member == nullptr || !member->is_string()) {
    throw LspError(LspError::InvalidParams, std::string("\"") + what + "\" must be a string");
  }
  return member->get<std::string>();
}

int severityNumber(rules::Severity severity) {
  switch (severity) {
    case rules::Severity::Error:
      return 1;
    case rules::Severity::Warning:
      return 2;
    case rules::Severity::Note:
      return 3;
  }
  return 1;
}

}  // namespace

LanguageServer::LanguageServer(Send send, LspLimits limits)
    : send_(std::move(send)), limits_(limits), bases_(limits.bases) {}

LanguageServer::~LanguageServer() {
  if (check_) check_->result.wait();
}

// Messages

void LanguageServer::send(std::string const& method, Json params) {
  send_({{"jsonrpc", jsonrpc}, {"method", method}, {"params", std::move(params)}});
}

void LanguageServer::log(std::string const& text) {
  send("window/logMessage", {{"type", 2}, {"message", text}});
}

void LanguageServer::fail(Json const& id, int code, std::string const& message) {
  send_({{"jsonrpc", jsonrpc}, {"id", id}, {"error", {{"code", code}, {"message", message}}}});
}

void LanguageServer::refuse(std::string const& reason) {
  fail(nullptr, LspError::ParseError, reason);
}

void LanguageServer::take(std::string_view text) {
  if (service::isDeeperThan(text, limits_.messageDepth)) {
    refuse("the message is nested more than " + std::to_string(limits_.messageDepth) + " deep");
    return;
  }
  nlohmann::json message;
  try {
    message = nlohmann::json::parse(text);
  } catch (nlohmann::json::parse_error const& error) {
    refuse("the message is not JSON in UTF-8; the mistake is at byte " + std::to_string(error.byte));
    return;
  }
  if (textAt(message, {"method"}) == "$/cancelRequest") {
    auto const* const id = memberAt(message, {"params", "id"});
    for (Waiting& waiting : queue_) {
      auto const* const other = memberAt(waiting.message, {"id"});
      if (id != nullptr && other != nullptr && *id == *other) waiting.isCancelled = true;
    }
    return;
  }
  queue_.push_back({std::move(message)});
}

void LanguageServer::work() {
  while (!queue_.empty() && !isDone_) {
    Waiting const waiting = std::move(queue_.front());
    queue_.pop_front();
    handle(waiting);
  }
}

void LanguageServer::handle(Waiting const& waiting) {
  nlohmann::json const& message = waiting.message;
  if (!message.is_object()) return fail(nullptr, LspError::InvalidRequest, "a message must be an object");
  auto const idAt = message.find("id");
  auto const methodAt = message.find("method");
  if (methodAt == message.end()) {
    bool const isAnswer = message.contains("result") || message.contains("error");
    if (!isAnswer) fail(nullptr, LspError::InvalidRequest, "the message has no \"method\"");
    return;
  }
  bool const isRequest = idAt != message.end();
  if (isRequest && !isIdentifier(*idAt)) {
    return fail(nullptr, LspError::InvalidRequest, "\"id\" must be a string or a number");
  }
  Json const id = isRequest ? Json(*idAt) : Json();
  if (!methodAt->is_string()) {
    if (isRequest) fail(id, LspError::InvalidRequest, "\"method\" must be a string");
    return;
  }
  auto const method = methodAt->get<std::string>();
  static nlohmann::json const none = nlohmann::json::object();
  auto const paramsAt = message.find("params");
  nlohmann::json const& params = paramsAt != message.end() && paramsAt->is_object() ? *paramsAt : none;
  if (waiting.isCancelled && isRequest) return fail(id, LspError::RequestCancelled, "the request was cancelled");
  try {
    if (!isRequest) return notify(method, params);
    Json result = answer(method, params);
    send_({{"jsonrpc", jsonrpc}, {"id", id}, {"result", std::move(result)}});
  } catch (LspError const& error) {
    if (isRequest) return fail(id, error.code(), error.what());
    log(method + ": " + error.what());
  } catch (std::bad_alloc const&) {
    if (isRequest) return fail(id, LspError::InternalError, "there is not enough memory");
    log(method + ": there is not enough memory");
  } catch (std::exception const& error) {
    if (isRequest) return fail(id, LspError::InternalError, error.what());
    log(method + ": " + error.what());
  }
}

void LanguageServer::notify(std::string const& method, nlohmann::json const& params) {
  if (method == "exit") {
    isDone_ = true;
    return;
  }
  if (!isInitialized_ || isShutDown_) return;
  if (method == "initialized") return initialized();
  if (method == "textDocument/didOpen") return didOpen(params);
  if (method == "textDocument/didChange") return didChange(params);
  if (method == "textDocument/didClose") return didClose(params);
  if (method == "workspace/didChangeWatchedFiles") return didChangeWatchedFiles(params);
}

LanguageServer::Json LanguageServer::answer(std::string const& method, nlohmann::json const& params) {
  if (isShutDown_) throw LspError(LspError::InvalidRequest, "the server was shut down");
  if (method == "initialize") {
    if (isInitialized_) throw LspError(LspError::InvalidRequest, "the server is initialized already");
    return initialize(params);
  }
  if (!isInitialized_) throw LspError(LspError::ServerNotInitialized, "the first request must be \"initialize\"");
  if (method == "shutdown") {
    isShutDown_ = true;
    return nullptr;
  }
  if (method == "textDocument/completion") return complete(asked(params));
  if (method == "textDocument/hover") return hover(asked(params));
  if (method == "textDocument/definition") {
    Asked const at = asked(params);
    return at.base == nullptr ? Json::array() : locations(*at.base, at.base->rules.definition(at.file, at.position));
  }
  if (method == "textDocument/references") {
    Asked const at = asked(params);
    bool const withDefinitions = isTrueAt(params, {"context", "includeDeclaration"});
    return at.base == nullptr ? Json::array()
                              : locations(*at.base, at.base->rules.references(at.file, at.position, withDefinitions));
  }
  if (method == "textDocument/prepareRename") {
    Asked const at = asked(params);
    if (at.base == nullptr) return nullptr;
    auto const name = at.base->rules.renamable(at.file, at.position);
    if (!name) return nullptr;
    return {{"range", positions(*at.base).json(at.file, name->range)}, {"placeholder", name->name}};
  }
  if (method == "textDocument/rename") {
    Asked const at = asked(params);
    return rename(at, requiredText(params, {"newName"}, "newName"));
  }
  if (method == "textDocument/documentSymbol") return symbols(asked(params, false));
  if (method == "workspace/symbol") return findSymbols(textAt(params, {"query"}));
  if (method == "textDocument/foldingRange") return folds(asked(params, false));
  if (method == "textDocument/semanticTokens/full" || method == "textDocument/semanticTokens/range") {
    return tokens(asked(params, false), params);
  }
  if (method == "textDocument/codeAction") return codeActions(asked(params, false), params);
  throw LspError(LspError::MethodNotFound, "there is no method \"" + method + "\"");
}

// Life cycle

LanguageServer::Json LanguageServer::initialize(nlohmann::json const& params) {
  isInitialized_ = true;
  if (auto const* encodings = memberAt(params, {"capabilities", "general", "positionEncodings"});
      encodings != nullptr && encodings->is_array()) {
    bool const hasUtf8 = std::find(encodings->begin(), encodings->end(), "utf-8") != encodings->end();
    if (hasUtf8) encoding_ = PositionEncoding::Utf8;
  }
  hasRelated_ = isTrueAt(params, {"capabilities", "textDocument", "publishDiagnostics", "relatedInformation"});
  hasWatchers_ = isTrueAt(params, {"capabilities", "workspace", "didChangeWatchedFiles", "dynamicRegistration"});
  hasDocumentChanges_ = isTrueAt(params, {"capabilities", "workspace", "workspaceEdit", "documentChanges"});
  hasSymbolTree_ =
      isTrueAt(params, {"capabilities", "textDocument", "documentSymbol", "hierarchicalDocumentSymbolSupport"});
  bool const hasPrepare = isTrueAt(params, {"capabilities", "textDocument", "rename", "prepareSupport"});

  std::string root = textAt(params, {"rootUri"}).empty() ? textAt(params, {"rootPath"}) : textAt(params, {"rootUri"});
  if (auto const* folders = memberAt(params, {"workspaceFolders"}); folders != nullptr && folders->is_array()) {
    if (root.empty() && !folders->empty()) root = textAt(folders->front(), {"uri"});
  }
  if (auto const* given = memberAt(params, {"initializationOptions", "rules"})) {
    std::vector<std::filesystem::path> rules;
    auto const add = [&](nlohmann::json const& one) {
      if (!one.is_string()) {
        throw LspError(LspError::InvalidParams, "\"initializationOptions.rules\" must be a path or a list of paths");
      }
      std::filesystem::path path = (std::filesystem::path(pathOf(root)) / one.get<std::string>()).lexically_normal();
      if (!path.has_filename()) path = path.parent_path();  // a folder with "/" at its end
      rules.push_back(std::move(path));
    };
    if (given->is_array()) {
      for (auto const& one : *given) add(one);
    } else {
      add(*given);
    }
    bases_.configure(std::move(rules));
  }

  Json const legend = {
      {"tokenTypes", {"function", "keyword", "number", "string", "parameter", "type", "variable", "operator"}},
      {"tokenModifiers", Json::array()}};
  Json capabilities = {{"positionEncoding", encoding_ == PositionEncoding::Utf8 ? "utf-8" : "utf-16"},
                       {"textDocumentSync", {{"openClose", true}, {"change", 2}}},
                       {"completionProvider", {{"triggerCharacters", {"$", "{", "/", "'", "\"", "^", "@"}}}},
                       {"hoverProvider", true},
                       {"definitionProvider", true},
                       {"referencesProvider", true},
                       {"documentSymbolProvider", true},
                       {"workspaceSymbolProvider", true},
                       {"codeActionProvider", {{"codeActionKinds", {"quickfix"}}}},
                       {"foldingRangeProvider", true},
                       {"semanticTokensProvider", {{"legend", legend}, {"full", true}, {"range", true}}}};
  capabilities["renameProvider"] = hasPrepare ? Json{{"prepareProvider", true}} : Json(true);
  return {{"capabilities", std::move(capabilities)}, {"serverInfo", {{"name", "zev"}, {"version", TARN_VERSION}}}};
}

void LanguageServer::initialized() {
  if (!hasWatchers_) return;
  Json const watchers = {{{"globPattern", "**/*.rules.yaml"}}, {{"globPattern", "**/*.rule-tests.yaml"}}};
  Json const registration = {{"id", "rule-files"},
                             {"method", "workspace/didChangeWatchedFiles"},
                             {"registerOptions", {{"watchers", watchers}}}};
  send_({{"jsonrpc", jsonrpc},
         {"id", "rule-files"},
         {"method", "client/registerCapability"},
         {"params", {{"registrations", Json::array({registration})}}}});
}

// Documents

void LanguageServer::didOpen(nlohmann::json const& params) {
  std::string const uri = requiredText(params, {"textDocument", "uri"}, "textDocument.uri");
  std::string text = requiredText(params, {"textDocument", "text"}, "textDocument.text");
  std::string const path = pathOf(uri);
  std::string const refusal = bases_.open(path, std::move(text));
  if (!refusal.empty()) send("window/showMessage", {{"type", 1}, {"message", refusal}});
  if (!bases_.isOpen(path)) return;
  uris_[path] = uri;
  auto const* const version = memberAt(params, {"textDocument", "version"});
  versions_[path] = version != nullptr && version->is_number_integer() ? version->get<std::int64_t>() : 0;
}

void LanguageServer::didChange(nlohmann::json const& params) {
  std::string const path = pathOf(requiredText(params, {"textDocument", "uri"}, "textDocument.uri"));
  RuleBase* const base = bases_.find(path);
  if (base == nullptr) return;
  auto const* const changes = memberAt(params, {"contentChanges"});
  if (changes == nullptr || !changes->is_array()) {
    throw LspError(LspError::InvalidParams, "\"contentChanges\" must be a list");
  }
  for (nlohmann::json const& change : *changes) {
    std::string text = requiredText(change, {"text"}, "text");
    auto const* const range = memberAt(change, {"range"});
    if (range == nullptr) {
      base->rules.setText(path, std::move(text));
    } else {
      EditorRange const replaced{positionAt(*base, encoding_, path, memberAt(*range, {"start"})),
                                 positionAt(*base, encoding_, path, memberAt(*range, {"end"}))};
      base->rules.change(path, replaced, text);
    }
    if (base->rules.text(path).size() > limits_.bases.fileBytes) {
      bases_.close(path);
      send("window/showMessage",
           {{"type", 1}, {"message", path + ": the document has become too large; it is left out"}});
      return;
    }
  }
  auto const* const version = memberAt(params, {"textDocument", "version"});
  if (version != nullptr && version->is_number_integer()) versions_[path] = version->get<std::int64_t>();
  if (workbench::EditedRules::isTestFile(path)) base->changedTests.insert(path);
}

void LanguageServer::didClose(nlohmann::json const& params) {
  std::string const path = pathOf(requiredText(params, {"textDocument", "uri"}, "textDocument.uri"));
  RuleBase const* const base = bases_.find(path);
  if (base == nullptr) return;
  bases_.close(path);
  versions_.erase(path);
  // The diagnostics of a rule file stay, because the file still counts. Tests are only checked while they are open.
  if (!base->rules.has(path) || workbench::EditedRules::isTestFile(path)) publish(*base, path, {});
  uris_.erase(path);
}

void LanguageServer::didChangeWatchedFiles(nlohmann::json const& params) {
  auto const* const changes = memberAt(params, {"changes"});
  if (changes == nullptr || !changes->is_array()) return;
  for (nlohmann::json const& change : *changes) bases_.refresh(pathOf(textAt(change, {"uri"})));
}

// Diagnostics

void LanguageServer::rest() {
  finishCheck();
  for (auto const& [key, base] : bases_.all()) check(key, *base);
  for (std::string const& problem : bases_.takeProblems()) {
    send("window/showMessage", {{"type", 2}, {"message", problem}});
  }
}

void LanguageServer::check(std::string const& key, RuleBase& base) {
  for (std::string const& file : std::exchange(base.changedTests, {})) {
    publish(base, file, base.rules.checkTests(file));
  }
  if (base.checked == base.rules.revision()) return;
  if (!base.hasWhole) {
    std::size_t bytes = 0;
    for (std::string const& file : base.rules.files()) bytes += base.rules.text(file).size();
    base.cost = bytes < smallBytes ? std::chrono::milliseconds(0) : std::chrono::milliseconds::max();
  }
  if (base.cost <= limits_.quickCheck) {
    checkWhole(base);
    return;
  }
  if (base.hasWhole && base.examined != base.rules.revision()) {
    base.current = base.rules.checkChanges(base.wholly);
    base.examined = base.rules.revision();
    publish(base);
  }
  if (check_) return;
  check_.emplace();
  check_->base = key;
  check_->revision = base.rules.revision();
  check_->result = std::async(std::launch::async, [snapshot = base.rules.snapshot()] {
    auto const begin = std::chrono::steady_clock::now();
    auto found = snapshot.check();
    auto const cost = std::chrono::steady_clock::now() - begin;
    return std::pair(std::move(found), std::chrono::duration_cast<std::chrono::milliseconds>(cost));
  });
}

void LanguageServer::checkWhole(RuleBase& base) {
  auto const begin = std::chrono::steady_clock::now();
  base.wholly = base.rules.snapshot().check();
  base.cost = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin);
  base.hasWhole = true;
  base.current = base.wholly;
  base.rules.accept();
  base.checked = base.examined = base.rules.revision();
  publish(base);
}

void LanguageServer::finishCheck() {
  if (!check_ || check_->result.wait_for(std::chrono::seconds(0)) != std::future_status::ready) return;
  RunningCheck finished = std::move(*check_);
  check_.reset();
  auto const found = bases_.all().find(finished.base);
  try {
    auto [diagnostics, cost] = finished.result.get();
    if (found == bases_.all().end()) return;
    RuleBase& base = *found->second;
    base.cost = cost;
    if (base.rules.revision() != finished.revision) return;  // a newer text is checked instead
    base.wholly = std::move(diagnostics);
    base.hasWhole = true;
    base.current = base.wholly;
    base.rules.accept();
    base.checked = base.examined = finished.revision;
    publish(base);
  } catch (std::exception const& error) {
    log(std::string("the rules could not be checked: ") + error.what());
    if (found != bases_.all().end()) found->second->checked = finished.revision;
  }
}

void LanguageServer::publish(RuleBase& base) {
  for (std::string const& file : base.rules.files()) {
    if (workbench::EditedRules::isTestFile(file)) continue;
    auto const found = base.current.find(file);
    publish(base, file, found != base.current.end() ? found->second : std::vector<workbench::EditorDiagnostic>());
  }
}

void LanguageServer::publish(RuleBase const& base, std::string const& file,
                             std::vector<workbench::EditorDiagnostic> const& all) {
  Json list = Json::array();
  for (auto const& one : all) list.push_back(diagnosticJson(base, file, one));
  Json params = {{"uri", uriOfFile(file)}};
  if (auto const version = versions_.find(file); version != versions_.end()) params["version"] = version->second;
  std::string const text = service::jsonLine(list);
  std::string const stamp = text + (params.contains("version") ? params["version"].dump() : std::string());
  auto const known = published_.find(file);
  bool const isFirst = known == published_.end();
  if (isFirst && list.empty() && !params.contains("version")) return;
  if (!isFirst && known->second == stamp) return;
  published_[file] = stamp;
  params["diagnostics"] = std::move(list);
  send("textDocument/publishDiagnostics", std::move(params));
}

LanguageServer::Json LanguageServer::diagnosticJson(RuleBase const& base, std::string const& file,
                                                    workbench::EditorDiagnostic const& one) const {
  LspPositions const at = positions(base);
  Json json = {{"range", at.json(file, one.range)},
               {"severity", severityNumber(one.severity)},
               {"code", one.code},
               {"source", "zev"},
               {"message", one.message}};
  if (one.notes.empty()) return json;
  if (hasRelated_) {
    Json related = Json::array();
    for (auto const& note : one.notes) {
      related.push_back(
          {{"location",
            {{"uri", uriOfFile(note.location.file)}, {"range", at.json(note.location.file, note.location.range)}}},
           {"message", note.message}});
    }
    json["relatedInformation"] = std::move(related);
  } else {
    std::string text = one.message;
    for (auto const& note : one.notes) {
      text += "\n" + note.location.file.substr(note.location.file.rfind('/') + 1) + ":" +
              std::to_string(note.location.range.begin.line + 1) + ": " + note.message;
    }
    json["message"] = text;
  }
  return json;
}

std::string LanguageServer::uriOfFile(std::string const& file) const {
  auto const known = uris_.find(file);
  return known != uris_.end() ? known->second : uriOf(file);
}

}  // namespace tarn::tool
