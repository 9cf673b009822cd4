#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <string>
#include <vector>

#include "Places.h"

namespace tarn::test {

/// A program on a terminal of its own: what a user types goes in, what a user sees comes out. The program gets nothing
/// of the environment of the test but what is handed to it, and is killed when the object goes.
class Terminal {
 public:
  using Strings = std::vector<std::string>;

  static constexpr std::chrono::seconds patience{60};

  Terminal(std::string const& folder, Strings arguments, Strings environment, unsigned short rows = 24,
           unsigned short columns = 80) {
    // Everything that needs memory is made before the fork.
    std::vector<char*> const argv = pointersTo(arguments);
    // For builds with the leak sanitizer: the names of added editing functions are never freed by libedit.
    environment.emplace_back("LSAN_OPTIONS=print_suppressions=0:suppressions=" TARN_SOURCE_DIR
                             "/tests/end_to_end/leaks-of-libedit.txt");
    std::vector<char*> const envp = pointersTo(environment);
    winsize const size{rows, columns, 0, 0};
    child_ = ::forkpty(&terminal_, nullptr, nullptr, &size);
    if (child_ == 0) {
      if (::chdir(folder.c_str()) == 0) ::execve(argv[0], argv.data(), envp.data());
      ::_exit(126);
    }
    EXPECT_NE(child_, -1);
    // A program that does not read must not hold up the test.
    ::fcntl(terminal_, F_SETFL, ::fcntl(terminal_, F_GETFL) | O_NONBLOCK);
  }
  ~Terminal() {
    if (!ended_) {
      ::kill(child_, SIGKILL);
      ::waitpid(child_, nullptr, 0);
    }
    ::close(terminal_);
  }
  Terminal(Terminal const&) = delete;
  Terminal& operator=(Terminal const&) = delete;

  [[nodiscard]] pid_t process() const { return child_; }

  /// Whether a signal was sent to the program that it has not been given yet.
  [[nodiscard]] bool hasSignalWaiting() const {
    std::ifstream status("/proc/" + std::to_string(child_) + "/status");
    for (std::string line; std::getline(status, line);) {
      if (line.starts_with("ShdPnd:")) return line.find_first_not_of("ShdPnd:\t0") != std::string::npos;
    }
    return false;
  }

  void type(std::string const& keys) {
    auto const until = std::chrono::steady_clock::now() + patience;
    for (std::size_t done = 0; done < keys.size();) {
      ssize_t const count = ::write(terminal_, keys.data() + done, keys.size() - done);
      if (count > 0) {
        done += static_cast<std::size_t>(count);
      } else if (!readSome(std::chrono::milliseconds(20)) || std::chrono::steady_clock::now() > until) {
        ADD_FAILURE() << "the program takes no more input\n" << tail();
        return;
      }
    }
  }

  void resize(unsigned short rows, unsigned short columns) {
    winsize const size{rows, columns, 0, 0};
    EXPECT_EQ(::ioctl(terminal_, TIOCSWINSZ, &size), 0);
  }

  /// Waits until `text` is shown and returns what was shown before it. The text is consumed: the next call
  /// searches after it.
  std::string waitFor(std::string const& text) {
    auto const until = std::chrono::steady_clock::now() + patience;
    std::size_t searched = 0;
    for (;;) {
      std::size_t const at = shown_.find(text, searched);
      searched = shown_.size() < text.size() ? 0 : shown_.size() - text.size();
      if (at != std::string::npos) {
        std::string before = shown_.substr(0, at);
        shown_.erase(0, at + text.size());
        return before;
      }
      if (!readSome(std::chrono::milliseconds(100)) || std::chrono::steady_clock::now() > until) {
        ADD_FAILURE() << "not shown: " << text.substr(0, 200) << '\n' << tail();
        return {};
      }
    }
  }

  /// Types a line, waits for the next prompt, and returns all that was shown between but the last line end.
  std::string enter(std::string const& line, std::string const& prompt = "ZEV> ") {
    type(line + '\r');
    return waitFor("\r\n" + prompt);
  }

  /// Waits until the program ends; its exit status, or the negative number of the signal that ended it.
  int waitForEnd() {
    auto const until = std::chrono::steady_clock::now() + patience;
    while (readSome(std::chrono::milliseconds(100)) && std::chrono::steady_clock::now() < until) {
    }
    int status = 0;
    while (::waitpid(child_, &status, WNOHANG) == 0) {
      if (std::chrono::steady_clock::now() > until) {
        ADD_FAILURE() << "the program does not end\n" << tail();
        return -SIGKILL;
      }
      ::usleep(5000);
    }
    ended_ = true;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

  /// Whether what is typed is shown by the terminal itself, as it is while no program has taken hold of it.
  [[nodiscard]] bool echoes() const {
    termios modes{};
    EXPECT_EQ(::tcgetattr(terminal_, &modes), 0);
    return (modes.c_lflag & ECHO) != 0;
  }

 private:
  static std::vector<char*> pointersTo(Strings& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
  }

  /// False when the program has closed the terminal.
  bool readSome(std::chrono::milliseconds wait) {
    pollfd input{terminal_, POLLIN, 0};
    if (::poll(&input, 1, static_cast<int>(wait.count())) <= 0) return true;
    char buffer[65536];
    ssize_t const count = ::read(terminal_, buffer, sizeof buffer);
    if (count > 0) shown_.append(buffer, static_cast<std::size_t>(count));
    return count > 0;
  }

  [[nodiscard]] std::string tail() const {
    return "shown last: " + testing::PrintToString(shown_.size() < 500 ? shown_ : shown_.substr(shown_.size() - 500));
  }

  int terminal_ = -1;
  pid_t child_ = -1;
  bool ended_ = false;
  std::string shown_;
};

}  // namespace tarn::test
