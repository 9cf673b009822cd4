#pragma once

#include <httplib.h>

namespace tarn::tool {

/// An HTTP server whose idle connections cost nothing. The library looks at each of them a hundred times a second,
/// which takes more time than all requests when there are a hundred clients. Here a connection waits until a request
/// comes, the client leaves, or the server ends.
class WaitingServer : public httplib::Server {
 public:
  /// At most `mostConnections` are served at once; others wait. Throws a `std::system_error` without descriptors.
  explicit WaitingServer(std::size_t mostConnections);
  ~WaitingServer() override;
  WaitingServer(WaitingServer const&) = delete;
  WaitingServer& operator=(WaitingServer const&) = delete;

  /// Ends the waiting of idle connections. Call it before `stop`.
  void endConnections();

 private:
  bool process_and_close_socket(socket_t socket) override;

  /// Can be read from when connections end.
  int ending_;
};

}  // namespace tarn::tool
