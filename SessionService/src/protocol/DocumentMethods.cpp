// Documents and files: what a client does before and after it edits.
#include <tarn/service/JsonText.h>
#include <tarn/service/ProtocolSchema.h>
#include <tarn/service/SessionJson.h>

#include "protocol/Methods.h"
#include "protocol/ProtocolError.h"

namespace tarn::service {

namespace {

using Json = nlohmann::ordered_json;

Json recoverableAsJson(Service::Recoverable const& one) {
  Json json = {{"recovery", one.id}};
  if (!one.file.empty()) json["file"] = one.file;
  json["steps"] = one.steps;
  return json;
}

Json stateOf(std::shared_ptr<Document> const& document) {
  return LockedDocument(document)->state();
}

Json hello(Host& host, Arguments const&) {
  ServiceLimits const& limits = host.options.limits;
  Json json = {{"name", "zev"}, {"version", host.options.version}};
  json["protocol"] = {{"major", protocolMajor}, {"minor", protocolMinor}};
  json["recordForm"] = sessionJsonSchema;
  json["capabilities"] = {{"methods", methodNames()},
                          {"files", host.documents.folders().hasFolders()},
                          {"recovery", !host.options.recoveryFolder.empty()}};
  json["limits"] = {{"messageBytes", limits.messageBytes},
                    {"messageDepth", limits.messageDepth},
                    {"batch", limits.batch},
                    {"edits", limits.edits},
                    {"documents", limits.documents},
                    {"modelBytes", limits.modelBytes},
                    {"page", limits.page},
                    {"whyDepth", limits.whyDepth},
                    {"howTime", limits.howTime.count()},
                    {"streams", limits.streams}};
  json["documents"] = jsonList(host.documents.all(), stateOf);
  json["recoverable"] = jsonList(host.documents.recoverable(), recoverableAsJson);
  return json;
}

Json documents(Host& host, Arguments const&) {
  return {{"documents", jsonList(host.documents.all(), stateOf)},
          {"recoverable", jsonList(host.documents.recoverable(), recoverableAsJson)}};
}

Json open(Host& host, Arguments const& arguments) {
  auto const file = arguments.optionalText("file");
  auto const text = arguments.optionalText("text");
  auto const root = arguments.optionalText("root");
  if (file && text) throw ProtocolError(ErrorCode::InvalidParams, "give either \"file\" or \"text\"");
  if (text && text->size() > host.options.limits.modelBytes) {
    throw ProtocolError(ErrorCode::LimitExceeded, "the model is too long");
  }
  auto const opened =
      file ? host.documents.openFile(*file, root) : host.documents.openText(text.value_or(std::string()), root);
  LockedDocument const document(opened.document);
  Json json = document->state();
  json["wasOpen"] = opened.wasOpen;
  if (!opened.wasOpen) publishChange(host, *document, arguments, "open");
  return json;
}

Json state(Host& host, Arguments const& arguments) {
  return lockDocument(host, arguments)->state();
}

Json close(Host& host, Arguments const& arguments) {
  std::string const id = arguments.text("document");
  host.documents.close(id, arguments.flag("discard"));
  host.events.publish("closed", {{"document", id}});
  return {{"document", id}};
}

Json save(Host& host, Arguments const& arguments) {
  LockedDocument const document = lockDocument(host, arguments);
  if (arguments.has("revision")) requireRevision(*document, arguments);
  auto const overwrite = arguments.flag("overwrite") ? session::Overwrite::Yes : session::Overwrite::No;
  auto const error = host.documents.save(*document, arguments.optionalText("file").value_or(std::string()), overwrite);
  Json json = document->state();
  json["saved"] = !error;
  if (error) {
    json["error"] = saveErrorAsJson(*error);
  } else {
    publishChange(host, *document, arguments, "save");
  }
  return json;
}

Json recover(Host& host, Arguments const& arguments) {
  auto const recovered = host.documents.recover(arguments.text("recovery"), arguments.flag("partial"));
  LockedDocument const document(recovered.document);
  Json json = document->state();
  json["done"] = recovered.done;
  json["entries"] = recovered.entries;
  json["fileChanged"] = recovered.fileChanged;
  publishChange(host, *document, arguments, "recover");
  return json;
}

Json discardRecovery(Host& host, Arguments const& arguments) {
  std::string const id = arguments.text("recovery");
  host.documents.discardRecovery(id);
  return {{"recovery", id}};
}

constexpr Method methods[] = {
    {"hello", hello}, {"documents", documents}, {"open", open},       {"state", state},
    {"close", close}, {"save", save},           {"recover", recover}, {"discardRecovery", discardRecovery},
};

}  // namespace

std::span<Method const> documentMethods() noexcept {
  return methods;
}

}  // namespace tarn::service
