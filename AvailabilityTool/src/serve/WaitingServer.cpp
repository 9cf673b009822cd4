// The work of the library for one connection is repeated here, because its way of waiting cannot be replaced alone.
#include "serve/WaitingServer.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace tarn::tool {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int patienceMilliseconds = 5'000;
constexpr int mostRequests = 100'000;

/// Whether this thread closes the connection that it is given.
thread_local bool isRefusing = false;

/// Whether the connection of this thread ends after the answer that is being made.
thread_local bool isEnding = false;

/// A thread for each connection, as many as were ever needed at once. An idle thread takes the next connection.
class ConnectionThreads : public httplib::TaskQueue {
 public:
  ConnectionThreads(std::size_t most, std::size_t mostWaiting) : most_(most), mostWaiting_(mostWaiting) {}

  void enqueue(std::function<void()> task) override {
    if (!hasTaken(task)) {
      isRefusing = true;
      task();
      isRefusing = false;
    }
  }

  void shutdown() override {
    {
      std::lock_guard const lock(mutex_);
      isEnding_ = true;
    }
    changed_.notify_all();
    for (std::thread& thread : threads_) thread.join();
  }

 private:
  /// False when too many wait.
  bool hasTaken(std::function<void()>& task) {
    std::lock_guard const lock(mutex_);
    if (tasks_.size() + running_ >= most_ + mostWaiting_) return false;
    tasks_.push_back(std::move(task));
    if (tasks_.size() > idle_ && threads_.size() < most_) {
      try {
        threads_.emplace_back([this] { run(); });
      } catch (std::system_error const&) {
        // The connection waits for a thread that there is.
      }
    }
    changed_.notify_one();
    return true;
  }

  void run() {
    std::unique_lock lock(mutex_);
    while (true) {
      ++idle_;
      changed_.wait(lock, [this] { return isEnding_ || !tasks_.empty(); });
      --idle_;
      if (tasks_.empty()) return;
      std::function<void()> const task = std::move(tasks_.front());
      tasks_.pop_front();
      ++running_;
      lock.unlock();
      task();
      lock.lock();
      --running_;
    }
  }

  std::size_t most_;
  std::size_t mostWaiting_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> tasks_;
  std::vector<std::thread> threads_;
  std::size_t idle_ = 0;
  std::size_t running_ = 0;
  bool isEnding_ = false;
};

/// The bytes of a connection. The library reads the head of a request byte by byte, so they are read ahead.
class Connection : public httplib::Stream {
 public:
  Connection(socket_t socket, int ending, ConnectionLimits const& limits)
      : socket_(socket), ending_(ending), limits_(limits) {
    timeval const patience{patienceMilliseconds / 1000, 0};
    ::setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
  }

  /// False if none comes, or if the server ends.
  [[nodiscard]] bool waitForRequest() {
    if (begin_ == end_) {
      std::array<pollfd, 2> waited{{{socket_, POLLIN, 0}, {ending_, POLLIN, 0}}};
      auto const patience = hasAsked_ ? limits_.idle : limits_.first;
      if (poll(waited.data(), waited.size(), static_cast<int>(patience.count())) <= 0 || waited[1].revents != 0) {
        return false;
      }
    }
    hasAsked_ = true;
    requestEnd_ = Clock::now() + limits_.request;
    return true;
  }

  bool is_readable() const override {
    if (begin_ < end_) return true;
    auto const left = std::chrono::ceil<std::chrono::milliseconds>(requestEnd_ - Clock::now()).count();
    if (left <= 0) return false;
    pollfd waited{socket_, POLLIN, 0};
    return poll(&waited, 1, static_cast<int>(std::min<std::int64_t>(left, patienceMilliseconds))) > 0;
  }

  /// Whether the client is still there. Writing waits by itself.
  bool is_writable() const override {
    char next = 0;
    ssize_t const count = ::recv(socket_, &next, 1, MSG_PEEK | MSG_DONTWAIT);
    return count > 0 || (count < 0 && (errno == EAGAIN || errno == EINTR));
  }

  ssize_t read(char* bytes, size_t size) override {
    if (begin_ == end_) {
      if (!is_readable()) return -1;
      ssize_t const count = receive();
      if (count <= 0) return count;
      begin_ = 0;
      end_ = static_cast<std::size_t>(count);
    }
    size_t const taken = std::min(size, end_ - begin_);
    std::copy_n(ahead_.data() + begin_, taken, bytes);
    begin_ += taken;
    return static_cast<ssize_t>(taken);
  }

  ssize_t write(char const* bytes, size_t size) override {
    while (true) {
      ssize_t const count = ::send(socket_, bytes, size, MSG_NOSIGNAL);
      if (count >= 0 || errno != EINTR) return count;
    }
  }

  /// Ends the connection so that the client reads the last answer: bytes that nobody has taken would reset it.
  void endGently() {
    ::shutdown(socket_, SHUT_WR);
    auto const end = Clock::now() + limits_.rest;
    while (true) {
      auto const left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
      std::array<pollfd, 2> waited{{{socket_, POLLIN, 0}, {ending_, POLLIN, 0}}};
      if (left <= 0 || poll(waited.data(), waited.size(), static_cast<int>(left)) <= 0) return;
      if (waited[1].revents != 0 || receive() <= 0) return;
    }
  }

  /// Nothing here asks for addresses.
  void get_remote_ip_and_port(std::string& /*ip*/, int& /*port*/) const override {}
  void get_local_ip_and_port(std::string& /*ip*/, int& /*port*/) const override {}
  socket_t socket() const override { return socket_; }

 private:
  static int poll(pollfd* waited, nfds_t count, int milliseconds) {
    while (true) {
      int const found = ::poll(waited, count, milliseconds);
      if (found >= 0 || errno != EINTR) return found;
    }
  }

  ssize_t receive() {
    while (true) {
      ssize_t const count = ::recv(socket_, ahead_.data(), ahead_.size(), 0);
      if (count >= 0 || errno != EINTR) return count;
    }
  }

  socket_t socket_;
  int ending_;
  ConnectionLimits const& limits_;
  std::array<char, 16384> ahead_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  bool hasAsked_ = false;
  Clock::time_point requestEnd_{};
};

}  // namespace

WaitingServer::WaitingServer(ConnectionLimits const& limits) : limits_(limits), ending_(::eventfd(0, EFD_CLOEXEC)) {
  if (ending_ == -1) throw std::system_error(errno, std::generic_category(), "connections cannot be awaited");
  // The library deletes it.
  new_task_queue = [limits] { return new ConnectionThreads(limits.connections, limits.waiting); };
}

WaitingServer::~WaitingServer() {
  ::close(ending_);
}

void WaitingServer::endConnection() noexcept {
  isEnding = true;
}

void WaitingServer::endConnections() {
  std::uint64_t const one = 1;
  (void)!::write(ending_, &one, sizeof one);
}

bool WaitingServer::process_and_close_socket(socket_t socket) {
  if (isRefusing) {
    ::close(socket);
    return false;
  }
  Connection connection(socket, ending_, limits_);
  bool isGood = true;
  bool isClosed = false;
  isEnding = false;
  for (int left = mostRequests; isGood && !isClosed && !isEnding && left > 0 && connection.waitForRequest(); --left) {
    isGood = process_request(connection, left == 1, isClosed, nullptr);
  }
  if (isEnding) connection.endGently();
  ::shutdown(socket, SHUT_RDWR);
  ::close(socket);
  return isGood;
}

}  // namespace tarn::tool
