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

constexpr int idleMilliseconds = 30'000;
constexpr int patienceMilliseconds = 5'000;
constexpr int mostRequests = 100'000;

/// A thread for each connection, as many as were ever needed at once. An idle thread takes the next connection.
class ConnectionThreads : public httplib::TaskQueue {
 public:
  explicit ConnectionThreads(std::size_t most) : most_(most) {}

  void enqueue(std::function<void()> task) override {
    std::lock_guard const lock(mutex_);
    tasks_.push_back(std::move(task));
    if (tasks_.size() > idle_ && threads_.size() < most_) {
      try {
        threads_.emplace_back([this] { run(); });
      } catch (std::system_error const&) {
        // The connection waits for a thread that there is.
      }
    }
    changed_.notify_one();
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
  void run() {
    std::unique_lock lock(mutex_);
    while (true) {
      ++idle_;
      changed_.wait(lock, [this] { return isEnding_ || !tasks_.empty(); });
      --idle_;
      if (tasks_.empty()) return;
      std::function<void()> const task = std::move(tasks_.front());
      tasks_.pop_front();
      lock.unlock();
      task();
      lock.lock();
    }
  }

  std::size_t most_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> tasks_;
  std::vector<std::thread> threads_;
  std::size_t idle_ = 0;
  bool isEnding_ = false;
};

/// The bytes of a connection. The library reads the head of a request byte by byte, so they are read ahead.
class Connection : public httplib::Stream {
 public:
  Connection(socket_t socket, int ending) : socket_(socket), ending_(ending) {
    timeval const patience{patienceMilliseconds / 1000, 0};
    ::setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
  }

  /// False if none comes, or if the server ends.
  [[nodiscard]] bool waitForRequest() const {
    if (begin_ < end_) return true;
    std::array<pollfd, 2> waited{{{socket_, POLLIN, 0}, {ending_, POLLIN, 0}}};
    return poll(waited.data(), waited.size(), idleMilliseconds) > 0 && waited[1].revents == 0;
  }

  bool is_readable() const override {
    pollfd waited{socket_, POLLIN, 0};
    return begin_ < end_ || poll(&waited, 1, patienceMilliseconds) > 0;
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
  std::array<char, 16384> ahead_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
};

}  // namespace

WaitingServer::WaitingServer(std::size_t mostConnections) : ending_(::eventfd(0, EFD_CLOEXEC)) {
  if (ending_ == -1) throw std::system_error(errno, std::generic_category(), "connections cannot be awaited");
  new_task_queue = [mostConnections] { return new ConnectionThreads(mostConnections); };  // the library deletes it
}

WaitingServer::~WaitingServer() {
  ::close(ending_);
}

void WaitingServer::endConnections() {
  std::uint64_t const one = 1;
  (void)!::write(ending_, &one, sizeof one);
}

bool WaitingServer::process_and_close_socket(socket_t socket) {
  Connection connection(socket, ending_);
  bool isGood = true;
  bool isClosed = false;
  for (int left = mostRequests; isGood && !isClosed && left > 0 && connection.waitForRequest(); --left) {
    isGood = process_request(connection, left == 1, isClosed, nullptr);
  }
  ::shutdown(socket, SHUT_RDWR);
  ::close(socket);
  return isGood;
}

}  // namespace tarn::tool
