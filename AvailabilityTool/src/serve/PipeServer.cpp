// The input is read by hand, because a signal must be able to end the waiting, and a line can be too long to keep.
#include "serve/PipeServer.h"

#include <unistd.h>

#include <cerrno>
#include <ostream>
#include <string>
#include <string_view>

#include "cli/Failure.h"

namespace tarn::tool {

namespace {

/// Puts lines together from pieces of input.
class Lines {
 public:
  Lines(service::Service& service, std::ostream& out)
      : service_(service), out_(out), mostBytes_(service.limits().messageBytes) {}

  void take(std::string_view bytes) {
    while (!bytes.empty()) {
      std::size_t const end = bytes.find('\n');
      std::string_view const piece = bytes.substr(0, end);
      if (isTooLong_ || line_.size() + piece.size() > mostBytes_) {
        isTooLong_ = true;
        line_.clear();
      } else {
        line_ += piece;
      }
      if (end == std::string_view::npos) return;
      finish();
      bytes.remove_prefix(end + 1);
    }
  }

  /// The end of the line, or of the input.
  void finish() {
    if (!line_.empty() && line_.back() == '\r') line_.pop_back();
    std::string answer;
    if (isTooLong_) {
      answer = service_.answerToTooLong();
    } else if (line_.find_first_not_of(" \t") != std::string::npos) {
      answer = service_.answer(line_);
    }
    if (!answer.empty()) out_ << answer << '\n' << std::flush;
    line_.clear();
    isTooLong_ = false;
  }

 private:
  service::Service& service_;
  std::ostream& out_;
  std::size_t mostBytes_;
  std::string line_;
  bool isTooLong_ = false;
};

}  // namespace

void serveOverPipe(service::Service& service, TerminationSignals const& signals, std::ostream& out) {
  constexpr int second = 1000;
  Lines lines(service, out);
  std::string buffer(std::size_t{1} << 16U, '\0');
  while (out) {
    switch (signals.wait(STDIN_FILENO, second)) {
      case TerminationSignals::Event::Terminate:
        return;
      case TerminationSignals::Event::None:
        service.sync();
        break;
      case TerminationSignals::Event::Input: {
        ssize_t const count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) break;
        if (count < 0) throw Failure("the standard input cannot be read");
        if (count == 0) return lines.finish();
        lines.take(std::string_view(buffer).substr(0, static_cast<std::size_t>(count)));
        break;
      }
    }
  }
}

}  // namespace tarn::tool
