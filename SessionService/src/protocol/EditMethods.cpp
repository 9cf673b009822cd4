// Edits, trials and the history.
#include <algorithm>
#include <set>
#include <span>
#include <string>
#include <string_view>

#include <tarn/service/FindingJson.h>
#include <tarn/service/JsonText.h>
#include <tarn/service/SessionJson.h>

#include "protocol/Methods.h"
#include "protocol/ProtocolError.h"

namespace tarn::service {

namespace {

using Json = nlohmann::ordered_json;

std::size_t entriesOf(Host const& host, Arguments const& arguments) {
  std::size_t const most = host.options.limits.page;
  return std::min(arguments.number("limit", most), most);
}

/// The answer to an edit, undo or redo. All clients hear of it if it changed something.
Json answerTo(Host& host, Arguments const& arguments, Document& document, session::EditResult const& result,
              std::string_view cause) {
  Json json = document.state();
  json["result"] = editResultAsJson(result, entriesOf(host, arguments));
  if (result.applied() && cause == "undo") json["result"].erase("message");  // it says that the edits were made
  if (result.applied()) publishChange(host, document, arguments, cause, &result);
  return json;
}

/// The result of a trial. Its message would say that the edits were made.
Json trialAsJson(session::EditResult const& result, std::size_t most) {
  Json json = editResultAsJson(result, most);
  if (result.applied()) json.erase("message");
  return json;
}

/// Whether edits delete objects with values that somebody gave. Such a value waits then, for an object that is gone.
bool losesOwnValues(session::Effect const& effect) {
  std::set<std::string_view> const deleted(effect.objectsDeleted.begin(), effect.objectsDeleted.end());
  return !deleted.empty() && std::any_of(effect.waiting.begin(), effect.waiting.end(), [&](auto const& change) {
    return change.after && deleted.contains(change.item.path);
  });
}

/// For clients that ask their user first: edits that would lose values are not made.
session::EditResult editUnlessLost(Host& host, Arguments const& arguments, Document& document,
                                   std::span<Edit const> edits) {
  session::EditResult tried = document.session().tryEdits(edits);
  if (!tried.applied()) return tried;
  if (!losesOwnValues(tried.effect)) return document.edit(edits);
  throw ProtocolError(ErrorCode::LosesOwnValues, "the edits delete objects with values that somebody gave",
                      {{"revision", document.revision()}, {"result", trialAsJson(tried, entriesOf(host, arguments))}});
}

/// Makes an edit, unless it is the repetition of a request whose answer was lost.
template <typename MakeEdit>
Json editOnce(Host& host, Arguments const& arguments, MakeEdit const& makeEdit) {
  LockedDocument const document = lockDocument(host, arguments);
  auto const editId = arguments.optionalText("editId");
  if (editId) {
    if (editId->size() > 100) throw ProtocolError(ErrorCode::LimitExceeded, "\"editId\" has more than 100 bytes");
    if (Json const* const earlier = document->answered(*editId)) {
      Json json = *earlier;
      json["repeated"] = true;
      return json;
    }
  }
  requireRevision(*document, arguments);
  session::EditResult const result = makeEdit(*document);
  Json json = answerTo(host, arguments, *document, result, "edit");
  if (editId && result.applied()) document->remember(*editId, json, host.options.limits.rememberedEdits);
  return json;
}

Json edit(Host& host, Arguments const& arguments) {
  auto const edits = arguments.edits(host.options.limits.edits);
  bool const asks = arguments.flag("ask");
  return editOnce(host, arguments, [&](Document& document) {
    return asks ? editUnlessLost(host, arguments, document, edits) : document.edit(edits);
  });
}

Json renameFollowed(Host& host, Arguments const& arguments) {
  std::string const path = arguments.text("path");
  std::string const name = arguments.text("name");
  return editOnce(host, arguments, [&](Document& document) { return document.renameFollowed(path, name); });
}

Json tryEdits(Host& host, Arguments const& arguments) {
  auto const edits = arguments.edits(host.options.limits.edits);
  LockedDocument const document = lockDocument(host, arguments);
  if (arguments.has("revision")) requireRevision(*document, arguments);
  std::size_t const most = entriesOf(host, arguments);
  Json json = {{"revision", document->revision()}};
  if (arguments.flag("findings")) {
    json["result"] = tryResultAsJson(document->session().tryWithFindings(edits), most);
  } else {
    json["result"] = trialAsJson(document->session().tryEdits(edits), most);
  }
  return json;
}

template <typename Move>
Json moveInHistory(Host& host, Arguments const& arguments, std::string_view cause, Move const& move) {
  LockedDocument const document = lockDocument(host, arguments);
  requireRevision(*document, arguments);
  auto const result = move(*document);
  if (result) return answerTo(host, arguments, *document, *result, cause);
  return document->state();
}

Json undo(Host& host, Arguments const& arguments) {
  return moveInHistory(host, arguments, "undo", [](Document& document) { return document.undo(); });
}

Json redo(Host& host, Arguments const& arguments) {
  return moveInHistory(host, arguments, "redo", [](Document& document) { return document.redo(); });
}

Json steps(Host& host, Arguments const& arguments) {
  LockedDocument const document = lockDocument(host, arguments);
  Json json = {{"revision", document->revision()}, {"undoneSteps", document->session().undoneSteps()}};
  json.update(pageAsJson(document->session().steps(), arguments.page(host.options.limits.page), stepAsJson));
  return json;
}

Json lastResult(Host& host, Arguments const& arguments) {
  LockedDocument const document = lockDocument(host, arguments);
  Json json = {{"revision", document->revision()}};
  session::EditResult const* const last = document->session().lastResult();
  if (last == nullptr) return json;
  auto const list = arguments.optionalText("list");
  if (!list) {
    json["result"] = editResultAsJson(*last, entriesOf(host, arguments));
    return json;
  }
  Page const page = arguments.page(host.options.limits.page);
  Json entries = effectListAsJson(last->effect, *list, page.offset, page.limit);
  if (entries.is_null()) throw ProtocolError(ErrorCode::InvalidParams, "an effect has no list \"" + *list + '"');
  json["total"] = effectListSize(last->effect, *list);
  json["offset"] = page.offset;
  json["list"] = std::move(entries);
  return json;
}

constexpr Method methods[] = {
    {"edit", edit},   {"renameFollowed", renameFollowed}, {"tryEdits", tryEdits}, {"undo", undo}, {"redo", redo},
    {"steps", steps}, {"lastResult", lastResult},
};

}  // namespace

std::span<Method const> editMethods() noexcept {
  return methods;
}

}  // namespace tarn::service
