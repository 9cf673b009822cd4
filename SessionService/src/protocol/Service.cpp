// Takes messages apart, calls the methods and puts the answers together. The messages themselves are hostile: their
// size and depth are judged before they are parsed.
#include <tarn/service/Service.h>

#include <new>

#include <tarn/service/JsonDepth.h>
#include <tarn/service/JsonText.h>

#include "protocol/Methods.h"
#include "protocol/ProtocolError.h"

namespace tarn::service {

namespace {

using Json = nlohmann::ordered_json;

Json errorAnswer(Json const& id, ErrorCode code, std::string const& sentence, Json const& data = {}) {
  Json error = {{"code", static_cast<int>(code)}, {"message", sentence}};
  if (!data.is_null()) error["data"] = data;
  return {{"jsonrpc", "2.0"}, {"id", id}, {"error", std::move(error)}};
}

bool isIdentifier(nlohmann::json const& id) {
  return id.is_string() || id.is_number() || id.is_null();
}

/// The name of the method that was probably meant is for people who try the protocol by hand.
std::string unknownMethod(std::string const& name) {
  return "there is no method \"" + name + "\"; \"hello\" lists all";
}

}  // namespace

class Service::Impl {
 public:
  Impl(PhysicsData const& rules, ServiceOptions options) : host(rules, std::move(options)) {}

  /// Null for a notification.
  Json answerTo(nlohmann::json const& request) {
    if (!request.is_object()) return errorAnswer(nullptr, ErrorCode::InvalidRequest, "a request is an object");
    auto const idAt = request.find("id");
    bool const isNotification = idAt == request.end();
    if (!isNotification && !isIdentifier(*idAt)) {
      return errorAnswer(nullptr, ErrorCode::InvalidRequest, "\"id\" must be a string, a number or null");
    }
    Json const id = isNotification ? Json() : Json(*idAt);
    Json answer = callMethod(request, id);
    host.events.deliver();
    return isNotification ? Json() : answer;
  }

  Host host;

 private:
  Json callMethod(nlohmann::json const& request, Json const& id) {
    try {
      auto const version = request.find("jsonrpc");
      if (version == request.end() || *version != "2.0") {
        return errorAnswer(id, ErrorCode::InvalidRequest, R"("jsonrpc" must be "2.0")");
      }
      auto const name = request.find("method");
      if (name == request.end() || !name->is_string()) {
        return errorAnswer(id, ErrorCode::InvalidRequest, "\"method\" must be a string");
      }
      Method const* const method = findMethod(name->get_ref<std::string const&>());
      if (method == nullptr) {
        return errorAnswer(id, ErrorCode::MethodNotFound, unknownMethod(name->get<std::string>()));
      }
      static nlohmann::json const none = nlohmann::json::object();
      auto const params = request.find("params");
      if (params != request.end() && !params->is_object()) {
        return errorAnswer(id, ErrorCode::InvalidParams, "\"params\" must be an object");
      }
      Json result = method->run(host, Arguments(params == request.end() ? none : *params));
      return {{"jsonrpc", "2.0"}, {"id", id}, {"result", std::move(result)}};
    } catch (ProtocolError const& error) {
      return errorAnswer(id, error.code(), error.what(), error.data());
    } catch (std::bad_alloc const&) {
      return errorAnswer(id, ErrorCode::InternalError, "there is not enough memory");
    } catch (std::exception const& error) {
      return errorAnswer(id, ErrorCode::InternalError, error.what());
    }
  }
};

Service::Service(PhysicsData const& rules, ServiceOptions options)
    : impl_(std::make_unique<Impl>(rules, std::move(options))) {}

Service::~Service() = default;

std::string Service::answer(std::string_view message) {
  ServiceLimits const& limits = impl_->host.options.limits;
  if (message.size() > limits.messageBytes) return answerToTooLong();
  if (isDeeperThan(message, limits.messageDepth)) {
    return jsonLine(errorAnswer(nullptr, ErrorCode::LimitExceeded,
                                "the message is nested more than " + std::to_string(limits.messageDepth) + " deep"));
  }
  // Members of objects are looked up by name, and a hostile object may have a million of them: so they are sorted.
  nlohmann::json request;
  try {
    request = nlohmann::json::parse(message);
  } catch (nlohmann::json::parse_error const& error) {
    return jsonLine(
        errorAnswer(nullptr, ErrorCode::ParseError,
                    "the message is not JSON in UTF-8; the mistake is at byte " + std::to_string(error.byte)));
  } catch (nlohmann::json::out_of_range const&) {
    return jsonLine(errorAnswer(nullptr, ErrorCode::ParseError, "the message has a number that is too large"));
  }
  if (!request.is_array()) {
    Json const answer = impl_->answerTo(request);
    return answer.is_null() ? std::string() : jsonLine(answer);
  }
  if (request.empty()) return jsonLine(errorAnswer(nullptr, ErrorCode::InvalidRequest, "the batch is empty"));
  if (request.size() > limits.batch) {
    return jsonLine(errorAnswer(nullptr, ErrorCode::LimitExceeded,
                                "the batch has more than " + std::to_string(limits.batch) + " requests"));
  }
  Json answers = Json::array();
  for (nlohmann::json const& one : request) {
    Json answer = impl_->answerTo(one);
    if (!answer.is_null()) answers.push_back(std::move(answer));
  }
  return answers.empty() ? std::string() : jsonLine(answers);
}

std::string Service::answerToTooLong() const {
  return jsonLine(errorAnswer(nullptr, ErrorCode::LimitExceeded,
                              "the message has more than " + std::to_string(limits().messageBytes) + " bytes"));
}

std::shared_ptr<EventStream> Service::subscribe() {
  return impl_->host.events.subscribe();
}

void Service::closeStreams() {
  impl_->host.events.closeAll();
}

void Service::sync() {
  for (auto const& document : impl_->host.documents.all()) {
    std::shared_ptr<RecoveryFile> file;
    {
      // A long request must not hold up the other documents. The next call gets this one.
      std::unique_lock const lock(document->mutex, std::try_to_lock);
      if (lock) file = document->journal().file();
    }
    if (file) file->sync();
  }
}

std::vector<Service::Recoverable> Service::recoverable() const {
  return impl_->host.documents.recoverable();
}

ServiceLimits const& Service::limits() const noexcept {
  return impl_->host.options.limits;
}

}  // namespace tarn::service
