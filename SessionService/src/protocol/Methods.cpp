#include "protocol/Methods.h"

#include <algorithm>
#include <array>

#include <tarn/service/SessionJson.h>

#include "protocol/ProtocolError.h"

namespace tarn::service {

namespace {

/// The longest name of a client that is passed on to the others.
constexpr std::size_t mostClientName = 100;

std::array<std::span<Method const>, 3> allMethods() noexcept {
  return {documentMethods(), editMethods(), lookMethods()};
}

}  // namespace

std::vector<std::string_view> methodNames() {
  std::vector<std::string_view> names;
  for (auto const methods : allMethods()) {
    for (Method const& method : methods) names.push_back(method.name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

Method const* findMethod(std::string_view name) noexcept {
  for (auto const methods : allMethods()) {
    for (Method const& method : methods) {
      if (method.name == name) return &method;
    }
  }
  return nullptr;
}

LockedDocument lockDocument(Host& host, Arguments const& arguments) {
  return host.documents.lock(arguments.text("document"));
}

void requireRevision(Document const& document, Arguments const& arguments) {
  std::size_t const given = arguments.number("revision");
  if (given == document.revision()) return;
  throw ProtocolError(ErrorCode::OutdatedRevision,
                      "the document has been changed: its revision is " + std::to_string(document.revision()) +
                          ", and the request is for " + std::to_string(given),
                      {{"revision", document.revision()}});
}

void publishChange(Host& host, Document& document, Arguments const& arguments, std::string_view cause,
                   session::EditResult const* result) {
  if (!host.events.hasListeners()) return;
  nlohmann::ordered_json params = document.state();
  params["cause"] = cause;
  if (auto client = arguments.optionalText("client"); client && client->size() <= mostClientName) {
    params["client"] = *client;
  }
  if (result != nullptr) {
    params["result"] = editResultAsJson(*result, host.options.limits.page);
    if (cause == "undo") params["result"].erase("message");
  }
  host.events.publish("changed", params);
}

}  // namespace tarn::service
