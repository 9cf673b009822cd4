// Each connection has a thread, also while it waits for events.
#include "serve/HttpServer.h"

#include <sys/socket.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <ostream>
#include <string_view>
#include <thread>
#include <utility>

#include <httplib.h>

#include <tarn/StringUtilities.h>
#include <tarn/service/ProtocolSchema.h>

#include "cli/Failure.h"
#include "serve/EntryPage.h"
#include "serve/WaitingServer.h"

namespace tarn::tool {

namespace {

using Verdict = RequestGuard::Verdict;

/// The connections that can be open beside the streams of events.
constexpr std::size_t otherConnections = 256;

constexpr int ok = 200;
constexpr int noContent = 204;
constexpr int badRequest = 400;
constexpr int unauthorized = 401;
constexpr int forbidden = 403;
constexpr int notFound = 404;
constexpr int wrongMethod = 405;
constexpr int lengthRequired = 411;
constexpr int tooLarge = 413;
constexpr int longAddress = 414;
constexpr int wrongType = 415;
constexpr int wrongRange = 416;
constexpr int misdirected = 421;
constexpr int unavailable = 503;

void refuse(httplib::Response& response, int status, std::string const& sentence) {
  response.status = status;
  response.set_content(sentence + '\n', "text/plain; charset=utf-8");
}

/// Scripts, styles and requests come from this server only, no other page shows this one in a frame, and a browser
/// takes no file for something that it is not.
httplib::Headers securityHeaders() {
  return {{"Content-Security-Policy",
           "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; font-src 'self'; "
           "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
          {"X-Content-Type-Options", "nosniff"},
          {"X-Frame-Options", "DENY"},
          {"Referrer-Policy", "no-referrer"},
          {"Cross-Origin-Opener-Policy", "same-origin"},
          {"Cross-Origin-Resource-Policy", "same-origin"},
          {"Cache-Control", "no-store"}};
}

RequestGuard::Request headersOf(httplib::Request const& request) {
  return {request.get_header_value("Host"), request.get_header_value("Origin"),
          request.get_header_value("Authorization"), request.get_header_value("Cookie")};
}

constexpr std::string_view callPath = "/rpc";
constexpr std::string_view eventsPath = "/events";
constexpr std::string_view schemaPath = "/schema";
/// Where browsers look for an icon by themselves.
constexpr std::string_view iconPath = "/favicon.ico";

bool hasBody(httplib::Request const& request) {
  return request.has_header("Content-Length") || request.has_header("Transfer-Encoding");
}

/// The library takes a length that is no number for 0, and without a length it reads until the client leaves. Two
/// lengths are refused: programs between the client and this one might believe the other.
bool hasGoodLength(httplib::Request const& request, httplib::Response& response) {
  std::string const coding = request.get_header_value("Transfer-Encoding");
  std::size_t const count =
      request.get_header_value_count("Content-Length") + request.get_header_value_count("Transfer-Encoding");
  if (count == 0) {
    if (request.method == "GET" || request.method == "HEAD") return true;
    refuse(response, lengthRequired, "A request says how long it is, with Content-Length.");
    return false;
  }
  std::string const length = request.get_header_value("Content-Length");
  constexpr std::size_t mostDigits = 18;
  bool const isNumber =
      !length.empty() && length.size() <= mostDigits && length.find_first_not_of("0123456789") == std::string::npos;
  if (count == 1 && (isNumber || StringUtilities::equalIgnoringCase(coding, "chunked"))) return true;
  refuse(response, badRequest, "A request says how long it is once, with a number in Content-Length.");
  return false;
}

/// The methods that are possible at a path, as the header `Allow` lists them. Empty without such a path.
std::string_view methodsOf(EditorFiles const* editor, std::string const& path) {
  if (path == callPath) return "POST";
  if (path == entryPath) return "GET, HEAD, POST";
  bool const isKnown = path == eventsPath || path == schemaPath || path == entryScriptPath || path == iconPath ||
                       (editor != nullptr && editor->find(path) != nullptr);
  return isKnown ? "GET, HEAD" : "";
}

bool hasGoodMethod(EditorFiles const* editor, httplib::Request const& request, httplib::Response& response) {
  std::string const allowed(methodsOf(editor, request.path));
  if (allowed.empty() || (", " + allowed + ',').find(' ' + request.method + ',') != std::string::npos) return true;
  response.set_header("Allow", allowed);
  refuse(response, wrongMethod, "Here a request has the method " + allowed + '.');
  return false;
}

void answerCall(service::Service& service, httplib::Request const& request, httplib::Response& response,
                httplib::ContentReader const& read) {
  std::size_t const most = service.limits().messageBytes;
  std::string body;
  bool isTooLong = request.get_header_value<std::uint64_t>("Content-Length") > most;
  bool const isComplete = !isTooLong && read([&](char const* data, std::size_t size) {
    isTooLong = isTooLong || body.size() + size > most;
    if (!isTooLong) body.append(data, size);
    return !isTooLong;
  });
  if (isTooLong) {
    response.status = tooLarge;
    response.set_content(service.answerToTooLong(), "application/json");
    return;
  }
  // The beginning of a message can be a message, too, and is not what the client has said.
  if (!isComplete) return refuse(response, badRequest, "The request has not come as a whole.");
  // A form of another site can send other types only.
  std::string const type = request.get_header_value("Content-Type");
  if (type != "application/json" && !type.starts_with("application/json;")) {
    return refuse(response, wrongType, "A request has the type application/json.");
  }
  std::string const answer = service.answer(body);
  response.status = answer.empty() ? noContent : ok;
  if (!answer.empty()) response.set_content(answer, "application/json");
}

/// Events as they come, and a comment now and then, so that both sides find out when the other is gone. When events
/// come all the time, those of a moment are written together: a write costs more than an event, and every client gets
/// all.
class EventWriter {
 public:
  explicit EventWriter(std::shared_ptr<service::EventStream> stream) : stream_(std::move(stream)) {}

  bool operator()(httplib::DataSink& sink) {
    constexpr std::chrono::seconds slice{1};
    constexpr int slicesOfSilence = 15;
    constexpr std::chrono::milliseconds pause{20};
    if (!hasBegun_) {
      hasBegun_ = true;
      return write(sink, ": connected\n\n");
    }
    for (int i = 0; i < slicesOfSilence; ++i) {
      if (auto const event = stream_->next(slice)) {
        std::this_thread::sleep_until(lastWrite_ + pause);
        return writeFrom(sink, *event);
      }
      if (stream_->isClosed()) {
        sink.done();
        return true;
      }
      if (!sink.is_writable()) return false;
    }
    return write(sink, ": still here\n\n");
  }

 private:
  /// Writes everything that waits.
  bool writeFrom(httplib::DataSink& sink, std::string const& first) {
    constexpr std::size_t enough = std::size_t{1} << 16U;
    std::string text = "data: " + first + "\n\n";
    while (text.size() < enough) {
      auto const event = stream_->next(std::chrono::milliseconds(0));
      if (!event) break;
      text.append("data: ").append(*event).append("\n\n");
    }
    lastWrite_ = std::chrono::steady_clock::now();
    return write(sink, text);
  }

  static bool write(httplib::DataSink& sink, std::string const& text) { return sink.write(text.data(), text.size()); }

  std::shared_ptr<service::EventStream> stream_;
  bool hasBegun_ = false;
  std::chrono::steady_clock::time_point lastWrite_{};
};

void sendEvents(service::Service& service, httplib::Response& response) {
  auto stream = service.subscribe();
  if (!stream) return refuse(response, unavailable, "Too many clients receive events.");
  response.set_chunked_content_provider("text/event-stream",
                                        [writer = std::make_shared<EventWriter>(std::move(stream))](
                                            std::size_t, httplib::DataSink& sink) { return (*writer)(sink); });
}

/// Browsers ask for this before they know the token. It has no secrets.
bool isEntry(httplib::Request const& request) {
  return request.method == "GET" &&
         (request.path == entryPath || request.path == entryScriptPath || request.path == iconPath);
}

void sendIcon(EditorFiles const* editor, httplib::Response& response) {
  EditorFiles::File const* const file = editor == nullptr ? nullptr : editor->find("/icon.svg");
  response.status = noContent;
  if (file == nullptr) return;
  response.status = ok;
  response.set_content(file->bytes, file->type);
}

void sendFile(EditorFiles const* editor, httplib::Request const& request, httplib::Response& response) {
  if (editor == nullptr && request.path == "/") {
    return refuse(response, notFound,
                  "This installation has no web editor. Install nodejs and npm, and build zev again: the build makes "
                  "the editor. A page in another folder is served with: zev serve --web FOLDER. Programs need no page; "
                  "they send requests to /rpc.");
  }
  EditorFiles::File const* const file = editor == nullptr ? nullptr : editor->find(request.path);
  if (file == nullptr) return refuse(response, notFound, "There is no such page.");
  if (file->hasHash) {
    response.headers.erase("Cache-Control");
    response.set_header("Cache-Control", "private, max-age=31536000, immutable");
  }
  response.set_content(file->bytes, file->type);
}

void addHandlers(httplib::Server& server, service::Service& service, RequestGuard const& guard,
                 EditorFiles const* editor) {
  server.set_pre_routing_handler([&guard, editor](httplib::Request const& request, httplib::Response& response) {
    auto const goOn = [&] {
      return hasGoodMethod(editor, request, response) && hasGoodLength(request, response)
                 ? httplib::Server::HandlerResponse::Unhandled
                 : httplib::Server::HandlerResponse::Handled;
    };
    if (request.get_header_value_count("Host") > 1) {
      refuse(response, badRequest, "A request has one Host.");
      return httplib::Server::HandlerResponse::Handled;
    }
    switch (guard.judge(headersOf(request))) {
      case Verdict::Allowed:
        return goOn();
      case Verdict::WrongHost:
        refuse(response, misdirected, "This server has another name.");
        break;
      case Verdict::WrongOrigin:
        refuse(response, forbidden, "Pages of other sites may not use this server.");
        break;
      case Verdict::NoToken:
        if (isEntry(request)) return goOn();
        refuse(response, unauthorized, "Open the address that zev has printed, with its token.");
        break;
    }
    return httplib::Server::HandlerResponse::Handled;
  });
  server.set_exception_handler([](httplib::Request const&, httplib::Response& response, std::exception_ptr const&) {
    refuse(response, unavailable, "The request could not be answered.");
  });
  server.set_error_handler(httplib::Server::Handler([](httplib::Request const&, httplib::Response& response) {
    if (!response.body.empty()) return;
    int const status = response.status;
    if (status == notFound) refuse(response, status, "There is no such page.");
    if (status == badRequest) refuse(response, status, "This is no request.");
    if (status == longAddress) refuse(response, status, "The address is too long.");
    if (status == wrongRange) refuse(response, status, "The page has no such range.");
  }));
  // A body that was not read would be taken for the next request: one page could ask for what another is answered.
  server.set_post_routing_handler([](httplib::Request const& request, httplib::Response& response) {
    bool const isRead = request.method != "GET" && request.method != "HEAD";
    if (response.status < badRequest && (isRead || !hasBody(request))) return;
    response.headers.erase("Keep-Alive");
    response.headers.erase("Connection");
    response.set_header("Connection", "close");
    WaitingServer::endConnection();
  });
  server.Post(std::string(callPath),
              [&service](httplib::Request const& request, httplib::Response& response,
                         httplib::ContentReader const& read) { answerCall(service, request, response, read); });
  server.Get(std::string(eventsPath),
             [&service](httplib::Request const&, httplib::Response& response) { sendEvents(service, response); });
  server.Get(std::string(schemaPath), [](httplib::Request const&, httplib::Response& response) {
    response.set_content(std::string(service::protocolSchema()), "application/schema+json");
  });
  server.Get(std::string(entryPath), [](httplib::Request const&, httplib::Response& response) {
    response.set_content(std::string(entryPage), "text/html; charset=utf-8");
  });
  server.Get(std::string(entryScriptPath), [](httplib::Request const&, httplib::Response& response) {
    response.set_content(std::string(entryScript), "text/javascript; charset=utf-8");
  });
  // The guard has seen the token.
  server.Post(std::string(entryPath), [&guard](httplib::Request const&, httplib::Response& response) {
    response.set_header("Set-Cookie", guard.cookie());
    response.status = noContent;
  });
  server.Get(std::string(iconPath),
             [editor](httplib::Request const&, httplib::Response& response) { sendIcon(editor, response); });
  server.Get("/.*", [editor](httplib::Request const& request, httplib::Response& response) {
    sendFile(editor, request, response);
  });
}

/// Accepts connections in a thread of its own. The end of this waits for all requests.
class Listener {
 public:
  Listener(WaitingServer& server, service::Service& service)
      : server_(server), service_(service), thread_([&server] { server.listen_after_bind(); }) {
    // Only a server that runs can be stopped.
    constexpr std::chrono::milliseconds slice{1};
    while (!server_.is_running()) std::this_thread::sleep_for(slice);
  }
  ~Listener() {
    service_.closeStreams();
    server_.endConnections();
    server_.stop();
    thread_.join();
  }
  Listener(Listener const&) = delete;
  Listener& operator=(Listener const&) = delete;

 private:
  WaitingServer& server_;
  service::Service& service_;
  std::thread thread_;
};

}  // namespace

void serveOverHttp(service::Service& service, HttpOptions const& options, TerminationSignals const& signals,
                   std::ostream& out) {
  WaitingServer server(ConnectionLimits{.connections = service.limits().streams + otherConnections});
  // The library's own choice lets another program take the same port.
  server.set_socket_options([](auto socket) {
    int const yes = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  });
  server.set_tcp_nodelay(true);
  server.set_default_headers(securityHeaders());

  Address const& address = options.address;
  bool const isBound = address.port == 0 ? false : server.bind_to_port(address.host, address.port);
  int const port = isBound ? address.port : address.port == 0 ? server.bind_to_any_port(address.host) : -1;
  if (port <= 0) {
    throw Failure("cannot listen on " + address.hostInUrl() + ':' + std::to_string(address.port) +
                  "; another program may use the port; give another one, or 0 for any");
  }

  std::string const behind = ':' + std::to_string(port);
  std::vector<std::string> hosts{address.hostInUrl() + behind};
  if (address.isLoopback()) hosts.insert(hosts.end(), {"127.0.0.1" + behind, "localhost" + behind, "[::1]" + behind});
  for (std::string const& name : options.names) hosts.push_back(name + behind);
  std::string const url = "http://" + hosts.front() + std::string(entryPath) + "#token=" + options.token;
  RequestGuard const guard(options.token, std::move(hosts), port);

  addHandlers(server, service, guard, options.editor ? &*options.editor : nullptr);

  Listener const listener(server, service);
  out << url << '\n' << std::flush;
  if (!out) return;  // nobody knows the token
  constexpr int second = 1000;
  while (signals.wait(-1, second) != TerminationSignals::Event::Terminate) service.sync();
}

}  // namespace tarn::tool
