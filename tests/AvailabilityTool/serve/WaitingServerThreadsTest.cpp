// Connections side by side. The thread sanitizer runs this, too.
#include "serve/WaitingServer.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace tarn::tool {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds longTime{20'000};

/// A server that says "here", in a thread of its own.
class RunningServer {
 public:
  explicit RunningServer(ConnectionLimits const& limits) : server_(limits) {
    server_.Get(
        "/", [](httplib::Request const&, httplib::Response& response) { response.set_content("here", "text/plain"); });
    port_ = server_.bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    while (!server_.is_running()) std::this_thread::sleep_for(milliseconds(1));
  }
  ~RunningServer() {
    server_.endConnections();
    server_.stop();
    thread_.join();
  }
  RunningServer(RunningServer const&) = delete;
  RunningServer& operator=(RunningServer const&) = delete;

  [[nodiscard]] int port() const { return port_; }

 private:
  WaitingServer server_;
  int port_ = 0;
  std::thread thread_;
};

class Socket {
 public:
  explicit Socket(int port) : descriptor_(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::connect(descriptor_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  }
  ~Socket() { ::close(descriptor_); }
  Socket(Socket const&) = delete;
  Socket& operator=(Socket const&) = delete;

  void send(std::string const& bytes) const { (void)!::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL); }
  /// Whether the server closes the connection, or answers, before the time is over.
  [[nodiscard]] bool ends(milliseconds most) const {
    pollfd waited{descriptor_, POLLIN, 0};
    return ::poll(&waited, 1, static_cast<int>(most.count())) > 0;
  }

 private:
  int descriptor_;
};

TEST(WaitingServerThreads, ConnectionsThatComeAndStayAreAllAnswered) {
  RunningServer const server({.connections = 16});
  std::atomic<int> answers{0};
  std::vector<std::thread> clients;
  for (int i = 0; i < 12; ++i) {
    clients.emplace_back([&, i] {
      auto client = std::make_unique<httplib::Client>("127.0.0.1", server.port());
      client->set_keep_alive(i % 2 == 0);
      for (int round = 0; round < 20; ++round) {
        auto const answer = client->Get("/");
        if (answer && answer->body == "here") ++answers;
      }
    });
  }
  for (std::thread& client : clients) client.join();
  EXPECT_EQ(answers, 240);
}

TEST(WaitingServerThreads, ARequestThatComesByteByByteIsGivenUp) {
  RunningServer const server({.connections = 2, .request = milliseconds(300)});
  Socket const slow(server.port());
  auto const begin = steady_clock::now();
  bool isOver = false;
  while (!isOver && steady_clock::now() - begin < longTime) {
    slow.send("G");
    isOver = slow.ends(milliseconds(20));
  }
  EXPECT_TRUE(isOver);
  EXPECT_GE(steady_clock::now() - begin, milliseconds(300));
}

TEST(WaitingServerThreads, AConnectionThatAsksNothingIsClosed) {
  RunningServer const server({.connections = 2, .first = milliseconds(50)});
  EXPECT_TRUE(Socket(server.port()).ends(longTime));
}

TEST(WaitingServerThreads, ConnectionsThatFindNoRoomAreClosedAtOnce) {
  RunningServer const server({.connections = 1, .waiting = 1, .first = longTime});
  Socket const served(server.port());
  std::vector<std::unique_ptr<Socket>> others;
  bool isRefused = false;
  auto const begin = steady_clock::now();
  while (!isRefused && steady_clock::now() - begin < longTime) {
    others.push_back(std::make_unique<Socket>(server.port()));
    isRefused = others.back()->ends(milliseconds(100));
  }
  EXPECT_TRUE(isRefused);
  EXPECT_EQ(others.size(), 2U);
  EXPECT_FALSE(served.ends(milliseconds(0)));
}

TEST(WaitingServerThreads, TheEndOfTheServerEndsIdleConnections) {
  auto server =
      std::make_unique<RunningServer>(ConnectionLimits{.connections = 4, .first = longTime, .idle = longTime});
  Socket const idle(server->port());
  httplib::Client client("127.0.0.1", server->port());
  client.set_keep_alive(true);
  ASSERT_TRUE(client.Get("/"));
  auto const begin = steady_clock::now();
  server.reset();
  EXPECT_LT(steady_clock::now() - begin, longTime);
  EXPECT_TRUE(idle.ends(longTime));
}

}  // namespace
}  // namespace tarn::tool
