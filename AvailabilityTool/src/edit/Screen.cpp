#include "edit/Screen.h"

#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <ostream>
#include <string_view>

#include "edit/ShownText.h"

namespace tarn::tool {

namespace {

std::string_view environment(char const* name) {
  char const* const value = std::getenv(name);
  return value == nullptr ? std::string_view() : std::string_view(value);
}

winsize windowSize() {
  winsize size{};
  if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0) size = {};
  if (size.ws_col == 0) size.ws_col = 80;
  if (size.ws_row == 0) size.ws_row = 24;
  return size;
}

bool isMovable(bool isTerminal) {
  std::string_view const kind = environment("TERM");
  return isTerminal && !kind.empty() && kind != "dumb";
}

/// Writes everything, also when a signal interrupts it. False when the reader is gone.
bool writeAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    ssize_t const count = ::write(descriptor, text.data(), text.size());
    if (count > 0) {
      text.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return false;
    }
  }
  return true;
}

}  // namespace

Screen::Screen(std::ostream& out, std::ostream& err, bool isTerminal)
    : out_(out),
      err_(err),
      isTerminal_(isTerminal),
      canMoveCursor_(isMovable(isTerminal)),
      hasColour_(canMoveCursor_ && environment("NO_COLOR").empty()) {}

TextLook Screen::look() const {
  TextLook look;
  look.colour = hasColour_;
  if (isTerminal_) {
    winsize const size = windowSize();
    look.width = size.ws_col;
    look.rows = size.ws_row;
  }
  return look;
}

void Screen::print(std::string const& text) {
  write(wrapped(text, look().width));
}

void Screen::write(std::string const& lines) {
  out_ << lines;
  out_.flush();
}

void Screen::complain(std::string const& text) {
  if (isTerminal_) return print(text);
  out_.flush();
  err_ << "zev: " << (line_ == 0 ? "" : "line " + std::to_string(line_) + ": ") << wrapped(text, 0);
  err_.flush();
}

void Screen::page(std::string const& text) {
  // The prompt needs a row, too.
  auto const rows = static_cast<std::size_t>(windowSize().ws_row);
  std::string const lines = wrapped(text, look().width);
  bool const isLong = static_cast<std::size_t>(std::count(lines.begin(), lines.end(), '\n')) >= rows;
  if (!canMoveCursor_ || !isLong || !runPager(lines)) write(lines);
}

bool Screen::runPager(std::string const& text) {
  char const* const asked = std::getenv("PAGER");
  std::string const pager = asked == nullptr ? "less -FIRX" : asked;
  if (pager.empty() || pager == "cat") return false;
  out_.flush();
  int ends[2] = {-1, -1};
  if (::pipe(ends) != 0) return false;
  pid_t const child = ::fork();
  if (child == 0) {
    // The pager has Ctrl-C for itself.
    for (int const signal : {SIGINT, SIGPIPE, SIGXFSZ}) std::signal(signal, SIG_DFL);
    ::dup2(ends[0], STDIN_FILENO);
    ::close(ends[0]);
    ::close(ends[1]);
    ::execl("/bin/sh", "sh", "-c", pager.c_str(), static_cast<char*>(nullptr));
    ::_exit(127);
  }
  ::close(ends[0]);
  if (child == -1) {
    ::close(ends[1]);
    return false;
  }
  // A user who ends the pager early does not want the rest.
  (void)writeAll(ends[1], text);
  ::close(ends[1]);
  int status = 0;
  while (::waitpid(child, &status, 0) == -1 && errno == EINTR) {
  }
  constexpr int notFound = 127;
  constexpr int notRunnable = 126;
  return !WIFEXITED(status) || (WEXITSTATUS(status) != notFound && WEXITSTATUS(status) != notRunnable);
}

}  // namespace tarn::tool
