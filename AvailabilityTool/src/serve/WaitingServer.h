#pragma once

#include <chrono>
#include <cstddef>

#include <httplib.h>

namespace tarn::tool {

/// Limits that keep clients from using up the server. A client needs no token to connect.
struct ConnectionLimits {
  /// Connections that are served at once.
  std::size_t connections = 256;
  /// Further ones that wait. More are closed at once: each has a descriptor, and files need some, too.
  std::size_t waiting = 256;
  /// The time until a request begins: the first of a connection, and the next ones.
  std::chrono::milliseconds first{10'000};
  std::chrono::milliseconds idle{30'000};
  /// The time in which the whole of a request must come. A byte now and then must not keep a connection.
  std::chrono::milliseconds request{30'000};
  /// The time in which a client that is refused can send the rest, so that it reads why.
  std::chrono::milliseconds rest{2'000};
};

/// An HTTP server whose idle connections cost nothing. The library looks at each of them a hundred times a second,
/// which takes more time than all requests when there are a hundred clients. Here a connection waits until a request
/// comes, the client leaves, or the server ends.
class WaitingServer : public httplib::Server {
 public:
  /// Throws a `std::system_error` without descriptors.
  explicit WaitingServer(ConnectionLimits const& limits);
  ~WaitingServer() override;
  WaitingServer(WaitingServer const&) = delete;
  WaitingServer& operator=(WaitingServer const&) = delete;

  /// Ends the connection whose request this thread answers, after the answer. For handlers that leave a body unread.
  static void endConnection() noexcept;

  /// Ends the waiting of idle connections. Call it before `stop`.
  void endConnections();

 private:
  bool process_and_close_socket(socket_t socket) override;

  ConnectionLimits limits_;
  /// Can be read from when connections end.
  int ending_;
};

}  // namespace tarn::tool
