// The questions of an editor about rules, as messages of the protocol.

#include <algorithm>
#include <array>
#include <cctype>
#include <map>
#include <utility>

#include "lsp/LanguageServer.h"
#include "lsp/LspError.h"

namespace tarn::tool {

namespace {

using workbench::EditorItemKind;
using workbench::EditorPosition;
using workbench::EditorRange;
using Json = nlohmann::ordered_json;

int completionKind(EditorItemKind kind) {
  switch (kind) {
    case EditorItemKind::Function:
      return 3;
    case EditorItemKind::Parameter:
      return 6;  // a variable
    case EditorItemKind::ObjectType:
    case EditorItemKind::Child:
      return 7;  // a class
    case EditorItemKind::Key:
      return 10;  // a property
    case EditorItemKind::QuantityType:
      return 11;  // a unit
    case EditorItemKind::Value:
      return 12;
    case EditorItemKind::Word:
      return 14;  // a keyword
    case EditorItemKind::Template:
      return 15;  // a snippet
    default:
      return 18;  // a reference
  }
}

int symbolKind(EditorItemKind kind) {
  switch (kind) {
    case EditorItemKind::Section:
      return 3;  // a namespace
    case EditorItemKind::ObjectType:
      return 5;  // a class
    case EditorItemKind::Parameter:
      return 7;  // a property
    case EditorItemKind::Child:
      return 8;  // a field
    case EditorItemKind::ObjectCheck:
    case EditorItemKind::GlobalCheck:
      return 24;  // an event
    case EditorItemKind::NamedCheck:
      return 17;  // a boolean
    case EditorItemKind::NamedList:
      return 18;  // an array
    case EditorItemKind::NamedValue:
      return 14;  // a constant
    case EditorItemKind::Template:
      return 11;  // an interface
    case EditorItemKind::QuantityType:
      return 16;  // a number
    case EditorItemKind::Test:
      return 6;  // a method
    default:
      return 13;
  }
}

std::string lowered(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return result;
}

/// The text that a user types to find a proposal: without the signs around a name.
std::string typedText(std::string const& label) {
  std::size_t const begin = label.find_first_not_of("${'/^");
  if (begin == std::string::npos) return label;
  std::size_t const end = label.find_last_not_of("}'");
  return label.substr(begin, end - begin + 1);
}

bool overlaps(EditorRange const& a, EditorRange const& b) {
  return a.begin <= b.end && b.begin <= a.end;
}

std::size_t numberAt(nlohmann::json const& object, char const* name) {
  auto const found = object.find(name);
  if (found == object.end() || !found->is_number_unsigned()) {
    throw LspError(LspError::InvalidParams, std::string("\"") + name + "\" must be a number");
  }
  return found->get<std::size_t>();
}

}  // namespace

EditorPosition positionAt(RuleBase const& base, PositionEncoding encoding, std::string const& file,
                          nlohmann::json const* position) {
  if (position == nullptr || !position->is_object()) {
    throw LspError(LspError::InvalidParams, "a position must have \"line\" and \"character\"");
  }
  return LspPositions(base.rules, encoding)
      .position(file, numberAt(*position, "line"), numberAt(*position, "character"));
}

LanguageServer::Asked LanguageServer::asked(nlohmann::json const& params, bool hasPosition) {
  auto const document = params.find("textDocument");
  if (document == params.end() || !document->is_object() || !document->contains("uri") ||
      !document->at("uri").is_string()) {
    throw LspError(LspError::InvalidParams, "\"textDocument.uri\" must be a string");
  }
  Asked asked;
  asked.file = pathOf(document->at("uri").get<std::string>());
  asked.base = bases_.find(asked.file);
  if (asked.base == nullptr || !hasPosition) return asked;
  auto const position = params.find("position");
  asked.position = positionAt(*asked.base, encoding_, asked.file, position == params.end() ? nullptr : &*position);
  return asked;
}

LanguageServer::Json LanguageServer::complete(Asked const& asked) const {
  Json items = Json::array();
  bool isIncomplete = false;
  if (asked.base != nullptr) {
    LspPositions const at = positions(*asked.base);
    std::string_view const line = asked.base->rules.line(asked.file, asked.position.line);
    for (auto const& one : asked.base->rules.complete(asked.file, asked.position)) {
      std::size_t const begin = std::min(one.replaced.begin.byte, line.size());
      std::string const typed = lowered(line.substr(begin, std::min(asked.position.byte, line.size()) - begin));
      if (lowered(one.label).find(typed) == std::string::npos) continue;
      if (items.size() == limits_.completions) {
        isIncomplete = true;
        break;
      }
      std::string order = std::to_string(items.size());
      order.insert(0, 5 - std::min<std::size_t>(order.size(), 5), '0');
      Json item = {{"label", one.label}, {"kind", completionKind(one.kind)}};
      if (!one.detail.empty()) item["detail"] = one.detail;
      if (!one.documentation.empty()) item["documentation"] = {{"kind", "markdown"}, {"value", one.documentation}};
      item["sortText"] = order;
      item["filterText"] =
          typed.empty() || lowered(typedText(one.label)).starts_with(typed) ? typedText(one.label) : one.label;
      item["insertTextFormat"] = 1;
      item["textEdit"] = {{"range", at.json(asked.file, one.replaced)}, {"newText", one.text}};
      items.push_back(std::move(item));
    }
  }
  return {{"isIncomplete", isIncomplete}, {"items", std::move(items)}};
}

LanguageServer::Json LanguageServer::hover(Asked const& asked) const {
  if (asked.base == nullptr) return nullptr;
  auto const hover = asked.base->rules.hover(asked.file, asked.position);
  if (!hover) return nullptr;
  return {{"contents", {{"kind", "markdown"}, {"value", hover->markdown}}},
          {"range", positions(*asked.base).json(asked.file, hover->range)}};
}

LanguageServer::Json LanguageServer::locations(RuleBase const& base,
                                               std::vector<workbench::EditorLocation> const& all) const {
  Json list = Json::array();
  LspPositions const at = positions(base);
  for (auto const& one : all) {
    list.push_back({{"uri", uriOfFile(one.file)}, {"range", at.json(one.file, one.range)}});
  }
  return list;
}

LanguageServer::Json LanguageServer::changesJson(RuleBase const& base,
                                                 std::vector<workbench::EditorChange> const& changes) const {
  LspPositions const at = positions(base);
  std::map<std::string, Json> byFile;
  for (auto const& change : changes) {
    byFile.try_emplace(change.file, Json::array())
        .first->second.push_back({{"range", at.json(change.file, change.range)}, {"newText", change.text}});
  }
  if (!hasDocumentChanges_) {
    Json all = Json::object();
    for (auto& [file, edits] : byFile) all[uriOfFile(file)] = std::move(edits);
    return {{"changes", std::move(all)}};
  }
  Json all = Json::array();
  for (auto& [file, edits] : byFile) {
    auto const version = versions_.find(file);
    Json const number = version != versions_.end() ? Json(version->second) : Json(nullptr);
    all.push_back({{"textDocument", {{"uri", uriOfFile(file)}, {"version", number}}}, {"edits", std::move(edits)}});
  }
  return {{"documentChanges", std::move(all)}};
}

LanguageServer::Json LanguageServer::rename(Asked const& asked, std::string const& name) const {
  if (asked.base == nullptr) throw LspError(LspError::RequestFailed, "there is no name here that can be changed");
  auto const renamed = asked.base->rules.rename(asked.file, asked.position, name);
  if (!renamed.refusal.empty()) throw LspError(LspError::RequestFailed, renamed.refusal);
  return changesJson(*asked.base, renamed.changes);
}

LanguageServer::Json LanguageServer::symbolJson(Asked const& asked, workbench::EditorSymbol const& symbol) const {
  LspPositions const at = positions(*asked.base);
  Json json = {{"name", symbol.name}, {"kind", symbolKind(symbol.kind)}};
  if (!symbol.detail.empty()) json["detail"] = symbol.detail;
  json["range"] = at.json(asked.file, symbol.range);
  json["selectionRange"] = at.json(asked.file, symbol.nameRange);
  // The items of files are nested three deep.
  if (!symbol.children.empty()) {
    Json children = Json::array();
    for (auto const& child : symbol.children) children.push_back(symbolJson(asked, child));
    json["children"] = std::move(children);
  }
  return json;
}

LanguageServer::Json LanguageServer::symbols(Asked const& asked) const {
  Json list = Json::array();
  if (asked.base == nullptr) return list;
  auto const all = asked.base->rules.symbols(asked.file);
  if (hasSymbolTree_) {
    for (auto const& one : all) list.push_back(symbolJson(asked, one));
    return list;
  }
  LspPositions const at = positions(*asked.base);
  auto const addAll = [&](auto const& self, std::vector<workbench::EditorSymbol> const& symbols,
                          std::string const& container) -> void {
    for (auto const& one : symbols) {
      Json json = {{"name", one.name},
                   {"kind", symbolKind(one.kind)},
                   {"location", {{"uri", uriOfFile(asked.file)}, {"range", at.json(asked.file, one.range)}}}};
      if (!container.empty()) json["containerName"] = container;
      list.push_back(std::move(json));
      self(self, one.children, one.name);
    }
  };
  addAll(addAll, all, "");
  return list;
}

LanguageServer::Json LanguageServer::findSymbols(std::string const& part) const {
  Json list = Json::array();
  for (auto const& [key, base] : bases_.all()) {
    LspPositions const at = positions(*base);
    for (auto const& one : base->rules.findSymbols(part)) {
      Json json = {{"name", one.name}, {"kind", symbolKind(one.kind)}};
      json["location"] = {{"uri", uriOfFile(one.location.file)},
                          {"range", at.json(one.location.file, one.location.range)}};
      if (!one.container.empty()) json["containerName"] = one.container;
      list.push_back(std::move(json));
    }
  }
  return list;
}

LanguageServer::Json LanguageServer::folds(Asked const& asked) const {
  Json list = Json::array();
  if (asked.base == nullptr) return list;
  for (auto const& one : asked.base->rules.folds(asked.file)) {
    list.push_back({{"startLine", one.firstLine}, {"endLine", one.lastLine}});
  }
  return list;
}

LanguageServer::Json LanguageServer::tokens(Asked const& asked, nlohmann::json const& params) const {
  Json data = Json::array();
  if (asked.base == nullptr) return {{"data", std::move(data)}};
  std::size_t first = 0;
  std::size_t end = static_cast<std::size_t>(-1);
  if (auto const range = params.find("range"); range != params.end() && range->is_object()) {
    auto const start = range->find("start");
    auto const stop = range->find("end");
    first = positionAt(*asked.base, encoding_, asked.file, start == range->end() ? nullptr : &*start).line;
    end = positionAt(*asked.base, encoding_, asked.file, stop == range->end() ? nullptr : &*stop).line + 1;
  }
  std::size_t lastLine = 0;
  std::size_t lastUnit = 0;
  for (auto const& token : asked.base->rules.tokens(asked.file, first, end)) {
    std::string_view const line = asked.base->rules.line(asked.file, token.position.line);
    std::size_t const unit = unitsOf(line.substr(0, token.position.byte), encoding_);
    std::size_t const length = unitsOf(line.substr(token.position.byte, token.bytes), encoding_);
    std::size_t const lines = token.position.line - lastLine;
    for (std::size_t const number :
         {lines, lines == 0 ? unit - lastUnit : unit, length, static_cast<std::size_t>(token.kind), std::size_t{0}}) {
      data.push_back(number);
    }
    lastLine = token.position.line;
    lastUnit = unit;
  }
  return {{"data", std::move(data)}};
}

LanguageServer::Json LanguageServer::codeActions(Asked const& asked, nlohmann::json const& params) {
  Json list = Json::array();
  if (asked.base == nullptr) return list;
  auto const rangeAt = params.find("range");
  if (rangeAt == params.end() || !rangeAt->is_object()) {
    throw LspError(LspError::InvalidParams, "\"range\" must have \"start\" and \"end\"");
  }
  auto const start = rangeAt->find("start");
  auto const stop = rangeAt->find("end");
  EditorRange const range{positionAt(*asked.base, encoding_, asked.file, start == rangeAt->end() ? nullptr : &*start),
                          positionAt(*asked.base, encoding_, asked.file, stop == rangeAt->end() ? nullptr : &*stop)};
  // The positions of fixes must be those of the present text.
  RuleBase& base = *asked.base;
  std::vector<workbench::EditorDiagnostic> all;
  if (workbench::EditedRules::isTestFile(asked.file)) {
    all = base.rules.checkTests(asked.file);
  } else {
    if (base.examined != base.rules.revision()) {
      base.current = base.hasWhole ? base.rules.checkChanges(base.wholly) : base.rules.snapshot().check();
    }
    all = base.current[asked.file];
  }
  for (auto const& one : all) {
    if (!one.fix || !overlaps(one.range, range)) continue;
    list.push_back({{"title", one.fix->title},
                    {"kind", "quickfix"},
                    {"diagnostics", Json::array({diagnosticJson(base, asked.file, one)})},
                    {"isPreferred", true},
                    {"edit", changesJson(base, {one.fix->change})}});
  }
  return list;
}

}  // namespace tarn::tool
