#include "protocol/Methods.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <mutex>
#include <utility>

#include <tarn/ModelState.h>
#include <tarn/service/SessionJson.h>
#include <tarn/session/Review.h>

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

LockedDocument lockReviewed(Host& host, Arguments const& arguments) {
  // An edit during a review makes it worthless. Edits without a pause must not keep anyone from the findings: the last
  // review is made while the document is locked.
  constexpr int mostTries = 3;
  for (int tried = 0; tried < mostTries; ++tried) {
    std::shared_ptr<Document> const document = lockDocument(host, arguments).shared();
    std::lock_guard const reviewing(document->reviewing);
    std::size_t revision = 0;
    ModelState model;
    {
      LockedDocument locked = lockDocument(host, arguments);
      if (locked->isReviewed()) return locked;
      revision = locked->revision();
      model = locked->session().result();
    }
    session::Findings findings = session::Review(document->rules()).judge(model);
    LockedDocument locked = lockDocument(host, arguments);
    locked->takeReview(revision, std::move(findings));
    if (locked->isReviewed()) return locked;
  }
  return lockDocument(host, arguments);
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
  host.events.publish("changed", std::move(params));
}

}  // namespace tarn::service
